#pragma once

#include <Orvo/Path/Diagnosis.h>
#include <Orvo/Path/MainAxes.h>
#include <Orvo/Path/PointSolver.h>
#include <Orvo/Path/ToolPoint.h>
#include <Orvo/Vector3D.h>

#include <array>
#include <cstdint>
#include <map>
#include <vector>

namespace Orvo::Path {

/// What came out for one point of a path.
struct SolvedPoint {
  /// The place in the path, from 0. Inserted points have that of the point behind them.
  std::uint64_t index = 0;

  /// What was asked for.
  ToolPoint target;

  /// The axis values by place; those of the point before where there is no answer.
  AxisValues values = {};

  /// Whether there is an answer within all ranges.
  bool isSolved = false;

  /// Whether the point was inserted between two points of the path.
  bool isInserted = false;

  /// Whether the free axis was held or interpolated here.
  bool isHeld = false;

  /// Whether the move to this point goes over to the other branch of rotary solutions.
  bool isBranchChange = false;

  /// Whether the move to this point turns a rotary axis by more than half a turn.
  bool isUnwinding = false;

  /// The branch, see Answer::branch.
  int branch = 0;

  /// By how much the direction was left for the sake of a held axis, in radians.
  double deviation = 0.0;

  /// What the move to this point costs, by the measure of the options.
  double cost = 0.0;

  /// What forward kinematics leaves; 0 where it was not asked for or there is no answer.
  Residual residual;

  /// On the move to this point, while all axes move evenly: the largest distance of the tip from
  /// the straight line; 0 where it was not asked for.
  double tipDeviation = 0.0;

  /// The same for the direction: the largest angle, in radians, from the plane of turn between its
  /// two ends.
  double directionDeviation = 0.0;

  /// The inverse of the time of the move to this point, in 1 / minute: that of the tip's way at the
  /// feed, or longer where an axis needs longer at its speed. 0 for the first point that has an
  /// answer, for a rapid move, and where nothing moves or no feed is known.
  double inverseTime = 0.0;

  /// Why there is no answer, and what to know of the one there is. Empty when all is well.
  std::vector<Diagnosis> diagnoses;
};

/// What came out for a path as a whole.
struct PathSummary {
  std::uint64_t pointNb = 0;         ///< of the path
  std::uint64_t solvedNb = 0;        ///< with an answer within all ranges
  std::uint64_t insertedNb = 0;      ///< inserted between them
  std::uint64_t heldNb = 0;          ///< where the free axis was held or interpolated
  std::uint64_t branchChangeNb = 0;  ///< moves to the other branch
  std::uint64_t unwindingNb = 0;     ///< moves by more than half a turn
  double cost = 0.0;  ///< the sum over all moves, that from the start included unless it is free
  AxisValues travel = {};    ///< by place: the sum of the moves between solved points
  AxisValues smallest = {};  ///< by place, of solved points
  AxisValues largest = {};   ///< by place, of solved points
  Residual largestResidual;  ///< of solved points; the direction's where none deviates on purpose
  double largestDeviation = 0.0;           ///< of held points, in radians
  double largestTipDeviation = 0.0;        ///< between points, of what was output
  double largestDirectionDeviation = 0.0;  ///< in radians

  /// How many points have a diagnosis, by its code.
  std::map<DiagnosisCode, std::uint64_t> diagnosisNb;

  /// Whether linear ranges alone keep points from having an answer, and moving the workpiece brings
  /// all of them in with the rotary values that were chosen: those of the answer that is out by the
  /// least where there is none in range. Other rotary values may allow a shift where there is none.
  bool hasShift = false;

  /// The shortest such shift, in the table's frame; to be added to each point.
  Vector3D shift;
};

}  // namespace Orvo::Path
