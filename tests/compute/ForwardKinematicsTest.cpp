#include "PrivateAccess.h"
#include "SmallMachines.h"
#include "support/NearVector.h"
#include "support/SameBits.h"
#include "support/TestRandom.h"

#include <Orvo/Angle.h>
#include <Orvo/Kin/MachineCompute.h>

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::Entity;
using Kin::EntityLink;
using Kin::Machine;
using Kin::MachineCompute;
using Kin::MachinePosition;

constexpr double Pi = 3.141592653589793;

EntityLink LinearLink(const Vector3D& dir, double zeroRef) {
  EntityLink link;
  link.SetEntityLinkLinear(dir);
  link.SetZeroRef(zeroRef);
  return link;
}

EntityLink RotaryLink(const Vector3D& center, const Vector3D& dir) {
  EntityLink link;
  link.SetEntityLinkRotary(center, dir);
  return link;
}

// A frame that no computation leaves as it is by accident.
Matrix43 OddFrame() {
  Matrix43 frame;
  frame.SetUVWT(Vector3D(7, 8, 9), Vector3D(1, 2, 3), Vector3D(4, 5, 6), Vector3D(-1, -2, -3));
  return frame;
}

TEST(RelativePosition, LinearLinkTranslatesByZeroReferencePlusValue) {
  const Machine machine;
  MachineCompute compute(machine);
  Matrix43 frame = OddFrame();
  ASSERT_TRUE(
      compute.ComputeRelativePosition(LinearLink(AxisX, 5.0), 0, PositionOf({2.0}), &frame));
  EXPECT_TRUE(SameBits(frame, TranslationFrame(7, 0, 0)));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNone);
}

TEST(RelativePosition, LinearLinkScalesItsUnitDirectionBySum) {
  const Machine machine;
  MachineCompute compute(machine);
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 1000; ++i) {
    const Vector3D raw(random.Real(-2, 2), random.Real(-2, 2), random.Real(-2, 2));
    const double zero = random.Real(-500, 500);
    const double value = random.Real(-500, 500);
    const EntityLink link = LinearLink(raw, zero);
    Matrix43 frame;
    ASSERT_TRUE(compute.ComputeRelativePosition(link, 1, PositionOf({-9.0, value}), &frame));
    const double s = zero + value;
    const Vector3D dir = link.GetDir();
    ASSERT_TRUE(SameBits(frame, TranslationFrame(dir[0] * s, dir[1] * s, dir[2] * s)));
  }
}

TEST(RelativePosition, LinearLinkUsesSlotZeroOfTheZeroReferencesOnly) {
  const Machine machine;
  MachineCompute compute(machine);
  EntityLink link = LinearLink(AxisY, 0.0);
  for (unsigned int slot = 1; slot < Kin::LinkSlotCount; ++slot) {
    link.SetZeroRef(slot, 1000.0 * slot);
  }
  Matrix43 frame;
  ASSERT_TRUE(compute.ComputeRelativePosition(link, 0, PositionOf({3.0}), &frame));
  EXPECT_TRUE(SameBits(frame, TranslationFrame(0, 3, 0)));
}

// A rotary link turns space about the line through its center, so the center stays where it is.
TEST(RelativePosition, RotaryLinkTurnsAboutItsCenter) {
  struct Case {
    const char* name;
    double valueDeg;
    Vector3D point;
    Vector3D expected;
  };
  const Case cases[] = {
      {"zero keeps every point", 0.0, {20, 3, 4}, {20, 3, 4}},
      {"a quarter turn is counter-clockwise", 90.0, {20, 0, 0}, {10, 10, 0}},
      {"a negative quarter turn is clockwise", -90.0, {20, 0, 0}, {10, -10, 0}},
      {"heights stay", 90.0, {20, 0, 7}, {10, 10, 7}},
      {"the center is a fixed point", 37.0, {10, 0, 0}, {10, 0, 0}},
      {"a turn and a quarter is a quarter", 450.0, {20, 0, 0}, {10, 10, 0}},
  };
  const Machine machine;
  MachineCompute compute(machine);
  const EntityLink link = RotaryLink(Vector3D(10, 0, 0), AxisZ);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Matrix43 frame = OddFrame();
    ASSERT_TRUE(compute.ComputeRelativePosition(link, 0, PositionOf({c.valueDeg}), &frame));
    EXPECT_TRUE(NearVector(frame.ApplyToPoint(c.point), c.expected, 1e-12));
  }
}

