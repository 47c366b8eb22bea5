#pragma once

#include "Failure.h"

#include <string>

namespace CLI {
class App;
}

namespace OrvoTool {

/// What the command line of `orvo solve` says.
struct SolveOptions {
  std::string machine;
  std::string path;
  std::string programSystem = "0";
  std::string offset = "0,0,0";
  std::string shift = "0,0,0";
  std::string start;
  std::string output;
};

/// Adds `orvo solve`, which turns a tool path into axis values.
CLI::App* AddSolveCommand(CLI::App* app, SolveOptions* options);

/// Runs it.
/// @return Success, or Unreachable or OutOfRange when some points are; the former wins
/// @throws Failure
ExitCode RunSolve(const SolveOptions& options);

}  // namespace OrvoTool
