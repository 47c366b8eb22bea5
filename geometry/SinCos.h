#pragma once

#include <cmath>

namespace Orvo {

/// Computes sine and cosine of an angle in radians. All frames take them from here, so that every
/// path has the same bits where a C library computes the two together in another way.
inline void SinCos(double radians, double* sine, double* cosine) {
  *sine = std::sin(radians);
  *cosine = std::cos(radians);
}

}  // namespace Orvo
