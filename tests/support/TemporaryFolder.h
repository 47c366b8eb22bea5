#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace Orvo::Testing {

/// Makes an empty folder of its own under the system's folder for temporary files, and removes it
/// with all that it holds. Its name is plain ASCII. Names of files in it are UTF-8.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::random_device random;
    const std::filesystem::path base = std::filesystem::temp_directory_path();
    for (int attempt = 0; attempt < 100; ++attempt) {
      const auto number = (static_cast<unsigned long long>(random()) << 32U) | random();
      std::filesystem::path candidate = base / ("orvo_test_" + std::to_string(number));
      if (std::filesystem::create_directory(candidate)) {
        path_ = std::move(candidate);
        return;
      }
    }
    throw std::runtime_error("no temporary folder could be made");
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  /// Returns the folder.
  const std::filesystem::path& Path() const { return path_; }

  /// Returns the path of a file in this folder; nothing is made.
  std::filesystem::path File(std::string_view name) const {
    return path_ / std::filesystem::path(std::u8string(name.begin(), name.end()));
  }

  /// Returns the path of a file in this folder as the library's interface takes it.
  std::wstring Wide(std::string_view name) const { return ToWide(File(name)); }

  /// Returns the path of a file in this folder as UTF-8 bytes.
  std::string Narrow(std::string_view name) const {
    const std::u8string text = File(name).u8string();
    return std::string(text.begin(), text.end());
  }

  /// Returns a path as the library's interface takes it.
  static std::wstring ToWide(const std::filesystem::path& path) {
    if constexpr (sizeof(wchar_t) == 2) {
      const std::u16string text = path.u16string();
      return std::wstring(text.begin(), text.end());
    } else {
      const std::u32string text = path.u32string();
      return std::wstring(text.begin(), text.end());
    }
  }

  /// Tells whether a file of this name is in the folder.
  bool Has(std::string_view name) const { return std::filesystem::exists(File(name)); }

  /// Writes bytes to a file in this folder, replacing it, and returns its path.
  std::filesystem::path Write(std::string_view name, std::string_view bytes) const {
    std::filesystem::path file = File(name);
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream) {
      throw std::runtime_error("can't write " + file.string());
    }
    return file;
  }

  /// Reads a whole file of this folder.
  std::string Read(std::string_view name) const {
    std::ifstream stream(File(name), std::ios::binary);
    if (!stream) {
      throw std::runtime_error("can't read " + File(name).string());
    }
    return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
  }

 private:
  std::filesystem::path path_;
};

}  // namespace Orvo::Testing
