#include "PrivateAccess.h"
#include "SmallMachines.h"
#include "support/NearVector.h"
#include "support/SameBits.h"
#include "support/TestRandom.h"

#include <Orvo/Kin/MachineCompute.h>

#include <gtest/gtest.h>

#include <limits>
#include <utility>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::Entity;
using Kin::Machine;
using Kin::MachineCompute;
using Kin::MachinePosition;

MachinePosition Zeros() { return PositionOf({0, 0, 0, 0, 0}); }

bool Solve(MachineCompute& compute, const MachinePosition& position, const Vector3D& point,
           Vector3D* xyz) {
  return compute.ComputeToolTcsToMcsXyz(position, 0, 0, NullVector, 0, 1, 2, point, xyz);
}

TEST(LinearSolutionFailure, UnfinishedMachineComesFirst) {
  const Machine machine;
  MachineCompute compute(machine);
  EXPECT_FALSE(compute.ComputeToolTcsToMcsXyz(MachinePosition(), 9, 9, NullVector, -1, -1, -1,
                                              NullVector, nullptr));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNotFinished);
}

TEST(LinearSolutionFailure, NullOutputComesSecond) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  EXPECT_FALSE(compute.ComputeToolTcsToMcsXyz(MachinePosition(), 9, 9, NullVector, -1, -1, -1,
                                              NullVector, nullptr));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNullOutput);
}

TEST(LinearSolutionFailure, UndefinedRegisterComesBeforeAnEmptyPosition) {
  const Machine machine = HeadHeadMachine();
  const int cases[][3] = {{-1, 1, 2}, {0, -1, 2}, {0, 1, -1}, {-2147483647 - 1, 1, 2}};
  for (const auto& c : cases) {
    MachineCompute compute(machine);
    Vector3D xyz(7, 8, 9);
    EXPECT_FALSE(compute.ComputeToolTcsToMcsXyz(MachinePosition(), 9, 9, NullVector, c[0], c[1],
                                                c[2], NullVector, &xyz));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister);
    EXPECT_TRUE(SameBits(xyz, Vector3D(7, 8, 9)));
  }
}

TEST(LinearSolutionFailure, EmptyPositionComesBeforeRegistersOutside) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  Vector3D xyz(7, 8, 9);
  EXPECT_FALSE(compute.ComputeToolTcsToMcsXyz(MachinePosition(), 9, 9, NullVector, 0, 1, 2,
                                              NullVector, &xyz));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorEmptyPosition);
  EXPECT_TRUE(SameBits(xyz, Vector3D(7, 8, 9)));
}

TEST(LinearSolutionFailure, RegistersOutsideComeBeforeHeadAndTable) {
  const Machine machine = HeadHeadMachine();
  const int cases[][3] = {{5, 1, 2}, {0, 5, 2}, {0, 1, 5}, {0, 1, 2147483647}};
  for (const auto& c : cases) {
    MachineCompute compute(machine);
    Vector3D xyz(7, 8, 9);
    EXPECT_FALSE(compute.ComputeToolTcsToMcsXyz(Zeros(), 9, 9, NullVector, c[0], c[1], c[2],
                                                NullVector, &xyz));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister);
    EXPECT_TRUE(SameBits(xyz, Vector3D(7, 8, 9)));
  }
}

TEST(LinearSolutionFailure, HeadAndTableComeBeforeTheAxes) {
  const Machine machine = HeadHeadMachine();
  const std::vector<std::pair<int, int>> indices = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
  for (const auto& [head, table] : indices) {
    MachineCompute compute(machine);
    Vector3D xyz(7, 8, 9);
    EXPECT_FALSE(compute.ComputeToolTcsToMcsXyz(Zeros(), head, table, NullVector, 0, 0, 0,
                                                NullVector, &xyz));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNoHeadOrTable);
    EXPECT_TRUE(SameBits(xyz, Vector3D(7, 8, 9)));
  }
}

TEST(LinearSolutionFailure, HeadAndTableNeedACommonRoot) {
  Machine machine;
  AddTable(machine, -1);
  AddLinear(machine, -1, AxisX, 0);
  AddLinear(machine, 2, AxisY, 1);
  AddLinear(machine, 3, AxisZ, 2);
  AddHead(machine, 4);
  ASSERT_TRUE(machine.Finish());
  MachineCompute compute(machine);
  Vector3D xyz(7, 8, 9);
  EXPECT_FALSE(Solve(compute, PositionOf({0, 0, 0}), NullVector, &xyz));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNoHeadOrTable);
  EXPECT_TRUE(SameBits(xyz, Vector3D(7, 8, 9)));
}

