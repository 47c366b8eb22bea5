#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace Orvo::Testing {

// A program that is linked with FailingFiles.cpp, and with `--wrap` for the functions that it
// names, fails calls on the files that the library opens. The streams are those of the C library;
// below them stand calls of the system that fail when asked. One thread.

/// Which call fails. The first five are those of the system, below the stream; the others are those
/// that the library itself makes on a stream.
enum class FileCall {
  Open,
  Read,
  Write,
  Seek,
  Close,
  StreamSeek,
  StreamTell,
  StreamFlush,
  StreamClose
};

constexpr FileCall FileCalls[] = {
    FileCall::Open,       FileCall::Read,        FileCall::Write,
    FileCall::Seek,       FileCall::Close,       FileCall::StreamSeek,
    FileCall::StreamTell, FileCall::StreamFlush, FileCall::StreamClose};

std::string NameOf(FileCall call);

/// Stands for an error: the call finds the end of the file, as of one that was cut meanwhile.
constexpr int EndOfFile = -1;

/// How a call fails.
struct FileFault {
  FileCall call = FileCall::Open;

  /// The error that it gives, as errno has it, or EndOfFile; 0: it does half of what it is to do,
  /// and says so.
  int error = 0;

  /// Whether all later calls of the kind fail as well.
  bool isLasting = false;

  /// What happens before the call, which then doesn't fail; empty: it fails.
  std::function<void()> event = {};
};

/// Fails one call of a kind from now: the next (0), the one after it (1), and so on. Until
/// AllowFileCalls(), streams have buffers of so many bytes, so that small files take many calls.
void FailFileCall(const FileFault& fault, std::size_t place, std::size_t bufferSize);

/// What came of it.
struct FileFaultResult {
  bool wasMade = false;              ///< whether the call was made, and so failed
  std::size_t openDescriptorNb = 0;  ///< files that were opened and not closed
  std::size_t bytesRead = 0;         ///< from all files
};

/// Fails no more calls.
FileFaultResult AllowFileCalls();

}  // namespace Orvo::Testing
