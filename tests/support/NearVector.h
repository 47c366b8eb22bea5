#pragma once

#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>

namespace Orvo::Testing {

/// Tells whether no pair of elements differs by more than `tolerance`. NaN is near nothing.
inline testing::AssertionResult NearElements(const double* a, const double* b, std::size_t count,
                                             double tolerance, const char* what) {
  for (std::size_t i = 0; i < count; ++i) {
    const double difference = std::abs(a[i] - b[i]);
    if (!(difference <= tolerance)) {
      return testing::AssertionFailure() << what << " element " << i << " is " << a[i]
                                         << " and not " << b[i] << ": off by " << difference;
    }
  }
  return testing::AssertionSuccess() << "all elements are within " << tolerance;
}

/// Compares x, y and z of two vectors.
inline testing::AssertionResult NearVector(const Vector3D& a, const Vector3D& b, double tolerance) {
  const double* pa = a;
  const double* pb = b;
  return NearElements(pa, pb, 3, tolerance, "the vector's");
}

/// Compares all 16 doubles of two frames.
inline testing::AssertionResult NearFrame(const Matrix43& a, const Matrix43& b, double tolerance) {
  const double* pa = a;
  const double* pb = b;
  return NearElements(pa, pb, 16, tolerance, "the frame's");
}

}  // namespace Orvo::Testing
