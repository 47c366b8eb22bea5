#include "CommaLocale.h"
#include "io/NumberParse.h"
#include "support/SameBits.h"
#include "support/TestRandom.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cfenv>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Orvo::Testing {
namespace {

// The C library of MinGW leaves out hexadecimal, infinite and undefined numbers, and takes other
// characters for white space; the random texts of NumberScanTest.cpp do for it.
#if !defined(__MINGW32__)

// What a conversion gives: a value, or one of two failures.
struct Parsed {
  enum Kind { Value, NoNumber, OutOfRange } kind = Value;
  double value = 0.0;
};

template <typename Parse>
Parsed Outcome(Parse parse) {
  try {
    return {Parsed::Value, static_cast<double>(parse())};
  } catch (const std::invalid_argument&) {
    return {Parsed::NoNumber, 0.0};
  } catch (const std::out_of_range&) {
    return {Parsed::OutOfRange, 0.0};
  }
}

Parsed ByWcstod(const std::wstring& text) {
  errno = 0;
  wchar_t* end = nullptr;
  const double value = std::wcstod(text.c_str(), &end);
  if (end == text.c_str()) {
    return {Parsed::NoNumber, 0.0};
  }
  if (errno == ERANGE) {
    return {Parsed::OutOfRange, 0.0};
  }
  return {Parsed::Value, value};
}

Parsed ByWcstoll(const std::wstring& text) {
  errno = 0;
  wchar_t* end = nullptr;
  const long long value = std::wcstoll(text.c_str(), &end, 10);
  if (end == text.c_str()) {
    return {Parsed::NoNumber, 0.0};
  }
  if (errno == ERANGE || value > std::numeric_limits<int>::max() ||
      value < std::numeric_limits<int>::min()) {
    return {Parsed::OutOfRange, 0.0};
  }
  return {Parsed::Value, static_cast<double>(value)};
}

testing::AssertionResult SameOutcome(const Parsed& a, const Parsed& b, const std::wstring& text) {
  if (a.kind == b.kind && AreSameBits(a.value, b.value)) {
    return testing::AssertionSuccess();
  }
  std::string narrow;
  for (const wchar_t c : text) {
    narrow += c > 31 && c < 127 ? std::string(1, static_cast<char>(c))
                                : "<" + std::to_string(static_cast<long>(c)) + ">";
  }
  return testing::AssertionFailure()
         << "[" << narrow << "] gives kind " << a.kind << " " << HexText(a.value) << " and not "
         << b.kind << " " << HexText(b.value);
}

testing::AssertionResult DoubleAgrees(const std::wstring& text) {
  return SameOutcome(Outcome([&] { return ParseDouble(text); }), ByWcstod(text), text);
}

testing::AssertionResult IntAgrees(const std::wstring& text) {
  return SameOutcome(Outcome([&] { return ParseInt(text); }), ByWcstoll(text), text);
}

#endif

TEST(ParseDouble, ReadsTheNumberThatStartsTheText) {
  struct Case {
    const wchar_t* text;
    double value;
  };
  const Case cases[] = {
      {L"1.5", 1.5},       {L"1.5mm", 1.5},  {L" \t\n\v\f\r1.5", 1.5},
      {L"-1.5e2", -150.0}, {L"+.5", 0.5},    {L"5.", 5.0},
      {L"1e", 1.0},        {L"1e+", 1.0},    {L"0x1.8p1", 3.0},
      {L"0x", 0.0},        {L"1,5", 1.0},    {L"1 2", 1.0},
      {L"-0", -0.0},       {L"1_000", 1.0},  {L"1.2.3", 1.2},
      {L"00012", 12.0},    {L"1E3", 1000.0}, {L"0x10", 16.0},
  };
  for (const Case& c : cases) {
    EXPECT_TRUE(SameBits(ParseDouble(c.text), c.value)) << c.text;
  }
}

TEST(ParseDouble, ReadsInfiniteAndUndefinedNumbers) {
  for (const wchar_t* const text : {L"inf", L"INF", L"Infinity", L"+inf", L"infinite"}) {
    EXPECT_EQ(ParseDouble(text), std::numeric_limits<double>::infinity()) << text;
  }
  EXPECT_EQ(ParseDouble(L"-inf"), -std::numeric_limits<double>::infinity());
  for (const wchar_t* const text : {L"nan", L"NaN", L"-nan", L"nan(123)"}) {
    EXPECT_TRUE(std::isnan(ParseDouble(text))) << text;
  }
}

TEST(ParseDouble, TextWithoutNumberThrows) {
  for (const wchar_t* const text : {L"", L" ", L"abc", L"-", L"+", L".", L"e5", L"--1", L"- 1",
                                    L",5", L"in", L"na", L"\u0661", L"\u00a01", L"\u20031"}) {
    try {
      ParseDouble(text);
      ADD_FAILURE() << text;
    } catch (const std::invalid_argument& e) {
      EXPECT_STREQ(e.what(), "invalid stod argument");
    }
  }
}

TEST(ParseDouble, OverflowAndUnderflowThrow) {
  for (const wchar_t* const text :
       {L"1e309", L"-1e309", L"1e-400", L"-1e-400", L"1e999999999999", L"1e-310", L"0x1p1024"}) {
    try {
      ParseDouble(text);
      ADD_FAILURE() << text;
    } catch (const std::out_of_range& e) {
      EXPECT_STREQ(e.what(), "stod argument out of range");
    }
  }
  EXPECT_EQ(ParseDouble(L"1.7976931348623157e308"), std::numeric_limits<double>::max());
  EXPECT_EQ(ParseDouble(L"2.2250738585072014e-308"), std::numeric_limits<double>::min());
  EXPECT_EQ(ParseDouble(L"0e-99999"), 0.0);
}

TEST(ParseInt, ReadsTheIntegerThatStartsTheText) {
  struct Case {
    const wchar_t* text;
    int value;
  };
  const Case cases[] = {
      {L"12", 12},
      {L"+12", 12},
      {L"-12", -12},
      {L" \t\n\v\f\r12", 12},
      {L"12abc", 12},
      {L"012", 12},
      {L"0x1F", 0},
      {L"12.9", 12},
      {L"-0", 0},
      {L"12 13", 12},
      {L"1'000", 1},
      {L"2147483647", 2147483647},
      {L"-2147483648", -2147483647 - 1},
      {L"0000000000000000000012", 12},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ParseInt(c.text), c.value) << c.text;
  }
}

