#include "path/PathPlan.h"

#include "path/TurnLattice.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>

namespace Orvo::Path {
namespace {

using Mode = TurnLattice::Mode;

/// What rounding may make of two equal sums.
double RoundingOf(double cost) { return 1e-9 + 1e-12 * std::abs(cost); }

/// Which states were reached in a block, and from which.
struct BlockLog {
  std::vector<std::uint32_t> firstOf;  ///< by point: the place of its first state
  std::vector<std::uint32_t> choice;
  std::vector<std::uint32_t> previous;

  bool IsEmpty() const { return firstOf.empty(); }
  std::size_t GetBytes() const {
    return sizeof(std::uint32_t) * (firstOf.size() + choice.size() + previous.size());
  }
  void Add(const std::vector<PathState>& states) {
    firstOf.push_back(static_cast<std::uint32_t>(choice.size()));
    for (const PathState& state : states) {
      choice.push_back(state.choice);
      previous.push_back(state.previous);
    }
  }
};

/// What is needed to go through a block once more.
struct BlockStart {
  std::vector<PathState> states;
  std::vector<PathState> relaxed;
  bool isApproach = false;  ///< whether no point before it has an answer
  BlockLog log;
};

/// One way of going through all points, forth with costs and back along the best of them.
class Sweep {
 public:
  Sweep(PathBlocks& blocks, const MainAxes& axes, const PathOptions& options, Mode mode,
        double excess)
      : blocks_(blocks),
        options_(options),
        mode_(mode),
        excess_(excess),
        lattice_(axes, options.measure, mode),
        relaxed_(axes, options.measure, Mode::Relaxed) {}

  /// Goes forth; returns the cost of the best path.
  double Forth(const PathState& start) {
    isApproach_ = true;
    lattice_.Start({start});
    relaxed_.Start({start});
    std::size_t logBytes = 0;
    std::size_t firstLogged = 0;
    for (std::size_t b = 0;; ++b) {
      const std::shared_ptr<const PathBlock> block = blocks_.Get(b);
      if (block == nullptr) {
        break;
      }
      starts_.push_back({lattice_.GetStates(), relaxed_.GetStates(), isApproach_, {}});
      Pass(*block, &starts_.back().log);
      pointNb_ += block->points.size();
      logBytes += starts_.back().log.GetBytes();
      // The blocks met first on the way back are the last ones: theirs stay.
      while (logBytes > options_.cacheBytes / 2 && firstLogged < b) {
        logBytes -= starts_[firstLogged].log.GetBytes();
        starts_[firstLogged++].log = BlockLog();
      }
    }
    return lattice_.GetBestCost();
  }

  double GetRelaxedCost() const { return relaxed_.GetBestCost(); }

  /// Goes back; returns the steps of the best path.
  std::vector<std::uint32_t> Back() {
    std::vector<std::uint32_t> steps(pointNb_);
    std::size_t place = lattice_.FindBest();
    std::size_t end = pointNb_;
    for (std::size_t b = starts_.size(); b-- > 0;) {
      BlockLog& log = starts_[b].log;
      if (log.IsEmpty()) {
        lattice_.Start(starts_[b].states);
        relaxed_.Start(starts_[b].relaxed);
        isApproach_ = starts_[b].isApproach;
        Pass(*blocks_.Get(b), &log);
      }
      for (std::size_t i = log.firstOf.size(); i-- > 0;) {
        const std::size_t entry = log.firstOf[i] + place;
        steps[--end] = log.choice[entry];
        place = log.previous[entry];
      }
      starts_[b] = BlockStart();
    }
    return steps;
  }

 private:
  void Pass(const PathBlock& block, BlockLog* log) {
    for (std::size_t i = 0; i < block.points.size(); ++i) {
      const Answers& answers = block.answers[i];
      const bool isHeld = blocks_.IsHeld(answers);
      const bool isApproach = options_.isStartFree && isApproach_;
      relaxed_.Step(blocks_.GetSolver(), block.points[i], answers, isHeld, isApproach, nullptr,
                    0.0);
      lattice_.Step(blocks_.GetSolver(), block.points[i], answers, isHeld, isApproach,
                    mode_ == Mode::Complete ? &relaxed_ : nullptr, excess_);
      log->Add(lattice_.GetStates());
      isApproach_ = isApproach_ && lattice_.IsUnmoved();
    }
  }

  PathBlocks& blocks_;
  const PathOptions& options_;
  Mode mode_;
  double excess_;
  TurnLattice lattice_;
  TurnLattice relaxed_;
  bool isApproach_ = true;  ///< whether no point so far has an answer
  std::vector<BlockStart> starts_;
  std::size_t pointNb_ = 0;
};

double SumOfTurns(const PathState& from, const PathState& to) {
  return std::abs(to.values[FirstRotary] - from.values[FirstRotary]) +
         std::abs(to.values[FirstRotary + 1] - from.values[FirstRotary + 1]);
}

}  // namespace

std::vector<std::uint32_t> PlanGreedy(PathBlocks& blocks, const MainAxes& axes,
                                      const PathOptions& options, const PathState& start,
                                      bool isPlain) {
  std::vector<std::uint32_t> steps;
  TurnLattice lattice(axes, options.measure, isPlain ? Mode::Plain : Mode::Lazy);
  std::vector<PathState> current = {start};
  for (std::size_t b = 0;; ++b) {
    const std::shared_ptr<const PathBlock> block = blocks.Get(b);
    if (block == nullptr) {
      return steps;
    }
    for (std::size_t i = 0; i < block->points.size(); ++i) {
      lattice.Start(current);
      lattice.Step(blocks.GetSolver(), block->points[i], block->answers[i],
                   blocks.IsHeld(block->answers[i]), false, nullptr, 0.0);
      const std::vector<PathState>& next = lattice.GetStates();
      std::size_t best = 0;
      for (std::size_t s = 1; s < next.size(); ++s) {
        best = SumOfTurns(current[0], next[s]) < SumOfTurns(current[0], next[best]) ? s : best;
      }
      steps.push_back(next[best].choice);
      current[0] = next[best];
    }
  }
}

// With the nearest equivalents alone the path is the best one whenever ranges never get in the way:
// its cost then is that of the relaxed path. Where they do, it gives the bound within which all
// equivalents are gone through.
std::vector<std::uint32_t> PlanOptimal(PathBlocks& blocks, const MainAxes& axes,
                                       const PathOptions& options, const PathState& start) {
  double excess = 0.0;
  {
    Sweep lazy(blocks, axes, options, Mode::Lazy, 0.0);
    const double cost = lazy.Forth(start);
    excess = cost - lazy.GetRelaxedCost();
    if (!(excess > RoundingOf(cost))) {
      return lazy.Back();
    }
    excess += RoundingOf(cost);
  }
  Sweep complete(blocks, axes, options, Mode::Complete, excess);
  complete.Forth(start);
  return complete.Back();
}

}  // namespace Orvo::Path
