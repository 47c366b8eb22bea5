#pragma once

#include <cstddef>
#include <functional>

namespace Orvo::Testing {

/// How a function went in a process of its own.
struct ChildRun {
  bool isEnded = false;       ///< it returned, rather than being killed
  int result = 0;             ///< what it returned
  std::size_t peakBytes = 0;  ///< the most memory that the process held at a time
};

/// Calls a function in a copy of this process and waits for it.
///
/// @param call          returns a number from 0 to 255
/// @param addressLimit  bytes of addresses that the copy may hold; 0: any
ChildRun RunInChild(const std::function<int()>& call, std::size_t addressLimit = 0);

}  // namespace Orvo::Testing
