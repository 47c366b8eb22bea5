#include "RepeatedAddition.h"
#include "SmallMachines.h"
#include "support/NearVector.h"
#include "support/SameBits.h"
#include "support/TestRandom.h"

#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/RotariesSolution.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::Entity;
using Kin::Machine;
using Kin::MachineCompute;
using Kin::MachinePosition;
using Kin::ProgramSystem;
using Kin::ProgramSystemCompute;
using Kin::RotariesCompute;
using Kin::RotariesSolution;

constexpr double Pi = 3.141592653589793;

// ijk leans 30 degrees towards x: the head machine has c = -90, a = -30 and c = 90, a = 30.
const Vector3D Leaning(0.5, 0, std::sqrt(0.75));

ProgramSystem NewProgramSystem(RotariesCompute policy, int r0 = 3, int r1 = 4) {
  ProgramSystem ps;
  ps.SetHeadIndex(0);
  ps.SetTableIndex(0);
  ps.SetMainLinear(0, 1, 2);
  ps.SetMainRotary(r0, r1);
  ps.SetRotariesCompute(policy);
  return ps;
}

// The head machine with ranges for C and A; a range from lower to higher is checked.
Machine RangedMachine(double minC, double maxC, double minA, double maxA) {
  Machine machine = HeadHeadMachine();
  EntityAt(machine, 5).SetRange(minC, maxC);
  EntityAt(machine, 6).SetRange(minA, maxA);
  return machine;
}

Machine WideMachine() { return RangedMachine(-1e6, 1e6, -1e6, 1e6); }

MachinePosition Current(double c, double a) { return PositionOf({0, 0, 0, c, a}); }

void ExpectDegrees(const RotariesSolution& sol, double alpha1, double beta1, double alpha2,
                   double beta2) {
  EXPECT_NEAR(sol.Alpha1.GetDegre(), alpha1, 1e-9);
  EXPECT_NEAR(sol.Beta1.GetDegre(), beta1, 1e-9);
  EXPECT_NEAR(sol.Alpha2.GetDegre(), alpha2, 1e-9);
  EXPECT_NEAR(sol.Beta2.GetDegre(), beta2, 1e-9);
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

RotariesSolution Solve(const Machine& machine, const ProgramSystem& ps,
                       const MachinePosition& position, const Vector3D& ijk) {
  ProgramSystemCompute compute(machine, ps);
  RotariesSolution sol;
  EXPECT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(position, ijk, &sol));
  return sol;
}

RotariesSolution ShortestWay(const Machine& machine, const MachinePosition& position,
                             const Vector3D& ijk) {
  return Solve(machine, NewProgramSystem(Kin::RotariesComputeShortestWay), position, ijk);
}

TEST(ProgramSystemPolicy, DefaultAndAlphaPositiveGiveTheRawSolutions) {
  const Machine machine = RangedMachine(1, 2, 1, 2);
  const MachinePosition position = Current(1000, -1000);
  for (const int policy : {0, 2, 3, -1, 77}) {
    for (const Vector3D& ijk : {Leaning, AxisZ, AxisX, Vector3D(0, 0, -1)}) {
      RotariesSolution raw;
      ASSERT_TRUE(
          MachineCompute(machine).ComputeToolIjkTcsToMcsAbc(position, 0, 0, ijk, 3, 4, &raw));
      ASSERT_GE(raw.Count, 1U);
      EXPECT_TRUE(SameSolution(
          Solve(machine, NewProgramSystem(static_cast<RotariesCompute>(policy)), position, ijk),
          raw));
    }
  }
}

