#pragma once

#include "ExitCode.h"

#include <stdexcept>
#include <string>

namespace OrvoTool {

/// Ends the program: the message goes to the error stream as it is, the code becomes the status.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& message) : std::runtime_error(message), code_(code) {}

  ExitCode GetCode() const { return code_; }

 private:
  ExitCode code_;
};

/// Ends the program because of its command line. "orvo COMMAND: " is put in front of the message,
/// which begins with the option or argument that it is about.
class UsageFailure : public Failure {
 public:
  explicit UsageFailure(const std::string& message) : Failure(ExitCode::Usage, message) {}
};

}  // namespace OrvoTool
