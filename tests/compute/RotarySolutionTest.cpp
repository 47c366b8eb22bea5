#include "PrivateAccess.h"
#include "SmallMachines.h"
#include "support/NearVector.h"
#include "support/SameBits.h"
#include "support/TestRandom.h"

#include <Orvo/Angle.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/RotariesSolution.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::Entity;
using Kin::Machine;
using Kin::MachineCompute;
using Kin::MachinePosition;
using Kin::RotariesSolution;

constexpr double Pi = 3.141592653589793;
constexpr double Infinity = std::numeric_limits<double>::infinity();

MachinePosition Zeros() { return PositionOf({0, 0, 0, 0, 0}); }

// A record in which nothing holds its reset value.
RotariesSolution OddSolution() {
  RotariesSolution sol;
  sol.Count = 7;
  sol.FreeRegister = 77;
  sol.Alpha1 = Angle(1.0);
  sol.Beta1 = Angle(2.0);
  sol.Alpha2 = Angle(3.0);
  sol.Beta2 = Angle(4.0);
  return sol;
}

testing::AssertionResult IsReset(const RotariesSolution& sol) {
  if (sol.Count != 0 || sol.FreeRegister != -1) {
    return testing::AssertionFailure() << "count " << sol.Count << ", free " << sol.FreeRegister;
  }
  const double angles[] = {sol.Alpha1.GetRadian(), sol.Beta1.GetRadian(), sol.Alpha2.GetRadian(),
                           sol.Beta2.GetRadian()};
  const double zeros[] = {0, 0, 0, 0};
  return SameBits(angles, zeros, 4, "the angles'");
}

testing::AssertionResult SameSolution(const RotariesSolution& a, const RotariesSolution& b) {
  if (a.Count != b.Count || a.FreeRegister != b.FreeRegister) {
    return testing::AssertionFailure() << "counts " << a.Count << " and " << b.Count << ", free "
                                       << a.FreeRegister << " and " << b.FreeRegister;
  }
  const double left[] = {a.Alpha1.GetRadian(), a.Beta1.GetRadian(), a.Alpha2.GetRadian(),
                         a.Beta2.GetRadian()};
  const double right[] = {b.Alpha1.GetRadian(), b.Beta1.GetRadian(), b.Alpha2.GetRadian(),
                          b.Beta2.GetRadian()};
  return SameBits(left, right, 4, "the angles'");
}

// Half a turn may come out with either sign, by rounding.
void ExpectDegrees(const Angle& angle, double expected) {
  const double degrees = angle.GetDegre();
  EXPECT_NEAR(expected == 180 ? std::abs(degrees) : degrees, expected, 1e-9);
}

void ExpectDegrees(const RotariesSolution& sol, double alpha1, double beta1, double alpha2,
                   double beta2) {
  ExpectDegrees(sol.Alpha1, alpha1);
  ExpectDegrees(sol.Beta1, beta1);
  ExpectDegrees(sol.Alpha2, alpha2);
  ExpectDegrees(sol.Beta2, beta2);
}

// Returns the direction of the tool in the table's frame at a position.
Vector3D ToolInTable(MachineCompute& compute, const MachinePosition& position) {
  Matrix43 tableFromHead;
  EXPECT_TRUE(compute.ComputeMcsToToolTcs(position, 0, 0, NullVector, &tableFromHead));
  return tableFromHead.GetW();
}

// The failing cases, in the order in which they are looked for.
TEST(RotarySolutionFailure, NullRecordComesFirst) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(MachinePosition(), 9, 9, AxisZ, 99, 99, nullptr));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNullOutput);
}

TEST(RotarySolutionFailure, EmptyPositionComesSecondAndResetsTheRecord) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  RotariesSolution sol = OddSolution();
  EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(MachinePosition(), 9, 9, AxisZ, 99, 99, &sol));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorEmptyPosition);
  EXPECT_TRUE(IsReset(sol));
}

TEST(RotarySolutionFailure, RegistersOutsideOrEqualComeBeforeHeadAndTable) {
  const Machine machine = HeadHeadMachine();
  const std::vector<std::pair<int, int>> registers = {{5, 4},          {3, 5}, {5, -1}, {-1, 5},
                                                      {2147483647, 4}, {3, 3}, {0, 0}};
  for (const auto& [r0, r1] : registers) {
    SCOPED_TRACE(testing::Message() << r0 << " " << r1);
    MachineCompute compute(machine);
    RotariesSolution sol = OddSolution();
    EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 9, 9, AxisZ, r0, r1, &sol));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister);
    EXPECT_TRUE(IsReset(sol));
  }
}

TEST(RotarySolutionFailure, HeadAndTableMustExist) {
  const Machine machine = HeadHeadMachine();
  const std::vector<std::pair<int, int>> indices = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}, {9, 9}};
  for (const auto& [head, table] : indices) {
    SCOPED_TRACE(testing::Message() << head << " " << table);
    MachineCompute compute(machine);
    RotariesSolution sol = OddSolution();
    EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), head, table, AxisZ, 0, 4, &sol));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNoHeadOrTable) << "before the axes";
    EXPECT_TRUE(IsReset(sol));
  }
}

