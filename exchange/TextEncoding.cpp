#include "exchange/TextEncoding.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace Orvo::Exchange {
namespace {

constexpr std::uint32_t Replacement = 0xFFFD;

void Append(std::uint32_t code, std::string* out) {
  const auto add = [out](std::uint32_t byte) { out->push_back(static_cast<char>(byte)); };
  if (code < 0x80) {
    add(code);
  } else if (code < 0x800) {
    add(0xC0U | (code >> 6U));
    add(0x80U | (code & 0x3FU));
  } else if (code < 0x10000) {
    add(0xE0U | (code >> 12U));
    add(0x80U | ((code >> 6U) & 0x3FU));
    add(0x80U | (code & 0x3FU));
  } else {
    add(0xF0U | (code >> 18U));
    add(0x80U | ((code >> 12U) & 0x3FU));
    add(0x80U | ((code >> 6U) & 0x3FU));
    add(0x80U | (code & 0x3FU));
  }
}

bool IsHigh(std::uint32_t code) { return code >= 0xD800 && code < 0xDC00; }
bool IsLow(std::uint32_t code) { return code >= 0xDC00 && code < 0xE000; }

}  // namespace

std::string Utf8FromWide(std::wstring_view wide) {
  std::string out;
  out.reserve(wide.size());
  for (std::size_t i = 0; i < wide.size(); ++i) {
    auto code = static_cast<std::uint32_t>(wide[i]);
    const auto next = i + 1 < wide.size() ? static_cast<std::uint32_t>(wide[i + 1]) : 0U;
    if (sizeof(wchar_t) == 2 && IsHigh(code) && IsLow(next)) {
      code = 0x10000U + ((code - 0xD800U) << 10U) + (next - 0xDC00U);
      ++i;
    }
    Append(IsHigh(code) || IsLow(code) || code > 0x10FFFF ? Replacement : code, &out);
  }
  return out;
}

std::wstring WideFromUtf8(std::string_view text) {
  std::wstring out;
  out.reserve(text.size());
  std::size_t i = 0;
  const auto next = [&] { return i < text.size() ? static_cast<unsigned char>(text[i++]) : 0U; };
  while (i < text.size()) {
    std::uint32_t code = next();
    int moreNb = 0;
    if (code >= 0xF0) {
      code &= 0x07U;
      moreNb = 3;
    } else if (code >= 0xE0) {
      code &= 0x0FU;
      moreNb = 2;
    } else if (code >= 0xC0) {
      code &= 0x1FU;
      moreNb = 1;
    }
    for (; moreNb > 0; --moreNb) {
      code = (code << 6U) | (next() & 0x3FU);
    }
    if (sizeof(wchar_t) == 2 && code >= 0x10000) {
      out.push_back(static_cast<wchar_t>(0xD800U + ((code - 0x10000U) >> 10U)));
      out.push_back(static_cast<wchar_t>(0xDC00U + ((code - 0x10000U) & 0x3FFU)));
    } else {
      out.push_back(static_cast<wchar_t>(code));
    }
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