TEST(ParseInt, TextWithoutIntegerThrows) {
  for (const wchar_t* const text : {L"", L" ", L"abc", L"-", L"+", L"--1", L"+-1", L"-+1", L"- 1",
                                    L"+ 1", L".5", L"\u0661", L"\u00a01", L"inf"}) {
    try {
      ParseInt(text);
      ADD_FAILURE() << text;
    } catch (const std::invalid_argument& e) {
      EXPECT_STREQ(e.what(), "invalid stoi argument");
    }
  }
}

TEST(ParseInt, NumbersOutsideIntThrow) {
  for (const wchar_t* const text :
       {L"2147483648", L"-2147483649", L"9223372036854775807", L"9223372036854775808",
        L"-9223372036854775809", L"4294967296", L"99999999999999999999999x"}) {
    try {
      ParseInt(text);
      ADD_FAILURE() << text;
    } catch (const std::out_of_range& e) {
      EXPECT_STREQ(e.what(), "stoi argument out of range");
    }
  }
}

#if !defined(__MINGW32__)

// Random texts of the characters that numbers are made of, against the C library.
TEST(NumberParse, AgreesWithTheCLibraryOnRandomTexts) {
  ASSERT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  const std::wstring characters = L"0123456789012345678901234+-..eExXpPaAfFiInN ()\t,_\u0663\u00a0";
  for (int i = 0; i < 200000; ++i) {
    std::wstring text;
    const int length = random.Integer(0, 12);
    for (int k = 0; k < length; ++k) {
      text += characters[static_cast<std::size_t>(
          random.Integer(0, static_cast<int>(characters.size()) - 1))];
    }
    ASSERT_TRUE(DoubleAgrees(text));
    ASSERT_TRUE(IntAgrees(text));
  }
}

TEST(NumberParse, AgreesWithTheCLibraryOnNumbersOfAllSizes) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 50000; ++i) {
    double value = 0;
    const std::uint64_t bits = random.Bits();
    std::memcpy(&value, &bits, sizeof value);
    wchar_t text[512];
    const wchar_t* const formats[] = {L"%.17g", L"%.3g", L"%a", L"%f", L"  %.25e tail"};
    std::swprintf(text, 512, formats[random.Integer(0, 4)], value);
    ASSERT_TRUE(DoubleAgrees(text));
    std::swprintf(text, 512, L"%lld", static_cast<long long>(bits) >> random.Integer(0, 60));
    ASSERT_TRUE(IntAgrees(text));
  }
}

// Texts of digits and a point, which are converted by a way of their own, and those next to them.
TEST(NumberParse, AgreesWithTheCLibraryOnShortDecimals) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 300000; ++i) {
    std::wstring text;
    const int length = random.Integer(1, random.Chance(0.7) ? 10 : 24);
    const int point = random.Integer(-4, length);
    for (int k = 0; k < length; ++k) {
      text +=
          k == point ? L'.' : static_cast<wchar_t>(static_cast<int>(L'0') + random.Integer(0, 9));
    }
    if (random.Chance(0.3)) {
      text.insert(0, 1, random.Chance(0.8) ? L'-' : L'+');
    }
    if (random.Chance(0.1)) {
      const wchar_t* const tails[] = {L"e3", L"e", L"x1", L" ", L".", L"-", L"mm", L"\u0663", L","};
      text += tails[random.Integer(0, 8)];
    }
    ASSERT_TRUE(DoubleAgrees(text));
    ASSERT_TRUE(IntAgrees(text));
  }
}

