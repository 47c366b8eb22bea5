#include "compute/RotaryPlacement.h"

#include "geometry/VectorKernel.h"

#include <utility>

namespace Orvo::Kin {

namespace {

// The chains; those of the axes follow.
enum Chain : std::size_t { Head, Table, FirstAxis };

}  // namespace

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
  chains_.KeepAtZero({registers[0].GetVal(), registers[1].GetVal()});
  if (!chains_.Add(chain.Head(), FrameChains::Axes::Rotary) ||
      !chains_.Add(chain.Table(), FrameChains::Axes::Rotary)) {
    return false;
  }
  std::size_t nextChain = FirstAxis;
  for (int i = 0; i < 2; ++i) {
    axes_[i].isDefined = registers[i].IsDefined();
    if (axes_[i].isDefined) {
      if (found[i] == nullptr ||
          !chains_.Add(found[i]->GetParentEntity(), FrameChains::Axes::Rotary)) {
        return false;
      }
      axes_[i].dir = found[i]->GetEntityLink().GetDir();
      axes_[i].parentChain = nextChain++;
    }
  }
  directions_.isAlphaNearerHead = places[0] > places[1];
  chains_.Prepare();
  return true;
}

const RotaryDirections& RotaryPlacement::Compute(const double* values) {
  if (!chains_.Update(values)) {
    return directions_;
  }
  TypedFrame tableFromWorld;
  Invert(chains_.Frame(Table), &tableFromWorld);
  TypedFrame tableFromHead;
  Multiply(tableFromWorld, chains_.Frame(Head), &tableFromHead);
  directions_.tool = Vector3D(tableFromHead.elements + 8);
  for (int i = 0; i < 2; ++i) {
    const Axis& axis = axes_[i];
    if (axis.isDefined) {
      Vector3D inWorld;
      const TypedFrame& worldFromParent = chains_.Frame(axis.parentChain);
      StoreLanes(inWorld,
                 ApplyFrameToDirection(worldFromParent.elements, worldFromParent.type, axis.dir));
      Vector3D& inTable = directions_.axes[i];
      StoreLanes(inTable,
                 ApplyFrameToDirection(tableFromWorld.elements, tableFromWorld.type, inWorld));
      inTable *= axis.sideSign;
    }
  }
  if (axes_[0].isDefined && axes_[1].isDefined) {
    const int nearer = directions_.isAlphaNearerHead ? 0 : 1;
    const Vector3D& axis1 = directions_.axes[nearer];
    const Vector3D& axis2 = directions_.axes[1 - nearer];
    principalPair_ = PrincipalPair(axis1, axis2, directions_.tool);
    pair_ = RotaryPair(axis1, axis2, directions_.tool);
  }
  return directions_;
}

bool RotaryPlacement::Solve(RequestedDirection target, RotariesSolution* sol) const {
  RotaryAngles angles;
  if (!axes_[0].isDefined || !axes_[1].isDefined ||
      !(principalPair_.Solve(target, &angles) || pair_.Solve(target, &angles))) {
    return false;
  }
  if (!directions_.isAlphaNearerHead) {
    std::swap(angles.alpha, angles.beta);
  }
  Store(angles, sol);
  return true;
}

}  // namespace Orvo::Kin
