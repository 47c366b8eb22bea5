#include "tools/ToolRun.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/HeadIndex.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Kin/TableIndex.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// Solves a path on a machine with more arguments, and returns the rows that come out.
struct Solved {
  ToolResult result;
  std::vector<std::string> rows;
};

Solved Solve(const ToolRun& tool, const std::string& machine, const std::string& path,
             const std::vector<std::string>& more) {
  const std::string axes = tool.File("axes.csv");
  std::vector<std::string> arguments = {"solve", machine, path, "-o", axes};
  arguments.insert(arguments.end(), more.begin(), more.end());
  Solved solved;
  solved.result = tool.Run(arguments);
  if (tool.Folder().Has("axes.csv")) {
    solved.rows = Lines(tool.Folder().Read("axes.csv"));
  }
  return solved;
}

Solved SolvePoints(const std::string& machine, const std::string& points,
                   const std::vector<std::string>& more) {
  const ToolRun tool;
  const std::string path = tool.Write("path.csv", "x,y,z,i,j,k\n" + points);
  return Solve(tool, machine, path, more);
}

// On the trunnion with a tool of 30: the table's face lies 40 above the crossing of the axes, and
// the gauge face 30 above it at Z 0. What the axes must be follows by hand.
TEST(Solve, RowsAreTheAxisValues) {
  const Solved solved = SolvePoints(ExampleMachine("trunnion_ac"),
                                    "0,0,0,0,0,1\n"
                                    "10,5,2.5,0,0,1\n"
                                    "0,0,0,0,0.5,0.8660254037844386\n"
                                    "0,0,0,0,-0.5,0.8660254037844386\n",
                                    {"--offset", "0,0,30"});
  EXPECT_EQ(solved.result.status, 0);
  EXPECT_EQ(solved.result.err, "");
  EXPECT_THAT(solved.rows, ElementsAre("X,Y,Z,A,C,solutions,flags",
                                       "0.000000,0.000000,40.000000,0.000000,0.000000,1,free:C",
                                       "10.000000,5.000000,42.500000,0.000000,0.000000,1,free:C",
                                       "0.000000,-20.000000,34.641016,30.000000,0.000000,2,ok",
                                       "0.000000,20.000000,34.641016,-30.000000,0.000000,2,ok"));
}

// At the pole the free axis keeps the value it had, in the first point that of the start.
TEST(Solve, FreeAxisKeepsItsValue) {
  const Solved solved = SolvePoints(ExampleMachine("trunnion_ac"),
                                    "10,0,0,0,0,1\n"
                                    "10,0,0,0.5,0,0.8660254037844386\n"
                                    "10,0,0,0,0,1\n",
                                    {"--offset", "0,0,30", "--start", "C=-90"});
  EXPECT_EQ(solved.result.status, 0);
  ASSERT_EQ(solved.rows.size(), 4U);
  EXPECT_EQ(solved.rows[1], "0.000000,-10.000000,40.000000,0.000000,-90.000000,1,free:C");
  const std::string turned = Fields(solved.rows[2])[4];
  EXPECT_THAT(solved.rows[2], HasSubstr(",2,ok"));
  EXPECT_EQ(Fields(solved.rows[3])[4], turned);
  EXPECT_THAT(solved.rows[3], HasSubstr(",1,free:C"));
  EXPECT_THAT(solved.result.out, HasSubstr("was free and kept its value at 2 points"));
}

// A policy that does not unwrap leaves the free axis where it was, too.
TEST(Solve, FreeAxisKeepsItsValueUnderEveryPolicy) {
  const Solved solved =
      SolvePoints(ExampleMachine("trunnion_ac"), "10,0,0,0,0,1\n",
                  {"--offset", "0,0,30", "--start", "C=-90", "-p", "Indexed_C_first"});
  EXPECT_EQ(solved.result.status, 0);
  ASSERT_EQ(solved.rows.size(), 2U);
  EXPECT_EQ(solved.rows[1], "0.000000,-10.000000,40.000000,0.000000,-90.000000,1,free:C");
}

