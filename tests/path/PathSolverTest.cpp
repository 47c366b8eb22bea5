#include "path/Exhaustive.h"
#include "path/PathMachines.h"

#include <Orvo/Path/PathSolver.h>
#include <Orvo/Path/ToolPath.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace Orvo::Path::Testing {
namespace {

struct Solved {
  PathSummary summary;
  std::vector<SolvedPoint> points;
};

Solved Solve(Kin::Machine& machine, const std::vector<ToolPoint>& points,
             const PathOptions& options, const Kin::MachinePosition& start) {
  PathSolver solver(machine, *machine.GetProgramSystem(0), Vector3D(0, 0, 50), start, options);
  const ToolPath path(points);
  ToolPathSource source(path);
  Solved solved;
  solved.summary = solver.Solve(source, [&solved](const SolvedPoint& point) {
    solved.points.push_back(point);
    return true;
  });
  return solved;
}

Solved Solve(Kin::Machine& machine, const std::vector<ToolPoint>& points,
             const PathOptions& options) {
  return Solve(machine, points, options, ZeroOf(machine));
}

PathMeasure AnyMeasure(TestRandom& random) {
  PathMeasure measure;
  measure.kind = random.Chance(0.5) ? MeasureKind::Travel : MeasureKind::Time;
  for (std::size_t i = 0; i < MainAxisNb; ++i) {
    measure.weights[i] = random.Chance(0.2) ? 0.0 : random.Real(0.1, 2.0);
    measure.speeds[i] = random.Real(1.0, 10.0);
  }
  measure.branchChangeCost = random.Chance(0.5) ? 0.0 : random.Real(0.0, 200.0);
  measure.unwindingCost = random.Chance(0.5) ? 0.0 : random.Real(0.0, 500.0);
  return measure;
}

/// A few points that the machine reaches somewhere in its ranges, mostly with jumps between them.
std::vector<ToolPoint> AnyPoints(TestRandom& random, Kin::Machine& machine, const MainAxes& axes,
                                 int count) {
  std::vector<ToolPoint> points;
  AxisValues values = {};
  for (int i = 0; i < count; ++i) {
    for (std::size_t k = 0; k < MainAxisNb; ++k) {
      const MainAxis& axis = axes.axes[k];
      values[k] = k < FirstRotary ? random.Real(-200, 200) : random.Real(axis.min, axis.max);
    }
    points.push_back(
        PointAt(machine, *machine.GetProgramSystem(0), Vector3D(0, 0, 50), axes, values));
  }
  return points;
}

double CostAlong(const Solved& solved) {
  double cost = 0.0;
  for (const SolvedPoint& point : solved.points) {
    cost += point.cost;
  }
  return cost;
}

// Dynamic programming finds what going through everything finds, and an answer wherever there is
// one; the greedy path is never better.
TEST(PathSolver, OptimalIsTheBestOfAllPaths) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int betterNb = 0;
  int unwoundNb = 0;
  for (int m = 0; m < 150; ++m) {
    SCOPED_TRACE(m);
    Kin::Machine machine;
    MachineWish wish;
    wish.isWide = random.Chance(0.3);
    wish.isTrunnion = random.Chance(0.3);
    wish.isOblique = random.Chance(0.2);
    wish.rotaryNb = random.Chance(0.1) ? 1 : 2;
    BuildMachine(random, wish, &machine);
    PathOptions options;
    options.measure = AnyMeasure(random);
    options.threadNb = 1;
    PointSolver solver(machine, *machine.GetProgramSystem(0), Vector3D(0, 0, 50), ZeroOf(machine));
    if (wish.rotaryNb == 2 && solver.GetFreeAxis() < 0) {
      continue;  // one rotary axis too many: more answers than can be gone through
    }
    const std::vector<ToolPoint> points =
        AnyPoints(random, machine, solver.GetAxes(), wish.isWide ? 3 : 4);
    const double best = Exhaustive(solver, options.measure, -1.0).FindBest(AxisValues(), points);
    ASSERT_TRUE(std::isfinite(best));

    const Solved optimal = Solve(machine, points, options);
    ASSERT_EQ(optimal.summary.solvedNb, points.size());
    EXPECT_NEAR(optimal.summary.cost, best, 1e-6);
    EXPECT_NEAR(CostAlong(optimal), best, 1e-6);
    options.choice = PathChoice::Greedy;
    const Solved greedy = Solve(machine, points, options);
    EXPECT_EQ(greedy.summary.solvedNb, points.size());
    EXPECT_GE(greedy.summary.cost, best - 1e-6);
    betterNb += greedy.summary.cost > best + 1e-6 ? 1 : 0;
    unwoundNb += optimal.summary.unwindingNb > 0 ? 1 : 0;
    for (const Solved* solved : {&optimal, &greedy}) {
      EXPECT_LE(solved->summary.largestResidual.direction, 1e-12);
      EXPECT_LE(solved->summary.largestResidual.tip, 1e-9);
      for (std::size_t i = 0; i < MainAxisNb; ++i) {
        const MainAxis& axis = solver.GetAxes().axes[i];
        if (axis.isPresent) {
          EXPECT_GE(solved->summary.smallest[i], axis.min - 1e-9);
          EXPECT_LE(solved->summary.largest[i], axis.max + 1e-9);
        }
      }
    }
  }
  EXPECT_GE(betterNb, 30);
  EXPECT_GE(unwoundNb, 10);
}

