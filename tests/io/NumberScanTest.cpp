#include "io/NumberScan.h"
#include "support/SameBits.h"
#include "support/TestRandom.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

namespace Orvo::Testing {
namespace {

struct Scanned {
  double value = 0.0;
  std::ptrdiff_t length = 0;
  bool isOutOfRange = false;
};

Scanned Scan(const std::string& text) {
  errno = 0;
  const char* end = nullptr;
  const double value = ScanDouble(text.c_str(), &end);
  return {value, end - text.c_str(), errno == ERANGE};
}

TEST(ScanDouble, ReadsTheNumberThatStartsTheText) {
  struct Case {
    const char* text;
    double value;
    int length;
  };
  const Case cases[] = {
      {"1.5", 1.5, 3},       {"1.5mm", 1.5, 3},   {" \t\n\v\f\r1.5", 1.5, 9},
      {"-1.5e2", -150.0, 6}, {"+.5", 0.5, 3},     {"5.", 5.0, 2},
      {"1e", 1.0, 1},        {"1e+", 1.0, 1},     {"0x1.8p1", 3.0, 7},
      {"0X.8", 0.5, 4},      {"-0x10", -16.0, 5}, {"0x", 0.0, 1},
      {"0x.p1", 0.0, 1},     {"0xg", 0.0, 1},     {"0x1p", 1.0, 3},
      {"-0", -0.0, 2},       {"1.2.3", 1.2, 3},   {"0e-99999", 0.0, 8},
      {"", 0.0, 0},          {"-", 0.0, 0},       {"+-1", 0.0, 0},
      {"--1", 0.0, 0},       {"- 1", 0.0, 0},     {".", 0.0, 0},
      {"e5", 0.0, 0},        {"abc", 0.0, 0},     {" ", 0.0, 0},
  };
  for (const Case& c : cases) {
    const Scanned scanned = Scan(c.text);
    EXPECT_TRUE(SameBits(scanned.value, c.value)) << c.text;
    EXPECT_EQ(scanned.length, c.length) << c.text;
    EXPECT_FALSE(scanned.isOutOfRange) << c.text;
  }
}

TEST(ScanDouble, ReadsInfiniteAndUndefinedNumbers) {
  for (const char* const text : {"inf", "INF", "+inf", "Infinity", "infinite"}) {
    EXPECT_EQ(Scan(text).value, std::numeric_limits<double>::infinity()) << text;
  }
  EXPECT_EQ(Scan("-inf").value, -std::numeric_limits<double>::infinity());
  EXPECT_EQ(Scan("infinite").length, 3);
  EXPECT_EQ(Scan("infinity").length, 8);
  for (const char* const text : {"nan", "NaN", "-nan", "nan(123)"}) {
    EXPECT_TRUE(std::isnan(Scan(text).value)) << text;
  }
  EXPECT_EQ(Scan("nan(123)").length, 8);
  EXPECT_FALSE(Scan("inf").isOutOfRange);
}

TEST(ScanDouble, SaysOverflowAndUnderflow) {
  for (const char* const text : {"1e309", "-1e309", "1e-400", "-1e-400", "1e999999999999", "1e-310",
                                 "4.9406564584124654e-324", "0x1p1024", "0x1p-1080"}) {
    EXPECT_TRUE(Scan(text).isOutOfRange) << text;
  }
  for (const char* const text :
       {"1.7976931348623157e308", "2.2250738585072014e-308", "0x1p-1074", "0x1.8p-1030"}) {
    EXPECT_FALSE(Scan(text).isOutOfRange) << text;
  }
  EXPECT_TRUE(SameBits(Scan("0x1.8p-1030").value, 0x1.8p-1030));
}

TEST(ScanDouble, ReadsLongTexts) {
  const std::string digits(100000, '0');
  EXPECT_TRUE(SameBits(Scan("1." + digits + "1").value, 1.0));
  EXPECT_EQ(Scan("1." + digits + "1").length, 100003);
  EXPECT_TRUE(Scan("1" + digits).isOutOfRange);
}

// Against the C library where that is known to read all forms.
#if defined(__GLIBC__)
testing::AssertionResult AgreesWithStrtod(const std::string& text) {
  const Scanned scanned = Scan(text);
  errno = 0;
  char* end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  const bool isOutOfRange = errno == ERANGE;
  if (scanned.length == end - text.c_str() && scanned.isOutOfRange == isOutOfRange &&
      (isOutOfRange || AreSameBits(scanned.value, value))) {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure()
         << "[" << text << "] gives " << HexText(scanned.value) << " of length " << scanned.length
         << (scanned.isOutOfRange ? " out of range" : "") << " and not " << HexText(value)
         << " of length " << end - text.c_str() << (isOutOfRange ? " out of range" : "");
}

TEST(ScanDouble, AgreesWithTheCLibraryOnRandomTexts) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  const std::string characters = "0123456789012345678901234+-..eExXpPaAfFiInN ()\t,_";
  for (int i = 0; i < 200000; ++i) {
    std::string text;
    const int length = random.Integer(0, 12);
    for (int k = 0; k < length; ++k) {
      text += characters[static_cast<std::size_t>(
          random.Integer(0, static_cast<int>(characters.size()) - 1))];
    }
    ASSERT_TRUE(AgreesWithStrtod(text));
  }
}

TEST(ScanDouble, AgreesWithTheCLibraryOnNumbersOfAllSizes) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 50000; ++i) {
    double value = 0;
    const std::uint64_t bits = random.Bits();
    std::memcpy(&value, &bits, sizeof value);
    const char* const formats[] = {"%.17g", "%.3g", "%a", "%f", "  %.25e tail"};
    char text[512];
    std::snprintf(text, sizeof text, formats[random.Integer(0, 4)], value);
    ASSERT_TRUE(AgreesWithStrtod(text));
  }
}
#endif

}  // namespace
}  // namespace Orvo::Testing
