#include "OutputFormat.h"

#include "ChoiceOption.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <utility>

namespace OrvoTool {
namespace {

const char* GetWord(OutputFormat format) {
  switch (format) {
    case OutputFormat::Text:
      return "text";
    case OutputFormat::Json:
      return "json";
    case OutputFormat::JsonLines:
      return "jsonl";
    case OutputFormat::Csv:
      return "csv";
  }
  return "text";
}

}  // namespace

void AddOutputOptions(CLI::App* command, OutputChoice* choice,
                      const std::vector<OutputFormat>& formats) {
  std::vector<std::pair<std::string, OutputFormat>> words;
  words.reserve(formats.size());
  for (const OutputFormat format : formats) {
    words.emplace_back(GetWord(format), format);
  }
  choice->format = formats.front();
  AddChoice(
      command, "--format", &choice->format, words,
      std::string("how the result is written; ") + GetWord(formats.front()) + " if not given");
  if (std::find(formats.begin(), formats.end(), OutputFormat::Text) != formats.end()) {
    AddChoice<ColorMode>(
        command, "--color", &choice->color,
        {{"auto", ColorMode::Auto}, {"always", ColorMode::Always}, {"never", ColorMode::Never}},
        "whether text is colored; auto, which is meant if not given: on a terminal, unless "
        "NO_COLOR is set");
  }
}

CLI::Option* AddMachineArgument(CLI::App* command, std::string* machine) {
  return command
      ->add_option("MACHINE", *machine,
                   "the machine file, or a machine in JSON (.json); '-' reads the former from the "
                   "standard input")
      ->required()
      ->type_name("FILE");
}

CLI::Option* AddProgramSystemOption(CLI::App* command, std::string* programSystem) {
  return command
      ->add_option("-p,--program-system", *programSystem,
                   "which program system of the machine, by number or by name; 0 if not given")
      ->type_name("N|NAME");
}

}  // namespace OrvoTool