TEST(ProgramSystemPolicy, FailureOfTheSolverIsPassedOn) {
  const Machine machine = WideMachine();
  RotariesSolution sol;
  {
    ProgramSystemCompute compute(machine, NewProgramSystem(Kin::RotariesComputeShortestWay, 3, 3));
    sol.Count = 5;
    EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(Current(0, 0), AxisZ, &sol));
    EXPECT_EQ(sol.Count, 0U);
  }
  {
    ProgramSystemCompute compute(machine, NewProgramSystem(Kin::RotariesComputeShortestWay));
    EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(Current(0, 0), AxisZ, nullptr));
    EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(MachinePosition(), AxisZ, &sol));
    EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(PositionOf({0, 0, 0, 0}), AxisZ, &sol));
  }
  {
    ProgramSystem ps = NewProgramSystem(Kin::RotariesComputeShortestWay);
    ps.SetHeadIndex(1);
    ProgramSystemCompute compute(machine, ps);
    EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(Current(0, 0), AxisZ, &sol));
  }
  {
    ProgramSystem ps = NewProgramSystem(Kin::RotariesComputeShortestWay);
    ps.SetTableIndex(1);
    ProgramSystemCompute compute(machine, ps);
    EXPECT_FALSE(compute.ComputeToolIjkTcsToMcsAbc(Current(0, 0), AxisZ, &sol));
  }
}

TEST(ShortestWay, NearerSolutionComesFirst) {
  const Machine machine = WideMachine();
  const RotariesSolution kept = ShortestWay(machine, Current(-80, -20), Leaning);
  EXPECT_EQ(kept.Count, 2U);
  ExpectDegrees(kept, -90, -30, 90, 30);
  const RotariesSolution swapped = ShortestWay(machine, Current(80, 20), Leaning);
  EXPECT_EQ(swapped.Count, 2U);
  ExpectDegrees(swapped, 90, 30, -90, -30);
}

TEST(ShortestWay, SumOfBothMovesDecides) {
  const Machine machine = WideMachine();
  // C alone would prefer the second solution, A alone the first; C has the longer way.
  ExpectDegrees(ShortestWay(machine, Current(40, -30), Leaning), 90, 30, -90, -30);
  // Here A has the longer way: 100 + 0 against 80 + 60.
  ExpectDegrees(ShortestWay(machine, Current(10, -30), Leaning), -90, -30, 90, 30);
}

TEST(ShortestWay, TieKeepsTheOrder) {
  const RotariesSolution sol = ShortestWay(WideMachine(), Current(0, 0), Leaning);
  EXPECT_EQ(sol.Count, 2U);
  ExpectDegrees(sol, -90, -30, 90, 30);
}

TEST(ShortestWay, AnglesGoToTheEquivalentNearestTheCurrentValue) {
  const Machine machine = WideMachine();
  ExpectDegrees(ShortestWay(machine, Current(-440, 700), Leaning), -450, 690, -270 - 360 + 360,
                750);
  EXPECT_EQ(ShortestWay(machine, Current(-440, 700), Leaning).Count, 2U);
}

TEST(ShortestWay, OnlyTheFirstSolutionInRange) {
  const RotariesSolution sol =
      ShortestWay(RangedMachine(-100, 0, -100, 100), Current(0, 0), Leaning);
  EXPECT_EQ(sol.Count, 1U);
  ExpectDegrees(sol, -90, -30, 0, 0);
}

TEST(ShortestWay, OnlyTheSecondSolutionInRangeComesFirst) {
  const RotariesSolution sol =
      ShortestWay(RangedMachine(0, 100, -100, 100), Current(0, 0), Leaning);
  EXPECT_EQ(sol.Count, 1U);
  ExpectDegrees(sol, 90, 30, 0, 0);
  EXPECT_TRUE(SameBits(sol.Alpha2.GetRadian(), 0.0));
  EXPECT_TRUE(SameBits(sol.Beta2.GetRadian(), 0.0));
}

TEST(ShortestWay, SecondAxisDropsSolutionsToo) {
  const RotariesSolution first =
      ShortestWay(RangedMachine(-100, 100, -100, 0), Current(0, 0), Leaning);
  EXPECT_EQ(first.Count, 1U);
  ExpectDegrees(first, -90, -30, 0, 0);
  const RotariesSolution second =
      ShortestWay(RangedMachine(-100, 100, 0, 100), Current(0, 0), Leaning);
  EXPECT_EQ(second.Count, 1U);
  ExpectDegrees(second, 90, 30, 0, 0);
}

TEST(ShortestWay, NoSolutionInRangeResetsTheRecord) {
  for (const Machine& machine :
       {RangedMachine(-10, 10, -100, 100), RangedMachine(-100, 100, -10, 10),
        RangedMachine(-100, 0, 0, 100)}) {
    const RotariesSolution sol = ShortestWay(machine, Current(0, 0), Leaning);
    EXPECT_TRUE(SameSolution(sol, RotariesSolution()));
  }
}

