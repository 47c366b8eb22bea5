#include "NumberText.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace OrvoTool {
namespace {

/// Room for the largest double in fixed notation.
constexpr std::size_t FixedCapacity = 400;

}  // namespace

NumberFault ReadNumber(std::string_view text, double* value) {
  // A plus sign is written by many programs, but not known to from_chars.
  if (text.size() > 1 && text[0] == '+' && text[1] != '-' && text[1] != '+') {
    text.remove_prefix(1);
  }
  double number = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc::invalid_argument || end != text.data() + text.size()) {
    return NumberFault::NotANumber;
  }
  if (error == std::errc::result_out_of_range) {
    return NumberFault::TooLarge;
  }
  if (!std::isfinite(number)) {
    return NumberFault::NotFinite;
  }
  *value = number;
  return NumberFault::None;
}

const char* DescribeFault(NumberFault fault) {
  switch (fault) {
    case NumberFault::None:
      return "is a number";
    case NumberFault::NotANumber:
      return "is not a number";
    case NumberFault::NotFinite:
      return "is not a finite number";
    case NumberFault::TooLarge:
      return "is beyond the numbers that can be computed with";
  }
  return "is not a number";
}

std::optional<std::array<double, 3>> ReadTriple(std::string_view text) {
  std::array<double, 3> triple = {};
  for (std::size_t i = 0; i < 3; ++i) {
    const std::size_t comma = text.find(',');
    if ((comma == std::string_view::npos) != (i == 2)) {
      return std::nullopt;
    }
    if (ReadNumber(Trim(text.substr(0, comma)), &triple[i]) != NumberFault::None) {
      return std::nullopt;
    }
    text.remove_prefix(i == 2 ? text.size() : comma + 1);
  }
  return triple;
}

void AppendFixed(double value, std::string* out, int decimals) {
  char text[FixedCapacity];
  const auto result =
      std::to_chars(text, text + FixedCapacity, value, std::chars_format::fixed, decimals);
  std::string_view written(text, static_cast<std::size_t>(result.ptr - text));
  // What rounds to zero has no sign.
  if (written[0] == '-' && written.find_first_not_of("-0.") == std::string_view::npos) {
    written.remove_prefix(1);
  }
  out->append(written);
}

std::string ShortNumber(double value, int digits) {
  char text[FixedCapacity];
  const auto result =
      std::to_chars(text, text + FixedCapacity, value, std::chars_format::general, digits);
  const std::string_view written(text, static_cast<std::size_t>(result.ptr - text));
  return std::string(written == "-0" ? "0" : written);
}

std::string FixedNumber(double value, int decimals) {
  std::string written;
  AppendFixed(value, &written, decimals);
  return written;
}

std::string TableNumber(double value, int decimals) {
  constexpr double Large = 1e9;
  return std::abs(value) < Large ? FixedNumber(value, decimals) : ShortNumber(value, 12);
}

std::string ExactNumber(double value) {
  char text[FixedCapacity];
  const auto result = std::to_chars(text, text + FixedCapacity, value);
  return std::string(text, result.ptr);
}

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) {
    return text.substr(text.size());
  }
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

}  // namespace OrvoTool
