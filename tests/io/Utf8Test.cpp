#include "MachineFiles.h"
#include "io/Utf8.h"
#include "support/TestRandom.h"

#include <Orvo/Kin/Machine.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace Orvo::Testing {
namespace {

// Returns wide text of code points, as this platform holds it.
std::wstring Wide(std::u32string_view codePoints) {
  std::wstring text;
  for (const char32_t c : codePoints) {
    if (sizeof(wchar_t) == 2 && c >= 0x10000) {
      text += static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10));
      text += static_cast<wchar_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
    } else {
      text += static_cast<wchar_t>(c);
    }
  }
  return text;
}

struct WellFormedCase {
  std::string utf8;
  std::u32string codePoints;
};

const WellFormedCase WellFormed[] = {
    {"", U""},
    {"abc", U"abc"},
    {"\x7F", U"\x7F"},
    {"\xC2\x80", U"\u0080"},
    {"\xDF\xBF", U"\u07FF"},
    {"\xE0\xA0\x80", U"\u0800"},
    {"\xED\x9F\xBF", U"\uD7FF"},
    {"\xEE\x80\x80", U"\uE000"},
    {"\xEF\xBF\xBD", U"\uFFFD"},
    {"\xEF\xBF\xBF", U"\uFFFF"},
    {"\xF0\x90\x80\x80", U"\U00010000"},
    {"\xF4\x8F\xBF\xBF", U"\U0010FFFF"},
    {"M\xC3\xBChle \xE2\x82\xAC \xF0\x9F\x94\xA9", U"M\u00FChle \u20AC \U0001F529"},
};

TEST(Utf8, WellFormedTextGoesBothWays) {
  for (const WellFormedCase& c : WellFormed) {
    EXPECT_EQ(FromUtf8(c.utf8), Wide(c.codePoints)) << c.utf8;
    EXPECT_EQ(ToUtf8(Wide(c.codePoints)), c.utf8) << c.utf8;
  }
}

TEST(Utf8, NulIsACharacter) {
  const std::wstring wide(L"a\0b", 3);
  EXPECT_EQ(ToUtf8(wide), std::string("a\0b", 3));
  EXPECT_EQ(FromUtf8(std::string_view("a\0b", 3)), wide);
}

struct IllFormedCase {
  const char* name;
  std::string utf8;
  std::u32string codePoints;
};

