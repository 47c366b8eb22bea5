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

using nlohmann::json;
using testing::HasSubstr;

const std::string& Trunnion() {
  static const std::string machine = ExampleMachine("trunnion_ac");
  return machine;
}

double At(const json& array, std::size_t i) { return array[i].get<double>(); }

// What ik gives, fk takes back: tip and direction of the request.
TEST(PointCommands, ForwardTakesInverseBack) {
  const ToolRun tool;
  const ToolResult ik = tool.Run(
      {"ik", Trunnion(), "10,-20,30", "0.3,0.5,2", "--offset", "0,0,30", "--format", "json"});
  ASSERT_EQ(ik.status, 0) << ik.err;
  const json report = json::parse(ik.out);
  ASSERT_EQ(report["solutions"].size(), 2U);
  const double length = std::sqrt(0.09 + 0.25 + 4.0);
  for (const json& solution : report["solutions"]) {
    std::vector<std::string> arguments = {"fk",     Trunnion(), "--offset",
                                          "0,0,30", "--format", "json"};
    for (const auto& [axis, value] : solution["values"].items()) {
      arguments.push_back(axis + "=" + value.dump());
    }
    const ToolResult fk = tool.Run(arguments);
    ASSERT_EQ(fk.status, 0) << fk.err;
    const json pose = json::parse(fk.out)[0]["tool"];
    EXPECT_NEAR(At(pose["tip"], 0), 10.0, 1e-12);
    EXPECT_NEAR(At(pose["tip"], 1), -20.0, 1e-12);
    EXPECT_NEAR(At(pose["tip"], 2), 30.0, 1e-12);
    EXPECT_NEAR(At(pose["direction"], 0), 0.3 / length, 1e-15);
    EXPECT_NEAR(At(pose["direction"], 1), 0.5 / length, 1e-15);
    EXPECT_LE(solution["residual"]["directionRad"].get<double>(), 1e-12);
    EXPECT_LE(solution["residual"]["tip"].get<double>(), 1e-9);
  }
  EXPECT_EQ(report["chosen"]["solution"], 0);
  EXPECT_EQ(report["calculator"]["solutionCount"], 2);
  EXPECT_NEAR(report["calculator"]["values"]["A"].get<double>(),
              report["solutions"][0]["values"]["A"].get<double>(), 1e-6);
}

// Where the axes stand decides: which solution, and by how many turns.
TEST(PointCommands, StartDecides) {
  const ToolRun tool;
  const auto choose = [&tool](const std::string& start) {
    return json::parse(
        tool.Run({"ik", Trunnion(), "1,2,50", "0,0.5,1", "--format", "json", "--start", start})
            .out);
  };
  const json near = choose("A=20,C=0");
  EXPECT_EQ(near["chosen"]["solution"], 0);
  EXPECT_NEAR(near["chosen"]["values"]["C"].get<double>(), 0.0, 1e-9);
  const json other = choose("A=-20,C=180");
  EXPECT_EQ(other["chosen"]["solution"], 1);
  EXPECT_NEAR(other["chosen"]["values"]["C"].get<double>(), 180.0, 1e-9);
  const json turned = choose("0,0,0,20,725");
  EXPECT_NEAR(turned["chosen"]["values"]["C"].get<double>(), 720.0, 1e-9);
  EXPECT_EQ(turned["chosen"]["values"], turned["solutions"][0]["values"]);
  EXPECT_THAT(turned["why"].get<std::string>(), HasSubstr("turn by"));
}

// A direction along the last axis leaves it free: it keeps its value, and both say so.
TEST(PointCommands, FreeAxisKeepsItsValue) {
  const ToolRun tool;
  const ToolResult result =
      tool.Run({"ik", Trunnion(), "1,2,50", "0,0,1", "--format", "json", "--start", "C=33.5"});
  EXPECT_EQ(result.status, 0);
  const json report = json::parse(result.out);
  EXPECT_NEAR(report["chosen"]["values"]["C"].get<double>(), 33.5, 1e-12);
  EXPECT_EQ(report["calculator"]["freeAxis"], "C");
  EXPECT_THAT(report["why"].get<std::string>(), HasSubstr("leaves C free"));
  EXPECT_EQ(report["singularAngleDeg"], 0.0);
}

