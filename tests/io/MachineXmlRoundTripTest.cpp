#include "MachineFiles.h"
#include "support/SameBits.h"
#include "support/TestRandom.h"

#include <Orvo/Kin/CollisionCheck.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/ProgramSystem.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <list>
#include <string>

namespace Orvo::Testing {
namespace {

using Kin::Entity;
using Kin::EntityId;
using Kin::Machine;
using Kin::ProgramSystem;

// A double that six decimals hold whole.
double SixDecimals(TestRandom& random) { return random.Integer(-1000000, 1000000) / 64.0; }

Vector3D RandomVector(TestRandom& random) {
  return Vector3D(SixDecimals(random), SixDecimals(random), SixDecimals(random));
}

std::wstring RandomName(TestRandom& random) {
  std::wstring name(1, L'n');
  const int length = random.Integer(0, 12);
  for (int i = 0; i < length; ++i) {
    const wchar_t characters[] = {L'a', L'<',  L'&',  L'"',      L'\'',     L' ',
                                  L'>', L'\n', L'\t', L'\u00e9', L'\u65e5', L'\uffff'};
    name += characters[random.Integer(0, 11)];
  }
  return name + L'm';
}

void AddRandomElement(TestRandom& random, Machine& machine) {
  Entity* e = nullptr;
  const int parent = random.Integer(-1, 9);
  const Vector3D principal[] = {AxisX, AxisY, AxisZ};
  Matrix43 frame;
  frame.SetUVWT(RandomVector(random), RandomVector(random), RandomVector(random),
                RandomVector(random));
  switch (random.Integer(0, 4)) {
    case 0:
      e = machine.AddEntityLinear(RandomName(random), parent, principal[random.Integer(0, 2)]);
      break;
    case 1:
      e = machine.AddEntityRotary(RandomName(random), parent, RandomVector(random),
                                  principal[random.Integer(0, 2)]);
      break;
    case 2:
      e = machine.AddEntityHead(RandomName(random), parent, frame);
      break;
    case 3:
      e = machine.AddEntityTable(RandomName(random), parent, frame);
      break;
    default:
      e = machine.AddEntityStatic(RandomName(random), parent);
      break;
  }
  e->SetRegister(random.Integer(-1, 9));
  e->SetIsMotor(random.Chance(0.5));
  e->SetCheckRangeAxis(random.Chance(0.5));
  e->SetIsMounting(random.Chance(0.5));
  e->SetRange(SixDecimals(random), SixDecimals(random));
  e->GetEntityLinkMod()->SetZeroRef(SixDecimals(random));
  const int meshes = random.Integer(0, 2);
  for (int i = 0; i < meshes; ++i) {
    e->AllocEntityMesh()->AddMesh(new Mesh, static_cast<unsigned int>(random.Bits()));
  }
}

Machine RandomMachine(TestRandom& random) {
  Machine machine;
  const int count = random.Integer(0, 9);
  for (int i = 0; i < count; ++i) {
    AddRandomElement(random, machine);
  }
  const int programSystems = random.Integer(0, 2);
  for (int i = 0; i < programSystems; ++i) {
    ProgramSystem ps;
    ps.SetProgramSystemName(RandomName(random));
    ps.SetHeadIndex(random.Integer(-1, 3));
    ps.SetTableIndex(random.Integer(-1, 3));
    ps.SetMainLinear(random.Integer(-1, 9), random.Integer(-1, 9), random.Integer(-1, 9));
    ps.SetMainRotary(random.Integer(-1, 9), random.Integer(-1, 9));
    ps.SetRotariesCompute(static_cast<Kin::RotariesCompute>(random.Integer(0, 2)));
    machine.AddProgramSystem(ps);
  }
  Kin::CollisionCheck& check = machine.GetCollisionCheckMod();
  for (int i = 0; i < 8 && count > 0; ++i) {
    check.SetMachineMachine(random.Integer(1, count), random.Integer(1, count), true);
    check.SetMachineTool(random.Integer(-3, 9), true);
    check.SetMachinePart(random.Integer(-3, 9), true);
  }
  return machine;
}

void ExpectSame(const Machine& a, const Machine& b) {
  ASSERT_EQ(EntityCount(a), EntityCount(b));
  for (int i = 0; i < static_cast<int>(EntityCount(a)); ++i) {
    const Entity& e = EntityAt(a, i);
    const Entity& f = EntityAt(b, i);
    EXPECT_EQ(e.GetEntityName(), f.GetEntityName());
    EXPECT_EQ(e.GetEntityType(), f.GetEntityType());
    EXPECT_EQ(e.GetEntityId(), f.GetEntityId());
    EXPECT_EQ(e.GetParentEntityId(), f.GetParentEntityId());
    EXPECT_EQ(e.GetRegister(), f.GetRegister());
    EXPECT_EQ(e.GetIsMotor(), f.GetIsMotor());
    EXPECT_EQ(e.GetCheckRangeAxis(), f.GetCheckRangeAxis());
    EXPECT_EQ(e.GetIsMounting(), f.GetIsMounting());
    const Kin::EntityLink& p = e.GetEntityLink();
    const Kin::EntityLink& q = f.GetEntityLink();
    EXPECT_EQ(p.GetEntityLinkType(), q.GetEntityLinkType());
    EXPECT_TRUE(SameBits(p.GetCenter(), q.GetCenter()));
    const bool isMoving = p.GetEntityLinkType() == Kin::EntityLinkTypeLinear ||
                          p.GetEntityLinkType() == Kin::EntityLinkTypeRotary;
    EXPECT_TRUE(SameBits(isMoving ? p.GetDir() : AxisX, q.GetDir()));
    for (int k = 0; k < 16; ++k) {
      // A column's fourth component is not in the file.
      if (k % 4 != 3) {
        EXPECT_EQ(static_cast<const double*>(p.GetPosition())[k],
                  static_cast<const double*>(q.GetPosition())[k]);
      }
    }
    EXPECT_TRUE(SameBits(p.GetZeroRef(), q.GetZeroRef()));
    EXPECT_TRUE(SameBits(p.GetRangeMin(), q.GetRangeMin()));
    EXPECT_TRUE(SameBits(p.GetRangeMax(), q.GetRangeMax()));
    const unsigned int meshes = e.GetEntityMesh() == nullptr ? 0 : e.GetEntityMesh()->GetMeshNb();
    ASSERT_EQ(meshes, f.GetEntityMesh() == nullptr ? 0 : f.GetEntityMesh()->GetMeshNb());
    for (unsigned int m = 0; m < meshes; ++m) {
      EXPECT_EQ(e.GetEntityMesh()->GetMeshColor(static_cast<int>(m)),
                f.GetEntityMesh()->GetMeshColor(static_cast<int>(m)));
    }
    std::list<EntityId> partners;
    std::list<EntityId> otherPartners;
    a.GetCollisionCheck().GetListMachineMachine(e.GetEntityId(), &partners, false);
    b.GetCollisionCheck().GetListMachineMachine(e.GetEntityId(), &otherPartners, false);
    EXPECT_EQ(partners, otherPartners);
  }
  std::list<EntityId> tools;
  std::list<EntityId> otherTools;
  a.GetCollisionCheck().GetListMachineTool(&tools);
  b.GetCollisionCheck().GetListMachineTool(&otherTools);
  EXPECT_EQ(tools, otherTools);
}

TEST(MachineXmlRoundTrip, ReadingGivesTheMachineBack) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int round = 0; round < 200; ++round) {
    Machine machine = RandomMachine(random);
    Machine again;
    ASSERT_TRUE(ReadText(again, WrittenText(machine)));
    ExpectSame(machine, again);
    if (testing::Test::HasFailure()) {
      FAIL() << "round " << round;
    }
  }
}

