#include "io/MeshFileName.h"

#include <Orvo/Kin/Machine.h>

#include <map>
#include <utility>

namespace Orvo::Kin {

namespace {

bool IsEmpty(const Mesh& mesh) {
  return mesh.GetTabNVerts() == nullptr && mesh.GetTabIVertex() == nullptr &&
         mesh.GetTabVertices() == nullptr && mesh.GetTabINormal() == nullptr &&
         mesh.GetTabNormals() == nullptr;
}

}  // namespace

bool Machine::WriteMachineWithMeshStl(const std::wstring& path) {
  if (!WriteXML(path)) {
    return false;
  }
  for (const Entity& entity : kinematic_.GetListEntity()) {
    const EntityMesh* const mesh = entity.GetEntityMesh();
    const unsigned int meshNb = mesh == nullptr ? 0 : mesh->GetMeshNb();
    for (unsigned int i = 0; i < meshNb; ++i) {
      if (!mesh->WriteCadStlBin(MakeMeshStlFilename(path, entity.GetEntityId(), i),
                                static_cast<int>(i))) {
        return false;
      }
    }
  }
  return true;
}

bool Machine::ReadMachineWithMeshStl(const std::wstring& path) {
  if (!ReadXML(path)) {
    return false;
  }
  // Elements of one id have one file for their meshes of one index. It is read once, so that many
  // such elements make no more of it than it is.
  std::map<std::pair<int, unsigned int>, const Mesh*> readMeshes;
  for (Entity& entity : *kinematic_.GetListEntityMod()) {
    EntityMesh* const meshes = entity.GetEntityMeshMod();
    const unsigned int meshNb = meshes == nullptr ? 0 : meshes->GetMeshNb();
    for (unsigned int i = 0; i < meshNb; ++i) {
      const Mesh* const mesh = meshes->GetMesh(static_cast<int>(i));
      const auto [place, isNew] = readMeshes.try_emplace({entity.GetEntityId().GetVal(), i}, mesh);
      if (!isNew && mesh != nullptr && IsEmpty(*mesh)) {
        const_cast<Mesh&>(*mesh) = *place->second;
      } else if (!meshes->ReadCadStlBin(MakeMeshStlFilename(path, entity.GetEntityId(), i),
                                        static_cast<int>(i))) {
        return false;
      }
    }
  }
  return true;
}

std::wstring Machine::MakeMeshStlFilename(const std::wstring& path, const EntityId& id,
                                          unsigned int meshIndex) {
  return MeshFileName(path, id, meshIndex);
}

}  // namespace Orvo::Kin