// Where holding the free axis would leave a linear range, it goes elsewhere, and both commands say
// so.
TEST(PointCommands, FreeAxisGoesWhereRangesAreKept) {
  const ToolRun tool;
  const ToolResult ik = tool.Run({"ik", Trunnion(), "150,0,50", "0,0,1", "--format", "json"});
  EXPECT_EQ(ik.status, 0);
  const json report = json::parse(ik.out);
  EXPECT_NEAR(report["chosen"]["values"]["X"].get<double>(), 130.0, 1e-9);
  EXPECT_THAT(report["why"].get<std::string>(), HasSubstr("goes to where all ranges are kept"));
  const ToolResult explained = tool.Run({"explain", Trunnion(), "150,0,50", "0,0,1"});
  EXPECT_EQ(explained.status, 0);
  EXPECT_THAT(explained.out, HasSubstr("C free, which goes to where all ranges are kept"));
}

// Each way not to have an answer has its status and its code, in ik and in explain.
TEST(PointCommands, StatusTellsWhyThereIsNone) {
  struct Case {
    std::string machine;
    std::string point;
    std::string direction;
    int status;
    int code;
  };
  const Case cases[] = {
      {"trunnion_ac", "1,2,3", "0,0.1,1", 0, 0},
      {"nutating_head_bc", "1,2,3", "0,0.1,-1", 4, 101},
      {"trunnion_ac", "1,2,3", "0,0.1,-1", 5, 102},
      {"trunnion_ac", "900,2,3", "0,0.1,1", 5, 103},
  };
  const ToolRun tool;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.code);
    const std::vector<std::string> request = {ExampleMachine(c.machine), c.point, c.direction,
                                              "--format", "json"};
    std::vector<std::string> ik = {"ik"};
    ik.insert(ik.end(), request.begin(), request.end());
    std::vector<std::string> explain = {"explain"};
    explain.insert(explain.end(), request.begin(), request.end());
    EXPECT_EQ(tool.Run(ik).status, c.status);
    const ToolResult result = tool.Run(explain);
    EXPECT_EQ(result.status, c.status);
    const json report = json::parse(result.out);
    EXPECT_EQ(report["hasAnswer"], c.status == 0);
    EXPECT_EQ(report["diagnoses"].empty(), c.code == 0);
    if (c.code != 0) {
      EXPECT_EQ(report["diagnoses"][0]["code"], c.code);
      // The text is made of the same record.
      explain.back() = "text";
      const std::string text = tool.Run(explain).out;
      EXPECT_THAT(text, HasSubstr(std::to_string(c.code) + " " +
                                  report["diagnoses"][0]["name"].get<std::string>()));
      EXPECT_THAT(text, HasSubstr(report["diagnoses"][0]["text"].get<std::string>()));
      explain.back() = "jsonl";
      EXPECT_EQ(json::parse(Lines(tool.Run(explain).out).at(0)), report["diagnoses"][0]);
    }
  }
}

// By how much, and what would help.
TEST(PointCommands, ExplanationHasItsNumbers) {
  const ToolRun tool;
  const json linear =
      json::parse(tool.Run({"explain", Trunnion(), "900,2,50", "0,0,1", "--format", "json"}).out);
  EXPECT_NEAR(At(linear["shift"], 0), -770.0, 1e-9);
  EXPECT_NEAR(At(linear["shift"], 1), 0.0, 1e-9);
  const json missing = json::parse(tool.Run({"explain", ExampleMachine("nutating_head_bc"), "1,2,3",
                                             "0,1,-1", "--format", "json"})
                                       .out);
  EXPECT_NEAR(missing["diagnoses"][0]["quantities"]["missing"]["value"].get<double>(), 45.0, 1e-9);
  EXPECT_TRUE(missing["shift"].is_null());
}

