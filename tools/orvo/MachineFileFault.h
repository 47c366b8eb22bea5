#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace OrvoTool {

/// The first thing in a machine file that a reader stumbles over.
struct MachineFileFault {
  std::uint64_t line = 0;    ///< from 1
  std::uint64_t column = 0;  ///< in characters, from 1
  std::string what;          ///< a sentence without its end
};

/// Looks for the first fault of a machine file that could not be read: XML that is not well-formed,
/// a missing element, a word or a number that is none.
///
/// Meant to explain a failure, not to judge a file: it is called only after the library has refused
/// the file. Nothing comes back where it finds nothing wrong, or where the file can't be read or is
/// larger than 256 MiB.
///
/// @param name  the file's name in UTF-8
std::optional<MachineFileFault> FindMachineFileFault(const std::string& name);

}  // namespace OrvoTool
