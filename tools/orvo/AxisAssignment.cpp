#include "AxisAssignment.h"

#include "Failure.h"
#include "NumberText.h"
#include "WideText.h"

#include <Orvo/Kin/Register.h>

#include <cstddef>
#include <string_view>

namespace OrvoTool {
namespace {

std::vector<std::string_view> SplitAtCommas(std::string_view text) {
  std::vector<std::string_view> parts;
  for (;;) {
    const std::size_t comma = text.find(',');
    parts.push_back(Trim(text.substr(0, comma)));
    if (comma == std::string_view::npos) {
      return parts;
    }
    text.remove_prefix(comma + 1);
  }
}

}  // namespace

AxisAssignments ReadAxisAssignments(const std::string& option, const std::string& text,
                                    const AxisNames& names) {
  const std::vector<std::string_view> parts = SplitAtCommas(text);
  const bool isNamed = text.find('=') != std::string::npos;
  if (!isNamed && parts.size() != static_cast<std::size_t>(names.GetCount())) {
    throw UsageFailure(option + ": " + std::to_string(parts.size()) + " values for " +
                       std::to_string(names.GetCount()) +
                       " registers; give all of them, or some as NAME=VALUE");
  }
  AxisAssignments assignments;
  std::vector<bool> isGiven(static_cast<std::size_t>(names.GetCount()));
  int reg = 0;
  for (const std::string_view part : parts) {
    std::string_view number = part;
    if (isNamed) {
      const std::size_t equals = part.find('=');
      reg = names.Find(Trim(part.substr(0, equals)));
      if (equals == std::string_view::npos || reg < 0) {
        throw UsageFailure(option + ": '" + Printable(part) + "' is not NAME=VALUE with one of " +
                           names.List());
      }
      number = Trim(part.substr(equals + 1));
    }
    double value = 0.0;
    const NumberFault fault = ReadNumber(number, &value);
    if (fault != NumberFault::None) {
      throw UsageFailure(option + ": '" + Printable(number) + "' " + DescribeFault(fault));
    }
    if (isGiven[static_cast<std::size_t>(reg)]) {
      throw UsageFailure(option + ": " + names.GetName(reg) + " is given twice");
    }
    isGiven[static_cast<std::size_t>(reg)] = true;
    assignments.emplace_back(reg, value);
    ++reg;
  }
  return assignments;
}

void PutAssignments(const AxisAssignments& assignments, Orvo::Kin::MachinePosition* position) {
  for (const auto& [reg, value] : assignments) {
    (*position)[Orvo::Kin::Register(reg)] = value;
  }
}

void PutAssignments(const std::string& option, const AxisAssignments& assignments,
                    const AxisNames& names, const Orvo::Path::MainAxes& axes, bool isPositive,
                    double factor, Orvo::Path::AxisValues* values) {
  for (const auto& [reg, value] : assignments) {
    bool isFound = false;
    for (std::size_t i = 0; i < Orvo::Path::MainAxisNb; ++i) {
      if (axes.axes[i].isPresent && axes.axes[i].reg.GetVal() == reg) {
        (*values)[i] = value * factor;
        isFound = true;
      }
    }
    if (!isFound) {
      throw UsageFailure(option + ": the program system does not move " + names.GetName(reg));
    }
    if (value < 0.0 || (isPositive && value == 0.0)) {
      throw UsageFailure(option + ": " + ShortNumber(value) + " for " + names.GetName(reg) +
                         (isPositive ? " is not above 0" : " is negative"));
    }
  }
}

}  // namespace OrvoTool
