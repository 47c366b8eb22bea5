#pragma once

#include <cmath>

namespace Orvo::Testing {

// Unwrapping as it is defined, by repeated addition and nothing else: the plain twin of
// Kin::ClosestAngle. For angles a few turns away; others would take forever.

inline double DegreesOf(double radians) { return radians * 180.0 / 3.141592653589793; }

inline double ByRepeatedAddition(double r, double reference) {
  constexpr double Turn = 6.283185307179586;
  const double ref = DegreesOf(reference);
  while (std::fabs(DegreesOf(r) - ref) > std::fabs(DegreesOf(r) + 360.0 - ref)) {
    r = Turn + r;
  }
  while (std::fabs(DegreesOf(r) - ref) > std::fabs(DegreesOf(r) - 360.0 - ref)) {
    r = r - Turn;
  }
  return r;
}

inline double ByRepeatedAddition(double r, double reference, double min, double max) {
  constexpr double Turn = 6.283185307179586;
  r = ByRepeatedAddition(r, reference);
  while (r < min - 0.0001) {
    r = r + Turn;
  }
  while (r > max + 0.0001) {
    r = r - Turn;
  }
  if (r > max && r < max + 0.01) {
    r = max;
  }
  if (r < min && r > min - 0.01) {
    r = min;
  }
  return r;
}

}  // namespace Orvo::Testing
