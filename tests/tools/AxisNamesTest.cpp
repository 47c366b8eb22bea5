#include "support/Sanitizers.h"
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
using testing::StartsWith;

std::string ReplaceAll(std::string text, const std::string& from, const std::string& to) {
  EXPECT_NE(text.find(from), std::string::npos) << from;
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

/// Writes a machine of the axes X, Y, Z, A and C whose axis A has another name.
std::string WriteNamed(const ToolRun& tool, const std::string& name) {
  return tool.Write("named.xml", ReplaceAll(tool.Run({"new", "trunnion-ac"}).out, "<Name>A<",
                                            "<Name>" + name + "<"));
}

/// Writes such a machine whose axis C has another register than 4.
std::string WriteFarAway(const ToolRun& tool, int reg) {
  const std::string number = std::to_string(reg);
  std::string text = tool.Run({"new", "trunnion-ac"}).out;
  text = ReplaceAll(text, "<Register>4<", "<Register>" + number + "<");
  return tool.Write("far.xml", ReplaceAll(text, "RegR1=\"4\"", "RegR1=\"" + number + "\""));
}

// An axis may be called as a column or a member of a result: what is written is what is read.
TEST(AxisNames, WordsOfResultsAreNoAxes) {
  for (const char* name : {"flags", "Line", "branch", "rapid", "feed", "inverse_time", "codes",
                           "residual", "solutions", "point", "cost", "solved", "diagnoses"}) {
    SCOPED_TRACE(name);
    const ToolRun tool;
    const std::string machine = WriteNamed(tool, name);
    const std::string path =
        tool.Write("path.csv", "x,y,z,i,j,k\n1,2,30,0,0,1\n1,2,30,0,-0.5,0.8\n");
    for (const char* file : {"axes.csv", "axes.jsonl"}) {
      const std::string axes = tool.File(file);
      for (const char* policy : {"machine", "optimal"}) {
        ASSERT_EQ(tool.Run({"solve", machine, path, "--policy", policy, "-o", axes}).status, 0);
        const ToolResult fk = tool.Run({"fk", machine, axes, "--format", "jsonl"});
        ASSERT_EQ(fk.status, 0) << fk.err;
        const std::vector<std::string> rows = Lines(fk.out);
        ASSERT_EQ(rows.size(), 2U);
        const json last = json::parse(rows[1]);
        EXPECT_NEAR(last["tool"]["direction"][1].get<double>(), -0.5 / std::sqrt(0.89), 1e-6);
        EXPECT_NE(last["axes"][std::string(name) + "_R3"], 0.0);
        EXPECT_EQ(tool.Run({"check", machine, axes, "--path", path, "--tolerance", "1e-4"}).status,
                  0);
      }
    }
    EXPECT_EQ(tool.Run({"fk", machine, std::string(name) + "_r3=20"}).status, 0);
    EXPECT_EQ(tool.Run({"ik", machine, "1,2,30", "0,0,1", "--start", std::string(name) + "_R3=20"})
                  .status,
              0);
  }
}

// Registers without element are called by their numbers, and no element is called as one of them.
TEST(AxisNames, RegistersWithoutElementHaveNumbers) {
  const ToolRun tool;
  std::string text = tool.Run({"new", "trunnion-ac"}).out;
  text = ReplaceAll(text, "<Register>4<", "<Register>7<");
  text = ReplaceAll(text, "RegR1=\"4\"", "RegR1=\"7\"");
  text = ReplaceAll(text, "<Name>A<", "<Name>r5<");
  const std::string machine = tool.Write("gaps.xml", text);
  const ToolResult fk = tool.Run({"fk", machine, "R4=4", "r5=5", "r5_r3=3", "--format", "json"});
  ASSERT_EQ(fk.status, 0) << fk.err;
  EXPECT_EQ(json::parse(fk.out)[0]["axes"].dump(),
            R"({"C":0.0,"R4":4.0,"R5":5.0,"R6":0.0,"X":0.0,"Y":0.0,"Z":0.0,"r5_R3":3.0})");
  for (const char* none : {"R8=1", "R04=1", "R=1", "R-1=1", "R4x=1", "R7=1", "R99999999999=1"}) {
    EXPECT_EQ(tool.Run({"fk", machine, none}).status, 1) << none;
  }
}

// The document of fk is what any other JSON of the program looks like.
TEST(AxisNames, ForwardListsAllRegisters) {
  const ToolRun tool;
  const std::string machine = tool.Write("machine.xml", tool.Run({"new", "mill-3"}).out);
  const ToolResult document = tool.Run({"fk", machine, "X=0.5", "--format", "json"});
  EXPECT_THAT(document.out, StartsWith("[\n{\n  \"line\": null,\n  \"axes\": {\n    \"X\": 0.5,\n"
                                       "    \"Y\": 0.0,\n    \"Z\": 0.0\n  },\n  \"tool\": {\n"));
  const ToolResult line = tool.Run({"fk", machine, "X=0.5", "--format", "jsonl"});
  EXPECT_THAT(line.out,
              StartsWith("{\"line\":null,\"axes\":{\"X\":0.5,\"Y\":0.0,\"Z\":0.0},\"tool\":{"));
  EXPECT_EQ(json::parse(document.out)[0], json::parse(line.out));
}

// A register far away costs what the libraries need for positions and tables, not names.
TEST(AxisNames, FarAwayRegistersTakeLittleMemory) {
  const ToolRun tool;
  const std::string near = WriteFarAway(tool, 5);
  const long needed = tool.Run({"fk", near, "C=10"}).peakKilobytes;
  constexpr int Far = 1000000;
  const std::string far = WriteFarAway(tool, Far);
  const std::string axes = tool.Write("axes.csv", "X,C\n1,2\n3,4\n");
  const std::vector<std::vector<std::string>> commands = {
      {"fk", far, "C=10"},
      {"fk", far, "C=10", "--format", "json", "-o", tool.File("fk.json")},
      {"ik", far, "1,2,30", "0,0,1"},
      {"check", far, axes, "--start", "R7=0,Y=0,Z=0,A=0"}};
  for (const std::vector<std::string>& command : commands) {
    SCOPED_TRACE(testing::PrintToString(command));
    const ToolResult result = tool.Run(command);
    EXPECT_LE(result.status, 5) << result.err;
    EXPECT_GE(result.peakKilobytes, needed);
#if !defined(ORVO_TEST_HAS_ALLOCATOR_OF_ITS_OWN)
    // Up to nine positions and a table; a name for each register would be as much again.
    EXPECT_LT(result.peakKilobytes, needed + 90 * (Far / 1024));
#endif
  }
  EXPECT_THAT(tool.Folder().Read("fk.json"),
              HasSubstr("    \"R999999\": 0.0,\n    \"C\": 10.0\n  }"));
}

}  // namespace
}  // namespace Orvo::Testing
