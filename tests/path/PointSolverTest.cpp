#include "path/PathMachines.h"

#include <Orvo/Path/PointSolver.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace Orvo::Path::Testing {
namespace {

constexpr double Pi = 3.141592653589793;

/// A solver of a machine's first program system, with a tool of the length 50.
struct Solving {
  explicit Solving(Kin::Machine& given)
      : machine(given),
        system(*given.GetProgramSystem(0)),
        solver(given, system, Vector3D(0, 0, 50), ZeroOf(given)) {}

  ToolPoint At(const AxisValues& values) const {
    return PointAt(machine, system, Vector3D(0, 0, 50), solver.GetAxes(), values);
  }

  Kin::Machine& machine;
  Kin::ProgramSystem system;
  PointSolver solver;
};

bool IsEquivalent(double a, double b) { return std::abs(std::remainder(a - b, 360.0)) < 1e-6; }

AxisValues AnyValues(TestRandom& random, int rotaryNb) {
  return {random.Real(-500, 500), random.Real(-500, 500), random.Real(-500, 500),
          random.Real(-180, 180), rotaryNb > 1 ? random.Real(-180, 180) : 0.0};
}

// Whatever the axes are, where the tool stands is reached again: exactly, and by the values that
// put it there among the answers.
TEST(PointSolver, ReachesWhereForwardKinematicsPutTheTool) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int told = 0;
  for (int m = 0; m < 300; ++m) {
    SCOPED_TRACE(m);
    Kin::Machine machine;
    MachineWish wish;
    wish.isOblique = m % 3 == 0;
    wish.rotaryNb = m % 10 == 9 ? 1 : 2;
    BuildMachine(random, wish, &machine);
    Solving solving(machine);
    ASSERT_TRUE(solving.solver.IsUsable());
    for (int i = 0; i < 20; ++i) {
      const AxisValues values = AnyValues(random, wish.rotaryNb);
      const ToolPoint point = solving.At(values);
      const Answers answers = solving.solver.Solve(point);
      ASSERT_GE(answers.count, 1);
      bool isFound = false;
      for (int s = 0; s < answers.count; ++s) {
        const Answer& answer = answers.answers[static_cast<std::size_t>(s)];
        const Residual residual = solving.solver.Check(point, answer.values);
        EXPECT_LE(residual.direction, 1e-12);
        EXPECT_LE(residual.tip, 1e-9);
        EXPECT_TRUE(answer.hasLinear);
        isFound = isFound || (IsEquivalent(answer.values[3], values[3]) &&
                              IsEquivalent(answer.values[4], values[4]));
      }
      // Where an axis does not move the direction, any of its values will do.
      if (answers.answers[0].branch != 0 || wish.rotaryNb == 1) {
        ++told;
        EXPECT_TRUE(isFound || answers.answers[0].branch == 0);
      }
    }
  }
  EXPECT_GE(told, 4000);
}

// The two answers lie on different branches.
TEST(PointSolver, BranchesTellTheAnswersApart) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  Kin::Machine machine;
  MachineWish wish;
  wish.isTrunnion = true;
  BuildMachine(random, wish, &machine);
  Solving solving(machine);
  for (int i = 0; i < 200; ++i) {
    AxisValues values = AnyValues(random, 2);
    values[3] = random.Real(1.0, 100.0);
    const Answers answers = solving.solver.Solve(solving.At(values));
    ASSERT_EQ(answers.count, 2);
    EXPECT_EQ(answers.answers[0].branch + answers.answers[1].branch, 0);
    EXPECT_EQ(std::abs(answers.answers[0].branch), 1);
  }
}

