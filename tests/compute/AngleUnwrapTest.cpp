#include "RepeatedAddition.h"
#include "compute/AngleUnwrap.h"
#include "support/SameBits.h"
#include "support/TestRandom.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

namespace Orvo::Testing {
namespace {

using Kin::ClosestAngle;

constexpr double Pi = 3.141592653589793;
constexpr double TwoPi = 6.283185307179586;
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

double Rad(double degrees) { return degrees / 180.0 * Pi; }

TEST(ClosestAngle, GoesToTheEquivalentNearestTheReference) {
  struct Case {
    double angleDeg;
    double referenceDeg;
    double expectedDeg;
  };
  const Case cases[] = {
      {350, 0, -10},     {10, 350, 370},  {0, 0, 0},         {10, 20, 10},   {-170, 170, 190},
      {170, -170, -190}, {0, 1000, 1080}, {0, -1000, -1080}, {3600, 0, 0},   {-3600, 0, 0},
      {90, 3600, 3690},  {179, 0, 179},   {181, 0, -179},    {-181, 0, 179}, {-179, 0, -179},
      {0, 179, 0},       {0, 181, 360},   {0, -181, -360},
  };
  for (const Case& c : cases) {
    EXPECT_NEAR(DegreesOf(ClosestAngle(Rad(c.angleDeg), Rad(c.referenceDeg))), c.expectedDeg, 1e-9)
        << c.angleDeg << " " << c.referenceDeg;
  }
}

// The comparison is strict: half a turn away is near enough.
TEST(ClosestAngle, HalfATurnAwayStays) {
  for (const double degrees : {180.0, -180.0}) {
    EXPECT_TRUE(SameBits(ClosestAngle(Rad(degrees), 0.0), Rad(degrees)));
    EXPECT_TRUE(SameBits(ClosestAngle(0.0, Rad(degrees)), 0.0));
  }
  const double above = std::nextafter(Pi, 4.0);
  const double muchAbove = Rad(180.0000001);
  EXPECT_TRUE(SameBits(ClosestAngle(above, 0.0), ByRepeatedAddition(above, 0.0)));
  EXPECT_LT(ClosestAngle(muchAbove, 0.0), 0.0);
  EXPECT_GT(ClosestAngle(-muchAbove, 0.0), 0.0);
}

TEST(ClosestAngle, IsTheRepeatedAdditionBitForBit) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 20000; ++i) {
    const double size = std::pow(10.0, random.Real(-3, 3));
    const double angle = random.Real(-size, size);
    const double reference = random.Real(-size, size);
    ASSERT_TRUE(SameBits(ClosestAngle(angle, reference), ByRepeatedAddition(angle, reference)))
        << HexText(angle) << " " << HexText(reference);
  }
}

TEST(ClosestAngle, IsTheRepeatedAdditionUpToTenThousandTurnsAway) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (const double turns : {9000.0, 9999.0, 9999.49, 9999.9, 9999.9999}) {
    for (const double side : {1.0, -1.0}) {
      for (int i = 0; i < 10; ++i) {
        const double reference = random.Real(-3, 3);
        const double angle = reference + side * turns * TwoPi;
        ASSERT_TRUE(SameBits(ClosestAngle(angle, reference), ByRepeatedAddition(angle, reference)))
            << HexText(angle) << " " << HexText(reference);
        ASSERT_TRUE(SameBits(ClosestAngle(reference, angle), ByRepeatedAddition(reference, angle)))
            << HexText(angle) << " " << HexText(reference);
      }
    }
  }
}

TEST(ClosestAngle, FarAwayGoesNearToo) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 2000; ++i) {
    const double size = std::pow(10.0, random.Real(5, 12));
    const double angle = random.Real(-size, size);
    const double reference = random.Chance(0.5) ? random.Real(-4, 4) : random.Real(-size, size);
    const double result = ClosestAngle(angle, reference);
    ASSERT_LE(std::fabs(DegreesOf(result) - DegreesOf(reference)), 180.0 + 1e-13 * DegreesOf(size))
        << HexText(angle) << " " << HexText(reference);
    // The same angle but for whole turns, within what doubles of that size can tell.
    const double turns = (result - angle) / TwoPi;
    ASSERT_LE(std::fabs(turns - std::round(turns)), 1e-7 + 2e-13 * size)
        << HexText(angle) << " " << HexText(reference);
  }
}

