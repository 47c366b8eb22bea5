#pragma once

#include "AxisNames.h"
#include "ExitCode.h"
#include "SolveOptions.h"

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Vector3D.h>

#include <string>

namespace OrvoTool {

/// What a path is solved with, looked up and checked.
struct SolveRun {
  const SolveOptions& options;
  const Orvo::Kin::Machine& machine;
  const Orvo::Kin::ProgramSystem& programSystem;
  std::string machineName;  ///< as messages call the machine file
  std::string systemName;   ///< the same for the program system
  const AxisNames& names;
  Orvo::Vector3D offset;
  Orvo::Vector3D shift;
  Orvo::Kin::MachinePosition start;
  RowFormat format = RowFormat::Csv;

  bool HasRows() const { return !options.output.empty(); }
  bool HasRowsOnStandardOutput() const { return options.output == "-"; }
};

/// Solves point by point with the calculator.
ExitCode SolveByMachine(const SolveRun& run);

/// Solves the path as a whole.
ExitCode SolveByPath(const SolveRun& run);

/// Returns where the rows went, for the summary.
std::string DescribeOutput(const SolveRun& run);

/// Writes lines to the error stream.
void WriteNotes(const std::string& lines);

/// Writes a summary, if one is wanted: to the standard output, or to the error stream where the
/// rows go there.
void WriteSummary(const SolveRun& run, const std::string& text);

}  // namespace OrvoTool
