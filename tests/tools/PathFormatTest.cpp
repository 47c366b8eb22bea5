#include "tools/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using testing::ElementsAre;

/// Solves a path file on the trunnion with a tool of 30.
std::vector<std::string> RowsOf(const std::string& bytes) {
  const ToolRun tool;
  const std::string path = tool.Write("path.csv", bytes);
  const ToolResult result = tool.Run({"solve", ExampleMachine("trunnion_ac"), path, "--offset",
                                      "0,0,30", "-o", tool.File("axes.csv")});
  EXPECT_EQ(result.status, 0) << result.err;
  return tool.Folder().Has("axes.csv") ? Lines(tool.Folder().Read("axes.csv"))
                                       : std::vector<std::string>();
}

/// The rows of the two points (10, 5, 2.5) upright and (0, 0, 0) leaning by 30 degrees.
const std::vector<std::string>& ExpectedRows() {
  static const std::vector<std::string> rows = {
      "X,Y,Z,A,C,solutions,flags", "10.000000,5.000000,42.500000,0.000000,0.000000,1,free:C",
      "0.000000,-20.000000,34.641016,30.000000,0.000000,2,ok"};
  return rows;
}

// The names in the first line decide, and nothing else of the layout matters.
TEST(PathFormat, EveryLayoutOfTheSamePointsIsRead) {
  struct Case {
    const char* name;
    std::string bytes;
  };
  const std::string a = "10,5,2.5,0,0,1";
  const std::string b = "0,0,0,0,0.5,0.8660254037844386";
  const Case cases[] = {
      {"plain", "x,y,z,i,j,k\n" + a + "\n" + b + "\n"},
      {"no end of the last line", "x,y,z,i,j,k\n" + a + "\n" + b},
      {"DOS line ends", "x,y,z,i,j,k\r\n" + a + "\r\n" + b + "\r\n"},
      {"DOS line end before the end only", "x,y,z,i,j,k\n" + a + "\n" + b + "\r"},
      {"byte order mark", "\xEF\xBB\xBFx,y,z,i,j,k\n" + a + "\n" + b + "\n"},
      {"upper case", "X,Y,Z,I,J,K\n" + a + "\n" + b + "\n"},
      {"mixed case and blanks", " X ,\ty, Z,i ,J,k\t\n 10 , 5,2.5\t,0,0,1 \n" + b + "\n"},
      {"semicolons", "x;y;z;i;j;k\n10;5;2.5;0;0;1\n0;0;0;0;0.5;0.8660254037844386\n"},
      {"feed and rapid", "x,y,z,i,j,k,F,rapid\n" + a + ",1e3,True\n" + b + ",,\n"},
      {"another order", "k,j,i,z,y,x\n1,0,0,2.5,5,10\n0.8660254037844386,0.5,0,0,0,0\n"},
      {"more columns",
       "line,x,y,z,feed rate,i,j,k,note\n1,10,5,2.5,100,0,0,1,\n2,0,0,0,G1,0,0.5,"
       "0.8660254037844386,caf\xC3\xA9\n"},
      {"a column without name", "x,y,z,i,j,k,\n" + a + ",\n" + b + ",\n"},
      {"comments and empty lines", "# a path\n\n  # of two points\nx,y,z,i,j,k # names\n\n" + a +
                                       " # first\n   \t\n#" + b + "\n" + b + "#last\n\n# end"},
      {"a quote in a comment", "# \"quoted\"\nx,y,z,i,j,k\n" + a + " # 5\"\n" + b + "\n"},
      {"other ways to write numbers",
       "x,y,z,i,j,k\n+1.0e1,5.,25E-1,-0,0.0,+1\n0e0,-0.0,.0,0,.5,0.8660254037844386467637\n"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(RowsOf(c.bytes), ExpectedRows()) << c.name;
  }
}

// What one policy reads, the others read too; what one refuses, all refuse at the same place.
TEST(PathFormat, PoliciesReadTheSameFiles) {
  const std::string point = "1,2,3,0,0.1,1";
  struct Case {
    const char* name;
    std::string bytes;
    const char* place;  ///< where it is refused; nothing where it isn't
  };
  const Case cases[] = {
      {"commas", "x,y,z,i,j,k\n" + point + "\n", ""},
      {"semicolons", "x;y;z;i;j;k\n1;2;3;0;0.1;1\n", ""},
      {"semicolons and a decimal comma", "x;y;z;i;j;k\n1,5;2;3;0;0.1;1\n", ":2:1: "},
      {"tabs", "x\ty\tz\ti\tj\tk\n", ":1:1: "},
      {"feed", "f,x,y,z,i,j,k\n100," + point + "\n", ""},
      {"a feed that is empty", "feed,x,y,z,i,j,k\n," + point + "\n", ""},
      {"a feed that is none", "f,x,y,z,i,j,k\nfast," + point + "\n", ":2:1: "},
      {"a negative feed", "x,y,z,i,j,k,f\n" + point + ",-5\n", ":2:15: "},
      {"two feeds", "x,y,z,i,j,k,f,feed\n" + point + ",1,1\n", ":1:15: "},
      {"rapid", "x,y,z,i,j,k,rapid\n" + point + ",FALSE\n" + point + ", 1\n", ""},
      {"a rapid that is none", "x,y,z,i,j,k,rapid\n" + point + ",maybe\n", ":2:15: "},
      {"two rapids", "rapid,Rapid,x,y,z,i,j,k\n", ":1:7: "},
  };
  const ToolRun tool;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string path = tool.Write("path.csv", c.bytes);
    for (const char* policy : {"machine", "greedy", "optimal"}) {
      const ToolResult result = tool.Run(
          {"solve", ExampleMachine("trunnion_ac"), path, "--offset", "0,0,30", "--policy", policy});
      const bool isRefused = c.place[0] != '\0';
      EXPECT_EQ(result.status, isRefused ? 2 : 0) << policy << ": " << result.err;
      EXPECT_EQ(result.err.substr(0, (path + c.place).size()), isRefused ? path + c.place : "")
          << policy;
    }
  }
}

