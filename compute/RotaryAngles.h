#pragma once

#include "compute/RotaryTolerances.h"
#include "geometry/AngleAccess.h"
#include "geometry/Degrees.h"

#include <Orvo/Kin/RotariesSolution.h>

#include <cmath>

namespace Orvo::Kin {

/// The content of a RotariesSolution, in radians.
struct RotaryAngles {
  unsigned int count = 0;
  int freeRegister = -1;
  double alpha[2] = {0.0, 0.0};
  double beta[2] = {0.0, 0.0};
};

/// Tells whether two solutions are told apart by their angles.
inline bool AreTwoSolutions(const RotaryAngles& angles) {
  const auto differ = [](const double values[2]) {
    return std::fabs(DegreesFromRadians(values[0]) - DegreesFromRadians(values[1])) >= SameAngleDeg;
  };
  return differ(angles.alpha) || differ(angles.beta);
}

inline void Store(const RotaryAngles& angles, RotariesSolution* sol) {
  sol->Count = angles.count;
  sol->FreeRegister = angles.freeRegister;
  AngleAccess::Set(angles.alpha[0], &sol->Alpha1);
  AngleAccess::Set(angles.beta[0], &sol->Beta1);
  AngleAccess::Set(angles.alpha[1], &sol->Alpha2);
  AngleAccess::Set(angles.beta[1], &sol->Beta2);
}

inline RotaryAngles Load(const RotariesSolution& sol) {
  return {sol.Count,
          sol.FreeRegister,
          {AngleAccess::Radians(sol.Alpha1), AngleAccess::Radians(sol.Alpha2)},
          {AngleAccess::Radians(sol.Beta1), AngleAccess::Radians(sol.Beta2)}};
}

}  // namespace Orvo::Kin
