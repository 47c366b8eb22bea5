#pragma once

#include <Orvo/Path/MainAxes.h>
#include <Orvo/Path/PathOptions.h>
#include <Orvo/Path/PointSolver.h>
#include <Orvo/Path/SolvedPoint.h>

#include <vector>

namespace Orvo::Path {

/// How far the tool leaves the straight connection of two points while all axes move evenly.
struct SegmentDeviation {
  double tip = 0.0;        ///< largest distance from the straight line between the ends
  double direction = 0.0;  ///< largest angle from the plane of turn between the ends, in radians
};

/// Where a move begins: all that it takes of the point before it. Points that lie side by side are
/// finished by several threads at once, so that the rest of that point may be changing.
struct MoveStart {
  explicit MoveStart(const SolvedPoint& point) : target(point.target), values(point.values) {}

  ToolPoint target;
  AxisValues values;
};

/// Computes the largest deviations of a move: sampled every 5 degrees of the rotary axes at least,
/// then searched around the largest samples, to within a thousandth of them; a hundredth for
/// directions beyond 90 degrees, where the nearer end of the connection changes at once.
SegmentDeviation ComputeDeviation(PointSolver& solver, const AxisValues& from,
                                  const AxisValues& to);

/// Computes points between two solved ones until the deviations keep within the tolerances, as far
/// as the depth allows; in their order. The largest deviations that are left come out.
std::vector<SolvedPoint> Refine(PointSolver& solver, const PathOptions& options,
                                const MoveStart& from, const SolvedPoint& to,
                                SegmentDeviation* left);

/// Computes the inverse of the time of a move, in 1 / minute; 0 where there is none.
double ComputeInverseTime(const PathMeasure& measure, const MoveStart& from, const SolvedPoint& to);

}  // namespace Orvo::Path
