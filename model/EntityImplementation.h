#pragma once

#include <Orvo/Kin/Entity.h>

#include <memory>
#include <string>

namespace Orvo::Kin {

/// The contents of an Entity.
struct EntityImplementation {
  std::wstring name;
  EntityType entityType = EntityTypeAxis;
  EntityParallelType parallelType = EntityParallelTypeChain;
  EntityId entityId;
  EntityId parentEntityId;
  Register reg;
  bool isMotor = false;
  bool checkRangeAxis = true;
  bool isMounting = false;
  EntityLink link;
  std::unique_ptr<EntityMesh> mesh;
  const Entity* parentEntity = nullptr;  // in the same machine's list
  int level = 0;

  // Counts changes of what calculators take down; null outside a finished machine.
  unsigned long long* changeNb = nullptr;
};

}  // namespace Orvo::Kin
