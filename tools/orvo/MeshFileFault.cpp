#include "MeshFileFault.h"

#include "Failure.h"
#include "WideText.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <system_error>

namespace OrvoTool {
namespace {

/// The bytes of a mesh file in front of its triangles, and those of each triangle.
constexpr std::uintmax_t StlHeaderBytes = 84;
constexpr std::uintmax_t StlTriangleBytes = 50;
constexpr std::size_t StlCountOffset = 80;

}  // namespace

std::string FindMeshFileFault(const std::filesystem::path& file, bool* isMissing) {
  *isMissing = false;
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(file, error);
  if (!std::filesystem::exists(status)) {
    *isMissing = true;
    return "is missing";
  }
  if (!std::filesystem::is_regular_file(status)) {
    return "is no file";
  }
  const std::uintmax_t size = std::filesystem::file_size(file, error);
  if (!error && size < StlHeaderBytes) {
    return "is shorter than the 84 bytes in front of the triangles";
  }
  errno = 0;
  std::ifstream stream(file, std::ios::binary);
  std::array<char, StlHeaderBytes> header = {};
  if (!stream.read(header.data(), header.size())) {
    throw Failure(ExitCode::Unreadable,
                  Printable(Utf8FromFile(file)) + ": can't be read" +
                      (errno != 0 ? ": " + std::generic_category().message(errno) : ""));
  }
  std::uint32_t triangleNb = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    triangleNb |= static_cast<std::uint32_t>(static_cast<unsigned char>(header[StlCountOffset + i]))
                  << (8 * i);
  }
  if (triangleNb == 0) {
    return "holds no triangle";
  }
  const std::uintmax_t needed = StlHeaderBytes + StlTriangleBytes * triangleNb;
  if (!error && size < needed) {
    return "has " + std::to_string(size) + " bytes; its " + std::to_string(triangleNb) +
           " triangles need " + std::to_string(needed);
  }
  return "";
}

}  // namespace OrvoTool
