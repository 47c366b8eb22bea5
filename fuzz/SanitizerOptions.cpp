// How sanitizers behave in these programs, where there are any. A large allocation is refused, as
// by a system without room, for a sanitizer would touch an eighth of what the library only
// reserves; and little of what was freed is kept back, so that the limit on memory measures the
// library.

extern "C" {

const char* __asan_default_options();
const char* __ubsan_default_options();
}

const char* __asan_default_options() {
  return "allocator_may_return_null=1:max_allocation_size_mb=256:quarantine_size_mb=16";
}

const char* __ubsan_default_options() { return "print_stacktrace=1"; }
