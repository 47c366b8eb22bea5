#pragma once

#include <cstdint>
#include <cstring>

namespace Orvo::Kin {

/// Tells whether two values have the same bits: 0 and -0 differ, a NaN is itself.
inline bool IsSameValue(double a, double b) {
  std::uint64_t aBits;
  std::uint64_t bBits;
  std::memcpy(&aBits, &a, sizeof aBits);
  std::memcpy(&bBits, &b, sizeof bBits);
  return aBits == bBits;
}

}  // namespace Orvo::Kin
