#include "model/EntityAccess.h"
#include "support/PrivateMember.h"
#include "support/TestRandom.h"

#include <Orvo/Kin/Machine.h>

#include <gtest/gtest.h>

#include <limits>
#include <list>
#include <stdexcept>
#include <string>
#include <vector>

namespace Orvo {

namespace Testing {

struct IsValidOf {
  using Type = bool (Kin::Machine::*)();
  friend Type MemberOf(IsValidOf);
};
template struct PrivateMember<IsValidOf, &Kin::Machine::IsValid>;

struct CountLinearAxesNbOf {
  using Type = int (Kin::Machine::*)() const;
  friend Type MemberOf(CountLinearAxesNbOf);
};
template struct PrivateMember<CountLinearAxesNbOf, &Kin::Machine::CountLinearAxesNb>;

using EntityTableOf = std::vector<const Kin::Entity*>* (Kin::Kinematic::*)();

struct TableByEntityIdOf {
  using Type = EntityTableOf;
  friend Type MemberOf(TableByEntityIdOf);
};
template struct PrivateMember<TableByEntityIdOf, &Kin::Kinematic::GetVectorSortedByEntityIdMod>;

struct TableByRegisterOf {
  using Type = EntityTableOf;
  friend Type MemberOf(TableByRegisterOf);
};
template struct PrivateMember<TableByRegisterOf, &Kin::Kinematic::GetVectorSortedByRegisterMod>;

struct LinkTypeOf {
  using Type = Kin::EntityLinkType Kin::EntityLink::*;
  friend Type MemberOf(LinkTypeOf);
};
template struct PrivateMember<LinkTypeOf, &Kin::EntityLink::type_>;

}  // namespace Testing

namespace Kin {
namespace {

using Testing::SetEntityId;
using Testing::SetEntityType;
using Testing::TestRandom;

constexpr int LargestPlace = 16777215;

bool IsValid(Machine* machine) { return (machine->*MemberOf(Testing::IsValidOf()))(); }

Entity* AddLinear(Machine* machine, const Vector3D& dir, int reg) {
  Entity* const entity = machine->AddEntityLinear(L"linear", EntityId(), dir);
  entity->SetRegister(Register(reg));
  return entity;
}

Entity* AddRotary(Machine* machine, int reg) {
  Entity* const entity = machine->AddEntityRotary(L"rotary", EntityId(), NullVector, AxisZ);
  entity->SetRegister(Register(reg));
  return entity;
}

Entity* AddHead(Machine* machine) {
  return machine->AddEntityHead(L"head", EntityId(), Matrix43());
}

Entity* AddTable(Machine* machine) {
  return machine->AddEntityTable(L"table", EntityId(), Matrix43());
}

void AddMainAxes(Machine* machine) {
  AddLinear(machine, AxisX, 0);
  AddLinear(machine, AxisY, 1);
  AddLinear(machine, AxisZ, 2);
}

/// A valid machine with the ids 1 to 5.
void BuildValid(Machine* machine) {
  AddMainAxes(machine);
  AddHead(machine);
  AddTable(machine);
}

std::vector<Entity*> AddPlain(Machine* machine, int count) {
  std::vector<Entity*> entities;
  for (int i = 0; i < count; ++i) {
    entities.push_back(machine->AddEntity());
  }
  return entities;
}

// --- counts and tables ---------------------------------------------------------------------------

TEST(MachineFinish, AValidMachineIsFinished) {
  Machine machine;
  BuildValid(&machine);
  EXPECT_TRUE(machine.Finish());
  EXPECT_TRUE(machine.IsFinished());
  EXPECT_EQ(machine.GetLastError(), MachineErrorNone);
  EXPECT_EQ(machine.GetEntityNb(), 5);
  EXPECT_EQ(machine.GetEntityIdMax().GetVal(), 5);
  EXPECT_EQ(machine.GetRegisterNb().GetVal(), 3);
  EXPECT_EQ(machine.GetHeadNb().GetVal(), 1);
  EXPECT_EQ(machine.GetTableNb().GetVal(), 1);
  EXPECT_EQ(machine.GetLinearAxesNb(), 3);
}

TEST(MachineFinish, AnEmptyMachineIsCountedToo) {
  Machine machine;
  EXPECT_FALSE(machine.Finish());
  EXPECT_EQ(machine.GetLastError(), MachineErrorNoHead);
  EXPECT_EQ(machine.GetEntityNb(), 0);
  EXPECT_EQ(machine.GetEntityIdMax().GetVal(), -1);
  EXPECT_EQ(machine.GetRegisterNb().GetVal(), 1);
  EXPECT_EQ(machine.GetHeadNb().GetVal(), 0);
  EXPECT_EQ(machine.GetTableNb().GetVal(), 0);
  EXPECT_EQ(machine.GetLinearAxesNb(), 0);
  EXPECT_EQ(machine.GetKinematic().GetEntity(EntityId(0)), nullptr);
  EXPECT_EQ(machine.GetKinematic().GetEntity(Register(0)), nullptr);
}

TEST(MachineFinish, LookupsFindElementsByIdAndRegister) {
  Machine machine;
  const std::vector<Entity*> entities = AddPlain(&machine, 4);
  entities[1]->SetRegister(Register(5));
  entities[3]->SetRegister(Register(0));
  machine.Finish();
  const Kinematic& kinematic = machine.GetKinematic();
  EXPECT_EQ(kinematic.GetEntity(EntityId(0)), nullptr) << "ids start at 1";
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(kinematic.GetEntity(EntityId(i + 1)), entities[static_cast<std::size_t>(i)]);
  }
  EXPECT_EQ(kinematic.GetEntity(EntityId(5)), nullptr);
  EXPECT_EQ(kinematic.GetEntity(EntityId(-1)), nullptr);
  EXPECT_EQ(machine.GetRegisterNb().GetVal(), 6);
  EXPECT_EQ(kinematic.GetEntity(Register(0)), entities[3]);
  EXPECT_EQ(kinematic.GetEntity(Register(5)), entities[1]);
  for (const int reg : {-1, 1, 2, 3, 4, 6}) {
    EXPECT_EQ(kinematic.GetEntity(Register(reg)), nullptr) << reg;
  }
}

TEST(MachineFinish, WithoutRegistersThereIsOneRegister) {
  Machine machine;
  AddPlain(&machine, 2)[0]->SetRegister(Register(-5));
  machine.Finish();
  EXPECT_EQ(machine.GetRegisterNb().GetVal(), 1);
  EXPECT_EQ(machine.GetKinematic().GetEntity(Register(0)), nullptr);
}

TEST(MachineFinish, IdZeroIsAnIdAndNegativeOnesAreNone) {
  Machine machine;
  const std::vector<Entity*> entities = AddPlain(&machine, 3);
  SetEntityId(entities[0], 0);
  SetEntityId(entities[1], -1);
  SetEntityId(entities[2], -7);
  entities[0]->SetParentEntityId(EntityId(-1));
  entities[1]->SetParentEntityId(EntityId(0));
  entities[2]->SetParentEntityId(EntityId(-7));
  machine.Finish();
  EXPECT_EQ(machine.GetEntityIdMax().GetVal(), 0);
  EXPECT_EQ(machine.GetEntityNb(), 3);
  EXPECT_EQ(machine.GetKinematic().GetEntity(EntityId(0)), entities[0]);
  EXPECT_EQ(entities[0]->GetParentEntity(), nullptr);
  EXPECT_EQ(entities[1]->GetParentEntity(), entities[0]);
  EXPECT_EQ(entities[2]->GetParentEntity(), nullptr);
}

TEST(MachineFinish, WithoutAnyDefinedIdTheLargestIsUndefined) {
  Machine machine;
  SetEntityId(machine.AddEntity(), -1);
  SetEntityId(machine.AddEntity(), -9);
  machine.Finish();
  EXPECT_EQ(machine.GetEntityIdMax().GetVal(), -1);
  EXPECT_EQ(machine.GetKinematic().GetEntity(EntityId(0)), nullptr);
}

TEST(MachineFinish, OfEqualIdsAndRegistersTheLastWins) {
  Machine machine;
  const std::vector<Entity*> entities = AddPlain(&machine, 4);
  SetEntityId(entities[0], 7);
  SetEntityId(entities[2], 7);
  entities[1]->SetRegister(Register(2));
  entities[3]->SetRegister(Register(2));
  entities[3]->SetParentEntityId(EntityId(7));
  machine.Finish();
  EXPECT_EQ(machine.GetKinematic().GetEntity(EntityId(7)), entities[2]);
  EXPECT_EQ(machine.GetKinematic().GetEntity(Register(2)), entities[3]);
  EXPECT_EQ(entities[3]->GetParentEntity(), entities[2]);
}

TEST(MachineFinish, TablesReachToTheLargestIdAndRegister) {
  Machine machine;
  const std::vector<Entity*> entities = AddPlain(&machine, 3);
  Kinematic kinematic(machine.GetKinematic());
  const auto byEntityId = [&kinematic] {
    return *(kinematic.*MemberOf(Testing::TableByEntityIdOf()))();
  };
  const auto byRegister = [&kinematic] {
    return *(kinematic.*MemberOf(Testing::TableByRegisterOf()))();
  };
  using Table = std::vector<const Entity*>;
  machine.Finish();
  EXPECT_EQ(byEntityId(), Table({nullptr, entities[0], entities[1], entities[2]}));
  EXPECT_EQ(byRegister(), Table({nullptr}));
  SetEntityId(entities[1], 6);
  entities[2]->SetRegister(Register(2));
  machine.Finish();
  EXPECT_EQ(byEntityId(),
            Table({nullptr, entities[0], nullptr, entities[2], nullptr, nullptr, entities[1]}));
  EXPECT_EQ(byRegister(), Table({nullptr, nullptr, entities[2]}));
  for (Entity* const entity : entities) {
    SetEntityId(entity, -1);
    entity->SetRegister(Register());
  }
  machine.Finish();
  EXPECT_EQ(byEntityId(), Table());
  EXPECT_EQ(byRegister(), Table({nullptr}));
}

TEST(MachineFinish, HeadsAndTablesAreNumberedInTheOrderOfTheList) {
  Machine machine;
  Entity* const table0 = AddTable(&machine);
  Entity* const head0 = AddHead(&machine);
  machine.AddEntity();
  Entity* const head1 = AddHead(&machine);
  Entity* const table1 = AddTable(&machine);
  Entity* const head2 = AddHead(&machine);
  machine.Finish();
  const Kinematic& kinematic = machine.GetKinematic();
  EXPECT_EQ(machine.GetHeadNb().GetVal(), 3);
  EXPECT_EQ(machine.GetTableNb().GetVal(), 2);
  EXPECT_EQ(kinematic.GetEntityHead(HeadIndex(0)), head0);
  EXPECT_EQ(kinematic.GetEntityHead(HeadIndex(1)), head1);
  EXPECT_EQ(kinematic.GetEntityHead(HeadIndex(2)), head2);
  EXPECT_EQ(kinematic.GetEntityHead(HeadIndex(3)), nullptr);
  EXPECT_EQ(kinematic.GetEntityHead(HeadIndex(-1)), nullptr);
  EXPECT_EQ(kinematic.GetEntityTable(TableIndex(0)), table0);
  EXPECT_EQ(kinematic.GetEntityTable(TableIndex(1)), table1);
  EXPECT_EQ(kinematic.GetEntityTable(TableIndex(2)), nullptr);
}

TEST(MachineFinish, LinearAxesAreAxesWithALinearLink) {
  Machine machine;
  AddLinear(&machine, AxisX, 0);
  AddLinear(&machine, Vector3D(1, 1, 1), -1);
  AddRotary(&machine, 1);
  machine.AddEntityStatic(L"static", EntityId());
  machine.AddEntity();
  SetEntityType(AddLinear(&machine, AxisX, 2), EntityTypeTable);
  SetEntityType(AddLinear(&machine, AxisX, 3), EntityTypeHead);
  machine.Finish();
  EXPECT_EQ(machine.GetLinearAxesNb(), 2);
  EXPECT_EQ((machine.*MemberOf(Testing::CountLinearAxesNbOf()))(), 2);
}

// --- validation ----------------------------------------------------------------------------------

TEST(MachineFinish, TheFirstFailingCheckSetsTheError) {
  struct Case {
    const char* name;
    int heads, tables, linearAxes;
    bool cyclic;
    MachineErrorType error;
  };
  const Case cases[] = {
      {"nothing missing", 1, 1, 3, false, MachineErrorNone},
      {"more than enough", 2, 2, 4, false, MachineErrorNone},
      {"no head", 0, 1, 3, false, MachineErrorNoHead},
      {"no table", 1, 0, 3, false, MachineErrorNoTable},
      {"two linear axes", 1, 1, 2, false, MachineErrorFewLinearAxes},
      {"no linear axis", 1, 1, 0, false, MachineErrorFewLinearAxes},
      {"neither head nor table", 0, 0, 3, false, MachineErrorNoHead},
      {"no head and two linear axes", 0, 1, 2, false, MachineErrorNoHead},
      {"no table and two linear axes", 1, 0, 2, false, MachineErrorNoTable},
      {"nothing at all", 0, 0, 0, false, MachineErrorNoHead},
      {"a cycle", 1, 1, 3, true, MachineErrorParentCycle},
      {"a cycle and no head", 0, 1, 3, true, MachineErrorParentCycle},
      {"a cycle and no table", 1, 0, 3, true, MachineErrorParentCycle},
      {"a cycle and two linear axes", 1, 1, 2, true, MachineErrorParentCycle},
      {"a cycle and nothing else", 0, 0, 0, true, MachineErrorParentCycle},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Machine machine;
    for (int i = 0; i < c.linearAxes; ++i) {
      AddLinear(&machine, AxisX, i);
    }
    for (int i = 0; i < c.heads; ++i) {
      AddHead(&machine);
    }
    for (int i = 0; i < c.tables; ++i) {
      AddTable(&machine);
    }
    if (c.cyclic) {
      Entity* const entity = machine.AddEntity();
      entity->SetParentEntityId(entity->GetEntityId());
    }
    const bool valid = c.error == MachineErrorNone;
    EXPECT_EQ(machine.Finish(), valid);
    EXPECT_EQ(machine.IsFinished(), valid);
    EXPECT_EQ(machine.GetLastError(), c.error);
    EXPECT_EQ(machine.GetHeadNb().GetVal(), c.heads);
    EXPECT_EQ(machine.GetTableNb().GetVal(), c.tables);
    EXPECT_EQ(machine.GetLinearAxesNb(), c.linearAxes);
    EXPECT_EQ(machine.GetProgramSystemNb().GetVal(), c.heads > 0 && c.tables > 0 ? 1 : 0);
  }
}

TEST(MachineFinish, AFailedMachineCanBeCompleted) {
  Machine machine;
  AddMainAxes(&machine);
  EXPECT_FALSE(machine.Finish());
  EXPECT_EQ(machine.GetLastError(), MachineErrorNoHead);
  ASSERT_NE(AddHead(&machine), nullptr);
  EXPECT_FALSE(machine.Finish());
  EXPECT_EQ(machine.GetLastError(), MachineErrorNoTable);
  EXPECT_NE(machine.GetKinematic().GetEntityHead(HeadIndex(0)), nullptr)
      << "the tables are filled by a failing Finish too";
  ASSERT_NE(AddTable(&machine), nullptr);
  EXPECT_TRUE(machine.Finish());
  EXPECT_EQ(machine.GetLastError(), MachineErrorNone) << "it is the result of the last Finish";
}

TEST(MachineFinish, AFinishedMachineCanFailLater) {
  Machine machine;
  BuildValid(&machine);
  Entity* const extra = machine.AddEntity();
  ASSERT_TRUE(machine.Finish());
  extra->SetParentEntityId(extra->GetEntityId());
  EXPECT_FALSE(machine.Finish());
  EXPECT_FALSE(machine.IsFinished());
  EXPECT_EQ(machine.GetLastError(), MachineErrorParentCycle);
  EXPECT_NE(machine.AddEntity(), nullptr);
  extra->SetParentEntityId(EntityId());
  EXPECT_TRUE(machine.Finish());
  EXPECT_EQ(machine.GetLastError(), MachineErrorNone);
}

TEST(MachineFinish, IsValidChecksTheStoredCountsOnly) {
  Machine machine;
  EXPECT_FALSE(IsValid(&machine));
  EXPECT_EQ(machine.GetLastError(), MachineErrorNoHead);
  BuildValid(&machine);
  EXPECT_FALSE(IsValid(&machine));
  EXPECT_EQ(machine.GetLastError(), MachineErrorNoHead);
  ASSERT_TRUE(machine.Finish());
  const_cast<Entity*>(machine.GetKinematic().GetEntity(EntityId(1)))
      ->GetEntityLinkMod()
      ->SetEntityLinkPosition(Matrix43());
  EXPECT_TRUE(IsValid(&machine));
  EXPECT_FALSE(machine.Finish());
  EXPECT_EQ(machine.GetLastError(), MachineErrorFewLinearAxes);
  EXPECT_FALSE(IsValid(&machine));
  EXPECT_EQ(machine.GetLastError(), MachineErrorFewLinearAxes);
  EXPECT_FALSE(machine.IsFinished());
}

TEST(MachineFinish, IsValidLeavesTheFlagAlone) {
  Machine machine;
  BuildValid(&machine);
  ASSERT_TRUE(machine.Finish());
  EXPECT_TRUE(IsValid(&machine));
  EXPECT_TRUE(machine.IsFinished());
}

// --- the default program system ------------------------------------------------------------------

struct Axis {
  char kind;  // 'l' linear, 'r' rotary
  Vector3D dir;
  int reg;
};

struct DefaultCase {
  const char* name;
  std::vector<Axis> axes;
  std::vector<int> linear;
  std::vector<int> rotary;
};

TEST(MachineFinish, TheDefaultProgramSystemTakesTheMainAxes) {
  const std::vector<int> none = {-1, -1, -1};
  const DefaultCase cases[] = {
      {"main axes and two rotaries",
       {{'l', {1, 0, 0}, 0},
        {'l', {0, -1, 0}, 1},
        {'l', {0, 0, 1}, 2},
        {'r', {0, 0, 1}, 4},
        {'r', {0, 1, 0}, 3}},
       {0, 1, 2},
       {3, 4}},
      {"opposite directions",
       {{'l', {-1, 0, 0}, 5}, {'l', {0, 1, 0}, 7}, {'l', {0, 0, -1}, 6}},
       {5, 7, 6},
       {-1, -1}},
      {"in any order", {{'l', AxisZ, 0}, {'l', AxisX, 1}, {'l', AxisY, 2}}, {1, 2, 0}, {-1, -1}},
      {"long directions are made unit",
       {{'l', {300, 0, 0}, 0}, {'l', {0, 0.002, 0}, 1}, {'l', {0, 0, -7}, 2}},
       {0, 1, 2},
       {-1, -1}},
      {"negative zeros",
       {{'l', {1, -0.0, -0.0}, 0}, {'l', {-0.0, 1, -0.0}, 1}, {'l', {-0.0, -0.0, 1}, 2}},
       {0, 1, 2},
       {-1, -1}},
      {"a direction off by a ten millionth",
       {{'l', {1, 0.0000001, 0}, 0}, {'l', AxisY, 1}, {'l', AxisZ, 2}},
       none,
       {-1, -1}},
      {"a direction whose x is exactly 1 but not its y",
       {{'l', {1, 1e-9, 0}, 0}, {'l', AxisY, 1}, {'l', AxisZ, 2}},
       none,
       {-1, -1}},
      {"no direction counts as X",
       {{'l', {0, 0, 0}, 8}, {'l', AxisY, 1}, {'l', AxisZ, 2}},
       {8, 1, 2},
       {-1, -1}},
      {"X missing", {{'l', AxisZ, 0}, {'l', AxisY, 1}, {'l', AxisZ, 2}}, none, {-1, -1}},
      {"Y missing", {{'l', AxisX, 0}, {'l', AxisX, 1}, {'l', AxisZ, 2}}, none, {-1, -1}},
      {"Z missing", {{'l', AxisX, 0}, {'l', AxisY, 1}, {'l', AxisY, 2}}, none, {-1, -1}},
      {"the last of each direction",
       {{'l', AxisX, 0}, {'l', AxisY, 1}, {'l', AxisZ, 2}, {'l', {-1, 0, 0}, 9}},
       {9, 1, 2},
       {-1, -1}},
      {"the last of each direction, undefined",
       {{'l', AxisX, 0}, {'l', AxisY, 1}, {'l', AxisZ, 2}, {'l', {-1, 0, 0}, -1}},
       none,
       {-1, -1}},
      {"an undefined X before",
       {{'l', AxisX, -1}, {'l', AxisX, 4}, {'l', AxisY, 1}, {'l', AxisZ, 2}},
       {4, 1, 2},
       {-1, -1}},
      {"two axes on one register",
       {{'l', AxisX, 3}, {'l', AxisY, 3}, {'l', AxisZ, 3}},
       {3, 3, 3},
       {-1, -1}},
      {"one rotary", {{'r', AxisX, 6}}, none, {6, -1}},
      {"ascending rotaries", {{'r', AxisX, 2}, {'r', AxisX, 6}}, none, {2, 6}},
      {"descending rotaries", {{'r', AxisX, 6}, {'r', AxisX, 2}}, none, {2, 6}},
      {"the first two of three", {{'r', AxisX, 6}, {'r', AxisX, 5}, {'r', AxisX, 1}}, none, {5, 6}},
      {"undefined rotaries are passed over",
       {{'r', AxisX, -1}, {'r', AxisX, 6}, {'r', AxisX, -4}, {'r', AxisX, 1}},
       none,
       {1, 6}},
      {"only undefined rotaries", {{'r', AxisX, -1}, {'r', AxisX, -1}}, none, {-1, -1}},
      {"one defined rotary, then undefined ones",
       {{'r', AxisX, 3}, {'r', AxisX, -2}},
       none,
       {3, -2}},
      {"rotaries on one register", {{'r', AxisX, 5}, {'r', AxisX, 5}}, none, {5, 5}},
      {"rotary register 0", {{'r', AxisX, 0}, {'r', AxisX, 1}}, none, {0, 1}},
      {"a rotary along X is no X",
       {{'r', AxisX, 0}, {'l', AxisY, 1}, {'l', AxisZ, 2}},
       none,
       {0, -1}},
  };
  for (const DefaultCase& c : cases) {
    SCOPED_TRACE(c.name);
    Machine machine;
    for (const Axis& axis : c.axes) {
      if (axis.kind == 'l') {
        AddLinear(&machine, axis.dir, axis.reg);
      } else {
        AddRotary(&machine, axis.reg);
      }
    }
    AddHead(&machine);
    AddTable(&machine);
    machine.Finish();
    ASSERT_EQ(machine.GetProgramSystemNb().GetVal(), 1);
    ProgramSystem ps(*machine.GetProgramSystem(ProgramSystemIndex(0)));
    EXPECT_EQ(ps.GetProgramSystemName(), L"Default");
    EXPECT_EQ(ps.GetTableIndex().GetVal(), 0);
    EXPECT_EQ(ps.GetHeadIndex().GetVal(), 0);
    EXPECT_EQ(ps.GetRotariesCompute(), RotariesComputeShortestWay);
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(ps.GetMainLinear(i).GetVal(), c.linear[static_cast<std::size_t>(i)]) << i;
    }
    for (int i = 0; i < 2; ++i) {
      EXPECT_EQ(ps.GetMainRotary(i).GetVal(), c.rotary[static_cast<std::size_t>(i)]) << i;
    }
  }
}

TEST(MachineFinish, LinksCountForTheDefaultProgramSystemWhateverTheElement) {
  Machine machine;
  AddLinear(&machine, AxisY, 1);
  AddLinear(&machine, AxisZ, 2);
  SetEntityType(AddLinear(&machine, AxisX, 0), EntityTypeTable);
  SetEntityType(AddRotary(&machine, 3), EntityTypeHead);
  machine.Finish();
  const ProgramSystem* const ps = machine.GetProgramSystem(ProgramSystemIndex(0));
  ASSERT_NE(ps, nullptr);
  EXPECT_EQ(ps->GetMainLinear(0).GetVal(), 0);
  EXPECT_EQ(ps->GetMainRotary(0).GetVal(), 3);
}

TEST(MachineFinish, OtherLinksAreNoMainAxes) {
  for (int type = EntityLinkTypePosition; type <= EntityLinkTypeUndef; ++type) {
    SCOPED_TRACE(type);
    Machine machine;
    AddMainAxes(&machine);
    EntityLink* const link = AddLinear(&machine, AxisX, 9)->GetEntityLinkMod();
    link->*MemberOf(Testing::LinkTypeOf()) = static_cast<EntityLinkType>(type);
    AddHead(&machine);
    AddTable(&machine);
    EXPECT_TRUE(machine.Finish());
    EXPECT_EQ(machine.GetLinearAxesNb(), 3);
    EXPECT_EQ(machine.GetProgramSystem(ProgramSystemIndex(0))->GetMainLinear(0).GetVal(), 0);
    EXPECT_EQ(machine.GetProgramSystem(ProgramSystemIndex(0))->GetMainRotary(0).GetVal(), -1);
  }
}

TEST(MachineFinish, AMachineWithOwnProgramSystemsGetsNoDefault) {
  Machine machine;
  BuildValid(&machine);
  ProgramSystem ps;
  ps.SetProgramSystemName(L"own");
  machine.AddProgramSystem(ps);
  EXPECT_TRUE(machine.Finish());
  ASSERT_EQ(machine.GetProgramSystemNb().GetVal(), 1);
  EXPECT_EQ(machine.GetProgramSystem(ProgramSystemIndex(0))->GetProgramSystemName(), L"own");
}

TEST(MachineFinish, TheDefaultProgramSystemIsAddedBeforeValidation) {
  Machine machine;
  AddLinear(&machine, AxisX, 0);
  AddLinear(&machine, AxisY, 1);
  AddHead(&machine);
  AddTable(&machine);
  EXPECT_FALSE(machine.Finish());
  EXPECT_EQ(machine.GetLastError(), MachineErrorFewLinearAxes);
  ASSERT_EQ(machine.GetProgramSystemNb().GetVal(), 1);
  EXPECT_EQ(machine.GetProgramSystem(ProgramSystemIndex(0))->GetProgramSystemName(), L"Default");
  // Once there, it is not made again, and keeps what it took.
  AddLinear(&machine, AxisZ, 2);
  EXPECT_TRUE(machine.Finish());
  EXPECT_TRUE(machine.Finish());
  ASSERT_EQ(machine.GetProgramSystemNb().GetVal(), 1);
  EXPECT_EQ(machine.GetProgramSystem(ProgramSystemIndex(0))->GetMainLinear(2).GetVal(), -1);
}

// --- finishing again -----------------------------------------------------------------------------

TEST(MachineFinish, AgainOnTheSameMachineGivesTheSame) {
  Machine machine;
  BuildValid(&machine);
  EXPECT_TRUE(machine.Finish());
  EXPECT_TRUE(machine.Finish());
  EXPECT_EQ(machine.GetEntityNb(), 5);
  EXPECT_EQ(machine.GetProgramSystemNb().GetVal(), 1);
  EXPECT_NE(machine.GetKinematic().GetEntity(EntityId(5)), nullptr);
}

TEST(MachineFinish, AgainTakesAllElementsAnew) {
  Machine machine;
  AddMainAxes(&machine);
  Entity* const head = AddHead(&machine);
  Entity* const table = AddTable(&machine);
  Entity* const moved = machine.AddEntity();
  Entity* const child = machine.AddEntity();
  moved->SetRegister(Register(5));
  child->SetRegister(Register(9));
  child->SetParentEntityId(moved->GetEntityId());
  ASSERT_TRUE(machine.Finish());
  ASSERT_EQ(child->GetLevel(), 1);

  moved->SetRegister(Register(4));
  SetEntityId(moved, 12);
  SetEntityType(head, EntityTypeTable);
  SetEntityType(table, EntityTypeHead);
  EXPECT_TRUE(machine.Finish());
  const Kinematic& kinematic = machine.GetKinematic();
  EXPECT_EQ(kinematic.GetEntity(Register(5)), nullptr) << "the old slot is cleared";
  EXPECT_EQ(kinematic.GetEntity(Register(4)), moved);
  EXPECT_EQ(kinematic.GetEntity(EntityId(6)), nullptr) << "the old slot is cleared";
  EXPECT_EQ(kinematic.GetEntity(EntityId(12)), moved);
  EXPECT_EQ(kinematic.GetEntity(EntityId(11)), nullptr);
  EXPECT_EQ(kinematic.GetEntityHead(HeadIndex(0)), table);
  EXPECT_EQ(kinematic.GetEntityHead(HeadIndex(1)), nullptr);
  EXPECT_EQ(kinematic.GetEntityTable(TableIndex(0)), head);
  EXPECT_EQ(kinematic.GetEntityTable(TableIndex(1)), nullptr);
  EXPECT_EQ(child->GetParentEntity(), nullptr) << "no element has the id 6 any more";
  EXPECT_EQ(child->GetLevel(), 0);

  SetEntityId(moved, 6);
  child->SetRegister(Register(1));
  EXPECT_TRUE(machine.Finish());
  EXPECT_EQ(machine.GetEntityIdMax().GetVal(), 7);
  EXPECT_EQ(machine.GetRegisterNb().GetVal(), 5);
  EXPECT_EQ(kinematic.GetEntity(EntityId(12)), nullptr) << "the tables shrink";
  EXPECT_EQ(kinematic.GetEntity(Register(9)), nullptr);
  EXPECT_EQ(child->GetParentEntity(), moved);
  EXPECT_EQ(child->GetLevel(), 1);
}

// --- parents and levels --------------------------------------------------------------------------

TEST(MachineFinish, ParentsAndLevelsFollowTheIds) {
  Machine machine;
  const std::vector<Entity*> e = AddPlain(&machine, 6);
  e[0]->SetParentEntityId(EntityId(3));
  e[1]->SetParentEntityId(EntityId(1));
  e[2]->SetParentEntityId(EntityId());
  e[3]->SetParentEntityId(EntityId(99));
  e[4]->SetParentEntityId(EntityId(2));
  e[5]->SetParentEntityId(EntityId(4));
  machine.Finish();
  EXPECT_EQ(e[0]->GetParentEntity(), e[2]);
  EXPECT_EQ(e[1]->GetParentEntity(), e[0]);
  EXPECT_EQ(e[2]->GetParentEntity(), nullptr);
  EXPECT_EQ(e[3]->GetParentEntity(), nullptr) << "no element has this id";
  EXPECT_EQ(e[4]->GetParentEntity(), e[1]);
  EXPECT_EQ(e[5]->GetParentEntity(), e[3]);
  const int levels[] = {1, 2, 0, 0, 3, 1};
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(e[i]->GetLevel(), levels[i]);
  }
}

