#pragma once

#include "path/WorkerPool.h"

#include <Orvo/Path/PathOptions.h>
#include <Orvo/Path/PointSolver.h>
#include <Orvo/Path/PointSource.h>
#include <Orvo/Path/ToolPoint.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace Orvo::Path {

/// Some consecutive points of a path with their answers.
struct PathBlock {
  std::uint64_t first = 0;
  std::vector<ToolPoint> points;
  std::vector<Answers> answers;
};

/// Hands out the blocks of a path in any order, with answers that all workers compute together; the
/// first ones are kept as long as there is room.
class PathBlocks {
 public:
  PathBlocks(PointSource& source, WorkerPool& pool, std::vector<PointSolver>& solvers,
             const PathOptions& options);

  /// Returns a block; null behind the last one. Blocks are found one after the other at first.
  std::shared_ptr<const PathBlock> Get(std::size_t index);

  /// Tells whether a point lies in a singular stretch.
  bool IsHeld(const Answers& answers) const { return answers.singularAngle <= cone_; }

  /// For work that one thread does.
  PointSolver& GetSolver() { return solvers_[0]; }

 private:
  PointSource& source_;
  WorkerPool& pool_;
  std::vector<PointSolver>& solvers_;
  std::size_t blockPoints_;
  std::size_t cacheBytes_;
  double cone_;
  std::vector<std::shared_ptr<const SourcePlace>> places_;
  std::size_t atBlock_ = 0;
  std::map<std::size_t, std::shared_ptr<const PathBlock>> cache_;
  std::size_t usedBytes_ = 0;
};

}  // namespace Orvo::Path
