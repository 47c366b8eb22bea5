#include "io/StlCodec.h"
#include "io/WideFile.h"
#include "model/EntityMeshImplementation.h"

#include <Orvo/Kin/EntityMesh.h>

namespace Orvo::Kin {

bool EntityMesh::AddCadStlBin(const std::wstring& fileName, unsigned int color) {
  auto emptyMesh = std::make_unique<Mesh>();
  AddMesh(emptyMesh.get(), color);
  static_cast<void>(emptyMesh.release());
  return ReadCadStlBin(fileName, static_cast<int>(GetMeshNb()) - 1);
}

bool EntityMesh::ReadCadStlBin(const std::wstring& fileName, int i) {
  if (GetMesh(i) == nullptr) {
    return false;
  }
  WideFile file(fileName, WideFile::Mode::Read);
  return file.IsOpen() &&
         DecodeStl(&file, implementation_->records[static_cast<std::size_t>(i)].mesh.get());
}

bool EntityMesh::WriteCadStlBin(const std::wstring& fileName, int i) const {
  const Mesh* const mesh = GetMesh(i);
  if (mesh == nullptr) {
    return false;
  }
  WideFile file(fileName, WideFile::Mode::Write);
  return file.IsOpen() && EncodeStl(*mesh, &file) && file.Close();
}

}  // namespace Orvo::Kin
