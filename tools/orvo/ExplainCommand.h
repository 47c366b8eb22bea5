#pragma once

#include "Command.h"

namespace OrvoTool {

/// Adds the options of `orvo explain`, which says why a point has no answer, and by how much.
CommandAction AddExplainCommand(CLI::App* command);

}  // namespace OrvoTool
