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
    TypedFrame tableFromWorld;
    Invert(chains_.Frame(Table), &tableFromWorld);
    Multiply(tableFromWorld, chains_.Frame(Head), &tableFromHead_);
  }
  TypedFrame headFromToolPoint;
  SetHeadFromToolPoint(offset, &headFromToolPoint);
  FrameAccess::SetType(
      tableFromToolPoint,
      MultiplyFrames(tableFromHead_.elements, tableFromHead_.type, headFromToolPoint.elements,
                     headFromToolPoint.type, FrameAccess::Elements(tableFromToolPoint)));
}

}  // namespace Orvo::Kin
