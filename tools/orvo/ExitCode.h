#pragma once

namespace OrvoTool {

/// What the program's exit status says, whatever the command. Scripts rely on the numbers.
enum class ExitCode : int {
  Success = 0,            ///< everything asked for was done, and all is well
  Usage = 1,              ///< the command line is wrong
  Unreadable = 2,         ///< a file can't be read or written, or does not hold what it must
  MachineInvalid = 3,     ///< the machine, or its program system, can't be computed with
  Unreachable = 4,        ///< some points can't be reached, whatever else
  OutOfRange = 5,         ///< all points are reached, some of them outside the range of an axis
  VerificationFailed = 6  ///< what was to be verified is not as it should be
};

}  // namespace OrvoTool
