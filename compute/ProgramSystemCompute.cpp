#include "compute/AngleUnwrap.h"
#include "geometry/AngleAccess.h"
#include "geometry/Degrees.h"
#include "model/KinematicImplementation.h"

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/ProgramSystemCompute.h>

#include <cmath>
#include <utility>

namespace Orvo::Kin {

namespace {

/// A main rotary axis, with its limits in radians where they are checked.
struct MainRotary {
  Register reg;
  bool isRangeChecked = false;
  Angle min;
  Angle max;
};

}  // namespace

/// The record that the handles of a ProgramSystemCompute share.
struct ProgramSystemComputeImplementation {
  ProgramSystemComputeImplementation(const Machine& givenMachine, const ProgramSystem& given)
      : machine(&givenMachine), programSystem(given), calculator(givenMachine) {
    isShortestWay = programSystem.GetRotariesCompute() == RotariesComputeShortestWay;
    head = programSystem.GetHeadIndex();
    table = programSystem.GetTableIndex();
    for (int i = 0; i < 2; ++i) {
      rotaries[i].reg = programSystem.GetMainRotary(i);
    }
  }

  // Takes the limits of the rotary axes down anew when anything of the machine's elements changed.
  void TakeDownLimits() {
    const KinematicImplementation& store = KinematicAccess::Store(machine->GetKinematic());
    if (&store == store_ && store.changeNb == changeNb_) {
      return;
    }
    for (MainRotary& rotary : rotaries) {
      const Entity* const entity = store.byRegister.At(rotary.reg.GetVal());
      rotary.isRangeChecked = entity != nullptr && entity->GetCheckRangeAxis();
      if (rotary.isRangeChecked) {
        rotary.min.SetDegre(entity->GetRangeMin());
        rotary.max.SetDegre(entity->GetRangeMax());
      }
    }
    store_ = &store;
    changeNb_ = store.changeNb;
  }

  const Machine* machine;
  ProgramSystem programSystem;
  MachineCompute calculator;

  // Of the program system.
  bool isShortestWay;
  HeadIndex head;
  TableIndex table;
  MainRotary rotaries[2];

 private:
  const KinematicImplementation* store_ = nullptr;
  unsigned long long changeNb_ = 0;
};

namespace {

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

  // The two solutions by axis: alpha, then beta.
  Angle* const solutions[2][2] = {{&sol->Alpha1, &sol->Beta1}, {&sol->Alpha2, &sol->Beta2}};
  double currentDeg[2];
  for (int i = 0; i < 2; ++i) {
    const Register& reg = record.rotaries[i].reg;
    currentDeg[i] = reg.IsDefined() ? pos[reg] : 0.0;
  }
  for (int i = 0; i < 2; ++i) {
    if (sol->FreeRegister >= 0 && sol->FreeRegister == record.rotaries[i].reg.GetVal()) {
      solutions[0][i]->SetDegre(currentDeg[i]);
      break;
    }
  }

  bool isInRange[2] = {true, true};
  double moves[2] = {0.0, 0.0};
  for (int i = 0; i < 2; ++i) {
    const MainRotary& rotary = record.rotaries[i];
    if (!rotary.reg.IsDefined()) {
      continue;
    }
    const double current = RadiansFromDegrees(currentDeg[i]);
    const double referenceDeg = DegreesFromRadians(current);
    const double min = AngleAccess::Radians(rotary.min);
    const double max = AngleAccess::Radians(rotary.max);
    for (unsigned int s = 0; s < sol->Count; ++s) {
      Angle& angle = *solutions[s][i];
      double radians = AngleAccess::Radians(angle);
      double angleDeg = DegreesFromRadians(radians);
      if (!IsNearestTurn(angleDeg, referenceDeg) ||
          (rotary.isRangeChecked && !(min <= radians && radians <= max))) {
        angle = rotary.isRangeChecked
                    ? ComputeClosestAngle(angle, Angle(current), rotary.min, rotary.max)
                    : ComputeClosestAngle(angle, Angle(current));
        radians = AngleAccess::Radians(angle);
        angleDeg = DegreesFromRadians(radians);
        if (rotary.isRangeChecked && (radians < min || radians > max)) {
          isInRange[s] = false;
        }
      }
      moves[s] += std::fabs(angleDeg - currentDeg[i]);
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
  if (sol->Count == 2 && moves[0] > moves[1]) {
    std::swap(sol->Alpha1, sol->Alpha2);
    std::swap(sol->Beta1, sol->Beta2);
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
