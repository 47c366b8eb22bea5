#include "path/PathOutput.h"

#include "path/PathFindings.h"
#include "path/SegmentMotion.h"
#include "path/Turns.h"
#include "path/Vec3.h"
#include "path/WorkpieceShift.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

namespace Orvo::Path {
namespace {

constexpr std::size_t ChunkPoints = 128;

/// A direction that deviates by less than this was met, in radians.
constexpr double NoDeviation = 1e-12;

}  // namespace

PathOutput::PathOutput(PathBlocks& blocks, WorkerPool& pool, std::vector<PointSolver>& solvers,
                       const PathOptions& options, const std::vector<std::uint32_t>& steps)
    : blocks_(blocks),
      pool_(pool),
      solvers_(solvers),
      options_(options),
      steps_(steps),
      axes_(solvers[0].GetAxes()) {}

void PathOutput::FindStretch(std::uint64_t begin) {
  stretch_ = Stretch();
  stretch_.begin = begin;
  stretch_.end = begin;
  while (stretch_.end < steps_.size() &&
         PathStep::Unpack(steps_[stretch_.end]).kind == PathStep::Held) {
    ++stretch_.end;
  }
  const auto freeAxis = static_cast<std::size_t>(solvers_[0].GetFreeAxis());
  stretch_.fromDeg = state_.values[freeAxis];
  stretch_.toDeg = stretch_.fromDeg;
  if ((options_.isStartFree && begin <= firstSolved_) || stretch_.end == steps_.size()) {
    return;
  }
  const PathStep exit = PathStep::Unpack(steps_[stretch_.end]);
  if (exit.kind == PathStep::None) {
    return;
  }
  const std::uint64_t blockPoints = std::max<std::size_t>(options_.blockPoints, 1);
  const std::shared_ptr<const PathBlock> block =
      blocks_.Get(static_cast<std::size_t>(stretch_.end / blockPoints));
  PathState behind;
  TakeStep(axes_, block->answers[static_cast<std::size_t>(stretch_.end - block->first)], exit,
           state_, &behind);
  stretch_.toDeg = behind.values[freeAxis];
}

void PathOutput::ChooseHeld(const PathBlock& block, std::size_t i, const PathStep& step,
                            SolvedPoint* point) {
  const ToolPoint& target = block.points[i];
  const std::uint64_t index = block.first + i;
  const auto freeAxis = static_cast<std::size_t>(solvers_[0].GetFreeAxis());
  if (options_.singularRule == SingularRule::Interpolate &&
      !(index > stretch_.begin && index < stretch_.end)) {
    FindStretch(index);
  }
  PathState held;
  double deviation = 0.0;
  HoldState(blocks_.GetSolver(), target, state_, {}, &held, &deviation);
  TurnHeld(blocks_.GetSolver(), step, &held);
  point->values = held.values;
  point->deviation = deviation;
  if (options_.singularRule == SingularRule::Interpolate && stretch_.toDeg != stretch_.fromDeg) {
    const auto standAt = [&](double deg) {
      PathState from = state_;
      from.values[freeAxis] = deg;
      PathState between;
      const bool isIn = HoldState(blocks_.GetSolver(), target, from, {}, &between, &deviation);
      if (isIn) {
        TurnHeld(blocks_.GetSolver(), step, &between);
        point->values = between.values;
        point->deviation = deviation;
      }
      return isIn;
    };
    const double share = static_cast<double>(index + 1 - stretch_.begin) /
                         static_cast<double>(stretch_.end + 1 - stretch_.begin);
    if (!stretch_.isStopped &&
        !standAt(stretch_.fromDeg + (stretch_.toDeg - stretch_.fromDeg) * share)) {
      stretch_.isStopped = true;
      stretch_.fromDeg = index > stretch_.begin ? lastOut_.values[freeAxis] : stretch_.fromDeg;
    }
    if (stretch_.isStopped) {
      standAt(stretch_.fromDeg);
    }
  }
  held.cost = state_.cost;
  state_ = held;
  point->isHeld = true;
}

void PathOutput::Choose(const PathBlock& block, std::vector<SolvedPoint>* points) {
  for (std::size_t i = 0; i < block.points.size(); ++i) {
    SolvedPoint& point = (*points)[i];
    point = SolvedPoint();
    point.index = block.first + i;
    point.target = block.points[i];
    const PathStep step = PathStep::Unpack(steps_[point.index]);
    PathState before = state_;
    if (hasLast_) {
      before.values = lastOut_.values;
    }
    if (step.kind == PathStep::None) {
      point.values = before.values;
      point.branch = state_.branch;
      lastOut_ = point;
      hasLast_ = true;
      continue;
    }
    if (step.kind == PathStep::Held) {
      ChooseHeld(block, i, step, &point);
    } else {
      PathState to;
      TakeStep(axes_, block.answers[i], step, state_, &to);
      state_ = to;
      point.values = to.values;
    }
    point.isSolved = true;
    point.branch = state_.branch;
    firstSolved_ = std::min(firstSolved_, point.index);
    const bool isFree = options_.isStartFree && point.index == firstSolved_;
    point.cost = isFree ? 0.0 : CostOfMove(options_.measure, before, point.values, point.branch);
    point.isBranchChange = !isFree && before.branch * point.branch < 0;
    point.isUnwinding = !isFree && IsUnwinding(before.values, point.values);
    lastOut_.values = point.values;
    hasLast_ = true;
  }
}

// How far the tool leaves the straight way between two solved points, and points against that.
void PathOutput::FinishSegment(PointSolver& solver, const MoveStart& before, SolvedPoint* point,
                               std::vector<SolvedPoint>* inserted) const {
  const SegmentOptions& segments = options_.segments;
  if (segments.isRefined && !point->target.isRapid) {
    SegmentDeviation left;
    *inserted = Refine(solver, options_, before, *point, &left);
    const AxisValues& from = inserted->empty() ? before.values : inserted->back().values;
    const SegmentDeviation own = ComputeDeviation(solver, from, point->values);
    point->tipDeviation = own.tip;
    point->directionDeviation = own.direction;
    if (left.tip > segments.tipTolerance ||
        left.direction > RadFromDeg(segments.directionToleranceDeg)) {
      point->diagnoses.push_back(FindSegmentDeviation(left.tip, left.direction));
    }
  } else if (segments.isChecked || segments.isRefined) {
    const SegmentDeviation deviation = ComputeDeviation(solver, before.values, point->values);
    point->tipDeviation = deviation.tip;
    point->directionDeviation = deviation.direction;
    if (!point->target.isRapid &&
        (deviation.tip > segments.tipTolerance ||
         deviation.direction > RadFromDeg(segments.directionToleranceDeg))) {
      point->diagnoses.push_back(FindSegmentDeviation(deviation.tip, deviation.direction));
    }
  }
}

// A move begins where the tool stands: at the point before, elsewhere where that has no answer.
void PathOutput::FinishMove(PointSolver& solver, const Answers& answers, const SolvedPoint& before,
                            SolvedPoint* point, std::vector<SolvedPoint>* inserted) const {
  MoveStart begin(before);
  if (before.isSolved) {
    FinishSegment(solver, begin, point, inserted);
  } else {
    solver.ComputeTool(begin.values, &begin.target.point, &begin.target.direction);
  }
  MoveStart from = begin;
  for (SolvedPoint& between : *inserted) {
    between.inverseTime = ComputeInverseTime(options_.measure, from, between);
    if (options_.hasResiduals) {
      between.residual = solver.Check(between.target, between.values);
    }
    from = MoveStart(between);
  }
  point->inverseTime = ComputeInverseTime(options_.measure, from, *point);
  AddJumpFindings(axes_, begin, point);
  AddNearSingular(solver, options_, answers, begin, point);
}

void PathOutput::FinishPoint(PointSolver& solver, const Answers& answers, const SolvedPoint& before,
                             SolvedPoint* point, std::vector<SolvedPoint>* inserted) const {
  inserted->clear();
  if (!point->isSolved) {
    point->diagnoses.push_back(solver.Explain(point->target, answers));
  } else {
    if (options_.hasResiduals) {
      point->residual = solver.Check(point->target, point->values);
    }
    if (point->isHeld && point->deviation > NoDeviation) {
      point->diagnoses.push_back(FindHeldAxis(solver, point->deviation));
    }
    if (point->index != firstSolved_) {
      FinishMove(solver, answers, before, point, inserted);
    } else {
      AddJumpFindings(axes_, MoveStart(before), point);
    }
  }
  for (Diagnosis& diagnosis : point->diagnoses) {
    diagnosis.point = point->index;
    diagnosis.line = point->target.line;
  }
}

void PathOutput::Finish(const PathBlock& block, std::vector<SolvedPoint>* points) {
  inserted_.resize(std::max(inserted_.size(), points->size()));
  pool_.Run(points->size(), ChunkPoints,
            [&](std::size_t worker, std::size_t begin, std::size_t end) {
              for (std::size_t i = begin; i < end; ++i) {
                FinishPoint(solvers_[worker], block.answers[i], i > 0 ? (*points)[i - 1] : last_,
                            &(*points)[i], &inserted_[i]);
              }
            });
}

void PathOutput::Add(const SolvedPoint& point, PathSummary* summary) const {
  summary->largestTipDeviation = std::max(summary->largestTipDeviation, point.tipDeviation);
  summary->largestDirectionDeviation =
      std::max(summary->largestDirectionDeviation, point.directionDeviation);
  if (point.isSolved) {
    summary->largestResidual.tip = std::max(summary->largestResidual.tip, point.residual.tip);
    if (!(point.deviation > NoDeviation)) {
      summary->largestResidual.direction =
          std::max(summary->largestResidual.direction, point.residual.direction);
    }
  }
  if (point.isInserted) {
    ++summary->insertedNb;
    return;
  }
  ++summary->pointNb;
  for (const Diagnosis& diagnosis : point.diagnoses) {
    ++summary->diagnosisNb[diagnosis.GetCode()];
  }
  if (!point.isSolved) {
    return;
  }
  for (std::size_t i = 0; i < MainAxisNb; ++i) {
    const bool isFirst = summary->solvedNb == 0;
    summary->smallest[i] =
        isFirst ? point.values[i] : std::min(summary->smallest[i], point.values[i]);
    summary->largest[i] =
        isFirst ? point.values[i] : std::max(summary->largest[i], point.values[i]);
  }
  ++summary->solvedNb;
  summary->heldNb += point.isHeld ? 1 : 0;
  summary->branchChangeNb += point.isBranchChange ? 1 : 0;
  summary->unwindingNb += point.isUnwinding ? 1 : 0;
  summary->largestDeviation = std::max(summary->largestDeviation, point.deviation);
  summary->cost += point.cost;
}

void PathOutput::Write(const PathState& start, const PathSolver::Sink& sink, PathSummary* summary) {
  state_ = start;
  hasLast_ = false;
  firstSolved_ = NoPoint;
  last_ = SolvedPoint();
  last_.values = start.values;
  AxisValues before = start.values;
  bool isWanted = true;
  std::vector<SolvedPoint> points;
  for (std::size_t b = 0; isWanted; ++b) {
    const std::shared_ptr<const PathBlock> block = blocks_.Get(b);
    if (block == nullptr) {
      break;
    }
    points.resize(block->points.size());
    Choose(*block, &points);
    Finish(*block, &points);
    for (std::size_t i = 0; i < points.size() && isWanted; ++i) {
      for (const SolvedPoint& point : inserted_[i]) {
        Add(point, summary);
        isWanted = isWanted && sink(point);
      }
      for (std::size_t k = 0; k < MainAxisNb && points[i].index > firstSolved_; ++k) {
        summary->travel[k] += std::abs(points[i].values[k] - before[k]);
      }
      before = points[i].values;
      Add(points[i], summary);
      isWanted = isWanted && sink(points[i]);
    }
    last_ = points.back();
  }
  if (isWanted) {
    FindShift(start, summary);
  }
}

void PathOutput::FindShift(const PathState& start, PathSummary* summary) {
  std::uint64_t failures = 0;
  for (const auto& [code, count] : summary->diagnosisNb) {
    failures += static_cast<int>(code) < 200 ? count : 0;
  }
  const auto found = summary->diagnosisNb.find(DiagnosisCode::LinearRange);
  if (found == summary->diagnosisNb.end() || found->second != failures) {
    return;
  }
  WorkpieceShift shift;
  state_ = start;
  hasLast_ = false;
  firstSolved_ = NoPoint;
  std::vector<SolvedPoint> points;
  PointSolver& solver = blocks_.GetSolver();
  for (std::size_t b = 0;; ++b) {
    const std::shared_ptr<const PathBlock> block = blocks_.Get(b);
    if (block == nullptr) {
      break;
    }
    points.resize(block->points.size());
    Choose(*block, &points);
    for (std::size_t i = 0; i < points.size(); ++i) {
      const AxisValues* const values =
          points[i].isSolved ? &points[i].values : FindNearestLinear(axes_, block->answers[i]);
      std::array<Vector3D, 3> slopes;
      if (values == nullptr || !solver.ComputeLinearSlopes(*values, &slopes)) {
        return;
      }
      for (std::size_t k = 0; k < 3; ++k) {
        const MainAxis& axis = axes_.axes[k];
        if (axis.isChecked) {
          shift.Add(FromVector(slopes[k]), axis.max - (*values)[k]);
          shift.Add(FromVector(slopes[k]) * -1.0, (*values)[k] - axis.min);
        }
      }
    }
  }
  Vec3 move;
  summary->hasShift = shift.Find(&move);
  if (summary->hasShift) {
    summary->shift = ToVector(move);
  }
}

}  // namespace Orvo::Path
