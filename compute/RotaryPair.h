#pragma once

#include "compute/RequestedDirection.h"
#include "compute/RotaryAngles.h"
#include "geometry/Coordinates.h"

#include <Orvo/Vector3D.h>

namespace Orvo::Kin {

/// Two rotary axes and a tool direction, with what SolveTwoRotaries() derives from them alone.
class RotaryPair {
 public:
  RotaryPair() = default;

  /// Takes the axes as SolveTwoRotaries() has them, axis1 nearer the tool.
  RotaryPair(const Vector3D& axis1, const Vector3D& axis2, const Vector3D& tool);

  /// Solves for a target as SolveTwoRotaries() does, bit for bit. Returns false, without angles,
  /// near every threshold but those that tell whether the target can be reached at all and whether
  /// the two solutions differ: SolveTwoRotaries() decides there.
  bool Solve(RequestedDirection target, RotaryAngles* angles) const;

 private:
  bool isUsable_ = false;
  Coordinates1 axis1_{};
  Coordinates1 axis2_{};
  Coordinates1 tool_{};

  // The circle of the tool's tip about axis1, with the unit vectors of its plane.
  Coordinates1 center_{};
  double radius_ = 0.0;
  Coordinates4 radiusDirs_;  // from the center to the tool's tip, four times
  Coordinates4 axes_;        // axis1 and axis2, each twice
  Coordinates1 u_{};
  Coordinates1 v_{};

  // In the plane across axis2: the way to the circle's plane.
  Coordinates1 wayToCircle_{};
  double slopeOfWay_ = 0.0;
  double centerAlongAxis1_ = 0.0;

  // The line in which the two planes meet, in the plane of the circle.
  double chordX_ = 0.0;
  double chordY_ = 0.0;

  double axis2Square_ = 0.0;
  double originAlongAxis2_ = 0.0;
};

}  // namespace Orvo::Kin
