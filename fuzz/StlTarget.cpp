// A binary STL file of any bytes: read, compared with what its bytes say, written, read again. Then
// the same bytes as the arrays of a mesh, whose indices may point anywhere: written or refused.

#include "Check.h"
#include "InputFile.h"
#include "RequestBytes.h"
#include "StlBytes.h"
#include "Target.h"

#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Mesh.h>

#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <string_view>

using namespace Orvo;
using namespace Orvo::Fuzz;

namespace {

// Reads one mesh more. Memory may be refused, but not for a mesh whose arrays are small.
bool AddMeshOf(const StlBytes& stl, const InputFile& file, Kin::EntityMesh* meshes) {
  const int place = static_cast<int>(meshes->GetMeshNb());
  bool isRead = false;
  try {
    isRead = meshes->AddCadStlBin(file.Path(), 0x123456U);
  } catch (const std::bad_alloc&) {
    Require(stl.isMesh && stl.triangleNb > LargestWalkedTriangleNb,
            "memory is refused to large meshes only");
    isRead = false;
  }
  const Mesh* const mesh = meshes->GetMesh(place);
  Require(meshes->GetMeshNb() == static_cast<unsigned int>(place) + 1 && mesh != nullptr,
          "the mesh is in the list, filled or not");
  if (isRead) {
    Require(stl.isMesh, "what is no mesh is refused");
    RequireMeshOf(stl, *mesh);
  } else {
    Require(!stl.isMesh || stl.triangleNb > LargestWalkedTriangleNb, "a mesh is read");
    Require(mesh->GetTabVertices() == nullptr && mesh->GetDimVertices() == 0,
            "a mesh that was not read is empty");
  }
  return isRead;
}

// Fills an array of indices: most lie within another array, some beyond.
void TakeIndices(RequestBytes* bytes, unsigned int dim, unsigned int* indices) {
  for (unsigned int i = 0; i < dim; ++i) {
    indices[i] = bytes->TakeByte() % 16;
    indices[i] = indices[i] == 15 ? 0xFFFFFFFFU : indices[i];
  }
}

/// Tells whether each index of a mesh's faces lies within its array; counts the triangles.
bool IsSound(const Mesh& mesh, std::size_t* triangleNb) {
  std::size_t first = 0;
  for (unsigned int face = 0; face < mesh.GetDimNVerts(); ++face) {
    const std::size_t vertexNb = mesh.GetTabNVerts()[face];
    if (vertexNb > 3) {
      return false;
    }
    for (std::size_t i = first; i < first + vertexNb; ++i) {
      if (i >= mesh.GetDimIVertex() || i >= mesh.GetDimINormal() ||
          mesh.GetTabIVertex()[i] >= mesh.GetDimVertices() ||
          mesh.GetTabINormal()[i] >= mesh.GetDimNormals()) {
        return false;
      }
    }
    first += vertexNb;
    *triangleNb += vertexNb == 3 ? 1 : 0;
  }
  return true;
}

void WriteMeshOf(std::string_view text, const InputFile& written) {
  RequestBytes bytes(text);
  auto mesh = std::make_unique<Mesh>();
  const unsigned int faceNb = bytes.TakeByte() % 8;
  unsigned int* const nVerts = mesh->AllocTabNVerts(faceNb);
  for (unsigned int face = 0; face < faceNb; ++face) {
    // Triangles mostly.
    const unsigned int byte = bytes.TakeByte() % 16;
    nVerts[face] = byte < 11 ? 3 : byte - 11;
  }
  const unsigned int cornerNb = 3 * faceNb + bytes.TakeByte() % 4;
  TakeIndices(&bytes, cornerNb, mesh->AllocTabIVertex(cornerNb));
  TakeIndices(&bytes, cornerNb, mesh->AllocTabINormal(cornerNb));
  const unsigned int vertexNb = bytes.TakeByte() % 18;
  const unsigned int normalNb = bytes.TakeByte() % 18;
  Vector3D* const vertices = mesh->AllocTabVertices(vertexNb);
  for (unsigned int i = 0; i < vertexNb; ++i) {
    vertices[i] = bytes.TakeVector();
  }
  mesh->AllocTabNormals(normalNb);

  std::size_t triangleNb = 0;
  const bool isSound = IsSound(*mesh, &triangleNb);
  Kin::EntityMesh meshes;
  meshes.AddMesh(mesh.get(), 0);
  static_cast<void>(mesh.release());
  Require(meshes.WriteCadStlBin(written.Path(), 0) == isSound,
          "a mesh is written when its indices lie within their arrays");
  Require(!isSound || written.Read().size() == 84 + 50 * triangleNb, "triangles are written");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const InputFile given("given.stl");
  static const InputFile written("written.stl");
  const StlBytes stl(TextOf(data, size));
  given.Write(stl.bytes);
  WriteMeshOf(stl.bytes.substr(std::min<std::size_t>(stl.bytes.size(), 80)), written);

  Kin::EntityMesh meshes;
  if (!AddMeshOf(stl, given, &meshes) || stl.triangleNb > LargestWalkedTriangleNb) {
    return 0;
  }
  Require(meshes.WriteCadStlBin(written.Path(), 0), "a mesh that was read can be written");
  const std::string bytes = written.Read();
  RequireWritten(stl, bytes);
  AddMeshOf(StlBytes(bytes), written, &meshes);

  // Into a mesh that has arrays already.
  Require(meshes.ReadCadStlBin(given.Path(), 1), "a mesh can be read anew");
  RequireMeshOf(stl, *meshes.GetMesh(1));
  return 0;
}
