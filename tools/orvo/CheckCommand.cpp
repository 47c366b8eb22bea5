#include "CheckCommand.h"

#include "AxisAssignment.h"
#include "AxisCheck.h"
#include "AxisNames.h"
#include "AxisRowReader.h"
#include "ChoiceOption.h"
#include "Failure.h"
#include "JsonText.h"
#include "MachineFile.h"
#include "NumberOption.h"
#include "NumberText.h"
#include "OutputFormat.h"
#include "PathInput.h"
#include "ProgramSystemChoice.h"
#include "Progress.h"
#include "ResultOutput.h"
#include "SolvedRow.h"
#include "StandardInput.h"
#include "Terminal.h"
#include "WideText.h"

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Path/ToolPoint.h>

#include <CLI/CLI.hpp>

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace OrvoTool {
namespace {

const char Description[] =
    R"(Holds a file of axis values, such as 'orvo solve' writes, against the ranges and
speeds of a machine, and against the path that it should follow.)";

const char Footer[] =
    R"(Lengths are in the machine's unit, angles in degrees, feeds are a minute, speeds
a second.

The axis values: CSV with the names of the axes in the first line, or JSON
Lines, an object a line with the axes in "axes" or beside the others. Columns
inverse_time, feed and rapid are taken where they are there. Rows whose flags
say 'inserted' belong to no point of the path.

What is looked at:
  ranges         of every axis of the machine
  speeds         of axes that --speed names, where inverse time or feed and way
                 tell how long a move takes
  jumps          rotary moves of more than half a turn between two rows
  branches       moves to the other rotary solution
  near singular  rows whose direction lies near the one in which an axis is free
  the path       row by row: how far tip and direction are off by forward
                 kinematics

Exit status:
  0  no range or speed is exceeded, and the path is met
  1  the command line is wrong
  2  a file can't be read; the message names its line and column
  3  the machine, or its program system, can't be computed with
  5  an axis is out of its range, or too fast
  6  the path is missed, or has another number of points; whatever else

Examples:
  orvo check machine.xml axes.csv
  orvo check machine.xml axes.csv --path path.csv --offset 0,0,30
  orvo check machine.xml axes.csv --speed A=20,C=60 --feed 1000 --format json
)";

struct CheckOptions {
  std::string machine;
  std::string axes;
  std::string path;
  std::string programSystem = "0";
  std::string offset = "0,0,0";
  std::string shift = "0,0,0";
  std::string start;
  std::string speeds;
  PathKind pathKind = PathKind::BySuffix;
  PathKind axesKind = PathKind::BySuffix;
  AxisCheckLimits limits;
  OutputChoice output;
};

Orvo::Vector3D ReadVector(const char* option, const std::string& text) {
  const std::optional<std::array<double, 3>> triple = ReadTriple(text);
  if (!triple) {
    throw UsageFailure(std::string(option) + ": three numbers X,Y,Z are needed, not '" +
                       Printable(text) + "'");
  }
  return Orvo::Vector3D((*triple)[0], (*triple)[1], (*triple)[2]);
}

std::vector<double> ByRegister(const AxisAssignments& assignments, const AxisNames& names) {
  std::vector<double> values(static_cast<std::size_t>(names.GetCount()));
  for (const auto& [reg, value] : assignments) {
    values[static_cast<std::size_t>(reg)] = value;
  }
  return values;
}

std::vector<int> MainRegisters(const Orvo::Kin::Machine& machine,
                               const Orvo::Kin::ProgramSystem& programSystem) {
  const Orvo::Path::MainAxes main(machine, programSystem);
  std::vector<int> registers;
  for (const Orvo::Path::MainAxis& axis : main.axes) {
    if (axis.isPresent) {
      registers.push_back(axis.reg.GetVal());
    }
  }
  return registers;
}

/// The points of the path, one for each row that isn't inserted.
class Targets {
 public:
  Targets(const CheckOptions& options, const Orvo::Vector3D& shift) : shift_(shift) {
    if (!options.path.empty()) {
      input_.emplace(options.path, options.pathKind);
    }
  }

