#include "Terminal.h"

#include <cstdio>
#include <cstdlib>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace OrvoTool {
namespace {

bool IsAutoOn() {
  const char* noColor = std::getenv("NO_COLOR");
  const char* term = std::getenv("TERM");
  return IsOutputTerminal() && (noColor == nullptr || noColor[0] == '\0') &&
         (term == nullptr || std::string_view(term) != "dumb");
}

}  // namespace

bool IsOutputTerminal() {
#ifdef _WIN32
  return _isatty(_fileno(stdout)) != 0;
#else
  return isatty(STDOUT_FILENO) != 0;
#endif
}

bool IsErrorTerminal() {
#ifdef _WIN32
  return _isatty(_fileno(stderr)) != 0;
#else
  return isatty(STDERR_FILENO) != 0;
#endif
}

TextStyle::TextStyle(ColorMode mode)
    : isOn_(mode == ColorMode::Always || (mode == ColorMode::Auto && IsAutoOn())) {}

std::string TextStyle::Paint(const char* code, std::string_view text) const {
  return isOn_ ? std::string("\x1b[") + code + "m" + std::string(text) + "\x1b[0m"
               : std::string(text);
}

}  // namespace OrvoTool
