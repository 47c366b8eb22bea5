// Calls every exported member of the computation from outside the library, on a machine whose
// solutions are known in closed form.

#include "support/NearVector.h"
#include "support/SameBits.h"

#include <Orvo/Orvo.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace Orvo::Testing {
namespace {

using namespace Orvo::Kin;

constexpr int RegisterX = 0;
constexpr int RegisterY = 1;
constexpr int RegisterZ = 2;
constexpr int RegisterA = 3;
constexpr int RegisterC = 4;

// The linear axes carry the head; the table turns about Z on a cradle that turns about X. Both
// rotary axes pass through the origin.
class InterfaceCompute : public testing::Test {
 protected:
  void SetUp() override {
    const EntityId bed = machine_.AddEntityStatic(L"bed", -1)->GetEntityId();
    const EntityId x = Axis(machine_.AddEntityLinear(L"X", bed, AxisX), RegisterX, 500.0);
    const EntityId y = Axis(machine_.AddEntityLinear(L"Y", x, AxisY), RegisterY, 400.0);
    const EntityId z = Axis(machine_.AddEntityLinear(L"Z", y, AxisZ), RegisterZ, 300.0);
    machine_.AddEntityHead(L"head", z, Matrix43());
    const EntityId a =
        Axis(machine_.AddEntityRotary(L"A", bed, NullVector, AxisX), RegisterA, 120.0);
    const EntityId c = Axis(machine_.AddEntityRotary(L"C", a, NullVector, AxisZ), RegisterC, 360.0);
    machine_.AddEntityTable(L"table", c, Matrix43());
    ASSERT_TRUE(machine_.Finish());
    machine_.Alloc(&position_);
  }

  static EntityId Axis(Entity* entity, int reg, double limit) {
    entity->SetRegister(reg);
    entity->SetRange(-limit, limit);
    return entity->GetEntityId();
  }

  Machine machine_;
  MachinePosition position_;
  const Vector3D dirInTable_{0.0, 0.5, std::sqrt(3.0) / 2};
};

TEST_F(InterfaceCompute, PlacesOneLink) {
  MachineCompute compute(machine_);
  EXPECT_EQ(compute.GetLastError(), ComputeErrorNone);
  position_[RegisterX] = 7.0;
  Matrix43 frame;
  const Entity* x = machine_.GetKinematic().GetEntity(Register(RegisterX));
  EXPECT_TRUE(compute.ComputeRelativePosition(x->GetEntityLink(), RegisterX, position_, &frame));
  EXPECT_TRUE(SameBits(frame.GetTrans(), Vector3D(7.0, 0.0, 0.0)));
  EXPECT_FALSE(compute.ComputeRelativePosition(x->GetEntityLink(), 5, position_, &frame));
  EXPECT_EQ(compute.GetLastError(), ComputeErrorRegister);
}

TEST_F(InterfaceCompute, PlacesElements) {
  MachineCompute compute(machine_);
  position_[RegisterX] = 1.0;
  position_[RegisterY] = 2.0;
  position_[RegisterZ] = 3.0;
  const Entity* head = machine_.GetKinematic().GetEntityHead(0);
  Matrix43 worldFromHead;
  EXPECT_TRUE(compute.ComputePositionEntity(*head, position_, &worldFromHead));
  EXPECT_TRUE(SameBits(worldFromHead.GetTrans(), Vector3D(1.0, 2.0, 3.0)));
  std::vector<Matrix43> frames;
  EXPECT_TRUE(compute.ComputePositionMachine(position_, &frames));
  ASSERT_EQ(frames.size(), 9U);
  const auto slot = static_cast<std::size_t>(head->GetEntityId().GetVal());
  EXPECT_TRUE(SameBits(frames[slot], worldFromHead));
}

TEST_F(InterfaceCompute, SeesTheHeadFromTheTable) {
  MachineCompute compute(machine_);
  position_[RegisterC] = 90.0;
  Matrix43 tableFromTool;
  EXPECT_TRUE(
      compute.ComputeMcsToToolTcs(position_, 0, 0, Vector3D(0.0, 0.0, 50.0), &tableFromTool));
  EXPECT_TRUE(NearVector(tableFromTool.GetTrans(), Vector3D(0.0, 0.0, -50.0), 1e-12));
  EXPECT_TRUE(NearVector(tableFromTool.GetU(), Vector3D(0.0, -1.0, 0.0), 1e-12));
}

TEST_F(InterfaceCompute, FindsBothWaysToOrientTheTool) {
  MachineCompute compute(machine_);
  RotariesSolution solution;
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(position_, 0, 0, dirInTable_, RegisterA, RegisterC,
                                                &solution));
  EXPECT_EQ(solution.Count, 2U);
  EXPECT_EQ(solution.FreeRegister, -1);
  EXPECT_NEAR(std::abs(solution.Alpha1.GetDegre()), 30.0, 1e-9);
  EXPECT_NEAR(solution.Alpha1.GetDegre() + solution.Alpha2.GetDegre(), 0.0, 1e-9);
  EXPECT_NEAR(std::abs(solution.Beta1.GetDegre() - solution.Beta2.GetDegre()), 180.0, 1e-9);
  const Angle alphas[] = {solution.Alpha1, solution.Alpha2};
  const Angle betas[] = {solution.Beta1, solution.Beta2};
  for (int i = 0; i < 2; ++i) {
    position_[RegisterA] = alphas[i].GetDegre();
    position_[RegisterC] = betas[i].GetDegre();
    Matrix43 tableFromTool;
    ASSERT_TRUE(compute.ComputeMcsToToolTcs(position_, 0, 0, NullVector, &tableFromTool));
    EXPECT_TRUE(NearVector(tableFromTool.GetW(), dirInTable_, 1e-12));
  }
}

