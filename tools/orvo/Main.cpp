#include "CheckCommand.h"
#include "Command.h"
#include "CompletionCommand.h"
#include "ConvertCommand.h"
#include "ExplainCommand.h"
#include "Failure.h"
#include "FkCommand.h"
#include "HelpText.h"
#include "IkCommand.h"
#include "InfoCommand.h"
#include "Interruption.h"
#include "NewCommand.h"
#include "SolveCommand.h"
#include "StandardOutput.h"
#include "ValidateCommand.h"
#include "VectorsCommand.h"
#include "WideText.h"

#include <CLI/CLI.hpp>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using OrvoTool::CommandAction;
using OrvoTool::CommandEntry;
using OrvoTool::ExitCode;

/// All commands, in the order of the help. One without a summary is not shown there.
const std::vector<CommandEntry>& Commands() {
  static const std::vector<CommandEntry> commands = {
      {"info", "show what a machine file holds", OrvoTool::AddInfoCommand},
      {"validate", "tell all that is wrong with a machine file", OrvoTool::AddValidateCommand},
      {"fk", "tell where the machine stands for given axis values", OrvoTool::AddFkCommand},
      {"ik", "give all axis values for one point and one direction", OrvoTool::AddIkCommand},
      {"explain", "say why a point has no answer, and by how much", OrvoTool::AddExplainCommand},
      {"solve", "turn a tool path into axis values", OrvoTool::AddSolveCommand},
      {"check", "hold axis values against ranges, speeds and the path", OrvoTool::AddCheckCommand},
      {"convert", "write a machine in another format", OrvoTool::AddConvertCommand},
      {"vectors", "write and verify golden vectors of a machine", OrvoTool::AddVectorsCommand},
      {"new", "write the machine file of a common kind of machine", OrvoTool::AddNewCommand},
      {"completion", "", OrvoTool::AddCompletionCommand},
  };
  return commands;
}

/// Writes a message and a line end to the error stream. Asks for no memory: there may be none.
void Complain(const char* message) {
  std::fputs(message, stderr);
  std::fputs("\n", stderr);
  std::fflush(stderr);
}

/// Says in plain words what is wrong with a command line.
std::string Describe(const CLI::App& app, const CLI::ParseError& error) {
  const std::string what = error.what();
  constexpr std::string_view tooMany = ": At Most 1 required but received ";
  constexpr std::string_view tooFew = ": 1 required ";
  constexpr std::string_view missing = " missing";
  if (const std::size_t found = what.find(tooMany); found != std::string::npos) {
    return what.substr(0, found) + " is given more than once";
  }
  if (const std::size_t found = what.find(tooFew);
      found != std::string::npos && what.size() > missing.size() &&
      what.compare(what.size() - missing.size(), missing.size(), missing) == 0) {
    const std::size_t begin = found + tooFew.size();
    return what.substr(0, found) +
           " needs a value: " + what.substr(begin, what.size() - missing.size() - begin);
  }
  const bool isExtra = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr;
  const std::vector<std::string> extras =
      isExtra ? app.remaining(true) : std::vector<std::string>();
  for (const std::string& extra : extras) {
    if (extra.size() > 1 && extra[0] == '-') {
      return "there is no option '" + extra + "'";
    }
  }
  return extras.empty() ? what : "'" + extras[0] + "' is one argument too many";
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
  std::string command = "orvo";
  std::string what = OrvoTool::Printable(Describe(app, error));
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

/// Returns the command that the command line begins with, or null where all are wanted.
const CommandEntry* FindNamed(int argc, char** argv) {
  for (const CommandEntry& entry : Commands()) {
    if (argc > 1 && std::string_view(argv[1]) == entry.name && entry.summary[0] != '\0') {
      return &entry;
    }
  }
  return nullptr;
}

ExitCode Run(int argc, char** argv) {
  CLI::App app;
  app.set_version_flag("--version", std::string("orvo ") + ORVO_TOOL_VERSION);
  app.require_subcommand(1);
  app.formatter_fn([](const CLI::App* shown, const std::string&, CLI::AppFormatMode) {
    return shown->get_parent() == nullptr ? OrvoTool::MakeProgramHelp(Commands())
                                          : OrvoTool::MakeCommandHelp(*shown);
  });
  std::vector<const CLI::App*> commands;
  std::vector<CommandAction> actions;
  const CommandEntry* named = FindNamed(argc, argv);
  for (const CommandEntry& entry : Commands()) {
    CLI::App* command = app.add_subcommand(entry.name);
    commands.push_back(command);
    // The options of the others are not needed, and are many.
    actions.push_back(named == nullptr || named == &entry ? entry.add(command) : CommandAction());
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return Answer(app, error);
  }
  std::size_t chosen = 0;
  while (!commands[chosen]->parsed()) {
    ++chosen;
  }
  try {
    return actions[chosen]();
  } catch (const OrvoTool::UsageFailure& failure) {
    const std::string name = std::string("orvo ") + Commands()[chosen].name;
    Complain((name + ": " + failure.what() + "\nTry: " + name + " --help").c_str());
    return ExitCode::Usage;
  }
}

/// Says what went wrong, and returns the status. For use where an exception is held.
ExitCode ComplainAboutException() {
  try {
    throw;
  } catch (const OrvoTool::Failure& failure) {
    Complain(failure.what());
    return failure.GetCode();
  } catch (const std::bad_alloc&) {
    Complain("orvo: there is not enough memory");
  } catch (const std::exception& error) {
    std::fputs("orvo: ", stderr);
    Complain(error.what());
  }
  return ExitCode::Unreadable;
}

/// Destructors of JSON values ask for memory: where there is none, no catch block is reached.
[[noreturn]] void EndWithoutUnwinding() {
  OrvoTool::RemoveUnfinishedFiles();
  ExitCode code = ExitCode::Unreadable;
  if (std::current_exception()) {
    code = ComplainAboutException();
  }
  std::_Exit(static_cast<int>(code));
}

}  // namespace

int main(int argc, char** argv) {
  std::set_terminate(EndWithoutUnwinding);
  try {
    return static_cast<int>(Run(argc, argv));
  } catch (...) {
    return static_cast<int>(ComplainAboutException());
  }
}
