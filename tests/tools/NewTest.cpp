#include "support/TestRandom.h"
#include "tools/ToolRun.h"

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Path/MainAxes.h>
#include <Orvo/Path/PointSolver.h>
#include <Orvo/Path/ToolPoint.h>
#include <Orvo/Vector3D.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using nlohmann::json;
using testing::HasSubstr;

/// Draws axis values within the ranges, puts the tool there, and asks for the values that bring it
/// there: the answers do, and one of them is in range.
void ExpectInverseOfForward(const ToolRun& tool, const std::string& file, TestRandom* random) {
  Kin::Machine machine;
  ASSERT_TRUE(machine.ReadXML(tool.Folder().Wide(file)));
  ASSERT_TRUE(machine.IsFinished());
  Kin::MachinePosition position;
  machine.Alloc(&position);
  const Vector3D offset(0.0, 0.0, 60.0);
  Path::PointSolver solver(machine, *machine.GetProgramSystem(0), offset, position);
  ASSERT_TRUE(solver.IsUsable()) << solver.GetFindings()[0].MakeText();
  EXPECT_TRUE(solver.GetFindings().empty());
  for (int i = 0; i < 200; ++i) {
    Path::AxisValues values = {};
    for (std::size_t place = 0; place < Path::MainAxisNb; ++place) {
      const Path::MainAxis& axis = solver.GetAxes().axes[place];
      if (axis.isPresent) {
        values[place] =
            axis.isChecked ? random->Real(axis.min, axis.max) : random->Real(-180.0, 180.0);
      }
    }
    Path::ToolPoint point;
    ASSERT_TRUE(solver.ComputeTool(values, &point.point, &point.direction));
    const Path::Answers answers = solver.Solve(point);
    ASSERT_GE(answers.count, 1);
    bool isInRange = false;
    for (int k = 0; k < answers.count; ++k) {
      const Path::Answer& answer = answers.answers[static_cast<std::size_t>(k)];
      const Path::Residual residual = solver.Check(point, answer.values);
      EXPECT_LE(residual.tip, 1e-9);
      EXPECT_LE(residual.direction, 1e-12);
      isInRange = isInRange || answer.IsInRange();
    }
    EXPECT_TRUE(isInRange);
  }
}

// Every kind is sound, and its axes reach what they are to reach.
TEST(New, EveryKindIsSoundAndSolvable) {
  const ToolRun tool;
  const json kinds = json::parse(tool.Run({"new", "--list", "--format", "json"}).out);
  EXPECT_GE(kinds.size(), 8U);
  TestRandom random;
  for (const json& kind : kinds) {
    const std::string name = kind["kind"];
    SCOPED_TRACE(name);
    const std::string file = tool.File("machine.xml");
    const ToolResult made = tool.Run({"new", name, "-o", file});
    EXPECT_EQ(made.status, 0) << made.err;
    EXPECT_EQ(made.out, "");
    EXPECT_EQ(tool.Run({"new", name}).out, tool.Folder().Read("machine.xml"));
    const ToolResult validated = tool.Run({"validate", "--strict", file});
    EXPECT_EQ(validated.status, 0) << validated.out;
    ExpectInverseOfForward(tool, "machine.xml", &random);
  }
}

// With all axes at 0 the spindle's gauge point is at the center of the table.
TEST(New, ZeroIsAtTheCenterOfTheTable) {
  const ToolRun tool;
  for (const json& kind : json::parse(tool.Run({"new", "--list", "--format", "json"}).out)) {
    const std::string name = kind["kind"];
    tool.Run({"new", name, "-o", tool.File("machine.xml")});
    const ToolResult result = tool.Run({"fk", tool.File("machine.xml"), "--format", "json"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(json::parse(result.out)[0]["tool"]["tip"], json::array({0.0, 0.0, 0.0})) << name;
  }
}

// The dimensions of the command line are those of the machine.
TEST(New, DimensionsAreTaken) {
  struct Case {
    std::vector<std::string> arguments;
    std::vector<std::string> parts;
  };
  const Case cases[] = {
      {{"trunnion-ac", "--a", "-30,110.5", "--pivot", "62.25", "--eccentric", "-3"},
       {"<RangeMin>-30</RangeMin>", "<RangeMax>110.5</RangeMax>",
        "<Center X=\"-0\" Y=\"-3\" Z=\"62.25\"/>"}},
      {{"gantry-ca", "--c", "none"}, {"<RangeAxis>false</RangeAxis>"}},
      {{"nutating-head-cb", "--angle", "30"}, {"Y=\"0.49999999999999994\""}},
      {{"mill-3", "--x", "-1e3, +1e3"}, {"<RangeMin>-1000</RangeMin>"}},
  };
  TestRandom random;
  for (const Case& c : cases) {
    const ToolRun tool;
    std::vector<std::string> arguments = {"new"};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    arguments.insert(arguments.end(), {"-o", tool.File("machine.xml")});
    const ToolResult result = tool.Run(arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    for (const std::string& part : c.parts) {
      EXPECT_THAT(tool.Folder().Read("machine.xml"), HasSubstr(part));
    }
    EXPECT_EQ(tool.Run({"validate", "--strict", tool.File("machine.xml")}).status, 0);
    ExpectInverseOfForward(tool, "machine.xml", &random);
  }
}

// What a kind has not, and what is no dimension, is refused.
TEST(New, WrongDimensionsAreRefused) {
  struct Case {
    std::vector<std::string> arguments;
    std::string what;
  };
  const Case cases[] = {
      {{}, "KIND is required; 'orvo new --list' shows the kinds"},
      {{"lathe"}, "'lathe' is none of mill-3, "},
      {{"mill-3", "--a", "0,1"}, "--a: a mill-3 has no such axis"},
      {{"mill-3", "--pivot", "1"}, "--pivot: a mill-3 has no such dimension"},
      {{"mill-3", "--x", "1"}, "--x: MIN,MAX or none is needed, not '1'"},
      {{"mill-3", "--x", "2,1"}, "--x: the range '2,1' is reversed"},
      {{"mill-3", "--x", "nan,1"}, "--x: MIN,MAX or none is needed, not 'nan,1'"},
      {{"mill-3", "--x", "-inf,inf"}, "--x: MIN,MAX or none is needed"},
      {{"mill-3", "--x"}, "--x"},
      {{"trunnion-ac", "--pivot", "1e999"}, "--pivot: '1e999' is beyond the numbers"},
      {{"trunnion-ac", "--pivot", "high"}, "--pivot: 'high' is not a number"},
      {{"nutating-head-cb", "--angle", "0"}, "--angle: an angle above 0 and up to 90"},
      {{"nutating-head-cb", "--angle", "90.5"}, "--angle: an angle above 0 and up to 90"},
  };
  for (const Case& c : cases) {
    const ToolRun tool;
    std::vector<std::string> arguments = {"new"};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    const ToolResult result = tool.Run(arguments);
    EXPECT_EQ(result.status, 1) << c.what;
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr("orvo new: "));
    EXPECT_THAT(result.err, HasSubstr(c.what));
  }
}

}  // namespace
}  // namespace Orvo::Testing
