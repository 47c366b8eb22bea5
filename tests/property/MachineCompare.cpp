#include "property/MachineCompare.h"

#include "property/Compare.h"

#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/MachinePosition.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <list>
#include <map>
#include <string>

namespace Orvo::Property {
namespace {

std::list<int> Numbers(const std::list<Kin::EntityId>& ids) {
  std::list<int> out;
  for (const Kin::EntityId& id : ids) {
    out.push_back(id.GetVal());
  }
  return out;
}

void ExpectSameLink(const Kin::EntityLink& link, const Reference::Link& twin) {
  EXPECT_EQ(link.GetEntityLinkType(), twin.type);
  EXPECT_TRUE(SameBits(link.GetCenter(), twin.center));
  EXPECT_TRUE(SameBits(link.GetDir(), twin.dir));
  EXPECT_TRUE(SameBits(link.GetPosition(), twin.position));
  for (unsigned int slot = 0; slot < 6; ++slot) {
    EXPECT_TRUE(SameBits(link.GetZeroRef(slot), twin.zeroRef[slot]));
    EXPECT_TRUE(SameBits(link.GetRangeMin(slot), twin.rangeMin[slot]));
    EXPECT_TRUE(SameBits(link.GetRangeMax(slot), twin.rangeMax[slot]));
  }
  EXPECT_TRUE(SameBits(link.GetZeroRef(), twin.zeroRef[0]));
}

void ExpectSameElement(const Kin::Entity& e, const Reference::Element& twin) {
  EXPECT_EQ(e.GetEntityName(), twin.name);
  EXPECT_EQ(e.GetEntityType(), twin.type);
  EXPECT_EQ(e.GetEntityParallelType(), twin.parallel);
  EXPECT_EQ(e.GetEntityId().GetVal(), twin.id);
  EXPECT_EQ(e.GetParentEntityId().GetVal(), twin.parentId);
  EXPECT_EQ(e.GetRegister().GetVal(), twin.reg);
  EXPECT_EQ(e.GetIsMotor(), twin.motor);
  EXPECT_EQ(e.GetCheckRangeAxis(), twin.checkRange);
  EXPECT_EQ(e.GetIsMounting(), twin.mounting);
  EXPECT_EQ(e.GetLevel(), twin.level);
  EXPECT_TRUE(SameBits(e.GetRangeMin(), twin.link.rangeMin[0]));
  EXPECT_TRUE(SameBits(e.GetRangeMax(), twin.link.rangeMax[0]));
  ExpectSameLink(e.GetEntityLink(), twin.link);
  ASSERT_EQ(e.GetEntityMesh() != nullptr, twin.hasMeshes);
  if (twin.hasMeshes) {
    ASSERT_EQ(e.GetEntityMesh()->GetMeshNb(), twin.colors.size());
    for (std::size_t i = 0; i < twin.colors.size(); ++i) {
      EXPECT_EQ(e.GetEntityMesh()->GetMeshColor(static_cast<int>(i)), twin.colors[i]);
    }
  }
}

void ExpectSameProgram(const Kin::ProgramSystem& program, const Reference::Program& twin) {
  EXPECT_EQ(program.GetProgramSystemName(), twin.name);
  EXPECT_EQ(program.GetTableIndex().GetVal(), twin.table);
  EXPECT_EQ(program.GetHeadIndex().GetVal(), twin.head);
  for (int i = -1; i <= 3; ++i) {
    const std::size_t linear = i < 0 || i > 2 ? 0 : static_cast<std::size_t>(i);
    const std::size_t rotary = i < 0 || i > 1 ? 0 : static_cast<std::size_t>(i);
    EXPECT_EQ(program.GetMainLinear(i).GetVal(), twin.linear[linear]);
    EXPECT_EQ(program.GetMainRotary(i).GetVal(), twin.rotary[rotary]);
  }
  Kin::ProgramSystem copy(program);
  EXPECT_EQ(copy.GetRotariesCompute(), twin.policy);
}

}  // namespace

void ExpectSameCollisions(const Kin::CollisionCheck& collisions, const Reference::Collisions& twin,
                          int firstId, int lastId) {
  std::list<Kin::EntityId> sets[4] = {{Kin::EntityId(99)}};
  collisions.GetListMachineStock(&sets[0]);
  collisions.GetListMachinePart(&sets[1]);
  collisions.GetListMachineFixture(&sets[2]);
  collisions.GetListMachineTool(&sets[3]);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(Numbers(sets[i]), twin.sets[i]) << "set " << i;
  }
  for (int id = firstId; id <= lastId; ++id) {
    EXPECT_EQ(collisions.GetMachineStock(id), twin.Get(0, id)) << id;
    EXPECT_EQ(collisions.GetMachinePart(id), twin.Get(1, id)) << id;
    EXPECT_EQ(collisions.GetMachineFixture(id), twin.Get(2, id)) << id;
    EXPECT_EQ(collisions.GetMachineTool(id), twin.Get(3, id)) << id;
    for (const bool all : {false, true}) {
      std::list<Kin::EntityId> partners = {Kin::EntityId(99)};
      collisions.GetListMachineMachine(id, &partners, all);
      EXPECT_EQ(Numbers(partners), twin.Partners(id, all)) << id << " all " << all;
    }
    for (int other = firstId; other <= lastId; ++other) {
      EXPECT_EQ(collisions.GetMachineMachine(id, other), twin.GetPair(id, other))
          << id << " and " << other;
    }
  }
}

