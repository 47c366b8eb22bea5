#pragma once

#include <Orvo/Vector3D.h>

namespace Orvo::Testing {

/// Returns a vector with a fourth component, which only raw access can give.
inline Vector3D WithFourth(double x, double y, double z, double w) {
  Vector3D result(x, y, z);
  result[3] = w;
  return result;
}

}  // namespace Orvo::Testing