// Every pair of magnitudes must end, those where a turn is lost in the rounding included.
TEST(ClosestAngle, EndsForEveryMagnitude) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 20000; ++i) {
    const double angle = random.Real(-1, 1) * std::pow(10.0, random.Real(-5, 308));
    const double reference = random.Real(-1, 1) * std::pow(10.0, random.Real(-5, 308));
    const double nearby = random.Real(-4, 4);
    ASSERT_TRUE(std::isfinite(ClosestAngle(angle, nearby)));
    ASSERT_TRUE(std::isfinite(ClosestAngle(nearby, reference)));
    ASSERT_TRUE(std::isfinite(ClosestAngle(angle, reference)));
    ASSERT_TRUE(std::isfinite(ClosestAngle(nearby, reference, -1.0, 1.0)));
    ASSERT_TRUE(std::isfinite(ClosestAngle(nearby, 0.0, reference, angle)));
    const double middling = random.Real(-1, 1) * std::pow(10.0, random.Real(14, 40));
    ASSERT_TRUE(std::isfinite(ClosestAngle(middling, nearby)));
    ASSERT_TRUE(std::isfinite(ClosestAngle(nearby, middling, -1.0, 1.0)));
    ASSERT_TRUE(std::isfinite(ClosestAngle(nearby, 0.0, middling, middling)));
    ASSERT_TRUE(std::isfinite(ClosestAngle(nearby, middling, 1.0, -1.0)));
  }
}

// Above a power of two doubles are twice as far apart as below it: there a turn towards 0 counts,
// and one away from it is lost.
TEST(ClosestAngle, StaysWhereATurnIsLost) {
  for (const double sign : {1.0, -1.0}) {
    EXPECT_TRUE(SameBits(ClosestAngle(sign * 0x1p56, sign * 0x1p57), sign * 0x1p56));
    EXPECT_LE(std::fabs(DegreesOf(ClosestAngle(sign * 0x1p56, 0.0))), 180.0 + 1e-9);
  }
}

TEST(ClosestAngle, InfiniteAndUndefinedNumbersStay) {
  const double numbers[] = {0.5, Infinity, -Infinity, NotANumber, 1e308, -1e308};
  for (const double angle : numbers) {
    for (const double reference : numbers) {
      SCOPED_TRACE(testing::Message() << angle << " " << reference);
      const double result = ClosestAngle(angle, reference);
      if (!std::isfinite(angle) || !std::isfinite(reference)) {
        EXPECT_TRUE(SameBits(result, angle));
      }
      for (const double limit : numbers) {
        ClosestAngle(angle, reference, limit, 1.0);
        ClosestAngle(angle, reference, -1.0, limit);
        ClosestAngle(angle, reference, limit, limit);
      }
    }
  }
  EXPECT_TRUE(std::isnan(ClosestAngle(NotANumber, 0.0, -1.0, 1.0)));
  EXPECT_TRUE(SameBits(ClosestAngle(0.5, 0.0, -Infinity, Infinity), 0.5));
  EXPECT_TRUE(SameBits(ClosestAngle(0.5, 0.0, NotANumber, NotANumber), 0.5));
}

TEST(ClosestAngleInRange, GoesToTheEquivalentNearestTheReference) {
  EXPECT_NEAR(DegreesOf(ClosestAngle(Rad(300), 0, Rad(-90), Rad(90))), -60, 1e-9);
  EXPECT_NEAR(DegreesOf(ClosestAngle(Rad(300), Rad(350), Rad(-360), Rad(360))), 300, 1e-9);
}

TEST(ClosestAngleInRange, LeavesTheNearestForOneInTheRange) {
  // Nearest to 0 is -60, but the range starts at 0.
  EXPECT_NEAR(DegreesOf(ClosestAngle(Rad(300), 0, 0, Rad(360))), 300, 1e-9);
  // Nearest to 350 is 370, but the range ends at 360.
  EXPECT_NEAR(DegreesOf(ClosestAngle(Rad(10), Rad(350), 0, Rad(360))), 10, 1e-9);
  EXPECT_NEAR(DegreesOf(ClosestAngle(Rad(0), 0, Rad(1000), Rad(2000))), 1080, 1e-9);
  EXPECT_NEAR(DegreesOf(ClosestAngle(Rad(0), 0, Rad(-2000), Rad(-1000))), -1080, 1e-9);
}

TEST(ClosestAngleInRange, NarrowRangeMayBeMissed) {
  EXPECT_NEAR(DegreesOf(ClosestAngle(Rad(90), 0, Rad(-10), Rad(10))), -270, 1e-9);
  EXPECT_NEAR(DegreesOf(ClosestAngle(Rad(-90), 0, Rad(-10), Rad(10))), -90, 1e-9);
}

