#include "SmallMachines.h"
#include "support/NearVector.h"
#include "support/SameBits.h"
#include "support/TestRandom.h"

#include <Orvo/Kin/MachineCompute.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <list>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::Entity;
using Kin::Machine;
using Kin::MachineCompute;
using Kin::MachinePosition;

bool HoldsId(const std::list<const Entity*>& order, int id) {
  return std::any_of(order.begin(), order.end(),
                     [id](const Entity* e) { return e->GetEntityId().GetVal() == id; });
}

// The order as it is defined: sweeps over the list until one adds nothing.
std::list<const Entity*> OrderBySweeps(const Machine& machine) {
  std::list<const Entity*> order;
  bool added = true;
  while (added) {
    added = false;
    for (const Entity& e : machine.GetKinematic().GetListEntity()) {
      if (HoldsId(order, e.GetEntityId())) {
        continue;
      }
      const Entity* parent = e.GetParentEntity();
      if (parent == nullptr || HoldsId(order, parent->GetEntityId())) {
        order.push_back(&e);
        added = true;
      }
    }
  }
  return order;
}

struct Expected {
  std::vector<Matrix43> frames;
  Kin::MachineComputeErrorType lastError;
};

// The frames of all elements, and the last error, in the order of the sweeps.
Expected FramesBySweeps(Machine& machine, const MachinePosition& position) {
  MachineCompute compute(machine);
  const auto size = static_cast<std::size_t>(machine.GetEntityIdMax() + 1);
  std::vector<Matrix43> relative(size);
  Expected expected{std::vector<Matrix43>(size), Kin::ComputeErrorNone};
  const std::list<const Entity*> order = OrderBySweeps(machine);
  for (const Entity* e : order) {
    Matrix43 frame;
    compute.ComputeRelativePosition(e->GetEntityLink(), e->GetRegister(), position, &frame);
    if (e->GetEntityId().IsDefined()) {
      relative[static_cast<std::size_t>(e->GetEntityId().GetVal())] = frame;
    }
  }
  for (const Entity* e : order) {
    if (!e->GetEntityId().IsDefined()) {
      continue;
    }
    const auto id = static_cast<std::size_t>(e->GetEntityId().GetVal());
    const Entity* parent = e->GetParentEntity();
    if (parent == nullptr) {
      expected.frames[id] = relative[id];
    } else {
      Matrix43 worldFromParent;
      if (parent->GetEntityId().IsDefined()) {
        worldFromParent = expected.frames[static_cast<std::size_t>(parent->GetEntityId().GetVal())];
      }
      expected.frames[id] = worldFromParent * relative[id];
    }
  }
  expected.lastError = compute.GetLastError();
  return expected;
}

testing::AssertionResult AgreesWithSweeps(Machine& machine, const MachinePosition& position) {
  const Expected expected = FramesBySweeps(machine, position);
  MachineCompute compute(machine);
  std::vector<Matrix43> frames;
  if (!compute.ComputePositionMachine(position, &frames)) {
    return testing::AssertionFailure() << "the call failed";
  }
  if (frames.size() != expected.frames.size()) {
    return testing::AssertionFailure() << "the size is " << frames.size();
  }
  for (std::size_t i = 0; i < frames.size(); ++i) {
    const testing::AssertionResult same = SameBits(frames[i], expected.frames[i]);
    if (!same) {
      return testing::AssertionFailure() << "id " << i << ": " << same.message();
    }
  }
  if (compute.GetLastError() != expected.lastError) {
    return testing::AssertionFailure()
           << "the last error is " << compute.GetLastError() << " and not " << expected.lastError;
  }
  return testing::AssertionSuccess();
}

// Appends what Finish asks for: a head, a table and three linear axes.
void AddWhatFinishAsksFor(Machine& machine) {
  AddTable(machine, -1);
  AddHead(machine, -1);
  for (int i = 0; i < 3; ++i) {
    AddLinear(machine, -1, AxisX, i);
  }
}

