#include "geometry/NumberText.h"
#include "support/TestRandom.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>

namespace Orvo {
namespace {

using Testing::TestRandom;

std::string Fixed(double value, int decimals, unsigned int width) {
  std::string text;
  AppendFixed(value, decimals, width, &text);
  return text;
}

std::string Printed(double value, int decimals, unsigned int width) {
  char buffer[400];
  std::snprintf(buffer, sizeof buffer, "%*.*f", static_cast<int>(width), decimals, value);
  return buffer;
}

TEST(NumberText, AppendsToWhatIsThere) {
  std::string text = "x=";
  AppendFixed(1.5, 3, 0, &text);
  AppendFixed(-2.0, 1, 6, &text);
  EXPECT_EQ(text, "x=1.500  -2.0");
}

TEST(NumberText, RoundsTheExactValueHalfToEven) {
  EXPECT_EQ(Fixed(0.5, 0, 0), "0");
  EXPECT_EQ(Fixed(1.5, 0, 0), "2");
  EXPECT_EQ(Fixed(0.0625, 3, 0), "0.062");
  EXPECT_EQ(Fixed(0.1875, 3, 0), "0.188");
  EXPECT_EQ(Fixed(-0.0000004, 6, 0), "-0.000000");
  EXPECT_EQ(Fixed(-0.0, 6, 0), "-0.000000");
}

TEST(NumberText, WritesTheExtremesWhole) {
  const double values[] = {std::numeric_limits<double>::max(), -std::numeric_limits<double>::max(),
                           std::numeric_limits<double>::min(), 4.9e-324};
  for (const double value : values) {
    for (const int decimals : {0, 3, 6, 17}) {
      EXPECT_EQ(Fixed(value, decimals, 0), Printed(value, decimals, 0));
    }
  }
}

TEST(NumberText, NamesWhatIsNoNumber) {
  const double infinity = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(Fixed(infinity, 6, 0), "inf");
  EXPECT_EQ(Fixed(-infinity, 6, 0), "-inf");
  EXPECT_EQ(Fixed(infinity, 3, 5), "  inf");
  EXPECT_EQ(Fixed(std::copysign(nan, 1.0), 3, 5), "  nan");
  EXPECT_EQ(Fixed(std::copysign(nan, -1.0), 3, 5), " -nan");
}

TEST(NumberText, IsWhatTheStandardLibraryPrints) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 5000; ++i) {
    double value = random.Real(-1000.0, 1000.0);
    if (i % 2 == 0) {
      const std::uint64_t bits = random.Bits();
      std::memcpy(&value, &bits, sizeof value);
    }
    const int decimals = random.Integer(0, 17);
    const auto width = static_cast<unsigned int>(random.Integer(0, 12));
    ASSERT_EQ(Fixed(value, decimals, width), Printed(value, decimals, width));
  }
}

TEST(NumberText, WritesAPointInParentheses) {
  const double point[3] = {1, -2.5, 1000};
  std::wstring text = L"at ";
  AppendPoint(point, &text);
  EXPECT_EQ(text, L"at (1.000, -2.500, 1000.000)");
}

}  // namespace
}  // namespace Orvo
