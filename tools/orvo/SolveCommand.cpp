#include "SolveCommand.h"

#include "AxisAssignment.h"
#include "AxisNames.h"
#include "ChoiceOption.h"
#include "Failure.h"
#include "MachineFile.h"
#include "NumberOption.h"
#include "NumberText.h"
#include "OutputFile.h"
#include "OutputFormat.h"
#include "ProgramSystemChoice.h"
#include "SolveRun.h"
#include "StandardInput.h"
#include "StandardOutput.h"
#include "WideText.h"

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>

#include <CLI/CLI.hpp>

#include <array>
#include <cstdio>
#include <memory>
#include <optional>
#include <vector>

namespace OrvoTool {
namespace {

/// A table with more columns than this is of no use; machines have some tens of registers.
constexpr int MaxRegisters = 4096;

const char Description[] =
    R"(Turns a tool path into axis values. x,y,z of a point is the tool tip, i,j,k the
direction from the tip towards the spindle, both in the frame of the table.)";

const char Footer[] = R"(Lengths are in the machine's unit, angles in degrees, feeds are a minute.

The policies:
  machine  for each point the rotary solution nearest to the position before it,
           by the calculator and its tolerances; then the ranges of linear axes
           are looked at. Which solution is near depends on the program system.
           ShortestWay: by whole turns, within the ranges. Default and
           AlphaPositive: the nearer one of those between -180 and 180 degrees
  greedy   the same choice among exact answers within all ranges; a reason for
           each point that has none
  optimal  the path whose sum of moves is the smallest of all, among both
           solutions and all their whole turns within the ranges; it is found
           wherever there is one

The path, as CSV: the first line names the columns, in any order and in upper or
lower case, separated by commas or semicolons; x,y,z,i,j,k are needed, f (or
feed) and rapid are taken where they are there, others are ignored. '#' starts
a comment. Directions of any length are taken.

The result of the policy machine: a row for each point, with the value of every
register, named after its axis; with the number of rotary solutions; and with
flags:
  ok              reached, every axis in its range
  out:X;Z         reached, but these axes are outside of their range
  unreachable     not reached; the row repeats the position before
  unreachable:A   the same, because A would have to leave its range
  free:C          any value of C would do, so it kept the one it had
  snapped:B       B stands at its limit, up to 0.01 radian short of what the
                  direction asks for
Of the others: a row for each point, and for each one inserted; the values; the
line of the path; the branch of the rotary solutions, 1 or -1; flags; the codes
of what is to be said of the point, such as 103; and what forward kinematics
leaves, a length and an angle. Their flags are ok, unreachable, out-of-range,
inserted, held, branch-change, unwinding. The first point of each code comes in
words to the error stream, all of them stand in rows of JSON Lines.

A summary of all points goes to the standard output, or to the error stream
where the rows go there.

Exit status:
  0  every point is solved
  1  the command line is wrong
  2  a file can't be read, with its line and column in the message, or written;
     no part of a result is left
  3  the machine, or its program system, can't be computed with
  4  some points are unreachable, whether or not others are out of range
  5  some points are out of range of the linear axes
  6  all points are solved, but forward kinematics misses them by more than
     rounding; under the policy machine alone, the others are exact

Examples:
  orvo solve machine.xml path.csv --offset 0,0,30 -o axes.csv
  orvo solve machine.xml part.apt --policy optimal --tolerance 0.01 -o axes.csv
  cat path.jsonl | orvo solve machine.xml - --from jsonl --policy greedy -o -
)";

Orvo::Vector3D ReadVector(const char* option, const std::string& text) {
  const std::optional<std::array<double, 3>> triple = ReadTriple(text);
  if (!triple) {
    throw UsageFailure(std::string(option) + ": three numbers X,Y,Z are needed, not '" +
                       Printable(text) + "'");
  }
  return Orvo::Vector3D((*triple)[0], (*triple)[1], (*triple)[2]);
}

RowFormat FindRowFormat(const SolveOptions& options) {
  if (options.rows != RowFormatChoice::BySuffix) {
    return options.rows == RowFormatChoice::Csv ? RowFormat::Csv : RowFormat::JsonLines;
  }
  return FindPathKind(options.output, PathKind::BySuffix) == PathKind::JsonLines
             ? RowFormat::JsonLines
             : RowFormat::Csv;
}