void ExpectSameMachine(Kin::Machine& machine, const Reference::Machine& twin) {
  EXPECT_EQ(machine.IsFinished(), twin.finished);
  EXPECT_EQ(machine.GetLastError(), twin.lastError);
  EXPECT_EQ(machine.GetRegisterNb().GetVal(), twin.registerNb);
  EXPECT_EQ(machine.GetEntityNb(), twin.elementNb);
  EXPECT_EQ(machine.GetEntityIdMax().GetVal(), twin.idMax);
  EXPECT_EQ(machine.GetTableNb().GetVal(), twin.tableNb);
  EXPECT_EQ(machine.GetHeadNb().GetVal(), twin.headNb);
  EXPECT_EQ(machine.GetLinearAxesNb(), twin.linearAxesNb);

  const Kin::Kinematic& kinematic = machine.GetKinematic();
  ASSERT_EQ(kinematic.GetListEntity().size(), twin.elements.size());
  std::map<const Reference::Element*, const Kin::Entity*> same = {{nullptr, nullptr}};
  auto e = kinematic.GetListEntity().begin();
  for (const Reference::Element& element : twin.elements) {
    same[&element] = &*e++;
  }
  for (const Reference::Element& element : twin.elements) {
    SCOPED_TRACE("element " + std::to_string(element.id));
    ExpectSameElement(*same[&element], element);
    EXPECT_EQ(same[&element]->GetParentEntity(), same[element.parent]);
  }
  for (int id = -3; id < twin.idMax + 3; ++id) {
    EXPECT_EQ(kinematic.GetEntity(Kin::EntityId(id)), same[twin.ById(id)]) << "id " << id;
  }
  for (int reg = -3; reg < twin.registerNb + 3; ++reg) {
    EXPECT_EQ(kinematic.GetEntity(Kin::Register(reg)), same[twin.ByRegister(reg)]) << reg;
  }
  for (int i = -2; i < twin.headNb + 2; ++i) {
    EXPECT_EQ(kinematic.GetEntityHead(Kin::HeadIndex(i)), same[twin.HeadAt(i)]) << i;
  }
  for (int i = -2; i < twin.tableNb + 2; ++i) {
    EXPECT_EQ(kinematic.GetEntityTable(Kin::TableIndex(i)), same[twin.TableAt(i)]) << i;
  }

  ASSERT_EQ(machine.GetProgramSystemNb().GetVal(), static_cast<int>(twin.programs.size()));
  ASSERT_EQ(machine.GetListProgramSystem().size(), twin.programs.size());
  int index = 0;
  for (const Reference::Program& program : twin.programs) {
    const Kin::ProgramSystem* found = machine.GetProgramSystem(Kin::ProgramSystemIndex(index));
    ASSERT_NE(found, nullptr);
    ExpectSameProgram(*found, program);
    ++index;
  }
  EXPECT_EQ(machine.GetProgramSystem(Kin::ProgramSystemIndex(index)), nullptr);
  EXPECT_EQ(machine.GetProgramSystem(Kin::ProgramSystemIndex(-1)), nullptr);
  ExpectSameCollisions(machine.GetCollisionCheck(), twin.collisions, -3, 20);

  Reference::Position position;
  position.Alloc(twin.registerNb);
  Kin::MachinePosition allocated;
  machine.Alloc(&allocated);
  EXPECT_TRUE(SameBits(allocated, position));
}

}  // namespace Orvo::Property
