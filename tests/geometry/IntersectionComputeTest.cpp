#include "geometry/Circle3D.h"
#include "geometry/IntersectionCompute.h"
#include "geometry/Line3D.h"
#include "geometry/Plane3D.h"
#include "support/NearVector.h"
#include "support/SameBits.h"
#include "support/TestRandom.h"

#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <type_traits>

namespace Orvo {
namespace {

using Testing::NearVector;
using Testing::SameBits;
using Testing::TestRandom;

static_assert(std::has_virtual_destructor_v<Line3D>);
static_assert(std::has_virtual_destructor_v<Plane3D>);
static_assert(std::has_virtual_destructor_v<IntersectionCompute>);

constexpr double Tolerance = 0.0001;
const Vector3D Unwritten(-7, -8, -9);

double Below(double value) { return std::nextafter(value, 0.0); }

IntersectionCompute MakeCompute(double tol = Tolerance) {
  return IntersectionCompute(tol, tol, tol, tol, tol, tol, tol);
}

Vector3D DrawPoint(TestRandom& random, double size) {
  return Vector3D(random.Real(-size, size), random.Real(-size, size), random.Real(-size, size));
}

Vector3D DrawUnit(TestRandom& random) {
  Vector3D v = DrawPoint(random, 1.0);
  v.MakeUnit(1e-6);
  return v;
}

TEST(Line3D, StartsAtTheOriginAlongZ) {
  const Line3D line;
  EXPECT_TRUE(SameBits(line.Origin, NullVector));
  EXPECT_TRUE(SameBits(line.Dir, AxisZ));
}

TEST(Plane3D, StartsWithoutNormal) {
  const Plane3D plane;
  EXPECT_TRUE(SameBits(plane.Origin, NullVector));
  EXPECT_TRUE(SameBits(plane.Normal, NullVector));
}

TEST(IntersectionCompute, KeepsSevenTolerancesInOrder) {
  const IntersectionCompute compute(1, 2, 3, 4, 5, 6, 7);
  EXPECT_EQ(compute.TolPlanePlane, 1);
  EXPECT_EQ(compute.TolTangentInner, 2);
  EXPECT_EQ(compute.TolTangentOuter, 3);
  EXPECT_EQ(compute.TolLinePlane, 4);
  EXPECT_EQ(compute.Tol5, 5);
  EXPECT_EQ(compute.Tol6, 6);
  EXPECT_EQ(compute.Tol7, 7);
}

// --- planes and points ---------------------------------------------------------------------------

TEST(PlaneContainsPoint, ComparesBothDistancesStrictly) {
  struct Case {
    const char* name;
    Plane3D plane;
    Vector3D point;
    double tol;
    bool contained;
  };
  const Plane3D plane(Vector3D(1, 2, 3), AxisZ);
  const Plane3D noNormal(Vector3D(1, 2, 3), NullVector);
  const Plane3D longNormal(Vector3D(0, 0, 0), Vector3D(0, 0, 100));
  const Case cases[] = {
      {"its origin", plane, {1, 2, 3}, Tolerance, true},
      {"far away in the plane", plane, {100, -200, 3}, Tolerance, true},
      {"at the tolerance above", plane, {100, -200, 3.25}, 0.25, false},
      {"below the tolerance above", plane, {100, -200, 3 + 0.2499}, 0.25, true},
      {"at the tolerance below", plane, {100, -200, 2.75}, 0.25, false},
      {"below the tolerance below", plane, {100, -200, 2.7501}, 0.25, true},
      {"without tolerance not even its origin", plane, {1, 2, 3}, 0.0, false},
      {"near the origin across a long normal", longNormal, {0, 0, 0.24}, 0.25, true},
      {"at the tolerance across a long normal", longNormal, {0, 0, 0.25}, 0.25, false},
      {"without a normal all points count", noNormal, {50, 60, 70}, Tolerance, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(PlaneContainsPoint(c.plane, c.point, c.tol), c.contained);
  }
}

// --- line and plane ------------------------------------------------------------------------------

TEST(IntersectLinePlane, TellsParallelLinesFromOthers) {
  struct Case {
    const char* name;
    Line3D line;
    int kind;
    Vector3D point;
  };
  const Plane3D plane(Vector3D(1, 2, 3), AxisZ);
  const Case cases[] = {
      {"straight through", {{5, 6, 10}, {0, 0, 1}}, 1, {5, 6, 3}},
      {"from below, long direction", {{5, 6, -1}, {0, 0, 8}}, 1, {5, 6, 3}},
      {"slanted", {{0, 0, 0}, {1, 0, 1}}, 1, {3, 0, 3}},
      {"parallel above", {{5, 6, 4}, {1, 0, 0}}, 0, Unwritten},
      {"parallel within the tolerance", {{5, 6, 3.00005}, {1, 0, 0}}, 2, {1, 2, 3}},
      {"parallel within the tolerance below", {{5, 6, 2.99995}, {0, 1, 0}}, 2, {1, 2, 3}},
      {"no direction off the plane", {{5, 6, 4}, {0, 0, 0}}, 0, Unwritten},
      {"no direction in the plane", {{5, 6, 3}, {0, 0, 0}}, 2, {1, 2, 3}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Vector3D point = Unwritten;
    EXPECT_EQ(IntersectionCompute::IntersectLinePlane(plane, c.line, &point, Tolerance), c.kind);
    EXPECT_TRUE(SameBits(point, c.point));
    point = Unwritten;
    EXPECT_EQ(MakeCompute().IntersectLinePlane(plane, c.line, &point), c.kind);
    EXPECT_TRUE(SameBits(point, c.point));
  }
}

TEST(IntersectLinePlane, ComparesSlopeAndDistanceStrictly) {
  const Plane3D plane(NullVector, AxisZ);
  Vector3D point = Unwritten;
  const Line3D atSlope(Vector3D(0, 0, 1), Vector3D(1, 0, 0.25));
  EXPECT_EQ(IntersectionCompute::IntersectLinePlane(plane, atSlope, &point, 0.25), 1);
  EXPECT_TRUE(SameBits(point, Vector3D(-4, 0, 0)));
  const Line3D downAtSlope(Vector3D(0, 0, 1), Vector3D(1, 0, -0.25));
  EXPECT_EQ(IntersectionCompute::IntersectLinePlane(plane, downAtSlope, &point, 0.25), 1);
  EXPECT_TRUE(SameBits(point, Vector3D(4, 0, 0)));

  const Line3D belowSlope(Vector3D(0, 0, 1), Vector3D(1, 0, Below(0.25)));
  point = Unwritten;
  EXPECT_EQ(IntersectionCompute::IntersectLinePlane(plane, belowSlope, &point, 0.25), 0);
  EXPECT_TRUE(SameBits(point, Unwritten));
  const Line3D atDistance(Vector3D(7, 8, -0.25), AxisX);
  EXPECT_EQ(IntersectionCompute::IntersectLinePlane(plane, atDistance, &point, 0.25), 0);
  const Line3D belowDistance(Vector3D(7, 8, -Below(0.25)), AxisX);
  EXPECT_EQ(IntersectionCompute::IntersectLinePlane(plane, belowDistance, &point, 0.25), 2);
  EXPECT_TRUE(SameBits(point, NullVector));
}

TEST(IntersectLinePlane, CalledOnItsOwnTakesItsTolerance) {
  IntersectionCompute compute(9, 9, 9, 0.5, 9, 9, 9);
  const Plane3D plane(NullVector, AxisZ);
  Vector3D point;
  EXPECT_EQ(compute.IntersectLinePlane(plane, Line3D({0, 0, 1}, {1, 0, 0.5}), &point), 1);
  EXPECT_EQ(compute.IntersectLinePlane(plane, Line3D({0, 0, 1}, {1, 0, 0.49}), &point), 0);
  compute.TolLinePlane = 0.25;
  EXPECT_EQ(compute.IntersectLinePlane(plane, Line3D({0, 0, 1}, {1, 0, 0.49}), &point), 1);
}

TEST(IntersectLinePlane, IsTheScalarFormulaBitForBit) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 2000; ++i) {
    const Plane3D plane(DrawPoint(random, 100), DrawUnit(random));
    const Line3D line(DrawPoint(random, 100), DrawPoint(random, 3));
    const double slope = line.Dir * plane.Normal;
    const double t = ((plane.Normal * plane.Origin) - (plane.Normal * line.Origin)) / slope;
    Vector3D origin = line.Origin;
    Vector3D dir = line.Dir;
    Vector3D point;
    ASSERT_EQ(IntersectionCompute::IntersectLinePlane(plane, line, &point, 1e-12), 1);
    ASSERT_TRUE(SameBits(point, origin + dir * t));
    ASSERT_TRUE(PlaneContainsPoint(plane, point, 1e-6 * (1.0 + std::abs(t))));
  }
}

// --- plane and plane -----------------------------------------------------------------------------

TEST(IntersectPlanePlane, GivesTheCommonLine) {
  Line3D line;
  EXPECT_EQ(IntersectionCompute::IntersectPlanePlane(Plane3D({5, 0, 0}, AxisX),
                                                     Plane3D({0, 7, 0}, AxisY), &line, Tolerance),
            1);
  EXPECT_TRUE(NearVector(line.Origin, Vector3D(5, 7, 0), 1e-12));
  EXPECT_TRUE(NearVector(line.Dir, AxisZ, 1e-12));
}

TEST(IntersectPlanePlane, ParallelPlanesApartHaveNone) {
  Line3D line(Unwritten, Unwritten);
  EXPECT_EQ(IntersectionCompute::IntersectPlanePlane(Plane3D({0, 0, 0}, AxisZ),
                                                     Plane3D({0, 0, 1}, AxisZ), &line, Tolerance),
            0);
  EXPECT_EQ(
      IntersectionCompute::IntersectPlanePlane(
          Plane3D({0, 0, 0}, AxisZ), Plane3D({0, 0, 1}, Vector3D(0, 0, -1)), &line, Tolerance),
      0);
  EXPECT_TRUE(SameBits(line.Origin, Unwritten));
  EXPECT_TRUE(SameBits(line.Dir, Unwritten));
}

TEST(IntersectPlanePlane, CoincidentPlanesGiveALineInThem) {
  const Vector3D normals[] = {{0, 0, 1}, {1, 0, 0}, {0, -1, 0}, {0.6, 0, -0.8}};
  for (const Vector3D& normal : normals) {
    const Plane3D plane(Vector3D(1, 2, 3), normal);
    Matrix43 frame;
    ASSERT_TRUE(frame.MakeAxisW(normal));
    Vector3D dir = frame.GetU();
    dir.MakeUnit(0.001);
    Line3D line;
    EXPECT_EQ(IntersectionCompute::IntersectPlanePlane(plane, plane, &line, Tolerance), 2);
    EXPECT_TRUE(SameBits(line.Origin, Vector3D(1, 2, 3)));
    EXPECT_TRUE(SameBits(line.Dir, dir));
    EXPECT_NEAR(line.Dir.Norm(), 1.0, 1e-15);
    EXPECT_NEAR(line.Dir * normal, 0.0, 1e-15);
  }
}

TEST(IntersectPlanePlane, CoincidentPlanesTakeTheSecondOriginAndTheFirstNormal) {
  Line3D line;
  EXPECT_EQ(IntersectionCompute::IntersectPlanePlane(Plane3D({0, 0, 0}, AxisX),
                                                     Plane3D({0.00005, 4, 5}, Vector3D(-1, 0, 0)),
                                                     &line, Tolerance),
            2);
  EXPECT_TRUE(SameBits(line.Origin, Vector3D(0.00005, 4, 5)));
  EXPECT_TRUE(SameBits(line.Dir, AxisY));
}

// The normals are within a sine of 0.25 of each other or not; the second is (0, s, c).
TEST(IntersectPlanePlane, TheToleranceBoundsTheSineBetweenTheNormals) {
  const Plane3D flat(NullVector, AxisZ);
  for (const double sine : {0.2499, 0.2501}) {
    SCOPED_TRACE(sine);
    const Plane3D tilted(Vector3D(0, 0, 0.1), Vector3D(0, sine, std::sqrt(1 - sine * sine)));
    Line3D line;
    const int kind = IntersectionCompute::IntersectPlanePlane(flat, tilted, &line, 0.25);
    EXPECT_EQ(kind, sine < 0.25 ? 2 : 1);
    EXPECT_TRUE(NearVector(line.Dir, sine < 0.25 ? AxisX : Vector3D(-1, 0, 0), 1e-12));
  }
}

// Between the tolerance and its square root the planes cross, but the line that is laid into the
// first one counts as parallel to the second: it misses it or, near its origin, gives that.
TEST(IntersectPlanePlane, NearlyParallelPlanesCrossAtTheSecondOriginOrNotAtAll) {
  const double sine = 0.005;
  const Vector3D normal(0, sine, std::sqrt(1 - sine * sine));
  Line3D line(Unwritten, Unwritten);
  EXPECT_EQ(IntersectionCompute::IntersectPlanePlane(Plane3D(NullVector, AxisZ),
                                                     Plane3D({3, 0, 1}, normal), &line, Tolerance),
            0);
  EXPECT_TRUE(SameBits(line.Origin, Unwritten));
  EXPECT_TRUE(SameBits(line.Dir, Unwritten));
  EXPECT_EQ(IntersectionCompute::IntersectPlanePlane(
                Plane3D(NullVector, AxisZ), Plane3D({3, 0, 0.00005}, normal), &line, Tolerance),
            1);
  EXPECT_TRUE(SameBits(line.Origin, Vector3D(3, 0, 0.00005)));
  EXPECT_TRUE(NearVector(line.Dir, Vector3D(-1, 0, 0), 1e-12));
}

// Where the sine between the normals is below a thousandth, their cross product is no direction any
// more and the X axis stands for it.
TEST(IntersectPlanePlane, TheDirectionOfPlanesThatHardlyCrossIsTheXAxis) {
  for (const double sine : {0.00095, 0.00105}) {
    SCOPED_TRACE(sine);
    const Plane3D tilted(Vector3D(3, 4, 0), Vector3D(sine, 0, std::sqrt(1 - sine * sine)));
    Line3D line;
    EXPECT_EQ(IntersectionCompute::IntersectPlanePlane(Plane3D({3, 4, 0}, AxisZ), tilted, &line,
                                                       Tolerance),
              1);
    EXPECT_TRUE(SameBits(line.Origin, Vector3D(3, 4, 0)));
    EXPECT_TRUE(NearVector(line.Dir, sine < 0.001 ? AxisX : AxisY, 1e-12));
  }
}

TEST(IntersectPlanePlane, GivesALineInBothPlanesAlongTheCrossProduct) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int checked = 0;
  for (int i = 0; i < 1000; ++i) {
    const Plane3D p1(DrawPoint(random, 50), DrawUnit(random));
    const Plane3D p2(DrawPoint(random, 50), DrawUnit(random));
    Vector3D n1 = p1.Normal;
    Vector3D cross = n1 & p2.Normal;
    if (cross.Norm() < 0.05) {
      continue;
    }
    ++checked;
    // The same steps on the public operations of vectors.
    Vector3D across = n1 & cross;
    const double t = ((p2.Normal * p2.Origin) - (p2.Normal * p1.Origin)) / (across * p2.Normal);
    Vector3D origin = p1.Origin;
    cross.MakeUnit(0.001);
    Line3D line;
    ASSERT_EQ(IntersectionCompute::IntersectPlanePlane(p1, p2, &line, Tolerance), 1);
    ASSERT_TRUE(SameBits(line.Origin, origin + across * t));
    ASSERT_TRUE(SameBits(line.Dir, cross));
    ASSERT_TRUE(PlaneContainsPoint(p1, line.Origin, 1e-9));
    ASSERT_TRUE(PlaneContainsPoint(p2, line.Origin, 1e-9));
  }
  EXPECT_GT(checked, 900);
}

// --- line and circle -----------------------------------------------------------------------------

struct LineCircleCase {
  const char* name;
  double distance;  // of the line, which runs along -y, from the center
  double radius;
  double t1;
  double t2;
  int points;  // 0, 1 (the foot twice) or 2
  double halfChord;
};

TEST(IntersectLineCircle2D, TellsSecantsTangentsAndMisses) {
  const double top = (1.0 + 0.25) * 8.0;
  const double bottom = (1.0 - 0.25) * 8.0;
  const LineCircleCase cases[] = {
      {"a secant", 3.0, 8.0, 0.25, 0.25, 2, std::sqrt(8.0 * 8.0 - 3.0 * 3.0)},
      {"through the center", 0.0, 8.0, 0.25, 0.25, 2, 8.0},
      {"the lower end of the band", bottom, 8.0, 0.25, 0.25, 1, 0.0},
      {"below the band", Below(bottom), 8.0, 0.25, 0.25, 2,
       std::sqrt(std::abs(8.0 * 8.0 - Below(bottom) * Below(bottom)))},
      {"below the upper end of the band", Below(top), 8.0, 0.25, 0.25, 1, 0.0},
      {"the upper end of the band", top, 8.0, 0.25, 0.25, 0, 0.0},
      {"a miss", 11.0, 8.0, 0.25, 0.25, 0, 0.0},
      // Here the absolute bound reaches farther than the band: 0.5 + 0.25 against 0.625.
      {"outside a small circle's band", 0.7, 0.5, 0.25, 0.25, 2,
       std::sqrt(std::abs(0.5 * 0.5 - 0.7 * 0.7))},
      {"at the absolute bound", 0.75, 0.5, 0.25, 0.25, 0, 0.0},
      {"below the absolute bound", Below(0.75), 0.5, 0.25, 0.25, 2,
       std::sqrt(std::abs(0.5 * 0.5 - Below(0.75) * Below(0.75)))},
      {"tangent without tolerances", 8.0, 8.0, 0.0, 0.0, 0, 0.0},
      {"inner tolerance alone", Below(8.0), 8.0, 0.25, 0.0, 1, 0.0},
      {"outer tolerance alone", 8.0, 8.0, 0.0, 0.25, 1, 0.0},
      {"outer tolerance alone, inside", Below(8.0), 8.0, 0.0, 0.25, 2,
       std::sqrt(std::abs(8.0 * 8.0 - Below(8.0) * Below(8.0)))},
  };
  for (const LineCircleCase& c : cases) {
    for (const double side : {1.0, -1.0}) {
      SCOPED_TRACE(testing::Message() << c.name << " on side " << side);
      // The normal of the direction (0, -1) is (1, 0).
      const double s = side * c.distance;
      Vector3D out[2] = {Unwritten, Unwritten};
      const bool met = IntersectionCompute::IntersectLineCircle2D(
          Vector3D(s, 17, 5), Vector3D(0, -1, 0), NullVector, c.radius, out, c.t1, c.t2);
      EXPECT_EQ(met, c.points != 0);
      if (c.points == 0) {
        EXPECT_TRUE(SameBits(out[0], Unwritten));
        EXPECT_TRUE(SameBits(out[1], Unwritten));
      } else {
        EXPECT_EQ(out[0] == Vector3D(s, -c.halfChord, 0), 1);
        EXPECT_EQ(out[1] == Vector3D(s, c.halfChord, 0), 1);
      }
    }
  }
}

TEST(IntersectLineCircle2D, CarriesTheCenterAlong) {
  Vector3D out[2];
  EXPECT_TRUE(IntersectionCompute::IntersectLineCircle2D(Vector3D(103, 17, 5), Vector3D(0, -1, 0),
                                                         Vector3D(100, -40, 6), 5.0, out, Tolerance,
                                                         Tolerance));
  EXPECT_EQ(out[0] == Vector3D(103, -44, 6), 1);
  EXPECT_EQ(out[1] == Vector3D(103, -36, 6), 1);
}

TEST(IntersectLineCircle2D, IsTheScalarFormulaBitForBit) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int met = 0;
  for (int i = 0; i < 3000; ++i) {
    const double phi = random.Real(-3.2, 3.2);
    const double d[2] = {std::cos(phi), std::sin(phi)};
    const double p[2] = {random.Real(-10, 10), random.Real(-10, 10)};
    const double ctr[2] = {random.Real(-2, 2), random.Real(-2, 2)};
    const double r = random.Real(0.1, 9);
    const double n[2] = {-d[1], d[0]};
    const double s = (p[0] - ctr[0]) * n[0] + (p[1] - ctr[1]) * n[1];
    const double foot[2] = {ctr[0] + n[0] * s, ctr[1] + n[1] * s};
    const double t1 = 1e-3;
    const double t2 = 1e-2;
    const bool inBand = std::abs(s) >= (1 - t1) * r && std::abs(s) < (1 + t2) * r;
    const bool expected = inBand || r > std::abs(s) - t2;
    const double h = inBand ? 0.0 : std::sqrt(std::abs(r * r - s * s));
    Vector3D out[2];
    ASSERT_EQ(
        IntersectionCompute::IntersectLineCircle2D(Vector3D(p[0], p[1], 0), Vector3D(d[0], d[1], 0),
                                                   Vector3D(ctr[0], ctr[1], 0), r, out, t1, t2),
        expected);
    if (expected) {
      ++met;
      ASSERT_TRUE(SameBits(out[0][0], foot[0] + d[0] * h));
      ASSERT_TRUE(SameBits(out[0][1], foot[1] + d[1] * h));
      ASSERT_TRUE(SameBits(out[1][0], foot[0] - d[0] * h));
      ASSERT_TRUE(SameBits(out[1][1], foot[1] - d[1] * h));
    }
  }
  EXPECT_GT(met, 1000);
}

