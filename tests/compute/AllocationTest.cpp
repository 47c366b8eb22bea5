#include "SmallMachines.h"
#include "support/CountedMemory.h"

#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/RotariesSolution.h>

#include <gtest/gtest.h>

#include <cmath>
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

// Makes a call again and again, with its first allocation refused, then its second, and so on until
// none is. Returns how many times it failed.
template <typename Prepare, typename Call>
int RefuseEachAllocationOf(Prepare prepare, Call call) {
  for (int refused = 0;; ++refused) {
    auto subject = prepare();
    bool isWhole = true;
    RefuseAllocation(static_cast<std::size_t>(refused));
    try {
      call(subject, false);
    } catch (const std::bad_alloc&) {
      isWhole = false;
    }
    AllowAllocations();
    if (isWhole) {
      return refused;
    }
    call(subject, true);
  }
}

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

TEST(RefusedMemory, CalculatorStaysUsable) {
  const Machine machine = HeadTableMachine();
  const MachinePosition position = PositionOf({1, 2, 3, 40, 50});
  RotariesSolution expected;
  MachineCompute(machine).ComputeToolIjkTcsToMcsAbc(position, 0, 0, Directions[1], 3, 4, &expected);
  ASSERT_EQ(expected.Count, 2U);
  const auto prepare = [&machine] { return MachineCompute(machine); };
  EXPECT_GE(RefuseEachAllocationOf(prepare,
                                   [&](MachineCompute& compute, bool isAgain) {
                                     RotariesSolution sol;
                                     const bool isSolved = compute.ComputeToolIjkTcsToMcsAbc(
                                         position, 0, 0, Directions[1], 3, 4, &sol);
                                     if (isAgain) {
                                       EXPECT_TRUE(isSolved);
                                       EXPECT_EQ(sol.Alpha1.GetRadian(),
                                                 expected.Alpha1.GetRadian());
                                       EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNone);
                                     }
                                   }),
            2);
  EXPECT_GE(RefuseEachAllocationOf(prepare,
                                   [&](MachineCompute& compute, bool isAgain) {
                                     Vector3D xyz;
                                     const bool isSolved = compute.ComputeToolTcsToMcsXyz(
                                         position, 0, 0, NullVector, 0, 1, 2, AxisX, &xyz);
                                     if (isAgain) {
                                       EXPECT_TRUE(isSolved);
                                     }
                                   }),
            2);
  EXPECT_GE(RefuseEachAllocationOf(prepare,
                                   [&](MachineCompute& compute, bool isAgain) {
                                     std::vector<Matrix43> frames;
                                     compute.ComputePositionMachine(position, &frames);
                                     if (isAgain) {
                                       ASSERT_EQ(frames.size(), 9U);
                                       EXPECT_EQ(frames[4].GetTrans()[2], 3.0);
                                       EXPECT_FALSE(frames[8].IsIdentity());
                                     }
                                   }),
            2);
}

TEST(RefusedMemory, ChainOfAnotherHeadStaysUsable) {
  Machine machine;
  AddFixed(machine, -1);
  AddTable(machine, 1);
  AddRotary(machine, 1, NullVector, AxisX, 0);
  AddHead(machine, 3);
  AddRotary(machine, 1, NullVector, AxisY, 0);
  AddHead(machine, 5);
  machine.Finish();
  const MachinePosition position = PositionOf({0});
  const auto prepare = [&] {
    MachineCompute compute(machine);
    RotariesSolution sol;
    compute.ComputeToolIjkTcsToMcsAbc(position, 0, 0, AxisZ, 0, -1, &sol);
    return compute;
  };
  EXPECT_GE(RefuseEachAllocationOf(
                prepare,
                [&](MachineCompute& compute, bool isAgain) {
                  RotariesSolution sol;
                  // When this runs again after a failure, first the head from before.
                  if (isAgain) {
                    compute.ComputeToolIjkTcsToMcsAbc(position, 0, 0, AxisY, 0, -1, &sol);
                    EXPECT_EQ(sol.Count, 1U);
                  }
                  compute.ComputeToolIjkTcsToMcsAbc(position, 1, 0, AxisX, 0, -1, &sol);
                  if (isAgain) {
                    EXPECT_EQ(sol.Count, 1U);
                  }
                }),
            1);
}

}  // namespace
}  // namespace Orvo::Testing
