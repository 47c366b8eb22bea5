#include "compute/LinearPlacement.h"

#include "compute/SameValue.h"
#include "compute/ToolOffset.h"
#include "geometry/VectorKernel.h"

#include <algorithm>

namespace Orvo::Kin {

namespace {

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
  for (int i = 0; i < 3; ++i) {
    Axis& axis = axes_[i];
    const Entity* const entity = kinematic.GetEntity(registers[i]);
    if (axis.sideSign == 0.0 || entity == nullptr || !IsLinearAxis(*entity) ||
        !axis.parent.Build(entity->GetParentEntity(), FrameChain::Axes::Rotary)) {
      return false;
    }
    axis.dir = entity->GetEntityLink().GetDir();
    registerBound_ = std::max(registerBound_, axis.parent.RegisterBound());
  }
  if (!head_.Build(chain.Head(), FrameChain::Axes::All) ||
      !table_.Build(chain.Table(), FrameChain::Axes::All)) {
    return false;
  }
  registerBound_ = std::max(registerBound_, std::max(head_.RegisterBound(), table_.RegisterBound()));
  return true;
}

void LinearPlacement::Compute(const double* values, const Vector3D& offset, const Vector3D& point,
                              Vector3D* xyz) {
  bool hasMoved = head_.Update(values);
  hasMoved = table_.Update(values) || hasMoved;
  for (Axis& axis : axes_) {
    hasMoved = axis.parent.Update(values) || hasMoved;
  }
  if (hasMoved || !IsSameOffset(offset, offset_)) {
    offset_ = offset;
    TypedFrame tableFromWorld;
    Invert(table_.Frame(), &tableFromWorld);
    TypedFrame headFromToolPoint;
    SetHeadFromToolPoint(offset, &headFromToolPoint);
    TypedFrame worldFromToolPoint;
    Multiply(head_.Frame(), headFromToolPoint, &worldFromToolPoint);
    TypedFrame tableFromToolPoint;
    Multiply(tableFromWorld, worldFromToolPoint, &tableFromToolPoint);

    // Deliberate: the directions count as orthonormal, whatever they are.
    TypedFrame tableFromAxisValues;
    tableFromAxisValues.type = Matrix43::RotationTranslation;
    for (int i = 0; i < 3; ++i) {
      const Axis& axis = axes_[i];
      const TypedFrame& worldFromParent = axis.parent.Frame();
      alignas(16) double inWorld[4];
      StoreLanes(inWorld, ApplyFrameToDirection(worldFromParent.elements, worldFromParent.type,
                                                axis.dir));
      StoreLanes(inWorld, Scale(LoadLanes(inWorld), axis.sideSign));
      StoreLanes(tableFromAxisValues.elements + 4 * i,
                 ApplyFrameToDirection(tableFromWorld.elements, tableFromWorld.type, inWorld));
    }
    StoreLanes(tableFromAxisValues.elements + 12,
               WithW(LoadLanes(tableFromToolPoint.elements + 12), 1.0));
    Invert(tableFromAxisValues, &axisValuesFromTable_);
  }
  StoreLanes(*xyz, ApplyFrameToPoint(axisValuesFromTable_.elements, axisValuesFromTable_.type,
                                     point));
}

}  // namespace Orvo::Kin
