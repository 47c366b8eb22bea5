#include "path/SegmentMotion.h"

#include "path/PathState.h"
#include "path/PointSolverImplementation.h"
#include "path/Turns.h"
#include "path/Vec3.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Orvo::Path {
namespace {

constexpr double SampleStepDeg = 5.0;
constexpr double LeastSamples = 4.0;
constexpr double MostSamples = 4096.0;
constexpr int SearchSteps = 24;

/// The search for the largest deviation ends where no more than this share of it can be gained.
constexpr double PromisedShare = 1e-3;

/// Before that, the deviation around it must be known where it is smaller by no more than this
/// share, and is looked at where it should be smaller by that.
constexpr double LargestDrop = 0.01;
constexpr double NearbyDrop = 0.005;

/// Deviations below these are rounding: in radians, and as a share of the tip's coordinates.
constexpr double DirectionRounding = 1e-12;
constexpr double TipRounding = 1e-12;

/// Rotary moves below this leave the line nowhere, in degrees.
constexpr double NoTurnDeg = 1e-12;

AxisValues Between(const AxisValues& from, const AxisValues& to, double t) {
  AxisValues values;
  for (std::size_t i = 0; i < MainAxisNb; ++i) {
    values[i] = from[i] + (to[i] - from[i]) * t;
  }
  return values;
}

double LargestTurn(const AxisValues& from, const AxisValues& to) {
  return std::max(std::abs(to[FirstRotary] - from[FirstRotary]),
                  std::abs(to[FirstRotary + 1] - from[FirstRotary + 1]));
}

/// Measures how far a tool is from the straight connection of two others.
class Connection {
 public:
  Connection(PointSolver& solver, const AxisValues& from, const AxisValues& to)
      : solver_(solver), from_(from), to_(to) {
    isGood_ = TakeTool(0.0, &tip_, &direction_) && TakeTool(1.0, &endTip_, &endDirection_);
    normal_ = Cross(direction_, endDirection_);
    const double norm = Norm(normal_);
    isTurn_ = norm > 1e-12;
    normal_ = isTurn_ ? normal_ * (1.0 / norm) : Vec3();
  }

  bool IsGood() const { return isGood_; }

  /// Returns the size of the numbers that distances are told by.
  double GetTipSize() const { return std::max({1.0, Norm(tip_), Norm(endTip_)}); }

  SegmentDeviation At(double t) {
    SegmentDeviation deviation;
    Vec3 tip;
    Vec3 direction;
    if (TakeTool(t, &tip, &direction)) {
      deviation.tip = TipDistance(tip);
      deviation.direction = DirectionDistance(direction);
    }
    return deviation;
  }

 private:
  bool TakeTool(double t, Vec3* tip, Vec3* direction) {
    Vector3D point;
    Vector3D ijk;
    if (!solver_.ComputeTool(Between(from_, to_, t), &point, &ijk)) {
      return false;
    }
    *tip = FromVector(point);
    *direction = Unit(FromVector(ijk));
    return true;
  }

  double TipDistance(const Vec3& tip) const {
    const Vec3 along = endTip_ - tip_;
    const double square = Dot(along, along);
    const double t = square > 0.0 ? std::clamp(Dot(tip - tip_, along) / square, 0.0, 1.0) : 0.0;
    return Norm(tip - (tip_ + along * t));
  }

  double DirectionDistance(const Vec3& direction) const {
    const double toEnds =
        std::min(AngleBetween(direction, direction_), AngleBetween(direction, endDirection_));
    const bool isBeside = isTurn_ && Dot(Cross(direction_, direction), normal_) >= 0.0 &&
                          Dot(Cross(direction, endDirection_), normal_) >= 0.0;
    return isBeside ? std::min(toEnds,
                               std::abs(std::asin(std::clamp(Dot(direction, normal_), -1.0, 1.0))))
                    : toEnds;
  }

