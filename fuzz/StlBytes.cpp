#include "StlBytes.h"

#include "Check.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace Orvo::Fuzz {

namespace {

constexpr std::size_t HeaderSize = 84;
constexpr std::size_t CountOffset = 80;
constexpr std::size_t RecordSize = 50;
constexpr std::size_t AttributeSize = 2;

std::uint32_t Number32(std::string_view bytes, std::size_t offset) {
  std::uint32_t value = 0;
  for (std::size_t i = 4; i-- > 0;) {
    value = value << 8 | static_cast<unsigned char>(bytes[offset + i]);
  }
  return value;
}

float Float(std::string_view bytes, std::size_t offset) {
  return std::bit_cast<float>(Number32(bytes, offset));
}

bool IsSameNumber(float a, float b) {
  return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b) ||
         (std::isnan(a) && std::isnan(b));
}

bool IsPoint(const Vector3D& point, std::string_view bytes, std::size_t offset) {
  for (int i = 0; i < 3; ++i) {
    const double wanted = Float(bytes, offset + 4 * static_cast<std::size_t>(i));
    if (!(std::isnan(wanted) && std::isnan(point[i])) &&
        std::bit_cast<std::uint64_t>(point[i]) != std::bit_cast<std::uint64_t>(wanted)) {
      return false;
    }
  }
  return point[3] == 0.0;
}

}  // namespace

StlBytes::StlBytes(std::string_view file) : bytes(file) {
  if (file.size() < HeaderSize) {
    return;
  }
  triangleNb = Number32(file, CountOffset);
  isMesh = triangleNb > 0 && triangleNb <= 0xFFFFFFFFU / 3;
  // The attribute of the last triangle may be absent.
  const std::size_t recordNb = (file.size() - HeaderSize + AttributeSize) / RecordSize;
  presentNb = static_cast<std::uint32_t>(std::min<std::size_t>(recordNb, triangleNb));
}

void RequireMeshOf(const StlBytes& stl, const Mesh& mesh) {
  const std::uint32_t cornerNb = 3 * stl.triangleNb;
  Require(mesh.GetDimNVerts() == stl.triangleNb && mesh.GetDimNormals() == stl.triangleNb &&
              mesh.GetDimIVertex() == cornerNb && mesh.GetDimINormal() == cornerNb &&
              mesh.GetDimVertices() == cornerNb,
          "the arrays have the size that the header says");
  for (std::uint32_t i = 0; i < stl.presentNb; ++i) {
    const std::size_t record = HeaderSize + RecordSize * i;
    Require(mesh.GetTabNVerts()[i] == 3, "a face is a triangle");
    Require(IsPoint(mesh.GetTabNormals()[i], stl.bytes, record), "a normal is the file's");
    for (std::uint32_t corner = 0; corner < 3; ++corner) {
      const std::uint32_t place = 3 * i + corner;
      Require(mesh.GetTabIVertex()[place] == place && mesh.GetTabINormal()[place] == i,
              "each corner has a vertex of its own and the normal of its face");
      Require(IsPoint(mesh.GetTabVertices()[place], stl.bytes, record + 12 * (corner + 1)),
              "a vertex is the file's");
    }
  }
  if (stl.triangleNb > LargestWalkedTriangleNb) {
    return;
  }
  for (std::uint32_t i = stl.presentNb; i < stl.triangleNb; ++i) {
    Require(mesh.GetTabNVerts()[i] == 0 && mesh.GetTabNormals()[i] == NullVector &&
                mesh.GetTabVertices()[3 * i] == NullVector && mesh.GetTabIVertex()[3 * i + 2] == 0,
            "what the file lacks is zero");
  }
}

void RequireWritten(const StlBytes& stl, std::string_view written) {
  Require(written.size() == HeaderSize + RecordSize * stl.presentNb, "all triangles are written");
  Require(written.substr(0, CountOffset).find_first_not_of('\0') == std::string_view::npos,
          "the header is zero");
  Require(Number32(written, CountOffset) == stl.presentNb, "the triangles are counted");
  for (std::uint32_t i = 0; i < stl.presentNb; ++i) {
    const std::size_t record = HeaderSize + RecordSize * i;
    for (std::size_t number = 0; number < 12; ++number) {
      Require(
          IsSameNumber(Float(written, record + 4 * number), Float(stl.bytes, record + 4 * number)),
          "a number is written as it was read");
    }
    Require(written[record + RecordSize - 2] == '\0' && written[record + RecordSize - 1] == '\0',
            "the attribute is zero");
  }
}

}  // namespace Orvo::Fuzz
