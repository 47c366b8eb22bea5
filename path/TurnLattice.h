#pragma once

#include "path/PathState.h"

#include <Orvo/Path/MainAxes.h>
#include <Orvo/Path/PathOptions.h>
#include <Orvo/Path/PointSolver.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Orvo::Path {

/// Carries the states that may be part of the best path from one point to the next.
///
/// Relaxed leaves the ranges of axes away that may turn all around: then the equivalent nearest to
/// the state before is as good as any other, and two states at most are needed. Its costs are a
/// lower bound for everything within the ranges. Lazy takes the nearest equivalent too, and others
/// only where that one is out of range, and goes on with the few best states: its best path is one
/// that is there, and the relaxed one where no range gets in the way. Complete takes all those
/// whose costs stay within a given excess over the relaxed ones: the best path is among them when
/// that excess is what a known path has at its end. Plain is as Lazy, but takes an answer without
/// any turns where the ranges allow that.
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

  /// Tells whether the last point had no answer, so that all states stay.
  bool IsUnmoved() const;

  /// Returns the place of the cheapest state.
  std::size_t FindBest() const;
  double GetBestCost() const { return states_[FindBest()].cost; }

 private:
  /// The equivalents of a rotary value that are taken from one state, the nearest first, then
  /// farther and farther.
  struct TurnList {
    double nearest = 0.0;        ///< whole turns to the equivalent nearest to the state before
    std::vector<double> turns;   ///< whole turns of the value itself
    std::vector<double> cost;    ///< what the axis adds
    std::vector<char> isUnwind;  ///< whether it turns by more than half a turn
  };

  /// What an answer is to all states before it.
  struct Target {
    const Answer* answer = nullptr;
    PathStep::Kind kind = PathStep::First;
    double bound = 0.0;           ///< no state above this cost is needed
    std::array<double, 2> first;  ///< first turn in range
    std::array<double, 2> last;   ///< last one
    std::size_t slot = 0;         ///< of the first turns
    std::size_t width = 0;        ///< slots for a turn of the first axis; 0 where there are none
  };

  bool ExpandHeld(PointSolver& solver, const ToolPoint& point, std::uint32_t place, bool isApproach,
                  double bound);
  void FindTargets(const Answers& answers, bool isApproach, const TurnLattice* relaxed,
                   double excess);
  void Expand(const PathState& from, std::uint32_t place, const Target& target, bool isApproach);
  bool IsSingle(std::size_t i, const Target& target, const PathState& from, double* turn,
                double* nearest) const;
  bool ExpandSingle(const PathState& from, std::uint32_t place, const Target& target);
  void ListTurns(std::size_t i, const Target& target, const PathState& from, double most,
                 TurnList* list) const;
  double FixedCost(const PathState& from, const Answer& answer) const;
  std::uint32_t* FindSlot(const Target& target, double a, double b);
  void Keep(const PathState& state, std::uint32_t* slot);
  void KeepFew();
  double BoundOf(PathStep::Kind kind, double excess) const;

  const MainAxes* axes_;
  const PathMeasure* measure_;
  Mode mode_;
  std::array<bool, 2> isBounded_;  ///< whether the range of a rotary axis counts
  std::array<bool, 2> isFree_;     ///< whether Relaxed leaves it away
  std::vector<PathState> states_;
  std::vector<PathState> next_;
  std::vector<Target> targets_;
  std::vector<std::uint32_t> slots_;  ///< by target and turns: one more than the place in next_
  std::vector<std::uint32_t*> usedSlots_;
  TurnList lists_[2];
};

}  // namespace Orvo::Path
