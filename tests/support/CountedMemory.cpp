#include "support/CountedMemory.h"

#include <cstdlib>
#include <new>

namespace Orvo::Testing {
namespace {

constexpr std::size_t NoRefusal = static_cast<std::size_t>(-1);

std::size_t allocationNb = 0;
std::size_t refusedAllocation = NoRefusal;

void* Allocate(std::size_t size, std::size_t alignment) {
  if (allocationNb++ == refusedAllocation) {
    throw std::bad_alloc();
  }
  void* memory = nullptr;
  if (posix_memalign(&memory, alignment < sizeof(void*) ? sizeof(void*) : alignment,
                     size == 0 ? 1 : size) != 0) {
    throw std::bad_alloc();
  }
  return memory;
}

}  // namespace

std::size_t AllocationNb() { return allocationNb; }

void RefuseAllocation(std::size_t place) { refusedAllocation = allocationNb + place; }

bool AllowAllocations() {
  const bool wasMade = allocationNb > refusedAllocation;
  refusedAllocation = NoRefusal;
  return wasMade;
}

}  // namespace Orvo::Testing

using Orvo::Testing::Allocate;

void* operator new(std::size_t size) { return Allocate(size, alignof(std::max_align_t)); }
void* operator new[](std::size_t size) { return Allocate(size, alignof(std::max_align_t)); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return Allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return Allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
