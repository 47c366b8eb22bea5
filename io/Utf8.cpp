#include "io/Utf8.h"

#include <utf8.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace Orvo {

namespace {

constexpr char32_t Replacement = 0xFFFD;
constexpr char32_t LargestCodePoint = 0x10FFFF;

bool IsSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; }
bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// The bytes that may follow a lead byte, by The Unicode Standard, table 3-7: how many, and the
// range of the first of them.
struct LeadByte {
  std::size_t trailNb;
  unsigned char firstMin;
  unsigned char firstMax;
};

LeadByte DescribeLead(unsigned char lead) {
  if (lead >= 0xC2 && lead <= 0xDF) {
    return {1, 0x80, 0xBF};
  }
  if (lead >= 0xE0 && lead <= 0xEF) {
    return {2, static_cast<unsigned char>(lead == 0xE0 ? 0xA0 : 0x80),
            static_cast<unsigned char>(lead == 0xED ? 0x9F : 0xBF)};
  }
  if (lead >= 0xF0 && lead <= 0xF4) {
    return {3, static_cast<unsigned char>(lead == 0xF0 ? 0x90 : 0x80),
            static_cast<unsigned char>(lead == 0xF4 ? 0x8F : 0xBF)};
  }
  return {0, 0x80, 0xBF};
}

// The length of the ill-formed part at the start of a text: the longest start of a well-formed
// sequence, or one byte.
std::size_t IllFormedLength(std::string_view text) {
  const LeadByte lead = DescribeLead(static_cast<unsigned char>(text[0]));
  std::size_t length = 1;
  unsigned char min = lead.firstMin;
  unsigned char max = lead.firstMax;
  while (length <= lead.trailNb && length < text.size()) {
    const auto byte = static_cast<unsigned char>(text[length]);
    if (byte < min || byte > max) {
      break;
    }
    ++length;
    min = 0x80;
    max = 0xBF;
  }
  return length;
}

template <typename Unit>
std::string EncodeUtf8(std::basic_string_view<Unit> text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    auto codePoint = static_cast<char32_t>(text[i]);
    if constexpr (sizeof(Unit) == 2) {
      if (IsHighSurrogate(codePoint) && i + 1 < text.size() &&
          IsLowSurrogate(static_cast<char32_t>(text[i + 1]))) {
        ++i;
        codePoint =
            0x10000 + ((codePoint - 0xD800) << 10) + (static_cast<char32_t>(text[i]) - 0xDC00);
      }
    }
    if (IsSurrogate(codePoint) || codePoint > LargestCodePoint) {
      codePoint = Replacement;
    }
    utf8::unchecked::append(codePoint, std::back_inserter(result));
  }
  return result;
}

template <typename String>
String DecodeUtf8(std::string_view text) {
  String result;
  result.reserve(text.size());
  while (!text.empty()) {
    const auto wellFormedEnd = utf8::find_invalid(text.begin(), text.end());
    if constexpr (sizeof(typename String::value_type) == 2) {
      utf8::unchecked::utf8to16(text.begin(), wellFormedEnd, std::back_inserter(result));
    } else {
      utf8::unchecked::utf8to32(text.begin(), wellFormedEnd, std::back_inserter(result));
    }
    text.remove_prefix(static_cast<std::size_t>(wellFormedEnd - text.begin()));
    if (!text.empty()) {
      result.push_back(static_cast<typename String::value_type>(Replacement));
      text.remove_prefix(IllFormedLength(text));
    }
  }
  return result;
}

}  // namespace

std::string ToUtf8(std::wstring_view text) { return EncodeUtf8(text); }

std::string ToUtf8(std::u16string_view text) { return EncodeUtf8(text); }

std::wstring FromUtf8(std::string_view text) { return DecodeUtf8<std::wstring>(text); }

void AssignFromUtf8(std::string_view text, std::wstring* wide) {
  if (std::any_of(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; })) {
    *wide = FromUtf8(text);
    return;
  }
  wide->resize(text.size());
  std::copy(text.begin(), text.end(), wide->begin());
}

std::u16string Utf16FromUtf8(std::string_view text) { return DecodeUtf8<std::u16string>(text); }

}  // namespace Orvo
