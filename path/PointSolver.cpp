#include "path/FreeAxis.h"
#include "path/PointSolverImplementation.h"
#include "path/Polish.h"
#include "path/SystemFindings.h"
#include "path/TextLines.h"
#include "path/Turns.h"

#include <Orvo/Kin/Machine.h>
#include <Orvo/Matrix43.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace Orvo::Path {
namespace {

/// Farther from the direction asked for is no answer, in radians.
constexpr double LargestDirectionError = 1e-6;

/// Two answers nearer than this in both angles, in radians, are one.
constexpr double SameAngle = 1e-9;

/// A direction nearer to a singular one than this, in radians, is singular.
constexpr double SingularTolerance = 1e-12;

Kin::MachinePosition BaseOf(const Kin::Machine& machine, const MainAxes& axes,
                            const Kin::MachinePosition& position) {
  Kin::MachinePosition base;
  machine.Alloc(&base);
  for (int i = 0; i < static_cast<int>(std::min(base.Size(), position.Size())); ++i) {
    base[i] = position[i];
  }
  axes.Put(AxisValues(), &base);
  return base;
}

bool IsSameAngle(double a, double b) {
  return std::abs(std::remainder(a - b, 2.0 * Pi)) < SameAngle;
}

}  // namespace

bool TakeRequest(const ToolPoint& point, Vec3* tip, Vec3* direction) {
  double ijk[] = {point.direction[0], point.direction[1], point.direction[2]};
  *tip = FromVector(point.point);
  if (!IsFinite(*tip) || !IsFinite(FromVector(point.direction)) || !MakeDirection(ijk)) {
    return false;
  }
  *direction = {ijk[0], ijk[1], ijk[2]};
  return true;
}

PointSolverImplementation::PointSolverImplementation(const Kin::Machine& machine,
                                                     const Kin::ProgramSystem& system,
                                                     const Vector3D& toolOffset,
                                                     const Kin::MachinePosition& position)
    : compute(machine),
      programSystem(system),
      axes(machine, system),
      offset(toolOffset),
      base(BaseOf(machine, axes, position)),
      start(axes.Take(position)),
      scratch(base),
      model(compute, programSystem, axes, base, offset),
      reach(model, axes),
      findings(FindMisfits(machine, programSystem, axes)) {}

int PointSolverImplementation::FindSeeds(const Vec3& direction, double singularAngle,
                                         Seeds* seeds) {
  Kin::RotariesSolution solution;
  int count = 0;
  if (compute.ComputeToolIjkTcsToMcsAbc(
          base, programSystem.GetHeadIndex(), programSystem.GetTableIndex(), ToVector(direction),
          programSystem.GetMainRotary(0), programSystem.GetMainRotary(1), &solution)) {
    count = static_cast<int>(solution.Count);
    (*seeds)[0] = {solution.Alpha1.GetRadian(), solution.Beta1.GetRadian()};
    (*seeds)[1] = {solution.Alpha2.GetRadian(), solution.Beta2.GetRadian()};
  }
  // Near a singular direction the calculator's tolerances leave the free axis anywhere, and take
  // two solutions for one where they meet.
  constexpr double nearSingular = 1e-3;
  const bool isWhole = count == 2 && solution.FreeRegister < 0 && singularAngle > nearSingular;
  if (reach.IsValid() && !(isWhole && reach.HasInner())) {
    // An axis too many stays where it is at the start: one that does not move the direction, or one
    // parallel to the other.
    Seeds exact;
    exact[0] = {RadFromDeg(start[FirstRotary]), RadFromDeg(start[FirstRotary + 1])};
    exact[1] = exact[0];
    const int exactCount = reach.Solve(model, direction, &exact);
    if (exactCount > 0) {
      *seeds = exact;
      count = exactCount;
    }
  }
  return count;
}

