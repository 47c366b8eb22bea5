#pragma once

#include "TextLines.h"
#include "VectorSample.h"

#include <Orvo/Vector3D.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace OrvoTool {

/// Returns a line of a file of golden vectors, with its end.
std::string VectorLine(const VectorRecord& record);

/// Returns the first lines of a file.
std::string VectorHeader(const std::string& shape, const Orvo::Vector3D& offset);

/// Reads a file of golden vectors line by line: header, then records.
///
/// "orvo-vectors 1", the machine's shape and the tool come first; then samples, each a record
/// "axes N" and what the machine answered. "end N" closes the file, with the number of samples.
/// Lines that are empty or begin with '#' are passed over.
class VectorReader {
 public:
  /// Opens the file and reads its header.
  /// @throws Failure naming file, line and column of what is wrong
  explicit VectorReader(const std::string& name);

  const std::string& GetShape() const { return shape_; }
  const Orvo::Vector3D& GetOffset() const { return offset_; }

  /// Reads the next record; false behind the last one.
  /// @throws Failure, also where the file ends before its end is said
  bool Next(VectorRecord* record);

  /// Returns the line of the current record, from 1.
  std::uint64_t GetLine() const { return lines_.GetNumber(); }

  /// Blames the current line.
  [[noreturn]] void Blame(const std::string& what) const { lines_.Blame(0, what); }

  double GetShareRead() const { return lines_.GetShareRead(); }

 private:
  bool NextContent();
  void ReadNumbers(std::string_view text, std::vector<double>* numbers) const;

  TextLines lines_;
  std::string shape_;
  Orvo::Vector3D offset_;
  std::uint64_t sampleNb_ = 0;
  bool isEnded_ = false;
};

/// What a comparison of a file with a machine gave.
struct VectorComparison {
  std::uint64_t sampleNb = 0;
  std::uint64_t numberNb = 0;
  std::uint64_t differentNb = 0;  ///< numbers that are not the same bits
  double largestDifference = 0.0;
  std::uint64_t largestLine = 0;
  std::string failure;  ///< what the first line that fails says, or nothing
  std::uint64_t failureLine = 0;

  bool IsGood() const { return failure.empty(); }
};

/// Compares record by record what a file says and what the machine answers now; ends at the first
/// one that differs by more than a tolerance.
class VectorComparer {
 public:
  explicit VectorComparer(double tolerance) : tolerance_(tolerance) {}

  /// Compares; false where they differ by more.
  bool Compare(const VectorRecord& expected, const VectorRecord& found, std::uint64_t line);

  /// Says what is wrong with a line.
  void Fail(std::uint64_t line, const std::string& what);

  VectorComparison result;

 private:
  double tolerance_;
};

}  // namespace OrvoTool
