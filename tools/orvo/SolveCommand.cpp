#include "SolveCommand.h"

#include "AxisNames.h"
#include "Failure.h"
#include "MachineFile.h"
#include "NumberText.h"
#include "OutputFile.h"
#include "PathReader.h"
#include "PathSolver.h"
#include "ProgramSystemChoice.h"
#include "Progress.h"
#include "SolveSummary.h"
#include "StandardOutput.h"
#include "WideText.h"

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Vector3D.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

namespace OrvoTool {
namespace {

/// A table with more columns than this is of no use; machines have some tens of registers.
constexpr int MaxRegisters = 4096;

const std::string SolutionsColumn = "solutions";
const std::string FlagsColumn = "flags";

struct SolveOptions {
  std::string machine;
  std::string path;
  std::string programSystem = "0";
  std::string offset = "0,0,0";
  std::string shift = "0,0,0";
  std::string start;
  std::string output;
};

const std::string HelpText = R"(Usage: orvo solve MACHINE.xml PATH.csv [OPTIONS] -o AXES.csv

Turns a tool path into axis values. For each point: the rotary solution nearest
to the position before it, then the linear axes, then the check of all ranges,
then a check of the result by forward kinematics.

  MACHINE.xml   the machine file
  PATH.csv      the tool path: x,y,z is the tool tip, i,j,k the direction from
                the tip towards the spindle, both in the frame of the table

Options:
  -o, --output AXES.csv        where the axis values go; always needed
  -p, --program-system N|NAME  which program system of the machine, by number or
                               by name; 0 if not given
      --offset X,Y,Z           the tool: 0,0,L for a length of L; 0,0,0 if not
                               given
      --shift X,Y,Z            where the path's origin lies in the frame of the
                               table; 0,0,0 if not given
      --start VALUES           axis values before the first point: some by name,
                               such as C=90,A=-10, or one for each register;
                               0 if not given
  -h, --help                   print this help

Lengths are in the machine's unit, angles in degrees.

The path: the first line names the columns, in any order and in upper or lower
case; columns other than x,y,z,i,j,k are ignored. Commas separate them, '#'
starts a comment. Directions of any length are taken.

The result: a row for each point, with the value of every register, named after
its axis, to six decimals; with the number of rotary solutions; and with flags:
  ok              reached, every axis in its range
  out:X;Z         reached, but these axes are outside of their range
  unreachable     not reached; the row repeats the position before
  unreachable:A   the same, because A would have to leave its range
  free:C          any value of C would do, so it kept the one it had
  snapped:B       B stands at its limit, up to 0.01 radian short of what the
                  direction asks for
A summary of all points goes to the standard output. Its path lengths start at
the first point that is reached.

Which rotary solution is taken depends on the policy of the program system.
ShortestWay: the one nearest to the position before, by whole turns, within the
ranges. Default and AlphaPositive: the nearer one of those between -180 and 180
degrees.

Exit status:
  0  every point is solved
  1  the command line is wrong
  2  a file can't be read, the message names its line and column; or the result
     or the summary can't be written, no part of a result is left then
  3  the machine is not valid, or its program system can't be computed with
  4  some points are unreachable, whether or not others are out of range
  5  some points are out of range

Example:
  orvo solve machine.xml path.csv --offset 0,0,30 -o axes.csv
)";

[[noreturn]] void BlameUsage(const std::string& what) { throw UsageFailure(what); }

Orvo::Vector3D ReadVector(const char* option, const std::string& text) {
  const std::optional<std::array<double, 3>> triple = ReadTriple(text);
  if (!triple) {
    BlameUsage(std::string(option) + ": three numbers X,Y,Z are needed, not '" + Printable(text) +
               "'");
  }
  return Orvo::Vector3D((*triple)[0], (*triple)[1], (*triple)[2]);
}

std::vector<std::string_view> SplitAtCommas(std::string_view text) {
  std::vector<std::string_view> parts;
  for (;;) {
    const std::size_t comma = text.find(',');
    parts.push_back(Trim(text.substr(0, comma)));
    if (comma == std::string_view::npos) {
      return parts;
    }
    text.remove_prefix(comma + 1);
  }
}

/// Reads the position to start from: "X=10,C=90", where the others are 0, or a value for each
/// register in their order.
void ReadStart(const std::string& text, const AxisNames& names,
               Orvo::Kin::MachinePosition* position) {
  const std::vector<std::string_view> parts = SplitAtCommas(text);
  const bool isNamed = text.find('=') != std::string::npos;
  if (!isNamed && parts.size() != static_cast<std::size_t>(names.GetCount())) {
    BlameUsage("--start: " + std::to_string(parts.size()) + " values for " +
               std::to_string(names.GetCount()) +
               " registers; give all of them, or some as NAME=VALUE");
  }
  int reg = 0;
  for (const std::string_view part : parts) {
    std::string_view number = part;
    if (isNamed) {
      const std::size_t equals = part.find('=');
      const std::string_view name = Trim(part.substr(0, equals));
      reg = names.Find(name);
      if (equals == std::string_view::npos || reg < 0) {
        std::string known;
        for (int r = 0; r < std::min(names.GetCount(), 40); ++r) {
          known += (r == 0 ? "" : ", ") + names.GetName(r);
        }
        BlameUsage("--start: '" + Printable(part) + "' is not NAME=VALUE with one of " + known);
      }
      number = Trim(part.substr(equals + 1));
    }
    double value = 0.0;
    const NumberFault fault = ReadNumber(number, &value);
    if (fault != NumberFault::None) {
      BlameUsage("--start: '" + Printable(number) + "' " + DescribeFault(fault));
    }
    (*position)[Orvo::Kin::Register(reg)] = value;
    ++reg;
  }
}

void RefuseToOverwrite(const std::string& input, const std::string& output) {
  std::error_code ignored;
  if (std::filesystem::equivalent(FileFromUtf8(input), FileFromUtf8(output), ignored)) {
    BlameUsage("--output: " + Printable(output) + " would replace what is read");
  }
}

void AppendAxisNames(const std::vector<MainAxis>& axes,
                     const std::array<double, MaxMainAxes>& excess, std::string* row) {
  const char* separator = ":";
  for (std::size_t a = 0; a < axes.size(); ++a) {
    if (excess[a] > 0.0) {
      *row += separator;
      *row += axes[a].name;
      separator = ";";
    }
  }
}

void AppendFlags(const PathSolver& solver, const AxisNames& names, const PointResult& result,
                 std::string* row) {
  const std::size_t begin = row->size();
  const std::vector<MainAxis>& axes = solver.GetAxes();
  if (result.outcome != Outcome::Reached) {
    *row += "unreachable";
    AppendAxisNames(axes, result.excess, row);
    return;
  }
  if (result.IsOutOfRange()) {
    *row += "out";
    AppendAxisNames(axes, result.excess, row);
  }
  if (result.freeRegister >= 0) {
    *row += row->size() > begin ? " free:" : "free:";
    *row += names.GetName(result.freeRegister);
  }
  for (std::size_t a = 0; a < axes.size(); ++a) {
    if (result.isSnapped[a]) {
      *row += row->size() > begin ? " snapped:" : "snapped:";
      *row += axes[a].name;
    }
  }
  if (row->size() == begin) {
    *row += "ok";
  }
}

std::string MakeHeader(const AxisNames& names) {
  std::string header;
  for (int r = 0; r < names.GetCount(); ++r) {
    header += names.GetName(r) + ",";
  }
  return header + SolutionsColumn + "," + FlagsColumn + "\n";
}

void AppendRow(const PathSolver& solver, const AxisNames& names, const PointResult& result,
               std::string* row) {
  for (int r = 0; r < names.GetCount(); ++r) {
    AppendFixed(solver.GetPosition()[Orvo::Kin::Register(r)], row);
    row->push_back(',');
  }
  row->push_back(static_cast<char>('0' + result.solutionCount));
  row->push_back(',');
  AppendFlags(solver, names, result, row);
  row->push_back('\n');
}

/// Takes the whole path through the solver and writes a row for each point.
void SolvePath(PathReader* reader, const AxisNames& names, PathSolver* solver, OutputFile* output,
               SolveSummary* summary) {
  Progress progress;
  PathPoint point;
  std::string row;
  output->Write(MakeHeader(names));
  while (reader->Next(&point)) {
    const PointResult result = solver->Solve(point.point, point.direction);
    summary->Add(result, point.wasUnit, solver->GetPosition(), point.line);
    row.clear();
    AppendRow(*solver, names, result, &row);
    output->Write(row);
    progress.Show(summary->GetPointCount(), reader->GetShareRead());
  }
}

/// @return Success, or Unreachable or OutOfRange when some points are; the former wins
ExitCode RunSolve(const SolveOptions& options) {
  const Orvo::Vector3D offset = ReadVector("--offset", options.offset);
  const Orvo::Vector3D shift = ReadVector("--shift", options.shift);
  const std::string machineName = Printable(options.machine);

  Orvo::Kin::Machine machine;
  ReadValidMachine(options.machine, &machine);
  if (machine.GetRegisterNb().GetVal() > MaxRegisters) {
    throw Failure(ExitCode::Unreadable, machineName + ": the machine has " +
                                            std::to_string(machine.GetRegisterNb().GetVal()) +
                                            " registers; a table of at most " +
                                            std::to_string(MaxRegisters) +
                                            " columns can be written");
  }
  const AxisNames names(machine, {SolutionsColumn, FlagsColumn});
  const int number = FindProgramSystem(machine, options.programSystem);
  Orvo::Kin::ProgramSystem programSystem = GetProgramSystem(machine, number);
  Orvo::Kin::MachinePosition start;
  machine.Alloc(&start);
  if (!options.start.empty()) {
    ReadStart(options.start, names, &start);
  }
  PathSolver solver(machine, programSystem, names, offset, shift, start);
  const std::string systemName = "program system " + std::to_string(number) + " (" +
                                 PrintableFromWide(programSystem.GetProgramSystemName()) + ")";
  const std::string fault = solver.FindFault();
  if (!fault.empty()) {
    throw Failure(ExitCode::MachineInvalid, machineName + ": " + systemName + ": " + fault);
  }
  RefuseToOverwrite(options.machine, options.output);
  RefuseToOverwrite(options.path, options.output);

  PathReader reader(options.path);
  SolveSummary summary(solver.GetAxes());
  OutputFile output(options.output);
  SolvePath(&reader, names, &solver, &output, &summary);
  if (summary.GetPointCount() == 0) {
    throw Failure(ExitCode::Unreadable,
                  Printable(options.path) + ": no point follows the first line");
  }
  output.Finish();

  WriteStandardOutput(Printable(options.path) + " on " + machineName + ", " + systemName +
                      ", policy " + GetPolicyName(programSystem.GetRotariesCompute()) + "\n\n" +
                      summary.GetText() + "  Axis values: " + Printable(options.output) + "\n");
  if (summary.GetUnreachableCount() > 0) {
    return ExitCode::Unreachable;
  }
  return summary.GetOutCount() > 0 ? ExitCode::OutOfRange : ExitCode::Success;
}

}  // namespace

CommandAction AddSolveCommand(CLI::App* command) {
  const auto options = std::make_shared<SolveOptions>();
  command->add_option("MACHINE.xml", options->machine)->required()->type_name("FILE");
  command->add_option("PATH.csv", options->path)->required()->type_name("FILE");
  command->add_option("-o,--output", options->output)->required()->type_name("FILE");
  command->add_option("-p,--program-system", options->programSystem)->type_name("N|NAME");
  command->add_option("--offset", options->offset)->type_name("X,Y,Z");
  command->add_option("--shift", options->shift)->type_name("X,Y,Z");
  command->add_option("--start", options->start)->type_name("VALUES");
  command->formatter_fn(
      [](const CLI::App*, const std::string&, CLI::AppFormatMode) { return HelpText; });
  return [options]() { return RunSolve(*options); };
}

}  // namespace OrvoTool