// --- circle and plane ----------------------------------------------------------------------------

TEST(IntersectCirclePlane, GivesTwoPointsOnePointOrNone) {
  struct Case {
    const char* name;
    double x;
    int kind;
    Vector3D point1;
    Vector3D point2;
  };
  const double half = std::sqrt(75.0);
  const Case cases[] = {
      {"a secant", 5.0, 1, {5, -half, 0}, {5, half, 0}},
      {"the other side", -5.0, 1, {-5, -half, 0}, {-5, half, 0}},
      {"a tangent", 10.0, 1, {10, 0, 0}, {10, 0, 0}},
      {"outside but in the band", 10.0005, 1, {10.0005, 0, 0}, {10.0005, 0, 0}},
      {"inside but in the band", 9.9995, 1, {9.9995, 0, 0}, {9.9995, 0, 0}},
      {"a miss", 11.0, 0, Unwritten, Unwritten},
      {"a near miss", 10.0011, 0, Unwritten, Unwritten},
      {"through the center", 0.0, 1, {0, -10, 0}, {0, 10, 0}},
  };
  const Circle3D circle(NullVector, AxisZ, 10.0);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Vector3D point1 = Unwritten;
    Vector3D point2 = Unwritten;
    EXPECT_EQ(
        MakeCompute().IntersectCirclePlane(Plane3D({c.x, 0, 0}, AxisX), circle, &point1, &point2),
        c.kind);
    EXPECT_TRUE(NearVector(point1, c.point1, 1e-12));
    EXPECT_TRUE(NearVector(point2, c.point2, 1e-12));
  }
}

