#pragma once

#include "Command.h"

namespace OrvoTool {

/// Adds the options of `orvo ik`, which gives all axis values for one point and one direction.
CommandAction AddIkCommand(CLI::App* command);

}  // namespace OrvoTool
