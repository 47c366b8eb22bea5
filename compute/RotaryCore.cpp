#include "compute/RotaryCore.h"

#include "compute/RotaryTolerances.h"
#include "geometry/VectorKernel.h"

#include <cmath>
#include <utility>

namespace Orvo::Kin {

namespace {

// For one axis: sizes of the cosines to the axis below which a direction is perpendicular to it,
// and the largest difference of the two cosines.
constexpr double PerpendicularCosine = 0.01;
constexpr double SameCosine = 0.001;

bool Differ(const Angle& a, const Angle& b) {
  return std::fabs(a.GetDegre() - b.GetDegre()) >= SameAngleDeg;
}

}  // namespace

void SolveTwoRotaries(const Vector3D& axis1, const Vector3D& axis2, const Vector3D& tool,
                      const Vector3D& target, const Register& register2,
                      IntersectionCompute* intersection, RotariesSolution* sol) {
  sol->Count = 0;
  const Vector3D center = Times(axis1, Dot(axis1, tool));
  const Vector3D radius = Minus(tool, center);
  Vector3D unitTarget = target;
  unitTarget.MakeUnit(SmallestRequest);
  const Circle3D tipCircle(center, axis1, Length(radius));
  const Plane3D targetPlane(unitTarget, axis2);
  intersection->TolPlanePlane = PlanePlaneTolerance;
  intersection->TolTangentInner = TangentInnerTolerance;
  intersection->TolTangentOuter = TangentOuterTolerance;
  Vector3D tip1;
  Vector3D tip2;
  if (intersection->IntersectCirclePlane(targetPlane, tipCircle, &tip1, &tip2) ==
      IntersectionNone) {
    if (IsWithin(tool, target, SameDirectionTolerance)) {
      sol->Count = 1;
      sol->Alpha1 = sol->Beta1 = sol->Alpha2 = sol->Beta2 = Angle();
    }
    return;
  }
  const bool isDistinct = !IsWithin(tip1, tip2, SameDirectionTolerance);
  sol->Alpha1.SetVector3DRef(radius, Minus(tip1, center), axis1);
  if (isDistinct) {
    sol->Alpha2.SetVector3DRef(radius, Minus(tip2, center), axis1);
  } else {
    sol->Alpha2 = sol->Alpha1;
  }

  // The angle about axis2 is seen from where that axis meets the plane.
  Vector3D pivot;
  intersection->TolLinePlane = LinePlaneTolerance;
  intersection->IntersectLinePlane(targetPlane, Line3D(NullVector, axis2), &pivot);
  const Vector3D targetArm = Minus(unitTarget, pivot);
  const Vector3D arm1 = Minus(tip1, pivot);
  if (!sol->Beta1.SetVector3DRef(arm1, targetArm, axis2) ||
      (IsWithin(arm1, targetArm, SameDirectionTolerance) &&
       axis2.IsColinear(targetArm, SameDirectionTolerance, nullptr))) {
    sol->FreeRegister = register2.GetVal();
  }
  sol->Count = 1;
  if (isDistinct) {
    sol->Beta2.SetVector3DRef(Minus(tip2, pivot), targetArm, axis2);
    if (Differ(sol->Alpha1, sol->Alpha2) || Differ(sol->Beta1, sol->Beta2)) {
      sol->Count = 2;
    }
  } else {
    sol->Beta2 = sol->Beta1;
  }
}

unsigned int SolveOneRotary(const Vector3D& axis, const Vector3D& tool, const Vector3D& target,
                            Angle* angle) {
  const double toolCosine = Dot(axis, tool);
  const double targetCosine = Dot(target, axis);
  if (std::fabs(toolCosine) < PerpendicularCosine &&
      std::fabs(targetCosine) < PerpendicularCosine) {
    angle->SetVector3DRef(tool, target, axis);
    return 1;
  }
  if (!(std::fabs(toolCosine - targetCosine) < SameCosine)) {
    return 0;
  }
  angle->SetVector3DRef(Minus(tool, Times(axis, toolCosine)),
                        Minus(target, Times(axis, targetCosine)), axis);
  return 1;
}

void SwapAlphaBeta(RotariesSolution* sol) {
  std::swap(sol->Alpha1, sol->Beta1);
  std::swap(sol->Alpha2, sol->Beta2);
}

}  // namespace Orvo::Kin
