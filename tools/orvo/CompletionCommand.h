#pragma once

#include "Command.h"

namespace OrvoTool {

/// Adds the options of `orvo completion`, which prints the script that completes command lines in a
/// shell. The script is made of what the commands declare.
CommandAction AddCompletionCommand(CLI::App* command);

}  // namespace OrvoTool
