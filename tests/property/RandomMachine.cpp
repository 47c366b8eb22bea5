#include "property/RandomMachine.h"

#include "property/RandomGeometry.h"
#include "property/SoundTree.h"
#include "property/reference/Vector.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace Orvo::Property {
namespace {

using Reference::Frame;
using Reference::Vector;

// Turns places in the list into ids. By calls, ids count from 1 along the list.
void Number(Draw& draw, MachinePlan* plan) {
  const std::size_t size = plan->elements.size();
  std::vector<std::size_t> places(size);
  for (std::size_t i = 0; i < size; ++i) {
    places[i] = i;
  }
  if (draw.Chance(0.25)) {
    draw.Shuffle(&places);
  }
  std::vector<int> ids(size);
  std::vector<ElementPlan> ordered;
  for (std::size_t i = 0; i < size; ++i) {
    ids[places[i]] = static_cast<int>(i) + 1;
    ordered.push_back(plan->elements[places[i]]);
  }
  if (plan->fromFile && draw.Chance(0.5)) {
    const int gap = draw.Int(1, 3);
    const int base = draw.Int(-1, 5);
    for (int& id : ids) {
      id = base + gap * id;
    }
  }
  for (std::size_t i = 0; i < size; ++i) {
    ElementPlan& e = ordered[i];
    e.id = ids[places[i]];
    e.parentId = e.parentId < 0 ? -1 : ids[static_cast<std::size_t>(e.parentId)];
  }
  plan->elements = ordered;
}

int AnyRegister(Draw& draw, const MachinePlan& plan) {
  if (plan.elements.empty() || draw.Chance(0.1)) {
    return draw.Int(-2, 8);
  }
  return draw.Of(plan.elements).reg;
}

void AddPrograms(Draw& draw, MachinePlan* plan) {
  if (draw.Chance(0.4)) {
    return;
  }
  std::vector<int> linear;
  std::vector<int> rotary;
  for (const ElementPlan& e : plan->elements) {
    if (!e.links.empty() && e.links.back().kind == Reference::Linear) {
      linear.push_back(e.reg);
    }
    if (!e.links.empty() && e.links.back().kind == Reference::Rotary) {
      rotary.push_back(e.reg);
    }
  }
  const int count = draw.Int(1, 3);
  for (int i = 0; i < count; ++i) {
    Reference::Program program;
    program.name = AnyName(draw);
    program.head = draw.Chance(0.9) ? 0 : draw.Int(-2, 2);
    program.table = draw.Chance(0.9) ? 0 : draw.Int(-2, 2);
    const bool sound = draw.Chance(0.8);
    for (std::size_t k = 0; k < 3; ++k) {
      program.linear[k] = sound && k < linear.size() ? linear[k] : AnyRegister(draw, *plan);
    }
    draw.Shuffle(&rotary);
    for (std::size_t k = 0; k < 2; ++k) {
      program.rotary[k] = sound ? (k < rotary.size() ? rotary[k] : -1) : AnyRegister(draw, *plan);
    }
    program.policy = draw.Chance(0.6) ? 1 : draw.Int(0, 2);
    plan->programs.push_back(program);
  }
}

void AddCollisions(Draw& draw, MachinePlan* plan) {
  const int count = draw.Chance(0.5) ? 0 : draw.Int(1, 20);
  const int last = static_cast<int>(plan->elements.size()) + 1;
  for (int i = 0; i < count; ++i) {
    plan->collisions.push_back(
        {draw.Int(0, 5) % 5, draw.Int(-2, last), draw.Int(-2, last), draw.Chance(0.85)});
  }
}

// Puts any doubles into an element where the draw asks for them.
void AddEdges(Draw& draw, ElementPlan* e) {
  for (LinkStep& step : e->links) {
    for (double* const number :
         {&step.center.x, &step.center.y, &step.center.z, &step.dir.x, &step.dir.y, &step.dir.z}) {
      if (draw.IsNextAnEdge()) {
        *number = AnyNumber(draw);
      }
    }
    if (draw.IsNextAnEdge()) {
      step.frame = AnyFrame(draw);
    }
  }
  for (int which = 0; which < 3; ++which) {
    if (draw.IsNextAnEdge()) {
      e->slots.push_back({which, 0, AnyNumber(draw)});
    }
  }
}

void Decorate(Draw& draw, MachinePlan* plan) {
  for (ElementPlan& e : plan->elements) {
    AddEdges(draw, &e);
    e.plain = draw.Chance(0.7);
    e.motor = draw.Chance(0.5);
    e.mounting = draw.Chance(0.2);
    if (draw.Chance(0.1)) {
      e.name = AnyName(draw);
    }
    if (plan->fromFile) {
      e.parallel = draw.Int(0, 1);
    }
    if (draw.Chance(0.05)) {
      e.hasMeshes = true;
      const int count = draw.Int(0, 2);
      for (int i = 0; i < count; ++i) {
        e.colors.push_back(static_cast<unsigned int>(draw.Next()));
      }
    }
    if (draw.Chance(0.05)) {
      e.slots.push_back(
          {draw.Int(0, 2), static_cast<unsigned int>(draw.Int(0, 5)), Coordinate(draw)});
    }
    if (draw.Chance(0.05)) {
      // Another kind before the real one: its fields stay behind.
      e.links.insert(e.links.begin(), RotaryStep(Point(draw), AnyDirection(draw)));
    }
  }
  AddPrograms(draw, plan);
  AddCollisions(draw, plan);
}

// A number as a file with six decimals can carry it.
double FileNumber(Draw& draw) {
  const double infinity = std::numeric_limits<double>::infinity();
  const double special[] = {
      0.0,  -0.0,     1e8,       -1e15, 1e-6,
      1e-7, infinity, -infinity, 1e300, std::numeric_limits<double>::quiet_NaN()};
  return draw.Of(special);
}

void SpoilElement(Draw& draw, MachinePlan* plan, ElementPlan* e) {
  const int last = static_cast<int>(plan->elements.size());
  switch (draw.Int(0, 12)) {
    case 0:
      e->reg = draw.Of(plan->elements).reg;
      break;
    case 1:
      e->reg = draw.Int(-5, 12);
      break;
    case 2:
      e->type = draw.Int(0, 2);
      break;
    case 3:
      e->parentId = draw.Chance(0.5) ? draw.Int(-3, last + 2) : draw.Of(plan->elements).id;
      break;
    case 4:
      e->id = draw.Chance(0.5) ? draw.Of(plan->elements).id : draw.Int(-3, last + 3);
      break;
    case 5:
      e->links.clear();
      break;
    case 6:
      e->links.push_back(LinearStep(AnyDirection(draw)));
      break;
    case 7:
      e->links.push_back(RotaryStep(Point(draw), AnyDirection(draw)));
      break;
    case 8:
      e->links.push_back(FixedStep(draw.Chance(0.8) ? MadeFrame(draw) : AnyFrame(draw)));
      break;
    case 9:
      e->rawLinkType = draw.Int(3, 8);
      break;
    case 10:
      e->slots.push_back({draw.Int(0, 2), 0, FileNumber(draw)});
      break;
    case 11:
      if (!e->links.empty()) {
        (draw.Chance(0.5) ? e->links.back().center.x : e->links.back().center.z) = FileNumber(draw);
      }
      break;
    default:
      e->setsCheck = true;
      e->check = draw.Chance(0.5);
      break;
  }
}

void MakeLink(const LinkStep& step, Reference::Link* link) {
  if (step.kind == Reference::Linear) {
    link->SetLinear(step.dir);
  } else if (step.kind == Reference::Rotary) {
    link->SetRotary(step.center, step.dir);
  } else if (step.kind == Reference::Fixed) {
    link->SetFixed(step.frame);
  }
}

}  // namespace

