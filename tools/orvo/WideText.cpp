#include "WideText.h"

#include <cstdint>

namespace OrvoTool {
namespace {

constexpr char32_t Replacement = 0xFFFD;
constexpr char32_t LargestCharacter = 0x10FFFF;

bool IsSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

bool IsControl(char32_t c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); }

void AppendUtf8(char32_t c, std::string* out) {
  const auto byte = [out](char32_t value) { out->push_back(static_cast<char>(value)); };
  if (c < 0x80) {
    byte(c);
  } else if (c < 0x800) {
    byte(0xC0U | (c >> 6U));
    byte(0x80U | (c & 0x3FU));
  } else if (c < 0x10000) {
    byte(0xE0U | (c >> 12U));
    byte(0x80U | ((c >> 6U) & 0x3FU));
    byte(0x80U | (c & 0x3FU));
  } else {
    byte(0xF0U | (c >> 18U));
    byte(0x80U | ((c >> 12U) & 0x3FU));
    byte(0x80U | ((c >> 6U) & 0x3FU));
    byte(0x80U | (c & 0x3FU));
  }
}

void AppendWide(char32_t c, std::wstring* out) {
  if (sizeof(wchar_t) == 2 && c >= 0x10000) {
    out->push_back(static_cast<wchar_t>(0xD800U + ((c - 0x10000U) >> 10U)));
    out->push_back(static_cast<wchar_t>(0xDC00U + ((c - 0x10000U) & 0x3FFU)));
    return;
  }
  out->push_back(static_cast<wchar_t>(c));
}

/// Takes one character off the front of a text. Ill-formed bytes give nothing, one byte at a time.
std::optional<char32_t> TakeUtf8(std::string_view* text) {
  const auto at = [text](std::size_t i) {
    return static_cast<char32_t>(static_cast<unsigned char>((*text)[i]));
  };
  const char32_t lead = at(0);
  const std::size_t length = lead < 0x80                    ? 1
                             : lead >= 0xC2 && lead <= 0xDF ? 2
                             : lead >= 0xE0 && lead <= 0xEF ? 3
                             : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                            : 0;
  constexpr char32_t leadBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
  constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
  char32_t c = lead & leadBits[length];
  bool wellFormed = length > 0 && text->size() >= length;
  for (std::size_t i = 1; wellFormed && i < length; ++i) {
    wellFormed = (at(i) & 0xC0U) == 0x80;
    c = (c << 6U) | (at(i) & 0x3FU);
  }
  wellFormed = wellFormed && c >= smallest[length] && c <= LargestCharacter && !IsSurrogate(c);
  text->remove_prefix(wellFormed ? length : 1);
  return wellFormed ? std::optional<char32_t>(c) : std::nullopt;
}

}  // namespace

std::optional<std::wstring> WideFromUtf8(std::string_view text) {
  std::wstring wide;
  while (!text.empty()) {
    const std::optional<char32_t> c = TakeUtf8(&text);
    if (!c) {
      return std::nullopt;
    }
    AppendWide(*c, &wide);
  }
  return wide;
}

std::string Utf8FromWide(std::wstring_view text) {
  std::string utf8;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t c = static_cast<char32_t>(text[i]);
    if (sizeof(wchar_t) == 2) {
      c &= 0xFFFFU;
      if (c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size()) {
        const char32_t low = static_cast<char32_t>(text[i + 1]) & 0xFFFFU;
        if (low >= 0xDC00 && low <= 0xDFFF) {
          c = 0x10000U + ((c - 0xD800U) << 10U) + (low - 0xDC00U);
          ++i;
        }
      }
    }
    AppendUtf8(IsSurrogate(c) || c > LargestCharacter ? Replacement : c, &utf8);
  }
  return utf8;
}

std::string Printable(std::string_view text) {
  std::string printable;
  while (!text.empty()) {
    const std::optional<char32_t> c = TakeUtf8(&text);
    if (!c) {
      AppendUtf8(Replacement, &printable);
    } else {
      AppendUtf8(IsControl(*c) ? U'?' : *c, &printable);
    }
  }
  return printable;
}

std::string PrintableFromWide(std::wstring_view text) { return Printable(Utf8FromWide(text)); }

std::size_t CountCharacters(std::string_view text) {
  std::size_t count = 0;
  for (const char c : text) {
    count += (static_cast<unsigned char>(c) & 0xC0U) != 0x80 ? 1 : 0;
  }
  return count;
}

std::filesystem::path FileFromUtf8(std::string_view name) {
#ifdef _WIN32
  const std::optional<std::wstring> wide = WideFromUtf8(name);
  return wide ? std::filesystem::path(*wide) : std::filesystem::path(name);
#else
  // File names are bytes here: a name that is no UTF-8 still names its file.
  return std::filesystem::path(name);
#endif
}

}  // namespace OrvoTool
