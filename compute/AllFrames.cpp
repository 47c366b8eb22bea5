#include "compute/AllFrames.h"

#include "compute/SameValue.h"

#include <algorithm>

namespace Orvo::Kin {

namespace {

std::size_t PlaceOf(const Entity* entity, std::size_t frameNb, std::size_t none) {
  if (entity == nullptr || !entity->GetEntityId().IsDefined()) {
    return none;
  }
  const auto place = static_cast<std::size_t>(entity->GetEntityId().GetVal());
  return place < frameNb ? place : none;
}

}  // namespace

bool AllFrames::Build(const std::vector<const Entity*>& entities, std::size_t frameNb) {
  *this = AllFrames();
  for (const Entity* entity : entities) {
    const LinkShape shape = ShapeOfLink(*entity);
    if (shape.kind == LinkShape::Kind::Unknown) {
      return false;
    }
    Element element;
    element.kind = shape.kind;
    element.reg = 0;
    element.value = 0.0;
    if (shape.IsAxis()) {
      element.reg = static_cast<std::size_t>(shape.reg);
      registerBound_ = std::max(registerBound_, element.reg + 1);
    }
    element.place = PlaceOf(entity, frameNb, None);
    element.parentPlace = PlaceOf(entity->GetParentEntity(), frameNb, None);
    if (element.place == None) {
      continue;
    }
    if (element.place == element.parentPlace) {
      return false;
    }
    ComputeLinkFrame(shape, 0.0, &element.link);
    shapes_.push_back(shape);
    elements_.push_back(element);
  }
  return true;
}

void AllFrames::Compute(const double* values, Matrix43* frames) {
  const LinkShape* shape = shapes_.data();
  for (Element& element : elements_) {
    if (element.kind != LinkShape::Kind::Fixed) {
      const double value = values[element.reg];
      if (!IsSameValue(value, element.value)) {
        ComputeLinkFrame(*shape, value, &element.link);
        element.value = value;
      }
    }
    ++shape;
    Matrix43& frame = frames[element.place];
    double* const m = FrameAccess::Elements(&frame);
    if (element.parentPlace == None) {
      // An identity is not written onto an identity.
      if (element.link.type != Matrix43::Identity ||
          FrameAccess::Type(frame) != Matrix43::Identity) {
        CopyFrame(element.link.elements, m);
        FrameAccess::SetType(&frame, element.link.type);
      }
      continue;
    }
    const Matrix43& parent = frames[element.parentPlace];
    const Matrix43::Type parentType = FrameAccess::Type(parent);
    if (parentType == Matrix43::Identity && element.link.type == Matrix43::Identity &&
        FrameAccess::Type(frame) == Matrix43::Identity) {
      continue;
    }
    FrameAccess::SetType(&frame,
                         MultiplyFrames(FrameAccess::Elements(parent), parentType,
                                        element.link.elements, element.link.type, m));
  }
}

}  // namespace Orvo::Kin
