#include "path/TextEncoding.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <utf8.h>

#include <cmath>
#include <cstdint>
#include <iterator>
#include <type_traits>

namespace Orvo::Path {
namespace {

constexpr std::uint32_t Replacement = 0xFFFD;

std::uint32_t CodeOf(wchar_t c) {
  return static_cast<std::uint32_t>(static_cast<std::make_unsigned_t<wchar_t>>(c));
}

bool IsHigh(std::uint32_t code) { return code >= 0xD800 && code < 0xDC00; }
bool IsLow(std::uint32_t code) { return code >= 0xDC00 && code < 0xE000; }

}  // namespace

std::string Utf8FromWide(const std::wstring& wide) {
  std::string out;
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

std::string JsonString(const std::string& text) {
  return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string JsonNumber(double value) {
  return std::isfinite(value) ? fmt::format("{}", value) : "null";
}

}  // namespace Orvo::Path
