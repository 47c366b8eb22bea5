#include "path/TurnLattice.h"

#include "path/Turns.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace Orvo::Path {
namespace {

/// Of each axis, so many equivalents around the nearest one are taken at most.
constexpr double MaxTurns = 512.0;
constexpr double MaxApproachTurns = 32.0;

/// Up to so many states are told apart by looking at all of them.
constexpr std::size_t FewStates = 16;

/// Two ways round are equally long when they differ by less, in turns.
constexpr double SameTurn = 1e-12;

std::uint64_t KeyOf(const PathState& state) {
  std::uint64_t bits[2];
  std::memcpy(bits, &state.values[FirstRotary], sizeof bits);
  const std::uint64_t kind = state.choice >> 30U;
  return (bits[0] * 0x9E3779B97F4A7C15ULL) ^ ((bits[1] << 1U) * 0xC2B2AE3D27D4EB4FULL + kind);
}

bool IsSamePlace(const PathState& a, const PathState& b) {
  return (a.choice >> 30U) == (b.choice >> 30U) && a.values[FirstRotary] == b.values[FirstRotary] &&
         a.values[FirstRotary + 1] == b.values[FirstRotary + 1];
}

}  // namespace

TurnLattice::TurnLattice(const MainAxes& axes, const PathMeasure& measure, Mode mode)
    : axes_(&axes), measure_(&measure), mode_(mode) {}

std::size_t TurnLattice::FindBest() const {
  std::size_t best = 0;
  for (std::size_t i = 1; i < states_.size(); ++i) {
    best = states_[i].cost < states_[best].cost ? i : best;
  }
  return best;
}

void TurnLattice::ListTurns(std::size_t axis, double deg, double referenceDeg, double most,
                            TurnList* list) const {
  const MainAxis& bounds = axes_->axes[axis];
  list->taken.clear();
  const double turns = (referenceDeg - deg) / 360.0;
  list->nearest = NearestTurns(deg, referenceDeg);
  if (mode_ == Mode::Relaxed || !bounds.isPresent || !bounds.isChecked) {
    list->taken.push_back(bounds.isPresent ? list->nearest : 0.0);
    return;
  }
  const Turns range = TurnsInRange(bounds, deg);
  if (mode_ == Mode::Plain && range.first <= 0.0 && range.last >= 0.0) {
    list->taken.push_back(0.0);
    return;
  }
  const double first = std::clamp(list->nearest, range.first, range.last);
  list->taken.push_back(first);
  const bool isForced = first != list->nearest;
  if (most == 0.0 && !isForced) {
    // Exactly half a turn away on both sides.
    const double other = 2.0 * turns - list->nearest;
    if (std::abs(std::abs(turns - list->nearest) - 0.5) < SameTurn) {
      const double rounded = std::floor(other + 0.5);
      if (rounded >= range.first && rounded <= range.last) {
        list->taken.push_back(rounded);
      }
    }
    return;
  }
  const double side = turns >= first ? 1.0 : -1.0;
  const double last = most > 0.0 ? most : MaxTurns;
  for (double step = 1.0; step <= last; step += 1.0) {
    const double nearer = first + side * step;
    const double farther = first - side * step;
    const bool hasNearer = nearer >= range.first && nearer <= range.last;
    const bool hasFarther = farther >= range.first && farther <= range.last;
    if (hasNearer) {
      list->taken.push_back(nearer);
    }
    if (hasFarther) {
      list->taken.push_back(farther);
    }
    if (!hasNearer && !hasFarther) {
      break;
    }
  }
}

