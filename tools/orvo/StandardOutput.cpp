#include "StandardOutput.h"

#include "Failure.h"

#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>

namespace OrvoTool {

void WriteStandardOutput(std::string_view text) {
  errno = 0;
  const bool isWritten = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (!isWritten || std::fflush(stdout) != 0) {
    const std::string reason = errno != 0 ? ": " + std::generic_category().message(errno) : "";
    throw Failure(ExitCode::Unreadable, "orvo: the standard output can't be written" + reason);
  }
}

}  // namespace OrvoTool
