#include "compute/FrameChains.h"

#include "compute/SameValue.h"
#include "geometry/FrameRows.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace Orvo::Kin {

namespace {

void SetIdentity(TypedFrame* frame) {
  CopyFrame(IdentityFrame, frame->elements);
  frame->type = Matrix43::Identity;
}

// A frame as the right factor of a long product, once no shortcut but that of translations is left.
class RunningProduct {
 public:
  explicit RunningProduct(const TypedFrame& frame)
      : rows_(LoadRows(frame.elements)), type_(frame.type) {}

  // Puts a link before the product, as MultiplyFrames() does.
  void Precede(const TypedFrame& link) {
    if (link.type == Matrix43::Identity) {
      return;
    }
    if (link.type == Matrix43::Translation && type_ != Matrix43::General) {
      rows_ = ShiftRows(link.elements, rows_);
      return;
    }
    rows_ = MultiplyRows(link.elements, rows_);
    if (link.type == Matrix43::General) {
      type_ = Matrix43::General;
    }
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
  }
  SetIdentity(&chain.frame);
  SetIdentity(&chain.kept.frame);
  chains_.push_back(std::move(chain));
  return true;
}

void FrameChains::Prepare() {
  linkOfEntity_ = {};

  // Where the moving links stand in the chains.
  const auto linkNb = static_cast<std::uint32_t>(links_.size());
  const auto isMoving = [this](const Chain& chain, std::uint32_t link) {
    const KeptLink& moving = links_[link];
    return moving.IsAxis() && (chain.axes == Axes::All || moving.IsRotary()) &&
           std::find(zeroRegisters_.begin(), zeroRegisters_.end(), moving.Reg()) ==
               zeroRegisters_.end();
  };
  usesStart_.resize(linkNb + 1);
  for (const Chain& chain : chains_) {
    for (const std::uint32_t link : chain.links) {
      usesStart_[link + 1] += isMoving(chain, link) ? 1U : 0U;
    }
  }
  std::partial_sum(usesStart_.begin(), usesStart_.end(), usesStart_.begin());
  usesByLink_.resize(usesStart_.back());
  Starts next = usesStart_;
  for (std::uint32_t number = 0; number < chains_.size(); ++number) {
    const Chain& chain = chains_[number];
    for (std::uint32_t place = 0; place < chain.links.size(); ++place) {
      if (isMoving(chain, chain.links[place])) {
        usesByLink_[next[chain.links[place]]++] = {number, place};
      }
    }
  }

  // These links by register.
  for (std::uint32_t link = 0; link < linkNb; ++link) {
    if (usesStart_[link] < usesStart_[link + 1]) {
      linksByRegister_.push_back(link);
    }
  }
  std::stable_sort(
      linksByRegister_.begin(), linksByRegister_.end(),
      [this](std::uint32_t a, std::uint32_t b) { return links_[a].Reg() < links_[b].Reg(); });
  for (std::uint32_t i = 0; i < linksByRegister_.size(); ++i) {
    const auto reg = static_cast<std::size_t>(links_[linksByRegister_[i]].Reg());
    if (registers_.empty() || registers_.back() != reg) {
      registers_.push_back(reg);
      linksStart_.push_back(i);
    }
  }
  linksStart_.push_back(static_cast<std::uint32_t>(linksByRegister_.size()));
  values_.resize(registers_.size());
}

bool FrameChains::Update(const double* values) {
  bool hasChanged = !isComputed_;
  isComputed_ = true;
  const std::size_t watchedNb = registers_.size();
  for (std::size_t i = 0; i < watchedNb; ++i) {
    const double value = values[registers_[i]];
    if (!IsSameValue(value, values_[i])) {
      values_[i] = value;
      TakeIn(i);
    }
  }
  for (Chain& chain : chains_) {
    if (chain.firstChange < chain.links.size()) {
      chain.Multiply(links_);
      hasChanged = true;
    }
  }
  return hasChanged;
}

void FrameChains::TakeIn(std::size_t watched) {
  for (std::uint32_t i = linksStart_[watched]; i < linksStart_[watched + 1]; ++i) {
    const std::uint32_t link = linksByRegister_[i];
    links_[link].SetAxisValue(values_[watched]);
    for (std::uint32_t use = usesStart_[link]; use < usesStart_[link + 1]; ++use) {
      std::size_t& firstChange = chains_[usesByLink_[use].chain].firstChange;
      firstChange = std::min<std::size_t>(firstChange, usesByLink_[use].place);
    }
  }
}

// Goes on from the kept product where that holds, and keeps the one before the first change.
void FrameChains::Chain::Multiply(const std::vector<KeptLink>& allLinks) {
  const std::size_t linkNb = links.size();
  if (keptPlace > firstChange) {
    keptPlace = 0;
    SetIdentity(&kept.frame);
    kept.isGeneral = false;
  }
  Product products[2];
  Product* product = &kept;
  std::size_t place = keptPlace;
  const auto linkAt = [this, &allLinks](std::size_t at) -> const TypedFrame& {
    return allLinks[links[at]].Frame();
  };
  const auto keep = [this, &place](const Product& reached) {
    kept = reached;
    keptPlace = place;
  };
  for (; place < linkNb && !product->isGeneral; ++place) {
    const TypedFrame& link = linkAt(place);
    if (place == firstChange && product != &kept) {
      keep(*product);
    }
    Product* const next = product == &products[0] ? &products[1] : &products[0];
    Orvo::Kin::Multiply(link, product->frame, &next->frame);
    next->isGeneral = link.type != Matrix43::Identity &&
                      product->frame.type != Matrix43::Identity &&
                      next->frame.type != Matrix43::Rotation;
    product = next;
  }
  if (product->isGeneral) {
    RunningProduct running(product->frame);
    for (; place < firstChange; ++place) {
      running.Precede(linkAt(place));
    }
    if (place == firstChange && place != keptPlace) {
      running.Store(&kept.frame);
      kept.isGeneral = true;
      keptPlace = place;
    }
    for (; place < linkNb; ++place) {
      running.Precede(linkAt(place));
    }
    running.Store(&frame);
  } else {
    frame = product->frame;
  }
  firstChange = linkNb;
}

}  // namespace Orvo::Kin
