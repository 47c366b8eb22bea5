#pragma once

#include "Command.h"

namespace OrvoTool {

/// Adds the options of `orvo convert`, which writes a machine in another format.
CommandAction AddConvertCommand(CLI::App* command);

}  // namespace OrvoTool
