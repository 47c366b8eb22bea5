#include "SmallMachines.h"
#include "compute/AxisChain.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::AxisChain;
using Kin::Entity;
using Kin::Machine;
using testing::ElementsAre;

std::vector<int> IdsOf(const AxisChain& chain) {
  std::vector<int> ids;
  chain.Walk([&ids](const Entity& entity, double, int place) {
    EXPECT_EQ(place, static_cast<int>(ids.size()));
    ids.push_back(entity.GetEntityId());
    return true;
  });
  return ids;
}

std::vector<double> SignsOf(const AxisChain& chain) {
  std::vector<double> signs;
  chain.Walk([&signs](const Entity&, double sign, int) {
    signs.push_back(sign);
    return true;
  });
  return signs;
}

TEST(AxisChain, GoesFromTheTableOverTheCommonAncestorToTheHead) {
  const Machine machine = HeadTableMachine();
  AxisChain chain;
  chain.Build(machine.GetKinematic(), 0, 0);
  EXPECT_THAT(IdsOf(chain), ElementsAre(8, 7, 1, 2, 3, 4, 5, 6));
  EXPECT_THAT(SignsOf(chain), ElementsAre(-1, -1, -1, 1, 1, 1, 1, 1));
  EXPECT_EQ(chain.Head(), &EntityOf(machine, 6));
  EXPECT_EQ(chain.Table(), &EntityOf(machine, 8));
  EXPECT_FALSE(chain.IsEmpty());
}

TEST(AxisChain, TurnsAtTheFirstCommonAncestorAndNotAtTheRoot) {
  Machine machine;
  AddFixed(machine, -1);
  AddFixed(machine, 1);
  AddFixed(machine, 2);
  AddTable(machine, 3);
  AddHead(machine, 3);
  machine.Finish();
  AxisChain chain;
  chain.Build(machine.GetKinematic(), 0, 0);
  EXPECT_THAT(IdsOf(chain), ElementsAre(4, 3, 5));
  EXPECT_THAT(SignsOf(chain), ElementsAre(-1, -1, 1));
}

TEST(AxisChain, StartsEmpty) {
  const AxisChain chain;
  EXPECT_TRUE(chain.IsEmpty());
  EXPECT_EQ(chain.Head(), nullptr);
  EXPECT_EQ(chain.Table(), nullptr);
  EXPECT_THAT(IdsOf(chain), ElementsAre());
}

TEST(AxisChain, MissingHeadOrTableEmptiesIt) {
  const Machine machine = HeadHeadMachine();
  for (const auto& [head, table] :
       std::vector<std::pair<int, int>>{{1, 0}, {0, 1}, {-1, 0}, {0, -1}, {1, 1}}) {
    AxisChain chain;
    chain.Build(machine.GetKinematic(), 0, 0);
    ASSERT_FALSE(chain.IsEmpty());
    chain.Build(machine.GetKinematic(), head, table);
    EXPECT_TRUE(chain.IsEmpty());
    EXPECT_EQ(chain.Head(), nullptr);
    EXPECT_EQ(chain.Table(), nullptr);
    chain.Build(machine.GetKinematic(), 0, 0);
    EXPECT_THAT(IdsOf(chain), ElementsAre(2, 1, 3, 4, 5, 6, 7, 8));
  }
}

TEST(AxisChain, WithoutCommonAncestorItIsEmpty) {
  Machine machine;
  AddTable(machine, -1);
  AddHead(machine, -1);
  AddHead(machine, 1);
  machine.Finish();
  AxisChain chain;
  chain.Build(machine.GetKinematic(), 1, 0);
  ASSERT_FALSE(chain.IsEmpty());
  chain.Build(machine.GetKinematic(), 0, 0);
  EXPECT_TRUE(chain.IsEmpty());
  EXPECT_EQ(chain.Head(), nullptr);
  EXPECT_EQ(chain.Table(), nullptr);
}

TEST(AxisChain, TableThatCarriesTheHeadStartsIt) {
  Machine machine;
  AddFixed(machine, -1);
  AddTable(machine, 1);
  AddFixed(machine, 2);
  AddHead(machine, 3);
  machine.Finish();
  AxisChain chain;
  chain.Build(machine.GetKinematic(), 0, 0);
  EXPECT_THAT(IdsOf(chain), ElementsAre(2, 3, 4));
  EXPECT_THAT(SignsOf(chain), ElementsAre(-1, 1, 1));
}

TEST(AxisChain, HeadThatCarriesTheTableEndsIt) {
  Machine machine;
  AddFixed(machine, -1);
  AddHead(machine, 1);
  AddFixed(machine, 2);
  AddTable(machine, 3);
  machine.Finish();
  AxisChain chain;
  chain.Build(machine.GetKinematic(), 0, 0);
  EXPECT_THAT(IdsOf(chain), ElementsAre(4, 3, 2));
  EXPECT_THAT(SignsOf(chain), ElementsAre(-1, -1, -1));
}

// The chain belongs to its two elements: a change of the tree behind them isn't looked for.
TEST(AxisChain, StaysForTheSamePair) {
  Machine machine = HeadHeadMachine();
  AxisChain chain;
  chain.Build(machine.GetKinematic(), 0, 0);
  EntityAt(machine, 7).SetParentEntityId(1);
  machine.Finish();
  chain.Build(machine.GetKinematic(), 0, 0);
  EXPECT_THAT(IdsOf(chain), ElementsAre(2, 1, 3, 4, 5, 6, 7, 8));
  AxisChain fresh;
  fresh.Build(machine.GetKinematic(), 0, 0);
  EXPECT_THAT(IdsOf(fresh), ElementsAre(2, 1, 8));
}

TEST(AxisChain, WalkEndsWhereTheVisitorWantsIt) {
  const Machine machine = HeadHeadMachine();
  AxisChain chain;
  chain.Build(machine.GetKinematic(), 0, 0);
  int visits = 0;
  EXPECT_FALSE(chain.Walk([&visits](const Entity&, double, int) { return ++visits < 3; }));
  EXPECT_EQ(visits, 3);
  EXPECT_TRUE(chain.Walk([](const Entity&, double, int) { return true; }));
}

}  // namespace
}  // namespace Orvo::Testing
