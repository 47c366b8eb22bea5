#include "tools/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using testing::HasSubstr;
using testing::Not;
using Json = nlohmann::json;

const std::string Trunnion = ExampleMachine("trunnion_ac");

ToolResult Check(const ToolRun& tool, const std::string& axes, std::vector<std::string> more) {
  std::vector<std::string> arguments = {"check", Trunnion, tool.Write("axes.csv", axes), "--offset",
                                        "0,0,30"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return tool.Run(arguments);
}

// Limits count from both sides: a value at a limit, or beyond it by what rounding makes, is inside.
TEST(Check, RangesCount) {
  const ToolRun tool;
  ToolResult result = Check(tool, "X,Y,Z,A,C\n130.0000009,0,0,-110,0\n", {});
  EXPECT_EQ(result.status, 0) << result.out;
  EXPECT_THAT(result.out, HasSubstr("axes.csv on " + Trunnion + ": good\n"));
  result = Check(tool, "X,Y,Z,A,C\n0,0,0,0,0\n130.000002,0,-5,0,0\n", {"--format", "json"});
  EXPECT_EQ(result.status, 5);
  const Json json = Json::parse(result.out);
  EXPECT_EQ(json["good"], false);
  EXPECT_EQ(json["rows"], 2);
  EXPECT_EQ(json["axes"][0]["out_of_range"]["count"], 1);
  EXPECT_EQ(json["axes"][0]["out_of_range"]["first_line"], 3);
  EXPECT_NEAR(json["axes"][0]["out_of_range"]["worst"].get<double>(), 2e-6, 1e-12);
  EXPECT_EQ(json["axes"][2]["out_of_range"]["worst"], 5.0);
  EXPECT_EQ(json["axes"][3]["out_of_range"]["count"], 0);
  EXPECT_EQ(Check(tool, "X,Y,Z,A,C\n130.000002,0,0,0,0\n", {"--range-tolerance", "0.00001"}).status,
            0);
}

// A speed is the move over the time that inverse time, feed and way, or --feed tell.
TEST(Check, SpeedsCount) {
  const ToolRun tool;
  const std::string timed = "X,Y,Z,A,C,inverse_time\n0,0,0,0,0,0\n0,0,0,10,0,60\n";
  EXPECT_EQ(Check(tool, timed, {"--speed", "A=10"}).status, 0);
  ToolResult result = Check(tool, timed, {"--speed", "A=9.999", "--format", "json"});
  EXPECT_EQ(result.status, 5);
  Json json = Json::parse(result.out);
  EXPECT_EQ(json["timed_moves"], 1);
  EXPECT_EQ(json["axes"][3]["too_fast"]["count"], 1);
  EXPECT_NEAR(json["axes"][3]["too_fast"]["worst"].get<double>(), 10.0, 1e-9);
  // 30 along X at 600 a minute take 3 seconds.
  const std::string fed = "x;y;z;a;c;f\n0;0;0;0;0;600\n30;0;0;0;0;600\n";
  EXPECT_EQ(Check(tool, fed, {"--speed", "X=10"}).status, 0);
  EXPECT_EQ(Check(tool, fed, {"--speed", "X=9.9"}).status, 5);
  const std::string bare = "X,Y,Z,A,C\n0,0,0,0,0\n30,0,0,0,0\n";
  EXPECT_EQ(Check(tool, bare, {"--speed", "X=9.9"}).status, 0) << "no time is known";
  EXPECT_EQ(Check(tool, bare, {"--speed", "X=9.9", "--feed", "600"}).status, 5);
  // A rapid move has no feed.
  const std::string rapid = "X,Y,Z,A,C,feed,rapid\n0,0,0,0,0,600,0\n30,0,0,0,0,600,1\n";
  EXPECT_EQ(Check(tool, rapid, {"--speed", "X=9.9"}).status, 0);
}

// Jumps, branch changes and rows near singular directions are told and no fault.
TEST(Check, JumpsBranchesAndSingularRowsAreTold) {
  const ToolRun tool;
  const ToolResult result =
      Check(tool,
            "X,Y,Z,A,C\n0,0,0,30,0\n0,0,0,30,180\n0,0,0,30,0\n0,0,0,30,180.5\n0,0,0,-30,0.5\n"
            "0,0,0,-1.9,0\n0,0,0,-0.5,0\n0,0,0,-2.1,0\n0,0,0,-1,0\n",
            {"--format", "jsonl"});
  EXPECT_EQ(result.status, 0);
  std::vector<std::string> found;
  Json summary;
  for (const std::string& line : Lines(result.out)) {
    const Json json = Json::parse(line);
    if (json["kind"] == "summary") {
      summary = json;
    } else {
      found.push_back(json["kind"].get<std::string>() + " " + json["line"].dump());
    }
  }
  EXPECT_THAT(found, testing::ElementsAre("jump 5", "branch-change 6", "near-singular 7",
                                          "near-singular 8", "near-singular 10"));
  EXPECT_EQ(summary["good"], true);
  EXPECT_EQ(summary["near_singular"]["count"], 3);
  EXPECT_EQ(summary["near_singular"]["stretches"], Json::parse("[[7,8],[10,10]]"));
  EXPECT_NEAR(summary["near_singular"]["smallest_angle"].get<double>(), 0.5, 1e-9);
  EXPECT_EQ(summary["branch_changes"], 1);
}

// Rows are held against the points of the path one by one; a missing or a surplus row is a miss.
TEST(Check, ThePathIsHeldAgainstTheRows) {
  const ToolRun tool;
  const std::string path = tool.Write("path.csv", "x,y,z,i,j,k\n10,0,0,0,0,1\n20,0,0,0,0,1\n");
  const std::string good = "X,Y,Z,A,C\n10,0,40,0,0\n20,0,40,0,0\n";
  ToolResult result = Check(tool, good, {"--path", path});
  EXPECT_EQ(result.status, 0) << result.out;
  EXPECT_EQ(Check(tool, good, {"--path", path, "--shift", "0,0,0.0009"}).status, 0);
  EXPECT_EQ(Check(tool, good, {"--path", path, "--shift", "0,0,0.0011"}).status, 6);
  EXPECT_EQ(
      Check(tool, good, {"--path", path, "--shift", "0,0,0.0011", "--tolerance", "0.002"}).status,
      0);
  const std::string tilted = "X,Y,Z,A,C\n10,0,40,0,0\n20,0,40,0.0009,0\n";
  EXPECT_EQ(Check(tool, tilted, {"--path", path, "--tolerance", "1"}).status, 0);
  EXPECT_EQ(Check(tool, tilted, {"--path", path, "--tolerance", "1", "--angle-tolerance", "0.0008"})
                .status,
            6);
  result = Check(tool, "X,Y,Z,A,C\n10,0,40,0,0\n", {"--path", path});
  EXPECT_EQ(result.status, 6);
  EXPECT_THAT(result.out, HasSubstr("the last 1 of the 2 points of the path have no row"));
  result = Check(tool, good + "20,0,40,0,0\n", {"--path", path});
  EXPECT_EQ(result.status, 6);
  EXPECT_THAT(result.out, HasSubstr("1 rows more than the 2 points of the path"));
  // What misses the path misses it whatever the ranges.
  EXPECT_EQ(Check(tool, "X,Y,Z,A,C\n999,0,40,0,0\n20,0,40,0,0\n", {"--path", path}).status, 6);
}

// What `orvo solve` inserts belongs to no point, in CSV as in JSON Lines.
TEST(Check, InsertedRowsArePassedOver) {
  const ToolRun tool;
  tool.Write("path.csv", "x,y,z,i,j,k\n20,0,0,0,0.6,0.8\n20,10,0,0,-0.6,0.8\n");
  for (const char* file : {"axes.csv", "axes.jsonl"}) {
    const ToolResult result =
        tool.Shell("\"$ORVO\" solve '" + Trunnion + "' path.csv --offset 0,0,30 --policy optimal " +
                   "--tolerance 0.05 -o " + file + " && \"$ORVO\" check '" + Trunnion + "' " +
                   file + " --offset 0,0,30 --path path.csv");
    EXPECT_EQ(result.status, 0) << result.out;
    EXPECT_THAT(result.out, HasSubstr("between the points of the path"));
    EXPECT_THAT(result.out, HasSubstr(": good"));
  }
}

// Both kinds of files, from the standard input as well.
TEST(Check, StandardInputIsRead) {
  const ToolRun tool;
  tool.Write("a.csv", "X,Y,Z,A,C\n10,0,40,0,0\n");
  tool.Write("a.jsonl",
             "{\"axes\":{\"X\":10,\"Y\":0,\"Z\":40,\"A\":0,\"C\":0},\"line\":1}\n"
             "{\"x\":10,\"y\":0,\"z\":40,\"a\":0,\"c\":0}\n");
  const std::string check = "\"$ORVO\" check '" + Trunnion + "' ";
  EXPECT_EQ(tool.Shell(check + "- <a.csv").status, 0);
  EXPECT_EQ(tool.Shell(check + "a.jsonl").status, 0);
  const ToolResult result = tool.Shell(check + "- --axes-from jsonl <a.jsonl");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out,
              HasSubstr("standard input on " + Trunnion + ": good\n\n  rows            2\n"));
}

