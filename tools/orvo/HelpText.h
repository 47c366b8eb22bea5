#pragma once

#include "Command.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace OrvoTool {

/// Returns the help of a command, made of what it declares:
///
///   Usage: orvo NAME ARGUMENTS [OPTIONS]
///
///   the description
///
///     ARGUMENT   what it is
///
///   Options:
///     -o, --output FILE   what it does
///
///   the footer, as it is
///
/// Descriptions of arguments and options are wrapped to fit 80 columns, as is the usage; the
/// command's own description and footer are printed as they are. Options without a description
/// don't appear. Options of a group other than "Options" come under the group's name.
std::string MakeCommandHelp(const CLI::App& command);

/// Returns the help of the program: its commands with their summaries. Commands whose summary is
/// empty don't appear.
std::string MakeProgramHelp(const std::vector<CommandEntry>& commands);

}  // namespace OrvoTool
