#pragma once

#include "property/reference/Model.h"

#include <Orvo/Kin/Machine.h>

namespace Orvo::Property {

/// Expects every answer of a machine to be that of its twin: counts, lookups, elements with links,
/// parents and levels, program systems and collision lists.
void ExpectSameMachine(Kin::Machine& machine, const Reference::Machine& twin);

void ExpectSameCollisions(const Kin::CollisionCheck& collisions, const Reference::Collisions& twin,
                          int firstId, int lastId);

}  // namespace Orvo::Property
