#include "property/reference/Calculator.h"

#include <cmath>
#include <utility>

namespace Reference {
namespace {

struct ChainAxis {
  const Element* element = nullptr;
  double sign = 0.0;
  int place = -1;
};

bool AnglesDiffer(double first, double second) {
  return std::fabs(RadiansToDegrees(first) - RadiansToDegrees(second)) >= 0.001;
}

}  // namespace

void Calculator::SolveOneAxis(const Vector& axis, const Vector& tool, const Vector& target,
                              Rotaries* solution, double* angle) {
  const double k = Dot(axis, tool);
  const double kTarget = Dot(target, axis);
  if (std::fabs(k) < 0.01 && std::fabs(kTarget) < 0.01) {
    solution->count = 1;
    SignedAngle(tool, target, axis, angle);
    return;
  }
  if (!(std::fabs(k - kTarget) < 0.001)) {
    solution->count = 0;
    return;
  }
  solution->count = 1;
  SignedAngle(Difference(tool, Scaled(axis, k)), Difference(target, Scaled(axis, kTarget)), axis,
              angle);
}

void Calculator::SolveTwoAxes(const Vector& axis1, const Vector& axis2, const Vector& tool,
                              const Vector& target, int reg2, Rotaries* solution) {
  solution->count = 0;
  const double h = Dot(axis1, tool);
  Circle circle;
  circle.center = Scaled(axis1, h);
  circle.axis = axis1;
  const Vector fromCenter = Difference(tool, circle.center);
  circle.radius = Norm(fromCenter);
  Vector u = target;
  MakeUnit(&u, 0.001);
  Plane plane;
  plane.origin = u;
  plane.normal = axis2;
  intersections_.tolPlanePlane = 0.0001;
  intersections_.tolTangentInner = 1e-7;
  intersections_.tolTangentOuter = 1e-5;
  Vector p1;
  Vector p2;
  const int kind = intersections_.CirclePlane(plane, circle, &p2, &p1);
  if (kind == 0) {
    if (IsSame(tool, target, 1e-5)) {
      solution->count = 1;
      solution->alpha1 = 0.0;
      solution->beta1 = 0.0;
      solution->alpha2 = 0.0;
      solution->beta2 = 0.0;
    }
    return;
  }
  const bool distinct = !IsSame(p1, p2, 1e-5);
  SignedAngle(fromCenter, Difference(p2, circle.center), axis1, &solution->alpha1);
  if (distinct) {
    SignedAngle(fromCenter, Difference(p1, circle.center), axis1, &solution->alpha2);
  } else {
    solution->alpha2 = solution->alpha1;
  }
  Line outer;
  outer.dir = axis2;
  Vector q;
  intersections_.tolLinePlane = 0.0001;
  intersections_.LinePlane(plane, outer, &q, intersections_.tolLinePlane);
  const Vector from = Difference(p2, q);
  const Vector to = Difference(u, q);
  if (!SignedAngle(from, to, axis2, &solution->beta1) ||
      (IsSame(from, to, 1e-5) && IsColinear(axis2, to, 1e-5, nullptr))) {
    solution->freeRegister = reg2;
  }
  if (distinct) {
    SignedAngle(Difference(p1, q), to, axis2, &solution->beta2);
    if (AnglesDiffer(solution->alpha1, solution->alpha2) ||
        AnglesDiffer(solution->beta1, solution->beta2)) {
      solution->count = 2;
      return;
    }
  } else {
    solution->beta2 = solution->beta1;
  }
  solution->count = 1;
}

bool Calculator::SolveRotaries(const Position& pos, int head, int table, const Vector& ijk, int r0,
                               int r1, Rotaries* solution) {
  if (solution == nullptr) {
    return Fail(2);
  }
  *solution = Rotaries();
  if (pos.Size() == 0) {
    return Fail(3);
  }
  scratch_ = pos;
  for (const int reg : {r0, r1}) {
    if (reg >= 0) {
      if (reg >= pos.Size()) {
        return Fail(5);
      }
      scratch_[reg] = 0.0;
    }
  }
  if (r0 >= 0 && r0 == r1) {
    return Fail(5);
  }
  BuildChain(head, table);
  if (head_ == nullptr || table_ == nullptr) {
    return Fail(4);
  }
  ChainAxis alpha;
  ChainAxis beta;
  int count = 0;
  int place = 0;
  const Element* previous = nullptr;
  for (const Element* e : chain_) {
    const double sign = previous != nullptr && e->level > previous->level ? 1.0 : -1.0;
    if (r0 >= 0 && e->reg == r0) {
      if (e->type == Axis && e->link.type != Rotary) {
        return Fail(5);
      }
      alpha = {e, sign, place};
      ++count;
    } else if (r1 >= 0 && e->reg == r1) {
      if (e->type == Axis && e->link.type != Rotary) {
        return Fail(5);
      }
      beta = {e, sign, place};
      ++count;
    }
    previous = e;
    ++place;
  }
  Frame worldFromTable;
  Frame worldFromHead;
  PositionElement(*table_, scratch_, &worldFromTable);
  PositionElement(*head_, scratch_, &worldFromHead);
  const Frame tableFromWorld = worldFromTable.HInverse();
  const Vector tool = tableFromWorld.Times(worldFromHead).Column(2);
  Vector d0;
  if (r0 >= 0) {
    if (alpha.element == nullptr) {
      return Fail(5);
    }
    if (!WorldDirection(scratch_, *alpha.element, &d0)) {
      return false;
    }
    d0 = Scaled(tableFromWorld.ApplyToVector(d0), alpha.sign);
  }
  Vector d1;
  if (r1 >= 0) {
    if (beta.element == nullptr) {
      return Fail(5);
    }
    if (!WorldDirection(scratch_, *beta.element, &d1)) {
      return false;
    }
    d1 = Scaled(tableFromWorld.ApplyToVector(d1), beta.sign);
  }
  if (r0 < 0 && r1 < 0) {
    solution->count = Dot(ijk, tool) > 0.99 ? 1 : 0;
    return true;
  }
  if (r0 < 0) {
    SolveOneAxis(d1, tool, ijk, solution, &solution->beta1);
    return true;
  }
  if (r1 < 0) {
    SolveOneAxis(d0, tool, ijk, solution, &solution->alpha1);
    return true;
  }
  if (count < 2) {
    return Fail(5);
  }
  if (alpha.place > beta.place) {
    SolveTwoAxes(d0, d1, tool, ijk, r1, solution);
  } else if (alpha.place < beta.place) {
    SolveTwoAxes(d1, d0, tool, ijk, r0, solution);
    std::swap(solution->alpha1, solution->beta1);
    std::swap(solution->alpha2, solution->beta2);
  } else {
    return Fail(5);
  }
  return true;
}

}  // namespace Reference