TEST(RelativePosition, RotaryLinkIsTheRotationAndTheCenterLessItsImage) {
  const Machine machine;
  MachineCompute compute(machine);
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  const Vector3D principal[] = {{1, 0, 0},  {-1, 0, 0}, {0, 1, 0},
                                {0, -1, 0}, {0, 0, 1},  {0, 0, -1}};
  for (int i = 0; i < 2000; ++i) {
    Vector3D dir(random.Real(-1, 1), random.Real(-1, 1), random.Real(-1, 1));
    if (random.Chance(0.5)) {
      dir = principal[random.Integer(0, 5)];
    }
    Vector3D center(random.Real(-100, 100), random.Real(-100, 100), random.Real(-100, 100));
    const double degrees = random.Chance(0.1) ? 0.0 : random.Real(-720, 720);
    const EntityLink link = RotaryLink(center, dir);

    Matrix43 expected;
    expected.SetRotation(link.GetDir(), Angle(degrees / 180.0 * Pi));
    const Vector3D turned = expected.ApplyToVector3D(center);
    expected.SetTrans(center - turned);

    Matrix43 frame = OddFrame();
    ASSERT_TRUE(compute.ComputeRelativePosition(link, 0, PositionOf({degrees}), &frame));
    ASSERT_TRUE(SameBits(frame, expected));
  }
}

TEST(RelativePosition, RotaryLinkIgnoresItsZeroReference) {
  const Machine machine;
  MachineCompute compute(machine);
  EntityLink link = RotaryLink(NullVector, AxisZ);
  link.SetZeroRef(45.0);
  Matrix43 frame;
  ASSERT_TRUE(compute.ComputeRelativePosition(link, 0, PositionOf({90.0}), &frame));
  EXPECT_TRUE(NearVector(frame.ApplyToPoint(AxisX), AxisY, 1e-12));
}

TEST(RelativePosition, PositionLinkNeedsNoRegisterAndNoPosition) {
  const Machine machine;
  MachineCompute compute(machine);
  EntityLink link;
  link.SetEntityLinkPosition(TranslationFrame(1, 2, 3));
  Matrix43 frame = OddFrame();
  EXPECT_TRUE(compute.ComputeRelativePosition(link, -1, MachinePosition(), &frame));
  EXPECT_TRUE(SameBits(frame, TranslationFrame(1, 2, 3)));
  EXPECT_TRUE(compute.ComputeRelativePosition(link, 99, PositionOf({1.0}), &frame));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNone);
}

// A frame marked as a pure rotation ignores its translation, so the mark shows in the images.
TEST(RelativePosition, PositionLinkCopiesTheKindOfItsFrame) {
  Matrix43 marked = TranslationFrame(10, 20, 30);
  marked.SetUVW(AxisY, AxisZ, AxisX);
  ASSERT_TRUE(NearVector(marked.ApplyToPoint(NullVector), NullVector, 0.0));
  EntityLink link;
  link.SetEntityLinkPosition(marked);

  const Machine machine;
  MachineCompute compute(machine);
  Matrix43 frame;
  ASSERT_TRUE(compute.ComputeRelativePosition(link, 0, PositionOf({0.0}), &frame));
  EXPECT_TRUE(SameBits(frame, marked));
  EXPECT_TRUE(NearVector(frame.ApplyToPoint(NullVector), NullVector, 0.0));
}

TEST(RelativePosition, IdentityLinkGivesTheIdentity) {
  const Machine machine;
  MachineCompute compute(machine);
  EntityLink link = LinearLink(AxisX, 5.0);
  SetLinkType(&link, Kin::EntityLinkTypeIdentity);
  Matrix43 frame = OddFrame();
  EXPECT_TRUE(compute.ComputeRelativePosition(link, -1, MachinePosition(), &frame));
  EXPECT_TRUE(SameBits(frame, Matrix43()));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNone);
}

TEST(RelativePosition, EveryOtherKindFailsAndLeavesTheIdentity) {
  for (const int type : {3, 4, 6, 7, 8, 9, 100, -1, -2147483647}) {
    SCOPED_TRACE(type);
    const Machine machine;
    MachineCompute compute(machine);
    EntityLink link = LinearLink(AxisX, 5.0);
    SetLinkType(&link, type);
    Matrix43 frame = OddFrame();
    EXPECT_FALSE(compute.ComputeRelativePosition(link, 0, PositionOf({2.0}), &frame));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorLinkType);
    EXPECT_TRUE(SameBits(frame, Matrix43()));
    EXPECT_EQ(frame.IsIdentity(), true);
  }
}