TEST(RotarySolutionFailure, HeadAndTableNeedACommonRoot) {
  Machine machine;
  AddTable(machine, -1);
  AddLinear(machine, -1, AxisX, 0);
  AddLinear(machine, 2, AxisY, 1);
  AddLinear(machine, 3, AxisZ, 2);
  AddHead(machine, 4);
  ASSERT_TRUE(machine.Finish());
  MachineCompute compute(machine);
  RotariesSolution sol;
  EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(PositionOf({0, 0, 0}), 0, 0, AxisZ, -1, -1, &sol));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNoHeadOrTable);
}

TEST(RotarySolutionFailure, AxisOnTheChainMustBeRotary) {
  for (const int reg : {0, 1, 2}) {
    for (const bool first : {true, false}) {
      SCOPED_TRACE(testing::Message() << reg << " " << first);
      const Machine machine = HeadHeadMachine();
      MachineCompute compute(machine);
      RotariesSolution sol;
      EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, AxisZ, first ? reg : 4,
                                                     first ? 4 : reg, &sol));
      EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister);
    }
  }
}

TEST(RotarySolutionFailure, FixedAxisWithTheRegisterIsNotRotary) {
  Machine machine = HeadHeadMachine();
  EntityAt(machine, 0).SetRegister(3);  // the base, on the chain before C
  MachineCompute compute(machine);
  RotariesSolution sol;
  EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, AxisZ, 3, 4, &sol));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister);
  EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, AxisZ, -1, 3, &sol));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister);
}

TEST(RotarySolutionFailure, AxisMustBeOnTheChain) {
  Machine machine = HeadHeadMachine();
  Entity aside;
  aside.SetRegister(5);
  aside.GetEntityLinkMod()->SetEntityLinkRotary(NullVector, AxisX);
  EntitiesOf(machine).push_back(aside);
  SetId(&EntitiesOf(machine).back(), 9);
  ASSERT_TRUE(machine.Finish());
  const MachinePosition position = PositionOf({0, 0, 0, 0, 0, 0, 0});
  const std::vector<std::pair<int, int>> registers = {{5, -1}, {-1, 5}, {5, 4}, {4, 5},
                                                      {6, -1}, {-1, 6}, {6, 5}};
  for (const auto& [r0, r1] : registers) {
    SCOPED_TRACE(testing::Message() << r0 << " " << r1);
    MachineCompute compute(machine);
    RotariesSolution sol = OddSolution();
    EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(position, 0, 0, AxisZ, r0, r1, &sol));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister);
    EXPECT_TRUE(IsReset(sol));
  }
}

TEST(RotarySolutionFailure, HeadOrTableWithTheRegisterIsNoAxis) {
  for (const int place : {1, 7}) {
    for (const bool isRotary : {false, true}) {
      SCOPED_TRACE(testing::Message() << place << " " << isRotary);
      Machine machine = HeadHeadMachine();
      EntityAt(machine, place).SetRegister(5);
      if (isRotary) {
        EntityAt(machine, place).GetEntityLinkMod()->SetEntityLinkRotary(NullVector, AxisX);
      }
      const MachinePosition position = PositionOf({0, 0, 0, 0, 0, 0});
      const std::vector<std::pair<int, int>> registers = {{5, -1}, {-1, 5}, {5, 4}, {4, 5}};
      for (const auto& [r0, r1] : registers) {
        MachineCompute compute(machine);
        RotariesSolution sol;
        EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(position, 0, 0, AxisZ, r0, r1, &sol));
        EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNotAxis) << r0 << " " << r1;
      }
    }
  }
}

TEST(RotarySolutionFailure, AlphaFailsBeforeBeta) {
  Machine machine = HeadHeadMachine();
  EntityAt(machine, 7).SetRegister(5);  // the head
  const MachinePosition position = PositionOf({0, 0, 0, 0, 0, 0, 0});
  RotariesSolution sol;
  {
    MachineCompute compute(machine);
    EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(position, 0, 0, AxisZ, 5, 6, &sol));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNotAxis) << "alpha is the head";
  }
  {
    MachineCompute compute(machine);
    EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(position, 0, 0, AxisZ, 6, 5, &sol));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister) << "alpha is missing";
  }
  {
    MachineCompute compute(machine);
    EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(position, 0, 0, AxisZ, 5, 0, &sol));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister) << "the walk fails first";
  }
}

