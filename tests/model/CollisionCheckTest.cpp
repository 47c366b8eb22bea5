#include "support/Signature.h"
#include "support/TestRandom.h"

#include <Orvo/Kin/CollisionCheck.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <list>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Orvo::Kin {
namespace {

using Testing::HasSignature;
using Testing::TestRandom;

using Setter = void (CollisionCheck::*)(const EntityId&, bool);
using Getter = bool (CollisionCheck::*)(const EntityId&) const;
using Lister = void (CollisionCheck::*)(std::list<EntityId>*) const;

static_assert(std::has_virtual_destructor_v<CollisionCheck>);
static_assert(!std::is_base_of_v<class ISerializableXML, CollisionCheck>);
static_assert(HasSignature<void (CollisionCheck::*)(const EntityId&, const EntityId&, bool)>(
    &CollisionCheck::SetMachineMachine));
static_assert(HasSignature<bool (CollisionCheck::*)(const EntityId&, const EntityId&) const>(
    &CollisionCheck::GetMachineMachine));
static_assert(HasSignature<void (CollisionCheck::*)(const EntityId&, std::list<EntityId>*, bool)
                               const>(&CollisionCheck::GetListMachineMachine));

struct Family {
  const char* name;
  Setter set;
  Getter get;
  Lister list;
};

const Family Families[] = {
    {"stock", &CollisionCheck::SetMachineStock, &CollisionCheck::GetMachineStock,
     &CollisionCheck::GetListMachineStock},
    {"part", &CollisionCheck::SetMachinePart, &CollisionCheck::GetMachinePart,
     &CollisionCheck::GetListMachinePart},
    {"fixture", &CollisionCheck::SetMachineFixture, &CollisionCheck::GetMachineFixture,
     &CollisionCheck::GetListMachineFixture},
    {"tool", &CollisionCheck::SetMachineTool, &CollisionCheck::GetMachineTool,
     &CollisionCheck::GetListMachineTool},
};

using Ids = std::vector<int>;

Ids Values(const std::list<EntityId>& ids) { return Ids(ids.begin(), ids.end()); }

Ids ListOf(const CollisionCheck& check, const Family& family) {
  std::list<EntityId> ids = {EntityId(99), EntityId(98)};
  (check.*family.list)(&ids);
  return Values(ids);
}

Ids PartnersOf(const CollisionCheck& check, int id, bool all) {
  std::list<EntityId> ids = {EntityId(99), EntityId(98)};
  check.GetListMachineMachine(EntityId(id), &ids, all);
  return Values(ids);
}

TEST(CollisionCheck, StartsEmpty) {
  const CollisionCheck check;
  for (const Family& family : Families) {
    SCOPED_TRACE(family.name);
    EXPECT_EQ(ListOf(check, family), Ids());
    EXPECT_FALSE((check.*family.get)(EntityId(1)));
  }
  EXPECT_FALSE(check.GetMachineMachine(EntityId(1), EntityId(2)));
  EXPECT_EQ(PartnersOf(check, 1, true), Ids());
}

TEST(CollisionCheck, SetsKeepEachIdOnceInTheOrderOfSwitchingOn) {
  for (const Family& family : Families) {
    SCOPED_TRACE(family.name);
    CollisionCheck check;
    for (const int id : {5, 3, 9, 5, -1, 3, 0}) {
      (check.*family.set)(EntityId(id), true);
    }
    EXPECT_EQ(ListOf(check, family), Ids({5, 3, 9, -1, 0}));
    (check.*family.set)(EntityId(3), false);
    (check.*family.set)(EntityId(77), false);
    EXPECT_EQ(ListOf(check, family), Ids({5, 9, -1, 0}));
    EXPECT_FALSE((check.*family.get)(EntityId(3)));
    EXPECT_TRUE((check.*family.get)(EntityId(-1)));
    (check.*family.set)(EntityId(3), true);
    EXPECT_EQ(ListOf(check, family), Ids({5, 9, -1, 0, 3})) << "it comes back at the end";
  }
}

TEST(CollisionCheck, SwitchingOnTwiceNeedsSwitchingOffOnce) {
  for (const Family& family : Families) {
    SCOPED_TRACE(family.name);
    CollisionCheck check;
    (check.*family.set)(5, true);
    (check.*family.set)(5, true);
    EXPECT_EQ(ListOf(check, family), Ids({5}));
    (check.*family.set)(5, false);
    EXPECT_EQ(ListOf(check, family), Ids());
    (check.*family.set)(9, false);
    EXPECT_EQ(ListOf(check, family), Ids());
  }
}

TEST(CollisionCheck, TheFiveSetsAreApart) {
  for (const Family& family : Families) {
    SCOPED_TRACE(family.name);
    CollisionCheck check;
    (check.*family.set)(5, true);
    for (const Family& other : Families) {
      EXPECT_EQ((check.*other.get)(5), &other == &family);
      EXPECT_EQ(ListOf(check, other), &other == &family ? Ids({5}) : Ids());
    }
    EXPECT_EQ(PartnersOf(check, 5, true), Ids());
  }
  CollisionCheck check;
  check.SetMachineMachine(5, 6, true);
  for (const Family& family : Families) {
    EXPECT_EQ(ListOf(check, family), Ids());
  }
}

TEST(CollisionCheck, ListingIgnoresNullAndChangesNothing) {
  CollisionCheck check;
  check.SetMachineMachine(2, 1, true);
  for (const Family& family : Families) {
    (check.*family.set)(4, true);
    (check.*family.list)(nullptr);
    EXPECT_EQ(ListOf(check, family), Ids({4}));
    EXPECT_EQ(ListOf(check, family), Ids({4}));
  }
  check.GetListMachineMachine(2, nullptr, true);
  EXPECT_EQ(PartnersOf(check, 2, true), Ids({1}));
}

TEST(CollisionCheck, AListHandedOutIsACopy) {
  CollisionCheck check;
  check.SetMachineStock(4, true);
  std::list<EntityId> ids;
  check.GetListMachineStock(&ids);
  ids.clear();
  EXPECT_TRUE(check.GetMachineStock(4));
  EXPECT_EQ(ListOf(check, Families[0]), Ids({4}));
}

TEST(CollisionCheck, APairIsUnordered) {
  CollisionCheck check;
  check.SetMachineMachine(3, 7, true);
  EXPECT_TRUE(check.GetMachineMachine(3, 7));
  EXPECT_TRUE(check.GetMachineMachine(7, 3));
  check.SetMachineMachine(7, 3, true);
  EXPECT_EQ(PartnersOf(check, 7, true), Ids({3})) << "a pair is kept once";
  check.SetMachineMachine(7, 3, false);
  EXPECT_FALSE(check.GetMachineMachine(3, 7));
  EXPECT_EQ(PartnersOf(check, 3, true), Ids());
  EXPECT_EQ(PartnersOf(check, 7, true), Ids());
  check.SetMachineMachine(7, 3, false);
  check.SetMachineMachine(3, 8, false);
  EXPECT_FALSE(check.GetMachineMachine(3, 8));
}

TEST(CollisionCheck, AnElementIsNeverPairedWithItself) {
  CollisionCheck check;
  check.SetMachineMachine(4, 4, true);
  EXPECT_FALSE(check.GetMachineMachine(4, 4));
  EXPECT_EQ(PartnersOf(check, 4, true), Ids());
  EXPECT_EQ(PartnersOf(check, 4, false), Ids());
  check.SetMachineMachine(4, 4, false);
  check.SetMachineMachine(4, 5, true);
  EXPECT_FALSE(check.GetMachineMachine(4, 4));
}

TEST(CollisionCheck, ListsAllPartnersOrTheSmallerOnes) {
  CollisionCheck check;
  check.SetMachineMachine(5, 2, true);
  check.SetMachineMachine(9, 5, true);
  EXPECT_EQ(PartnersOf(check, 5, true), Ids({2, 9}));
  EXPECT_EQ(PartnersOf(check, 5, false), Ids({2}));
  EXPECT_EQ(PartnersOf(check, 9, true), Ids({5}));
  EXPECT_EQ(PartnersOf(check, 9, false), Ids({5}));
  EXPECT_EQ(PartnersOf(check, 2, true), Ids({5}));
  EXPECT_EQ(PartnersOf(check, 2, false), Ids());
  EXPECT_EQ(PartnersOf(check, 7, true), Ids()) << "what was in the list is gone";
  EXPECT_EQ(PartnersOf(check, 7, false), Ids());
}

TEST(CollisionCheck, NegativeIdsAreOrderedBySign) {
  CollisionCheck check;
  const int lowest = std::numeric_limits<int>::min();
  check.SetMachineMachine(-1, 3, true);
  check.SetMachineMachine(lowest, -1, true);
  check.SetMachineMachine(lowest, std::numeric_limits<int>::max(), true);
  EXPECT_EQ(PartnersOf(check, 3, false), Ids({-1}));
  EXPECT_EQ(PartnersOf(check, -1, false), Ids({lowest}));
  EXPECT_EQ(PartnersOf(check, -1, true), Ids({3, lowest}));
  EXPECT_EQ(PartnersOf(check, lowest, false), Ids());
  EXPECT_EQ(PartnersOf(check, lowest, true), Ids({-1, std::numeric_limits<int>::max()}));
}

TEST(CollisionCheck, APairSwitchedOnAgainComesLast) {
  CollisionCheck check;
  for (const int id : {8, 1, 6}) {
    check.SetMachineMachine(5, id, true);
  }
  check.SetMachineMachine(8, 5, false);
  check.SetMachineMachine(8, 5, true);
  EXPECT_EQ(PartnersOf(check, 5, true), Ids({1, 6, 8}));
}

/// The lists as plain lists with linear walks.
struct NaiveCheck {
  std::list<std::pair<int, int>> pairs;  // larger id first
  std::list<int> ids;

