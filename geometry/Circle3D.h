#pragma once

#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

namespace Orvo {

/// A circle about an axis, the normal of its plane.
class Circle3D {
 public:
  Circle3D(const Vector3D& center, const Vector3D& axis, double radius)
      : Center(center), Axis(axis), Radius(radius) {}
  virtual ~Circle3D() = default;

  /// Returns the frame at the center whose W is the unit axis; U and V span the circle's plane.
  Matrix43 GetFrame() const;

  Vector3D Center;
  Vector3D Axis;
  double Radius;
};

}  // namespace Orvo
