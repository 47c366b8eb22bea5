#include "model/EntityAccess.h"

#include "support/PrivateMember.h"

#include <Orvo/Kin/Entity.h>

namespace Orvo::Testing {

using Kin::Entity;

struct SetEntityIdOf {
  using Type = void (Entity::*)(const Kin::EntityId&);
  friend Type MemberOf(SetEntityIdOf);
};
template struct PrivateMember<SetEntityIdOf, &Entity::SetEntityId>;

struct SetEntityTypeOf {
  using Type = void (Entity::*)(const Kin::EntityType&);
  friend Type MemberOf(SetEntityTypeOf);
};
template struct PrivateMember<SetEntityTypeOf, &Entity::SetEntityType>;

struct SetEntityParallelTypeOf {
  using Type = void (Entity::*)(const Kin::EntityParallelType&);
  friend Type MemberOf(SetEntityParallelTypeOf);
};
template struct PrivateMember<SetEntityParallelTypeOf, &Entity::SetEntityParallelType>;

struct SetLevelOf {
  using Type = void (Entity::*)(int);
  friend Type MemberOf(SetLevelOf);
};
template struct PrivateMember<SetLevelOf, &Entity::SetLevel>;

struct SetParentEntityOf {
  using Type = void (Entity::*)(const Entity*);
  friend Type MemberOf(SetParentEntityOf);
};
template struct PrivateMember<SetParentEntityOf, &Entity::SetParentEntity>;

void SetEntityId(Entity* entity, int id) {
  (entity->*MemberOf(SetEntityIdOf()))(Kin::EntityId(id));
}

void SetEntityType(Entity* entity, Kin::EntityType type) {
  (entity->*MemberOf(SetEntityTypeOf()))(type);
}

void SetEntityParallelType(Entity* entity, Kin::EntityParallelType type) {
  (entity->*MemberOf(SetEntityParallelTypeOf()))(type);
}

void SetLevel(Entity* entity, int level) { (entity->*MemberOf(SetLevelOf()))(level); }

void SetParentEntity(Entity* entity, const Entity* parent) {
  (entity->*MemberOf(SetParentEntityOf()))(parent);
}

}  // namespace Orvo::Testing
