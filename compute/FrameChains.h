#pragma once

#include "compute/KeptLink.h"
#include "geometry/WideRows.h"

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

  /// Takes down the links from an element, or none where that is null, up to the root; identities
  /// leave all products as they are, and count for nothing. Returns
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

  /// Tells whether the directions of a frame are exactly the unit axes, after Update().
  bool HasUnitAxes(std::size_t number) const { return chains_[number].hasUnitAxes; }

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

  /// Tells whether Rows() holds a frame; not the identity that stands for no links.
  bool HasRows(std::size_t number) const {
    return isWide_ && chains_[number].isExact && !chains_[number].steps.empty();
  }

  /// A frame, after Update(), as it is before Frame() asks for it.
  const StoredRows& Rows(std::size_t number) const { return chains_[number].rows; }

 private:
  /// How a link is multiplied onto the product of those before it, and the kind of the product.
  struct Step {
    const KeptLink* link;
    ProductKind product{};
  };

  struct Chain {
    bool HasToBeMultiplied(bool isMoved);
    void FindProducts();
    const Step* Resume();
    template <typename Product>
    void MultiplyAs();
    void MultiplyInMemory();
    void MultiplyWide();
    void WriteFrame();

    Axes axes = Axes::All;
    bool isExact = true;  // the fourth rows of all links are exactly (0, 0, 0, 1)
    bool hasChanged = false;
    std::vector<std::uint32_t> links;  // from the element to the root, by number, until Prepare()
    std::vector<Step> steps;           // from then on, of the same
    const Step* end = nullptr;

    // The first place whose link changed since the last product. A short chain is taken to change
    // from its first axis that counts on, or not at all: to find out more would take as long.
    const Step* firstChange = nullptr;
    const Step* firstMoving = nullptr;  // the end of a longer chain
    const Step* keptPlace = nullptr;    // where the last change began

    // What follows from the kinds of the links.
    bool areKindsKnown = false;
    bool hasUnitAxes = false;         // the product, exactly
    ProductRule turnRule{};           // of a turn about X, Y or Z of exact unit axes ...
    const Step* firstTurn = nullptr;  // ... and its place, if any
    const Step* firstMove = nullptr;  // the first of the last ones, which only move the origin ...
    const Step* shift = nullptr;      // ... and the same if it is the one that is Shifted

    // The frame; with wide rows by these, and by columns when asked for. The directions are stored
    // no more often than links before firstMove change.
    bool areDirectionsStored = false;
    bool isFrameWritten = true;
    StoredRows rows{};
    alignas(32) TypedFrame frame;

    // The product of the links before keptPlace: by columns, or by rows where these are multiplied.
    alignas(32) double kept[16];
  };

  /// A place of a moving link in a chain.
  struct Use {
    KeptLink* link;
    Chain* chain;
    const Step* place;
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
  void Multiply(unsigned changed);
  void MultiplyWide(unsigned changed);
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
  bool isWide_ = HasWideLanes();
};

}  // namespace Orvo::Kin