std::wstring AnyName(Draw& draw) {
  static const wchar_t* const names[] = {L"",
                                         L"X",
                                         L"Main spindle",
                                         L"a < b & c > d \"quoted\" 'single'",
                                         L"   ",
                                         L"  leading",
                                         L"trailing\t ",
                                         L"two\nlines",
                                         L"\r\n",
                                         L"dos\r\nend\r",
                                         L"odd\n\rend",
                                         L"&amp; &#65; ]]> <!-- -->",
                                         L"\x00E4\x00F6\x20AC\x4E2D",
                                         L"\xFFFD \xFFFE",
                                         L"Default"};
  std::wstring name = draw.Of(names);
  if (draw.Chance(0.1)) {
    name += static_cast<wchar_t>(draw.Int(1, 0xFFFF));
  }
  if (sizeof(wchar_t) > 2 && draw.Chance(0.05)) {
    name += static_cast<wchar_t>(0x1F600 + draw.Int(0, 50));
  }
  if (draw.Chance(0.02)) {
    name += std::wstring(L"cut\0off", 7);
  }
  return name;
}

MachinePlan SoundPlan(Draw& draw) {
  MachinePlan plan = SoundTree(draw);
  plan.fromFile = !draw.HasEdges() && draw.Chance(0.2);
  Number(draw, &plan);
  Decorate(draw, &plan);
  return plan;
}

