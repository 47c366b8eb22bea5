// Two rotary axes that are prepared for many targets against the plain solution for each target:
// whatever is decided must be the same, bit for bit.

#include "compute/PrincipalPair.h"
#include "compute/RotaryAngles.h"
#include "compute/RotaryCore.h"
#include "compute/RotaryPair.h"
#include "geometry/IntersectionCompute.h"
#include "geometry/VectorKernel.h"
#include "support/SameBits.h"
#include "support/Sanitizers.h"
#include "support/TestRandom.h"

#include <Orvo/Angle.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace Orvo::Testing {
namespace {

using Kin::PrincipalPair;
using Kin::RotariesSolution;
using Kin::RotaryAngles;
using Kin::RotaryPair;

#if defined(NDEBUG) && !defined(ORVO_TEST_HAS_ALLOCATOR_OF_ITS_OWN)
constexpr int Scale = 1;
#else
constexpr int Scale = 20;
#endif

/// Two axes, axis1 nearer the tool, and a tool.
struct Axes {
  Vector3D axis1;
  Vector3D axis2;
  Vector3D tool;
};

RotaryAngles PlainAngles(const Axes& axes, const Vector3D& target) {
  IntersectionCompute intersection(0.1, 0.1, 0.1, 0.1, 0.1, 0.1, 0.1);
  RotariesSolution sol;
  Kin::SolveTwoRotaries(axes.axis1, axes.axis2, axes.tool, target, Kin::Register(4), &intersection,
                        &sol);
  return Kin::Load(sol);
}

bool AreSame(const RotaryAngles& a, const RotaryAngles& b) {
  return a.count == b.count && a.freeRegister == b.freeRegister &&
         AreSameBits(a.alpha[0], b.alpha[0]) && AreSameBits(a.alpha[1], b.alpha[1]) &&
         AreSameBits(a.beta[0], b.beta[0]) && AreSameBits(a.beta[1], b.beta[1]);
}

Vector3D DrawPrincipal(TestRandom& random) {
  static const Vector3D principal[] = {{1, 0, 0},  {-1, 0, 0}, {0, 1, 0},
                                       {0, -1, 0}, {0, 0, 1},  {0, 0, -1}};
  return principal[random.Integer(0, 5)];
}

Vector3D DrawUnit(TestRandom& random) {
  if (random.Chance(0.4)) {
    return DrawPrincipal(random);
  }
  Vector3D v(random.Real(-1, 1), random.Real(-1, 1), random.Real(-1, 1));
  v.MakeUnit(0.001);
  return v;
}

double DrawPower(TestRandom& random, double lowest, double highest) {
  const double size = std::pow(10.0, random.Real(lowest, highest));
  return random.Chance(0.5) ? size : -size;
}

// A direction beside another one, by anything from nothing that counts to a few degrees.
Vector3D Beside(TestRandom& random, const Vector3D& v) {
  return Plus(v, Times(DrawUnit(random), DrawPower(random, -12.0, -1.0)));
}

Vector3D Turned(const Vector3D& v, const Vector3D& axis, double radians) {
  Matrix43 turn;
  turn.SetRotation(axis, Angle(radians));
  return turn.ApplyToVector3D(v);
}

Axes DrawAxes(TestRandom& random) {
  Axes axes = {DrawUnit(random), DrawUnit(random), DrawUnit(random)};
  if (random.Chance(0.3)) {
    // The tool's tip goes round in a small circle.
    axes.tool = Beside(random, Times(axes.axis1, random.Chance(0.5) ? 1.0 : -1.0));
  }
  if (random.Chance(0.2)) {
    axes.axis2 = Beside(random, Times(axes.axis1, random.Chance(0.5) ? 1.0 : -1.0));
  }
  if (random.Chance(0.1)) {
    // A short tool whose tip comes onto axis2.
    axes.tool = Times(Turned(axes.axis2, axes.axis1, random.Real(-4, 4)), random.Real(0.3, 0.99));
  }
  if (random.Chance(0.05)) {
    axes.axis2 = Times(axes.axis2, random.Real(0.005, 3.0));
  }
  return axes;
}

// Those of a PrincipalPair.
Axes DrawPrincipalAxes(TestRandom& random) {
  Axes axes;
  do {
    axes = {DrawPrincipal(random), DrawPrincipal(random), DrawPrincipal(random)};
  } while (Dot(axes.axis1, axes.axis2) != 0.0 || Dot(axes.axis1, axes.tool) != 0.0);
  if (random.Chance(0.3)) {
    // Zeros below 0.
    axes = {Times(axes.axis1, -1.0), Times(axes.axis2, -1.0), Times(axes.tool, -1.0)};
  }
  return axes;
}

Vector3D DrawTarget(TestRandom& random, const Axes& axes) {
  const Vector3D reached =
      Turned(Turned(axes.tool, axes.axis1, random.Real(-4, 4)), axes.axis2, random.Real(-4, 4));
  const Vector3D candidates[] = {reached,
                                 reached,
                                 Beside(random, reached),
                                 axes.tool,
                                 Beside(random, axes.tool),
                                 axes.axis1,
                                 Beside(random, axes.axis1),
                                 axes.axis2,
                                 Times(axes.axis2, -1.0),
                                 Beside(random, axes.axis2),
                                 DrawUnit(random)};
  Vector3D target = candidates[random.Integer(0, 10)];
  const double toolLength = Length(axes.tool);
  if (toolLength < 0.999 && random.Chance(0.5)) {
    // As high above the origin, along axis2, as the tip when it is on axis2.
    Vector3D across = Cross(axes.axis2, DrawUnit(random));
    across.MakeUnit(0.001);
    target = Plus(Times(axes.axis2, toolLength),
                  Times(across, std::sqrt(1.0 - toolLength * toolLength)));
    return random.Chance(0.5) ? target : Beside(random, target);
  }
  if (random.Chance(0.1)) {
    target = Times(target, random.Chance(0.5) ? 0.001 : DrawPower(random, -4.0, 200.0));
  }
  if (random.Chance(0.1)) {
    target[random.Integer(0, 2)] *=
        random.Chance(0.5) ? (random.Chance(0.5) ? 0.0 : -0.0) : DrawPower(random, -310.0, -1.0);
  }
  if (random.Chance(0.01)) {
    target[random.Integer(0, 2)] = random.Chance(0.5) ? std::numeric_limits<double>::infinity()
                                                      : std::numeric_limits<double>::quiet_NaN();
  }
  return target;
}

std::string Describe(const Axes& axes, const Vector3D& target) {
  std::string text;
  for (const Vector3D* const v : {&axes.axis1, &axes.axis2, &axes.tool, &target}) {
    text += "\n  " + HexText((*v)[0]) + ", " + HexText((*v)[1]) + ", " + HexText((*v)[2]);
  }
  return text;
}

// Compares where the pair decides; returns whether it does.
template <typename Pair>
bool Compare(const Axes& axes, const Pair& pair, const Vector3D& target) {
  RotaryAngles angles;
  if (!pair.Solve(Kin::RequestedDirection(target), &angles)) {
    return false;
  }
  EXPECT_TRUE(AreSame(angles, PlainAngles(axes, target))) << Describe(axes, target);
  return true;
}

// Returns how many of the targets were decided, of 6 for each of the axes.
template <typename Pair, typename DrawAxesOf>
int CompareRandom(TestRandom& random, int axesNb, DrawAxesOf drawAxes) {
  int decidedNb = 0;
  for (int i = 0; i < axesNb && !testing::Test::HasFailure(); ++i) {
    const Axes axes = drawAxes(random);
    const Pair pair(axes.axis1, axes.axis2, axes.tool);
    for (int k = 0; k < 6; ++k) {
      decidedNb += Compare(axes, pair, DrawTarget(random, axes)) ? 1 : 0;
    }
  }
  return decidedNb;
}

// Between a target and another for which the plain solution is of another sort, the limit is
// searched to the last bit. Returns how many limits there were.
template <typename Pair, typename DrawAxesOf>
int CompareAtThresholds(TestRandom& random, int axesNb, DrawAxesOf drawAxes) {
  int thresholdNb = 0;
  for (int i = 0; i < axesNb && !testing::Test::HasFailure(); ++i) {
    const Axes axes = drawAxes(random);
    const Pair pair(axes.axis1, axes.axis2, axes.tool);
    const Vector3D first = DrawTarget(random, axes);
    const Vector3D way = Minus(DrawTarget(random, axes), first);
    const auto targetAt = [&](double share) { return Plus(first, Times(way, share)); };
    const auto sortAt = [&](double share) {
      const RotaryAngles angles = PlainAngles(axes, targetAt(share));
      const bool isOne = AreSameBits(angles.alpha[0], angles.alpha[1]) &&
                         AreSameBits(angles.beta[0], angles.beta[1]);
      return (static_cast<int>(angles.count) * 2 + (isOne ? 1 : 0)) * 10 + angles.freeRegister;
    };
    double low = 0.0;
    double high = 1.0;
    const int sort = sortAt(low);
    if (sortAt(high) == sort) {
      continue;
    }
    ++thresholdNb;
    for (double middle = 0.5; middle > low && middle < high; middle = low + (high - low) / 2) {
      (sortAt(middle) == sort ? low : high) = middle;
    }
    double below = low;
    double above = high;
    for (int step = 0; step < 20; ++step) {
      Compare(axes, pair, targetAt(below));
      Compare(axes, pair, targetAt(above));
      // One step of rounding at first, then farther and farther.
      const double distance = std::ldexp(high, 2 * step - 53);
      below = low - distance;
      above = high + distance;
    }
  }
  return thresholdNb;
}

TEST(RotaryPair, DecidesAsThePlainSolution) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  const int axesNb = 60000 / Scale;
  // Otherwise this proves nothing.
  EXPECT_GT(CompareRandom<RotaryPair>(random, axesNb, DrawAxes), axesNb * 6 / 4);
}

