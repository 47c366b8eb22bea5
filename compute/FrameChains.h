#pragma once

#include "compute/KeptLink.h"

#include <Orvo/Kin/Entity.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <unordered_map>
#include <vector>

namespace Orvo::Kin {

/// The world frames of a few elements, kept from one set of axis values to the next.
///
/// The frames of the links, from an element's own up to the root's, are multiplied as
/// ComputePositionEntity does it, bit for bit. Only links whose axis values changed are computed
/// again, and of each product only the part that follows the first of them.
class FrameChains {
 public:
  /// Which axes count. The directions of a frame don't depend on linear axes; its origin is
  /// arbitrary then.
  enum class Axes { All, Rotary };

  /// Axes with these registers stay at 0, whatever the position says.
  void KeepAtZero(std::initializer_list<int> registers) { zeroRegisters_ = registers; }

  /// Takes down the links from an element, or none where that is null, up to the root. Returns
  /// false for a link that only the general computation takes: there is no such frame then.
  /// Frames are numbered as they are added.
  bool Add(const Entity* element, Axes axes);

  /// Ends the adding.
  void Prepare();

  /// The smallest size of a position that has all registers on the way.
  std::size_t RegisterBound() const { return registerBound_; }

  /// Computes the frames for axis values by register; returns whether any may have changed.
  bool Update(const double* values);

  /// Tells whether the latest Update() may have changed a frame.
  bool HasChanged(std::size_t number) const { return chains_[number].hasChanged; }

  /// A frame, after Update().
  const TypedFrame& Frame(std::size_t number) const { return chains_[number].frame; }

 private:
  struct Chain {
    template <typename Product>
    void MultiplyAs();

    Axes axes = Axes::All;
    std::vector<std::uint32_t> links;       // from the element to the root, by number
    std::vector<const TypedFrame*> frames;  // of these, from Prepare() on
    bool isExact = true;                    // the fourth rows of all links are exactly (0, 0, 0, 1)
    std::size_t firstChange = 0;  // the first place whose link changed since the last product
    bool hasChanged = false;
    TypedFrame frame;

    // The product of the links before a place, where the last change began.
    std::size_t keptPlace = 0;
    TypedFrame kept;
  };

  /// A place of a moving link in a chain.
  struct Use {
    KeptLink* link;
    Chain* chain;
    std::size_t place;
  };

  /// A register that counts, and the value that the frames are computed for. Its uses go up to
  /// those of the next register.
  struct Watched {
    std::size_t reg;
    double value;
    std::size_t firstUse;
  };

  void TakeIn(const Watched* watched);

  std::vector<int> zeroRegisters_;
  std::unordered_map<const Entity*, std::uint32_t> linkOfEntity_;  // until Prepare()
  std::vector<KeptLink> links_;
  std::vector<Chain> chains_;
  std::size_t registerBound_ = 0;
  bool isComputed_ = false;

  // By register; the last one ends the uses.
  std::vector<Watched> watched_;
  std::vector<Use> uses_;
};

}  // namespace Orvo::Kin
