#pragma once

#include "geometry/VectorKernel.h"

#include <Orvo/Vector3D.h>

namespace Orvo::Kin {

/// A requested direction and its length; passed in registers.
struct RequestedDirection {
  explicit RequestedDirection(const Vector3D& direction)
      : given(direction), length(Length(direction)) {}

  const double* given;
  double length;
};

}  // namespace Orvo::Kin