// The first reading makes every direction unit; from then on nothing changes.
TEST(MachineXmlRoundTrip, SecondWritingIsAFixpoint) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int round = 0; round < 200; ++round) {
    Machine machine = RandomMachine(random);
    Machine second;
    ASSERT_TRUE(ReadText(second, WrittenText(machine)));
    const std::string secondText = WrittenText(second);
    Machine third;
    ASSERT_TRUE(ReadText(third, secondText));
    ASSERT_EQ(WrittenText(third), secondText) << "round " << round;
  }
}

TEST(MachineXmlRoundTrip, NullDirectionBecomesX) {
  Machine machine;
  machine.AddEntityStatic(L"base", -1);
  Machine again;
  ASSERT_TRUE(ReadText(again, WrittenText(machine)));
  EXPECT_TRUE(SameBits(EntityAt(again, 0).GetEntityLink().GetDir(), AxisX));
  EXPECT_EQ(WrittenText(again),
            Replaced(WrittenText(machine), "<Dir X=\"0.000000\"", "<Dir X=\"1.000000\""));
}

TEST(MachineXmlRoundTrip, DoublesKeepSixDecimals) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 300; ++i) {
    const double value = random.Real(-1, 1) * std::pow(10.0, random.Real(-8, 15));
    Machine machine;
    machine.AddEntity()->SetRangeMin(value);
    Machine again;
    ASSERT_TRUE(ReadText(again, WrittenText(machine)));
    const double back = EntityAt(again, 0).GetRangeMin();
    ASSERT_LE(std::fabs(back - value), 0.5e-6 + 1e-15 * std::fabs(value)) << HexText(value);
  }
}

