#pragma once

#include "MachineFileText.h"

#include <map>
#include <string>
#include <vector>

namespace OrvoTool {

/// A length or an angle that a template has.
struct TemplateDimension {
  const char* name;     ///< of its option, without dashes
  const char* meaning;  ///< one line
  double value;         ///< if not given
};

/// The ranges and dimensions that a machine is made with.
struct TemplateValues {
  std::map<char, MachineFileText::Range> ranges;  ///< by the axis's letter in lower case
  std::map<std::string, double> dimensions;       ///< by the name of its option
};

/// A common kind of machine.
struct MachineTemplate {
  const char* name;
  const char* summary;  ///< one line

  /// The axes in the order of their registers, with their ranges.
  std::vector<std::pair<char, MachineFileText::Range>> axes;

  std::vector<TemplateDimension> dimensions;

  /// Makes the machine file.
  std::string (*make)(const TemplateValues& values);
};

/// Returns all kinds.
const std::vector<MachineTemplate>& GetMachineTemplates();

}  // namespace OrvoTool