TEST(RotaryPair, DecidesAsThePlainSolutionAtItsThresholds) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  EXPECT_GT(CompareAtThresholds<RotaryPair>(random, 20000 / Scale, DrawAxes), 100);
}

TEST(PrincipalPair, DecidesAsThePlainSolution) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  const int axesNb = 60000 / Scale;
  EXPECT_GT(CompareRandom<PrincipalPair>(random, axesNb, DrawPrincipalAxes), axesNb * 6 / 3);
}

TEST(PrincipalPair, DecidesAsThePlainSolutionAtItsThresholds) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  EXPECT_GT(CompareAtThresholds<PrincipalPair>(random, 20000 / Scale, DrawPrincipalAxes), 100);
}

// Whatever is not exactly along X, Y and Z, or not at right angles, is left to others.
TEST(PrincipalPair, DecidesForItsAxesOnly) {
  const auto decides = [](const Vector3D& axis1, const Vector3D& axis2, const Vector3D& tool) {
    RotaryAngles angles;
    return PrincipalPair(axis1, axis2, tool)
        .Solve(Kin::RequestedDirection(Vector3D(0.36, 0.48, 0.8)), &angles);
  };
  EXPECT_TRUE(decides(AxisX, AxisZ, AxisZ));
  EXPECT_TRUE(decides(AxisX, AxisZ, AxisY));
  EXPECT_FALSE(decides(AxisX, AxisX, AxisZ));
  EXPECT_FALSE(decides(AxisX, AxisZ, AxisX));
  const double less = std::nextafter(1.0, 0.0);
  EXPECT_FALSE(decides(Vector3D(less, 0, 0), AxisZ, AxisZ));
  EXPECT_FALSE(decides(AxisX, Vector3D(0, 0, less), AxisZ));
  EXPECT_FALSE(decides(AxisX, AxisZ, Vector3D(0, 0, less)));
  EXPECT_FALSE(decides(Vector3D(1, 0, 1e-300), AxisZ, AxisZ));
  EXPECT_FALSE(decides(AxisX, Vector3D(0, 1e-300, 1), AxisZ));
  EXPECT_FALSE(decides(AxisX, AxisZ, Vector3D(1e-300, 0, 1)));
  RotaryAngles angles;
  EXPECT_FALSE(PrincipalPair().Solve(Kin::RequestedDirection(AxisX), &angles));
}

