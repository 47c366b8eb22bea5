#pragma once

#include <Orvo/Vector3D.h>

#include <algorithm>
#include <cmath>

namespace Orvo {

// The formulas of points and directions, each written once. Vectors come as pointers to x, y, z.

/// Sums three terms as every sum of three terms in the library is formed.
inline double Sum3(double first, double second, double third) { return first + (second + third); }

inline double Dot(const double* a, const double* b) {
  return Sum3(a[0] * b[0], a[1] * b[1], a[2] * b[2]);
}

inline double Length(const double* a) { return std::sqrt(Dot(a, a)); }

inline Vector3D Cross(const double* a, const double* b) {
  return Vector3D(a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]);
}

inline Vector3D Plus(const double* a, const double* b) {
  return Vector3D(a[0] + b[0], a[1] + b[1], a[2] + b[2]);
}

inline Vector3D Minus(const double* a, const double* b) {
  return Vector3D(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

inline Vector3D Times(const double* a, double factor) {
  return Vector3D(a[0] * factor, a[1] * factor, a[2] * factor);
}

/// Tells whether a - b is strictly below tol in each of x, y, z.
inline bool IsWithin(const double* a, const double* b, double tol) {
  return std::fabs(a[0] - b[0]) < tol && std::fabs(a[1] - b[1]) < tol &&
         std::fabs(a[2] - b[2]) < tol;
}

inline double LargestComponent(const double* a) {
  return std::max(std::fabs(a[0]), std::max(std::fabs(a[1]), std::fabs(a[2])));
}

}  // namespace Orvo