TEST(ShortestWay, UncheckedRangeDropsNothing) {
  Machine machine = RangedMachine(-10, 10, -10, 10);
  EntityAt(machine, 5).SetCheckRangeAxis(false);
  EntityAt(machine, 6).SetCheckRangeAxis(false);
  const RotariesSolution sol = ShortestWay(machine, Current(380, 350), Leaning);
  EXPECT_EQ(sol.Count, 2U);
  ExpectDegrees(sol, 450, 390, 270, 330);
}

TEST(ShortestWay, FreeAxisKeepsItsCurrentValue) {
  const RotariesSolution sol = ShortestWay(WideMachine(), Current(1234, 50), AxisZ);
  EXPECT_EQ(sol.Count, 1U);
  EXPECT_EQ(sol.FreeRegister, 3);
  EXPECT_NEAR(sol.Alpha1.GetDegre(), 1234, 1e-9);
  EXPECT_NEAR(sol.Beta1.GetDegre(), 0, 1e-9);
  EXPECT_TRUE(SameBits(sol.Alpha2.GetRadian(), 0.0)) << "the second pair stays as it was";
}

TEST(ShortestWay, FreeAxisMayBeTheSecondRegister) {
  const RotariesSolution sol =
      Solve(WideMachine(), NewProgramSystem(Kin::RotariesComputeShortestWay, 4, 3),
            Current(1234, 50), AxisZ);
  EXPECT_EQ(sol.Count, 1U);
  EXPECT_EQ(sol.FreeRegister, 3);
  EXPECT_NEAR(sol.Alpha1.GetDegre(), 0, 1e-9);
  EXPECT_NEAR(sol.Beta1.GetDegre(), 1234, 1e-9);
}

TEST(ShortestWay, FreeAxisOutsideItsRangeIsMovedByTurnsOrDropped) {
  const RotariesSolution moved =
      ShortestWay(RangedMachine(-200, 200, -100, 100), Current(370, 0), AxisZ);
  EXPECT_EQ(moved.Count, 1U);
  EXPECT_EQ(moved.FreeRegister, 3);
  EXPECT_NEAR(moved.Alpha1.GetDegre(), 10, 1e-9);
  const RotariesSolution dropped =
      ShortestWay(RangedMachine(-100, 100, -100, 100), Current(150, 0), AxisZ);
  EXPECT_TRUE(SameSolution(dropped, RotariesSolution())) << "the free register is reset too";
}

TEST(ShortestWay, SingleSolutionOutsideItsRangeIsDropped) {
  const RotariesSolution sol = ShortestWay(RangedMachine(-100, 100, 10, 20), Current(0, 0), AxisZ);
  EXPECT_TRUE(SameSolution(sol, RotariesSolution()));
}

TEST(ShortestWay, UnreachableDirectionIsATrueResultWithoutSolution) {
  Machine machine = WideMachine();
  EntityAt(machine, 6).GetEntityLinkMod()->SetEntityLinkRotary(NullVector, Vector3D(1, 0, 10));
  EXPECT_TRUE(SameSolution(ShortestWay(machine, Current(5, 5), AxisX), RotariesSolution()));
}

TEST(ShortestWay, LimitsAreInclusive) {
  const Machine machine = WideMachine();
  const RotariesSolution raw =
      Solve(machine, NewProgramSystem(Kin::RotariesComputeDefault), Current(0, 0), Leaning);
  // The limit in degrees that is exactly the angle of the second solution.
  const double maxDeg = 30.0;
  const double maxRad = maxDeg / 180.0 * Pi;
  const RotariesSolution sol =
      ShortestWay(RangedMachine(-100, 100, 0, maxDeg), Current(0, 0), Leaning);
  EXPECT_EQ(sol.Count, 1U);
  EXPECT_NEAR(raw.Beta2.GetRadian(), maxRad, 1e-12);
  EXPECT_LE(sol.Beta1.GetRadian(), maxRad);
}