TEST(RotarySolutionFailure, UnfinishedMachineIsNotRefusedAsSuch) {
  const Machine unfinished;
  MachineCompute nothing(unfinished);
  RotariesSolution sol;
  EXPECT_FALSE(nothing.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, AxisZ, -1, -1, &sol));
  EXPECT_EQ(nothing.GetLastError(), Kin::ComputeErrorNoHeadOrTable);

  Machine invalid;
  AddTable(invalid, -1);
  AddRotary(invalid, 1, NullVector, AxisX, 0);
  AddHead(invalid, 2);
  ASSERT_FALSE(invalid.Finish());
  ASSERT_EQ(invalid.GetLastError(), Kin::MachineErrorFewLinearAxes);
  MachineCompute compute(invalid);
  ASSERT_TRUE(
      compute.ComputeToolIjkTcsToMcsAbc(PositionOf({0}), 0, 0, Vector3D(0, -1, 0), 0, -1, &sol));
  EXPECT_EQ(sol.Count, 1U);
  EXPECT_NEAR(sol.Alpha1.GetDegre(), 90.0, 1e-12);
}

TEST(RotarySolutionFailure, LaterSuccessKeepsTheLastError) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  RotariesSolution sol;
  EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 5, 0, AxisZ, 3, 4, &sol));
  EXPECT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, AxisZ, 3, 4, &sol));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNoHeadOrTable);
}

TEST(RotarySolutionNoAxis, CountIsOneOnlyAboveTheCosine) {
  struct Case {
    Vector3D ijk;
    unsigned int count;
  };
  const Case cases[] = {
      {{0, 0, 1}, 1},
      {{0, 0, 0.99}, 0},
      {{0, 0, std::nextafter(0.99, 1.0)}, 1},
      {{0, 0, std::nextafter(0.99, 0.0)}, 0},
      {{5, 5, 2}, 1},  // used as given, whatever its length
      {{0, 0, -1}, 0},
      {{1, 0, 0}, 0},
      {{0, 0, 0}, 0},
  };
  const Machine machine = HeadHeadMachine();
  for (const Case& c : cases) {
    for (const int undefined : {-1, -2, -2147483647 - 1}) {
      SCOPED_TRACE(testing::Message() << c.ijk[0] << " " << c.ijk[1] << " " << c.ijk[2]);
      MachineCompute compute(machine);
      RotariesSolution sol = OddSolution();
      ASSERT_TRUE(
          compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, c.ijk, undefined, undefined, &sol));
      EXPECT_EQ(sol.Count, c.count);
      sol.Count = 0;
      EXPECT_TRUE(IsReset(sol));
      EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNone);
    }
  }
}

// Without a requested axis the tool stands where the position puts it.
TEST(RotarySolutionNoAxis, ToolStandsWhereThePositionPutsIt) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  RotariesSolution sol;
  const MachinePosition position = PositionOf({0, 0, 0, 90, 90});
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(position, 0, 0, AxisX, -1, -1, &sol));
  EXPECT_EQ(sol.Count, 1U);
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(position, 0, 0, AxisZ, -1, -1, &sol));
  EXPECT_EQ(sol.Count, 0U);
}

struct OneAxisCase {
  const char* name;
  Vector3D dir;
  Vector3D tool;
  Vector3D ijk;
  unsigned int count;
  double headDeg;
};

const double Root = std::sqrt(0.5);

std::vector<OneAxisCase> OneAxisCases() {
  return {
      {"perpendicular: the plain angle", AxisX, AxisZ, {0, -0.5, std::sqrt(0.75)}, 1, 30},
      {"perpendicular: the other way", AxisX, AxisZ, {0, 0.5, std::sqrt(0.75)}, 1, -30},
      {"perpendicular: no move", AxisX, AxisZ, {0, 0, 1}, 1, 0},
      {"perpendicular: half a turn is positive", AxisX, AxisZ, {0, 0, -1}, 1, 180},
      {"perpendicular: the length doesn't matter", AxisX, AxisZ, {0, -0.005, 0}, 1, 90},
      {"perpendicular: too short for an angle", AxisX, AxisZ, {0, -0.000009, 0}, 1, 0},
      {"perpendicular: the axis itself is out of reach", AxisX, AxisZ, {1, 0, 0}, 0, 0},
      {"cone: the tool itself", {1, 0, 1}, AxisZ, {0, 0, 1}, 1, 0},
      {"cone: half a turn", {1, 0, 1}, AxisZ, {1, 0, 0}, 1, 180},
      {"cone: a quarter turn", {1, 0, 1}, AxisZ, {0.5, -Root, 0.5}, 1, 90},
      {"cone: a quarter turn back", {1, 0, 1}, AxisZ, {0.5, Root, 0.5}, 1, -90},
      {"cone: outside", {1, 0, 1}, AxisZ, {0, 1, 0}, 0, 0},
      {"cone: taken as given, so a longer direction is outside", {1, 0, 1}, AxisZ, {2, 0, 0}, 0, 0},
      {"tool on its axis: anything goes", AxisZ, AxisZ, {0, 0, 1}, 1, 0},
      {"tool on its axis: nothing else is reached", AxisZ, AxisZ, {0, 1, 0}, 0, 0},
  };
}

