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

// A base 1 with X 2, Y 3, Z 4 (registers 0 to 2) and B 5 about Y (register 3), which carries two
// heads, and C 8 about Z (register 4), which carries two tables.
Machine TwoHeadsTwoTablesMachine() {
  Machine machine;
  AddFixed(machine, -1);
  AddLinear(machine, 1, AxisX, 0);
  AddLinear(machine, 2, AxisY, 1);
  AddLinear(machine, 3, AxisZ, 2);
  AddRotary(machine, 4, NullVector, AxisY, 3);
  AddHead(machine, 5);
  AddHead(machine, 5, TranslationFrame(0, 0, 100));
  AddRotary(machine, 1, NullVector, AxisZ, 4);
  AddTable(machine, 8);
  AddTable(machine, 8, TranslationFrame(10, 0, 0));
  machine.Finish();
  return machine;
}

// Positions of one size, each with something changed: linear axes, rotary ones, axes at 0.
std::vector<MachinePosition> Positions() {
  return {PositionOf({1, 2, 3, 40, 50}), PositionOf({1, 2, 4, 40, 50}),
          PositionOf({1, 2, 4, 41, 50}), PositionOf({1, 2, 4, 41, 0}),
          PositionOf({0, 0, 0, 0, 0}),   PositionOf({-1, -2, -3, 400, -500})};
}

const int RotaryRegisters[][2] = {{3, 4}, {4, 3}, {3, -1}, {-1, 4}, {-1, -1},
                                  {3, 3}, {0, 4}, {3, 9},  {9, 4}};
const int LinearRegisters[][3] = {{0, 1, 2}, {2, 1, 0},  {0, 0, 1},
                                  {0, 1, 3}, {-1, 1, 2}, {0, 1, 9}};

TEST(Allocation, RotarySolutionAllocatesWithTheFirstCallForItsRegistersOnly) {
  for (const Machine& machine : {HeadHeadMachine(), TableTableMachine(), HeadTableMachine()}) {
    MachineCompute compute(machine);
    RotariesSolution sol;
    const std::vector<MachinePosition> positions = Positions();
    const auto solve = [&](const MachinePosition& position, const Vector3D& ijk, const int* r) {
      compute.ComputeToolIjkTcsToMcsAbc(position, 0, 0, ijk, r[0], r[1], &sol);
    };
    for (const auto& r : RotaryRegisters) {
      const std::size_t first = AllocationsOf([&] { solve(positions[0], AxisZ, r); });
      if (&r == &RotaryRegisters[0]) {
        EXPECT_GT(first, 0U) << "what is kept of the machine";
      }
      EXPECT_EQ(AllocationsOf([&] {
                  for (const MachinePosition& position : positions) {
                    for (const Vector3D& ijk : Directions) {
                      solve(position, ijk, r);
                    }
                  }
                }),
                0U)
          << r[0] << " " << r[1];
    }
  }
}

TEST(Allocation, LinearSolutionAllocatesWithTheFirstCallForItsRegistersOnly) {
  for (const Machine& machine : {HeadHeadMachine(), TableTableMachine(), HeadTableMachine()}) {
    MachineCompute compute(machine);
    Vector3D xyz;
    const std::vector<MachinePosition> positions = Positions();
    const auto solve = [&](const MachinePosition& position, const Vector3D& offset,
                           const Vector3D& point, const int* r) {
      compute.ComputeToolTcsToMcsXyz(position, 0, 0, offset, r[0], r[1], r[2], point, &xyz);
    };
    for (const auto& r : LinearRegisters) {
      const std::size_t first =
          AllocationsOf([&] { solve(positions[0], Vector3D(1, 2, 50), AxisX, r); });
      if (&r == &LinearRegisters[0]) {
        EXPECT_GT(first, 0U) << "what is kept of the machine";
      }
      EXPECT_EQ(AllocationsOf([&] {
                  for (const MachinePosition& position : positions) {
                    for (const Vector3D& vector : Directions) {
                      solve(position, vector, AxisX, r);
                      solve(position, NullVector, vector, r);
                    }
                  }
                }),
                0U)
          << r[0] << " " << r[1] << " " << r[2];
    }
  }
}

