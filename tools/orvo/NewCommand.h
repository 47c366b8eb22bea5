#pragma once

#include "Command.h"

namespace OrvoTool {

/// Adds the options of `orvo new`, which writes the machine file of a common kind of machine.
CommandAction AddNewCommand(CLI::App* command);

}  // namespace OrvoTool
