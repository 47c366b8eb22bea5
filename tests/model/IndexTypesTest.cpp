#include "support/Signature.h"

#include <Orvo/Kin/EntityId.h>
#include <Orvo/Kin/HeadIndex.h>
#include <Orvo/Kin/ProgramSystemIndex.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Kin/TableIndex.h>

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>
#include <utility>

namespace Orvo::Kin {
namespace {

using Testing::HasSignature;

template <typename Index>
concept CountsUp = requires(Index index) {
  ++index;
  index++;
};

template <typename Index>
concept HasOwnOrder = requires {
  &Index::operator>;
};

static_assert(!CountsUp<EntityId> && !HasOwnOrder<EntityId>, "ids are handed out, not counted");

template <typename Index>
class AnyIndex : public testing::Test {
  static_assert(sizeof(Index) == sizeof(int));
  static_assert(std::is_trivially_copyable_v<Index>);
  static_assert(!std::is_polymorphic_v<Index>);
  static_assert(std::is_convertible_v<int, Index>);
  static_assert(std::is_convertible_v<Index, int>);
  static_assert(HasSignature<bool (Index::*)() const>(&Index::IsDefined));
  static_assert(HasSignature<int (Index::*)() const>(&Index::GetVal));
  static_assert(HasSignature<int (Index::*)() const>(&Index::operator int));
};

template <typename Index>
class CountingIndex : public testing::Test {
  static_assert(HasSignature<bool (Index::*)(const Index&) const>(&Index::operator>));
  static_assert(HasSignature<Index& (Index::*)()>(&Index::operator++));
  static_assert(HasSignature<Index (Index::*)(int)>(&Index::operator++));
};

using AllIndices = testing::Types<EntityId, Register, HeadIndex, TableIndex, ProgramSystemIndex>;
TYPED_TEST_SUITE(AnyIndex, AllIndices);

using CountingIndices = testing::Types<Register, HeadIndex, TableIndex, ProgramSystemIndex>;
TYPED_TEST_SUITE(CountingIndex, CountingIndices);

TYPED_TEST(AnyIndex, StartsUndefinedAsMinusOne) {
  const TypeParam index;
  EXPECT_EQ(index.GetVal(), -1);
  EXPECT_FALSE(index.IsDefined());
}

TYPED_TEST(AnyIndex, KeepsEveryIntegerAndIsDefinedFromZeroOn) {
  const int values[] = {
      0, 1, 42, -1, -7, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};
  for (const int value : values) {
    SCOPED_TRACE(value);
    const TypeParam index(value);
    const int converted = index;
    EXPECT_EQ(index.GetVal(), value);
    EXPECT_EQ(converted, value);
    EXPECT_EQ(index.IsDefined(), value >= 0);
  }
}

TYPED_TEST(AnyIndex, AssignmentCopiesAndReturnsItsTarget) {
  TypeParam index;
  const TypeParam source(4);
  EXPECT_EQ(&(index = source), &index);
  EXPECT_EQ(index.GetVal(), 4);
  EXPECT_EQ(&(index = TypeParam(9)), &index);
  EXPECT_EQ(index.GetVal(), 9);
  const TypeParam& self = index;
  index = self;
  EXPECT_EQ(index.GetVal(), 9);
  const TypeParam copy(index);
  EXPECT_EQ(copy.GetVal(), 9);
}

TYPED_TEST(CountingIndex, ComparesSignedIntegers) {
  EXPECT_TRUE(TypeParam(2) > TypeParam(-1));
  EXPECT_FALSE(TypeParam(-1) > TypeParam(2));
  EXPECT_FALSE(TypeParam(2) > TypeParam(2));
  EXPECT_TRUE(TypeParam(-2) > TypeParam(-3));
  EXPECT_TRUE(TypeParam(std::numeric_limits<int>::max()) >
              TypeParam(std::numeric_limits<int>::min()));
}

// Deliberate: both forms yield the value after the increment.
TYPED_TEST(CountingIndex, BothIncrementsYieldTheIncrementedValue) {
  TypeParam index(4);
  const TypeParam after = index++;
  EXPECT_EQ(after.GetVal(), 5);
  EXPECT_EQ(index.GetVal(), 5);
  EXPECT_EQ(&++index, &index);
  EXPECT_EQ(index.GetVal(), 6);
  TypeParam undefined;
  EXPECT_EQ((undefined++).GetVal(), 0);
  EXPECT_TRUE(undefined.IsDefined());
}

TYPED_TEST(CountingIndex, ThePostfixResultIsACopy) {
  TypeParam index(4);
  TypeParam copy = index++;
  ++copy;
  EXPECT_EQ(index.GetVal(), 5);
  EXPECT_EQ(copy.GetVal(), 6);
}

TYPED_TEST(CountingIndex, TheLargestIntegerWraps) {
  TypeParam index(std::numeric_limits<int>::max());
  EXPECT_EQ((++index).GetVal(), std::numeric_limits<int>::min());
}

}  // namespace
}  // namespace Orvo::Kin
