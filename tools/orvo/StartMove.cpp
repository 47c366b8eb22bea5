#include "StartMove.h"

#include <Orvo/Path/PathOptions.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace OrvoTool {
namespace {

using Orvo::Path::AxisValues;
using Orvo::Path::Diagnosis;
using Orvo::Path::DiagnosisCode;
using Orvo::Path::FirstRotary;
using Orvo::Path::MainAxes;
using Orvo::Path::MainAxisNb;

constexpr double DegPerRad = 57.29577951308232;
constexpr double FullTurnDeg = 360.0;
constexpr double HalfTurnDeg = 180.0;

/// Rotary values that differ by less, in degrees, are the same solution.
constexpr double SameAngleDeg = 1e-6;

/// Makes a record of the rotary axes that turn by more than an angle.
Diagnosis TurnsAbove(DiagnosisCode code, const MainAxes& axes, const AxisValues& from,
                     const AxisValues& to, double leastDeg) {
  Diagnosis diagnosis(code);
  double largest = 0.0;
  for (std::size_t i = FirstRotary; i < MainAxisNb; ++i) {
    const double turn = std::abs(to[i] - from[i]);
    if (axes.axes[i].isPresent && turn > leastDeg) {
      diagnosis.elements.push_back({axes.axes[i].name,
                                    axes.axes[i].reg.GetVal(),
                                    -1,
                                    {{"from", from[i], "deg"}, {"to", to[i], "deg"}}});
      largest = std::max(largest, turn);
    }
  }
  diagnosis.quantities = {{"turn", largest, "deg"}};
  return diagnosis;
}

/// Returns the branch on which the axes stand; 0 where it is on both, or can't be told.
int BranchAt(Orvo::Path::PointSolver* solver, const AxisValues& values,
             const Orvo::Path::ToolPoint& tool) {
  const MainAxes& axes = solver->GetAxes();
  const Orvo::Path::Answers answers = solver->Solve(tool);
  for (std::size_t s = 0; s < static_cast<std::size_t>(answers.count); ++s) {
    bool isSame = true;
    for (std::size_t i = FirstRotary; i < MainAxisNb; ++i) {
      const double difference = answers.answers[s].values[i] - values[i];
      isSame = isSame && (!axes.axes[i].isPresent ||
                          std::abs(std::remainder(difference, FullTurnDeg)) <= SameAngleDeg);
    }
    if (isSame) {
      return answers.answers[s].branch;
    }
  }
  return 0;
}

}  // namespace

std::vector<Diagnosis> FindStartMove(Orvo::Path::PointSolver* solver, const AxisValues& start,
                                     double angle, const Orvo::Path::SolvedPoint& point) {
  const MainAxes& axes = solver->GetAxes();
  std::vector<Diagnosis> findings;
  Orvo::Path::ToolPoint tool;
  const bool isComputed = solver->ComputeTool(start, &tool.point, &tool.direction);
  if (isComputed && point.branch != 0 && BranchAt(solver, start, tool) == -point.branch) {
    findings.push_back(TurnsAbove(DiagnosisCode::BranchChange, axes, start, point.values, -1.0));
  }
  Diagnosis unwinding =
      TurnsAbove(DiagnosisCode::Unwinding, axes, start, point.values, HalfTurnDeg + SameAngleDeg);
  if (!unwinding.elements.empty()) {
    findings.push_back(unwinding);
  }
  const Orvo::Path::PathOptions limits;
  const int free = solver->GetFreeAxis();
  if (!isComputed || free < 0 || angle * DegPerRad > limits.nearSingularDeg) {
    return findings;
  }
  const auto place = static_cast<std::size_t>(free);
  const double turn = std::abs(point.values[place] - start[place]);
  if (turn <= limits.nearSingularTurnDeg) {
    return findings;
  }
  Diagnosis diagnosis(DiagnosisCode::NearSingular);
  diagnosis.elements.push_back(
      {axes.axes[place].name,
       axes.axes[place].reg.GetVal(),
       -1,
       {{"from", start[place], "deg"}, {"to", point.values[place], "deg"}}});
  const double length = tool.point.Distance(point.target.point);
  diagnosis.quantities = {
      {"angle", angle * DegPerRad, "deg"},
      {"turn", turn, "deg"},
      {"turn-per-length", length > 0.0 ? turn / length : HUGE_VAL, "deg/length"}};
  findings.push_back(diagnosis);
  return findings;
}

}  // namespace OrvoTool
