#pragma once

#include "Command.h"

namespace OrvoTool {

/// Adds the options of `orvo info`, which shows what a machine file holds.
CommandAction AddInfoCommand(CLI::App* command);

}  // namespace OrvoTool
