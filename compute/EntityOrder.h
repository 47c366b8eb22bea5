#pragma once

#include <Orvo/Kin/Entity.h>

#include <list>
#include <vector>

namespace Orvo::Kin {

/// Orders elements so that parents come before children.
///
/// The order is that of repeated sweeps through the list, each of which takes every element whose
/// id is not yet taken and that has no parent, or one whose id is taken. So of elements with equal
/// ids the first that is reached counts, and what no sweep reaches is left out.
/// n log n in the number of elements, whatever their order and depth.
std::vector<const Entity*> OrderParentsFirst(const std::list<Entity>& entities);

}  // namespace Orvo::Kin
