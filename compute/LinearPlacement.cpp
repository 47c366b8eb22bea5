#include "compute/LinearPlacement.h"

#include "compute/SameValue.h"
#include "compute/ToolOffset.h"
#include "geometry/VectorKernel.h"
#include "geometry/WideRows.h"

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
  hasRows_ = chains_.HasRows(Table);
  return true;
}

bool LinearPlacement::Compute(const double* values, const Vector3D& offset, const Vector3D& point,
                              Vector3D* xyz) {
  const bool hasChanged = chains_.Update(values);
  const bool isOtherOffset = !isPlaced_ || !IsSameOffset(offset, offset_);
  if (isOtherOffset || (hasChanged && chains_.HasChanged(Head))) {
    PlaceToolPoint(offset);
  }
  if (isOtherOffset || hasChanged) {
    TurnAxes();
#ifdef ORVO_WIDE
    if (hasRows_ && chains_.Type(Table) == Matrix43::RotationTranslation) {
      PlaceTableWide();
    } else {
      PlaceTable();
    }
#else
    PlaceTable();
#endif
  }
  StoreLanes(*xyz, WithW(ImageOfPoint(axisValuesFromTable_, point[0], point[1], point[2]), 0.0));
  return true;
}

void LinearPlacement::PlaceToolPoint(const Vector3D& offset) {
  offset_ = offset;
  TypedFrame headFromToolPoint;
  SetHeadFromToolPoint(offset, &headFromToolPoint);
  Multiply(chains_.Frame(Head), headFromToolPoint, &worldFromToolPoint_);
}

// Of the axes that rotary ones turn.
void LinearPlacement::TurnAxes() {
  for (std::size_t i = 0; i < 3; ++i) {
    Axis& axis = axes_[i];
    const std::size_t parent = FirstAxis + i;
    if (!isPlaced_ || chains_.HasChanged(parent)) {
      const TypedFrame& worldFromParent = chains_.Frame(parent);
      const Lanes inWorld =
          ApplyFrameToDirection(worldFromParent.elements, worldFromParent.type, axis.dir);
      StoreLanes(axis.dirInWorld, Scale(inWorld, axis.sideSign));
    }
  }
  isPlaced_ = true;
}

void LinearPlacement::PlaceTable() {
  TypedFrame tableFromWorld;
  Invert(chains_.Frame(Table), &tableFromWorld);
  alignas(16) double toolPointInTable[4];
  StoreLanes(toolPointInTable, OriginOfProduct(tableFromWorld, worldFromToolPoint_));

  // Deliberate: the directions count as orthonormal, whatever they are.
  Lanes dirsInTable[3];
  for (int i = 0; i < 3; ++i) {
    dirsInTable[i] =
        ApplyFrameToDirection(tableFromWorld.elements, tableFromWorld.type, axes_[i].dirInWorld);
  }
  const Directions axisValuesFromTable =
      Transpose({dirsInTable[0], dirsInTable[1], dirsInTable[2]});
  const Lanes turned = CombineColumns(axisValuesFromTable, toolPointInTable[0], toolPointInTable[1],
                                      toolPointInTable[2]);
  StoreLanes(axisValuesFromTable_, axisValuesFromTable.u);
  StoreLanes(axisValuesFromTable_ + 4, axisValuesFromTable.v);
  StoreLanes(axisValuesFromTable_ + 8, axisValuesFromTable.w);
  StoreLanes(axisValuesFromTable_ + 12, Negative(Add(turned, LoadLanes(IdentityFrame + 12))));
}

#ifdef ORVO_WIDE
// PlaceTable() where its products have no shortcuts. The tool point's frame is never an Identity.
ORVO_WIDE void LinearPlacement::PlaceTableWide() {
  const WideInverse tableFromWorld = InvertStored(chains_.Rows(Table));
  const WideTriple& directions = tableFromWorld.directions;
  alignas(32) double toolPointInTable[4];
  _mm256_store_pd(toolPointInTable, CombineColumns(directions, worldFromToolPoint_.elements + 12) +
                                        tableFromWorld.origin);
  const WideTriple axisValues = TransposeWide({CombineColumns(directions, axes_[0].dirInWorld),
                                               CombineColumns(directions, axes_[1].dirInWorld),
                                               CombineColumns(directions, axes_[2].dirInWorld)});
  const __m256d turned = CombineColumns(axisValues, toolPointInTable);
  StoreWide({axisValues.x, axisValues.y, axisValues.z, NegativeWide(turned + _mm256_setzero_pd())},
            axisValuesFromTable_);
}
#endif

}  // namespace Orvo::Kin
