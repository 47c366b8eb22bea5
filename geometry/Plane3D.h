#pragma once

#include <Orvo/Vector3D.h>

namespace Orvo {

/// A plane through a point. The operations on it take the normal for a unit vector.
class Plane3D {
 public:
  Plane3D() = default;
  Plane3D(const Vector3D& origin, const Vector3D& normal) : Origin(origin), Normal(normal) {}
  virtual ~Plane3D() = default;

  Vector3D Origin;
  Vector3D Normal;
};

}  // namespace Orvo
