#include "tools/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using testing::HasSubstr;
using testing::StartsWith;
using Json = nlohmann::json;

const std::string Trunnion = ExampleMachine("trunnion_ac");

std::string WriteVectors(const ToolRun& tool, const std::string& machine,
                         const std::vector<std::string>& more) {
  std::vector<std::string> arguments = {"vectors", "write", machine, "-o", tool.File("v.txt")};
  arguments.insert(arguments.end(), more.begin(), more.end());
  const ToolResult result = tool.Run(arguments);
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "");
  return tool.Folder().Read("v.txt");
}

std::string Replaced(std::string text, const std::string& what, const std::string& with) {
  const std::size_t place = text.find(what);
  EXPECT_NE(place, std::string::npos) << what;
  return place == std::string::npos ? text : text.replace(place, what.size(), with);
}

// Every machine gives its own vectors back, bit for bit; the same seed gives the same file, another
// one another.
TEST(Vectors, EveryMachineGivesItsVectorsBack) {
  for (const char* name : {"trunnion_ac", "head_table_bc", "nutating_head_bc", "millturn_2h2t",
                           "gantry_head_head_ca"}) {
    SCOPED_TRACE(name);
    const ToolRun tool;
    const std::string machine = ExampleMachine(name);
    const std::string text = WriteVectors(tool, machine, {"--count", "40"});
    const ToolResult result =
        tool.Run({"vectors", "verify", machine, tool.File("v.txt"), "--tolerance", "0"});
    EXPECT_EQ(result.status, 0) << result.out;
    EXPECT_THAT(result.out, StartsWith("equal bit for bit: "));
    EXPECT_THAT(result.out, HasSubstr("40 samples, "));
    EXPECT_EQ(WriteVectors(tool, machine, {"--count", "40"}), text);
    EXPECT_NE(WriteVectors(tool, machine, {"--count", "40", "--seed", "2"}), text);
  }
}

// Nothing is written that could not be read back.
TEST(Vectors, TooManyRegistersAreRefused) {
  const ToolRun tool;
  const auto write = [&](int reg) {
    const std::string number = std::to_string(reg);
    std::string text = tool.Run({"new", "trunnion-ac"}).out;
    text = Replaced(text, "<Register>4<", "<Register>" + number + "<");
    text = Replaced(text, "RegR1=\"4\"", "RegR1=\"" + number + "\"");
    const std::string machine = tool.Write("far.xml", text);
    return tool.Run({"vectors", "write", machine, "-o", tool.File("far.txt"), "--count", "3"});
  };
  const ToolResult refused = write(2620);
  EXPECT_EQ(refused.status, 2);
  EXPECT_THAT(refused.err, HasSubstr("far.xml: the machine has 2621 registers; at most 2620"));
  EXPECT_FALSE(tool.Folder().Has("far.txt"));
  ASSERT_EQ(write(2619).status, 0);
  EXPECT_EQ(tool.Run({"vectors", "verify", tool.File("far.xml"), tool.File("far.txt")}).status, 0);
}

// What follows by hand at values of 0: the table's face lies 40 above the crossing of the axes, the
// gauge face 30 above it, and the tool of 70 hangs down to 40 below.
TEST(Vectors, SamplesHoldWhatFollowsByHand) {
  const ToolRun tool;
  const std::vector<std::string> lines =
      Lines(WriteVectors(tool, Trunnion, {"--count", "3", "--offset", "0,0,70"}));
  EXPECT_EQ(lines[0], "orvo-vectors 1");
  EXPECT_EQ(lines[1], "elements 8 registers 5 systems 2");
  EXPECT_EQ(lines[2], "tool-offset: 0x0p+0 0x0p+0 0x1.18p+6");
  EXPECT_EQ(lines[3], "axes 0: 0x0p+0 0x0p+0 0x0p+0 0x0p+0 0x0p+0");
  EXPECT_THAT(lines, testing::Contains("tool 0 code 0: 0x1p+0 0x0p+0 0x0p+0 0x0p+0 0x1p+0 0x0p+0 "
                                       "0x0p+0 0x0p+0 0x1p+0 0x0p+0 0x0p+0 -0x1.4p+6"));
  EXPECT_THAT(lines, testing::Contains("rotary 0 code 0 count 1 free 4: 0x0p+0 0x0p+0"));
  EXPECT_THAT(lines, testing::Contains("axes 1: -0x1.04p+7 -0x1.9p+7 0x0p+0 -0x1.b8p+6 "
                                       "-0x1.c2p+11"));
  EXPECT_EQ(lines.back(), "end 3");
}

