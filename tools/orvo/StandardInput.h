#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace OrvoTool {

/// Tells whether a file's name on the command line means the standard input or output.
inline bool IsStandardStream(const std::string& name) { return name == "-"; }

/// Returns how messages call a file that is read: by its name, or "standard input".
std::string ShownInput(const std::string& name);

/// Refuses a command line that reads two files from the standard input.
/// @throws UsageFailure
void RefuseSecondStandardInput(const std::string& first, const std::string& second);

/// Reads the next bytes of the standard input.
/// @return how many were read; 0 at its end
/// @throws Failure when it can't be read
std::size_t ReadStandardInputPart(char* bytes, std::size_t capacity);

/// Reads the standard input to its end.
/// @throws Failure when it can't be read, or holds more than @p maxBytes
std::string ReadStandardInput(std::uintmax_t maxBytes);

/// The standard input in a file, for what reads files by name or more than once. The file goes with
/// the object, and when the user interrupts the program.
class SpooledInput {
 public:
  /// Copies the standard input to a temporary file.
  /// @param suffix    what the file's name ends with, such as ".xml"
  /// @param maxBytes  more is refused
  /// @throws Failure when it can't be read or copied
  SpooledInput(const std::string& suffix, std::uintmax_t maxBytes);

  /// Does the same to what was read from it before.
  SpooledInput(const std::string& suffix, const std::string& bytes);
  SpooledInput(const SpooledInput&) = delete;
  SpooledInput& operator=(const SpooledInput&) = delete;
  ~SpooledInput();

  const std::filesystem::path& GetFile() const { return file_; }

  /// Returns the file's name in UTF-8.
  std::string GetName() const;

 private:
  using Taker = std::function<void(std::string_view)>;

  /// Makes the file of the parts that @p give hands to the taker that it gets.
  void Fill(const std::string& suffix, const std::function<void(const Taker&)>& give);

  std::filesystem::path file_;
  int interruptionSlot_ = -1;
};

}  // namespace OrvoTool
