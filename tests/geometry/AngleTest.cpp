#include "support/SameBits.h"
#include "support/Signature.h"
#include "support/TestRandom.h"

#include <Orvo/Angle.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

namespace Orvo {
namespace {

using Testing::HasSignature;
using Testing::SameBits;
using Testing::TestRandom;

constexpr double Pi = 3.141592653589793;
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

static_assert(std::has_virtual_destructor_v<Angle>);
static_assert(std::is_convertible_v<double, Angle>);
static_assert(!std::is_convertible_v<Angle, double>);
static_assert(HasSignature<void (Angle::*)(double)>(&Angle::SetRadian));
static_assert(HasSignature<double (Angle::*)() const>(&Angle::GetRadian));
static_assert(HasSignature<void (Angle::*)(double)>(&Angle::SetDegre));
static_assert(HasSignature<double (Angle::*)() const>(&Angle::GetDegre));
static_assert(HasSignature<double (Angle::*)() const>(&Angle::Sin));
static_assert(HasSignature<double (Angle::*)() const>(&Angle::Cos));
static_assert(HasSignature<Angle (Angle::*)(const Angle&)>(&Angle::operator+));
static_assert(HasSignature<Angle (Angle::*)(const Angle&)>(&Angle::operator-));
static_assert(HasSignature<Angle (Angle::*)()>(&Angle::operator-));
static_assert(HasSignature<Angle (Angle::*)(double)>(&Angle::operator*));
static_assert(HasSignature<int (Angle::*)(const Angle&) const>(&Angle::operator<));
static_assert(HasSignature<int (Angle::*)(const Angle&) const>(&Angle::operator>));
static_assert(HasSignature<bool (Angle::*)(const Vector3D&, const Vector3D&, const Vector3D&)>(
    &Angle::SetVector3DRef));

TEST(Angle, StartsAtZero) { EXPECT_TRUE(SameBits(Angle().GetRadian(), 0.0)); }

TEST(Angle, TakesAPlainNumberAsRadians) {
  Angle angle = 1.25;
  EXPECT_TRUE(SameBits(angle.GetRadian(), 1.25));
}

TEST(Angle, StoresRadiansUnchanged) {
  const double values[] = {0.0, -0.0, 1.0, -7.5, 1e300, 4.9e-324, Infinity, -Infinity, NotANumber};
  for (const double value : values) {
    SCOPED_TRACE(value);
    Angle angle;
    angle.SetRadian(value);
    EXPECT_TRUE(SameBits(angle.GetRadian(), value));
    EXPECT_TRUE(SameBits(Angle(value).GetRadian(), value));
  }
}

TEST(Angle, CopiesAreIndependent) {
  Angle source(2.0);
  Angle copy(source);
  Angle assigned;
  assigned = source;
  source.SetRadian(3.0);
  EXPECT_TRUE(SameBits(copy.GetRadian(), 2.0));
  EXPECT_TRUE(SameBits(assigned.GetRadian(), 2.0));
}

TEST(Angle, AssignmentReturnsItsTargetAndSurvivesSelf) {
  Angle angle(2.0);
  const Angle& self = angle;
  EXPECT_EQ(&(angle = self), &angle);
  EXPECT_TRUE(SameBits(angle.GetRadian(), 2.0));
}

TEST(Angle, AHalfTurnIsPiBothWays) {
  Angle angle;
  angle.SetDegre(180.0);
  EXPECT_TRUE(SameBits(angle.GetRadian(), Pi));
  angle.SetRadian(Pi);
  EXPECT_TRUE(SameBits(angle.GetDegre(), 180.0));
}

// The order of the operations shows in the last bit: 1 / 180 * pi is not 1 * pi / 180.
TEST(Angle, DegreesDivideFirstThenMultiply) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int tellingIn = 0;
  int tellingOut = 0;
  for (int i = 0; i < 2000; ++i) {
    const double degrees = random.Real(-1000.0, 1000.0);
    Angle angle;
    angle.SetDegre(degrees);
    const double divided = degrees / 180.0;
    ASSERT_TRUE(SameBits(angle.GetRadian(), divided * Pi));
    tellingIn += divided * Pi != degrees * (Pi / 180.0) ? 1 : 0;
    const double radians = random.Real(-20.0, 20.0);
    angle.SetRadian(radians);
    const double scaled = radians * 180.0;
    ASSERT_TRUE(SameBits(angle.GetDegre(), scaled / Pi));
    tellingOut += scaled / Pi != radians * (180.0 / Pi) ? 1 : 0;
  }
  EXPECT_GT(tellingIn, 100);
  EXPECT_GT(tellingOut, 100);
}

TEST(Angle, SineAndCosineAreTheStandardOnes) {
  const double values[] = {0.0, -0.0, 0.5, -1.5, Pi, Pi / 2, 100.0, 1e22};
  for (const double value : values) {
    SCOPED_TRACE(value);
    EXPECT_TRUE(SameBits(Angle(value).Sin(), std::sin(value)));
    EXPECT_TRUE(SameBits(Angle(value).Cos(), std::cos(value)));
  }
}

TEST(Angle, ArithmeticDoesNotWrapAndChangesNoOperand) {
  Angle a(5.0);
  Angle b(6.5);
  EXPECT_TRUE(SameBits((a + b).GetRadian(), 11.5));
  EXPECT_TRUE(SameBits((a - b).GetRadian(), -1.5));
  EXPECT_TRUE(SameBits((-a).GetRadian(), -5.0));
  EXPECT_TRUE(SameBits((a * 4.0).GetRadian(), 20.0));
  EXPECT_TRUE(SameBits((a + a).GetRadian(), 10.0));
  EXPECT_TRUE(SameBits((a - a).GetRadian(), 0.0));
  EXPECT_TRUE(SameBits(a.GetRadian(), 5.0));
  EXPECT_TRUE(SameBits(b.GetRadian(), 6.5));
}

TEST(Angle, ArithmeticKeepsSignedZeroAndInfinity) {
  Angle zero(0.0);
  Angle infinite(Infinity);
  EXPECT_TRUE(SameBits((-zero).GetRadian(), -0.0));
  EXPECT_TRUE(SameBits((zero * -1.0).GetRadian(), -0.0));
  EXPECT_TRUE(SameBits((infinite - Angle(1.0)).GetRadian(), Infinity));
  EXPECT_TRUE(std::isnan((infinite - infinite).GetRadian()));
}

TEST(Angle, ComparesExactlyAndWithoutTurns) {
  struct Case {
    const char* name;
    double a;
    double b;
    int less;
    int greater;
  };
  const Case cases[] = {
      {"more than a turn is more", 7.0, 0.5, 0, 1},
      {"less", 0.5, 7.0, 1, 0},
      {"equal", 1.0, 1.0, 0, 0},
      {"one bit apart", 1.0, std::nextafter(1.0, 2.0), 1, 0},
      {"zeros of both signs are equal", -0.0, 0.0, 0, 0},
      {"NaN on the left", NotANumber, 0.0, 0, 0},
      {"NaN on the right", 0.0, NotANumber, 0, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(Angle(c.a) < Angle(c.b), c.less);
    EXPECT_EQ(Angle(c.a) > Angle(c.b), c.greater);
  }
}

TEST(AngleSetVector3DRef, MeasuresFromTheFirstToTheSecondAboutTheReference) {
  struct Case {
    const char* name;
    Vector3D from;
    Vector3D to;
    Vector3D ref;
    double radians;
  };
  const Case cases[] = {
      {"a quarter turn", {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, Pi / 2},
      {"the reference turned around", {1, 0, 0}, {0, 1, 0}, {0, 0, -1}, -Pi / 2},
      {"the directions swapped", {0, 1, 0}, {1, 0, 0}, {0, 0, 1}, -Pi / 2},
      {"the reference in their plane", {1, 0, 0}, {0, 1, 0}, {1, 0, 0}, Pi / 2},
      {"no reference at all", {1, 0, 0}, {0, 1, 0}, {0, 0, 0}, Pi / 2},
      {"a long reference", {1, 0, 0}, {0, 1, 0}, {0, 0, -1000}, -Pi / 2},
      {"a short reference", {1, 0, 0}, {0, 1, 0}, {5, 5, -1e-9}, -Pi / 2},
      {"long and short directions", {300, 0, 0}, {0, 0.001, 0}, {0, 0, 1}, Pi / 2},
      {"antiparallel, any reference", {1, 0, 0}, {-1, 0, 0}, {0, 0, -1}, Pi},
      {"antiparallel along the reference", {0, 0, 2}, {0, 0, -3}, {0, 0, -1}, Pi},
      {"parallel", {0, 2, 0}, {0, 5, 0}, {0, 0, -1}, 0.0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Angle angle(99.0);
    EXPECT_TRUE(angle.SetVector3DRef(c.from, c.to, c.ref));
    EXPECT_TRUE(SameBits(angle.GetRadian(), c.radians));
  }
}

TEST(AngleSetVector3DRef, RefusesDirectionsBelowAHundredThousandth) {
  struct Case {
    const char* name;
    double fromLength;
    double toLength;
    bool accepted;
  };
  const double below = std::nextafter(0.00001, 0.0);
  const Case cases[] = {
      {"both at the limit", 0.00001, 0.00001, true}, {"the first below", below, 1.0, false},
      {"the second below", 1.0, below, false},       {"the first far below", 0.000001, 1.0, false},
      {"the first null", 0.0, 1.0, false},           {"the second null", 1.0, 0.0, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Angle angle(99.0);
    EXPECT_EQ(angle.SetVector3DRef(Vector3D(c.fromLength, 0, 0), Vector3D(0, c.toLength, 0),
                                   Vector3D(0, 0, -1)),
              c.accepted);
    EXPECT_TRUE(SameBits(angle.GetRadian(), c.accepted ? -Pi / 2 : 0.0));
  }
}

double ScalarDot(const double* a, const double* b) {
  return a[0] * b[0] + (a[1] * b[1] + a[2] * b[2]);
}

// The cosine of directions that nearly agree may be rounded to more than 1, and is 1 then.
TEST(AngleSetVector3DRef, IsTheScalarFormulaBitForBit) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int negative = 0;
  int clamped = 0;
  for (int i = 0; i < 4000; ++i) {
    double from[3];
    double to[3];
    double ref[3];
    for (int k = 0; k < 3; ++k) {
      from[k] = random.Real(-10.0, 10.0);
      to[k] = i % 3 == 0 ? from[k] * (i % 2 == 0 ? 3.7 : -0.3) : random.Real(-1.0, 1.0);
      ref[k] = random.Real(-2.0, 2.0);
      if (i % 4 == 1) {
        to[k] = from[k] * random.Real(1.0, 1.00000001);
      }
    }
    const double fromLength = std::sqrt(ScalarDot(from, from));
    const double toLength = std::sqrt(ScalarDot(to, to));
    double a[3];
    double b[3];
    for (int k = 0; k < 3; ++k) {
      a[k] = from[k] / fromLength;
      b[k] = to[k] / toLength;
    }
    const double dot = std::clamp(ScalarDot(a, b), -1.0, 1.0);
    const double cross[3] = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
                             a[0] * b[1] - a[1] * b[0]};
    const double sine = std::sqrt(ScalarDot(cross, cross));
    double expected = std::atan2(sine, dot);
    clamped += expected != std::atan2(sine, ScalarDot(a, b)) ? 1 : 0;
    if (ScalarDot(cross, ref) < 0.0) {
      expected = -expected;
      ++negative;
    }
    Angle angle;
    ASSERT_TRUE(angle.SetVector3DRef(Vector3D(from), Vector3D(to), Vector3D(ref)));
    ASSERT_TRUE(SameBits(angle.GetRadian(), expected)) << "draw " << i;
  }
  EXPECT_GT(negative, 500);
  EXPECT_GT(clamped, 10);
}

}  // namespace
}  // namespace Orvo
