#pragma once

#include <Orvo/Path/MainAxes.h>

#include <cstddef>

namespace Orvo::Path {

/// How answers are chosen along a path.
enum class PathChoice : int {
  /// Each point by itself, nearest to the one before, as the program system's policy says: the
  /// smallest sum of rotary moves in degrees; under "ShortestWay" by whole turns wherever the
  /// ranges allow, under the other policies without turns where the ranges allow that.
  Greedy = 0,
  /// The path as a whole: the smallest sum of the measure over all moves, among both solutions and
  /// all their equivalents by whole turns within the ranges.
  Optimal = 1
};

/// What a move costs.
enum class MeasureKind : int {
  Travel = 0,  ///< the sum of the moves of the axes, each times its weight
  Time = 1     ///< the time of the axis that takes longest at its speed
};

/// What a whole path is measured by. All numbers are 0 or more.
struct PathMeasure {
  /// What a move costs.
  MeasureKind kind = MeasureKind::Travel;

  /// By place of the axes, for Travel: the cost of one unit of length or one degree.
  AxisValues weights = {1.0, 1.0, 1.0, 1.0, 1.0};

  /// By place, for Time: units of length or degrees per minute; above 0. Costs then are in minutes.
  AxisValues speeds = {10000.0, 10000.0, 10000.0, 10000.0, 10000.0};

  /// The cost of going over to the other branch of rotary solutions. Moves through a singular
  /// direction on which a point lies are none.
  double branchChangeCost = 0.0;

  /// The cost of a move that turns a rotary axis by more than half a turn. A very large one forbids
  /// such moves as far as the ranges let it. This cost and the one above count as 1e9 at most.
  double unwindingCost = 0.0;
};

/// What the free axis does in a singular stretch: where the direction is within a cone around the
/// one along which that axis may have any value.
enum class SingularRule : int {
  Hold = 0,        ///< it keeps the value that it has
  Interpolate = 1  ///< it goes evenly, by points, to the value that it needs behind the stretch
};

/// What is looked at, or done, between the points.
struct SegmentOptions {
  /// Whether the largest deviation of each move from the straight connection is computed.
  bool isChecked = false;

  /// Whether points are inserted until the deviations keep within the tolerances.
  bool isRefined = false;

  double tipTolerance = 0.01;          ///< in the machine's unit of length
  double directionToleranceDeg = 0.1;  ///< in degrees
  int maxDepth = 12;                   ///< a move is halved so often at most
};

/// How a path is solved.
struct PathOptions {
  /// How answers are chosen.
  PathChoice choice = PathChoice::Optimal;

  /// What Optimal minimizes, and what costs are counted in.
  PathMeasure measure;

  /// Half the opening of the cone of singular stretches, in degrees. With 0, only directions along
  /// the axis itself count, within 1e-12 radian; no direction deviates then.
  double singularConeDeg = 0.0;

  /// What the free axis does there.
  SingularRule singularRule = SingularRule::Hold;

  /// A move to a direction within this angle of the singular one, in degrees, ...
  double nearSingularDeg = 2.0;

  /// ... that turns the free axis by more than this, in degrees, is reported as near singular.
  double nearSingularTurnDeg = 45.0;

  /// Whether the way from the start position to the first point that has an answer costs nothing.
  /// Up to 64 equivalents of each rotary axis are then tried there. In a singular direction the
  /// free axis is held all the same.
  bool isStartFree = false;

  /// Whether each point is put through forward kinematics.
  bool hasResiduals = true;

  /// What is done between the points.
  SegmentOptions segments;

  /// How many threads work; 0 is as many as the machine runs at once. The results do not depend on
  /// it.
  unsigned int threadNb = 0;

  /// How many points are worked on together.
  std::size_t blockPoints = 16384;

  /// How many bytes may be kept of what was computed before; beyond it is computed again.
  std::size_t cacheBytes = std::size_t{256} << 20U;
};

}  // namespace Orvo::Path