// A line as long as is allowed is read; extra columns may be that long.
TEST(PathFormat, LongestLineIsRead) {
  const std::string begin = "10,5,2.5,0,0,1,";
  const std::string longest = begin + std::string(65536 - begin.size(), 'n');
  EXPECT_EQ(RowsOf("x,y,z,i,j,k,note\n" + longest + "\n0,0,0,0,0.5,0.8660254037844386,\n"),
            ExpectedRows());
}

// A path that comes through a pipe is read as it comes.
TEST(PathFormat, PathMayBeAPipe) {
  const ToolRun tool;
  const ToolResult result =
      tool.Shell("printf 'x,y,z,i,j,k\\n10,5,2.5,0,0,1\\n' | \"$ORVO\" solve '" +
                 ExampleMachine("trunnion_ac") + "' /dev/stdin --offset 0,0,30 -o axes.csv");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(Lines(tool.Folder().Read("axes.csv")),
              ElementsAre(ExpectedRows()[0], ExpectedRows()[1]));
}

// Numbers have a point, in and out, whatever the user's language.
TEST(PathFormat, LocaleDoesNotMatter) {
  const ToolRun tool;
  tool.Write("path.csv", "x,y,z,i,j,k\n10,5,2.5,0,0,1\n0,0,0,0,0.5,0.8660254037844386\n");
  for (const char* locale : {"C", "de_DE.UTF-8", "tr_TR.UTF-8"}) {
    const ToolResult result =
        tool.Shell(std::string("LC_ALL=") + locale + " \"$ORVO\" solve '" +
                   ExampleMachine("trunnion_ac") + "' path.csv --offset 0,0,30 -o axes.csv");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(Lines(tool.Folder().Read("axes.csv")), ExpectedRows());
  }
}

}  // namespace
}  // namespace Orvo::Testing