// Nothing is decided before there are axes.
TEST(RotaryPair, DecidesNothingWithoutAxes) {
  RotaryAngles angles;
  EXPECT_FALSE(RotaryPair().Solve(Kin::RequestedDirection(AxisX), &angles));
}

// Usual targets of usual axes are decided without the plain solution.
TEST(RotaryPair, DecidesForUsualAxes) {
  const Axes machines[] = {
      {AxisX, AxisZ, AxisZ}, {AxisY, AxisZ, AxisZ}, {AxisX, AxisY, AxisZ}, {AxisZ, AxisX, AxisY}};
  for (const Axes& axes : machines) {
    const RotaryPair pair(axes.axis1, axes.axis2, axes.tool);
    const PrincipalPair principalPair(axes.axis1, axes.axis2, axes.tool);
    for (const Vector3D& target :
         {Vector3D(0.36, 0.48, 0.8), Vector3D(-0.48, 0.6, 0.64), Vector3D(0.6, -0.48, 0.64),
          Vector3D(0.0, -0.6, 0.8), Vector3D(0.6, 0.0, 0.8), Vector3D(0.6, 0.8, 0.0)}) {
      EXPECT_TRUE(Compare(axes, pair, target));
      EXPECT_TRUE(Compare(axes, pair, Times(target, 25.0)));
      EXPECT_TRUE(Compare(axes, principalPair, target));
      EXPECT_TRUE(Compare(axes, principalPair, Times(target, 25.0)));
    }
  }
}

}  // namespace
}  // namespace Orvo::Testing
