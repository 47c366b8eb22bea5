#pragma once

#include "Failure.h"

#include <string>

namespace CLI {
class App;
}

namespace OrvoTool {

/// What the command line of `orvo info` says.
struct InfoOptions {
  std::string machine;
};

/// Adds `orvo info`, which shows what a machine file holds.
CLI::App* AddInfoCommand(CLI::App* app, InfoOptions* options);

/// Runs it.
/// @return Success, or Input when the machine is not valid
/// @throws Failure
ExitCode RunInfo(const InfoOptions& options);

}  // namespace OrvoTool
