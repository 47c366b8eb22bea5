#pragma once

#include <Orvo/Kin/Entity.h>

namespace Orvo::Testing {

// Set what only the machine and the file reader may set.

void SetEntityId(Kin::Entity* entity, int id);
void SetEntityType(Kin::Entity* entity, Kin::EntityType type);
void SetEntityParallelType(Kin::Entity* entity, Kin::EntityParallelType type);
void SetLevel(Kin::Entity* entity, int level);
void SetParentEntity(Kin::Entity* entity, const Kin::Entity* parent);

}  // namespace Orvo::Testing