// So it is where directions are singular, and where an axis turns endlessly.
TEST(PathSolver, OptimalIsTheBestThroughSingularDirections) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int heldNb = 0;
  int shortNb = 0;
  int betterNb = 0;
  for (int m = 0; m < 200; ++m) {
    SCOPED_TRACE(m);
    Kin::Machine machine;
    MachineWish wish;
    wish.isTrunnion = true;
    wish.linearReach = random.Chance(0.3) ? 90.0 : 500.0;
    wish.reachOfA = random.Real(20.0, 400.0);
    wish.reachOfC = random.Real(20.0, 500.0);
    wish.isCEndless = random.Chance(0.2);
    BuildMachine(random, wish, &machine);
    PathOptions options;
    options.measure = AnyMeasure(random);
    options.threadNb = 1;
    options.singularConeDeg = random.Chance(0.3) ? random.Real(0.0, 20.0) : 0.0;
    std::vector<ToolPoint> points(3);
    for (ToolPoint& point : points) {
      const double tilt = random.Chance(0.3) ? 0.0 : random.Real(0.0, 0.6);
      const double around = random.Real(0.0, 6.3);
      point.point.Set(random.Real(-50, 50), random.Real(-50, 50), random.Real(-50, 50));
      point.direction.Set(std::sin(tilt) * std::cos(around), std::sin(tilt) * std::sin(around),
                          std::cos(tilt));
    }
    Kin::MachinePosition start = ZeroOf(machine);
    start[3] = random.Real(-wish.reachOfA, wish.reachOfA);
    start[4] = random.Real(-wish.reachOfC, wish.reachOfC);
    PointSolver solver(machine, *machine.GetProgramSystem(0), Vector3D(0, 0, 50), start);
    const double best = Exhaustive(solver, options.measure, options.singularConeDeg)
                            .FindBest(solver.GetAxes().Take(start), points);

    const Solved optimal = Solve(machine, points, options, start);
    EXPECT_NEAR(optimal.summary.cost, best, 1e-6);
    for (const SingularRule rule : {SingularRule::Hold, SingularRule::Interpolate}) {
      options.singularRule = rule;
      options.choice = PathChoice::Optimal;
      const Solved chosen = Solve(machine, points, options, start);
      options.choice = PathChoice::Greedy;
      const Solved greedy = Solve(machine, points, options, start);
      EXPECT_EQ(chosen.summary.solvedNb, greedy.summary.solvedNb);
      EXPECT_LE(chosen.summary.cost, greedy.summary.cost + 1e-9);
      betterNb += chosen.summary.cost < greedy.summary.cost - 1e-6 ? 1 : 0;
      for (const Solved* solved : {&chosen, &greedy}) {
        for (const SolvedPoint& point : solved->points) {
          EXPECT_LE(std::abs(point.values[3]), wish.reachOfA + (point.isSolved ? 1e-9 : 1e9));
          EXPECT_TRUE(wish.isCEndless || std::abs(point.values[4]) <= wish.reachOfC + 1e-9);
          for (const Diagnosis& diagnosis : point.diagnoses) {
            EXPECT_NE(diagnosis.GetCode(), DiagnosisCode::None);
          }
        }
      }
    }
    heldNb += optimal.summary.heldNb > 0 ? 1 : 0;
    shortNb += optimal.summary.solvedNb < points.size() ? 1 : 0;
  }
  EXPECT_GE(heldNb, 40);
  EXPECT_GE(shortNb, 2);
  EXPECT_GE(betterNb, 20);
}

// Turns of an axis without a range are no different places: work stays linear in the points.
TEST(PathSolver, ManyTurnsOfAnEndlessAxisAreOnePlace) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  Kin::Machine machine;
  MachineWish wish;
  wish.isTrunnion = true;
  wish.reachOfA = 200.0;
  wish.isCEndless = true;
  BuildMachine(random, wish, &machine);
  std::vector<ToolPoint> points(3000);
  double around = 0.0;
  for (ToolPoint& point : points) {
    const double tilt = random.Real(0.05, 3.0);
    around += random.Real(-3.0, 3.0);
    point.direction.Set(std::sin(tilt) * std::cos(around), std::sin(tilt) * std::sin(around),
                        std::cos(tilt));
  }
  PathOptions options;
  options.cacheBytes = std::size_t{1} << 20U;
  const Solved solved = Solve(machine, points, options);
  EXPECT_EQ(solved.summary.solvedNb, points.size());
  options.choice = PathChoice::Greedy;
  EXPECT_LE(solved.summary.cost, Solve(machine, points, options).summary.cost);
}

