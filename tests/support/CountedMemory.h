#pragma once

#include <cstddef>

namespace Orvo::Testing {

// A program that is linked with CountedMemory.cpp counts its requests for memory and refuses some
// of them when asked: those of operator new in all its forms and, with glibc, those of the C
// allocator too, wherever in the process they come from. Sanitizers keep the C allocator to
// themselves; what comes through it is then neither counted nor refused. One thread: the counts are
// plain numbers.

/// Returns the number of requests so far, refused ones included.
std::size_t AllocationNb();

/// Refuses one request from now: the next (0), the one after it (1), and so on.
void RefuseAllocation(std::size_t place);

/// Refuses that request and all after it: memory that is used up stays used up.
void RefuseAllocationsFrom(std::size_t place);

/// Refuses none, and returns whether the request that the last call named was made.
bool AllowAllocations();

/// Counts a request that comes from somewhere else, and returns whether it is to be refused.
bool IsRefused();

/// What is allocated and not yet given back.
struct LiveMemory {
  std::size_t blockNb = 0;
  std::size_t bytes = 0;

  friend bool operator==(const LiveMemory& a, const LiveMemory& b) {
    return a.blockNb == b.blockNb && a.bytes == b.bytes;
  }
};

LiveMemory GetLiveMemory();

/// Returns the number of requests that a call makes.
template <typename Call>
std::size_t AllocationsOf(Call call) {
  const std::size_t before = AllocationNb();
  call();
  return AllocationNb() - before;
}

}  // namespace Orvo::Testing
