#pragma once

#include "MachineFinding.h"

#include <string>

namespace OrvoTool {

/// What came out of looking at a machine file.
struct MachineValidation {
  MachineFindings findings;

  /// Whether the file is one of a machine at all: well-formed, with the right top element.
  bool isMachineFile = false;

  /// What the library said where it refused a file in which nothing else was found; else empty.
  std::string refusal;
};

/// Looks for all that is wrong with a machine file: first in its text, without the library, then by
/// having the library read it and prepare each of its program systems.
///
/// Takes time and memory in proportion to the file's size, whatever it holds.
/// @param name  the file's name in UTF-8; "-" for the standard input, whose mesh files are not
///   looked for
/// @throws Failure where the file can't be read at all
MachineValidation ValidateMachineFile(const std::string& name);

}  // namespace OrvoTool
