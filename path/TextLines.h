#pragma once

#include <Orvo/Path/ReadError.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <istream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Orvo::Path {

/// Reads a text stream line by line in constant memory, and can return to a line.
class TextLines {
 public:
  static constexpr std::size_t MaxLineBytes = 65536;

  /// Opens a file.
  explicit TextLines(const std::filesystem::path& file);
  TextLines(std::unique_ptr<std::istream> stream, std::string name);

  /// Goes to the next line; false behind the last one.
  bool Next();

  /// Returns the current line without its end.
  std::string_view GetLine() const { return line_; }

  /// Returns the current line's number, from 1.
  std::uint64_t GetNumber() const { return number_; }

  /// Where the next line begins.
  struct Place {
    std::uint64_t offset = 0;
    std::uint64_t number = 0;
  };
  Place GetPlace() const { return {bytesTaken_, number_}; }
  void Return(const Place& place);

  /// Blames a place of the current line, counted in bytes.
  [[noreturn]] void Blame(std::size_t offset, const std::string& message) const;
  [[noreturn]] void BlameLine(std::uint64_t line, std::uint64_t column,
                              const std::string& message) const;

  /// Returns the column of a byte of the current line, in characters from 1.
  std::uint64_t GetColumn(std::size_t offset) const;

  double GetShareRead() const;

 private:
  bool Fill();

  std::string name_;
  std::unique_ptr<std::istream> stream_;
  std::streamoff begin_ = 0;  ///< where the text begins in the stream
  std::vector<char> chunk_;
  std::size_t chunkBegin_ = 0;
  std::size_t chunkEnd_ = 0;
  std::uint64_t bytesTaken_ = 0;
  std::uint64_t size_ = 0;
  std::string line_;
  std::uint64_t number_ = 0;
};

/// Returns a text without white space at its ends.
std::string_view Trim(std::string_view text);

/// Quotes a text for a message: cut where it is long, without control characters.
std::string Quote(std::string_view text);

/// Returns a file's name as UTF-8.
std::string NameOf(const std::filesystem::path& file);

/// Reads a whole text as a finite number; returns what is wrong, or null.
const char* ReadNumber(std::string_view text, double* value);

/// Makes a direction of any length unit, without overflow or underflow; false for the null vector.
bool MakeDirection(double* ijk);

}  // namespace Orvo::Path
