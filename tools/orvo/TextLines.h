#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace OrvoTool {

/// Reads a text file line by line in constant memory, whatever the file holds.
///
/// Lines end in a line feed, alone or behind a carriage return; the last one may have no end. A
/// UTF-8 byte order mark at the start is no part of the first line.
class TextLines {
 public:
  /// Longer lines are refused: no path has them, and reading one whole could take all memory.
  static constexpr std::size_t MaxLineBytes = 65536;

  /// Opens the file.
  /// @param name  the file's name in UTF-8, also used in messages; "-" for the standard input
  /// @throws Failure when it can't be opened
  explicit TextLines(const std::string& name);

  /// Goes to the next line; false behind the last one. GetLine() is valid until the next call.
  /// @throws Failure for a read error, an overlong line, a NUL byte or a lone carriage return
  bool Next();

  /// Returns the line without its end.
  std::string_view GetLine() const { return line_; }

  /// Returns the line's number, from 1.
  std::uint64_t GetNumber() const { return number_; }

  /// Throws the Failure that blames a place of the current line.
  /// @param offset  the byte in the line; messages count characters, from 1
  [[noreturn]] void Blame(std::size_t offset, const std::string& what) const;

  /// Throws the Failure that blames the place where the file begins.
  [[noreturn]] void BlameBegin(const std::string& what) const;

  /// Returns how much of the file has been taken, from 0 to 1, or a negative number where the
  /// file's size is not known, for example that of a pipe.
  double GetShareRead() const;

 private:
  bool Fill();

  std::string name_;
  bool isStandardInput_ = false;
  std::ifstream stream_;
  std::vector<char> chunk_;
  std::size_t chunkBegin_ = 0;
  std::size_t chunkEnd_ = 0;
  std::uint64_t bytesTaken_ = 0;
  std::uint64_t fileSize_ = 0;
  bool isSizeKnown_ = false;
  std::string line_;
  std::uint64_t number_ = 0;
};

}  // namespace OrvoTool
