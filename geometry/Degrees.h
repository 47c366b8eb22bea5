#pragma once

namespace Orvo {

inline constexpr double Pi = 3.141592653589793;
inline constexpr double TwoPi = 6.283185307179586;

// Both orders of evaluation are part of the results: divide first, and multiply first.
constexpr double RadiansFromDegrees(double degrees) { return degrees / 180.0 * Pi; }
constexpr double DegreesFromRadians(double radians) { return radians * 180.0 / Pi; }

}  // namespace Orvo
