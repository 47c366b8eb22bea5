#include "support/Sanitizers.h"
#include "tools/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <string>

namespace Orvo::Testing {
namespace {

using testing::HasSubstr;

/// Writes a spiral of so many points, without holding it in memory.
std::string WriteSpiral(const ToolRun& tool, const std::string& name, int points) {
  const std::string file = tool.File(name);
  std::ofstream stream(file, std::ios::binary);
  stream << "x,y,z,i,j,k\n";
  std::array<char, 200> line = {};
  for (int i = 0; i < points; ++i) {
    const double turn = 0.01 * i;
    const int length =
        std::snprintf(line.data(), line.size(), "%.5f,%.5f,%.5f,%.9f,%.9f,%.9f\n",
                      20.0 * std::cos(turn), 20.0 * std::sin(turn), 10.0 + 5.0 * std::cos(turn / 7),
                      0.5 * std::cos(turn), 0.5 * std::sin(turn), std::sqrt(0.75));
    stream.write(line.data(), length);
  }
  return file;
}

// A path of any length takes the same memory: twenty times the points, a few more kilobytes.
TEST(Streaming, MemoryDoesNotGrowWithThePath) {
  const ToolRun tool;
  const std::string machine = ExampleMachine("gantry_head_head_ca");
  const auto solve = [&](const std::string& path) {
    return tool.Run({"solve", machine, path, "--offset", "0,0,140", "-o", tool.File("axes.csv")});
  };
  const ToolResult few = solve(WriteSpiral(tool, "few.csv", 10000));
  const ToolResult many = solve(WriteSpiral(tool, "many.csv", 200000));
  EXPECT_THAT(few.out, HasSubstr("  points        10000\n"));
  EXPECT_THAT(many.out, HasSubstr("  points        200000\n"));
  EXPECT_EQ(few.err, "");
  EXPECT_EQ(many.err, "");
  // The path alone is 11 MB long, the result 15 MB.
#if !defined(ORVO_TEST_HAS_ALLOCATOR_OF_ITS_OWN)
  EXPECT_LT(many.peakKilobytes, few.peakKilobytes + 2048);
#endif
  EXPECT_GT(many.peakKilobytes, 0);
}

// So does a whole path but for 4 bytes a point, and so does the check of what was written.
TEST(Streaming, MemoryOfWholePathsIsAFewBytesAPoint) {
  const ToolRun tool;
  const std::string machine = ExampleMachine("gantry_head_head_ca");
  const std::string few = WriteSpiral(tool, "few.csv", 20000);
  const std::string many = WriteSpiral(tool, "many.csv", 120000);
  const auto solve = [&](const std::string& path) {
    return tool.Run({"solve", machine, path, "--offset", "0,0,140", "--policy", "optimal",
                     "--memory", "0", "--threads", "1", "-o", tool.File("axes.csv")});
  };
  const auto check = [&](const std::string& path) {
    return tool.Run(
        {"check", machine, tool.File("axes.csv"), "--offset", "0,0,140", "--path", path});
  };
  const ToolResult solvedFew = solve(few);
  const ToolResult checkedFew = check(few);
  const ToolResult solvedMany = solve(many);
  const ToolResult checkedMany = check(many);
  EXPECT_THAT(solvedMany.out, HasSubstr("  points          120000\n"));
  EXPECT_THAT(checkedMany.out, HasSubstr("  rows            120000\n"));
  EXPECT_EQ(checkedMany.status, 0);
  // 100000 points more; the path is 6 MB longer.
#if !defined(ORVO_TEST_HAS_ALLOCATOR_OF_ITS_OWN)
  EXPECT_LT(solvedMany.peakKilobytes, solvedFew.peakKilobytes + 3072);
  EXPECT_LT(checkedMany.peakKilobytes, checkedFew.peakKilobytes + 2048);
#endif
}

// A run that is watched tells how far it is, on one line that is wiped at the end.
TEST(Streaming, ProgressIsShownAtATerminal) {
  const ToolRun tool;
  const std::string path = WriteSpiral(tool, "path.csv", 1000);
  const ToolResult result =
      tool.RunAtTerminal({"solve", ExampleMachine("gantry_head_head_ca"), path, "--offset",
                          "0,0,140", "-o", tool.File("axes.csv")});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.err, HasSubstr(" %  256 points"));
  EXPECT_EQ(result.err.back(), '\r');
  EXPECT_EQ(result.err.find('\n'), std::string::npos);
  EXPECT_THAT(result.out, HasSubstr("  points        1000\n"));
  EXPECT_EQ(result.out.find('\r'), std::string::npos);
}

}  // namespace
}  // namespace Orvo::Testing
