#pragma once

#include <stdexcept>
#include <string>

namespace OrvoTool {

/// What the program's exit status says. Scripts rely on the numbers.
enum class ExitCode : int {
  Success = 0,      ///< everything asked for was done; every point is solved
  Usage = 1,        ///< the command line is wrong
  Input = 2,        ///< a file can't be read, or does not hold what it must
  Output = 3,       ///< the result can't be written
  Unreachable = 4,  ///< some points can't be reached, whatever else
  OutOfRange = 5    ///< all points are reached, some of them outside the range of an axis
};

/// Ends the program: the message goes to the error stream as it is, the code becomes the status.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& message) : std::runtime_error(message), code_(code) {}

  ExitCode GetCode() const { return code_; }

 private:
  ExitCode code_;
};

}  // namespace OrvoTool