/// A path that winds around the pole, always tilted, and comes by it where asked.
std::vector<ToolPoint> Spiral(int count, double turns, double tilt) {
  std::vector<ToolPoint> points;
  for (int i = 0; i < count; ++i) {
    const double angle = 2.0 * 3.141592653589793 * turns * i / (count - 1);
    ToolPoint point;
    point.point.Set(20.0 * std::cos(angle), 20.0 * std::sin(angle), 5.0);
    point.direction.Set(std::sin(tilt) * std::cos(angle), std::sin(tilt) * std::sin(angle),
                        std::cos(tilt));
    point.feed = 1000.0;
    points.push_back(point);
  }
  return points;
}

Kin::Machine Trunnion(double reachOfC = 360.0) {
  TestRandom random(1);
  Kin::Machine machine;
  MachineWish wish;
  wish.isTrunnion = true;
  wish.reachOfC = reachOfC;
  BuildMachine(random, wish, &machine);
  return machine;
}

// Where the range of C ends, the best path unwinds no more often than it must.
TEST(PathSolver, UnwindsWhereTheRangeEnds) {
  Kin::Machine machine = Trunnion();
  PathOptions options;
  options.measure.unwindingCost = 10000.0;
  options.measure.branchChangeCost = 10000.0;
  const std::vector<ToolPoint> points = Spiral(721, 2.5, 0.5);
  const Solved optimal = Solve(machine, points, options);
  EXPECT_EQ(optimal.summary.solvedNb, points.size());
  // 900 degrees, from the middle of a range of 720 on: once.
  EXPECT_EQ(optimal.summary.unwindingNb, 1U);
  EXPECT_EQ(optimal.summary.diagnosisNb.at(DiagnosisCode::Unwinding), 1U);
  options.choice = PathChoice::Greedy;
  const Solved greedy = Solve(machine, points, options);
  EXPECT_GE(greedy.summary.unwindingNb + greedy.summary.branchChangeNb, 1U);
  EXPECT_GE(greedy.summary.cost, optimal.summary.cost - 1e-6);
}

