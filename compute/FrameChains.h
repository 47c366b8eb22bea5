#pragma once

#include "compute/KeptLink.h"
#include "geometry/WideFrame.h"

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

  /// Leaves frames as rows, where these are at hand, until they are asked for.
  void PreferRows() { prefersRows_ = true; }

  /// Takes down the links from an element, or none where that is null, up to the root. Returns
  /// false for a link that only the general computation takes: there is no such frame then.
  /// Frames are numbered as they are added; there are at most 32.
  bool Add(const Entity* element, Axes axes);

  /// Ends the adding.
  void Prepare();

  /// The smallest size of a position that has all registers on the way.
  std::size_t RegisterBound() const { return registerBound_; }

  /// Computes the frames for axis values by register; returns whether any may have changed.
  bool Update(const double* values) {
    return (!isComputed_ || !rotaryAxes_.empty() || !linearAxes_.empty()) && UpdateChains(values);
  }

  /// Tells whether the latest Update() may have changed a frame.
  bool HasChanged(std::size_t number) const { return chains_[number].hasChanged; }

  /// The kind of a frame, after Update().
  Matrix43::Type Type(std::size_t number) const { return chains_[number].frame.type; }

  /// A frame, after Update().
  const TypedFrame& Frame(std::size_t number) {
    Chain& chain = chains_[number];
#ifdef ORVO_WIDE
    if (!chain.isFrameWritten) {
      chain.WriteFrame();
    }
#endif
    return chain.frame;
  }

  /// Tells whether Rows() holds a frame; not that of a null element.
  bool HasRows(std::size_t number) const {
    return isWide_ && prefersRows_ && chains_[number].isExact && !chains_[number].steps.empty();
  }

  /// A frame, after Update(), as StoreRowsWide() writes it.
  const double* Rows(std::size_t number) const { return chains_[number].rows; }

 private:
  /// How a link is multiplied onto the product of those before it, and the kind of the product.
  struct Step {
    const KeptLink* link;
    ProductKind product{};
  };

  struct Chain {
    /// So few links are multiplied as quickly as it is found out where the first change is.
    bool IsShort() const { return steps.size() <= 16; }

    void FindProducts();
    std::size_t Resume();
    void Finish();
    template <typename Product>
    void MultiplyAs();
    void MultiplyWide(bool writesFrame);
    void WriteFrame();

    Axes axes = Axes::All;
    std::vector<std::uint32_t> links;  // from the element to the root, by number, until Prepare()
    std::vector<Step> steps;           // from then on, of the same
    bool isExact = true;               // the fourth rows of all links are exactly (0, 0, 0, 1)
    bool areKindsKnown = false;
    std::size_t firstMoving = 0;  // the first place of an axis that counts
    std::size_t firstChange = 0;  // the first place whose link changed since the last product
    bool hasChanged = false;
    bool isFrameWritten = true;
    alignas(32) TypedFrame frame;
    alignas(32) double rows[12] = {};

    // The product of the links before a place, where the last change began: by columns, or by
    // rows where these are multiplied.
    std::size_t keptPlace = 0;
    alignas(32) double kept[16] = {};
  };

  /// A place of a moving link in a chain.
  struct Use {
    KeptLink* link;
    Chain* chain;
    std::size_t place;
    const Use* next = nullptr;  // of the same link
  };

  /// An axis that counts, with the value that its link is computed for.
  struct Axis {
    std::size_t reg;
    double value;
    KeptLink* link;
    unsigned chains;      // those that it moves, a bit to each
    const Use* firstUse;  // null where chains are short
  };

  bool UpdateChains(const double* values);
  static void TakeIn(const Axis& axis);
  unsigned SetAxisValues(const double* values);
  void ForgetKinds(unsigned chains);

  std::vector<int> zeroRegisters_;
  std::unordered_map<const Entity*, std::uint32_t> linkOfEntity_;  // until Prepare()
  std::vector<KeptLink> links_;
  std::vector<Chain> chains_;
  std::vector<Use> uses_;  // by link
  std::vector<Axis> linearAxes_;
  std::vector<Axis> rotaryAxes_;
  std::size_t registerBound_ = 0;
  bool isComputed_ = false;
  bool prefersRows_ = false;
  bool isWide_ = HasWideLanes();
};

}  // namespace Orvo::Kin