TEST(LinearSolutionFailure, RegistersMustBelongToThreeLinearAxesOfTheChain) {
  Machine machine = HeadHeadMachine();
  Entity aside;
  aside.SetRegister(5);
  aside.GetEntityLinkMod()->SetEntityLinkLinear(AxisX);
  EntitiesOf(machine).push_back(aside);
  SetId(&EntitiesOf(machine).back(), 9);
  ASSERT_TRUE(machine.Finish());
  struct Case {
    const char* name;
    int x;
    int y;
    int z;
  };
  const Case cases[] = {
      {"a rotary axis", 0, 1, 3},         {"a rotary axis first", 4, 1, 2},
      {"an axis off the chain", 5, 1, 2}, {"a register that nothing has", 0, 6, 2},
      {"two equal registers", 0, 1, 1},   {"other two equal registers", 2, 1, 2},
      {"three equal registers", 0, 0, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    MachineCompute compute(machine);
    Vector3D xyz(7, 8, 9);
    EXPECT_FALSE(compute.ComputeToolTcsToMcsXyz(PositionOf({0, 0, 0, 0, 0, 0, 0}), 0, 0, NullVector,
                                                c.x, c.y, c.z, NullVector, &xyz));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister);
    EXPECT_TRUE(SameBits(xyz, Vector3D(7, 8, 9)));
  }
}

TEST(LinearSolutionFailure, TravellingHeadOrTableIsNoAxis) {
  for (const Kin::EntityType type : {Kin::EntityTypeTable, Kin::EntityTypeHead}) {
    Machine machine = HeadHeadMachine();
    SetType(&EntityAt(machine, 2), type);  // X, on the chain and still linear
    MachineCompute compute(machine);
    Vector3D xyz(7, 8, 9);
    EXPECT_FALSE(Solve(compute, Zeros(), NullVector, &xyz));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister);
    EXPECT_TRUE(SameBits(xyz, Vector3D(7, 8, 9)));
  }
}

// A register's direction is that of the machine's element for it, which is the last of the list.
TEST(LinearSolutionFailure, DirectionThatFailsCountsAsAFaultOfTheRegister) {
  for (const int reg : {0, 1, 2}) {
    Machine machine = HeadHeadMachine();
    Entity other;
    other.SetRegister(reg);
    EntitiesOf(machine).push_back(other);
    Entity* last = &EntitiesOf(machine).back();
    SetId(last, 9);
    ASSERT_TRUE(machine.Finish());
    MachineCompute compute(machine);
    Vector3D xyz(7, 8, 9);
    EXPECT_FALSE(Solve(compute, Zeros(), NullVector, &xyz)) << "an axis without link";
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister);
    SetType(last, Kin::EntityTypeHead);
    EXPECT_FALSE(Solve(compute, Zeros(), NullVector, &xyz)) << "a head";
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister);
    EXPECT_TRUE(SameBits(xyz, Vector3D(7, 8, 9)));
    SetType(last, Kin::EntityTypeAxis);
    last->GetEntityLinkMod()->SetEntityLinkLinear(AxisX);
    EXPECT_TRUE(Solve(compute, Zeros(), NullVector, &xyz)) << "an axis off the chain";
  }
}

TEST(LinearSolutionFailure, RegisterWithoutElementFails) {
  Machine machine = HeadHeadMachine();
  // The registers move after the lookup was filled.
  EntityAt(machine, 2).SetRegister(5);
  MachineCompute compute(machine);
  Vector3D xyz(7, 8, 9);
  EXPECT_FALSE(compute.ComputeToolTcsToMcsXyz(PositionOf({0, 0, 0, 0, 0, 0}), 0, 0, NullVector, 5,
                                              1, 2, NullVector, &xyz));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister);
  EXPECT_TRUE(SameBits(xyz, Vector3D(7, 8, 9)));
}

// The table stands at the root: the values are the point less the head's position at zero.
TEST(LinearSolution, HeadAxesCarryTheHeadToThePoint) {
  Machine machine = HeadHeadMachine();
  EntityAt(machine, 7).GetEntityLinkMod()->SetEntityLinkPosition(TranslationFrame(5, 6, -100));
  MachineCompute compute(machine);
  Vector3D xyz;
  ASSERT_TRUE(Solve(compute, PositionOf({77, 88, 99, 0, 0}), Vector3D(10, 20, 30), &xyz));
  EXPECT_TRUE(NearVector(xyz, Vector3D(5, 14, 130), 1e-12));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNone);
}

