#include "model/EntityAccess.h"
#include "support/SameBits.h"
#include "support/Signature.h"

#include <Orvo/Angle.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Mesh.h>

#include <gtest/gtest.h>

#include <iterator>
#include <limits>
#include <list>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace Orvo::Kin {
namespace {

using Testing::HasSignature;
using Testing::SameBits;

static_assert(std::has_virtual_destructor_v<Machine>);
static_assert(std::is_base_of_v<ISerializableXML, Machine>);
static_assert(HasSignature<Entity* (Machine::*)()>(&Machine::AddEntity));
static_assert(HasSignature<void (Machine::*)(const Entity&)>(&Machine::AddEntity));
static_assert(HasSignature<Entity* (Machine::*)(const std::wstring&, const EntityId&,
                                                const Vector3D&)>(&Machine::AddEntityLinear));
static_assert(
    HasSignature<Entity* (Machine::*)(const std::wstring&, const EntityId&, const Vector3D&,
                                      const Vector3D&)>(&Machine::AddEntityRotary));
static_assert(HasSignature<Entity* (Machine::*)(const std::wstring&, const EntityId&)>(
    &Machine::AddEntityStatic));
static_assert(HasSignature<Entity* (Machine::*)(const std::wstring&, const EntityId&,
                                                const Matrix43&)>(&Machine::AddEntityHead));
static_assert(HasSignature<Entity* (Machine::*)(const std::wstring&, const EntityId&,
                                                const Matrix43&)>(&Machine::AddEntityTable));
static_assert(HasSignature<void (Machine::*)(const ProgramSystem&)>(&Machine::AddProgramSystem));
static_assert(HasSignature<bool (Machine::*)()>(&Machine::Finish));
static_assert(HasSignature<bool (Machine::*)() const>(&Machine::IsFinished));
static_assert(HasSignature<MachineErrorType (Machine::*)()>(&Machine::GetLastError));
static_assert(HasSignature<const Kinematic& (Machine::*)() const>(&Machine::GetKinematic));
static_assert(
    HasSignature<const CollisionCheck& (Machine::*)() const>(&Machine::GetCollisionCheck));
static_assert(HasSignature<CollisionCheck& (Machine::*)()>(&Machine::GetCollisionCheckMod));
static_assert(HasSignature<const Register& (Machine::*)() const>(&Machine::GetRegisterNb));
static_assert(HasSignature<int (Machine::*)() const>(&Machine::GetEntityNb));
static_assert(HasSignature<EntityId (Machine::*)()>(&Machine::GetEntityIdMax));
static_assert(HasSignature<const TableIndex& (Machine::*)() const>(&Machine::GetTableNb));
static_assert(HasSignature<const HeadIndex& (Machine::*)() const>(&Machine::GetHeadNb));
static_assert(HasSignature<int (Machine::*)() const>(&Machine::GetLinearAxesNb));
static_assert(HasSignature<const std::list<ProgramSystem>& (Machine::*)() const>(
    &Machine::GetListProgramSystem));
static_assert(HasSignature<ProgramSystemIndex (Machine::*)() const>(&Machine::GetProgramSystemNb));
static_assert(HasSignature<const ProgramSystem* (Machine::*)(const ProgramSystemIndex&)>(
    &Machine::GetProgramSystem));
static_assert(HasSignature<void (Machine::*)(MachinePosition*) const>(&Machine::Alloc));
static_assert(HasSignature<bool (Machine::*)(const std::wstring&)>(&Machine::ReadXML));
static_assert(HasSignature<bool (Machine::*)(const std::wstring&)>(&Machine::WriteXML));
static_assert(
    HasSignature<bool (Machine::*)(const std::wstring&)>(&Machine::ReadMachineWithMeshStl));
static_assert(
    HasSignature<bool (Machine::*)(const std::wstring&)>(&Machine::WriteMachineWithMeshStl));

std::size_t EntityCount(const Machine& machine) {
  return machine.GetKinematic().GetListEntity().size();
}

/// A valid machine: three linear axes on registers 0 to 2, a head and a table.
void Build(Machine* machine) {
  Entity* const x = machine->AddEntityLinear(L"X", EntityId(), AxisX);
  Entity* const y = machine->AddEntityLinear(L"Y", x->GetEntityId(), AxisY);
  Entity* const z = machine->AddEntityLinear(L"Z", y->GetEntityId(), AxisZ);
  x->SetRegister(Register(0));
  y->SetRegister(Register(1));
  z->SetRegister(Register(2));
  machine->AddEntityHead(L"Head", z->GetEntityId(), Matrix43());
  machine->AddEntityTable(L"Table", EntityId(), Matrix43());
}

void ExpectUnset(const Entity& entity) {
  EXPECT_EQ(entity.GetRegister().GetVal(), -1);
  EXPECT_EQ(entity.GetEntityParallelType(), EntityParallelTypeChain);
  EXPECT_FALSE(entity.GetIsMotor());
  EXPECT_FALSE(entity.GetIsMounting());
  EXPECT_EQ(entity.GetEntityMesh(), nullptr);
  EXPECT_EQ(entity.GetParentEntity(), nullptr);
  EXPECT_EQ(entity.GetLevel(), 0);
  EXPECT_EQ(entity.GetRangeMin(), 0.0);
  EXPECT_EQ(entity.GetRangeMax(), 0.0);
}

// --- a new machine -------------------------------------------------------------------------------

TEST(Machine, StartsEmptyAndUncounted) {
  Machine machine;
  EXPECT_EQ(EntityCount(machine), 0U);
  EXPECT_FALSE(machine.IsFinished());
  EXPECT_EQ(machine.GetRegisterNb().GetVal(), -1);
  EXPECT_EQ(machine.GetEntityNb(), 0);
  EXPECT_EQ(machine.GetEntityIdMax().GetVal(), -1);
  EXPECT_EQ(machine.GetTableNb().GetVal(), -1);
  EXPECT_EQ(machine.GetHeadNb().GetVal(), -1);
  EXPECT_EQ(machine.GetLinearAxesNb(), 0);
  EXPECT_EQ(machine.GetLastError(), MachineErrorNone);
  EXPECT_TRUE(machine.GetListProgramSystem().empty());
  EXPECT_EQ(machine.GetProgramSystemNb().GetVal(), 0);
  EXPECT_EQ(machine.GetProgramSystem(ProgramSystemIndex(0)), nullptr);
  EXPECT_EQ(machine.GetProgramSystem(ProgramSystemIndex(-1)), nullptr);
  EXPECT_FALSE(machine.GetCollisionCheck().GetMachineTool(1));
}

TEST(Machine, CountsAreMadeByFinishOnly) {
  Machine machine;
  Build(&machine);
  EXPECT_EQ(EntityCount(machine), 5U);
  EXPECT_EQ(machine.GetEntityNb(), 0);
  EXPECT_EQ(machine.GetEntityIdMax().GetVal(), -1);
  EXPECT_EQ(machine.GetRegisterNb().GetVal(), -1);
  EXPECT_EQ(machine.GetHeadNb().GetVal(), -1);
  EXPECT_EQ(machine.GetTableNb().GetVal(), -1);
  EXPECT_EQ(machine.GetLinearAxesNb(), 0);
  EXPECT_EQ(machine.GetKinematic().GetEntity(EntityId(1)), nullptr);
  EXPECT_EQ(machine.GetKinematic().GetEntity(Register(0)), nullptr);
  EXPECT_EQ(machine.GetKinematic().GetEntityHead(HeadIndex(0)), nullptr);
  EXPECT_EQ(machine.GetKinematic().GetEntityTable(TableIndex(0)), nullptr);
}

// --- adding elements -----------------------------------------------------------------------------

TEST(MachineAdd, NumbersElementsFromOne) {
  Machine machine;
  for (int i = 1; i <= 5; ++i) {
    const Entity* const entity = machine.AddEntity();
    ASSERT_NE(entity, nullptr);
    EXPECT_EQ(entity->GetEntityId().GetVal(), i);
    EXPECT_EQ(entity, &machine.GetKinematic().GetListEntity().back());
    EXPECT_EQ(entity->GetEntityName(), L"");
    EXPECT_EQ(entity->GetEntityType(), EntityTypeAxis);
    EXPECT_EQ(entity->GetParentEntityId().GetVal(), -1);
    EXPECT_EQ(entity->GetEntityLink().GetEntityLinkType(), EntityLinkTypeUndef);
    EXPECT_TRUE(entity->GetCheckRangeAxis());
    ExpectUnset(*entity);
  }
}

TEST(MachineAdd, PointersToElementsStayValid) {
  Machine machine;
  Entity* const first = machine.AddEntity();
  first->SetEntityName(L"first");
  for (int i = 0; i < 1000; ++i) {
    machine.AddEntity();
  }
  EXPECT_EQ(&machine.GetKinematic().GetListEntity().front(), first);
  EXPECT_EQ(first->GetEntityName(), L"first");
}

TEST(MachineAdd, ACopiedElementIsNumberedAnew) {
  Machine machine;
  machine.AddEntity();
  Entity entity;
  entity.SetEntityName(L"copied");
  entity.SetParentEntityId(EntityId(1));
  entity.SetRegister(Register(6));
  entity.SetIsMotor(true);
  entity.SetRange(-1, 1);
  entity.AllocEntityMesh();
  Testing::SetEntityId(&entity, 42);
  Testing::SetEntityType(&entity, EntityTypeTable);
  Testing::SetParentEntity(&entity, &entity);
  Testing::SetLevel(&entity, 9);
  machine.AddEntity(entity);
  ASSERT_EQ(EntityCount(machine), 2U);
  const Entity& added = machine.GetKinematic().GetListEntity().back();
  EXPECT_EQ(added.GetEntityId().GetVal(), 2);
  EXPECT_EQ(added.GetEntityName(), L"copied");
  EXPECT_EQ(added.GetEntityType(), EntityTypeTable);
  EXPECT_EQ(added.GetParentEntityId().GetVal(), 1);
  EXPECT_EQ(added.GetRegister().GetVal(), 6);
  EXPECT_TRUE(added.GetIsMotor());
  EXPECT_EQ(added.GetRangeMin(), -1.0);
  EXPECT_EQ(added.GetEntityMesh(), nullptr);
  EXPECT_EQ(added.GetParentEntity(), nullptr);
  EXPECT_EQ(added.GetLevel(), 9);
  EXPECT_EQ(entity.GetEntityId().GetVal(), 42) << "the source stays as it was";
}

TEST(MachineAdd, TakesItsOwnElementAndProgramSystem) {
  Machine machine;
  machine.AddEntityLinear(L"X", EntityId(), AxisX);
  machine.AddEntity(machine.GetKinematic().GetListEntity().front());
  ASSERT_EQ(EntityCount(machine), 2U);
  EXPECT_EQ(machine.GetKinematic().GetListEntity().back().GetEntityName(), L"X");
  EXPECT_EQ(machine.GetKinematic().GetListEntity().back().GetEntityId().GetVal(), 2);
  EXPECT_EQ(machine.GetKinematic().GetListEntity().front().GetEntityId().GetVal(), 1);
  ProgramSystem ps;
  ps.SetProgramSystemName(L"one");
  machine.AddProgramSystem(ps);
  machine.AddProgramSystem(machine.GetListProgramSystem().front());
  EXPECT_EQ(machine.GetListProgramSystem().back().GetProgramSystemName(), L"one");
}

TEST(MachineAdd, ALinearAxisTravelsAlongTheUnitDirection) {
  Machine machine;
  const Entity* const entity = machine.AddEntityLinear(L"Z axis", EntityId(7), Vector3D(0, 0, -5));
  ASSERT_NE(entity, nullptr);
  EXPECT_EQ(entity->GetEntityName(), L"Z axis");
  EXPECT_EQ(entity->GetEntityId().GetVal(), 1);
  EXPECT_EQ(entity->GetParentEntityId().GetVal(), 7);
  EXPECT_EQ(entity->GetEntityType(), EntityTypeAxis);
  EXPECT_EQ(entity->GetEntityLink().GetEntityLinkType(), EntityLinkTypeLinear);
  EXPECT_EQ(entity->GetEntityLink().GetDir() == Vector3D(0, 0, -1), 1);
  EXPECT_TRUE(entity->GetCheckRangeAxis());
  ExpectUnset(*entity);
}

TEST(MachineAdd, ARotaryAxisTurnsAboutItsCenter) {
  Machine machine;
  const Entity* const entity =
      machine.AddEntityRotary(L"C", EntityId(-3), Vector3D(1, 2, 3), Vector3D(0, 8, 0));
  ASSERT_NE(entity, nullptr);
  EXPECT_EQ(entity->GetEntityName(), L"C");
  EXPECT_EQ(entity->GetParentEntityId().GetVal(), -3);
  EXPECT_EQ(entity->GetEntityType(), EntityTypeAxis);
  EXPECT_EQ(entity->GetEntityLink().GetEntityLinkType(), EntityLinkTypeRotary);
  EXPECT_TRUE(SameBits(entity->GetEntityLink().GetCenter(), Vector3D(1, 2, 3)));
  EXPECT_TRUE(SameBits(entity->GetEntityLink().GetDir(), AxisY));
  EXPECT_TRUE(entity->GetCheckRangeAxis());
  ExpectUnset(*entity);
}

TEST(MachineAdd, AStaticElementIsAnAxisAtTheIdentity) {
  Machine machine;
  const Entity* const entity = machine.AddEntityStatic(L"Bed", EntityId());
  ASSERT_NE(entity, nullptr);
  EXPECT_EQ(entity->GetEntityName(), L"Bed");
  EXPECT_EQ(entity->GetParentEntityId().GetVal(), -1);
  EXPECT_EQ(entity->GetEntityType(), EntityTypeAxis);
  EXPECT_EQ(entity->GetEntityLink().GetEntityLinkType(), EntityLinkTypePosition);
  EXPECT_TRUE(SameBits(entity->GetEntityLink().GetPosition(), Matrix43()));
  EXPECT_FALSE(entity->GetCheckRangeAxis());
  ExpectUnset(*entity);
}

TEST(MachineAdd, HeadsAndTablesStandWhereTheFrameSays) {
  Matrix43 frame;
  frame.SetRotation(Y, Angle(0.25));
  frame.SetTrans(Vector3D(4, 5, 6));
  Machine machine;
  const Entity* const head = machine.AddEntityHead(L"H", EntityId(2), frame);
  const Entity* const table = machine.AddEntityTable(L"T", EntityId(3), frame);
  ASSERT_NE(head, nullptr);
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(head->GetEntityName(), L"H");
  EXPECT_EQ(table->GetEntityName(), L"T");
  EXPECT_EQ(head->GetEntityId().GetVal(), 1);
  EXPECT_EQ(table->GetEntityId().GetVal(), 2);
  EXPECT_EQ(head->GetParentEntityId().GetVal(), 2);
  EXPECT_EQ(table->GetParentEntityId().GetVal(), 3);
  EXPECT_EQ(head->GetEntityType(), EntityTypeHead);
  EXPECT_EQ(table->GetEntityType(), EntityTypeTable);
  for (const Entity* const entity : {head, table}) {
    EXPECT_EQ(entity->GetEntityLink().GetEntityLinkType(), EntityLinkTypePosition);
    EXPECT_TRUE(SameBits(entity->GetEntityLink().GetPosition(), frame));
    EXPECT_FALSE(entity->GetCheckRangeAxis());
    ExpectUnset(*entity);
  }
}

TEST(MachineAdd, AFinishedMachineTakesNoFurtherElements) {
  Machine machine;
  Build(&machine);
  ASSERT_TRUE(machine.Finish());
  const std::size_t count = EntityCount(machine);
  EXPECT_EQ(machine.AddEntity(), nullptr);
  machine.AddEntity(Entity());
  EXPECT_EQ(machine.AddEntityLinear(L"X", EntityId(), AxisX), nullptr);
  EXPECT_EQ(machine.AddEntityRotary(L"C", EntityId(), NullVector, AxisZ), nullptr);
  EXPECT_EQ(machine.AddEntityStatic(L"S", EntityId()), nullptr);
  EXPECT_EQ(machine.AddEntityHead(L"H", EntityId(), Matrix43()), nullptr);
  EXPECT_EQ(machine.AddEntityTable(L"T", EntityId(), Matrix43()), nullptr);
  EXPECT_EQ(EntityCount(machine), count);
  EXPECT_EQ(machine.GetEntityNb(), static_cast<int>(count));
  EXPECT_TRUE(machine.IsFinished());
}

// --- program systems and collision lists ---------------------------------------------------------

TEST(Machine, KeepsCopiesOfProgramSystemsInOrder) {
  Machine machine;
  ProgramSystem ps;
  for (const wchar_t* name : {L"first", L"second", L"third"}) {
    ps.SetProgramSystemName(name);
    machine.AddProgramSystem(ps);
  }
  ps.SetProgramSystemName(L"changed");
  EXPECT_EQ(machine.GetProgramSystemNb().GetVal(), 3);
  EXPECT_EQ(machine.GetProgramSystem(ProgramSystemIndex(0))->GetProgramSystemName(), L"first");
  EXPECT_EQ(machine.GetProgramSystem(ProgramSystemIndex(1))->GetProgramSystemName(), L"second");
  EXPECT_EQ(machine.GetProgramSystem(ProgramSystemIndex(2))->GetProgramSystemName(), L"third");
  EXPECT_EQ(machine.GetProgramSystem(ProgramSystemIndex(2)),
            &machine.GetListProgramSystem().back());
  const int outside[] = {
      3, 4, -1, -2, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};
  for (const int i : outside) {
    EXPECT_EQ(machine.GetProgramSystem(ProgramSystemIndex(i)), nullptr) << i;
  }
}

TEST(Machine, TakesProgramSystemsWhenFinishedToo) {
  Machine machine;
  Build(&machine);
  ASSERT_TRUE(machine.Finish());
  ASSERT_EQ(machine.GetProgramSystemNb().GetVal(), 1);
  ProgramSystem ps;
  ps.SetProgramSystemName(L"late");
  ps.SetHeadIndex(HeadIndex(99));
  machine.AddProgramSystem(ps);
  EXPECT_EQ(machine.GetProgramSystemNb().GetVal(), 2);
  EXPECT_EQ(machine.GetProgramSystem(ProgramSystemIndex(1))->GetProgramSystemName(), L"late");
  EXPECT_EQ(machine.GetProgramSystem(ProgramSystemIndex(1))->GetHeadIndex().GetVal(), 99);
}

TEST(Machine, HandsOutOneCollisionCheck) {
  Machine machine;
  machine.GetCollisionCheckMod().SetMachineTool(3, true);
  EXPECT_TRUE(machine.GetCollisionCheck().GetMachineTool(3));
  EXPECT_EQ(&machine.GetCollisionCheck(), &machine.GetCollisionCheckMod());
}

// --- positions -----------------------------------------------------------------------------------

TEST(Machine, AllocGivesOneElementPerRegister) {
  Machine machine;
  Build(&machine);
  ASSERT_TRUE(machine.Finish());
  MachinePosition position;
  position.Alloc(Register(9));
  position.SetAll(5.0);
  machine.Alloc(&position);
  ASSERT_EQ(position.Size(), 3U);
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(SameBits(position[Register(i)], 0.0));
  }
}