TEST(RelativePosition, MovingLinkNeedsARegisterInsideThePosition) {
  struct Case {
    const char* name;
    int reg;
    int size;
    bool success;
  };
  const Case cases[] = {
      {"the first register", 0, 3, true}, {"the last register", 2, 3, true},
      {"the size itself", 3, 3, false},   {"far above", 2147483647, 3, false},
      {"undefined", -1, 3, false},        {"far below", -2147483647 - 1, 3, false},
      {"an empty position", 0, 0, false}, {"undefined in an empty position", -1, 0, false},
  };
  const EntityLink links[] = {LinearLink(AxisX, 5.0), RotaryLink(NullVector, AxisZ)};
  for (const EntityLink& link : links) {
    SCOPED_TRACE(static_cast<int>(link.GetEntityLinkType()));
    for (const Case& c : cases) {
      SCOPED_TRACE(c.name);
      const Machine machine;
      MachineCompute compute(machine);
      MachinePosition position;
      position.Alloc(static_cast<unsigned long long>(c.size));
      Matrix43 frame = OddFrame();
      bool success = !c.success;
      ASSERT_NO_THROW(success = compute.ComputeRelativePosition(link, c.reg, position, &frame));
      EXPECT_EQ(success, c.success);
      EXPECT_EQ(compute.GetLastError(),
                c.success ? Kin::ComputeErrorNone : Kin::ComputeErrorRegister);
      if (!c.success) {
        EXPECT_TRUE(SameBits(frame, Matrix43()));
      }
    }
  }
}

TEST(RelativePosition, NullFrameFailsBeforeAnythingElse) {
  const Machine machine;
  MachineCompute compute(machine);
  EXPECT_FALSE(compute.ComputeRelativePosition(EntityLink(), -1, MachinePosition(), nullptr));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNullOutput);
}

TEST(PositionEntity, NullFrameFailsBeforeAnEmptyPosition) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  EXPECT_FALSE(compute.ComputePositionEntity(EntityOf(machine, 8), MachinePosition(), nullptr));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNullOutput);
}

TEST(PositionEntity, EmptyPositionFailsAndLeavesTheFrame) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  Matrix43 frame = OddFrame();
  EXPECT_FALSE(compute.ComputePositionEntity(EntityOf(machine, 1), MachinePosition(), &frame));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorEmptyPosition);
  EXPECT_TRUE(SameBits(frame, OddFrame()));
}

TEST(PositionEntity, EntityWithoutParentHasItsRelativeFrame) {
  Machine machine;
  AddLinear(machine, -1, AxisX, 0)->GetEntityLinkMod()->SetZeroRef(5.0);
  MachineCompute compute(machine);
  Matrix43 frame = OddFrame();
  ASSERT_TRUE(compute.ComputePositionEntity(EntityAt(machine, 0), PositionOf({2.0}), &frame));
  EXPECT_TRUE(SameBits(frame, TranslationFrame(7, 0, 0)));
}

TEST(PositionEntity, UnfinishedMachineHasNoParentsYet) {
  Machine machine;
  AddFixed(machine, -1, TranslationFrame(100, 0, 0));
  AddFixed(machine, 1, TranslationFrame(0, 1, 0));
  MachineCompute compute(machine);
  Matrix43 frame;
  ASSERT_TRUE(compute.ComputePositionEntity(EntityAt(machine, 1), PositionOf({0.0}), &frame));
  EXPECT_TRUE(SameBits(frame, TranslationFrame(0, 1, 0)));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNone);
}

// Hand-made case: X 10 along x, then C a quarter turn, then A a quarter turn.
TEST(PositionEntity, CarriesTheElementThroughAllLinksUpToTheRoot) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  Matrix43 frame;
  ASSERT_TRUE(compute.ComputePositionEntity(EntityOf(machine, 8), PositionOf({10, 20, 30, 90, 90}),
                                            &frame));
  EXPECT_TRUE(NearVector(frame.GetTrans(), Vector3D(10, 20, 30), 1e-12));
  EXPECT_TRUE(NearVector(frame.GetU(), Vector3D(0, 1, 0), 1e-12));
  EXPECT_TRUE(NearVector(frame.GetV(), Vector3D(0, 0, 1), 1e-12));
  EXPECT_TRUE(NearVector(frame.GetW(), Vector3D(1, 0, 0), 1e-12));
}

