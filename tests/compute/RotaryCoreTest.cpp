#include "SmallMachines.h"
#include "compute/MachineComputeImplementation.h"
#include "compute/RotaryCore.h"
#include "support/NearVector.h"
#include "support/SameBits.h"
#include "support/TestRandom.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Orvo::Testing {
namespace {

using Kin::RotariesSolution;

IntersectionCompute NewIntersection() {
  constexpr double tol = 0.0001;
  return IntersectionCompute(tol, tol, tol, tol, tol, tol, tol);
}

RotariesSolution Solve(const Vector3D& axis1, const Vector3D& axis2, const Vector3D& tool,
                       const Vector3D& target) {
  IntersectionCompute intersection = NewIntersection();
  RotariesSolution sol;
  Kin::SolveTwoRotaries(axis1, axis2, tool, target, 42, &intersection, &sol);
  return sol;
}

void ExpectDegrees(const RotariesSolution& sol, double alpha1, double beta1, double alpha2,
                   double beta2, double tolerance = 1e-9) {
  EXPECT_NEAR(sol.Alpha1.GetDegre(), alpha1, tolerance);
  EXPECT_NEAR(sol.Beta1.GetDegre(), beta1, tolerance);
  EXPECT_NEAR(sol.Alpha2.GetDegre(), alpha2, tolerance);
  EXPECT_NEAR(sol.Beta2.GetDegre(), beta2, tolerance);
}

// Returns the tool after turning about axis1 and then about axis2.
Vector3D Turned(const Vector3D& axis1, const Vector3D& axis2, const Vector3D& tool,
                const Angle& alpha, const Angle& beta) {
  Matrix43 first;
  first.SetRotation(axis1, alpha);
  Matrix43 second;
  second.SetRotation(axis2, beta);
  return second.ApplyToVector3D(first.ApplyToVector3D(tool));
}

// The plane z = cos 30 cuts the tool's circle about x at y = +-1/2; the first point lies on the
// side of axis2 x axis1 = +y.
TEST(TwoRotaries, FirstSolutionLiesOnTheSideOfTheCrossedAxes) {
  const RotariesSolution sol = Solve(AxisX, AxisZ, AxisZ, Vector3D(0.5, 0, std::sqrt(0.75)));
  EXPECT_EQ(sol.Count, 2U);
  EXPECT_EQ(sol.FreeRegister, -1);
  ExpectDegrees(sol, -30, -90, 30, 90);
}

TEST(TwoRotaries, BothSolutionsTurnTheToolOntoTheTarget) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int solved = 0;
  for (int round = 0; round < 3000; ++round) {
    const auto unit = [&random] {
      Vector3D v(random.Real(-1, 1), random.Real(-1, 1), random.Real(-1, 1));
      v.MakeUnit(0.0);
      return v;
    };
    const Vector3D axis1 = unit();
    const Vector3D axis2 = unit();
    const Vector3D tool = unit();
    const Vector3D target = unit();
    const RotariesSolution sol = Solve(axis1, axis2, tool, target);
    // Near-tangent and near-parallel cases are taken as tangent within the tolerances.
    if (sol.Count == 2) {
      ++solved;
      ASSERT_TRUE(NearVector(Turned(axis1, axis2, tool, sol.Alpha1, sol.Beta1), target, 1e-5));
      ASSERT_TRUE(NearVector(Turned(axis1, axis2, tool, sol.Alpha2, sol.Beta2), target, 1e-5));
    }
  }
  EXPECT_GT(solved, 500);
}

TEST(TwoRotaries, TargetEqualToTheToolIsReachedWithoutAMove) {
  const double angle = 0.3;
  const Vector3D axis1(std::sin(angle), 0, std::cos(angle));
  const RotariesSolution sol = Solve(axis1, AxisX, AxisZ, AxisZ);
  ASSERT_GE(sol.Count, 1U);
  const bool first =
      std::fabs(sol.Alpha1.GetDegre()) < 1e-6 && std::fabs(sol.Beta1.GetDegre()) < 1e-6;
  const bool second =
      std::fabs(sol.Alpha2.GetDegre()) < 1e-6 && std::fabs(sol.Beta2.GetDegre()) < 1e-6;
  EXPECT_TRUE(first || second);
}

