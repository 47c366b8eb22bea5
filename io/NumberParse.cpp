#include "io/NumberParse.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <clocale>
#include <cstdlib>
#include <iterator>
#include <new>
#include <stdexcept>
#include <system_error>

namespace Orvo {

namespace {

// The characters that a number can be made of are ASCII; any other one ends it, as this does.
constexpr char NoNumberCharacter = '?';

std::string ToAscii(const std::wstring& text) {
  std::string result;
  result.reserve(text.size());
  std::transform(text.begin(), text.end(), std::back_inserter(result), [](wchar_t c) {
    return c > 0 && c < 0x80 ? static_cast<char>(c) : NoNumberCharacter;
  });
  return result;
}

#if defined(_WIN32)
using Locale = _locale_t;

Locale MakeClassicLocale() { return _create_locale(LC_ALL, "C"); }

double ParseIn(Locale locale, const char* text, char** end) { return _strtod_l(text, end, locale); }
#else
using Locale = locale_t;

Locale MakeClassicLocale() { return newlocale(LC_ALL_MASK, "C", nullptr); }

double ParseIn(Locale locale, const char* text, char** end) { return strtod_l(text, end, locale); }
#endif

// Made once; some systems need memory for it.
Locale ClassicLocale() {
  static const Locale classic = [] {
    const Locale made = MakeClassicLocale();
    if (made == nullptr) {
      throw std::bad_alloc();
    }
    return made;
  }();
  return classic;
}

/// Sets errno to 0 and gives it back its value at the end.
class ErrnoScope {
 public:
  ErrnoScope() : saved_(errno) { errno = 0; }
  ErrnoScope(const ErrnoScope&) = delete;
  ErrnoScope& operator=(const ErrnoScope&) = delete;
  ~ErrnoScope() { errno = saved_; }

 private:
  int saved_;
};

}  // namespace

double ParseDouble(const std::wstring& text) {
  const std::string ascii = ToAscii(text);
  const ErrnoScope errnoScope;
  const Locale classic = ClassicLocale();
  char* end = nullptr;
  const double value = ParseIn(classic, ascii.c_str(), &end);
  if (end == ascii.c_str()) {
    throw std::invalid_argument("invalid stod argument");
  }
  if (errno == ERANGE) {
    throw std::out_of_range("stod argument out of range");
  }
  return value;
}

int ParseInt(const std::wstring& text) {
  const std::string ascii = ToAscii(text);
  std::size_t start = ascii.find_first_not_of(" \t\n\v\f\r");
  start = std::min(start, ascii.size());
  // A plus sign is the one thing before the digits that the conversion below doesn't take.
  if (start + 1 < ascii.size() && ascii[start] == '+' && ascii[start + 1] != '-') {
    ++start;
  }
  int value = 0;
  const std::from_chars_result result =
      std::from_chars(ascii.data() + start, ascii.data() + ascii.size(), value);
  if (result.ec == std::errc::invalid_argument) {
    throw std::invalid_argument("invalid stoi argument");
  }
  if (result.ec == std::errc::result_out_of_range) {
    throw std::out_of_range("stoi argument out of range");
  }
  return value;
}

}  // namespace Orvo
