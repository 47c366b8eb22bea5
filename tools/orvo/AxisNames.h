#pragma once

#include <Orvo/Kin/Machine.h>

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>

namespace OrvoTool {

/// Names the registers of a machine: in tables of axis values, in reports and on the command line.
///
/// A register is called after the element that it drives. Characters that would upset a CSV file
/// become '_'; a register without element, or whose element has no name, is called R and its
/// number; a name that came before, in whatever case, or that a file of axis values has for
/// something else, gets the number appended.
///
/// Takes memory for the registers that an element has, however many there are beside them.
class AxisNames {
 public:
  explicit AxisNames(const Orvo::Kin::Machine& machine);

  /// Returns the number of registers.
  int GetCount() const { return count_; }

  /// Returns the name of a register; "none" for one that the machine does not have.
  std::string GetName(int reg) const;

  /// Returns the register of a name, in whatever case, or -1.
  int Find(std::string_view name) const;

  /// Returns the names for a message, separated by commas; of many only the first ones.
  std::string List() const;

 private:
  int FindNumbered(std::string_view lower) const;

  int count_ = 0;
  std::map<int, std::string> names_;                ///< of the registers that an element has
  std::unordered_map<std::string, int> registers_;  ///< by their names in lower case
};

}  // namespace OrvoTool
