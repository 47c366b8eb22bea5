#pragma once

#include <Orvo/Exchange/Export.h>

#include <cstdint>
#include <stdexcept>
#include <string>

namespace Orvo::Exchange {

/// Says why a machine can't be written in some format, or a file not be written or opened.
class ORVO_EXCHANGE_API ExchangeError : public std::runtime_error {
 public:
  /// @param message  a sentence without its end, UTF-8; names of elements and files are in it
  explicit ExchangeError(const std::string& message);

  /// Copies everything.
  ExchangeError(const ExchangeError&);
  ExchangeError& operator=(const ExchangeError&) = delete;
  ~ExchangeError() override;
};

/// Says where a file can't be read, and what was expected there.
class ORVO_EXCHANGE_API ReadError : public ExchangeError {
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

}  // namespace Orvo::Exchange
