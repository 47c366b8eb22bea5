#include "io/NumberParse.h"

#if defined(__MINGW32__)
#include "io/NumberScan.h"
#endif

#include <algorithm>
#include <cerrno>
#include <cfloat>
#include <charconv>
#include <clocale>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <new>
#include <stdexcept>
#include <system_error>

namespace Orvo {

namespace {

// The characters that a number can be made of are ASCII; any other one ends it, as this does.
constexpr char NoNumberCharacter = '?';

template <typename Text>
std::string ToAscii(const Text& text) {
  std::string result;
  result.reserve(text.size());
  std::transform(text.begin(), text.end(), std::back_inserter(result), [](auto c) {
    return c > 0 && c < 0x80 ? static_cast<char>(c) : NoNumberCharacter;
  });
  return result;
}

constexpr double PowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                  1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// So many digits fit a 64-bit integer.
constexpr std::size_t MostDigits = 19;

constexpr std::uint64_t LargestExactInteger = std::uint64_t{1} << 53;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Converts a text that is nothing but a sign, digits and a point, where one division gives the
// nearest double: its digits as an integer, and the power of ten, are doubles themselves. William
// D. Clinger, "How to Read Floating Point Numbers Accurately", 1990, section 1. False for any other
// text.
bool ParseShort(std::string_view text, double* value) {
#if FLT_EVAL_METHOD != 0
  return false;
#endif
  const bool isNegative = text.starts_with('-');
  text.remove_prefix(isNegative ? 1 : 0);
  if (text.empty() || text.size() > MostDigits + 1) {
    return false;
  }
  std::uint64_t digits = 0;
  const std::size_t point = std::min(text.find('.'), text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (i != point) {
      if (!IsDigit(text[i])) {
        return false;
      }
      digits = 10 * digits + static_cast<std::uint64_t>(text[i] - '0');
    }
  }
  const std::size_t decimalNb = point == text.size() ? 0 : text.size() - point - 1;
  const std::size_t digitNb = point == text.size() ? text.size() : text.size() - 1;
  if (digitNb == 0 || digitNb > MostDigits || digits > LargestExactInteger) {
    return false;
  }
  const auto integer = static_cast<double>(digits);
  *value = (isNegative ? -integer : integer) / PowersOfTen[decimalNb];
  return true;
}

#if defined(_WIN32)
using Locale = _locale_t;

Locale MakeClassicLocale() { return _create_locale(LC_ALL, "C"); }

#if defined(__MINGW32__)
double ParseIn(Locale /*locale*/, const char* text, char** end) {
  const char* scanned = nullptr;
  const double value = ScanDouble(text, &scanned);
  *end = const_cast<char*>(scanned);
  return value;
}
#else
double ParseIn(Locale locale, const char* text, char** end) { return _strtod_l(text, end, locale); }
#endif
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

double ParseDouble(std::string_view text) {
  double value = 0.0;
  if (ParseShort(text, &value)) {
    return value;
  }
  const std::string ascii = ToAscii(text);
  const ErrnoScope errnoScope;
  const Locale classic = ClassicLocale();
  char* end = nullptr;
  value = ParseIn(classic, ascii.c_str(), &end);
  if (end == ascii.c_str()) {
    throw std::invalid_argument("invalid stod argument");
  }
  if (errno == ERANGE) {
    throw std::out_of_range("stod argument out of range");
  }
  return value;
}

double ParseDouble(const std::wstring& text) { return ParseDouble(ToAscii(text)); }

int ParseInt(std::string_view text) {
  std::size_t start = text.find_first_not_of(" \t\n\v\f\r");
  start = std::min(start, text.size());
  // A plus sign is the one thing before the digits that the conversion below doesn't take.
  if (start + 1 < text.size() && text[start] == '+' && text[start + 1] != '-') {
    ++start;
  }
  int value = 0;
  const std::from_chars_result result =
      std::from_chars(text.data() + start, text.data() + text.size(), value);
  if (result.ec == std::errc::invalid_argument) {
    throw std::invalid_argument("invalid stoi argument");
  }
  if (result.ec == std::errc::result_out_of_range) {
    throw std::out_of_range("stoi argument out of range");
  }
  return value;
}

int ParseInt(const std::wstring& text) { return ParseInt(ToAscii(text)); }

}  // namespace Orvo