TEST_F(InterfaceCompute, FindsTheLinearAxes) {
  MachineCompute compute(machine_);
  position_[RegisterA] = 30.0;
  Vector3D xyz;
  EXPECT_TRUE(compute.ComputeToolTcsToMcsXyz(position_, 0, 0, Vector3D(0.0, 0.0, 50.0), RegisterX,
                                             RegisterY, RegisterZ, Vector3D(10.0, 20.0, 30.0),
                                             &xyz));
  const double root = std::sqrt(3.0);
  EXPECT_TRUE(NearVector(xyz, Vector3D(10.0, 10.0 * root - 15.0, 60.0 + 15.0 * root), 1e-12));
}

TEST_F(InterfaceCompute, SharesItsStateWithCopies) {
  MachineCompute compute(machine_);
  MachineCompute copy(compute);
  EXPECT_FALSE(compute.ComputePositionMachine(position_, nullptr));
  EXPECT_EQ(copy.GetLastError(), ComputeErrorNullOutput);
  MachineCompute assigned(machine_);
  EXPECT_EQ(assigned.GetLastError(), ComputeErrorNone);
  assigned = compute;
  EXPECT_EQ(assigned.GetLastError(), ComputeErrorNullOutput);
}

TEST_F(InterfaceCompute, SolvesForAProgramSystem) {
  ProgramSystemCompute compute(machine_, *machine_.GetProgramSystem(0));
  RotariesSolution solution;
  ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(position_, dirInTable_, &solution));
  EXPECT_EQ(solution.Count, 2U);
  EXPECT_NEAR(solution.Alpha1.GetDegre(), 30.0, 1e-9);
  EXPECT_NEAR(solution.Beta1.GetDegre(), 0.0, 1e-9);
  position_[RegisterA] = solution.Alpha1.GetDegre();
  position_[RegisterC] = solution.Beta1.GetDegre();
  Vector3D xyz;
  ProgramSystemCompute copy(compute);
  ASSERT_TRUE(copy.ComputeToolTcsToMcsXyz(position_, NullVector, Vector3D(10.0, 0.0, 0.0), &xyz));
  EXPECT_TRUE(NearVector(xyz, Vector3D(10.0, 0.0, 0.0), 1e-9));
}

TEST_F(InterfaceCompute, ChecksTheLinearRanges) {
  ProgramSystemCompute first(machine_, *machine_.GetProgramSystem(0));
  ProgramSystemCompute compute(machine_, ProgramSystem());
  compute = first;
  bool inRange[3] = {};
  EXPECT_TRUE(compute.CheckLinearRange(Vector3D(500.0, -400.0, 300.0), inRange));
  EXPECT_TRUE(inRange[0] && inRange[1] && inRange[2]);
  EXPECT_FALSE(compute.CheckLinearRange(Vector3D(500.0, -400.5, 300.0), inRange));
  EXPECT_TRUE(inRange[0] && !inRange[1] && inRange[2]);
  position_[RegisterZ] = 301.0;
  EXPECT_FALSE(compute.CheckLinearRange(position_, inRange));
  EXPECT_TRUE(inRange[0] && inRange[1] && !inRange[2]);
  EXPECT_FALSE(compute.CheckLinearRange(position_, nullptr));
}

}  // namespace
}  // namespace Orvo::Testing