// Just outside the range an angle is set to the limit, farther out the solution is dropped.
TEST(ShortestWay, AngleSlightlyOutsideIsSetToTheLimit) {
  const double inside = 0.00009 * 180 / Pi;
  const double outside = 0.00011 * 180 / Pi;
  {
    const double maxDeg = 30 - inside;
    const RotariesSolution sol =
        ShortestWay(RangedMachine(-100, 100, 0, maxDeg), Current(0, 0), Leaning);
    EXPECT_EQ(sol.Count, 1U);
    EXPECT_TRUE(SameBits(sol.Beta1.GetRadian(), maxDeg / 180.0 * Pi));
  }
  {
    const RotariesSolution sol =
        ShortestWay(RangedMachine(-100, 100, 0, 30 - outside), Current(0, 0), Leaning);
    EXPECT_EQ(sol.Count, 0U);
  }
  {
    const double minDeg = 30 + inside;
    const RotariesSolution sol =
        ShortestWay(RangedMachine(-100, 100, minDeg, 100), Current(0, 0), Leaning);
    EXPECT_EQ(sol.Count, 1U);
    EXPECT_TRUE(SameBits(sol.Beta1.GetRadian(), minDeg / 180.0 * Pi));
  }
  {
    // A turn up leaves the range above, and the turn back ends within 0.01 of the minimum.
    const double minDeg = 30 + 0.0099 * 180 / Pi;
    const RotariesSolution sol =
        ShortestWay(RangedMachine(-100, 100, minDeg, 100), Current(0, 0), Leaning);
    EXPECT_EQ(sol.Count, 1U);
    EXPECT_TRUE(SameBits(sol.Beta1.GetRadian(), minDeg / 180.0 * Pi));
  }
  {
    const double minDeg = 30 + 0.0101 * 180 / Pi;
    const RotariesSolution sol =
        ShortestWay(RangedMachine(-100, 100, minDeg, 100), Current(0, 0), Leaning);
    EXPECT_EQ(sol.Count, 0U);
  }
}

TEST(ShortestWay, SingleAxisIsUnwrappedAlone) {
  Machine machine = OneAxisHeadMachine(AxisX, AxisZ);
  EntityAt(machine, 5).SetRange(-1000, 1000);
  const Vector3D ijk(0, -0.5, std::sqrt(0.75));
  const MachinePosition position = PositionOf({0, 0, 0, 400});
  const RotariesSolution alpha =
      Solve(machine, NewProgramSystem(Kin::RotariesComputeShortestWay, 3, -1), position, ijk);
  EXPECT_EQ(alpha.Count, 1U);
  ExpectDegrees(alpha, 390, 0, 0, 0);
  const RotariesSolution beta =
      Solve(machine, NewProgramSystem(Kin::RotariesComputeShortestWay, -1, 3), position, ijk);
  EXPECT_EQ(beta.Count, 1U);
  ExpectDegrees(beta, 0, 390, 0, 0);
  EntityAt(machine, 5).SetRange(-10, 10);
  EXPECT_TRUE(SameSolution(
      Solve(machine, NewProgramSystem(Kin::RotariesComputeShortestWay, 3, -1), position, ijk),
      RotariesSolution()));
}

TEST(ShortestWay, WithoutRotaryAxesNothingIsUnwrapped) {
  const RotariesSolution sol =
      Solve(WideMachine(), NewProgramSystem(Kin::RotariesComputeShortestWay, -1, -1), Current(0, 0),
            AxisZ);
  EXPECT_EQ(sol.Count, 1U);
  ExpectDegrees(sol, 0, 0, 0, 0);
}

// The chain reads the registers of the elements, the lookup those of the last finish.
TEST(ShortestWay, RegisterThatNoElementIsFoundByIsUnwrappedWithoutRange) {
  Machine machine = RangedMachine(-10, 10, -10, 10);
  EntityAt(machine, 5).SetRegister(6);
  EntityAt(machine, 6).SetRegister(7);
  ASSERT_EQ(machine.GetKinematic().GetEntity(Kin::Register(6)), nullptr);
  const RotariesSolution sol =
      Solve(machine, NewProgramSystem(Kin::RotariesComputeShortestWay, 6, 7),
            PositionOf({0, 0, 0, 0, 0, 0, 380, 350}), Leaning);
  EXPECT_EQ(sol.Count, 2U);
  ExpectDegrees(sol, 450, 390, 270, 330);
}

