#include "compute/TableFromHead.h"

#include "compute/ToolOffset.h"

namespace Orvo::Kin {

namespace {

enum Chain : std::size_t { Head, Table };

}  // namespace

bool TableFromHead::Build(const Entity& head, const Entity& table) {
  if (!chains_.Add(&head, FrameChains::Axes::All) || !chains_.Add(&table, FrameChains::Axes::All)) {
    return false;
  }
  chains_.Prepare();
  return true;
}

void TableFromHead::Compute(const double* values, const Vector3D& offset,
                            Matrix43* tableFromToolPoint) {
  if (chains_.Update(values)) {
    const TypedFrame& worldFromTable = chains_.Frame(Table);
    const TypedFrame& worldFromHead = chains_.Frame(Head);
    const ProductKind kind = KindsOfProducts.kinds[worldFromTable.type][worldFromHead.type];
    isRigid_ = worldFromTable.type == Matrix43::RotationTranslation &&
               kind.rule == ProductRule::Affine && kind.type == Matrix43::RotationTranslation;
    if (isRigid_) {
      Place(worldFromTable.elements, worldFromHead.elements);
    } else {
      TypedFrame tableFromWorld;
      Invert(worldFromTable, &tableFromWorld);
      Multiply(tableFromWorld, worldFromHead, &tableFromHead_);
    }
  }
  double* const m = FrameAccess::Elements(tableFromToolPoint);
  if (isRigid_) {
    const Lanes toolPoint = CombineColumns(directions_, -offset[0], -offset[1], -offset[2]);
    StoreLanes(m, directions_.u);
    StoreLanes(m + 4, directions_.v);
    StoreLanes(m + 8, directions_.w);
    StoreLanes(m + 12, WithW(Add(toolPoint, origin_), 1.0));
    FrameAccess::SetType(tableFromToolPoint, Matrix43::RotationTranslation);
    return;
  }
  TypedFrame headFromToolPoint;
  SetHeadFromToolPoint(offset, &headFromToolPoint);
  FrameAccess::SetType(tableFromToolPoint,
                       MultiplyFrames(tableFromHead_.elements, tableFromHead_.type,
                                      headFromToolPoint.elements, headFromToolPoint.type, m));
}

// InvertRigid() and the product that has no shortcuts, without a detour by memory.
void TableFromHead::Place(const double* worldFromTable, const double* worldFromHead) {
  const Directions tableFromWorld = Transpose(LoadDirections(worldFromTable));
  const Lanes originOfTable =
      CombineColumns(tableFromWorld, worldFromTable[12], worldFromTable[13], worldFromTable[14]);
  const Lanes originOfWorld = Negative(Add(originOfTable, LoadLanes(IdentityFrame + 12)));
  const Directions image = ImageOfDirections(tableFromWorld, worldFromHead);
  directions_ = {WithW(image.u, 0.0), WithW(image.v, 0.0), WithW(image.w, 0.0)};
  origin_ =
      Add(CombineColumns(tableFromWorld, worldFromHead[12], worldFromHead[13], worldFromHead[14]),
          originOfWorld);
}

}  // namespace Orvo::Kin
