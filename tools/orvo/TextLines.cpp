#include "TextLines.h"

#include "Failure.h"
#include "StandardInput.h"
#include "WideText.h"

#include <cerrno>
#include <cstring>
#include <system_error>

namespace OrvoTool {
namespace {

constexpr std::size_t ChunkBytes = 65536;
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

std::string LastSystemError() {
  return errno != 0 ? std::generic_category().message(errno) : "the system gives no reason";
}

}  // namespace

TextLines::TextLines(const std::string& name)
    : name_(ShownInput(name)), isStandardInput_(IsStandardStream(name)), chunk_(ChunkBytes) {
  if (isStandardInput_) {
    return;
  }
  const std::filesystem::path file = FileFromUtf8(name);
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) {
    throw Failure(ExitCode::Unreadable, name_ + ": is a folder, not a file");
  }
  errno = 0;
  stream_.rdbuf()->pubsetbuf(nullptr, 0);
  stream_.open(file, std::ios::binary);
  if (!stream_) {
    throw Failure(ExitCode::Unreadable, name_ + ": can't be opened: " + LastSystemError());
  }
  if (std::filesystem::is_regular_file(file, error)) {
    fileSize_ = std::filesystem::file_size(file, error);
    isSizeKnown_ = !error && fileSize_ > 0;
  }
}

bool TextLines::Fill() {
  if (isStandardInput_) {
    chunkBegin_ = 0;
    chunkEnd_ = ReadStandardInputPart(chunk_.data(), chunk_.size());
    return chunkEnd_ > 0;
  }
  errno = 0;
  stream_.read(chunk_.data(), static_cast<std::streamsize>(chunk_.size()));
  chunkBegin_ = 0;
  chunkEnd_ = static_cast<std::size_t>(stream_.gcount());
  if (stream_.bad()) {
    throw Failure(ExitCode::Unreadable, name_ + ": can't be read: " + LastSystemError());
  }
  return chunkEnd_ > 0;
}

bool TextLines::Next() {
  if (chunkBegin_ == chunkEnd_ && !Fill()) {
    return false;
  }
  line_.clear();
  ++number_;
  for (;;) {
    const char* begin = chunk_.data() + chunkBegin_;
    const void* feed = std::memchr(begin, '\n', chunkEnd_ - chunkBegin_);
    const std::size_t length =
        feed != nullptr ? static_cast<std::size_t>(static_cast<const char*>(feed) - begin)
                        : chunkEnd_ - chunkBegin_;
    if (line_.size() + length > MaxLineBytes) {
      throw Failure(ExitCode::Unreadable, name_ + ":" + std::to_string(number_) +
                                              ":1: the line is longer than " +
                                              std::to_string(MaxLineBytes) + " bytes");
    }
    line_.append(begin, length);
    const std::size_t taken = length + (feed != nullptr ? 1 : 0);
    chunkBegin_ += taken;
    bytesTaken_ += taken;
    if (feed != nullptr || !Fill()) {
      break;
    }
  }
  if (number_ == 1 && line_.compare(0, ByteOrderMark.size(), ByteOrderMark) == 0) {
    line_.erase(0, ByteOrderMark.size());
  }
  if (number_ == 1 &&
      (line_.compare(0, 2, "\xFF\xFE") == 0 || line_.compare(0, 2, "\xFE\xFF") == 0)) {
    Blame(0, "the file is UTF-16; save it as UTF-8");
  }
  if (!line_.empty() && line_.back() == '\r') {
    line_.pop_back();
  }
  const std::size_t bad = line_.find_first_of(std::string_view("\0\r", 2));
  if (bad != std::string::npos) {
    Blame(bad, line_[bad] == '\0' ? "a NUL byte: this is no text file"
                                  : "a carriage return within a line; end lines with a line feed");
  }
  return true;
}

void TextLines::Blame(std::size_t offset, const std::string& what) const {
  const std::size_t column = 1 + CountCharacters(std::string_view(line_).substr(0, offset));
  // Before the first line there is none to blame but that.
  const std::uint64_t line = number_ == 0 ? 1 : number_;
  throw Failure(ExitCode::Unreadable,
                name_ + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + what);
}

void TextLines::BlameBegin(const std::string& what) const {
  throw Failure(ExitCode::Unreadable, name_ + ":1:1: " + what);
}

double TextLines::GetShareRead() const {
  return isSizeKnown_ ? static_cast<double>(bytesTaken_) / static_cast<double>(fileSize_) : -1.0;
}

}  // namespace OrvoTool