void PointSolverImplementation::Rate(Answer* answer) const {
  answer->isRotaryInRange = true;
  answer->isLinearInRange = answer->hasLinear;
  for (std::size_t i = 0; i < MainAxisNb; ++i) {
    if (i >= FirstRotary) {
      answer->isRotaryInRange =
          answer->isRotaryInRange && !TurnsInRange(axes.axes[i], answer->values[i]).IsEmpty();
    } else {
      answer->isLinearInRange =
          answer->isLinearInRange && ExcessOf(axes.axes[i], answer->values[i]) == 0.0;
    }
  }
}

bool PointSolverImplementation::CompleteByCalculator(const Vec3& point, Answer* answer) {
  scratch = base;
  axes.Put(answer->values, &scratch);
  Vector3D xyz;
  answer->hasLinear = compute.ComputeToolTcsToMcsXyz(
      scratch, programSystem.GetHeadIndex(), programSystem.GetTableIndex(), offset,
      axes.axes[0].reg, axes.axes[1].reg, axes.axes[2].reg, ToVector(point), &xyz);
  answer->hasLinear = answer->hasLinear && IsFinite(FromVector(xyz));
  for (std::size_t i = 0; i < FirstRotary && answer->hasLinear; ++i) {
    answer->values[i] = xyz[static_cast<int>(i)];
  }
  return answer->hasLinear;
}

bool PointSolverImplementation::Complete(const Vec3& point, const std::array<double, 2>& rad,
                                         Answer* answer) {
  for (std::size_t i = 0; i < 2; ++i) {
    answer->values[FirstRotary + i] =
        axes.axes[FirstRotary + i].isPresent ? DegFromRad(rad[i]) : 0.0;
  }
  if (!model.IsValid()) {
    return CompleteByCalculator(point, answer);
  }
  answer->hasLinear = model.SolveLinear(ChainModel::MakeTrig(rad), point, answer->values.data());
  for (std::size_t i = 0; i < FirstRotary && !answer->hasLinear; ++i) {
    answer->values[i] = 0.0;
  }
  return answer->hasLinear;
}

bool PointSolverImplementation::Hold(const Vec3& tip, const Vec3& direction, double heldDeg,
                                     Answer* answer) {
  *answer = Answer();
  std::array<double, 2> rad = {};
  rad[reach.GetOuter()] = RadFromDeg(heldDeg);
  reach.SolveHeld(model, direction, &rad);
  const bool hasLinear = Complete(tip, rad, answer);
  answer->values[FirstRotary + reach.GetOuter()] = heldDeg;
  const Vec3 reached = model.Direction(ChainModel::MakeTrig(rad));
  answer->directionError = AngleBetween(reached, direction);
  Rate(answer);
  return hasLinear;
}

PointSolver::PointSolver(const Kin::Machine& machine, const Kin::ProgramSystem& programSystem,
                         const Vector3D& offset, const Kin::MachinePosition& position)
    : implementation_(
          std::make_unique<PointSolverImplementation>(machine, programSystem, offset, position)) {
  PointSolverImplementation& own = *implementation_;
  if (own.findings.empty()) {
    AddChainFindings(&own);
  }
  own.isUsable = std::none_of(own.findings.begin(), own.findings.end(),
                              [](const Diagnosis& d) { return d.IsFailure(); });
}

PointSolver::PointSolver(PointSolver&& other) noexcept = default;
PointSolver& PointSolver::operator=(PointSolver&& other) noexcept = default;
PointSolver::~PointSolver() = default;

const MainAxes& PointSolver::GetAxes() const { return implementation_->axes; }
const std::vector<Diagnosis>& PointSolver::GetFindings() const { return implementation_->findings; }
bool PointSolver::IsUsable() const { return implementation_->isUsable; }

int PointSolver::GetFreeAxis() const {
  const RotaryReach& reach = implementation_->reach;
  return reach.IsValid() && reach.HasInner() ? static_cast<int>(FirstRotary + reach.GetOuter())
                                             : -1;
}