TEST(Machine, AllocBeforeFinishKeepsTheSizeAndZeroes) {
  const Machine machine;
  MachinePosition position;
  position.Alloc(Register(2));
  position.SetAll(5.0);
  machine.Alloc(&position);
  ASSERT_EQ(position.Size(), 2U);
  EXPECT_EQ(position[Register(1)], 0.0);
}

TEST(Machine, AllocIgnoresNull) { Machine().Alloc(nullptr); }

// --- copies --------------------------------------------------------------------------------------

TEST(MachineCopy, SharesElementsProgramSystemsAndCollisionLists) {
  Machine source;
  Build(&source);
  Machine copy(source);
  EXPECT_EQ(&copy.GetKinematic().GetListEntity(), &source.GetKinematic().GetListEntity());
  EXPECT_EQ(&copy.GetListProgramSystem(), &source.GetListProgramSystem());
  copy.AddEntity();
  copy.AddProgramSystem(ProgramSystem());
  copy.GetCollisionCheckMod().SetMachinePart(1, true);
  EXPECT_EQ(EntityCount(source), 6U);
  EXPECT_EQ(source.GetProgramSystemNb().GetVal(), 1);
  EXPECT_TRUE(source.GetCollisionCheck().GetMachinePart(1));
  Machine assigned;
  assigned.AddEntity();
  EXPECT_EQ(&(assigned = source), &assigned);
  EXPECT_EQ(&assigned.GetKinematic().GetListEntity(), &source.GetKinematic().GetListEntity());
  EXPECT_EQ(EntityCount(assigned), 6U);
}

