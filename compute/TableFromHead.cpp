#include "compute/TableFromHead.h"

#include "compute/ToolOffset.h"
#include "geometry/WideRows.h"

namespace Orvo::Kin {

namespace {

enum Chain : std::size_t { Head, Table };

}  // namespace

bool TableFromHead::Build(const Entity& head, const Entity& table) {
  if (!chains_.Add(&head, FrameChains::Axes::All) || !chains_.Add(&table, FrameChains::Axes::All)) {
    return false;
  }
  chains_.Prepare();
  hasRows_ = chains_.HasRows(Head) && chains_.HasRows(Table);
  return true;
}

bool TableFromHead::Compute(const double* values, const Vector3D& offset,
                            Matrix43* tableFromToolPoint) {
  const bool hasChanged = chains_.Update(values);
  if (hasChanged) {
    isRigid_ = IsRigid();
  }
#ifdef ORVO_WIDE
  if (isRigid_ && hasRows_) {
    return PlaceAndMoveWide(!hasChanged, offset, tableFromToolPoint);
  }
#endif
  if (hasChanged) {
    if (isRigid_) {
      PlaceRigid();
    } else {
      Place();
    }
  }
  Move(offset, tableFromToolPoint);
  return true;
}

// Tells whether the product of the inverse and the other frame has no shortcuts and is rigid.
inline bool TableFromHead::IsRigid() const {
  const Matrix43::Type head = chains_.Type(Head);
  return chains_.Type(Table) == Matrix43::RotationTranslation &&
         (head == Matrix43::RotationTranslation || head == Matrix43::Rotation);
}

void TableFromHead::Place() {
  TypedFrame tableFromWorld;
  Invert(chains_.Frame(Table), &tableFromWorld);
  Multiply(tableFromWorld, chains_.Frame(Head), &tableFromHead_);
}

// The same for rigid frames, without a detour by memory.
void TableFromHead::PlaceRigid() {
  const double* const worldFromTable = chains_.Frame(Table).elements;
  const double* const worldFromHead = chains_.Frame(Head).elements;
  const Directions tableFromWorld = Transpose(LoadDirections(worldFromTable));
  const Lanes originOfTable =
      CombineColumns(tableFromWorld, worldFromTable[12], worldFromTable[13], worldFromTable[14]);
  const Lanes originOfWorld = Negative(Add(originOfTable, LoadLanes(IdentityFrame + 12)));
  const Directions image = ImageOfDirections(tableFromWorld, worldFromHead);
  const Lanes origin =
      Add(CombineColumns(tableFromWorld, worldFromHead[12], worldFromHead[13], worldFromHead[14]),
          originOfWorld);
  double* const m = tableFromHead_.elements;
  StoreLanes(m, WithW(image.u, 0.0));
  StoreLanes(m + 4, WithW(image.v, 0.0));
  StoreLanes(m + 8, WithW(image.w, 0.0));
  StoreLanes(m + 12, WithW(origin, 1.0));
  tableFromHead_.type = Matrix43::RotationTranslation;
}

// Apart, as it is rare where there are wide rows.
[[gnu::noinline]] void TableFromHead::Move(const Vector3D& offset,
                                           Matrix43* tableFromToolPoint) const {
  TypedFrame headFromToolPoint;
  SetHeadFromToolPoint(offset, &headFromToolPoint);
  FrameAccess::SetType(
      tableFromToolPoint,
      MultiplyFrames(tableFromHead_.elements, tableFromHead_.type, headFromToolPoint.elements,
                     headFromToolPoint.type, FrameAccess::Elements(tableFromToolPoint)));
}

#ifdef ORVO_WIDE
// PlaceRigid(), where need be, and Move() with a column to a register.
ORVO_WIDE bool TableFromHead::PlaceAndMoveWide(bool isPlaced, const Vector3D& offset,
                                               Matrix43* tableFromToolPoint) {
  WideFrame frame = LoadWide(tableFromHead_.elements);
  if (!isPlaced) {
    const WideInverse tableFromWorld = InvertStored(chains_.Rows(Table));
    const WideTriple& directions = tableFromWorld.directions;
    const StoredRows& head = chains_.Rows(Head);
    frame = JoinColumns(chains_.HasUnitAxes(Head)
                            ? ImagesOfUnitAxes(directions)
                            : WideTriple{CombineStored(directions, head.rows + 1),
                                         CombineStored(directions, head.rows + 2),
                                         CombineStored(directions, head.rows + 3)},
                        CombineColumns(directions, head.origin) + tableFromWorld.origin);
    StoreWide(frame, tableFromHead_.elements);
    tableFromHead_.type = Matrix43::RotationTranslation;
  }
  const __m256d x = NegativeWide(_mm256_set1_pd(offset[0]));
  const __m256d y = NegativeWide(_mm256_set1_pd(offset[1]));
  const __m256d z = NegativeWide(_mm256_set1_pd(offset[2]));
  frame.t = AsOrigin(frame.u * x + (frame.v * y + frame.w * z) + frame.t);
  StoreWide(frame, FrameAccess::Elements(tableFromToolPoint));
  FrameAccess::SetType(tableFromToolPoint, Matrix43::RotationTranslation);
  return true;
}
#endif

}  // namespace Orvo::Kin
