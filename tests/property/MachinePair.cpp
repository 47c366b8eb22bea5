#include "property/Compare.h"
#include "property/RandomMachine.h"
#include "property/TemporaryFile.h"
#include "property/reference/MachineText.h"

#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Mesh.h>

#include <gtest/gtest.h>

namespace Orvo::Property {
namespace {

void SetLink(const LinkStep& step, Kin::EntityLink* link) {
  if (step.kind == Reference::Linear) {
    link->SetEntityLinkLinear(ToOrvo(step.dir));
  } else if (step.kind == Reference::Rotary) {
    link->SetEntityLinkRotary(ToOrvo(step.center), ToOrvo(step.dir));
  } else if (step.kind == Reference::Fixed) {
    link->SetEntityLinkPosition(ToOrvo(step.frame));
  }
}

// Makes an element by the operation of its kind where there is one.
Kin::Entity* AddTo(Kin::Machine* machine, const ElementPlan& plan) {
  const bool single = plan.plain && plan.links.size() == 1;
  const LinkStep step = plan.links.empty() ? LinkStep() : plan.links.front();
  const Kin::EntityId parent(plan.parentId);
  if (plan.type == Reference::Head || plan.type == Reference::Table) {
    const bool asFrame = single && step.kind == Reference::Fixed;
    const Matrix43 frame = asFrame ? ToOrvo(step.frame) : Matrix43();
    Kin::Entity* e = plan.type == Reference::Head
                         ? machine->AddEntityHead(plan.name, parent, frame)
                         : machine->AddEntityTable(plan.name, parent, frame);
    e->SetCheckRangeAxis(true);
    if (!asFrame) {
      Kin::EntityLink link;
      for (const LinkStep& next : plan.links) {
        SetLink(next, &link);
      }
      e->SetEntityLink(link);
    }
    return e;
  }
  if (single && step.kind == Reference::Linear) {
    return machine->AddEntityLinear(plan.name, parent, ToOrvo(step.dir));
  }
  if (single && step.kind == Reference::Rotary) {
    return machine->AddEntityRotary(plan.name, parent, ToOrvo(step.center), ToOrvo(step.dir));
  }
  if (single && step.kind == Reference::Fixed) {
    Kin::Entity* e = machine->AddEntityStatic(plan.name, parent);
    EXPECT_FALSE(e->GetCheckRangeAxis());
    e->SetCheckRangeAxis(true);
    e->GetEntityLinkMod()->SetEntityLinkPosition(ToOrvo(step.frame));
    return e;
  }
  Kin::Entity* e = machine->AddEntity();
  e->SetEntityName(plan.name);
  e->SetParentEntityId(parent);
  for (const LinkStep& next : plan.links) {
    SetLink(next, e->GetEntityLinkMod());
  }
  return e;
}

}  // namespace

void Make(const MachinePlan& plan, Kin::Machine* out, std::vector<Kin::Entity*>* entities) {
  for (const ElementPlan& from : plan.elements) {
    Kin::Entity* e = AddTo(out, from);
    e->SetRegister(Kin::Register(from.reg));
    e->SetIsMotor(from.motor);
    e->SetIsMounting(from.mounting);
    if (from.setsCheck) {
      e->SetCheckRangeAxis(from.check);
    }
    Kin::EntityLink* link = e->GetEntityLinkMod();
    for (const SlotStep& step : from.slots) {
      if (step.which == 0) {
        link->SetZeroRef(step.slot, step.value);
      } else if (step.which == 1) {
        link->SetRangeMin(step.slot, step.value);
      } else {
        link->SetRangeMax(step.slot, step.value);
      }
    }
    if (from.hasMeshes) {
      Kin::EntityMesh* meshes = e->AllocEntityMesh();
      for (const unsigned int color : from.colors) {
        meshes->AddMesh(new Mesh, color);
      }
    }
    if (entities != nullptr) {
      entities->push_back(e);
    }
  }
  for (const Reference::Program& from : plan.programs) {
    Kin::ProgramSystem program;
    program.SetProgramSystemName(from.name);
    program.SetTableIndex(Kin::TableIndex(from.table));
    program.SetHeadIndex(Kin::HeadIndex(from.head));
    program.SetMainLinear(from.linear[0], from.linear[1], from.linear[2]);
    program.SetMainRotary(from.rotary[0], from.rotary[1]);
    program.SetRotariesCompute(static_cast<Kin::RotariesCompute>(from.policy));
    out->AddProgramSystem(program);
  }
  Kin::CollisionCheck& collisions = out->GetCollisionCheckMod();
  for (const CollisionStep& step : plan.collisions) {
    switch (step.which) {
      case 0:
        collisions.SetMachineStock(step.a, step.on);
        break;
      case 1:
        collisions.SetMachinePart(step.a, step.on);
        break;
      case 2:
        collisions.SetMachineFixture(step.a, step.on);
        break;
      case 3:
        collisions.SetMachineTool(step.a, step.on);
        break;
      default:
        collisions.SetMachineMachine(step.a, step.b, step.on);
        break;
    }
  }
}

MachinePair::MachinePair(const MachinePlan& plan) {
  if (!plan.fromFile) {
    Make(plan, &twin);
    Make(plan, &machine, &entities);
    if (plan.finish) {
      EXPECT_EQ(machine.Finish(), twin.Finish()) << Text();
    }
    return;
  }
  Reference::Machine source;
  Make(plan, &source);
  std::string text;
  EXPECT_TRUE(Reference::WriteText(source, &text));
  Reference::Append(source, &twin);
  const TemporaryFile file(text);
  EXPECT_TRUE(machine.ReadXML(file.Path())) << text;
}

std::string MachinePair::Text() const {
  std::string text;
  if (!Reference::WriteText(twin, &text)) {
    text = "a machine with a policy that has no word";
  }
  return text;
}

}  // namespace Orvo::Property