// A random element without id and parent; some links fail, with one error or the other.
Entity* AddRandomElement(TestRandom& random, Machine& machine) {
  const Vector3D dir(random.Real(-1, 1), random.Real(-1, 1), random.Real(-1, 1));
  switch (random.Integer(0, 7)) {
    case 0:
    case 1:
      return AddLinear(machine, -1, dir, random.Integer(0, 5));
    case 2:
    case 3:
      return AddRotary(machine, -1, Vector3D(1, 2, 3), dir, random.Integer(0, 5));
    case 4:
      return AddLinear(machine, -1, dir, 6);  // outside the position
    case 5:
      return machine.AddEntity();  // no link
    default:
      return AddFixed(machine, -1, TranslationFrame(dir[0], dir[1], dir[2]));
  }
}

TEST(EntityOrder, AgreesWithSweepsOnRandomForests) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int round = 0; round < 500; ++round) {
    Machine machine;
    const int count = random.Integer(1, 14);
    std::vector<int> ids;
    for (int i = 0; i < count; ++i) {
      ids.push_back(i + 1);
    }
    for (int i = count - 1; i > 0; --i) {
      std::swap(ids[static_cast<std::size_t>(i)],
                ids[static_cast<std::size_t>(random.Integer(0, i))]);
    }
    // Parents have smaller numbers of age; the list's order is another.
    for (int i = 0; i < count; ++i) {
      Entity* e = AddRandomElement(random, machine);
      const int id = ids[static_cast<std::size_t>(i)];
      SetId(e, id);
      e->SetParentEntityId(random.Integer(-1, id - 1));
    }
    AddWhatFinishAsksFor(machine);
    ASSERT_TRUE(machine.Finish());
    const MachinePosition position = PositionOf({10, 20, 30, 40, 50, 60});
    ASSERT_TRUE(AgreesWithSweeps(machine, position)) << "round " << round;
  }
}

TEST(EntityOrder, AgreesWithSweepsWhereIdsRepeatAndParentsAreUnknown) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int compared = 0;
  for (int round = 0; round < 4000; ++round) {
    Machine machine;
    const int count = random.Integer(2, 12);
    for (int i = 0; i < count; ++i) {
      Entity* e = AddRandomElement(random, machine);
      SetId(e, random.Chance(0.1) ? -random.Integer(1, 3) : random.Integer(0, 8));
      e->SetParentEntityId(random.Integer(-2, 9));
    }
    AddWhatFinishAsksFor(machine);
    if (!machine.Finish()) {
      ASSERT_EQ(machine.GetLastError(), Kin::MachineErrorParentCycle);
      continue;
    }
    ++compared;
    ASSERT_TRUE(AgreesWithSweeps(machine, PositionOf({10, 20, 30, 40, 50, 60})))
        << "round " << round;
  }
  EXPECT_GT(compared, 300);
}

// Large enough for many sweeps, some of which take one element. Ids repeat and are missing; where
// parents formed a cycle, the id is given back.
TEST(EntityOrder, AgreesWithSweepsOnLargeTreesWithRepeatedIds) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int repeated = 0;
  for (int round = 0; round < 40; ++round) {
    Machine machine;
    const int count = random.Integer(50, 250);
    const double nearShare = random.Real(0.0, 1.0);
    for (int i = 0; i < count; ++i) {
      AddRandomElement(random, machine);
    }
    AddWhatFinishAsksFor(machine);
    for (int i = 0; i < count; ++i) {
      Entity& e = EntityAt(machine, i);
      // Ages run against the list for most elements, so that few are taken in one sweep.
      const int age = random.Chance(nearShare) ? random.Integer(1, 3) : random.Integer(1, count);
      e.SetParentEntityId(i + 1 + age > count ? -1 : i + 1 + age);
      ASSERT_TRUE(machine.Finish());
      if (random.Chance(0.2)) {
        const int before = e.GetEntityId();
        SetId(&e, random.Chance(0.2) ? -1 : random.Integer(0, count));
        ++repeated;
        if (!machine.Finish()) {
          SetId(&e, before);
          --repeated;
        }
      }
    }
    ASSERT_TRUE(machine.Finish());
    ASSERT_TRUE(AgreesWithSweeps(machine, PositionOf({10, 20, 30, 40, 50, 60})))
        << "round " << round;
  }
  EXPECT_GT(repeated, 300);
}

