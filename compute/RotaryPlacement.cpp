#include "compute/RotaryPlacement.h"

#include "geometry/VectorKernel.h"

#include <algorithm>

namespace Orvo::Kin {

bool RotaryPlacement::Build(const AxisChain& chain, const Register registers[2]) {
  const Entity* found[2] = {nullptr, nullptr};
  int places[2] = {0, 0};
  const bool areRotary = chain.Walk([&](const Entity& entity, double sideSign, int place) {
    for (int i = 0; i < 2; ++i) {
      if (registers[i].IsDefined() && entity.GetRegister().GetVal() == registers[i].GetVal()) {
        if (entity.GetEntityType() != EntityTypeAxis ||
            entity.GetEntityLink().GetEntityLinkType() != EntityLinkTypeRotary) {
          return false;
        }
        found[i] = &entity;
        places[i] = place;
        axes_[i].sideSign = sideSign;
        break;
      }
    }
    return true;
  });
  if (!areRotary) {
    return false;
  }
  for (int i = 0; i < 2; ++i) {
    axes_[i].isDefined = registers[i].IsDefined();
    if (axes_[i].isDefined) {
      if (found[i] == nullptr ||
          !axes_[i].parent.Build(found[i]->GetParentEntity(), FrameChain::Axes::Rotary)) {
        return false;
      }
      axes_[i].dir = found[i]->GetEntityLink().GetDir();
    }
  }
  directions_.isAlphaNearerHead = places[0] > places[1];
  return head_.Build(chain.Head(), FrameChain::Axes::Rotary) &&
         table_.Build(chain.Table(), FrameChain::Axes::Rotary);
}

std::size_t RotaryPlacement::RegisterBound() const {
  // The axes and all above them are on these two.
  return std::max(head_.RegisterBound(), table_.RegisterBound());
}

const RotaryDirections& RotaryPlacement::Compute(const double* values) {
  bool hasMoved = head_.Update(values);
  hasMoved = table_.Update(values) || hasMoved;
  for (Axis& axis : axes_) {
    if (axis.isDefined) {
      hasMoved = axis.parent.Update(values) || hasMoved;
    }
  }
  if (!hasMoved) {
    return directions_;
  }
  TypedFrame tableFromWorld;
  Invert(table_.Frame(), &tableFromWorld);
  TypedFrame tableFromHead;
  Multiply(tableFromWorld, head_.Frame(), &tableFromHead);
  directions_.tool = Vector3D(tableFromHead.elements + 8);
  for (int i = 0; i < 2; ++i) {
    const Axis& axis = axes_[i];
    if (axis.isDefined) {
      Vector3D inWorld;
      const TypedFrame& worldFromParent = axis.parent.Frame();
      StoreLanes(inWorld, ApplyFrameToDirection(worldFromParent.elements, worldFromParent.type,
                                                axis.dir));
      Vector3D& inTable = directions_.axes[i];
      StoreLanes(inTable,
                 ApplyFrameToDirection(tableFromWorld.elements, tableFromWorld.type, inWorld));
      inTable *= axis.sideSign;
    }
  }
  if (axes_[0].isDefined && axes_[1].isDefined) {
    const int nearer = directions_.isAlphaNearerHead ? 0 : 1;
    pair_ = RotaryPair(directions_.axes[nearer], directions_.axes[1 - nearer], directions_.tool);
  }
  return directions_;
}

}  // namespace Orvo::Kin
