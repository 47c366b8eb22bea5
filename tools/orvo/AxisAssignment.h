#pragma once

#include "AxisNames.h"

#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Path/MainAxes.h>

#include <string>
#include <utility>
#include <vector>

namespace OrvoTool {

/// Numbers for registers.
using AxisAssignments = std::vector<std::pair<int, double>>;

/// Reads numbers for axes: "X=10,C=90", in any order, or one for each register in their order.
/// @param option  what the text was given by, for messages
/// @throws UsageFailure
AxisAssignments ReadAxisAssignments(const std::string& option, const std::string& text,
                                    const AxisNames& names);

/// Puts such numbers into a position.
void PutAssignments(const AxisAssignments& assignments, Orvo::Kin::MachinePosition* position);

/// Puts such numbers, each times a factor, to the places of the axes of a program system.
/// @throws UsageFailure for a register that the program system doesn't move, and for numbers that
///   are not above 0 (with @p isPositive) or negative (without)
void PutAssignments(const std::string& option, const AxisAssignments& assignments,
                    const AxisNames& names, const Orvo::Path::MainAxes& axes, bool isPositive,
                    double factor, Orvo::Path::AxisValues* values);

}  // namespace OrvoTool
