#include "model/EntityAccess.h"

#include <Orvo/Kin/Entity.h>

namespace Orvo::Testing {

template struct PrivateMember<SetEntityIdOf, &Kin::Entity::SetEntityId>;
template struct PrivateMember<SetEntityTypeOf, &Kin::Entity::SetEntityType>;
template struct PrivateMember<SetEntityParallelTypeOf, &Kin::Entity::SetEntityParallelType>;
template struct PrivateMember<SetLevelOf, &Kin::Entity::SetLevel>;
template struct PrivateMember<SetParentEntityOf, &Kin::Entity::SetParentEntity>;

}  // namespace Orvo::Testing
