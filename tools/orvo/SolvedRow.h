#pragma once

#include "AxisNames.h"

#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Path/MainAxes.h>
#include <Orvo/Path/SolvedPoint.h>

#include <cstdint>
#include <string>
#include <vector>

namespace OrvoTool {

/// How the rows of a result are written.
enum class RowFormat : int { Csv, JsonLines };

/// What a result has beside axis values, line, branch, flags and codes.
struct RowColumns {
  int decimals = 6;  ///< of axis values in CSV
  bool hasResiduals = true;
  bool hasDeviations = false;
  bool hasInverseTime = false;
};

/// Writes the points of a whole path: a row each, with the value of every register.
class SolvedRowWriter {
 public:
  /// @param start  where the axes stand that the program system doesn't move
  SolvedRowWriter(const AxisNames& names, const Orvo::Path::MainAxes& axes,
                  const Orvo::Kin::MachinePosition& start, RowFormat format,
                  const RowColumns& columns);

  /// Returns the first line, if the format has one.
  std::string GetHeader() const;

  /// Appends the row of a point.
  void Append(const Orvo::Path::SolvedPoint& point, std::string* row);

 private:
  void AppendCsv(const Orvo::Path::SolvedPoint& point, std::string* row) const;
  void AppendJson(const Orvo::Path::SolvedPoint& point, std::string* row) const;

  const AxisNames& names_;
  Orvo::Path::MainAxes axes_;
  Orvo::Kin::MachinePosition position_;
  RowFormat format_;
  RowColumns columns_;
  std::vector<std::string> quotedNames_;  ///< by register, as members of JSON objects
};

/// Appends the values of all registers as a JSON object.
void AppendAxesJson(const std::vector<std::string>& quotedNames,
                    const Orvo::Kin::MachinePosition& position, std::string* row);

/// Returns the names of all registers in quotes.
std::vector<std::string> QuoteNames(const AxisNames& names);

/// Tells for a point without an answer whether linear ranges alone are in the way.
bool IsOnlyOutOfRange(const Orvo::Path::SolvedPoint& point);

}  // namespace OrvoTool
