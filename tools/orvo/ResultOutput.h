#pragma once

#include "OutputFile.h"

#include <optional>
#include <string>
#include <string_view>

namespace OrvoTool {

/// Where a command's result goes: a file, which is there whole or not at all, or the standard
/// output.
class ResultOutput {
 public:
  /// @param name  the file's name in UTF-8; empty or "-" for the standard output
  /// @throws Failure when the file can't be made
  explicit ResultOutput(const std::string& name);

  bool IsStandardOutput() const { return !file_; }

  /// Writes bytes, in large parts.
  /// @throws Failure when not all of them can be written
  void Write(std::string_view bytes);

  /// Writes what is left, and gives the file its name.
  /// @throws Failure
  void Finish();

 private:
  std::optional<OutputFile> file_;
  std::string pending_;
};

}  // namespace OrvoTool