TEST(Allocation, ToolFrameAllocatesWithTheFirstCallForItsHeadAndTableOnly) {
  const Machine machine = HeadTableMachine();
  MachineCompute compute(machine);
  const std::vector<MachinePosition> positions = Positions();
  Matrix43 frame;
  EXPECT_EQ(AllocationsOf([&] { compute.ComputeMcsToToolTcs(positions[0], 1, 0, AxisX, &frame); }),
            0U)
      << "there is no such head";
  EXPECT_GT(AllocationsOf([&] { compute.ComputeMcsToToolTcs(positions[0], 0, 0, AxisX, &frame); }),
            0U)
      << "what is kept of the machine";
  EXPECT_EQ(AllocationsOf([&] {
              for (const MachinePosition& position : positions) {
                for (const Vector3D& offset : Directions) {
                  compute.ComputeMcsToToolTcs(position, 0, 0, offset, &frame);
                }
              }
            }),
            0U);
}

TEST(Allocation, OperationsThatTakeTurnsAllocateNothingOnceAllWereSeen) {
  const Machine machine = TwoHeadsTwoTablesMachine();
  MachineCompute compute(machine);
  const std::vector<MachinePosition> positions = Positions();
  RotariesSolution sol;
  Vector3D xyz;
  Matrix43 frame;
  std::vector<Matrix43> frames;
  const auto computeAll = [&](const MachinePosition& position) {
    for (int head = 0; head < 2; ++head) {
      for (int table = 0; table < 2; ++table) {
        EXPECT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(position, head, table, AxisX, 3, 4, &sol));
        EXPECT_TRUE(
            compute.ComputeToolTcsToMcsXyz(position, head, table, AxisZ, 0, 1, 2, AxisX, &xyz));
        EXPECT_TRUE(compute.ComputeMcsToToolTcs(position, head, table, AxisY, &frame));
        EXPECT_TRUE(compute.ComputePositionMachine(position, &frames));
      }
    }
  };
  EXPECT_GT(AllocationsOf([&] { computeAll(positions[0]); }), 0U);
  EXPECT_EQ(AllocationsOf([&] {
              for (const MachinePosition& position : positions) {
                computeAll(position);
              }
            }),
            0U);
}

TEST(Allocation, RegistersThatTakeTurnsAllocateNothingOnceAllWereSeen) {
  const Machine machine = HeadTableMachine();
  MachineCompute compute(machine);
  const std::vector<MachinePosition> positions = Positions();
  RotariesSolution sol;
  const auto solveAll = [&](const MachinePosition& position) {
    for (int i = 0; i < 4; ++i) {
      EXPECT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(position, 0, 0, AxisX, RotaryRegisters[i][0],
                                                    RotaryRegisters[i][1], &sol));
    }
  };
  EXPECT_GT(AllocationsOf([&] { solveAll(positions[0]); }), 0U);
  EXPECT_EQ(AllocationsOf([&] {
              for (const MachinePosition& position : positions) {
                solveAll(position);
              }
            }),
            0U);
}

// A link that nothing can be kept of is not looked at again and again.
TEST(Allocation, PlainComputationAllocatesWithItsFirstCallOnly) {
  Machine machine = HeadTableMachine();
  Matrix43 projective;
  static_cast<double*>(projective)[3] = 0.5;
  projective = static_cast<double*>(projective);
  EntityAt(machine, 0).GetEntityLinkMod()->SetEntityLinkPosition(projective);
  MachineCompute compute(machine);
  const std::vector<MachinePosition> positions = Positions();
  RotariesSolution sol;
  Vector3D xyz;
  Matrix43 frame;
  std::vector<Matrix43> frames;
  const auto computeAll = [&](const MachinePosition& position) {
    EXPECT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(position, 0, 0, AxisX, 3, 4, &sol));
    EXPECT_TRUE(compute.ComputeToolTcsToMcsXyz(position, 0, 0, AxisZ, 0, 1, 2, AxisX, &xyz));
    EXPECT_TRUE(compute.ComputeMcsToToolTcs(position, 0, 0, AxisY, &frame));
    EXPECT_TRUE(compute.ComputePositionMachine(position, &frames));
  };
  computeAll(positions[0]);
  EXPECT_EQ(AllocationsOf([&] {
              for (const MachinePosition& position : positions) {
                computeAll(position);
              }
            }),
            0U);
}