MachinePlan WildPlan(Draw& draw) {
  MachinePlan plan;
  plan.fromFile = !draw.HasEdges() && draw.Chance(0.5);
  const int count = draw.Chance(0.9) ? draw.Int(0, 14) : draw.Int(0, 60);
  const bool cyclesAllowed = draw.Chance(0.15);
  for (int i = 0; i < count; ++i) {
    ElementPlan e = Named(L"E", draw.Chance(0.6) ? 0 : draw.Int(0, 2), -1);
    e.name += std::to_wstring(i);
    const int lastParent = cyclesAllowed ? count - 1 : i - 1;
    if (lastParent >= 0 && draw.Chance(0.9)) {
      e.parentId = draw.Chance(0.5) && i > 0 ? i - 1 : draw.Int(0, lastParent);
    }
    e.reg = draw.Chance(0.8) ? draw.Int(0, 7) : draw.Int(-2, 15);
    switch (draw.Int(0, 4)) {
      case 0:
      case 1:
        e.links.push_back(LinearStep(draw.Chance(0.8) ? UnitDirection(draw) : AnyDirection(draw)));
        break;
      case 2:
      case 3:
        e.links.push_back(RotaryStep(draw.Chance(0.5) ? Vector() : Point(draw),
                                     draw.Chance(0.8) ? UnitDirection(draw) : AnyDirection(draw)));
        RotaryRange(draw, &e);
        break;
      default:
        e.links.push_back(FixedStep(FixedFrame(draw)));
        break;
    }
    plan.elements.push_back(e);
  }
  Number(draw, &plan);
  Decorate(draw, &plan);
  return plan;
}

void Spoil(Draw& draw, MachinePlan* plan) {
  if (plan->elements.empty()) {
    return;
  }
  const int count = draw.Int(1, 4);
  for (int i = 0; i < count; ++i) {
    const int place = draw.Int(0, static_cast<int>(plan->elements.size()) - 1);
    SpoilElement(draw, plan, &plan->elements[static_cast<std::size_t>(place)]);
  }
}

MachinePlan AnyPlan(Draw& draw) {
  MachinePlan plan = draw.Chance(0.85) ? SoundPlan(draw) : WildPlan(draw);
  if (draw.Chance(0.3)) {
    Spoil(draw, &plan);
  }
  plan.finish = draw.Chance(0.97);
  return plan;
}

Reference::Position AnyPosition(Draw& draw, int registerNb) {
  Reference::Position out;
  const int size = draw.Chance(0.85) ? registerNb : draw.Int(0, std::max(registerNb, 0) + 3);
  out.Alloc(std::max(size, 0));
  for (double& value : out.values) {
    if (draw.Chance(0.01) || draw.IsNextAnEdge()) {
      value = AnyNumber(draw);
    } else {
      value = draw.Chance(0.6) ? AngleDeg(draw) : Coordinate(draw);
    }
  }
  return out;
}

void Make(const MachinePlan& plan, Reference::Machine* out) {
  for (const ElementPlan& from : plan.elements) {
    Reference::Element* e = out->Add();
    e->name = from.name;
    e->type = from.type;
    if (plan.fromFile) {
      e->parallel = from.parallel;
      e->id = from.id;
    }
    e->parentId = from.parentId;
    e->reg = from.reg;
    e->motor = from.motor;
    e->mounting = from.mounting;
    for (const LinkStep& step : from.links) {
      MakeLink(step, &e->link);
    }
    if (plan.fromFile && from.rawLinkType >= 0) {
      e->link.type = from.rawLinkType;
    }
    for (const SlotStep& step : from.slots) {
      std::array<double, 6>& slots = step.which == 0   ? e->link.zeroRef
                                     : step.which == 1 ? e->link.rangeMin
                                                       : e->link.rangeMax;
      slots[step.slot] = step.value;
    }
    e->checkRange = from.setsCheck ? from.check : true;
    e->hasMeshes = from.hasMeshes;
    e->colors = from.colors;
  }
  for (const Reference::Program& program : plan.programs) {
    out->programs.push_back(program);
  }
  for (const CollisionStep& step : plan.collisions) {
    if (step.which == 4) {
      out->collisions.SetPair(step.a, step.b, step.on);
    } else {
      out->collisions.Set(step.which, step.a, step.on);
    }
  }
}

}  // namespace Orvo::Property