bool IsSameDouble(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

bool IsSameBits(const SolvedPoint& a, const SolvedPoint& b) {
  return std::equal(a.values.begin(), a.values.end(), b.values.begin(), IsSameDouble) &&
         a.cost == b.cost && a.residual.tip == b.residual.tip && a.tipDeviation == b.tipDeviation &&
         a.inverseTime == b.inverseTime && a.isHeld == b.isHeld && a.isInserted == b.isInserted;
}

// Threads, blocks and caches leave no trace in the results.
TEST(PathSolverThreads, GiveTheSameBitsHoweverManyThereAre) {
  Kin::Machine machine = Trunnion();
  std::vector<ToolPoint> points = Spiral(997, 3.4, 0.5);
  for (int i = 300; i < 340; ++i) {
    points[static_cast<std::size_t>(i)].direction = AxisZ;
  }
  for (const SingularRule rule : {SingularRule::Hold, SingularRule::Interpolate}) {
    PathOptions options;
    options.singularRule = rule;
    options.segments.isRefined = true;
    options.threadNb = 1;
    const Solved expected = Solve(machine, points, options);
    EXPECT_GT(expected.summary.insertedNb, 0U);
    EXPECT_EQ(expected.summary.heldNb, 40U);
    struct Way {
      unsigned int threadNb;
      std::size_t blockPoints;
      std::size_t cacheBytes;
    };
    for (const Way& way : {Way{2, 16384, 1U << 28U}, Way{3, 7, 1U << 28U}, Way{2, 64, 0},
                           Way{1, 1, 20000}, Way{4, 320, 100000}}) {
      SCOPED_TRACE(way.blockPoints);
      options.threadNb = way.threadNb;
      options.blockPoints = way.blockPoints;
      options.cacheBytes = way.cacheBytes;
      const Solved solved = Solve(machine, points, options);
      ASSERT_EQ(solved.points.size(), expected.points.size());
      for (std::size_t i = 0; i < solved.points.size(); ++i) {
        ASSERT_TRUE(IsSameBits(solved.points[i], expected.points[i])) << i;
      }
      EXPECT_EQ(solved.summary.cost, expected.summary.cost);
    }
  }
}

// However far away the axes stand, the path is solved within the ranges; what is no number is said.
TEST(PathSolver, TakesAnyStart) {
  Kin::Machine machine = Trunnion();
  const std::vector<ToolPoint> points = Spiral(50, 3.4, 0.5);
  for (const PathChoice choice : {PathChoice::Greedy, PathChoice::Optimal}) {
    PathOptions options;
    options.choice = choice;
    for (const double far : {1e7, -1e7, 1e12, -1e300}) {
      SCOPED_TRACE(far);
      Kin::MachinePosition start = ZeroOf(machine);
      for (int r = 0; r < static_cast<int>(start.Size()); ++r) {
        start[r] = far;
      }
      const Solved solved = Solve(machine, points, options, start);
      EXPECT_EQ(solved.summary.solvedNb, points.size());
      for (const SolvedPoint& point : solved.points) {
        EXPECT_LT(point.residual.tip, 1e-9);
        EXPECT_LT(point.residual.direction, 1e-12);
      }
      const MainAxes axes(machine, *machine.GetProgramSystem(0));
      for (std::size_t k = 0; k < MainAxisNb; ++k) {
        EXPECT_GE(solved.summary.smallest[k], axes.axes[k].min);
        EXPECT_LE(solved.summary.largest[k], axes.axes[k].max);
      }
    }
    Kin::MachinePosition start = ZeroOf(machine);
    start[0] = std::nan("");
    EXPECT_THROW(Solve(machine, points, options, start), std::invalid_argument);
  }
}

// In a singular stretch the free axis keeps its value, or goes evenly to the one behind.
TEST(PathSolver, HoldsOrInterpolatesTheFreeAxis) {
  Kin::Machine machine = Trunnion();
  std::vector<ToolPoint> points = Spiral(30, 0.2, 0.3);
  for (std::size_t i = 10; i < 19; ++i) {
    points[i].direction = AxisZ;
  }
  PathOptions options;
  options.measure.branchChangeCost = 1e6;
  const Solved held = Solve(machine, points, options);
  options.singularRule = SingularRule::Interpolate;
  const Solved even = Solve(machine, points, options);
  ASSERT_EQ(held.summary.solvedNb, 30U);
  ASSERT_EQ(even.summary.solvedNb, 30U);
  EXPECT_EQ(even.summary.heldNb, 9U);
  const double before = even.points[9].values[4];
  const double behind = even.points[19].values[4];
  EXPECT_NE(before, behind);
  for (std::size_t i = 10; i < 19; ++i) {
    EXPECT_EQ(held.points[i].values[4], held.points[9].values[4]);
    EXPECT_NEAR(even.points[i].values[4],
                before + (behind - before) * static_cast<double>(i - 9) / 10.0, 1e-9);
    EXPECT_LE(held.points[i].residual.direction, 1e-12);
    EXPECT_LE(even.points[i].residual.direction, 1e-12);
    EXPECT_LE(even.points[i].residual.tip, 1e-9);
    EXPECT_TRUE(held.points[i].diagnoses.empty());
  }
}

// The axis that is held comes into its range first, by whole turns where these do.
TEST(PathSolver, HoldsTheFreeAxisWithinItsRange) {
  struct Case {
    double reach;
    double start;
    double held;
  };
  for (const Case& c : {Case{360.0, 400.0, 40.0}, Case{360.0, -1000.0, -280.0},
                        Case{100.0, 260.0, -100.0}, Case{100.0, 500.0, 100.0}}) {
    SCOPED_TRACE(c.start);
    Kin::Machine machine = Trunnion(c.reach);
    std::vector<ToolPoint> points(3);
    for (std::size_t i = 0; i < points.size(); ++i) {
      points[i].point.Set(10.0 * static_cast<double>(i), 0.0, 0.0);
      points[i].direction = AxisZ;
    }
    Kin::MachinePosition start = ZeroOf(machine);
    start[4] = c.start;
    for (const PathChoice choice : {PathChoice::Greedy, PathChoice::Optimal}) {
      PathOptions options;
      options.choice = choice;
      const Solved solved = Solve(machine, points, options, start);
      EXPECT_EQ(solved.summary.heldNb, points.size());
      for (const SolvedPoint& point : solved.points) {
        EXPECT_TRUE(point.isSolved);
        EXPECT_NEAR(point.values[4], c.held, 1e-9);
      }
    }
  }
}

// In a singular direction some value of the free axis may keep the linear axes within their ranges
// where the one that is held doesn't.
TEST(PathSolver, MovesTheFreeAxisWhereOtherRangesAskForIt) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int movedNb = 0;
  for (int i = 0; i < 300; ++i) {
    SCOPED_TRACE(i);
    Kin::Machine machine;
    const Kin::EntityId bed = machine.AddEntityStatic(L"bed", -1)->GetEntityId();
    Kin::EntityId ends[] = {bed, bed};
    const Vector3D principal[] = {AxisX, AxisY, AxisZ};
    const double degrees = static_cast<double>(random.Integer(-170, 170));
    const AxisValues values = {random.Real(-200, 200), random.Real(-200, 200),
                               random.Real(-200, 200), 0.0, degrees};
    const double room = random.Real(0.5, 20.0);
    for (int k = 0; k < 3; ++k) {
      Kin::EntityId& end = ends[random.Integer(0, 1)];
      const double value = values[static_cast<std::size_t>(k)];
      end = AddAxis(machine.AddEntityLinear(L"linear", end, principal[k]), k, value - room,
                    value + room);
    }
    const bool isOnHead = random.Chance(0.3);
    const double first = random.Chance(0.5) ? degrees - room : -360.0;
    const auto addA = [&](Kin::EntityId* end) {
      *end = AddAxis(machine.AddEntityRotary(L"A", *end, Vector3D(0, 20, 0), AxisX), 3, -90, 90);
    };
    const auto addC = [&](Kin::EntityId* end) {
      *end = AddAxis(machine.AddEntityRotary(L"C", *end, Vector3D(30, 0, 0), AxisZ), 4, first, 200);
    };
    if (isOnHead) {
      addC(&ends[0]);
      addA(&ends[0]);
    } else {
      addA(&ends[1]);
      addC(&ends[1]);
    }
    machine.AddEntityHead(L"head", ends[0], Matrix43());
    machine.AddEntityTable(L"table", ends[1], Matrix43());
    Kin::ProgramSystem system;
    system.SetHeadIndex(0);
    system.SetTableIndex(0);
    system.SetMainLinear(0, 1, 2);
    system.SetMainRotary(3, 4);
    machine.AddProgramSystem(system);
    ASSERT_TRUE(machine.Finish());
    const MainAxes axes(machine, system);
    const std::vector<ToolPoint> points = {
        PointAt(machine, system, Vector3D(0, 0, 50), axes, values)};
    for (const PathChoice choice : {PathChoice::Greedy, PathChoice::Optimal}) {
      PathOptions options;
      options.choice = choice;
      options.threadNb = 1;
      const Solved solved = Solve(machine, points, options);
      ASSERT_TRUE(solved.points[0].isSolved);
      EXPECT_LE(solved.points[0].residual.tip, 1e-9);
      EXPECT_LE(solved.points[0].residual.direction, 1e-12);
      for (std::size_t k = 0; k < MainAxisNb; ++k) {
        EXPECT_GE(solved.points[0].values[k], axes.axes[k].min - 1e-9);
        EXPECT_LE(solved.points[0].values[k], axes.axes[k].max + 1e-9);
      }
      movedNb += solved.points[0].isHeld ? 0 : 1;
    }
  }
  EXPECT_GT(movedNb, 100);
}

