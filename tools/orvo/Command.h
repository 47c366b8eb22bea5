#pragma once

#include "ExitCode.h"

#include <functional>

namespace CLI {
class App;
}

namespace OrvoTool {

/// Does what the command line asked for.
/// @throws Failure
using CommandAction = std::function<ExitCode()>;

/// A command of the program. Main.cpp has a table of all.
struct CommandEntry {
  const char* name;
  const char* summary;  ///< one line for the list of commands: lower case, no full stop

  /// Gives the command its options, its description and what its help ends with, and returns what
  /// runs it. The action holds the values of the options; it is called once, after parsing.
  CommandAction (*add)(CLI::App* command);
};

}  // namespace OrvoTool
