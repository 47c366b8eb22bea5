#include "PointChoice.h"

#include "NumberText.h"
#include "StartMove.h"
#include "TextTable.h"
#include "WideText.h"

#include <Orvo/Path/PathOptions.h>
#include <Orvo/Path/PathSolver.h>
#include <Orvo/Path/ToolPath.h>

#include <algorithm>
#include <cmath>

namespace OrvoTool {
namespace {

using Orvo::Path::AxisValues;
using Orvo::Path::Diagnosis;
using Orvo::Path::DiagnosisCode;
using Orvo::Path::FirstRotary;
using Orvo::Path::MainAxis;
using Orvo::Path::MainAxisNb;

/// Directions nearer to the singular one than this, in radians, leave an axis free.
constexpr double FreeAngle = 1e-9;

constexpr double DegPerRad = 57.29577951308232;
constexpr double FullTurnDeg = 360.0;

/// A value counts as inside up to this much beyond a limit, as for the solvers.
constexpr double RangeTolerance = 1e-9;

/// Rotary values that differ by less, in degrees, are the same solution.
constexpr double SameAngleDeg = 1e-6;

double ExcessOf(const MainAxis& axis, double value) {
  if (!axis.isChecked) {
    return 0.0;
  }
  if (value > axis.max + RangeTolerance) {
    return value - axis.max;
  }
  return value < axis.min - RangeTolerance ? value - axis.min : 0.0;
}

/// Returns the equivalent of an angle by whole turns that is nearest to the current value, within
/// the range if there is one.
double NearestTurn(const MainAxis& axis, double value, double current) {
  double turns = std::round((current - value) / FullTurnDeg);
  if (axis.isChecked) {
    const double fewest = std::ceil((axis.min - value - RangeTolerance) / FullTurnDeg);
    const double most = std::floor((axis.max - value + RangeTolerance) / FullTurnDeg);
    turns = fewest <= most ? std::clamp(turns, fewest, most) : turns;
  }
  return value + FullTurnDeg * turns;
}

PointSolution MakeSolution(const PointChoice& choice, const AxisValues& start,
                           const Orvo::Path::Answer& answer) {
  PointSolution solution;
  solution.answer = answer;
  solution.nearest = answer.values;
  for (std::size_t i = 0; i < MainAxisNb; ++i) {
    const MainAxis& axis = choice.axes.axes[i];
    if (!axis.isPresent || (i < FirstRotary && !answer.hasLinear)) {
      continue;
    }
    double* value = &solution.nearest[i];
    if (i >= FirstRotary) {
      *value = NearestTurn(axis, *value, start[i]);
      solution.rotaryTravel += std::abs(*value - start[i]);
    }
    const double excess = ExcessOf(axis, *value);
    if (excess != 0.0) {
      solution.excesses.push_back({i, *value, excess});
    }
  }
  return solution;
}

bool AreSame(const PointChoice& choice, const AxisValues& a, const AxisValues& b) {
  for (std::size_t i = FirstRotary; i < MainAxisNb; ++i) {
    if (choice.axes.axes[i].isPresent &&
        std::abs(std::remainder(a[i] - b[i], FullTurnDeg)) > SameAngleDeg) {
      return false;
    }
  }
  return true;
}

/// Solves the path of the one point, by the policy of the program system.
void SolveAsPath(const PointRequest& request, PointChoice* choice) {
  Orvo::Path::PathOptions options;
  options.choice = Orvo::Path::PathChoice::Greedy;
  options.threadNb = 1;
  Orvo::Path::PathSolver solver(request.GetMachine(), request.GetProgramSystem(),
                                request.GetOffset(), request.GetStart(), options);
  const Orvo::Path::ToolPath path({request.GetPoint()});
  Orvo::Path::ToolPathSource source(path);
  const Orvo::Path::PathSummary summary =
      solver.Solve(source, [choice](const Orvo::Path::SolvedPoint& point) {
        choice->chosen = point;
        return true;
      });
  choice->hasShift = summary.hasShift;
  choice->shift = summary.shift;
  // What is about the program system has records of its own.
  std::vector<Diagnosis>& diagnoses = choice->chosen.diagnoses;
  for (Diagnosis& diagnosis : diagnoses) {
    diagnosis.point = Diagnosis::NoPoint;
  }
}

}  // namespace

const Diagnosis* PointChoice::FindFailure() const {
  for (const std::vector<Diagnosis>* records : {&systemFindings, &chosen.diagnoses}) {
    for (const Diagnosis& diagnosis : *records) {
      if (diagnosis.IsFailure()) {
        return &diagnosis;
      }
    }
  }
  return nullptr;
}

bool PointChoice::IsSingular() const { return freePlace >= 0 && singularAngle < FreeAngle; }

std::string PointChoice::DescribeFreeAxis() const {
  return freePlace < 0 || chosen.isHeld ? "keeps the value that it has"
                                        : "goes to where all ranges are kept";
}

bool PointChoice::IsNearSingular() const {
  const Orvo::Path::PathOptions limits;
  return freePlace >= 0 && singularAngle * DegPerRad <= limits.nearSingularDeg;
}

PointChoice ChooseForPoint(const PointRequest& request) {
  PointChoice choice;
  Orvo::Path::PointSolver solver(request.GetMachine(), request.GetProgramSystem(),
                                 request.GetOffset(), request.GetStart());
  choice.axes = solver.GetAxes();
  choice.systemFindings = solver.GetFindings();
  choice.isUsable = solver.IsUsable();
  if (!choice.isUsable) {
    return choice;
  }
  const AxisValues start = choice.axes.Take(request.GetStart());
  const Orvo::Path::Answers answers = solver.Solve(request.GetPoint());
  choice.singularAngle = answers.singularAngle;
  choice.freePlace = solver.GetFreeAxis();
  for (int i = 0; i < answers.count; ++i) {
    PointSolution solution =
        MakeSolution(choice, start, answers.answers[static_cast<std::size_t>(i)]);
    if (solution.answer.hasLinear) {
      solution.residual = solver.Check(request.GetPoint(), solution.nearest);
    }
    choice.solutions.push_back(solution);
  }
  SolveAsPath(request, &choice);
  if (request.HasStart() && choice.chosen.isSolved) {
    choice.moveFindings = FindStartMove(&solver, start, choice.singularAngle, choice.chosen);
  }
  for (std::size_t i = 0; choice.chosen.isSolved && i < choice.solutions.size(); ++i) {
    if (choice.chosenSolution < 0 &&
        AreSame(choice, choice.chosen.values, choice.solutions[i].nearest)) {
      choice.chosenSolution = static_cast<int>(i);
    }
  }
  return choice;
}

ExitCode StatusOf(const PointChoice& choice) {
  if (!choice.isUsable) {
    return ExitCode::MachineInvalid;
  }
  if (choice.chosen.isSolved) {
    return ExitCode::Success;
  }
  const Diagnosis* failure = choice.FindFailure();
  const bool isRange = failure != nullptr && (failure->GetCode() == DiagnosisCode::RotaryRange ||
                                              failure->GetCode() == DiagnosisCode::LinearRange);
  return isRange ? ExitCode::OutOfRange : ExitCode::Unreachable;
}

JsonValue DiagnosisJson(const Diagnosis& diagnosis) {
  return JsonValue::parse(diagnosis.MakeJson());
}

std::string DiagnosisText(const Diagnosis& diagnosis) {
  using Align = TextTable::Align;
  std::string text = std::to_string(static_cast<int>(diagnosis.GetCode())) + " " +
                     diagnosis.GetName() + "\n  " + Printable(diagnosis.MakeText()) + "\n";
  const auto valueText = [](const Orvo::Path::Quantity& quantity) {
    const bool isPlain = quantity.unit == "length" || quantity.unit == "1";
    return ShortNumber(quantity.value, 9) + (isPlain ? "" : " " + quantity.unit);
  };
  if (!diagnosis.quantities.empty()) {
    TextTable table({Align::Left, Align::Left}, 4);
    for (const Orvo::Path::Quantity& quantity : diagnosis.quantities) {
      table.AddRow({quantity.name, valueText(quantity)});
    }
    text += table.GetText();
  }
  // Elements have a line each; those with other numbers than the ones before begin a new table.
  std::size_t next = 0;
  while (next < diagnosis.elements.size()) {
    const std::vector<Orvo::Path::Quantity>& names = diagnosis.elements[next].quantities;
    std::vector<Align> columns(names.size() + 1, Align::Right);
    columns[0] = Align::Left;
    TextTable table(columns, 4);
    std::vector<std::string> heading = {""};
    for (const Orvo::Path::Quantity& quantity : names) {
      heading.push_back(quantity.name);
    }
    table.AddRow(heading);
    const auto fits = [&names](const Orvo::Path::ElementFinding& element) {
      return std::equal(names.begin(), names.end(), element.quantities.begin(),
                        element.quantities.end(),
                        [](const Orvo::Path::Quantity& a, const Orvo::Path::Quantity& b) {
                          return a.name == b.name;
                        });
    };
    while (next < diagnosis.elements.size() && fits(diagnosis.elements[next])) {
      const Orvo::Path::ElementFinding& element = diagnosis.elements[next];
      std::vector<std::string> row = {
          Printable(element.element) +
          (element.solution >= 0 ? ", solution " + std::to_string(element.solution + 1) : "")};
      for (const Orvo::Path::Quantity& quantity : element.quantities) {
        row.push_back(valueText(quantity));
      }
      table.AddRow(row);
      ++next;
    }
    text += names.empty() ? "" : table.GetText();
  }
  return text;
}

}  // namespace OrvoTool
