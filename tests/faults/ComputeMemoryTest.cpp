#include "faults/Describe.h"
#include "faults/MemorySweep.h"
#include "faults/SampleMachine.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/RotariesSolution.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::Machine;
using Kin::MachineCompute;
using Kin::MachinePosition;
using Kin::ProgramSystem;
using Kin::ProgramSystemCompute;
using Kin::RotariesSolution;

const Vector3D Direction(0.36, 0.48, 0.8);
const Vector3D Offset(1, 2, 50);
const Vector3D Point(10, 20, 30);

/// A calculator, and what it computes into.
struct Calculation {
  explicit Calculation(const Machine& machine, const ProgramSystem& programSystem = ProgramSystem())
      : compute(machine), programSystemCompute(machine, programSystem) {}

  MachineCompute compute;
  ProgramSystemCompute programSystemCompute;
  Matrix43 frame;
  std::vector<Matrix43> frames = {Matrix43()};
  RotariesSolution solution;
  Vector3D xyz;
  bool inRange[3] = {};
};

std::string DescribeAll(Calculation& calculation) {
  return Describe(calculation.frame) + Describe(calculation.frames) +
         Describe(calculation.solution) + Describe(calculation.xyz) +
         std::to_string(calculation.compute.GetLastError());
}

/// The finished sample, with axis values.
class ComputeMemory : public testing::Test {
 protected:
  void SetUp() override {
    BuildSample(machine_);
    ASSERT_TRUE(machine_.Finish());
    machine_.Alloc(&position_);
    for (int i = 0; i < static_cast<int>(position_.Size()); ++i) {
      position_[i] = 10.0 * (i + 1);
    }
  }

  template <typename Operate>
  void Refuse(const std::string& name, Leaves leaves, Operate operate) {
    RefuseEachRequest(
        name, leaves,
        [this] { return std::make_unique<Calculation>(machine_, *machine_.GetProgramSystem(0)); },
        operate, [](Calculation& calculation) { return DescribeAll(calculation); });
  }

  bool SolveRotary(Calculation& c, int head) {
    return c.compute.ComputeToolIjkTcsToMcsAbc(position_, head, 0, Direction, 3, 4, &c.solution);
  }

  bool SolveLinear(Calculation& c, int head) {
    return c.compute.ComputeToolTcsToMcsXyz(position_, head, 0, Offset, 0, 1, 2, Point, &c.xyz);
  }

  Machine machine_;
  MachinePosition position_;
};

TEST_F(ComputeMemory, CalculatorsAreMadeOrNot) {
  struct Nothing {};
  const auto makeNothing = [] { return std::make_unique<Nothing>(); };
  const auto describeNothing = [](Nothing&) { return std::string(); };
  const ProgramSystem programSystem = *machine_.GetProgramSystem(0);
  RefuseEachRequest(
      "make a calculator", Leaves::Unchanged, makeNothing,
      [this](Nothing&) {
        const MachineCompute compute(machine_);
        return true;
      },
      describeNothing);
  RefuseEachRequest(
      "make a calculator", Leaves::Unchanged, makeNothing,
      [this, &programSystem](Nothing&) {
        const ProgramSystemCompute compute(machine_, programSystem);
        return true;
      },
      describeNothing);
}

TEST_F(ComputeMemory, FramesOfTheMachineAreAllThereOrAsBefore) {
  Refuse("compute frames", Leaves::Repeatable,
         [this](Calculation& c) { return c.compute.ComputePositionMachine(position_, &c.frames); });
}

// What is kept from call to call is done without where there is no memory for it.
TEST_F(ComputeMemory, ToolFrameIsThereWithOrWithoutMemory) {
  Refuse("compute the tool's frame", Leaves::Repeatable, [this](Calculation& c) {
    return c.compute.ComputeMcsToToolTcs(position_, 0, 0, Offset, &c.frame);
  });
  Calculation c(machine_);
  ASSERT_TRUE(c.compute.ComputeMcsToToolTcs(position_, 0, 0, Offset, &c.frame));
  const std::string expected = DescribeAll(c);
  Calculation poor(machine_);
  for (int i = 0; i < 3; ++i) {
    poor.frame = Matrix43();
    RefuseAllocationsFrom(0);
    EXPECT_TRUE(poor.compute.ComputeMcsToToolTcs(position_, 0, 0, Offset, &poor.frame));
    EXPECT_TRUE(AllowAllocations()) << "it tries again";
    EXPECT_EQ(DescribeAll(poor), expected);
  }
  // As soon as there is memory, it keeps.
  EXPECT_TRUE(poor.compute.ComputeMcsToToolTcs(position_, 0, 0, Offset, &poor.frame));
  EXPECT_EQ(AllocationsOf(
                [&] { poor.compute.ComputeMcsToToolTcs(position_, 0, 0, Offset, &poor.frame); }),
            0U);
  EXPECT_EQ(DescribeAll(poor), expected);
}