// Registers that the file doesn't name stand where --start has them.
TEST(Check, OtherRegistersStandAsGiven) {
  const ToolRun tool;
  tool.Write("path.csv", "x,y,z,i,j,k\n20,0,30,1,0,0\n");
  const std::string common = " '" + ExampleMachine("millturn_2h2t") +
                             "' path.csv -p Mill_Counter --offset 0,0,100 --start Z3=-100 -o a.csv";
  const std::string check = "\"$ORVO\" check '" + ExampleMachine("millturn_2h2t") +
                            "' b.csv -p Mill_Counter --offset 0,0,100 --path path.csv";
  const ToolResult result =
      tool.Shell("\"$ORVO\" solve" + common + " && cut -d, -f1-4,8 a.csv >b.csv");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(tool.Shell(check + " --start Z3=-100").status, 0);
  EXPECT_EQ(tool.Shell(check).status, 6);
}

// Hostile files: status 2, with the place, and nothing on the standard output.
TEST(Check, HostileFilesAreNamed) {
  const ToolRun tool;
  struct Case {
    const char* file;
    std::string bytes;
    const char* what;
  };
  for (const Case& c : {
           Case{"a.csv", "", "a.csv:1:1: the file is empty"},
           Case{"a.csv", "X,Y,Z,A,C\n", "a.csv: the file has no row"},
           Case{"a.csv", "X,Y,Z,A\n1,2,3,4\n",
                "a.csv:1:1: there is no value for C, which the program system moves; the axes are "
                "X, Y, Z, A, C\n"},
           Case{"a.csv", "X,Y,Z,A,C,x\n", "a.csv:1:11: the column 'x' is named twice"},
           Case{"a.csv", "X,Y,Z,A,C\n1,2,3,4\n", "a.csv:2:8: only 4 of the 5 columns"},
           Case{"a.csv", "X,Y,Z,A,C\n1,2,3,4,5,6\n", "a.csv:2:11: more fields than the 5"},
           Case{"a.csv", "X,Y,Z,A,C\n1,2,3,4,five\n", "a.csv:2:9: C: 'five' is not a number"},
           Case{"a.csv", "X,Y,Z,A,C\n1,2,3,4,nan\n", "is not a finite number"},
           Case{"a.csv", "X,Y,Z,A,C\n1,2,3,4,\n", "C is empty"},
           Case{"a.csv", "X,Y,Z,A,C,feed\n1,2,3,4,5,-1\n", "is negative"},
           Case{"a.csv", std::string(70000, 'X'), "the line is longer than 65536 bytes"},
           Case{"a.csv", std::string("X,Y\0Z", 5), "a.csv:1:4: "},
           Case{"a.jsonl", "{\"axes\":{\"X\":1}}\n", "a.jsonl:1:1: there is no value for Y,Z,A,C"},
           Case{"a.jsonl", "{\"axes\":{\"Q\":1}}\n", "'Q' names no axis"},
           Case{"a.jsonl", "{\"X\":\"1\"}\n", "'X' is no number"},
           Case{"a.jsonl", "[1]\n", "is no JSON object"},
           Case{"a.jsonl", "{\"X\":\n", "a.jsonl:1:6: this is not JSON"},
           Case{"a.jsonl", std::string(30000, '['), "is no JSON object"},
           Case{"a.jsonl", "{\"d\":" + std::string(30000, '['), "nested more than 100 deep"},
       }) {
    SCOPED_TRACE(c.bytes.substr(0, 40));
    const ToolResult result = tool.Run({"check", Trunnion, tool.Write(c.file, c.bytes)});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr(c.what));
  }
  EXPECT_EQ(tool.Run({"check", Trunnion, tool.File("none.csv")}).status, 2);
}

