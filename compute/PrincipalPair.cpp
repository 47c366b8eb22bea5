#include "compute/PrincipalPair.h"

#include "compute/RotaryTolerances.h"
#include "geometry/AngleKernel.h"

#include <cmath>
#include <optional>

namespace Orvo::Kin {

namespace {

// The root of the square of a number this large is the number itself (Boldo, "Stupid is as Stupid
// Does: Taking the Square Root of the Square of a Floating-Point Number", 2015).
constexpr double SmallestToSquare = 1e-140;

bool IsRootOfSquare(double x) { return !(std::fabs(x) < SmallestToSquare) || x == 0.0; }

// Returns an angle of 0 or more with its sign turned around where a number is below 0; that of -0
// isn't.
double WithSignOf(double number, double angle) { return std::copysign(angle, number + 0.0); }

/// One of X, Y and Z, as it is or reversed.
struct ExactAxis {
  Direction direction;
  double sign;
};

std::optional<ExactAxis> FindExactAxis(const Vector3D& v) {
  for (const Direction d : {X, Y, Z}) {
    if (std::fabs(v[d]) == 1.0 && v[(d + 1) % 3] == 0.0 && v[(d + 2) % 3] == 0.0) {
      return ExactAxis{d, v[d]};
    }
  }
  return std::nullopt;
}

}  // namespace

PrincipalPair::PrincipalPair(const Vector3D& axis1, const Vector3D& axis2, const Vector3D& tool) {
  const std::optional<ExactAxis> first = FindExactAxis(axis1);
  const std::optional<ExactAxis> second = FindExactAxis(axis2);
  const std::optional<ExactAxis> toolAxis = FindExactAxis(tool);
  if (!first || !second || !toolAxis || first->direction == second->direction ||
      first->direction == toolAxis->direction) {
    return;
  }
  isUsable_ = true;
  along1_ = first->direction;
  along2_ = second->direction;
  across_ = static_cast<Direction>(X + Y + Z - along1_ - along2_);
  isToolAlongAxis2_ = toolAxis->direction == along2_;
  axis1Sign_ = first->sign;
  toolSign_ = toolAxis->sign;
  // The sign of what axis2 crosses axis1 to.
  const double handedness = (along1_ + 1) % 3 == across_ ? 1.0 : -1.0;
  tip1Sign_ = axis1Sign_ * second->sign * handedness;
  alpha1Sign_ = isToolAlongAxis2_ ? -toolSign_ * second->sign : axis1Sign_ * toolSign_ * handedness;
}

bool PrincipalPair::Solve(RequestedDirection target, RotaryAngles* angles) const {
  if (!isUsable_ || target.length < SmallestRequest) {
    return false;
  }
  const double reach = target.given[along1_] / target.length;
  const double side = target.given[across_] / target.length;
  const double height = target.given[along2_] / target.length;
  if (!(std::fabs(height) < 1.0 - TangentInnerTolerance)) {
    return false;
  }

  // The tips stand as high as the target, half a chord to either side.
  const double halfChord = std::sqrt(1.0 - height * height);
  const double tipLength = std::sqrt(halfChord * halfChord + height * height);
  const double armLength = std::sqrt(reach * reach + side * side);
  if (!(armLength >= UnitDirection::Shortest) ||
      (std::fabs(reach) < SameDirectionTolerance &&
       std::fabs(tip1Sign_ * halfChord - side) < SameDirectionTolerance)) {
    return false;
  }
  const double unitReach = reach / armLength;
  const double unitSide = tip1Sign_ * (side / armLength);
  const double unitChord = halfChord / tipLength;
  const double unitHeight = height / tipLength;
  if (!IsRootOfSquare(unitReach) || !IsRootOfSquare(unitHeight)) {
    return false;
  }

  // From a tip to the target; the tips are seen from axis2 in opposite directions.
  const double turn = -axis1Sign_ * unitReach;
  const double size = std::fabs(turn);
  const double beta1 = std::atan2(size, unitSide);
  const double beta2 = std::atan2(size, -unitSide);
  RotaryAngles found;
  found.beta[0] = WithSignOf(turn, beta1);
  found.beta[1] = WithSignOf(-turn, beta2);

  // From the tool to a tip.
  if (isToolAlongAxis2_) {
    found.alpha[0] = alpha1Sign_ * std::atan2(unitChord, toolSign_ * unitHeight);
    found.alpha[1] = -found.alpha[0];
  } else {
    const double rise = alpha1Sign_ * unitHeight;
    const double cosine1 = toolSign_ * tip1Sign_ * unitChord;
    const double alpha1 = std::atan2(std::fabs(rise), cosine1);
    const double alpha2 = std::atan2(std::fabs(rise), -cosine1);
    found.alpha[0] = WithSignOf(rise, alpha1);
    found.alpha[1] = WithSignOf(rise, alpha2);
  }
  found.count = AreTwoSolutions(found) ? 2 : 1;
  *angles = found;
  return true;
}

}  // namespace Orvo::Kin
