#pragma once

#include <functional>

namespace Orvo::Testing {

/// How a process ended.
struct ChildEnd {
  int status = -1;  ///< its exit status, or -1 when a signal ended it
  int signal = 0;   ///< the signal that ended it, or 0
};

/// A copy of this process that does one thing and ends with what that returns.
class ChildProcess {
 public:
  explicit ChildProcess(const std::function<int()>& work);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Waits for its end.
  ~ChildProcess();

  ChildEnd Wait();

 private:
  int id_;
};

/// Does something in a copy of this process, where limits, rights and signals may be changed.
ChildEnd InChild(const std::function<int()>& work);

}  // namespace Orvo::Testing