// The solution nearest to the position before: from C 720 the turns are kept, from C 180 the other
// of the two solutions is nearer.
TEST(Solve, NearestSolutionIsTaken) {
  const std::string leaning = "0,0,0,0,0.5,0.8660254037844386\n";
  struct Case {
    std::string start;
    std::string a;
    std::string c;
  };
  for (const Case& c :
       {Case{"C=0", "30.000000", "0.000000"}, Case{"C=720", "30.000000", "720.000000"},
        Case{"C=180", "-30.000000", "180.000000"},
        Case{"C=-900,A=-10", "-30.000000", "-900.000000"}}) {
    const Solved solved = SolvePoints(ExampleMachine("trunnion_ac"), leaning,
                                      {"--offset", "0,0,30", "--start", c.start});
    ASSERT_EQ(solved.rows.size(), 2U);
    EXPECT_EQ(Fields(solved.rows[1])[3], c.a) << c.start;
    EXPECT_EQ(Fields(solved.rows[1])[4], c.c) << c.start;
  }
}

// Without unwrapping, the nearer one of the two solutions is taken as it is computed.
TEST(Solve, PolicyDefaultTakesTheNearerRawSolution) {
  const std::string leaning = "0,0,0,0,0.5,0.8660254037844386\n";
  struct Case {
    std::string start;
    std::string a;
    std::string c;
  };
  for (const Case& c :
       {Case{"C=0", "30.000000", "0.000000"}, Case{"C=360", "-30.000000", "180.000000"},
        Case{"C=170", "-30.000000", "180.000000"}}) {
    const Solved solved = SolvePoints(ExampleMachine("trunnion_ac"), leaning,
                                      {"--offset", "0,0,30", "-p", "1", "--start", c.start});
    ASSERT_EQ(solved.rows.size(), 2U);
    EXPECT_EQ(Fields(solved.rows[1])[3], c.a) << c.start;
    EXPECT_EQ(Fields(solved.rows[1])[4], c.c) << c.start;
  }
}

// The start may be given for all registers, by name in either case, with blanks, and by R and
// number.
TEST(Solve, StartIsReadInEveryForm) {
  for (const std::string start :
       {"1,2,3,0,-90", " c = -90 , x=5", "C=-90.0", "C=-9e1", "C=-90,Z=+1"}) {
    const Solved solved = SolvePoints(ExampleMachine("trunnion_ac"), "10,0,0,0,0,1\n",
                                      {"--offset", "0,0,30", "--start", start});
    ASSERT_EQ(solved.rows.size(), 2U) << start;
    EXPECT_EQ(Fields(solved.rows[1])[4], "-90.000000") << start;
  }
}

// Registers that the program system does not move keep their start: the slide of the counter
// spindle carries the workpiece, and the milling head follows it. Register 4 has no axis.
TEST(Solve, OtherRegistersKeepTheirStart) {
  const Solved near = SolvePoints(ExampleMachine("millturn_2h2t"), "20,0,30,1,0,0\n",
                                  {"-p", "Mill_Counter", "--offset", "0,0,100"});
  const Solved moved =
      SolvePoints(ExampleMachine("millturn_2h2t"), "20,0,30,1,0,0\n",
                  {"-p", "Mill_Counter", "--offset", "0,0,100", "--start", "Z3=-100,R4=7"});
  ASSERT_EQ(near.rows.size(), 2U);
  ASSERT_EQ(moved.rows.size(), 2U);
  EXPECT_EQ(near.rows[0], "X1,Y1,Z1,B,R4,C1,Z3,C2,X2,Y2,Z2,solutions,flags");
  EXPECT_EQ(Fields(near.rows[1])[2], "870.000000");
  EXPECT_EQ(Fields(moved.rows[1])[2], "770.000000");
  EXPECT_EQ(Fields(moved.rows[1])[6], "-100.000000");
  EXPECT_EQ(Fields(moved.rows[1])[4], "7.000000");
  EXPECT_EQ(Fields(near.rows[1])[4], "0.000000");
}

