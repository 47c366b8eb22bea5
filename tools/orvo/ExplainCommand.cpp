#include "ExplainCommand.h"

#include "MachineJson.h"
#include "NumberText.h"
#include "OutputFormat.h"
#include "PointChoice.h"
#include "PointRequest.h"
#include "StandardOutput.h"
#include "Terminal.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

namespace OrvoTool {
namespace {

const char Description[] =
    R"(Says why a point can't be reached along a direction, and by how much: the angle
that is missing and the nearest direction that can be reached, each axis that
would leave its range and how far, the shift of the workpiece that would bring
the point in; or what to know of the answer that there is: how near to a
singular direction it is, and, with --start, whether the way there from the
start goes over to the other rotary solution, unwinds an axis, or turns one far.
Each record comes as a code, a sentence and its numbers.)";

const char Footer[] =
    R"(Lengths are in the machine's unit, angles in degrees. Codes from 100 on: there
is no answer. From 200 on: there is one to look at. From 300 on: the program
system can't be computed with. With json and jsonl, records are those of the
library for whole paths.

Exit status:
  0  there is an answer within all ranges
  1  the command line is wrong
  2  the machine file can't be read, or the result can't be written
  3  the machine, or its program system, can't be computed with
  4  the point can't be reached along the direction
  5  it could be, with an axis outside its range

Examples:
  orvo explain machine.xml 10,20,30 0,1,0
  orvo explain machine.xml 10,20,30 0,0.001,1 --start C=177
  orvo explain machine.xml 900,0,0 0,0,1 --offset 0,0,75 --format json
)";

constexpr double DegPerRad = 57.29577951308232;

struct ExplainOptions {
  RequestOptions request;
  OutputChoice output;
};

std::vector<Orvo::Path::Diagnosis> RecordsOf(const PointChoice& choice) {
  std::vector<Orvo::Path::Diagnosis> records = choice.systemFindings;
  records.insert(records.end(), choice.chosen.diagnoses.begin(), choice.chosen.diagnoses.end());
  records.insert(records.end(), choice.moveFindings.begin(), choice.moveFindings.end());
  return records;
}

std::string FreeAxisName(const PointRequest& request, const PointChoice& choice) {
  const auto place = static_cast<std::size_t>(choice.freePlace);
  return request.GetNames().GetName(choice.axes.axes[place].reg.GetVal());
}

std::string SingularText(const PointRequest& request, const PointChoice& choice) {
  if (!choice.IsNearSingular()) {
    return "";
  }
  const std::string axis = FreeAxisName(request, choice);
  return choice.IsSingular()
             ? "\nThe direction is singular: it leaves " + axis + " free" +
                   (choice.chosen.isSolved ? ", which " + choice.DescribeFreeAxis() : "") + ".\n"
             : "\nThe direction is near singular: " +
                   ShortNumber(choice.singularAngle * DegPerRad, 6) +
                   " degrees from the one that leaves " + axis + " free.\n";
}

JsonValue SingularJson(const PointRequest& request, const PointChoice& choice) {
  return choice.freePlace < 0 ? JsonValue()
                              : JsonValue{{"angleDeg", choice.singularAngle * DegPerRad},
                                          {"axis", FreeAxisName(request, choice)},
                                          {"isFree", choice.IsSingular()},
                                          {"isNear", choice.IsNearSingular()}};
}

std::string MakeText(const PointRequest& request, const PointChoice& choice,
                     const TextStyle& style) {
  const ExitCode status = StatusOf(choice);
  const std::string verdict =
      status == ExitCode::Success          ? style.Good("there is an answer within all ranges")
      : status == ExitCode::MachineInvalid ? style.Bad("the program system can't be computed with")
      : status == ExitCode::OutOfRange     ? style.Bad("an axis would leave its range")
                                           : style.Bad("the point can't be reached");
  std::string text = request.GetTitle() + "\n" + "tip " + VectorText(request.GetPoint().point) +
                     ", direction " + VectorText(request.GetPoint().direction) + ": " + verdict +
                     "\n";
  for (const Orvo::Path::Diagnosis& record : RecordsOf(choice)) {
    text += "\n" + DiagnosisText(record);
  }
  text += SingularText(request, choice);
  if (choice.hasShift) {
    text += "\nA shift of the workpiece by " + VectorText(choice.shift) +
            " in the frame of the table would bring the point in.\n";
  }
  return text;
}

ExitCode RunExplain(const ExplainOptions& options) {
  const PointRequest request(options.request);
  const PointChoice choice = ChooseForPoint(request);
  if (options.output.format == OutputFormat::Text) {
    WriteStandardOutput(MakeText(request, choice, TextStyle(options.output.color)));
  } else if (options.output.format == OutputFormat::JsonLines) {
    std::string lines;
    for (const Orvo::Path::Diagnosis& record : RecordsOf(choice)) {
      lines += record.MakeJson() + "\n";
    }
    WriteStandardOutput(lines);
  } else {
    JsonValue json = request.MakeJson();
    json["hasAnswer"] = choice.chosen.isSolved;
    JsonValue records = JsonValue::array();
    for (const Orvo::Path::Diagnosis& record : RecordsOf(choice)) {
      records.push_back(DiagnosisJson(record));
    }
    json["diagnoses"] = records;
    json["singular"] = SingularJson(request, choice);
    json["shift"] = choice.hasShift ? VectorJson(choice.shift) : JsonValue();
    WriteStandardOutput(JsonDocument(json));
  }
  return StatusOf(choice);
}

}  // namespace

CommandAction AddExplainCommand(CLI::App* command) {
  const auto options = std::make_shared<ExplainOptions>();
  command->description(Description);
  command->footer(Footer);
  AddRequestOptions(command, &options->request);
  AddOutputOptions(command, &options->output,
                   {OutputFormat::Text, OutputFormat::Json, OutputFormat::JsonLines});
  return [options]() { return RunExplain(*options); };
}

}  // namespace OrvoTool