// The pointers are set by hand, so that some elements can never be reached.
TEST(EntityOrder, AgreesWithSweepsOnPointersOfAnyShape) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  Machine foreign;
  for (int i = 0; i < 6; ++i) {
    AddFixed(foreign, -1, TranslationFrame(1000, 0, 0));
  }
  SetId(&EntityAt(foreign, 0), 500);
  SetId(&EntityAt(foreign, 1), -1);
  for (int round = 0; round < 1000; ++round) {
    Machine machine;
    const int count = random.Integer(2, 12);
    for (int i = 0; i < count; ++i) {
      SetId(AddRandomElement(random, machine), random.Integer(-1, 8));
    }
    AddWhatFinishAsksFor(machine);
    ASSERT_TRUE(machine.Finish());
    for (int i = 0; i < count; ++i) {
      const Entity* parent = nullptr;
      if (random.Chance(0.7)) {
        parent = random.Chance(0.15) ? &EntityAt(foreign, random.Integer(0, 5))
                                     : &EntityAt(machine, random.Integer(0, count - 1));
      }
      SetParentPointer(&EntityAt(machine, i), parent);
    }
    // A parent pointer to an element without id has no place to be read from.
    bool hasPlace = true;
    for (int i = 0; i < count; ++i) {
      const Entity* parent = EntityAt(machine, i).GetParentEntity();
      hasPlace = hasPlace && (parent == nullptr || parent->GetEntityId().IsDefined());
    }
    if (hasPlace) {
      ASSERT_TRUE(AgreesWithSweeps(machine, PositionOf({10, 20, 30, 40, 50, 60})))
          << "round " << round;
    }
  }
}

TEST(EntityOrder, ElementUnderAForeignOneIsLeftOut) {
  Machine machine = HeadHeadMachine();
  Machine foreign;
  AddFixed(foreign, -1);
  SetId(&EntityAt(foreign, 0), 1000000);
  SetParentPointer(&EntityAt(machine, 3), &EntityAt(foreign, 0));
  MachineCompute compute(machine);
  std::vector<Matrix43> frames;
  ASSERT_TRUE(compute.ComputePositionMachine(PositionOf({1, 2, 3, 0, 0}), &frames));
  EXPECT_TRUE(SameBits(frames[3], TranslationFrame(1, 0, 0)));
  for (std::size_t id = 4; id <= 8; ++id) {
    EXPECT_TRUE(SameBits(frames[id], Matrix43())) << id;
  }
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNone);
}

TEST(EntityOrder, ElementsInACircleAreLeftOut) {
  Machine machine = HeadHeadMachine();
  SetParentPointer(&EntityAt(machine, 3), &EntityAt(machine, 5));
  MachineCompute compute(machine);
  std::vector<Matrix43> frames;
  ASSERT_TRUE(compute.ComputePositionMachine(PositionOf({1, 2, 3, 0, 0}), &frames));
  EXPECT_TRUE(SameBits(frames[3], TranslationFrame(1, 0, 0)));
  for (std::size_t id = 4; id <= 8; ++id) {
    EXPECT_TRUE(SameBits(frames[id], Matrix43())) << id;
  }
}

TEST(EntityOrder, OfEqualIdsTheFirstOfTheListIsPlaced) {
  Machine machine;
  AddWhatFinishAsksFor(machine);
  SetId(AddFixed(machine, -1, TranslationFrame(1, 0, 0)), 9);
  SetId(AddFixed(machine, -1, TranslationFrame(2, 0, 0)), 9);
  SetId(AddFixed(machine, 9, TranslationFrame(0, 5, 0)), 10);
  ASSERT_TRUE(machine.Finish());
  ASSERT_EQ(EntityOf(machine, 10).GetParentEntity(), &EntityAt(machine, 6))
      << "the pointer goes to the last";
  MachineCompute compute(machine);
  std::vector<Matrix43> frames;
  ASSERT_TRUE(compute.ComputePositionMachine(PositionOf({0, 0, 0}), &frames));
  EXPECT_TRUE(SameBits(frames[9], TranslationFrame(1, 0, 0)));
  EXPECT_TRUE(SameBits(frames[10], TranslationFrame(1, 5, 0)));
}

