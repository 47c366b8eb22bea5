#pragma once

#include "compute/AxisChain.h"
#include "compute/FrameChain.h"
#include "compute/RotaryPair.h"

#include <Orvo/Kin/Register.h>
#include <Orvo/Vector3D.h>

#include <cstddef>

namespace Orvo::Kin {

/// Where the tool and up to two rotary axes point in the table's frame, with these axes at 0.
struct RotaryDirections {
  Vector3D tool;
  Vector3D axes[2];  // of alpha and of beta; each on the head's side as it is, else reversed
  bool isAlphaNearerHead = false;
};

/// The directions of a rotary solution, kept from one set of axis values to the next. Bit for bit
/// what the calculator computes from the links.
class RotaryPlacement {
 public:
  /// Takes down the chain from table to head. Returns false where a link is of no known kind, and
  /// where the axes of the registers are not what a solution needs.
  bool Build(const AxisChain& chain, const Register registers[2]);

  std::size_t RegisterBound() const;

  /// Computes the directions for axis values by register.
  const RotaryDirections& Compute(const double* values);

  /// Both axes for those directions, where both are defined.
  const RotaryPair& Pair() const { return pair_; }

 private:
  struct Axis {
    bool isDefined = false;
    double sideSign = 0.0;
    Vector3D dir;
    FrameChain parent;
  };

  FrameChain head_;
  FrameChain table_;
  Axis axes_[2];
  RotaryDirections directions_;
  RotaryPair pair_;
};

}  // namespace Orvo::Kin
