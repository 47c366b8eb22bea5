#pragma once

#include "compute/AxisChain.h"
#include "compute/FrameChains.h"
#include "compute/PrincipalPair.h"
#include "compute/RotaryDirections.h"
#include "compute/RotaryPair.h"

#include <Orvo/Kin/Register.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Vector3D.h>

#include <cstddef>

namespace Orvo::Kin {

/// The directions of a rotary solution, kept from one set of axis values to the next. Bit for bit
/// what the calculator computes from the links.
class RotaryPlacement {
 public:
  /// Takes down the chain from table to head. Returns false where a link is such that only the
  /// general computation takes it, and where the axes of the registers are not what a solution
  /// needs.
  bool Build(const AxisChain& chain, const Register registers[2]);

  std::size_t RegisterBound() const { return chains_.RegisterBound(); }

  /// Computes the directions for axis values by register.
  const RotaryDirections& Compute(const double* values);

  /// Solves for a target with the directions computed last. Returns false, with nothing written,
  /// unless there are two axes and one of the pairs decides.
  bool Solve(RequestedDirection target, RotariesSolution* sol) const;

 private:
  struct Axis {
    bool isDefined = false;
    double sideSign = 0.0;
    Vector3D dir;
    std::size_t parentChain = 0;
  };

  FrameChains chains_;
  Axis axes_[2];
  RotaryDirections directions_;
  // Of the two axes, where both are defined.
  PrincipalPair principalPair_;
  RotaryPair pair_;
};

}  // namespace Orvo::Kin