// The shift moves the path in the table's frame.
TEST(Solve, ShiftMovesThePath) {
  const Solved shifted =
      SolvePoints(ExampleMachine("trunnion_ac"), "1,2,3,0,0,1\n1,2,3,0,0.6,0.8\n",
                  {"--offset", "0,0,30", "--shift", "10,-20,5.5"});
  const Solved written =
      SolvePoints(ExampleMachine("trunnion_ac"), "11,-18,8.5,0,0,1\n11,-18,8.5,0,0.6,0.8\n",
                  {"--offset", "0,0,30"});
  EXPECT_EQ(shifted.rows.size(), 3U);
  EXPECT_EQ(shifted.rows, written.rows);
}

// A program system is found by its number and by its name.
TEST(Solve, ProgramSystemByNumberOrName) {
  const ToolRun tool;
  for (const char* choice : {"2", "Turret_Main"}) {
    const Solved solved =
        Solve(tool, ExampleMachine("millturn_2h2t"), ExamplePath("cam_groove_radial"),
              {"-p", choice, "--offset", "0,0,60", "--shift", "0,0,40"});
    EXPECT_EQ(solved.result.status, 0);
    EXPECT_THAT(solved.result.out, HasSubstr("program system 2 (Turret_Main), policy ShortestWay"));
    EXPECT_EQ(solved.rows.size(), 2889U);
  }
}

// Directions of any length are taken, however long or short, and the summary says so.
TEST(Solve, DirectionsAreMadeUnit) {
  for (const char* direction : {"0,3,4", "0,0.0006,0.0008", "0,3e-200,4e-200", "0,3e200,4e200",
                                "0,3e-310,4e-310", "0,0.6,0.8"}) {
    const Solved solved =
        SolvePoints(ExampleMachine("trunnion_ac"), std::string("0,0,0,") + direction + "\n",
                    {"--offset", "0,0,30"});
    EXPECT_EQ(solved.result.status, 0);
    ASSERT_EQ(solved.rows.size(), 2U);
    EXPECT_EQ(Fields(solved.rows[1])[3], "36.869898") << direction;
    const bool wasUnit = std::string(direction) == "0,0.6,0.8";
    EXPECT_EQ(solved.result.out.find("not of unit length") == std::string::npos, wasUnit)
        << direction;
  }
}

// Points outside the linear ranges are solved and marked, with every axis that is outside.
TEST(Solve, OutOfRangeIsMarkedAndCounted) {
  const Solved solved = SolvePoints(ExampleMachine("trunnion_ac"),
                                    "0,0,0,0,0,1\n"
                                    "131,0,0,0,0,1\n"
                                    "-200,0,200,0,0,1\n"
                                    "130,0,190,0,0,1\n",
                                    {"--offset", "0,0,30"});
  EXPECT_EQ(solved.result.status, 5);
  EXPECT_EQ(solved.result.err, "");
  ASSERT_EQ(solved.rows.size(), 5U);
  EXPECT_EQ(solved.rows[2], "131.000000,0.000000,40.000000,0.000000,0.000000,1,out:X free:C");
  EXPECT_EQ(solved.rows[3], "-200.000000,0.000000,240.000000,0.000000,0.000000,1,out:X;Z free:C");
  // The limit itself is inside.
  EXPECT_EQ(solved.rows[4], "130.000000,0.000000,230.000000,0.000000,0.000000,1,free:C");
  EXPECT_THAT(solved.result.out, HasSubstr("  points        4\n"));
  EXPECT_THAT(solved.result.out, HasSubstr("  solved        2\n"));
  EXPECT_THAT(solved.result.out, HasSubstr("  unreachable   0\n"));
  EXPECT_THAT(solved.result.out, HasSubstr("  out of range  2  first in line 3\n"));
  EXPECT_THAT(solved.result.out, HasSubstr("2  70.000000 (line 4)"));
  EXPECT_THAT(solved.result.out, HasSubstr("1  10.000000 (line 4)"));
}

