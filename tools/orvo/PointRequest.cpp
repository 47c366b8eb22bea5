#include "PointRequest.h"

#include "AxisAssignment.h"
#include "Failure.h"
#include "MachineFile.h"
#include "MachineJson.h"
#include "NumberText.h"
#include "OutputFormat.h"
#include "ProgramSystemChoice.h"
#include "StandardInput.h"
#include "WideText.h"

#include <Orvo/Kin/Register.h>

#include <CLI/CLI.hpp>

#include <array>
#include <cmath>
#include <optional>
#include <vector>

namespace OrvoTool {

void AddRequestOptions(CLI::App* command, RequestOptions* options) {
  AddMachineArgument(command, &options->machine);
  command
      ->add_option("POINT", options->point,
                   "X,Y,Z: the point for the tool tip, in the frame of the table")
      ->required()
      ->type_name("");
  command
      ->add_option(
          "DIRECTION", options->direction,
          "I,J,K: the direction from the tip towards the spindle, in the same frame, of any "
          "length")
      ->required()
      ->type_name("");
  AddProgramSystemOption(command, &options->programSystem);
  command
      ->add_option("--offset", options->offset,
                   "the tool: 0,0,L for a length of L; 0,0,0 if not given")
      ->type_name("X,Y,Z");
  command
      ->add_option("--start", options->start,
                   "where the axes stand: some by name, such as C=90,A=-10, or one for each "
                   "register; 0 if not given")
      ->type_name("VALUES");
}

Orvo::Vector3D ReadVector(const char* name, const std::string& text) {
  const std::optional<std::array<double, 3>> triple = ReadTriple(text);
  if (!triple) {
    throw UsageFailure(std::string(name) + ": three numbers separated by commas are needed, not '" +
                       Printable(text) + "'");
  }
  return Orvo::Vector3D((*triple)[0], (*triple)[1], (*triple)[2]);
}

PointRequest::PointRequest(const RequestOptions& options)
    : shownMachine_(ShownInput(options.machine)), offset_(ReadVector("--offset", options.offset)) {
  point_.point = ReadVector("POINT", options.point);
  point_.direction = ReadVector("DIRECTION", options.direction);
  if (point_.direction[0] == 0.0 && point_.direction[1] == 0.0 && point_.direction[2] == 0.0) {
    throw UsageFailure("DIRECTION: the direction is null");
  }
  ReadValidMachine(options.machine, &machine_);
  names_ = std::make_unique<AxisNames>(machine_);
  number_ = FindProgramSystem(machine_, options.programSystem);
  programSystem_ = OrvoTool::GetProgramSystem(machine_, number_);
  machine_.Alloc(&start_);
  hasStart_ = !options.start.empty();
  if (hasStart_) {
    PutAssignments(ReadAxisAssignments("--start", options.start, *names_), &start_);
  }
}

std::string PointRequest::GetTitle() const {
  Orvo::Kin::ProgramSystem system = programSystem_;
  return shownMachine_ + ", program system " + std::to_string(number_) + " (" +
         PrintableFromWide(system.GetProgramSystemName()) + "), policy " +
         GetPolicyName(system.GetRotariesCompute());
}

JsonValue PointRequest::MakeJson() const {
  Orvo::Kin::ProgramSystem system = programSystem_;
  const Orvo::Path::MainAxes axes(machine_, programSystem_);
  return JsonValue{
      {"machine", shownMachine_},
      {"programSystem", JsonValue{{"number", number_},
                                  {"name", Utf8FromWide(system.GetProgramSystemName())},
                                  {"policy", GetPolicyName(system.GetRotariesCompute())}}},
      {"request", JsonValue{{"tip", VectorJson(point_.point)},
                            {"direction", VectorJson(point_.direction)},
                            {"offset", VectorJson(offset_)}}},
      {"start", AxisValuesJson(*names_, axes, axes.Take(start_))}};
}

JsonValue AxisValuesJson(const AxisNames& names, const Orvo::Path::MainAxes& axes,
                         const Orvo::Path::AxisValues& values) {
  JsonValue json = JsonValue::object();
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (axes.axes[i].isPresent) {
      json[names.GetName(axes.axes[i].reg.GetVal())] = values[i];
    }
  }
  return json;
}

std::string PlainNumber(double value) { return TableNumber(value, 9); }

std::string VectorText(const Orvo::Vector3D& vector, int digits) {
  return "(" + ShortNumber(vector[0], digits) + ", " + ShortNumber(vector[1], digits) + ", " +
         ShortNumber(vector[2], digits) + ")";
}

}  // namespace OrvoTool