// Within a cone the direction is left for the sake of a steady axis, by no more than the cone.
TEST(PathSolver, ReportsHowFarAHeldDirectionDeviates) {
  Kin::Machine machine = Trunnion();
  const double tilt = 0.01;
  const std::vector<ToolPoint> points = Spiral(50, 1.0, tilt);
  PathOptions options;
  options.singularConeDeg = 1.0;
  const Solved solved = Solve(machine, points, options);
  EXPECT_EQ(solved.summary.heldNb, 50U);
  EXPECT_EQ(solved.summary.travel[4], 0.0);
  EXPECT_LE(solved.summary.largestDeviation, tilt + 1e-12);
  EXPECT_GT(solved.summary.largestDeviation, 0.9 * tilt);
  for (const SolvedPoint& point : solved.points) {
    EXPECT_NEAR(point.residual.direction, point.deviation, 1e-12);
    EXPECT_LE(point.residual.tip, 1e-9);
  }
  EXPECT_GT(solved.summary.diagnosisNb.at(DiagnosisCode::HeldAxis), 40U);
  options.singularConeDeg = 0.5;
  EXPECT_EQ(Solve(machine, points, options).summary.heldNb, 0U);
}

// Beside the pole the free axis turns fast: that is said.
TEST(PathSolver, SaysWhereAPathPassesThePole) {
  Kin::Machine machine = Trunnion();
  std::vector<ToolPoint> points;
  for (int i = -10; i <= 10; ++i) {
    ToolPoint point;
    point.point.Set(i, 0.01, 0.0);
    point.direction.Set(0.01 * i, 0.001, 1.0);
    point.feed = 600.0;
    points.push_back(point);
  }
  const Solved solved = Solve(machine, points, PathOptions());
  ASSERT_GE(solved.summary.diagnosisNb.count(DiagnosisCode::NearSingular), 1U);
  bool isFound = false;
  for (const SolvedPoint& point : solved.points) {
    for (const Diagnosis& diagnosis : point.diagnoses) {
      if (diagnosis.GetCode() == DiagnosisCode::NearSingular) {
        isFound = true;
        EXPECT_EQ(diagnosis.elements.at(0).element, "C");
        EXPECT_GT(diagnosis.Get("turn"), 45.0);
        EXPECT_NEAR(diagnosis.Get("speed"), 600.0 * diagnosis.Get("turn-per-length"), 1e-6);
        EXPECT_EQ(diagnosis.point, point.index);
      }
    }
  }
  EXPECT_TRUE(isFound);
}

