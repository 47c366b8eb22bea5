#pragma once

#include <Orvo/Kin/Register.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Vector3D.h>

namespace Orvo::Kin {

/// Two rotary axes and a tool direction, with what SolveTwoRotaries() derives from them alone.
class RotaryPair {
 public:
  RotaryPair() = default;

  /// Takes the axes as SolveTwoRotaries() has them, axis1 nearer the tool.
  RotaryPair(const Vector3D& axis1, const Vector3D& axis2, const Vector3D& tool);

  /// Solves for a target as SolveTwoRotaries() does, bit for bit, into a solution as it is made.
  /// Returns false, and leaves the solution alone, for axes and targets that only that one takes.
  bool Solve(const Vector3D& target, const Register& register2, RotariesSolution* sol) const;

 private:
  bool isUsable_ = false;
  Vector3D axis1_;
  Vector3D axis2_;
  Vector3D tool_;

  // The circle of the tool's tip about axis1, with the unit vectors of its plane.
  Vector3D center_;
  double radius_ = 0.0;
  bool hasRadius_ = false;
  Vector3D radiusDir_;  // from the center to the tool's tip
  Vector3D u_;
  Vector3D v_;

  // In the plane across axis2: the way to the circle's plane.
  Vector3D wayToCircle_;
  double slopeOfWay_ = 0.0;
  double centerAlongAxis1_ = 0.0;

  // The line in which the two planes meet, in the plane of the circle.
  double chordX_ = 0.0;
  double chordY_ = 0.0;

  double axis2Square_ = 0.0;
  double originAlongAxis2_ = 0.0;
};

}  // namespace Orvo::Kin
