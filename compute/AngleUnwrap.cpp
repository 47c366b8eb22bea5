#include "compute/AngleUnwrap.h"

#include "geometry/Degrees.h"

#include <cmath>

namespace Orvo::Kin {

namespace {

constexpr double MostSingleTurns = 10000.0;

// Of many turns, these are left to be added one by one. Where a turn still changes an angle, the
// rounding of the angle, of its degrees and of the many turns amounts to less.
constexpr double TurnsKept = 16.0;

// In radians: how far outside the range an angle may stay, and from where it is set to the limit.
constexpr double RangeTolerance = 0.0001;
constexpr double SnapTolerance = 0.01;

// Adds a turn, up or down, as long as that is wanted and changes the angle. turnsAway is how many
// it takes.
template <typename IsWanted>
double AddTurns(double radians, double turn, double turnsAway, IsWanted isWanted) {
  if (!std::isfinite(turnsAway)) {
    return radians;
  }
  if (turnsAway > MostSingleTurns && isWanted(radians) && radians + turn != radians) {
    radians += (std::floor(turnsAway) - TurnsKept) * turn;
  }
  while (isWanted(radians)) {
    const double turned = radians + turn;
    if (turned == radians) {
      break;
    }
    radians = turned;
  }
  return radians;
}

}  // namespace

double ClosestAngle(double radians, double reference) {
  const double referenceDeg = DegreesFromRadians(reference);
  const auto isNearerAfter = [referenceDeg](double angle, double turnDeg) {
    const double angleDeg = DegreesFromRadians(angle);
    return std::fabs(angleDeg - referenceDeg) > std::fabs(angleDeg + turnDeg - referenceDeg);
  };
  const auto turnsBelowReference = [referenceDeg](double angle) {
    return (referenceDeg - DegreesFromRadians(angle)) / FullTurnDeg;
  };
  radians = AddTurns(radians, TwoPi, turnsBelowReference(radians),
                     [&](double angle) { return isNearerAfter(angle, FullTurnDeg); });
  return AddTurns(radians, -TwoPi, -turnsBelowReference(radians),
                  [&](double angle) { return isNearerAfter(angle, -FullTurnDeg); });
}

double ClosestAngle(double radians, double reference, double min, double max) {
  radians = ClosestAngle(radians, reference);
  radians = AddTurns(radians, TwoPi, (min - radians) / TwoPi,
                     [min](double angle) { return angle < min - RangeTolerance; });
  radians = AddTurns(radians, -TwoPi, (radians - max) / TwoPi,
                     [max](double angle) { return angle > max + RangeTolerance; });
  if (radians > max && radians < max + SnapTolerance) {
    radians = max;
  }
  if (radians < min && radians > min - SnapTolerance) {
    radians = min;
  }
  return radians;
}

}  // namespace Orvo::Kin
