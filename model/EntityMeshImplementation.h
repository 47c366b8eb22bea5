#pragma once

#include <Orvo/Mesh.h>

#include <memory>
#include <vector>

namespace Orvo::Kin {

/// The records of an EntityMesh in the order in which they were added.
struct EntityMeshImplementation {
  struct Record {
    std::unique_ptr<Mesh> mesh;  // may be null
    unsigned int color = 0;
  };

  std::vector<Record> records;
};

}  // namespace Orvo::Kin
