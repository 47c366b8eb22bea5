#pragma once

#include "AxisNames.h"
#include "JsonMembers.h"
#include "TextLines.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace OrvoTool {

/// One row of a file of axis values.
struct AxisRow {
  std::uint64_t line = 0;      ///< of the file
  std::vector<double> values;  ///< by register
  double inverseTime = 0.0;    ///< of the move to this row, in 1 / minute; 0 where none is given
  double feed = 0.0;           ///< of the move to this row, a minute; 0 where none is given
  bool isRapid = false;
  bool isInserted = false;  ///< whether the row says that it belongs to no point of the path
};

/// Reads axis values from CSV or JSON Lines, as `orvo solve` writes them or anybody else.
///
/// CSV: the first line that is neither empty nor a comment names the columns, separated by commas
/// or semicolons, in any order and in either case. Axes have the names that AxisNames gives them;
/// inverse_time, feed (or f), rapid and flags are known too; others are ignored. JSON Lines: an
/// object a line, with the axes in a member "axes" or beside the others. Registers that a row
/// doesn't name keep their value of the start; one at least must be named.
class AxisRowReader {
 public:
  /// @param name    the file's name in UTF-8; "-" for the standard input
  /// @param isJson  whether it holds JSON Lines
  /// @param needed  registers that must be there
  /// @param start   values by register, for those that aren't
  /// @throws Failure naming file, line and column of what is wrong
  AxisRowReader(const std::string& name, bool isJson, const AxisNames& names,
                std::vector<int> needed, std::vector<double> start);

  /// Reads the next row; false behind the last one.
  /// @throws Failure
  bool Next(AxisRow* row);

  double GetShareRead() const { return lines_.GetShareRead(); }

 private:
  /// What a column holds: a register, or one of these.
  enum Column : int { Ignored = -1, InverseTime = -2, Feed = -3, Rapid = -4, Flags = -5 };

  static int FindColumn(const AxisNames& names, std::string_view name);
  bool NextContent();
  void ReadHeader();
  bool NextCsv(AxisRow* row);
  bool NextJson(AxisRow* row);
  void TakeText(int column, std::string_view text, std::size_t offset, AxisRow* row) const;
  void TakeMember(const JsonMember& member, AxisRow* row, std::vector<bool>* isThere) const;
  void TakeNumber(int column, double value, std::size_t offset, AxisRow* row) const;
  void RequireAll(const std::vector<bool>& isThere, std::size_t offset) const;

  TextLines lines_;
  bool isJson_;
  const AxisNames& names_;
  std::vector<int> needed_;
  std::vector<double> start_;
  char separator_ = ',';
  std::vector<int> columns_;
  std::string_view content_;
};

}  // namespace OrvoTool
