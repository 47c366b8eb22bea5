#include "compute/RotaryPair.h"

#include "compute/RotaryTolerances.h"
#include "geometry/AngleKernel.h"
#include "geometry/Degrees.h"
#include "geometry/VectorKernel.h"

#include <Orvo/Matrix43.h>

#include <cmath>

namespace Orvo::Kin {

namespace {

// Two tips on the circle that are closer than this, by component, are one.
constexpr double SamePointTolerance = 0.00001;

bool Differ(double a, double b) {
  return std::fabs(DegreesFromRadians(a) - DegreesFromRadians(b)) >= SameAngleDeg;
}

}  // namespace

RotaryPair::RotaryPair(const Vector3D& axis1, const Vector3D& axis2, const Vector3D& tool)
    : axis1_(axis1), axis2_(axis2), tool_(tool) {
  center_ = Times(axis1, Dot(axis1, tool));
  const Vector3D radius = Minus(tool, center_);
  const UnitDirection unitRadius(radius);
  radius_ = unitRadius.length;
  hasRadius_ = unitRadius.HasAngle();
  radiusDir_ = unitRadius.dir;
  Matrix43 circleFrame;
  circleFrame.MakeAxisW(axis1);
  u_ = circleFrame.GetU();
  v_ = circleFrame.GetV();
  Vector3D chord = Cross(axis2, axis1);
  wayToCircle_ = Cross(axis2, chord);
  slopeOfWay_ = Dot(wayToCircle_, axis1);
  centerAlongAxis1_ = Dot(axis1, center_);
  chord.MakeUnit(SmallestRequest);
  chordX_ = Dot(chord, u_);
  chordY_ = Dot(chord, v_);
  axis2Square_ = Dot(axis2, axis2);
  originAlongAxis2_ = Dot(axis2, NullVector);
  isUsable_ = !axis2.IsColinear(axis1, PlanePlaneTolerance, nullptr) &&
              std::fabs(slopeOfWay_) >= PlanePlaneTolerance &&
              std::fabs(axis2Square_) >= LinePlaneTolerance;
}

bool RotaryPair::Solve(const Vector3D& target, const Register& register2,
                       RotariesSolution* sol) const {
  if (!isUsable_) {
    return false;
  }
  Vector3D unitTarget = target;
  const double targetLength = Length(target);
  if (SmallestRequest > targetLength || targetLength == 0.0) {
    unitTarget = AxisX;
  } else {
    unitTarget = Vector3D(target[0] / targetLength, target[1] / targetLength,
                          target[2] / targetLength);
  }

  // The chord's distance from the circle's center.
  const double toCircle = (centerAlongAxis1_ - Dot(axis1_, unitTarget)) / slopeOfWay_;
  const Vector3D onChord = Plus(unitTarget, Times(wayToCircle_, toCircle));
  const Vector3D fromCenter = Minus(onChord, center_);
  const double x = Dot(fromCenter, u_);
  const double y = Dot(fromCenter, v_);
  const double distance = Sum3((x - 0.0) * -chordY_, (y - 0.0) * chordX_, 0.0);
  if (!std::isfinite(distance)) {
    return false;
  }
  const double footX = 0.0 + -chordY_ * distance;
  const double footY = 0.0 + chordX_ * distance;
  const double size = std::fabs(distance);
  double tips2D[2][2] = {{footX, footY}, {footX, footY}};
  if (!(size >= (1.0 - TangentInnerTolerance) * radius_ &&
        size < (1.0 + TangentOuterTolerance) * radius_)) {
    if (!(radius_ > size - TangentOuterTolerance)) {
      if (IsWithin(tool_, target, SameDirectionTolerance)) {
        sol->Count = 1;
      }
      return true;
    }
    const double halfChord = std::sqrt(std::fabs(radius_ * radius_ - distance * distance));
    tips2D[0][0] = footX + chordX_ * halfChord;
    tips2D[0][1] = footY + chordY_ * halfChord;
    tips2D[1][0] = footX - chordX_ * halfChord;
    tips2D[1][1] = footY - chordY_ * halfChord;
  }
  const auto inSpace = [this](const double* tip) {
    return Plus(center_, Plus(Times(u_, tip[0]), Times(v_, tip[1])));
  };
  const Vector3D tip1 = inSpace(tips2D[0]);
  const bool isOnePoint = std::fabs(tips2D[0][0] - tips2D[1][0]) < SamePointTolerance &&
                          std::fabs(tips2D[0][1] - tips2D[1][1]) < SamePointTolerance;
  const Vector3D tip2 = isOnePoint ? tip1 : inSpace(tips2D[1]);
  const bool isDistinct = !IsWithin(tip1, tip2, SameDirectionTolerance);

  const auto turnOfTool = [this](const Vector3D& tip) {
    const UnitDirection to(Minus(tip, center_));
    return hasRadius_ && to.HasAngle() ? AngleBetween(radiusDir_, to.dir, axis1_) : 0.0;
  };
  const double alpha1 = turnOfTool(tip1);
  const double alpha2 = isDistinct ? turnOfTool(tip2) : alpha1;

  // The angle about axis2 is seen from where that axis meets the plane.
  const double pivotAlongAxis2 = (Dot(axis2_, unitTarget) - originAlongAxis2_) / axis2Square_;
  const Vector3D pivot = Plus(NullVector, Times(axis2_, pivotAlongAxis2));
  const Vector3D targetArm = Minus(unitTarget, pivot);
  const UnitDirection unitTargetArm(targetArm);
  const Vector3D arm1 = Minus(tip1, pivot);
  const UnitDirection unitArm1(arm1);
  const bool hasBeta1 = unitArm1.HasAngle() && unitTargetArm.HasAngle();
  const double beta1 = hasBeta1 ? AngleBetween(unitArm1.dir, unitTargetArm.dir, axis2_) : 0.0;
  if (!hasBeta1 || (IsWithin(arm1, targetArm, SameDirectionTolerance) &&
                    axis2_.IsColinear(targetArm, SameDirectionTolerance, nullptr))) {
    sol->FreeRegister = register2.GetVal();
  }
  double beta2 = beta1;
  sol->Count = 1;
  if (isDistinct) {
    const UnitDirection unitArm2(Minus(tip2, pivot));
    beta2 = unitArm2.HasAngle() && unitTargetArm.HasAngle()
                ? AngleBetween(unitArm2.dir, unitTargetArm.dir, axis2_)
                : 0.0;
    if (Differ(alpha1, alpha2) || Differ(beta1, beta2)) {
      sol->Count = 2;
    }
  }
  sol->Alpha1.SetRadian(alpha1);
  sol->Alpha2.SetRadian(alpha2);
  sol->Beta1.SetRadian(beta1);
  sol->Beta2.SetRadian(beta2);
  return true;
}

}  // namespace Orvo::Kin
