#pragma once

#include "StandardInput.h"

#include <Orvo/Path/ReadError.h>
#include <Orvo/Path/Readers.h>
#include <Orvo/Path/ToolPoint.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace OrvoTool {

/// The kinds of path files.
enum class PathKind : int {
  BySuffix,   ///< as the file's name says; CSV where it says nothing
  Csv,        ///< comma-separated or semicolon-separated values
  JsonLines,  ///< one JSON object a line
  Apt         ///< APT source, or the text form of a CL file
};

/// Adds --from.
void AddPathKindOption(CLI::App* command, PathKind* kind);

/// Returns what kind a file is of, never PathKind::BySuffix.
PathKind FindPathKind(const std::string& name, PathKind asked);

/// A path to be read, more than once where need be: the standard input is copied to a temporary
/// file first.
class PathInput {
 public:
  /// @param name  the file's name in UTF-8; "-" for the standard input
  /// @throws Failure naming the file and, where it is one of a line, its place
  PathInput(const std::string& name, PathKind kind);

  /// Returns the reader. What it can't understand is an Orvo::Path::ReadError.
  Orvo::Path::TextReader& GetReader() { return *reader_; }

  /// Reads the next points, 0 of them behind the last one.
  /// @throws Failure
  std::size_t Read(Orvo::Path::ToolPoint* points, std::size_t capacity);

  /// Returns how messages call the file.
  const std::string& GetShownName() const { return shownName_; }

  /// Returns what the reader passed over, a line for each, the first of it; empty where there is
  /// none.
  std::string DescribeNotes() const;

 private:
  template <typename Opener>
  void Open(const Opener& open);

  std::string shownName_;
  std::optional<SpooledInput> spooled_;
  std::unique_ptr<Orvo::Path::TextReader> reader_;
};

}  // namespace OrvoTool
