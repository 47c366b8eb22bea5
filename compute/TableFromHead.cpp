#include "compute/TableFromHead.h"

#include "compute/ToolOffset.h"

#include <algorithm>

namespace Orvo::Kin {

bool TableFromHead::Build(const Entity& head, const Entity& table) {
  return head_.Build(&head, FrameChain::Axes::All) && table_.Build(&table, FrameChain::Axes::All);
}

std::size_t TableFromHead::RegisterBound() const {
  return std::max(head_.RegisterBound(), table_.RegisterBound());
}

void TableFromHead::Compute(const double* values, const Vector3D& offset,
                            Matrix43* tableFromToolPoint) {
  const bool hasHeadMoved = head_.Update(values);
  const bool hasTableMoved = table_.Update(values);
  if (hasHeadMoved || hasTableMoved) {
    TypedFrame tableFromWorld;
    Invert(table_.Frame(), &tableFromWorld);
    Multiply(tableFromWorld, head_.Frame(), &tableFromHead_);
  }
  TypedFrame headFromToolPoint;
  SetHeadFromToolPoint(offset, &headFromToolPoint);
  FrameAccess::SetType(
      tableFromToolPoint,
      MultiplyFrames(tableFromHead_.elements, tableFromHead_.type, headFromToolPoint.elements,
                     headFromToolPoint.type, FrameAccess::Elements(tableFromToolPoint)));
}

}  // namespace Orvo::Kin