TEST(TwoRotaries, TargetOnTheOuterAxisLeavesItFree) {
  const RotariesSolution sol = Solve(AxisX, AxisZ, AxisZ, AxisZ);
  EXPECT_EQ(sol.Count, 1U);
  EXPECT_EQ(sol.FreeRegister, 42);
  ExpectDegrees(sol, 0, 0, 0, 0);
}

TEST(TwoRotaries, TangencyGivesOneSolutionTwice) {
  // The circle of height 0.6 about z touches the plane y = 0.8.
  const Vector3D target(0.6, 0.8, 0);
  const RotariesSolution sol = Solve(AxisZ, AxisY, Vector3D(0.8, 0, 0.6), target);
  EXPECT_EQ(sol.Count, 1U);
  EXPECT_EQ(sol.FreeRegister, -1);
  EXPECT_TRUE(SameBits(sol.Alpha1, sol.Alpha2));
  EXPECT_TRUE(SameBits(sol.Beta1, sol.Beta2));
  EXPECT_NEAR(sol.Alpha1.GetDegre(), 90, 1e-9);
  EXPECT_NEAR(sol.Beta1.GetDegre(), 90, 1e-9);
}

// The plane's distance from the circle's center, as a share of the radius 0.8.
TEST(TwoRotaries, TangencyBandHasItsTwoWidths) {
  struct Case {
    const char* name;
    double share;
    unsigned int count;
    bool once;
  };
  const Case cases[] = {
      {"inside the inner width", 1 - 0.9e-7, 1, true},
      {"before the inner width", 1 - 1.1e-7, 2, false},
      {"inside the outer width", 1 + 0.9e-5, 1, true},
      {"between the outer width and the distance", 1 + 1.1e-5, 2, false},
      {"beyond the distance", 1 + 1.3e-5, 0, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const double y = 0.8 * c.share;
    const RotariesSolution sol =
        Solve(AxisZ, AxisY, Vector3D(0.8, 0, 0.6), Vector3D(std::sqrt(1 - y * y), y, 0));
    EXPECT_EQ(sol.Count, c.count);
    EXPECT_EQ(AreSameBits(sol.Alpha1.GetRadian(), sol.Alpha2.GetRadian()), c.once);
  }
}

TEST(TwoRotaries, OutOfReachHasNoSolution) {
  const Vector3D axis1(0, std::sin(0.2), std::cos(0.2));
  const RotariesSolution sol = Solve(axis1, AxisZ, AxisZ, AxisX);
  EXPECT_EQ(sol.Count, 0U);
  EXPECT_EQ(sol.FreeRegister, -1);
  ExpectDegrees(sol, 0, 0, 0, 0, 0.0);
}

TEST(TwoRotaries, CountStartsAtZero) {
  IntersectionCompute intersection = NewIntersection();
  RotariesSolution sol;
  sol.Count = 9;
  Kin::SolveTwoRotaries(Vector3D(0, std::sin(0.2), std::cos(0.2)), AxisZ, AxisZ, AxisX, 42,
                        &intersection, &sol);
  EXPECT_EQ(sol.Count, 0U);
}

// Only a tool shorter than its target can be the target and yet meet no plane.
TEST(TwoRotaries, WithoutIntersectionTheTargetMustBeTheToolToOneHundredThousandth) {
  struct Case {
    Vector3D target;
    unsigned int count;
  };
  const double under = 0.99e-5;
  const double over = 1.01e-5;
  const Case cases[] = {
      {{0, 0, 0.5}, 1},      {{under, 0, 0.5}, 1}, {{0, under, 0.5}, 1}, {{0, 0, 0.5 + under}, 1},
      {{-under, 0, 0.5}, 1}, {{over, 0, 0.5}, 0},  {{0, over, 0.5}, 0},  {{0, 0, 0.5 - over}, 0},
      {{0, -over, 0.5}, 0},  {{0, 0, 1}, 0},       {{1e-5, 0, 0.5}, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.target[0] << " " << c.target[1] << " " << c.target[2]);
    IntersectionCompute intersection = NewIntersection();
    RotariesSolution sol;
    sol.Alpha1 = sol.Alpha2 = sol.Beta1 = sol.Beta2 = Angle(1.0);
    Kin::SolveTwoRotaries(AxisX, AxisZ, Vector3D(0, 0, 0.5), c.target, 42, &intersection, &sol);
    EXPECT_EQ(sol.Count, c.count);
    EXPECT_EQ(sol.FreeRegister, -1);
    const double degrees = c.count == 1 ? 0.0 : Angle(1.0).GetDegre();
    ExpectDegrees(sol, degrees, degrees, degrees, degrees, 0.0);
  }
}

// A tool on its own axis sweeps a point: the axis turns nothing, the other one does it all.
TEST(TwoRotaries, ToolOnTheInnerAxisTurnsAboutTheOuterOneAlone) {
  const RotariesSolution sol = Solve(AxisZ, AxisX, AxisZ, Vector3D(0, -0.6, 0.8));
  EXPECT_EQ(sol.Count, 1U);
  EXPECT_EQ(sol.FreeRegister, -1);
  const double degrees = std::asin(0.6) * 180 / 3.141592653589793;
  ExpectDegrees(sol, 0, degrees, 0, degrees);
}

// The tool sweeps a circle of the radius r about z, too small for an angle about it. The two tips
// are 2 r apart as seen from x, so their outer angles differ by 2 r.
TEST(TwoRotaries, SolutionsWithinOneThousandthOfADegreeAreOne) {
  {
    const RotariesSolution sol = Solve(AxisZ, AxisX, Vector3D(8e-6, 0, 1), AxisZ);
    EXPECT_EQ(sol.Count, 1U);
    EXPECT_FALSE(AreSameBits(sol.Beta1.GetRadian(), sol.Beta2.GetRadian()))
        << "the second pair holds its own angles";
    EXPECT_NEAR(sol.Beta1.GetRadian(), -8e-6, 1e-8);
    EXPECT_NEAR(sol.Beta2.GetRadian(), 8e-6, 1e-8);
  }
  {
    const RotariesSolution sol = Solve(AxisZ, AxisX, Vector3D(9.9e-6, 0, 1), AxisZ);
    EXPECT_EQ(sol.Count, 2U) << "0.00113 degrees";
    EXPECT_NEAR(sol.Beta1.GetRadian(), -9.9e-6, 1e-8);
    EXPECT_NEAR(sol.Beta2.GetRadian(), 9.9e-6, 1e-8);
  }
  {
    const RotariesSolution sol = Solve(AxisZ, AxisX, Vector3D(4.9e-6, 0, 1), AxisZ);
    EXPECT_EQ(sol.Count, 1U) << "tips that are one";
    EXPECT_TRUE(SameBits(sol.Beta1, sol.Beta2));
  }
}

TEST(TwoRotaries, SmallestDifferenceIsOneThousandthOfADegree) {
  const double radius = 0.0005 / 180 * 3.141592653589793;
  EXPECT_EQ(Solve(AxisZ, AxisX, Vector3D(radius * 0.999, 0, 1), AxisZ).Count, 1U);
  EXPECT_EQ(Solve(AxisZ, AxisX, Vector3D(radius * 1.001, 0, 1), AxisZ).Count, 2U);
}

// Parallel axes: the circle lies in the plane, and both ends of a diameter come back.
TEST(TwoRotaries, ParallelAxesTakeTheEndsOfADiameter) {
  const Vector3D tool(0.6, 0, 0.8);
  const Vector3D target(0, 0.6, 0.8);
  const RotariesSolution sol = Solve(AxisZ, AxisZ, tool, target);
  EXPECT_EQ(sol.Count, 2U);
  ExpectDegrees(sol, 0, 90, 180, -90);
  EXPECT_TRUE(NearVector(Turned(AxisZ, AxisZ, tool, sol.Alpha1, sol.Beta1), target, 1e-12));
  EXPECT_TRUE(NearVector(Turned(AxisZ, AxisZ, tool, sol.Alpha2, sol.Beta2), target, 1e-12));
  EXPECT_EQ(Solve(AxisZ, AxisZ, tool, Vector3D(0.8, 0, 0.6)).Count, 0U) << "another height";
}

// An outer axis so short that it meets no plane leaves the pivot at the origin. A target on it
// then equals the tip, and the axis is free although there is an angle.
TEST(TwoRotaries, TargetAlongAShortOuterAxisLeavesItFree) {
  const RotariesSolution sol = Solve(AxisZ, Vector3D(0, 0, 0.005), AxisZ, AxisZ);
  EXPECT_EQ(sol.Count, 1U);
  EXPECT_EQ(sol.FreeRegister, 42);
}

TEST(TwoRotaries, TargetOfAnyLengthCounts) {
  const RotariesSolution unit = Solve(AxisX, AxisZ, AxisZ, Vector3D(0.6, 0, 0.8));
  const RotariesSolution longer = Solve(AxisX, AxisZ, AxisZ, Vector3D(6, 0, 8));
  EXPECT_EQ(longer.Count, 2U);
  ExpectDegrees(longer, unit.Alpha1.GetDegre(), unit.Beta1.GetDegre(), unit.Alpha2.GetDegre(),
                unit.Beta2.GetDegre());
  const RotariesSolution tooShort = Solve(AxisX, AxisZ, AxisZ, Vector3D(0, 0.0009, 0));
  const RotariesSolution alongX = Solve(AxisX, AxisZ, AxisZ, AxisX);
  ExpectDegrees(tooShort, alongX.Alpha1.GetDegre(), alongX.Beta1.GetDegre(),
                alongX.Alpha2.GetDegre(), alongX.Beta2.GetDegre(), 0.0);
}

TEST(TwoRotaries, ANewCalculatorHasSevenEqualTolerances) {
  const Kin::Machine machine;
  const Kin::MachineComputeImplementation record(machine);
  const IntersectionCompute& intersection = record.intersection;
  for (const double tolerance :
       {intersection.TolPlanePlane, intersection.TolTangentInner, intersection.TolTangentOuter,
        intersection.TolLinePlane, intersection.Tol5, intersection.Tol6, intersection.Tol7}) {
    EXPECT_EQ(tolerance, 0.0001);
  }
}

TEST(TwoRotaries, TolerancesStayInTheCalculator) {
  IntersectionCompute intersection = NewIntersection();
  intersection.TolPlanePlane = intersection.TolLinePlane = 0.5;
  RotariesSolution sol;
  Kin::SolveTwoRotaries(AxisX, AxisZ, AxisZ, Vector3D(0.6, 0, 0.8), 42, &intersection, &sol);
  EXPECT_EQ(intersection.TolPlanePlane, 0.0001);
  EXPECT_EQ(intersection.TolTangentInner, 1e-7);
  EXPECT_EQ(intersection.TolTangentOuter, 1e-5);
  EXPECT_EQ(intersection.TolLinePlane, 0.0001);
  EXPECT_EQ(intersection.Tol5, 0.0001);
}

TEST(OneRotary, LeavesTheAngleWithoutASolution) {
  Angle angle(0.25);
  EXPECT_EQ(Kin::SolveOneRotary(AxisZ, AxisZ, AxisX, &angle), 0U);
  EXPECT_TRUE(SameBits(angle.GetRadian(), 0.25));
}

TEST(OneRotary, PerpendicularDirectionsGiveTheAngleBetweenThem) {
  Angle angle;
  EXPECT_EQ(Kin::SolveOneRotary(AxisZ, AxisX, AxisY, &angle), 1U);
  EXPECT_NEAR(angle.GetDegre(), 90, 1e-12);
  EXPECT_EQ(Kin::SolveOneRotary(AxisZ, AxisY, AxisX, &angle), 1U);
  EXPECT_NEAR(angle.GetDegre(), -90, 1e-12);
  EXPECT_EQ(Kin::SolveOneRotary(AxisZ, AxisX, Vector3D(-1, 0, 0), &angle), 1U);
  EXPECT_NEAR(angle.GetDegre(), 180, 1e-12);
}

TEST(OneRotary, DirectionOnTheAxisHasTheAngleZero) {
  Angle angle(0.25);
  EXPECT_EQ(Kin::SolveOneRotary(AxisZ, AxisZ, AxisZ, &angle), 1U);
  EXPECT_TRUE(SameBits(angle.GetRadian(), 0.0));
}

TEST(SwapAlphaBeta, ExchangesTheAnglesAndNothingElse) {
  RotariesSolution sol;
  sol.Count = 2;
  sol.FreeRegister = 5;
  sol.Alpha1 = Angle(1.0);
  sol.Beta1 = Angle(2.0);
  sol.Alpha2 = Angle(3.0);
  sol.Beta2 = Angle(4.0);
  Kin::SwapAlphaBeta(&sol);
  EXPECT_EQ(sol.Count, 2U);
  EXPECT_EQ(sol.FreeRegister, 5);
  EXPECT_EQ(sol.Alpha1.GetRadian(), 2.0);
  EXPECT_EQ(sol.Beta1.GetRadian(), 1.0);
  EXPECT_EQ(sol.Alpha2.GetRadian(), 4.0);
  EXPECT_EQ(sol.Beta2.GetRadian(), 3.0);
}

}  // namespace
}  // namespace Orvo::Testing
