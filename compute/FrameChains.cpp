#include "compute/FrameChains.h"

#include "compute/SameValue.h"
#include "geometry/FrameRows.h"
#include "geometry/WideRows.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

namespace Orvo::Kin {

namespace {

void SetIdentity(TypedFrame* frame) {
  CopyFrame(IdentityFrame, frame->elements);
  frame->type = Matrix43::Identity;
}

// So few links are multiplied as quickly as it is found out where the first change is.
constexpr std::size_t ShortChain = 16;

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

#ifdef ORVO_WIDE
// Tells whether the sine and the cosine of a turn about X, Y or Z are numbers. The latter stands in
// one of these two places at least.
bool HasNumbers(const double* turn) { return !std::isnan(turn[0] * turn[5]); }
#endif

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
    const KeptLink& link = links_[found->second];
    if (link.Frame().type != Matrix43::Identity) {
      chain.links.push_back(found->second);
      chain.isExact = chain.isExact && HasExactFourthRow(link.Frame());
    }
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
    for (const std::uint32_t number : chain.links) {
      chain.steps.push_back({&links_[number]});
    }
    chain.firstChange = chain.keptPlace = chain.steps.data();
    chain.end = chain.firstMoving = chain.steps.data() + chain.steps.size();
    for (std::size_t i = 0; i < chain.links.size(); ++i) {
      KeptLink& link = links_[chain.links[i]];
      if (isMoving(chain, link)) {
        uses_.push_back({&link, &chain, chain.steps.data() + i});
      }
    }
    chain.links = {};
  }
  // In the order in which links are multiplied, as they were taken down.
  std::sort(uses_.begin(), uses_.end(), [](const Use& a, const Use& b) {
    return a.link != b.link ? std::less<>()(a.link, b.link) : std::less<>()(a.chain, b.chain);
  });
  const bool areShort = std::all_of(chains_.begin(), chains_.end(),
                                    [](const Chain& c) { return c.steps.size() <= ShortChain; });
  for (std::size_t i = 0; i < uses_.size(); ++i) {
    Use& use = uses_[i];
    const auto bit = 1U << static_cast<unsigned>(use.chain - chains_.data());
    if (use.chain->steps.size() <= ShortChain) {
      use.chain->firstMoving = std::min(use.chain->firstMoving, use.place);
    }
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
  const unsigned changed = SetAxisValues(values);
  if (changed == 0 && !isFirst) {
    return false;
  }
#ifdef ORVO_WIDE
  if (isWide_) {
    MultiplyWide(changed);
    return true;
  }
#endif
  Multiply(changed);
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

// With the rules of the products at hand.
inline bool FrameChains::Chain::HasToBeMultiplied(bool isMoved) {
  if (isMoved) {
    firstChange = std::min(firstChange, firstMoving);
  }
  hasChanged = firstChange != end;
  if (hasChanged && !areKindsKnown) {
    FindProducts();
  }
  return hasChanged;
}

// The kinds of products are known before their numbers are; they change when a rotary axis comes to
// stand at 0, or leaves it. Products of exact unit axes need not be computed. Apart from what is
// done at each call, as everything rare.
[[gnu::noinline]] void FrameChains::Chain::FindProducts() {
  areKindsKnown = true;
  areDirectionsStored = false;
  firstTurn = nullptr;
  Matrix43::Type type = Matrix43::Identity;
  bool isShifted = true;
  for (Step& step : steps) {
    const Matrix43::Type linkType = step.link->Frame().type;
    step.product = KindOfProduct(linkType, type);
    if (isShifted && step.product.rule == ProductRule::LeftMoved &&
        step.link->AffineRule() >= ProductRule::TurnedX) {
      firstTurn = &step;
      turnRule = step.link->AffineRule();
    }
    isShifted =
        isShifted && linkType == Matrix43::Translation && HasExactUnitAxes(step.link->Frame());
    if (step.product.rule == ProductRule::Affine) {
      step.product.rule = isShifted ? ProductRule::Shifted : step.link->AffineRule();
    }
    type = step.product.type;
  }
  frame.type = type;
  hasUnitAxes = isShifted;
  const auto hasRule = [this](const Step* step, ProductRule rule) {
    return step != steps.data() && step[-1].product.rule == rule;
  };
  firstMove = end;
  while (hasRule(firstMove, ProductRule::RightMoved)) {
    --firstMove;
  }
  shift = hasRule(firstMove, ProductRule::Shifted) ? --firstMove : nullptr;
}

// Forgets the kept product where it no longer holds, and returns the place to go on from.
inline const FrameChains::Step* FrameChains::Chain::Resume() {
  if (keptPlace > firstChange) {
    keptPlace = steps.data();
    CopyFrame(IdentityFrame, kept);
  }
  return keptPlace;
}

// Goes on from the kept product where that holds, and keeps the one before the first change.
template <typename Product>
inline void FrameChains::Chain::MultiplyAs() {
  const Step* step = Resume();
  Product product(kept);
  const auto precedeUpTo = [&](const Step* place) {
    for (; step != place; ++step) {
      product.Precede(step->product.rule, step->link->Frame().elements);
    }
  };
  if (step != firstChange) {
    precedeUpTo(firstChange);
    product.Store(kept);
    keptPlace = firstChange;
  }
  precedeUpTo(end);
  product.Store(frame.elements);
  firstChange = end;
}

[[gnu::noinline]] void FrameChains::Chain::MultiplyInMemory() { MultiplyAs<ProductInMemory>(); }

// Multiplies the chains whose bits are set, and those that never were.
void FrameChains::Multiply(unsigned changed) {
  for (Chain& chain : chains_) {
    if (chain.HasToBeMultiplied((changed & 1U) != 0)) {
      if (chain.isExact) {
        chain.MultiplyAs<ProductInRows>();
      } else {
        chain.MultiplyInMemory();
      }
    }
    changed >>= 1U;
  }
}

#ifdef ORVO_WIDE
// The same with wide rows, which are kept as they are. A chain mostly begins to change at a turn of
// exact unit axes. The product then has the turn's own directions; to compute them from its sine
// and cosine is quicker than to gather its rows, and gives the same unless these are no numbers. A
// chain mostly ends with linear axes and what carries them, which only move the origin.
ORVO_WIDE_INLINE void FrameChains::Chain::MultiplyWide() {
  double* const keptRows = kept + (IdentityRows - IdentityFrame);
  const Step* step = Resume();
  WideRows product = LoadRowsWide(keptRows);
  if (step != firstChange) {
    for (; step != firstChange; ++step) {
      product = MultiplyRowsWide(step->product.rule, step->link->Frame().elements, product);
    }
    StoreRowsWide(product, keptRows);
    keptPlace = firstChange;
  }
  if (step < firstMove || !areDirectionsStored) {
    if (step == firstTurn && HasNumbers(step->link->Frame().elements)) {
      product = TurnRowsWide(turnRule, step->link->Frame().elements, product);
      ++step;
    }
    for (; step < firstMove; ++step) {
      product = MultiplyRowsWide(step->product.rule, step->link->Frame().elements, product);
    }
    StoreRowsWide(product, rows.rows);
    areDirectionsStored = true;
  }
  Lanes origin = OriginOfRows(product);
  if (step == shift) {
    origin = ImageOfPoint(step->link->Frame().elements, origin.xy[0], origin.xy[1], origin.zw[0]);
    ++step;
  }
  for (; step != end; ++step) {
    const double* const way = step->link->Frame().elements + 12;
    origin.xy = _mm_add_pd(origin.xy, _mm_load_pd(way));
    origin.zw = _mm_add_sd(origin.zw, _mm_load_sd(way + 2));
  }
  StoreLanes(rows.origin, origin);
  isFrameWritten = false;
  firstChange = end;
}

ORVO_WIDE void FrameChains::MultiplyWide(unsigned changed) {
  for (Chain& chain : chains_) {
    if (chain.HasToBeMultiplied((changed & 1U) != 0)) {
      if (chain.isExact) {
        chain.MultiplyWide();
      } else {
        chain.MultiplyInMemory();
      }
    }
    changed >>= 1U;
  }
}

ORVO_WIDE void FrameChains::Chain::WriteFrame() {
  StoreWide(FrameOfRows(rows), frame.elements);
  isFrameWritten = true;
}
#endif

}  // namespace Orvo::Kin
