#include "support/CountedMemory.h"

#include <Orvo/Kin/CollisionCheck.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Mesh.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <list>
#include <memory>
#include <new>
#include <string>

namespace Orvo::Kin {
namespace {

const std::wstring LongName(100, L'n');

/// Runs an operation with its first allocation refused, then its second, until it succeeds; it must
/// fail at least once. After each failure `check` looks at what is left, which then goes.
template <typename MakeSubject, typename Operation, typename Check>
void FailEachAllocation(MakeSubject makeSubject, Operation operation, Check check) {
  for (std::size_t allowed = 0; allowed < 1000; ++allowed) {
    SCOPED_TRACE(testing::Message() << allowed << " allocations succeed");
    auto subject = makeSubject();
    bool failed = false;
    Testing::RefuseAllocation(allowed);
    try {
      operation(*subject);
    } catch (const std::bad_alloc&) {
      failed = true;
    }
    Testing::AllowAllocations();
    if (!failed) {
      EXPECT_GT(allowed, 0U) << "nothing was allocated";
      return;
    }
    check(*subject);
  }
  ADD_FAILURE() << "it never succeeded";
}

std::unique_ptr<Machine> MakeMachine() {
  auto machine = std::make_unique<Machine>();
  for (const Vector3D& dir : {AxisX, AxisY, AxisZ}) {
    Entity* const entity = machine->AddEntityLinear(L"axis", EntityId(), dir);
    entity->SetRegister(Register(entity->GetEntityId() - 1));
  }
  machine->AddEntityHead(L"head", EntityId(3), Matrix43());
  machine->AddEntityTable(L"table", EntityId(), Matrix43());
  return machine;
}

void ExpectFiveElementsAndGoesOn(Machine& machine) {
  EXPECT_EQ(machine.GetKinematic().GetListEntity().size(), 5U);
  EXPECT_EQ(machine.AddEntity()->GetEntityId().GetVal(), 6);
  EXPECT_TRUE(machine.Finish());
}

TEST(AllocationFailure, AddingAnElementAddsNone) {
  FailEachAllocation(
      MakeMachine, [](Machine& machine) { machine.AddEntity(); }, ExpectFiveElementsAndGoesOn);
  Entity entity;
  entity.SetEntityName(LongName);
  FailEachAllocation(
      MakeMachine, [&entity](Machine& machine) { machine.AddEntity(entity); },
      ExpectFiveElementsAndGoesOn);
  FailEachAllocation(
      MakeMachine, [](Machine& machine) { machine.AddEntityLinear(LongName, EntityId(1), AxisX); },
      ExpectFiveElementsAndGoesOn);
  FailEachAllocation(
      MakeMachine,
      [](Machine& machine) { machine.AddEntityRotary(LongName, EntityId(1), AxisX, AxisX); },
      ExpectFiveElementsAndGoesOn);
  FailEachAllocation(
      MakeMachine, [](Machine& machine) { machine.AddEntityStatic(LongName, EntityId(1)); },
      ExpectFiveElementsAndGoesOn);
  FailEachAllocation(
      MakeMachine,
      [](Machine& machine) { machine.AddEntityHead(LongName, EntityId(1), Matrix43()); },
      ExpectFiveElementsAndGoesOn);
  FailEachAllocation(
      MakeMachine,
      [](Machine& machine) { machine.AddEntityTable(LongName, EntityId(1), Matrix43()); },
      ExpectFiveElementsAndGoesOn);
}

TEST(AllocationFailure, AddingAProgramSystemAddsNone) {
  ProgramSystem ps;
  ps.SetProgramSystemName(LongName);
  FailEachAllocation(
      MakeMachine, [&ps](Machine& machine) { machine.AddProgramSystem(ps); },
      [](Machine& machine) {
        EXPECT_EQ(machine.GetProgramSystemNb().GetVal(), 0);
        ExpectFiveElementsAndGoesOn(machine);
      });
}

TEST(AllocationFailure, FinishChangesNothing) {
  FailEachAllocation(
      MakeMachine, [](Machine& machine) { machine.Finish(); },
      [](Machine& machine) {
        EXPECT_FALSE(machine.IsFinished());
        EXPECT_EQ(machine.GetLastError(), MachineErrorNone);
        EXPECT_EQ(machine.GetEntityNb(), 0);
        EXPECT_EQ(machine.GetEntityIdMax().GetVal(), -1);
        EXPECT_EQ(machine.GetRegisterNb().GetVal(), -1);
        EXPECT_EQ(machine.GetHeadNb().GetVal(), -1);
        EXPECT_EQ(machine.GetTableNb().GetVal(), -1);
        EXPECT_EQ(machine.GetLinearAxesNb(), 0);
        EXPECT_EQ(machine.GetProgramSystemNb().GetVal(), 0);
        EXPECT_EQ(machine.GetKinematic().GetEntity(EntityId(1)), nullptr);
        EXPECT_EQ(machine.GetKinematic().GetEntity(Register(0)), nullptr);
        EXPECT_EQ(machine.GetKinematic().GetEntityHead(HeadIndex(0)), nullptr);
        EXPECT_EQ(machine.GetKinematic().GetEntityTable(TableIndex(0)), nullptr);
        for (const Entity& entity : machine.GetKinematic().GetListEntity()) {
          EXPECT_EQ(entity.GetParentEntity(), nullptr);
          EXPECT_EQ(entity.GetLevel(), 0);
        }
        ExpectFiveElementsAndGoesOn(machine);
      });
}

TEST(AllocationFailure, FinishingAgainChangesNothing) {
  FailEachAllocation(
      [] {
        auto machine = MakeMachine();
        EXPECT_TRUE(machine->Finish());
        return machine;
      },
      [](Machine& machine) { machine.Finish(); },
      [](Machine& machine) {
        EXPECT_TRUE(machine.IsFinished());
        EXPECT_EQ(machine.GetEntityNb(), 5);
        const Entity* const head = machine.GetKinematic().GetEntityHead(HeadIndex(0));
        ASSERT_NE(head, nullptr);
        EXPECT_EQ(head->GetParentEntity(), machine.GetKinematic().GetEntity(EntityId(3)));
        EXPECT_EQ(head->GetLevel(), 1);
        EXPECT_TRUE(machine.Finish());
      });
}

TEST(AllocationFailure, MakingMachinesAndStoresLeavesNothing) {
  struct Nothing {};
  const auto makeNothing = [] { return std::make_unique<Nothing>(); };
  const auto checkNothing = [](Nothing&) {};
  FailEachAllocation(
      makeNothing, [](Nothing&) { Machine machine; }, checkNothing);
  FailEachAllocation(
      makeNothing, [](Nothing&) { Kinematic kinematic; }, checkNothing);
  FailEachAllocation(
      makeNothing, [](Nothing&) { CollisionCheck check; }, checkNothing);
  FailEachAllocation(
      makeNothing, [](Nothing&) { ProgramSystem ps; }, checkNothing);
  FailEachAllocation(
      makeNothing, [](Nothing&) { Entity entity; }, checkNothing);
  FailEachAllocation(
      makeNothing, [](Nothing&) { EntityMesh list; }, checkNothing);
  FailEachAllocation(
      makeNothing, [](Nothing&) { MachinePosition position; }, checkNothing);
  Entity entity;
  entity.SetEntityName(LongName);
  FailEachAllocation(
      makeNothing, [&entity](Nothing&) { Entity copy(entity); }, checkNothing);
  ProgramSystem ps;
  ps.SetProgramSystemName(LongName);
  FailEachAllocation(
      makeNothing, [&ps](Nothing&) { ProgramSystem copy(ps); }, checkNothing);
  MachinePosition position;
  position.Alloc(Register(3));
  FailEachAllocation(
      makeNothing, [&position](Nothing&) { MachinePosition copy(position); }, checkNothing);
  FailEachAllocation(
      makeNothing, [&position](Nothing&) { position + position; }, checkNothing);
}

TEST(AllocationFailure, AnElementStaysAsItWas) {
  const auto makeEntity = [] {
    auto entity = std::make_unique<Entity>();
    entity->SetEntityName(L"before");
    entity->SetRegister(Register(7));
    return entity;
  };
  const auto expectUnchanged = [](Entity& entity) {
    EXPECT_EQ(entity.GetEntityName(), L"before");
    EXPECT_EQ(entity.GetRegister().GetVal(), 7);
    EXPECT_EQ(entity.GetEntityMesh(), nullptr);
  };
  Entity source;
  source.SetEntityName(LongName);
  FailEachAllocation(
      makeEntity, [&source](Entity& entity) { entity = source; }, expectUnchanged);
  FailEachAllocation(
      makeEntity, [](Entity& entity) { entity.SetEntityName(LongName); }, expectUnchanged);
  FailEachAllocation(
      makeEntity, [](Entity& entity) { entity.AllocEntityMesh(); }, expectUnchanged);
}

TEST(AllocationFailure, AProgramSystemStaysAsItWas) {
  const auto makeProgramSystem = [] {
    auto ps = std::make_unique<ProgramSystem>();
    ps->SetProgramSystemName(L"before");
    ps->SetHeadIndex(HeadIndex(7));
    return ps;
  };
  const auto expectUnchanged = [](ProgramSystem& ps) {
    EXPECT_EQ(ps.GetProgramSystemName(), L"before");
    EXPECT_EQ(ps.GetHeadIndex().GetVal(), 7);
  };
  ProgramSystem source;
  source.SetProgramSystemName(LongName);
  FailEachAllocation(
      makeProgramSystem, [&source](ProgramSystem& ps) { ps = source; }, expectUnchanged);
  FailEachAllocation(
      makeProgramSystem, [](ProgramSystem& ps) { ps.SetProgramSystemName(LongName); },
      expectUnchanged);
}

TEST(AllocationFailure, APositionStaysAsItWas) {
  const auto makePosition = [] {
    auto position = std::make_unique<MachinePosition>();
    position->Alloc(Register(2));
    position->SetAll(4.0);
    return position;
  };
  const auto expectUnchanged = [](MachinePosition& position) {
    ASSERT_EQ(position.Size(), 2U);
    EXPECT_EQ(position[Register(0)], 4.0);
    EXPECT_EQ(position[Register(1)], 4.0);
  };
  MachinePosition larger;
  larger.Alloc(Register(50));
  FailEachAllocation(
      makePosition, [&larger](MachinePosition& position) { position = larger; }, expectUnchanged);
  FailEachAllocation(
      makePosition, [](MachinePosition& position) { position.Alloc(Register(50)); },
      expectUnchanged);
  FailEachAllocation(
      makePosition, [](MachinePosition& position) { position.Alloc(50ULL); }, expectUnchanged);
}

TEST(AllocationFailure, CollisionListsStayAsTheyWere) {
  const auto makeCheck = [] {
    auto check = std::make_unique<CollisionCheck>();
    check->SetMachineTool(1, true);
    check->SetMachineMachine(1, 2, true);
    return check;
  };
  const auto expectUnchanged = [](CollisionCheck& check) {
    std::list<EntityId> ids;
    check.GetListMachineTool(&ids);
    EXPECT_EQ(ids.size(), 1U);
    EXPECT_FALSE(check.GetMachineTool(3));
    EXPECT_FALSE(check.GetMachineMachine(2, 3));
    check.GetListMachineMachine(2, &ids, true);
    EXPECT_EQ(ids.size(), 1U);
    check.GetListMachineMachine(3, &ids, true);
    EXPECT_EQ(ids.size(), 0U);
    // Both work again.
    check.SetMachineTool(3, true);
    check.SetMachineMachine(2, 3, true);
    check.GetListMachineTool(&ids);
    EXPECT_EQ(ids.size(), 2U);
    check.GetListMachineMachine(2, &ids, true);
    EXPECT_EQ(ids.size(), 2U);
  };
  FailEachAllocation(
      makeCheck, [](CollisionCheck& check) { check.SetMachineTool(3, true); }, expectUnchanged);
  FailEachAllocation(
      makeCheck, [](CollisionCheck& check) { check.SetMachineMachine(2, 3, true); },
      expectUnchanged);
  std::list<EntityId> out = {EntityId(9)};
  const auto expectOutUnchanged = [&out](CollisionCheck&) {
    ASSERT_EQ(out.size(), 1U);
    EXPECT_EQ(out.front().GetVal(), 9);
  };
  FailEachAllocation(
      makeCheck, [&out](CollisionCheck& check) { check.GetListMachineTool(&out); },
      expectOutUnchanged);
  out = {EntityId(9)};
  FailEachAllocation(
      makeCheck, [&out](CollisionCheck& check) { check.GetListMachineMachine(1, &out, true); },
      expectOutUnchanged);
}

TEST(AllocationFailure, AMeshThatIsNotAddedStaysTheCallers) {
  auto mesh = std::make_unique<Mesh>();
  FailEachAllocation([] { return std::make_unique<EntityMesh>(); },
                     [&mesh](EntityMesh& list) {
                       list.AddMesh(mesh.get(), 1);
                       static_cast<void>(mesh.release());
                     },
                     [](EntityMesh& list) { EXPECT_EQ(list.GetMeshNb(), 0U); });
}

TEST(AllocationFailure, AMeshStaysAsItWas) {
  FailEachAllocation(
      [] {
        auto mesh = std::make_unique<Mesh>();
        mesh->AllocTabVertices(2)[1] = AxisX;
        return mesh;
      },
      [](Mesh& mesh) { mesh.AllocTabVertices(5); },
      [](Mesh& mesh) {
        EXPECT_EQ(mesh.GetDimVertices(), 2U);
        EXPECT_EQ(mesh.GetTabVertices()[1] == AxisX, 1);
      });
}

}  // namespace
}  // namespace Orvo::Kin
