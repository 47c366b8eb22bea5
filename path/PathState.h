#pragma once

#include <Orvo/Path/MainAxes.h>
#include <Orvo/Path/PathOptions.h>
#include <Orvo/Path/PointSolver.h>

#include <array>
#include <cstdint>

namespace Orvo::Path {

/// Where the axes may stand at a point of a path, and what it costs to get there.
struct PathState {
  double cost = 0.0;
  AxisValues values = {};
  int branch = 0;
  std::uint32_t previous = 0;  ///< the place among the states of the point before
  std::uint32_t choice = 0;    ///< see PathStep
};

/// What was taken at a point, in 32 bits, relative to the state before it.
struct PathStep {
  /// First and second answer, the held one, none.
  enum Kind : std::uint32_t { First = 0, Second = 1, Held = 2, None = 3 };

  Kind kind = None;

  /// Of each rotary axis, beyond the equivalent nearest to the state before; for a held answer,
  /// beyond the nearest one in range.
  int turns[2] = {0, 0};

  std::uint32_t Pack() const {
    return (static_cast<std::uint32_t>(kind) << 30U) |
           ((static_cast<std::uint32_t>(turns[0] + TurnBias) & TurnMask) << 15U) |
           (static_cast<std::uint32_t>(turns[1] + TurnBias) & TurnMask);
  }
  static PathStep Unpack(std::uint32_t bits) {
    PathStep step;
    step.kind = static_cast<Kind>(bits >> 30U);
    step.turns[0] = static_cast<int>((bits >> 15U) & TurnMask) - TurnBias;
    step.turns[1] = static_cast<int>(bits & TurnMask) - TurnBias;
    return step;
  }

  static constexpr int TurnBias = 16384;
  static constexpr std::uint32_t TurnMask = 0x7FFF;
};

/// Returns the whole turns that bring a rotary value nearest to a reference, both in degrees.
double NearestTurns(double deg, double referenceDeg);

/// Returns what a move costs.
double CostOfMove(const PathMeasure& measure, const PathState& from, const AxisValues& to,
                  int branch);

/// Tells whether a move turns a rotary axis by more than half a turn.
bool IsUnwinding(const AxisValues& from, const AxisValues& to);

/// Computes the state with the free axis held: where it stands before, within its range. False
/// where the other axes leave their ranges then.
/// @param isEndless  for each rotary axis, whether its range leaves every angle, and the turn in
///   which that stands doesn't count
bool HoldState(PointSolver& solver, const ToolPoint& point, const PathState& from,
               const std::array<bool, 2>& isEndless, PathState* to, double* deviation);

/// Moves a state that HoldState() gave by the whole turns that a step says, of the axis that isn't
/// held.
void TurnHeld(const PointSolver& solver, const PathStep& step, PathState* state);

/// Computes the values that a step leads to; cost and previous stay as they are.
void TakeStep(const MainAxes& axes, const Answers& answers, const PathStep& step,
              const PathState& from, PathState* to);

}  // namespace Orvo::Path
