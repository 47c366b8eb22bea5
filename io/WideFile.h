#pragma once

#include "io/ByteStream.h"

#include <cstdio>
#include <string>

namespace Orvo {

/// A file with a wide-character name, owned. Off Windows the name is UTF-8 on disk.
class WideFile : public ByteSource, public ByteSink {
 public:
  enum class Mode { Read, Write };

  /// Opens a file. A name that holds a NUL opens nothing.
  WideFile(const std::wstring& path, Mode mode);
  WideFile(const WideFile&) = delete;
  WideFile& operator=(const WideFile&) = delete;
  ~WideFile() override;

  bool IsOpen() const { return file_ != nullptr; }

  std::size_t Read(void* bytes, std::size_t size) override;
  bool HasFailed() const override;
  bool Write(const void* bytes, std::size_t size) override;
  bool Seek(long offset) override;

  /// Returns the size in bytes and goes to the start; negative where the file has no size.
  long Rewind();

  /// The open stream, for a library that writes to one.
  std::FILE* Stream() { return file_; }

  /// Closes the file. Returns whether everything since it was opened has reached the system.
  bool Close();

 private:
  std::FILE* file_ = nullptr;
};

}  // namespace Orvo