// A point out of reach leaves the axes where they are; the path goes on behind it.
TEST(PathSolver, GoesOnBehindAPointOutOfReach) {
  Kin::Machine machine = Trunnion();
  std::vector<ToolPoint> points = Spiral(9, 0.1, 0.3);
  points[4].direction.Set(0, 1, -1);
  for (const PathChoice choice : {PathChoice::Greedy, PathChoice::Optimal}) {
    PathOptions options;
    options.choice = choice;
    const Solved solved = Solve(machine, points, options);
    EXPECT_EQ(solved.summary.solvedNb, 8U);
    EXPECT_FALSE(solved.points[4].isSolved);
    EXPECT_EQ(solved.points[4].values, solved.points[3].values);
    ASSERT_EQ(solved.points[4].diagnoses.size(), 1U);
    EXPECT_EQ(solved.points[4].diagnoses[0].GetCode(), DiagnosisCode::RotaryRange);
    EXPECT_TRUE(solved.points[5].isSolved);
    EXPECT_GT(solved.points[5].inverseTime, 0.0);
    EXPECT_FALSE(solved.summary.hasShift);
  }
}

// The move that goes on behind it is one like the others: what it does is said.
TEST(PathSolver, SaysWhatTheMoveBehindAPointOutOfReachDoes) {
  Kin::Machine machine = Trunnion(181.0);
  std::vector<ToolPoint> points = Spiral(3, 0.4, 0.3);
  points[1].direction.Set(0, 1, -1);
  PathOptions options;
  options.measure.weights = {0.0, 0.0, 0.0, 1.0, 1.0};
  options.measure.branchChangeCost = 1e6;
  Kin::MachinePosition start = ZeroOf(machine);
  std::uint64_t unwindingNb = 0;
  for (const double from : {-181.0, 181.0}) {
    start[4] = from;
    const Solved solved = Solve(machine, points, options, start);
    ASSERT_EQ(solved.summary.solvedNb, 2U);
    const double turn = solved.points[2].values[4] - solved.points[0].values[4];
    EXPECT_EQ(solved.points[2].isUnwinding, std::abs(turn) > 180.0);
    EXPECT_EQ(solved.summary.diagnosisNb.count(DiagnosisCode::Unwinding),
              solved.summary.unwindingNb);
    unwindingNb += solved.summary.unwindingNb;
    const double length = points[0].point.Distance(points[2].point);
    EXPECT_NEAR(solved.points[2].inverseTime,
                1.0 / std::max(length / 1000.0, std::abs(turn) / options.measure.speeds[4]), 1e-9);
  }
  EXPECT_GE(unwindingNb, 1U);
}

// A free start is free up to the first point that has an answer.
TEST(PathSolver, FreeStartLastsUntilThereIsAnAnswer) {
  Kin::Machine machine = Trunnion();
  std::vector<ToolPoint> points = Spiral(9, 0.1, 0.3);
  points[0].direction.Set(0, 1, -1);
  Kin::MachinePosition start = ZeroOf(machine);
  start[4] = -300.0;
  for (const PathChoice choice : {PathChoice::Greedy, PathChoice::Optimal}) {
    PathOptions options;
    options.choice = choice;
    options.isStartFree = true;
    const Solved solved = Solve(machine, points, options, start);
    ASSERT_EQ(solved.summary.solvedNb, 8U);
    EXPECT_EQ(solved.points[1].cost, 0.0);
    EXPECT_GT(solved.points[2].cost, 0.0);
    EXPECT_NEAR(solved.summary.travel[4], 31.5, 1e-9);
    options.isStartFree = false;
    EXPECT_GT(Solve(machine, points, options, start).points[1].cost, 0.0);
  }
}

