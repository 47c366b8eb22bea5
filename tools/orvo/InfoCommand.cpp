#include "InfoCommand.h"

#include "MachineFile.h"
#include "MachineJson.h"
#include "MachineReport.h"
#include "OutputFormat.h"
#include "StandardInput.h"
#include "StandardOutput.h"
#include "Terminal.h"
#include "WideText.h"

#include <Orvo/Kin/Machine.h>

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace OrvoTool {
namespace {

const char Description[] =
    R"(Shows what a machine file holds: the tree of its elements with their kinds,
registers, ranges and links, its heads, tables and program systems, and whether
the machine can be computed with.)";

const char Footer[] =
    R"(Lengths are in the machine's unit, angles in degrees. Where an element stands,
and the direction of its axis, are given in the frame of its parent. Meshes are
not read.

Exit status:
  0  the machine is valid
  1  the command line is wrong
  2  the file can't be read, or the result can't be written
  3  the machine is not valid; what it holds is shown all the same

Examples:
  orvo info machine.xml
  orvo info --format json machine.xml
)";

struct InfoOptions {
  std::string machine;
  OutputChoice output;
};

ExitCode RunInfo(const InfoOptions& options) {
  Orvo::Kin::Machine machine;
  ReadMachine(options.machine, &machine);
  const bool isValid = machine.IsFinished();
  if (options.output.format == OutputFormat::Json) {
    WriteStandardOutput(JsonDocument(MakeMachineJson(machine)));
  } else {
    const TextStyle style(options.output.color);
    const std::string verdict = DescribeVerdict(machine.GetLastError());
    WriteStandardOutput(ShownInput(options.machine) + "\n\n" + style.Heading("Machine:") + " " +
                        (isValid ? style.Good(verdict) : style.Bad(verdict)) + "\n  " +
                        std::to_string(machine.GetEntityNb()) + " elements, " +
                        std::to_string(machine.GetRegisterNb().GetVal()) + " registers, " +
                        std::to_string(machine.GetLinearAxesNb()) + " linear axes\n" + "\n" +
                        style.Heading("Elements") + "\n" + DescribeElements(machine) + "\n" +
                        style.Heading("Heads and tables") + "\n" + DescribeHeadsAndTables(machine) +
                        "\n" + style.Heading("Program systems") + "\n" +
                        DescribeProgramSystems(machine) + "\n" + style.Heading("Collision check") +
                        "\n" + DescribeCollisionCheck(machine));
  }
  return isValid ? ExitCode::Success : ExitCode::MachineInvalid;
}

}  // namespace

CommandAction AddInfoCommand(CLI::App* command) {
  const auto options = std::make_shared<InfoOptions>();
  command->description(Description);
  command->footer(Footer);
  AddMachineArgument(command, &options->machine);
  AddOutputOptions(command, &options->output, {OutputFormat::Text, OutputFormat::Json});
  return [options]() { return RunInfo(*options); };
}

}  // namespace OrvoTool
