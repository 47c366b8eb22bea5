#include "geometry/WithFourth.h"
#include "support/SameBits.h"
#include "support/TestRandom.h"

#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace Orvo {
namespace {

using Testing::SameBits;
using Testing::TestRandom;
using Testing::WithFourth;

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

testing::AssertionResult Holds(const Vector3D& v, double x, double y, double z, double w) {
  return SameBits(v, WithFourth(x, y, z, w));
}

TEST(Vector3DMakeUnit, ScalesOrFallsBackToTheXAxis) {
  struct Case {
    const char* name;
    Vector3D before;
    double tol;
    bool scaled;
    Vector3D after;
  };
  const double below = std::nextafter(0.5, 0.0);
  const double above = std::nextafter(0.5, 1.0);
  const Case cases[] = {
      {"an ordinary vector", {0, 3, 4}, 0.001, true, {0, 3.0 / 5.0, 4.0 / 5.0}},
      {"the null vector", {0, 0, 0}, 0.001, false, {1, 0, 0}},
      {"as long as the tolerance", {0, 0, 0.5}, 0.5, true, {0, 0, 1}},
      {"shorter than the tolerance", {0, 0, below}, 0.5, false, {1, 0, 0}},
      {"longer than the tolerance", {0, 0, -above}, 0.5, true, {0, 0, -1}},
      {"tiny, and no tolerance", {0, 1e-150, 0}, 0.0, true, {0, 1, 0}},
      {"null, and no tolerance", {0, 0, 0}, 0.0, false, {1, 0, 0}},
      {"null, and a negative tolerance", {-0.0, 0, 0}, -1.0, false, {1, 0, 0}},
      {"so tiny that its length is 0", {0, 1e-200, 0}, 0.0, false, {1, 0, 0}},
      {"an infinite tolerance", {1, 2, 3}, Infinity, false, {1, 0, 0}},
      {"the fourth component follows", WithFourth(0, 3, 4, 10), 0.001, true,
       WithFourth(0, 3.0 / 5.0, 4.0 / 5.0, 2)},
      {"the fourth component is cleared", WithFourth(0, 0, 0, 10), 0.001, false, {1, 0, 0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Vector3D v = c.before;
    EXPECT_EQ(v.MakeUnit(c.tol), c.scaled);
    EXPECT_TRUE(SameBits(v, c.after));
  }
}

TEST(Vector3DMakeUnit, DividesByTheLength) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int telling = 0;
  for (int i = 0; i < 3000; ++i) {
    Vector3D v =
        WithFourth(random.Real(-9, 9), random.Real(-9, 9), random.Real(-9, 9), random.Real(-9, 9));
    const Vector3D before = v;
    const double n = std::sqrt(v[0] * v[0] + (v[1] * v[1] + v[2] * v[2]));
    ASSERT_TRUE(v.MakeUnit(1e-9));
    ASSERT_TRUE(Holds(v, before[0] / n, before[1] / n, before[2] / n, before[3] / n));
    telling += before[0] / n != before[0] * (1.0 / n) ? 1 : 0;
  }
  EXPECT_GT(telling, 100);
}

TEST(Vector3DMakeUnit, NaNPassesThrough) {
  Vector3D v(NotANumber, 1, 2);
  EXPECT_TRUE(v.MakeUnit(0.001));
  EXPECT_TRUE(std::isnan(v[0]));
  EXPECT_TRUE(std::isnan(v[1]));
  EXPECT_TRUE(std::isnan(v[2]));
  Vector3D infinite(Infinity, 1, 0);
  EXPECT_TRUE(infinite.MakeUnit(0.001));
  EXPECT_TRUE(std::isnan(infinite[0]));
  EXPECT_TRUE(SameBits(infinite[1], 0.0));
}

TEST(Vector3DIsSame, ComparesEachComponentStrictly) {
  struct Case {
    const char* name;
    Vector3D a;
    Vector3D b;
    double tol;
    bool same;
  };
  const double below = std::nextafter(0.25, 0.0);
  const Case cases[] = {
      {"equal vectors", {1, 2, 3}, {1, 2, 3}, 1e-300, true},
      {"no tolerance is always false", {1, 2, 3}, {1, 2, 3}, 0.0, false},
      {"a negative tolerance", {1, 2, 3}, {1, 2, 3}, -1.0, false},
      {"x below the tolerance", {below, 0, 0}, {0, 0, 0}, 0.25, true},
      {"x at the tolerance", {0.25, 0, 0}, {0, 0, 0}, 0.25, false},
      {"-x at the tolerance", {-0.25, 0, 0}, {0, 0, 0}, 0.25, false},
      {"y below the tolerance", {0, -below, 0}, {0, 0, 0}, 0.25, true},
      {"y at the tolerance", {0, 0.25, 0}, {0, 0, 0}, 0.25, false},
      {"z below the tolerance", {0, 0, 0}, {0, 0, below}, 0.25, true},
      {"z at the tolerance", {0, 0, 0}, {0, 0, 0.25}, 0.25, false},
      {"the corner of the box", {below, below, below}, {0, 0, 0}, 0.25, true},
      {"the fourth component", WithFourth(1, 2, 3, 4), WithFourth(1, 2, 3, 400), 0.25, true},
      {"NaN", {NotANumber, 0, 0}, {NotANumber, 0, 0}, Infinity, false},
      {"infinities", {0, Infinity, 0}, {0, Infinity, 0}, 1.0, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.a.IsSame(c.b, c.tol), c.same);
    EXPECT_EQ(c.b.IsSame(c.a, c.tol), c.same);
  }
}

TEST(Vector3DIsSame, TellsTheSixSignedAxes) {
  const Vector3D axes[6] = {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}};
  for (int axis = 0; axis < 6; ++axis) {
    for (int asked = 0; asked < 6; ++asked) {
      SCOPED_TRACE(axis * 10 + asked);
      EXPECT_EQ(axes[axis].IsSame(static_cast<DirectionSign>(asked), 0.001), axis == asked);
    }
  }
}

TEST(Vector3DIsSame, ComparesWithASignedAxisStrictlyByComponent) {
  const Vector3D axes[6] = {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}};
  for (int axis = 0; axis < 6; ++axis) {
    const auto sign = static_cast<DirectionSign>(axis);
    EXPECT_FALSE(axes[axis].IsSame(sign, 0.0));
    for (int component = 0; component < 3; ++component) {
      SCOPED_TRACE(axis * 10 + component);
      Vector3D v = axes[axis];
      v[component] += 0.25;
      EXPECT_FALSE(v.IsSame(sign, 0.25));
      EXPECT_TRUE(v.IsSame(sign, std::nextafter(0.25, 1.0)));
      v[component] -= 0.5;
      EXPECT_FALSE(v.IsSame(sign, 0.25));
      EXPECT_TRUE(v.IsSame(sign, std::nextafter(0.25, 1.0)));
      v[component] = NotANumber;
      EXPECT_FALSE(v.IsSame(sign, Infinity));
    }
    EXPECT_TRUE(WithFourth(axes[axis][0], axes[axis][1], axes[axis][2], 7).IsSame(sign, 0.001));
  }
}

