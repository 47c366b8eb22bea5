#include "machines/ExampleData.h"

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Path/PathSolver.h>
#include <Orvo/Path/Readers.h>
#include <Orvo/Path/ToolPath.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Orvo::Path::Testing {
namespace {

using Orvo::Testing::ExampleMachineFile;
using Orvo::Testing::ExamplePair;
using Orvo::Testing::ExamplePathFile;
using Orvo::Testing::ReadNumbers;
using Orvo::Testing::ReadPairs;
using Orvo::Testing::WideName;

/// A pair of the examples, opened.
class OpenPair {
 public:
  explicit OpenPair(const ExamplePair& given)
      : pair(given), reader(ExamplePathFile(given.path)), source(reader, given.shift) {
    EXPECT_TRUE(machine.ReadXML(WideName(ExampleMachineFile(given.machine))));
    for (const Kin::ProgramSystem& candidate : machine.GetListProgramSystem()) {
      if (candidate.GetProgramSystemName() == WideName(given.programSystem)) {
        system = candidate;
      }
    }
    machine.Alloc(&start);
  }

  PathSummary Solve(const PathOptions& options, std::vector<SolvedPoint>* points = nullptr) {
    PathSolver solver(machine, system, pair.offset, start, options);
    EXPECT_TRUE(solver.IsUsable());
    EXPECT_TRUE(solver.GetFindings().empty());
    return solver.Solve(source, [points](const SolvedPoint& point) {
      if (points != nullptr) {
        points->push_back(point);
      }
      return true;
    });
  }

  ExamplePair pair;
  Kin::Machine machine;
  Kin::ProgramSystem system;
  Kin::MachinePosition start;
  CsvReader reader;
  ShiftedSource source;
};

std::uint64_t ReachableOf(const ExamplePair& pair, std::uint64_t pointNb) {
  // The one pair that leaves a range: Z at 706 points.
  return pair.machine == "head_table_bc" && pair.path == "hemisphere_ball_end" ? pointNb - 706
                                                                               : pointNb;
}

// As many points are reachable as an independent program found, each exactly; the optimal path is
// no longer than the greedy one.
TEST(RealPaths, AreReachedAsKnownAndExactly) {
  for (const ExamplePair& pair : ReadPairs()) {
    SCOPED_TRACE(testing::Message() << pair);
    OpenPair open(pair);
    PathOptions options;
    const PathSummary optimal = open.Solve(options);
    options.choice = PathChoice::Greedy;
    const PathSummary greedy = open.Solve(options);
    for (const PathSummary* summary : {&optimal, &greedy}) {
      EXPECT_EQ(summary->pointNb, ReadNumbers(ExamplePathFile(pair.path)).size());
      EXPECT_EQ(summary->solvedNb, ReachableOf(pair, summary->pointNb));
      EXPECT_LE(summary->largestResidual.direction, 1e-12);
      EXPECT_LE(summary->largestResidual.tip, 1e-9);
      const std::uint64_t missing = summary->pointNb - summary->solvedNb;
      EXPECT_EQ(missing, summary->diagnosisNb.count(DiagnosisCode::LinearRange) != 0
                             ? summary->diagnosisNb.at(DiagnosisCode::LinearRange)
                             : 0U);
    }
    EXPECT_LE(optimal.cost, greedy.cost * (1.0 + 1e-12));
  }
}

// What keeps the hemisphere from being milled on the head-table machine is where the part lies: the
// shift that is named mends it.
TEST(RealPaths, TheNamedShiftBringsTheHemisphereIn) {
  for (const ExamplePair& pair : ReadPairs()) {
    if (pair.machine != "head_table_bc" || pair.path != "hemisphere_ball_end") {
      continue;
    }
    OpenPair open(pair);
    const PathSummary summary = open.Solve(PathOptions());
    ASSERT_TRUE(summary.hasShift);
    ExamplePair moved = pair;
    moved.shift += summary.shift;
    OpenPair again(moved);
    EXPECT_EQ(again.Solve(PathOptions()).solvedNb, 12000U);
    return;
  }
  FAIL() << "the pair is not among the examples";
}

// The program that drove the real machine: linear values that its own rotary values ask for.
TEST(RealPaths, ReproduceTheRealProgramOfTheTrunnion) {
  for (const ExamplePair& pair : ReadPairs()) {
    if (pair.path != "curved_layers_model_1") {
      continue;
    }
    OpenPair open(pair);
    std::vector<SolvedPoint> points;
    open.Solve(PathOptions(), &points);
    const std::vector<std::vector<double>> rows =
        ReadNumbers(ExamplePathFile("curved_layers_model_1.registers"));
    ASSERT_EQ(points.size(), rows.size());
    PointSolver solver(open.machine, open.system, pair.offset, open.start);
    double largest = 0.0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const AxisValues real = {rows[i].at(0), rows[i].at(1), rows[i].at(2), rows[i].at(3),
                               rows[i].at(4)};
      largest = std::max(largest, solver.Check(points[i].target, real).tip);
    }
    // Three decimals of the program, and its own smoothing of the direction, are between.
    EXPECT_LT(largest, 0.0013);
    EXPECT_GT(largest, 0.0005);
    return;
  }
  FAIL() << "the pair is not among the examples";
}

}  // namespace
}  // namespace Orvo::Path::Testing
