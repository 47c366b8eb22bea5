#include "compute/AllFrames.h"

#include "compute/SameValue.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Orvo::Kin {

namespace {

// The place of an element among the frames, if it has one.
std::optional<std::size_t> PlaceOf(const Entity* entity, std::size_t frameNb) {
  if (entity == nullptr || !entity->GetEntityId().IsDefined()) {
    return std::nullopt;
  }
  const auto place = static_cast<std::size_t>(entity->GetEntityId().GetVal());
  return place < frameNb ? std::optional(place) : std::nullopt;
}

bool HasExactUnitAxes(const TypedFrame& frame) {
  return std::equal(frame.elements, frame.elements + 12, IdentityFrame, IsSameValue);
}

// Products of two frames, written to two places, with half a column or a whole one to a register.
struct Narrow {
  static void Multiply(ProductRule rule, const double* a, const double* b, double* product,
                       double* copy) {
    MultiplyFrames(rule, a, b, product);
    CopyFrame(product, copy);
  }
  static void Copy(const double* m, double* copy) { CopyFrame(m, copy); }
};

#ifdef ORVO_WIDE
struct Wide {
  ORVO_WIDE static void Multiply(ProductRule rule, const double* a, const double* b,
                                 double* product, double* copy) {
    MultiplyFramesWide(rule, a, b, product, copy);
  }
  ORVO_WIDE static void Copy(const double* m, double* copy) { CopyFrameWide(m, copy); }
};
#endif

}  // namespace

bool AllFrames::Build(const std::vector<const Entity*>& entities, std::size_t frameNb) {
  *this = AllFrames();
  // The first one stands for the world; the addresses of all stay as they are.
  elements_.reserve(entities.size() + 1);
  elements_.emplace_back();
  CopyFrame(IdentityFrame, elements_.front().world);
  elements_.front().product.type = Matrix43::Identity;
  std::vector<const Element*> elementAt(frameNb, nullptr);
  for (const Entity* entity : entities) {
    Element element;
    if (!element.link.TakeDown(*entity)) {
      return false;
    }
    const auto reg = static_cast<std::size_t>(element.link.Reg());
    if (element.link.IsAxis()) {
      registerBound_ = std::max(registerBound_, reg + 1);
    }
    const std::optional<std::size_t> place = PlaceOf(entity, frameNb);
    if (!place) {
      continue;
    }
    element.place = *place;
    const std::optional<std::size_t> parentPlace = PlaceOf(entity->GetParentEntity(), frameNb);
    element.parent = parentPlace ? elementAt[*parentPlace] : elements_.data();
    if (element.parent == nullptr) {
      return false;
    }
    if (element.link.IsAxis()) {
      axes_.push_back({reg, elements_.data() + elements_.size(), 0.0});
    }
    elements_.push_back(std::move(element));
    elementAt[elements_.back().place] = &elements_.back();
  }
  return true;
}

// The kinds of all frames are known before their numbers are; they change when a rotary axis comes
// to stand at 0, or leaves it. Products of exact unit axes need not be computed.
void AllFrames::FindProducts() {
  areKindsKnown_ = true;
  for (std::size_t i = 1; i < elements_.size(); ++i) {
    Element& element = elements_[i];
    const KeptLink& link = element.link;
    const Element& parent = *element.parent;
    const Matrix43::Type linkType = link.Frame().type;
    element.product = KindOfProduct(parent.product.type, linkType);
    const bool isShift = linkType == Matrix43::Translation && HasExactUnitAxes(link.Frame());
    if (isShift && parent.isShifted && element.product.rule == ProductRule::Affine) {
      element.product.rule = ProductRule::LeftMoved;
    }
    element.isShifted =
        linkType == Matrix43::Identity
            ? parent.isShifted
            : isShift && (parent.isShifted || parent.product.type == Matrix43::Identity);
  }
}

void AllFrames::Compute(const double* values, Matrix43* frames) {
  ++callNb_;
  SetAxisValues(values);
  if (!areKindsKnown_) {
    FindProducts();
    elements_.front().callNb = callNb_;
  }
#ifdef ORVO_WIDE
  if (isWide_) {
    MultiplyWide(frames);
    return;
  }
#endif
  Multiply<Narrow>(frames);
}

inline void AllFrames::SetAxisValues(const double* values) {
  for (Axis& axis : axes_) {
    const double value = values[axis.reg];
    if (!IsSameValue(value, axis.value)) {
      axis.value = value;
      axis.element->callNb = callNb_;
      KeptLink& link = axis.element->link;
      const Matrix43::Type typeBefore = link.Frame().type;
      link.SetAxisValue(value);
      areKindsKnown_ = areKindsKnown_ && link.Frame().type == typeBefore;
    }
  }
}

// Goes down from the elements whose links changed, from the world after a change of kinds, and only
// copies the other frames.
template <typename Width>
inline void AllFrames::Multiply(Matrix43* frames) {
  const std::uint64_t callNb = callNb_;
  Element* const end = elements_.data() + elements_.size();
  for (Element* element = elements_.data() + 1; element != end; ++element) {
    Matrix43& frame = frames[element->place];
    double* const m = FrameAccess::Elements(&frame);
    const ProductKind product = element->product;
    const bool hasChanged = element->callNb == callNb || element->parent->callNb == callNb;
    if (hasChanged) {
      element->callNb = callNb;
    }
    if (product.type == Matrix43::Identity) {
      // Not written onto an identity, as everywhere.
      if (FrameAccess::Type(frame) != Matrix43::Identity) {
        Width::Copy(IdentityFrame, m);
      }
    } else if (hasChanged) {
      Width::Multiply(product.rule, element->parent->world, element->link.Frame().elements,
                      element->world, m);
    } else {
      Width::Copy(element->world, m);
    }
    FrameAccess::SetType(&frame, product.type);
  }
}

#ifdef ORVO_WIDE
ORVO_WIDE void AllFrames::MultiplyWide(Matrix43* frames) { Multiply<Wide>(frames); }
#endif

}  // namespace Orvo::Kin
