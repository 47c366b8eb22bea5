#pragma once

#include "support/PrivateMember.h"

#include <Orvo/Kin/Entity.h>

namespace Orvo::Testing {

struct SetEntityIdOf {
  using Type = void (Kin::Entity::*)(const Kin::EntityId&);
  friend Type MemberOf(SetEntityIdOf);
};

struct SetEntityTypeOf {
  using Type = void (Kin::Entity::*)(const Kin::EntityType&);
  friend Type MemberOf(SetEntityTypeOf);
};

struct SetEntityParallelTypeOf {
  using Type = void (Kin::Entity::*)(const Kin::EntityParallelType&);
  friend Type MemberOf(SetEntityParallelTypeOf);
};

struct SetLevelOf {
  using Type = void (Kin::Entity::*)(int);
  friend Type MemberOf(SetLevelOf);
};

struct SetParentEntityOf {
  using Type = void (Kin::Entity::*)(const Kin::Entity*);
  friend Type MemberOf(SetParentEntityOf);
};

/// Sets what only the machine and the file reader may set.
inline void SetEntityId(Kin::Entity* entity, int id) {
  (entity->*MemberOf(SetEntityIdOf()))(Kin::EntityId(id));
}
inline void SetEntityType(Kin::Entity* entity, Kin::EntityType type) {
  (entity->*MemberOf(SetEntityTypeOf()))(type);
}
inline void SetEntityParallelType(Kin::Entity* entity, Kin::EntityParallelType type) {
  (entity->*MemberOf(SetEntityParallelTypeOf()))(type);
}
inline void SetLevel(Kin::Entity* entity, int level) { (entity->*MemberOf(SetLevelOf()))(level); }
inline void SetParentEntity(Kin::Entity* entity, const Kin::Entity* parent) {
  (entity->*MemberOf(SetParentEntityOf()))(parent);
}

}  // namespace Orvo::Testing
