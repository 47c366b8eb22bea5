#include "exchange/ByteSink.h"

#include "exchange/TextEncoding.h"

#include <Orvo/Exchange/ExchangeError.h>

namespace Orvo::Exchange {

std::string NameOf(const std::filesystem::path& file) {
  const std::u8string text = file.u8string();
  return std::string(text.begin(), text.end());
}

std::wstring WidePath(const std::filesystem::path& file) { return WideFromUtf8(NameOf(file)); }

std::filesystem::path PathFromUtf8(std::string_view name) {
  return std::filesystem::path(std::u8string(name.begin(), name.end()));
}

void WriteBytes(std::string_view bytes, std::ostream& out) {
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out) {
    throw ExchangeError("the bytes can't be written");
  }
}

void FinishStream(std::ostream& out) {
  out.flush();
  if (!out) {
    throw ExchangeError("the bytes can't be written");
  }
}

FileSink::FileSink(const std::filesystem::path& file)
    : name_(NameOf(file)), stream_(file, std::ios::binary | std::ios::trunc) {
  if (!stream_) {
    throw ExchangeError(name_ + ": the file can't be made");
  }
}

void FileSink::Finish() {
  stream_.close();
  if (!stream_) {
    throw ExchangeError(name_ + ": the file can't be written");
  }
}

}  // namespace Orvo::Exchange
