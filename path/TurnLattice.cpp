#include "path/TurnLattice.h"

#include "path/Turns.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Orvo::Path {
namespace {

/// Of each axis, so many equivalents on each side of the nearest one are taken at most.
constexpr double MaxTurns = 512.0;
constexpr double MaxApproachTurns = 32.0;

/// With more equivalents than this at a point, states are found by search.
constexpr double MaxSlots = 65536.0;

/// Lazy goes on with so many states of each answer, and tries so many turns on each side.
constexpr std::size_t LazyStates = 4;
constexpr double LazyTurns = 8.0;

/// Half a turn, and what rounding may add to it.
constexpr double HalfTurnDeg = 180.0 + 1e-9;

PathStep::Kind KindOf(const PathState& state) {
  return static_cast<PathStep::Kind>(state.choice >> 30U);
}

bool IsSamePlace(const PathState& a, const PathState& b) {
  return KindOf(a) == KindOf(b) && a.values[FirstRotary] == b.values[FirstRotary] &&
         a.values[FirstRotary + 1] == b.values[FirstRotary + 1];
}

}  // namespace

TurnLattice::TurnLattice(const MainAxes& axes, const PathMeasure& measure, Mode mode)
    : axes_(&axes), measure_(&measure), mode_(mode) {
  for (std::size_t i = 0; i < 2; ++i) {
    const MainAxis& axis = axes.axes[FirstRotary + i];
    isBounded_[i] = axis.isPresent && axis.isChecked;
    isFree_[i] = isBounded_[i] && axis.max - axis.min + 4.0 * RangeTolerance >= 360.0;
  }
}

bool TurnLattice::IsUnmoved() const { return KindOf(states_.front()) == PathStep::None; }

std::size_t TurnLattice::FindBest() const {
  std::size_t best = 0;
  for (std::size_t i = 1; i < states_.size(); ++i) {
    best = states_[i].cost < states_[best].cost ? i : best;
  }
  return best;
}

double TurnLattice::BoundOf(PathStep::Kind kind, double excess) const {
  double cost = std::numeric_limits<double>::infinity();
  for (const PathState& state : states_) {
    cost = KindOf(state) == kind ? std::min(cost, state.cost) : cost;
  }
  return cost + excess;
}

void TurnLattice::FindTargets(const Answers& answers, bool isApproach, const TurnLattice* relaxed,
                              double excess) {
  targets_.clear();
  std::size_t slotNb = 0;
  for (int s = 0; s < answers.count; ++s) {
    Target target;
    target.answer = &answers.answers[static_cast<std::size_t>(s)];
    if (!target.answer->IsInRange()) {
      continue;
    }
    target.kind = s == 0 ? PathStep::First : PathStep::Second;
    target.bound = relaxed != nullptr && !isApproach ? relaxed->BoundOf(target.kind, excess)
                                                     : std::numeric_limits<double>::infinity();
    std::array<double, 2> count = {1.0, 1.0};
    for (std::size_t i = 0; i < 2; ++i) {
      const Turns range =
          TurnsInRange(axes_->axes[FirstRotary + i], target.answer->values[FirstRotary + i]);
      target.first[i] = range.first;
      target.last[i] = range.last;
      count[i] = range.last - range.first + 1.0;
    }
    if (mode_ == Mode::Complete && count[0] * count[1] <= MaxSlots) {
      target.slot = slotNb;
      target.width = static_cast<std::size_t>(count[1]);
      slotNb += static_cast<std::size_t>(count[0] * count[1]);
    }
    targets_.push_back(target);
  }
  for (std::uint32_t* slot : usedSlots_) {
    *slot = 0;
  }
  usedSlots_.clear();
  if (slots_.size() < slotNb) {
    slots_.resize(slotNb);
  }
}

bool TurnLattice::IsSingle(std::size_t i, const Target& target, const PathState& from, double* turn,
                           double* nearest) const {
  const std::size_t place = FirstRotary + i;
  if (!axes_->axes[place].isPresent) {
    *turn = *nearest = 0.0;
    return true;
  }
  *nearest = NearestTurns(target.answer->values[place], from.values[place]);
  const double first = target.first[i];
  const double last = target.last[i];
  if (!isBounded_[i] || (mode_ == Mode::Relaxed && isFree_[i])) {
    *turn = *nearest;
    return true;
  }
  if (mode_ == Mode::Plain && first <= 0.0 && last >= 0.0) {
    *turn = 0.0;
    return true;
  }
  *turn = *nearest < first ? first : *nearest > last ? last : *nearest;
  return first == last || (mode_ != Mode::Complete && *turn == *nearest);
}

