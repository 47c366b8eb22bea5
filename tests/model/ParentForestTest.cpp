#include "model/ParentForest.h"
#include "support/TestRandom.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace Orvo::Kin {
namespace {

using Testing::TestRandom;

using Places = std::vector<int>;

int At(const Places& values, int place) { return values[static_cast<std::size_t>(place)]; }

/// Takes the elements in order and sets each parent unless that closes a cycle.
bool CutNaively(Places* parents) {
  Places result(parents->size(), NoPlace);
  bool found = false;
  for (int i = 0; i < static_cast<int>(parents->size()); ++i) {
    int ancestor = At(*parents, i);
    while (ancestor != NoPlace && ancestor != i) {
      ancestor = At(result, ancestor);
    }
    if (ancestor == i) {
      found = true;
    } else {
      result[static_cast<std::size_t>(i)] = At(*parents, i);
    }
  }
  *parents = result;
  return found;
}

Places LevelsNaively(const Places& parents) {
  Places levels;
  for (int i = 0; i < static_cast<int>(parents.size()); ++i) {
    int level = 0;
    for (int ancestor = At(parents, i); ancestor != NoPlace; ancestor = At(parents, ancestor)) {
      ++level;
    }
    levels.push_back(level);
  }
  return levels;
}

TEST(ParentForest, CutsWhatClosesACycleInTheOrderOfTheElements) {
  struct Case {
    const char* name;
    Places parents;
    Places cut;
    bool found;
  };
  const Case cases[] = {
      {"nothing", {}, {}, false},
      {"one root", {NoPlace}, {NoPlace}, false},
      {"its own parent", {0}, {NoPlace}, true},
      {"a chain", {NoPlace, 0, 1}, {NoPlace, 0, 1}, false},
      {"a chain backwards", {1, 2, NoPlace}, {1, 2, NoPlace}, false},
      {"two in a ring", {1, 0}, {1, NoPlace}, true},
      {"three in a ring", {1, 2, 0}, {1, 2, NoPlace}, true},
      {"three in the other ring", {2, 0, 1}, {2, 0, NoPlace}, true},
      {"a ring with a tail", {1, 3, 1, 4, 1}, {1, 3, 1, 4, NoPlace}, true},
      {"a tail into the last of a ring", {2, 2, 1}, {2, 2, NoPlace}, true},
      {"two rings", {1, 0, 3, 2}, {1, NoPlace, 3, NoPlace}, true},
      {"a ring beside a tree", {NoPlace, 0, 3, 2, 1}, {NoPlace, 0, 3, NoPlace, 1}, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Places parents = c.parents;
    Places marks(parents.size(), 123);
    EXPECT_EQ(CutParentCycles(&parents, &marks), c.found);
    EXPECT_EQ(parents, c.cut);
    Places again = parents;
    EXPECT_FALSE(CutParentCycles(&again, &marks));
    EXPECT_EQ(again, parents);
  }
}

TEST(ParentForest, CountsAncestors) {
  const Places parents = {NoPlace, 0, 1, 5, NoPlace, 2, 4, 3};
  Places levels(parents.size(), 77);
  CountAncestors(parents, &levels);
  EXPECT_EQ(levels, Places({0, 1, 2, 4, 0, 3, 1, 5}));
}

TEST(ParentForest, IsTheNaiveWalkOnRandomParents) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int cyclic = 0;
  for (int round = 0; round < 5000; ++round) {
    const int count = random.Integer(0, 12);
    Places parents;
    const double rootShare = random.Real(0.0, 0.6);
    for (int i = 0; i < count; ++i) {
      parents.push_back(random.Chance(rootShare) ? NoPlace : random.Integer(0, count - 1));
    }
    Places expected = parents;
    const bool found = CutNaively(&expected);
    cyclic += found ? 1 : 0;
    Places scratch(parents.size());
    ASSERT_EQ(CutParentCycles(&parents, &scratch), found);
    ASSERT_EQ(parents, expected);
    CountAncestors(parents, &scratch);
    ASSERT_EQ(scratch, LevelsNaively(parents));
  }
  EXPECT_GT(cyclic, 500);
  EXPECT_LT(cyclic, 4500);
}

// With a walk to the root for each element this would not end in a test's time.
TEST(ParentForest, TakesAMillionElementsInAnyOrder) {
  constexpr int Count = 1000000;
  Places chain(Count);
  std::iota(chain.begin(), chain.end(), -1);  // each has the one before it as parent
  Places scratch(Count);
  EXPECT_FALSE(CutParentCycles(&chain, &scratch));
  CountAncestors(chain, &scratch);
  EXPECT_EQ(scratch.front(), 0);
  EXPECT_EQ(scratch.back(), Count - 1);

  Places backwards(Count);
  std::iota(backwards.begin(), backwards.end(), 1);
  backwards.back() = NoPlace;
  EXPECT_FALSE(CutParentCycles(&backwards, &scratch));
  CountAncestors(backwards, &scratch);
  EXPECT_EQ(scratch.front(), Count - 1);
  EXPECT_EQ(scratch.back(), 0);

  Places ring(Count);
  std::iota(ring.begin(), ring.end(), 1);
  ring.back() = 0;
  EXPECT_TRUE(CutParentCycles(&ring, &scratch));
  EXPECT_EQ(ring, backwards);
}

}  // namespace
}  // namespace Orvo::Kin