TEST(LinearSolution, TableAxisGivesTheOppositeSign) {
  Machine machine;
  AddFixed(machine, -1);
  AddLinear(machine, 1, AxisX, 0);
  AddTable(machine, 2);
  AddLinear(machine, 1, AxisY, 1);
  AddLinear(machine, 4, AxisZ, 2);
  AddHead(machine, 5, TranslationFrame(5, 6, 7));
  ASSERT_TRUE(machine.Finish());
  MachineCompute compute(machine);
  Vector3D xyz;
  ASSERT_TRUE(Solve(compute, PositionOf({0, 0, 0}), Vector3D(10, 20, 30), &xyz));
  EXPECT_TRUE(NearVector(xyz, Vector3D(-5, 14, 23), 1e-12));
}

TEST(LinearSolution, OffsetPointLiesAtMinusTheOffset) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  Vector3D xyz;
  ASSERT_TRUE(compute.ComputeToolTcsToMcsXyz(Zeros(), 0, 0, Vector3D(1, 2, 50), 0, 1, 2,
                                             Vector3D(10, 20, 30), &xyz));
  EXPECT_TRUE(NearVector(xyz, Vector3D(11, 22, 80), 1e-12));
}

TEST(LinearSolution, ZeroReferencesCount) {
  Machine machine = HeadHeadMachine();
  EntityAt(machine, 2).GetEntityLinkMod()->SetZeroRef(100);
  EntityAt(machine, 3).GetEntityLinkMod()->SetZeroRef(-200);
  MachineCompute compute(machine);
  Vector3D xyz;
  ASSERT_TRUE(Solve(compute, Zeros(), Vector3D(10, 20, 30), &xyz));
  EXPECT_TRUE(NearVector(xyz, Vector3D(-90, 220, 30), 1e-12));
}

TEST(LinearSolution, RotaryValuesAreUsedAsGiven) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  Vector3D xyz;
  // A at 90 lays the tool down: the point, 50 below the head, stands at +50 along y.
  ASSERT_TRUE(compute.ComputeToolTcsToMcsXyz(PositionOf({0, 0, 0, 0, 90}), 0, 0, Vector3D(0, 0, 50),
                                             0, 1, 2, NullVector, &xyz));
  EXPECT_TRUE(NearVector(xyz, Vector3D(0, -50, 0), 1e-12));
  ASSERT_TRUE(compute.ComputeToolTcsToMcsXyz(PositionOf({0, 0, 0, 90, 90}), 0, 0,
                                             Vector3D(0, 0, 50), 0, 1, 2, NullVector, &xyz));
  EXPECT_TRUE(NearVector(xyz, Vector3D(50, 0, 0), 1e-12));
}

TEST(LinearSolution, RegistersDecideTheOrderOfTheValues) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  Vector3D xyz;
  ASSERT_TRUE(compute.ComputeToolTcsToMcsXyz(Zeros(), 0, 0, NullVector, 2, 0, 1,
                                             Vector3D(10, 20, 30), &xyz));
  EXPECT_TRUE(NearVector(xyz, Vector3D(30, 10, 20), 1e-12));
}

// Oblique axes get the transposed solution, which is not the true one.
TEST(LinearSolution, ObliqueAxesGetTheTransposedSolution) {
  Machine machine;
  AddTable(machine, -1);
  AddLinear(machine, 1, AxisX, 0);
  AddLinear(machine, 2, Vector3D(0.6, 0.8, 0), 1);
  AddLinear(machine, 3, AxisZ, 2);
  AddHead(machine, 4);
  ASSERT_TRUE(machine.Finish());
  MachineCompute compute(machine);
  Vector3D xyz;
  ASSERT_TRUE(Solve(compute, PositionOf({0, 0, 0}), Vector3D(10, 20, 30), &xyz));
  EXPECT_TRUE(NearVector(xyz, Vector3D(10, 0.6 * 10 + 0.8 * 20, 30), 1e-12));
}

TEST(LinearSolution, CoplanarAxesAreNoFault) {
  Machine machine;
  AddTable(machine, -1);
  AddLinear(machine, 1, AxisX, 0);
  AddLinear(machine, 2, AxisX, 1);
  AddLinear(machine, 3, AxisX, 2);
  AddHead(machine, 4);
  ASSERT_TRUE(machine.Finish());
  MachineCompute compute(machine);
  Vector3D xyz;
  ASSERT_TRUE(Solve(compute, PositionOf({0, 0, 0}), Vector3D(10, 20, 30), &xyz));
  EXPECT_TRUE(NearVector(xyz, Vector3D(10, 10, 10), 1e-12));
}