TEST(RotarySolutionOneAxis, HeadAxisTurnsTheTool) {
  for (const OneAxisCase& c : OneAxisCases()) {
    SCOPED_TRACE(c.name);
    const Machine machine = OneAxisHeadMachine(c.dir, c.tool);
    MachineCompute compute(machine);
    RotariesSolution alpha = OddSolution();
    ASSERT_TRUE(
        compute.ComputeToolIjkTcsToMcsAbc(PositionOf({0, 0, 0, 55}), 0, 0, c.ijk, 3, -1, &alpha));
    EXPECT_EQ(alpha.Count, c.count);
    EXPECT_EQ(alpha.FreeRegister, -1) << "a single axis is never free";
    ExpectDegrees(alpha, c.headDeg, 0, 0, 0);
    RotariesSolution beta = OddSolution();
    ASSERT_TRUE(
        compute.ComputeToolIjkTcsToMcsAbc(PositionOf({0, 0, 0, 55}), 0, 0, c.ijk, -1, 3, &beta));
    EXPECT_EQ(beta.Count, c.count);
    EXPECT_EQ(beta.FreeRegister, -1);
    ExpectDegrees(beta, 0, c.headDeg, 0, 0);
  }
}

TEST(RotarySolutionOneAxis, TableAxisTurnsTheOtherWay) {
  for (const OneAxisCase& c : OneAxisCases()) {
    SCOPED_TRACE(c.name);
    const Machine machine = OneAxisTableMachine(c.dir, c.tool);
    MachineCompute compute(machine);
    RotariesSolution sol = OddSolution();
    ASSERT_TRUE(
        compute.ComputeToolIjkTcsToMcsAbc(PositionOf({0, 0, 0, 55}), 0, 0, c.ijk, 3, -1, &sol));
    EXPECT_EQ(sol.Count, c.count);
    const double expected = c.headDeg == 180 ? 180 : -c.headDeg;
    ExpectDegrees(sol, expected, 0, 0, 0);
  }
}

// Returns the count for a head axis along X, a tool and a direction that have given cosines to it.
unsigned int CountForCosines(double toolCosine, double ijkCosine) {
  const Vector3D tool(toolCosine, 0, std::sqrt(1 - toolCosine * toolCosine));
  const Vector3D ijk(ijkCosine, 0, std::sqrt(1 - ijkCosine * ijkCosine));
  const Machine machine = OneAxisHeadMachine(AxisX, tool);
  MachineCompute compute(machine);
  RotariesSolution sol;
  EXPECT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(PositionOf({0, 0, 0, 0}), 0, 0, ijk, 3, -1, &sol));
  return sol.Count;
}

TEST(RotarySolutionOneAxis, BothBelowOneHundredthCountAsPerpendicular) {
  const double below = std::nextafter(0.01, 0.0);
  struct Case {
    double tool;
    double ijk;
    unsigned int count;
  };
  const Case cases[] = {
      {below, -below, 1}, {-below, below, 1}, {0.0, below, 1},   {below, 0.0, 1},
      {0.01, -below, 0},  {below, -0.01, 0},  {-0.01, below, 0}, {0.0, 0.01, 0},
      {0.01, 0.0, 0},     {0.01, 0.01, 1},    {0.0, -0.01, 0},   {-0.01, 0.0, 0},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(CountForCosines(c.tool, c.ijk), c.count) << c.tool << " " << c.ijk;
  }
}

TEST(RotarySolutionOneAxis, ConesMustAgreeToOneThousandth) {
  for (const double tool : {0.5, -0.5, 0.02, 0.9}) {
    for (const double side : {0.001, -0.001}) {
      int reached = 0;
      int missed = 0;
      double ijk = tool + side;
      for (int i = 0; i < 6; ++i) {
        ijk = std::nextafter(ijk, -Infinity);
      }
      for (int i = 0; i < 12; ++i) {
        const bool expected = std::abs(tool - ijk) < 0.001;
        EXPECT_EQ(CountForCosines(tool, ijk), expected ? 1U : 0U) << tool << " " << ijk;
        ++(expected ? reached : missed);
        ijk = std::nextafter(ijk, Infinity);
      }
      EXPECT_GT(reached, 0) << tool;
      EXPECT_GT(missed, 0) << tool;
    }
  }
}

TEST(RotarySolutionOneAxis, AngleIsTakenBetweenTheProjections) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int reached = 0;
  for (int round = 0; round < 500; ++round) {
    const Vector3D raw(random.Real(-1, 1), random.Real(-1, 1), random.Real(-1, 1));
    const Machine machine = OneAxisHeadMachine(raw, AxisZ);
    Vector3D dir = EntityOf(machine, 6).GetEntityLink().GetDir();
    Matrix43 turn = RotationFrame(dir, random.Real(-180, 180));
    Vector3D ijk = turn.ApplyToVector3D(AxisZ);
    Vector3D tool = AxisZ;

    const double k = dir * tool;
    const double m = ijk * dir;
    RotariesSolution expected;
    if (std::abs(k) < 0.01 && std::abs(m) < 0.01) {
      expected.Count = 1;
      expected.Alpha1.SetVector3DRef(tool, ijk, dir);
    } else if (std::abs(k - m) < 0.001) {
      expected.Count = 1;
      expected.Alpha1.SetVector3DRef(tool - dir * k, ijk - dir * m, dir);
    }
    MachineCompute compute(machine);
    RotariesSolution sol;
    ASSERT_TRUE(
        compute.ComputeToolIjkTcsToMcsAbc(PositionOf({0, 0, 0, 0}), 0, 0, ijk, 3, -1, &sol));
    ASSERT_TRUE(SameSolution(sol, expected));
    reached += sol.Count == 1 ? 1 : 0;
  }
  EXPECT_EQ(reached, 500);
}