ExitCode RunSolve(const SolveOptions& options) {
  const Orvo::Vector3D offset = ReadVector("--offset", options.offset);
  const Orvo::Vector3D shift = ReadVector("--shift", options.shift);
  RefuseSecondStandardInput(options.machine, options.path);
  const std::string machineName = ShownInput(options.machine);

  Orvo::Kin::Machine machine;
  ReadValidMachine(options.machine, &machine);
  if (machine.GetRegisterNb().GetVal() > MaxRegisters) {
    throw Failure(ExitCode::Unreadable, machineName + ": the machine has " +
                                            std::to_string(machine.GetRegisterNb().GetVal()) +
                                            " registers; a table of at most " +
                                            std::to_string(MaxRegisters) +
                                            " columns can be written");
  }
  const AxisNames names(machine);
  const int number = FindProgramSystem(machine, options.programSystem);
  const Orvo::Kin::ProgramSystem& programSystem = GetProgramSystem(machine, number);
  Orvo::Kin::MachinePosition start;
  machine.Alloc(&start);
  if (!options.start.empty()) {
    PutAssignments(ReadAxisAssignments("--start", options.start, names), &start);
  }
  RefuseToReplaceInput("--output", options.output, {options.machine, options.path});
  const SolveRun run = {options,
                        machine,
                        programSystem,
                        machineName,
                        "program system " + std::to_string(number) + " (" +
                            PrintableFromWide(programSystem.GetProgramSystemName()) + ")",
                        names,
                        offset,
                        shift,
                        start,
                        FindRowFormat(options)};
  return options.policy == SolvePolicy::Machine ? SolveByMachine(run) : SolveByPath(run);
}

/// What the command line holds, with the options that one policy doesn't have.
struct DeclaredOptions {
  SolveOptions values;
  std::vector<const CLI::Option*> forWholePaths;
};

void AddWholePathOptions(CLI::App* command, DeclaredOptions* declared) {
  SolveOptions& values = declared->values;
  Orvo::Path::PathOptions& path = values.wholePath;
  const char* const group = "Options of the policies greedy and optimal";
  const auto add = [&](CLI::Option* option) {
    option->group(group);
    declared->forWholePaths.push_back(option);
  };
  add(AddChoice<Orvo::Path::MeasureKind>(
      command, "--measure", &path.measure.kind,
      {{"travel", Orvo::Path::MeasureKind::Travel}, {"time", Orvo::Path::MeasureKind::Time}},
      "what is to be small: the weighted travel of the axes, or the time of the slowest axis of "
      "each move; travel if not given"));
  add(command
          ->add_option("--weight", values.weights,
                       "what a unit of length or a degree of travel costs; 1 where not given")
          ->type_name("NAME=W,..."));
  add(command
          ->add_option("--speed", values.speeds,
                       "how fast axes are, in units of length or degrees a second, for the time "
                       "and for --inverse-time; 10000 a minute where not given")
          ->type_name("NAME=V,..."));
  add(command
          ->add_option("--branch-cost", path.measure.branchChangeCost,
                       "what it costs to go over to the other rotary solution; 0 if not given")
          ->type_name("COST")
          ->check(NumberFrom("a cost", 0.0)));
  add(command
          ->add_option("--unwind-cost", path.measure.unwindingCost,
                       "what a turn of more than 180 degrees in one move costs; 0 if not given")
          ->type_name("COST")
          ->check(NumberFrom("a cost", 0.0)));
  add(command
          ->add_option("--cone", path.singularConeDeg,
                       "half the opening of the cone around singular directions in which the free "
                       "axis is kept steady, in degrees; 0 if not given")
          ->type_name("DEG")
          ->check(NumberWithin("an angle", 0.0, 90.0)));
  add(AddChoice<Orvo::Path::SingularRule>(
      command, "--singular", &path.singularRule,
      {{"hold", Orvo::Path::SingularRule::Hold},
       {"interpolate", Orvo::Path::SingularRule::Interpolate}},
      "what the free axis does there: it stands, or goes evenly to where it must be behind it; "
      "hold if not given"));
  add(command->add_flag("--free-start", path.isStartFree,
                        "let the way from --start to the first point cost nothing"));
  add(command->add_flag("--deviation", values.hasDeviations,
                        "compute how far the tool leaves the straight connection between points"));
  add(command
          ->add_option("--tolerance", values.tipTolerance,
                       "insert points until the tip keeps this near to the straight line")
          ->type_name("LENGTH")
          ->check(NumberAbove("a length", 0.0)));
  add(command
          ->add_option("--angle-tolerance", values.angleTolerance,
                       "the same for the direction, in degrees; 0.01 and 0.1 where only one of "
                       "both is given")
          ->type_name("DEG")
          ->check(NumberAbove("an angle", 0.0)));
  add(command->add_flag("--inverse-time", values.columns.hasInverseTime,
                        "add the inverse time of each move, in 1 / minute"));
  add(command->add_flag("--no-residuals", values.hasNoResiduals,
                        "leave the check by forward kinematics out"));
  add(command
          ->add_option("--threads", path.threadNb,
                       "how many threads work; as many as the machine runs at once if not given")
          ->type_name("N")
          ->check(WholeNumberWithin(1, 256)));
  add(command
          ->add_option("--memory", values.cacheMegabytes,
                       "how much may be kept instead of computed again, in MiB; 256 if not given")
          ->type_name("MIB")
          ->check(WholeNumberWithin(0, 1048576)));
}

}  // namespace