// A random chain from the root (place 0) to its end, every element the child of the one before.
Machine RandomChain(TestRandom& random, int length) {
  Machine machine;
  for (int i = 0; i < length; ++i) {
    const Vector3D dir(random.Real(-1, 1), random.Real(-1, 1), random.Real(-1, 1));
    const Vector3D center(random.Real(-9, 9), random.Real(-9, 9), random.Real(-9, 9));
    const int parent = i == 0 ? -1 : i;
    switch (random.Integer(0, 4)) {
      case 0:
        AddLinear(machine, parent, dir, i);
        break;
      case 1:
        AddRotary(machine, parent, center, dir, i);
        break;
      case 2:
        AddRotary(machine, parent, NullVector, AxisZ, i);
        break;
      case 3: {
        Matrix43 frame = RotationFrame(AxisY, random.Real(-180, 180));
        frame.SetTrans(center);
        AddFixed(machine, parent, frame);
        break;
      }
      default: {
        Entity* entity = machine.AddEntity();
        entity->SetParentEntityId(parent);
        SetLinkType(entity->GetEntityLinkMod(), Kin::EntityLinkTypeIdentity);
        break;
      }
    }
  }
  machine.Finish();
  return machine;
}

MachinePosition RandomPosition(TestRandom& random, int size) {
  MachinePosition position;
  position.Alloc(static_cast<unsigned long long>(size));
  for (int r = 0; r < size; ++r) {
    position[Kin::Register(r)] = random.Chance(0.2) ? 0.0 : random.Real(-200, 200);
  }
  return position;
}

TEST(PositionEntity, MultipliesFromTheElementUpToTheRoot) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int round = 0; round < 300; ++round) {
    const int length = random.Integer(1, 9);
    const Machine machine = RandomChain(random, length);
    const MachinePosition position = RandomPosition(random, length);
    MachineCompute compute(machine);
    const Entity& last = EntityAt(machine, length - 1);
    Matrix43 expected;
    for (const Entity* e = &last; e != nullptr; e = e->GetParentEntity()) {
      Matrix43 relative;
      ASSERT_TRUE(compute.ComputeRelativePosition(e->GetEntityLink(), e->GetRegister(), position,
                                                  &relative));
      expected = relative * expected;
    }
    Matrix43 frame = OddFrame();
    ASSERT_TRUE(compute.ComputePositionEntity(last, position, &frame));
    ASSERT_TRUE(SameBits(frame, expected));
  }
}

TEST(PositionEntity, FailingLinkLeavesTheProductOfThoseBelow) {
  Machine machine;
  machine.AddEntity();  // no link yet
  AddFixed(machine, 1, TranslationFrame(1, 0, 0));
  AddFixed(machine, 2, TranslationFrame(0, 2, 0));
  machine.Finish();
  MachineCompute compute(machine);
  Matrix43 frame = OddFrame();
  EXPECT_FALSE(compute.ComputePositionEntity(EntityOf(machine, 3), PositionOf({0.0}), &frame));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorLinkType);
  EXPECT_TRUE(SameBits(frame, TranslationFrame(1, 2, 0)));
}

TEST(PositionEntity, ElementThatFailsItselfLeavesTheIdentity) {
  Machine machine;
  AddLinear(machine, -1, AxisX, 5);
  machine.Finish();
  MachineCompute compute(machine);
  Matrix43 frame = OddFrame();
  EXPECT_FALSE(compute.ComputePositionEntity(EntityOf(machine, 1), PositionOf({0.0}), &frame));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister);
  EXPECT_TRUE(SameBits(frame, Matrix43()));
}

TEST(PositionEntity, TheLinkNearestTheElementFailsFirst) {
  Machine machine;
  machine.AddEntity();  // would fail with its link
  AddLinear(machine, 1, AxisX, 5);
  machine.Finish();
  MachineCompute compute(machine);
  Matrix43 frame;
  EXPECT_FALSE(compute.ComputePositionEntity(EntityOf(machine, 2), PositionOf({0.0}), &frame));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister);
}

// Only links count: a head that travels is placed like an axis.
TEST(PositionEntity, TypesOfElementsDontMatter) {
  for (const Kin::EntityType type :
       {Kin::EntityTypeAxis, Kin::EntityTypeTable, Kin::EntityTypeHead}) {
    SCOPED_TRACE(static_cast<int>(type));
    Machine machine;
    Entity* entity = AddLinear(machine, -1, AxisX, 0);
    SetType(entity, type);
    machine.Finish();
    MachineCompute compute(machine);
    Matrix43 frame;
    ASSERT_TRUE(compute.ComputePositionEntity(*entity, PositionOf({4.0}), &frame));
    EXPECT_TRUE(SameBits(frame, TranslationFrame(4, 0, 0)));
  }
}

TEST(PositionMachine, FailuresComeInTheirOrder) {
  const Machine unfinished;
  const Machine finished = HeadHeadMachine();
  std::vector<Matrix43> frames(3, OddFrame());
  {
    MachineCompute compute(unfinished);
    EXPECT_FALSE(compute.ComputePositionMachine(MachinePosition(), nullptr));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNotFinished);
  }
  {
    MachineCompute compute(finished);
    EXPECT_FALSE(compute.ComputePositionMachine(MachinePosition(), nullptr));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNullOutput);
  }
  {
    MachineCompute compute(finished);
    EXPECT_FALSE(compute.ComputePositionMachine(MachinePosition(), &frames));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorEmptyPosition);
  }
  ASSERT_EQ(frames.size(), 3U);
  EXPECT_TRUE(SameBits(frames[1], OddFrame()));
}

