#include "compute/FrameChains.h"

#include "compute/SameValue.h"
#include "geometry/FrameRows.h"
#include "geometry/WideRows.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace Orvo::Kin {

namespace {

void SetIdentity(TypedFrame* frame) {
  CopyFrame(IdentityFrame, frame->elements);
  frame->type = Matrix43::Identity;
}

// The product of some links of a chain, to which more are added before it.
class ProductInMemory {
 public:
  explicit ProductInMemory(const double* frame) { CopyFrame(frame, frame_); }

  void Precede(ProductRule rule, const double* link) {
    alignas(16) double right[16];
    CopyFrame(frame_, right);
    MultiplyFrames(rule, link, right, frame_);
  }

  void Store(double* frame) const { CopyFrame(frame_, frame); }

 private:
  alignas(16) double frame_[16];
};

// The same in registers, which have no room for fourth rows.
class ProductInRows {
 public:
  explicit ProductInRows(const double* frame) : rows_(LoadRows(frame)) {}

  void Precede(ProductRule rule, const double* link) { rows_ = MultiplyRows(rule, link, rows_); }

  void Store(double* frame) const { StoreRows(rows_, frame); }

 private:
  FrameRows rows_;
};

}  // namespace

bool FrameChains::Add(const Entity* element, Axes axes) {
  Chain chain;
  chain.axes = axes;
  for (; element != nullptr; element = element->GetParentEntity()) {
    const auto [found, isNew] =
        linkOfEntity_.try_emplace(element, static_cast<std::uint32_t>(links_.size()));
    if (isNew) {
      links_.emplace_back();
      if (!links_.back().TakeDown(*element)) {
        return false;
      }
      // A register too many would fail the link, whether or not its value counts.
      registerBound_ = std::max(registerBound_, static_cast<std::size_t>(links_.back().Reg() + 1));
    }
    chain.links.push_back(found->second);
    chain.isExact = chain.isExact && HasExactFourthRow(links_[found->second].Frame());
  }
  SetIdentity(&chain.frame);
  CopyFrame(IdentityFrame, chain.kept);
  chains_.push_back(std::move(chain));
  return true;
}

void FrameChains::Prepare() {
  linkOfEntity_ = {};
  const auto isMoving = [this](const Chain& chain, const KeptLink& link) {
    return link.IsAxis() && (chain.axes == Axes::All || link.IsRotary()) &&
           std::find(zeroRegisters_.begin(), zeroRegisters_.end(), link.Reg()) ==
               zeroRegisters_.end();
  };
  for (Chain& chain : chains_) {
    for (std::size_t place = 0; place < chain.links.size(); ++place) {
      KeptLink& link = links_[chain.links[place]];
      chain.steps.push_back({&link});
      if (isMoving(chain, link)) {
        uses_.push_back({&link, &chain, place});
      }
    }
    chain.links = {};
    chain.firstMoving = chain.steps.size();
  }
  // In the order in which links are multiplied, as they were taken down.
  std::sort(uses_.begin(), uses_.end(), [](const Use& a, const Use& b) {
    return a.link != b.link ? std::less<>()(a.link, b.link) : std::less<>()(a.chain, b.chain);
  });
  const bool areShort = std::all_of(chains_.begin(), chains_.end(),
                                    [](const Chain& chain) { return chain.IsShort(); });
  for (std::size_t i = 0; i < uses_.size(); ++i) {
    Use& use = uses_[i];
    const auto bit = 1U << static_cast<unsigned>(use.chain - chains_.data());
    use.chain->firstMoving = std::min(use.chain->firstMoving, use.place);
    std::vector<Axis>& axes = use.link->IsRotary() ? rotaryAxes_ : linearAxes_;
    if (i != 0 && uses_[i - 1].link == use.link) {
      axes.back().chains |= bit;
      uses_[i - 1].next = &use;
    } else {
      axes.push_back({static_cast<std::size_t>(use.link->Reg()), 0.0, use.link, bit,
                      areShort ? nullptr : &use});
    }
  }
}

bool FrameChains::UpdateChains(const double* values) {
  const bool isFirst = !isComputed_;
  isComputed_ = true;
  unsigned changed = SetAxisValues(values);
  if (changed == 0 && !isFirst) {
    return false;
  }
  for (Chain& chain : chains_) {
    if ((changed & 1U) != 0 && chain.IsShort()) {
      chain.firstChange = std::min(chain.firstChange, chain.firstMoving);
    }
    changed >>= 1U;
    chain.hasChanged = chain.firstChange < chain.steps.size();
    if (chain.hasChanged) {
      if (!chain.areKindsKnown) {
        chain.FindProducts();
      }
      if (!chain.isExact) {
        chain.MultiplyAs<ProductInMemory>();
      } else {
#ifdef ORVO_WIDE
        if (isWide_) {
          chain.MultiplyWide(!prefersRows_);
          continue;
        }
#endif
        chain.MultiplyAs<ProductInRows>();
      }
    }
  }
  return true;
}

