#include "exchange/GltfBinary.h"

#include "exchange/ByteSink.h"

#include <Orvo/Exchange/ExchangeError.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Orvo::Exchange {
namespace {

// A multiple of 3, so that base64 needs padding at the end alone.
constexpr std::size_t ChunkSize = 49152;

constexpr int VertexTarget = 34962;
constexpr int IndexTarget = 34963;

std::string Base64(const std::string& bytes) {
  static constexpr char Letters[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve(bytes.size() / 3 * 4 + 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t left = std::min<std::size_t>(3, bytes.size() - i);
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      group = (group << 8U) | (k < left ? static_cast<unsigned char>(bytes[i + k]) : 0U);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      text += k <= left ? Letters[(group >> (18U - 6U * k)) & 0x3FU] : '=';
    }
  }
  return text;
}

/// Calls `use` with the three vertex numbers of each triangle; faces with more corners are fans.
template <typename Use>
void ForTriangles(const Mesh& mesh, Use use) {
  const unsigned int* const cornerNbs = mesh.GetTabNVerts();
  const unsigned int* corners = mesh.GetTabIVertex();
  for (unsigned int face = 0; face < mesh.GetDimNVerts(); ++face) {
    const unsigned int cornerNb = cornerNbs[face];
    for (unsigned int i = 2; i < cornerNb; ++i) {
      use(corners[0], corners[i - 1], corners[i]);
    }
    corners += cornerNb;
  }
}

/// A vertex in the frame of its node, in meters.
std::array<float, 3> Place(const Vector3D& vertex, const Vector3D& pivot, double scale) {
  std::array<float, 3> place = {};
  for (int i = 0; i < 3; ++i) {
    place[static_cast<std::size_t>(i)] = static_cast<float>((vertex[i] - pivot[i]) * scale);
  }
  return place;
}

void WriteVertex(const Mesh& mesh, unsigned int vertex, const Vector3D& pivot, double scale,
                 BinarySink* sink) {
  for (const float value : Place(mesh.GetTabVertices()[vertex], pivot, scale)) {
    sink->Float(value);
  }
}

void RequireIndices(const Mesh& mesh, const std::string& owner) {
  std::uint64_t cornerNb = 0;
  for (unsigned int face = 0; face < mesh.GetDimNVerts(); ++face) {
    cornerNb += mesh.GetTabNVerts()[face];
  }
  if (cornerNb > mesh.GetDimIVertex()) {
    throw ExchangeError(owner + ": the faces of a mesh have more corners than it lists");
  }
  for (std::uint64_t i = 0; i < cornerNb; ++i) {
    if (mesh.GetTabIVertex()[i] >= mesh.GetDimVertices()) {
      throw ExchangeError(owner + ": a mesh has a corner without vertex");
    }
  }
}

}  // namespace

void BinarySink::Float(float value) {
  std::uint32_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  Integer(bits);
}

void BinarySink::Integer(std::uint32_t value) {
  for (unsigned int i = 0; i < 4; ++i) {
    bytes_ += static_cast<char>((value >> (8U * i)) & 0xFFU);
  }
  if (bytes_.size() >= ChunkSize) {
    Flush(false);
  }
}

void BinarySink::Flush(bool isEnd) {
  const std::size_t size = isEnd ? bytes_.size() : ChunkSize;
  const std::string chunk = bytes_.substr(0, size);
  bytes_.erase(0, size);
  WriteBytes(form_ == Form::Base64 ? Base64(chunk) : chunk, *out_);
}

void BinarySink::Finish() { Flush(true); }

std::uint64_t BinaryPart::GetSize() const {
  const std::uint64_t width = shape == Shape::Scalar ? 1 : (shape == Shape::Vec3 ? 3 : 4);
  return 4 * width * count;
}

MeshParts MakeMeshParts(const Mesh& mesh, const Vector3D& pivot, double scale,
                        const std::string& owner) {
  MeshParts parts;
  RequireIndices(mesh, owner);
  std::uint64_t triangleNb = 0;
  for (unsigned int face = 0; face < mesh.GetDimNVerts(); ++face) {
    const unsigned int cornerNb = mesh.GetTabNVerts()[face];
    triangleNb += cornerNb > 2 ? cornerNb - 2 : 0;
  }
  if (triangleNb == 0) {
    return parts;
  }
  parts.vertices.shape = BinaryPart::Shape::Vec3;
  parts.vertices.target = VertexTarget;
  std::vector<float>& min = parts.vertices.min;
  std::vector<float>& max = parts.vertices.max;
  const auto take = [&](unsigned int vertex) {
    const std::array<float, 3> place = Place(mesh.GetTabVertices()[vertex], pivot, scale);
    if (!std::all_of(place.begin(), place.end(),
                     [](float value) { return std::isfinite(value); })) {
      throw ExchangeError(owner + ": a mesh has a vertex that 32-bit floats can't hold");
    }
    if (min.empty()) {
      min.assign(place.begin(), place.end());
      max = min;
    }
    for (std::size_t i = 0; i < 3; ++i) {
      min[i] = std::min(min[i], place[i]);
      max[i] = std::max(max[i], place[i]);
    }
  };
  const bool isShared = 2 * std::uint64_t(mesh.GetDimVertices()) <= 3 * triangleNb;
  if (!isShared) {
    ForTriangles(mesh, [&](unsigned int a, unsigned int b, unsigned int c) {
      take(a);
      take(b);
      take(c);
    });
    parts.vertices.count = 3 * triangleNb;
    parts.vertices.write = [&mesh, pivot, scale](BinarySink* sink) {
      ForTriangles(mesh, [&](unsigned int a, unsigned int b, unsigned int c) {
        for (const unsigned int vertex : {a, b, c}) {
          WriteVertex(mesh, vertex, pivot, scale, sink);
        }
      });
    };
    return parts;
  }
  for (unsigned int vertex = 0; vertex < mesh.GetDimVertices(); ++vertex) {
    take(vertex);
  }
  parts.vertices.count = mesh.GetDimVertices();
  parts.vertices.write = [&mesh, pivot, scale](BinarySink* sink) {
    for (unsigned int vertex = 0; vertex < mesh.GetDimVertices(); ++vertex) {
      WriteVertex(mesh, vertex, pivot, scale, sink);
    }
  };
  parts.indices.isInteger = true;
  parts.indices.target = IndexTarget;
  parts.indices.count = 3 * triangleNb;
  parts.indices.write = [&mesh](BinarySink* sink) {
    ForTriangles(mesh, [&](unsigned int a, unsigned int b, unsigned int c) {
      sink->Integer(a);
      sink->Integer(b);
      sink->Integer(c);
    });
  };
  return parts;
}

}  // namespace Orvo::Exchange
