#include "HelpText.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace OrvoTool {
namespace {

constexpr std::size_t LineWidth = 80;

/// Names wider than this stand on a line of their own.
constexpr std::size_t MaxNameWidth = 28;

/// Breaks a text at blanks, and at its own line ends; lines after the first begin with blanks.
std::string Wrap(const std::string& text, std::size_t column, std::size_t indent) {
  std::string wrapped;
  std::size_t begin = 0;
  while (begin < text.size()) {
    if (text[begin] == '\n') {
      wrapped += "\n" + std::string(indent, ' ');
      column = indent;
      ++begin;
      continue;
    }
    const std::size_t end = std::min(text.find_first_of(" \n", begin), text.size());
    const std::string word = text.substr(begin, end - begin);
    const bool isFirst = wrapped.empty() || wrapped.back() == ' ' || wrapped.back() == '\n';
    if (!isFirst && column + 1 + word.size() > LineWidth) {
      wrapped += "\n" + std::string(indent, ' ');
      column = indent;
    } else if (!isFirst) {
      wrapped += " ";
      ++column;
    }
    wrapped += word;
    column += word.size();
    begin = end < text.size() && text[end] == ' ' ? end + 1 : end;
  }
  return wrapped;
}

/// A line of a list: a name, and what it means.
struct Line {
  std::string name;
  std::string meaning;
};

std::string MakeList(const std::vector<Line>& lines) {
  std::size_t width = 0;
  for (const Line& line : lines) {
    width = line.name.size() > MaxNameWidth ? width : std::max(width, line.name.size());
  }
  const std::size_t column = width + 5;
  std::string text;
  for (const Line& line : lines) {
    text += "  " + line.name;
    text += line.name.size() > width ? "\n" + std::string(column, ' ')
                                     : std::string(column - 2 - line.name.size(), ' ');
    text += Wrap(line.meaning, column, column) + "\n";
  }
  return text;
}

std::string NameOf(const CLI::Option& option) {
  std::string name;
  for (const std::string& letter : option.get_snames()) {
    name += (name.empty() ? "-" : ", -") + letter;
  }
  name += name.empty() && !option.get_lnames().empty() ? "    " : "";
  for (const std::string& word : option.get_lnames()) {
    name += (name.empty() || name.back() == ' ' ? "--" : ", --") + word;
  }
  const std::string value = option.get_type_name();
  return option.get_items_expected_max() > 0 && !value.empty() ? name + " " + value : name;
}

std::string NameOfArgument(const CLI::Option& option) {
  return option.get_name(true) + (option.get_items_expected_max() > 1 ? "..." : "");
}

std::string MakeUsage(const CLI::App& command) {
  std::string usage = "Usage: orvo " + command.get_name();
  const std::size_t indent = usage.size() + 1;
  std::string words;
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_positional() && !option->get_description().empty()) {
      const std::string name = NameOfArgument(*option);
      words += " " + (option->get_required() ? name : "[" + name + "]");
    }
  }
  words += " [OPTIONS]";
  for (const CLI::Option* option : command.get_options()) {
    if (!option->get_positional() && option->get_required()) {
      words += " " + option->get_name() + " " + option->get_type_name();
    }
  }
  return usage + " " + Wrap(words.substr(1), indent, indent) + "\n";
}

}  // namespace

std::string MakeCommandHelp(const CLI::App& command) {
  std::string text = MakeUsage(command) + "\n" + command.get_description() + "\n";
  std::vector<Line> arguments;
  std::vector<std::string> groups;
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_description().empty() || option->get_group().empty()) {
      continue;
    }
    if (option->get_positional()) {
      arguments.push_back({NameOfArgument(*option), option->get_description()});
    } else if (std::find(groups.begin(), groups.end(), option->get_group()) == groups.end()) {
      groups.push_back(option->get_group());
    }
  }
  text += arguments.empty() ? "" : "\n" + MakeList(arguments);
  // Those that every command has come last: the group "Options" ends with --help.
  std::stable_partition(groups.begin(), groups.end(),
                        [](const std::string& group) { return group != "Options"; });
  for (const std::string& group : groups) {
    std::vector<Line> lines;
    const CLI::Option* help = nullptr;
    for (const CLI::Option* option : command.get_options()) {
      if (option->get_positional() || option->get_description().empty() ||
          option->get_group() != group) {
        continue;
      }
      if (option == command.get_help_ptr()) {
        help = option;
      } else {
        lines.push_back({NameOf(*option), option->get_description()});
      }
    }
    if (help != nullptr) {
      lines.push_back({NameOf(*help), "print this help"});
    }
    text += "\n" + group + ":\n" + MakeList(lines);
  }
  return text + (command.get_footer().empty() ? "" : "\n" + command.get_footer());
}

std::string MakeProgramHelp(const std::vector<CommandEntry>& commands) {
  std::vector<Line> lines;
  for (const CommandEntry& command : commands) {
    if (command.summary[0] != '\0') {
      lines.push_back({command.name, command.summary});
    }
  }
  return "Usage: orvo COMMAND ...\n\nComputes with the kinematics of multi-axis machine "
         "tools.\n\nCommands:\n" +
         MakeList(lines) +
         R"(
Options:
  -h, --help   print this help; 'orvo COMMAND --help' tells more about a command
  --version    print the version

Exit status, whatever the command:
  0  all is well
  1  the command line is wrong
  2  a file can't be read or written, or does not hold what it must
  3  the machine, or its program system, can't be computed with
  4  some points can't be reached
  5  all points are reached, some of them outside the range of an axis
  6  what was to be verified is not as it should be

A file that is called '-' is the standard input or output.
)";
}

}  // namespace OrvoTool
