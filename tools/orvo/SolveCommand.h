#pragma once

#include "Command.h"

namespace OrvoTool {

/// Adds the options of `orvo solve`, which turns a tool path into axis values.
CommandAction AddSolveCommand(CLI::App* command);

}  // namespace OrvoTool
