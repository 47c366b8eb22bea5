#pragma once

#include <cstddef>
#include <cstdint>

namespace Orvo::Fuzz {

/// Numbers that follow from a seed, the same on every platform.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  std::uint64_t Next() {
    state_ += 0x9E3779B97F4A7C15U;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
    return z ^ (z >> 31);
  }

  /// Draws from 0 to n - 1; n is at least 1.
  std::size_t Below(std::size_t n) { return static_cast<std::size_t>(Next() % n); }

  /// Draws from first to last.
  int Between(int first, int last) {
    return first + static_cast<int>(Below(static_cast<std::size_t>(last - first) + 1));
  }

  bool OneIn(std::size_t n) { return Below(n) == 0; }

  template <typename Element, std::size_t Size>
  const Element& OneOf(const Element (&elements)[Size]) {
    return elements[Below(Size)];
  }

 private:
  std::uint64_t state_;
};

}  // namespace Orvo::Fuzz
