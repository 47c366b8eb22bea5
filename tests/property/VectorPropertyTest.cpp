// Angles and vectors against the plain twin, bit for bit.

#include "property/Compare.h"
#include "property/Draw.h"
#include "property/RandomGeometry.h"
#include "property/reference/Vector.h"

#include <Orvo/Angle.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace Orvo::Property {
namespace {

using Reference::Vector;

Vector Drawn(Draw& draw) {
  switch (draw.Int(0, 3)) {
    case 0:
      return AnyVector(draw);
    case 1:
      return AnyDirection(draw);
    default:
      return Point(draw);
  }
}

// A second vector that has something to do with the first one.
Vector Partner(Draw& draw, const Vector& a) {
  switch (draw.Int(0, 4)) {
    case 0:
      return a;
    case 1:
      return Reference::Scaled(a, AnyNumber(draw));
    case 2:
      return Reference::Sum(a, Reference::Scaled(AnyDirection(draw), draw.Uniform(0.0, 0.002)));
    default:
      return Drawn(draw);
  }
}

double Tolerance(Draw& draw) {
  static const double usual[] = {0.0, 0.00001, 0.0001, 0.001, 0.5, -1.0};
  return draw.Chance(0.8) ? draw.Of(usual) : AnyNumber(draw);
}

TEST(AngleProperty, ConvertsAndCalculatesAsTheTwinDoes) {
  ForCases(300000, [](Draw& draw) {
    const double a = AnyNumber(draw);
    const double b = draw.Chance(0.2) ? a : AnyNumber(draw);
    Angle angle(a);
    EXPECT_TRUE(SameBits(angle.GetRadian(), a));
    EXPECT_TRUE(SameBits(angle.GetDegre(), Reference::RadiansToDegrees(a)));
    Angle other;
    EXPECT_TRUE(SameBits(other.GetRadian(), 0.0));
    other.SetDegre(b);
    EXPECT_TRUE(SameBits(other.GetRadian(), Reference::DegreesToRadians(b)));
    other.SetRadian(b);
    EXPECT_TRUE(SameBits((angle + other).GetRadian(), a + b));
    EXPECT_TRUE(SameBits((angle - other).GetRadian(), a - b));
    EXPECT_TRUE(SameBits((-angle).GetRadian(), -a));
    EXPECT_TRUE(SameBits((angle * b).GetRadian(), a * b));
    EXPECT_EQ(angle < other, a < b ? 1 : 0);
    EXPECT_EQ(angle > other, a > b ? 1 : 0);
    EXPECT_TRUE(SameBits(angle.Sin(), std::sin(a)));
    EXPECT_TRUE(SameBits(angle.Cos(), std::cos(a)));
  });
}

TEST(AngleProperty, MeasuresSignedAnglesAsTheTwinDoes) {
  ForCases(500000, [](Draw& draw) {
    const Vector from = Drawn(draw);
    const Vector to = Partner(draw, from);
    const Vector ref = Partner(draw, draw.Chance(0.5) ? Reference::Cross(from, to) : from);
    double expected = 0.0;
    const bool expectedResult = Reference::SignedAngle(from, to, ref, &expected);
    Angle angle(draw.Uniform(-1.0, 1.0));
    EXPECT_EQ(angle.SetVector3DRef(ToOrvo(from), ToOrvo(to), ToOrvo(ref)), expectedResult);
    EXPECT_TRUE(SameBits(angle.GetRadian(), expected)) << Text(from) << "\n"
                                                       << Text(to) << "\n"
                                                       << Text(ref);
  });
}

TEST(VectorProperty, CalculatesAsTheTwinDoes) {
  ForCases(500000, [](Draw& draw) {
    const Vector a = Drawn(draw);
    const Vector b = Partner(draw, a);
    const double factor = AnyNumber(draw);
    Vector3D u = ToOrvo(a);
    const Vector3D v = ToOrvo(b);
    EXPECT_TRUE(SameBits(u + v, Reference::Sum(a, b)));
    EXPECT_TRUE(SameBits(u - v, Reference::Difference(a, b)));
    EXPECT_TRUE(SameBits(-u, Reference::Negated(a)));
    EXPECT_TRUE(SameBits(u * factor, Reference::Scaled(a, factor)));
    EXPECT_TRUE(SameBits(u * v, Reference::Dot(a, b)));
    EXPECT_TRUE(SameBits(u & v, Reference::Cross(a, b)));
    EXPECT_TRUE(SameBits(u.Norm(), Reference::Norm(a)));
    EXPECT_TRUE(SameBits(u.NormSquare(), Reference::NormSquare(a)));
    EXPECT_TRUE(SameBits(u.Distance(v), Reference::Distance(a, b)));
    EXPECT_EQ(u == v, Reference::Equal(a, b) ? 1 : 0);
    const bool hasNan = a.x != a.x || a.y != a.y || a.z != a.z;
    if (!hasNan) {
      EXPECT_TRUE(SameBits(u.NormSup(), Reference::NormSup(a)));
    }
    EXPECT_TRUE(SameBits(u, a)) << "an operand changed";
    Vector3D target = u;
    EXPECT_EQ(&(target += v), &target);
    EXPECT_TRUE(SameBits(target, Reference::Sum(a, b)));
    target = u;
    EXPECT_EQ(&(target -= v), &target);
    EXPECT_TRUE(SameBits(target, Reference::Difference(a, b)));
    target = u;
    EXPECT_EQ(&(target *= factor), &target);
    EXPECT_TRUE(SameBits(target, Reference::Scaled(a, factor)));
    target = u;
    Vector expected = a;
    target.ModificationMax(v);
    Reference::GrowMax(&expected, b);
    EXPECT_TRUE(SameBits(target, expected)) << Text(a) << Text(b);
    target = u;
    expected = a;
    target.ModificationMin(v);
    Reference::GrowMin(&expected, b);
    EXPECT_TRUE(SameBits(target, expected)) << Text(a) << Text(b);
  });
}

TEST(VectorProperty, ComparesAndMakesUnitAsTheTwinDoes) {
  ForCases(500000, [](Draw& draw) {
    const Vector a = Drawn(draw);
    const Vector b = Partner(draw, a);
    const double tol = Tolerance(draw);
    const Vector3D u = ToOrvo(a);
    const Vector3D v = ToOrvo(b);
    EXPECT_EQ(u.IsSame(v, tol), Reference::IsSame(a, b, tol)) << Text(a) << Text(b) << tol;
    const int sign = draw.Int(-1, 6);
    EXPECT_EQ(u.IsSame(static_cast<DirectionSign>(sign), tol), Reference::IsSameSign(a, sign, tol))
        << Text(a) << sign << " " << tol;
    Vector3D unit = u;
    Vector expected = a;
    EXPECT_EQ(unit.MakeUnit(tol), Reference::MakeUnit(&expected, tol)) << Text(a) << tol;
    EXPECT_TRUE(SameBits(unit, expected)) << Text(a) << tol;
  });
}

TEST(VectorProperty, TellsColinearVectorsAsTheTwinDoes) {
  ForCases(500000, [](Draw& draw) {
    Vector a = Drawn(draw);
    Vector b = Partner(draw, a);
    const double tol = Tolerance(draw);
    if (a.x != a.x || a.y != a.y || a.z != a.z || b.x != b.x || b.y != b.y || b.z != b.z) {
      return;
    }
    const bool expected = Reference::IsColinear(a, b, tol, nullptr);
    EXPECT_EQ(ToOrvo(a).IsColinear(ToOrvo(b), tol, nullptr), expected) << Text(a) << Text(b) << tol;
    double expectedRatio = 77.0;
    double ratio = 77.0;
    EXPECT_EQ(Reference::IsColinear(a, b, tol, &expectedRatio), expected);
    EXPECT_EQ(ToOrvo(a).IsColinear(ToOrvo(b), tol, &ratio), expected);
    EXPECT_TRUE(SameBits(ratio, expectedRatio)) << Text(a) << Text(b) << tol;
  });
}

TEST(VectorProperty, PrintsAsTheTwinDoes) {
  ForCases(20000, [](Draw& draw) {
    const Vector a = Drawn(draw);
    std::wstring text = L"before";
    ToOrvo(a).GetStringDebug(&text);
    EXPECT_EQ(text, Reference::DebugText(a));
  });
}

}  // namespace
}  // namespace Orvo::Property
