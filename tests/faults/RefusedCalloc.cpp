#include "support/CountedMemory.h"

#include <cstddef>

// Where a sanitizer has the C allocator, the linker leads the library's own calls of calloc here:
// they are counted and refused like those of operator new.
extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
  return Orvo::Testing::IsRefused() ? nullptr : __real_calloc(count, size);
}