  bool IsThere() const { return input_.has_value(); }

  /// Returns the point for a row; null where there is none.
  const Orvo::Path::ToolPoint* Next(const AxisRow& row) {
    if (!input_ || row.isInserted) {
      return nullptr;
    }
    if (input_->Read(&point_, 1) == 0) {
      ++surplusNb_;
      return nullptr;
    }
    ++pointNb_;
    point_.point += shift_;
    return &point_;
  }

  /// Reads what is left; returns what is to be said of the numbers of points and rows, or nothing.
  std::string Finish() {
    std::uint64_t left = 0;
    while (input_ && input_->Read(&point_, 1) > 0) {
      ++left;
    }
    return surplusNb_ > 0 ? std::to_string(surplusNb_) + " rows more than the " +
                                std::to_string(pointNb_) + " points of the path"
           : left > 0 ? "the last " + std::to_string(left) + " of the " +
                            std::to_string(pointNb_ + left) + " points of the path have no row"
                      : std::string();
  }

 private:
  std::optional<PathInput> input_;
  Orvo::Vector3D shift_;
  Orvo::Path::ToolPoint point_;
  std::uint64_t pointNb_ = 0;
  std::uint64_t surplusNb_ = 0;
};

ExitCode RunCheck(const CheckOptions& options) {
  const Orvo::Vector3D offset = ReadVector("--offset", options.offset);
  const Orvo::Vector3D shift = ReadVector("--shift", options.shift);
  RefuseSecondStandardInput(options.machine, options.axes);
  RefuseSecondStandardInput(options.machine, options.path);
  RefuseSecondStandardInput(options.axes, options.path);
  if (options.axesKind == PathKind::Apt) {
    throw UsageFailure("--axes-from: 'apt' holds no axis values");
  }
  const std::string machineName = ShownInput(options.machine);
  Orvo::Kin::Machine machine;
  ReadValidMachine(options.machine, &machine);
  const AxisNames names(machine);
  const int number = FindProgramSystem(machine, options.programSystem);
  const Orvo::Kin::ProgramSystem& programSystem = GetProgramSystem(machine, number);
  std::vector<double> start(static_cast<std::size_t>(names.GetCount()));
  if (!options.start.empty()) {
    start = ByRegister(ReadAxisAssignments("--start", options.start, names), names);
  }
  AxisCheckLimits limits = options.limits;
  if (!options.speeds.empty()) {
    limits.speeds = ByRegister(ReadAxisAssignments("--speed", options.speeds, names), names);
  }
  const bool isLines = options.output.format == OutputFormat::JsonLines;
  ResultOutput output("-");
  AxisCheck::Sink sink;
  if (isLines) {
    sink = [&output](const JsonValue& finding) { output.Write(JsonLine(finding)); };
  }
  std::optional<AxisCheck> check;
  try {
    check.emplace(machine, programSystem, names, offset, limits, sink);
  } catch (const Failure& failure) {
    throw Failure(failure.GetCode(), machineName + ": program system " + std::to_string(number) +
                                         " (" +
                                         PrintableFromWide(programSystem.GetProgramSystemName()) +
                                         "): " + failure.what());
  }
  const bool isJson = FindPathKind(options.axes, options.axesKind) == PathKind::JsonLines;
  AxisRowReader reader(options.axes, isJson, names, MainRegisters(machine, programSystem), start);
  Targets targets(options, shift);
  {
    Progress progress("rows");
    AxisRow row;
    while (reader.Next(&row)) {
      check->Add(row, targets.Next(row));
      progress.Show(check->GetRowNb(), reader.GetShareRead());
    }
  }
  if (check->GetRowNb() == 0) {
    throw Failure(ExitCode::Unreadable, ShownInput(options.axes) + ": the file has no row");
  }
  const std::string mismatch = targets.Finish();
  const bool isMissed = check->HasMiss() || !mismatch.empty();
  const bool isGood = !isMissed && !check->HasExcess();
  if (options.output.format == OutputFormat::Text) {
    const TextStyle style(options.output.color);
    output.Write(ShownInput(options.axes) + " on " + machineName + ": " +
                 (isGood     ? style.Good("good")
                  : isMissed ? style.Bad("misses the path")
                             : style.Bad("exceeds ranges or speeds")) +
                 (check->LacksTimes() ? ", but no speed could be checked" : "") + "\n\n" +
                 check->GetText(targets.IsThere()) +
                 (mismatch.empty() ? "" : "  There are " + mismatch + ".\n"));
  } else {
    JsonValue json;
    if (isLines) {
      json["kind"] = "summary";
    }
    json["good"] = isGood;
    json.update(check->GetJson(targets.IsThere()));
    if (!mismatch.empty()) {
      json["mismatch"] = mismatch;
    }
    output.Write(isLines ? JsonLine(json) : JsonDocument(json));
  }
  output.Finish();
  return isMissed             ? ExitCode::VerificationFailed
         : check->HasExcess() ? ExitCode::OutOfRange
                              : ExitCode::Success;
}

}  // namespace