void TurnLattice::Keep(const PathState& state) {
  std::size_t place = next_.size();
  if (mode_ == Mode::Relaxed && (state.choice >> 30U) != PathStep::Held) {
    // Without ranges it does not matter in which turn an answer stands.
    for (std::size_t i = 0; i < next_.size(); ++i) {
      place = (next_[i].choice >> 30U) == (state.choice >> 30U) ? i : place;
    }
  } else if (next_.size() <= FewStates) {
    for (std::size_t i = 0; i < next_.size(); ++i) {
      place = IsSamePlace(next_[i], state) ? i : place;
    }
  } else {
    if (placeOf_.empty()) {
      for (std::size_t i = 0; i < next_.size(); ++i) {
        placeOf_.emplace(KeyOf(next_[i]), static_cast<std::uint32_t>(i));
      }
    }
    const auto found = placeOf_.find(KeyOf(state));
    if (found != placeOf_.end() && IsSamePlace(next_[found->second], state)) {
      place = found->second;
    } else {
      placeOf_.emplace(KeyOf(state), static_cast<std::uint32_t>(place));
    }
  }
  if (place == next_.size()) {
    next_.push_back(state);
  } else if (state.cost < next_[place].cost) {
    next_[place] = state;
  }
}

double TurnLattice::BoundOf(std::uint32_t kind, double excess) const {
  double cost = std::numeric_limits<double>::infinity();
  for (const PathState& state : states_) {
    if ((state.choice >> 30U) == kind) {
      cost = std::min(cost, state.cost);
    }
  }
  return cost + excess;
}

void TurnLattice::Expand(const PathState& from, std::uint32_t place, const Answers& answers,
                         bool isApproach, const TurnLattice* relaxed, double excess) {
  const double most = isApproach ? MaxApproachTurns : mode_ == Mode::Complete ? MaxTurns : 0.0;
  PathState to;
  to.previous = place;
  for (int s = 0; s < answers.count; ++s) {
    const Answer& answer = answers.answers[static_cast<std::size_t>(s)];
    if (!answer.IsInRange()) {
      continue;
    }
    PathStep step;
    step.kind = s == 0 ? PathStep::First : PathStep::Second;
    const double bound = relaxed != nullptr && !isApproach
                             ? relaxed->BoundOf(step.kind, excess)
                             : std::numeric_limits<double>::infinity();
    to.values = answer.values;
    to.branch = answer.branch;
    for (std::size_t i = 0; i < 2; ++i) {
      ListTurns(FirstRotary + i, answer.values[FirstRotary + i], from.values[FirstRotary + i], most,
                &lists_[i]);
    }
    // The lists go from near to far, so costs grow along them: behind the first that is too high,
    // all are.
    for (const double a : lists_[0].taken) {
      to.values[FirstRotary] = answer.values[FirstRotary] + 360.0 * a;
      step.turns[0] = static_cast<int>(a - lists_[0].nearest);
      bool isAnyKept = false;
      for (const double b : lists_[1].taken) {
        to.values[FirstRotary + 1] = answer.values[FirstRotary + 1] + 360.0 * b;
        step.turns[1] = static_cast<int>(b - lists_[1].nearest);
        to.cost =
            from.cost + (isApproach ? 0.0 : CostOfMove(*measure_, from, to.values, answer.branch));
        if (to.cost > bound) {
          break;
        }
        isAnyKept = true;
        to.choice = step.Pack();
        Keep(to);
      }
      if (!isAnyKept) {
        break;
      }
    }
  }
}

void TurnLattice::Step(PointSolver& solver, const ToolPoint& point, const Answers& answers,
                       bool isHeld, bool isApproach, const TurnLattice* relaxed, double excess) {
  next_.clear();
  placeOf_.clear();
  for (std::size_t i = 0; i < states_.size(); ++i) {
    PathState to;
    double deviation = 0.0;
    const auto place = static_cast<std::uint32_t>(i);
    if (isHeld && HoldState(solver, point, states_[i], &to, &deviation)) {
      to.previous = place;
      PathStep step;
      step.kind = PathStep::Held;
      to.choice = step.Pack();
      to.cost = states_[i].cost +
                (isApproach ? 0.0 : CostOfMove(*measure_, states_[i], to.values, to.branch));
      Keep(to);
    } else {
      Expand(states_[i], place, answers, isApproach, relaxed, excess);
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
  states_.swap(next_);
}

}  // namespace Orvo::Path
