#pragma once

#include "JsonText.h"
#include "PathTally.h"

#include <Orvo/Path/MainAxes.h>
#include <Orvo/Path/PathOptions.h>
#include <Orvo/Path/SolvedPoint.h>

#include <string>

namespace OrvoTool {

/// What is told of a whole path behind its rows.
class WholePathSummary {
 public:
  WholePathSummary(const Orvo::Path::MainAxes& axes, const Orvo::Path::PathOptions& options,
                   const Orvo::Path::PathSummary& summary, const PathTally& tally);

  /// Returns the summary for people, in several lines.
  std::string GetText() const;

  /// Returns it for programs. Angles are in degrees.
  JsonValue GetJson() const;

  /// Returns the first diagnosis of each kind with its line, and the shift that would bring all
  /// points in: a line each, for the error stream.
  std::string GetFindings(const std::string& pathName) const;

 private:
  std::string GetCountsText() const;
  std::string GetAxesText() const;
  std::string GetNotesText() const;

  const Orvo::Path::MainAxes& axes_;
  const Orvo::Path::PathOptions& options_;
  const Orvo::Path::PathSummary& summary_;
  const PathTally& tally_;
};

}  // namespace OrvoTool
