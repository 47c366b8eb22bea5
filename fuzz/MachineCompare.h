#pragma once

#include <Orvo/Kin/Machine.h>

namespace Orvo::Fuzz {

/// How the second machine came about: from the same bytes as the first, or from what the first one
/// wrote.
enum class Origin { SameFile, Written };

/// Ends the process unless all that two machines hold is the same, bit for bit, but for what a file
/// does not keep where the second one was written by the first: numbers have six decimals,
/// directions are made unit when they are read, names lose what XML does not keep, pairs stand in
/// the order of elements, and a default program system comes with finishing.
/// @param isFinished  the first machine was finished, so that what finishing computes is compared
void RequireSame(Kin::Machine* first, Kin::Machine* second, Origin origin, bool isFinished);

}  // namespace Orvo::Fuzz
