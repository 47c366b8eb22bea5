#pragma once

#include "geometry/VectorKernel.h"

#include <Orvo/Vector3D.h>

#include <algorithm>
#include <cmath>

namespace Orvo {

/// A direction at unit length, where it has one.
struct UnitDirection {
  /// A direction shorter than this, in the caller's unit, has no angle.
  static constexpr double Shortest = 0.00001;

  explicit UnitDirection(const double* v) : length(Length(v)) {
    if (HasAngle()) {
      dir = Vector3D(v[0] / length, v[1] / length, v[2] / length);
    }
  }

  bool HasAngle() const { return !(length < Shortest); }

  double length;
  Vector3D dir;
};

/// Returns the angle that turns one unit direction onto another, negative where their cross product
/// points against the reference.
inline double AngleBetween(const double* from, const double* to, const double* ref) {
  const double cosine = std::clamp(Dot(from, to), -1.0, 1.0);
  const Vector3D normal = Cross(from, to);
  const double angle = std::atan2(Length(normal), cosine);
  return Dot(normal, ref) < 0.0 ? -angle : angle;
}

}  // namespace Orvo
