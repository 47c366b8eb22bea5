#include "Progress.h"

#include <chrono>
#include <cstdio>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace OrvoTool {
namespace {

constexpr std::uint64_t PointsBetweenLooks = 256;
constexpr std::int64_t MillisecondsBetweenStates = 200;

bool IsErrorStreamTerminal() {
#ifdef _WIN32
  return _isatty(_fileno(stderr)) != 0;
#else
  return isatty(STDERR_FILENO) != 0;
#endif
}

std::int64_t NowMilliseconds() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

}  // namespace

Progress::Progress() : isTerminal_(IsErrorStreamTerminal()) {}

Progress::~Progress() {
  if (isShown_) {
    std::fprintf(stderr, "\r%40s\r", "");
    std::fflush(stderr);
  }
}

void Progress::Show(std::uint64_t points, double share) {
  if (!isTerminal_ || points % PointsBetweenLooks != 0) {
    return;
  }
  const std::int64_t now = NowMilliseconds();
  if (now < nextMilliseconds_) {
    return;
  }
  nextMilliseconds_ = now + MillisecondsBetweenStates;
  isShown_ = true;
  if (share >= 0.0) {
    std::fprintf(stderr, "\r%3d %%  %llu points", static_cast<int>(share * 100.0),
                 static_cast<unsigned long long>(points));
  } else {
    std::fprintf(stderr, "\r%llu points", static_cast<unsigned long long>(points));
  }
  std::fflush(stderr);
}

}  // namespace OrvoTool
