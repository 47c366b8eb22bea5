#include "path/PointSolverImplementation.h"
#include "path/Turns.h"

#include <Orvo/Path/Diagnosis.h>
#include <Orvo/Path/PointSolver.h>

#include <cmath>

namespace Orvo::Path {
namespace {

ElementFinding FindingOf(const MainAxis& axis, int solution) {
  ElementFinding finding;
  finding.element = axis.name;
  finding.reg = axis.reg.GetVal();
  finding.solution = solution;
  return finding;
}

void AddRange(const MainAxis& axis, double value, double nearest, const char* unit,
              ElementFinding* finding) {
  finding->quantities = {{"value", value, unit},
                         {"nearest", nearest, unit},
                         {"min", axis.min, unit},
                         {"max", axis.max, unit},
                         {"excess", ExcessOf(axis, nearest), unit}};
}

Diagnosis ExplainOrientation(const PointSolverImplementation& own, const Vec3& direction) {
  Diagnosis diagnosis(DiagnosisCode::OrientationUnreachable);
  for (std::size_t i = FirstRotary; i < MainAxisNb; ++i) {
    if (own.axes.axes[i].isPresent) {
      diagnosis.elements.push_back(FindingOf(own.axes.axes[i], -1));
    }
  }
  if (!own.model.IsValid()) {
    return diagnosis;
  }
  // Without a rotary axis that moves it, the tool has one direction.
  const Vec3 nearest = own.reach.IsValid()
                           ? own.reach.Nearest(direction)
                           : Unit(own.model.Direction(ChainModel::MakeTrig({0.0, 0.0})));
  diagnosis.quantities = {{"missing", DegFromRad(AngleBetween(direction, nearest)), "deg"},
                          {"nearest-i", nearest.x, "1"},
                          {"nearest-j", nearest.y, "1"},
                          {"nearest-k", nearest.z, "1"}};
  return diagnosis;
}

Diagnosis ExplainRotaries(const PointSolverImplementation& own, const Answers& answers) {
  Diagnosis diagnosis(DiagnosisCode::RotaryRange);
  for (int s = 0; s < answers.count; ++s) {
    const Answer& answer = answers.answers[static_cast<std::size_t>(s)];
    for (std::size_t i = FirstRotary; i < MainAxisNb; ++i) {
      const MainAxis& axis = own.axes.axes[i];
      if (axis.isPresent) {
        ElementFinding finding = FindingOf(axis, s);
        AddRange(axis, answer.values[i], NearestTurn(axis, answer.values[i]), "deg", &finding);
        diagnosis.elements.push_back(finding);
      }
    }
  }
  return diagnosis;
}

double SumOfLinearExcess(const MainAxes& axes, const Answer& answer) {
  double sum = 0.0;
  for (std::size_t i = 0; i < FirstRotary; ++i) {
    sum += std::abs(ExcessOf(axes.axes[i], answer.values[i]));
  }
  return sum;
}

Diagnosis ExplainLinears(const PointSolverImplementation& own, const Answers& answers) {
  int best = -1;
  for (int s = 0; s < answers.count; ++s) {
    const Answer& answer = answers.answers[static_cast<std::size_t>(s)];
    if (answer.isRotaryInRange && answer.hasLinear &&
        (best < 0 ||
         SumOfLinearExcess(own.axes, answer) <
             SumOfLinearExcess(own.axes, answers.answers[static_cast<std::size_t>(best)]))) {
      best = s;
    }
  }
  if (best < 0) {
    return Diagnosis(DiagnosisCode::LinearUnsolvable);
  }
  Diagnosis diagnosis(DiagnosisCode::LinearRange);
  const Answer& answer = answers.answers[static_cast<std::size_t>(best)];
  for (std::size_t i = 0; i < FirstRotary; ++i) {
    ElementFinding finding = FindingOf(own.axes.axes[i], best);
    AddRange(own.axes.axes[i], answer.values[i], answer.values[i], "length", &finding);
    diagnosis.elements.push_back(finding);
  }
  return diagnosis;
}

}  // namespace

Diagnosis PointSolver::Explain(const ToolPoint& point, const Answers& answers) {
  const PointSolverImplementation& own = *implementation_;
  Diagnosis diagnosis(DiagnosisCode::None);
  Vec3 tip;
  Vec3 direction;
  if (!TakeRequest(point, &tip, &direction)) {
    diagnosis = Diagnosis(DiagnosisCode::RequestInvalid);
  } else if (answers.count == 0) {
    diagnosis = ExplainOrientation(own, direction);
  } else {
    bool isInRange = false;
    bool isRotaryInRange = false;
    for (int s = 0; s < answers.count; ++s) {
      const Answer& answer = answers.answers[static_cast<std::size_t>(s)];
      isInRange = isInRange || answer.IsInRange();
      isRotaryInRange = isRotaryInRange || answer.isRotaryInRange;
    }
    if (!isInRange) {
      diagnosis = isRotaryInRange ? ExplainLinears(own, answers) : ExplainRotaries(own, answers);
    }
  }
  diagnosis.line = point.line;
  return diagnosis;
}

}  // namespace Orvo::Path
