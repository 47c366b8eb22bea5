#include "io/MeshFileName.h"

#include <Orvo/Kin/Machine.h>

namespace Orvo::Kin {

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
  for (Entity& entity : *kinematic_.GetListEntityMod()) {
    EntityMesh* const mesh = entity.GetEntityMeshMod();
    const unsigned int meshNb = mesh == nullptr ? 0 : mesh->GetMeshNb();
    for (unsigned int i = 0; i < meshNb; ++i) {
      if (!mesh->ReadCadStlBin(MakeMeshStlFilename(path, entity.GetEntityId(), i),
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