  PointSolver& solver_;
  const AxisValues& from_;
  const AxisValues& to_;
  bool isGood_ = false;
  bool isTurn_ = false;
  Vec3 tip_;
  Vec3 endTip_;
  Vec3 direction_;
  Vec3 endDirection_;
  Vec3 normal_;
};

/// The largest value of one kind along a move, between two places with smaller ones.
struct Peak {
  double SegmentDeviation::*what = nullptr;
  double negligible = 0.0;  ///< below this there is nothing but rounding
  double low = 0.0;
  double at = 0.5;
  double high = 1.0;
  double valueLow = 0.0;
  double value = 0.0;
  double valueHigh = 0.0;

  /// What the top may have above the middle, if it rises no faster than between these places.
  double MostGain() const { return value - std::min(valueLow, valueHigh); }
};

/// The parabola through three places of a peak.
struct Parabola {
  double top = 0.0;   ///< where it is largest
  double gain = 0.0;  ///< how far above the middle that is
  double bend = 0.0;  ///< how fast it falls: by this times the square of the way from the top
};

Parabola FitParabola(const Peak& peak) {
  const double left = peak.at - peak.low;
  const double right = peak.high - peak.at;
  const double riseLeft = (peak.value - peak.valueLow) / left;
  const double riseRight = (peak.value - peak.valueHigh) / right;
  const double bend = (riseLeft + riseRight) / (left + right);
  if (!(bend > 0.0)) {
    return {peak.at, 0.0, 0.0};
  }
  // value + slope (t - at) - bend (t - at)^2
  const double slope = (riseLeft * right - riseRight * left) / (left + right);
  const double step = slope / (2.0 * bend);
  return {peak.at + step, 0.5 * slope * step, bend};
}

/// Narrows a peak by what was found beside its middle.
void Narrow(Peak* peak, double at, double value) {
  const bool isLeft = at < peak->at;
  if (value > peak->value) {
    (isLeft ? peak->high : peak->low) = peak->at;
    (isLeft ? peak->valueHigh : peak->valueLow) = peak->value;
    peak->at = at;
    peak->value = value;
  } else {
    (isLeft ? peak->low : peak->high) = at;
    (isLeft ? peak->valueLow : peak->valueHigh) = value;
  }
}

/// Says where to look next for the top of a peak; negative where it is known well enough.
///
/// Successive parabolic interpolation. A parabola through places that lie far apart may have its
/// top in the middle by chance, so both outer ones must be near the top before it is believed.
double FindNextPlace(const Peak& peak) {
  const Parabola parabola = FitParabola(peak);
  const bool isInside = parabola.top > peak.low && parabola.top < peak.high;
  if (parabola.gain > PromisedShare * peak.value && isInside && parabola.top != peak.at) {
    return parabola.top;
  }
  const double nearby =
      parabola.bend > 0.0 ? std::sqrt(NearbyDrop * peak.value / parabola.bend) : 0.0;
  if (peak.value - peak.valueLow > LargestDrop * peak.value) {
    return std::max(peak.at - nearby, 0.5 * (peak.low + peak.at));
  }
  if (peak.value - peak.valueHigh > LargestDrop * peak.value) {
    return std::min(peak.at + nearby, 0.5 * (peak.at + peak.high));
  }
  return -1.0;
}

/// Searches the top of a peak; keeps the largest deviations of all that it meets.
void Climb(Connection* connection, Peak* peak, SegmentDeviation* largest) {
  for (int step = 0; step < SearchSteps && peak->value > peak->negligible; ++step) {
    const double at = FindNextPlace(*peak);
    if (!(at > peak->low && at < peak->high) || at == peak->at) {
      return;
    }
    const SegmentDeviation deviation = connection->At(at);
    largest->tip = std::max(largest->tip, deviation.tip);
    largest->direction = std::max(largest->direction, deviation.direction);
    Narrow(peak, at, deviation.*(peak->what));
  }
}

bool IsWithin(const SegmentOptions& options, const SegmentDeviation& deviation) {
  return deviation.tip <= options.tipTolerance &&
         deviation.direction <= RadFromDeg(options.directionToleranceDeg);
}

/// Takes the answer nearest to given values, within the ranges.
bool TakeNearest(const MainAxes& axes, const Answers& answers, const PathState& near,
                 PathState* to) {
  bool isFound = false;
  double smallest = 0.0;
  for (int s = 0; s < answers.count; ++s) {
    if (!answers.answers[static_cast<std::size_t>(s)].IsInRange()) {
      continue;
    }
    PathStep step;
    step.kind = s == 0 ? PathStep::First : PathStep::Second;
    PathState state;
    TakeStep(axes, answers, step, near, &state);
    const double turn = LargestTurn(near.values, state.values);
    const bool isInside =
        ExcessOf(axes.axes[FirstRotary], state.values[FirstRotary]) == 0.0 &&
        ExcessOf(axes.axes[FirstRotary + 1], state.values[FirstRotary + 1]) == 0.0;
    if (isInside && (!isFound || turn < smallest)) {
      isFound = true;
      smallest = turn;
      *to = state;
    }
  }
  return isFound;
}

/// Solves the middle of two points, near to where the axes would pass it.
bool SolveMiddle(PointSolver& solver, const PathOptions& options, const MoveStart& from,
                 const SolvedPoint& to, SolvedPoint* middle) {
  *middle = SolvedPoint();
  middle->index = to.index;
  middle->target = to.target;
  Vector3D tip = from.target.point;
  tip += to.target.point;
  tip *= 0.5;
  Vec3 ends[2];
  Vec3 directions[2];
  if (!TakeRequest(from.target, &ends[0], &directions[0]) ||
      !TakeRequest(to.target, &ends[1], &directions[1])) {
    return false;
  }
  const Vec3 sum = directions[0] + directions[1];
  if (!(Norm(sum) > 1e-6)) {
    return false;
  }
  middle->target.point = tip;
  middle->target.direction = ToVector(Unit(sum));
  PathState near;
  near.values = Between(from.values, to.values, 0.5);
  PathState state;
  const Answers answers = solver.Solve(middle->target);
  const double cone = std::max(RadFromDeg(options.singularConeDeg), 1e-12);
  double deviation = 0.0;
  if (answers.singularAngle <= cone &&
      HoldState(solver, middle->target, near, {}, &state, &deviation)) {
    middle->isHeld = true;
    middle->deviation = deviation;
  } else if (!TakeNearest(solver.GetAxes(), answers, near, &state)) {
    return false;
  }
  middle->values = state.values;
  middle->branch = state.branch;
  middle->isSolved = true;
  middle->isInserted = true;
  return true;
}

/// Where a move leaves a singular direction, or comes to one, the free axis must turn at that very
/// point: between the points its value hardly changes. Computes the point where it has turned, or
/// is about to; false where there is none.
bool SolveTurned(PointSolver& solver, const PathOptions& options, const MoveStart& from,
                 const SolvedPoint& to, SolvedPoint* turned) {
  const int place = solver.GetFreeAxis();
  if (place < 0) {
    return false;
  }
  const auto freeAxis = static_cast<std::size_t>(place);
  const double cone = std::max(RadFromDeg(options.singularConeDeg), 1e-12);
  const bool leaves = solver.Solve(from.target).singularAngle <= cone;
  const bool comes = solver.Solve(to.target).singularAngle <= cone;
  if (leaves == comes || !(std::abs(to.values[freeAxis] - from.values[freeAxis]) > NoTurnDeg)) {
    return false;
  }
  *turned = SolvedPoint();
  turned->index = to.index;
  turned->target = to.target;
  PathState near;
  near.values = to.values;
  near.values[freeAxis] = leaves ? to.values[freeAxis] : from.values[freeAxis];
  if (leaves) {
    turned->target.point = from.target.point;
    turned->target.direction = from.target.direction;
  }
  PathState state;
  if (!HoldState(solver, turned->target, near, {}, &state, &turned->deviation)) {
    return false;
  }
  turned->values = state.values;
  turned->branch = state.branch;
  turned->isSolved = turned->isInserted = turned->isHeld = true;
  return true;
}

}  // namespace

