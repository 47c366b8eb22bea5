#include "support/SameBits.h"
#include "support/Signature.h"
#include "support/TestRandom.h"

#include <Orvo/Kin/MachinePosition.h>

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Orvo::Kin {
namespace {

using Testing::HasSignature;
using Testing::SameBits;
using Testing::TestRandom;

constexpr double Infinity = std::numeric_limits<double>::infinity();

static_assert(std::has_virtual_destructor_v<MachinePosition>);
static_assert(HasSignature<void (MachinePosition::*)(const Register&)>(&MachinePosition::Alloc));
static_assert(HasSignature<void (MachinePosition::*)(unsigned long long)>(&MachinePosition::Alloc));
static_assert(HasSignature<void (MachinePosition::*)(double)>(&MachinePosition::SetAll));
static_assert(
    HasSignature<unsigned long long (MachinePosition::*)() const>(&MachinePosition::Size));
static_assert(
    HasSignature<double& (MachinePosition::*)(const Register&)>(&MachinePosition::operator[]));
static_assert(HasSignature<const double& (MachinePosition::*)(const Register&) const>(
    &MachinePosition::operator[]));
static_assert(HasSignature<MachinePosition (MachinePosition::*)(const MachinePosition&)>(
    &MachinePosition::operator+));
static_assert(HasSignature<MachinePosition (MachinePosition::*)(const MachinePosition&)>(
    &MachinePosition::operator-));
static_assert(HasSignature<MachinePosition (MachinePosition::*)()>(&MachinePosition::operator-));
static_assert(
    HasSignature<MachinePosition (MachinePosition::*)(double)>(&MachinePosition::operator*));
static_assert(
    HasSignature<MachinePosition (MachinePosition::*)(double)>(&MachinePosition::operator/));
static_assert(HasSignature<MachinePosition& (MachinePosition::*)(const MachinePosition&)>(
    &MachinePosition::operator+=));
static_assert(HasSignature<MachinePosition& (MachinePosition::*)(const MachinePosition&)>(
    &MachinePosition::operator-=));

MachinePosition Position(const std::vector<double>& values) {
  MachinePosition position;
  position.Alloc(Register(static_cast<int>(values.size())));
  for (std::size_t i = 0; i < values.size(); ++i) {
    position[Register(static_cast<int>(i))] = values[i];
  }
  return position;
}

testing::AssertionResult Holds(const MachinePosition& position, const std::vector<double>& values) {
  if (position.Size() != values.size()) {
    return testing::AssertionFailure()
           << "the size is " << position.Size() << " and not " << values.size();
  }
  for (std::size_t i = 0; i < values.size(); ++i) {
    const testing::AssertionResult same =
        SameBits(position[Register(static_cast<int>(i))], values[i]);
    if (!same) {
      return testing::AssertionFailure() << "register " << i << ": " << same.message();
    }
  }
  return testing::AssertionSuccess();
}

TEST(MachinePosition, StartsEmpty) {
  const MachinePosition position;
  EXPECT_EQ(position.Size(), 0U);
}

TEST(MachinePosition, AllocByRegisterResizesAndZeroes) {
  MachinePosition position;
  position.Alloc(Register(6));
  EXPECT_TRUE(Holds(position, {0, 0, 0, 0, 0, 0}));
  position.SetAll(2.5);
  EXPECT_TRUE(Holds(position, {2.5, 2.5, 2.5, 2.5, 2.5, 2.5}));
  position.Alloc(Register(6));
  EXPECT_TRUE(Holds(position, {0, 0, 0, 0, 0, 0}));
  position.SetAll(2.5);
  position.Alloc(Register(2));
  EXPECT_TRUE(Holds(position, {0, 0}));
  position.SetAll(2.5);
  position.Alloc(Register(3));
  EXPECT_TRUE(Holds(position, {0, 0, 0}));
}

TEST(MachinePosition, AllocByNumberResizesAndZeroes) {
  MachinePosition position;
  position.Alloc(3ULL);
  EXPECT_TRUE(Holds(position, {0, 0, 0}));
  position.SetAll(2.5);
  position.Alloc(1ULL);
  EXPECT_TRUE(Holds(position, {0}));
}

// Deliberate: the two forms differ at 0.
TEST(MachinePosition, AllocOfNothingEmptiesByRegisterAndKeepsByNumber) {
  MachinePosition position = Position({1, 2, 3, 4});
  position.Alloc(0ULL);
  EXPECT_TRUE(Holds(position, {0, 0, 0, 0}));
  position.Alloc(Register(0));
  EXPECT_TRUE(Holds(position, {}));
  position.Alloc(0ULL);
  EXPECT_TRUE(Holds(position, {}));
}

TEST(MachinePosition, AllocOfANegativeRegisterKeepsTheSizeAndZeroes) {
  for (const int n : {-1, -7, std::numeric_limits<int>::min()}) {
    MachinePosition position = Position({1, 2, 3, 4});
    position.Alloc(Register(n));
    EXPECT_TRUE(Holds(position, {0, 0, 0, 0}));
  }
}

TEST(MachinePosition, AllocBeyondAllMemoryThrowsAndChangesNothing) {
  MachinePosition position = Position({1, 2});
  EXPECT_THROW(position.Alloc(std::numeric_limits<unsigned long long>::max()), std::length_error);
  EXPECT_TRUE(Holds(position, {1, 2}));
}

TEST(MachinePosition, SetAllOfAnEmptyPositionDoesNothing) {
  MachinePosition position;
  position.SetAll(5.0);
  EXPECT_EQ(position.Size(), 0U);
}

TEST(MachinePosition, IndexReachesTheElement) {
  MachinePosition position = Position({1, 2, 3});
  const MachinePosition& constant = position;
  position[Register(1)] = 7.0;
  EXPECT_EQ(constant[Register(1)], 7.0);
  EXPECT_EQ(&constant[Register(2)], &position[Register(2)]);
  EXPECT_EQ(&constant[Register(2)], &constant[Register(0)] + 2);
}

TEST(MachinePosition, AnIndexOutsideThrowsAndChangesNothing) {
  for (const std::size_t size : {0U, 1U, 3U}) {
    MachinePosition position = Position(std::vector<double>(size, 4.0));
    const MachinePosition& constant = position;
    const int outside[] = {-1,
                           -2,
                           std::numeric_limits<int>::min(),
                           static_cast<int>(size),
                           static_cast<int>(size) + 1,
                           std::numeric_limits<int>::max()};
    for (const int i : outside) {
      SCOPED_TRACE(testing::Message() << i << " of " << size);
      for (const bool asConstant : {false, true}) {
        try {
          const double value = asConstant ? constant[Register(i)] : position[Register(i)];
          ADD_FAILURE() << "gave " << value;
        } catch (const std::out_of_range& error) {
          EXPECT_STREQ(error.what(), "MachinePosition::operator[] : index out of range");
        }
      }
    }
    EXPECT_TRUE(Holds(position, std::vector<double>(size, 4.0)));
  }
}

TEST(MachinePosition, AssignmentNeverShrinks) {
  struct Case {
    const char* name;
    std::vector<double> target, source, result;
  };
  const Case cases[] = {
      {"an empty source changes nothing", {7, 8, 9}, {}, {7, 8, 9}},
      {"an empty target grows", {}, {1, 2}, {1, 2}},
      {"both empty", {}, {}, {}},
      {"a smaller target grows", {7}, {1, 2, 3}, {1, 2, 3}},
      {"an equal target takes all", {7, 8}, {1, 2}, {1, 2}},
      {"a larger target keeps its last values", {7, 8, 9}, {1, 2}, {1, 2, 9}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    MachinePosition target = Position(c.target);
    const MachinePosition source = Position(c.source);
    EXPECT_EQ(&(target = source), &target);
    EXPECT_TRUE(Holds(target, c.result));
    EXPECT_TRUE(Holds(source, c.source));
  }
}

TEST(MachinePosition, ACopyHasTheSizeOfItsSourceAndIsIndependent) {
  auto source = std::make_unique<MachinePosition>(Position({1, 2, 3}));
  MachinePosition copy(*source);
  (*source)[Register(0)] = 9.0;
  source.reset();
  EXPECT_TRUE(Holds(copy, {1, 2, 3}));
  const MachinePosition empty;
  EXPECT_EQ(MachinePosition(empty).Size(), 0U);
}

TEST(MachinePosition, AssignmentOntoItselfChangesNothing) {
  MachinePosition position = Position({1, 2, 3});
  const MachinePosition& self = position;
  position = self;
  EXPECT_TRUE(Holds(position, {1, 2, 3}));
}

TEST(MachinePosition, AMovedOneStaysUsable) {
  MachinePosition source = Position({1, 2});
  const MachinePosition target(std::move(source));
  EXPECT_TRUE(Holds(target, {1, 2}));
  source.Alloc(Register(3));  // NOLINT: a move is a copy here
  EXPECT_TRUE(Holds(source, {0, 0, 0}));
}

TEST(MachinePosition, ArithmeticIsByElementAndChangesNoOperand) {
  MachinePosition a = Position({1, -2, 0.5});
  const MachinePosition b = Position({10, 20, 30});
  EXPECT_TRUE(Holds(a + b, {11, 18, 30.5}));
  EXPECT_TRUE(Holds(a - b, {-9, -22, -29.5}));
  EXPECT_TRUE(Holds(-a, {-1, 2, -0.5}));
  EXPECT_TRUE(Holds(a * 4.0, {4, -8, 2}));
  EXPECT_TRUE(Holds(a / 4.0, {0.25, -0.5, 0.125}));
  EXPECT_TRUE(Holds(a, {1, -2, 0.5}));
  EXPECT_TRUE(Holds(b, {10, 20, 30}));
}

TEST(MachinePosition, InPlaceArithmeticReturnsThisObject) {
  MachinePosition a = Position({1, -2});
  const MachinePosition b = Position({10, 20});
  EXPECT_EQ(&(a += b), &a);
  EXPECT_TRUE(Holds(a, {11, 18}));
  EXPECT_EQ(&(a -= b), &a);
  EXPECT_TRUE(Holds(a, {1, -2}));
}

TEST(MachinePosition, OfDifferentSizesTheLeftOneComesBack) {
  const std::vector<std::vector<double>> all = {{}, {1}, {2, 3}, {4, 5, 6}, {1, 2, 3, 4, 5, 6}};
  for (const std::vector<double>& left : all) {
    for (const std::vector<double>& right : all) {
      if (left.size() == right.size()) {
        continue;
      }
      SCOPED_TRACE(testing::Message() << left.size() << " and " << right.size());
      MachinePosition a = Position(left);
      const MachinePosition b = Position(right);
      EXPECT_TRUE(Holds(a + b, left));
      EXPECT_TRUE(Holds(a - b, left));
      EXPECT_EQ(&(a += b), &a);
      EXPECT_TRUE(Holds(a, left));
      EXPECT_EQ(&(a -= b), &a);
      EXPECT_TRUE(Holds(a, left));
    }
  }
}

TEST(MachinePosition, ArithmeticOfEmptyPositionsIsEmpty) {
  MachinePosition a;
  const MachinePosition b;
  EXPECT_TRUE(Holds(a + b, {}));
  EXPECT_TRUE(Holds(a - b, {}));
  EXPECT_TRUE(Holds(-a, {}));
  EXPECT_TRUE(Holds(a * 2.0, {}));
  EXPECT_TRUE(Holds(a / 2.0, {}));
}

TEST(MachinePosition, TakesItselfAsTheOtherOperand) {
  MachinePosition a = Position({1, -2});
  const MachinePosition& self = a;
  EXPECT_TRUE(Holds(a + self, {2, -4}));
  a += self;
  EXPECT_TRUE(Holds(a, {2, -4}));
  a -= self;
  EXPECT_TRUE(Holds(a, {0, 0}));
}

TEST(MachinePosition, ZeroAndInfinityFollowIeee) {
  MachinePosition a = Position({1, 0, -0.0, -3});
  EXPECT_TRUE(Holds(a / 0.0, {Infinity, std::nan(""), std::nan(""), -Infinity}));
  EXPECT_TRUE(Holds(a / -0.0, {-Infinity, std::nan(""), std::nan(""), Infinity}));
  EXPECT_TRUE(Holds(-a, {-1, -0.0, 0.0, 3}));
  EXPECT_TRUE(Holds(a * -0.0, {-0.0, -0.0, 0.0, 0.0}));
}

TEST(MachinePosition, IsTheScalarFormulaBitForBit) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int telling = 0;
  for (int i = 0; i < 500; ++i) {
    const auto size = static_cast<std::size_t>(random.Integer(1, 9));
    std::vector<double> left, right, sum, difference, scaled, divided;
    const double k = random.Real(-5, 5);
    for (std::size_t e = 0; e < size; ++e) {
      const double a = random.Real(-400, 400);
      const double b = random.Real(-400, 400);
      left.push_back(a);
      right.push_back(b);
      sum.push_back(a + b);
      difference.push_back(a - b);
      scaled.push_back(a * k);
      divided.push_back(a / k);
      telling += a / k != a * (1.0 / k) ? 1 : 0;
    }
    MachinePosition position = Position(left);
    const MachinePosition other = Position(right);
    ASSERT_TRUE(Holds(position + other, sum));
    ASSERT_TRUE(Holds(position - other, difference));
    ASSERT_TRUE(Holds(position * k, scaled));
    ASSERT_TRUE(Holds(position / k, divided));
    MachinePosition inPlace(position);
    ASSERT_TRUE(Holds(inPlace += other, sum));
    inPlace = position;
    ASSERT_TRUE(Holds(inPlace -= other, difference));
  }
  EXPECT_GT(telling, 100);
}

}  // namespace
}  // namespace Orvo::Kin