// The choice step by step, as it is defined.
RotariesSolution ChooseStepByStep(RotariesSolution sol, const Machine& machine,
                                  const MachinePosition& position, int r0, int r1) {
  bool ok1 = true;
  bool ok2 = true;
  if (sol.FreeRegister >= 0) {
    const double current = position[Kin::Register(sol.FreeRegister)] / 180.0 * Pi;
    if (sol.FreeRegister == r0) {
      sol.Alpha1.SetRadian(current);
    } else if (sol.FreeRegister == r1) {
      sol.Beta1.SetRadian(current);
    }
  }
  const auto choose = [&](int reg, Angle* first, Angle* second) {
    if (sol.Count < 1 || reg < 0) {
      return;
    }
    const Entity& e = *machine.GetKinematic().GetEntity(Kin::Register(reg));
    const double current = position[Kin::Register(reg)] / 180.0 * Pi;
    const double min = e.GetRangeMin() / 180.0 * Pi;
    const double max = e.GetRangeMax() / 180.0 * Pi;
    const auto one = [&](Angle* angle, bool* ok) {
      const double r = angle->GetRadian();
      if (e.GetCheckRangeAxis()) {
        angle->SetRadian(ByRepeatedAddition(r, current, min, max));
        if (angle->GetRadian() < min || angle->GetRadian() > max) {
          *ok = false;
        }
      } else {
        angle->SetRadian(ByRepeatedAddition(r, current));
      }
    };
    one(first, &ok1);
    if (sol.Count == 2) {
      one(second, &ok2);
    }
  };
  choose(r0, &sol.Alpha1, &sol.Alpha2);
  choose(r1, &sol.Beta1, &sol.Beta2);
  const unsigned int before = sol.Count;
  if (before == 2) {
    if (ok1 && !ok2) {
      sol.Count = 1;
      sol.Alpha2 = sol.Beta2 = Angle();
    } else if (!ok1 && ok2) {
      sol.Count = 1;
      sol.Alpha1 = sol.Alpha2;
      sol.Beta1 = sol.Beta2;
      sol.Alpha2 = sol.Beta2 = Angle();
    } else if (!ok1) {
      sol = RotariesSolution();
    }
  }
  if (before == 1 && !ok1) {
    sol = RotariesSolution();
  }
  if (sol.Count == 2) {
    double cost1 = 0;
    double cost2 = 0;
    if (r0 >= 0) {
      cost1 += std::fabs(sol.Alpha1.GetDegre() - position[Kin::Register(r0)]);
      cost2 += std::fabs(sol.Alpha2.GetDegre() - position[Kin::Register(r0)]);
    }
    if (r1 >= 0) {
      cost1 += std::fabs(sol.Beta1.GetDegre() - position[Kin::Register(r1)]);
      cost2 += std::fabs(sol.Beta2.GetDegre() - position[Kin::Register(r1)]);
    }
    if (cost1 > cost2) {
      std::swap(sol.Alpha1, sol.Alpha2);
      std::swap(sol.Beta1, sol.Beta2);
    }
  }
  return sol;
}

TEST(ShortestWay, IsTheChoiceStepByStepBitForBit) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int counts[3] = {0, 0, 0};
  for (Machine machine : {HeadHeadMachine(), TableTableMachine(), HeadTableMachine()}) {
    for (int round = 0; round < 2000; ++round) {
      for (const int reg : {3, 4}) {
        const int id = machine.GetKinematic().GetEntity(Kin::Register(reg))->GetEntityId();
        Entity& axis = EntityAt(machine, id - 1);
        const double low = random.Real(-400, 400);
        axis.SetRange(low, low + random.Real(-10, 700));
        axis.SetCheckRangeAxis(random.Chance(0.8));
      }
      const MachinePosition position =
          PositionOf({1, 2, 3, random.Real(-800, 800), random.Real(-800, 800)});
      Vector3D ijk(random.Real(-1, 1), random.Real(-1, 1), random.Real(-1, 1));
      if (random.Chance(0.1)) {
        ijk = Vector3D(0, 0, random.Chance(0.5) ? 1 : -1);
      }
      const bool swapped = random.Chance(0.5);
      const int r0 = swapped ? 4 : 3;
      const int r1 = swapped ? 3 : 4;
      RotariesSolution raw;
      ASSERT_TRUE(
          MachineCompute(machine).ComputeToolIjkTcsToMcsAbc(position, 0, 0, ijk, r0, r1, &raw));
      const RotariesSolution expected = ChooseStepByStep(raw, machine, position, r0, r1);
      const RotariesSolution sol =
          Solve(machine, NewProgramSystem(Kin::RotariesComputeShortestWay, r0, r1), position, ijk);
      ASSERT_TRUE(SameSolution(sol, expected)) << "round " << round;
      ++counts[sol.Count];
    }
  }
  EXPECT_GT(counts[0], 100);
  EXPECT_GT(counts[1], 100);
  EXPECT_GT(counts[2], 100);
}

