#include "property/TemporaryFile.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace Orvo::Property {
namespace {

// Different for every process and file.
std::string NewPath() {
  static const auto start = std::chrono::steady_clock::now().time_since_epoch().count();
  static int count = 0;
  static const int anchor = 0;
  const std::string name = "orvo_property_" + std::to_string(start) + "_" +
                           std::to_string(reinterpret_cast<std::size_t>(&anchor) % 1000003) + "_" +
                           std::to_string(count++) + ".xml";
  return (std::filesystem::temp_directory_path() / name).string();
}

}  // namespace

TemporaryFile::TemporaryFile() : path_(NewPath()) {}

TemporaryFile::TemporaryFile(const std::string& bytes) : path_(NewPath()) { Write(bytes); }

TemporaryFile::~TemporaryFile() { std::remove(path_.c_str()); }

std::wstring TemporaryFile::Path() const { return std::wstring(path_.begin(), path_.end()); }

void TemporaryFile::Write(const std::string& bytes) const {
  std::ofstream out(path_, std::ios::binary);
  out << bytes;
}

std::string TemporaryFile::Read() const {
  std::ifstream in(path_, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace Orvo::Property
