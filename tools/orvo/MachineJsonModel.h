#pragma once

#include "MachineFileModel.h"
#include "MachineFinding.h"

#include <string_view>

namespace OrvoTool {

/// Takes a machine in JSON apart, with the places of what it says, and tells which of its numbers
/// are not finite. What the text leaves out is what its reader takes for it.
/// @param text  one that the library reads; of any other, what comes back says nothing
FileMachine ReadJsonMachine(std::string_view text, MachineFindings* findings);

}  // namespace OrvoTool
