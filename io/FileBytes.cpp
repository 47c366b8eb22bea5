#include "io/FileBytes.h"

#include "io/PlainXml.h"
#include "io/WideFile.h"

#include <algorithm>

namespace Orvo {

namespace {

constexpr std::size_t FirstBlockSize = 4096;

}  // namespace

bool FileBytes::Load(const std::wstring& path) {
  Release();
  WideFile file(path, WideFile::Mode::Read);
  const long fileSize = file.IsOpen() ? file.Rewind() : -1;
  if (fileSize < 0) {
    return false;
  }
  const auto size = static_cast<std::size_t>(fileSize);
  // A folder may give any size. That it can't be read shows before memory is taken for it.
  char firstBlock[FirstBlockSize];
  const std::size_t firstSize = std::min(size, FirstBlockSize);
  if (file.Read(firstBlock, firstSize) != firstSize) {
    return false;
  }
  bytes_ = std::make_unique_for_overwrite<char[]>(size + PlainXml::Padding);
  std::copy_n(firstBlock, firstSize, bytes_.get());
  std::fill_n(bytes_.get() + size, PlainXml::Padding, '\0');
  size_ = size;
  return file.Read(bytes_.get() + firstSize, size - firstSize) == size - firstSize;
}

void FileBytes::Release() {
  bytes_.reset();
  size_ = 0;
}

}  // namespace Orvo