bool TurnLattice::ExpandSingle(const PathState& from, std::uint32_t place, const Target& target) {
  double turn[2];
  double nearest[2];
  if (!IsSingle(0, target, from, &turn[0], &nearest[0]) ||
      !IsSingle(1, target, from, &turn[1], &nearest[1])) {
    return false;
  }
  PathState to;
  to.previous = place;
  to.values = target.answer->values;
  to.branch = target.answer->branch;
  PathStep step;
  step.kind = target.kind;
  for (std::size_t i = 0; i < 2; ++i) {
    to.values[FirstRotary + i] += 360.0 * turn[i];
    step.turns[i] = static_cast<int>(turn[i] - nearest[i]);
  }
  to.cost = from.cost + CostOfMove(*measure_, from, to.values, to.branch);
  to.choice = step.Pack();
  if (!(to.cost > target.bound)) {
    Keep(to, FindSlot(target, turn[0], turn[1]));
  }
  return true;
}

void TurnLattice::ListTurns(std::size_t i, const Target& target, const PathState& from, double most,
                            TurnList* list) const {
  const std::size_t place = FirstRotary + i;
  const double deg = target.answer->values[place];
  const double fromDeg = from.values[place];
  const double turns = (fromDeg - deg) / 360.0;
  const double first = target.first[i];
  const double last = target.last[i];
  const double weight = measure_->weights[place];
  const double speed = measure_->speeds[place];
  const bool isTravel = measure_->kind == MeasureKind::Travel;
  list->turns.clear();
  list->cost.clear();
  list->isUnwind.clear();
  const auto add = [&](double turn) {
    const double move = std::abs(deg + 360.0 * turn - fromDeg);
    list->turns.push_back(turn);
    list->cost.push_back(isTravel ? weight * move : move / speed);
    list->isUnwind.push_back(move > HalfTurnDeg ? 1 : 0);
  };
  double nearest = 0.0;
  const bool isSingle = IsSingle(i, target, from, &nearest, &list->nearest);
  add(nearest);
  if ((isSingle && most == 0.0) || first == last || !isBounded_[i] ||
      (mode_ == Mode::Relaxed && isFree_[i])) {
    return;
  }
  const double side = turns >= nearest ? 1.0 : -1.0;
  const double steps = most > 0.0 ? most : LazyTurns;
  for (double step = 1.0; step <= steps; step += 1.0) {
    const double nearer = nearest + side * step;
    const double farther = nearest - side * step;
    const bool hasNearer = nearer >= first && nearer <= last;
    const bool hasFarther = farther >= first && farther <= last;
    if (hasNearer) {
      add(nearer);
    }
    if (hasFarther) {
      add(farther);
    }
    if (!hasNearer && !hasFarther) {
      return;
    }
  }
}

double TurnLattice::FixedCost(const PathState& from, const Answer& answer) const {
  double cost = 0.0;
  for (std::size_t i = 0; i < FirstRotary; ++i) {
    const double move = std::abs(answer.values[i] - from.values[i]);
    cost = measure_->kind == MeasureKind::Travel ? cost + measure_->weights[i] * move
                                                 : std::max(cost, move / measure_->speeds[i]);
  }
  return cost;
}

std::uint32_t* TurnLattice::FindSlot(const Target& target, double a, double b) {
  if (target.width == 0) {
    return nullptr;
  }
  // In which turn an axis without a range stands does not matter.
  const std::size_t row = isBounded_[0] ? static_cast<std::size_t>(a - target.first[0]) : 0;
  const std::size_t column = isBounded_[1] ? static_cast<std::size_t>(b - target.first[1]) : 0;
  return &slots_[target.slot + row * target.width + column];
}

void TurnLattice::Keep(const PathState& state, std::uint32_t* slot) {
  std::size_t place = next_.size();
  if (slot != nullptr) {
    place = *slot != 0 ? *slot - 1 : place;
  } else {
    // Without ranges it does not matter in which turn an answer stands.
    const bool isAnyTurn = mode_ == Mode::Relaxed && KindOf(state) != PathStep::Held;
    for (std::size_t i = 0; i < next_.size(); ++i) {
      const bool isSame =
          isAnyTurn ? KindOf(next_[i]) == KindOf(state) : IsSamePlace(next_[i], state);
      place = isSame ? i : place;
    }
  }
  if (place == next_.size()) {
    next_.push_back(state);
    if (slot != nullptr) {
      *slot = static_cast<std::uint32_t>(next_.size());
      usedSlots_.push_back(slot);
    }
  } else if (state.cost < next_[place].cost) {
    next_[place] = state;
  }
}

void TurnLattice::KeepFew() {
  if (mode_ == Mode::Relaxed || mode_ == Mode::Complete || next_.size() <= LazyStates) {
    return;
  }
  std::stable_sort(next_.begin(), next_.end(),
                   [](const PathState& a, const PathState& b) { return a.cost < b.cost; });
  std::array<std::size_t, 4> count = {};
  std::erase_if(next_,
                [&count](const PathState& state) { return ++count[KindOf(state)] > LazyStates; });
}

