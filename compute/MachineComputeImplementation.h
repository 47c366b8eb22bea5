#pragma once

#include "compute/AxisChain.h"
#include "compute/KeptResults.h"
#include "geometry/IntersectionCompute.h"
#include "model/PositionAccess.h"

#include <Orvo/Kin/Enumerations.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>

#include <algorithm>
#include <vector>

namespace Orvo::Kin {

/// The record that the handles of a MachineCompute share.
struct MachineComputeImplementation {
  explicit MachineComputeImplementation(const Machine& givenMachine)
      : machine(&givenMachine),
        intersection(Tolerance, Tolerance, Tolerance, Tolerance, Tolerance, Tolerance, Tolerance) {}

  static constexpr double Tolerance = 0.0001;

  /// Sets the working position to a given one, as an assignment does.
  std::vector<double>& SetScratch(const std::vector<double>& values) {
    std::vector<double>& working = PositionAccess::Values(&scratch);
    if (working.size() < values.size()) {
      working.resize(values.size());
    }
    std::copy(values.begin(), values.end(), working.begin());
    return working;
  }

  const Machine* machine;

  // The given position with the solved axes at 0. Filled by assignment, so it never shrinks.
  MachinePosition scratch;

  AxisChain chain;

  // Every element, parents first; made once.
  std::vector<const Entity*> entityOrder;

  KeptResults kept;
  IntersectionCompute intersection;
  MachineComputeErrorType lastError = ComputeErrorNone;
};

}  // namespace Orvo::Kin