// A rotary axis can be outside its range only where the policy does not look at ranges.
TEST(Solve, RotaryAxisOutOfRangeIsMarked) {
  const Solved solved = SolvePoints(ExampleMachine("trunnion_ac"), "0,0,0,0,0.6,-0.8\n",
                                    {"--offset", "0,0,30", "-p", "Indexed_C_first"});
  EXPECT_EQ(solved.result.status, 5);
  ASSERT_EQ(solved.rows.size(), 2U);
  EXPECT_THAT(solved.rows[1], HasSubstr(",143.130102,"));
  // At A 143 the table hangs upside down, and Z would have to go below its range as well.
  EXPECT_THAT(solved.rows[1], HasSubstr(",2,out:Z;A"));
}

// A direction outside of all rotary ranges is not reached: the row repeats the position before.
TEST(Solve, UnreachableRepeatsThePositionBefore) {
  const Solved solved = SolvePoints(ExampleMachine("trunnion_ac"),
                                    "0,0,0,0,-0.6,-0.8\n"
                                    "10,0,0,0,0.5,0.8660254037844386\n"
                                    "0,0,0,0,0.6,-0.8\n"
                                    "10,0,0,0,0.5,0.8660254037844386\n",
                                    {"--offset", "0,0,30", "--start", "1,2,3,4,5"});
  EXPECT_EQ(solved.result.status, 4);
  EXPECT_EQ(solved.result.err, "");
  ASSERT_EQ(solved.rows.size(), 5U);
  EXPECT_EQ(solved.rows[1], "1.000000,2.000000,3.000000,4.000000,5.000000,0,unreachable:A");
  EXPECT_EQ(solved.rows[2], "10.000000,-20.000000,34.641016,30.000000,0.000000,2,ok");
  EXPECT_EQ(solved.rows[3], "10.000000,-20.000000,34.641016,30.000000,0.000000,0,unreachable:A");
  EXPECT_EQ(solved.rows[4], solved.rows[2]);
  EXPECT_THAT(solved.result.out,
              HasSubstr("  unreachable   2  first in line 2; 0 directions out of "
                        "reach, 2 only outside a rotary range\n"));
  EXPECT_THAT(
      solved.result.out,
      HasSubstr("A would leave its range at 2 of the unreachable points, by up to 33.1301"));
}

// A direction that the axes can't give at all names no axis.
TEST(Solve, DirectionOutOfReachIsToldApart) {
  const Solved solved =
      SolvePoints(ExampleMachine("nutating_head_bc"), "0,0,300,0,0,-1\n", {"--offset", "0,0,100"});
  EXPECT_EQ(solved.result.status, 4);
  ASSERT_EQ(solved.rows.size(), 2U);
  EXPECT_EQ(solved.rows[1], "0.000000,0.000000,0.000000,0.000000,0.000000,0,unreachable");
  EXPECT_THAT(solved.result.out, HasSubstr("1 directions out of reach, 0 only outside"));
  // With no point reached there is no extent and nothing to check.
  EXPECT_THAT(solved.result.out, Not(HasSubstr("forward kinematics")));
}

// Unreachable and out of range together: 4, the graver one.
TEST(Solve, UnreachableWinsOverOutOfRange) {
  const Solved solved = SolvePoints(ExampleMachine("trunnion_ac"),
                                    "1000,0,0,0,0,1\n"
                                    "0,0,0,0,0,-1\n",
                                    {"--offset", "0,0,30"});
  EXPECT_EQ(solved.result.status, 4);
  EXPECT_THAT(solved.result.out, HasSubstr("  out of range  1"));
  EXPECT_THAT(solved.result.out, HasSubstr("  unreachable   1"));
  EXPECT_THAT(solved.result.out, HasSubstr("  solved        0"));
}