// A program system that can't be computed with is the machine's fault.
TEST(PointCommands, UnusableProgramSystemIsTold) {
  const ToolRun tool;
  std::string text = tool.Run({"new", "trunnion-ac"}).out;
  const std::string good = "RegR1=\"4\"";
  text.replace(text.find(good), good.size(), "RegR1=\"9\"");
  const std::string file = tool.Write("machine.xml", text);
  for (const char* command : {"ik", "explain"}) {
    const ToolResult result = tool.Run({command, file, "1,2,3", "0,0,1", "--format", "json"});
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(json::parse(result.out)["diagnoses"][0]["code"], 301);
    EXPECT_THAT(tool.Run({command, file, "1,2,3", "0,0,1"}).out, HasSubstr("register 9"));
  }
}

// fk takes values in every form, and gives them in every format.
TEST(PointCommands, ForwardTakesAndGivesEveryForm) {
  const ToolRun tool;
  tool.Write("axes.csv", "# two positions\nA;C;other\n30;0;x\n-30;90;y\n");
  tool.Write("axes.jsonl", "{\"A\":30,\"C\":0}\n{\"axes\":{\"A\":-30,\"C\":90}}\n");
  const std::string fk = "\"$ORVO\" fk '" + Trunnion() + "' ";
  const ToolResult one = tool.Shell(fk + "A=30 --format csv");
  EXPECT_EQ(one.status, 0) << one.err;
  ASSERT_EQ(Lines(one.out).size(), 2U);
  EXPECT_EQ(Lines(one.out)[0], "line,x,y,z,i,j,k");
  EXPECT_EQ(tool.Shell(fk + "0,0,0,30,0 --format csv").out, one.out);
  const ToolResult two = tool.Shell(fk + "axes.csv --format csv");
  ASSERT_EQ(Lines(two.out).size(), 3U) << two.err;
  EXPECT_EQ(Lines(two.out)[1].substr(2), Lines(one.out)[1].substr(2));
  EXPECT_EQ(Lines(two.out)[1].substr(0, 2), "3,");
  EXPECT_EQ(tool.Shell(fk + "- --format csv < axes.csv").out, two.out);
  const ToolResult lines = tool.Shell(fk + "axes.jsonl --format jsonl --element C --element 6");
  ASSERT_EQ(Lines(lines.out).size(), 2U) << lines.err;
  const json second = json::parse(Lines(lines.out)[1]);
  EXPECT_EQ(second["line"], 2);
  EXPECT_EQ(second["axes"]["C"], 90.0);
  EXPECT_EQ(second["elements"][0]["name"], "C");
  EXPECT_EQ(second["elements"][1]["id"], 6);
  const json all = json::parse(tool.Shell(fk + "axes.csv --all --format json").out);
  ASSERT_EQ(all.size(), 2U);
  EXPECT_EQ(all[0]["elements"].size(), 8U);
  EXPECT_EQ(all[1]["tool"]["direction"], second["tool"]["direction"]);
  const ToolResult frames = tool.Shell(fk + "A=30 --element Table --format csv -o frames.csv");
  EXPECT_EQ(frames.status, 0);
  EXPECT_EQ(frames.out, "");
  EXPECT_EQ(Lines(tool.Folder().Read("frames.csv"))[0],
            "line,id,name,ux,uy,uz,vx,vy,vz,wx,wy,wz,x,y,z");
  EXPECT_EQ(Fields(Lines(tool.Folder().Read("frames.csv"))[1]).size(), 15U);
}

