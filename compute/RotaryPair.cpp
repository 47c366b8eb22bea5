#include "compute/RotaryPair.h"

#include "compute/RotaryTolerances.h"
#include "geometry/AngleKernel.h"
#include "geometry/VectorKernel.h"

#include <Orvo/Matrix43.h>

#include <cmath>

namespace Orvo::Kin {

namespace {

// Two tips on the circle that are closer than this, by component, are one.
constexpr double SamePointTolerance = 0.00001;

bool IsWithin(const Coordinates1& a, const Coordinates1& b, double tol) {
  return std::fabs(a.x - b.x) < tol && std::fabs(a.y - b.y) < tol && std::fabs(a.z - b.z) < tol;
}

}  // namespace

RotaryPair::RotaryPair(const Vector3D& axis1, const Vector3D& axis2, const Vector3D& tool)
    : axis1_(LoadCoordinates(axis1)), axis2_(LoadCoordinates(axis2)), tool_(LoadCoordinates(tool)) {
  const Vector3D center = Times(axis1, Dot(axis1, tool));
  const UnitDirection radius(Minus(tool, center));
  center_ = LoadCoordinates(center);
  radius_ = radius.length;
  const Coordinates1 radiusDir = LoadCoordinates(radius.dir);
  radiusDirs_ = Gather(radiusDir, radiusDir, radiusDir, radiusDir);
  axes_ = Gather(axis1_, axis1_, axis2_, axis2_);
  Matrix43 circleFrame;
  circleFrame.MakeAxisW(axis1);
  u_ = LoadCoordinates(circleFrame.GetU());
  v_ = LoadCoordinates(circleFrame.GetV());
  Vector3D chord = Cross(axis2, axis1);
  const Vector3D wayToCircle = Cross(axis2, chord);
  wayToCircle_ = LoadCoordinates(wayToCircle);
  slopeOfWay_ = Dot(wayToCircle, axis1);
  centerAlongAxis1_ = Dot(axis1, center);
  chord.MakeUnit(SmallestRequest);
  chordX_ = Dot(LoadCoordinates(chord), u_);
  chordY_ = Dot(LoadCoordinates(chord), v_);
  axis2Square_ = Dot(axis2, axis2);
  originAlongAxis2_ = Dot(axis2, NullVector);
  isUsable_ = radius.HasAngle() && !axis2.IsColinear(axis1, PlanePlaneTolerance, nullptr) &&
              std::fabs(slopeOfWay_) >= PlanePlaneTolerance &&
              std::fabs(axis2Square_) >= LinePlaneTolerance;
}

bool RotaryPair::Solve(RequestedDirection target, RotaryAngles* angles) const {
  if (!isUsable_ || target.length < SmallestRequest) {
    return false;
  }
  const Coordinates1 unitTarget = DividedBy(LoadCoordinates(target.given), target.length);

  // The chord's distance from the circle's center.
  const double toCircle = (centerAlongAxis1_ - Dot(axis1_, unitTarget)) / slopeOfWay_;
  const Coordinates1 onChord = Plus(unitTarget, Times(wayToCircle_, toCircle));
  const Coordinates1 fromCenter = Minus(onChord, center_);
  const double distance = Sum3(Dot(fromCenter, u_) * -chordY_, Dot(fromCenter, v_) * chordX_, 0.0);
  const double size = std::fabs(distance);
  if (!std::isfinite(distance) || (size >= (1.0 - TangentInnerTolerance) * radius_ &&
                                   size < (1.0 + TangentOuterTolerance) * radius_)) {
    return false;
  }
  if (!(radius_ > size - TangentOuterTolerance)) {
    *angles = RotaryAngles();
    return !IsWithin(tool_, LoadCoordinates(target.given), SameDirectionTolerance);
  }

  // Where the chord meets the circle, in its plane and in space.
  const double halfChord = std::sqrt(std::fabs(radius_ * radius_ - distance * distance));
  const double footX = 0.0 + -chordY_ * distance;
  const double footY = 0.0 + chordX_ * distance;
  const double halfX = chordX_ * halfChord;
  const double halfY = chordY_ * halfChord;
  const double tips[2][2] = {{footX + halfX, footY + halfY}, {footX - halfX, footY - halfY}};
  const auto inSpace = [this](const double* tip) {
    return Plus(center_, Plus(Times(u_, tip[0]), Times(v_, tip[1])));
  };
  const Coordinates1 tip1 = inSpace(tips[0]);
  const Coordinates1 tip2 = inSpace(tips[1]);
  if ((std::fabs(tips[0][0] - tips[1][0]) < SamePointTolerance &&
       std::fabs(tips[0][1] - tips[1][1]) < SamePointTolerance) ||
      IsWithin(tip1, tip2, SameDirectionTolerance)) {
    return false;
  }

  // The angle about axis2 is seen from where that axis meets the plane of the target.
  const double pivotAlongAxis2 = (Dot(axis2_, unitTarget) - originAlongAxis2_) / axis2Square_;
  const Coordinates1 pivot = Plus(Coordinates1{0.0, 0.0, 0.0}, Times(axis2_, pivotAlongAxis2));
  const Coordinates1 targetArm = Minus(unitTarget, pivot);
  const double targetArmLength = std::sqrt(Dot(targetArm, targetArm));
  const Coordinates4 arms =
      Minus(Gather(tip1, tip2, tip1, tip2), Gather(center_, center_, pivot, pivot));
  const Quad armLengths = Sqrt(Dot(arms, arms));
  if (targetArmLength < UnitDirection::Shortest ||
      IsAnyBelow(armLengths, UnitDirection::Shortest) ||
      IsWithin(Minus(tip1, pivot), targetArm, SameDirectionTolerance)) {
    return false;
  }

  // Both alphas turn the tool onto the arms about axis1, both betas the arms about axis2 onto the
  // target.
  const Coordinates4 unitArms = DividedBy(arms, armLengths);
  const Coordinates1 unitTargetArm = DividedBy(targetArm, targetArmLength);
  const Coordinates4 from = Join(radiusDirs_, unitArms);
  const Coordinates4 to =
      Join(unitArms, Gather(unitTargetArm, unitTargetArm, unitTargetArm, unitTargetArm));
  const Coordinates4 normals = Cross(from, to);
  alignas(16) double sines[4];
  alignas(16) double cosines[4];
  Sqrt(Dot(normals, normals)).Store(sines);
  Clamp(Dot(from, to), -1.0, 1.0).Store(cosines);
  const Quad sizes(std::atan2(sines[0], cosines[0]), std::atan2(sines[1], cosines[1]),
                   std::atan2(sines[2], cosines[2]), std::atan2(sines[3], cosines[3]));
  alignas(16) double turns[4];
  NegateWhereNegative(sizes, Dot(normals, axes_)).Store(turns);

  *angles = {1, -1, {turns[0], turns[1]}, {turns[2], turns[3]}};
  angles->count = AreTwoSolutions(*angles) ? 2 : 1;
  return true;
}

}  // namespace Orvo::Kin