// The first point lies towards plane normal x circle axis: X x Z is -Y.
TEST(IntersectCirclePlane, TurningTheNormalOrTheAxisSwapsThePoints) {
  for (const double normalSign : {1.0, -1.0}) {
    for (const double axisSign : {1.0, -1.0}) {
      Vector3D point1;
      Vector3D point2;
      EXPECT_EQ(MakeCompute().IntersectCirclePlane(Plane3D({6, 0, 0}, {normalSign, 0, 0}),
                                                   Circle3D(NullVector, {0, 0, axisSign}, 10.0),
                                                   &point1, &point2),
                1);
      const double side = -normalSign * axisSign;
      EXPECT_TRUE(NearVector(point1, Vector3D(6, side * 8, 0), 1e-12));
      EXPECT_TRUE(NearVector(point2, Vector3D(6, -side * 8, 0), 1e-12));
    }
  }
}

TEST(IntersectCirclePlane, AParallelPlaneHasNone) {
  Vector3D point1 = Unwritten;
  Vector3D point2 = Unwritten;
  EXPECT_EQ(MakeCompute().IntersectCirclePlane(Plane3D({0, 0, 1}, AxisZ),
                                               Circle3D(NullVector, AxisZ, 10.0), &point1, &point2),
            0);
  EXPECT_TRUE(SameBits(point1, Unwritten));
  EXPECT_TRUE(SameBits(point2, Unwritten));
}

