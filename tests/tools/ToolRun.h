#pragma once

#include "support/TemporaryFolder.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Orvo::Testing {

/// How a run of a program went.
struct ToolResult {
  int status = -1;         ///< its exit status, or -1 when a signal ended it
  int signal = 0;          ///< the signal that ended it, or 0
  std::string out;         ///< what it wrote to the standard output
  std::string err;         ///< what it wrote to the error stream
  long peakKilobytes = 0;  ///< the most memory that it held at a time
};

/// Runs the program `orvo` as a user does, in a folder of the test's own.
class ToolRun {
 public:
  /// Runs it and waits for its end.
  ToolResult Run(const std::vector<std::string>& arguments) const;

  /// Runs it by way of a line for the shell, where $ORVO is the program.
  ToolResult Shell(const std::string& line) const;

  /// Runs it with a terminal as its error stream; `err` holds what the terminal got.
  ToolResult RunAtTerminal(const std::vector<std::string>& arguments) const;

  /// Runs a line for the shell, see Shell(), with a terminal as its standard output; `out` holds
  /// what the terminal got, with its line ends.
  ToolResult ShellAtTerminal(const std::string& line) const;

  /// Makes a pipe from which a path without end comes, runs the program, and sends it a signal once
  /// it has begun to write its result.
  ToolResult RunEndlessPathAndSignal(const std::vector<std::string>& arguments,
                                     const std::string& pipe, int signal) const;

  /// Writes a file to the folder and returns its name.
  std::string Write(std::string_view name, std::string_view bytes) const {
    folder_.Write(name, bytes);
    return folder_.Narrow(name);
  }

  /// Returns the name of a file in the folder; nothing is made.
  std::string File(std::string_view name) const { return folder_.Narrow(name); }

  const TemporaryFolder& Folder() const { return folder_; }

  /// Returns how many files are in the folder.
  std::size_t CountFiles() const;

 private:
  TemporaryFolder folder_;
};

/// Returns the machine file of an example.
std::string ExampleMachine(const std::string& name);

/// Returns the path file of an example.
std::string ExamplePath(const std::string& name);

/// Splits a text into lines, without their ends.
std::vector<std::string> Lines(const std::string& text);

/// Splits a line at commas.
std::vector<std::string> Fields(const std::string& line);

}  // namespace Orvo::Testing
