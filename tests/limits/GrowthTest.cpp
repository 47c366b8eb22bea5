// How what is allocated grows with the size of a machine: in proportion, whatever its shape and the
// order of its list.

#include "support/CountedMemory.h"
#include "support/TemporaryFolder.h"
#include "support/TestRandom.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::Machine;
using Kin::MachineCompute;
using Kin::MachinePosition;

enum class Shape { Chain, Star, Tree };
enum class Order { Forward, Backward, Shuffled };

// Builds a machine of some elements and what it takes to be finished.
void Build(Shape shape, Order order, int count, Machine* machine) {
  TestRandom random(3);
  // By place in the tree, the place in the list and so the id.
  std::vector<int> ids(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    ids[static_cast<std::size_t>(i)] = order == Order::Backward ? count - i : i + 1;
  }
  if (order == Order::Shuffled) {
    for (int i = count - 1; i > 0; --i) {
      std::swap(ids[static_cast<std::size_t>(i)],
                ids[static_cast<std::size_t>(random.Integer(0, i))]);
    }
  }
  std::vector<int> parents(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    const int parent = i == 0                  ? -1
                       : shape == Shape::Chain ? i - 1
                       : shape == Shape::Star  ? 0
                                               : random.Integer(0, i - 1);
    parents[static_cast<std::size_t>(ids[static_cast<std::size_t>(i)] - 1)] =
        parent < 0 ? -1 : ids[static_cast<std::size_t>(parent)];
  }
  for (const int parent : parents) {
    machine->AddEntityStatic(L"e", parent);
  }
  for (const Vector3D& dir : {AxisX, AxisY, AxisZ}) {
    machine->AddEntityLinear(L"axis", 1, dir);
  }
  machine->AddEntityTable(L"table", 1, Matrix43());
  machine->AddEntityHead(L"head", 1, Matrix43());
}

// The requests for memory that finishing makes, and those of the first frames of all elements.
std::pair<std::size_t, std::size_t> Allocations(Shape shape, Order order, int count) {
  Machine machine;
  Build(shape, order, count, &machine);
  const std::size_t finishing = AllocationsOf([&] { EXPECT_TRUE(machine.Finish()); });
  MachinePosition position;
  machine.Alloc(&position);
  MachineCompute calculator(machine);
  std::vector<Matrix43> frames;
  const std::size_t computing =
      AllocationsOf([&] { EXPECT_TRUE(calculator.ComputePositionMachine(position, &frames)); });
  EXPECT_EQ(AllocationsOf([&] { calculator.ComputePositionMachine(position, &frames); }), 0U);
  return {finishing, computing};
}

// Both fill arrays, which are made once or grow by doubling: four times the elements take a few
// requests more.
TEST(Growth, FinishingAndFirstFramesFillArrays) {
  for (const Shape shape : {Shape::Chain, Shape::Star, Shape::Tree}) {
    for (const Order order : {Order::Forward, Order::Backward, Order::Shuffled}) {
      SCOPED_TRACE(testing::Message() << static_cast<int>(shape) << static_cast<int>(order));
      const auto [finishing, computing] = Allocations(shape, order, 2000);
      EXPECT_LT(finishing, 30U);
      EXPECT_LT(computing, 120U);
      const auto [finishingMore, computingMore] = Allocations(shape, order, 8000);
      EXPECT_LT(finishingMore, finishing + 10);
      EXPECT_LT(computingMore, computing + 20);
    }
  }
}

// The requests for memory that reading a machine file makes.
std::size_t AllocationsOfReading(int count) {
  const TemporaryFolder folder;
  Machine machine;
  Build(Shape::Tree, Order::Shuffled, count, &machine);
  EXPECT_TRUE(machine.WriteXML(folder.Wide("machine.xml")));
  Machine read;
  const std::wstring path = folder.Wide("machine.xml");
  const std::size_t allocations = AllocationsOf([&] { EXPECT_TRUE(read.ReadXML(path)); });
  EXPECT_TRUE(read.IsFinished());
  return allocations;
}

TEST(Growth, ReadingTakesAsMuchForEveryElement) {
  const std::size_t first = AllocationsOfReading(500);
  const std::size_t second = AllocationsOfReading(1000);
  const std::size_t third = AllocationsOfReading(2000);
  EXPECT_LT(second - first, 500U * 200U);
  EXPECT_NEAR(static_cast<double>(third - second), 2.0 * static_cast<double>(second - first),
              0.05 * static_cast<double>(third - second));
}

}  // namespace
}  // namespace Orvo::Testing
