#include "machines/ExampleData.h"
#include "tools/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using Json = nlohmann::json;

std::string TripleText(const Vector3D& v) {
  return std::to_string(v[0]) + "," + std::to_string(v[1]) + "," + std::to_string(v[2]);
}

const std::string Trunnion = ExampleMachine("trunnion_ac");

/// Solves points on the trunnion with a tool of 30; the rows come back.
std::vector<std::string> RowsOf(const ToolRun& tool, const std::string& points,
                                std::vector<std::string> more, ToolResult* result) {
  const std::string path = tool.Write("path.csv", points);
  std::vector<std::string> arguments = {"solve",    Trunnion, path, "-o", tool.File("axes.csv"),
                                        "--offset", "0,0,30"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  *result = tool.Run(arguments);
  return tool.Folder().Has("axes.csv") ? Lines(tool.Folder().Read("axes.csv"))
                                       : std::vector<std::string>();
}

// The table's face lies 40 above the crossing of the axes, and the gauge face 30 above it at Z 0.
// What the axes must be follows by hand.
TEST(WholePath, RowsAreTheAxisValues) {
  for (const char* policy : {"greedy", "optimal"}) {
    const ToolRun tool;
    ToolResult result;
    const std::vector<std::string> rows =
        RowsOf(tool, "x,y,z,i,j,k\n0,0,0,0,0,1\n0,0,0,0,0.5,0.8660254037844386\n",
               {"--policy", policy}, &result);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0], "X,Y,Z,A,C,line,branch,flags,codes,residual,angle_residual");
    EXPECT_THAT(rows[1], StartsWith("0.000000,0.000000,40.000000,0.000000,0.000000,2,0,held,,"));
    EXPECT_THAT(rows[2], StartsWith("0.000000,-20.000000,34.641016,30.000000,0.000000,3,"));
    EXPECT_THAT(rows[2], HasSubstr(",ok,,"));
    EXPECT_THAT(result.out, HasSubstr(std::string("policy ") + policy + "\n"));
    EXPECT_THAT(result.out, HasSubstr("  solved          2  all of them"));
    EXPECT_THAT(result.out, HasSubstr("Axis values: " + tool.File("axes.csv")));
  }
}

// A point without an answer: its code, its first of a kind in words, and status 4 or 5.
TEST(WholePath, FailuresSayWhy) {
  const ToolRun tool;
  ToolResult result;
  std::vector<std::string> rows =
      RowsOf(tool, "x,y,z,i,j,k\n0,0,0,0,0.6,0.8\n1000,0,0,0,0.6,0.8\n2000,0,0,0,0.6,0.8\n",
             {"--policy", "optimal"}, &result);
  EXPECT_EQ(result.status, 5);
  ASSERT_EQ(rows.size(), 4U);
  EXPECT_THAT(rows[2], HasSubstr(",3,"));
  EXPECT_THAT(rows[2], HasSubstr(",out-of-range,103,"));
  EXPECT_EQ(Fields(rows[2])[0], Fields(rows[1])[0]) << "the axes stay where they were";
  EXPECT_THAT(result.err, HasSubstr("path.csv: point 2 (line 3): the point needs linear values out "
                                    "of range: "));
  EXPECT_THAT(result.err, HasSubstr("[103 linear-range, the first of 2]\n"));
  EXPECT_THAT(result.out, HasSubstr("  out of range    2  first in line 3\n"));

  rows = RowsOf(tool, "x,y,z,i,j,k\n0,0,0,0,0,-1\n1000,0,0,0,0.6,0.8\n", {"--policy", "greedy"},
                &result);
  EXPECT_EQ(result.status, 4);
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_THAT(rows[1], HasSubstr(",unreachable,102,"));
  EXPECT_THAT(result.err, HasSubstr("[102 rotary-range]\n"));
  EXPECT_THAT(result.out, HasSubstr("  unreachable     1\n"));
  EXPECT_THAT(result.out, HasSubstr("  out of range    1  first in line 3\n"));
}

