#include "VectorsCommand.h"

#include "ChoiceOption.h"
#include "Failure.h"
#include "JsonText.h"
#include "MachineFile.h"
#include "NumberOption.h"
#include "NumberText.h"
#include "OutputFile.h"
#include "OutputFormat.h"
#include "ResultOutput.h"
#include "StandardInput.h"
#include "StandardOutput.h"
#include "Terminal.h"
#include "TextLines.h"
#include "VectorFile.h"
#include "VectorSample.h"
#include "WideText.h"

#include <Orvo/Kin/Machine.h>
#include <Orvo/Vector3D.h>

#include <CLI/CLI.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace OrvoTool {
namespace {

const char Description[] =
    R"(Writes or verifies golden vectors of a machine: axis values, and what Orvo
computes for them to the last bit. With them a program, a machine file or an
installation can be held against what it was before.)";

const char Footer[] =
    R"(The file is text, numbers are hexadecimal doubles. Behind three lines about the
machine and the tool, each sample is:
  axes N:        the value of each register
  frame ID ...   the frame of an element in the world: U, V, W, origin
  tool P ...     the frame of the tool in the table, for program system P
  rotary P ...   its rotary solutions for the tool's direction, in degrees
  chosen P ...   what the policy of the program system makes of them
  linear P ...   the values of its linear axes for the tool's point
with the code of the calculator's error, 0 for none; the number of solutions;
and the register of a free axis, or -1. 'end N' closes the file. The first three
samples are all axes at 0, at their lower and at their upper limits; the others
are drawn from the ranges.

Exit status:
  0  written; or verified: equal bit for bit, or within the tolerance
  1  the command line is wrong
  2  a file can't be read or written
  3  the machine is not valid
  6  the machine doesn't give what the file says; the first difference is told

Examples:
  orvo vectors write machine.xml -o machine.vectors
  orvo vectors verify machine.xml machine.vectors
  orvo vectors verify machine.xml machine.vectors --tolerance 0
)";

constexpr double DefaultTolerance = 1e-9;

/// The longest number, "-0x1.0123456789abcp-1022" and the blank before it, and what else the line
/// of the axis values has.
constexpr std::size_t LongestNumber = 25;
constexpr std::size_t LongestHead = 36;

/// With more registers, a line could be longer than those that are read.
constexpr int MaxRegisters =
    static_cast<int>((TextLines::MaxLineBytes - LongestHead) / LongestNumber);

enum class Action : int { Write, Verify };

struct VectorsOptions {
  Action action = Action::Write;
  std::string machine;
  std::string file;
  std::string output;
  int count = 100;
  std::uint64_t seed = 1;
  std::string offset = "0,0,100";
  double tolerance = DefaultTolerance;
  OutputChoice format;
};

ExitCode Write(const VectorsOptions& options) {
  const std::optional<std::array<double, 3>> offset = ReadTriple(options.offset);
  if (!offset) {
    throw UsageFailure("--offset: three numbers X,Y,Z are needed, not '" +
                       Printable(options.offset) + "'");
  }
  if (options.output.empty()) {
    throw UsageFailure("--output is needed to write; '-' is the standard output");
  }
  RefuseToReplaceInput("--output", options.output, {options.machine});
  Orvo::Kin::Machine machine;
  ReadValidMachine(options.machine, &machine);
  if (machine.GetRegisterNb().GetVal() > MaxRegisters) {
    throw Failure(ExitCode::Unreadable, ShownInput(options.machine) + ": the machine has " +
                                            std::to_string(machine.GetRegisterNb().GetVal()) +
                                            " registers; at most " + std::to_string(MaxRegisters) +
                                            " can be written to a line of vectors");
  }
  const Orvo::Vector3D tool((*offset)[0], (*offset)[1], (*offset)[2]);
  VectorSampler sampler(machine, tool);
  ResultOutput output(options.output);
  output.Write(VectorHeader(sampler.GetShape(), tool));
  for (int sample = 0; sample < options.count; ++sample) {
    VectorRecord axes;
    axes.head = "axes " + std::to_string(sample);
    axes.values = sampler.MakeAxes(sample, options.seed);
    output.Write(VectorLine(axes));
    for (const VectorRecord& record : sampler.Compute(axes.values)) {
      output.Write(VectorLine(record));
    }
  }
  output.Write("end " + std::to_string(options.count) + "\n");
  output.Finish();
  return ExitCode::Success;
}

/// Compares what a file says with what a machine gives.
VectorComparison Compare(VectorReader* reader, const Orvo::Kin::Machine& machine,
                         double tolerance) {
  VectorSampler sampler(machine, reader->GetOffset());
  VectorComparer comparer(tolerance);
  if (reader->GetShape() != sampler.GetShape()) {
    comparer.Fail(reader->GetLine(), "the file was made of a machine with " +
                                         Printable(reader->GetShape()) + ", this one has " +
                                         sampler.GetShape());
    return comparer.result;
  }
  const auto registerNb = static_cast<std::size_t>(machine.GetRegisterNb().GetVal());
  std::vector<VectorRecord> expected;
  std::size_t next = 0;
  const auto missOne = [&]() {
    if (next < expected.size()) {
      comparer.Fail(reader->GetLine(), "'" + expected[next].head + "' is missing before this line");
    }
    return next < expected.size();
  };
  VectorRecord record;
  while (reader->Next(&record)) {
    if (record.head.compare(0, 5, "axes ") == 0) {
      if (record.values.size() != registerNb) {
        reader->Blame("expected " + std::to_string(registerNb) + " axis values");
      }
      if (missOne()) {
        return comparer.result;
      }
      expected = sampler.Compute(record.values);
      next = 0;
      ++comparer.result.sampleNb;
    } else if (next == expected.size()) {
      comparer.Fail(reader->GetLine(), "'" + Printable(record.head) + "' is one line too many");
      return comparer.result;
    } else if (!comparer.Compare(record, expected[next++], reader->GetLine())) {
      return comparer.result;
    }
  }
  missOne();
  return comparer.result;
}

