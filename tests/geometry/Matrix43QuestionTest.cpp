#include "geometry/FrameTwin.h"

#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace Orvo {
namespace {

using Testing::AllTypes;
using Testing::FrameOf;
using Testing::Twin;
using Testing::Type;

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

TEST(Matrix43Question, IsIdentityTrustsTheKindThenLooksExactly) {
  for (const Type type : AllTypes) {
    SCOPED_TRACE(type);
    Twin twin;
    twin.type = type;
    EXPECT_TRUE(FrameOf(twin).IsIdentity());
    for (int i = 0; i < 16; ++i) {
      Twin changed = twin;
      changed.m[i] += 1e-15;
      const bool inFourthRow = i % 4 == 3;
      EXPECT_EQ(FrameOf(changed).IsIdentity(), type == Matrix43::Identity || inFourthRow) << i;
    }
    Twin negativeZeros = twin;
    for (double& element : negativeZeros.m) {
      element = element == 0.0 ? -0.0 : element;
    }
    EXPECT_TRUE(FrameOf(negativeZeros).IsIdentity());
  }
}

TEST(Matrix43Question, IsTranslationTrustsTheKindThenLooksAtTheDiagonal) {
  for (const Type type : AllTypes) {
    SCOPED_TRACE(type);
    Twin twin;
    twin.type = type;
    for (int i = 0; i < 16; ++i) {
      twin.m[i] = 7.0;
    }
    twin.m[0] = twin.m[5] = twin.m[10] = 1.0;
    EXPECT_TRUE(FrameOf(twin).IsTranslation()) << "the other elements are not looked at";
    for (const int i : {0, 5, 10}) {
      Twin changed = twin;
      changed.m[i] = std::nextafter(1.0, 2.0);
      EXPECT_EQ(FrameOf(changed).IsTranslation(), type == Matrix43::Translation) << i;
    }
  }
}

TEST(Matrix43Question, IsRotaryLooksAtTheDirectionsOnly) {
  for (const Type type : AllTypes) {
    SCOPED_TRACE(type);
    Twin twin;
    twin.type = type;
    twin.m[3] = 5.0;
    twin.m[12] = 6.0;
    twin.m[15] = 7.0;
    EXPECT_TRUE(FrameOf(twin).IsRotary());
    twin.m[0] = 2.0;
    EXPECT_FALSE(FrameOf(twin).IsRotary());
  }
}

TEST(Matrix43Question, IsRotaryRefusesWhatIsNoRightHandedBasis) {
  struct Case {
    const char* name;
    Vector3D u, v, w;
    bool rotary;
  };
  const Case cases[] = {
      {"the unit axes", {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, true},
      {"a cyclic permutation", {0, 1, 0}, {0, 0, 1}, {1, 0, 0}, true},
      {"a swap", {0, 1, 0}, {1, 0, 0}, {0, 0, 1}, false},
      {"a mirror", {1, 0, 0}, {0, 1, 0}, {0, 0, -1}, false},
      {"a point", {0, 0, 0}, {0, 0, 0}, {0, 0, 0}, false},
      {"nearly a point", {1e-5, 0, 0}, {0, 1e-5, 0}, {0, 0, 1e-5}, false},
      {"scaled in U", {2, 0, 0}, {0, 1, 0}, {0, 0, 1}, false},
      {"scaled in V", {1, 0, 0}, {0, 2, 0}, {0, 0, 1}, false},
      {"scaled in W", {1, 0, 0}, {0, 1, 0}, {0, 0, 2}, false},
      {"scaled as a whole", {2, 0, 0}, {0, 2, 0}, {0, 0, 2}, false},
      {"not a number in U", {NotANumber, 0, 0}, {0, 1, 0}, {0, 0, 1}, false},
      {"not a number in V", {1, 0, 0}, {0, NotANumber, 0}, {0, 0, 1}, false},
      {"not a number in W", {1, 0, 0}, {0, 1, 0}, {0, 0, NotANumber}, false},
      {"infinite", {Infinity, 0, 0}, {0, 1, 0}, {0, 0, 1}, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Matrix43 frame;
    frame.SetUVW(c.u, c.v, c.w);
    EXPECT_EQ(frame.IsRotary(), c.rotary);
  }
}

// Lengths within 0.0001 of 1 pass the cross products; the largest such length is searched.
TEST(Matrix43Question, IsRotaryComparesCrossProductsStrictlyWithinATenThousandth) {
  double refused = 1.0001;
  while (refused - 1.0 < 0.0001) {
    refused = std::nextafter(refused, 2.0);
  }
  const double accepted = std::nextafter(refused, 0.0);
  for (int column = 0; column < 3; ++column) {
    SCOPED_TRACE(column);
    Vector3D axes[3] = {AxisX, AxisY, AxisZ};
    Matrix43 frame;
    axes[column][column] = accepted;
    frame.SetUVW(axes[0], axes[1], axes[2]);
    EXPECT_TRUE(frame.IsRotary());
    axes[column][column] = refused;
    frame.SetUVW(axes[0], axes[1], axes[2]);
    EXPECT_FALSE(frame.IsRotary());
  }
}

// V leans towards U by nearly the tolerance and W is longer by nearly as much: the lean then shows
// in V x W alone. The same, moved on cyclically, shows in W x U alone and in U x V alone.
TEST(Matrix43Question, IsRotaryComparesAllThreeCrossProducts) {
  for (int shift = 0; shift < 3; ++shift) {
    SCOPED_TRACE(shift);
    const int first = shift;
    const int second = (shift + 1) % 3;
    const int third = (shift + 2) % 3;
    Vector3D axes[3] = {AxisX, AxisY, AxisZ};
    axes[second][first] = 0.000099999;
    Matrix43 frame;
    frame.SetUVW(axes[0], axes[1], axes[2]);
    EXPECT_TRUE(frame.IsRotary());
    axes[third][third] = 1.00009;
    frame.SetUVW(axes[0], axes[1], axes[2]);
    EXPECT_FALSE(frame.IsRotary());
  }
}

TEST(Matrix43Question, IsSameComparesEveryElementAndPassesAtTheTolerance) {
  for (const Type type : AllTypes) {
    for (const Type otherType : AllTypes) {
      Twin a;
      Twin b;
      a.type = type;
      b.type = otherType;
      EXPECT_TRUE(FrameOf(a).IsSame(FrameOf(b), 0.0));
      for (int i = 0; i < 16; ++i) {
        SCOPED_TRACE(testing::Message() << type << " and " << otherType << ", element " << i);
        const bool counts = i % 4 != 3 || type == Matrix43::Projective;
        for (const double step : {0.25, -0.25}) {
          b.m[i] = a.m[i] + step;
          EXPECT_TRUE(FrameOf(a).IsSame(FrameOf(b), 0.25));
          EXPECT_EQ(FrameOf(a).IsSame(FrameOf(b), std::nextafter(0.25, 0.0)), !counts);
        }
        b.m[i] = a.m[i];
      }
    }
  }
}

TEST(Matrix43Question, IsSameFindsNoDifferenceInNaN) {
  Twin a;
  a.type = Matrix43::General;
  Twin b = a;
  b.m[1] = NotANumber;
  EXPECT_TRUE(FrameOf(a).IsSame(FrameOf(b), 0.0));
  b.m[2] = 1.0;
  EXPECT_FALSE(FrameOf(a).IsSame(FrameOf(b), 0.5));
}

TEST(Matrix43Question, EqualityIsExactOverAllSixteenAndIgnoresTheKind) {
  for (const Type type : AllTypes) {
    for (const Type otherType : AllTypes) {
      Twin a;
      Twin b;
      a.type = type;
      b.type = otherType;
      EXPECT_EQ(FrameOf(a) == FrameOf(b), 1);
      for (int i = 0; i < 16; ++i) {
        SCOPED_TRACE(testing::Message() << type << " and " << otherType << ", element " << i);
        b.m[i] = std::nextafter(a.m[i], 2.0);
        EXPECT_EQ(FrameOf(a) == FrameOf(b), 0);
        b.m[i] = a.m[i];
      }
    }
  }
  Twin zeros;
  zeros.m[1] = -0.0;
  EXPECT_EQ(FrameOf(zeros) == Matrix43(), 1);
  zeros.m[1] = NotANumber;
  Matrix43 notANumber = FrameOf(zeros);
  EXPECT_EQ(notANumber == notANumber, 0);
}

}  // namespace
}  // namespace Orvo
