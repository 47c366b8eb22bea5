#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace Orvo {

/// All bytes of a file, in memory.
class FileBytes {
 public:
  /// Reads a file; false where it can't be opened or has no size, and where not all of it can be
  /// read.
  bool Load(const std::wstring& path);

  /// The bytes, with PlainXml::Padding zero bytes behind them.
  std::string_view View() const { return {bytes_.get(), size_}; }

  void Release();

 private:
  std::unique_ptr<char[]> bytes_;
  std::size_t size_ = 0;
};

}  // namespace Orvo