TEST(Allocation, ChangedLinkAllocatesOnceMore) {
  Machine machine = HeadTableMachine();
  MachineCompute compute(machine);
  const std::vector<MachinePosition> positions = Positions();
  Matrix43 frame;
  const auto solve = [&](const MachinePosition& position) {
    compute.ComputeMcsToToolTcs(position, 0, 0, AxisY, &frame);
  };
  solve(positions[0]);
  EntityAt(machine, 0).GetEntityLinkMod()->SetEntityLinkPosition(TranslationFrame(1, 2, 3));
  EXPECT_GT(AllocationsOf([&] { solve(positions[0]); }), 0U);
  EXPECT_EQ(AllocationsOf([&] {
              for (const MachinePosition& position : positions) {
                solve(position);
              }
            }),
            0U);
}

// A position that has grown makes the working position grow, once.
TEST(Allocation, LongerPositionAllocatesOnce) {
  const Machine machine = HeadTableMachine();
  MachineCompute compute(machine);
  const MachinePosition position = PositionOf({1, 2, 3, 40, 50});
  MachinePosition longer;
  longer.Alloc(200ULL);
  RotariesSolution sol;
  Vector3D xyz;
  const auto solve = [&](const MachinePosition& at) {
    compute.ComputeToolIjkTcsToMcsAbc(at, 0, 0, AxisX, 3, 4, &sol);
    compute.ComputeToolTcsToMcsXyz(at, 0, 0, AxisZ, 0, 1, 2, AxisX, &xyz);
  };
  solve(position);
  solve(longer);
  EXPECT_EQ(AllocationsOf([&] {
              solve(position);
              solve(longer);
              solve(position);
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
            }),
            0U);
}

TEST(Allocation, FramesOfTheMachineAllocateWithTheirFirstCallOnly) {
  const Machine machine = HeadTableMachine();
  MachineCompute compute(machine);
  const MachinePosition position = PositionOf({1, 2, 3, 40, 50});
  const std::vector<MachinePosition> positions = Positions();
  std::vector<Matrix43> frames;
  EXPECT_GT(AllocationsOf([&] { compute.ComputePositionMachine(position, &frames); }), 0U);
  EXPECT_EQ(AllocationsOf([&] {
              for (const MachinePosition& other : positions) {
                compute.ComputePositionMachine(other, &frames);
              }
            }),
            0U);
}

TEST(Allocation, ProgramSystemAllocatesWithTheFirstCallOfEachSolverOnly) {
  for (Machine machine : {HeadHeadMachine(), TableTableMachine(), HeadTableMachine()}) {
    ProgramSystem ps;
    ps.SetHeadIndex(0);
    ps.SetTableIndex(0);
    ps.SetMainLinear(0, 1, 2);
    ps.SetMainRotary(3, 4);
    ps.SetRotariesCompute(Kin::RotariesComputeShortestWay);
    ProgramSystemCompute compute(machine, ps);
    const MachinePosition position = PositionOf({1, 2, 3, 40, 50});
    RotariesSolution sol;
    Vector3D xyz;
    bool flags[3];
    const std::vector<MachinePosition> positions = Positions();
    compute.ComputeToolIjkTcsToMcsAbc(position, AxisZ, &sol);
    compute.ComputeToolTcsToMcsXyz(position, AxisZ, AxisX, &xyz);
    EXPECT_EQ(AllocationsOf([&] {
                for (const MachinePosition& other : positions) {
                  for (const Vector3D& ijk : Directions) {
                    compute.ComputeToolIjkTcsToMcsAbc(other, ijk, &sol);
                    compute.ComputeToolTcsToMcsXyz(other, NullVector, ijk, &xyz);
                    compute.CheckLinearRange(xyz, flags);
                    compute.CheckLinearRange(other, flags);
                  }
                }
              }),
              0U);
  }
}

}  // namespace
}  // namespace Orvo::Testing