// Far current values and far limits must end in an answer.
TEST(ShortestWay, HugeNumbersEndInAnAnswer) {
  const double huge[] = {1e9,
                         1e16,
                         1e20,
                         1e25,
                         1e27,
                         3e28,
                         1e29,
                         1e30,
                         1e31,
                         1e33,
                         1e40,
                         1e300,
                         std::numeric_limits<double>::infinity(),
                         std::numeric_limits<double>::quiet_NaN()};
  for (const double value : huge) {
    for (const double side : {1.0, -1.0, 0.7, 0.3}) {
      SCOPED_TRACE(testing::Message() << value * side);
      const RotariesSolution far =
          ShortestWay(RangedMachine(-100, 100, -100, 100), Current(value * side, 0), Leaning);
      EXPECT_LE(far.Count, 2U);
      const RotariesSolution limits =
          ShortestWay(RangedMachine(value * side, value * side, -100, 100), Current(0, 0), Leaning);
      EXPECT_LE(limits.Count, 2U);
      const RotariesSolution inverted = ShortestWay(
          RangedMachine(value * side, -value * side, -100, 100), Current(0, 0), Leaning);
      EXPECT_LE(inverted.Count, 2U);
    }
  }
}

TEST(ProgramSystemLinear, ForwardsToTheLinearSolution) {
  const Machine machine = HeadHeadMachine();
  ProgramSystem ps = NewProgramSystem(Kin::RotariesComputeShortestWay);
  ps.SetMainLinear(2, 0, 1);
  ProgramSystemCompute compute(machine, ps);
  const MachinePosition position = PositionOf({7, 8, 9, 30, 40});
  const Vector3D offset(1, 2, 50);
  const Vector3D point(10, 20, 30);
  Vector3D xyz;
  ASSERT_TRUE(compute.ComputeToolTcsToMcsXyz(position, offset, point, &xyz));
  Vector3D expected;
  ASSERT_TRUE(MachineCompute(machine).ComputeToolTcsToMcsXyz(position, 0, 0, offset, 2, 0, 1, point,
                                                             &expected));
  EXPECT_TRUE(SameBits(xyz, expected));
  EXPECT_FALSE(compute.ComputeToolTcsToMcsXyz(position, offset, point, nullptr));
  EXPECT_FALSE(compute.ComputeToolTcsToMcsXyz(MachinePosition(), offset, point, &xyz));
  EXPECT_TRUE(SameBits(xyz, expected)) << "a failure leaves the output";
}

TEST(ProgramSystemLinear, TakesHeadAndTableOfTheProgramSystem) {
  Machine machine;
  AddTable(machine, -1);
  AddTable(machine, 1, TranslationFrame(100, 0, 0));
  AddLinear(machine, 1, AxisX, 0);
  AddLinear(machine, 3, AxisY, 1);
  AddLinear(machine, 4, AxisZ, 2);
  AddHead(machine, 5);
  AddHead(machine, 5, TranslationFrame(0, 10, 0));
  ASSERT_TRUE(machine.Finish());
  ProgramSystem ps = NewProgramSystem(Kin::RotariesComputeDefault, -1, -1);
  ps.SetHeadIndex(1);
  ps.SetTableIndex(1);
  ProgramSystemCompute compute(machine, ps);
  Vector3D xyz;
  ASSERT_TRUE(compute.ComputeToolTcsToMcsXyz(PositionOf({0, 0, 0}), NullVector, NullVector, &xyz));
  EXPECT_TRUE(NearVector(xyz, Vector3D(100, -10, 0), 1e-12));
}