TEST(Vector3DIsSame, AValueOutsideTheSixAxesIsNoAxis) {
  const int values[] = {
      6, 7, -1, -6, 1000, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};
  for (const int value : values) {
    SCOPED_TRACE(value);
    EXPECT_FALSE(Vector3D(1, 0, 0).IsSame(static_cast<DirectionSign>(value), 10.0));
    EXPECT_FALSE(Vector3D(0, 0, 0).IsSame(static_cast<DirectionSign>(value), 10.0));
  }
}

TEST(Vector3DIsColinear, TellsLinesAndTheirRatio) {
  constexpr double Unwritten = -77.0;
  struct Case {
    const char* name;
    Vector3D a;
    Vector3D b;
    double tol;
    bool colinear;
    double ratio;
  };
  const double belowNull = std::nextafter(0.0001, 0.0);
  const double belowShort = std::nextafter(0.001, 0.0);
  const Case cases[] = {
      {"opposite senses", {2, 0, 0}, {-4, 0, 0}, 0.001, true, -2.0},
      {"same sense", {0, 0, 2}, {0, 0, 5}, 0.001, true, 2.5},
      {"the other is null", {1, 0, 0}, {0.00001, 0, 0}, 0.001, false, Unwritten},
      {"this is null", {0, 0.00001, 0}, {0, 1, 0}, 0.001, false, Unwritten},
      {"both null", {0, 0, 0}, {0, 0, 0}, 0.001, false, Unwritten},
      {"x is too small for a ratio", {0.0005, 1, 0}, {0.001, 2, 0}, 0.001, true, 2.0},
      {"only z allows a ratio", {0, 0.0005, 1}, {0, 0.0015, 3}, 0.001, true, 3.0},
      {"x of the other is too small", {0.5, 1, 0}, {0.0001, 0.0002, 0}, 0.0001, false, Unwritten},
      {"perpendicular", {1, 0, 0}, {0, 1, 0}, 0.001, false, Unwritten},
      {"no component allows a ratio", {0.5, 0, 0}, {0.5, 0, 0}, 0.5, true, 1e8},
      {"a component just allows it", {0.5, 0, 0}, {0.5, 0, 0}, std::nextafter(0.5, 0), true, 1.0},
      {"this component is at the tolerance", {0.5, 0, 0}, {2, 0, 0}, 0.5, true, 1e8},
      {"the other's is at the tolerance", {2, 0, 0}, {0.5, 0, 0}, 0.5, true, 1e8},
      {"no tolerance, nothing is colinear", {1, 0, 0}, {1, 0, 0}, 0.0, false, Unwritten},
      {"as small as not null", {0.0001, 0, 0}, {1, 0, 0}, 0.00005, true, 1.0 / 0.0001},
      {"just null", {belowNull, 0, 0}, {1, 0, 0}, 0.00005, false, Unwritten},
      {"the other as small as not null", {1, 0, 0}, {0, -0.0001, 0}, 0.00005, true, 1e8},
      {"the other just null", {1, 0, 0}, {0, -belowNull, 0}, 0.00005, false, Unwritten},
      {"a short one counts as the X axis", {0, 0.0005, 0}, {3, 0, 0}, 0.00005, true, 1e8},
      {"and is not its own line", {0, 0.0005, 0}, {0, 3, 0}, 0.00005, false, Unwritten},
      {"two short ones", {0, 0.0005, 0}, {0, 0, 0.0009}, 0.00005, true, 1e8},
      {"as long as not short", {0, 0.001, 0}, {0, 3, 0}, 0.00005, true, 3.0 / 0.001},
      {"just short", {0, belowShort, 0}, {0, 3, 0}, 0.00005, false, Unwritten},
      {"the other as long as not short", {0, 3, 0}, {0, 0.001, 0}, 0.00005, true, 0.001 / 3.0},
      {"the other just short", {0, 3, 0}, {0, belowShort, 0}, 0.00005, false, Unwritten},
      {"NaN", {NotANumber, 1, 0}, {1, 0, 0}, 0.5, false, Unwritten},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    double ratio = Unwritten;
    EXPECT_EQ(c.a.IsColinear(c.b, c.tol, &ratio), c.colinear);
    EXPECT_TRUE(SameBits(ratio, c.ratio));
    EXPECT_EQ(c.a.IsColinear(c.b, c.tol, nullptr), c.colinear);
  }
}

