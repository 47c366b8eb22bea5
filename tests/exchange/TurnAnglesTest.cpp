#include "exchange/TurnAngles.h"
#include "property/Draw.h"

#include <Orvo/Angle.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace Orvo::Testing {
namespace {

using Property::Draw;
using Property::ForCases;

constexpr double Pi = 3.141592653589793;

Matrix43 Turned(const Vector3D& axis, double angle) {
  Matrix43 frame;
  Angle turn(angle);
  frame.SetRotation(axis, turn);
  return frame;
}

Matrix43 FromAngles(const std::array<double, 3>& angles) {
  Matrix43 frame = Turned(AxisZ, angles[2]);
  Matrix43 pitch = Turned(AxisY, angles[1]);
  Matrix43 roll = Turned(AxisX, angles[0]);
  return frame * pitch * roll;
}

double DifferenceFrom(const Matrix43& frame, const std::array<double, 9>& rotation) {
  const double* const m = frame;
  double largest = 0.0;
  for (std::size_t i = 0; i < 9; ++i) {
    largest = std::max(largest, std::abs(m[4 * (i / 3) + i % 3] - rotation[i]));
  }
  return largest;
}

TEST(RollPitchYaw, MakeUpAnyRotation) {
  ForCases(3000, [](Draw& draw) {
    // Exactly at, close to and far from a pitch of a right angle.
    const double pitch = draw.Chance(0.3)   ? (draw.Chance(0.5) ? Pi / 2 : -Pi / 2)
                         : draw.Chance(0.5) ? Pi / 2 - std::pow(10.0, draw.Uniform(-17.0, -3.0))
                                            : draw.Uniform(-Pi, Pi);
    const Matrix43 frame = FromAngles({draw.Uniform(-Pi, Pi), pitch, draw.Uniform(-Pi, Pi)});
    const std::array<double, 9> rotation = Exchange::NearestRotation(frame);
    EXPECT_LT(DifferenceFrom(frame, rotation), 1e-14);
    EXPECT_LT(DifferenceFrom(FromAngles(Exchange::RollPitchYaw(rotation)), rotation), 1e-14);
  });
}

TEST(NearestRotation, TakesRoundedDigitsAway) {
  ForCases(300, [](Draw& draw) {
    const Matrix43 exact =
        FromAngles({draw.Uniform(-Pi, Pi), draw.Uniform(-Pi, Pi), draw.Uniform(-Pi, Pi)});
    Matrix43 rounded = exact;
    double* const m = rounded;
    for (int i = 0; i < 12; ++i) {
      m[i] = std::round(m[i] * 1e6) / 1e6;
    }
    const std::array<double, 9> rotation = Exchange::NearestRotation(rounded);
    EXPECT_LT(DifferenceFrom(exact, rotation), 2e-6);
    for (std::size_t i = 0; i < 3; ++i) {
      for (std::size_t k = 0; k < 3; ++k) {
        const double dot = rotation[3 * i] * rotation[3 * k] +
                           rotation[3 * i + 1] * rotation[3 * k + 1] +
                           rotation[3 * i + 2] * rotation[3 * k + 2];
        EXPECT_NEAR(dot, i == k ? 1.0 : 0.0, 1e-15);
      }
    }
  });
}

TEST(TurnQuaternion, ChangesSteadilyOverManyTurns) {
  Vector3D axis(1.0, 2.0, -2.0);
  axis.MakeUnit(0.001);
  std::array<double, 4> last = Exchange::TurnQuaternion(axis, -3000.0);
  for (double deg = -2910.0; deg <= 3000.0; deg += 90.0) {
    const std::array<double, 4> next = Exchange::TurnQuaternion(axis, deg);
    const double dot =
        last[0] * next[0] + last[1] * next[1] + last[2] * next[2] + last[3] * next[3];
    EXPECT_NEAR(dot, std::sqrt(0.5), 1e-12);
    last = next;
  }
}

}  // namespace
}  // namespace Orvo::Testing
