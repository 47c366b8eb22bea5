#include "model/PlaceTable.h"

#include <Orvo/Kin/Entity.h>

#include <gtest/gtest.h>

#include <limits>
#include <utility>
#include <vector>

namespace Orvo::Kin {
namespace {

constexpr int LargestInt = std::numeric_limits<int>::max();
constexpr int SmallestInt = std::numeric_limits<int>::min();

class PlaceTableTest : public testing::TestWithParam<bool> {};

TEST_P(PlaceTableTest, HoldsWhatIsPutThere) {
  const Entity entities[2];
  PlaceTable table(5, GetParam());
  EXPECT_EQ(table.IsVector(), GetParam());
  table.Set(0, &entities[0]);
  table.Set(4, &entities[1]);
  EXPECT_EQ(table.At(0), &entities[0]);
  EXPECT_EQ(table.At(1), nullptr);
  EXPECT_EQ(table.At(4), &entities[1]);
  for (const int outside : {-1, 5, 6, SmallestInt, LargestInt}) {
    EXPECT_EQ(table.At(outside), nullptr) << outside;
  }
}

TEST_P(PlaceTableTest, MayHaveNoPlace) {
  const PlaceTable table(0, GetParam());
  for (const int outside : {-1, 0, 1}) {
    EXPECT_EQ(table.At(outside), nullptr) << outside;
  }
}

TEST_P(PlaceTableTest, VectorHasTheSameContents) {
  const Entity entity;
  PlaceTable table(3, GetParam());
  table.Set(1, &entity);
  const std::vector<const Entity*>* const vector = table.AsVector();
  EXPECT_EQ(*vector, (std::vector<const Entity*>{nullptr, &entity, nullptr}));
  EXPECT_EQ(table.AsVector(), vector);
}

TEST_P(PlaceTableTest, VectorThatWasHandedOutIsTheTable) {
  const Entity entity;
  PlaceTable table(3, GetParam());
  std::vector<const Entity*>* const vector = table.AsVector();
  EXPECT_TRUE(table.IsVector());
  *vector = {nullptr, nullptr, nullptr, nullptr, &entity};
  EXPECT_EQ(table.At(4), &entity);
  table.Set(0, &entity);
  EXPECT_EQ(vector->front(), &entity);
  vector->resize(1);
  EXPECT_EQ(table.At(0), &entity);
  EXPECT_EQ(table.At(1), nullptr);
  vector->clear();
  EXPECT_EQ(table.At(0), nullptr);
}

// The one who holds the vector sees the contents of a table that takes this one's place.
TEST_P(PlaceTableTest, VectorStaysInPlaceWhenContentsAreExchanged) {
  const Entity entity;
  PlaceTable table(1, GetParam());
  const std::vector<const Entity*>* const vector = table.AsVector();
  PlaceTable newer(2, table.IsVector());
  newer.Set(1, &entity);
  std::swap(table, newer);
  EXPECT_EQ(table.At(1), &entity);
  EXPECT_EQ(table.AsVector(), vector);
  EXPECT_EQ(*vector, (std::vector<const Entity*>{nullptr, &entity}));
}

INSTANTIATE_TEST_SUITE_P(PlaceTable, PlaceTableTest, testing::Bool(),
                         [](const auto& kind) { return kind.param ? "AsVector" : "AsZeroPages"; });

TEST(PlaceTable, StartsWithoutPlaces) {
  PlaceTable table;
  EXPECT_EQ(table.At(0), nullptr);
  EXPECT_TRUE(table.AsVector()->empty());
}

}  // namespace
}  // namespace Orvo::Kin
