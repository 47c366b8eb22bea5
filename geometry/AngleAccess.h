#pragma once

#include <Orvo/Angle.h>

namespace Orvo {

/// Reaches the radians of an angle without a call.
struct AngleAccess {
  static double Radians(const Angle& angle) { return angle.radians_; }
  static void Set(double radians, Angle* angle) { angle->radians_ = radians; }
};

}  // namespace Orvo
