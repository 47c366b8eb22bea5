// Every path on every machine that it runs on, through the program: solved, and checked behind it.

#include "machines/ExampleData.h"
#include "tools/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using testing::HasSubstr;
using Json = nlohmann::json;

std::string TripleText(const Vector3D& v) {
  return std::to_string(v[0]) + "," + std::to_string(v[1]) + "," + std::to_string(v[2]);
}

/// A command on a pair, with the options that the pair needs.
ToolResult RunOn(const ToolRun& tool, const ExamplePair& pair, std::vector<std::string> arguments,
                 const std::vector<std::string>& more) {
  arguments.insert(arguments.end(), {"-p", pair.programSystem, "--shift", TripleText(pair.shift),
                                     "--offset", TripleText(pair.offset)});
  arguments.insert(arguments.end(), more.begin(), more.end());
  return tool.Run(arguments);
}

/// How many points of a pair an independent program reached.
std::size_t ReachableOf(const ExamplePair& pair, std::size_t pointNb) {
  return pair.machine == "head_table_bc" && pair.path == "hemisphere_ball_end" ? 11294U : pointNb;
}

class Pairs : public testing::TestWithParam<const char*> {};

// As many points are solved as are known to be reachable, and what is written meets the path within
// its six decimals, in all ranges.
TEST_P(Pairs, AreSolvedAndCheckedAsKnown) {
  const std::string policy = GetParam();
  for (const ExamplePair& pair : ReadPairs()) {
    SCOPED_TRACE(testing::Message() << pair);
    const ToolRun tool;
    const std::string machine = ExampleMachine(pair.machine);
    const std::string path = ExamplePath(pair.path);
    const std::string axes = tool.File("axes.csv");
    const std::size_t pointNb = ReadNumbers(path).size();
    const std::size_t reachableNb = ReachableOf(pair, pointNb);
    const ToolResult solved = RunOn(tool, pair, {"solve", machine, path, "-o", axes},
                                    {"--policy", policy, "--summary", "json"});
    EXPECT_EQ(solved.status, reachableNb == pointNb ? 0 : 5) << solved.err;
    const Json summary = Json::parse(solved.out);
    EXPECT_EQ(summary["points"], pointNb);
    EXPECT_EQ(summary["solved"], reachableNb);
    EXPECT_EQ(summary["unreachable"], 0);
    EXPECT_EQ(summary["out_of_range"], pointNb - reachableNb);
    EXPECT_LT(summary["largest_residual"].get<double>(), 1e-9);

    const ToolResult checked = RunOn(tool, pair, {"check", machine, axes, "--path", path},
                                     {"--tolerance", "0.00001", "--format", "json"});
    const Json check = Json::parse(checked.out);
    EXPECT_EQ(check["rows"], pointNb);
    if (policy != "machine") {
      EXPECT_EQ(check["branch_changes"], summary["branch_changes"]);
    }
    if (reachableNb == pointNb) {
      EXPECT_EQ(checked.status, 0) << checked.out;
      EXPECT_EQ(check["good"], true);
      continue;
    }
    // Rows beyond the range, as the machine's policy has them, meet the path; repeated ones don't.
    const bool isBeyond = policy == "machine";
    EXPECT_EQ(checked.status, isBeyond ? 5 : 6);
    EXPECT_EQ(check["tip_misses"]["count"], isBeyond ? 0 : 706);
    EXPECT_EQ(check["axes"][2]["out_of_range"]["count"], isBeyond ? 706 : 0);
  }
}

// The best path is never longer than the greedy one.
TEST(PairsAsAWhole, OptimalIsNoLongerThanGreedy) {
  int shorterNb = 0;
  for (const ExamplePair& pair : ReadPairs()) {
    SCOPED_TRACE(testing::Message() << pair);
    const ToolRun tool;
    double costs[2] = {};
    int i = 0;
    for (const char* policy : {"greedy", "optimal"}) {
      const ToolResult solved =
          RunOn(tool, pair, {"solve", ExampleMachine(pair.machine), ExamplePath(pair.path)},
                {"--policy", policy, "--summary", "json"});
      costs[i++] = Json::parse(solved.out)["cost"];
    }
    EXPECT_LE(costs[1], costs[0] * (1.0 + 1e-12));
    shorterNb += costs[1] < costs[0] * (1.0 - 1e-6) ? 1 : 0;
  }
  EXPECT_GE(shorterNb, 2);
}