// ijk leans 30 degrees towards x. The head reaches it with c = -90, a = -30 and the opposite.
TEST(RotarySolutionTwoAxes, HeadAxesGiveBothSolutionsInTheirOrder) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  const Vector3D ijk(0.5, 0, std::sqrt(0.75));
  RotariesSolution sol = OddSolution();
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, ijk, 3, 4, &sol));
  EXPECT_EQ(sol.Count, 2U);
  EXPECT_EQ(sol.FreeRegister, -1);
  ExpectDegrees(sol, -90, -30, 90, 30);
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNone);
}

TEST(RotarySolutionTwoAxes, AlphaBelongsToTheFirstRegisterInEitherOrder) {
  for (const Machine& machine : {HeadHeadMachine(), TableTableMachine(), HeadTableMachine()}) {
    MachineCompute compute(machine);
    const Vector3D ijk(0.36, 0.48, 0.8);
    RotariesSolution forward;
    RotariesSolution backward;
    ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, ijk, 3, 4, &forward));
    ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, ijk, 4, 3, &backward));
    ASSERT_EQ(forward.Count, 2U);
    std::swap(backward.Alpha1, backward.Beta1);
    std::swap(backward.Alpha2, backward.Beta2);
    EXPECT_TRUE(SameSolution(forward, backward));
  }
}

TEST(RotarySolutionTwoAxes, ForwardKinematicsReproducesTheDirection) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (const Machine& machine : {HeadHeadMachine(), TableTableMachine(), HeadTableMachine()}) {
    MachineCompute compute(machine);
    for (int round = 0; round < 500; ++round) {
      Vector3D ijk(random.Real(-1, 1), random.Real(-1, 1), random.Real(-1, 1));
      ijk.MakeUnit(0.0);
      RotariesSolution sol;
      ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, ijk, 3, 4, &sol));
      ASSERT_EQ(sol.Count, 2U);
      ASSERT_TRUE(NearVector(
          ToolInTable(compute, PositionOf({0, 0, 0, sol.Alpha1.GetDegre(), sol.Beta1.GetDegre()})),
          ijk, 1e-7));
      ASSERT_TRUE(NearVector(
          ToolInTable(compute, PositionOf({0, 0, 0, sol.Alpha2.GetDegre(), sol.Beta2.GetDegre()})),
          ijk, 1e-7));
    }
  }
}

// A table-side axis turns the workpiece, so its sense is the opposite of a head-side one.
TEST(RotarySolutionTwoAxes, TableAxesGiveTheirOwnSigns) {
  const Machine machine = TableTableMachine();
  MachineCompute compute(machine);
  RotariesSolution sol;
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, Vector3D(0.5, 0, std::sqrt(0.75)), 3,
                                                4, &sol));
  ASSERT_EQ(sol.Count, 2U);
  // One solution has a = 30, c = 90, the other a = -30, c = -90.
  EXPECT_NEAR(std::abs(sol.Alpha1.GetDegre()), 30, 1e-9);
  EXPECT_NEAR(sol.Beta1.GetDegre(), 3 * sol.Alpha1.GetDegre(), 1e-8);
  EXPECT_NEAR(sol.Alpha2.GetDegre(), -sol.Alpha1.GetDegre(), 1e-9);
  EXPECT_NEAR(sol.Beta2.GetDegre(), -sol.Beta1.GetDegre(), 1e-9);
}

TEST(RotarySolutionTwoAxes, DirectionOnTheOuterAxisLeavesThatAxisFree) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  RotariesSolution sol;
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, AxisZ, 3, 4, &sol));
  EXPECT_EQ(sol.Count, 1U);
  EXPECT_EQ(sol.FreeRegister, 3);
  ExpectDegrees(sol, 0, 0, 0, 0);
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, AxisZ, 4, 3, &sol));
  EXPECT_EQ(sol.Count, 1U);
  EXPECT_EQ(sol.FreeRegister, 3) << "swapping alpha and beta leaves the free register";
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, Vector3D(0, 0, -1), 3, 4, &sol));
  EXPECT_EQ(sol.Count, 1U);
  EXPECT_EQ(sol.FreeRegister, 3);
  ExpectDegrees(sol, 0, 180, 0, 180);
}

