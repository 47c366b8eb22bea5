#include "machines/ExampleData.h"
#include "tools/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace Orvo::Testing {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

// There and back: the machine file comes out to the byte, and so do the meshes.
TEST(Convert, XmlToJsonAndBack) {
  for (const std::string& name : ExampleMachineNames()) {
    SCOPED_TRACE(name);
    const ToolRun tool;
    ToolResult result = tool.Run({"convert", ExampleMachine(name), tool.File("a.json")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err + result.out, "");
    EXPECT_TRUE(tool.Folder().Has("a_1_0.stl"));
    result = tool.Run({"convert", tool.File("a.json"), tool.File("b.xml")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(tool.Folder().Read("b.xml"), ReadBytes(ExampleMachine(name)));
    EXPECT_EQ(tool.Folder().Read("b_1_0.stl"), tool.Folder().Read("a_1_0.stl"));
  }
}

TEST(Convert, StandardStreams) {
  const ToolRun tool;
  const std::string machine = ExampleMachine("trunnion_ac");
  const ToolResult result = tool.Shell("$ORVO convert - - --from xml --to json <'" + machine +
                                       "' | $ORVO convert - - --from json --to xml");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, ReadBytes(machine));
  EXPECT_EQ(tool.CountFiles(), 0U);
}

TEST(Convert, EveryFormat) {
  struct Case {
    const char* file;
    const char* beginning;
    std::size_t fileNb;
  };
  const Case cases[] = {{"m.glb", "glTF", 1},
                        {"m.gltf", "{\"asset\":{\"version\":\"2.0\"", 2},
                        {"m.urdf", "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<robot", 8},
                        {"m.DOT", "digraph machine {", 1},
                        {"m.gv", "digraph machine {", 1},
                        {"m.xml", "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Machine", 8},
                        {"m.json", "{\n  \"format\": \"orvo-machine\",\n  \"version\": 1", 8}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    const ToolRun tool;
    const ToolResult result =
        tool.Run({"convert", ExampleMachine("trunnion_ac"), tool.File(c.file)});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err + result.out, "");
    EXPECT_THAT(tool.Folder().Read(c.file), StartsWith(c.beginning));
    EXPECT_EQ(tool.CountFiles(), c.fileNb);
  }
}

TEST(Convert, MotionOfASolvedPath) {
  const ToolRun tool;
  const std::string machine = ExampleMachine("trunnion_ac");
  const std::string axes = tool.Write("axes.csv",
                                      "# a motion\nX,Y,Z,A,C,solutions,flags\n"
                                      "0,0,0,0,0,2,ok\n10,20,30,-40,350,2,ok\n");
  ToolResult result =
      tool.Run({"convert", machine, tool.File("m.gltf"), "--animate", axes, "--seconds", "8"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  const std::string text = tool.Folder().Read("m.gltf");
  EXPECT_THAT(text, HasSubstr("\"max\":[8]"));
  EXPECT_THAT(text, HasSubstr("\"count\":5,\"type\":\"VEC4\""));

  const std::string timed = tool.Write("timed.csv", "c,inverse_time\n0,\n10,30\n20,20\n");
  result = tool.Run({"convert", machine, tool.File("m.gltf"), "--animate", timed});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(tool.Folder().Read("m.gltf"), HasSubstr("\"min\":[0],\"max\":[5]"));
}

TEST(Convert, LeavesMeshesOutWhereAsked) {
  const ToolRun tool;
  const std::string machine = tool.Write("alone.xml", ReadBytes(ExampleMachine("trunnion_ac")));
  const ToolResult failed = tool.Run({"convert", machine, tool.File("m.glb")});
  EXPECT_EQ(failed.status, 2);
  EXPECT_THAT(failed.err, HasSubstr("--no-meshes leaves meshes out"));
  EXPECT_THAT(failed.err, HasSubstr("alone_1_0.stl is missing; "));
  EXPECT_FALSE(tool.Folder().Has("m.glb"));
  const ToolResult result = tool.Run({"convert", machine, tool.File("m.glb"), "--no-meshes"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(tool.Folder().Read("m.glb").find("\"meshes\""), std::string::npos);
}

// A mesh file that is not there is named, whichever way the machine is written down.
TEST(Convert, MissingMeshFileIsNamed) {
  const ToolRun tool;
  ASSERT_EQ(tool.Run({"convert", ExampleMachine("trunnion_ac"), tool.File("a.xml")}).status, 0);
  ASSERT_EQ(tool.Run({"convert", tool.File("a.xml"), tool.File("a.json")}).status, 0);
  std::filesystem::remove(tool.Folder().File("a_3_0.stl"));
  for (const char* machine : {"a.xml", "a.json"}) {
    const ToolResult result = tool.Run({"convert", tool.File(machine), tool.File("m.glb")});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("a_3_0.stl"));
    EXPECT_THAT(result.err, HasSubstr("is missing"));
    EXPECT_FALSE(tool.Folder().Has("m.glb"));
  }
}

TEST(Convert, StatusTellsWhatIsWrong) {
  const ToolRun tool;
  const std::string machine = ExampleMachine("trunnion_ac");
  const std::string broken = tool.Write("broken.json", "{\n  \"format\": 3\n}");
  const std::string invalid =
      tool.Write("invalid.json", R"({"format": "orvo-machine", "version": 1, "entities": []})");
  const std::string words = tool.Write("words.csv", "X,Y\n1,2\n3,x\n");
  struct Case {
    std::vector<std::string> arguments;
    int status;
    std::string message;
  };
  const Case cases[] = {
      {{"convert", machine}, 1, "OUT is required"},
      {{"convert", machine, "m.stl"}, 1, "--to is needed: the name 'm.stl' doesn't tell"},
      {{"convert", "m.glb", "m.xml"}, 1, "machines are read from xml and json only"},
      {{"convert", machine, "-", "--to", "obj"}, 1, "'obj' is none of xml, json, glb"},
      {{"convert", machine, "-", "--to", "dot", "--animate", words}, 1, "only glb and gltf"},
      {{"convert", machine, "m.glb", "--seconds", "2"}, 1, "--seconds needs --animate"},
      {{"convert", machine, "m.glb", "--unit", "nan"}, 1, "--unit: "},
      {{"convert", machine, "m.glb", "--unit", "0"}, 1, "--unit: "},
      {{"convert", machine, "m.json", "--unit", "1"}, 1, "--unit: only glb, gltf and urdf"},
      {{"convert", machine, machine}, 1, "would replace what is read"},
      {{"convert", broken, "-", "--to", "dot"}, 2, "broken.json:2:13: a text was expected"},
      {{"convert", tool.File("none.json"), "-", "--to", "dot"}, 2, "can't be opened"},
      {{"convert", machine, tool.File("no/m.json")}, 2, "no/m.json"},
      {{"convert", machine, tool.File("m.glb"), "--animate", words}, 2, "words.csv:3:3: "},
      {{"convert", invalid, tool.File("m.glb")}, 3, "no element is a HEAD"},
      {{"convert", invalid, tool.File("m.xml")}, 3, ""}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments));
    const ToolResult result = tool.Run(c.arguments);
    EXPECT_EQ(result.status, c.status) << result.err;
    EXPECT_THAT(result.err, HasSubstr(c.message));
  }
  EXPECT_TRUE(tool.Folder().Has("m.xml"));
  EXPECT_FALSE(tool.Folder().Has("m.glb"));
}

}  // namespace
}  // namespace Orvo::Testing
