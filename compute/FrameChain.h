#pragma once

#include "compute/LinkFrame.h"

#include <Orvo/Kin/Entity.h>

#include <cstddef>
#include <vector>

namespace Orvo::Kin {

/// The frame of an element, kept from one set of axis values to the next.
///
/// The frames of its links, from its own up to the root's, are multiplied as ComputePositionEntity
/// does it, bit for bit. Only links whose axis values changed are computed again, and only the part
/// of the product that follows the first of them.
class FrameChain {
 public:
  /// Which axes count. The directions of a frame don't depend on linear axes, whose frames have
  /// arbitrary origins then.
  enum class Axes { All, Rotary };

  /// Takes down the links from an element up to the root; a null element has none. Returns false
  /// where one is of no known kind: there is no such chain then.
  bool Build(const Entity* element, Axes axes);

  /// The smallest size of a position that has all registers of the chain.
  std::size_t RegisterBound() const { return registerBound_; }

  /// Computes the frame for axis values by register; returns whether it changed.
  bool Update(const double* values);

  /// The frame, after Update().
  const TypedFrame& Frame() const { return frame_; }

 private:
  void Multiply(std::size_t first);

  std::vector<LinkShape> shapes_;
  std::vector<TypedFrame> links_;

  // The axes by place in the chain, with the values that links_ are computed for.
  std::vector<std::size_t> axisPlaces_;
  std::vector<std::size_t> axisRegisters_;
  std::vector<double> axisValues_;

  // The product of the links before a place, where the last change began.
  std::size_t keptPlace_ = 0;
  TypedFrame kept_;

  TypedFrame frame_;
  std::size_t registerBound_ = 0;
  bool isComputed_ = false;
};

}  // namespace Orvo::Kin
