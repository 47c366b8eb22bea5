#include "faults/ChildProcess.h"

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

namespace Orvo::Testing {

ChildProcess::ChildProcess(const std::function<int()>& work) : id_(fork()) {
  if (id_ < 0) {
    throw std::runtime_error("there is no process to be had");
  }
  if (id_ == 0) {
    // Whatever hangs ends by a signal, and the test fails.
    alarm(120);
    _exit(work());
  }
}

ChildProcess::~ChildProcess() {
  if (id_ > 0) {
    Wait();
  }
}

ChildEnd ChildProcess::Wait() {
  int status = 0;
  const pid_t ended = waitpid(id_, &status, 0);
  id_ = 0;
  ChildEnd end;
  if (ended > 0 && WIFEXITED(status)) {
    end.status = WEXITSTATUS(status);
  }
  if (ended > 0 && WIFSIGNALED(status)) {
    end.signal = WTERMSIG(status);
  }
  return end;
}

ChildEnd InChild(const std::function<int()>& work) { return ChildProcess(work).Wait(); }

}  // namespace Orvo::Testing
