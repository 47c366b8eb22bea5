#pragma once

#include "compute/KeptLink.h"
#include "geometry/WideFrame.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Matrix43.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Orvo::Kin {

/// The world frames of all elements, with what of their links is kept from one set of axis values
/// to the next. Bit for bit what ComputePositionMachine computes link by link.
class AllFrames {
 public:
  /// Takes down elements, parents first. Returns false for a link that only the general computation
  /// takes: there are no such frames then.
  bool Build(const std::vector<const Entity*>& entities, std::size_t frameNb);

  /// The smallest size of a position that has all registers of the elements.
  std::size_t RegisterBound() const { return registerBound_; }

  /// Writes the frames for axis values by register, each at the place of its element's id.
  void Compute(const double* values, Matrix43* frames);

 private:
  /// An element with a place among the frames.
  struct alignas(32) Element {
    double world[16] = {};
    KeptLink link;
    std::size_t place = 0;
    const Element* parent = nullptr;  // among the same elements, before this one

    // How the frame comes about, and its kind.
    ProductKind product{};
    bool isShifted = false;  // a Translation, with exact unit axes; or products of such

    // The call that computed the frame last.
    std::uint64_t callNb = 0;
  };

  /// An axis among the elements, with the value that its link is computed for.
  struct Axis {
    std::size_t reg;
    Element* element;
    double value;
  };

  void FindProducts();
  void SetAxisValues(const double* values);
  template <typename Width>
  void Multiply(Matrix43* frames);
  void MultiplyWide(Matrix43* frames);

  std::vector<Element> elements_;
  std::vector<Axis> axes_;
  std::size_t registerBound_ = 0;
  std::uint64_t callNb_ = 0;
  bool areKindsKnown_ = false;
  bool isWide_ = HasWideLanes();
};

}  // namespace Orvo::Kin
