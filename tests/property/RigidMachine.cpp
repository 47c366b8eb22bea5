#include "property/RigidMachine.h"

#include "property/reference/Calculator.h"

#include <cmath>
#include <initializer_list>

namespace Orvo::Property {
namespace {

using Reference::Frame;

bool StandsOn(const Reference::Element* e, const Reference::Element* ancestor) {
  while (e != nullptr && e != ancestor) {
    e = e->parent;
  }
  return e != nullptr;
}

// Turns a direction beside a principal axis into that axis: the frame of a turn takes it for such,
// or is not quite orthonormal.
void SnapToPrincipal(Reference::Vector* dir) {
  for (double* component : {&dir->x, &dir->y, &dir->z}) {
    if (std::fabs(*component) > 1.0 - 1e-6) {
      const double sign = *component < 0.0 ? -1.0 : 1.0;
      *dir = Reference::Vector();
      *component = sign;
      return;
    }
  }
}

}  // namespace

bool IsOrthonormal(const Frame& f) {
  const bool plain = f.m[3] == 0.0 && f.m[7] == 0.0 && f.m[11] == 0.0 && f.m[15] == 1.0;
  for (int i = 0; i < 3; ++i) {
    for (int k = 0; k < 3; ++k) {
      const double expected = i == k ? 1.0 : 0.0;
      if (!(std::fabs(Reference::Dot(f.Column(i), f.Column(k)) - expected) < 1e-12)) {
        return false;
      }
    }
  }
  const double handed = Reference::Dot(Reference::Cross(f.Column(0), f.Column(1)), f.Column(2));
  return plain && handed > 0.0;
}

bool IsNearX(const Reference::Vector& dir) {
  const double sine = std::hypot(dir.y, dir.z);
  return sine < 0.0011 && sine > 1e-9;
}

MachinePlan RigidPlan(Draw& draw) {
  MachinePlan plan = SoundPlan(draw);
  plan.fromFile = false;
  for (ElementPlan& e : plan.elements) {
    for (LinkStep& step : e.links) {
      if (step.kind == Reference::Fixed && !IsOrthonormal(step.frame)) {
        step.frame = Frame();
      }
      SnapToPrincipal(&step.dir);
    }
  }
  return plan;
}

bool TurnsOneSide(const MachinePair& pair, const RotaryRequest& request, int reg) {
  const Reference::Element* head = pair.twin.HeadAt(request.head);
  const Reference::Element* table = pair.twin.TableAt(request.table);
  if (head == nullptr || table == nullptr) {
    return false;
  }
  const Reference::Element* axis = pair.twin.ByRegister(reg);
  return reg < 0 || StandsOn(head, axis) != StandsOn(table, axis);
}

Reference::Vector AxisInTable(const MachinePair& pair, const RotaryRequest& request, int reg) {
  Reference::Calculator calculator(pair.twin);
  const Reference::Element* e = pair.twin.ByRegister(reg);
  Reference::Vector axis;
  Frame worldFromTable;
  Reference::Position pos = request.pos;
  for (const int other : {request.r0, request.r1}) {
    if (pos.Holds(other)) {
      pos[other] = 0.0;
    }
  }
  if (e == nullptr || !calculator.WorldDirection(pos, *e, &axis)) {
    return {};
  }
  calculator.PositionElement(*pair.twin.TableAt(request.table), pos, &worldFromTable);
  return worldFromTable.HInverse().ApplyToVector(axis);
}

}  // namespace Orvo::Property
