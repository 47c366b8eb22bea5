#include "IkCommand.h"

#include "MachineFile.h"
#include "NumberText.h"
#include "OutputFormat.h"
#include "PointChoice.h"
#include "PointRequest.h"
#include "StandardOutput.h"
#include "Terminal.h"
#include "TextTable.h"
#include "WideText.h"

#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Path/PointSolver.h>
#include <Orvo/Vector3D.h>

#include <CLI/CLI.hpp>

#include <cmath>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace OrvoTool {
namespace {

using Orvo::Path::AxisValues;
using Orvo::Path::FirstRotary;
using Orvo::Path::MainAxisNb;
using Align = TextTable::Align;

const char Description[] =
    R"(Gives the axis values that bring the tool tip to a point along a direction: all
solutions, exact, with what forward kinematics leaves of the request; the one
that is chosen from where the axes stand, and why; and beside them the answer
of the calculator, whose tolerances are coarser.)";

const char Footer[] =
    R"(Lengths are in the machine's unit, angles in degrees; residuals of directions
are in radians. Rotary values are taken by whole turns to where they are
nearest to the start, within their ranges. Which solution is chosen depends on
the policy of the program system, as in 'orvo solve'.

Exit status:
  0  there is an answer within all ranges
  1  the command line is wrong
  2  the machine file can't be read, or the result can't be written
  3  the machine, or its program system, can't be computed with
  4  the point can't be reached along the direction
  5  it could be, with an axis outside its range

Examples:
  orvo ik machine.xml 10,20,30 0,0.5,0.866 --offset 0,0,75
  orvo ik machine.xml 10,20,30 0,0,1 --start C=90 --format json
)";

constexpr double DegPerRad = 57.29577951308232;

struct IkOptions {
  RequestOptions request;
  OutputChoice output;
};

/// What the calculator of the program system answers.
struct CoreAnswer {
  bool isComputed = false;  ///< whether the question could be asked
  unsigned int count = 0;   ///< the rotary solutions
  int freeRegister = -1;
  bool hasValues = false;  ///< whether there are values: those of the first solution
  AxisValues values = {};
  bool isLinearInRange = false;
  Orvo::Path::Residual residual;
};

CoreAnswer AskCore(const PointRequest& request, const PointChoice& choice) {
  CoreAnswer core;
  Orvo::Kin::ProgramSystemCompute compute(request.GetMachine(), request.GetProgramSystem());
  Orvo::Kin::MachinePosition position = request.GetStart();
  Orvo::Kin::RotariesSolution solution;
  // Scaled first, so that no square overflows.
  Orvo::Vector3D direction = request.GetPoint().direction;
  const double largest = direction.NormSup();
  for (int i = 0; i < 3; ++i) {
    direction[i] /= largest;
  }
  direction.MakeUnit(0.5);
  if (!compute.ComputeToolIjkTcsToMcsAbc(position, direction, &solution)) {
    return core;
  }
  core.isComputed = true;
  core.count = solution.Count;
  core.freeRegister = solution.FreeRegister;
  if (solution.Count == 0) {
    return core;
  }
  core.values[FirstRotary] = solution.Alpha1.GetDegre();
  core.values[FirstRotary + 1] = solution.Beta1.GetDegre();
  choice.axes.Put(core.values, &position);
  Orvo::Vector3D xyz;
  core.hasValues =
      compute.ComputeToolTcsToMcsXyz(position, request.GetOffset(), request.GetPoint().point, &xyz);
  if (!core.hasValues) {
    return core;
  }
  for (std::size_t i = 0; i < FirstRotary; ++i) {
    core.values[i] = xyz[static_cast<int>(i)];
  }
  core.isLinearInRange = compute.CheckLinearRange(xyz, nullptr);
  Orvo::Path::PointSolver solver(request.GetMachine(), request.GetProgramSystem(),
                                 request.GetOffset(), request.GetStart());
  core.residual = solver.Check(request.GetPoint(), core.values);
  return core;
}

/// Says why what is chosen is chosen.
std::string ExplainChoice(const PointRequest& request, const PointChoice& choice) {
  if (!choice.chosen.isSolved) {
    const Orvo::Path::Diagnosis* failure = choice.FindFailure();
    return failure != nullptr ? Printable(failure->MakeText()) : "there is no answer";
  }
  if (choice.chosenSolution < 0 || choice.IsSingular()) {
    const std::string name =
        choice.freePlace >= 0
            ? request.GetNames().GetName(
                  choice.axes.axes[static_cast<std::size_t>(choice.freePlace)].reg.GetVal())
            : "an axis";
    return "the direction leaves " + name + " free, so it " + choice.DescribeFreeAxis();
  }
  if (choice.solutions.size() == 1) {
    return "it is the only solution";
  }
  const std::size_t chosen = static_cast<std::size_t>(choice.chosenSolution);
  const PointSolution& other = choice.solutions[1 - chosen];
  const std::string otherName = "solution " + std::to_string(2 - chosen);
  if (!other.excesses.empty()) {
    return otherName + " is out of range";
  }
  if (!other.answer.hasLinear) {
    return otherName + " has no linear values";
  }
  return "its rotary axes turn by " + ShortNumber(choice.solutions[chosen].rotaryTravel, 9) +
         " degrees in all, those of " + otherName + " by " + ShortNumber(other.rotaryTravel, 9);
}