// A difference is told where it comes first, with both numbers; within the tolerance it is none.
TEST(Vectors, TheFirstDifferenceIsTold) {
  const ToolRun tool;
  const std::string text = WriteVectors(tool, Trunnion, {"--count", "2", "--offset", "0,0,70"});
  const auto verify = [&](const std::string& bytes, std::vector<std::string> more) {
    std::vector<std::string> arguments = {"vectors", "verify", Trunnion,
                                          tool.Write("changed.txt", bytes)};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return tool.Run(arguments);
  };
  // By 2^-46, which is 1.4e-14, of 80.
  const std::string nearly = Replaced(text, "-0x1.4p+6", "-0x1.4000000000001p+6");
  ToolResult result = verify(nearly, {});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, StartsWith("equal within 1e-09: "));
  EXPECT_THAT(result.out, HasSubstr("; 1 are not the same bits, by 1.4e-14 at most (line 13)"));
  result = verify(nearly, {"--tolerance", "0"});
  EXPECT_EQ(result.status, 6);
  EXPECT_THAT(result.out, HasSubstr("changed.txt:13: tool 0 code 0, number 12: the file has "
                                    "-0x1.4000000000001p+6 (-80.000000000000014), the machine "
                                    "gives -0x1.4p+6 (-80)"));
  EXPECT_EQ(verify(nearly, {"--tolerance", "1.43e-14"}).status, 0);
  EXPECT_EQ(verify(nearly, {"--tolerance", "1.42e-14"}).status, 6);

  result = verify(Replaced(text, "count 1 free 4", "count 2 free 4"), {"--format", "json"});
  EXPECT_EQ(result.status, 6);
  const Json json = Json::parse(result.out);
  EXPECT_EQ(json["good"], false);
  EXPECT_EQ(json["line"], 14);
  EXPECT_THAT(json["failure"].get<std::string>(), HasSubstr("count 2 free 4"));

  // Whole turns of raw solutions don't count, those of chosen ones do.
  const std::string turned = Replaced(text, "free 4: 0x0p+0 0x0p+0", "free 4: 0x1.68p+8 0x0p+0");
  EXPECT_EQ(verify(turned, {}).status, 0);
  EXPECT_EQ(verify(Replaced(text, "chosen 0 code 0 count 1 free 4: 0x0p+0",
                            "chosen 0 code 0 count 1 free 4: 0x1.68p+8"),
                   {})
                .status,
            6);

  // Lines that are missing, too many, or of another machine.
  const std::size_t line = text.find("frame 3");
  const std::string without = text.substr(0, line) + text.substr(text.find('\n', line) + 1);
  EXPECT_EQ(verify(without, {}).status, 6);
  const std::size_t last = text.rfind("linear 1");
  result = verify(text.substr(0, last) + "end 2\n", {});
  EXPECT_EQ(result.status, 6);
  EXPECT_THAT(result.out, HasSubstr("is missing before this line"));
  result = verify(Replaced(text, "end 2", "linear 1 code 0: 0x0p+0\nend 2"), {});
  EXPECT_EQ(result.status, 6);
  EXPECT_THAT(result.out, HasSubstr("one line too many"));
  result = tool.Run({"vectors", "verify", ExampleMachine("millturn_2h2t"), tool.File("v.txt")});
  EXPECT_EQ(result.status, 6);
  EXPECT_THAT(result.out, HasSubstr("this one has elements 1"));
}

// A machine that was changed is found out.
TEST(Vectors, AChangedMachineIsFoundOut) {
  const ToolRun tool;
  WriteVectors(tool, Trunnion, {"--count", "5"});
  const std::string changed =
      tool.Shell("sed 's/>40.000000</>40.000100</; s/\"40.000000\"/\"40.000100\"/' '" + Trunnion +
                 "'")
          .out;
  const ToolResult result =
      tool.Run({"vectors", "verify", tool.Write("machine.xml", changed), tool.File("v.txt")});
  EXPECT_EQ(result.status, 6) << result.out << result.err;
}

// By way of the standard streams.
TEST(Vectors, StandardStreamsWork) {
  const ToolRun tool;
  const ToolResult result = tool.Shell("\"$ORVO\" vectors write - -o - --count 4 <'" + Trunnion +
                                       "' | \"$ORVO\" vectors verify '" + Trunnion + "' -");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("equal bit for bit: standard input, 4 samples"));
}

