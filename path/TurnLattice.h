#pragma once

#include "path/PathState.h"

#include <Orvo/Path/MainAxes.h>
#include <Orvo/Path/PathOptions.h>
#include <Orvo/Path/PointSolver.h>

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace Orvo::Path {

/// Carries the states that may be part of the best path from one point to the next.
///
/// Relaxed leaves the rotary ranges away: then the equivalent nearest to the state before is as
/// good as any other, and two states at most are needed. Its costs are a lower bound for everything
/// within the ranges. Lazy takes the nearest equivalent too, and others only where that one is out
/// of range. Complete takes all those whose costs stay within a given excess over the relaxed ones:
/// the best path is among them when that excess is what a known path has at its end. Plain is as
/// Lazy, but takes an answer without any turns where the ranges allow that.
class TurnLattice {
 public:
  enum class Mode { Relaxed, Lazy, Complete, Plain };

  TurnLattice(const MainAxes& axes, const PathMeasure& measure, Mode mode);

  /// Starts anew from one state, or from states that were kept.
  void Start(const std::vector<PathState>& states) { states_ = states; }

  const std::vector<PathState>& GetStates() const { return states_; }

  /// Goes on to a point.
  ///
  /// @param isHeld      whether the point lies in a singular stretch
  /// @param isApproach  whether the move costs nothing and all equivalents are taken
  /// @param relaxed     for Complete: the relaxed lattice, already at this point
  /// @param excess      for Complete: the largest excess over it
  void Step(PointSolver& solver, const ToolPoint& point, const Answers& answers, bool isHeld,
            bool isApproach, const TurnLattice* relaxed, double excess);

  /// Returns the place of the cheapest state.
  std::size_t FindBest() const;
  double GetBestCost() const { return states_[FindBest()].cost; }

 private:
  struct TurnList {
    double nearest = 0.0;       ///< turns to the equivalent nearest to the state before
    std::vector<double> taken;  ///< whole turns, the nearest first, then farther and farther
  };

  void Expand(const PathState& from, std::uint32_t place, const Answers& answers, bool isApproach,
              const TurnLattice* relaxed, double excess);
  void ListTurns(std::size_t axis, double deg, double referenceDeg, double most,
                 TurnList* list) const;
  void Keep(const PathState& state);
  double BoundOf(std::uint32_t kind, double excess) const;

  const MainAxes* axes_;
  const PathMeasure* measure_;
  Mode mode_;
  std::vector<PathState> states_;
  std::vector<PathState> next_;
  std::unordered_map<std::uint64_t, std::uint32_t> placeOf_;  ///< of many next states
  TurnList lists_[2];
};

}  // namespace Orvo::Path
