#include "tools/ToolRun.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using testing::HasSubstr;

// The whole report of a machine, as a user sees it.
TEST(Info, ReportOfTheTrunnion) {
  const ToolRun tool;
  const ToolResult result = tool.Run({"info", ExampleMachine("trunnion_ac")});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  std::ifstream stream(ORVO_TOOLS_TEST_DIR "/trunnion_ac.info.txt");
  const std::string report((std::istreambuf_iterator<char>(stream)),
                           std::istreambuf_iterator<char>());
  EXPECT_EQ(result.out, ExampleMachine("trunnion_ac") + "\n\n" + report);
}

// What the other machines have and the trunnion has not.
TEST(Info, ZeroReferencesPlacementsAndManyHeads) {
  const ToolRun tool;
  const std::string millturn = tool.Run({"info", ExampleMachine("millturn_2h2t")}).out;
  for (const char* part :
       {"along (1, 0, 0), zero at 350", "about (0, 1, 0) through (210, 0, 0)",
        "at (-90, 0, 350), X to (0, 0, 1), Z to (-1, 0, 0)", "  head   1 LowerTurret\n",
        "  table  1 CounterSpindle\n", "16 elements, 11 registers, 7 linear axes",
        "2  Turret_Main          1 LowerTurret     0 MainSpindle     X2, Y2, Z2      C1, none",
        "X1, Y1, Z3      B, C2     Default", "2 meshes"}) {
    EXPECT_THAT(millturn, HasSubstr(part));
  }
}

/// Writes a machine that is built by the caller.
std::string WriteMachine(const ToolRun& tool, Kin::Machine* machine) {
  machine->Finish();
  EXPECT_TRUE(machine->WriteXML(tool.Folder().Wide("machine.xml")));
  return tool.File("machine.xml");
}

// A machine that can't be computed with is shown all the same; the verdict says what is missing.
TEST(Info, VerdictTellsWhatIsMissing) {
  struct Case {
    bool hasHead;
    bool hasTable;
    int linearAxes;
    int status;
    std::string verdict;
  };
  const Case cases[] = {
      {true, true, 3, 0, "Machine: valid, ready to compute\n"},
      {false, true, 3, 3,
       "Machine: not valid: no element is a HEAD, so nothing carries the tool\n"},
      {true, false, 3, 3,
       "Machine: not valid: no element is a TABLE, so nothing carries the workpiece\n"},
      {true, true, 2, 3, "Machine: not valid: fewer than three axes are linear\n"},
      {false, false, 0, 3, "Machine: not valid: no element is a HEAD"},
  };
  for (const Case& c : cases) {
    const ToolRun tool;
    Kin::Machine machine;
    for (int i = 0; i < c.linearAxes; ++i) {
      machine.AddEntityLinear(L"Slide" + std::to_wstring(i), i, AxisX)->SetRegister(i);
    }
    if (c.hasHead) {
      machine.AddEntityHead(L"Head", c.linearAxes, Matrix43());
    }
    if (c.hasTable) {
      machine.AddEntityTable(L"Table", Kin::EntityId(), Matrix43());
    }
    const std::string file = WriteMachine(tool, &machine);
    const ToolResult info = tool.Run({"info", file});
    EXPECT_EQ(info.status, c.status);
    EXPECT_THAT(info.out, HasSubstr(c.verdict));
    EXPECT_EQ(info.out.find("Slide0") != std::string::npos, c.linearAxes > 0);
    if (c.status != 0) {
      const ToolResult solve =
          tool.Run({"solve", file, ExamplePath("cam_groove_radial"), "-o", tool.File("axes.csv")});
      EXPECT_EQ(solve.status, 3);
      EXPECT_THAT(solve.err, HasSubstr(file + ": the machine is not valid: "));
      EXPECT_FALSE(tool.Folder().Has("axes.csv"));
    }
  }
}

// Parents that form a cycle and parents that don't exist are shown as what they are.
TEST(Info, FaultyParentsAreShown) {
  const ToolRun tool;
  Kin::Machine machine;
  machine.AddEntityLinear(L"First", 2, AxisX);
  machine.AddEntityLinear(L"Second", 1, AxisY);
  machine.AddEntityLinear(L"Orphan", 77, AxisZ);
  const ToolResult result = tool.Run({"info", WriteMachine(tool, &machine)});
  EXPECT_EQ(result.status, 3);
  EXPECT_THAT(result.out, HasSubstr("the parents of some elements form a cycle"));
  EXPECT_THAT(result.out, HasSubstr("parent 77 not found"));
  EXPECT_EQ(result.out.find("parent 1 not found"), std::string::npos);
  EXPECT_EQ(result.out.find("parent 2 not found"), std::string::npos);
  EXPECT_THAT(result.out, HasSubstr(" is part of a cycle"));
  EXPECT_THAT(result.out, HasSubstr("First"));
  EXPECT_THAT(result.out, HasSubstr("Second"));
}

// Marks, missing names and program systems that lead nowhere.
TEST(Info, OddThingsAreShown) {
  const ToolRun tool;
  Kin::Machine machine;
  Kin::Entity* x = machine.AddEntityLinear(L"", Kin::EntityId(), AxisX);
  x->SetRegister(3);
  x->SetCheckRangeAxis(false);
  x->SetIsMounting(true);
  x->SetIsMotor(true);
  machine.AddEntity()->SetEntityName(L"No link");
  machine.AddEntityHead(L"\x1b[2JHead\n", 1, Matrix43());
  Kin::ProgramSystem system;
  system.SetProgramSystemName(L"Nowhere");
  system.SetHeadIndex(5);
  system.SetMainLinear(3, 4, Kin::Register());
  machine.AddProgramSystem(system);
  const ToolResult result = tool.Run({"info", WriteMachine(tool, &machine)});
  EXPECT_EQ(result.status, 3);
  for (const char* part :
       {"(no name)", "not checked", "mounting", "undefined", "can't be placed", "?[2JHead?",
        "5 (not found)", "-1 (not found)", "(no name), R4 (no axis), none", "none, none"}) {
    EXPECT_THAT(result.out, HasSubstr(part));
  }
  EXPECT_EQ(result.out.find('\x1b'), std::string::npos);
}

// A deep chain is drawn in a page that does not grow with its depth to the side.
TEST(Info, DeepChainStaysReadable) {
  constexpr int depth = 5000;
  const ToolRun tool;
  Kin::Machine machine;
  for (int i = 0; i < depth; ++i) {
    machine.AddEntityLinear(L"S", i, AxisX);
  }
  const ToolResult result = tool.Run({"info", WriteMachine(tool, &machine)});
  EXPECT_EQ(result.status, 3);
  EXPECT_THAT(result.out, HasSubstr("[level 4999] S"));
  EXPECT_LT(result.out.size(), static_cast<std::size_t>(depth) * 200);
}

}  // namespace
}  // namespace Orvo::Testing