SegmentDeviation ComputeDeviation(PointSolver& solver, const AxisValues& from,
                                  const AxisValues& to) {
  SegmentDeviation largest;
  const double turn = LargestTurn(from, to);
  if (!(turn > NoTurnDeg)) {
    return largest;
  }
  Connection connection(solver, from, to);
  if (!connection.IsGood()) {
    return largest;
  }
  const auto sampleNb =
      static_cast<int>(std::clamp(std::ceil(turn / SampleStepDeg), LeastSamples, MostSamples));
  const double step = 1.0 / sampleNb;
  std::vector<Peak> peaks;
  SegmentDeviation before;
  SegmentDeviation middle;
  for (int i = 1; i <= sampleNb; ++i) {
    // Both ends deviate by nothing.
    const SegmentDeviation next = i < sampleNb ? connection.At(step * i) : SegmentDeviation();
    for (double SegmentDeviation::*const what :
         {&SegmentDeviation::tip, &SegmentDeviation::direction}) {
      if (i > 1 && middle.*what > before.*what && middle.*what >= next.*what) {
        Peak peak;
        peak.what = what;
        peak.negligible = what == &SegmentDeviation::tip ? TipRounding * connection.GetTipSize()
                                                         : DirectionRounding;
        peak.low = step * (i - 2);
        peak.at = step * (i - 1);
        peak.high = step * i;
        peak.valueLow = before.*what;
        peak.value = middle.*what;
        peak.valueHigh = next.*what;
        peaks.push_back(peak);
      }
      largest.*what = std::max(largest.*what, next.*what);
    }
    before = middle;
    middle = next;
  }
  for (Peak& peak : peaks) {
    if (peak.value + peak.MostGain() > largest.*peak.what) {
      Climb(&connection, &peak, &largest);
    }
  }
  return largest;
}