std::string DirectionAt(const std::string& machineFile, int reg, double valueDeg) {
  Kin::Machine machine;
  EXPECT_TRUE(machine.ReadXML(std::wstring(machineFile.begin(), machineFile.end())));
  Kin::MachineCompute compute(machine);
  Kin::MachinePosition position;
  machine.Alloc(&position);
  position[Kin::Register(reg)] = valueDeg;
  Matrix43 tableFromHead;
  EXPECT_TRUE(compute.ComputeMcsToToolTcs(position, Kin::HeadIndex(0), Kin::TableIndex(0),
                                          NullVector, &tableFromHead));
  const Vector3D w = tableFromHead.GetW();
  std::ostringstream text;
  text << std::setprecision(17) << w[0] << "," << w[1] << "," << w[2];
  return text.str();
}

// A direction up to 0.01 radian beyond a limit is given up to the limit: marked, and the summary
// says by how much the direction is off. B goes from -30 to 180 degrees.
TEST(Solve, SnappedAxisIsMarked) {
  const std::string machine = ExampleMachine("nutating_head_bc");
  const Solved inside = SolvePoints(machine, "0,0,300," + DirectionAt(machine, 3, -29.9) + "\n",
                                    {"--offset", "0,0,100", "--start", "B=-20"});
  ASSERT_EQ(inside.rows.size(), 2U);
  EXPECT_EQ(Fields(inside.rows[1])[3], "-29.900000");
  EXPECT_THAT(inside.rows[1], Not(HasSubstr("snapped")));

  const Solved atLimit = SolvePoints(machine, "0,0,300," + DirectionAt(machine, 3, -30.0) + "\n",
                                     {"--offset", "0,0,100", "--start", "B=-20"});
  ASSERT_EQ(atLimit.rows.size(), 2U);
  EXPECT_EQ(Fields(atLimit.rows[1])[3], "-30.000000");
  EXPECT_THAT(atLimit.rows[1], Not(HasSubstr("snapped")));

  // The other solution, B +30.2, lies in the range, but its C is far away from here.
  const Solved snapped = SolvePoints(machine, "0,0,300," + DirectionAt(machine, 3, -30.2) + "\n",
                                     {"--offset", "0,0,100", "--start", "B=-20"});
  EXPECT_EQ(snapped.result.status, 0);
  ASSERT_EQ(snapped.rows.size(), 2U);
  EXPECT_EQ(Fields(snapped.rows[1])[3], "-30.000000");
  EXPECT_THAT(snapped.rows[1], HasSubstr(",2,snapped:B"));
  EXPECT_THAT(snapped.result.out, HasSubstr("held at its limit at 1 points"));
}

