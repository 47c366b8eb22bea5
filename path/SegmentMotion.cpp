#include "path/SegmentMotion.h"

#include "path/PathState.h"
#include "path/Turns.h"
#include "path/Vec3.h"

#include <algorithm>
#include <cmath>

namespace Orvo::Path {
namespace {

constexpr double SampleStepDeg = 5.0;
constexpr double LeastSamples = 4.0;
constexpr double MostSamples = 4096.0;
constexpr int SearchSteps = 24;

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

/// Golden-section search (Kiefer, "Sequential Minimax Search for a Maximum", 1953).
double SearchLargest(Connection* connection, double SegmentDeviation::*what, double low,
                     double high, double known) {
  constexpr double ratio = 0.6180339887498949;
  double a = high - ratio * (high - low);
  double b = low + ratio * (high - low);
  double atA = connection->At(a).*what;
  double atB = connection->At(b).*what;
  for (int step = 0; step < SearchSteps; ++step) {
    known = std::max({known, atA, atB});
    if (atA > atB) {
      high = b;
      b = a;
      atB = atA;
      a = high - ratio * (high - low);
      atA = connection->At(a).*what;
    } else {
      low = a;
      a = b;
      atA = atB;
      b = low + ratio * (high - low);
      atB = connection->At(b).*what;
    }
  }
  return std::max({known, atA, atB});
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
  const Vec3 sum = Unit(FromVector(from.target.direction)) + Unit(FromVector(to.target.direction));
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
      HoldState(solver, middle->target, near, &state, &deviation)) {
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
  const double samples = std::clamp(std::ceil(turn / SampleStepDeg), LeastSamples, MostSamples);
  double atTip = 0.5;
  double atDirection = 0.5;
  for (double i = 1.0; i < samples; i += 1.0) {
    const SegmentDeviation deviation = connection.At(i / samples);
    if (deviation.tip > largest.tip) {
      largest.tip = deviation.tip;
      atTip = i / samples;
    }
    if (deviation.direction > largest.direction) {
      largest.direction = deviation.direction;
      atDirection = i / samples;
    }
  }
  const double step = 1.0 / samples;
  largest.tip =
      SearchLargest(&connection, &SegmentDeviation::tip, atTip - step, atTip + step, largest.tip);
  largest.direction = SearchLargest(&connection, &SegmentDeviation::direction, atDirection - step,
                                    atDirection + step, largest.direction);
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
  while (!ahead.empty()) {
    const Piece piece = ahead.back();
    const SegmentDeviation deviation = ComputeDeviation(solver, current.values, piece.end.values);
    SolvedPoint middle;
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
