#include "machines/ExampleData.h"

#include <Orvo/Kin/HeadIndex.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Kin/TableIndex.h>
#include <Orvo/Matrix43.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::HeadIndex;
using Kin::Register;
using Kin::TableIndex;

constexpr std::size_t RealPointCount = 34114;

/// The program that drove the machine has three decimals: 0.0005 in each of X, Y and Z, and what
/// 0.0005 degrees of A and C do to a point 50 away.
constexpr double RoundingOfProgram = 0.0015;

// The axis values that drove the real machine put the tool tip where the real path has it.
TEST(RealRun, ForwardKinematicsMeetsTheRealToolTips) {
  Kin::Machine machine;
  ASSERT_TRUE(machine.ReadXML(WideName(ExampleMachineFile("trunnion_ac"))));
  const std::vector<std::vector<double>> tips =
      ReadNumbers(ExamplePathFile("curved_layers_model_1"));
  const std::vector<std::vector<double>> registers =
      ReadNumbers(ExamplePathFile("curved_layers_model_1.registers"));
  ASSERT_EQ(tips.size(), RealPointCount);
  ASSERT_EQ(registers.size(), RealPointCount);

  Kin::MachineCompute compute(machine);
  Kin::MachinePosition position;
  machine.Alloc(&position);
  ASSERT_EQ(position.Size(), 5U);
  const Vector3D nozzle(0.0, 0.0, 30.0);
  double largest = 0.0;
  double smallest = 1.0;
  for (std::size_t i = 0; i < RealPointCount; ++i) {
    for (int r = 0; r < 5; ++r) {
      position[Register(r)] = registers[i].at(static_cast<std::size_t>(r));
    }
    Matrix43 tableFromTip;
    ASSERT_TRUE(
        compute.ComputeMcsToToolTcs(position, HeadIndex(0), TableIndex(0), nozzle, &tableFromTip));
    const Vector3D tip(tips[i].at(0), tips[i].at(1), tips[i].at(2));
    const double distance = tableFromTip.GetTrans().Distance(tip);
    ASSERT_LE(distance, RoundingOfProgram) << "row " << i;
    largest = std::max(largest, distance);
    smallest = std::min(smallest, distance);
  }
  // The rounding is really there: a comparison of a thing with itself would pass the bound above.
  EXPECT_GT(largest, 0.0005);
  EXPECT_LT(smallest, 0.0005);
}

// Without the nozzle's length the tips are missed by it: the offset counts.
TEST(RealRun, ToolOffsetIsTheNozzleLength) {
  Kin::Machine machine;
  ASSERT_TRUE(machine.ReadXML(WideName(ExampleMachineFile("trunnion_ac"))));
  const std::vector<double> row =
      ReadNumbers(ExamplePathFile("curved_layers_model_1.registers")).at(0);
  const std::vector<double> tip = ReadNumbers(ExamplePathFile("curved_layers_model_1")).at(0);
  Kin::MachineCompute compute(machine);
  Kin::MachinePosition position;
  machine.Alloc(&position);
  for (int r = 0; r < 5; ++r) {
    position[Register(r)] = row.at(static_cast<std::size_t>(r));
  }
  Matrix43 tableFromHead;
  ASSERT_TRUE(compute.ComputeMcsToToolTcs(position, HeadIndex(0), TableIndex(0),
                                          Vector3D(0.0, 0.0, 0.0), &tableFromHead));
  EXPECT_NEAR(tableFromHead.GetTrans().Distance(Vector3D(tip.at(0), tip.at(1), tip.at(2))), 30.0,
              RoundingOfProgram);
}

}  // namespace
}  // namespace Orvo::Testing