// Beside the pole, where the calculator takes the direction for that of the axis, the answers are
// exact all the same.
TEST(PointSolver, IsExactBesideTheSingularDirection) {
  TestRandom random;
  Kin::Machine machine;
  MachineWish wish;
  wish.isTrunnion = true;
  BuildMachine(random, wish, &machine);
  Solving solving(machine);
  EXPECT_EQ(solving.solver.GetFreeAxis(), 4);
  for (const double tilt : {1e-2, 1e-4, 3e-6, 1e-7, 1e-9, 1e-11}) {
    SCOPED_TRACE(tilt);
    ToolPoint point;
    point.point.Set(10, 20, 30);
    point.direction.Set(std::sin(tilt) * 0.6, std::sin(tilt) * 0.8, std::cos(tilt));
    const Answers answers = solving.solver.Solve(point);
    ASSERT_GE(answers.count, 1);
    EXPECT_NEAR(answers.singularAngle, tilt, 1e-15);
    for (int s = 0; s < answers.count; ++s) {
      const Answer& answer = answers.answers[static_cast<std::size_t>(s)];
      EXPECT_LE(solving.solver.Check(point, answer.values).direction, 1e-12);
    }
  }
}

// A held axis keeps its value; the other one takes the direction as near as it can.
TEST(PointSolver, HeldAxisComesAsNearAsTheOtherCan) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  Kin::Machine machine;
  MachineWish wish;
  wish.isTrunnion = true;
  BuildMachine(random, wish, &machine);
  Solving solving(machine);
  for (int i = 0; i < 100; ++i) {
    const double tilt = random.Real(0.0, 0.1);
    const double held = random.Real(-180, 180);
    ToolPoint point;
    point.direction.Set(std::sin(tilt), 0.0, std::cos(tilt));
    Answer answer;
    ASSERT_TRUE(solving.solver.SolveHeld(point, held, &answer));
    EXPECT_EQ(answer.values[4], held);
    const Residual residual = solving.solver.Check(point, answer.values);
    EXPECT_NEAR(residual.direction, answer.directionError, 1e-12);
    EXPECT_LE(residual.direction, tilt + 1e-12);
    EXPECT_LE(residual.tip, 1e-10);
    for (const double step : {-0.01, 0.01}) {
      AxisValues beside = answer.values;
      beside[3] += step;
      EXPECT_GE(solving.solver.Check(point, beside).direction, residual.direction);
    }
  }
}

// What is missing of a direction is the angle to the nearest one that the machine can give.
TEST(PointSolver, NamesTheNearestReachableDirection) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int unreachable = 0;
  for (int m = 0; m < 200; ++m) {
    Kin::Machine machine;
    MachineWish wish;
    wish.rotaryNb = m % 4 == 0 ? 1 : 2;
    BuildMachine(random, wish, &machine);
    Solving solving(machine);
    ToolPoint point;
    point.direction = AnyDirection(random);
    const Answers answers = solving.solver.Solve(point);
    if (answers.count > 0) {
      continue;
    }
    ++unreachable;
    const Diagnosis diagnosis = solving.solver.Explain(point, answers);
    ASSERT_EQ(diagnosis.GetCode(), DiagnosisCode::OrientationUnreachable);
    ToolPoint nearest = point;
    nearest.direction.Set(diagnosis.Get("nearest-i"), diagnosis.Get("nearest-j"),
                          diagnosis.Get("nearest-k"));
    EXPECT_NEAR(nearest.direction.Norm(), 1.0, 1e-12);
    EXPECT_GE(solving.solver.Solve(nearest).count, 1);
    const double missing = diagnosis.Get("missing") / 180.0 * Pi;
    EXPECT_GT(missing, 0.0);
    EXPECT_NEAR(std::acos(std::min(1.0, point.direction * nearest.direction)), missing, 1e-7);
    for (int i = 0; i < 100; ++i) {
      const ToolPoint reached = solving.At(AnyValues(random, wish.rotaryNb));
      EXPECT_GE(std::acos(std::clamp(point.direction * reached.direction, -1.0, 1.0)),
                missing - 1e-7);
    }
  }
  EXPECT_GE(unreachable, 30);
}

