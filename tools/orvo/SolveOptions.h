#pragma once

#include "PathInput.h"
#include "SolvedRow.h"

#include <Orvo/Path/PathOptions.h>

#include <string>

namespace OrvoTool {

/// How axis values are chosen.
enum class SolvePolicy : int {
  Machine,  ///< point by point by the calculator, as the program system's policy says
  Greedy,   ///< the same choice, with exact answers and diagnoses
  Optimal   ///< the best path as a whole
};

/// How the rows are written.
enum class RowFormatChoice : int { BySuffix, Csv, JsonLines };

/// How the summary is written.
enum class SummaryFormat : int { Text, Json, None };

/// What the command line of `orvo solve` says.
struct SolveOptions {
  std::string machine;
  std::string path;
  std::string programSystem = "0";
  std::string offset = "0,0,0";
  std::string shift = "0,0,0";
  std::string start;
  std::string output;
  SolvePolicy policy = SolvePolicy::Machine;
  PathKind kind = PathKind::BySuffix;
  RowFormatChoice rows = RowFormatChoice::BySuffix;
  SummaryFormat summary = SummaryFormat::Text;
  RowColumns columns;

  /// @{
  /// For whole paths.
  std::string weights;
  std::string speeds;
  Orvo::Path::PathOptions wholePath;
  double tipTolerance = -1.0;
  double angleTolerance = -1.0;
  bool hasDeviations = false;
  bool hasNoResiduals = false;
  unsigned int cacheMegabytes = 256;
  /// @}
};

}  // namespace OrvoTool
