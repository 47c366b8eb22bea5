#pragma once

#include <Orvo/Path/Export.h>

#include <cstdint>
#include <stdexcept>
#include <string>

namespace Orvo::Path {

/// Says where a tool path can't be read, and what was expected there.
class ORVO_PATH_API ReadError : public std::runtime_error {
 public:
  /// @param file     the file's name, UTF-8
  /// @param line     from 1; 0 where the fault is the file's as a whole
  /// @param column   in characters, from 1; 0 with line 0
  /// @param message  what was expected and what is there instead
  ReadError(std::string file, std::uint64_t line, std::uint64_t column, std::string message);

  /// Copies everything.
  ReadError(const ReadError&);
  ReadError& operator=(const ReadError&) = delete;
  ~ReadError() override;

  /// Returns the file's name.
  const std::string& GetFile() const { return file_; }

  /// Returns the line, from 1, or 0.
  std::uint64_t GetLine() const { return line_; }

  /// Returns the column, from 1, or 0.
  std::uint64_t GetColumn() const { return column_; }

  /// Returns what was expected, without the place. what() has "file:line:column: " before it.
  const std::string& GetMessage() const { return message_; }

 private:
  std::string file_;
  std::uint64_t line_;
  std::uint64_t column_;
  std::string message_;
};

/// Something in a file that was passed over.
struct ReadNote {
  std::uint64_t line = 0;    ///< from 1
  std::uint64_t column = 0;  ///< in characters, from 1
  std::string text;          ///< what was passed over
};

}  // namespace Orvo::Path
