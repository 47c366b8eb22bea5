#pragma once

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/ProgramSystem.h>

#include <string>

namespace OrvoTool {

/// Finds a program system of a machine.
///
/// @param choice  its number, from 0, or its name
/// @return its number
/// @throws UsageFailure that lists what there is, when there is no such one or when several have
/// the name
int FindProgramSystem(const Orvo::Kin::Machine& machine, const std::string& choice);

/// Returns a program system by its number.
const Orvo::Kin::ProgramSystem& GetProgramSystem(const Orvo::Kin::Machine& machine, int number);

}  // namespace OrvoTool