TEST(MachineFinish, ACycleIsCutAndAllElseIsDone) {
  Machine machine;
  BuildValid(&machine);
  const std::vector<Entity*> ring = AddPlain(&machine, 3);  // ids 6 to 8
  ring[0]->SetParentEntityId(EntityId(7));
  ring[1]->SetParentEntityId(EntityId(8));
  ring[2]->SetParentEntityId(EntityId(6));
  EXPECT_FALSE(machine.Finish());
  EXPECT_EQ(machine.GetLastError(), MachineErrorParentCycle);
  EXPECT_FALSE(machine.IsFinished());
  EXPECT_EQ(ring[0]->GetParentEntity(), ring[1]);
  EXPECT_EQ(ring[1]->GetParentEntity(), ring[2]);
  EXPECT_EQ(ring[2]->GetParentEntity(), nullptr) << "this one would have closed it";
  EXPECT_EQ(ring[0]->GetLevel(), 2);
  EXPECT_EQ(ring[1]->GetLevel(), 1);
  EXPECT_EQ(ring[2]->GetLevel(), 0);
  EXPECT_EQ(ring[2]->GetParentEntityId().GetVal(), 6) << "what was asked for stays";
  EXPECT_EQ(machine.GetEntityNb(), 8);
  EXPECT_EQ(machine.GetRegisterNb().GetVal(), 3);
  EXPECT_EQ(machine.GetLinearAxesNb(), 3);
  EXPECT_EQ(machine.GetProgramSystemNb().GetVal(), 1);
  EXPECT_NE(machine.GetKinematic().GetEntityHead(HeadIndex(0)), nullptr);
  EXPECT_FALSE(machine.Finish()) << "the cycle is still asked for";
  EXPECT_FALSE(IsValid(&machine));
  EXPECT_EQ(machine.GetLastError(), MachineErrorParentCycle);
  ring[2]->SetParentEntityId(EntityId());
  EXPECT_TRUE(machine.Finish());
}

