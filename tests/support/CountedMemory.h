#pragma once

#include <cstddef>

namespace Orvo::Testing {

// A program that is linked with CountedMemory.cpp counts its requests for memory and refuses one of
// them when asked. One thread: the counts are plain numbers.

/// Returns the number of requests so far, refused ones included.
std::size_t AllocationNb();

/// Refuses one request from now: the next (0), the one after it (1), and so on.
void RefuseAllocation(std::size_t place);

/// Refuses none, and returns whether the request that RefuseAllocation() named was made.
bool AllowAllocations();

/// Returns the number of requests that a call makes.
template <typename Call>
std::size_t AllocationsOf(Call call) {
  const std::size_t before = AllocationNb();
  call();
  return AllocationNb() - before;
}

}  // namespace Orvo::Testing
