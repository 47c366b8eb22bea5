#include "path/TextLines.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <fstream>
#include <system_error>
#include <utility>

namespace Orvo::Path {
namespace {

constexpr std::size_t ChunkBytes = 65536;
constexpr std::size_t QuotedBytes = 40;
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

std::unique_ptr<std::istream> Open(const std::filesystem::path& file) {
  const std::string name = NameOf(file);
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) {
    throw ReadError(name, 0, 0, "is a folder, not a file");
  }
  errno = 0;
  auto stream = std::make_unique<std::ifstream>(file, std::ios::binary);
  if (!*stream) {
    throw ReadError(
        name, 0, 0,
        "can't be opened" + (errno != 0 ? ": " + std::generic_category().message(errno) : ""));
  }
  return stream;
}

}  // namespace

std::string NameOf(const std::filesystem::path& file) {
  const std::u8string text = file.u8string();
  return std::string(text.begin(), text.end());
}

TextLines::TextLines(const std::filesystem::path& file) : TextLines(Open(file), NameOf(file)) {
  std::error_code error;
  if (std::filesystem::is_regular_file(file, error)) {
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    size_ = error ? 0 : size;
  }
}

TextLines::TextLines(std::unique_ptr<std::istream> stream, std::string name)
    : name_(std::move(name)), stream_(std::move(stream)), chunk_(ChunkBytes) {
  stream_->exceptions(std::ios_base::goodbit);
  // A stream that can't tell, as a pipe, can't return either.
  begin_ = std::max<std::streamoff>(0, stream_->tellg());
  stream_->clear();
}

bool TextLines::Fill() {
  errno = 0;
  stream_->read(chunk_.data(), static_cast<std::streamsize>(chunk_.size()));
  chunkBegin_ = 0;
  chunkEnd_ = static_cast<std::size_t>(stream_->gcount());
  if (stream_->bad()) {
    throw ReadError(
        name_, 0, 0,
        "can't be read" + (errno != 0 ? ": " + std::generic_category().message(errno) : ""));
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
      BlameLine(number_, 1, "the line is longer than " + std::to_string(MaxLineBytes) + " bytes");
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
    Blame(0, "the file is UTF-16; expected UTF-8");
  }
  if (!line_.empty() && line_.back() == '\r') {
    line_.pop_back();
  }
  const std::size_t bad = line_.find_first_of(std::string_view("\0\r", 2));
  if (bad != std::string::npos) {
    Blame(bad, line_[bad] == '\0' ? "a NUL byte; expected text"
                                  : "a carriage return within a line; expected a line feed");
  }
  return true;
}

void TextLines::Return(const Place& place) {
  stream_->clear();
  stream_->seekg(begin_ + static_cast<std::streamoff>(place.offset), std::ios::beg);
  if (!*stream_) {
    throw ReadError(name_, 0, 0, "can't be read a second time; expected a file");
  }
  chunkBegin_ = 0;
  chunkEnd_ = 0;
  bytesTaken_ = place.offset;
  number_ = place.number;
  line_.clear();
}

std::uint64_t TextLines::GetColumn(std::size_t offset) const {
  const std::string_view before = std::string_view(line_).substr(0, offset);
  // Continuation bytes of UTF-8 belong to the character before them.
  return 1 + static_cast<std::uint64_t>(std::count_if(before.begin(), before.end(), [](char c) {
           return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
         }));
}

void TextLines::Blame(std::size_t offset, const std::string& message) const {
  BlameLine(number_, GetColumn(offset), message);
}

void TextLines::BlameLine(std::uint64_t line, std::uint64_t column,
                          const std::string& message) const {
  throw ReadError(name_, line, column, message);
}

double TextLines::GetShareRead() const {
  return size_ > 0 ? static_cast<double>(bytesTaken_) / static_cast<double>(size_) : -1.0;
}

std::string_view Trim(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t");
  if (begin == std::string_view::npos) {
    return text.substr(text.size());
  }
  return text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

std::string Quote(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text.substr(0, QuotedBytes)) {
    const auto byte = static_cast<unsigned char>(c);
    quoted += byte < 0x20 || byte >= 0x7F ? '?' : c;
  }
  return quoted + (text.size() > QuotedBytes ? "...'" : "'");
}

const char* ReadNumber(std::string_view text, double* value) {
  // A plus sign is written by many programs, but not known to from_chars.
  if (text.size() > 1 && text[0] == '+' && text[1] != '-' && text[1] != '+') {
    text.remove_prefix(1);
  }
  double number = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc::invalid_argument || end != text.data() + text.size()) {
    return "is not a number";
  }
  if (error == std::errc::result_out_of_range) {
    return "is beyond the numbers that can be computed with";
  }
  if (!std::isfinite(number)) {
    return "is not a finite number";
  }
  *value = number;
  return nullptr;
}

bool MakeDirection(double* ijk) {
  const double largest = std::max({std::abs(ijk[0]), std::abs(ijk[1]), std::abs(ijk[2])});
  if (!(largest > 0.0) || !std::isfinite(largest)) {
    return false;
  }
  if (largest < 1e-100 || largest > 1e100) {
    for (int i = 0; i < 3; ++i) {
      ijk[i] /= largest;
    }
  }
  const double norm = std::sqrt(ijk[0] * ijk[0] + (ijk[1] * ijk[1] + ijk[2] * ijk[2]));
  for (int i = 0; i < 3; ++i) {
    ijk[i] /= norm;
  }
  return true;
}

}  // namespace Orvo::Path
