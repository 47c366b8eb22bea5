#pragma once

#include "geometry/FrameKernel.h"

#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

namespace Orvo {

/// X, Y or Z, and whether an axis points against it.
struct PrincipalAxis {
  DirectionSign sign;
  Direction direction;
  bool isReversed;
};

/// Returns the principal axis that a direction is, within 0.00001 by component; null for others.
const PrincipalAxis* FindPrincipalAxis(const Vector3D& dir);

/// Returns the directions of a turn about a principal axis by an angle of a sine and cosine.
inline Directions PrincipalTurn(Direction direction, double s, double c) {
  const auto column = [](double x, double y, double z) {
    return Lanes{_mm_set_pd(y, x), _mm_set_sd(z)};
  };
  switch (direction) {
    case X:
      return {column(1.0, 0.0, 0.0), column(0.0, c, s), column(0.0, -s, c)};
    case Y:
      return {column(c, 0.0, -s), column(0.0, 1.0, 0.0), column(s, 0.0, c)};
    default:
      return {column(c, s, 0.0), column(-s, c, 0.0), column(0.0, 0.0, 1.0)};
  }
}

}  // namespace Orvo