// Where no move has a time, speeds can't be checked, and the verdict says so.
TEST(Check, SpeedsNeedTimes) {
  const ToolRun tool;
  const std::string axes = tool.Write("a.csv", "X,Y,Z,A,C\n1,2,3,4,5\n2,2,3,4,5\n");
  const ToolResult result = tool.Run({"check", Trunnion, axes, "--speed", "X=1"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, HasSubstr(": good, but no speed could be checked\n"));
  EXPECT_THAT(result.out, HasSubstr("No move has a time: give --feed, or a column inverse_time"));
  EXPECT_THAT(tool.Run({"check", Trunnion, axes, "--speed", "X=1", "--feed", "6"}).out,
              HasSubstr(": good\n"));
}

// Numbers of any size leave the tables readable.
TEST(Check, HugeNumbersFitTheTable) {
  const ToolRun tool;
  const ToolResult result = tool.Run(
      {"check", Trunnion, tool.Write("a.csv", "X,Y,Z,A,C\n1e308,2,3,4,5\n1,2,3,4,1e307\n")});
  EXPECT_EQ(result.status, 5);
  EXPECT_THAT(result.out, HasSubstr("1e+308"));
  for (const std::string& line : Lines(result.out)) {
    EXPECT_LE(line.size(), 200U);
  }
}

TEST(Check, WrongUseIsStatusOne) {
  const ToolRun tool;
  const std::string axes = tool.Write("a.csv", "X,Y,Z,A,C\n1,2,3,4,5\n");
  struct Case {
    std::vector<std::string> arguments;
    const char* what;
  };
  for (const Case& c : {
           Case{{"check"}, "orvo check: MACHINE is required"},
           Case{{"check", Trunnion}, "AXES is required"},
           Case{{"check", Trunnion, axes, "--speed", "Q=1"}, "--speed: 'Q=1'"},
           Case{{"check", Trunnion, axes, "--offset", "1"}, "--offset: three numbers"},
           Case{{"check", Trunnion, axes, "-p", "9"}, "there is no '9'"},
           Case{{"check", Trunnion, axes, "--tolerance", "-1"}, "--tolerance"},
           Case{{"check", Trunnion, "-", "--path", "-"}, "can be read only once"},
       }) {
    const ToolResult result = tool.Run(c.arguments);
    EXPECT_EQ(result.status, 1) << c.what;
    EXPECT_THAT(result.err, HasSubstr(c.what));
    EXPECT_THAT(result.err, HasSubstr("Try: orvo check --help"));
  }
}

}  // namespace
}  // namespace Orvo::Testing
