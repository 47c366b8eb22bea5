#pragma once

#include "Command.h"

namespace OrvoTool {

/// Adds the options of `orvo fk`, which tells where the machine stands for given axis values.
CommandAction AddFkCommand(CLI::App* command);

}  // namespace OrvoTool