// Numbers beyond the ordinary are read; what is no number is named.
TEST(Vectors, HostileFilesAreNamed) {
  const ToolRun tool;
  const std::string head = "orvo-vectors 1\nelements 8 registers 5 systems 2\n";
  const std::string tool0 = "tool-offset: 0x0p+0 0x0p+0 0x0p+0\n";
  struct Case {
    std::string bytes;
    const char* what;
  };
  for (const Case& c : {
           Case{"", "no file of golden vectors"},
           Case{"x,y,z\n", "no file of golden vectors"},
           Case{"orvo-vectors 2\n", "no file of golden vectors"},
           Case{"orvo-vectors 1\n", "expected the numbers of elements"},
           Case{head, "expected 'tool-offset:'"},
           Case{head + "tool-offset: 0x0p+0\n", "expected 'tool-offset:'"},
           Case{head + tool0, "the file ends before its last line"},
           Case{head + tool0 + "end 1\n", "'end 1' stands behind 0 samples"},
           Case{head + tool0 + "end 0\nend 0\n", "goes on behind its end"},
           Case{head + tool0 + "axes 0: 0x0p+0\nend 1\n", "expected 5 axis values"},
           Case{head + tool0 + "axes 0: 1.5 0 0 0 0\n", "v.txt:4:9: '1.5' is no hexadecimal"},
           Case{head + tool0 + "axes 0: 0x2p+0\n", "'0x2p+0' is no hexadecimal"},
           Case{head + tool0 + "axes 0: 0x1.p+0\n", "is no hexadecimal"},
           Case{head + tool0 + "axes 0: 0x1p+9999\n", "is no hexadecimal"},
           Case{head + tool0 + "axes 0: 0x1p+-1\n", "is no hexadecimal"},
           Case{head + tool0 + "axes 0: 0x1.00000000000001p+0\n", "is no hexadecimal"},
           Case{head + tool0 + "axes 0 0x0p+0\n", "has no ':'"},
       }) {
    SCOPED_TRACE(c.bytes);
    const ToolResult result =
        tool.Run({"vectors", "verify", Trunnion, tool.Write("v.txt", c.bytes)});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr(c.what));
  }
  // NaN and infinities are axis values like others; what comes out is compared.
  const ToolResult odd = tool.Run(
      {"vectors", "verify", Trunnion,
       tool.Write("v.txt", head + tool0 + "axes 0: nan inf -inf 0x0.0000000000001p-1022 -0x0p+0\n" +
                               "end 1\n")});
  EXPECT_EQ(odd.status, 6);
  EXPECT_THAT(odd.out, HasSubstr("is missing before this line"));
}

TEST(Vectors, WrongUseIsStatusOne) {
  const ToolRun tool;
  struct Case {
    std::vector<std::string> arguments;
    const char* what;
  };
  for (const Case& c : {
           Case{{"vectors"}, "orvo vectors: ACTION is required"},
           Case{{"vectors", "make", Trunnion}, "'make' is none of write, verify"},
           Case{{"vectors", "write", Trunnion}, "--output is needed to write"},
           Case{{"vectors", "write", Trunnion, "-o", "-", "--offset", "1"}, "--offset: three"},
           Case{{"vectors", "write", Trunnion, "-o", "-", "--count", "0"}, "--count"},
           Case{{"vectors", "verify", Trunnion}, "FILE is needed to verify"},
           Case{{"vectors", "verify", Trunnion, "v.txt", "-o", "x"}, "--output is for writing"},
           Case{{"vectors", "verify", Trunnion, "v.txt", "--seed", "2"}, "--seed is for writing"},
           Case{{"vectors", "verify", Trunnion, "v.txt", "--count", "2"}, "--count is for writing"},
           Case{{"vectors", "verify", Trunnion, "v.txt", "--offset", "0,0,1"},
                "--offset is for writing"},
           Case{{"vectors", "write", Trunnion, "-o", "-", "--tolerance", "0"},
                "--tolerance is for verifying"},
           Case{{"vectors", "verify", "-", "-"}, "can be read only once"},
       }) {
    const ToolResult result = tool.Run(c.arguments);
    EXPECT_EQ(result.status, 1) << c.what;
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr(c.what));
  }
  EXPECT_EQ(tool.Run({"vectors", "write", Trunnion, "-o", tool.File("none/v.txt")}).status, 2);
  const std::string empty = tool.Write("empty.txt", "");
  EXPECT_THAT(tool.Run({"vectors", "verify", Trunnion, empty}).err, HasSubstr(empty + ":1:1: "));
}

}  // namespace
}  // namespace Orvo::Testing