TEST(MachineFinish, IsTheNaiveWalkOnRandomMachines) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int cyclic = 0;
  for (int round = 0; round < 3000; ++round) {
    Machine machine;
    const int count = random.Integer(1, 10);
    const std::vector<Entity*> entities = AddPlain(&machine, count);
    const double rootShare = random.Real(0.0, 0.7);
    for (Entity* const entity : entities) {
      if (random.Chance(0.2)) {
        SetEntityId(entity, random.Integer(-2, 12));  // equal, undefined and missing ids
      }
      entity->SetParentEntityId(
          EntityId(random.Chance(rootShare) ? -1 : random.Integer(-2, count + 1)));
    }
    // Taking the elements in order, a parent is set unless one of its ancestors is the element.
    std::vector<int> parents(entities.size(), -1);
    bool found = false;
    for (int i = 0; i < count; ++i) {
      int parent = -1;
      const int wanted = entities[static_cast<std::size_t>(i)]->GetParentEntityId().GetVal();
      for (int k = 0; k < count && wanted >= 0; ++k) {
        if (entities[static_cast<std::size_t>(k)]->GetEntityId().GetVal() == wanted) {
          parent = k;
        }
      }
      int ancestor = parent;
      while (ancestor != -1 && ancestor != i) {
        ancestor = parents[static_cast<std::size_t>(ancestor)];
      }
      if (parent != -1 && ancestor == i) {
        found = true;
      } else {
        parents[static_cast<std::size_t>(i)] = parent;
      }
    }
    cyclic += found ? 1 : 0;
    ASSERT_FALSE(machine.Finish());
    ASSERT_EQ(machine.GetLastError(), found ? MachineErrorParentCycle : MachineErrorNoHead);
    for (std::size_t i = 0; i < entities.size(); ++i) {
      const Entity* const expected =
          parents[i] == -1 ? nullptr : entities[static_cast<std::size_t>(parents[i])];
      ASSERT_EQ(entities[i]->GetParentEntity(), expected) << "element " << i;
      int level = 0;
      for (int ancestor = parents[i]; ancestor != -1;
           ancestor = parents[static_cast<std::size_t>(ancestor)]) {
        ++level;
      }
      ASSERT_EQ(entities[i]->GetLevel(), level) << "element " << i;
    }
  }
  EXPECT_GT(cyclic, 300);
  EXPECT_LT(cyclic, 2700);
}

