#include "io/NumberScan.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <system_error>

namespace Orvo {

namespace {

const char* SkipSpace(const char* text) { return text + std::strspn(text, " \t\n\v\f\r"); }

bool IsHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// "0x" alone is the number 0 before a letter.
bool IsHexadecimal(const char* text) {
  return text[0] == '0' && (text[1] == 'x' || text[1] == 'X') &&
         (IsHexDigit(text[2]) || (text[2] == '.' && IsHexDigit(text[3])));
}

}  // namespace

double ScanDouble(const char* text, const char** end) {
  *end = text;
  const char* first = SkipSpace(text);
  const bool isNegative = *first == '-';
  if (isNegative || *first == '+') {
    ++first;
  }
  if (*first == '-') {
    return 0.0;
  }
  const bool isHexadecimal = IsHexadecimal(first);
  if (isHexadecimal) {
    first += 2;
  }
  double value = 0.0;
  const std::from_chars_result result =
      std::from_chars(first, first + std::strlen(first), value,
                      isHexadecimal ? std::chars_format::hex : std::chars_format::general);
  if (result.ec == std::errc::invalid_argument) {
    return 0.0;
  }
  *end = result.ptr;
  const bool isTiny = value != 0.0 && std::abs(value) < std::numeric_limits<double>::min();
  if (result.ec == std::errc::result_out_of_range || (isTiny && !isHexadecimal)) {
    errno = ERANGE;
  }
  return isNegative ? -value : value;
}

}  // namespace Orvo
