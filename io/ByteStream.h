#pragma once

#include <cstddef>

namespace Orvo {

/// Where bytes are read from.
class ByteSource {
 public:
  virtual ~ByteSource() = default;

  /// Reads up to @p size bytes and returns how many there were; fewer mean the end or an error.
  virtual std::size_t Read(void* bytes, std::size_t size) = 0;

  /// Tells whether a read was cut short by an error and not by the end.
  virtual bool HasFailed() const { return false; }
};

/// Where bytes are written to.
class ByteSink {
 public:
  virtual ~ByteSink() = default;

  /// Writes all bytes, or returns false.
  virtual bool Write(const void* bytes, std::size_t size) = 0;

  /// Goes to an offset from the start, or returns false.
  virtual bool Seek(long offset) = 0;
};

}  // namespace Orvo