TEST(IntersectCirclePlane, ACircleInThePlaneGivesTheDiameterAlongU) {
  const Circle3D circle(Vector3D(1, 2, 3), Vector3D(1, 0, 0), 10.0);
  Vector3D point1;
  Vector3D point2;
  EXPECT_EQ(MakeCompute().IntersectCirclePlane(Plane3D({1, 50, 60}, {-1, 0, 0}), circle, &point1,
                                               &point2),
            2);
  Vector3D u = circle.GetFrame().GetU();
  Vector3D center = circle.Center;
  EXPECT_TRUE(SameBits(point1, center + u * 10.0));
  EXPECT_TRUE(SameBits(point2, center - u * 10.0));
  EXPECT_TRUE(SameBits(point1, Vector3D(1, 12, 3)));
}

// The half chord of a unit circle at the distance sqrt(1 - h * h) is h.
TEST(IntersectCirclePlane, PointsCloserThanAHundredThousandthAreOne) {
  const IntersectionCompute compute(Tolerance, 0.0, 0.0, Tolerance, 0, 0, 0);
  for (const double halfChord : {0.0000048, 0.0000052}) {
    SCOPED_TRACE(halfChord);
    Vector3D point1;
    Vector3D point2;
    EXPECT_EQ(
        compute.IntersectCirclePlane(Plane3D({std::sqrt(1 - halfChord * halfChord), 0, 0}, AxisX),
                                     Circle3D(NullVector, AxisZ, 1.0), &point1, &point2),
        1);
    EXPECT_NEAR(point1[1], -halfChord, 1e-9);
    if (halfChord < 0.000005) {
      EXPECT_TRUE(SameBits(point2, point1));
    } else {
      EXPECT_NEAR(point2[1], halfChord, 1e-9);
    }
  }
}

