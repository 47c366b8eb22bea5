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
  const bool hasChanged = chains_.Update(values);
  const bool isOtherOffset = !isPlaced_ || !IsSameOffset(offset, offset_);
  if (isOtherOffset || (hasChanged && chains_.HasChanged(Head))) {
    PlaceToolPoint(offset);
  }
  if (isOtherOffset || hasChanged) {
    PlaceTable();
  }
  const Lanes image = CombineColumns(axisValuesFromTable_, point[0], point[1], point[2]);
  StoreLanes(*xyz, WithW(Add(image, origin_), 0.0));
}

void LinearPlacement::PlaceToolPoint(const Vector3D& offset) {
  offset_ = offset;
  TypedFrame headFromToolPoint;
  SetHeadFromToolPoint(offset, &headFromToolPoint);
  Multiply(chains_.Frame(Head), headFromToolPoint, &worldFromToolPoint_);
}

void LinearPlacement::PlaceTable() {
  TypedFrame tableFromWorld;
  Invert(chains_.Frame(Table), &tableFromWorld);
  alignas(16) double toolPointInTable[4];
  StoreLanes(toolPointInTable, OriginOfProduct(tableFromWorld, worldFromToolPoint_));

  // Deliberate: the directions count as orthonormal, whatever they are.
  Lanes dirsInTable[3];
  for (int i = 0; i < 3; ++i) {
    Axis& axis = axes_[i];
    const std::size_t parent = FirstAxis + static_cast<std::size_t>(i);
    if (!isPlaced_ || chains_.HasChanged(parent)) {
      const TypedFrame& worldFromParent = chains_.Frame(parent);
      const Lanes inWorld =
          ApplyFrameToDirection(worldFromParent.elements, worldFromParent.type, axis.dir);
      StoreLanes(axis.dirInWorld, Scale(inWorld, axis.sideSign));
    }
    dirsInTable[i] =
        ApplyFrameToDirection(tableFromWorld.elements, tableFromWorld.type, axis.dirInWorld);
  }
  isPlaced_ = true;
  axisValuesFromTable_ = Transpose({dirsInTable[0], dirsInTable[1], dirsInTable[2]});
  const Lanes turned = CombineColumns(axisValuesFromTable_, toolPointInTable[0],
                                      toolPointInTable[1], toolPointInTable[2]);
  origin_ = Negative(Add(turned, LoadLanes(IdentityFrame + 12)));
}

}  // namespace Orvo::Kin
