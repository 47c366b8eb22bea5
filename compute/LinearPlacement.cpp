#include "compute/LinearPlacement.h"

#include "compute/SameValue.h"
#include "compute/ToolOffset.h"
#include "geometry/VectorKernel.h"

namespace Orvo::Kin {

namespace {

// The chains; the last three are those of the parents of the axes.
enum Chain : std::size_t { Head, Table, FirstAxis };

bool IsSameOffset(const Vector3D& a, const Vector3D& b) {
  return IsSameValue(a[0], b[0]) && IsSameValue(a[1], b[1]) && IsSameValue(a[2], b[2]);
}

}  // namespace

bool LinearPlacement::Build(const AxisChain& chain, const Kinematic& kinematic,
                            const Register registers[3]) {
  int foundNb = 0;
  chain.Walk([&](const Entity& entity, double sideSign, int) {
    if (IsLinearAxis(entity)) {
      for (int i = 0; i < 3; ++i) {
        if (entity.GetRegister().GetVal() == registers[i].GetVal()) {
          axes_[i].sideSign = sideSign;
          ++foundNb;
          break;
        }
      }
    }
    return true;
  });
  if (foundNb != 3) {
    return false;
  }
  chains_.KeepAtZero({registers[0].GetVal(), registers[1].GetVal(), registers[2].GetVal()});
  if (!chains_.Add(chain.Head(), FrameChains::Axes::All) ||
      !chains_.Add(chain.Table(), FrameChains::Axes::All)) {
    return false;
  }
  for (int i = 0; i < 3; ++i) {
    const Entity* const entity = kinematic.GetEntity(registers[i]);
    if (axes_[i].sideSign == 0.0 || entity == nullptr || !IsLinearAxis(*entity) ||
        !chains_.Add(entity->GetParentEntity(), FrameChains::Axes::Rotary)) {
      return false;
    }
    axes_[i].dir = entity->GetEntityLink().GetDir();
  }
  chains_.Prepare();
  return true;
}

void LinearPlacement::Compute(const double* values, const Vector3D& offset, const Vector3D& point,
                              Vector3D* xyz) {
  if (chains_.Update(values) || !IsSameOffset(offset, offset_)) {
    offset_ = offset;
    TypedFrame tableFromWorld;
    Invert(chains_.Frame(Table), &tableFromWorld);
    TypedFrame headFromToolPoint;
    SetHeadFromToolPoint(offset, &headFromToolPoint);
    TypedFrame worldFromToolPoint;
    Multiply(chains_.Frame(Head), headFromToolPoint, &worldFromToolPoint);
    TypedFrame tableFromToolPoint;
    Multiply(tableFromWorld, worldFromToolPoint, &tableFromToolPoint);

    // Deliberate: the directions count as orthonormal, whatever they are.
    TypedFrame tableFromAxisValues;
    tableFromAxisValues.type = Matrix43::RotationTranslation;
    for (int i = 0; i < 3; ++i) {
      const Axis& axis = axes_[i];
      const TypedFrame& worldFromParent = chains_.Frame(FirstAxis + static_cast<std::size_t>(i));
      alignas(16) double inWorld[4];
      StoreLanes(inWorld,
                 ApplyFrameToDirection(worldFromParent.elements, worldFromParent.type, axis.dir));
      StoreLanes(inWorld, Scale(LoadLanes(inWorld), axis.sideSign));
      StoreLanes(tableFromAxisValues.elements + 4 * i,
                 ApplyFrameToDirection(tableFromWorld.elements, tableFromWorld.type, inWorld));
    }
    StoreLanes(tableFromAxisValues.elements + 12,
               WithW(LoadLanes(tableFromToolPoint.elements + 12), 1.0));
    Invert(tableFromAxisValues, &axisValuesFromTable_);
  }
  StoreLanes(*xyz,
             ApplyFrameToPoint(axisValuesFromTable_.elements, axisValuesFromTable_.type, point));
}

}  // namespace Orvo::Kin
