#include "property/ChangingMachine.h"

#include "compute/PrivateAccess.h"
#include "compute/SmallMachines.h"
#include "property/Compare.h"
#include "property/RandomGeometry.h"
#include "property/RandomMachine.h"
#include "property/SoundTree.h"

#include <cmath>
#include <cstddef>

namespace Orvo::Property {
namespace {

using Kin::Entity;
using Kin::EntityLink;
using Reference::Frame;
using Reference::Vector;

// Beside a principal axis by the 0.00001 that decides whether it counts as one, or so.
Vector BesidePrincipal(Draw& draw) {
  double v[3] = {0.0, 0.0, 0.0};
  const int place = draw.Int(0, 2);
  v[place] = draw.Chance(0.5) ? 1.0 : -1.0;
  double offset = 1e-5;
  const double side = draw.Chance(0.5) ? 1.0 : 0.0;
  for (int i = draw.Int(0, 3); i > 0; --i) {
    offset = std::nextafter(offset, side);
  }
  if (draw.Chance(0.3)) {
    offset *= draw.Uniform(0.9, 1.1);
  }
  const int other = (place + draw.Int(1, 2)) % 3;
  v[other] = draw.Chance(0.5) ? offset : -offset;
  return {v[0], v[1], v[2], 0.0};
}

// A frame of each kind in turn, with a fourth row and columns that fit the kind or don't.
Frame FrameOfEachKind(Draw& draw) {
  switch (draw.Int(0, 8)) {
    case 0:
      return {};
    case 1: {
      Frame out;
      out.SetTrans(draw.Chance(0.5) ? Point(draw) : Vector());
      return out;
    }
    case 2: {
      Frame out;
      out.SetRotation(UnitDirection(draw), Reference::DegreesToRadians(AngleDeg(draw)));
      return out;
    }
    case 3:
      return RigidFrame(draw);
    case 4: {
      // General, with or without garbage in the fourth row.
      Frame out = RigidFrame(draw);
      out.m[draw.Int(0, 11)] += 0.5;
      for (const int place : {3, 7, 11, 15}) {
        out.m[place] = draw.Chance(0.5) ? out.m[place] : AnyNumber(draw);
      }
      out.kind = Reference::Kind::General;
      return out;
    }
    case 5: {
      // Of a rigid kind that its numbers are not.
      Frame out = RigidFrame(draw);
      out.m[draw.Int(0, 15)] = draw.Uniform(-2.0, 2.0);
      out.kind = static_cast<Reference::Kind>(draw.Int(2, 4));
      return out;
    }
    case 6: {
      // Columns with zeros of the other sign.
      Frame out;
      out.SetTrans(Point(draw));
      for (int i = 0; i < 12; ++i) {
        out.m[i] = out.m[i] == 0.0 && draw.Chance(0.4) ? -0.0 : out.m[i];
      }
      return out;
    }
    case 7:
      return MadeFrame(draw);
    default:
      return AnyFrame(draw);
  }
}

void SharpenLinks(Draw& draw, MachinePlan* plan) {
  for (ElementPlan& e : plan->elements) {
    if (e.links.empty() || !draw.Chance(0.25)) {
      continue;
    }
    LinkStep& step = e.links.back();
    if (step.kind == Reference::Rotary || step.kind == Reference::Linear) {
      step.dir = draw.Chance(0.5) ? BesidePrincipal(draw) : AnyDirection(draw);
    } else if (step.kind == Reference::Fixed) {
      step.frame = FrameOfEachKind(draw);
    }
  }
}

void AddEnds(Draw& draw, MachinePlan* plan) {
  const int endNb = draw.Chance(0.5) ? 0 : draw.Int(1, 6);
  for (int i = 0; i < endNb && !plan->elements.empty(); ++i) {
    ElementPlan e = Named(L"End", draw.Int(1, 2), draw.Of(plan->elements).id);
    e.id = static_cast<int>(plan->elements.size()) + 1;
    e.links.push_back(FixedStep(draw.Chance(0.7) ? FixedFrame(draw) : FrameOfEachKind(draw)));
    plan->elements.push_back(e);
  }
}

// Two long branches with a few axes among many static elements.
MachinePlan DeepPlan(Draw& draw) {
  MachinePlan plan;
  const int depth = draw.Int(15, 60);
  const double axisShare = draw.Uniform(0.1, 0.9);
  const int branchNb = draw.Int(1, 3);
  int reg = 0;
  const auto add = [&plan](ElementPlan e) {
    plan.elements.push_back(e);
    plan.elements.back().id = static_cast<int>(plan.elements.size());
    return plan.elements.back().id;
  };
  ElementPlan root = Named(L"Root", Reference::Axis, -1);
  root.links.push_back(FixedStep(Frame()));
  const int rootId = add(root);
  for (int branch = 0; branch < branchNb; ++branch) {
    int parent = rootId;
    for (int i = 0; i < depth; ++i) {
      ElementPlan e = Named(L"Link", Reference::Axis, parent);
      if (!draw.Chance(axisShare)) {
        e.links.push_back(FixedStep(draw.Chance(0.9) ? FixedFrame(draw) : FrameOfEachKind(draw)));
      } else {
        e.reg = draw.Chance(0.9) || reg == 0 ? reg++ : draw.Int(0, reg - 1);
        e.links.push_back(draw.Chance(0.4) ? LinearStep(UnitDirection(draw))
                                           : RotaryStep(draw.Chance(0.3) ? Vector() : Point(draw),
                                                        draw.Chance(0.3) ? BesidePrincipal(draw)
                                                                         : UnitDirection(draw)));
      }
      parent = add(e);
      if (draw.Chance(0.05)) {
        ElementPlan end = Named(L"End", draw.Int(1, 2), parent);
        end.links.push_back(FixedStep(FixedFrame(draw)));
        add(end);
      }
    }
    for (const int type : {Reference::Head, Reference::Table}) {
      ElementPlan end = Named(L"End", type, parent);
      end.links.push_back(FixedStep(FixedFrame(draw)));
      add(end);
    }
  }
  return plan;
}

MachinePlan PlanOf(Draw& draw, Flavor flavor) {
  MachinePlan plan = flavor == Flavor::Sound  ? SoundPlan(draw)
                     : flavor == Flavor::Wild ? WildPlan(draw)
                                              : DeepPlan(draw);
  AddEnds(draw, &plan);
  if (draw.Chance(0.5)) {
    SharpenLinks(draw, &plan);
  }
  if (draw.Chance(flavor == Flavor::Wild ? 0.5 : 0.1)) {
    Spoil(draw, &plan);
  }
  // Neither is looked at here, and both take long.
  plan.programs.clear();
  plan.collisions.clear();
  return plan;
}

}  // namespace

ChangingMachine::ChangingMachine(Draw& draw, Flavor flavor) {
  // Machines of files can't hold all numbers: with any edges at all, none comes from a file.
  if (!draw.HasEdges()) {
    draw.SetEdgeShare(1e-9);
  }
  Make(PlanOf(draw, flavor), &machine_, &elements_);
  if (draw.Chance(0.25)) {
    Renumber(draw);
  }
  for (Entity* const e : elements_) {
    if (e->GetEntityLink().GetEntityLinkType() == Kin::EntityLinkTypePosition && draw.Chance(0.1)) {
      Testing::SetLinkType(e->GetEntityLinkMod(), Kin::EntityLinkTypeIdentity);
    }
  }
  if (!elements_.empty() && draw.Chance(0.02)) {
    Testing::SetLinkType(draw.Of(elements_)->GetEntityLinkMod(), draw.Int(-1, 9));
  }
  if (draw.Chance(0.995)) {
    machine_.Finish();
  }
}

std::vector<int> ChangingMachine::RegistersOf(Kin::EntityLinkType type) const {
  std::vector<int> out;
  for (const Entity* const e : elements_) {
    if (e->GetEntityType() == Kin::EntityTypeAxis &&
        e->GetEntityLink().GetEntityLinkType() == type) {
      out.push_back(e->GetRegister().GetVal());
    }
  }
  return out;
}

// Gives ids with gaps, now and then an equal pair or an undefined one.
void ChangingMachine::Renumber(Draw& draw) {
  const int gap = draw.Int(1, 4);
  const int base = draw.Int(-1, 9);
  for (Entity* const e : elements_) {
    const int id = e->GetEntityId().GetVal();
    const int parent = e->GetParentEntityId().GetVal();
    Testing::SetId(e, base + gap * id);
    e->SetParentEntityId(parent < 0 ? -1 : base + gap * parent);
  }
  if (!elements_.empty() && draw.Chance(0.3)) {
    Testing::SetId(draw.Of(elements_), draw.Of(elements_)->GetEntityId().GetVal());
  }
  if (!elements_.empty() && draw.Chance(0.2)) {
    Testing::SetId(draw.Of(elements_), draw.Int(-2, 0));
  }
}

void ChangingMachine::Change(Draw& draw) {
  if (elements_.empty()) {
    return;
  }
  Entity* const e = draw.Of(elements_);
  EntityLink* const link = e->GetEntityLinkMod();
  switch (draw.Int(0, 11)) {
    case 0:
      link->SetEntityLinkRotary(link->GetCenter(), ToOrvo(UnitDirection(draw)));
      break;
    case 1:
      link->SetEntityLinkRotary(ToOrvo(Point(draw)), link->GetDir());
      break;
    case 2:
      link->SetEntityLinkLinear(draw.Chance(0.5) ? link->GetDir() : ToOrvo(AnyDirection(draw)));
      break;
    case 3:
      link->SetEntityLinkPosition(ToOrvo(FrameOfEachKind(draw)));
      break;
    case 4:
      link->SetZeroRef(Coordinate(draw));
      break;
    case 5:
      link->SetZeroRef(static_cast<unsigned int>(draw.Int(0, 2)), Coordinate(draw));
      break;
    case 6:
      e->SetRegister(draw.Int(-1, RegisterNb()));
      break;
    case 7:
      e->SetEntityLink(draw.Of(elements_)->GetEntityLink());
      break;
    case 8:
      *link = draw.Of(elements_)->GetEntityLink();
      break;
    case 9:
      e->SetRange(draw.Uniform(-400.0, 0.0), draw.Uniform(0.0, 400.0));
      e->SetCheckRangeAxis(draw.Chance(0.5));
      break;
    case 10:
      Testing::SetType(e, static_cast<Kin::EntityType>(draw.Int(0, 2)));
      break;
    default:
      machine_.Finish();
      break;
  }
}

}  // namespace Orvo::Property
