#include "compute/AngleUnwrap.h"

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/ProgramSystemCompute.h>

#include <cmath>
#include <utility>

namespace Orvo::Kin {

/// The record that the handles of a ProgramSystemCompute share.
struct ProgramSystemComputeImplementation {
  ProgramSystemComputeImplementation(const Machine& givenMachine, const ProgramSystem& given)
      : machine(&givenMachine), programSystem(given), calculator(givenMachine) {}

  const Machine* machine;
  ProgramSystem programSystem;
  MachineCompute calculator;
};

namespace {

/// One of the two angles of a solution, and the axis that it belongs to.
struct RotaryAxis {
  Register reg;
  const Entity* entity;  // null where no element has the register
  double currentDeg;
};

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
    const Register& reg = record.programSystem.GetMainLinear(i);
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
  ProgramSystem& programSystem = implementation_->programSystem;
  if (!implementation_->calculator.ComputeToolIjkTcsToMcsAbc(
          pos, programSystem.GetHeadIndex(), programSystem.GetTableIndex(), ijk,
          programSystem.GetMainRotary(0), programSystem.GetMainRotary(1), sol)) {
    return false;
  }
  if (programSystem.GetRotariesCompute() != RotariesComputeShortestWay) {
    return true;
  }

  // The two solutions by axis: alpha, then beta.
  Angle* const solutions[2][2] = {{&sol->Alpha1, &sol->Beta1}, {&sol->Alpha2, &sol->Beta2}};
  RotaryAxis axes[2];
  for (int i = 0; i < 2; ++i) {
    const Register& reg = programSystem.GetMainRotary(i);
    axes[i].reg = reg;
    axes[i].entity = implementation_->machine->GetKinematic().GetEntity(reg);
    axes[i].currentDeg = reg.IsDefined() ? pos[reg] : 0.0;
  }
  for (int i = 0; i < 2; ++i) {
    if (sol->FreeRegister >= 0 && sol->FreeRegister == axes[i].reg.GetVal()) {
      solutions[0][i]->SetDegre(axes[i].currentDeg);
      break;
    }
  }

  bool isInRange[2] = {true, true};
  for (unsigned int s = 0; s < sol->Count; ++s) {
    for (int i = 0; i < 2; ++i) {
      if (!axes[i].reg.IsDefined()) {
        continue;
      }
      Angle& angle = *solutions[s][i];
      Angle current;
      current.SetDegre(axes[i].currentDeg);
      if (!IsRangeChecked(axes[i].entity)) {
        angle = ComputeClosestAngle(angle, current);
        continue;
      }
      Angle min;
      min.SetDegre(axes[i].entity->GetRangeMin());
      Angle max;
      max.SetDegre(axes[i].entity->GetRangeMax());
      angle = ComputeClosestAngle(angle, current, min, max);
      if (angle < min || angle > max) {
        isInRange[s] = false;
      }
    }
  }

  if (sol->Count == 2 && (!isInRange[0] || !isInRange[1])) {
    if (isInRange[0] || isInRange[1]) {
      if (!isInRange[0]) {
        sol->Alpha1 = sol->Alpha2;
        sol->Beta1 = sol->Beta2;
      }
      sol->Count = 1;
      sol->Alpha2 = sol->Beta2 = Angle();
    } else {
      *sol = RotariesSolution();
    }
  } else if (sol->Count == 1 && !isInRange[0]) {
    *sol = RotariesSolution();
  }

  if (sol->Count == 2) {
    double moves[2] = {0.0, 0.0};
    for (int s = 0; s < 2; ++s) {
      for (int i = 0; i < 2; ++i) {
        if (axes[i].reg.IsDefined()) {
          moves[s] += std::fabs(solutions[s][i]->GetDegre() - axes[i].currentDeg);
        }
      }
    }
    if (moves[0] > moves[1]) {
      std::swap(sol->Alpha1, sol->Alpha2);
      std::swap(sol->Beta1, sol->Beta2);
    }
  }
  return true;
}

bool ProgramSystemCompute::ComputeToolTcsToMcsXyz(const MachinePosition& pos,
                                                  const Vector3D& offset, const Vector3D& point,
                                                  Vector3D* xyz) {
  const ProgramSystem& programSystem = implementation_->programSystem;
  return implementation_->calculator.ComputeToolTcsToMcsXyz(
      pos, programSystem.GetHeadIndex(), programSystem.GetTableIndex(), offset,
      programSystem.GetMainLinear(0), programSystem.GetMainLinear(1),
      programSystem.GetMainLinear(2), point, xyz);
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