Answers PointSolver::Solve(const ToolPoint& point) {
  PointSolverImplementation& own = *implementation_;
  Answers result;
  Vec3 tip;
  Vec3 direction;
  if (!TakeRequest(point, &tip, &direction)) {
    return result;
  }
  if (own.reach.IsValid() && own.reach.HasInner() && own.reach.ReachesPole(direction)) {
    result.singularAngle = own.reach.SingularAngle(direction);
  }
  PointSolverImplementation::Seeds seeds;
  const int seedNb = own.FindSeeds(direction, result.singularAngle, &seeds);
  std::array<double, 2> first = {};
  for (int i = 0; i < seedNb; ++i) {
    std::array<double, 2>& rad = seeds[static_cast<std::size_t>(i)];
    Answer& answer = result.answers[static_cast<std::size_t>(result.count)];
    answer = Answer();
    if (own.model.IsValid()) {
      answer.directionError = Polish(own.model, direction, &rad);
      answer.branch = BranchOf(own.model, rad);
    }
    if (result.count == 1 && IsSameAngle(rad[0], first[0]) && IsSameAngle(rad[1], first[1])) {
      continue;
    }
    // One turn at most: where the angles came from does not show.
    rad = {std::remainder(rad[0], 2.0 * Pi), std::remainder(rad[1], 2.0 * Pi)};
    own.Complete(tip, rad, &answer);
    if (!own.model.IsValid()) {
      answer.directionError = Check(point, answer.values).direction;
    }
    if (!(answer.directionError <= LargestDirectionError)) {
      continue;
    }
    own.Rate(&answer);
    first = rad;
    ++result.count;
  }
  const auto isInRange = [](const Answer& answer) { return answer.IsInRange(); };
  if (result.singularAngle <= SingularTolerance &&
      std::none_of(result.answers.begin(), result.answers.begin() + result.count, isInRange)) {
    FindFreeAnswers(own, tip, direction, &result);
  }
  return result;
}

bool PointSolver::SolveHeld(const ToolPoint& point, double heldDeg, Answer* answer) {
  PointSolverImplementation& own = *implementation_;
  Vec3 tip;
  Vec3 direction;
  if (!own.reach.IsValid() || !own.reach.HasInner() || !TakeRequest(point, &tip, &direction)) {
    return false;
  }
  return own.Hold(tip, direction, heldDeg, answer);
}

bool PointSolver::ComputeLinearSlopes(const AxisValues& values, std::array<Vector3D, 3>* slopes) {
  const PointSolverImplementation& own = *implementation_;
  if (!own.model.IsValid()) {
    return false;
  }
  const ChainModel::Trig trig =
      ChainModel::MakeTrig({RadFromDeg(values[FirstRotary]), RadFromDeg(values[FirstRotary + 1])});
  const Vec3 tip = own.model.TipAtZero(trig);
  const Vec3 steps[] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
  for (int k = 0; k < 3; ++k) {
    double change[3];
    if (!own.model.SolveLinear(trig, tip + steps[k], change)) {
      return false;
    }
    for (std::size_t i = 0; i < 3; ++i) {
      (*slopes)[i][k] = change[i];
    }
  }
  return true;
}

bool PointSolver::ComputeTool(const AxisValues& values, Vector3D* tip, Vector3D* direction) {
  PointSolverImplementation& own = *implementation_;
  own.axes.Put(values, &own.scratch);
  Matrix43 frame;
  if (!own.compute.ComputeMcsToToolTcs(own.scratch, own.programSystem.GetHeadIndex(),
                                       own.programSystem.GetTableIndex(), own.offset, &frame)) {
    return false;
  }
  *tip = frame.GetTrans();
  *direction = frame.GetW();
  return true;
}

Residual PointSolver::Check(const ToolPoint& point, const AxisValues& values) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  Residual residual = {infinity, infinity};
  Vec3 tip;
  Vec3 direction;
  Vector3D reachedTip;
  Vector3D reachedDirection;
  if (TakeRequest(point, &tip, &direction) && ComputeTool(values, &reachedTip, &reachedDirection)) {
    residual.tip = Norm(FromVector(reachedTip) - tip);
    residual.direction = AngleBetween(FromVector(reachedDirection), direction);
  }
  return residual;
}

}  // namespace Orvo::Path