// The shift that is named brings all points in.
TEST(WholePath, TheNamedShiftHelps) {
  const ToolRun tool;
  const std::vector<std::string> common = {"solve",
                                           ExampleMachine("head_table_bc"),
                                           ExamplePath("hemisphere_ball_end"),
                                           "--policy",
                                           "optimal",
                                           "--offset",
                                           "0,0,120",
                                           "--summary",
                                           "json"};
  std::vector<std::string> arguments = common;
  arguments.insert(arguments.end(), {"--shift", "0,0,360"});
  ToolResult result = tool.Run(arguments);
  EXPECT_EQ(result.status, 5);
  EXPECT_THAT(result.err, HasSubstr("all points would be in range with the workpiece moved by "));
  const Json summary = Json::parse(result.out);
  EXPECT_EQ(summary["solved"], 11294);
  EXPECT_EQ(summary["out_of_range"], 706);
  EXPECT_EQ(summary["diagnoses"][0]["code"], 103);
  EXPECT_EQ(summary["diagnoses"][0]["count"], 706);
  ASSERT_EQ(summary["shift"].size(), 3U);
  const double z = 360.0 + summary["shift"][2].get<double>();
  EXPECT_GT(z, 391.0);
  arguments = common;
  arguments.insert(
      arguments.end(),
      {"--shift", TripleText(Vector3D(summary["shift"][0], summary["shift"][1], z + 1e-6))});
  result = tool.Run(arguments);
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(Json::parse(result.out)["solved"], 12000);
}

// JSON Lines hold all of a point: a row each, diagnoses as records; 17 digits.
TEST(WholePath, JsonLinesHoldAll) {
  const ToolRun tool;
  const std::string path =
      tool.Write("path.csv", "x,y,z,i,j,k,f\n0,0,0,0,0.6,0.8,600\n1000,0,0,0,0.6,0.8,600\n");
  const ToolResult result =
      tool.Run({"solve", Trunnion, path, "-o", "-", "--format", "jsonl", "--policy", "optimal",
                "--offset", "0,0,30", "--inverse-time", "--deviation"});
  EXPECT_EQ(result.status, 5);
  const std::vector<std::string> rows = Lines(result.out);
  ASSERT_EQ(rows.size(), 2U);
  const Json first = Json::parse(rows[0]);
  EXPECT_EQ(first["point"], 0);
  EXPECT_EQ(first["line"], 2);
  EXPECT_EQ(first["solved"], true);
  EXPECT_NEAR(first["axes"]["A"].get<double>(), 36.86989764584402, 1e-12);
  EXPECT_EQ(first["flags"], Json::parse("[\"ok\"]"));
  EXPECT_LE(first["residual"].get<double>(), 1e-12);
  EXPECT_EQ(first["inverse_time"], 0.0);
  EXPECT_EQ(first["tip_deviation"], 0.0);
  const Json second = Json::parse(rows[1]);
  EXPECT_EQ(second["solved"], false);
  ASSERT_EQ(second["diagnoses"].size(), 1U);
  EXPECT_EQ(second["diagnoses"][0]["code"], 103);
  EXPECT_EQ(second["diagnoses"][0]["line"], 3);
  EXPECT_EQ(second["diagnoses"][0]["elements"][0]["element"], "X");
  // The summary goes where it is in nobody's way.
  EXPECT_THAT(result.err, HasSubstr("  points          2\n"));
}

// The suffix of the result says how it is written, and --format says so against it.
TEST(WholePath, SuffixOfTheResultCounts) {
  const ToolRun tool;
  const std::string path = tool.Write("path.csv", "x,y,z,i,j,k\n0,0,0,0,0.6,0.8\n");
  EXPECT_EQ(tool.Run({"solve", Trunnion, path, "-o", tool.File("a.jsonl")}).status, 0);
  EXPECT_THAT(tool.Folder().Read("a.jsonl"), StartsWith("{\"line\":2,\"axes\":{\"X\":"));
  EXPECT_EQ(
      tool.Run({"solve", Trunnion, path, "-o", tool.File("b.jsonl"), "--format", "csv"}).status, 0);
  EXPECT_THAT(tool.Folder().Read("b.jsonl"), StartsWith("X,Y,Z,A,C,solutions,flags\n"));
}

