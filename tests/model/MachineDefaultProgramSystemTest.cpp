#include "model/EntityAccess.h"
#include "model/PlainMachine.h"
#include "support/PrivateMember.h"

#include <Orvo/Kin/Machine.h>

#include <gtest/gtest.h>

#include <vector>

namespace Orvo {

namespace Testing {

struct LinkTypeOf {
  using Type = Kin::EntityLinkType Kin::EntityLink::*;
  friend Type MemberOf(LinkTypeOf);
};
template struct PrivateMember<LinkTypeOf, &Kin::EntityLink::type_>;

}  // namespace Testing

namespace Kin {
namespace {

using Testing::AddHead;
using Testing::AddLinear;
using Testing::AddMainAxes;
using Testing::AddRotary;
using Testing::AddTable;
using Testing::BuildValid;
using Testing::SetEntityType;

struct Axis {
  char kind;  // 'l' linear, 'r' rotary
  Vector3D dir;
  int reg;
};

struct DefaultCase {
  const char* name;
  std::vector<Axis> axes;
  std::vector<int> linear;
  std::vector<int> rotary;
};

TEST(MachineDefaultProgramSystem, TheDefaultProgramSystemTakesTheMainAxes) {
  const std::vector<int> none = {-1, -1, -1};
  const DefaultCase cases[] = {
      {"main axes and two rotaries",
       {{'l', {1, 0, 0}, 0},
        {'l', {0, -1, 0}, 1},
        {'l', {0, 0, 1}, 2},
        {'r', {0, 0, 1}, 4},
        {'r', {0, 1, 0}, 3}},
       {0, 1, 2},
       {3, 4}},
      {"opposite directions",
       {{'l', {-1, 0, 0}, 5}, {'l', {0, 1, 0}, 7}, {'l', {0, 0, -1}, 6}},
       {5, 7, 6},
       {-1, -1}},
      {"in any order", {{'l', AxisZ, 0}, {'l', AxisX, 1}, {'l', AxisY, 2}}, {1, 2, 0}, {-1, -1}},
      {"long directions are made unit",
       {{'l', {300, 0, 0}, 0}, {'l', {0, 0.002, 0}, 1}, {'l', {0, 0, -7}, 2}},
       {0, 1, 2},
       {-1, -1}},
      {"negative zeros",
       {{'l', {1, -0.0, -0.0}, 0}, {'l', {-0.0, 1, -0.0}, 1}, {'l', {-0.0, -0.0, 1}, 2}},
       {0, 1, 2},
       {-1, -1}},
      {"a direction off by a ten millionth",
       {{'l', {1, 0.0000001, 0}, 0}, {'l', AxisY, 1}, {'l', AxisZ, 2}},
       none,
       {-1, -1}},
      {"a direction whose x is exactly 1 but not its y",
       {{'l', {1, 1e-9, 0}, 0}, {'l', AxisY, 1}, {'l', AxisZ, 2}},
       none,
       {-1, -1}},
      {"no direction counts as X",
       {{'l', {0, 0, 0}, 8}, {'l', AxisY, 1}, {'l', AxisZ, 2}},
       {8, 1, 2},
       {-1, -1}},
      {"X missing", {{'l', AxisZ, 0}, {'l', AxisY, 1}, {'l', AxisZ, 2}}, none, {-1, -1}},
      {"Y missing", {{'l', AxisX, 0}, {'l', AxisX, 1}, {'l', AxisZ, 2}}, none, {-1, -1}},
      {"Z missing", {{'l', AxisX, 0}, {'l', AxisY, 1}, {'l', AxisY, 2}}, none, {-1, -1}},
      {"the last of each direction",
       {{'l', AxisX, 0}, {'l', AxisY, 1}, {'l', AxisZ, 2}, {'l', {-1, 0, 0}, 9}},
       {9, 1, 2},
       {-1, -1}},
      {"the last of each direction, undefined",
       {{'l', AxisX, 0}, {'l', AxisY, 1}, {'l', AxisZ, 2}, {'l', {-1, 0, 0}, -1}},
       none,
       {-1, -1}},
      {"an undefined X before",
       {{'l', AxisX, -1}, {'l', AxisX, 4}, {'l', AxisY, 1}, {'l', AxisZ, 2}},
       {4, 1, 2},
       {-1, -1}},
      {"two axes on one register",
       {{'l', AxisX, 3}, {'l', AxisY, 3}, {'l', AxisZ, 3}},
       {3, 3, 3},
       {-1, -1}},
      {"one rotary", {{'r', AxisX, 6}}, none, {6, -1}},
      {"ascending rotaries", {{'r', AxisX, 2}, {'r', AxisX, 6}}, none, {2, 6}},
      {"descending rotaries", {{'r', AxisX, 6}, {'r', AxisX, 2}}, none, {2, 6}},
      {"the first two of three", {{'r', AxisX, 6}, {'r', AxisX, 5}, {'r', AxisX, 1}}, none, {5, 6}},
      {"undefined rotaries are passed over",
       {{'r', AxisX, -1}, {'r', AxisX, 6}, {'r', AxisX, -4}, {'r', AxisX, 1}},
       none,
       {1, 6}},
      {"only undefined rotaries", {{'r', AxisX, -1}, {'r', AxisX, -1}}, none, {-1, -1}},
      {"one defined rotary, then undefined ones",
       {{'r', AxisX, 3}, {'r', AxisX, -2}},
       none,
       {3, -2}},
      {"rotaries on one register", {{'r', AxisX, 5}, {'r', AxisX, 5}}, none, {5, 5}},
      {"rotary register 0", {{'r', AxisX, 0}, {'r', AxisX, 1}}, none, {0, 1}},
      {"a rotary along X is no X",
       {{'r', AxisX, 0}, {'l', AxisY, 1}, {'l', AxisZ, 2}},
       none,
       {0, -1}},
  };
  for (const DefaultCase& c : cases) {
    SCOPED_TRACE(c.name);
    Machine machine;
    for (const Axis& axis : c.axes) {
      if (axis.kind == 'l') {
        AddLinear(&machine, axis.dir, axis.reg);
      } else {
        AddRotary(&machine, axis.reg);
      }
    }
    AddHead(&machine);
    AddTable(&machine);
    machine.Finish();
    ASSERT_EQ(machine.GetProgramSystemNb().GetVal(), 1);
    ProgramSystem ps(*machine.GetProgramSystem(ProgramSystemIndex(0)));
    EXPECT_EQ(ps.GetProgramSystemName(), L"Default");
    EXPECT_EQ(ps.GetTableIndex().GetVal(), 0);
    EXPECT_EQ(ps.GetHeadIndex().GetVal(), 0);
    EXPECT_EQ(ps.GetRotariesCompute(), RotariesComputeShortestWay);
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(ps.GetMainLinear(i).GetVal(), c.linear[static_cast<std::size_t>(i)]) << i;
    }
    for (int i = 0; i < 2; ++i) {
      EXPECT_EQ(ps.GetMainRotary(i).GetVal(), c.rotary[static_cast<std::size_t>(i)]) << i;
    }
  }
}

TEST(MachineDefaultProgramSystem, LinksCountForTheDefaultProgramSystemWhateverTheElement) {
  Machine machine;
  AddLinear(&machine, AxisY, 1);
  AddLinear(&machine, AxisZ, 2);
  SetEntityType(AddLinear(&machine, AxisX, 0), EntityTypeTable);
  SetEntityType(AddRotary(&machine, 3), EntityTypeHead);
  machine.Finish();
  const ProgramSystem* const ps = machine.GetProgramSystem(ProgramSystemIndex(0));
  ASSERT_NE(ps, nullptr);
  EXPECT_EQ(ps->GetMainLinear(0).GetVal(), 0);
  EXPECT_EQ(ps->GetMainRotary(0).GetVal(), 3);
}

TEST(MachineDefaultProgramSystem, OtherLinksAreNoMainAxes) {
  for (int type = EntityLinkTypePosition; type <= EntityLinkTypeUndef; ++type) {
    SCOPED_TRACE(type);
    Machine machine;
    AddMainAxes(&machine);
    EntityLink* const link = AddLinear(&machine, AxisX, 9)->GetEntityLinkMod();
    link->*MemberOf(Testing::LinkTypeOf()) = static_cast<EntityLinkType>(type);
    AddHead(&machine);
    AddTable(&machine);
    EXPECT_TRUE(machine.Finish());
    EXPECT_EQ(machine.GetLinearAxesNb(), 3);
    EXPECT_EQ(machine.GetProgramSystem(ProgramSystemIndex(0))->GetMainLinear(0).GetVal(), 0);
    EXPECT_EQ(machine.GetProgramSystem(ProgramSystemIndex(0))->GetMainRotary(0).GetVal(), -1);
  }
}

TEST(MachineDefaultProgramSystem, AMachineWithOwnProgramSystemsGetsNoDefault) {
  Machine machine;
  BuildValid(&machine);
  ProgramSystem ps;
  ps.SetProgramSystemName(L"own");
  machine.AddProgramSystem(ps);
  EXPECT_TRUE(machine.Finish());
  ASSERT_EQ(machine.GetProgramSystemNb().GetVal(), 1);
  EXPECT_EQ(machine.GetProgramSystem(ProgramSystemIndex(0))->GetProgramSystemName(), L"own");
}

TEST(MachineDefaultProgramSystem, TheDefaultProgramSystemIsAddedBeforeValidation) {
  Machine machine;
  AddLinear(&machine, AxisX, 0);
  AddLinear(&machine, AxisY, 1);
  AddHead(&machine);
  AddTable(&machine);
  EXPECT_FALSE(machine.Finish());
  EXPECT_EQ(machine.GetLastError(), MachineErrorFewLinearAxes);
  ASSERT_EQ(machine.GetProgramSystemNb().GetVal(), 1);
  EXPECT_EQ(machine.GetProgramSystem(ProgramSystemIndex(0))->GetProgramSystemName(), L"Default");
  // Once there, it is not made again, and keeps what it took.
  AddLinear(&machine, AxisZ, 2);
  EXPECT_TRUE(machine.Finish());
  EXPECT_TRUE(machine.Finish());
  ASSERT_EQ(machine.GetProgramSystemNb().GetVal(), 1);
  EXPECT_EQ(machine.GetProgramSystem(ProgramSystemIndex(0))->GetMainLinear(2).GetVal(), -1);
}

}  // namespace
}  // namespace Kin
}  // namespace Orvo
