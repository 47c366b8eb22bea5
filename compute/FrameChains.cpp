#include "compute/FrameChains.h"

#include "compute/SameValue.h"
#include "geometry/FrameRows.h"

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
  explicit ProductInMemory(const TypedFrame& frame) : frame_(frame) {}

  void Precede(const TypedFrame& link) {
    const TypedFrame right = frame_;
    Multiply(link, right, &frame_);
  }

  void Store(TypedFrame* frame) const { *frame = frame_; }

 private:
  TypedFrame frame_;
};

// The same in registers, which have no room for fourth rows.
class ProductInRows {
 public:
  explicit ProductInRows(const TypedFrame& frame)
      : rows_(LoadRows(frame.elements)), type_(frame.type) {}

  void Precede(const TypedFrame& link) {
    const ProductKind kind = KindsOfProducts.kinds[link.type][type_];
    rows_ = MultiplyRows(kind.rule, link.elements, rows_);
    type_ = kind.type;
  }

  void Store(TypedFrame* frame) const {
    StoreRows(rows_, frame->elements);
    frame->type = type_;
  }

 private:
  FrameRows rows_;
  Matrix43::Type type_;
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
  SetIdentity(&chain.kept);
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
      chain.frames.push_back(&link.Frame());
      if (isMoving(chain, link)) {
        uses_.push_back({&link, &chain, place});
      }
    }
    chain.links = {};
  }
  const auto regOf = [](const Use& use) { return static_cast<std::size_t>(use.link->Reg()); };
  std::sort(uses_.begin(), uses_.end(), [&regOf](const Use& a, const Use& b) {
    return regOf(a) != regOf(b) ? regOf(a) < regOf(b) : std::less<>()(a.link, b.link);
  });
  for (std::size_t use = 0; use < uses_.size(); ++use) {
    if (watched_.empty() || watched_.back().reg != regOf(uses_[use])) {
      watched_.push_back({regOf(uses_[use]), 0.0, use});
    }
  }
  watched_.push_back({0, 0.0, uses_.size()});
}

bool FrameChains::Update(const double* values) {
  bool hasChanged = !isComputed_;
  isComputed_ = true;
  Watched* const end = watched_.data() + watched_.size() - 1;
  for (Watched* watched = watched_.data(); watched != end; ++watched) {
    const double value = values[watched->reg];
    if (!IsSameValue(value, watched->value)) {
      watched->value = value;
      TakeIn(watched);
      hasChanged = true;
    }
  }
  if (!hasChanged) {
    return false;
  }
  for (Chain& chain : chains_) {
    chain.hasChanged = chain.firstChange < chain.frames.size();
    if (chain.hasChanged) {
      if (chain.isExact) {
        chain.MultiplyAs<ProductInRows>();
      } else {
        chain.MultiplyAs<ProductInMemory>();
      }
    }
  }
  return true;
}

inline void FrameChains::TakeIn(const Watched* watched) {
  const Use* const end = uses_.data() + watched[1].firstUse;
  const KeptLink* latest = nullptr;
  for (const Use* use = uses_.data() + watched[0].firstUse; use != end; ++use) {
    if (use->link != latest) {
      latest = use->link;
      use->link->SetAxisValue(watched->value);
    }
    use->chain->firstChange = std::min(use->chain->firstChange, use->place);
  }
}

// Goes on from the kept product where that holds, and keeps the one before the first change.
template <typename Product>
void FrameChains::Chain::MultiplyAs() {
  const std::size_t linkNb = frames.size();
  if (keptPlace > firstChange) {
    keptPlace = 0;
    SetIdentity(&kept);
  }
  Product product(kept);
  std::size_t place = keptPlace;
  if (place < firstChange) {
    for (; place < firstChange; ++place) {
      product.Precede(*frames[place]);
    }
    product.Store(&kept);
    keptPlace = firstChange;
  }
  for (; place < linkNb; ++place) {
    product.Precede(*frames[place]);
  }
  product.Store(&frame);
  firstChange = linkNb;
}

}  // namespace Orvo::Kin