TEST(MachineXmlRoundTrip, SlotsBehindTheFirstAreLost) {
  Machine machine;
  Entity* e = machine.AddEntity();
  for (unsigned int slot = 0; slot < Kin::LinkSlotCount; ++slot) {
    e->GetEntityLinkMod()->SetZeroRef(slot, slot + 1);
    e->GetEntityLinkMod()->SetRangeMin(slot, slot + 10);
    e->GetEntityLinkMod()->SetRangeMax(slot, slot + 20);
  }
  Machine again;
  ASSERT_TRUE(ReadText(again, WrittenText(machine)));
  const Kin::EntityLink& link = EntityAt(again, 0).GetEntityLink();
  EXPECT_EQ(link.GetZeroRef(0), 1);
  EXPECT_EQ(link.GetRangeMin(0), 10);
  EXPECT_EQ(link.GetRangeMax(0), 20);
  for (unsigned int slot = 1; slot < Kin::LinkSlotCount; ++slot) {
    EXPECT_EQ(link.GetZeroRef(slot), 0);
    EXPECT_EQ(link.GetRangeMin(slot), 0);
    EXPECT_EQ(link.GetRangeMax(slot), 0);
  }
}

TEST(MachineXmlRoundTrip, EmptyListOfMeshesIsNotReadBack) {
  Machine machine;
  machine.AddEntity()->AllocEntityMesh();
  Machine again;
  ASSERT_TRUE(ReadText(again, WrittenText(machine)));
  EXPECT_EQ(EntityAt(again, 0).GetEntityMesh(), nullptr);
}

TEST(MachineXmlRoundTrip, NamesOfAllScriptsComeBack) {
  const std::wstring names[] = {L"\u00c4chse \u00df",
                                L"\u0416\u0443\u043a",
                                L"\u65e5\u672c\u8a9e",
                                L"\U0001F529 bolt",
                                L"\U0010FFFF",
                                L"\ufeff mark",

                                L"a\u0301"};
  for (const std::wstring& name : names) {
    Machine machine;
    machine.AddEntity()->SetEntityName(name);
    ProgramSystem ps;
    ps.SetProgramSystemName(name);
    machine.AddProgramSystem(ps);
    Machine again;
    ASSERT_TRUE(ReadText(again, WrittenText(machine)));
    EXPECT_EQ(EntityAt(again, 0).GetEntityName(), name);
    EXPECT_EQ(again.GetListProgramSystem().front().GetProgramSystemName(), name);
  }
}

TEST(MachineXmlRoundTrip, NulEndsAName) {
  Machine machine;
  machine.AddEntity()->SetEntityName(std::wstring(L"before\0after", 12));
  Machine again;
  ASSERT_TRUE(ReadText(again, WrittenText(machine)));
  EXPECT_EQ(EntityAt(again, 0).GetEntityName(), L"before");
}

// What is no character becomes U+FFFD in the file.
TEST(MachineXmlRoundTrip, IllFormedNamesAreReplaced) {
  if constexpr (sizeof(wchar_t) == 4) {
    struct Case {
      std::wstring name;
      std::wstring back;
    };
    const wchar_t high = static_cast<wchar_t>(0xD800);
    const wchar_t low = static_cast<wchar_t>(0xDFFF);
    const wchar_t above = static_cast<wchar_t>(0x110000);
    const wchar_t negative = static_cast<wchar_t>(0xFFFFFFFF);
    const Case cases[] = {
        {std::wstring(1, high) + L"x", L"\ufffdx"},
        {std::wstring(1, low), L"\ufffd"},
        {std::wstring(1, high) + low, L"\ufffd\ufffd"},
        {std::wstring(1, above) + L"y" + negative, L"\ufffdy\ufffd"},
    };
    for (const Case& c : cases) {
      Machine machine;
      machine.AddEntity()->SetEntityName(c.name);
      Machine again;
      ASSERT_TRUE(ReadText(again, WrittenText(machine)));
      EXPECT_EQ(EntityAt(again, 0).GetEntityName(), c.back);
    }
  } else {
    Machine machine;
    machine.AddEntity()->SetEntityName(std::wstring(1, static_cast<wchar_t>(0xD800)));
    Machine again;
    ASSERT_TRUE(ReadText(again, WrittenText(machine)));
    EXPECT_EQ(EntityAt(again, 0).GetEntityName(), L"\ufffd");
  }
}

}  // namespace
}  // namespace Orvo::Testing