// Near the pole the plane counts as tangent: the tip is then on the outer axis.
TEST(RotarySolutionTwoAxes, FreeAxisEndsWithTheTangencyBand) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  RotariesSolution sol;
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, Vector3D(4.4e-4, 0, 1), 3, 4, &sol));
  EXPECT_EQ(sol.Count, 1U);
  EXPECT_EQ(sol.FreeRegister, 3);
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, Vector3D(4.6e-4, 0, 1), 3, 4, &sol));
  EXPECT_EQ(sol.Count, 2U);
  EXPECT_EQ(sol.FreeRegister, -1);
}

TEST(RotarySolutionTwoAxes, TangentPlaneGivesOneSolutionTwice) {
  // The tool sweeps a cone of 45 degrees about A's axis; x is its one direction without height.
  Machine machine;
  AddFixed(machine, -1);
  AddTable(machine, 1);
  AddLinear(machine, 1, AxisX, 0);
  AddLinear(machine, 3, AxisY, 1);
  AddLinear(machine, 4, AxisZ, 2);
  AddRotary(machine, 5, NullVector, AxisZ, 3);
  AddRotary(machine, 6, NullVector, Vector3D(1, 0, 1), 4);
  AddHead(machine, 7);
  ASSERT_TRUE(machine.Finish());
  MachineCompute compute(machine);
  RotariesSolution sol = OddSolution();
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, AxisY, 3, 4, &sol));
  EXPECT_EQ(sol.Count, 1U);
  EXPECT_EQ(sol.FreeRegister, -1);
  EXPECT_TRUE(SameBits(sol.Alpha1, sol.Alpha2));
  EXPECT_TRUE(SameBits(sol.Beta1, sol.Beta2));
  EXPECT_NEAR(sol.Alpha1.GetDegre(), 90, 1e-2);
  EXPECT_NEAR(std::abs(sol.Beta1.GetDegre()), 180, 1e-2);

  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, Vector3D(0, 1, -0.01), 3, 4, &sol));
  EXPECT_EQ(sol.Count, 0U) << "below the cone";
  EXPECT_TRUE(IsReset(sol));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNone) << "no solution is no failure";
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, Vector3D(0, 1, 0.01), 3, 4, &sol));
  EXPECT_EQ(sol.Count, 2U) << "inside the cone";
}

TEST(RotarySolutionTwoAxes, LengthOfTheDirectionDoesntMatter) {
  const Machine machine = HeadTableMachine();
  MachineCompute compute(machine);
  RotariesSolution unit;
  RotariesSolution scaled;
  ASSERT_TRUE(
      compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, Vector3D(0.36, 0.48, 0.8), 3, 4, &unit));
  for (const double length : {0.01, 250.0}) {
    ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(
        Zeros(), 0, 0, Vector3D(0.36 * length, 0.48 * length, 0.8 * length), 3, 4, &scaled));
    EXPECT_EQ(scaled.Count, 2U);
    ExpectDegrees(scaled, unit.Alpha1.GetDegre(), unit.Beta1.GetDegre(), unit.Alpha2.GetDegre(),
                  unit.Beta2.GetDegre());
  }
}

// A direction that is too short counts as x, as every short direction does.
TEST(RotarySolutionTwoAxes, ShortDirectionCountsAsX) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  RotariesSolution x;
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, AxisX, 3, 4, &x));
  for (const Vector3D& ijk : {NullVector, Vector3D(0, 0.0009, 0)}) {
    RotariesSolution sol;
    ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, ijk, 3, 4, &sol));
    EXPECT_TRUE(SameSolution(sol, x));
  }
  RotariesSolution y;
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, Vector3D(0, 0.0011, 0), 3, 4, &y));
  EXPECT_FALSE(SameSolution(y, x));
}

// A head whose Z column is too short for its circle to reach any plane: only the tool itself fits.
TEST(RotarySolutionTwoAxes, WithoutIntersectionTheToolItselfIsTheOneSolution) {
  Machine machine = HeadHeadMachine();
  EntityAt(machine, 7).GetEntityLinkMod()->SetEntityLinkPosition(FrameWithW(Vector3D(0, 0, 0.5)));
  MachineCompute compute(machine);
  struct Case {
    Vector3D ijk;
    unsigned int count;
  };
  const Case cases[] = {
      {{0, 0, 0.5}, 1},           {{0.99e-5, 0, 0.5}, 1}, {{0, -0.99e-5, 0.5}, 1},
      {{0, 0, 0.5 + 0.99e-5}, 1}, {{1.01e-5, 0, 0.5}, 0}, {{0, -1.01e-5, 0.5}, 0},
      {{0, 0, 0.5 + 1.01e-5}, 0}, {{0, 0, 1}, 0},         {{0, 0, -0.5}, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.ijk[0] << " " << c.ijk[1] << " " << c.ijk[2]);
    RotariesSolution sol = OddSolution();
    ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, c.ijk, 3, 4, &sol));
    EXPECT_EQ(sol.Count, c.count);
    sol.Count = 0;
    EXPECT_TRUE(IsReset(sol));
  }
}

