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

namespace {

using OrvoTool::ExitCode;

/// Writes a message and a line end to the error stream.
void Complain(const std::string& message) {
  std::fputs((message + "\n").c_str(), stderr);
  std::fflush(stderr);
}

/// Answers what is not to be run: help and version to the standard output, a wrong command line to
/// the error stream.
ExitCode Answer(const CLI::App& app, const CLI::ParseError& error) {
  std::ostringstream out;
  std::ostringstream complaint;
  if (app.exit(error, out, complaint) == 0) {
    OrvoTool::WriteStandardOutput(out.str());
    return ExitCode::Success;
  }
  std::string text = OrvoTool::Printable(error.what());
  const char* command = app.get_subcommands().empty() ? "" : " ";
  const std::string name =
      app.get_subcommands().empty() ? "" : app.get_subcommands()[0]->get_name();
  Complain("orvo" + (command + name) + ": " + text + "\nTry: orvo" + (command + name) + " --help");
  return ExitCode::Usage;
}

ExitCode Run(int argc, char** argv) {
  CLI::App app("Computes with the kinematics of multi-axis machine tools.", "orvo");
  app.set_version_flag("--version", std::string("orvo ") + ORVO_TOOL_VERSION,
                       "Print the version and exit");
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.get_formatter()->column_width(34);
  app.require_subcommand(1);
  app.failure_message(CLI::FailureMessage::simple);
  app.footer("'orvo COMMAND --help' tells more about a command.");
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
    Complain(std::string("orvo: ") + error.what());
    return static_cast<int>(ExitCode::Input);
  }
}
