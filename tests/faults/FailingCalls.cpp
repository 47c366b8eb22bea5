// Goes before the C library in a program that is to be watched (LD_PRELOAD), and fails some of the
// calls that the program and its libraries make from `main` on. Three variables tell what:
//
//   ORVO_FAIL_CALL    one of the names below
//   ORVO_FAIL_HOW     "PLACE ERRNO LASTING": which call fails, with which error, and whether all
//                     later ones fail as well (1) or not (0); the error 0 is half of the bytes
//   ORVO_FAIL_RESULT  a file that at the end holds how many such calls there were

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

struct Plan {
  const char* call = "";
  unsigned long place = 0;
  int error = 0;
  bool isLasting = false;
};

Plan plan;
bool isMainRunning = false;
unsigned long callNb = 0;

// A function of this name in the libraries behind this one.
template <typename Function>
Function* Next(const char* name) {
  void* const symbol = dlsym(RTLD_NEXT, name);
  Function* function = nullptr;
  std::memcpy(&function, &symbol, sizeof function);
  return function;
}

bool Fails(const char* call) {
  if (!isMainRunning || std::strcmp(plan.call, call) != 0) {
    return false;
  }
  const unsigned long place = callNb++;
  if (place != plan.place && !(plan.isLasting && place > plan.place)) {
    return false;
  }
  errno = plan.error;
  return true;
}

int (*programsMain)(int, char**, char**);

int RunMain(int argc, char** argv, char** environment) {
  isMainRunning = true;
  const int status = programsMain(argc, argv, environment);
  isMainRunning = false;
  return status;
}

__attribute__((constructor)) void TakePlan() {
  const char* const call = std::getenv("ORVO_FAIL_CALL");
  const char* const how = std::getenv("ORVO_FAIL_HOW");
  if (call != nullptr && how != nullptr) {
    char* rest = nullptr;
    plan.call = call;
    plan.place = std::strtoul(how, &rest, 10);
    plan.error = static_cast<int>(std::strtol(rest, &rest, 10));
    plan.isLasting = std::strtol(rest, &rest, 10) != 0;
  }
}

// By the system's own calls: those of the C library may be the ones that fail.
__attribute__((destructor)) void TellResult() {
  const char* const file = std::getenv("ORVO_FAIL_RESULT");
  if (file == nullptr) {
    return;
  }
  char text[32];
  const int length = std::snprintf(text, sizeof text, "%lu\n", callNb);
  const long descriptor = syscall(SYS_openat, AT_FDCWD, file, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  syscall(SYS_write, descriptor, text, static_cast<std::size_t>(length));
  syscall(SYS_close, descriptor);
}

}  // namespace

extern "C" {

#if defined(ORVO_TEST_FAILS_MALLOC)
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);

void* malloc(std::size_t size) noexcept { return Fails("memory") ? nullptr : __libc_malloc(size); }

void* calloc(std::size_t count, std::size_t size) noexcept {
  return Fails("memory") ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) noexcept {
  return Fails("memory") ? nullptr : __libc_realloc(memory, size);
}
#endif

int __libc_start_main(int (*main)(int, char**, char**), int argc, char** argv, void (*init)(),
                      void (*fini)(), void (*loaderFini)(), void* stackEnd);

int __libc_start_main(int (*main)(int, char**, char**), int argc, char** argv, void (*init)(),
                      void (*fini)(), void (*loaderFini)(), void* stackEnd) {
  programsMain = main;
  return Next<decltype(__libc_start_main)>("__libc_start_main")(RunMain, argc, argv, init, fini,
                                                                loaderFini, stackEnd);
}

ssize_t read(int descriptor, void* bytes, std::size_t size) {
  static const auto next = Next<ssize_t(int, void*, std::size_t)>("read");
  if (Fails("read")) {
    return plan.error != 0 ? -1 : next(descriptor, bytes, (size + 1) / 2);
  }
  return next(descriptor, bytes, size);
}

ssize_t write(int descriptor, const void* bytes, std::size_t size) {
  static const auto next = Next<ssize_t(int, const void*, std::size_t)>("write");
  if (Fails("write")) {
    return plan.error != 0 ? -1 : next(descriptor, bytes, (size + 1) / 2);
  }
  return next(descriptor, bytes, size);
}

ssize_t writev(int descriptor, const iovec* parts, int partNb) {
  static const auto next = Next<ssize_t(int, const iovec*, int)>("writev");
  static const auto nextWrite = Next<ssize_t(int, const void*, std::size_t)>("write");
  if (Fails("write")) {
    const std::size_t half = (parts[0].iov_len + 1) / 2;
    return plan.error != 0 ? -1 : nextWrite(descriptor, parts[0].iov_base, half);
  }
  return next(descriptor, parts, partNb);
}

std::FILE* fopen(const char* path, const char* mode) {
  static const auto next = Next<std::FILE*(const char*, const char*)>("fopen");
  return Fails("open") ? nullptr : next(path, mode);
}

std::FILE* fopen64(const char* path, const char* mode) {
  static const auto next = Next<std::FILE*(const char*, const char*)>("fopen64");
  return Fails("open") ? nullptr : next(path, mode);
}

// What fails to close is closed all the same, as the system has it.
int fclose(std::FILE* stream) {
  static const auto next = Next<int(std::FILE*)>("fclose");
  const int result = next(stream);
  return Fails("close") ? EOF : result;
}

std::size_t fread(void* bytes, std::size_t size, std::size_t count, std::FILE* stream) {
  static const auto next = Next<std::size_t(void*, std::size_t, std::size_t, std::FILE*)>("fread");
  return Fails("read") ? next(bytes, size, count / 2, stream) : next(bytes, size, count, stream);
}

std::size_t fwrite(const void* bytes, std::size_t size, std::size_t count, std::FILE* stream) {
  static const auto next =
      Next<std::size_t(const void*, std::size_t, std::size_t, std::FILE*)>("fwrite");
  return Fails("write") ? next(bytes, size, count / 2, stream) : next(bytes, size, count, stream);
}

int fflush(std::FILE* stream) {
  static const auto next = Next<int(std::FILE*)>("fflush");
  return Fails("flush") ? EOF : next(stream);
}

int rename(const char* from, const char* to) noexcept {
  static const auto next = Next<int(const char*, const char*)>("rename");
  return Fails("rename") ? -1 : next(from, to);
}

}  // extern "C"

#if !defined(ORVO_TEST_FAILS_MALLOC)

// Where a sanitizer has the C allocator. Memory goes back by the usual way.
void* operator new(std::size_t size) {
  static const auto next = Next<void*(std::size_t)>("_Znwm");
  if (Fails("memory")) {
    throw std::bad_alloc();
  }
  return next(size);
}

void* operator new[](std::size_t size) {
  static const auto next = Next<void*(std::size_t)>("_Znam");
  if (Fails("memory")) {
    throw std::bad_alloc();
  }
  return next(size);
}

#endif
