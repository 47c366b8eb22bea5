#pragma once

#include "Command.h"

namespace OrvoTool {

/// Declares `orvo vectors`, which writes and verifies golden vectors of a machine.
CommandAction AddVectorsCommand(CLI::App* command);

}  // namespace OrvoTool
