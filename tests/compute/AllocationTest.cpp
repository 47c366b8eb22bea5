#include "SmallMachines.h"
#include "support/CountedMemory.h"

#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/RotariesSolution.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::Machine;
using Kin::MachineCompute;
using Kin::MachinePosition;
using Kin::ProgramSystem;
using Kin::ProgramSystemCompute;
using Kin::RotariesSolution;

const Vector3D Directions[] = {{0, 0, 1}, {0.36, 0.48, 0.8}, {1, 0, 0}, {0, 0, -1}, {0, 0, 0}};

// The functions are called by name: compilers may leave out a pair of new and delete.
TEST(Allocation, IsCounted) {
  EXPECT_EQ(AllocationsOf([] { ::operator delete(::operator new(sizeof(int))); }), 1U);
  EXPECT_GE(AllocationsOf([] { std::vector<Matrix43> frames(3); }), 1U);
}

TEST(Allocation, RotarySolutionAllocatesWithItsFirstCallOnly) {
  for (const Machine& machine : {HeadHeadMachine(), TableTableMachine(), HeadTableMachine()}) {
    MachineCompute compute(machine);
    const MachinePosition position = PositionOf({1, 2, 3, 40, 50});
    RotariesSolution sol;
    const std::size_t first = AllocationsOf(
        [&] { compute.ComputeToolIjkTcsToMcsAbc(position, 0, 0, AxisZ, 3, 4, &sol); });
    EXPECT_GT(first, 0U) << "the chain and the working position";
    for (const Vector3D& ijk : Directions) {
      const int registers[][2] = {{3, 4}, {4, 3}, {3, -1}, {-1, 4}, {-1, -1},
                                  {3, 3}, {0, 4}, {3, 9},  {9, 4}};
      for (const auto& r : registers) {
        EXPECT_EQ(AllocationsOf([&] {
                    compute.ComputeToolIjkTcsToMcsAbc(position, 0, 0, ijk, r[0], r[1], &sol);
                  }),
                  0U)
            << r[0] << " " << r[1];
      }
    }
  }
}

TEST(Allocation, LinearSolutionAllocatesWithItsFirstCallOnly) {
  for (const Machine& machine : {HeadHeadMachine(), TableTableMachine(), HeadTableMachine()}) {
    MachineCompute compute(machine);
    const MachinePosition position = PositionOf({1, 2, 3, 40, 50});
    const Vector3D offset(1, 2, 50);
    Vector3D xyz;
    compute.ComputeToolTcsToMcsXyz(position, 0, 0, offset, 0, 1, 2, AxisX, &xyz);
    const int registers[][3] = {{0, 1, 2}, {2, 1, 0}, {0, 0, 1}, {0, 1, 3}, {-1, 1, 2}, {0, 1, 9}};
    for (const auto& r : registers) {
      EXPECT_EQ(AllocationsOf([&] {
                  compute.ComputeToolTcsToMcsXyz(position, 0, 0, offset, r[0], r[1], r[2], AxisX,
                                                 &xyz);
                }),
                0U)
          << r[0] << " " << r[1] << " " << r[2];
    }
  }
}

TEST(Allocation, OneSolverPreparesTheOther) {
  const Machine machine = HeadTableMachine();
  MachineCompute compute(machine);
  const MachinePosition position = PositionOf({1, 2, 3, 40, 50});
  RotariesSolution sol;
  Vector3D xyz;
  compute.ComputeToolIjkTcsToMcsAbc(position, 0, 0, AxisZ, 3, 4, &sol);
  EXPECT_EQ(AllocationsOf([&] {
              compute.ComputeToolTcsToMcsXyz(position, 0, 0, NullVector, 0, 1, 2, AxisX, &xyz);
            }),
            0U);
}

TEST(Allocation, FramesOfSingleElementsAllocateNothing) {
  const Machine machine = HeadTableMachine();
  MachineCompute compute(machine);
  const MachinePosition position = PositionOf({1, 2, 3, 40, 50});
  Matrix43 frame;
  EXPECT_EQ(AllocationsOf([&] {
              for (int id = 1; id <= 8; ++id) {
                const Kin::Entity& entity = EntityOf(machine, id);
                compute.ComputePositionEntity(entity, position, &frame);
                compute.ComputeRelativePosition(entity.GetEntityLink(), entity.GetRegister(),
                                                position, &frame);
              }
              compute.ComputeMcsToToolTcs(position, 0, 0, AxisX, &frame);
              compute.ComputeMcsToToolTcs(position, 1, 0, AxisX, &frame);
            }),
            0U);
}

TEST(Allocation, FramesOfTheMachineAllocateWithTheirFirstCallOnly) {
  const Machine machine = HeadTableMachine();
  MachineCompute compute(machine);
  const MachinePosition position = PositionOf({1, 2, 3, 40, 50});
  const MachinePosition other = PositionOf({1, 2, 3, 0, 0});
  std::vector<Matrix43> frames;
  EXPECT_GT(AllocationsOf([&] { compute.ComputePositionMachine(position, &frames); }), 0U);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(AllocationsOf([&] {
                compute.ComputePositionMachine(position, &frames);
                compute.ComputePositionMachine(other, &frames);
              }),
              0U);
  }
}

TEST(Allocation, ProgramSystemAllocatesWithItsFirstCallOnly) {
  for (Machine machine : {HeadHeadMachine(), TableTableMachine(), HeadTableMachine()}) {
    ProgramSystem ps;
    ps.SetHeadIndex(0);
    ps.SetTableIndex(0);
    ps.SetMainLinear(0, 1, 2);
    ps.SetMainRotary(3, 4);
    ProgramSystemCompute compute(machine, ps);
    const MachinePosition position = PositionOf({1, 2, 3, 40, 50});
    RotariesSolution sol;
    Vector3D xyz;
    bool flags[3];
    compute.ComputeToolIjkTcsToMcsAbc(position, AxisZ, &sol);
    EXPECT_EQ(AllocationsOf([&] {
                for (const Vector3D& ijk : Directions) {
                  compute.ComputeToolIjkTcsToMcsAbc(position, ijk, &sol);
                  compute.ComputeToolTcsToMcsXyz(position, NullVector, ijk, &xyz);
                  compute.CheckLinearRange(xyz, flags);
                  compute.CheckLinearRange(position, flags);
                }
              }),
              0U);
  }
}

}  // namespace
}  // namespace Orvo::Testing
