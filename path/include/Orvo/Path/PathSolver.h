#pragma once

#include <Orvo/Path/Diagnosis.h>
#include <Orvo/Path/Export.h>
#include <Orvo/Path/MainAxes.h>
#include <Orvo/Path/PathOptions.h>
#include <Orvo/Path/PointSource.h>
#include <Orvo/Path/SolvedPoint.h>
#include <Orvo/Vector3D.h>

#include <functional>
#include <memory>
#include <vector>

namespace Orvo::Kin {
class Machine;
class MachinePosition;
class ProgramSystem;
}  // namespace Orvo::Kin

namespace Orvo::Path {

struct PathSolverImplementation;

/// Turns whole tool paths into axis values.
///
/// Optimal paths come from dynamic programming (Bellman, "Dynamic Programming", 1957) over what is
/// there at each point: both solutions, and their equivalents by whole turns. The result is the
/// best one there is within the ranges, by the measure of the options, so no worse than the greedy
/// one. Equivalents are taken up only where a bound on the rest of the path says that they might be
/// needed; of each axis, 1024 at most around the nearest one.
///
/// In singular directions the free axis stays where it is. Where a range forbids that, it goes to
/// the nearest value that will do, or to the middle of the widest range of such values; those
/// between are not gone through. Interpolated stretches are chosen as if held; where the greedy
/// path is the better one then, that is taken.
///
/// A source is read several times, block by block: memory is 4 bytes a point, and the cache that
/// the options allow. Results are the same whatever the number of threads and the size of blocks.
///
/// The machine must outlive the solver and not change meanwhile. One thread per solver; it starts
/// its own for each path, with a calculator each.
class ORVO_PATH_API PathSolver {
 public:
  /// Takes each point of the result, in order; false ends the solution.
  using Sink = std::function<bool(const SolvedPoint&)>;

  /// @param machine        a finished machine
  /// @param programSystem  one of its program systems
  /// @param offset         the tool point lies at minus this in the head's frame: (0, 0, L) for a
  ///   tool of the length L
  /// @param start          where the axes stand before the first point; a rotary axis more than a
  ///   million degrees out of its range counts as that far out
  /// @param options        how to solve
  /// @throws std::invalid_argument for options or a start that hold what can't be computed with
  PathSolver(const Kin::Machine& machine, const Kin::ProgramSystem& programSystem,
             const Vector3D& offset, const Kin::MachinePosition& start, const PathOptions& options);

  /// Takes over; the other one may only be destroyed or assigned to afterwards.
  PathSolver(PathSolver&& other) noexcept;

  /// Takes over, in place of what this one was.
  PathSolver& operator=(PathSolver&& other) noexcept;
  ~PathSolver();

  /// Returns the axes.
  const MainAxes& GetAxes() const;

  /// Returns what is to be said of the program system, see PointSolver::GetFindings().
  const std::vector<Diagnosis>& GetFindings() const;

  /// Tells whether the program system can be computed with.
  bool IsUsable() const;

  /// Solves a path, from the source's beginning.
  ///
  /// A point without an answer within the ranges leaves the axes where they are; the path goes on
  /// from there.
  /// @throws ReadError as the source does; std::logic_error when the program system can't be
  ///   computed with; what the sink throws
  PathSummary Solve(PointSource& source, const Sink& sink);

 private:
  std::unique_ptr<PathSolverImplementation> implementation_;
};

}  // namespace Orvo::Path