TEST(PositionMachine, MachineThatFinishRefusedFails) {
  Machine machine;
  AddFixed(machine, -1);
  ASSERT_FALSE(machine.Finish());
  MachineCompute compute(machine);
  std::vector<Matrix43> frames;
  EXPECT_FALSE(compute.ComputePositionMachine(PositionOf({0.0}), &frames));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNotFinished);
  EXPECT_TRUE(frames.empty());
}

TEST(PositionMachine, CalculatorMadeBeforeFinishWorksAfterIt) {
  Machine machine;
  MachineCompute compute(machine);
  std::vector<Matrix43> frames;
  EXPECT_FALSE(compute.ComputePositionMachine(PositionOf({0.0}), &frames));
  AddTable(machine, -1);
  AddLinear(machine, -1, AxisX, 0);
  AddLinear(machine, 2, AxisY, 1);
  AddLinear(machine, 3, AxisZ, 2);
  AddHead(machine, 4);
  ASSERT_TRUE(machine.Finish());
  ASSERT_TRUE(compute.ComputePositionMachine(PositionOf({1, 2, 3}), &frames));
  EXPECT_TRUE(SameBits(frames[5], TranslationFrame(1, 2, 3)));
}

TEST(PositionMachine, MultipliesFromTheRootDown) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int round = 0; round < 200; ++round) {
    Machine machine = RandomChain(random, 8);
    // What Finish asks for stands beside the chain.
    AddTable(machine, -1);
    AddHead(machine, -1);
    for (int i = 0; i < 3; ++i) {
      AddLinear(machine, -1, AxisX, i);
    }
    ASSERT_TRUE(machine.Finish());
    const MachinePosition position = RandomPosition(random, 8);
    MachineCompute compute(machine);
    std::vector<Matrix43> frames;
    ASSERT_TRUE(compute.ComputePositionMachine(position, &frames));
    ASSERT_EQ(frames.size(), 14U);
    Matrix43 expected;
    for (int id = 1; id <= 8; ++id) {
      const Entity& e = EntityOf(machine, id);
      Matrix43 relative;
      ASSERT_TRUE(
          compute.ComputeRelativePosition(e.GetEntityLink(), e.GetRegister(), position, &relative));
      expected = id == 1 ? relative : expected * relative;
      SCOPED_TRACE(id);
      ASSERT_TRUE(SameBits(frames[static_cast<std::size_t>(id)], expected));
      Matrix43 single;
      ASSERT_TRUE(compute.ComputePositionEntity(e, position, &single));
      ASSERT_TRUE(NearFrame(frames[static_cast<std::size_t>(id)], single, 1e-9));
    }
  }
}

TEST(PositionMachine, PlacesWithoutElementHoldTheIdentityOrWhatTheyHeld) {
  Machine machine = HeadHeadMachine();
  EntitiesOf(machine).back().SetParentEntityId(-1);
  SetId(&EntitiesOf(machine).back(), 20);
  ASSERT_TRUE(machine.Finish());
  MachineCompute compute(machine);
  std::vector<Matrix43> frames(3, OddFrame());
  ASSERT_TRUE(compute.ComputePositionMachine(PositionOf({1, 2, 3, 0, 0}), &frames));
  ASSERT_EQ(frames.size(), 21U);
  EXPECT_TRUE(SameBits(frames[0], OddFrame())) << "an old place that no element uses";
  EXPECT_TRUE(SameBits(frames[1], Matrix43())) << "an old place that an element uses";
  EXPECT_TRUE(SameBits(frames[3], TranslationFrame(1, 0, 0)));
  for (std::size_t i = 8; i < 20; ++i) {
    EXPECT_TRUE(SameBits(frames[i], Matrix43())) << "a new place " << i;
  }
}

TEST(PositionMachine, CutsALongerResult) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  std::vector<Matrix43> frames(50, OddFrame());
  ASSERT_TRUE(compute.ComputePositionMachine(PositionOf({1, 2, 3, 0, 0}), &frames));
  EXPECT_EQ(frames.size(), 9U);
}

