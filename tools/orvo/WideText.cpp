#include "WideText.h"

#include <utf8.h>

#include <iterator>

namespace OrvoTool {
namespace {

constexpr char32_t Replacement = 0xFFFD;
constexpr char32_t LargestCharacter = 0x10FFFF;

bool IsSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

bool IsControl(char32_t c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); }

void AppendUtf8(char32_t c, std::string* out) {
  utf8::unchecked::append(c, std::back_inserter(*out));
}

}  // namespace

std::optional<std::wstring> WideFromUtf8(std::string_view text) {
  if (!utf8::is_valid(text.begin(), text.end())) {
    return std::nullopt;
  }
  std::wstring wide;
  if constexpr (sizeof(wchar_t) == 2) {
    utf8::unchecked::utf8to16(text.begin(), text.end(), std::back_inserter(wide));
  } else {
    utf8::unchecked::utf8to32(text.begin(), text.end(), std::back_inserter(wide));
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
  auto place = text.begin();
  while (place != text.end()) {
    const auto wellFormedEnd = utf8::find_invalid(place, text.end());
    while (place != wellFormedEnd) {
      const char32_t c = utf8::unchecked::next(place);
      AppendUtf8(IsControl(c) ? U'?' : c, &printable);
    }
    if (place != text.end()) {
      AppendUtf8(Replacement, &printable);
      ++place;
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

std::size_t CountColumns(std::string_view text) {
  std::size_t count = 0;
  bool isColor = false;
  for (const char c : text) {
    isColor = isColor || c == '\x1b';
    count += !isColor && (static_cast<unsigned char>(c) & 0xC0U) != 0x80 ? 1 : 0;
    isColor = isColor && c != 'm';
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

std::string Utf8FromFile(const std::filesystem::path& file) {
#ifdef _WIN32
  return Utf8FromWide(file.wstring());
#else
  return file.string();
#endif
}

}  // namespace OrvoTool
