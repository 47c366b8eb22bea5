#include "model/EntityAccess.h"
#include "model/PlainMachine.h"
#include "support/PrivateMember.h"

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

}  // namespace Testing

namespace Kin {
namespace {

using Testing::AddHead;
using Testing::AddLinear;
using Testing::AddMainAxes;
using Testing::AddPlain;
using Testing::AddRotary;
using Testing::AddTable;
using Testing::BuildValid;
using Testing::SetEntityId;
using Testing::SetEntityType;

constexpr int LargestPlace = 16777215;

bool IsValid(Machine* machine) { return (machine->*MemberOf(Testing::IsValidOf()))(); }

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

TEST(MachineFinish, IsValidRemembersACycle) {
  Machine machine;
  BuildValid(&machine);
  machine.AddEntity()->SetParentEntityId(EntityId(6));
  ASSERT_FALSE(machine.Finish());
  EXPECT_FALSE(IsValid(&machine));
  EXPECT_EQ(machine.GetLastError(), MachineErrorParentCycle);
}

TEST(MachineFinish, IsValidLeavesTheFlagAlone) {
  Machine machine;
  BuildValid(&machine);
  ASSERT_TRUE(machine.Finish());
  EXPECT_TRUE(IsValid(&machine));
  EXPECT_TRUE(machine.IsFinished());
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