std::vector<SolvedPoint> Refine(PointSolver& solver, const PathOptions& options,
                                const MoveStart& from, const SolvedPoint& to,
                                SegmentDeviation* left) {
  struct Piece {
    SolvedPoint end;
    int depth = 0;
  };
  std::vector<SolvedPoint> inserted;
  // The ends that are still ahead, the nearest one last.
  std::vector<Piece> ahead = {{to, 0}};
  MoveStart current = from;
  *left = SegmentDeviation();
  bool isWhole = true;  // no point is inserted yet
  while (!ahead.empty()) {
    const Piece piece = ahead.back();
    const SegmentDeviation deviation = ComputeDeviation(solver, current.values, piece.end.values);
    SolvedPoint middle;
    const bool wasWhole = std::exchange(isWhole, false);
    if (wasWhole && !IsWithin(options.segments, deviation) &&
        SolveTurned(solver, options, from, to, &middle)) {
      ahead.push_back({middle, 0});
      continue;
    }
    if (!IsWithin(options.segments, deviation) && piece.depth < options.segments.maxDepth &&
        SolveMiddle(solver, options, current, piece.end, &middle)) {
      ahead.back().depth = piece.depth + 1;
      ahead.push_back({middle, piece.depth + 1});
      continue;
    }
    left->tip = std::max(left->tip, deviation.tip);
    left->direction = std::max(left->direction, deviation.direction);
    ahead.pop_back();
    current = MoveStart(piece.end);
    if (!ahead.empty()) {
      inserted.push_back(piece.end);
      inserted.back().tipDeviation = deviation.tip;
      inserted.back().directionDeviation = deviation.direction;
    }
  }
  return inserted;
}

double ComputeInverseTime(const PathMeasure& measure, const MoveStart& from,
                          const SolvedPoint& to) {
  if (to.target.isRapid || !(to.target.feed > 0.0)) {
    return 0.0;
  }
  double minutes = from.target.point.Distance(to.target.point) / to.target.feed;
  for (std::size_t i = 0; i < MainAxisNb; ++i) {
    minutes = std::max(minutes, std::abs(to.values[i] - from.values[i]) / measure.speeds[i]);
  }
  return minutes > 0.0 ? 1.0 / minutes : 0.0;
}

}  // namespace Orvo::Path
