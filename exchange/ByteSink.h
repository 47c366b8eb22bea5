#pragma once

#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>
#include <string_view>

namespace Orvo::Exchange {

/// Returns a file's name for messages, UTF-8.
std::string NameOf(const std::filesystem::path& file);

/// Returns a path as the wide text that the first library takes.
std::wstring WidePath(const std::filesystem::path& file);

/// Returns a file that a name in UTF-8 stands for.
std::filesystem::path PathFromUtf8(std::string_view name);

/// Writes bytes to a stream.
/// @throws ExchangeError when the stream fails
void WriteBytes(std::string_view bytes, std::ostream& out);

/// Flushes a stream.
/// @throws ExchangeError when it fails, or has failed
void FinishStream(std::ostream& out);

/// A file that is being written.
class FileSink {
 public:
  /// @throws ExchangeError when it can't be opened
  explicit FileSink(const std::filesystem::path& file);

  std::ostream& Stream() { return stream_; }

  /// Closes it.
  /// @throws ExchangeError when not all bytes came to the file
  void Finish();

 private:
  std::string name_;
  std::ofstream stream_;
};

}  // namespace Orvo::Exchange
