#pragma once

#include "compute/KeptLink.h"
#include "geometry/WideFrame.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Matrix43.h>

#include <cstddef>
#include <vector>

namespace Orvo::Kin {

/// The world frames of all elements, with the frames of their links kept from one set of axis
/// values to the next. Bit for bit what ComputePositionMachine computes link by link.
class AllFrames {
 public:
  /// Takes down elements, parents first. Returns false for a link that only the general computation
  /// takes: there are no such frames then.
  bool Build(const std::vector<const Entity*>& entities, std::size_t frameNb);

  /// The smallest size of a position that has all registers of the elements.
  std::size_t RegisterBound() const { return registerBound_; }

  std::size_t FrameNb() const { return frameNb_; }

  /// Writes the frames for axis values by register, each at the place of its element's id.
  /// Returns true, so that a caller who does so as well can end with this call.
  bool Compute(const double* values, Matrix43* frames);

 private:
  /// How the frame of an element comes about from its parent's and its link's, and its kind.
  struct Step {
    const Step* parent = nullptr;  // before this one
    const KeptLink* link = nullptr;
    std::size_t place = 0;
    ProductKind product{};
    bool isShifted = false;      // a Translation, with exact unit axes; or products of such
    bool isNextInChain = false;  // the step before is the parent, and the frame no identity
  };

  /// An axis, with the value that its link is computed for.
  struct Axis {
    std::size_t reg;
    double value;
    KeptLink* link;
  };

  void SetAxisValues(const double* values);
  void FindProducts();
  void Multiply(Matrix43* frames) const;
  void MultiplyWide(Matrix43* frames) const;

  std::vector<KeptLink> links_;
  std::vector<Axis> linearAxes_;
  std::vector<Axis> rotaryAxes_;
  std::vector<Step> steps_;  // after one that stands for the world
  std::size_t frameNb_ = 0;
  std::size_t registerBound_ = 0;
  bool areKindsKnown_ = false;
  bool isWide_ = HasWideLanes();
};

}  // namespace Orvo::Kin