// APT source and JSON Lines, from files and from the standard input, give the same rows as CSV.
TEST(WholePath, EveryKindOfPathGivesTheSameRows) {
  const ToolRun tool;
  tool.Write("p.csv", "x,y,z,i,j,k,f\n1,2,3,0,0.6,0.8,500\n4,5,6,0.6,0,0.8,500\n");
  tool.Write("p.jsonl",
             "{\"x\":1,\"y\":2,\"z\":3,\"i\":0,\"j\":0.6,\"k\":0.8,\"feed\":500}\n"
             "{\"x\":4,\"y\":5,\"z\":6,\"i\":0.6,\"j\":0,\"k\":0.8,\"feed\":500}\n");
  tool.Write("p.apt",
             "PARTNO TEST\nMULTAX/ON\nFEDRAT/500,MMPM\nCOOLNT/ON\nGOTO/1,2,3,0,0.6,0.8\n"
             "GOTO/4,5,6,0.6,0,0.8\nFINI\n");
  for (const char* policy : {"machine", "greedy", "optimal"}) {
    const std::string common = std::string(" --summary none --policy ") + policy + " -o - ";
    const std::string machine = "\"$ORVO\" solve '" + Trunnion + "' ";
    std::vector<std::string> results;
    for (const std::string& line :
         {machine + "p.csv" + common, machine + "p.jsonl" + common, machine + "p.apt" + common,
          machine + "- <p.csv" + common, machine + "- --from jsonl <p.jsonl" + common,
          "cat p.apt | " + machine + "- --from apt" + common}) {
      const ToolResult result = tool.Shell(line);
      EXPECT_EQ(result.status, 0) << line << "\n" << result.err;
      // Lines differ; the six values and what is left do not.
      std::string rows;
      for (const std::string& row : Lines(result.out)) {
        const std::vector<std::string> fields = Fields(row);
        for (std::size_t i = 0; i < 5; ++i) {
          rows += fields.at(i) + ",";
        }
        rows += "\n";
      }
      results.push_back(rows);
      EXPECT_EQ(results.back(), results.front()) << line;
      EXPECT_EQ(Lines(result.out).size(), 3U);
      if (line.find("apt") != std::string::npos) {
        EXPECT_THAT(result.err, HasSubstr(":4:1: passed over: "));
      }
    }
  }
}

// What can't be read names file, line and column, whatever the kind; nothing is left.
TEST(WholePath, HostilePathsAreNamed) {
  const ToolRun tool;
  struct Case {
    const char* file;
    const char* bytes;
    const char* what;
  };
  for (const Case& c :
       {Case{"p.csv", "x,y,z,i,j\n1,2,3,0,0\n", "p.csv:1:1: there is no column k"},
        Case{"p.csv", "x,y,z,i,j,k\n1,2,3,0,0,0\n", "p.csv:2:7: the direction"},
        Case{"p.csv", "x,y,z,i,j,k\n1,2,three,0,0,1\n", "p.csv:2:5: z: 'three'"},
        Case{"p.csv", "", "p.csv:1:1: the file is empty"},
        Case{"p.jsonl", "{\"x\":1\n", "p.jsonl:1:"}, Case{"p.jsonl", "[1,2,3]\n", "p.jsonl:1:"},
        Case{"p.apt", "GOTO/1,2\n", "p.apt:1:"}, Case{"p.apt", "CIRCLE/0,0,0\n", "p.apt:1:1: "},
        Case{"p.csv", "x,y,z,i,j,k\n", "p.csv: the path has no point"}}) {
    for (const char* policy : {"greedy", "optimal"}) {
      SCOPED_TRACE(std::string(c.file) + ": " + c.bytes);
      const std::string path = tool.Write(c.file, c.bytes);
      const ToolResult result =
          tool.Run({"solve", Trunnion, path, "--policy", policy, "-o", tool.File("axes.csv")});
      EXPECT_EQ(result.status, 2);
      EXPECT_EQ(result.out, "");
      EXPECT_THAT(result.err, HasSubstr(c.what));
      EXPECT_FALSE(tool.Folder().Has("axes.csv"));
    }
  }
  const ToolResult empty =
      tool.Shell("\"$ORVO\" solve '" + Trunnion + "' - --policy optimal -o axes.csv </dev/null");
  EXPECT_EQ(empty.status, 2);
  EXPECT_THAT(empty.err, HasSubstr("standard input:1:1: the file is empty"));
  const ToolResult both = tool.Shell("\"$ORVO\" solve - - </dev/null");
  EXPECT_EQ(both.status, 1);
  EXPECT_THAT(both.err, HasSubstr("can be read only once"));
}