// U+FFFD stands for each maximal part: the longest start of a well-formed sequence, or one byte.
const IllFormedCase IllFormed[] = {
    {"a trailing byte", "\x80", U"\uFFFD"},
    {"two trailing bytes", "\x80\xBF", U"\uFFFD\uFFFD"},
    {"bytes that never occur", "\xC0\xC1\xF5\xFE\xFF", U"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"overlong in two bytes", "\xC0\x80", U"\uFFFD\uFFFD"},
    {"overlong in three bytes", "\xE0\x80\x80", U"\uFFFD\uFFFD\uFFFD"},
    {"overlong in three bytes, the last", "\xE0\x9F\xBF", U"\uFFFD\uFFFD\uFFFD"},
    {"overlong in four bytes", "\xF0\x80\x80\x80", U"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"overlong in four bytes, the last", "\xF0\x8F\xBF\xBF", U"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"a surrogate", "\xED\xA0\x80", U"\uFFFD\uFFFD\uFFFD"},
    {"the last surrogate", "\xED\xBF\xBF", U"\uFFFD\uFFFD\uFFFD"},
    {"above the last code point", "\xF4\x90\x80\x80", U"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"cut after one of two", "\xC3", U"\uFFFD"},
    {"cut after one of three", "\xE2", U"\uFFFD"},
    {"cut after two of three", "\xE2\x82", U"\uFFFD"},
    {"cut after one of four", "\xF0", U"\uFFFD"},
    {"cut after two of four", "\xF0\x9F", U"\uFFFD"},
    {"cut after three of four", "\xF0\x9F\x94", U"\uFFFD"},
    {"cut by a letter",
     "\xE2\x82"
     "A",
     U"\uFFFDA"},
    {"cut by a sequence", "\xF0\x9F\x94\xC3\xBC", U"\uFFFD\u00FC"},
    {"cut twice", "\xE2\x82\xE2\x82", U"\uFFFD\uFFFD"},
    {"several parts",
     "\xE1\x80\xE2\xF0\x91\x92\xF1\xBF"
     "A",
     U"\uFFFD\uFFFD\uFFFD\uFFFDA"},
    {"between letters", "x\xFFy\xFEz", U"x\uFFFDy\uFFFDz"},
    {"after a whole sequence", "\xE2\x82\xAC\xAC", U"\u20AC\uFFFD"},
};

TEST(Utf8, EachMaximalIllFormedPartIsReplaced) {
  for (const IllFormedCase& c : IllFormed) {
    EXPECT_EQ(FromUtf8(c.utf8), Wide(c.codePoints)) << c.name;
  }
}

TEST(Utf8, NamesInFilesAreReplacedAlike) {
  for (const IllFormedCase& c : IllFormed) {
    SCOPED_TRACE(c.name);
    Kin::Machine machine;
    ASSERT_TRUE(ReadText(machine, Replaced(WholeText(), "C axis", c.utf8)));
    EXPECT_EQ(EntityAt(machine, 0).GetEntityName(), Wide(c.codePoints));
  }
}

TEST(Utf8, SixteenBitTextHasPairs) {
  for (const WellFormedCase& c : WellFormed) {
    std::u16string units;
    for (const char32_t codePoint : c.codePoints) {
      if (codePoint >= 0x10000) {
        units += static_cast<char16_t>(0xD800 + ((codePoint - 0x10000) >> 10));
        units += static_cast<char16_t>(0xDC00 + ((codePoint - 0x10000) & 0x3FF));
      } else {
        units += static_cast<char16_t>(codePoint);
      }
    }
    EXPECT_EQ(ToUtf8(units), c.utf8);
    EXPECT_EQ(Utf16FromUtf8(c.utf8), units);
  }
  EXPECT_EQ(Utf16FromUtf8("\xE2\x82"
                          "A\xFF"),
            u"\uFFFDA\uFFFD");
}

TEST(Utf8, SingleSurrogatesAreReplaced) {
  const std::string mark = "\xEF\xBF\xBD";
  const char16_t high = 0xD83D;
  const char16_t low = 0xDD29;
  struct Case {
    std::u16string units;
    std::string utf8;
  };
  const Case cases[] = {
      {{high}, mark},
      {{low}, mark},
      {{low, high}, mark + mark},
      {{high, high, low}, mark + "\xF0\x9F\x94\xA9"},
      {{high, low, low}, "\xF0\x9F\x94\xA9" + mark},
      {{high, u'a'}, mark + "a"},
      {{u'a', low, u'b'}, "a" + mark + "b"},
      {{0xD800, 0xDC00}, "\xF0\x90\x80\x80"},
      {{0xDBFF, 0xDFFF}, "\xF4\x8F\xBF\xBF"},
      {{0xD7FF, 0xE000}, "\xED\x9F\xBF\xEE\x80\x80"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ToUtf8(c.units), c.utf8);
  }
}

TEST(Utf8, WideUnitsThatAreNoCharacterAreReplaced) {
  const std::string mark = "\xEF\xBF\xBD";
  if constexpr (sizeof(wchar_t) == 4) {
    for (const unsigned int unit :
         {0xD800U, 0xDBFFU, 0xDC00U, 0xDFFFU, 0x110000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
      const std::wstring text = L"a" + std::wstring(2, static_cast<wchar_t>(unit)) + L"b";
      EXPECT_EQ(ToUtf8(text), "a" + mark + mark + "b") << unit;
    }
    EXPECT_EQ(ToUtf8(std::wstring(1, static_cast<wchar_t>(0x10FFFF))), "\xF4\x8F\xBF\xBF");
  } else {
    EXPECT_EQ(ToUtf8(std::wstring(1, static_cast<wchar_t>(0xD800))), mark);
  }
}

// A straight decoder by table 3-7 of The Unicode Standard, to compare with.
std::u32string DecodeByTable(std::string_view text) {
  std::u32string result;
  std::size_t i = 0;
  while (i < text.size()) {
    const auto byte = [&](std::size_t k) {
      return k < text.size() ? static_cast<unsigned int>(static_cast<unsigned char>(text[k])) : 0U;
    };
    const unsigned int lead = byte(i);
    std::size_t length = 0;
    unsigned int min = 0x80;
    unsigned int max = 0xBF;
    char32_t codePoint = 0;
    if (lead < 0x80) {
      length = 1;
      codePoint = lead;
    } else if (lead >= 0xC2 && lead <= 0xDF) {
      length = 2;
      codePoint = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
      length = 3;
      codePoint = lead & 0x0F;
      min = lead == 0xE0 ? 0xA0 : 0x80;
      max = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
      length = 4;
      codePoint = lead & 0x07;
      min = lead == 0xF0 ? 0x90 : 0x80;
      max = lead == 0xF4 ? 0x8F : 0xBF;
    }
    std::size_t taken = 1;
    while (taken < length && byte(i + taken) >= min && byte(i + taken) <= max) {
      codePoint = codePoint << 6 | (byte(i + taken) & 0x3F);
      min = 0x80;
      max = 0xBF;
      ++taken;
    }
    result += length > 0 && taken == length ? codePoint : U'\uFFFD';
    i += taken;
  }
  return result;
}

TEST(Utf8, AgreesWithTheTableOnRandomBytes) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  const unsigned char bytes[] = {0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xC2,
                                 0xDF, 0xE0, 0xE1, 0xED, 0xEF, 0xF0, 0xF1, 0xF4, 0xF5, 0xFF};
  for (int i = 0; i < 200000; ++i) {
    std::string text;
    const int length = random.Integer(1, 8);
    for (int k = 0; k < length; ++k) {
      text += static_cast<char>(random.Chance(0.9) ? bytes[random.Integer(0, 19)]
                                                   : random.Integer(1, 255));
    }
    ASSERT_EQ(FromUtf8(text), Wide(DecodeByTable(text))) << "round " << i;
    // What was decoded is well-formed and comes back.
    ASSERT_EQ(FromUtf8(ToUtf8(FromUtf8(text))), FromUtf8(text));
  }
}

}  // namespace
}  // namespace Orvo::Testing