TEST(MachineCopy, HasItsOwnCountsFlagAndLastError) {
  Machine source;
  Build(&source);
  Machine early(source);
  ASSERT_TRUE(source.Finish());
  const Machine late(source);
  EXPECT_TRUE(late.IsFinished());
  EXPECT_EQ(late.GetEntityNb(), 5);
  EXPECT_EQ(late.GetRegisterNb().GetVal(), 3);
  EXPECT_EQ(late.GetHeadNb().GetVal(), 1);
  EXPECT_EQ(late.GetTableNb().GetVal(), 1);
  EXPECT_EQ(late.GetLinearAxesNb(), 3);
  EXPECT_FALSE(early.IsFinished());
  EXPECT_EQ(early.GetEntityNb(), 0);
  EXPECT_EQ(early.GetRegisterNb().GetVal(), -1);
  EXPECT_NE(early.GetKinematic().GetEntity(EntityId(1)), nullptr) << "the tables are shared";
  EXPECT_NE(early.AddEntity(), nullptr);

  Machine failed;
  EXPECT_FALSE(failed.Finish());
  Machine copyOfFailed(failed);
  EXPECT_EQ(copyOfFailed.GetLastError(), MachineErrorNoHead);
  EXPECT_EQ(copyOfFailed.GetHeadNb().GetVal(), 0);
  failed = source;
  EXPECT_EQ(failed.GetLastError(), MachineErrorNone);
  EXPECT_TRUE(failed.IsFinished());
  EXPECT_EQ(failed.GetEntityIdMax().GetVal(), 5);
}