// A file that names no axis holds no position: it is not taken for one with all axes at 0.
TEST(PointCommands, FilesWithoutAxesAreRefused) {
  struct Case {
    const char* file;
    std::string bytes;
    std::string what;
  };
  const ToolRun tool;
  for (const Case& c : {
           Case{"a.csv", "foo\n10\n",
                ":1:1: no column is named as an axis; the axes are X, Y, Z, A, C\n"},
           Case{"a.csv", "X\tY\tZ\tA\tC\n1\t2\t3\t4\t5\n", ":1:1: no column is named as an axis"},
           Case{"a.csv", "\"X\",\"Y\"\n1,2\n", ":1:1: quoted fields are not read"},
           Case{"a.csv", "X,note\n1,\"a,b\"\n", ":2:3: quoted fields are not read"},
           Case{"a.csv", "X,rapid\n1,perhaps\n", ":2:3: rapid: 'perhaps' is none of 0, 1"},
           Case{"a.csv", "# nothing\n\n", ":1:1: the file is empty"},
           Case{"a.jsonl", "{}\n", ":1:1: no member is named as an axis; the axes are X, Y,"},
           Case{"a.jsonl", "{\"axes\":{}}\n", ":1:1: no member is named as an axis"},
           Case{"a.jsonl", "{\"axes\":[1,2,3,4,5]}\n", ":1:2: 'axes' is no object with the axes"},
           Case{"a.jsonl", "{\"X\":1}\n{\"A\":1, \"a\":2}\n", ":2:9: 'a' is there twice"},
           Case{"a.jsonl", "{\"A\":1,\"A\":2}\n", ":1:8: the member 'A' is there twice"},
           Case{"a.jsonl", "{\"A\":1,\"axes\":{\"A\":2}}\n", ":1:16: 'A' is there twice"},
           Case{"a.jsonl", "{\"A\":1e999}\n", ":1:6: '1e999' is beyond the numbers"},
           Case{"a.jsonl", "{\"A\":NaN}\n", ":1:6: this is not JSON"},
           Case{"a.jsonl", "{\"A\":1", ":1:7: this is not JSON; needed is '}'"},
           Case{"a.jsonl", "{\"A\":null}\n", ":1:2: 'A' is no number"},
           Case{"a.jsonl", "{\"A\":{\"A\":1}}\n", ":1:2: 'A' is no number"},
           Case{"a.jsonl", "{\"A\":1,\"rapid\":1}\n", ":1:8: 'rapid' is neither true nor false"},
           Case{"a.jsonl", "{\"A\":1,\"feed\":\"1\"}\n", ":1:8: 'feed' is no number"},
           Case{"a.jsonl", "{\"A\":1,\"flags\":[1]}\n", ":1:8: 'flags' is neither a text nor"},
           Case{"a.jsonl", "3\n", ":1:1: a number is no JSON object"},
       }) {
    SCOPED_TRACE(c.bytes);
    const std::string file = tool.Write(c.file, c.bytes);
    const ToolResult result = tool.Run({"fk", Trunnion(), file, "--format", "csv"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr(file + c.what));
  }
  // What is about no axis may hold anything, and be named as it likes within.
  const std::string file = tool.Write(
      "a.jsonl",
      "{\"x\":{\"axes\":[1,{\"A\":2}]},\"flags\":[\"ok\"],\"rapid\":null,\"feed\":null,\"axes\":"
      "{\"A\":30}}\n");
  EXPECT_EQ(tool.Run({"fk", Trunnion(), file}).status, 2) << "x names an axis";
  const std::string good = tool.Write(
      "b.jsonl",
      "{\"d\":{\"axes\":[1,{\"A\":2}]},\"flags\":[\"ok\"],\"rapid\":null,\"axes\":{\"A\":30}}\n");
  const ToolResult result = tool.Run({"fk", Trunnion(), good, "--format", "jsonl"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(json::parse(result.out)["axes"]["A"], 30.0);
}

// An answer is looked at as well: how near to a singular direction it is, and what the way there
// from the start takes.
TEST(PointCommands, AnswerIsExplained) {
  const ToolRun tool;
  const auto explain = [&tool](const std::string& direction, const std::string& start) {
    std::vector<std::string> arguments = {"explain", Trunnion(), "0,0,60",
                                          direction, "--format", "json"};
    if (!start.empty()) {
      arguments.insert(arguments.end(), {"--start", start});
    }
    const ToolResult result = tool.Run(arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    return json::parse(result.out);
  };
  const auto codes = [](const json& report) {
    std::vector<int> all;
    for (const json& record : report["diagnoses"]) {
      all.push_back(record["code"].get<int>());
    }
    return all;
  };
  const json free = explain("0,0,1", "C=33");
  EXPECT_EQ(free["singular"]["axis"], "C");
  EXPECT_EQ(free["singular"]["angleDeg"], 0.0);
  EXPECT_TRUE(free["singular"]["isFree"].get<bool>());
  EXPECT_THAT(codes(free), testing::IsEmpty());
  const json near = explain("0,0.01,1", "");
  EXPECT_NEAR(near["singular"]["angleDeg"].get<double>(), 0.5729387, 1e-6);
  EXPECT_TRUE(near["singular"]["isNear"].get<bool>());
  EXPECT_FALSE(near["singular"]["isFree"].get<bool>());
  const json far = explain("0,1,1", "C=20");
  EXPECT_FALSE(far["singular"]["isNear"].get<bool>());
  EXPECT_THAT(codes(far), testing::IsEmpty());
  // From C 90 both solutions are as far; from the side of the other one the branch is kept.
  EXPECT_THAT(codes(explain("0,0.01,1", "A=0.5729,C=80")), testing::ElementsAre(201));
  EXPECT_THAT(codes(explain("0,0.01,1", "A=-0.5729,C=80")), testing::ElementsAre(202, 201));
  const json changed = explain("0,1,1", "A=-40,C=10");
  EXPECT_THAT(codes(changed), testing::ElementsAre(202));
  EXPECT_EQ(changed["diagnoses"][0]["elements"].size(), 2U);
  const std::string text =
      tool.Run({"explain", Trunnion(), "0,0,60", "0,0.01,1", "--start", "A=0.5729,C=80"}).out;
  EXPECT_THAT(text, HasSubstr("201 near-singular"));
  EXPECT_THAT(text, HasSubstr("The direction is near singular: 0.572939 degrees from the one that "
                              "leaves C free.\n"));
  EXPECT_THAT(tool.Run({"explain", Trunnion(), "0,0,60", "0,0,1"}).out,
              HasSubstr("The direction is singular: it leaves C free, which keeps the value that"));
  // A limited C must come back by more than half a turn.
  const std::string machine =
      tool.Write("m.xml", tool.Run({"new", "trunnion-ac", "--c", "-10,300", "--a", "-1,100"}).out);
  const ToolResult unwound =
      tool.Run({"explain", machine, "0,0,60", "0,-1,1", "--start", "A=40,C=290"});
  EXPECT_EQ(unwound.status, 0) << unwound.err;
  EXPECT_THAT(unwound.out, HasSubstr("203 unwinding"));
}

// The standard input can be the machine as well, but not both.
TEST(PointCommands, MachineMayComeFromTheStandardInput) {
  const ToolRun tool;
  const std::string input = "< '" + Trunnion() + "'";
  const ToolResult fk = tool.Shell("\"$ORVO\" fk - A=30 --format csv " + input);
  EXPECT_EQ(fk.status, 0) << fk.err;
  EXPECT_EQ(fk.out, tool.Run({"fk", Trunnion(), "A=30", "--format", "csv"}).out);
  EXPECT_EQ(tool.Shell("\"$ORVO\" ik - 1,2,3 0,0,1 " + input).status, 0);
  EXPECT_EQ(tool.Shell("\"$ORVO\" fk - - " + input).status, 1);
  EXPECT_EQ(tool.Shell("\"$ORVO\" info - </dev/null").status, 2);
  EXPECT_EQ(tool.CountFiles(), 0U);
}

// What is no request: status 1, the reason, nothing on the standard output.
TEST(PointCommands, HostileArgumentsAreRefused) {
  const ToolRun tool;
  struct Case {
    std::vector<std::string> arguments;
    std::string what;
  };
  const std::string& m = Trunnion();
  const Case cases[] = {
      {{"ik", m}, "POINT is required"},
      {{"ik", m, "1,2,3"}, "DIRECTION is required"},
      {{"ik", m, "1,2", "0,0,1"}, "POINT: three numbers separated by commas are needed, not '1,2'"},
      {{"ik", m, "1,2,nan", "0,0,1"}, "POINT: three numbers"},
      {{"ik", m, "1,2,1e999", "0,0,1"}, "POINT: three numbers"},
      {{"ik", m, "1,2,3", "0,0,0"}, "DIRECTION: the direction is null"},
      {{"ik", m, "1,2,3", "0,0,\xFF"}, "not '0,0,\xEF\xBF\xBD'"},
      {{"ik", m, "1,2,3", "0,0,1", "--offset", "inf,0,0"}, "--offset: three numbers"},
      {{"ik", m, "1,2,3", "0,0,1", "--start", "Q=1"}, "'Q=1' is not NAME=VALUE"},
      {{"ik", m, "1,2,3", "0,0,1", "--format", "csv"}, "--format: 'csv' is none of text, json"},
      {{"explain", m, "1,2,3", "0,0,1", "-p", "7"}, "--program-system: there is no '7'"},
      {{"fk", m, "A=nan"}, "'nan' is not a finite number"},
      {{"fk", m, "A=1e999"}, "is beyond the numbers"},
      {{"fk", m, "A="}, "is not a number"},
      {{"fk", m, "A=1", "a=2"}, "AXES: A is given twice"},
      {{"ik", m, "1,2,3", "0,0,1", "--start", "C=1,C=2"}, "--start: C is given twice"},
      {{"fk", m, "A=1", "7"}, "'7' is not NAME=VALUE"},
      {{"fk", m, "1,2"}, "2 values for 5 registers"},
      {{"fk", m, "--element", ""}, "--element: no element has the name or the id ''"},
      {{"fk", m, "--element", "99"}, "--element: no element has the name or the id '99'"},
      {{"fk", m, "--color", "blue"}, "--color: 'blue' is none of auto, always, never"},
  };
  for (const Case& c : cases) {
    const ToolResult result = tool.Run(c.arguments);
    EXPECT_EQ(result.status, 1) << c.what;
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr("orvo " + c.arguments[0] + ": "));
    EXPECT_THAT(result.err, HasSubstr(c.what));
  }
}

// Huge numbers end in an answer or in the word that there is none.
TEST(PointCommands, HugeNumbersEnd) {
  const ToolRun tool;
  const std::string& m = Trunnion();
  EXPECT_EQ(tool.Run({"ik", m, "1e300,2,3", "0,1,1"}).status, 5);
  EXPECT_EQ(tool.Run({"ik", m, "1,2,3", "0,1e300,1e300"}).status, 0);
  EXPECT_EQ(tool.Run({"ik", m, "1,2,3", "0,1e-300,1e-300"}).status, 0);
  EXPECT_EQ(tool.Run({"ik", m, "1,2,3", "0,1,1", "--start", "C=1e300"}).signal, 0);
  const ToolResult fk =
      tool.Run({"fk", m, "X=1e308", "Y=1e308", "A=1e308", "--offset", "0,0,1e308"});
  EXPECT_EQ(fk.status, 0);
  for (const std::string& line : Lines(fk.out)) {
    EXPECT_LE(line.size(), 200U);
  }
  const ToolResult file = tool.Run({"fk", m, tool.Write("a.csv", "X,Y\n1,2\n3\n")});
  EXPECT_EQ(file.status, 2);
  EXPECT_THAT(file.err, HasSubstr("a.csv:3:"));
}

}  // namespace
}  // namespace Orvo::Testing
