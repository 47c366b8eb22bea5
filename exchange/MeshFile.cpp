#include "exchange/MeshFile.h"

#include "exchange/ByteSink.h"

#include <Orvo/Exchange/ExchangeError.h>

namespace Orvo::Exchange {

std::string MeshFileName(std::string_view base, const Kin::Entity& entity, int mesh) {
  return std::string(base) + "_" + std::to_string(entity.GetEntityId().GetVal()) + "_" +
         std::to_string(mesh) + ".stl";
}

std::string MeshBaseOf(const std::filesystem::path& file) { return NameOf(file.stem()); }

void WriteMeshFiles(const Kin::Machine& machine, const std::filesystem::path& file) {
  const std::string base = MeshBaseOf(file);
  for (const Kin::Entity& entity : machine.GetKinematic().GetListEntity()) {
    const Kin::EntityMesh* const meshes = entity.GetEntityMesh();
    const int meshNb = meshes == nullptr ? 0 : static_cast<int>(meshes->GetMeshNb());
    for (int i = 0; i < meshNb; ++i) {
      const std::filesystem::path meshFile =
          file.parent_path() / PathFromUtf8(MeshFileName(base, entity, i));
      if (!meshes->WriteCadStlBin(WidePath(meshFile), i)) {
        throw ExchangeError(NameOf(meshFile) +
                            ": the mesh can't be written; STL holds triangles alone");
      }
    }
  }
}

}  // namespace Orvo::Exchange
