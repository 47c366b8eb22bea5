#pragma once

#include <Orvo/Vector3D.h>

namespace Orvo {

/// A line through a point along a direction, which need not be of unit length.
class Line3D {
 public:
  Line3D() = default;
  Line3D(const Vector3D& origin, const Vector3D& dir) : Origin(origin), Dir(dir) {}
  virtual ~Line3D() = default;

  Vector3D Origin;
  Vector3D Dir = AxisZ;
};

}  // namespace Orvo
