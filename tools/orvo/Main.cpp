#include "Failure.h"
#include "InfoCommand.h"
#include "SolveCommand.h"
#include "StandardOutput.h"
#include "WideText.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <new>
#include <sstream>
#include <string>
#include <vector>

namespace {

using OrvoTool::ExitCode;

/// Writes a message and a line end to the error stream. Asks for no memory: there may be none.
void Complain(const char* message) {
  std::fputs(message, stderr);
  std::fputs("\n", stderr);
  std::fflush(stderr);
}

const std::string HelpText = R"(Usage: orvo COMMAND ...

Computes with the kinematics of multi-axis machine tools.

Commands:
  info    show what a machine file holds
  solve   turn a tool path into axis values

Options:
  -h, --help   print this help; 'orvo COMMAND --help' tells more about a command
  --version    print the version
)";

/// Answers what is not to be run: help and version to the standard output, a wrong command line to
/// the error stream.
ExitCode Answer(const CLI::App& app, const CLI::ParseError& error) {
  std::ostringstream out;
  std::ostringstream complaint;
  if (app.exit(error, out, complaint) == 0) {
    OrvoTool::WriteStandardOutput(out.str());
    return ExitCode::Success;
  }
  std::string command = "orvo";
  std::string what = OrvoTool::Printable(error.what());
  if (!app.get_subcommands().empty()) {
    command += " " + app.get_subcommands()[0]->get_name();
  } else if (const std::vector<std::string> unknown = app.remaining();
             !unknown.empty() && !unknown[0].empty()) {
    what = std::string(unknown[0][0] == '-' ? "there is no option '" : "there is no command '") +
           OrvoTool::Printable(unknown[0]) + "'";
  } else {
    what = "a command is needed";
  }
  Complain((command + ": " + what + "\nTry: " + command + " --help").c_str());
  return ExitCode::Usage;
}

ExitCode Run(int argc, char** argv) {
  CLI::App app;
  app.set_version_flag("--version", std::string("orvo ") + ORVO_TOOL_VERSION);
  app.require_subcommand(1);
  app.formatter_fn(
      [](const CLI::App*, const std::string&, CLI::AppFormatMode) { return HelpText; });
  OrvoTool::InfoOptions infoOptions;
  OrvoTool::SolveOptions solveOptions;
  const CLI::App* info = OrvoTool::AddInfoCommand(&app, &infoOptions);
  OrvoTool::AddSolveCommand(&app, &solveOptions);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return Answer(app, error);
  }
  return info->parsed() ? OrvoTool::RunInfo(infoOptions) : OrvoTool::RunSolve(solveOptions);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return static_cast<int>(Run(argc, argv));
  } catch (const OrvoTool::Failure& failure) {
    Complain(failure.what());
    return static_cast<int>(failure.GetCode());
  } catch (const std::bad_alloc&) {
    Complain("orvo: there is not enough memory");
    return static_cast<int>(ExitCode::Input);
  } catch (const std::exception& error) {
    std::fputs("orvo: ", stderr);
    Complain(error.what());
    return static_cast<int>(ExitCode::Input);
  }
}
