#pragma once

namespace Orvo {

inline constexpr double Pi = 3.141592653589793;
inline constexpr double TwoPi = 6.283185307179586;

// Both orders of evaluation are part of the results: divide first, and multiply first.
template <typename Number>
constexpr Number RadiansFromDegrees(const Number& degrees) {
  return degrees / Number(180.0) * Number(Pi);
}
template <typename Number>
constexpr Number DegreesFromRadians(const Number& radians) {
  return radians * Number(180.0) / Number(Pi);
}

}  // namespace Orvo
