#include "Progress.h"

#include "Terminal.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>

namespace OrvoTool {
namespace {

constexpr std::uint64_t PointsBetweenLooks = 256;
constexpr std::int64_t MillisecondsBetweenStates = 200;

/// Before this much time, a rate says little.
constexpr std::int64_t MillisecondsBeforeRate = 1000;

std::int64_t NowMilliseconds() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

std::string TwoDigits(std::int64_t number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

/// "0:07", "12:30", "1:02:03".
std::string Clock(std::int64_t seconds) {
  const std::int64_t hours = seconds / 3600;
  const std::int64_t minutes = seconds / 60 % 60;
  return (hours > 0 ? std::to_string(hours) + ":" + TwoDigits(minutes) : std::to_string(minutes)) +
         ":" + TwoDigits(seconds % 60);
}

/// Past this, a time left is a guess that nobody can use.
constexpr double MaxSecondsLeft = 1e6;

}  // namespace

Progress::Progress(const char* unit)
    : unit_(unit),
      isTerminal_(IsErrorTerminal()),
      beginMilliseconds_(NowMilliseconds()),
      nextDoneNb_(PointsBetweenLooks) {}

Progress::~Progress() { Wipe(); }

void Progress::Wipe() {
  if (shownWidth_ > 0) {
    std::fprintf(stderr, "\r%*s\r", static_cast<int>(shownWidth_), "");
    std::fflush(stderr);
    shownWidth_ = 0;
  }
}

void Progress::Show(std::uint64_t doneNb, double share) {
  if (!isTerminal_ || doneNb < nextDoneNb_) {
    return;
  }
  nextDoneNb_ = doneNb + PointsBetweenLooks;
  const std::int64_t now = NowMilliseconds();
  if (now < nextMilliseconds_) {
    return;
  }
  nextMilliseconds_ = now + MillisecondsBetweenStates;
  const std::int64_t elapsed = now - beginMilliseconds_;
  const double seconds = static_cast<double>(elapsed) / 1000.0;
  std::string line;
  if (share >= 0.0) {
    const int percent = static_cast<int>(std::min(share, 1.0) * 100.0);
    line = (percent < 10 ? "  " : percent < 100 ? " " : "") + std::to_string(percent) + " %  ";
  }
  line += std::to_string(doneNb) + " " + unit_;
  if (elapsed >= MillisecondsBeforeRate) {
    line +=
        "  " + std::to_string(static_cast<long long>(static_cast<double>(doneNb) / seconds)) + "/s";
    const double left = share > 0.0 ? seconds * (1.0 - std::min(share, 1.0)) / share : -1.0;
    if (left >= 0.0 && left < MaxSecondsLeft) {
      line += "  " + Clock(std::lround(left)) + " left";
    }
  }
  const std::size_t width = std::max(shownWidth_, line.size());
  shownWidth_ = line.size();
  line.resize(width, ' ');
  std::fprintf(stderr, "\r%s", line.c_str());
  std::fflush(stderr);
}

}  // namespace OrvoTool
