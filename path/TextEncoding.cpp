#include "path/TextEncoding.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdint>

namespace Orvo::Path {
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

std::string Utf8FromWide(const std::wstring& wide) {
  std::string out;
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

std::string JsonString(const std::string& text) {
  return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string JsonNumber(double value) {
  return std::isfinite(value) ? fmt::format("{}", value) : "null";
}

}  // namespace Orvo::Path
