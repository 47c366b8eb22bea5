#include "InfoCommand.h"

#include "MachineFile.h"
#include "MachineReport.h"
#include "StandardOutput.h"
#include "WideText.h"

#include <Orvo/Kin/Machine.h>

#include <CLI/CLI.hpp>

namespace OrvoTool {

namespace {

const std::string HelpText = R"(Usage: orvo info MACHINE.xml

Shows what a machine file holds: the tree of its elements with their kinds,
registers, ranges and links, its heads, tables and program systems, and whether
the machine can be computed with.

  MACHINE.xml   the machine file; meshes are not read

Options:
  -h, --help    print this help

Lengths are in the machine's unit, angles in degrees. Where an element stands,
and the direction of its axis, are given in the frame of its parent.

Exit status:
  0  the machine is valid
  1  the command line is wrong
  2  the file can't be read, or the machine is not valid
  3  the result can't be written

Example:
  orvo info machine.xml
)";

}  // namespace

CLI::App* AddInfoCommand(CLI::App* app, InfoOptions* options) {
  CLI::App* info = app->add_subcommand("info");
  info->add_option("MACHINE.xml", options->machine)->required();
  info->formatter_fn(
      [](const CLI::App*, const std::string&, CLI::AppFormatMode) { return HelpText; });
  return info;
}

ExitCode RunInfo(const InfoOptions& options) {
  Orvo::Kin::Machine machine;
  ReadMachine(options.machine, &machine);
  const std::string text =
      Printable(options.machine) + "\n\n" + "Machine: " + DescribeVerdict(machine.GetLastError()) +
      "\n  " + std::to_string(machine.GetEntityNb()) + " elements, " +
      std::to_string(machine.GetRegisterNb().GetVal()) + " registers, " +
      std::to_string(machine.GetLinearAxesNb()) + " linear axes\n" + "\nElements\n" +
      DescribeElements(machine) + "\nHeads and tables\n" + DescribeHeadsAndTables(machine) +
      "\nProgram systems\n" + DescribeProgramSystems(machine) + "\nCollision check\n" +
      DescribeCollisionCheck(machine);
  WriteStandardOutput(text);
  return machine.IsFinished() ? ExitCode::Success : ExitCode::Input;
}

}  // namespace OrvoTool
