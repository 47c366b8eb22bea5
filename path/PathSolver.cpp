#include "path/PathBlocks.h"
#include "path/PathOutput.h"
#include "path/PathPlan.h"
#include "path/PathState.h"
#include "path/Vec3.h"
#include "path/WorkerPool.h"

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Path/PathSolver.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace Orvo::Path {
namespace {

/// Costs of forbidden moves are cut to this, so that sums keep their digits.
constexpr double LargestCost = 1e9;

/// A start farther out of the range of a rotary axis than this counts as this far, in degrees: the
/// turns of a move must be countable.
constexpr double LargestStartExcessDeg = 1e6;

void Require(bool isGood, const char* what) {
  if (!isGood) {
    throw std::invalid_argument(std::string("PathSolver::PathSolver : ") + what);
  }
}

void CheckOptions(PathOptions* options) {
  PathMeasure& measure = options->measure;
  for (std::size_t i = 0; i < MainAxisNb; ++i) {
    Require(measure.weights[i] >= 0.0 && std::isfinite(measure.weights[i]),
            "a weight is negative or no number");
    Require(measure.speeds[i] > 0.0, "a speed is not above 0");
  }
  Require(measure.branchChangeCost >= 0.0 && measure.unwindingCost >= 0.0,
          "a cost is negative or no number");
  measure.branchChangeCost = std::min(measure.branchChangeCost, LargestCost);
  measure.unwindingCost = std::min(measure.unwindingCost, LargestCost);
  Require(options->singularConeDeg >= 0.0 && options->singularConeDeg <= 90.0,
          "the singular cone is not from 0 to 90 degrees");
  Require(options->segments.tipTolerance > 0.0 && options->segments.directionToleranceDeg > 0.0,
          "a tolerance is not above 0");
  Require(options->segments.maxDepth >= 0 && options->segments.maxDepth <= 24,
          "the depth is not from 0 to 24");
  options->blockPoints = std::clamp<std::size_t>(options->blockPoints, 1, 1U << 20U);
  if (options->threadNb == 0) {
    options->threadNb = std::max(1U, std::thread::hardware_concurrency());
  }
  options->threadNb = std::min(options->threadNb, 256U);
}

PathState StartState(const MainAxes& axes, const Kin::MachinePosition& position) {
  PathState start;
  start.values = axes.Take(position);
  for (std::size_t i = FirstRotary; i < MainAxisNb; ++i) {
    const MainAxis& axis = axes.axes[i];
    if (axis.isPresent && axis.isChecked) {
      start.values[i] = std::fmin(std::fmax(start.values[i], axis.min - LargestStartExcessDeg),
                                  axis.max + LargestStartExcessDeg);
    }
  }
  return start;
}

bool HasHeld(const std::vector<std::uint32_t>& steps) {
  return std::any_of(steps.begin(), steps.end(), [](std::uint32_t step) {
    return PathStep::Unpack(step).kind == PathStep::Held;
  });
}

}  // namespace

struct PathSolverImplementation {
  const Kin::Machine* machine;
  Kin::ProgramSystem programSystem;
  Vector3D offset;
  Kin::MachinePosition position;
  PathOptions options;
  std::vector<PointSolver> solvers;  ///< the first is for everything but paths
};

PathSolver::PathSolver(const Kin::Machine& machine, const Kin::ProgramSystem& programSystem,
                       const Vector3D& offset, const Kin::MachinePosition& start,
                       const PathOptions& options)
    : implementation_(std::make_unique<PathSolverImplementation>()) {
  PathSolverImplementation& own = *implementation_;
  own.machine = &machine;
  own.programSystem = programSystem;
  own.offset = offset;
  own.position = start;
  own.options = options;
  CheckOptions(&own.options);
  Require(IsFinite(FromVector(offset)), "the tool offset holds what is no number");
  own.solvers.emplace_back(machine, programSystem, offset, start);
  for (const double value : GetAxes().Take(start)) {
    Require(std::isfinite(value), "a value of the start is no number");
  }
}

PathSolver::PathSolver(PathSolver&& other) noexcept = default;
PathSolver& PathSolver::operator=(PathSolver&& other) noexcept = default;
PathSolver::~PathSolver() = default;

const MainAxes& PathSolver::GetAxes() const { return implementation_->solvers[0].GetAxes(); }

const std::vector<Diagnosis>& PathSolver::GetFindings() const {
  return implementation_->solvers[0].GetFindings();
}

bool PathSolver::IsUsable() const { return implementation_->solvers[0].IsUsable(); }

PathSummary PathSolver::Solve(PointSource& source, const Sink& sink) {
  PathSolverImplementation& own = *implementation_;
  if (!IsUsable()) {
    throw std::logic_error("PathSolver::Solve : the program system can't be computed with");
  }
  while (own.solvers.size() < own.options.threadNb) {
    own.solvers.emplace_back(*own.machine, own.programSystem, own.offset, own.position);
  }
  const PathState start = StartState(GetAxes(), own.position);
  WorkerPool pool(own.options.threadNb);
  PathBlocks blocks(source, pool, own.solvers, own.options);
  const bool isPlain = own.programSystem.GetRotariesCompute() != Kin::RotariesComputeShortestWay;
  const auto planGreedy = [&] {
    return PlanGreedy(blocks, GetAxes(), own.options, start, isPlain);
  };
  std::vector<std::uint32_t> steps = own.options.choice == PathChoice::Greedy
                                         ? planGreedy()
                                         : PlanOptimal(blocks, GetAxes(), own.options, start);
  if (own.options.choice == PathChoice::Optimal &&
      own.options.singularRule == SingularRule::Interpolate && HasHeld(steps)) {
    // Interpolation comes after the choice, and may make the path longer that was shorter before.
    std::vector<std::uint32_t> others = planGreedy();
    const auto measure = [&](const std::vector<std::uint32_t>& chosen) {
      PathOptions plain = own.options;
      plain.hasResiduals = false;
      plain.segments.isChecked = plain.segments.isRefined = false;
      PathSummary sums;
      PathOutput(blocks, pool, own.solvers, plain, chosen)
          .Write(
              start, [](const SolvedPoint&) { return true; }, &sums);
      return std::make_pair(-static_cast<double>(sums.solvedNb), sums.cost);
    };
    if (measure(others) < measure(steps)) {
      steps = std::move(others);
    }
  }
  PathSummary summary;
  PathOutput output(blocks, pool, own.solvers, own.options, steps);
  output.Write(start, sink, &summary);
  return summary;
}

}  // namespace Orvo::Path
