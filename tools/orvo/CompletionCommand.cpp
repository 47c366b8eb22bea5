#include "CompletionCommand.h"

#include "ChoiceOption.h"
#include "StandardOutput.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <string>

namespace OrvoTool {
namespace {

const char Description[] = R"(Prints the script that completes command lines of orvo in a shell.)";

const char Footer[] = R"(Exit status:
  0  the script is printed
  1  the command line is wrong
  2  the script can't be written

Example, for the next shells of this user:
  orvo completion bash >~/.local/share/bash-completion/completions/orvo
)";

const char Begin[] = R"(# Completes command lines of orvo in bash. Made by: orvo completion bash

_orvo_words() {
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$current")
}

_orvo_files() {
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
}

_orvo() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        _orvo_words ")";

const char End[] = R"(    esac
}

complete -F _orvo orvo
)";

/// Options are completed by their values: words, if the option's type lists them in lower case;
/// files; or nothing.
bool ListsWords(const std::string& type) {
  return type.find('|') != std::string::npos &&
         std::none_of(type.begin(), type.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

std::string Replaced(std::string text, char from, char to) {
  std::replace(text.begin(), text.end(), from, to);
  return text;
}

/// Returns the names of an option, separated.
std::string NamesOf(const CLI::Option& option, const char* separator) {
  std::string names;
  for (const std::string& letter : option.get_snames()) {
    names += (names.empty() ? "-" : std::string(separator) + "-") + letter;
  }
  for (const std::string& word : option.get_lnames()) {
    names += (names.empty() ? "--" : std::string(separator) + "--") + word;
  }
  return names;
}

std::string ScriptOf(const CLI::App& command) {
  std::string options;
  std::string values;
  std::string argument;
  for (const CLI::Option* option : command.get_options()) {
    const std::string type = option->get_type_name();
    const std::string words =
        ListsWords(type) ? "_orvo_words \"" + Replaced(type, '|', ' ') + "\"" : "_orvo_files";
    if (option->get_positional()) {
      argument = argument.empty() && (ListsWords(type) || type == "FILE") ? words : argument;
      continue;
    }
    options += (options.empty() ? "" : " ") + NamesOf(*option, " ");
    if (option->get_items_expected_max() > 0) {
      values += "                " + NamesOf(*option, "|") + ")";
      values += ListsWords(type) || type == "FILE" ? " " + words + "; return ;;\n" : " return ;;\n";
    }
  }
  std::string script = "        " + command.get_name() + ")\n";
  if (!values.empty()) {
    script += "            case $previous in\n" + values + "            esac\n";
  }
  script += "            if [[ $current == -* ]]; then\n                _orvo_words \"" + options +
            "\"\n";
  if (!argument.empty()) {
    script += "            else\n                " + argument + "\n";
  }
  return script + "            fi\n            ;;\n";
}

std::string MakeBashScript(const CLI::App& program) {
  std::string names;
  std::string commands;
  for (const CLI::App* command : program.get_subcommands([](const CLI::App*) { return true; })) {
    names += (names.empty() ? "" : " ") + command->get_name();
    commands += ScriptOf(*command);
  }
  return Begin + names + R"( --help --version"
        return
    fi
    case ${COMP_WORDS[1]} in
)" + commands +
         End;
}

enum class Shell : int { Bash };

}  // namespace

CommandAction AddCompletionCommand(CLI::App* command) {
  const auto shell = std::make_shared<Shell>(Shell::Bash);
  command->description(Description);
  command->footer(Footer);
  AddChoice<Shell>(command, "SHELL", shell.get(), {{"bash", Shell::Bash}},
                   "bash is the one that is known")
      ->required();
  // The shell lives as long as the action, which lives as long as the command is parsed.
  return [command, shell]() {
    WriteStandardOutput(MakeBashScript(*command->get_parent()));
    return ExitCode::Success;
  };
}

}  // namespace OrvoTool
