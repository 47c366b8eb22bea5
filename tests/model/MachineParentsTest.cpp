#include "model/EntityAccess.h"
#include "model/PlainMachine.h"
#include "support/TestRandom.h"

#include <Orvo/Kin/Machine.h>

#include <gtest/gtest.h>

#include <vector>

namespace Orvo {

namespace Kin {
namespace {

using Testing::AddPlain;
using Testing::BuildValid;
using Testing::SetEntityId;
using Testing::TestRandom;

TEST(MachineParents, ParentsAndLevelsFollowTheIds) {
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

TEST(MachineParents, ACycleIsCutAndAllElseIsDone) {
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
  ring[2]->SetParentEntityId(EntityId());
  EXPECT_TRUE(machine.Finish());
}

TEST(MachineParents, IsTheNaiveWalkOnRandomMachines) {
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
TEST(MachineParents, TakesADeepTreeInAnyOrder) {
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

TEST(MachineParents, TakesALongCycle) {
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

}  // namespace
}  // namespace Kin
}  // namespace Orvo
