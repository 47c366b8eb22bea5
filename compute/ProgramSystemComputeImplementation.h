#pragma once

#include "geometry/Degrees.h"
#include "geometry/Quad.h"
#include "model/KinematicImplementation.h"

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/ProgramSystem.h>

#include <limits>
#include <memory>

namespace Orvo::Kin {

/// A main rotary axis, with its limits in radians where they are checked.
struct MainRotary {
  Register reg;
  bool isRangeChecked = false;
  double min = 0.0;
  double max = 0.0;
};

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
    for (int i = 0; i < 3; ++i) {
      linears[i] = programSystem.GetMainLinear(i);
    }
  }

  /// Takes the limits of the rotary axes down anew when anything of the machine's elements changed.
  void TakeDownLimits() {
    const KinematicImplementation& store = KinematicAccess::Store(machine->GetKinematic());
    if (&store == store_ && store.changeNb == changeNb_) {
      return;
    }
    for (MainRotary& rotary : rotaries) {
      const Entity* const entity = store.byRegister.At(rotary.reg.GetVal());
      rotary.isRangeChecked = entity != nullptr && entity->GetCheckRangeAxis();
      rotary.min = -std::numeric_limits<double>::infinity();
      rotary.max = std::numeric_limits<double>::infinity();
      if (rotary.isRangeChecked) {
        rotary.min = RadiansFromDegrees(entity->GetRangeMin());
        rotary.max = RadiansFromDegrees(entity->GetRangeMax());
      }
    }
    min = Quad(rotaries[0].min, rotaries[0].min, rotaries[1].min, rotaries[1].min);
    max = Quad(rotaries[0].max, rotaries[0].max, rotaries[1].max, rotaries[1].max);
    watchedStore_ = KinematicAccess::Watch(machine->GetKinematic());
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
  Register linears[3];

  // The limits of the first rotary axis twice, and those of the second one.
  Quad min;
  Quad max;

 private:
  // The store that the limits are taken from. Watched, so that no other one takes its address.
  const KinematicImplementation* store_ = nullptr;
  std::weak_ptr<const KinematicImplementation> watchedStore_;
  unsigned long long changeNb_ = 0;
};

}  // namespace Orvo::Kin