// Ranges of the three linear axes: [-1, 1], [-10, 10] and [-100, 100].
Machine LinearRangeMachine() {
  Machine machine = HeadHeadMachine();
  EntityAt(machine, 2).SetRange(-1, 1);
  EntityAt(machine, 3).SetRange(-10, 10);
  EntityAt(machine, 4).SetRange(-100, 100);
  return machine;
}

struct RangeCase {
  Vector3D xyz;
  bool inRange[3];
};

std::vector<RangeCase> RangeCases() {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  return {
      {{0, 0, 0}, {true, true, true}},
      {{1, 10, 100}, {true, true, true}},
      {{-1, -10, -100}, {true, true, true}},
      {{std::nextafter(1, 2), 10, 100}, {false, true, true}},
      {{std::nextafter(-1, -2), 0, 0}, {false, true, true}},
      {{0, std::nextafter(10, 20), 0}, {true, false, true}},
      {{0, 0, std::nextafter(-100, -200)}, {true, true, false}},
      {{2, 0, 200}, {false, true, false}},
      {{-2, -20, -200}, {false, false, false}},
      {{nan, nan, nan}, {true, true, true}},
  };
}

TEST(CheckLinearRange, ExaminesEveryAxisWithInclusiveLimits) {
  const Machine machine = LinearRangeMachine();
  ProgramSystemCompute compute(machine, NewProgramSystem(Kin::RotariesComputeDefault));
  for (const RangeCase& c : RangeCases()) {
    SCOPED_TRACE(testing::Message() << c.xyz[0] << " " << c.xyz[1] << " " << c.xyz[2]);
    const bool all = c.inRange[0] && c.inRange[1] && c.inRange[2];
    const MachinePosition position = PositionOf({c.xyz[0], c.xyz[1], c.xyz[2], 0, 0});
    for (const bool before : {true, false}) {
      bool flags[4] = {before, before, before, before};
      EXPECT_EQ(compute.CheckLinearRange(c.xyz, flags), all);
      EXPECT_EQ(flags[0], c.inRange[0]);
      EXPECT_EQ(flags[1], c.inRange[1]);
      EXPECT_EQ(flags[2], c.inRange[2]);
      EXPECT_EQ(flags[3], before) << "there are three flags";
      bool positionFlags[3] = {before, before, before};
      EXPECT_EQ(compute.CheckLinearRange(position, positionFlags), all);
      EXPECT_EQ(positionFlags[0], c.inRange[0]);
      EXPECT_EQ(positionFlags[1], c.inRange[1]);
      EXPECT_EQ(positionFlags[2], c.inRange[2]);
    }
    EXPECT_EQ(compute.CheckLinearRange(c.xyz, nullptr), all);
    EXPECT_EQ(compute.CheckLinearRange(position, nullptr), all);
  }
}

TEST(CheckLinearRange, FollowsTheRegistersOfTheProgramSystem) {
  const Machine machine = LinearRangeMachine();
  ProgramSystem ps = NewProgramSystem(Kin::RotariesComputeDefault);
  ps.SetMainLinear(2, 0, 1);
  ProgramSystemCompute compute(machine, ps);
  bool flags[3];
  EXPECT_FALSE(compute.CheckLinearRange(Vector3D(50, 5, 5), flags));
  EXPECT_TRUE(flags[0]);
  EXPECT_FALSE(flags[1]);
  EXPECT_TRUE(flags[2]);
  EXPECT_FALSE(compute.CheckLinearRange(PositionOf({5, 5, 50, 0, 0}), flags));
  EXPECT_TRUE(flags[0]);
  EXPECT_FALSE(flags[1]);
  EXPECT_TRUE(flags[2]);
}

TEST(CheckLinearRange, UncheckedAndMissingAxesAreInRange) {
  Machine machine = LinearRangeMachine();
  EntityAt(machine, 2).SetCheckRangeAxis(false);
  ProgramSystem ps = NewProgramSystem(Kin::RotariesComputeDefault);
  ps.SetMainLinear(0, 7, -1);
  ProgramSystemCompute compute(machine, ps);
  bool flags[3] = {false, false, false};
  EXPECT_TRUE(compute.CheckLinearRange(Vector3D(1e9, 1e9, 1e9), flags));
  EXPECT_TRUE(flags[0]);
  EXPECT_TRUE(flags[1]);
  EXPECT_TRUE(flags[2]);
}