// Two places of X count for two, so that Z can be missing: it then gets the value 0.
TEST(LinearSolution, RegisterFoundTwiceCountsTwiceAndItsLaterPlaceWins) {
  Machine machine;
  AddFixed(machine, -1);
  AddLinear(machine, 1, AxisX, 0);  // on the table's side
  AddTable(machine, 2);
  AddLinear(machine, 1, AxisY, 1);
  AddLinear(machine, 4, AxisX, 0);  // on the head's side
  AddHead(machine, 5);
  AddLinear(machine, 1, AxisZ, 2);  // off the chain
  ASSERT_TRUE(machine.Finish());
  MachineCompute compute(machine);
  Vector3D xyz;
  ASSERT_TRUE(Solve(compute, PositionOf({0, 0, 0}), Vector3D(10, 20, 30), &xyz));
  EXPECT_TRUE(NearVector(xyz, Vector3D(10, 20, 0), 1e-12));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNone);

  ASSERT_FALSE(compute.ComputeToolTcsToMcsXyz(PositionOf({0, 0, 0, 0}), 0, 0, NullVector, 0, 1, 3,
                                              Vector3D(10, 20, 30), &xyz))
      << "nothing has the register 3";
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister);
}

TEST(LinearSolution, FourPlacesAreTooMany) {
  Machine machine;
  AddTable(machine, -1);
  AddLinear(machine, 1, AxisX, 0);
  AddLinear(machine, 2, AxisX, 0);
  AddLinear(machine, 3, AxisY, 1);
  AddLinear(machine, 4, AxisZ, 2);
  AddHead(machine, 5);
  ASSERT_TRUE(machine.Finish());
  MachineCompute compute(machine);
  Vector3D xyz(7, 8, 9);
  EXPECT_FALSE(Solve(compute, PositionOf({0, 0, 0}), NullVector, &xyz));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister);
  EXPECT_TRUE(SameBits(xyz, Vector3D(7, 8, 9)));
}

TEST(LinearSolution, FailingLinkIsRememberedAndTheSolverGoesOn) {
  Machine machine = HeadHeadMachine();
  SetLinkType(EntityAt(machine, 0).GetEntityLinkMod(), Kin::EntityLinkTypeUndef);  // the base
  MachineCompute compute(machine);
  Vector3D xyz;
  ASSERT_TRUE(Solve(compute, Zeros(), Vector3D(10, 20, 30), &xyz));
  EXPECT_TRUE(NearVector(xyz, Vector3D(10, 20, 30), 1e-12));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorLinkType);
}

// The working position keeps what a longer one left behind its end.
TEST(LinearSolution, ShorterPositionKeepsTheValuesOfALongerOneBehindIt) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  const Vector3D offset(0, 0, 50);
  Vector3D xyz;
  ASSERT_TRUE(compute.ComputeToolTcsToMcsXyz(PositionOf({0, 0, 0, 0, 90}), 0, 0, offset, 0, 1, 2,
                                             NullVector, &xyz));
  ASSERT_TRUE(compute.ComputeToolTcsToMcsXyz(PositionOf({0, 0, 0, 0}), 0, 0, offset, 0, 1, 2,
                                             NullVector, &xyz));
  EXPECT_TRUE(NearVector(xyz, Vector3D(0, -50, 0), 1e-12));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNone);
}

TEST(LinearSolution, CallersPositionStays) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  const MachinePosition position = PositionOf({1, 2, 3, 4, 5});
  Vector3D xyz;
  ASSERT_TRUE(Solve(compute, position, NullVector, &xyz));
  for (int r = 0; r < 5; ++r) {
    EXPECT_EQ(position[Kin::Register(r)], r + 1);
  }
}

TEST(LinearSolution, NotANumberPassesThrough) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  Vector3D xyz;
  EXPECT_TRUE(Solve(compute, Zeros(), Vector3D(nan, 0, 0), &xyz));
  EXPECT_TRUE(xyz[0] != xyz[0]);
}

