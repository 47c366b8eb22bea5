#pragma once

#include "Command.h"

namespace OrvoTool {

/// Adds the options of `orvo validate`, which tells all that is wrong with a machine file.
CommandAction AddValidateCommand(CLI::App* command);

}  // namespace OrvoTool
