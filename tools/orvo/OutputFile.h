#pragma once

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <string_view>

namespace OrvoTool {

/// Refuses a command line whose result would replace a file that is read, also one that has another
/// name there, or is the standard input.
/// @param option  what names the result, for the message
/// @param output  the result's name in UTF-8; neither an empty one nor "-" is a file
/// @param inputs  the names of what is read; "-" is the standard input, empty ones are passed over
/// @throws UsageFailure
void RefuseToReplaceInput(const std::string& option, const std::string& output,
                          std::initializer_list<std::string> inputs);

/// Writes a file that is either there whole or not there at all.
///
/// The bytes go to a temporary file beside the target, which takes the target's name when all is
/// written; until then an older target stays as it was. What is no regular file, such as a device
/// or a pipe, is written directly.
class OutputFile {
 public:
  /// Makes the temporary file.
  /// @param name  the target's name in UTF-8
  /// @throws Failure when it can't be made
  explicit OutputFile(const std::string& name);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// Removes the temporary file, unless Finish() gave it its name.
  ~OutputFile();

  /// Writes bytes.
  /// @throws Failure when not all of them can be written, for example on a full disk
  void Write(std::string_view bytes);

  /// Closes the file and gives it its name.
  /// @throws Failure when bytes can't be written or the name can't be given
  void Finish();

 private:
  OutputFile(std::string shownName, std::filesystem::path target);

  [[noreturn]] void Blame(const std::string& what);
  void Flush();

  std::string shownName_;
  std::filesystem::path target_;
  std::filesystem::path written_;
  bool isTemporary_ = false;
  int interruptionSlot_ = -1;
  std::ofstream stream_;
  std::string pending_;
};

}  // namespace OrvoTool