void TurnLattice::Expand(const PathState& from, std::uint32_t place, const Target& target,
                         bool isApproach) {
  const double most = isApproach ? MaxApproachTurns : mode_ == Mode::Complete ? MaxTurns : 0.0;
  if (!isApproach && ExpandSingle(from, place, target)) {
    return;
  }
  const Answer& answer = *target.answer;
  const bool isTravel = measure_->kind == MeasureKind::Travel;
  const double fixed = FixedCost(from, answer);
  const double before =
      from.cost + (from.branch * answer.branch < 0 ? measure_->branchChangeCost : 0.0);
  ListTurns(0, target, from, most, &lists_[0]);
  ListTurns(1, target, from, most, &lists_[1]);
  PathState to;
  to.previous = place;
  to.values = answer.values;
  to.branch = answer.branch;
  PathStep step;
  step.kind = target.kind;
  // The lists go from near to far, so costs grow along them: behind the first that is too high, all
  // are.
  for (std::size_t a = 0; a < lists_[0].turns.size(); ++a) {
    const double turnA = lists_[0].turns[a];
    to.values[FirstRotary] = answer.values[FirstRotary] + 360.0 * turnA;
    step.turns[0] = static_cast<int>(turnA - lists_[0].nearest);
    for (std::size_t b = 0; b < lists_[1].turns.size(); ++b) {
      const double move = isTravel ? fixed + (lists_[0].cost[a] + lists_[1].cost[b])
                                   : std::max({fixed, lists_[0].cost[a], lists_[1].cost[b]});
      const bool isUnwind = lists_[0].isUnwind[a] || lists_[1].isUnwind[b];
      to.cost = isApproach ? from.cost : before + move + (isUnwind ? measure_->unwindingCost : 0.0);
      if (to.cost > target.bound) {
        if (b == 0) {
          return;
        }
        break;
      }
      const double turnB = lists_[1].turns[b];
      std::uint32_t* const slot = FindSlot(target, turnA, turnB);
      if (slot != nullptr && *slot != 0 && next_[*slot - 1].cost <= to.cost) {
        continue;
      }
      to.values[FirstRotary + 1] = answer.values[FirstRotary + 1] + 360.0 * turnB;
      step.turns[1] = static_cast<int>(turnB - lists_[1].nearest);
      to.choice = step.Pack();
      Keep(to, slot);
    }
  }
}

// With the free axis held, the other one goes to the nearest turn; where all turns count, to the
// others as well. False where the axis can't be held.
bool TurnLattice::ExpandHeld(PointSolver& solver, const ToolPoint& point, std::uint32_t place,
                             bool isApproach, double bound) {
  const PathState& from = states_[place];
  const bool isRelaxed = mode_ == Mode::Relaxed;
  PathState held;
  double deviation = 0.0;
  if (!HoldState(solver, point, from, {isRelaxed && isFree_[0], isRelaxed && isFree_[1]}, &held,
                 &deviation)) {
    return false;
  }
  held.previous = place;
  const std::size_t other = 2 * FirstRotary + 1 - static_cast<std::size_t>(solver.GetFreeAxis());
  PathStep step;
  step.kind = PathStep::Held;
  const auto keep = [&](int turns) {
    PathState to = held;
    step.turns[other - FirstRotary] = turns;
    TurnHeld(solver, step, &to);
    if (turns != 0 && ExcessOf(axes_->axes[other], to.values[other]) != 0.0) {
      return false;
    }
    to.choice = step.Pack();
    to.cost = from.cost + (isApproach ? 0.0 : CostOfMove(*measure_, from, to.values, to.branch));
    if (to.cost > bound) {
      return false;
    }
    Keep(to, nullptr);
    return true;
  };
  keep(0);
  if (isBounded_[other - FirstRotary] && (mode_ == Mode::Complete || (isApproach && !isRelaxed))) {
    const int most = static_cast<int>(isApproach ? MaxApproachTurns : MaxTurns);
    for (int turns = 1; turns <= most && keep(turns);) {
      ++turns;
    }
    for (int turns = 1; turns <= most && keep(-turns);) {
      ++turns;
    }
  }
  return true;
}

void TurnLattice::Step(PointSolver& solver, const ToolPoint& point, const Answers& answers,
                       bool isHeld, bool isApproach, const TurnLattice* relaxed, double excess) {
  next_.clear();
  FindTargets(answers, isApproach, relaxed, excess);
  const double heldBound = isHeld && relaxed != nullptr && !isApproach
                               ? relaxed->BoundOf(PathStep::Held, excess)
                               : std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < states_.size(); ++i) {
    const auto place = static_cast<std::uint32_t>(i);
    if (isHeld && ExpandHeld(solver, point, place, isApproach, heldBound)) {
      continue;
    }
    for (const Target& target : targets_) {
      Expand(states_[i], place, target, isApproach);
    }
  }
  if (next_.empty()) {
    // No answer: all stays where it is.
    next_ = states_;
    PathStep step;
    for (std::size_t i = 0; i < next_.size(); ++i) {
      next_[i].previous = static_cast<std::uint32_t>(i);
      next_[i].choice = step.Pack();
    }
  }
  KeepFew();
  states_.swap(next_);
}

}  // namespace Orvo::Path