TEST(RotarySolutionState, ValuesOfTheRequestedAxesDontMatter) {
  const Machine machine = HeadTableMachine();
  MachineCompute compute(machine);
  const Vector3D ijk(0.36, 0.48, 0.8);
  RotariesSolution zero;
  RotariesSolution other;
  const MachinePosition position = PositionOf({1, 2, 3, 47, -11});
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, ijk, 3, 4, &zero));
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(position, 0, 0, ijk, 3, 4, &other));
  EXPECT_TRUE(SameSolution(zero, other));
  EXPECT_EQ(position[Kin::Register(3)], 47) << "the caller's position stays";
}

TEST(RotarySolutionState, OtherAxesStandWhereThePositionPutsThem) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  RotariesSolution sol;
  // With C at 90 the axis A lies along y: turning it by 30 leans the tool towards x.
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(PositionOf({0, 0, 0, 90, 0}), 0, 0,
                                                Vector3D(0.5, 0, std::sqrt(0.75)), -1, 4, &sol));
  EXPECT_EQ(sol.Count, 1U);
  EXPECT_NEAR(sol.Beta1.GetDegre(), 30, 1e-9);
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, Vector3D(0.5, 0, std::sqrt(0.75)),
                                                -1, 4, &sol));
  EXPECT_EQ(sol.Count, 0U);
}

// The working position keeps what a longer one left behind its end.
TEST(RotarySolutionState, ShorterPositionKeepsTheValuesOfALongerOneBehindIt) {
  const Machine machine = HeadHeadMachine();
  const MachinePosition shorter = PositionOf({0, 0, 0, 0});
  const Vector3D leaning(0, -0.5, std::sqrt(0.75));
  RotariesSolution sol;
  {
    MachineCompute compute(machine);
    ASSERT_TRUE(
        compute.ComputeToolIjkTcsToMcsAbc(PositionOf({0, 0, 0, 0, 30}), 0, 0, AxisZ, 3, -1, &sol));
    ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(shorter, 0, 0, leaning, 3, -1, &sol));
    EXPECT_EQ(sol.Count, 1U) << "A still stands at 30 degrees";
    EXPECT_NEAR(sol.Alpha1.GetDegre(), 0, 1e-9);
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNone);
  }
  {
    MachineCompute compute(machine);
    ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(shorter, 0, 0, leaning, 3, -1, &sol));
    EXPECT_EQ(sol.Count, 0U) << "a new calculator has no value for A";
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister)
        << "the frame that failed is used as it stands, and remembered";
  }
}

TEST(RotarySolutionState, ChainFollowsTheRequestedPair) {
  Machine machine;
  AddFixed(machine, -1);
  AddLinear(machine, 1, AxisX, 0);
  AddLinear(machine, 2, AxisY, 1);
  AddLinear(machine, 3, AxisZ, 2);
  AddRotary(machine, 4, NullVector, AxisX, 3);
  AddHead(machine, 5);
  AddRotary(machine, 4, NullVector, AxisY, 3);
  AddHead(machine, 7);
  AddTable(machine, 1);
  AddTable(machine, 1, RotationFrame(AxisX, 90));
  ASSERT_TRUE(machine.Finish());
  MachineCompute compute(machine);
  const MachinePosition position = PositionOf({0, 0, 0, 0});
  RotariesSolution sol;
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(
        compute.ComputeToolIjkTcsToMcsAbc(position, 0, 0, Vector3D(0, -0.6, 0.8), 3, -1, &sol));
    EXPECT_EQ(sol.Count, 1U);
    EXPECT_NEAR(sol.Alpha1.GetDegre(), std::asin(0.6) * 180 / Pi, 1e-9);
    ASSERT_TRUE(
        compute.ComputeToolIjkTcsToMcsAbc(position, 1, 0, Vector3D(0, -0.6, 0.8), 3, -1, &sol));
    EXPECT_EQ(sol.Count, 0U) << "head 1 turns about y";
    ASSERT_TRUE(
        compute.ComputeToolIjkTcsToMcsAbc(position, 1, 0, Vector3D(0.6, 0, 0.8), 3, -1, &sol));
    EXPECT_NEAR(sol.Alpha1.GetDegre(), std::asin(0.6) * 180 / Pi, 1e-9);
    ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(position, 0, 1, AxisY, 3, -1, &sol));
    EXPECT_EQ(sol.Count, 1U);
    EXPECT_NEAR(sol.Alpha1.GetDegre(), 0, 1e-9) << "table 1 lies on its side";
    EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(position, 2, 0, AxisZ, 3, -1, &sol))
        << "a head that doesn't exist empties the chain";
    EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(position, 0, 2, AxisZ, 3, -1, &sol));
  }
}

// The common ancestor counts as the table's side.
TEST(RotarySolutionChain, CommonAncestorTurnsLikeATableAxis) {
  Machine machine;
  AddRotary(machine, -1, NullVector, AxisX, 3);
  AddTable(machine, 1);
  AddLinear(machine, 1, AxisX, 0);
  AddLinear(machine, 3, AxisY, 1);
  AddLinear(machine, 4, AxisZ, 2);
  AddHead(machine, 5);
  ASSERT_TRUE(machine.Finish());
  MachineCompute compute(machine);
  RotariesSolution sol;
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(PositionOf({0, 0, 0, 0}), 0, 0,
                                                Vector3D(0, 0.5, std::sqrt(0.75)), 3, -1, &sol));
  EXPECT_EQ(sol.Count, 1U);
  EXPECT_NEAR(sol.Alpha1.GetDegre(), 30, 1e-9);
}

