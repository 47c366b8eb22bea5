#pragma once

#include "support/SameBits.h"

#include <cstdint>

namespace Orvo::Testing {

/// Sums up the bits of many doubles in one number: the hash FNV-1a over their bytes, the lowest
/// first. NaN counts as one value, as in AreSameBits().
class BitsHash {
 public:
  void Add(double value) {
    std::uint64_t bits = std::isnan(value) ? 0x7FF8000000000000U : BitsOf(value);
    for (int byte = 0; byte < 8; ++byte) {
      hash_ = (hash_ ^ (bits & 0xFFU)) * 0x100000001B3U;
      bits >>= 8U;
    }
  }

  std::uint64_t Value() const { return hash_; }

 private:
  std::uint64_t hash_ = 0xCBF29CE484222325U;
};

}  // namespace Orvo::Testing
