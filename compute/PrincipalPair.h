#pragma once

#include "compute/RequestedDirection.h"
#include "compute/RotaryAngles.h"

#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

namespace Orvo::Kin {

/// Two rotary axes at a right angle, and a tool at a right angle to the one nearer it, each exactly
/// along X, Y or Z: those of most machines.
///
/// Nearly all terms of SolveTwoRotaries() are 0 then, and its circle is that of radius 1 about the
/// origin. What is left has the same bits.
class PrincipalPair {
 public:
  PrincipalPair() = default;

  /// Takes the axes as SolveTwoRotaries() has them, axis1 nearer the tool.
  PrincipalPair(const Vector3D& axis1, const Vector3D& axis2, const Vector3D& tool);

  /// Solves for a target as SolveTwoRotaries() does, bit for bit. Returns false, without angles,
  /// for other axes and near every threshold.
  bool Solve(RequestedDirection target, RotaryAngles* angles) const;

 private:
  bool isUsable_ = false;
  bool isToolAlongAxis2_ = false;
  Direction along1_ = X;  // axis1
  Direction along2_ = Y;  // axis2
  Direction across_ = Z;  // both
  double axis1Sign_ = 1.0;
  double toolSign_ = 1.0;
  double tip1Sign_ = 1.0;    // of the first tip's coordinate across both axes
  double alpha1Sign_ = 1.0;  // of the first alpha, for a tool along axis2, or of one above axis1
};

}  // namespace Orvo::Kin
