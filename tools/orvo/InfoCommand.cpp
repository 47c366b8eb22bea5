#include "InfoCommand.h"

#include "MachineFile.h"
#include "MachineReport.h"
#include "StandardOutput.h"
#include "WideText.h"

#include <Orvo/Kin/Machine.h>

#include <CLI/CLI.hpp>

namespace OrvoTool {

CLI::App* AddInfoCommand(CLI::App* app, InfoOptions* options) {
  CLI::App* info = app->add_subcommand("info", "Show what a machine file holds");
  info->description(
      "Shows what a machine file holds: the tree of its elements with their kinds, registers, "
      "ranges\n"
      "and links, its heads, tables and program systems, and whether it can be computed with.");
  info->add_option("MACHINE", options->machine, "Machine file (XML)")->required();
  info->footer(
      "Lengths are in the machine's unit, angles in degrees. Links stand in the parent's frame.\n"
      "\n"
      "Exit status:\n"
      "  0  the machine is valid\n"
      "  1  the command line is wrong\n"
      "  2  the file can't be read, or the machine is not valid\n"
      "  3  the result can't be written\n"
      "\n"
      "Example:\n"
      "  orvo info trunnion_ac.xml");
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
