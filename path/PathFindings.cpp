#include "path/PathFindings.h"

#include "path/Turns.h"
#include "path/Vec3.h"

#include <algorithm>
#include <cmath>

namespace Orvo::Path {
namespace {

ElementFinding TurnOf(const MainAxis& axis, double fromDeg, double toDeg) {
  ElementFinding finding;
  finding.element = axis.name;
  finding.reg = axis.reg.GetVal();
  finding.quantities = {{"from", fromDeg, "deg"}, {"to", toDeg, "deg"}};
  return finding;
}

double TurnAt(const MoveStart& before, const SolvedPoint& point, std::size_t axis) {
  return std::abs(point.values[axis] - before.values[axis]);
}

/// Adds the rotary axes that turn by more than an angle; returns the largest turn.
double AddTurns(const MainAxes& axes, const MoveStart& before, const SolvedPoint& point,
                double leastDeg, Diagnosis* diagnosis) {
  double largest = 0.0;
  for (std::size_t i = FirstRotary; i < MainAxisNb; ++i) {
    const double turn = TurnAt(before, point, i);
    if (axes.axes[i].isPresent && turn > leastDeg) {
      diagnosis->elements.push_back(TurnOf(axes.axes[i], before.values[i], point.values[i]));
      largest = std::max(largest, turn);
    }
  }
  return largest;
}

}  // namespace

Diagnosis FindSegmentDeviation(double tip, double direction) {
  Diagnosis diagnosis(DiagnosisCode::SegmentDeviation);
  diagnosis.quantities = {{"tip-deviation", tip, "length"},
                          {"direction-deviation", DegFromRad(direction), "deg"}};
  return diagnosis;
}

Diagnosis FindHeldAxis(const PointSolver& solver, double deviation) {
  Diagnosis diagnosis(DiagnosisCode::HeldAxis);
  diagnosis.quantities = {{"deviation", DegFromRad(deviation), "deg"}};
  if (solver.GetFreeAxis() >= 0) {
    const MainAxis& axis = solver.GetAxes().axes[static_cast<std::size_t>(solver.GetFreeAxis())];
    diagnosis.elements.push_back({axis.name, axis.reg.GetVal(), -1, {}});
  }
  return diagnosis;
}

void AddJumpFindings(const MainAxes& axes, const MoveStart& before, SolvedPoint* point) {
  if (point->isBranchChange) {
    Diagnosis diagnosis(DiagnosisCode::BranchChange);
    diagnosis.quantities = {{"turn", AddTurns(axes, before, *point, -1.0, &diagnosis), "deg"}};
    point->diagnoses.push_back(diagnosis);
  }
  if (point->isUnwinding) {
    Diagnosis diagnosis(DiagnosisCode::Unwinding);
    diagnosis.quantities = {{"turn", AddTurns(axes, before, *point, 180.0, &diagnosis), "deg"}};
    point->diagnoses.push_back(diagnosis);
  }
}

void AddNearSingular(const PointSolver& solver, const PathOptions& options, const Answers& answers,
                     const MoveStart& before, SolvedPoint* point) {
  if (solver.GetFreeAxis() < 0 || point->isHeld ||
      DegFromRad(answers.singularAngle) > options.nearSingularDeg) {
    return;
  }
  const auto freeAxis = static_cast<std::size_t>(solver.GetFreeAxis());
  const double turn = TurnAt(before, *point, freeAxis);
  if (turn <= options.nearSingularTurnDeg) {
    return;
  }
  const double length = before.target.point.Distance(point->target.point);
  Diagnosis diagnosis(DiagnosisCode::NearSingular);
  diagnosis.elements.push_back(
      TurnOf(solver.GetAxes().axes[freeAxis], before.values[freeAxis], point->values[freeAxis]));
  diagnosis.quantities = {
      {"angle", DegFromRad(answers.singularAngle), "deg"},
      {"turn", turn, "deg"},
      {"turn-per-length", length > 0.0 ? turn / length : HUGE_VAL, "deg/length"}};
  if (point->target.feed > 0.0 && length > 0.0) {
    diagnosis.quantities.push_back({"speed", turn / length * point->target.feed, "deg/min"});
  }
  point->diagnoses.push_back(diagnosis);
}

const AxisValues* FindNearestLinear(const MainAxes& axes, const Answers& answers) {
  const AxisValues* nearest = nullptr;
  double smallest = 0.0;
  for (int s = 0; s < answers.count; ++s) {
    const Answer& answer = answers.answers[static_cast<std::size_t>(s)];
    double excess = 0.0;
    for (std::size_t i = 0; i < FirstRotary; ++i) {
      excess += std::abs(ExcessOf(axes.axes[i], answer.values[i]));
    }
    if (answer.isRotaryInRange && answer.hasLinear && (nearest == nullptr || excess < smallest)) {
      nearest = &answer.values;
      smallest = excess;
    }
  }
  return nearest;
}

}  // namespace Orvo::Path
