#include "compute/AngleUnwrap.h"

#include "geometry/Degrees.h"

#include <cmath>

namespace Orvo::Kin {

namespace {

constexpr double FullTurnDeg = 360.0;
constexpr double MostSingleTurns = 10000.0;

// In radians: how far outside the range an angle may stay, and from where it is set to the limit.
constexpr double RangeTolerance = 0.0001;
constexpr double SnapTolerance = 0.01;

// Adds all turns but a few where an angle is farther away than single turns go. One step of 1e25
// turns is exact to 1e9 turns only, so it is repeated as long as it gets nearer.
template <typename TurnsAway>
double AddManyTurns(double radians, TurnsAway turnsAway) {
  double turns = turnsAway(radians);
  while (std::isfinite(turns) && std::fabs(turns) > MostSingleTurns) {
    const double turned = radians + std::trunc(turns) * TwoPi;
    const double turnsLeft = turnsAway(turned);
    if (!(std::fabs(turnsLeft) < std::fabs(turns))) {
      break;
    }
    radians = turned;
    turns = turnsLeft;
  }
  return radians;
}

// Adds a turn, up or down, as long as it is wanted and changes the angle.
template <typename IsWanted>
double AddTurns(double radians, double turn, IsWanted isWanted) {
  while (isWanted(radians)) {
    const double turned = radians + turn;
    if (turned == radians) {
      break;
    }
    radians = turned;
  }
  return radians;
}

// Adds turns to an angle that is below a limit until it is no longer, or, with the factor -1, takes
// turns from one that is above.
double TurnInside(double radians, double limit, double factor) {
  const auto turnsOutside = [limit, factor](double angle) {
    return factor * std::fmax(factor * (limit - angle) / TwoPi, 0.0);
  };
  if (!std::isfinite(turnsOutside(radians))) {
    return radians;
  }
  radians = AddManyTurns(radians, turnsOutside);
  return AddTurns(radians, factor * TwoPi, [limit, factor](double angle) {
    return factor > 0.0 ? angle < limit - RangeTolerance : angle > limit + RangeTolerance;
  });
}

}  // namespace

double ClosestAngle(double radians, double reference) {
  const double referenceDeg = DegreesFromRadians(reference);
  radians = AddManyTurns(radians, [referenceDeg](double angle) {
    return (referenceDeg - DegreesFromRadians(angle)) / FullTurnDeg;
  });
  const auto isNearerAfter = [referenceDeg](double angle, double turnDeg) {
    const double angleDeg = DegreesFromRadians(angle);
    return std::fabs(angleDeg - referenceDeg) > std::fabs(angleDeg + turnDeg - referenceDeg);
  };
  radians =
      AddTurns(radians, TwoPi, [&](double angle) { return isNearerAfter(angle, FullTurnDeg); });
  return AddTurns(radians, -TwoPi,
                  [&](double angle) { return isNearerAfter(angle, -FullTurnDeg); });
}

double ClosestAngle(double radians, double reference, double min, double max) {
  radians = ClosestAngle(radians, reference);
  radians = TurnInside(radians, min, 1.0);
  radians = TurnInside(radians, max, -1.0);
  if (radians > max && radians < max + SnapTolerance) {
    radians = max;
  }
  if (radians < min && radians > min - SnapTolerance) {
    radians = min;
  }
  return radians;
}

}  // namespace Orvo::Kin
