#include "io/WideFile.h"

#include "io/Utf8.h"

namespace Orvo {

namespace {

#if defined(_WIN32)
std::FILE* Open(const std::wstring& path, WideFile::Mode mode) {
  const wchar_t* const flags = mode == WideFile::Mode::Read ? L"rb" : L"wb";
  std::FILE* file = nullptr;
  return _wfopen_s(&file, path.c_str(), flags) == 0 ? file : nullptr;
}
#else
std::FILE* Open(const std::wstring& path, WideFile::Mode mode) {
  const char* const flags = mode == WideFile::Mode::Read ? "rb" : "wb";
  return std::fopen(ToUtf8(path).c_str(), flags);
}
#endif

}  // namespace

WideFile::WideFile(const std::wstring& path, Mode mode) {
  if (path.find(L'\0') == std::wstring::npos) {
    file_ = Open(path, mode);
  }
}

WideFile::~WideFile() { Close(); }

std::size_t WideFile::Read(void* bytes, std::size_t size) {
  return std::fread(bytes, 1, size, file_);
}

bool WideFile::HasFailed() const { return std::ferror(file_) != 0; }

bool WideFile::Write(const void* bytes, std::size_t size) {
  return std::fwrite(bytes, 1, size, file_) == size;
}

bool WideFile::Seek(long offset) { return std::fseek(file_, offset, SEEK_SET) == 0; }

long WideFile::Rewind() {
  const long size = std::fseek(file_, 0, SEEK_END) == 0 ? std::ftell(file_) : -1;
  return Seek(0) ? size : -1;
}

bool WideFile::Close() {
  if (file_ == nullptr) {
    return false;
  }
  const bool isWhole = std::fflush(file_) == 0 && std::ferror(file_) == 0;
  const bool isClosed = std::fclose(file_) == 0;
  file_ = nullptr;
  return isWhole && isClosed;
}

}  // namespace Orvo