std::string RangeText(const PointRequest& request, const PointChoice& choice,
                      const PointSolution& solution) {
  if (!solution.answer.hasLinear) {
    return "no linear values";
  }
  std::string text;
  for (const AxisExcess& excess : solution.excesses) {
    const Orvo::Path::MainAxis& axis = choice.axes.axes[excess.place];
    text += (text.empty() ? "" : ", ") + request.GetNames().GetName(axis.reg.GetVal()) + " is " +
            ShortNumber(std::abs(excess.excess), 6) +
            (excess.excess > 0.0 ? " above " : " below ") +
            ShortNumber(excess.excess > 0.0 ? axis.max : axis.min, 9);
  }
  return text.empty() ? "in range" : text;
}

/// A line of the table of values: empty texts where there is no axis.
std::vector<std::string> ValueRow(const PointChoice& choice, const std::string& name,
                                  const AxisValues& values, bool hasLinear) {
  std::vector<std::string> row = {name};
  for (std::size_t i = 0; i < MainAxisNb; ++i) {
    if (choice.axes.axes[i].isPresent) {
      row.push_back(i < FirstRotary && !hasLinear ? "-" : PlainNumber(values[i]));
    }
  }
  return row;
}

void AppendResidual(const Orvo::Path::Residual& residual, bool hasOne,
                    std::vector<std::string>* row) {
  row->push_back(hasOne ? ShortNumber(residual.tip, 2) : "-");
  row->push_back(hasOne ? ShortNumber(residual.direction, 2) : "-");
}

std::string MakeTable(const PointRequest& request, const PointChoice& choice,
                      const CoreAnswer& core, const TextStyle& style) {
  std::vector<Align> columns = {Align::Left};
  std::vector<std::string> heading = {""};
  for (const Orvo::Path::MainAxis& axis : choice.axes.axes) {
    if (axis.isPresent) {
      columns.push_back(Align::Right);
      heading.push_back(request.GetNames().GetName(axis.reg.GetVal()));
    }
  }
  for (const char* name : {"tip off by", "direction"}) {
    columns.push_back(Align::Right);
    heading.push_back(name);
  }
  columns.push_back(Align::Left);
  heading.push_back("");
  TextTable table(columns, 2);
  table.AddRow(heading);
  for (std::size_t i = 0; i < choice.solutions.size(); ++i) {
    const PointSolution& solution = choice.solutions[i];
    std::vector<std::string> row = ValueRow(choice, "solution " + std::to_string(i + 1),
                                            solution.nearest, solution.answer.hasLinear);
    AppendResidual(solution.residual, solution.answer.hasLinear, &row);
    const std::string range = RangeText(request, choice, solution);
    row.push_back(solution.excesses.empty() && solution.answer.hasLinear ? style.Good(range)
                                                                         : style.Bad(range));
    table.AddRow(row);
  }
  if (choice.chosen.isSolved) {
    std::vector<std::string> row = ValueRow(choice, "chosen", choice.chosen.values, true);
    AppendResidual(choice.chosen.residual, true, &row);
    row.push_back("");
    table.AddRow(row);
  }
  if (core.count > 0) {
    std::vector<std::string> row = ValueRow(choice, "calculator", core.values, core.hasValues);
    AppendResidual(core.residual, core.hasValues, &row);
    row.push_back(core.hasValues ? "" : "no linear values");
    table.AddRow(row);
  }
  return table.GetText();
}

std::string MakeText(const PointRequest& request, const PointChoice& choice, const CoreAnswer& core,
                     const TextStyle& style) {
  std::string text = request.GetTitle() + "\n" + "tip " + VectorText(request.GetPoint().point) +
                     ", direction " + VectorText(request.GetPoint().direction) + "\n\n";
  if (!choice.isUsable) {
    for (const Orvo::Path::Diagnosis& finding : choice.systemFindings) {
      text += DiagnosisText(finding);
    }
    return text;
  }
  text += MakeTable(request, choice, core, style) + "\n";
  const std::string why = ExplainChoice(request, choice);
  if (choice.chosen.isSolved) {
    const std::string what = choice.chosenSolution >= 0
                                 ? "Solution " + std::to_string(choice.chosenSolution + 1)
                                 : std::string("A solution");
    text += style.Good(what + " is chosen") + ": " + why + ".\n";
  } else {
    text += style.Bad("There is no answer") + ": " + why + ".\n";
  }
  if (!core.isComputed) {
    text += "The calculator can't compute with the program system.\n";
  } else if (core.count == 0) {
    text += "The calculator has no solution.\n";
  }
  if (choice.freePlace >= 0) {
    text += "The direction is " + ShortNumber(choice.singularAngle * DegPerRad, 6) +
            " degrees from the nearest singular one.\n";
  }
  return text;
}