// The last error tells the order apart: the last failing link in it decides.
TEST(EntityOrder, ParentsAreEvaluatedBeforeTheirChildren) {
  Machine machine;
  Entity* child = AddLinear(machine, 2, AxisX, 99);  // fails with its register
  machine.AddEntity();                               // 2: fails with its kind
  AddWhatFinishAsksFor(machine);
  ASSERT_TRUE(machine.Finish());
  ASSERT_NE(child->GetParentEntity(), nullptr);
  MachineCompute compute(machine);
  std::vector<Matrix43> frames;
  ASSERT_TRUE(compute.ComputePositionMachine(PositionOf({0, 0, 0}), &frames));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister);
}

// Every element is the child of the next one of the list, the last one is the root.
TEST(EntityOrder, DeepChainInReverseOrderIsPlaced) {
  constexpr int Depth = 100000;
  Machine machine;
  for (int id = 1; id <= Depth; ++id) {
    Entity* e = AddLinear(machine, id == Depth ? -1 : id + 1, AxisX, 0);
    e->GetEntityLinkMod()->SetZeroRef(1.0);
  }
  AddTable(machine, 1);
  AddHead(machine, 2);
  ASSERT_TRUE(machine.Finish());
  MachineCompute compute(machine);
  const MachinePosition position = PositionOf({0.0});
  std::vector<Matrix43> frames;
  ASSERT_TRUE(compute.ComputePositionMachine(position, &frames));
  ASSERT_EQ(frames.size(), static_cast<std::size_t>(Depth + 3));
  EXPECT_TRUE(SameBits(frames[Depth], TranslationFrame(1, 0, 0)));
  constexpr int Middle = Depth / 2;
  EXPECT_TRUE(SameBits(frames[Middle], TranslationFrame(Middle + 1, 0, 0)));
  EXPECT_TRUE(SameBits(frames[1], TranslationFrame(Depth, 0, 0)));
  EXPECT_TRUE(SameBits(frames[Depth + 1], TranslationFrame(Depth, 0, 0)));

  Matrix43 frame;
  ASSERT_TRUE(compute.ComputePositionEntity(EntityOf(machine, 1), position, &frame));
  EXPECT_TRUE(SameBits(frame, TranslationFrame(Depth, 0, 0)));
  ASSERT_TRUE(compute.ComputeMcsToToolTcs(position, 0, 0, NullVector, &frame));
  EXPECT_TRUE(NearFrame(frame, TranslationFrame(-1, 0, 0), 0.0));
}

TEST(EntityOrder, DeepChainInForwardOrderIsPlaced) {
  constexpr int Depth = 100000;
  Machine machine;
  for (int id = 1; id <= Depth; ++id) {
    AddLinear(machine, id == 1 ? -1 : id - 1, AxisY, 0);
  }
  AddTable(machine, Depth);
  AddHead(machine, Depth);
  ASSERT_TRUE(machine.Finish());
  MachineCompute compute(machine);
  std::vector<Matrix43> frames;
  ASSERT_TRUE(compute.ComputePositionMachine(PositionOf({1.0}), &frames));
  EXPECT_TRUE(SameBits(frames[Depth + 2], TranslationFrame(0, Depth, 0)));
}

TEST(EntityOrder, WideTreeInReverseOrderIsPlaced) {
  constexpr int Count = 100000;
  Machine machine;
  for (int id = 1; id <= Count; ++id) {
    AddFixed(machine, Count + 1, TranslationFrame(id, 0, 0));
  }
  AddFixed(machine, -1, TranslationFrame(0, 1, 0));
  for (int i = 0; i < 3; ++i) {
    AddLinear(machine, -1, AxisX, i);
  }
  AddTable(machine, -1);
  AddHead(machine, -1);
  ASSERT_TRUE(machine.Finish());
  MachineCompute compute(machine);
  std::vector<Matrix43> frames;
  ASSERT_TRUE(compute.ComputePositionMachine(PositionOf({0, 0, 0}), &frames));
  for (int id = 1; id <= Count; ++id) {
    ASSERT_TRUE(SameBits(frames[static_cast<std::size_t>(id)], TranslationFrame(id, 1, 0)));
  }
}

}  // namespace
}  // namespace Orvo::Testing