CommandAction AddCheckCommand(CLI::App* command) {
  const auto options = std::make_shared<CheckOptions>();
  AxisCheckLimits& limits = options->limits;
  command->description(Description);
  command->footer(Footer);
  AddMachineArgument(command, &options->machine);
  command->add_option("AXES", options->axes, "the axis values; '-' is the standard input")
      ->required()
      ->type_name("FILE");
  command->add_option("--path", options->path, "the path that they should follow")
      ->type_name("FILE");
  AddProgramSystemOption(command, &options->programSystem);
  command
      ->add_option("--offset", options->offset,
                   "the tool: 0,0,L for a length of L; 0,0,0 if not given")
      ->type_name("X,Y,Z");
  command
      ->add_option("--shift", options->shift,
                   "where the path's origin lies in the frame of the table; 0,0,0 if not given")
      ->type_name("X,Y,Z");
  command
      ->add_option("--start", options->start,
                   "values of registers that the file doesn't name: some by name, such as "
                   "Z3=-100, or one for each register; 0 if not given")
      ->type_name("VALUES");
  AddPathKindOption(command, &options->pathKind);
  AddChoice<PathKind>(command, "--axes-from", &options->axesKind,
                      {{"csv", PathKind::Csv}, {"jsonl", PathKind::JsonLines}},
                      "what kind of file the axis values are; by its suffix if not given");
  command
      ->add_option("--tolerance", limits.tipTolerance,
                   "how far the tip may be off the path; 0.001 if not given")
      ->type_name("LENGTH")
      ->check(NumberFrom("a length", 0.0));
  command
      ->add_option("--angle-tolerance", limits.angleToleranceDeg,
                   "how far the direction may be off, in degrees; 0.001 if not given")
      ->type_name("DEG")
      ->check(NumberFrom("an angle", 0.0));
  command
      ->add_option("--range-tolerance", limits.rangeTolerance,
                   "how far an axis may be beyond a limit, as rounding may put it; 0.000001 if not "
                   "given")
      ->type_name("T")
      ->check(NumberFrom("a number", 0.0));
  command
      ->add_option("--speed", options->speeds,
                   "the most that axes may move, in units of length or degrees a second")
      ->type_name("NAME=V,...");
  command->add_option("--feed", limits.feed, "the feed of moves for which the files give none")
      ->type_name("FEED")
      ->check(NumberAbove("a feed", 0.0));
  command
      ->add_option("--singular", limits.singularDeg,
                   "how near to a singular direction is near, in degrees; 2 if not given")
      ->type_name("DEG")
      ->check(NumberFrom("an angle", 0.0));
  AddOutputOptions(command, &options->output,
                   {OutputFormat::Text, OutputFormat::Json, OutputFormat::JsonLines});
  return [options]() { return RunCheck(*options); };
}

}  // namespace OrvoTool