// With tolerances points are inserted until the deviations keep within them.
TEST(WholePath, TolerancesInsertPoints) {
  const ToolRun tool;
  ToolResult result;
  const std::string points = "x,y,z,i,j,k\n20,0,0,0,0.6,0.8\n20,10,0,0,-0.6,0.8\n";
  std::vector<std::string> rows =
      RowsOf(tool, points, {"--policy", "optimal", "--deviation"}, &result);
  EXPECT_EQ(result.status, 0);
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_THAT(rows[0], HasSubstr("angle_residual,tip_deviation,angle_deviation"));
  const double deviation = std::stod(Fields(rows[2]).at(11));
  EXPECT_GT(deviation, 1.0);
  EXPECT_THAT(rows[2], HasSubstr("205"));
  rows = RowsOf(tool, points, {"--policy", "optimal", "--tolerance", "0.05"}, &result);
  EXPECT_EQ(result.status, 0);
  ASSERT_GT(rows.size(), 6U);
  for (std::size_t i = 2; i < rows.size(); ++i) {
    EXPECT_LE(std::stod(Fields(rows[i]).at(11)), 0.05) << rows[i];
    EXPECT_EQ(rows[i].find(",inserted") != std::string::npos, i + 1 < rows.size()) << rows[i];
  }
  EXPECT_THAT(result.out, HasSubstr("  inserted "));
}

// Inverse time: way over feed, or longer where an axis is slower than that.
TEST(WholePath, InverseTimeIsThatOfFeedOrAxis) {
  const ToolRun tool;
  ToolResult result;
  const std::string points = "x,y,z,i,j,k,feed\n0,0,0,0,0.6,0.8,600\n30,0,0,0,0.6,0.8,600\n";
  std::vector<std::string> rows =
      RowsOf(tool, points, {"--policy", "optimal", "--inverse-time"}, &result);
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_EQ(Fields(rows[1]).back(), "0");
  EXPECT_EQ(Fields(rows[2]).back(), "20");
  rows = RowsOf(tool, points, {"--policy", "optimal", "--inverse-time", "--speed", "X=5"}, &result);
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_EQ(Fields(rows[2]).back(), "10");
}

