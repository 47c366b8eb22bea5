#include "faults/Describe.h"
#include "faults/MemorySweep.h"
#include "faults/SampleMachine.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Kin/CollisionCheck.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Mesh.h>

#include <gtest/gtest.h>

#include <list>
#include <memory>
#include <string>

namespace Orvo::Testing {
namespace {

using Kin::CollisionCheck;
using Kin::Entity;
using Kin::EntityId;
using Kin::EntityMesh;
using Kin::Kinematic;
using Kin::Machine;
using Kin::MachinePosition;
using Kin::ProgramSystem;
using Kin::Register;

const std::wstring LongName(100, L'n');

std::unique_ptr<Machine> MakeSample() {
  auto machine = std::make_unique<Machine>();
  BuildSample(*machine);
  return machine;
}

std::unique_ptr<Machine> MakeFinishedSample() {
  auto machine = MakeSample();
  EXPECT_TRUE(machine->Finish());
  return machine;
}

std::string DescribeMachine(Machine& machine) { return Describe(machine); }

// An operation that returns nothing has done what it is for unless it throws.
template <typename Subject, typename Call>
auto Always(Call call) {
  return [call](Subject& subject) {
    call(subject);
    return true;
  };
}

template <typename Call>
void RefuseEachRequestOfMachine(const std::string& name, Call call) {
  RefuseEachRequest(name, Leaves::Unchanged, MakeSample, Always<Machine>(call), DescribeMachine);
}

// What is made and goes again with the operation has no subject.
struct Nothing {};

template <typename Call>
void RefuseEachRequestOf(const std::string& name, Call call) {
  RefuseEachRequest(
      name, Leaves::Unchanged, [] { return std::make_unique<Nothing>(); },
      Always<Nothing>([call](Nothing&) { call(); }), [](Nothing&) { return std::string(); });
}

TEST(ModelMemory, AddingAnElementAddsItOrNone) {
  RefuseEachRequestOfMachine("add an element", [](Machine& machine) { machine.AddEntity(); });
  Entity entity;
  entity.SetEntityName(LongName);
  RefuseEachRequestOfMachine("add an element",
                             [&entity](Machine& machine) { machine.AddEntity(entity); });
  RefuseEachRequestOfMachine("add an element", [](Machine& machine) {
    machine.AddEntityLinear(LongName, EntityId(1), AxisX);
  });
  RefuseEachRequestOfMachine("add an element", [](Machine& machine) {
    machine.AddEntityRotary(LongName, EntityId(1), AxisX, AxisX);
  });
  RefuseEachRequestOfMachine(
      "add an element", [](Machine& machine) { machine.AddEntityStatic(LongName, EntityId(1)); });
  RefuseEachRequestOfMachine("add an element", [](Machine& machine) {
    machine.AddEntityHead(LongName, EntityId(1), Matrix43());
  });
  RefuseEachRequestOfMachine("add an element", [](Machine& machine) {
    machine.AddEntityTable(LongName, EntityId(1), Matrix43());
  });
}

TEST(ModelMemory, AddingAProgramSystemAddsItOrNone) {
  ProgramSystem programSystem;
  programSystem.SetProgramSystemName(LongName);
  const auto add = [&programSystem](Machine& machine) { machine.AddProgramSystem(programSystem); };
  RefuseEachRequestOfMachine("add a program system", add);
  RefuseEachRequest("add a program system", Leaves::Unchanged, MakeFinishedSample,
                    Always<Machine>(add), DescribeMachine);
}

TEST(ModelMemory, FinishTakesAllStepsOrNone) {
  const auto finish = [](Machine& machine) { return machine.Finish(); };
  RefuseEachRequest("finish", Leaves::Unchanged, MakeSample, finish, DescribeMachine);
  RefuseEachRequest("finish again", Leaves::Unchanged, MakeFinishedSample, finish, DescribeMachine);
  // Without a program system of its own the machine gets one.
  const auto makeBare = [] {
    auto machine = std::make_unique<Machine>();
    for (const Vector3D& dir : {AxisX, AxisY, AxisZ}) {
      machine->AddEntityLinear(LongName, EntityId(), dir);
    }
    machine->AddEntityHead(L"head", EntityId(3), Matrix43());
    machine->AddEntityTable(L"table", EntityId(), Matrix43());
    return machine;
  };
  RefuseEachRequest("finish", Leaves::Unchanged, makeBare, finish, DescribeMachine);
}

TEST(ModelMemory, FinishOfAnExampleTakesAllStepsOrNone) {
  const std::wstring path = TemporaryFolder::ToWide(ExampleMachineFile("millturn_2h2t"));
  const auto read = [&path] {
    auto machine = std::make_unique<Machine>();
    EXPECT_TRUE(machine->ReadXML(path));
    return machine;
  };
  RefuseEachRequest(
      "finish again", Leaves::Unchanged, read, [](Machine& machine) { return machine.Finish(); },
      DescribeMachine);
}

TEST(ModelMemory, MakingObjectsLeavesNothing) {
  RefuseEachRequestOf("make an object", [] { Machine machine; });
  RefuseEachRequestOf("make an object", [] { Kinematic kinematic; });
  RefuseEachRequestOf("make an object", [] { CollisionCheck check; });
  RefuseEachRequestOf("make an object", [] { ProgramSystem programSystem; });
  RefuseEachRequestOf("make an object", [] { Entity entity; });
  RefuseEachRequestOf("make an object", [] { EntityMesh list; });
  RefuseEachRequestOf("make an object", [] { MachinePosition position; });
  RefuseEachRequestOf("make a whole machine", [] {
    Machine machine;
    BuildSample(machine);
    machine.Finish();
  });
}

TEST(ModelMemory, CopyingObjectsLeavesNothing) {
  Entity entity;
  entity.SetEntityName(LongName);
  RefuseEachRequestOf("copy an object", [&entity] { Entity copy(entity); });
  ProgramSystem programSystem;
  programSystem.SetProgramSystemName(LongName);
  RefuseEachRequestOf("copy an object", [&programSystem] { ProgramSystem copy(programSystem); });
  MachinePosition position;
  position.Alloc(Register(3));
  RefuseEachRequestOf("copy an object", [&position] { MachinePosition copy(position); });
  RefuseEachRequestOf("calculate with positions", [&position] { position + position; });
  RefuseEachRequestOf("calculate with positions", [&position] { position - position; });
  RefuseEachRequestOf("calculate with positions", [&position] { -position; });
  RefuseEachRequestOf("calculate with positions", [&position] { position * 2.0; });
  RefuseEachRequestOf("calculate with positions", [&position] { position / 2.0; });
}

// Copies that are handles share what there is, and values without memory are plain numbers.
TEST(ModelMemory, CopyingHandlesAsksForNone) {
  const auto machine = MakeFinishedSample();
  const Mesh& mesh = *machine->GetKinematic().GetEntity(EntityId(1))->GetEntityMesh()->GetMesh(0);
  const Kin::EntityLink link;
  Machine otherMachine;
  Kinematic otherKinematic;
  CollisionCheck otherCheck;
  Mesh otherMesh;
  EXPECT_EQ(AllocationsOf([&] {
              const Machine copyOfMachine(*machine);
              const Kinematic copyOfKinematic(machine->GetKinematic());
              const CollisionCheck copyOfCheck(machine->GetCollisionCheck());
              const Mesh copyOfMesh(mesh);
              const Kin::EntityLink copyOfLink(link);
              otherMachine = *machine;
              otherKinematic = machine->GetKinematic();
              otherCheck = machine->GetCollisionCheck();
              otherMesh = mesh;
            }),
            0U);
}

TEST(ModelMemory, AnElementChangesWhollyOrNot) {
  const auto makeEntity = [] {
    auto entity = std::make_unique<Entity>();
    entity->SetEntityName(L"before");
    entity->SetRegister(Register(7));
    entity->GetEntityLinkMod()->SetEntityLinkLinear(AxisY);
    return entity;
  };
  const auto describe = [](Entity& entity) { return Describe(entity); };
  Entity source;
  source.SetEntityName(LongName);
  source.GetEntityLinkMod()->SetEntityLinkRotary(AxisX, AxisZ);
  const auto refuse = [&](const std::string& name, auto call) {
    RefuseEachRequest(name, Leaves::Unchanged, makeEntity, Always<Entity>(call), describe);
  };
  refuse("assign an object", [&source](Entity& entity) { entity = source; });
  refuse("set a name", [](Entity& entity) { entity.SetEntityName(LongName); });
  refuse("make a list of meshes", [](Entity& entity) { entity.AllocEntityMesh(); });
}

TEST(ModelMemory, AProgramSystemChangesWhollyOrNot) {
  const auto makeProgramSystem = [] {
    auto programSystem = std::make_unique<ProgramSystem>();
    programSystem->SetProgramSystemName(L"before");
    programSystem->SetHeadIndex(7);
    return programSystem;
  };
  const auto describe = [](ProgramSystem& programSystem) { return Describe(programSystem); };
  ProgramSystem source;
  source.SetProgramSystemName(LongName);
  source.SetMainLinear(3, 4, 5);
  RefuseEachRequest("assign an object", Leaves::Unchanged, makeProgramSystem,
                    Always<ProgramSystem>([&source](ProgramSystem& to) { to = source; }), describe);
  RefuseEachRequest(
      "set a name", Leaves::Unchanged, makeProgramSystem,
      Always<ProgramSystem>([](ProgramSystem& to) { to.SetProgramSystemName(LongName); }),
      describe);
}

TEST(ModelMemory, APositionChangesWhollyOrNot) {
  const auto makePosition = [] {
    auto position = std::make_unique<MachinePosition>();
    position->Alloc(Register(2));
    position->SetAll(4.0);
    return position;
  };
  const auto refuse = [&makePosition](const std::string& name, auto call) {
    RefuseEachRequest(name, Leaves::Unchanged, makePosition, Always<MachinePosition>(call),
                      [](MachinePosition& position) { return Describe(position); });
  };
  MachinePosition larger;
  larger.Alloc(Register(50));
  refuse("assign an object", [&larger](MachinePosition& position) { position = larger; });
  refuse("size a position", [](MachinePosition& position) { position.Alloc(Register(50)); });
  refuse("size a position", [](MachinePosition& position) { position.Alloc(50ULL); });
  const auto machine = MakeFinishedSample();
  refuse("size a position", [&machine](MachinePosition& position) { machine->Alloc(&position); });
}

TEST(ModelMemory, CollisionListsChangeWhollyOrNot) {
  const auto makeCheck = [] {
    auto check = std::make_unique<CollisionCheck>();
    check->SetMachineTool(1, true);
    check->SetMachineMachine(1, 2, true);
    return check;
  };
  const auto refuse = [&makeCheck](const std::string& name, auto call) {
    RefuseEachRequest(name, Leaves::Unchanged, makeCheck, Always<CollisionCheck>(call),
                      [](CollisionCheck& check) { return Describe(check, 5); });
  };
  refuse("set a collision", [](CollisionCheck& check) { check.SetMachineStock(3, true); });
  refuse("set a collision", [](CollisionCheck& check) { check.SetMachinePart(3, true); });
  refuse("set a collision", [](CollisionCheck& check) { check.SetMachineFixture(3, true); });
  refuse("set a collision", [](CollisionCheck& check) { check.SetMachineTool(3, true); });
  refuse("set a collision", [](CollisionCheck& check) { check.SetMachineMachine(2, 3, true); });
  refuse("set a collision", [](CollisionCheck& check) { check.SetMachineMachine(4, 5, true); });
}

// What is taken out is given back: that can't fail.
TEST(ModelMemory, TakingCollisionsOutAsksForNone) {
  CollisionCheck check;
  check.SetMachineTool(1, true);
  check.SetMachineMachine(1, 2, true);
  EXPECT_EQ(AllocationsOf([&check] {
              check.SetMachineTool(1, false);
              check.SetMachineMachine(1, 2, false);
            }),
            0U);
}

TEST(ModelMemory, AListOfCollisionsIsHandedOutWhollyOrNot) {
  CollisionCheck check;
  for (int id = 1; id < 4; ++id) {
    check.SetMachineStock(id, true);
    check.SetMachinePart(id, true);
    check.SetMachineFixture(id, true);
    check.SetMachineTool(id, true);
    check.SetMachineMachine(id, 9, true);
  }
  const auto refuse = [](auto call) {
    RefuseEachRequest(
        "list collisions", Leaves::Unchanged,
        [] { return std::make_unique<std::list<EntityId>>(1, EntityId(5)); },
        Always<std::list<EntityId>>(call),
        [](std::list<EntityId>& ids) {
          std::string text;
          for (const EntityId& id : ids) {
            text += std::to_string(id.GetVal()) + ' ';
          }
          return text;
        });
  };
  refuse([&check](std::list<EntityId>& ids) { check.GetListMachineStock(&ids); });
  refuse([&check](std::list<EntityId>& ids) { check.GetListMachinePart(&ids); });
  refuse([&check](std::list<EntityId>& ids) { check.GetListMachineFixture(&ids); });
  refuse([&check](std::list<EntityId>& ids) { check.GetListMachineTool(&ids); });
  refuse([&check](std::list<EntityId>& ids) { check.GetListMachineMachine(9, &ids, true); });
  refuse([&check](std::list<EntityId>& ids) { check.GetListMachineMachine(9, &ids, false); });
}

TEST(ModelMemory, AMeshThatIsNotAddedStaysTheCallers) {
  auto mesh = std::make_unique<Mesh>();
  mesh->AllocTabNormals(1);
  RefuseEachRequest(
      "add a mesh", Leaves::Unchanged, [] { return std::make_unique<EntityMesh>(); },
      [&mesh](EntityMesh& list) {
        auto copy = std::make_unique<Mesh>(*mesh);
        list.AddMesh(copy.get(), 1);
        static_cast<void>(copy.release());
        return true;
      },
      [](EntityMesh& list) { return Describe(list); });
}

TEST(ModelMemory, AMeshGetsAnArrayOrStaysAsItWas) {
  const auto makeMesh = [] {
    auto mesh = std::make_unique<Mesh>();
    mesh->AllocTabVertices(2)[1] = AxisX;
    mesh->AllocTabNVerts(1)[0] = 3;
    return mesh;
  };
  const auto refuse = [&makeMesh](auto call) {
    RefuseEachRequest("make an array of a mesh", Leaves::Unchanged, makeMesh, Always<Mesh>(call),
                      [](Mesh& mesh) { return Describe(mesh); });
  };
  refuse([](Mesh& mesh) { mesh.AllocTabVertices(5); });
  refuse([](Mesh& mesh) { mesh.AllocTabNVerts(5); });
  refuse([](Mesh& mesh) { mesh.AllocTabIVertex(5); });
  refuse([](Mesh& mesh) { mesh.AllocTabINormal(5); });
  refuse([](Mesh& mesh) { mesh.AllocTabNormals(5); });
}

TEST(ModelMemory, ATextForDebuggingIsWholeOrAsBefore) {
  const auto refuse = [](auto call) {
    RefuseEachRequest(
        "write a text for debugging", Leaves::Unchanged,
        [] { return std::make_unique<std::wstring>(L"before"); }, Always<std::wstring>(call),
        [](std::wstring& text) { return std::string(text.begin(), text.end()); });
  };
  const Vector3D vector(1, 2, 3);
  refuse([&vector](std::wstring& text) { vector.GetStringDebug(&text); });
  const Matrix43 frame;
  refuse([&frame](std::wstring& text) { frame.GetStringDebug(&text); });
}

}  // namespace
}  // namespace Orvo::Testing
