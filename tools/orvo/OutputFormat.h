#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace OrvoTool {

/// How a result is written.
enum class OutputFormat : int {
  Text,       ///< for people; may change
  Json,       ///< one JSON document; members are only ever added
  JsonLines,  ///< one JSON object a line; members are only ever added
  Csv         ///< a line of column names, then one line a record; columns are only ever added
};

/// When text is colored.
enum class ColorMode : int { Auto, Always, Never };

/// How a command's result is to be written.
struct OutputChoice {
  OutputFormat format = OutputFormat::Text;
  ColorMode color = ColorMode::Auto;
};

/// Adds --format with the formats that a command has, the first of which counts where it isn't
/// given; and --color where text is among them.
void AddOutputOptions(CLI::App* command, OutputChoice* choice,
                      const std::vector<OutputFormat>& formats);

/// Adds the argument MACHINE, a machine file or '-'.
CLI::Option* AddMachineArgument(CLI::App* command, std::string* machine);

/// Adds -p, --program-system.
CLI::Option* AddProgramSystemOption(CLI::App* command, std::string* programSystem);

}  // namespace OrvoTool