TEST(PositionMachine, FailingLinkCountsAsTheIdentityAndIsRemembered) {
  Machine machine = HeadHeadMachine();
  SetLinkType(EntityAt(machine, 4).GetEntityLinkMod(), Kin::EntityLinkTypeUndef);
  MachineCompute compute(machine);
  std::vector<Matrix43> frames;
  ASSERT_TRUE(compute.ComputePositionMachine(PositionOf({1, 2, 3, 0, 0}), &frames));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorLinkType);
  EXPECT_TRUE(SameBits(frames[5], TranslationFrame(1, 2, 0)));
  EXPECT_TRUE(SameBits(frames[8], TranslationFrame(1, 2, 0)));
}

TEST(PositionMachine, LinkThatFailsLaterLosesItsEarlierFrame) {
  Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  std::vector<Matrix43> frames;
  ASSERT_TRUE(compute.ComputePositionMachine(PositionOf({1, 2, 3, 0, 0}), &frames));
  ASSERT_TRUE(compute.ComputePositionMachine(PositionOf({7, 8}), &frames));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister);
  EXPECT_TRUE(SameBits(frames[8], TranslationFrame(7, 8, 0)));
}

TEST(PositionMachine, ElementWithoutIdIsEvaluatedForTheLastErrorOnly) {
  for (const int id : {-1, -5, -2147483647 - 1}) {
    SCOPED_TRACE(id);
    Machine machine = HeadHeadMachine();
    Entity extra;
    EntitiesOf(machine).push_back(extra);
    SetId(&EntitiesOf(machine).back(), id);
    ASSERT_TRUE(machine.Finish());
    MachineCompute compute(machine);
    std::vector<Matrix43> frames;
    ASSERT_TRUE(compute.ComputePositionMachine(PositionOf({1, 2, 3, 0, 0}), &frames));
    EXPECT_EQ(frames.size(), 9U);
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorLinkType);
    EXPECT_TRUE(SameBits(frames[8], TranslationFrame(1, 2, 3)));
  }
}

TEST(McsToToolTcs, FailuresComeInTheirOrder) {
  const Machine unfinished;
  const Machine finished = HeadHeadMachine();
  Matrix43 frame = OddFrame();
  {
    MachineCompute compute(unfinished);
    EXPECT_FALSE(compute.ComputeMcsToToolTcs(MachinePosition(), 9, 9, NullVector, nullptr));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNotFinished);
  }
  {
    MachineCompute compute(finished);
    EXPECT_FALSE(compute.ComputeMcsToToolTcs(MachinePosition(), 9, 9, NullVector, nullptr));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNullOutput);
  }
  for (const auto& [head, table] :
       std::vector<std::pair<int, int>>{{1, 0}, {0, 1}, {-1, 0}, {0, -1}, {9, 9}}) {
    MachineCompute compute(finished);
    EXPECT_FALSE(compute.ComputeMcsToToolTcs(MachinePosition(), head, table, NullVector, &frame));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNoHeadOrTable) << head << " " << table;
  }
  {
    MachineCompute compute(finished);
    EXPECT_FALSE(compute.ComputeMcsToToolTcs(MachinePosition(), 0, 0, NullVector, &frame));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorEmptyPosition);
  }
  {
    MachineCompute compute(finished);
    EXPECT_FALSE(compute.ComputeMcsToToolTcs(PositionOf({0, 0, 0, 0}), 0, 0, NullVector, &frame));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister) << "the head's chain fails";
  }
  EXPECT_TRUE(SameBits(frame, OddFrame()));
}

TEST(McsToToolTcs, HeadFailsBeforeTheTable) {
  Machine machine = HeadHeadMachine();
  SetLinkType(EntityAt(machine, 7).GetEntityLinkMod(), Kin::EntityLinkTypeUndef);
  EntityAt(machine, 1).GetEntityLinkMod()->SetEntityLinkLinear(AxisX);
  {
    MachineCompute compute(machine);
    Matrix43 frame;
    EXPECT_FALSE(
        compute.ComputeMcsToToolTcs(PositionOf({0, 0, 0, 0, 0}), 0, 0, NullVector, &frame));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorLinkType);
  }
  EntityAt(machine, 7).GetEntityLinkMod()->SetEntityLinkPosition(Matrix43());
  {
    MachineCompute compute(machine);
    Matrix43 frame = OddFrame();
    EXPECT_FALSE(
        compute.ComputeMcsToToolTcs(PositionOf({0, 0, 0, 0, 0}), 0, 0, NullVector, &frame));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorRegister) << "the table fails alone";
    EXPECT_TRUE(SameBits(frame, OddFrame()));
  }
}

