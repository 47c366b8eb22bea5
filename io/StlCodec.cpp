#include "io/StlCodec.h"

#include "geometry/MeshAccess.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace Orvo {

namespace {

static_assert(std::numeric_limits<float>::is_iec559 && sizeof(float) == 4);

constexpr std::size_t HeaderSize = 84;
constexpr std::size_t CountOffset = 80;
constexpr std::size_t RecordSize = 50;
constexpr std::size_t AttributeSize = 2;
constexpr std::size_t RecordsPerBlock = 1024;
constexpr std::size_t BlockSize = RecordsPerBlock * RecordSize;

// Three vertices of each triangle must have an index.
constexpr std::uint32_t LargestTriangleNb = std::numeric_limits<std::uint32_t>::max() / 3;

std::uint32_t LoadU32(const unsigned char* bytes) {
  return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
         static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

void StoreU32(std::uint32_t value, unsigned char* bytes) {
  for (int i = 0; i < 4; ++i) {
    bytes[i] = static_cast<unsigned char>(value >> (8 * i));
  }
}

double LoadFloat(const unsigned char* bytes) {
  return static_cast<double>(std::bit_cast<float>(LoadU32(bytes)));
}

Vector3D LoadPoint(const unsigned char* bytes) {
  return Vector3D(LoadFloat(bytes), LoadFloat(bytes + 4), LoadFloat(bytes + 8));
}

void StorePoint(const Vector3D& point, unsigned char* bytes) {
  for (int i = 0; i < 3; ++i) {
    StoreU32(std::bit_cast<std::uint32_t>(static_cast<float>(point[i])), bytes + 4 * i);
  }
}

void SetTriangle(const MeshAccess::Triangles& triangles, std::uint32_t triangle,
                 const unsigned char* record) {
  triangles.nVerts[triangle] = 3;
  triangles.normals[triangle] = LoadPoint(record);
  for (std::uint32_t corner = 0; corner < 3; ++corner) {
    const std::uint32_t place = 3 * triangle + corner;
    triangles.iVertex[place] = place;
    triangles.iNormal[place] = triangle;
    triangles.vertices[place] = LoadPoint(record + 12 * (corner + 1));
  }
}

/// Collects bytes and hands them on in blocks.
class BlockWriter {
 public:
  explicit BlockWriter(ByteSink* sink) : sink_(sink) {}

  /// Makes room for one record; null where the sink failed.
  unsigned char* Next() {
    if (used_ == BlockSize && !Flush()) {
      return nullptr;
    }
    unsigned char* const record = block_ + used_;
    used_ += RecordSize;
    return record;
  }

  bool Flush() {
    const bool isWritten = used_ == 0 || sink_->Write(block_, used_);
    used_ = 0;
    return isWritten;
  }

 private:
  ByteSink* sink_;
  std::size_t used_ = 0;
  unsigned char block_[BlockSize] = {};
};

/// Walks the faces of a mesh, with every index checked.
class FaceWalk {
 public:
  explicit FaceWalk(const Mesh& mesh) : mesh_(mesh) {}

  /// Goes to the corners of the next face; false where it is no triangle or less, or where an index
  /// lies outside its array.
  bool Next(unsigned int vertexNb) {
    first_ += vertexNb_;
    vertexNb_ = vertexNb;
    if (vertexNb > 3 || first_ + vertexNb > mesh_.GetDimIVertex() ||
        first_ + vertexNb > mesh_.GetDimINormal()) {
      return false;
    }
    for (unsigned int corner = 0; corner < vertexNb; ++corner) {
      if (mesh_.GetTabIVertex()[first_ + corner] >= mesh_.GetDimVertices() ||
          mesh_.GetTabINormal()[first_ + corner] >= mesh_.GetDimNormals()) {
        return false;
      }
    }
    return true;
  }

  const Vector3D& Vertex(unsigned int corner) const {
    return mesh_.GetTabVertices()[mesh_.GetTabIVertex()[first_ + corner]];
  }

  const Vector3D& Normal() const { return mesh_.GetTabNormals()[mesh_.GetTabINormal()[first_]]; }

 private:
  const Mesh& mesh_;
  std::uint64_t first_ = 0;
  unsigned int vertexNb_ = 0;
};

}  // namespace

bool DecodeStl(ByteSource* source, Mesh* mesh) {
  unsigned char header[HeaderSize];
  if (source->Read(header, HeaderSize) != HeaderSize) {
    return false;
  }
  const std::uint32_t triangleNb = LoadU32(header + CountOffset);
  if (triangleNb == 0 || triangleNb > LargestTriangleNb) {
    return false;
  }
  // A copy, so that arrays that were handed out stay alive with the mesh.
  Mesh read(*mesh);
  const MeshAccess::Triangles triangles = MeshAccess::AllocTriangles(&read, triangleNb);
  unsigned char block[BlockSize];
  std::uint32_t triangle = 0;
  bool isAtEnd = false;
  while (triangle < triangleNb && !isAtEnd) {
    const std::size_t wanted =
        RecordSize * std::min<std::size_t>(triangleNb - triangle, RecordsPerBlock);
    const std::size_t present = source->Read(block, wanted);
    isAtEnd = present < wanted;
    // The last record may lack its attribute.
    const std::size_t recordNb = (present + AttributeSize) / RecordSize;
    for (std::size_t i = 0; i < recordNb; ++i, ++triangle) {
      SetTriangle(triangles, triangle, block + i * RecordSize);
    }
  }
  if (source->HasFailed()) {
    return false;
  }
  *mesh = read;
  return true;
}

bool EncodeStl(const Mesh& mesh, ByteSink* sink) {
  unsigned char header[HeaderSize] = {};
  StoreU32(mesh.GetDimNVerts(), header + CountOffset);
  if (!sink->Write(header, HeaderSize)) {
    return false;
  }
  BlockWriter blocks(sink);
  FaceWalk walk(mesh);
  std::uint32_t triangleNb = 0;
  for (unsigned int face = 0; face < mesh.GetDimNVerts(); ++face) {
    const unsigned int vertexNb = mesh.GetTabNVerts()[face];
    if (!walk.Next(vertexNb)) {
      blocks.Flush();
      return false;
    }
    if (vertexNb != 3) {
      continue;
    }
    unsigned char* const record = blocks.Next();
    if (record == nullptr) {
      return false;
    }
    StorePoint(walk.Normal(), record);
    for (unsigned int corner = 0; corner < 3; ++corner) {
      StorePoint(walk.Vertex(corner), record + 12 * (corner + 1));
    }
    ++triangleNb;
  }
  if (!blocks.Flush() || !sink->Seek(CountOffset)) {
    return false;
  }
  // Smaller faces were counted in the header and left out since.
  unsigned char count[4];
  StoreU32(triangleNb, count);
  return triangleNb == mesh.GetDimNVerts() || sink->Write(count, sizeof count);
}

}  // namespace Orvo
