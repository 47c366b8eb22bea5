// Positions, collision lists and the assembly of machines against the plain twin.

#include "property/Compare.h"
#include "property/Draw.h"
#include "property/MachineCompare.h"
#include "property/RandomGeometry.h"
#include "property/RandomMachine.h"
#include "property/TemporaryFile.h"
#include "property/reference/MachineText.h"
#include "property/reference/Model.h"

#include <Orvo/Kin/CollisionCheck.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <string>

namespace Orvo::Property {
namespace {

using Kin::MachinePosition;
using Reference::Position;

Position Combined(const Position& a, const Position& b, double sign) {
  Position out(a);
  if (a.values.size() == b.values.size()) {
    for (std::size_t i = 0; i < out.values.size(); ++i) {
      out.values[i] = sign > 0.0 ? a.values[i] + b.values[i] : a.values[i] - b.values[i];
    }
  }
  return out;
}

Position Mapped(const Position& a, double factor, bool divide) {
  Position out(a);
  for (double& value : out.values) {
    value = divide ? value / factor : value * factor;
  }
  return out;
}

TEST(MachinePositionProperty, CalculatesAsTheTwinDoes) {
  ForCases(100000, [](Draw& draw) {
    Position a = AnyPosition(draw, draw.Int(0, 6));
    const Position b = AnyPosition(draw, draw.Chance(0.5) ? a.Size() : draw.Int(0, 6));
    const double factor = AnyNumber(draw);
    MachinePosition p = ToOrvo(a);
    const MachinePosition q = ToOrvo(b);
    EXPECT_TRUE(SameBits(p, a));
    EXPECT_TRUE(SameBits(MachinePosition(p), a));
    EXPECT_TRUE(SameBits(p + q, Combined(a, b, 1.0)));
    EXPECT_TRUE(SameBits(p - q, Combined(a, b, -1.0)));
    EXPECT_TRUE(SameBits(-p, Mapped(a, -1.0, false)));
    EXPECT_TRUE(SameBits(p * factor, Mapped(a, factor, false)));
    EXPECT_TRUE(SameBits(p / factor, Mapped(a, factor, true)));
    EXPECT_TRUE(SameBits(p, a)) << "an operand changed";
    MachinePosition target(p);
    EXPECT_EQ(&(target += q), &target);
    EXPECT_TRUE(SameBits(target, Combined(a, b, 1.0)));
    target = p;
    Position expected = Combined(a, b, 1.0);
    expected = a;
    EXPECT_TRUE(SameBits(target, expected));
    EXPECT_EQ(&(target -= q), &target);
    EXPECT_TRUE(SameBits(target, Combined(expected, b, -1.0)));
    p = q;
    a = b;
    EXPECT_TRUE(SameBits(p, a)) << "assigned " << Text(b);
    const int reg = draw.Int(-3, 9);
    const MachinePosition& constant = p;
    if (a.Holds(reg)) {
      EXPECT_TRUE(SameBits(constant[Kin::Register(reg)], a[reg]));
    } else {
      try {
        static_cast<void>(constant[Kin::Register(reg)]);
        ADD_FAILURE() << "no exception for " << reg;
      } catch (const std::out_of_range& e) {
        EXPECT_STREQ(e.what(), "MachinePosition::operator[] : index out of range");
      }
    }
    const int n = draw.Int(-2, 6);
    p.Alloc(Kin::Register(n));
    a.Alloc(n);
    EXPECT_TRUE(SameBits(p, a));
    p.SetAll(factor);
    std::fill(a.values.begin(), a.values.end(), factor);
    EXPECT_TRUE(SameBits(p, a));
    const int m = draw.Int(0, 3);
    p.Alloc(static_cast<unsigned long long>(m));
    a.Alloc(m == 0 ? -1 : m);
    EXPECT_TRUE(SameBits(p, a));
  });
}

TEST(CollisionCheckProperty, KeepsItsListsAsTheTwinDoes) {
  ForCases(10000, [](Draw& draw) {
    Kin::CollisionCheck collisions;
    Kin::CollisionCheck handle(collisions);
    Reference::Collisions twin;
    const int lastId = draw.Int(2, 8);
    const int steps = draw.Int(1, 60);
    for (int i = 0; i < steps; ++i) {
      const int a = draw.Int(-2, lastId);
      const int b = draw.Int(-2, lastId);
      const bool on = draw.Chance(0.7);
      Kin::CollisionCheck& target = draw.Chance(0.5) ? handle : collisions;
      const int which = draw.Int(0, 6);
      switch (which) {
        case 0:
          target.SetMachineStock(a, on);
          break;
        case 1:
          target.SetMachinePart(a, on);
          break;
        case 2:
          target.SetMachineFixture(a, on);
          break;
        case 3:
          target.SetMachineTool(a, on);
          break;
        default:
          target.SetMachineMachine(a, b, on);
          break;
      }
      if (which < 4) {
        twin.Set(which, a, on);
      } else {
        twin.SetPair(a, b, on);
      }
    }
    ExpectSameCollisions(collisions, twin, -3, lastId + 1);
    ExpectSameCollisions(handle, twin, -3, lastId + 1);
  });
}

TEST(MachineProperty, AssemblesAsTheTwinDoes) {
  ForCases(20000, [](Draw& draw) {
    MachinePair pair(AnyPlan(draw));
    ExpectSameMachine(pair.machine, pair.twin);
    if (::testing::Test::HasFailure()) {
      ADD_FAILURE() << pair.Text();
    }
  });
}

// Elements are changed and added between one assembly and the next; nothing of the earlier one may
// stay behind.
TEST(MachineProperty, AssemblesAgainAsTheTwinDoes) {
  ForCases(10000, [](Draw& draw) {
    MachinePlan plan = AnyPlan(draw);
    plan.fromFile = false;
    MachinePair pair(plan);
    for (int round = 0; round < 3; ++round) {
      auto twinElement = pair.twin.elements.begin();
      for (Kin::Entity* e : pair.entities) {
        if (draw.Chance(0.3)) {
          const int parent = draw.Int(-1, static_cast<int>(pair.entities.size()) + 1);
          const int reg = draw.Int(-1, 9);
          e->SetParentEntityId(parent);
          e->SetRegister(reg);
          twinElement->parentId = parent;
          twinElement->reg = reg;
        }
        if (draw.Chance(0.1)) {
          const Reference::Vector dir = AnyDirection(draw);
          e->GetEntityLinkMod()->SetEntityLinkLinear(ToOrvo(dir));
          twinElement->link.SetLinear(dir);
        }
        ++twinElement;
      }
      const std::size_t before = pair.machine.GetKinematic().GetListEntity().size();
      Kin::Entity* added = pair.machine.AddEntity();
      EXPECT_EQ(added == nullptr, pair.twin.finished);
      if (added != nullptr) {
        pair.twin.Add();
        pair.entities.push_back(added);
      } else {
        EXPECT_EQ(pair.machine.AddEntityStatic(L"late", 1), nullptr);
        EXPECT_EQ(pair.machine.AddEntityHead(L"late", 1, Matrix43()), nullptr);
        EXPECT_EQ(pair.machine.AddEntityTable(L"late", 1, Matrix43()), nullptr);
        EXPECT_EQ(pair.machine.AddEntityLinear(L"late", 1, AxisX), nullptr);
        EXPECT_EQ(pair.machine.AddEntityRotary(L"late", 1, AxisX, AxisX), nullptr);
        pair.machine.AddEntity(Kin::Entity());
        EXPECT_EQ(pair.machine.GetKinematic().GetListEntity().size(), before);
      }
      EXPECT_EQ(pair.machine.Finish(), pair.twin.Finish());
      ExpectSameMachine(pair.machine, pair.twin);
      if (::testing::Test::HasFailure()) {
        ADD_FAILURE() << "round " << round << "\n" << pair.Text();
        return;
      }
    }
  });
}

// An element that is added by copy loses its id, its parent pointer and its meshes, nothing else.
TEST(MachineProperty, AddsCopiesAsTheTwinDoes) {
  ForCases(5000, [](Draw& draw) {
    const MachinePair source(AnyPlan(draw));
    Kin::Machine machine;
    Reference::Machine twin;
    auto from = source.machine.GetKinematic().GetListEntity().begin();
    for (const Reference::Element& element : source.twin.elements) {
      machine.AddEntity(*from);
      Reference::Element* added = twin.Add();
      const int id = added->id;
      added->CopyFrom(element);
      added->id = id;
      ++from;
    }
    ExpectSameMachine(machine, twin);
    EXPECT_EQ(machine.Finish(), twin.Finish());
    ExpectSameMachine(machine, twin);
    if (::testing::Test::HasFailure()) {
      ADD_FAILURE() << source.Text();
    }
  });
}

// A number that would make a lookup table too large is refused before anything changes.
TEST(MachineProperty, RefusesLargeRegistersUnchanged) {
  ForCases(2000, [](Draw& draw) {
    MachinePlan plan = AnyPlan(draw);
    plan.fromFile = false;
    MachinePair pair(plan);
    if (pair.entities.empty()) {
      return;
    }
    const int place = draw.Int(0, static_cast<int>(pair.entities.size()) - 1);
    const int reg = draw.Chance(0.5) ? 16777216 : draw.Int(16777216, 2147483647);
    pair.entities[static_cast<std::size_t>(place)]->SetRegister(reg);
    std::next(pair.twin.elements.begin(), place)->reg = reg;
    try {
      pair.machine.Finish();
      ADD_FAILURE() << "no exception for " << reg;
    } catch (const std::length_error& e) {
      EXPECT_STREQ(e.what(), "Machine::Finish : register out of range");
    }
    ExpectSameMachine(pair.machine, pair.twin);
  });
}

TEST(MachineProperty, RefusesLargeIds) {
  ForCases(500, [](Draw& draw) {
    MachinePlan plan = SoundPlan(draw);
    plan.fromFile = true;
    const int id = draw.Chance(0.5) ? 16777216 : draw.Int(16777216, 2147483647);
    plan.elements[static_cast<std::size_t>(draw.Int(0, static_cast<int>(plan.elements.size()) - 1))]
        .id = id;
    Reference::Machine source;
    Make(plan, &source);
    std::string text;
    ASSERT_TRUE(Reference::WriteText(source, &text));
    const TemporaryFile file(text);
    Kin::Machine machine;
    try {
      machine.ReadXML(file.Path());
      ADD_FAILURE() << "no exception for " << id;
    } catch (const std::length_error& e) {
      EXPECT_STREQ(e.what(), "Machine::Finish : identifier out of range");
    }
    EXPECT_EQ(machine.GetKinematic().GetListEntity().size(), source.elements.size());
    EXPECT_EQ(machine.GetEntityIdMax().GetVal(), -1);
    EXPECT_EQ(machine.GetRegisterNb().GetVal(), -1);
  });
}

}  // namespace
}  // namespace Orvo::Property
