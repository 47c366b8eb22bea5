#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Orvo::Fuzz {

/// A file in a folder of this process, which lies where temporary files lie and goes with it.
class InputFile {
 public:
  explicit InputFile(std::string_view name);

  /// The path as the library's interface takes it.
  const std::wstring& Path() const { return widePath_; }

  /// Replaces the file.
  void Write(std::string_view bytes) const;

  /// Returns the whole file.
  std::string Read() const;

  /// Removes the file where there is one.
  void Remove() const;

 private:
  std::string path_;
  std::wstring widePath_;
};

/// The bytes of an input as a text.
inline std::string_view TextOf(const std::uint8_t* data, std::size_t size) {
  return std::string_view(reinterpret_cast<const char*>(data), size);
}

}  // namespace Orvo::Fuzz
