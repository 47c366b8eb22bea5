#include "NewCommand.h"

#include "ChoiceOption.h"
#include "Failure.h"
#include "JsonText.h"
#include "MachineTemplate.h"
#include "NumberText.h"
#include "OutputFormat.h"
#include "ResultOutput.h"
#include "StandardOutput.h"
#include "Terminal.h"
#include "TextTable.h"
#include "WideText.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace OrvoTool {
namespace {

const char Description[] =
    R"(Writes the machine file of a common kind of machine, with your dimensions. With
all axes at 0, the spindle's gauge point is at the center of the table's face.
A positive value of an axis means the same motion of the tool against the
workpiece, whether the axis carries the one or the other.)";

const char Footer[] =
    R"(Lengths are in the unit that you work in, angles in degrees. A range is MIN,MAX,
or 'none' for an axis whose range is not checked. 'orvo new --list' shows the
kinds with their axes, ranges and dimensions.

Exit status:
  0  the file is written
  1  the command line is wrong
  2  the file can't be written

Examples:
  orvo new --list
  orvo new trunnion-ac --a -30,120 --pivot 60 -o machine.xml
  orvo new nutating-head-cb --angle 50 | orvo info -
)";

constexpr std::string_view AxisLetters = "xyzabc";
constexpr std::string_view DimensionNames[] = {"pivot", "eccentric", "angle"};

struct NewOptions {
  int kind = -1;
  bool isList = false;
  std::vector<std::pair<char, std::string>> ranges;
  std::vector<std::pair<std::string, std::string>> dimensions;
  std::string outputFile;
  OutputChoice output;
};

MachineFileText::Range ReadRange(const std::string& option, const std::string& text) {
  if (text == "none") {
    return {0.0, 0.0, false};
  }
  const std::size_t comma = text.find(',');
  MachineFileText::Range range;
  const std::string_view whole = text;
  if (comma == std::string::npos ||
      ReadNumber(Trim(whole.substr(0, comma)), &range.min) != NumberFault::None ||
      ReadNumber(Trim(whole.substr(comma + 1)), &range.max) != NumberFault::None) {
    throw UsageFailure(option + ": MIN,MAX or none is needed, not '" + Printable(text) + "'");
  }
  if (range.min > range.max) {
    throw UsageFailure(option + ": the range '" + Printable(text) + "' is reversed");
  }
  return range;
}

TemplateValues ReadValues(const MachineTemplate& kind, const NewOptions& options) {
  TemplateValues values;
  for (const auto& [letter, range] : kind.axes) {
    values.ranges[letter] = range;
  }
  for (const TemplateDimension& dimension : kind.dimensions) {
    values.dimensions[dimension.name] = dimension.value;
  }
  for (const auto& [letter, text] : options.ranges) {
    const std::string option = std::string("--") + letter;
    if (values.ranges.count(letter) == 0) {
      throw UsageFailure(option + ": a " + kind.name + " has no such axis");
    }
    values.ranges[letter] = ReadRange(option, text);
  }
  for (const auto& [name, text] : options.dimensions) {
    const std::string option = "--" + name;
    if (values.dimensions.count(name) == 0) {
      throw UsageFailure(option + ": a " + kind.name + " has no such dimension");
    }
    double value = 0.0;
    const NumberFault fault = ReadNumber(text, &value);
    if (fault != NumberFault::None) {
      throw UsageFailure(option + ": '" + Printable(text) + "' " + DescribeFault(fault));
    }
    if (name == "angle" && !(value > 0.0 && value <= 90.0)) {
      throw UsageFailure(
          fmt::format("{}: an angle above 0 and up to 90 degrees is needed, not {}", option, text));
    }
    values.dimensions[name] = value;
  }
  return values;
}

std::string RangeText(const MachineFileText::Range& range) {
  return range.isChecked ? ShortNumber(range.min, 9) + "," + ShortNumber(range.max, 9) : "none";
}

