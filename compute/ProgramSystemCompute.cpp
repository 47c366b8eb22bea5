#include "compute/AngleUnwrap.h"
#include "compute/ProgramSystemComputeImplementation.h"
#include "compute/RotaryAngles.h"
#include "geometry/AngleAccess.h"
#include "geometry/Degrees.h"
#include "geometry/Quad.h"

#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystemCompute.h>

#include <cmath>
#include <utility>

namespace Orvo::Kin {

namespace {

// Moves the angles of two solutions by up to a turn each to those nearest to the current values of
// both axes, and tells how far the axes move to each solution, in degrees. Returns false, with
// nothing changed, where that takes more than a turn or leaves the range.
bool MoveIntoNearestTurns(const double currentDeg[2], const Quad& min, const Quad& max,
                          RotaryAngles* found, double moves[2]) {
  Quad angles(found->alpha[0], found->alpha[1], found->beta[0], found->beta[1]);
  Quad anglesDeg = DegreesFromRadians(angles);
  const Quad current(currentDeg[0], currentDeg[0], currentDeg[1], currentDeg[1]);
  const Quad reference = DegreesFromRadians(RadiansFromDegrees(current));
  const Quad turnDeg(FullTurnDeg);
  Quad distances = Abs(anglesDeg - reference);
  Quad above = Abs(anglesDeg + turnDeg - reference);
  Quad below = Abs(anglesDeg - turnDeg - reference);
  const bool isTurned = !AreAllInOrder(distances, above) || !AreAllInOrder(distances, below);
  if (isTurned) {
    const Quad turn(TwoPi);
    angles = WhereLarger(distances, above, angles + turn,
                         WhereLarger(distances, below, angles - turn, angles));
    anglesDeg = DegreesFromRadians(angles);
    distances = Abs(anglesDeg - reference);
    above = Abs(anglesDeg + turnDeg - reference);
    below = Abs(anglesDeg - turnDeg - reference);
    if (!AreAllInOrder(distances, above) || !AreAllInOrder(distances, below)) {
      return false;
    }
  }
  if (!AreAllInOrder(min, angles) || !AreAllInOrder(angles, max)) {
    return false;
  }
  alignas(16) double steps[4];
  Abs(anglesDeg - current).Store(steps);
  moves[0] = 0.0 + steps[0] + steps[2];
  moves[1] = 0.0 + steps[1] + steps[3];
  if (isTurned) {
    alignas(16) double turned[4];
    angles.Store(turned);
    *found = {found->count, found->freeRegister, {turned[0], turned[1]}, {turned[2], turned[3]}};
  }
  return true;
}

void ExchangeSolutions(RotaryAngles* found) {
  std::swap(found->alpha[0], found->alpha[1]);
  std::swap(found->beta[0], found->beta[1]);
}

bool IsRangeChecked(const Entity* entity) {
  return entity != nullptr && entity->GetCheckRangeAxis();
}

// Checks the main linear axes X, Y and Z, each at the value that getValue(axis, register) gives.
template <typename GetValue>
bool CheckLinearAxes(const ProgramSystemComputeImplementation& record, bool* inRange,
                     GetValue getValue) {
  bool isAllInRange = true;
  for (int i = 0; i < 3; ++i) {
    if (inRange != nullptr) {
      inRange[i] = true;
    }
    const Register& reg = record.linears[i];
    const double value = getValue(i, reg);
    const Entity* const entity = record.machine->GetKinematic().GetEntity(reg);
    if (IsRangeChecked(entity) &&
        (value < entity->GetRangeMin() || value > entity->GetRangeMax())) {
      if (inRange != nullptr) {
        inRange[i] = false;
      }
      isAllInRange = false;
    }
  }
  return isAllInRange;
}

}  // namespace

ProgramSystemCompute::ProgramSystemCompute(const Machine& machine,
                                           const ProgramSystem& programSystem)
    : implementation_(
          std::make_shared<ProgramSystemComputeImplementation>(machine, programSystem)) {}

ProgramSystemCompute::ProgramSystemCompute(const ProgramSystemCompute& other) = default;

ProgramSystemCompute& ProgramSystemCompute::operator=(const ProgramSystemCompute& other) = default;

ProgramSystemCompute::~ProgramSystemCompute() = default;

bool ProgramSystemCompute::ComputeToolIjkTcsToMcsAbc(const MachinePosition& pos,
                                                     const Vector3D& ijk, RotariesSolution* sol) {
  ProgramSystemComputeImplementation& record = *implementation_;
  if (!record.calculator.ComputeToolIjkTcsToMcsAbc(pos, record.head, record.table, ijk,
                                                   record.rotaries[0].reg, record.rotaries[1].reg,
                                                   sol)) {
    return false;
  }
  if (!record.isShortestWay) {
    return true;
  }
  record.TakeDownLimits();

  RotaryAngles found = Load(*sol);
  if (found.count == 2 && found.freeRegister < 0 && record.rotaries[0].reg.IsDefined() &&
      record.rotaries[1].reg.IsDefined()) {
    const double currentDeg[2] = {pos[record.rotaries[0].reg], pos[record.rotaries[1].reg]};
    double moves[2];
    if (MoveIntoNearestTurns(currentDeg, record.min, record.max, &found, moves)) {
      if (moves[0] > moves[1]) {
        ExchangeSolutions(&found);
      }
      Store(found, sol);
      return true;
    }
  }

  double* const solutions[2] = {found.alpha, found.beta};  // by axis
  bool isInRange[2] = {true, true};
  double moves[2] = {0.0, 0.0};
  for (int i = 0; i < 2; ++i) {
    const MainRotary& rotary = record.rotaries[i];
    if (!rotary.reg.IsDefined()) {
      continue;
    }
    const double currentDeg = pos[rotary.reg];
    const double current = RadiansFromDegrees(currentDeg);
    const double referenceDeg = DegreesFromRadians(current);
    // A free axis stays where it is.
    if (found.freeRegister == rotary.reg.GetVal() &&
        (i == 0 || record.rotaries[0].reg.GetVal() != found.freeRegister)) {
      solutions[i][0] = current;
    }
    for (unsigned int s = 0; s < found.count; ++s) {
      double& angle = solutions[i][s];
      double angleDeg = DegreesFromRadians(angle);
      if (!IsNearestTurn(angleDeg, referenceDeg) ||
          (rotary.isRangeChecked && !(rotary.min <= angle && angle <= rotary.max))) {
        angle = AngleAccess::Radians(
            rotary.isRangeChecked ? ComputeClosestAngle(angle, current, rotary.min, rotary.max)
                                  : ComputeClosestAngle(angle, current));
        angleDeg = DegreesFromRadians(angle);
        if (rotary.isRangeChecked && (angle < rotary.min || angle > rotary.max)) {
          isInRange[s] = false;
        }
      }
      moves[s] += std::fabs(angleDeg - currentDeg);
    }
  }

  if (found.count == 2 && isInRange[0] && isInRange[1]) {
    if (moves[0] > moves[1]) {
      ExchangeSolutions(&found);
    }
  } else if (found.count == 2 && (isInRange[0] || isInRange[1])) {
    const int kept = isInRange[0] ? 0 : 1;
    found = {1, found.freeRegister, {found.alpha[kept], 0.0}, {found.beta[kept], 0.0}};
  } else if (found.count != 0 && !isInRange[0]) {
    found = RotaryAngles();
  }
  Store(found, sol);
  return true;
}

bool ProgramSystemCompute::ComputeToolTcsToMcsXyz(const MachinePosition& pos,
                                                  const Vector3D& offset, const Vector3D& point,
                                                  Vector3D* xyz) {
  ProgramSystemComputeImplementation& record = *implementation_;
  return record.calculator.ComputeToolTcsToMcsXyz(pos, record.head, record.table, offset,
                                                  record.linears[0], record.linears[1],
                                                  record.linears[2], point, xyz);
}

bool ProgramSystemCompute::CheckLinearRange(const MachinePosition& pos, bool* const inRange) {
  return CheckLinearAxes(*implementation_, inRange,
                         [&pos](int, const Register& reg) { return pos[reg]; });
}

bool ProgramSystemCompute::CheckLinearRange(const Vector3D& xyz, bool* const inRange) {
  return CheckLinearAxes(*implementation_, inRange,
                         [&xyz](int i, const Register&) { return xyz[i]; });
}

Angle ProgramSystemCompute::ComputeClosestAngle(const Angle& angle, const Angle& reference) {
  return Angle(ClosestAngle(angle.GetRadian(), reference.GetRadian()));
}

Angle ProgramSystemCompute::ComputeClosestAngle(const Angle& angle, const Angle& reference,
                                                const Angle& min, const Angle& max) {
  return Angle(
      ClosestAngle(angle.GetRadian(), reference.GetRadian(), min.GetRadian(), max.GetRadian()));
}

}  // namespace Orvo::Kin
