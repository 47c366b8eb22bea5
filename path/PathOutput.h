#pragma once

#include "path/PathBlocks.h"
#include "path/PathState.h"
#include "path/SegmentMotion.h"
#include "path/WorkerPool.h"

#include <Orvo/Path/PathOptions.h>
#include <Orvo/Path/PathSolver.h>
#include <Orvo/Path/SolvedPoint.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Orvo::Path {

/// Turns the steps that were chosen along a path into points, diagnoses and sums.
class PathOutput {
 public:
  PathOutput(PathBlocks& blocks, WorkerPool& pool, std::vector<PointSolver>& solvers,
             const PathOptions& options, const std::vector<std::uint32_t>& steps);

  /// Goes along the path and hands out its points.
  void Write(const PathState& start, const PathSolver::Sink& sink, PathSummary* summary);

 private:
  static constexpr std::uint64_t NoPoint = ~std::uint64_t{0};

  /// A singular stretch that is interpolated: from the point begin to the one before end.
  struct Stretch {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    double fromDeg = 0.0;
    double toDeg = 0.0;
    bool isStopped = false;  ///< by a range; the free axis stays at fromDeg from there on
  };

  void Choose(const PathBlock& block, std::vector<SolvedPoint>* points);
  void ChooseHeld(const PathBlock& block, std::size_t i, const PathStep& step, SolvedPoint* point);
  void FindStretch(std::uint64_t begin);
  void Finish(const PathBlock& block, std::vector<SolvedPoint>* points);
  void FinishPoint(PointSolver& solver, const Answers& answers, const SolvedPoint& before,
                   SolvedPoint* point, std::vector<SolvedPoint>* inserted) const;
  void FinishSegment(PointSolver& solver, const MoveStart& before, SolvedPoint* point,
                     std::vector<SolvedPoint>* inserted) const;
  void FinishMove(PointSolver& solver, const Answers& answers, const SolvedPoint& before,
                  SolvedPoint* point, std::vector<SolvedPoint>* inserted) const;
  void Add(const SolvedPoint& point, PathSummary* summary) const;
  void FindShift(const PathState& start, PathSummary* summary);

  PathBlocks& blocks_;
  WorkerPool& pool_;
  std::vector<PointSolver>& solvers_;
  const PathOptions& options_;
  const std::vector<std::uint32_t>& steps_;
  const MainAxes& axes_;

  PathState state_;      ///< along the chosen steps, with free axes held
  SolvedPoint last_;     ///< the last point of the block before
  SolvedPoint lastOut_;  ///< the one before the current, as it came out
  bool hasLast_ = false;
  std::uint64_t firstSolved_ = NoPoint;  ///< the first point with an answer
  Stretch stretch_;
  std::vector<std::vector<SolvedPoint>> inserted_;  ///< by point of the block
};

}  // namespace Orvo::Path