TEST(McsToToolTcs, HeadAndTableOnOneFrameGiveTheIdentity) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  Matrix43 frame = OddFrame();
  ASSERT_TRUE(compute.ComputeMcsToToolTcs(PositionOf({0, 0, 0, 0, 0}), 0, 0, NullVector, &frame));
  for (int i = 0; i < 16; ++i) {
    EXPECT_EQ(static_cast<const double*>(frame)[i], IdentityFrame[i]) << i;
  }
}

TEST(McsToToolTcs, OffsetPointLiesAtMinusTheOffsetInTheHead) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  Matrix43 frame;
  ASSERT_TRUE(compute.ComputeMcsToToolTcs(PositionOf({10, 20, 300, 0, 0}), 0, 0, Vector3D(1, 2, 50),
                                          &frame));
  EXPECT_TRUE(NearVector(frame.GetTrans(), Vector3D(9, 18, 250), 1e-12));
  ASSERT_TRUE(compute.ComputeMcsToToolTcs(PositionOf({10, 20, 300, 0, 90}), 0, 0,
                                          Vector3D(0, 0, 50), &frame));
  EXPECT_TRUE(NearVector(frame.GetTrans(), Vector3D(10, 70, 300), 1e-12));
}

TEST(McsToToolTcs, IsTheInverseTableTimesTheHeadTimesTheOffset) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (const Machine& machine : {HeadHeadMachine(), TableTableMachine(), HeadTableMachine()}) {
    MachineCompute compute(machine);
    const Entity& head = *machine.GetKinematic().GetEntityHead(0);
    const Entity& table = *machine.GetKinematic().GetEntityTable(0);
    for (int round = 0; round < 300; ++round) {
      const MachinePosition position = RandomPosition(random, 5);
      const Vector3D offset(random.Real(-9, 9), random.Real(-9, 9), random.Real(-9, 9));
      Matrix43 worldFromHead;
      Matrix43 worldFromTable;
      ASSERT_TRUE(compute.ComputePositionEntity(head, position, &worldFromHead));
      ASSERT_TRUE(compute.ComputePositionEntity(table, position, &worldFromTable));
      Matrix43 shift;
      shift.SetTrans(Vector3D(-offset[0], -offset[1], -offset[2]));
      Matrix43 frame;
      ASSERT_TRUE(compute.ComputeMcsToToolTcs(position, 0, 0, offset, &frame));
      ASSERT_TRUE(SameBits(frame, worldFromTable.HInverse() * worldFromHead * shift));
    }
  }
}

TEST(McsToToolTcs, SeveralHeadsAndTablesAreToldApart) {
  Machine machine;
  AddTable(machine, -1, TranslationFrame(1, 0, 0));
  AddTable(machine, -1, TranslationFrame(10, 0, 0));
  AddLinear(machine, -1, AxisX, 0);
  AddLinear(machine, 3, AxisY, 1);
  AddLinear(machine, 4, AxisZ, 2);
  AddHead(machine, 5, TranslationFrame(0, 100, 0));
  AddHead(machine, 5, TranslationFrame(0, 1000, 0));
  ASSERT_TRUE(machine.Finish());
  MachineCompute compute(machine);
  for (const int head : {0, 1}) {
    for (const int table : {0, 1}) {
      Matrix43 frame;
      ASSERT_TRUE(
          compute.ComputeMcsToToolTcs(PositionOf({0, 0, 0}), head, table, NullVector, &frame));
      EXPECT_TRUE(NearVector(frame.GetTrans(),
                             Vector3D(table == 0 ? -1 : -10, head == 0 ? 100 : 1000, 0), 1e-12));
    }
  }
}

TEST(WorldEntityDir, FailuresComeInTheirOrder) {
  Machine machine = HeadHeadMachine();
  const MachinePosition position = PositionOf({0, 0, 0, 0, 0});
  Vector3D dir(7, 8, 9);
  {
    MachineCompute compute(machine);
    EXPECT_FALSE(ComputeWorldEntityDir(compute, position, EntityOf(machine, 8), nullptr));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNullOutput);
  }
  for (const int id : {2, 8}) {
    MachineCompute compute(machine);
    EXPECT_FALSE(ComputeWorldEntityDir(compute, position, EntityOf(machine, id), &dir));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNotAxis) << id;
  }
  for (const int type : {2, 3, 4, 5, 6, 7, 8, 9, -1}) {
    SetLinkType(EntityAt(machine, 2).GetEntityLinkMod(), type);
    MachineCompute compute(machine);
    EXPECT_FALSE(ComputeWorldEntityDir(compute, position, EntityOf(machine, 3), &dir));
    EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorAxisLinkType) << type;
  }
  EXPECT_TRUE(SameBits(dir, Vector3D(7, 8, 9)));
}

