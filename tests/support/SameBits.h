#pragma once

#include <Orvo/Angle.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

namespace Orvo::Testing {

/// Returns the 64 bits of a double.
inline std::uint64_t BitsOf(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

/// Returns the hexadecimal text of a double, beside the decimal one.
inline std::string HexText(double value) {
  char text[80];
  std::snprintf(text, sizeof text, "%a (%.17g)", value, value);
  return text;
}

/// Tells whether two doubles are the same bits, 0.0 and -0.0 told apart. Any two NaN are the same:
/// their sign and payload differ between processors and mean nothing.
inline bool AreSameBits(double a, double b) {
  return BitsOf(a) == BitsOf(b) || (std::isnan(a) && std::isnan(b));
}

/// Compares two arrays of doubles as AreSameBits() does; `what` names their owner in messages.
inline testing::AssertionResult SameBits(const double* a, const double* b, std::size_t count,
                                         const char* what) {
  testing::AssertionResult result = testing::AssertionFailure();
  bool same = true;
  for (std::size_t i = 0; i < count; ++i) {
    if (AreSameBits(a[i], b[i])) {
      continue;
    }
    result << what << " element " << i << " is " << HexText(a[i]) << " and not " << HexText(b[i])
           << "\n";
    same = false;
  }
  return same ? testing::AssertionSuccess() << "all " << count << " elements are the same" : result;
}

/// Compares two doubles bit for bit.
inline testing::AssertionResult SameBits(double a, double b) {
  return SameBits(&a, &b, 1, "the number's");
}

/// Compares all four components of two vectors bit for bit.
inline testing::AssertionResult SameBits(const Vector3D& a, const Vector3D& b) {
  const double* pa = a;
  const double* pb = b;
  return SameBits(pa, pb, 4, "the vector's");
}

/// Compares all 16 doubles of two frames bit for bit. The cached kinds are not compared.
inline testing::AssertionResult SameBits(const Matrix43& a, const Matrix43& b) {
  const double* pa = a;
  const double* pb = b;
  return SameBits(pa, pb, 16, "the frame's");
}

/// Compares the radians of two angles bit for bit.
inline testing::AssertionResult SameBits(const Angle& a, const Angle& b) {
  return SameBits(a.GetRadian(), b.GetRadian());
}

}  // namespace Orvo::Testing