  static std::pair<int, int> Key(int a, int b) { return {std::max(a, b), std::min(a, b)}; }

  void SetPair(int a, int b, bool on) {
    if (a == b) {
      return;
    }
    const auto found = std::find(pairs.begin(), pairs.end(), Key(a, b));
    if (on && found == pairs.end()) {
      pairs.push_back(Key(a, b));
    } else if (!on && found != pairs.end()) {
      pairs.erase(found);
    }
  }

  void Set(int id, bool on) {
    const auto found = std::find(ids.begin(), ids.end(), id);
    if (on && found == ids.end()) {
      ids.push_back(id);
    } else if (!on && found != ids.end()) {
      ids.erase(found);
    }
  }

  Ids Partners(int id, bool all) const {
    Ids result;
    for (const auto& [first, second] : pairs) {
      if (first == id && (all || second < id)) {
        result.push_back(second);
      }
      if (second == id && (all || first < id)) {
        result.push_back(first);
      }
    }
    return result;
  }
};

TEST(CollisionCheck, BehavesAsPlainListsDo) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int round = 0; round < 40; ++round) {
    CollisionCheck check;
    NaiveCheck naive;
    const Family& family = Families[round % 4];
    for (int step = 0; step < 120; ++step) {
      const int a = random.Integer(-2, 6);
      const int b = random.Integer(-2, 6);
      const bool on = random.Chance(0.6);
      check.SetMachineMachine(a, b, on);
      naive.SetPair(a, b, on);
      (check.*family.set)(a, on);
      naive.Set(a, on);
      ASSERT_EQ(ListOf(check, family), Ids(naive.ids.begin(), naive.ids.end()));
      for (int id = -3; id <= 7; ++id) {
        ASSERT_EQ(PartnersOf(check, id, true), naive.Partners(id, true)) << "step " << step;
        ASSERT_EQ(PartnersOf(check, id, false), naive.Partners(id, false)) << "step " << step;
        ASSERT_EQ((check.*family.get)(id), std::count(naive.ids.begin(), naive.ids.end(), id) != 0);
        ASSERT_EQ(check.GetMachineMachine(a, id),
                  std::count(naive.pairs.begin(), naive.pairs.end(), NaiveCheck::Key(a, id)) != 0);
      }
    }
  }
}