std::string MakeListText(const TextStyle& style) {
  std::string text;
  for (const MachineTemplate& kind : GetMachineTemplates()) {
    text += (text.empty() ? "" : "\n") + style.Heading(kind.name) + "\n  " + kind.summary + "\n ";
    for (const auto& [letter, range] : kind.axes) {
      text += std::string(" --") + letter + " " + RangeText(range);
    }
    text += "\n";
    using Align = TextTable::Align;
    TextTable table({Align::Left, Align::Left}, 2);
    for (const TemplateDimension& dimension : kind.dimensions) {
      table.AddRow({std::string("--") + dimension.name + " " + ShortNumber(dimension.value, 9),
                    dimension.meaning});
    }
    text += table.GetText();
  }
  return text;
}

JsonValue MakeListJson() {
  JsonValue kinds = JsonValue::array();
  for (const MachineTemplate& kind : GetMachineTemplates()) {
    JsonValue axes = JsonValue::array();
    for (const auto& [letter, range] : kind.axes) {
      axes.push_back(JsonValue{{"axis", std::string(1, letter)},
                               {"min", range.min},
                               {"max", range.max},
                               {"checked", range.isChecked}});
    }
    JsonValue dimensions = JsonValue::array();
    for (const TemplateDimension& dimension : kind.dimensions) {
      dimensions.push_back(JsonValue{
          {"name", dimension.name}, {"value", dimension.value}, {"meaning", dimension.meaning}});
    }
    kinds.push_back(JsonValue{{"kind", kind.name},
                              {"summary", kind.summary},
                              {"axes", axes},
                              {"dimensions", dimensions}});
  }
  return kinds;
}

ExitCode RunNew(const NewOptions& options) {
  if (options.isList) {
    WriteStandardOutput(options.output.format == OutputFormat::Json
                            ? JsonDocument(MakeListJson())
                            : MakeListText(TextStyle(options.output.color)));
    return ExitCode::Success;
  }
  if (options.kind < 0) {
    throw UsageFailure("KIND is required; 'orvo new --list' shows the kinds");
  }
  const MachineTemplate& kind = GetMachineTemplates()[static_cast<std::size_t>(options.kind)];
  const std::string text = kind.make(ReadValues(kind, options));
  ResultOutput output(options.outputFile);
  output.Write(text);
  output.Finish();
  return ExitCode::Success;
}

}  // namespace

CommandAction AddNewCommand(CLI::App* command) {
  const auto options = std::make_shared<NewOptions>();
  NewOptions* const values = options.get();
  command->description(Description);
  command->footer(Footer);
  std::vector<std::pair<std::string, int>> kinds;
  for (const MachineTemplate& kind : GetMachineTemplates()) {
    kinds.emplace_back(kind.name, static_cast<int>(kinds.size()));
  }
  AddChoice(command, "KIND", &values->kind, kinds, "the kind of machine, see --list");
  command->add_flag("--list", values->isList, "show the kinds instead, with their dimensions");
  for (const char letter : AxisLetters) {
    const std::string upper(1, static_cast<char>(letter - 'a' + 'A'));
    command
        ->add_option_function<std::string>(
            std::string("--") + letter,
            [values, letter](const std::string& text) {
              values->ranges.emplace_back(letter, text);
            },
            "the range of " + upper)
        ->type_name("MIN,MAX");
  }
  const char* const meanings[] = {
      ("the distance of the tilting axis from the face of the table, or from the spindle's gauge "
       "point"),
      "how far the tilting axis stands beside the turning one",
      "the angle between the nutating axis and the turning one"};
  std::size_t i = 0;
  for (const std::string_view view : DimensionNames) {
    const std::string name(view);
    command
        ->add_option_function<std::string>(
            "--" + name,
            [values, name](const std::string& text) {
              values->dimensions.emplace_back(name, text);
            },
            meanings[i])
        ->type_name(name == "angle" ? "DEG" : "LENGTH");
    ++i;
  }
  command
      ->add_option("-o,--output", values->outputFile,
                   "where the file goes; to the standard output if not given, or '-'")
      ->type_name("FILE");
  AddOutputOptions(command, &values->output, {OutputFormat::Text, OutputFormat::Json});
  return [options]() { return RunNew(*options); };
}

}  // namespace OrvoTool