// The summary of the real path, figure by figure; lengths and extents are those of the rows.
TEST(Solve, SummaryOfTheRealPath) {
  const ToolRun tool;
  const Solved solved = Solve(tool, ExampleMachine("trunnion_ac"),
                              ExamplePath("curved_layers_model_1"), {"--offset", "0,0,30"});
  EXPECT_EQ(solved.result.status, 0);
  EXPECT_EQ(solved.result.err, "");
  ASSERT_EQ(solved.rows.size(), 34115U);
  std::vector<double> previous;
  std::vector<double> length(5, 0.0);
  std::vector<double> from(5, 1e9);
  std::vector<double> to(5, -1e9);
  for (std::size_t i = 1; i < solved.rows.size(); ++i) {
    const std::vector<std::string> fields = Fields(solved.rows[i]);
    ASSERT_EQ(fields.size(), 7U);
    EXPECT_EQ(fields[5], "2");
    EXPECT_EQ(fields[6], "ok");
    std::vector<double> values;
    for (std::size_t a = 0; a < 5; ++a) {
      values.push_back(std::stod(fields[a]));
      from[a] = std::min(from[a], values[a]);
      to[a] = std::max(to[a], values[a]);
      length[a] += previous.empty() ? 0.0 : std::abs(values[a] - previous[a]);
    }
    previous = values;
  }
  EXPECT_THAT(solved.result.out,
              HasSubstr("  solved        34114  all of them, in the range of every axis\n"));
  const std::vector<std::string> lines = Lines(solved.result.out);
  for (std::size_t a = 0; a < 5; ++a) {
    bool isFound = false;
    for (const std::string& line : lines) {
      std::istringstream words(line);
      std::string name;
      double lineFrom = 0.0;
      double lineTo = 0.0;
      double lineLength = 0.0;
      words >> name;
      if (name == std::string(1, "XYZAC"[a]) && words >> lineFrom >> lineTo >> lineLength) {
        isFound = true;
        EXPECT_NEAR(lineFrom, from[a], 0.00051) << name;
        EXPECT_NEAR(lineTo, to[a], 0.00051) << name;
        EXPECT_NEAR(lineLength, length[a], 34114 * 1e-6) << name;
      }
    }
    EXPECT_TRUE(isFound) << a;
  }
}

// Each row, put into forward kinematics, gives the point and the direction of the path back: what
// is written is what was solved. Six decimals, and arms of up to 100.
TEST(Solve, RowsReproduceThePath) {
  const ToolRun tool;
  const std::string machineFile = ExampleMachine("trunnion_ac");
  const Solved solved =
      Solve(tool, machineFile, ExamplePath("hemisphere_ball_end"),
            {"--offset", "0,0,75", "--shift", "0,0,20", "--program-system", "TableTable_AC"});
  EXPECT_EQ(solved.result.status, 0);
  const std::vector<std::string> path =
      Lines(tool.Shell("cat '" + ExamplePath("hemisphere_ball_end") + "'").out);
  ASSERT_EQ(solved.rows.size(), path.size());
  Kin::Machine machine;
  ASSERT_TRUE(machine.ReadXML(std::wstring(machineFile.begin(), machineFile.end())));
  Kin::MachineCompute compute(machine);
  Kin::MachinePosition position;
  machine.Alloc(&position);
  for (std::size_t i = 1; i < path.size(); ++i) {
    const std::vector<std::string> row = Fields(solved.rows[i]);
    const std::vector<std::string> point = Fields(path[i]);
    for (int r = 0; r < 5; ++r) {
      position[Kin::Register(r)] = std::stod(row[static_cast<std::size_t>(r)]);
    }
    Matrix43 tableFromTip;
    ASSERT_TRUE(compute.ComputeMcsToToolTcs(position, Kin::HeadIndex(0), Kin::TableIndex(0),
                                            Vector3D(0.0, 0.0, 75.0), &tableFromTip));
    const Vector3D tip(std::stod(point[0]), std::stod(point[1]), std::stod(point[2]) + 20.0);
    const Vector3D direction(std::stod(point[3]), std::stod(point[4]), std::stod(point[5]));
    ASSERT_LT(tableFromTip.GetTrans().Distance(tip), 1e-5) << "row " << i;
    ASSERT_LT(tableFromTip.GetW().Distance(direction), 1e-7) << "row " << i;
  }
}

// The pair that leaves the Z range on purpose does so at 706 points, by up to 31.4.
TEST(Solve, KnownPairLeavesTheZRange) {
  const ToolRun tool;
  const Solved solved =
      Solve(tool, ExampleMachine("head_table_bc"), ExamplePath("hemisphere_ball_end"),
            {"--offset", "0,0,120", "--shift", "0,0,360"});
  EXPECT_EQ(solved.result.status, 5);
  std::size_t out = 0;
  for (const std::string& row : solved.rows) {
    out += row.find(",out:Z") != std::string::npos ? 1U : 0U;
  }
  EXPECT_EQ(out, 706U);
  EXPECT_THAT(solved.result.out, HasSubstr("  solved        11294\n"));
  EXPECT_THAT(solved.result.out, HasSubstr("  out of range    706  first in line "));
  EXPECT_THAT(solved.result.out, HasSubstr("  706  31.392262 (line 2)\n"));
}

