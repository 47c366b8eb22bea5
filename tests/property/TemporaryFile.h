#pragma once

#include <string>

namespace Orvo::Property {

/// A file name of its own in the folder for temporary files; the file goes with the object.
class TemporaryFile {
 public:
  TemporaryFile();
  explicit TemporaryFile(const std::string& bytes);
  TemporaryFile(const TemporaryFile& other) = delete;
  TemporaryFile& operator=(const TemporaryFile& other) = delete;
  ~TemporaryFile();

  /// The name as the library takes it.
  std::wstring Path() const;

  void Write(const std::string& bytes) const;
  std::string Read() const;

 private:
  std::string path_;
};

}  // namespace Orvo::Property
