#pragma once

#include <Orvo/Kin/Machine.h>

#include <string>
#include <string_view>
#include <vector>

namespace OrvoTool {

/// Names the registers of a machine: in tables of axis values, in reports and on the command line.
///
/// A register is called after the element that it drives. Characters that would upset a CSV file
/// become '_'; a register without element, or whose element has no name, is called R and its
/// number; a name that came before, in whatever case, gets the number appended.
class AxisNames {
 public:
  /// @param reserved  names that no register may have
  AxisNames(const Orvo::Kin::Machine& machine, const std::vector<std::string>& reserved);

  /// Returns the number of registers.
  int GetCount() const { return static_cast<int>(names_.size()); }

  /// Returns the name of a register; "none" for one that the machine does not have.
  std::string GetName(int reg) const;

  /// Returns the register of a name, in whatever case, or -1.
  int Find(std::string_view name) const;

  /// Returns the names for a message, separated by commas; of many only the first ones.
  std::string List() const;

 private:
  std::vector<std::string> names_;
};

}  // namespace OrvoTool
