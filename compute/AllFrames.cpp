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

// An identity is not written onto another one, as everywhere.
void WriteIdentity(Matrix43* frame) {
  if (FrameAccess::Type(*frame) != Matrix43::Identity) {
    CopyFrame(IdentityFrame, FrameAccess::Elements(frame));
    FrameAccess::SetType(frame, Matrix43::Identity);
  }
}

}  // namespace

bool AllFrames::Build(const std::vector<const Entity*>& entities, std::size_t frameNb) {
  *this = AllFrames();
  frameNb_ = frameNb;
  // The addresses of all stay as they are.
  links_.reserve(entities.size());
  steps_.reserve(entities.size() + 1);
  steps_.emplace_back().product.type = Matrix43::Identity;
  std::vector<const Step*> stepAt(frameNb, nullptr);
  for (const Entity* entity : entities) {
    KeptLink link;
    if (!link.TakeDown(*entity) || !HasExactFourthRow(link.Frame())) {
      return false;
    }
    const auto reg = static_cast<std::size_t>(link.Reg());
    if (link.IsAxis()) {
      registerBound_ = std::max(registerBound_, reg + 1);
    }
    const std::optional<std::size_t> place = PlaceOf(entity, frameNb);
    if (!place) {
      continue;
    }
    links_.push_back(std::move(link));
    KeptLink& kept = links_.back();
    if (kept.IsAxis()) {
      (kept.IsRotary() ? rotaryAxes_ : linearAxes_).push_back({reg, 0.0, &kept});
    }
    const std::optional<std::size_t> parentPlace = PlaceOf(entity->GetParentEntity(), frameNb);
    Step& step = steps_.emplace_back();
    step.parent = parentPlace ? stepAt[*parentPlace] : steps_.data();
    step.link = &kept;
    step.place = *place;
    if (step.parent == nullptr) {
      return false;
    }
    stepAt[step.place] = &step;
  }
  return true;
}

bool AllFrames::Compute(const double* values, Matrix43* frames) {
  SetAxisValues(values);
  if (!areKindsKnown_) {
    FindProducts();
  }
#ifdef ORVO_WIDE
  if (isWide_) {
    MultiplyWide(frames);
    return true;
  }
#endif
  Multiply(frames);
  return true;
}

inline void AllFrames::SetAxisValues(const double* values) {
  for (Axis& axis : linearAxes_) {
    const double value = values[axis.reg];
    if (!IsSameValue(value, axis.value)) {
      axis.value = value;
      axis.link->SetTravel(value);
    }
  }
  for (Axis& axis : rotaryAxes_) {
    const double value = values[axis.reg];
    if (!IsSameValue(value, axis.value)) {
      axis.value = value;
      const Matrix43::Type typeBefore = axis.link->Frame().type;
      axis.link->SetTurn(value);
      if (axis.link->Frame().type != typeBefore) {
        areKindsKnown_ = false;
      }
    }
  }
}

// The kinds of all frames are known before their numbers are; they change when a rotary axis comes
// to stand at 0, or leaves it. Products of exact unit axes need not be computed.
void AllFrames::FindProducts() {
  areKindsKnown_ = true;
  for (std::size_t i = 1; i < steps_.size(); ++i) {
    Step& step = steps_[i];
    const Step& parent = *step.parent;
    const Matrix43::Type linkType = step.link->Frame().type;
    step.product = KindOfProduct(parent.product.type, linkType);
    const bool isShift = linkType == Matrix43::Translation && HasExactUnitAxes(step.link->Frame());
    if (step.product.rule == ProductRule::Affine) {
      step.product.rule =
          isShift && parent.isShifted ? ProductRule::LeftMoved : step.link->AffineRule();
    }
    step.isNextInChain = step.parent == &step - 1 && step.product.type != Matrix43::Identity;
    step.isShifted =
        linkType == Matrix43::Identity
            ? parent.isShifted
            : isShift && (parent.isShifted || parent.product.type == Matrix43::Identity);
  }
}

// Parents are read where they were written to; identities are not read.
void AllFrames::Multiply(Matrix43* frames) const {
  const Step* const end = steps_.data() + steps_.size();
  for (const Step* step = steps_.data() + 1; step != end; ++step) {
    Matrix43& frame = frames[step->place];
    double* const m = FrameAccess::Elements(&frame);
    if (step->product.type == Matrix43::Identity) {
      WriteIdentity(&frame);
      continue;
    }
    MultiplyFrames(step->product.rule, FrameAccess::Elements(frames[step->parent->place]),
                   step->link->Frame().elements, m);
    FrameAccess::SetType(&frame, step->product.type);
  }
}

#ifdef ORVO_WIDE
// The same, with the frame of the step before in registers: it mostly is the parent.
ORVO_WIDE void AllFrames::MultiplyWide(Matrix43* frames) const {
  WideFrame world = LoadWide(IdentityFrame);
  const Step* const end = steps_.data() + steps_.size();
  for (const Step* step = steps_.data() + 1; step != end; ++step) {
    Matrix43& frame = frames[step->place];
    double* const m = FrameAccess::Elements(&frame);
    if (!step->isNextInChain) {
      if (step->product.type == Matrix43::Identity) {
        WriteIdentity(&frame);
        continue;
      }
      world = LoadWide(FrameAccess::Elements(std::as_const(frames[step->parent->place])));
    }
    world = MultiplyFrameWide(step->product.rule, world, step->link->Frame().elements);
    StoreWide(world, m);
    FrameAccess::SetType(&frame, step->product.type);
  }
}
#endif

}  // namespace Orvo::Kin
