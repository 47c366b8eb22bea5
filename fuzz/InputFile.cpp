#include "InputFile.h"

#include "Check.h"
#include "support/TemporaryFolder.h"

#include <cstdio>

namespace Orvo::Fuzz {

namespace {

const Testing::TemporaryFolder& Folder() {
  static const Testing::TemporaryFolder folder;
  return folder;
}

}  // namespace

InputFile::InputFile(std::string_view name)
    : path_(Folder().Narrow(name)), widePath_(Folder().Wide(name)) {}

void InputFile::Write(std::string_view bytes) const {
  std::FILE* const file = std::fopen(path_.c_str(), "wb");
  Require(file != nullptr, "the folder for temporary files takes a file");
  const bool isWritten =
      bytes.empty() || std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  Require(std::fclose(file) == 0 && isWritten, "the folder for temporary files has room");
}

std::string InputFile::Read() const {
  std::FILE* const file = std::fopen(path_.c_str(), "rb");
  Require(file != nullptr, "a file that was written can be opened");
  std::string bytes;
  char block[16384];
  std::size_t present = 0;
  while ((present = std::fread(block, 1, sizeof block, file)) > 0) {
    bytes.append(block, present);
  }
  std::fclose(file);
  return bytes;
}

void InputFile::Remove() const { std::remove(path_.c_str()); }

}  // namespace Orvo::Fuzz