TEST(CollisionCheck, CopiesShareTheSets) {
  CollisionCheck a;
  CollisionCheck b(a);
  b.SetMachinePart(1, true);
  EXPECT_TRUE(a.GetMachinePart(1));
  CollisionCheck c;
  c.SetMachineTool(9, true);
  EXPECT_EQ(&(c = a), &c);
  EXPECT_FALSE(c.GetMachineTool(9)) << "its own sets are gone";
  c.SetMachineMachine(1, 2, true);
  EXPECT_TRUE(a.GetMachineMachine(2, 1));
  EXPECT_TRUE(b.GetMachineMachine(2, 1));
  a.SetMachinePart(1, false);
  EXPECT_FALSE(b.GetMachinePart(1));
  EXPECT_FALSE(c.GetMachinePart(1));
}

TEST(CollisionCheck, TheSetsLiveAsLongAsAnyHandle) {
  auto first = std::make_unique<CollisionCheck>();
  first->SetMachineFixture(4, true);
  first->SetMachineMachine(4, 5, true);
  auto second = std::make_unique<CollisionCheck>(*first);
  first.reset();
  EXPECT_TRUE(second->GetMachineFixture(4));
  CollisionCheck third;
  third = *second;
  second.reset();
  third.SetMachineFixture(6, true);
  EXPECT_EQ(ListOf(third, Families[2]), Ids({4, 6}));
  EXPECT_EQ(PartnersOf(third, 5, true), Ids({4}));
}

