#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <utility>
#include <vector>

namespace OrvoTool {

/// Adds an option that takes one of some words, each of which stands for a value.
///
/// Help, completion and the message about any other word list the words.
/// @param value  holds the value that counts where the option isn't given; must live until parsing
template <typename Value>
CLI::Option* AddChoice(CLI::App* command, const std::string& names, Value* value,
                       const std::vector<std::pair<std::string, Value>>& choices,
                       const std::string& description) {
  std::string words;
  std::string list;
  for (const auto& choice : choices) {
    words += (words.empty() ? "" : "|") + choice.first;
    list += (list.empty() ? "" : ", ") + choice.first;
  }
  const auto set = [value, choices](const std::string& word) {
    for (const auto& choice : choices) {
      if (choice.first == word) {
        *value = choice.second;
      }
    }
  };
  const auto check = [choices, list](const std::string& word) {
    for (const auto& choice : choices) {
      if (choice.first == word) {
        return std::string();
      }
    }
    return "'" + word + "' is none of " + list;
  };
  return command->add_option_function<std::string>(names, set, description)
      ->check(check)
      ->type_name(words);
}

}  // namespace OrvoTool
