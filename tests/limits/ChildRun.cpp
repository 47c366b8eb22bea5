#include "ChildRun.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <stdexcept>

namespace Orvo::Testing {

ChildRun RunInChild(const std::function<int()>& call, std::size_t addressLimit) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) {
    throw std::runtime_error("no process could be made");
  }
  if (child == 0) {
    if (addressLimit != 0) {
      const rlimit limit = {addressLimit, addressLimit};
      setrlimit(RLIMIT_AS, &limit);
    }
    try {
      const int result = call();
      std::fflush(nullptr);
      _exit(result);
    } catch (...) {
      std::terminate();
    }
  }
  int status = 0;
  rusage usage = {};
  if (wait4(child, &status, 0, &usage) != child) {
    throw std::runtime_error("a process was lost");
  }
  return {WIFEXITED(status), WIFEXITED(status) ? WEXITSTATUS(status) : WTERMSIG(status),
          static_cast<std::size_t>(usage.ru_maxrss) * 1024};
}

}  // namespace Orvo::Testing