// A chord along x is as wide in x as it is narrow in y: both components must be close.
TEST(IntersectCirclePlane, PointsApartInEitherComponentAreTwo) {
  const IntersectionCompute compute(Tolerance, 0.0, 0.0, Tolerance, 0, 0, 0);
  Vector3D point1;
  Vector3D point2;
  EXPECT_EQ(compute.IntersectCirclePlane(Plane3D({0, 0.8, 0}, AxisY),
                                         Circle3D(NullVector, AxisZ, 1.0), &point1, &point2),
            1);
  EXPECT_TRUE(NearVector(point1, Vector3D(0.6, 0.8, 0), 1e-12));
  EXPECT_TRUE(NearVector(point2, Vector3D(-0.6, 0.8, 0), 1e-12));
}

// The components are compared, not the distance: a slanted chord may be longer than a level one.
TEST(IntersectCirclePlane, SlantedPointsAreComparedByComponentToo) {
  const IntersectionCompute compute(Tolerance, 0.0, 0.0, Tolerance, 0, 0, 0);
  const double slope = std::sqrt(0.5);
  for (const double halfChord : {0.0000068, 0.0000074}) {
    SCOPED_TRACE(halfChord);
    const double distance = std::sqrt(1 - halfChord * halfChord);
    Vector3D point1;
    Vector3D point2;
    EXPECT_EQ(compute.IntersectCirclePlane(
                  Plane3D({slope * distance, slope * distance, 0}, {slope, slope, 0}),
                  Circle3D(NullVector, AxisZ, 1.0), &point1, &point2),
              1);
    EXPECT_EQ(point1[0] == point2[0] && point1[1] == point2[1], halfChord < 0.000005 / slope);
  }
}

