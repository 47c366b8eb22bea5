#pragma once

#include "support/TestRandom.h"

#include <Orvo/Matrix43.h>

#include <gtest/gtest.h>

namespace Orvo::Testing {

using Type = Matrix43::Type;

constexpr Type AllTypes[6] = {Matrix43::General,
                              Matrix43::Identity,
                              Matrix43::Rotation,
                              Matrix43::Translation,
                              Matrix43::RotationTranslation,
                              Matrix43::Projective};

/// The 16 doubles of a frame and its kind: the scalar twin of a frame.
struct Twin {
  double m[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  Type type = Matrix43::Identity;
};

/// Returns the cached kind of a frame.
Type TypeOf(const Matrix43& frame);

/// Returns the doubles and the kind of a frame.
Twin TwinOf(const Matrix43& frame);

/// Returns a frame of any kind with any doubles: raw access goes past the kind.
Matrix43 FrameOf(const Twin& twin);

/// Compares the kind, and the doubles bit for bit.
testing::AssertionResult IsTwin(const Matrix43& frame, const Twin& twin);

/// Compares the doubles bit for bit.
testing::AssertionResult HoldsElements(const Matrix43& frame, const double (&m)[16]);

/// Returns the frame of 16 doubles, classified.
Matrix43 Load(const double (&m)[16]);

/// Draws a number of any sort: zeros of both signs, huge ones, now and then infinity or NaN.
double DrawNumber(TestRandom& random);

/// Draws any doubles for a kind, consistent with it or not.
Twin DrawTwin(TestRandom& random, Type type);

/// Sums three terms as all sums of three terms are formed.
inline double Sum3(double first, double second, double third) { return first + (second + third); }

/// Returns row `row` of U * x + (V * y + W * z).
double Combined(const double* m, int row, double x, double y, double z);

/// Returns the product by the table of kinds, in scalar arithmetic.
Twin ProductTwin(const Twin& a, const Twin& b);

/// Returns the rigid inverse by kind, in scalar arithmetic.
Twin HInverseTwin(const Twin& f);

}  // namespace Orvo::Testing