std::string DescribeOutput(const SolveRun& run) {
  return run.HasRows() && !run.HasRowsOnStandardOutput()
             ? "  Axis values: " + Printable(run.options.output) + "\n"
             : std::string();
}

void WriteNotes(const std::string& lines) {
  std::fputs(lines.c_str(), stderr);
  std::fflush(stderr);
}

void WriteSummary(const SolveRun& run, const std::string& text) {
  if (run.options.summary == SummaryFormat::None) {
    return;
  }
  if (run.HasRowsOnStandardOutput()) {
    WriteNotes(text);
  } else {
    WriteStandardOutput(text);
  }
}

CommandAction AddSolveCommand(CLI::App* command) {
  const auto declared = std::make_shared<DeclaredOptions>();
  SolveOptions& values = declared->values;
  command->description(Description);
  command->footer(Footer);
  AddMachineArgument(command, &values.machine);
  command->add_option("PATH", values.path, "the tool path; '-' is the standard input")->required();
  command
      ->add_option("-o,--output", values.output,
                   "where the axis values go; '-' is the standard output. Without it there is only "
                   "the summary")
      ->type_name("AXES");
  AddProgramSystemOption(command, &values.programSystem);
  command
      ->add_option("--offset", values.offset,
                   "the tool: 0,0,L for a length of L; 0,0,0 if not given")
      ->type_name("X,Y,Z");
  command
      ->add_option("--shift", values.shift,
                   "where the path's origin lies in the frame of the table; 0,0,0 if not given")
      ->type_name("X,Y,Z");
  command
      ->add_option("--start", values.start,
                   "axis values before the first point: some by name, such as C=90,A=-10, or one "
                   "for each register; 0 if not given")
      ->type_name("VALUES");
  AddChoice<SolvePolicy>(command, "--policy", &values.policy,
                         {{"machine", SolvePolicy::Machine},
                          {"greedy", SolvePolicy::Greedy},
                          {"optimal", SolvePolicy::Optimal}},
                         "how axis values are chosen, see below; machine if not given");
  AddPathKindOption(command, &values.kind);
  AddChoice<RowFormatChoice>(
      command, "--format", &values.rows,
      {{"csv", RowFormatChoice::Csv}, {"jsonl", RowFormatChoice::JsonLines}},
      "how the rows are written; if not given, as JSON Lines to files that end in .jsonl or "
      ".ndjson, as CSV to others");
  command
      ->add_option("--decimals", values.columns.decimals,
                   "how many decimals axis values have in CSV; 6 if not given")
      ->type_name("N")
      ->check(WholeNumberWithin(0, 15));
  AddChoice<SummaryFormat>(
      command, "--summary", &values.summary,
      {{"text", SummaryFormat::Text}, {"json", SummaryFormat::Json}, {"none", SummaryFormat::None}},
      "how the summary is written; text if not given");
  AddWholePathOptions(command, declared.get());
  return [declared]() {
    if (declared->values.policy == SolvePolicy::Machine) {
      for (const CLI::Option* option : declared->forWholePaths) {
        if (option->count() > 0) {
          throw UsageFailure(option->get_name() + " needs --policy greedy or --policy optimal");
        }
      }
    }
    return RunSolve(declared->values);
  };
}

}  // namespace OrvoTool
