#pragma once

#include <Orvo/Mesh.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Orvo::Fuzz {

/// What the bytes of a binary STL file say, found without the library.
struct StlBytes {
  explicit StlBytes(std::string_view file);

  std::string_view bytes;
  bool isMesh = false;           ///< the file is one that reading takes
  std::uint32_t triangleNb = 0;  ///< as the header says
  std::uint32_t presentNb = 0;   ///< those whose numbers are in the file
};

/// Meshes of up to this many triangles are looked through and written; beyond, arrays may be
/// address space that nobody has touched, and going through it would make it memory.
constexpr std::uint32_t LargestWalkedTriangleNb = 70000;

/// Ends the process unless a mesh is what the bytes of its file say.
void RequireMeshOf(const StlBytes& stl, const Mesh& mesh);

/// Ends the process unless the bytes are those of a file of the given one's triangles that are
/// present, which the library wrote.
void RequireWritten(const StlBytes& stl, std::string_view written);

}  // namespace Orvo::Fuzz