JsonValue MakeJson(const VectorsOptions& options, const VectorComparison& comparison) {
  JsonValue json;
  json["file"] = ShownInput(options.file);
  json["good"] = comparison.IsGood();
  json["bit_equal"] = comparison.IsGood() && comparison.differentNb == 0;
  json["samples"] = comparison.sampleNb;
  json["numbers"] = comparison.numberNb;
  json["different"] = comparison.differentNb;
  json["largest_difference"] = comparison.largestDifference;
  json["tolerance"] = options.tolerance;
  if (!comparison.IsGood()) {
    json["line"] = comparison.failureLine;
    json["failure"] = comparison.failure;
  }
  return json;
}

std::string MakeText(const VectorsOptions& options, const VectorComparison& comparison) {
  const TextStyle style(options.format.color);
  const std::string file = ShownInput(options.file);
  if (!comparison.IsGood()) {
    return style.Bad("different") + ": " + file + ":" + std::to_string(comparison.failureLine) +
           ": " + comparison.failure + "\n";
  }
  const std::string counts = std::to_string(comparison.sampleNb) + " samples, " +
                             std::to_string(comparison.numberNb) + " numbers";
  if (comparison.differentNb == 0) {
    return style.Good("equal") + " bit for bit: " + file + ", " + counts + "\n";
  }
  return style.Good("equal") + " within " + ShortNumber(options.tolerance) + ": " + file + ", " +
         counts + "; " + std::to_string(comparison.differentNb) + " are not the same bits, by " +
         ShortNumber(comparison.largestDifference, 2) + " at most (line " +
         std::to_string(comparison.largestLine) + ")\n";
}

ExitCode Verify(const VectorsOptions& options) {
  if (options.file.empty()) {
    throw UsageFailure("FILE is needed to verify");
  }
  RefuseSecondStandardInput(options.machine, options.file);
  Orvo::Kin::Machine machine;
  ReadValidMachine(options.machine, &machine);
  VectorReader reader(options.file);
  const VectorComparison comparison = Compare(&reader, machine, options.tolerance);
  WriteStandardOutput(options.format.format == OutputFormat::Json
                          ? JsonDocument(MakeJson(options, comparison))
                          : MakeText(options, comparison));
  return comparison.IsGood() ? ExitCode::Success : ExitCode::VerificationFailed;
}

}  // namespace

CommandAction AddVectorsCommand(CLI::App* command) {
  const auto options = std::make_shared<VectorsOptions>();
  command->description(Description);
  command->footer(Footer);
  AddChoice<Action>(command, "ACTION", &options->action,
                    {{"write", Action::Write}, {"verify", Action::Verify}}, "write or verify")
      ->required();
  AddMachineArgument(command, &options->machine);
  command->add_option("FILE", options->file, "the file to verify, or '-'");
  const std::vector<const CLI::Option*> forWriting = {
      command
          ->add_option("-o,--output", options->output, "where to write; '-' is the standard output")
          ->type_name("FILE"),
      command->add_option("--count", options->count, "how many samples to write; 100 if not given")
          ->type_name("N")
          ->check(WholeNumberWithin(1, 1000000)),
      command->add_option("--seed", options->seed, "which samples are drawn; 1 if not given")
          ->type_name("N")
          ->check(WholeNumberWithin(0, std::numeric_limits<std::uint64_t>::max())),
      command
          ->add_option("--offset", options->offset,
                       "the tool to write: 0,0,L for a length of L; 0,0,100 if not given")
          ->type_name("X,Y,Z")};
  const CLI::Option* const tolerance =
      command
          ->add_option("--tolerance", options->tolerance,
                       "by how much numbers may differ when verifying, in units of length, degrees "
                       "or 1; 1e-9 if not given, 0 demands the same bits")
          ->type_name("T")
          ->check(NumberFrom("a number", 0.0));
  AddOutputOptions(command, &options->format, {OutputFormat::Text, OutputFormat::Json});
  return [options, forWriting, tolerance]() {
    for (const CLI::Option* option : forWriting) {
      if (options->action == Action::Verify && option->count() > 0) {
        throw UsageFailure(option->get_name() + " is for writing");
      }
    }
    if (options->action == Action::Verify) {
      return Verify(*options);
    }
    if (tolerance->count() > 0) {
      throw UsageFailure(tolerance->get_name() + " is for verifying");
    }
    return Write(*options);
  };
}

}  // namespace OrvoTool
