#pragma once

#include <vector>

namespace Orvo::Kin {

/// Stands for the parent of an element that has none.
inline constexpr int NoPlace = -1;

/// Cuts every cycle of a parent relation: what would close one, taking the elements in order, gets
/// no parent. Linear.
///
/// @param parents  by element, the place of its parent or NoPlace
/// @param marks    room for one number per element; its contents are overwritten
/// @return whether there was a cycle
bool CutParentCycles(std::vector<int>* parents, std::vector<int>* marks);

/// Counts the ancestors of each element. Linear, whatever the order and the depth.
///
/// @param parents  by element, the place of its parent or NoPlace; without cycles
/// @param levels   receives the counts; of the same size
void CountAncestors(const std::vector<int>& parents, std::vector<int>* levels);

}  // namespace Orvo::Kin