TEST(CollisionCheck, AssignmentOntoItselfChangesNothing) {
  CollisionCheck check;
  check.SetMachineStock(4, true);
  const CollisionCheck& self = check;
  check = self;
  EXPECT_TRUE(check.GetMachineStock(4));
}

TEST(CollisionCheck, AMovedHandleStaysUsable) {
  CollisionCheck source;
  source.SetMachineStock(4, true);
  const CollisionCheck target(std::move(source));
  EXPECT_TRUE(target.GetMachineStock(4));
  EXPECT_TRUE(source.GetMachineStock(4));  // NOLINT: a move is a copy here
}

// With a walk over the list for each id this would not end in a test's time.
TEST(CollisionCheck, HoldsHundredsOfThousandsOfIds) {
  CollisionCheck check;
  constexpr int Count = 300000;
  for (int id = Count; id > 0; --id) {
    check.SetMachineTool(id, true);
    check.SetMachineMachine(id % 3000, id % 3000 + 1 + id / 3000, true);
  }
  EXPECT_TRUE(check.GetMachineTool(1));
  EXPECT_TRUE(check.GetMachineTool(Count));
  EXPECT_FALSE(check.GetMachineTool(Count + 1));
  const Ids ids = ListOf(check, Families[3]);
  ASSERT_EQ(ids.size(), static_cast<std::size_t>(Count));
  EXPECT_EQ(ids.front(), Count);
  EXPECT_EQ(ids.back(), 1);
  EXPECT_EQ(PartnersOf(check, 0, true).size(), 100U);
  for (int id = 1; id <= Count; ++id) {
    check.SetMachineTool(id, false);
  }
  EXPECT_EQ(ListOf(check, Families[3]), Ids());
}

}  // namespace
}  // namespace Orvo::Kin