// Returns which chains another value of an axis changes. Rotary axes come first: what doesn't need
// them goes on while sines and cosines are under way.
inline unsigned FrameChains::SetAxisValues(const double* values) {
  unsigned changed = 0;
  for (Axis& axis : rotaryAxes_) {
    const double value = values[axis.reg];
    if (!IsSameValue(value, axis.value)) {
      axis.value = value;
      const Matrix43::Type typeBefore = axis.link->Frame().type;
      axis.link->SetTurn(value);
      TakeIn(axis);
      changed |= axis.chains;
      if (axis.link->Frame().type != typeBefore) {
        ForgetKinds(axis.chains);
      }
    }
  }
  for (Axis& axis : linearAxes_) {
    const double value = values[axis.reg];
    if (!IsSameValue(value, axis.value)) {
      axis.value = value;
      axis.link->SetTravel(value);
      TakeIn(axis);
      changed |= axis.chains;
    }
  }
  return changed;
}

inline void FrameChains::TakeIn(const Axis& axis) {
  for (const Use* use = axis.firstUse; use != nullptr; use = use->next) {
    use->chain->firstChange = std::min(use->chain->firstChange, use->place);
  }
}

void FrameChains::ForgetKinds(unsigned chains) {
  for (Chain& chain : chains_) {
    chain.areKindsKnown = chain.areKindsKnown && (chains & 1U) == 0;
    chains >>= 1U;
  }
}

// The kinds of products are known before their numbers are; they change when a rotary axis comes to
// stand at 0, or leaves it. Products of exact unit axes need not be computed.
void FrameChains::Chain::FindProducts() {
  areKindsKnown = true;
  Matrix43::Type type = Matrix43::Identity;
  bool isShifted = true;
  for (Step& step : steps) {
    const Matrix43::Type linkType = step.link->Frame().type;
    step.product = KindOfProduct(linkType, type);
    isShifted = isShifted &&
                (linkType == Matrix43::Identity || linkType == Matrix43::Translation) &&
                HasExactUnitAxes(step.link->Frame());
    if (step.product.rule == ProductRule::Affine) {
      step.product.rule = isShifted ? ProductRule::Shifted : step.link->AffineRule();
    }
    type = step.product.type;
  }
}

// Forgets the kept product where it no longer holds, and returns the place to go on from.
inline std::size_t FrameChains::Chain::Resume() {
  if (keptPlace > firstChange) {
    keptPlace = 0;
    CopyFrame(IdentityFrame, kept);
  }
  return keptPlace;
}

inline void FrameChains::Chain::Finish() {
  frame.type = steps.back().product.type;
  firstChange = steps.size();
}

// Goes on from the kept product where that holds, and keeps the one before the first change.
template <typename Product>
inline void FrameChains::Chain::MultiplyAs() {
  std::size_t place = Resume();
  Product product(kept);
  const auto precedeUpTo = [&](std::size_t endPlace) {
    for (; place != endPlace; ++place) {
      product.Precede(steps[place].product.rule, steps[place].link->Frame().elements);
    }
  };
  if (keptPlace != firstChange) {
    precedeUpTo(firstChange);
    product.Store(kept);
    keptPlace = firstChange;
  }
  precedeUpTo(steps.size());
  product.Store(frame.elements);
  Finish();
}

#ifdef ORVO_WIDE
// The same with wide rows, which are kept as they are.
ORVO_WIDE void FrameChains::Chain::MultiplyWide(bool writesFrame) {
  double* const keptRows = kept + (IdentityRows - IdentityFrame);
  const Step* step = steps.data() + Resume();
  const Step* const change = steps.data() + firstChange;
  const Step* const end = steps.data() + steps.size();
  WideRows product = LoadRowsWide(keptRows);
  if (step != change) {
    for (; step != change; ++step) {
      product = MultiplyRowsWide(step->product.rule, step->link->Frame().elements, product);
    }
    StoreRowsWide(product, keptRows);
    keptPlace = firstChange;
  }
  for (; step != end; ++step) {
    product = MultiplyRowsWide(step->product.rule, step->link->Frame().elements, product);
  }
  isFrameWritten = writesFrame;
  if (writesFrame) {
    StoreWide(FrameOfRows(product), frame.elements);
  } else {
    StoreRowsWide(product, rows);
  }
  Finish();
}

ORVO_WIDE void FrameChains::Chain::WriteFrame() {
  StoreWide(FrameOfRows(LoadRowsWide(rows)), frame.elements);
  isFrameWritten = true;
}
#endif

}  // namespace Orvo::Kin
