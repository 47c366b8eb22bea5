#include "faults/FailingFiles.h"

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <list>
#include <string>
#include <vector>

// The linker leads the library's calls of these functions to those named __wrap_, and gives the
// functions themselves the names with __real_.
extern "C" {
std::FILE* __real_fopen(const char* path, const char* mode);
std::FILE* __wrap_fopen(const char* path, const char* mode);
int __real_fseek(std::FILE* stream, long offset, int origin);
int __wrap_fseek(std::FILE* stream, long offset, int origin);
long __real_ftell(std::FILE* stream);
long __wrap_ftell(std::FILE* stream);
int __real_fflush(std::FILE* stream);
int __wrap_fflush(std::FILE* stream);
int __real_fclose(std::FILE* stream);
int __wrap_fclose(std::FILE* stream);
}

namespace Orvo::Testing {
namespace {

/// A file below a stream.
struct OpenFile {
  int descriptor = -1;
  std::vector<char> buffer;
};

bool isActive = false;
FileFault activeFault;
std::size_t callsLeft = 0;
bool wasMade = false;
std::size_t streamBufferSize = 0;
std::size_t openDescriptorNb = 0;
std::size_t bytesRead = 0;

// Streams touch their buffers to the very end of closing, so all files live until none fails.
std::list<OpenFile> files;

bool Fails(FileCall call) {
  if (!isActive || activeFault.call != call) {
    return false;
  }
  if (callsLeft > 0) {
    --callsLeft;
    return false;
  }
  const bool isFirst = !wasMade;
  wasMade = true;
  if (activeFault.event) {
    activeFault.event();
    return false;
  }
  return isFirst || activeFault.isLasting;
}

// Makes a call fail as the fault has it: with its error, or by half of its bytes.
template <typename Call>
ssize_t FailOrHalve(std::size_t size, Call call) {
  if (activeFault.error == EndOfFile) {
    return 0;
  }
  if (activeFault.error != 0) {
    errno = activeFault.error;
    return -1;
  }
  return call(size / 2);
}

ssize_t ReadFile(void* cookie, char* bytes, std::size_t size) {
  const int descriptor = static_cast<OpenFile*>(cookie)->descriptor;
  const auto readSome = [descriptor, bytes](std::size_t some) {
    return read(descriptor, bytes, some);
  };
  const ssize_t count = Fails(FileCall::Read) ? FailOrHalve(size, readSome) : readSome(size);
  bytesRead += static_cast<std::size_t>(std::max<ssize_t>(0, count));
  return count;
}

// A stream takes 0 for the failure of a write.
ssize_t WriteFile(void* cookie, const char* bytes, std::size_t size) {
  const int descriptor = static_cast<OpenFile*>(cookie)->descriptor;
  const auto writeSome = [descriptor, bytes](std::size_t some) {
    return write(descriptor, bytes, some);
  };
  return std::max<ssize_t>(0,
                           Fails(FileCall::Write) ? FailOrHalve(size, writeSome) : writeSome(size));
}

int SeekFile(void* cookie, off64_t* offset, int origin) {
  if (Fails(FileCall::Seek)) {
    errno = activeFault.error;
    return -1;
  }
  const off64_t place = lseek64(static_cast<OpenFile*>(cookie)->descriptor, *offset, origin);
  if (place < 0) {
    return -1;
  }
  *offset = place;
  return 0;
}

// What fails to close is closed all the same, as the system has it.
int CloseFile(void* cookie) {
  OpenFile& file = *static_cast<OpenFile*>(cookie);
  const int result = close(file.descriptor);
  --openDescriptorNb;
  if (Fails(FileCall::Close)) {
    errno = activeFault.error;
    return -1;
  }
  return result;
}

std::FILE* OpenStream(const char* path, const char* mode) {
  if (Fails(FileCall::Open)) {
    errno = activeFault.error;
    return nullptr;
  }
  const int flags = mode[0] == 'r' ? O_RDONLY : O_WRONLY | O_CREAT | O_TRUNC;
  const int descriptor = open(path, flags | O_CLOEXEC, 0666);
  if (descriptor < 0) {
    return nullptr;
  }
  files.push_back({descriptor, std::vector<char>(streamBufferSize)});
  std::FILE* const stream =
      fopencookie(&files.back(), mode, {&ReadFile, &WriteFile, &SeekFile, &CloseFile});
  std::setvbuf(stream, files.back().buffer.data(), _IOFBF, streamBufferSize);
  ++openDescriptorNb;
  return stream;
}

}  // namespace

std::string NameOf(FileCall call) {
  switch (call) {
    case FileCall::Open:
      return "open";
    case FileCall::Read:
      return "read";
    case FileCall::Write:
      return "write";
    case FileCall::Seek:
      return "seek";
    case FileCall::Close:
      return "close";
    case FileCall::StreamSeek:
      return "fseek";
    case FileCall::StreamTell:
      return "ftell";
    case FileCall::StreamFlush:
      return "fflush";
    case FileCall::StreamClose:
      return "fclose";
  }
  return "?";
}

void FailFileCall(const FileFault& fault, std::size_t place, std::size_t bufferSize) {
  activeFault = fault;
  callsLeft = place;
  wasMade = false;
  streamBufferSize = bufferSize;
  openDescriptorNb = 0;
  bytesRead = 0;
  isActive = true;
}

FileFaultResult AllowFileCalls() {
  isActive = false;
  files.clear();
  return {wasMade, openDescriptorNb, bytesRead};
}

}  // namespace Orvo::Testing

using Orvo::Testing::FileCall;

std::FILE* __wrap_fopen(const char* path, const char* mode) {
  return Orvo::Testing::isActive ? Orvo::Testing::OpenStream(path, mode) : __real_fopen(path, mode);
}

int __wrap_fseek(std::FILE* stream, long offset, int origin) {
  if (Orvo::Testing::Fails(FileCall::StreamSeek)) {
    errno = Orvo::Testing::activeFault.error;
    return -1;
  }
  return __real_fseek(stream, offset, origin);
}

long __wrap_ftell(std::FILE* stream) {
  if (Orvo::Testing::Fails(FileCall::StreamTell)) {
    errno = Orvo::Testing::activeFault.error;
    return -1;
  }
  return __real_ftell(stream);
}

// These two do their work and say that they did not.
int __wrap_fflush(std::FILE* stream) {
  const int result = __real_fflush(stream);
  return Orvo::Testing::Fails(FileCall::StreamFlush) ? EOF : result;
}

int __wrap_fclose(std::FILE* stream) {
  const int result = __real_fclose(stream);
  return Orvo::Testing::Fails(FileCall::StreamClose) ? EOF : result;
}
