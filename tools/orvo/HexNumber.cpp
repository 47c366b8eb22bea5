#include "HexNumber.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <system_error>

namespace OrvoTool {
namespace {

constexpr int FractionDigits = 13;
constexpr int ExponentBias = 1023;
constexpr int SmallestExponent = -1022;
constexpr std::uint64_t FractionMask = (std::uint64_t{1} << 52U) - 1;
constexpr std::string_view Digits = "0123456789abcdef";

std::uint64_t BitsOf(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

/// Takes a word off the front of a text, in lower case as AppendHex() writes it.
bool Take(std::string_view word, std::string_view* text) {
  if (text->substr(0, word.size()) != word) {
    return false;
  }
  text->remove_prefix(word.size());
  return true;
}

/// Takes the digits behind the point; returns them as a number below 2^52, or -1.
std::int64_t TakeFraction(std::string_view* text) {
  std::int64_t fraction = 0;
  int count = 0;
  while (!text->empty() && count < FractionDigits) {
    const std::size_t digit = Digits.find(text->front());
    if (digit == std::string_view::npos) {
      break;
    }
    fraction = fraction * 16 + static_cast<std::int64_t>(digit);
    text->remove_prefix(1);
    ++count;
  }
  for (int i = count; i < FractionDigits; ++i) {
    fraction *= 16;
  }
  return count > 0 ? fraction : -1;
}

}  // namespace

void AppendHex(double value, std::string* out) {
  const std::uint64_t bits = BitsOf(value);
  const auto stored = static_cast<int>((bits >> 52U) & 0x7FFU);
  std::uint64_t fraction = bits & FractionMask;
  if (std::isnan(value)) {
    *out += "nan";
    return;
  }
  if (std::signbit(value)) {
    out->push_back('-');
  }
  if (std::isinf(value)) {
    *out += "inf";
    return;
  }
  if (value == 0.0) {
    *out += "0x0p+0";
    return;
  }
  *out += stored == 0 ? "0x0" : "0x1";
  if (fraction != 0) {
    out->push_back('.');
    for (; fraction != 0; fraction = (fraction << 4U) & FractionMask) {
      out->push_back(Digits[static_cast<std::size_t>(fraction >> 48U)]);
    }
  }
  const int exponent = stored == 0 ? SmallestExponent : stored - ExponentBias;
  out->push_back('p');
  out->push_back(exponent < 0 ? '-' : '+');
  *out += std::to_string(std::abs(exponent));
}

bool ReadHex(std::string_view text, double* value) {
  const bool isNegative = Take("-", &text);
  double size = 0.0;
  if (text == "inf") {
    size = std::numeric_limits<double>::infinity();
  } else if (text == "nan") {
    size = std::numeric_limits<double>::quiet_NaN();
  } else {
    std::int64_t fraction = 0;
    const bool hasOne = Take("0x1", &text);
    if (!hasOne && !Take("0x0", &text)) {
      return false;
    }
    if (Take(".", &text)) {
      fraction = TakeFraction(&text);
    }
    if (fraction < 0 || !Take("p", &text) || text.empty()) {
      return false;
    }
    if (text[0] == '+' && text.size() > 1 && text[1] != '-') {
      text.remove_prefix(1);
    }
    int exponent = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), exponent);
    if (error != std::errc() || end != text.data() + text.size() || exponent > ExponentBias ||
        exponent < SmallestExponent) {
      return false;
    }
    const std::int64_t whole = fraction + (hasOne ? std::int64_t{1} << 52U : 0);
    size = std::ldexp(static_cast<double>(whole), exponent - 52);
  }
  *value = isNegative ? -size : size;
  return true;
}

bool IsSameBits(double a, double b) {
  return BitsOf(a) == BitsOf(b) || (std::isnan(a) && std::isnan(b));
}

}  // namespace OrvoTool