// The shift that is named brings the whole path in, and no much shorter one does.
TEST(PathSolver, NamesTheShiftThatBringsThePathIn) {
  Kin::Machine machine = Trunnion();
  std::vector<ToolPoint> points = Spiral(60, 1.0, 0.4);
  for (ToolPoint& point : points) {
    point.point += Vector3D(1500.0, 900.0, 1990.0);
  }
  PathOptions options;
  const Solved solved = Solve(machine, points, options);
  EXPECT_LT(solved.summary.solvedNb, 60U);
  ASSERT_TRUE(solved.summary.hasShift);
  const double length = solved.summary.shift.Norm();
  EXPECT_GT(length, 1.0);
  for (const double share : {1.0, 0.99}) {
    std::vector<ToolPoint> moved = points;
    Vector3D move = solved.summary.shift;
    move *= share;
    for (ToolPoint& point : moved) {
      point.point += move;
    }
    const Solved again = Solve(machine, moved, options);
    EXPECT_EQ(again.summary.solvedNb == 60U, share == 1.0);
  }
}

// Without a cost of the approach the path may begin in any turn.
TEST(PathSolver, FreeStartTakesAnyTurn) {
  Kin::Machine machine = Trunnion();
  // 684 degrees, just within the range of C when it begins at one end.
  const std::vector<ToolPoint> points = Spiral(400, 1.9, 0.5);
  PathOptions options;
  options.measure.branchChangeCost = 1e5;
  options.measure.unwindingCost = 1e5;
  options.isStartFree = true;
  const Solved free = Solve(machine, points, options);
  EXPECT_EQ(free.summary.solvedNb, 400U);
  EXPECT_EQ(free.summary.unwindingNb, 0U);
  EXPECT_EQ(free.points[0].cost, 0.0);
  options.isStartFree = false;
  EXPECT_GE(Solve(machine, points, options).summary.unwindingNb, 1U);
}

// Where a path leaves a singular direction, or comes to one, the free axis turns at that point, and
// the tip stays there meanwhile.
TEST(PathSolver, TurnsTheFreeAxisWhereItIsFree) {
  Kin::Machine machine = Trunnion();
  std::vector<ToolPoint> points = Spiral(9, 0.25, 0.3);
  for (std::size_t i = 0; i < 4; ++i) {
    points[i].direction = AxisZ;
  }
  Kin::MachinePosition start = ZeroOf(machine);
  start[4] = 30.0;
  for (const bool isReversed : {false, true}) {
    if (isReversed) {
      std::reverse(points.begin(), points.end());
    }
    PathOptions options;
    options.segments.isRefined = true;
    options.segments.directionToleranceDeg = 10.0;
    options.singularRule = isReversed ? SingularRule::Interpolate : SingularRule::Hold;
    const Solved solved = Solve(machine, points, options, start);
    EXPECT_EQ(solved.summary.solvedNb, points.size());
    EXPECT_GT(solved.summary.insertedNb, 10U);
    EXPECT_LE(solved.summary.largestTipDeviation, options.segments.tipTolerance);
    EXPECT_EQ(solved.summary.diagnosisNb.count(DiagnosisCode::SegmentDeviation), 0U);
    EXPECT_LE(solved.summary.largestResidual.tip, 1e-9);
    EXPECT_GT(solved.summary.largestResidual.tip, 0.0);
  }
}

// Inserted points keep the tool within the tolerances; without them it leaves by more.
TEST(PathSolver, RefinesBetweenThePoints) {
  Kin::Machine machine = Trunnion();
  const std::vector<ToolPoint> points = Spiral(20, 0.5, 0.4);
  PathOptions options;
  options.measure.branchChangeCost = 1e6;
  options.segments.isChecked = true;
  const Solved coarse = Solve(machine, points, options);
  EXPECT_GT(coarse.summary.largestTipDeviation, 5 * options.segments.tipTolerance);
  EXPECT_GT(coarse.summary.diagnosisNb.at(DiagnosisCode::SegmentDeviation), 10U);
  options.segments.isRefined = true;
  const Solved fine = Solve(machine, points, options);
  EXPECT_GT(fine.summary.insertedNb, 20U);
  EXPECT_EQ(fine.summary.diagnosisNb.count(DiagnosisCode::SegmentDeviation), 0U);
  PointSolver solver(machine, *machine.GetProgramSystem(0), Vector3D(0, 0, 50), ZeroOf(machine));
  double largest = 0.0;
  for (std::size_t i = 1; i < fine.points.size(); ++i) {
    const SolvedPoint& from = fine.points[i - 1];
    const SolvedPoint& to = fine.points[i];
    EXPECT_LE(to.tipDeviation, options.segments.tipTolerance);
    EXPECT_LE(to.residual.tip, 1e-9);
    // Against plain sampling.
    for (int k = 1; k < 20; ++k) {
      AxisValues values;
      for (std::size_t a = 0; a < MainAxisNb; ++a) {
        values[a] = from.values[a] + (to.values[a] - from.values[a]) * k / 20.0;
      }
      Vector3D tip;
      Vector3D direction;
      ASSERT_TRUE(solver.ComputeTool(values, &tip, &direction));
      Vector3D along = to.target.point;
      along -= from.target.point;
      Vector3D reached = tip;
      reached -= from.target.point;
      const double t = (reached * along) / (along * along);
      Vector3D foot = along;
      foot *= t;
      reached -= foot;
      largest = std::max(largest, reached.Norm());
      EXPECT_LE(reached.Norm(), to.tipDeviation + 1e-9);
    }
  }
  EXPECT_GT(largest, 0.1 * options.segments.tipTolerance);
  for (const double length : {1e200, 1e-200}) {
    std::vector<ToolPoint> scaled = points;
    for (ToolPoint& point : scaled) {
      point.direction *= length;
    }
    const Solved same = Solve(machine, scaled, options);
    EXPECT_EQ(same.summary.insertedNb, fine.summary.insertedNb);
    EXPECT_LE(same.summary.largestResidual.direction, 1e-12);
    EXPECT_LE(same.summary.largestTipDeviation, options.segments.tipTolerance);
  }
}