TEST(CheckLinearRange, RegisterOutsideThePositionThrowsAfterTheFlag) {
  const Machine machine = LinearRangeMachine();
  ProgramSystem ps = NewProgramSystem(Kin::RotariesComputeDefault);
  for (const int missing : {-1, 5, 99}) {
    ps.SetMainLinear(0, missing, 2);
    ProgramSystemCompute compute(machine, ps);
    bool flags[3] = {false, false, false};
    try {
      compute.CheckLinearRange(PositionOf({0, 0, 0, 0, 0}), flags);
      FAIL() << "no exception";
    } catch (const std::out_of_range& e) {
      EXPECT_STREQ(e.what(), "MachinePosition::operator[] : index out of range");
    }
    EXPECT_TRUE(flags[0]);
    EXPECT_TRUE(flags[1]) << "the flag is set before the value is read";
    EXPECT_FALSE(flags[2]);
    EXPECT_THROW(compute.CheckLinearRange(PositionOf({0, 0, 0, 0, 0}), nullptr), std::out_of_range);
  }
}

TEST(CheckLinearRange, ValueIsReadBeforeTheElementIsLookedFor) {
  const Machine machine = LinearRangeMachine();
  ProgramSystem ps = NewProgramSystem(Kin::RotariesComputeDefault);
  ps.SetMainLinear(9, 1, 2);
  ProgramSystemCompute compute(machine, ps);
  EXPECT_THROW(compute.CheckLinearRange(PositionOf({0, 0, 0}), nullptr), std::out_of_range);
  EXPECT_THROW(compute.CheckLinearRange(MachinePosition(), nullptr), std::out_of_range);
  EXPECT_TRUE(compute.CheckLinearRange(PositionOf({0, 0, 0, 0, 0, 0, 0, 0, 0, 1e9}), nullptr));
}

TEST(ProgramSystemHandles, ProgramSystemIsCopied) {
  const Machine machine = HeadHeadMachine();
  ProgramSystem ps = NewProgramSystem(Kin::RotariesComputeDefault);
  ProgramSystemCompute compute(machine, ps);
  ps.SetMainLinear(-1, -1, -1);
  ps.SetHeadIndex(9);
  Vector3D xyz;
  EXPECT_TRUE(compute.ComputeToolTcsToMcsXyz(Current(0, 0), NullVector, AxisX, &xyz));
}

TEST(ProgramSystemHandles, CopiesShareTheirRecord) {
  const Machine machine = HeadHeadMachine();
  auto first = std::make_unique<ProgramSystemCompute>(
      machine, NewProgramSystem(Kin::RotariesComputeDefault));
  ProgramSystemCompute second(*first);
  ProgramSystem other = NewProgramSystem(Kin::RotariesComputeDefault);
  other.SetHeadIndex(9);
  ProgramSystemCompute third(machine, other);
  Vector3D xyz;
  EXPECT_FALSE(third.ComputeToolTcsToMcsXyz(Current(0, 0), NullVector, AxisX, &xyz));
  third = second;
  third = *&third;
  first.reset();
  EXPECT_TRUE(second.ComputeToolTcsToMcsXyz(Current(0, 0), NullVector, AxisX, &xyz));
  EXPECT_TRUE(third.ComputeToolTcsToMcsXyz(Current(0, 0), NullVector, AxisX, &xyz));
}

TEST(ProgramSystemHandles, DefaultProgramSystemOfTheMachineSolves) {
  Machine machine = WideMachine();
  const ProgramSystem* ps = machine.GetProgramSystem(0);
  ASSERT_NE(ps, nullptr);
  const RotariesSolution sol = Solve(machine, *ps, Current(80, 20), Leaning);
  EXPECT_EQ(sol.Count, 2U);
  ExpectDegrees(sol, 90, 30, -90, -30);
}

}  // namespace
}  // namespace Orvo::Testing