/// A machine with three linear axes and two rotary ones under the given names.
void WriteMachine(const ToolRun& tool, const std::vector<std::wstring>& names,
                  const Vector3D& xDirection) {
  Kin::Machine machine;
  Kin::Entity* base = machine.AddEntityStatic(L"Base", Kin::EntityId());
  Kin::Entity* x = machine.AddEntityLinear(names[0], base->GetEntityId(), xDirection);
  Kin::Entity* y = machine.AddEntityLinear(names[1], x->GetEntityId(), AxisY);
  Kin::Entity* z = machine.AddEntityLinear(names[2], y->GetEntityId(), AxisZ);
  Kin::Entity* c = machine.AddEntityRotary(names[3], z->GetEntityId(), NullVector, AxisZ);
  Kin::Entity* a = machine.AddEntityRotary(names[4], c->GetEntityId(), NullVector, AxisX);
  int reg = 0;
  for (Kin::Entity* axis : {x, y, z, c, a}) {
    axis->SetRegister(reg);
    axis->SetCheckRangeAxis(false);
    ++reg;
  }
  machine.AddEntityHead(L"Head", a->GetEntityId(), Matrix43());
  machine.AddEntityTable(L"Table", base->GetEntityId(), Matrix43());
  Kin::ProgramSystem system;
  system.SetProgramSystemName(L"Main");
  system.SetHeadIndex(0);
  system.SetTableIndex(0);
  system.SetMainLinear(0, 1, 2);
  system.SetMainRotary(3, 4);
  machine.AddProgramSystem(system);
  machine.AddProgramSystem(system);
  system.SetProgramSystemName(L"NoHead");
  system.SetHeadIndex(7);
  machine.AddProgramSystem(system);
  system.SetProgramSystemName(L"NoLinear");
  system.SetHeadIndex(0);
  system.SetMainLinear(0, 1, 9);
  machine.AddProgramSystem(system);
  system.SetProgramSystemName(L"RotaryIsLinear");
  system.SetMainLinear(0, 1, 2);
  system.SetMainRotary(0, 4);
  machine.AddProgramSystem(system);
  ASSERT_TRUE(machine.Finish());
  ASSERT_TRUE(machine.WriteXML(tool.Folder().Wide("machine.xml")));
}

// Names become columns: safe in a CSV file, unlike each other and unlike the other columns.
TEST(Solve, ColumnsHaveSafeAndUniqueNames) {
  const ToolRun tool;
  WriteMachine(tool, {L"X, 1\"", L"x__1_", L"", L"Flags", L"\u00C4\nB=C;#"}, AxisX);
  const std::string path = tool.Write("path.csv", "x,y,z,i,j,k\n1,2,3,0,0,1\n");
  const Solved solved = Solve(tool, tool.File("machine.xml"), path, {"-p", "0"});
  EXPECT_EQ(solved.result.status, 0) << solved.result.err;
  ASSERT_EQ(solved.rows.size(), 2U);
  EXPECT_EQ(solved.rows[0], "X__1_,x__1__R1,R2,Flags_R3,\u00C4_B_C__,solutions,flags");
  EXPECT_EQ(Fields(solved.rows[1])[0], "1.000000");
}

