#pragma once

#include <cmath>

namespace Orvo::Kin {

inline constexpr double FullTurnDeg = 360.0;

// Equivalent angles, by whole turns. Everything is in radians; nearness is compared in degrees, so
// that an angle half a turn away, as degrees have it, stays where it is.
//
// Turns are added one by one, as many as it takes up to 10,000. Farther away most of them are taken
// in one step. Where a turn no longer changes the angle, or its distance from the reference in
// degrees, and where the angle or what it is compared with is infinite or NaN, it stays.

/// Tells whether an angle is its equivalent that is nearest to a reference, both in degrees.
inline bool IsNearestTurn(double angleDeg, double referenceDeg) {
  const double distance = std::fabs(angleDeg - referenceDeg);
  return !(distance > std::fabs(angleDeg + FullTurnDeg - referenceDeg)) &&
         !(distance > std::fabs(angleDeg - FullTurnDeg - referenceDeg));
}

/// Returns the equivalent of an angle that is nearest to a reference.
double ClosestAngle(double radians, double reference);

/// Returns the equivalent of an angle that is nearest to a reference, moved into [min, max].
///
/// An angle up to 0.01 below the lower limit, after that, is set to it; so is one up to 0.0001
/// above the upper limit, since farther above it a turn is taken away first. In a range narrower
/// than a turn the result may lie outside.
double ClosestAngle(double radians, double reference, double min, double max);

}  // namespace Orvo::Kin