// Every operation once with no memory for what it keeps, and then with memory.
TEST_F(ComputeMemory, OperationsKeepAsSoonAsThereIsMemory) {
  const auto computeAll = [this](Calculation& c) {
    return SolveRotary(c, 0) && SolveLinear(c, 0) && SolveRotary(c, 1) && SolveLinear(c, 1) &&
           c.compute.ComputeMcsToToolTcs(position_, 0, 0, Offset, &c.frame) &&
           c.compute.ComputePositionMachine(position_, &c.frames);
  };
  Refuse("compute everything", Leaves::Repeatable, computeAll);
}

TEST_F(ComputeMemory, RotarySolverGoesOn) {
  Refuse("solve rotary axes", Leaves::Repeatable,
         [this](Calculation& c) { return SolveRotary(c, 0); });
  // A longer chain for another head, and back.
  Refuse("solve rotary axes", Leaves::Repeatable, [this](Calculation& c) {
    return SolveRotary(c, 0) && SolveRotary(c, 1) && SolveRotary(c, 0);
  });
}

TEST_F(ComputeMemory, LinearSolverGoesOn) {
  Refuse("solve linear axes", Leaves::Repeatable,
         [this](Calculation& c) { return SolveLinear(c, 0); });
  Refuse("solve linear axes", Leaves::Repeatable, [this](Calculation& c) {
    return SolveLinear(c, 1) && SolveLinear(c, 0) && SolveRotary(c, 0);
  });
}

// A position that has grown makes a calculator ask for more memory in the midst of its work.
TEST_F(ComputeMemory, LongerPositionIsTakenOrNot) {
  MachinePosition longer;
  longer.Alloc(200ULL);
  Refuse("solve rotary axes", Leaves::Repeatable, [this, &longer](Calculation& c) {
    RotariesSolution ignored;
    return SolveRotary(c, 0) &&
           c.compute.ComputeToolIjkTcsToMcsAbc(longer, 0, 0, Direction, 3, 4, &ignored) &&
           SolveRotary(c, 0);
  });
}

TEST_F(ComputeMemory, ProgramSystemSolversGoOn) {
  Refuse("solve by program system", Leaves::Repeatable, [this](Calculation& c) {
    return c.programSystemCompute.ComputeToolIjkTcsToMcsAbc(position_, Direction, &c.solution);
  });
  Refuse("solve by program system", Leaves::Repeatable, [this](Calculation& c) {
    c.programSystemCompute.CheckLinearRange(position_, c.inRange);
    return c.programSystemCompute.ComputeToolTcsToMcsXyz(position_, Offset, Point, &c.xyz);
  });
}

TEST_F(ComputeMemory, SecondCallAsksForNone) {
  Calculation c(machine_, *machine_.GetProgramSystem(0));
  const auto computeAll = [&] {
    EXPECT_TRUE(SolveRotary(c, 0) && SolveLinear(c, 0));
    EXPECT_TRUE(c.compute.ComputePositionMachine(position_, &c.frames));
    EXPECT_TRUE(c.compute.ComputeMcsToToolTcs(position_, 0, 0, Offset, &c.frame));
    EXPECT_TRUE(
        c.programSystemCompute.ComputeToolIjkTcsToMcsAbc(position_, Direction, &c.solution));
    EXPECT_TRUE(c.programSystemCompute.ComputeToolTcsToMcsXyz(position_, Offset, Point, &c.xyz));
  };
  computeAll();
  // With all memory refused they still compute, the calls that never ask for any included.
  const std::string expected = DescribeAll(c);
  RefuseAllocationsFrom(0);
  computeAll();
  const Kin::Entity& head = *machine_.GetKinematic().GetEntityHead(0);
  Matrix43 frame;
  EXPECT_TRUE(c.compute.ComputePositionEntity(head, position_, &frame));
  EXPECT_TRUE(c.compute.ComputeRelativePosition(head.GetEntityLink(), head.GetRegister(), position_,
                                                &frame));
  EXPECT_FALSE(AllowAllocations());
  EXPECT_EQ(DescribeAll(c), expected);
}

}  // namespace
}  // namespace Orvo::Testing
