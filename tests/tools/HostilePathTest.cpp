#include "tools/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Orvo::Testing {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

ToolResult SolveFile(const ToolRun& tool, const std::string& path) {
  return tool.Run({"solve", ExampleMachine("trunnion_ac"), path, "--offset", "0,0,30", "-o",
                   tool.File("axes.csv")});
}

// Whatever is wrong with a path: status 2, FILE:LINE:COLUMN: and what it is, and no result, not
// even a part of one.
TEST(HostilePath, FaultIsNamedByLineAndColumn) {
  using std::string_literals::operator""s;
  struct Case {
    const char* name;
    std::string bytes;
    std::string what;
  };
  const std::string good = "1,2,3,0,0,1\n";
  const std::string header = "x,y,z,i,j,k\n";
  const Case cases[] = {
      {"empty", "", "1:1: the file is empty; its first line must name the columns x,y,z,i,j,k"},
      {"only comments", "# nothing\n\n#\n", "1:1: the file is empty"},
      {"no names", good, "1:1: the columns have no names; the first line must name x,y,z,i,j,k"},
      {"one column missing", "x,y,z,i,j\n1,2,3,0,0\n",
       "1:1: there is no column k; found 'x,y,z,i,j'"},
      {"several columns missing", "# path\n a,b,x\n", "2:2: there is no column y,z,i,j,k; found"},
      {"a column twice", "x,y,z,i,j,k,X\n", "1:13: the column x is named twice"},
      {"tabs", "x\ty\tz\ti\tj\tk\n", "but columns are separated by commas or semicolons"},
      {"decimal commas", "x;y;z;i;j;k\n1;2;3,5;0;0;1\n",
       "2:5: z: '3,5' is not a number; write a decimal point"},
      {"a negative feed", "feed," + header + "-1," + good, "2:1: the feed is negative"},
      {"a rapid that is none", "rapid," + header + "yes," + good,
       "2:1: rapid: 'yes' is none of 0, 1, true, false or nothing"},
      {"quoted names", "\"x\",\"y\",\"z\",i,j,k\n", "1:1: quoted fields are not read"},
      {"quoted value", header + "1,\"2\",3,0,0,1\n", "2:3: quoted fields are not read"},
      {"a word", header + good + "1,2,three,0,0,1\n", "3:5: z: 'three' is not a number"},
      {"a number and more", header + "1,2,3mm,0,0,1\n", "2:5: z: '3mm' is not a number"},
      {"two points", header + "1,2.5.1,3,0,0,1\n", "2:3: y: '2.5.1' is not a number"},
      {"blank within", header + "1 2,2,3,0,0,1\n", "2:1: x: '1 2' is not a number"},
      {"hexadecimal", header + "0x10,2,3,0,0,1\n", "2:1: x: '0x10' is not a number"},
      {"two signs", header + "+-1,2,3,0,0,1\n", "2:1: x: '+-1' is not a number"},
      {"only a sign", header + "+,2,3,0,0,1\n", "2:1: x: '+' is not a number"},
      {"empty field", header + "1,,3,0,0,1\n", "2:3: y is empty"},
      {"blank field", header + "1,2,3,0,0,  \n", "2:11: k is empty"},
      {"nan", header + "1,nan,3,0,0,1\n", "2:3: y: 'nan' is not a finite number"},
      {"infinity", header + "1,2,-inf,0,0,1\n", "2:5: z: '-inf' is not a finite number"},
      {"infinity in a direction", header + "1,2,3,0,0,infinity\n",
       "2:11: k: 'infinity' is not a finite number"},
      {"too large", header + "1e999,2,3,0,0,1\n", "2:1: x: '1e999' is beyond the numbers"},
      {"decimal comma", header + "1,5,2,3,0,0,1\n",
       "2:13: more fields than the 6 columns that the first line names"},
      {"too many fields", header + "1,2,3,0,0,1,\n", "2:13: more fields than the 6 columns"},
      {"too few fields", header + good + "\n1,2,3\n",
       "4:6: only 3 of the 6 columns that the first line names"},
      {"null direction", header + "1,2,3,0,0,0\n", "2:7: the direction i,j,k is null"},
      {"null direction by sign", header + "1,2,3,-0,0,-0.0\n", "2:7: the direction i,j,k is null"},
      {"a line without values", header + ",,,,,\n", "2:1: x is empty"},
      {"NUL", header + "1,2,3\0,0,0,1\n"s, "2:6: a NUL byte: this is no text file"},
      {"NUL in the first line", "x,y\0,z\n"s, "1:4: a NUL byte"},
      {"NUL in a comment", "#\0\n"s, "1:2: a NUL byte"},
      {"old line ends", "x,y,z,i,j,k\r1,2,3,0,0,1\r", "1:12: a carriage return within a line"},
      {"UTF-16", "\xFF\xFEx\0,\0y\0"s, "1:1: the file is UTF-16; save it as UTF-8"},
      {"UTF-16, the other order", "\xFE\xFF\0x\0,"s, "1:1: the file is UTF-16"},
      {"columns are counted in characters",
       "x,y,z,i,j,k,n\xC3\xA9\n1,2,3,0,0,\xC3\xA9\xC3\xA9x,1\n",
       "2:11: k: '\xC3\xA9\xC3\xA9x' is not a number"},
      {"characters before the fault", "n,x,y,z,i,j,k\n\xC3\xA9\xE2\x82\xAC,1,2,3,0,0,x\n",
       "2:14: k: 'x' is not a number"},
      {"after a byte order mark", "\xEF\xBB\xBFx,y,z,i,j\n", "1:1: there is no column k"},
      {"escape sequences", header + "\x1b[2J,2,3,0,0,1\n", "2:1: x: '?[2J' is not a number"},
      {"bytes that are no text", header + "\x80\xFF,2,3,0,0,1\n",
       "2:1: x: '\xEF\xBF\xBD\xEF\xBF\xBD' is not a number"},
      {"a long word is cut", header + std::string(500, 'w') + ",2,3,0,0,1\n",
       "2:1: x: '" + std::string(40, 'w') + "...' is not a number"},
      {"a line too long", header + good + std::string(65537, ' ') + "\n",
       "3:1: the line is longer than 65536 bytes"},
      {"XML", "<?xml version=\"1.0\"?>\n<Machine/>\n", "1:15: quoted fields are not read"},
  };
  for (const Case& c : cases) {
    const ToolRun tool;
    const std::string path = tool.Write("path.csv", c.bytes);
    const ToolResult result = SolveFile(tool, path);
    EXPECT_EQ(result.status, 2) << c.name;
    EXPECT_EQ(result.out, "") << c.name;
    EXPECT_THAT(result.err, StartsWith(path + ":")) << c.name;
    EXPECT_THAT(result.err, HasSubstr(c.what)) << c.name;
    EXPECT_EQ(Lines(result.err).size(), 1U) << c.name;
    EXPECT_EQ(tool.CountFiles(), 1U) << c.name;
  }
}