TEST(MachineCopy, OutlivesItsSource) {
  auto source = std::make_unique<Machine>();
  Build(source.get());
  source->GetCollisionCheckMod().SetMachineStock(2, true);
  ASSERT_TRUE(source->Finish());
  auto copy = std::make_unique<Machine>(*source);
  source.reset();
  Machine last;
  last = *copy;
  copy.reset();
  ASSERT_NE(last.GetKinematic().GetEntityHead(HeadIndex(0)), nullptr);
  EXPECT_EQ(last.GetKinematic().GetEntityHead(HeadIndex(0))->GetEntityName(), L"Head");
  EXPECT_EQ(last.GetKinematic().GetEntityHead(HeadIndex(0))->GetParentEntity()->GetEntityName(),
            L"Z");
  EXPECT_EQ(last.GetProgramSystem(ProgramSystemIndex(0))->GetProgramSystemName(), L"Default");
  EXPECT_TRUE(last.GetCollisionCheck().GetMachineStock(2));
  EXPECT_TRUE(last.Finish());
}

TEST(MachineCopy, HandlesOnThePartsOutliveTheMachine) {
  auto machine = std::make_unique<Machine>();
  Build(machine.get());
  ASSERT_TRUE(machine->Finish());
  machine->GetCollisionCheckMod().SetMachineTool(3, true);
  const Kinematic kinematic(machine->GetKinematic());
  const CollisionCheck check(machine->GetCollisionCheck());
  machine.reset();
  EXPECT_EQ(kinematic.GetEntity(EntityId(5))->GetEntityName(), L"Table");
  EXPECT_TRUE(check.GetMachineTool(3));
}

