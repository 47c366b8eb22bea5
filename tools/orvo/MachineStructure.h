#pragma once

#include "MachineFileModel.h"
#include "MachineFinding.h"

namespace OrvoTool {

/// Tells what is wrong with the elements of a machine file: ids, registers, parents, directions,
/// ranges, links, names.
void CheckElements(const FileMachine& machine, MachineFindings* findings);

/// Tells what is wrong with its program systems, and what its collision check names that isn't
/// there.
void CheckProgramSystems(const FileMachine& machine, MachineFindings* findings);

}  // namespace OrvoTool