TEST(RotarySolutionChain, RegisterFoundTwiceMeansTheLaterPlace) {
  const auto build = [](int firstRegister) {
    Machine machine;
    AddFixed(machine, -1);
    AddTable(machine, 1);
    AddLinear(machine, 1, AxisX, 0);
    AddLinear(machine, 3, AxisY, 1);
    AddLinear(machine, 4, AxisZ, 2);
    AddRotary(machine, 5, NullVector, AxisY, firstRegister);
    AddRotary(machine, 6, NullVector, AxisZ, 3);
    AddRotary(machine, 7, NullVector, AxisX, 4);
    AddHead(machine, 8);
    machine.Finish();
    return machine;
  };
  const Machine twice = build(3);
  const Machine once = build(5);
  const Vector3D ijk(0.36, 0.48, 0.8);
  const MachinePosition position = PositionOf({0, 0, 0, 0, 0, 0});
  RotariesSolution sol;
  RotariesSolution expected;
  MachineCompute(once).ComputeToolIjkTcsToMcsAbc(position, 0, 0, ijk, 3, 4, &expected);
  ASSERT_EQ(expected.Count, 2U);
  ASSERT_TRUE(MachineCompute(twice).ComputeToolIjkTcsToMcsAbc(position, 0, 0, ijk, 3, 4, &sol));
  EXPECT_TRUE(SameSolution(sol, expected));
}

TEST(RotarySolutionChain, EndsAtAHeadThatCarriesTheTable) {
  Machine machine;
  AddLinear(machine, -1, AxisX, 0);
  AddLinear(machine, 1, AxisY, 1);
  AddLinear(machine, 2, AxisZ, 2);
  AddHead(machine, 3);
  AddRotary(machine, 4, NullVector, AxisX, 3);
  AddTable(machine, 5);
  ASSERT_TRUE(machine.Finish());
  MachineCompute compute(machine);
  RotariesSolution sol;
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(PositionOf({0, 0, 0, 0}), 0, 0,
                                                Vector3D(0, 0.5, std::sqrt(0.75)), 3, -1, &sol));
  EXPECT_EQ(sol.Count, 1U);
  EXPECT_NEAR(sol.Alpha1.GetDegre(), 30, 1e-9);
  EXPECT_TRUE(NearVector(ToolInTable(compute, PositionOf({0, 0, 0, 30})),
                         Vector3D(0, 0.5, std::sqrt(0.75)), 1e-12));
}

// Links that can't be placed don't stop the solver: it goes on with the frame as it stands.
TEST(RotarySolutionChain, FailingLinkIsRememberedAndTheSolverGoesOn) {
  Machine machine = HeadHeadMachine();
  SetLinkType(EntityAt(machine, 2).GetEntityLinkMod(), Kin::EntityLinkTypeUndef);  // X
  MachineCompute compute(machine);
  RotariesSolution sol;
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, Vector3D(0.5, 0, std::sqrt(0.75)), 3,
                                                4, &sol));
  EXPECT_EQ(sol.Count, 2U);
  ExpectDegrees(sol, -90, -30, 90, 30);
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorLinkType);
}

// The table's own frame carries the request: a table on its side sees other directions.
TEST(RotarySolutionChain, RequestStandsInTheTablesFrame) {
  Machine machine = HeadHeadMachine();
  EntityAt(machine, 1).GetEntityLinkMod()->SetEntityLinkPosition(RotationFrame(AxisX, 90));
  MachineCompute compute(machine);
  RotariesSolution sol;
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, AxisY, 3, 4, &sol));
  EXPECT_EQ(sol.Count, 1U);
  EXPECT_EQ(sol.FreeRegister, 3);
  EXPECT_NEAR(sol.Beta1.GetDegre(), 0, 1e-2);
}

TEST(RotarySolutionHostile, NotANumberEndsWithAnAnswer) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const Vector3D directions[] = {{nan, 0, 1}, {nan, nan, nan}, {Infinity, 0, 0}, {1e308, 1e308, 0}};
  for (const Machine& machine : {HeadHeadMachine(), TableTableMachine(), HeadTableMachine()}) {
    for (const Vector3D& ijk : directions) {
      MachineCompute compute(machine);
      for (const auto& [r0, r1] :
           std::vector<std::pair<int, int>>{{3, 4}, {4, 3}, {3, -1}, {-1, 4}, {-1, -1}}) {
        RotariesSolution sol = OddSolution();
        EXPECT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(Zeros(), 0, 0, ijk, r0, r1, &sol));
        EXPECT_LE(sol.Count, 2U);
      }
    }
  }
}

}  // namespace
}  // namespace Orvo::Testing