// The directions (1, 0, 0) and (0.8, 0.6, 0) have the squared sine 0.36 up to rounding.
TEST(Vector3DIsColinear, TheToleranceBoundsTheSineStrictly) {
  const Vector3D a(7, 0, 0);
  const Vector3D b(0.8, 0.6, 0);
  Vector3D unitB = b;
  unitB.MakeUnit(0.001);
  const double sine = unitB[1];
  EXPECT_FALSE(a.IsColinear(b, sine, nullptr));
  EXPECT_TRUE(a.IsColinear(b, sine * (1 + 1e-15), nullptr));
  EXPECT_FALSE(a.IsColinear(b, sine * (1 - 1e-15), nullptr));
  EXPECT_TRUE(a.IsColinear(b, -sine * (1 + 1e-15), nullptr)) << "the tolerance is squared";
}

TEST(Vector3DIsColinear, ComparesAVectorWithItself) {
  const Vector3D v(3, -4, 5);
  double ratio = 0.0;
  EXPECT_TRUE(v.IsColinear(v, 1e-9, &ratio));
  EXPECT_EQ(ratio, 1.0);
}

TEST(Vector3DIsColinear, LeavesBothVectorsAlone) {
  const Vector3D a = WithFourth(3, -4, 5, 6);
  const Vector3D b = WithFourth(-6, 8, -10, 7);
  EXPECT_TRUE(a.IsColinear(b, 1e-9, nullptr));
  EXPECT_TRUE(Holds(a, 3, -4, 5, 6));
  EXPECT_TRUE(Holds(b, -6, 8, -10, 7));
}

}  // namespace
}  // namespace Orvo