TEST(MachineCopy, AnAssignedMachineLeavesItsOldElementsToItsCopies) {
  Machine machine;
  Build(&machine);
  const Machine copy(machine);
  machine = Machine();
  EXPECT_EQ(EntityCount(machine), 0U);
  EXPECT_EQ(EntityCount(copy), 5U);
}

TEST(MachineCopy, OntoItselfChangesNothing) {
  Machine machine;
  Build(&machine);
  ASSERT_TRUE(machine.Finish());
  const Machine& self = machine;
  machine = self;
  EXPECT_TRUE(machine.IsFinished());
  EXPECT_EQ(EntityCount(machine), 5U);
  EXPECT_EQ(machine.GetProgramSystemNb().GetVal(), 1);
}

TEST(MachineCopy, AMovedMachineStaysUsable) {
  Machine source;
  Build(&source);
  Machine target(std::move(source));
  EXPECT_TRUE(target.Finish());
  EXPECT_TRUE(source.Finish());  // NOLINT: a move is a copy here
}

TEST(Machine, ReleasesTheMeshesOfItsElements) {
  Machine machine;
  for (int i = 0; i < 3; ++i) {
    machine.AddEntity()->AllocEntityMesh()->AddMesh(new Mesh, 1);
  }
  EXPECT_EQ(machine.GetKinematic().GetListEntity().front().GetEntityMesh()->GetMeshNb(), 1U);
}

}  // namespace
}  // namespace Orvo::Kin
