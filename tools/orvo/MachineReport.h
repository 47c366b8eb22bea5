#pragma once

#include <Orvo/Kin/Enumerations.h>
#include <Orvo/Kin/Machine.h>

#include <string>

namespace OrvoTool {

/// Returns the word of a kind of link, such as "linear".
const char* GetLinkWord(Orvo::Kin::EntityLinkType type);

/// Returns the tree of a machine's elements: a line for each one, with its kind, its register, its
/// range and its link.
std::string DescribeElements(const Orvo::Kin::Machine& machine);

/// Returns the heads and the tables by their numbers.
std::string DescribeHeadsAndTables(const Orvo::Kin::Machine& machine);

/// Returns the program systems: head, table, main axes and policy of each.
std::string DescribeProgramSystems(const Orvo::Kin::Machine& machine);

/// Returns how much the lists of the collision check hold.
std::string DescribeCollisionCheck(const Orvo::Kin::Machine& machine);

}  // namespace OrvoTool