// Costs are those of the measure that is asked for.
TEST(WholePath, MeasuresCount) {
  const ToolRun tool;
  const std::string path =
      tool.Write("path.csv", "x,y,z,i,j,k\n0,0,0,0,0.6,0.8\n30,0,0,0,0.6,0.8\n");
  const auto costOf = [&](std::vector<std::string> more) {
    std::vector<std::string> arguments = {"solve", Trunnion,   path,      "--summary",
                                          "json",  "--policy", "optimal", "--free-start"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const ToolResult result = tool.Run(arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    return Json::parse(result.out)["cost"].get<double>();
  };
  EXPECT_NEAR(costOf({}), 30.0, 1e-9);
  EXPECT_NEAR(costOf({"--weight", "X=3"}), 90.0, 1e-9);
  EXPECT_NEAR(costOf({"--measure", "time", "--speed", "X=2"}), 0.25, 1e-9);
}

// The result does not depend on threads, nor on what is kept.
TEST(WholePath, ThreadsAndMemoryDontShow) {
  const ToolRun tool;
  std::string first;
  for (const char* more : {"--threads 1", "--threads 3 --memory 0", "--threads 2 --memory 1"}) {
    const ToolResult result = tool.Shell(
        "\"$ORVO\" solve '" + Trunnion + "' '" + ExamplePath("hemisphere_ball_end") +
        "' --offset 0,0,75 --shift 0,0,20 --policy optimal --decimals 12 --summary none -o - " +
        more);
    EXPECT_EQ(result.status, 0) << result.err;
    first = first.empty() ? result.out : first;
    EXPECT_EQ(Lines(result.out).size(), 12001U);
    EXPECT_TRUE(result.out == first) << more;
  }
}

// A cone keeps the free axis steady near the pole, at the cost of the direction.
TEST(WholePath, AConeHoldsTheFreeAxis) {
  const ToolRun tool;
  ToolResult result;
  std::string points = "x,y,z,i,j,k\n";
  for (int i = -20; i <= 20; ++i) {
    const double j = 0.01 * i;
    points += std::to_string(i) + ",0,0,0.005," + std::to_string(j) + "," +
              std::to_string(std::sqrt(1.0 - j * j)) + "\n";
  }
  const auto turnOf = [](const std::vector<std::string>& rows) {
    double turn = 0.0;
    for (std::size_t i = 2; i < rows.size(); ++i) {
      turn += std::abs(std::stod(Fields(rows[i]).at(4)) - std::stod(Fields(rows[i - 1]).at(4)));
    }
    return turn;
  };
  const std::vector<std::string> exact =
      RowsOf(tool, points, {"--policy", "optimal", "--free-start"}, &result);
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.err, HasSubstr("near-singular"));
  const std::vector<std::string> held =
      RowsOf(tool, points, {"--policy", "optimal", "--free-start", "--cone", "3"}, &result);
  EXPECT_EQ(result.status, 0);
  ASSERT_EQ(held.size(), 42U);
  EXPECT_LT(turnOf(held), 0.5 * turnOf(exact));
  EXPECT_THAT(result.out, HasSubstr("with the direction off by up to "));
  EXPECT_THAT(result.err, HasSubstr("[204 held-axis"));
}

// Without --output there is the summary alone, and no file.
TEST(WholePath, WithoutOutputThereIsASummary) {
  const ToolRun tool;
  const ToolResult result =
      tool.Run({"solve", Trunnion, ExamplePath("cam_groove_radial"), "--policy", "greedy"});
  EXPECT_THAT(result.out, HasSubstr("  points          2888\n"));
  EXPECT_THAT(result.out, Not(HasSubstr("Axis values")));
  EXPECT_EQ(tool.CountFiles(), 0U);
}

// Options of whole paths are not taken by the policy that would not heed them; neither are words
// and numbers that mean nothing.
TEST(WholePath, WrongUseIsStatusOne) {
  const ToolRun tool;
  struct Case {
    std::vector<std::string> more;
    std::string what;
  };
  for (const Case& c : {
           Case{{"--tolerance", "0.1"}, "--tolerance needs --policy greedy or --policy optimal"},
           Case{{"--deviation"}, "--deviation needs --policy"},
           Case{{"--policy", "best"}, "'best' is none of machine, greedy, optimal"},
           Case{{"--policy", "optimal", "--weight", "Q=1"}, "--weight: 'Q=1' is not NAME=VALUE"},
           Case{{"--policy", "optimal", "--weight", "A=-1"}, "--weight: -1 for A is negative"},
           Case{{"--policy", "optimal", "--speed", "A=0"}, "--speed: 0 for A is not above 0"},
           Case{{"--policy", "optimal", "--cone", "91"}, "--cone"},
           Case{{"--policy", "optimal", "--tolerance", "0"}, "--tolerance"},
           Case{{"--policy", "optimal", "--threads", "0"}, "--threads"},
           Case{{"--decimals", "16"}, "--decimals"},
           Case{{"--from", "ngc"}, "'ngc' is none of csv, jsonl, apt"},
           Case{{"--summary", "csv"}, "'csv' is none of text, json, none"},
       }) {
    std::vector<std::string> arguments = {"solve", Trunnion, ExamplePath("cam_groove_radial")};
    arguments.insert(arguments.end(), c.more.begin(), c.more.end());
    const ToolResult result = tool.Run(arguments);
    EXPECT_EQ(result.status, 1) << c.what;
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr(c.what));
  }
}

}  // namespace
}  // namespace Orvo::Testing