TEST(WorldEntityDir, AxisIsFixedInItsParentsFrame) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  Vector3D dir;
  ASSERT_TRUE(
      ComputeWorldEntityDir(compute, PositionOf({1, 2, 3, 90, 33}), EntityOf(machine, 7), &dir));
  EXPECT_TRUE(NearVector(dir, AxisY, 1e-12)) << "A turns with C and not with itself";
  ASSERT_TRUE(
      ComputeWorldEntityDir(compute, PositionOf({1, 2, 3, 90, 33}), EntityOf(machine, 6), &dir));
  EXPECT_TRUE(SameBits(dir, AxisZ)) << "translations don't count";
  ASSERT_TRUE(ComputeWorldEntityDir(compute, MachinePosition(), EntityAt(machine, 2), &dir));
  EXPECT_TRUE(SameBits(dir, AxisX)) << "a parent that fails leaves its frame as it stands";
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorEmptyPosition);
}

TEST(WorldEntityDir, AxisWithoutParentKeepsItsDirection) {
  Machine machine;
  AddRotary(machine, -1, Vector3D(1, 2, 3), Vector3D(3, 0, 4), 0);
  MachineCompute compute(machine);
  Vector3D dir;
  ASSERT_TRUE(ComputeWorldEntityDir(compute, PositionOf({90.0}), EntityAt(machine, 0), &dir));
  EXPECT_TRUE(SameBits(dir, EntityAt(machine, 0).GetEntityLink().GetDir()));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNone);
}

TEST(WorldEntityDir, FailingParentAppliesTheProductAsItStands) {
  Machine machine;
  machine.AddEntity();  // no link yet
  AddRotary(machine, 1, NullVector, AxisZ, 0);
  AddLinear(machine, 2, AxisX, 1);
  machine.Finish();
  MachineCompute compute(machine);
  Vector3D dir;
  ASSERT_TRUE(ComputeWorldEntityDir(compute, PositionOf({90, 0}), EntityOf(machine, 3), &dir));
  EXPECT_TRUE(NearVector(dir, AxisY, 1e-12));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorLinkType);
}

TEST(LastError, StartsWithoutErrorAndKeepsTheMostRecentFailure) {
  const Machine machine = HeadHeadMachine();
  MachineCompute compute(machine);
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNone);
  std::vector<Matrix43> frames;
  Matrix43 frame;
  const MachinePosition good = PositionOf({0, 0, 0, 0, 0});
  EXPECT_FALSE(compute.ComputePositionMachine(good, nullptr));
  EXPECT_TRUE(compute.ComputePositionMachine(good, &frames));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNullOutput);
  EXPECT_FALSE(compute.ComputeMcsToToolTcs(good, 7, 0, NullVector, &frame));
  EXPECT_TRUE(compute.ComputeMcsToToolTcs(good, 0, 0, NullVector, &frame));
  EXPECT_TRUE(compute.ComputePositionEntity(EntityOf(machine, 8), good, &frame));
  EXPECT_TRUE(
      compute.ComputeRelativePosition(EntityOf(machine, 1).GetEntityLink(), 0, good, &frame));
  EXPECT_EQ(compute.GetLastError(), Kin::ComputeErrorNoHeadOrTable);
}

TEST(LastError, CopiesAreHandlesOnOneCalculator) {
  const Machine machine = HeadHeadMachine();
  const Machine unfinished;
  MachineCompute first(machine);
  MachineCompute second(first);
  MachineCompute third(unfinished);
  EXPECT_FALSE(third.ComputePositionMachine(MachinePosition(), nullptr));
  third = first;
  EXPECT_EQ(third.GetLastError(), Kin::ComputeErrorNone)
      << "the error of the record it had is gone";
  std::vector<Matrix43> frames;
  EXPECT_FALSE(second.ComputePositionMachine(MachinePosition(), &frames));
  EXPECT_EQ(first.GetLastError(), Kin::ComputeErrorEmptyPosition);
  EXPECT_EQ(third.GetLastError(), Kin::ComputeErrorEmptyPosition);
  third = *&third;
  EXPECT_EQ(third.GetLastError(), Kin::ComputeErrorEmptyPosition);
}

TEST(LastError, HandleOutlivesTheOneThatItCameFrom) {
  const Machine machine = HeadHeadMachine();
  auto first = std::make_unique<MachineCompute>(machine);
  MachineCompute second(*first);
  first.reset();
  std::vector<Matrix43> frames;
  EXPECT_TRUE(second.ComputePositionMachine(PositionOf({1, 2, 3, 0, 0}), &frames));
  EXPECT_TRUE(SameBits(frames[8], TranslationFrame(1, 2, 3)));
}

}  // namespace
}  // namespace Orvo::Testing
