#include "path/PathBlocks.h"

#include "path/Vec3.h"

#include <algorithm>

namespace Orvo::Path {
namespace {

/// A direction this near to a singular one can't be told from it, in radians.
constexpr double SameDirection = 1e-12;

/// How many points a worker takes at once.
constexpr std::size_t ChunkPoints = 256;

}  // namespace

PathBlocks::PathBlocks(PointSource& source, WorkerPool& pool, std::vector<PointSolver>& solvers,
                       const PathOptions& options)
    : source_(source),
      pool_(pool),
      solvers_(solvers),
      blockPoints_(std::max<std::size_t>(options.blockPoints, 1)),
      cacheBytes_(options.cacheBytes / 2),
      cone_(solvers[0].GetFreeAxis() >= 0
                ? std::max(RadFromDeg(options.singularConeDeg), SameDirection)
                : -1.0) {
  source_.Return(nullptr);
  places_.push_back(source_.Mark());
}

std::shared_ptr<const PathBlock> PathBlocks::Get(std::size_t index) {
  const auto cached = cache_.find(index);
  if (cached != cache_.end()) {
    return cached->second;
  }
  if (index != atBlock_) {
    source_.Return(places_.at(index));
    atBlock_ = index;
  }
  auto block = std::make_shared<PathBlock>();
  block->first = static_cast<std::uint64_t>(index) * blockPoints_;
  block->points.resize(blockPoints_);
  std::size_t count = 0;
  while (count < blockPoints_) {
    const std::size_t read = source_.Read(block->points.data() + count, blockPoints_ - count);
    if (read == 0) {
      break;
    }
    count += read;
  }
  block->points.resize(count);
  if (count == 0) {
    return nullptr;
  }
  ++atBlock_;
  if (places_.size() == atBlock_) {
    places_.push_back(source_.Mark());
  }
  block->answers.resize(count);
  pool_.Run(count, ChunkPoints,
            [this, &block](std::size_t worker, std::size_t begin, std::size_t end) {
              for (std::size_t i = begin; i < end; ++i) {
                block->answers[i] = solvers_[worker].Solve(block->points[i]);
              }
            });
  const std::size_t bytes = count * (sizeof(ToolPoint) + sizeof(Answers));
  if (usedBytes_ + bytes <= cacheBytes_) {
    usedBytes_ += bytes;
    cache_.emplace(index, block);
  }
  return block;
}

}  // namespace Orvo::Path