INSTANTIATE_TEST_SUITE_P(Policies, Pairs, testing::Values("machine", "greedy", "optimal"),
                         [](const testing::TestParamInfo<const char*>& policy) {
                           return std::string(policy.param);
                         });

// The program that drove the real machine meets the path's tips within its three decimals, and no
// better than that; its directions were smoothed.
TEST(PairsAsAWhole, TheRealProgramMeetsThePath) {
  const ToolRun tool;
  const std::vector<std::string> common = {"check",
                                           ExampleMachine("trunnion_ac"),
                                           ExamplePath("curved_layers_model_1.registers"),
                                           "--path",
                                           ExamplePath("curved_layers_model_1"),
                                           "--offset",
                                           "0,0,30",
                                           "--angle-tolerance"};
  const auto check = [&](const char* angle, const char* tip) {
    std::vector<std::string> arguments = common;
    arguments.insert(arguments.end(), {angle, "--tolerance", tip});
    return tool.Run(arguments);
  };
  const ToolResult good = check("16.5", "0.0013");
  EXPECT_EQ(good.status, 0) << good.out;
  EXPECT_THAT(good.out, HasSubstr("  rows            34114\n"));
  EXPECT_THAT(good.out, HasSubstr("the tip is off the path by at most 0.00118 (line "));
  EXPECT_EQ(check("16.5", "0.001").status, 6);
  EXPECT_EQ(check("16.3", "0.0013").status, 6);
}

// Its axis rows come out again where the directions of its own rotary values are asked for.
TEST(PairsAsAWhole, TheRealProgramIsReproduced) {
  const ToolRun tool;
  const std::vector<std::vector<double>> rows =
      ReadNumbers(ExamplePath("curved_layers_model_1.registers"));
  const std::vector<std::vector<double>> points = ReadNumbers(ExamplePath("curved_layers_model_1"));
  ASSERT_EQ(rows.size(), points.size());
  std::string path = "x,y,z,i,j,k\n";
  for (std::size_t i = 0; i < rows.size(); ++i) {
    // A tilts the table about X, C turns it about Z upon that: the tool's direction in the table.
    const double a = rows[i].at(3) * 3.14159265358979323846 / 180.0;
    const double c = rows[i].at(4) * 3.14159265358979323846 / 180.0;
    char text[200];
    std::snprintf(text, sizeof text, "%.6f,%.6f,%.6f,%.17g,%.17g,%.17g\n", points[i][0],
                  points[i][1], points[i][2], std::sin(a) * std::sin(c), std::sin(a) * std::cos(c),
                  std::cos(a));
    path += text;
  }
  tool.Write("path.csv", path);
  const ToolResult solved =
      tool.Run({"solve", ExampleMachine("trunnion_ac"), tool.File("path.csv"), "-o",
                tool.File("axes.csv"), "--offset", "0,0,30", "--policy", "greedy"});
  EXPECT_EQ(solved.status, 0) << solved.err;
  const std::vector<std::vector<double>> found = [&]() {
    std::vector<std::vector<double>> values;
    for (const std::string& line : Lines(tool.Folder().Read("axes.csv"))) {
      const std::vector<std::string> fields = Fields(line);
      if (fields[0] == "X") {
        continue;
      }
      std::vector<double> row;
      for (std::size_t k = 0; k < 5; ++k) {
        row.push_back(std::stod(fields.at(k)));
      }
      values.push_back(row);
    }
    return values;
  }();
  ASSERT_EQ(found.size(), rows.size());
  std::size_t sameNb = 0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    // The same rotary solution, up to turns, or the other one: A of the other sign. With A at 0 any
    // C would do.
    if (std::abs(found[i][3] - rows[i][3]) > 1e-5 || rows[i][3] == 0.0) {
      continue;
    }
    ++sameNb;
    ASSERT_NEAR(std::remainder(found[i][4] - rows[i][4], 360.0), 0.0, 1e-5) << "row " << i;
    for (std::size_t k = 0; k < 3; ++k) {
      ASSERT_NEAR(found[i][k], rows[i][k], 0.0015) << "row " << i;
    }
  }
  EXPECT_GT(sameNb, rows.size() / 3);
}

}  // namespace
}  // namespace Orvo::Testing
