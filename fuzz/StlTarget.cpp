// A binary STL file of any bytes: read, compared with what its bytes say, written, read again.

#include "Check.h"
#include "InputFile.h"
#include "StlBytes.h"
#include "Target.h"

#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Mesh.h>

#include <new>

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

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const InputFile given("given.stl");
  static const InputFile written("written.stl");
  const StlBytes stl(TextOf(data, size));
  given.Write(stl.bytes);

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
