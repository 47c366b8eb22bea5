#include "path/PathMachines.h"
#include "path/SegmentMotion.h"
#include "path/Vec3.h"
#include "support/TestRandom.h"

#include <Orvo/Kin/Machine.h>
#include <Orvo/Path/PointSolver.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace Orvo::Path::Testing {
namespace {

struct Tool {
  Vec3 tip;
  Vec3 direction;
};

Tool ToolAt(PointSolver& solver, const AxisValues& from, const AxisValues& to, double t) {
  AxisValues values;
  for (std::size_t i = 0; i < MainAxisNb; ++i) {
    values[i] = from[i] + (to[i] - from[i]) * t;
  }
  Vector3D tip;
  Vector3D direction;
  EXPECT_TRUE(solver.ComputeTool(values, &tip, &direction));
  return {FromVector(tip), Unit(FromVector(direction))};
}

double DistanceToSegment(const Vec3& point, const Vec3& begin, const Vec3& end) {
  const Vec3 along = end - begin;
  const double square = Dot(along, along);
  const double t = square > 0.0 ? std::clamp(Dot(point - begin, along) / square, 0.0, 1.0) : 0.0;
  return Norm(point - begin - along * t);
}

/// The angle to the shorter arc between two directions, found on 400 places of the arc.
double AngleToArc(const Vec3& direction, const Vec3& begin, const Vec3& end) {
  const double angle = AngleBetween(begin, end);
  double smallest = std::min(AngleBetween(direction, begin), AngleBetween(direction, end));
  const Vec3 beside = end - begin * Dot(begin, end);
  if (!(Norm(beside) > 1e-9)) {
    return smallest;
  }
  const Vec3 v = Unit(beside);
  // The nearest place of the whole circle, if it is on the arc.
  const double at = std::atan2(Dot(direction, v), Dot(direction, begin));
  if (at > 0.0 && at < angle) {
    smallest = std::min(smallest, AngleBetween(direction, begin * std::cos(at) + v * std::sin(at)));
  }
  return smallest;
}

/// What 4000 places along a move say.
SegmentDeviation DenseDeviation(PointSolver& solver, const AxisValues& from, const AxisValues& to) {
  constexpr int placeNb = 4000;
  const Tool begin = ToolAt(solver, from, to, 0.0);
  const Tool end = ToolAt(solver, from, to, 1.0);
  SegmentDeviation largest;
  for (int i = 1; i < placeNb; ++i) {
    const Tool tool = ToolAt(solver, from, to, static_cast<double>(i) / placeNb);
    largest.tip = std::max(largest.tip, DistanceToSegment(tool.tip, begin.tip, end.tip));
    largest.direction =
        std::max(largest.direction, AngleToArc(tool.direction, begin.direction, end.direction));
  }
  return largest;
}

// The deviations are those that a dense sampling finds: never more, but for what lies between its
// places, and less by a thousandth or two at most. Moves of a few hundredths of a degree, of a few
// degrees and of several turns.
TEST(SegmentMotion, DeviationsAreThoseOfADenseSampling) {
  TestRandom random;
  int noticedNb = 0;
  for (int m = 0; m < 30; ++m) {
    Kin::Machine machine;
    MachineWish wish;
    wish.isOblique = m % 3 == 1;
    BuildMachine(random, wish, &machine);
    PointSolver solver(machine, *machine.GetProgramSystem(0), Vector3D(0.0, 0.0, 80.0),
                       ZeroOf(machine));
    if (!solver.IsUsable()) {
      continue;
    }
    for (const double turn : {0.03, 0.4, 3.0, 20.0, 90.0, 400.0}) {
      AxisValues from;
      AxisValues to;
      for (std::size_t i = 0; i < MainAxisNb; ++i) {
        const bool isRotary = i >= FirstRotary;
        from[i] = isRotary ? random.Real(-180.0, 180.0) : random.Real(-200.0, 200.0);
        to[i] = from[i] + (isRotary ? random.Real(-turn, turn) : random.Real(-20.0, 20.0));
      }
      SCOPED_TRACE(testing::Message() << "machine " << m << ", turns up to " << turn);
      const SegmentDeviation found = ComputeDeviation(solver, from, to);
      const SegmentDeviation dense = DenseDeviation(solver, from, to);
      EXPECT_GE(found.tip, dense.tip * (1.0 - 2e-3) - 1e-9);
      EXPECT_LE(found.tip, dense.tip * (1.0 + 1e-3) + 1e-9);
      const double share = dense.direction > 1.4 ? 1e-2 : 2e-3;
      EXPECT_GE(found.direction, dense.direction * (1.0 - share) - 1e-9);
      EXPECT_LE(found.direction, dense.direction * (1.0 + 1e-3) + 1e-9);
      noticedNb += dense.tip > 1e-6 && dense.direction > 1e-6 ? 1 : 0;
    }
  }
  EXPECT_GE(noticedNb, 60);
}

// A tip that turns about a resting axis by an angle leaves its chord by radius (1 - cos(angle /
// 2)).
TEST(SegmentMotion, ATurnLeavesItsChordByTheRise) {
  TestRandom random;
  Kin::Machine machine;
  MachineWish wish;
  wish.isTrunnion = true;
  BuildMachine(random, wish, &machine);
  PointSolver solver(machine, *machine.GetProgramSystem(0), Vector3D(0.0, 0.0, 0.0),
                     ZeroOf(machine));
  ASSERT_TRUE(solver.IsUsable());
  for (const double turnDeg : {0.1, 1.0, 10.0, 60.0, 170.0}) {
    SCOPED_TRACE(turnDeg);
    const SegmentDeviation found = ComputeDeviation(solver, {40.0, 30.0, 0.0, 0.0, 5.0},
                                                    {40.0, 30.0, 0.0, 0.0, 5.0 + turnDeg});
    const double rise = 50.0 * (1.0 - std::cos(turnDeg * 3.14159265358979323846 / 360.0));
    EXPECT_NEAR(found.tip, rise, 1e-3 * rise);
    EXPECT_LE(found.direction, 1e-12);
  }
}

// Where no rotary axis turns, nothing deviates.
TEST(SegmentMotion, LinearMovesKeepToTheLine) {
  TestRandom random;
  Kin::Machine machine;
  BuildMachine(random, MachineWish(), &machine);
  PointSolver solver(machine, *machine.GetProgramSystem(0), NullVector, ZeroOf(machine));
  ASSERT_TRUE(solver.IsUsable());
  const SegmentDeviation found =
      ComputeDeviation(solver, {1.0, 2.0, 3.0, 40.0, 50.0}, {-100.0, 70.0, 5.0, 40.0, 50.0});
  EXPECT_EQ(found.tip, 0.0);
  EXPECT_EQ(found.direction, 0.0);
}

}  // namespace
}  // namespace Orvo::Path::Testing
