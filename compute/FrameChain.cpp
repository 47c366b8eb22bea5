#include "compute/FrameChain.h"

#include "compute/SameValue.h"

#include <algorithm>

namespace Orvo::Kin {

namespace {

void SetIdentity(TypedFrame* frame) {
  CopyFrame(IdentityFrame, frame->elements);
  frame->type = Matrix43::Identity;
}

void Copy(const TypedFrame& from, TypedFrame* to) {
  CopyFrame(from.elements, to->elements);
  to->type = from.type;
}

}  // namespace

bool FrameChain::Build(const Entity* element, Axes axes) {
  *this = FrameChain();
  for (; element != nullptr; element = element->GetParentEntity()) {
    const LinkShape shape = ShapeOfLink(*element);
    if (shape.kind == LinkShape::Kind::Unknown) {
      return false;
    }
    if (shape.IsAxis()) {
      const auto reg = static_cast<std::size_t>(shape.reg);
      // A register too many would fail the link, whether or not its value counts.
      registerBound_ = std::max(registerBound_, reg + 1);
      if (axes == Axes::All || shape.IsRotary()) {
        axisPlaces_.push_back(shapes_.size());
        axisRegisters_.push_back(reg);
      }
    }
    shapes_.push_back(shape);
  }
  axisValues_.resize(axisPlaces_.size());
  links_.resize(shapes_.size());
  for (std::size_t place = 0; place < shapes_.size(); ++place) {
    ComputeLinkFrame(shapes_[place], 0.0, &links_[place]);
  }
  SetIdentity(&kept_);
  return true;
}

bool FrameChain::Update(const double* values) {
  std::size_t first = shapes_.size();
  for (std::size_t i = axisPlaces_.size(); i-- > 0;) {
    const double value = values[axisRegisters_[i]];
    if (!IsSameValue(value, axisValues_[i])) {
      first = axisPlaces_[i];
      ComputeLinkFrame(shapes_[first], value, &links_[first]);
      axisValues_[i] = value;
    }
  }
  if (!isComputed_) {
    isComputed_ = true;
    Multiply(0);
    return true;
  }
  if (first == shapes_.size()) {
    return false;
  }
  Multiply(first);
  return true;
}

void FrameChain::Multiply(std::size_t first) {
  // Goes on from the kept product where that holds, and keeps the one before the first change.
  TypedFrame buffers[2];
  TypedFrame* product = &buffers[0];
  TypedFrame* other = &buffers[1];
  std::size_t place = 0;
  if (keptPlace_ <= first) {
    Copy(kept_, product);
    place = keptPlace_;
  } else {
    SetIdentity(product);
  }
  for (; place < shapes_.size(); ++place) {
    if (place == first) {
      Copy(*product, &kept_);
      keptPlace_ = first;
    }
    const TypedFrame& link = links_[place];
    if (link.type == Matrix43::Translation && product->type == Matrix43::RotationTranslation) {
      // The product of the general formula, in place.
      double* const m = product->elements;
      m[3] = m[7] = m[11] = 0.0;
      StoreLanes(m + 12, WithW(Add(LoadLanes(link.elements + 12), LoadLanes(m + 12)), 1.0));
      continue;
    }
    other->type =
        MultiplyFrames(link.elements, link.type, product->elements, product->type, other->elements);
    std::swap(product, other);
  }
  Copy(*product, &frame_);
}

}  // namespace Orvo::Kin
