#include "support/CountedMemory.h"

#include "support/Sanitizers.h"

#include <malloc.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <new>

#if defined(__GLIBC__) && !defined(ORVO_TEST_HAS_ALLOCATOR_OF_ITS_OWN)
#define ORVO_TEST_COUNTS_C_ALLOCATOR

// The allocator under the names that nobody replaces.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);
}
#endif

namespace Orvo::Testing {
namespace {

constexpr std::size_t NoRefusal = static_cast<std::size_t>(-1);

std::size_t allocationNb = 0;
std::size_t refusedAllocation = NoRefusal;
bool areLaterOnesRefused = false;
LiveMemory live;

void* Enter(void* memory) {
  if (memory != nullptr) {
    ++live.blockNb;
    live.bytes += malloc_usable_size(memory);
  }
  return memory;
}

void Leave(void* memory) {
  if (memory != nullptr) {
    --live.blockNb;
    live.bytes -= malloc_usable_size(memory);
  }
}

#if defined(ORVO_TEST_COUNTS_C_ALLOCATOR)

void* AllocateAligned(std::size_t size, std::size_t alignment) {
  return __libc_memalign(alignment, size);
}

void Release(void* memory) { __libc_free(memory); }

#else

void* AllocateAligned(std::size_t size, std::size_t alignment) {
  void* memory = nullptr;
  return posix_memalign(&memory, alignment, size) == 0 ? memory : nullptr;
}

void Release(void* memory) { std::free(memory); }

#endif

// A request of operator new: null where it is refused or can't be met.
void* Request(std::size_t size, std::size_t alignment) noexcept {
  if (IsRefused()) {
    return nullptr;
  }
  return Enter(AllocateAligned(std::max<std::size_t>(size, 1),
                               std::max(alignment, alignof(std::max_align_t))));
}

void* RequestOrThrow(std::size_t size, std::size_t alignment) {
  void* const memory = Request(size, alignment);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void GiveBack(void* memory) noexcept {
  Leave(memory);
  Release(memory);
}

constexpr std::size_t Plain = alignof(std::max_align_t);

constexpr std::size_t Number(std::align_val_t alignment) {
  return static_cast<std::size_t>(alignment);
}

}  // namespace

std::size_t AllocationNb() { return allocationNb; }

void RefuseAllocation(std::size_t place) {
  areLaterOnesRefused = false;
  refusedAllocation = allocationNb + place;
}

void RefuseAllocationsFrom(std::size_t place) {
  RefuseAllocation(place);
  areLaterOnesRefused = true;
}

bool AllowAllocations() {
  const bool wasMade = allocationNb > refusedAllocation;
  refusedAllocation = NoRefusal;
  return wasMade;
}

bool IsRefused() {
  const std::size_t place = allocationNb++;
  return place == refusedAllocation || (areLaterOnesRefused && place > refusedAllocation);
}

LiveMemory GetLiveMemory() { return live; }

}  // namespace Orvo::Testing

using Orvo::Testing::GiveBack;
using Orvo::Testing::Number;
using Orvo::Testing::Plain;
using Orvo::Testing::Request;
using Orvo::Testing::RequestOrThrow;
using std::align_val_t;
using std::nothrow_t;
using std::size_t;

void* operator new(size_t size) { return RequestOrThrow(size, Plain); }
void* operator new[](size_t size) { return RequestOrThrow(size, Plain); }
void* operator new(size_t size, align_val_t a) { return RequestOrThrow(size, Number(a)); }
void* operator new[](size_t size, align_val_t a) { return RequestOrThrow(size, Number(a)); }
void* operator new(size_t size, const nothrow_t&) noexcept { return Request(size, Plain); }
void* operator new[](size_t size, const nothrow_t&) noexcept { return Request(size, Plain); }
void* operator new(size_t size, align_val_t a, const nothrow_t&) noexcept {
  return Request(size, Number(a));
}
void* operator new[](size_t size, align_val_t a, const nothrow_t&) noexcept {
  return Request(size, Number(a));
}
void operator delete(void* memory) noexcept { GiveBack(memory); }
void operator delete[](void* memory) noexcept { GiveBack(memory); }
void operator delete(void* memory, size_t) noexcept { GiveBack(memory); }
void operator delete[](void* memory, size_t) noexcept { GiveBack(memory); }
void operator delete(void* memory, align_val_t) noexcept { GiveBack(memory); }
void operator delete[](void* memory, align_val_t) noexcept { GiveBack(memory); }
void operator delete(void* memory, size_t, align_val_t) noexcept { GiveBack(memory); }
void operator delete[](void* memory, size_t, align_val_t) noexcept { GiveBack(memory); }
void operator delete(void* memory, const nothrow_t&) noexcept { GiveBack(memory); }
void operator delete[](void* memory, const nothrow_t&) noexcept { GiveBack(memory); }
void operator delete(void* memory, align_val_t, const nothrow_t&) noexcept { GiveBack(memory); }
void operator delete[](void* memory, align_val_t, const nothrow_t&) noexcept { GiveBack(memory); }

#if defined(ORVO_TEST_COUNTS_C_ALLOCATOR)

using Orvo::Testing::Enter;
using Orvo::Testing::IsRefused;
using Orvo::Testing::Leave;

extern "C" {

void* malloc(size_t size) noexcept {
  if (IsRefused()) {
    errno = ENOMEM;
    return nullptr;
  }
  return Enter(__libc_malloc(size));
}

void* calloc(size_t count, size_t size) noexcept {
  if (IsRefused()) {
    errno = ENOMEM;
    return nullptr;
  }
  return Enter(__libc_calloc(count, size));
}

void* realloc(void* memory, size_t size) noexcept {
  if (IsRefused()) {
    errno = ENOMEM;
    return nullptr;
  }
  Leave(memory);
  void* const moved = __libc_realloc(memory, size);
  if (moved == nullptr && size != 0) {
    Enter(memory);
  }
  return Enter(moved);
}

void free(void* memory) noexcept { GiveBack(memory); }

}  // extern "C"

#endif
