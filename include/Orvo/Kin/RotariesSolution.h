#pragma once

#include <Orvo/Angle.h>
#include <Orvo/Export.h>

namespace Orvo::Kin {

/// The values of two rotary axes that turn the tool onto a direction: up to two pairs.
///
/// Alpha belongs to the first rotary register of the request, beta to the second, whatever their
/// order in the machine. The angles are values of the axes, counted from register value 0. Read the
/// second pair with the count 2 only. With the count 1 it holds what the solver left there: the
/// first pair as it was before it was unwrapped, within 0.001 degree, or 0.
struct ORVO_API RotariesSolution {
  /// The number of solutions: 0, 1 or 2.
  unsigned int Count = 0;

  /// The register of an axis whose value is arbitrary because the direction lies on it, or -1.
  int FreeRegister = -1;

  /// The value of the first rotary axis in the first solution; read it with the count 1 or 2.
  Angle Alpha1;

  /// The value of the second rotary axis in the first solution.
  Angle Beta1;

  /// The value of the first rotary axis in the second solution; read it with the count 2 only.
  Angle Alpha2;

  /// The value of the second rotary axis in the second solution.
  Angle Beta2;
};

}  // namespace Orvo::Kin