// Program systems that can't be computed with are told apart from paths that can't be solved.
TEST(Solve, UnusableProgramSystemIsAFaultOfTheMachine) {
  const ToolRun tool;
  WriteMachine(tool, {L"X", L"Y", L"Z", L"C", L"A"}, AxisX);
  const std::string path = tool.Write("path.csv", "x,y,z,i,j,k\n1,2,3,0,0,1\n");
  struct Case {
    std::string system;
    std::string what;
  };
  for (const Case& c :
       {Case{"NoHead", "program system 2 (NoHead): its rotary axes can't be computed: its head"},
        Case{"NoLinear", "program system 3 (NoLinear): its linear axes can't be computed: its reg"},
        Case{"4", "program system 4 (RotaryIsLinear): its rotary axes can't be computed: its r"}}) {
    const Solved solved = Solve(tool, tool.File("machine.xml"), path, {"-p", c.system});
    EXPECT_EQ(solved.result.status, 3);
    EXPECT_EQ(solved.result.out, "");
    EXPECT_THAT(solved.result.err, HasSubstr("machine.xml: " + c.what));
    EXPECT_TRUE(solved.rows.empty());
  }
  const Solved several = Solve(tool, tool.File("machine.xml"), path, {"-p", "Main"});
  EXPECT_EQ(several.result.status, 1);
  EXPECT_THAT(several.result.err, HasSubstr("several are called 'Main'; give the number"));
}

// Linear axes that are not square to each other do not bring the tip to the point; the check by
// forward kinematics says so.
TEST(Solve, ForwardCheckTellsOfObliqueAxes) {
  const ToolRun tool;
  WriteMachine(tool, {L"X", L"Y", L"Z", L"C", L"A"}, Vector3D(0.8, 0.6, 0.0));
  const std::string path = tool.Write("path.csv", "x,y,z,i,j,k\n10,0,0,0,0,1\n");
  const Solved solved = Solve(tool, tool.File("machine.xml"), path, {"-p", "0"});
  EXPECT_EQ(solved.result.status, 6);
  // X becomes 8 and Y 0: the tip goes to (6.4, 4.8), 6 away from (10, 0).
  EXPECT_THAT(solved.rows[1], HasSubstr("8.000000,0.000000,0.000000,"));
  EXPECT_THAT(solved.result.out, HasSubstr("the tip is off by at most 6 (line 2)"));
  EXPECT_THAT(solved.result.out, HasSubstr("that is more than rounding"));
  const Solved exact =
      Solve(tool, tool.File("machine.xml"), path, {"-p", "0", "--policy", "greedy"});
  EXPECT_EQ(exact.result.status, 0);
}

// The exact solution is off by rounding alone, and no warning is given.
TEST(Solve, ForwardCheckIsQuietAboutRounding) {
  const Solved solved =
      SolvePoints(ExampleMachine("trunnion_ac"), "10,0,0,0,0.6,0.8\n", {"--offset", "0,0,30"});
  EXPECT_THAT(solved.result.out, HasSubstr("Checked by forward kinematics: the tip is off by"));
  EXPECT_THAT(solved.result.out, Not(HasSubstr("more than rounding")));
}

// Coordinates that are too large to compute with are not reached; nothing is infinite.
TEST(Solve, HugeCoordinatesAreUnreachable) {
  const Solved solved = SolvePoints(ExampleMachine("trunnion_ac"),
                                    "1.7e308,1.7e308,1.7e308,0,0.6,0.8\n"
                                    "1e300,0,0,0,0.6,0.8\n",
                                    {"--offset", "0,0,30"});
  EXPECT_EQ(solved.result.status, 4);
  ASSERT_EQ(solved.rows.size(), 3U);
  for (const std::string& row : solved.rows) {
    EXPECT_THAT(row, Not(HasSubstr("nan")));
    EXPECT_THAT(row, Not(HasSubstr("inf")));
  }
  EXPECT_EQ(solved.rows[1], "0.000000,0.000000,0.000000,0.000000,0.000000,2,unreachable");
  EXPECT_THAT(solved.rows[2], HasSubstr(",2,out:X"));
  EXPECT_THAT(solved.result.out, HasSubstr("0 directions out of reach, 0 only outside a rotary "
                                           "range, 1 points beyond the linear axes\n"));
}

}  // namespace
}  // namespace Orvo::Testing
