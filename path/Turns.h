#pragma once

#include <Orvo/Path/MainAxes.h>

#include <cmath>

namespace Orvo::Path {

/// A value counts as inside its range up to so much beyond a limit: rounding put it there.
constexpr double RangeTolerance = 1e-9;

/// By how many whole turns a rotary value may be moved: from first to last.
struct Turns {
  double first = 0.0;
  double last = -1.0;

  bool IsEmpty() const { return first > last; }
};

/// Returns the turns that keep a rotary value in the range of its axis. Without a range, and for an
/// axis that isn't there, only the value itself counts as one.
inline Turns TurnsInRange(const MainAxis& axis, double deg) {
  if (!axis.isPresent || !axis.isChecked) {
    return {0.0, 0.0};
  }
  return {std::ceil((axis.min - RangeTolerance - deg) / 360.0),
          std::floor((axis.max + RangeTolerance - deg) / 360.0)};
}

/// Returns how far a value lies outside of its range: above 0 beyond the upper limit, below 0 under
/// the lower one.
inline double ExcessOf(const MainAxis& axis, double value) {
  if (!axis.isPresent || !axis.isChecked) {
    return 0.0;
  }
  return value > axis.max + RangeTolerance   ? value - axis.max
         : value < axis.min - RangeTolerance ? value - axis.min
                                             : 0.0;
}

/// Returns the equivalent of a rotary value that lies least outside of its range.
inline double NearestTurn(const MainAxis& axis, double deg) {
  const Turns turns = TurnsInRange(axis, deg);
  if (!turns.IsEmpty()) {
    return deg + 360.0 * std::fmin(std::fmax(0.0, turns.first), turns.last);
  }
  const double above = deg + 360.0 * turns.first;
  const double below = deg + 360.0 * turns.last;
  return std::abs(ExcessOf(axis, above)) < std::abs(ExcessOf(axis, below)) ? above : below;
}

}  // namespace Orvo::Path