TEST(NumberParse, ShortDecimalsHaveTheNearestDouble) {
  for (const wchar_t* const text : {L"0",
                                    L"-0",
                                    L"0.0",
                                    L"-0.000000",
                                    L".5",
                                    L"-.5",
                                    L"5.",
                                    L"-5.",
                                    L"00000000000000000001",
                                    L"0000000000000000000.5",
                                    L"9007199254740991",
                                    L"9007199254740992",
                                    L"9007199254740993",
                                    L"-9007199254740993",
                                    L"900719925474099.3",
                                    L"9.007199254740993",
                                    L".9007199254740993",
                                    L"0.9007199254740993",
                                    L"0.000000000000000001",
                                    L"0.0000000000000000001",
                                    L"0.00000000000000000001",
                                    L"1844674407370955161",
                                    L"18446744073709551615",
                                    L"18446744073709551616",
                                    L"9999999999999999999",
                                    L"99999999999999999999",
                                    L"0.1",
                                    L"0.3",
                                    L"123456.789012",
                                    L"1.7976931348623157",
                                    L".",
                                    L"-",
                                    L"-.",
                                    L"--1",
                                    L"-+1",
                                    L"+1",
                                    L"+-1",
                                    L"1.2.3",
                                    L"..1",
                                    L" 1",
                                    L"1 ",
                                    L"0x10",
                                    L"0x",
                                    L"1e1",
                                    L"1e",
                                    L"1f",
                                    L"inf",
                                    L"nan"}) {
    EXPECT_TRUE(DoubleAgrees(text)) << std::string(text, text + std::wcslen(text));
  }
}

// The C library rounds as the process does, and so does the way of short decimals.
TEST(NumberParse, AgreesWithTheCLibraryInEveryRounding) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (const int rounding : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    ASSERT_EQ(std::fesetround(rounding), 0);
    bool agrees = true;
    std::wstring text;
    for (int i = 0; i < 20000 && agrees; ++i) {
      text = std::to_wstring(random.Integer(-99999999, 99999999));
      text.insert(text.size() - static_cast<std::size_t>(random.Integer(0, 1)), 1, L'.');
      agrees = static_cast<bool>(DoubleAgrees(text));
      text += std::to_wstring(random.Integer(0, 9999999));
      agrees = agrees && DoubleAgrees(text);
    }
    std::fesetround(FE_TONEAREST);
    EXPECT_TRUE(agrees) << std::string(text.begin(), text.end());
  }
}

// Bytes and wide characters are read alike.
TEST(NumberParse, BytesThatAreNotAsciiEndTheNumber) {
  EXPECT_EQ(ParseDouble(std::string_view("1.5\xC3\xA9")), 1.5);
  EXPECT_EQ(ParseDouble(std::string_view("15e1\xFF")), 150.0);
  EXPECT_EQ(ParseInt(std::string_view("15\xC3\xA9")), 15);
  EXPECT_THROW(ParseDouble(std::string_view("\xC2\xA0"
                                            "1")),
               std::invalid_argument);
  EXPECT_THROW(ParseInt(std::string_view("\xC2\xA0"
                                         "1")),
               std::invalid_argument);
  EXPECT_EQ(ParseDouble(std::string_view("1.52", 3)), 1.5) << "only the bytes that are given";
  EXPECT_EQ(ParseDouble(std::string_view("1e12", 3)), 10.0);
  EXPECT_EQ(ParseInt(std::string_view("12", 1)), 1);
}

TEST(NumberParse, LongTextsAreRead) {
  const std::wstring digits(100000, L'0');
  EXPECT_EQ(ParseDouble(L"1." + digits + L"1"), 1.0);
  EXPECT_EQ(ParseInt(digits + L"7"), 7);
  EXPECT_THROW(ParseDouble(L"1" + digits), std::out_of_range);
  EXPECT_THROW(ParseInt(L"1" + digits), std::out_of_range);
}

#endif

TEST(NumberParse, NulEndsTheNumber) {
  EXPECT_EQ(ParseDouble(std::wstring(L"1.5\0"
                                     L"7",
                                     5)),
            1.5);
  EXPECT_EQ(ParseInt(std::wstring(L"15\0"
                                  L"7",
                                  4)),
            15);
}

TEST(NumberParse, ErrnoStaysAsItWas) {
  errno = EDOM;
  EXPECT_EQ(ParseDouble(L"1.5"), 1.5);
  EXPECT_EQ(errno, EDOM);
  EXPECT_THROW(ParseDouble(L"1e999"), std::out_of_range);
  EXPECT_EQ(errno, EDOM);
  EXPECT_THROW(ParseInt(L"99999999999"), std::out_of_range);
  EXPECT_EQ(errno, EDOM);
  errno = ERANGE;
  EXPECT_EQ(ParseDouble(L"1.5"), 1.5) << "an old error doesn't count";
  EXPECT_EQ(ParseInt(L"15"), 15);
  errno = 0;
}

TEST(NumberParse, PointIsThePointInEveryLocale) {
  const CommaLocale locale;
  EXPECT_EQ(ParseDouble(L"1.5"), 1.5);
  EXPECT_EQ(ParseDouble(L"1,5"), 1.0);
  EXPECT_EQ(ParseInt(L"1.500"), 1);
  EXPECT_THROW(ParseDouble(L",5"), std::invalid_argument);
}

}  // namespace
}  // namespace Orvo::Testing
