#include "exchange/TextEncoding.h"

#include <utf8.h>

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <type_traits>

namespace Orvo::Exchange {
namespace {

constexpr std::uint32_t Replacement = 0xFFFD;

std::uint32_t CodeOf(wchar_t c) {
  return static_cast<std::uint32_t>(static_cast<std::make_unsigned_t<wchar_t>>(c));
}

bool IsHigh(std::uint32_t code) { return code >= 0xD800 && code < 0xDC00; }
bool IsLow(std::uint32_t code) { return code >= 0xDC00 && code < 0xE000; }

}  // namespace

std::string Utf8FromWide(std::wstring_view wide) {
  std::string out;
  out.reserve(wide.size());
  for (std::size_t i = 0; i < wide.size(); ++i) {
    auto code = CodeOf(wide[i]);
    const auto next = i + 1 < wide.size() ? CodeOf(wide[i + 1]) : 0U;
    if (sizeof(wchar_t) == 2 && IsHigh(code) && IsLow(next)) {
      code = 0x10000U + ((code - 0xD800U) << 10U) + (next - 0xDC00U);
      ++i;
    }
    const bool isCharacter = !IsHigh(code) && !IsLow(code) && code <= 0x10FFFF;
    utf8::unchecked::append(isCharacter ? code : Replacement, std::back_inserter(out));
  }
  return out;
}

std::wstring WideFromUtf8(std::string_view text) {
  std::string valid;
  utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(valid));
  std::wstring out;
  if constexpr (sizeof(wchar_t) == 2) {
    utf8::unchecked::utf8to16(valid.begin(), valid.end(), std::back_inserter(out));
  } else {
    utf8::unchecked::utf8to32(valid.begin(), valid.end(), std::back_inserter(out));
  }
  return out;
}

void AppendNumber(double value, std::string* out) {
  if (value == 0.0) {
    // "-0" would be read as an integer, which has no such thing.
    out->append(std::signbit(value) ? "-0.0" : "0");
    return;
  }
  char text[40];
  const std::to_chars_result end = std::to_chars(text, text + sizeof text, value);
  out->append(text, end.ptr);
}

}  // namespace Orvo::Exchange
