#pragma once

#include "Command.h"

namespace OrvoTool {

/// Declares `orvo check`, which holds a file of axis values against the machine and the path.
CommandAction AddCheckCommand(CLI::App* command);

}  // namespace OrvoTool