TEST(PointSolver, NamesTheRotaryAxisOutOfRange) {
  TestRandom random;
  Kin::Machine machine;
  MachineWish wish;
  wish.isTrunnion = true;
  BuildMachine(random, wish, &machine);
  Solving solving(machine);
  ToolPoint point = solving.At({0, 0, 0, 150.0, 30.0});
  point.line = 7;
  const Answers answers = solving.solver.Solve(point);
  ASSERT_EQ(answers.count, 2);
  const Diagnosis diagnosis = solving.solver.Explain(point, answers);
  ASSERT_EQ(diagnosis.GetCode(), DiagnosisCode::RotaryRange);
  EXPECT_TRUE(diagnosis.IsFailure());
  EXPECT_EQ(diagnosis.line, 7U);
  ASSERT_EQ(diagnosis.elements.size(), 4U);
  for (const ElementFinding& element : diagnosis.elements) {
    const bool isTilt = element.element == "A";
    EXPECT_EQ(element.reg, isTilt ? 3 : 4);
    ASSERT_EQ(element.quantities.size(), 5U);
    const Quantity& excess = element.quantities[4];
    EXPECT_EQ(excess.name, "excess");
    EXPECT_EQ(excess.unit, "deg");
    EXPECT_NEAR(std::abs(excess.value), isTilt ? 30.0 : 0.0, 1e-9);
  }
  EXPECT_NE(diagnosis.MakeText().find("30 above 120"), std::string::npos) << diagnosis.MakeText();
  EXPECT_NE(diagnosis.MakeText().find("30 below -120"), std::string::npos);
}

TEST(PointSolver, NamesTheLinearAxisOutOfRange) {
  TestRandom random;
  Kin::Machine machine;
  MachineWish wish;
  wish.isTrunnion = true;
  BuildMachine(random, wish, &machine);
  Solving solving(machine);
  const ToolPoint point = solving.At({0, -2002.5, 0, 10.0, 30.0});
  const Answers answers = solving.solver.Solve(point);
  // The other solution leaves the range of Y too, on the other side.
  const Diagnosis diagnosis = solving.solver.Explain(point, answers);
  ASSERT_EQ(diagnosis.GetCode(), DiagnosisCode::LinearRange);
  EXPECT_NE(diagnosis.MakeText().find("Y would be -2002.5, 2.5 below -2000"), std::string::npos)
      << diagnosis.MakeText();
}

TEST(PointSolver, SaysNothingOfAGoodPoint) {
  TestRandom random;
  Kin::Machine machine;
  MachineWish wish;
  wish.isTrunnion = true;
  BuildMachine(random, wish, &machine);
  Solving solving(machine);
  const ToolPoint point = solving.At({1, 2, 3, 10.0, 30.0});
  EXPECT_EQ(solving.solver.Explain(point, solving.solver.Solve(point)).GetCode(),
            DiagnosisCode::None);
}

TEST(PointSolver, RefusesWhatIsNoRequest) {
  TestRandom random;
  Kin::Machine machine;
  BuildMachine(random, MachineWish(), &machine);
  Solving solving(machine);
  ToolPoint point;
  point.direction.Set(0, 0, 0);
  EXPECT_EQ(solving.solver.Solve(point).count, 0);
  EXPECT_EQ(solving.solver.Explain(point, Answers()).GetCode(), DiagnosisCode::RequestInvalid);
  point.direction = AxisZ;
  point.point.Set(0, std::numeric_limits<double>::quiet_NaN(), 0);
  EXPECT_EQ(solving.solver.Solve(point).count, 0);
}

// Oblique axes are solved as they stand, and said to be oblique.
TEST(PointSolver, ReportsObliqueLinearAxes) {
  TestRandom random;
  Kin::Machine machine;
  MachineWish wish;
  wish.isOblique = true;
  BuildMachine(random, wish, &machine);
  Solving solving(machine);
  ASSERT_EQ(solving.solver.GetFindings().size(), 1U);
  const Diagnosis& finding = solving.solver.GetFindings()[0];
  EXPECT_EQ(finding.GetCode(), DiagnosisCode::ObliqueLinearAxes);
  EXPECT_FALSE(finding.IsFailure());
  EXPECT_GT(finding.Get("residual-rectangular"), 0.01);
  EXPECT_LT(finding.Get("residual"), 1e-10);
}

