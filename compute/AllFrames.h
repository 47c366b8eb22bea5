#pragma once

#include "compute/KeptLink.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Matrix43.h>

#include <cstddef>
#include <vector>

namespace Orvo::Kin {

/// The world frames of all elements, with what of their links is kept from one set of axis values
/// to the next. Bit for bit what ComputePositionMachine computes link by link.
class AllFrames {
 public:
  /// Takes down elements, parents first. Returns false where a link is of no known kind: there are
  /// no such frames then.
  bool Build(const std::vector<const Entity*>& entities, std::size_t frameNb);

  /// The smallest size of a position that has all registers of the elements.
  std::size_t RegisterBound() const { return registerBound_; }

  /// Writes the frames for axis values by register, each at the place of its element's id.
  void Compute(const double* values, Matrix43* frames);

 private:
  static constexpr std::size_t None = static_cast<std::size_t>(-1);

  /// An element with a place among the frames.
  struct Element {
    KeptLink link;
    std::size_t place = 0;
    std::size_t parentPlace = None;
  };

  /// An axis among the elements, with the value that its link is computed for.
  struct Axis {
    std::size_t reg;
    std::size_t element;
    double value;
  };

  std::vector<Element> elements_;
  std::vector<Axis> axes_;
  std::size_t registerBound_ = 0;
};

}  // namespace Orvo::Kin
