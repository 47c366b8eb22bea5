// The worked example of docs/conventions.md: what is said there is computed here.

#include <Orvo/Orvo.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

namespace {

using namespace Orvo;
using namespace Orvo::Kin;

constexpr double Tolerance = 1e-9;

class Conventions : public testing::Test {
 protected:
  enum : int { RegisterX = 0, RegisterY = 1, RegisterZ = 2, RegisterB = 3, RegisterC = 4 };

  Conventions() {
    Entity* const base = machine_.AddEntityStatic(L"Base", EntityId());
    Entity* const z = machine_.AddEntityLinear(L"Z", base->GetEntityId(), AxisZ);
    z->SetRegister(RegisterZ);
    z->SetRange(0, 400);
    Entity* const b = machine_.AddEntityRotary(L"B", z->GetEntityId(), NullVector, AxisY);
    b->SetRegister(RegisterB);
    b->SetRange(-100, 100);
    Matrix43 bFromHead;
    bFromHead.SetTrans(Vector3D(0, 0, -100));
    machine_.AddEntityHead(L"Spindle", b->GetEntityId(), bFromHead);
    Entity* const x = machine_.AddEntityLinear(L"X", base->GetEntityId(), Vector3D(-1, 0, 0));
    x->SetRegister(RegisterX);
    x->SetRange(-300, 300);
    Entity* const y = machine_.AddEntityLinear(L"Y", x->GetEntityId(), Vector3D(0, -1, 0));
    y->SetRegister(RegisterY);
    y->SetRange(-300, 300);
    Entity* const c =
        machine_.AddEntityRotary(L"C", y->GetEntityId(), NullVector, Vector3D(0, 0, -1));
    c->SetRegister(RegisterC);
    c->SetRange(-3600, 3600);
    machine_.AddEntityTable(L"Table", c->GetEntityId(), Matrix43());
    EXPECT_TRUE(machine_.Finish());
    machine_.Alloc(&position_);
  }

  ProgramSystemCompute MakeSolver() {
    return ProgramSystemCompute(machine_, *machine_.GetProgramSystem(ProgramSystemIndex(0)));
  }

  void ExpectVector(const Vector3D& v, double x, double y, double z) {
    EXPECT_NEAR(v[0], x, Tolerance);
    EXPECT_NEAR(v[1], y, Tolerance);
    EXPECT_NEAR(v[2], z, Tolerance);
  }

  Machine machine_;
  MachinePosition position_;
  const Vector3D direction_{0.5, 0.0, std::sqrt(0.75)};
  const Vector3D point_{10, 20, 30};
  const Vector3D offset_{0, 0, 50};
};

TEST_F(Conventions, TheDefaultProgramSystemNamesTheAxesByTheirDirections) {
  const ProgramSystem& programSystem = *machine_.GetProgramSystem(ProgramSystemIndex(0));
  EXPECT_EQ(programSystem.GetProgramSystemName(), L"Default");
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(programSystem.GetMainLinear(i).GetVal(), i);
  }
  EXPECT_EQ(programSystem.GetMainRotary(0).GetVal(), RegisterB);
  EXPECT_EQ(programSystem.GetMainRotary(1).GetVal(), RegisterC);
}

TEST_F(Conventions, TheDirectionHasTwoSolutionsAndTheNearerComesFirst) {
  ProgramSystemCompute solver = MakeSolver();
  RotariesSolution solution;
  ASSERT_TRUE(solver.ComputeToolIjkTcsToMcsAbc(position_, direction_, &solution));
  ASSERT_EQ(solution.Count, 2U);
  EXPECT_EQ(solution.FreeRegister, -1);
  EXPECT_NEAR(solution.Alpha1.GetDegre(), 30, Tolerance);
  EXPECT_NEAR(solution.Beta1.GetDegre(), 0, Tolerance);
  EXPECT_NEAR(solution.Alpha2.GetDegre(), -30, Tolerance);
  EXPECT_NEAR(std::fabs(solution.Beta2.GetDegre()), 180, Tolerance);
}

TEST_F(Conventions, TheFirstSolutionTakesThePointWithTheseLinearValues) {
  ProgramSystemCompute solver = MakeSolver();
  position_[RegisterB] = 30;
  Vector3D xyz;
  ASSERT_TRUE(solver.ComputeToolTcsToMcsXyz(position_, offset_, point_, &xyz));
  ExpectVector(xyz, 85, 20, 30 + 150 * std::sqrt(0.75));
  EXPECT_TRUE(solver.CheckLinearRange(xyz, nullptr));
}

TEST_F(Conventions, TheSecondSolutionTakesItFromTheOtherSide) {
  ProgramSystemCompute solver = MakeSolver();
  position_[RegisterB] = -30;
  position_[RegisterC] = 180;
  Vector3D xyz;
  ASSERT_TRUE(solver.ComputeToolTcsToMcsXyz(position_, offset_, point_, &xyz));
  ExpectVector(xyz, -85, -20, 30 + 150 * std::sqrt(0.75));
}

TEST_F(Conventions, ForwardKinematicsLeadsBackToTheRequest) {
  position_[RegisterX] = 85;
  position_[RegisterY] = 20;
  position_[RegisterZ] = 30 + 150 * std::sqrt(0.75);
  position_[RegisterB] = 30;
  MachineCompute calculator(machine_);
  Matrix43 tableFromToolPoint;
  ASSERT_TRUE(calculator.ComputeMcsToToolTcs(position_, HeadIndex(0), TableIndex(0), offset_,
                                             &tableFromToolPoint));
  ExpectVector(tableFromToolPoint.GetTrans(), 10, 20, 30);
  ExpectVector(tableFromToolPoint.GetW(), 0.5, 0, std::sqrt(0.75));
}

TEST_F(Conventions, APositiveTableAxisMovesTheWorkpieceTheOtherWay) {
  position_[RegisterX] = 85;
  MachineCompute calculator(machine_);
  std::vector<Matrix43> worldFromEntity;
  ASSERT_TRUE(calculator.ComputePositionMachine(position_, &worldFromEntity));
  const EntityId table = machine_.GetKinematic().GetEntityTable(TableIndex(0))->GetEntityId();
  ExpectVector(worldFromEntity[static_cast<std::size_t>(table.GetVal())].GetTrans(), -85, 0, 0);
}

TEST_F(Conventions, ADirectionOnTheTableAxisLeavesThatAxisFree) {
  ProgramSystemCompute solver = MakeSolver();
  position_[RegisterC] = 77;
  RotariesSolution solution;
  ASSERT_TRUE(solver.ComputeToolIjkTcsToMcsAbc(position_, AxisZ, &solution));
  ASSERT_EQ(solution.Count, 1U);
  EXPECT_EQ(solution.FreeRegister, static_cast<int>(RegisterC));
  EXPECT_NEAR(solution.Alpha1.GetDegre(), 0, Tolerance);
  EXPECT_NEAR(solution.Beta1.GetDegre(), 77, Tolerance);
}

}  // namespace
