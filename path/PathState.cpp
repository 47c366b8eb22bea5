#include "path/PathState.h"

#include "path/Turns.h"

#include <algorithm>
#include <cmath>

namespace Orvo::Path {
namespace {

/// Half a turn, and what rounding may add to it.
constexpr double HalfTurn = 180.0 + 1e-9;

}  // namespace

double NearestTurns(double deg, double referenceDeg) {
  const double turns = (referenceDeg - deg) / 360.0 + 0.5;
  constexpr double largest = 1e15;
  if (!(std::abs(turns) < largest)) {
    return std::floor(turns);
  }
  // As floor, without the call that it is on processors without that instruction.
  const auto whole = static_cast<double>(static_cast<std::int64_t>(turns));
  return whole > turns ? whole - 1.0 : whole;
}

bool IsUnwinding(const AxisValues& from, const AxisValues& to) {
  return std::abs(to[FirstRotary] - from[FirstRotary]) > HalfTurn ||
         std::abs(to[FirstRotary + 1] - from[FirstRotary + 1]) > HalfTurn;
}

double CostOfMove(const PathMeasure& measure, const PathState& from, const AxisValues& to,
                  int branch) {
  double cost = 0.0;
  if (measure.kind == MeasureKind::Travel) {
    for (std::size_t i = 0; i < MainAxisNb; ++i) {
      cost += measure.weights[i] * std::abs(to[i] - from.values[i]);
    }
  } else {
    for (std::size_t i = 0; i < MainAxisNb; ++i) {
      cost = std::max(cost, std::abs(to[i] - from.values[i]) / measure.speeds[i]);
    }
  }
  if (from.branch * branch < 0) {
    cost += measure.branchChangeCost;
  }
  if (IsUnwinding(from.values, to)) {
    cost += measure.unwindingCost;
  }
  return cost;
}

bool HoldState(PointSolver& solver, const ToolPoint& point, const PathState& from,
               const std::array<bool, 2>& isEndless, PathState* to, double* deviation) {
  const int freeAxis = solver.GetFreeAxis();
  if (freeAxis < 0) {
    return false;
  }
  const auto held = static_cast<std::size_t>(freeAxis);
  const std::size_t other = 2 * FirstRotary + 1 - held;
  // The equivalent nearest to a reference that the range has; false where it has none.
  const auto bringIn = [&](std::size_t place, double turns, double* deg) {
    const MainAxis& axis = solver.GetAxes().axes[place];
    if (axis.isPresent && axis.isChecked && !isEndless[place - FirstRotary]) {
      const Turns range = TurnsInRange(axis, *deg);
      if (range.IsEmpty()) {
        return false;
      }
      turns = std::clamp(turns, range.first, range.last);
    }
    *deg += 360.0 * turns;
    return true;
  };
  double heldDeg = from.values[held];
  if (!bringIn(held, 0.0, &heldDeg)) {
    const MainAxis& axis = solver.GetAxes().axes[held];
    heldDeg = std::fmin(std::fmax(heldDeg, axis.min), axis.max);
    if (ExcessOf(axis, heldDeg) != 0.0) {
      return false;
    }
  }
  Answer answer;
  if (!solver.SolveHeld(point, heldDeg, &answer) || !answer.isLinearInRange ||
      !bringIn(other, NearestTurns(answer.values[other], from.values[other]),
               &answer.values[other])) {
    return false;
  }
  to->values = answer.values;
  to->branch = 0;
  *deviation = answer.directionError;
  return true;
}

void TurnHeld(const PointSolver& solver, const PathStep& step, PathState* state) {
  const std::size_t other = 2 * FirstRotary + 1 - static_cast<std::size_t>(solver.GetFreeAxis());
  state->values[other] += 360.0 * step.turns[other - FirstRotary];
}

void TakeStep(const MainAxes& axes, const Answers& answers, const PathStep& step,
              const PathState& from, PathState* to) {
  const Answer& answer = answers.answers[step.kind == PathStep::Second ? 1 : 0];
  to->values = answer.values;
  to->branch = answer.branch;
  for (std::size_t i = 0; i < 2; ++i) {
    const std::size_t place = FirstRotary + i;
    if (axes.axes[place].isPresent) {
      to->values[place] += 360.0 * (NearestTurns(answer.values[place], from.values[place]) +
                                    static_cast<double>(step.turns[i]));
    }
  }
}

}  // namespace Orvo::Path