// With a walk to the root for each element this would not end in a test's time.
TEST(MachineFinish, TakesADeepTreeInAnyOrder) {
  constexpr int Count = 200000;
  for (const bool backwards : {false, true}) {
    Machine machine;
    for (int id = 1; id <= Count; ++id) {
      Entity* const entity = machine.AddEntity();
      entity->SetParentEntityId(EntityId(backwards ? id + 1 : id - 1));
    }
    EXPECT_FALSE(machine.Finish());
    EXPECT_EQ(machine.GetLastError(), MachineErrorNoHead);
    const Kinematic& kinematic = machine.GetKinematic();
    EXPECT_EQ(kinematic.GetEntity(EntityId(1))->GetLevel(), backwards ? Count - 1 : 0);
    EXPECT_EQ(kinematic.GetEntity(EntityId(Count))->GetLevel(), backwards ? 0 : Count - 1);
    EXPECT_EQ(kinematic.GetEntity(EntityId(Count / 2))->GetParentEntity(),
              kinematic.GetEntity(EntityId(Count / 2 + (backwards ? 1 : -1))));
  }
}

TEST(MachineFinish, TakesALongCycle) {
  constexpr int Count = 200000;
  Machine machine;
  for (int id = 1; id <= Count; ++id) {
    machine.AddEntity()->SetParentEntityId(EntityId(id == Count ? 1 : id + 1));
  }
  EXPECT_FALSE(machine.Finish());
  EXPECT_EQ(machine.GetLastError(), MachineErrorParentCycle);
  EXPECT_EQ(machine.GetKinematic().GetEntity(EntityId(1))->GetLevel(), Count - 1);
  EXPECT_EQ(machine.GetKinematic().GetEntity(EntityId(Count))->GetParentEntity(), nullptr);
}

