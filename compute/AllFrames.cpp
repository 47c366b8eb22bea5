#include "compute/AllFrames.h"

#include "compute/SameValue.h"

#include <algorithm>
#include <utility>

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
  elements_.reserve(entities.size());
  for (const Entity* entity : entities) {
    Element element;
    if (!TakeDown(*entity, &element.link)) {
      return false;
    }
    const auto reg = static_cast<std::size_t>(element.link.reg);
    const bool isAxis = element.link.kind != KeptLink::Kind::Fixed;
    if (isAxis) {
      registerBound_ = std::max(registerBound_, reg + 1);
    }
    element.place = PlaceOf(entity, frameNb, None);
    element.parentPlace = PlaceOf(entity->GetParentEntity(), frameNb, None);
    if (element.place == None) {
      continue;
    }
    if (element.place == element.parentPlace) {
      return false;
    }
    if (isAxis) {
      axes_.push_back({reg, elements_.size(), 0.0});
    }
    elements_.push_back(std::move(element));
  }
  return true;
}

void AllFrames::Compute(const double* values, Matrix43* frames) {
  for (Axis& axis : axes_) {
    const double value = values[axis.reg];
    if (!IsSameValue(value, axis.value)) {
      SetAxisValue(value, &elements_[axis.element].link);
      axis.value = value;
    }
  }
  for (const Element& element : elements_) {
    const TypedFrame& link = element.link.frame;
    Matrix43& frame = frames[element.place];
    double* const m = FrameAccess::Elements(&frame);
    if (element.parentPlace == None) {
      // An identity is not written onto an identity.
      if (link.type != Matrix43::Identity || FrameAccess::Type(frame) != Matrix43::Identity) {
        CopyFrame(link.elements, m);
        FrameAccess::SetType(&frame, link.type);
      }
      continue;
    }
    const Matrix43& parent = frames[element.parentPlace];
    const Matrix43::Type parentType = FrameAccess::Type(parent);
    if (parentType == Matrix43::Identity && link.type == Matrix43::Identity &&
        FrameAccess::Type(frame) == Matrix43::Identity) {
      continue;
    }
    FrameAccess::SetType(&frame, MultiplyFrames(FrameAccess::Elements(parent), parentType,
                                                link.elements, link.type, m));
  }
}

}  // namespace Orvo::Kin
