#include "CommaLocale.h"
#include "MachineFiles.h"

#include <Orvo/Kin/Machine.h>
#include <Orvo/Matrix43.h>

#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <string>

namespace Orvo::Testing {
namespace {

using Kin::Machine;

Machine BuildMachine() {
  Machine machine;
  machine.AddEntityLinear(L"x", 1234567, Vector3D(1, 1, 0))->SetRange(-1234567.5, 0.25);
  return machine;
}

// The test of the test: numbers really have a comma in this locale.
TEST(Locale, HasAComma) {
  char text[20];
  std::snprintf(text, sizeof text, "%.1f", 1.5);
  ASSERT_STREQ(text, "1.5");
  {
    const CommaLocale locale;
    std::snprintf(text, sizeof text, "%.1f", 1.5);
    EXPECT_STREQ(text, "1,5");
  }
  std::snprintf(text, sizeof text, "%.1f", 1.5);
  EXPECT_STREQ(text, "1.5");
}

TEST(Locale, FilesAreWrittenWithPoints) {
  Machine machine = BuildMachine();
  const std::string expected = WrittenText(machine);
  EXPECT_NE(expected.find("<RangeMin>-1234567.500000</RangeMin>"), std::string::npos);
  const CommaLocale locale;
  EXPECT_EQ(WrittenText(machine), expected);
}

TEST(Locale, FilesAreReadWithPoints) {
  Machine machine = BuildMachine();
  const std::string text = WrittenText(machine);
  const CommaLocale locale;
  Machine again;
  ASSERT_TRUE(ReadText(again, text));
  EXPECT_EQ(EntityAt(again, 0).GetRangeMin(), -1234567.5);
  EXPECT_EQ(EntityAt(again, 0).GetRangeMax(), 0.25);
  EXPECT_EQ(EntityAt(again, 0).GetParentEntityId(), 1234567);
  EXPECT_EQ(EntityAt(again, 0).GetEntityLink().GetDir()[0],
            0.707107 / Vector3D(0.707107, 0.707107, 0).Norm());
  Machine comma;
  ASSERT_TRUE(ReadText(comma, Replaced(text, "0.250000", "0,250000")));
  EXPECT_EQ(EntityAt(comma, 0).GetRangeMax(), 0.0) << "a comma ends the number";
}

TEST(Locale, DebugTextsHavePoints) {
  const CommaLocale locale;
  std::wstring text;
  Vector3D(1, -2.5, 1000).GetStringDebug(&text);
  EXPECT_EQ(text, L"(1.000, -2.500, 1000.000)");
  Matrix43().GetStringDebug(&text);
  EXPECT_EQ(text,
            L"(u=(1.000, 0.000, 0.000), v=(0.000, 1.000, 0.000), w=(0.000, 0.000, 1.000), "
            L"t=(0.000, 0.000, 0.000))");
}

}  // namespace
}  // namespace Orvo::Testing