// The inverse time follows from feed and way, or from the slowest axis.
TEST(PathSolver, ComputesInverseTimes) {
  Kin::Machine machine = Trunnion();
  std::vector<ToolPoint> points = Spiral(3, 0.0, 0.4);
  points[1].point += Vector3D(10, 0, 0);
  points[2].point += Vector3D(10, 0, 0);
  points[2].direction.Set(std::sin(0.5), 0.0, std::cos(0.5));
  PathOptions options;
  const Solved solved = Solve(machine, points, options);
  EXPECT_EQ(solved.points[0].inverseTime, 0.0);
  EXPECT_NEAR(solved.points[1].inverseTime, 1000.0 / 10.0, 1e-9);
  const double turn = std::abs(solved.points[2].values[3] - solved.points[1].values[3]);
  double longest = turn / 10000.0;
  for (std::size_t i = 0; i < 3; ++i) {
    longest = std::max(longest,
                       std::abs(solved.points[2].values[i] - solved.points[1].values[i]) / 10000.0);
  }
  EXPECT_NEAR(solved.points[2].inverseTime * longest, 1.0, 1e-12);
  points[1].isRapid = true;
  EXPECT_EQ(Solve(machine, points, options).points[1].inverseTime, 0.0);
}

TEST(PathSolver, StopsWhenTheSinkHasEnough) {
  Kin::Machine machine = Trunnion();
  const ToolPath path(Spiral(100, 1.0, 0.4));
  ToolPathSource source(path);
  PathSolver solver(machine, *machine.GetProgramSystem(0), NullVector, ZeroOf(machine),
                    PathOptions());
  int taken = 0;
  solver.Solve(source, [&taken](const SolvedPoint&) { return ++taken < 7; });
  EXPECT_EQ(taken, 7);
  const ToolPath empty;
  ToolPathSource nothing(empty);
  EXPECT_EQ(solver.Solve(nothing, [](const SolvedPoint&) { return true; }).pointNb, 0U);
}

TEST(PathSolver, RefusesOptionsThatCannotBe) {
  Kin::Machine machine = Trunnion();
  const auto make = [&machine](const PathOptions& options) {
    PathSolver(machine, *machine.GetProgramSystem(0), NullVector, ZeroOf(machine), options);
  };
  PathOptions options;
  options.measure.weights[1] = -1.0;
  EXPECT_THROW(make(options), std::invalid_argument);
  options = PathOptions();
  options.measure.speeds[4] = 0.0;
  EXPECT_THROW(make(options), std::invalid_argument);
  options = PathOptions();
  options.singularConeDeg = -1.0;
  EXPECT_THROW(make(options), std::invalid_argument);
  options = PathOptions();
  options.segments.tipTolerance = 0.0;
  EXPECT_THROW(make(options), std::invalid_argument);

  for (const double bad : {std::nan(""), HUGE_VAL}) {
    const Vector3D offset(0, 0, bad);
    const Kin::ProgramSystem& system = *machine.GetProgramSystem(0);
    EXPECT_THROW(PathSolver(machine, system, offset, ZeroOf(machine), PathOptions()),
                 std::invalid_argument);
    EXPECT_FALSE(PointSolver(machine, system, offset, ZeroOf(machine)).IsUsable());
  }

  Kin::ProgramSystem unfit = *machine.GetProgramSystem(0);
  unfit.SetHeadIndex(3);
  PathSolver solver(machine, unfit, NullVector, ZeroOf(machine), PathOptions());
  EXPECT_FALSE(solver.IsUsable());
  const ToolPath path;
  ToolPathSource source(path);
  EXPECT_THROW(solver.Solve(source, [](const SolvedPoint&) { return true; }), std::logic_error);
}

}  // namespace
}  // namespace Orvo::Path::Testing