TEST(ClosestAngleInRange, UpToOneTenThousandthAboveTheMaximumIsSetToIt) {
  const double max = 1.0;
  EXPECT_TRUE(SameBits(ClosestAngle(max, 0, -1, max), max));
  EXPECT_TRUE(SameBits(ClosestAngle(max + 0.00005, 0, -1, max), max));
  EXPECT_TRUE(SameBits(ClosestAngle(max + 0.0001, 0, -1, max), max)) << "the bound itself stays";
  const double beyond = std::nextafter(max + 0.0001, 2.0);
  EXPECT_TRUE(SameBits(ClosestAngle(beyond, 0, -1, max), beyond - TwoPi));
  EXPECT_TRUE(SameBits(ClosestAngle(std::nextafter(max, 2.0), 0, -1, max), max));
  EXPECT_TRUE(
      SameBits(ClosestAngle(std::nextafter(max, 0.0), 0, -1, max), std::nextafter(max, 0.0)));
}

TEST(ClosestAngleInRange, UpToOneTenThousandthBelowTheMinimumIsSetToIt) {
  const double min = -1.0;
  EXPECT_TRUE(SameBits(ClosestAngle(min, 0, min, 6), min));
  EXPECT_TRUE(SameBits(ClosestAngle(min - 0.00005, 0, min, 6), min));
  EXPECT_TRUE(SameBits(ClosestAngle(min - 0.0001, 0, min, 6), min)) << "the bound itself stays";
  const double beyond = std::nextafter(min - 0.0001, -2.0);
  EXPECT_TRUE(SameBits(ClosestAngle(beyond, 0, min, 6), beyond + TwoPi));
  EXPECT_TRUE(SameBits(ClosestAngle(std::nextafter(min, -2.0), 0, min, 6), min));
}

// A full turn up can only be undone in a range that is nearly a full turn: the angle then ends
// below the minimum, and up to 0.01 below it is set to the minimum.
TEST(ClosestAngleInRange, UpToOneHundredthBelowTheMinimumIsSetToItAfterATurnDown) {
  for (const double gap : {0.005, 0.0099, 0.00999999}) {
    const double min = -3.0;
    const double max = min + TwoPi - 2 * gap;
    const double angle = max + gap;  // a turn down: min - gap
    EXPECT_TRUE(SameBits(ClosestAngle(angle, angle, min, max), min)) << gap;
  }
  for (const double gap : {0.01000001, 0.0101, 0.02}) {
    const double min = -3.0;
    const double max = min + TwoPi - 2 * gap;
    const double angle = max + gap;
    const double result = ClosestAngle(angle, angle, min, max);
    EXPECT_TRUE(SameBits(result, angle - TwoPi)) << gap;
    EXPECT_LT(result, min);
  }
}

TEST(ClosestAngleInRange, InvertedRangeEnds) {
  EXPECT_TRUE(SameBits(ClosestAngle(0.5, 0, 1, -1), ByRepeatedAddition(0.5, 0, 1, -1)));
  EXPECT_TRUE(SameBits(ClosestAngle(0.5, 0, 100, -100), ByRepeatedAddition(0.5, 0, 100, -100)));
}

TEST(ClosestAngleInRange, IsTheRepeatedAdditionBitForBit) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int set = 0;
  for (int i = 0; i < 50000; ++i) {
    const double size = std::pow(10.0, random.Real(-1, 2.5));
    const double angle = random.Real(-Pi, Pi);
    const double reference = random.Real(-size, size);
    double min = random.Real(-size, size);
    double max = random.Real(-size, size);
    if (random.Chance(0.7) && max < min) {
      std::swap(min, max);
    }
    // Often a limit lies near some equivalent of the angle.
    const double nearby = angle + random.Integer(-3, 3) * TwoPi + random.Real(-0.012, 0.012);
    if (random.Chance(0.3)) {
      min = nearby;
    } else if (random.Chance(0.4)) {
      max = nearby;
    } else if (random.Chance(0.3)) {
      max = nearby;
      min = max - TwoPi + random.Real(-0.03, 0.03);
    }
    const double result = ClosestAngle(angle, reference, min, max);
    ASSERT_TRUE(SameBits(result, ByRepeatedAddition(angle, reference, min, max)))
        << HexText(angle) << " " << HexText(reference) << " " << HexText(min) << " "
        << HexText(max);
    set += (AreSameBits(result, min) || AreSameBits(result, max)) ? 1 : 0;
  }
  EXPECT_GT(set, 100) << "the limits were met";
}

}  // namespace
}  // namespace Orvo::Testing