// --- bounds --------------------------------------------------------------------------------------

TEST(MachineFinish, TakesIdsAndRegistersUpToTheLargestPlace) {
  Machine machine;
  Entity* const byId = machine.AddEntity();
  SetEntityId(byId, LargestPlace);
  machine.Finish();
  EXPECT_EQ(machine.GetEntityIdMax().GetVal(), LargestPlace);
  EXPECT_EQ(machine.GetKinematic().GetEntity(EntityId(LargestPlace)), byId);
  SetEntityId(byId, 1);
  byId->SetRegister(Register(LargestPlace));
  machine.Finish();
  EXPECT_EQ(machine.GetRegisterNb().GetVal(), LargestPlace + 1);
  EXPECT_EQ(machine.GetKinematic().GetEntity(Register(LargestPlace)), byId);
}

TEST(MachineFinish, ThrowsBeyondTheLargestPlaceBeforeItChangesAnything) {
  struct Case {
    const char* name;
    int id;
    int reg;
    const char* message;
  };
  const int largest = std::numeric_limits<int>::max();
  const Case cases[] = {
      {"the first id too large", LargestPlace + 1, 0, "Machine::Finish : identifier out of range"},
      {"the largest id", largest, 0, "Machine::Finish : identifier out of range"},
      {"the first register too large", 4, LargestPlace + 1,
       "Machine::Finish : register out of range"},
      {"the largest register", 4, largest, "Machine::Finish : register out of range"},
  };
  for (const Case& c : cases) {
    for (const bool finishedBefore : {false, true}) {
      SCOPED_TRACE(testing::Message() << c.name << (finishedBefore ? ", finished before" : ""));
      Machine machine;
      BuildValid(&machine);
      Entity* const child = machine.AddEntity();
      Entity* const culprit = machine.AddEntity();
      child->SetParentEntityId(EntityId(1));
      if (finishedBefore) {
        ASSERT_TRUE(machine.Finish());
      }
      child->SetParentEntityId(child->GetEntityId());
      SetEntityId(culprit, c.id);
      culprit->SetRegister(Register(c.reg));
      try {
        machine.Finish();
        ADD_FAILURE() << "Finish came back";
      } catch (const std::length_error& error) {
        EXPECT_STREQ(error.what(), c.message);
      }
      EXPECT_EQ(machine.IsFinished(), finishedBefore);
      EXPECT_EQ(machine.GetLastError(), MachineErrorNone);
      EXPECT_EQ(machine.GetEntityNb(), finishedBefore ? 7 : 0);
      EXPECT_EQ(machine.GetEntityIdMax().GetVal(), finishedBefore ? 7 : -1);
      EXPECT_EQ(machine.GetRegisterNb().GetVal(), finishedBefore ? 3 : -1);
      EXPECT_EQ(machine.GetHeadNb().GetVal(), finishedBefore ? 1 : -1);
      EXPECT_EQ(machine.GetTableNb().GetVal(), finishedBefore ? 1 : -1);
      EXPECT_EQ(machine.GetLinearAxesNb(), finishedBefore ? 3 : 0);
      EXPECT_EQ(machine.GetProgramSystemNb().GetVal(), finishedBefore ? 1 : 0);
      EXPECT_EQ(child->GetParentEntity(),
                finishedBefore ? &machine.GetKinematic().GetListEntity().front() : nullptr);
      EXPECT_EQ(child->GetLevel(), finishedBefore ? 1 : 0);
      EXPECT_EQ(machine.GetKinematic().GetEntity(EntityId(7)), finishedBefore ? culprit : nullptr);
      // Once repaired, it finishes.
      SetEntityId(culprit, 7);
      culprit->SetRegister(Register(3));
      child->SetParentEntityId(EntityId(1));
      EXPECT_TRUE(machine.Finish());
    }
  }
}

}  // namespace
}  // namespace Kin
}  // namespace Orvo