// Where one register drives two axes there is no closed form: the calculator's answers come as they
// are, and only those that forward kinematics confirms.
TEST(PointSolver, GivesOnlyTrueAnswersWhereARegisterDrivesTwoAxes) {
  Kin::Machine machine;
  const Kin::EntityId bed = machine.AddEntityStatic(L"bed", -1)->GetEntityId();
  Kin::EntityId end = bed;
  const Vector3D directions[] = {AxisX, AxisY, AxisZ};
  for (int i = 0; i < 3; ++i) {
    end = AddAxis(machine.AddEntityLinear(L"linear", end, directions[i]), i, -2000.0, 2000.0);
  }
  machine.AddEntityHead(L"head", end, Matrix43());
  end = AddAxis(machine.AddEntityRotary(L"A1", bed, NullVector, AxisX), 3, -120.0, 120.0);
  end = AddAxis(machine.AddEntityRotary(L"A2", end, NullVector, AxisX), 3, -120.0, 120.0);
  end = AddAxis(machine.AddEntityRotary(L"C", end, NullVector, AxisZ), 4, -360.0, 360.0);
  machine.AddEntityTable(L"table", end, Matrix43());
  Kin::ProgramSystem system;
  system.SetHeadIndex(0);
  system.SetTableIndex(0);
  system.SetMainLinear(0, 1, 2);
  system.SetMainRotary(3, 4);
  machine.AddProgramSystem(system);
  ASSERT_TRUE(machine.Finish());
  Solving solving(machine);
  EXPECT_TRUE(solving.solver.IsUsable());
  EXPECT_EQ(solving.solver.GetFreeAxis(), -1);
  for (const double tilt : {0.0, 0.1, 0.5}) {
    ToolPoint point;
    point.direction.Set(0.0, std::sin(tilt), std::cos(tilt));
    const Answers answers = solving.solver.Solve(point);
    for (int s = 0; s < answers.count; ++s) {
      const Answer& answer = answers.answers[static_cast<std::size_t>(s)];
      EXPECT_LE(solving.solver.Check(point, answer.values).direction, 1e-6);
    }
    EXPECT_EQ(answers.count == 0, solving.solver.Explain(point, answers).GetCode() ==
                                      DiagnosisCode::OrientationUnreachable);
  }
}

// Which register doesn't fit, and why.
TEST(PointSolver, NamesWhatDoesNotFit) {
  TestRandom random;
  Kin::Machine machine;
  MachineWish wish;
  wish.isTrunnion = true;
  BuildMachine(random, wish, &machine);
  struct Case {
    int head;
    int linear[3];
    int rotary[2];
    const char* detail;
  };
  const Case cases[] = {
      {1, {0, 1, 2}, {3, 4}, "the machine has no head 1"},
      {0, {-1, 1, 2}, {3, 4}, "the program system names no X axis"},
      {0, {0, 1, 9}, {3, 4}, "register 9, named as the Z axis, belongs to no element"},
      {0, {0, 1, 1}, {3, 4}, "register 1 is named as the Y and as the Z axis"},
      {0, {0, 1, 3}, {-1, 4}, "A (register 3), named as the Z axis, is no linear axis"},
      {0, {0, 1, 2}, {3, 2}, "register 2 is named as the Z and as the second rotary axis"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.detail);
    Kin::ProgramSystem system;
    system.SetHeadIndex(c.head);
    system.SetTableIndex(0);
    system.SetMainLinear(c.linear[0], c.linear[1], c.linear[2]);
    system.SetMainRotary(c.rotary[0], c.rotary[1]);
    const PointSolver solver(machine, system, NullVector, ZeroOf(machine));
    EXPECT_FALSE(solver.IsUsable());
    ASSERT_GE(solver.GetFindings().size(), 1U);
    EXPECT_EQ(solver.GetFindings()[0].GetCode(), DiagnosisCode::RegisterUnfit);
    EXPECT_EQ(solver.GetFindings()[0].MakeText(), c.detail);
  }
}

}  // namespace
}  // namespace Orvo::Path::Testing