// The same steps, made of the frame's own operations.
Vector3D ReferenceSolution(const Machine& machine, const MachinePosition& position,
                           const Vector3D& offset, const Vector3D& point, const double signs[3]) {
  MachineCompute compute(machine);
  MachinePosition scratch = position;
  for (int r = 0; r < 3; ++r) {
    scratch[Kin::Register(r)] = 0;
  }
  Matrix43 worldFromTable;
  Matrix43 worldFromHead;
  compute.ComputePositionEntity(*machine.GetKinematic().GetEntityTable(0), scratch,
                                &worldFromTable);
  compute.ComputePositionEntity(*machine.GetKinematic().GetEntityHead(0), scratch, &worldFromHead);
  Matrix43 shift;
  shift.SetTrans(Vector3D(-offset[0], -offset[1], -offset[2]));
  Matrix43 tableFromWorld = worldFromTable.HInverse();
  Matrix43 tableFromTool = tableFromWorld * (worldFromHead * shift);
  Vector3D dirs[3];
  for (int i = 0; i < 3; ++i) {
    const Entity* axis = machine.GetKinematic().GetEntity(Kin::Register(i));
    Matrix43 worldFromParent;
    if (axis->GetParentEntity() != nullptr) {
      compute.ComputePositionEntity(*axis->GetParentEntity(), scratch, &worldFromParent);
    }
    Vector3D world = worldFromParent.ApplyToVector3D(axis->GetEntityLink().GetDir());
    dirs[i] = tableFromWorld.ApplyToVector3D(world * signs[i]);
  }
  Matrix43 tableFromValues;
  tableFromValues.SetUVWT(dirs[0], dirs[1], dirs[2], tableFromTool.GetTrans());
  return tableFromValues.HInverse().ApplyToPoint(point);
}

TEST(LinearSolution, IsTheRigidInverseOfTheAxisFrameBitForBit) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int round = 0; round < 300; ++round) {
    const auto vector = [&random](double size) {
      return Vector3D(random.Real(-size, size), random.Real(-size, size), random.Real(-size, size));
    };
    // Each axis sits on the head's or the table's side.
    Machine machine;
    int head = AddFixed(machine, -1, TranslationFrame(1, 2, 3))->GetEntityId();
    int table = head;
    double signs[3];
    for (int i = 0; i < 5; ++i) {
      const bool onHead = random.Chance(0.5);
      int& tip = onHead ? head : table;
      if (i < 3) {
        tip = AddLinear(machine, tip, vector(1), i)->GetEntityId();
        signs[i] = onHead ? 1.0 : -1.0;
      } else {
        tip = AddRotary(machine, tip, vector(50), vector(1), i)->GetEntityId();
      }
    }
    AddHead(machine, head, RotationFrame(vector(1), random.Real(-180, 180)));
    Matrix43 frame = RotationFrame(vector(1), random.Real(-180, 180));
    frame.SetTrans(vector(100));
    AddTable(machine, table, frame);
    ASSERT_TRUE(machine.Finish());
    const MachinePosition position =
        PositionOf({5, 6, 7, random.Real(-180, 180), random.Real(-180, 180)});
    const Vector3D offset = vector(100);
    const Vector3D point = vector(500);
    MachineCompute compute(machine);
    Vector3D xyz;
    ASSERT_TRUE(compute.ComputeToolTcsToMcsXyz(position, 0, 0, offset, 0, 1, 2, point, &xyz));
    ASSERT_TRUE(SameBits(xyz, ReferenceSolution(machine, position, offset, point, signs)));
  }
}

TEST(LinearSolution, ForwardKinematicsReachesThePoint) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (const Machine& machine : {HeadHeadMachine(), TableTableMachine(), HeadTableMachine()}) {
    MachineCompute compute(machine);
    for (int round = 0; round < 300; ++round) {
      MachinePosition position =
          PositionOf({1, 2, 3, random.Real(-180, 180), random.Real(-180, 180)});
      const Vector3D offset(random.Real(-9, 9), random.Real(-9, 9), random.Real(-9, 90));
      const Vector3D point(random.Real(-99, 99), random.Real(-99, 99), random.Real(-99, 99));
      Vector3D xyz;
      ASSERT_TRUE(compute.ComputeToolTcsToMcsXyz(position, 0, 0, offset, 0, 1, 2, point, &xyz));
      for (int i = 0; i < 3; ++i) {
        position[Kin::Register(i)] = xyz[i];
      }
      Matrix43 tableFromTool;
      ASSERT_TRUE(compute.ComputeMcsToToolTcs(position, 0, 0, offset, &tableFromTool));
      ASSERT_TRUE(NearVector(tableFromTool.GetTrans(), point, 1e-9));
    }
  }
}

TEST(LinearSolution, SharesItsChainWithTheRotarySolution) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  Vector3D xyz;
  ASSERT_TRUE(Solve(compute, Zeros(), Vector3D(1, 2, 3), &xyz));
  EXPECT_FALSE(
      compute.ComputeToolTcsToMcsXyz(Zeros(), 3, 0, NullVector, 0, 1, 2, NullVector, &xyz));
  ASSERT_TRUE(Solve(compute, Zeros(), Vector3D(1, 2, 3), &xyz));
  EXPECT_TRUE(NearVector(xyz, Vector3D(1, 2, 3), 1e-12));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNoHeadOrTable);
}

}  // namespace
}  // namespace Orvo::Testing