TEST(IntersectCirclePlane, ReadsItsOwnThreeTolerances) {
  const Circle3D circle(NullVector, AxisZ, 10.0);
  Vector3D point1;
  Vector3D point2;
  IntersectionCompute compute(Tolerance, 0.5, Tolerance, 9, 9, 9, 9);
  compute.IntersectCirclePlane(Plane3D({6, 0, 0}, AxisX), circle, &point1, &point2);
  EXPECT_TRUE(NearVector(point1, Vector3D(6, 0, 0), 1e-12)) << "the inner band is wide";
  compute = IntersectionCompute(Tolerance, Tolerance, 0.5, 9, 9, 9, 9);
  EXPECT_EQ(compute.IntersectCirclePlane(Plane3D({14, 0, 0}, AxisX), circle, &point1, &point2), 1);
  EXPECT_TRUE(NearVector(point1, Vector3D(14, 0, 0), 1e-12)) << "the outer band is wide";
  compute = IntersectionCompute(2.0, Tolerance, Tolerance, 0, 0, 0, 0);
  EXPECT_EQ(compute.IntersectCirclePlane(Plane3D({1, 0, 0}, AxisX), circle, &point1, &point2), 2)
      << "with a wide bound on the sine all planes are parallel, and this one near";
}

TEST(IntersectCirclePlane, IsMadeOfItsPartsBitForBit) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int kinds[3] = {0, 0, 0};
  for (int i = 0; i < 3000; ++i) {
    const Circle3D circle(DrawPoint(random, 5), DrawUnit(random), random.Real(0.5, 10));
    const Plane3D plane(DrawPoint(random, 5), DrawUnit(random));
    const IntersectionCompute compute = MakeCompute();
    Vector3D point1 = Unwritten;
    Vector3D point2 = Unwritten;
    const int kind = compute.IntersectCirclePlane(plane, circle, &point1, &point2);
    ASSERT_GE(kind, 0);
    ASSERT_LE(kind, 1);
    ++kinds[kind];

    Matrix43 frame = circle.GetFrame();
    Vector3D u = frame.GetU();
    Vector3D v = frame.GetV();
    Vector3D center = circle.Center;
    Line3D line;
    ASSERT_EQ(IntersectionCompute::IntersectPlanePlane(plane, Plane3D(circle.Center, circle.Axis),
                                                       &line, Tolerance),
              1);
    const Vector3D fromCenter = line.Origin - center;
    Vector3D solutions[2];
    const bool met = IntersectionCompute::IntersectLineCircle2D(
        Vector3D(fromCenter * u, fromCenter * v, 0), Vector3D(line.Dir * u, line.Dir * v, 0),
        NullVector, circle.Radius, solutions, Tolerance, Tolerance);
    ASSERT_EQ(kind, met ? 1 : 0);
    if (!met) {
      ASSERT_TRUE(SameBits(point1, Unwritten));
      ASSERT_TRUE(SameBits(point2, Unwritten));
      continue;
    }
    Vector3D expected1 = u * solutions[0][0];
    expected1 = center + (expected1 + v * solutions[0][1]);
    Vector3D expected2 = u * solutions[1][0];
    expected2 = center + (expected2 + v * solutions[1][1]);
    ASSERT_TRUE(SameBits(point1, expected1));
    ASSERT_TRUE(
        SameBits(point2, solutions[0].IsSame(solutions[1], 0.00001) ? expected1 : expected2));
    const double slack = circle.Radius * 0.0002;
    ASSERT_NEAR(point1.Distance(center), circle.Radius, slack);
    ASSERT_TRUE(PlaneContainsPoint(plane, point1, 1e-8));
    ASSERT_TRUE(PlaneContainsPoint(plane, point2, 1e-8));
  }
  EXPECT_GT(kinds[0], 100);
  EXPECT_GT(kinds[1], 1000);
}

}  // namespace
}  // namespace Orvo
