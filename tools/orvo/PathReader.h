#pragma once

#include "TextLines.h"

#include <Orvo/Vector3D.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace OrvoTool {

/// One point of a tool path, in the frame of the path.
struct PathPoint {
  Orvo::Vector3D point;      ///< the tool tip
  Orvo::Vector3D direction;  ///< unit direction from the tip towards the spindle
  bool wasUnit = true;       ///< whether the file gave the direction at unit length, within 0.001
  std::uint64_t line = 0;    ///< the line of the file
};

/// Reads a tool path from a CSV file, one point at a time.
///
/// The first line that is neither empty nor a comment names the columns. x, y, z, i, j and k are
/// needed, in any order and in either case; feed (or f) and rapid may be there, may be empty, and
/// are checked although nothing is made of them; other columns are ignored. A header with a
/// semicolon makes the semicolon the separator, else it is the comma. '#' starts a comment, at the
/// start of a line or behind the values. Memory is constant, whatever the file holds.
///
/// Takes the files that Orvo::Path::CsvReader takes, and knows whether directions were unit.
class PathReader {
 public:
  /// Opens the file and reads the names of its columns.
  /// @throws Failure naming file, line and column of what is wrong
  explicit PathReader(const std::string& name);

  /// Reads the next point; false behind the last one.
  /// @throws Failure naming file, line and column of what is wrong
  bool Next(PathPoint* point);

  /// Returns how much of the file has been read, see TextLines::GetShareRead().
  double GetShareRead() const { return lines_.GetShareRead(); }

 private:
  static constexpr std::size_t NeededCount = 6;
  static constexpr std::size_t KnownCount = 8;

  struct Field {
    std::size_t begin = 0;
    std::string_view text;
  };

  bool NextContent(std::string_view* content);
  void ReadHeader(std::string_view content);
  bool TakeField(std::string_view content, std::size_t* position, Field* field) const;
  double ReadValue(const Field& field, std::size_t place) const;
  void CheckFeedAndRapid(const Field& feed, const Field& rapid) const;

  TextLines lines_;
  std::size_t columnCount_ = 0;
  char separator_ = ',';
  std::array<std::size_t, KnownCount> columns_ = {};
};

}  // namespace OrvoTool
