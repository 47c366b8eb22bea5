#include "model/EntityMeshImplementation.h"

#include <Orvo/Kin/EntityMesh.h>

namespace Orvo::Kin {

EntityMesh::EntityMesh() : implementation_(std::make_unique<EntityMeshImplementation>()) {}

EntityMesh::~EntityMesh() = default;

void EntityMesh::AddMesh(Mesh* mesh, unsigned int color) {
  implementation_->records.emplace_back();
  EntityMeshImplementation::Record& record = implementation_->records.back();
  record.mesh.reset(mesh);
  record.color = color;
}

unsigned int EntityMesh::GetMeshNb() const {
  return static_cast<unsigned int>(implementation_->records.size());
}

const Mesh* EntityMesh::GetMesh(int i) const {
  return i < 0 || static_cast<unsigned int>(i) >= GetMeshNb()
             ? nullptr
             : implementation_->records[static_cast<unsigned int>(i)].mesh.get();
}

unsigned int EntityMesh::GetMeshColor(int i) const {
  return i < 0 || static_cast<unsigned int>(i) >= GetMeshNb()
             ? 0
             : implementation_->records[static_cast<unsigned int>(i)].color;
}

}  // namespace Orvo::Kin