// A header without points solves nothing, which is hardly what was meant.
TEST(HostilePath, NoPointsIsAFault) {
  const ToolRun tool;
  const std::string path = tool.Write("path.csv", "x,y,z,i,j,k\n# 1,2,3,0,0,1\n");
  const ToolResult result = SolveFile(tool, path);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, path + ": the path has no point\n");
  EXPECT_EQ(tool.CountFiles(), 1U);
}

// A fault far down undoes all that was written before it.
TEST(HostilePath, LateFaultLeavesNothing) {
  const ToolRun tool;
  std::string bytes = "x,y,z,i,j,k\n";
  for (int i = 0; i < 20000; ++i) {
    bytes += "1,2,3,0,0.6,0.8\n";
  }
  const std::string path = tool.Write("path.csv", bytes + "1,2,3,0,0.6,0.8.0\n");
  const ToolResult result = SolveFile(tool, path);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, path + ":20002:13: k: '0.8.0' is not a number\n");
  EXPECT_EQ(tool.CountFiles(), 1U);
}

// A result of an earlier run stays as it was when the next one fails.
TEST(HostilePath, FaultKeepsAnOlderResult) {
  const ToolRun tool;
  tool.Write("axes.csv", "older");
  const ToolResult result = SolveFile(tool, tool.Write("path.csv", "x,y,z,i,j,k\n1,2,3,0,0,?\n"));
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(tool.Folder().Read("axes.csv"), "older");
  EXPECT_EQ(tool.CountFiles(), 2U);
}

// What can't be opened is named, with the reason.
TEST(HostilePath, MissingFilesAreNamed) {
  const ToolRun tool;
  const std::string missing = tool.File("missing.csv");
  EXPECT_EQ(SolveFile(tool, missing).status, 2);
  EXPECT_EQ(SolveFile(tool, missing).err,
            missing + ": can't be opened: No such file or directory\n");
  const std::string folder = tool.Folder().Path().string();
  EXPECT_EQ(SolveFile(tool, folder).status, 2);
  EXPECT_EQ(SolveFile(tool, folder).err, folder + ": is a folder, not a file\n");
  EXPECT_EQ(SolveFile(tool, "").status, 2);
}

// A line of 100 MB is refused long before it is in memory.
TEST(HostilePath, EndlessLineTakesNoMemory) {
  const ToolRun tool;
  const std::string command = "' /dev/stdin --offset 0,0,30 -o axes.csv";
  const std::string solve = "exec \"$ORVO\" solve '" + ExampleMachine("trunnion_ac") + command;
  const ToolResult small = tool.Shell("printf 'x\\n' | (" + solve + ")");
  EXPECT_EQ(small.status, 2);
  for (const char* endless :
       {"/dev/zero", "/dev/zero | tr '\\000' '1'", "/dev/zero | tr '\\000' ','"}) {
    const ToolResult result = tool.Shell("(printf 'x,y,z,i,j,k\\n'; head -c 100000000 " +
                                         std::string(endless) + ") 2>/dev/null | (" + solve + ")");
    EXPECT_EQ(result.status, 2) << endless;
    EXPECT_EQ(result.err, "/dev/stdin:2:1: the line is longer than 65536 bytes\n");
    EXPECT_LT(result.peakKilobytes, small.peakKilobytes + 4096) << endless;
    EXPECT_EQ(tool.CountFiles(), 0U);
  }
}

}  // namespace
}  // namespace Orvo::Testing