JsonValue ResidualJson(const Orvo::Path::Residual& residual) {
  return JsonValue{{"tip", residual.tip}, {"directionRad", residual.direction}};
}

JsonValue SolutionJson(const PointRequest& request, const PointChoice& choice,
                       const PointSolution& solution) {
  JsonValue excesses = JsonValue::array();
  for (const AxisExcess& excess : solution.excesses) {
    const Orvo::Path::MainAxis& axis = choice.axes.axes[excess.place];
    excesses.push_back(JsonValue{{"axis", request.GetNames().GetName(axis.reg.GetVal())},
                                 {"value", excess.value},
                                 {"min", axis.min},
                                 {"max", axis.max},
                                 {"excess", excess.excess}});
  }
  return JsonValue{{"values", AxisValuesJson(request.GetNames(), choice.axes, solution.nearest)},
                   {"rotaryTravelDeg", solution.rotaryTravel},
                   {"branch", solution.answer.branch},
                   {"hasLinearValues", solution.answer.hasLinear},
                   {"inRange", solution.answer.hasLinear && solution.excesses.empty()},
                   {"outOfRange", excesses},
                   {"residual", ResidualJson(solution.residual)}};
}

JsonValue CoreJson(const PointRequest& request, const PointChoice& choice, const CoreAnswer& core) {
  JsonValue json = {{"computed", core.isComputed}, {"solutionCount", core.count}};
  json["freeAxis"] = core.freeRegister >= 0
                         ? JsonValue(request.GetNames().GetName(core.freeRegister))
                         : JsonValue();
  json["values"] =
      core.hasValues ? AxisValuesJson(request.GetNames(), choice.axes, core.values) : JsonValue();
  json["linearInRange"] = core.isLinearInRange;
  json["residual"] = core.hasValues ? ResidualJson(core.residual) : JsonValue();
  return json;
}

JsonValue MakeJson(const PointRequest& request, const PointChoice& choice, const CoreAnswer& core) {
  JsonValue json = request.MakeJson();
  JsonValue solutions = JsonValue::array();
  for (const PointSolution& solution : choice.solutions) {
    solutions.push_back(SolutionJson(request, choice, solution));
  }
  json["solutions"] = solutions;
  json["singularAngleDeg"] = choice.singularAngle * DegPerRad;
  json["chosen"] = JsonValue();
  if (choice.chosen.isSolved) {
    json["chosen"] = JsonValue{
        {"solution", choice.chosenSolution >= 0 ? JsonValue(choice.chosenSolution) : JsonValue()},
        {"values", AxisValuesJson(request.GetNames(), choice.axes, choice.chosen.values)},
        {"residual", ResidualJson(choice.chosen.residual)}};
  }
  json["why"] = ExplainChoice(request, choice);
  json["calculator"] = CoreJson(request, choice, core);
  JsonValue diagnoses = JsonValue::array();
  for (const std::vector<Orvo::Path::Diagnosis>* records :
       {&choice.systemFindings, &choice.chosen.diagnoses}) {
    for (const Orvo::Path::Diagnosis& record : *records) {
      diagnoses.push_back(DiagnosisJson(record));
    }
  }
  json["diagnoses"] = diagnoses;
  return json;
}

ExitCode RunIk(const IkOptions& options) {
  const PointRequest request(options.request);
  const PointChoice choice = ChooseForPoint(request);
  const CoreAnswer core = choice.isUsable ? AskCore(request, choice) : CoreAnswer();
  if (options.output.format == OutputFormat::Json) {
    WriteStandardOutput(JsonDocument(MakeJson(request, choice, core)));
  } else {
    WriteStandardOutput(MakeText(request, choice, core, TextStyle(options.output.color)));
  }
  return StatusOf(choice);
}

}  // namespace

CommandAction AddIkCommand(CLI::App* command) {
  const auto options = std::make_shared<IkOptions>();
  command->description(Description);
  command->footer(Footer);
  AddRequestOptions(command, &options->request);
  AddOutputOptions(command, &options->output, {OutputFormat::Text, OutputFormat::Json});
  return [options]() { return RunIk(*options); };
}

}  // namespace OrvoTool
