#include "property/reference/ProgramSolver.h"

#include <cmath>
#include <utility>

namespace Reference {
namespace {

const double FullTurn = 6.283185307179586;
const int NearTurns = 10000;

// Adds one step while a condition holds. Ends where the step is lost in the value; takes the bulk
// at once after many steps.
template <typename Condition>
double Step(double r, double step, double bulkTarget, double* farthest, Condition&& holds) {
  int steps = 0;
  // So far away, single steps may end by rounding where taking the bulk goes on.
  const bool isFar = std::fabs(bulkTarget - r) > NearTurns * FullTurn;
  if (isFar && std::isfinite(bulkTarget) && holds(r)) {
    *farthest = std::fmax(*farthest, std::fabs(bulkTarget) + std::fabs(r));
  }
  while (holds(r)) {
    const double next = step > 0.0 ? step + r : r - (-step);
    if (next == r || !std::isfinite(next)) {
      break;
    }
    r = next;
    if (++steps == NearTurns) {
      *farthest = std::fmax(*farthest, std::fabs(bulkTarget) + std::fabs(r));
      if (std::isfinite(bulkTarget)) {
        const double turns = std::floor(std::fabs(bulkTarget - r) / FullTurn);
        r += step * turns;
      } else {
        break;
      }
    }
    if (steps > 2 * NearTurns) {
      break;
    }
  }
  return r;
}

}  // namespace

double ClosestAngle(double angle, double reference, double* farthest) {
  const double referenceDeg = RadiansToDegrees(reference);
  double r = Step(angle, FullTurn, reference, farthest, [referenceDeg](double value) {
    const double a = RadiansToDegrees(value);
    return std::fabs(a - referenceDeg) > std::fabs(a + 360.0 - referenceDeg);
  });
  r = Step(r, -FullTurn, reference, farthest, [referenceDeg](double value) {
    const double a = RadiansToDegrees(value);
    return std::fabs(a - referenceDeg) > std::fabs(a - 360.0 - referenceDeg);
  });
  return r;
}

double ClosestAngle(double angle, double reference, double min, double max, double* farthest) {
  double r = ClosestAngle(angle, reference, farthest);
  if (std::isfinite(min)) {
    r = Step(r, FullTurn, min, farthest, [min](double value) { return value < min - 0.0001; });
  }
  if (std::isfinite(max)) {
    r = Step(r, -FullTurn, max, farthest, [max](double value) { return value > max + 0.0001; });
  }
  if (r > max && r < max + 0.01) {
    r = max;
  }
  if (r < min && r > min - 0.01) {
    r = min;
  }
  return r;
}

bool ProgramSolver::Unwrap(int reg, double current, double* angle) {
  const Element* e = machine_.ByRegister(reg);
  const double reference = DegreesToRadians(current);
  if (e == nullptr || !e->checkRange) {
    *angle = ClosestAngle(*angle, reference, &farthest_);
    return true;
  }
  const double min = DegreesToRadians(e->link.rangeMin[0]);
  const double max = DegreesToRadians(e->link.rangeMax[0]);
  *angle = ClosestAngle(*angle, reference, min, max, &farthest_);
  return !(*angle < min || *angle > max);
}

double ProgramSolver::Cost(const Position& pos, double alpha, double beta) const {
  double cost = 0.0;
  if (program_.rotary[0] >= 0) {
    cost = cost + std::fabs(RadiansToDegrees(alpha) - pos[program_.rotary[0]]);
  }
  if (program_.rotary[1] >= 0) {
    cost = cost + std::fabs(RadiansToDegrees(beta) - pos[program_.rotary[1]]);
  }
  return cost;
}

bool ProgramSolver::SolveRotaries(const Position& pos, const Vector& ijk, Rotaries* solution) {
  farthest_ = 0.0;
  const int r0 = program_.rotary[0];
  const int r1 = program_.rotary[1];
  if (!calculator_.SolveRotaries(pos, program_.head, program_.table, ijk, r0, r1, solution)) {
    return false;
  }
  if (program_.policy != 1) {
    return true;
  }
  bool ok1 = true;
  bool ok2 = true;
  if (solution->freeRegister >= 0) {
    if (solution->freeRegister == r0) {
      solution->alpha1 = DegreesToRadians(pos[r0]);
    } else if (solution->freeRegister == r1) {
      solution->beta1 = DegreesToRadians(pos[r1]);
    }
  }
  if (solution->count >= 1) {
    if (r0 >= 0) {
      ok1 = Unwrap(r0, pos[r0], &solution->alpha1) && ok1;
      if (solution->count == 2) {
        ok2 = Unwrap(r0, pos[r0], &solution->alpha2) && ok2;
      }
    }
    if (r1 >= 0) {
      ok1 = Unwrap(r1, pos[r1], &solution->beta1) && ok1;
      if (solution->count == 2) {
        ok2 = Unwrap(r1, pos[r1], &solution->beta2) && ok2;
      }
    }
  }
  if (solution->count == 2) {
    if (ok1 && !ok2) {
      solution->count = 1;
      solution->alpha2 = 0.0;
      solution->beta2 = 0.0;
    } else if (!ok1 && ok2) {
      solution->count = 1;
      solution->alpha1 = solution->alpha2;
      solution->beta1 = solution->beta2;
      solution->alpha2 = 0.0;
      solution->beta2 = 0.0;
    } else if (!ok1 && !ok2) {
      *solution = Rotaries();
    }
  } else if (solution->count == 1 && !ok1) {
    *solution = Rotaries();
  }
  if (solution->count == 2) {
    const double cost1 = Cost(pos, solution->alpha1, solution->beta1);
    const double cost2 = Cost(pos, solution->alpha2, solution->beta2);
    if (cost1 > cost2) {
      std::swap(solution->alpha1, solution->alpha2);
      std::swap(solution->beta1, solution->beta2);
    }
  }
  return true;
}

bool ProgramSolver::SolveLinear(const Position& pos, const Vector& offset, const Vector& point,
                                Vector* xyz) {
  return calculator_.SolveLinear(pos, program_.head, program_.table, offset, program_.linear, point,
                                 xyz);
}

bool ProgramSolver::CheckRange(const Position& pos, bool* inRange, bool* threw) {
  *threw = false;
  bool result = true;
  for (int i = 0; i < 3; ++i) {
    if (inRange != nullptr) {
      inRange[i] = true;
    }
    const int reg = program_.linear[static_cast<std::size_t>(i)];
    const Element* e = machine_.ByRegister(reg);
    if (!pos.Holds(reg)) {
      *threw = true;
      return false;
    }
    const double v = pos[reg];
    if (e != nullptr && e->checkRange && (v < e->link.rangeMin[0] || v > e->link.rangeMax[0])) {
      if (inRange != nullptr) {
        inRange[i] = false;
      }
      result = false;
    }
  }
  return result;
}

bool ProgramSolver::CheckRange(const Vector& xyz, bool* inRange) {
  bool result = true;
  const double values[3] = {xyz.x, xyz.y, xyz.z};
  for (int i = 0; i < 3; ++i) {
    if (inRange != nullptr) {
      inRange[i] = true;
    }
    const Element* e = machine_.ByRegister(program_.linear[static_cast<std::size_t>(i)]);
    if (e != nullptr && e->checkRange &&
        (values[i] < e->link.rangeMin[0] || values[i] > e->link.rangeMax[0])) {
      if (inRange != nullptr) {
        inRange[i] = false;
      }
      result = false;
    }
  }
  return result;
}

}  // namespace Reference
