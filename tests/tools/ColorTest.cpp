#include "tools/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace Orvo::Testing {
namespace {

constexpr char Escape = '\x1b';

bool IsColored(const std::string& text) { return text.find(Escape) != std::string::npos; }

/// Takes the escape sequences and the terminal's carriage returns out.
std::string Plain(const std::string& text) {
  std::string plain;
  bool isEscape = false;
  for (const char c : text) {
    isEscape = isEscape || c == Escape;
    if (!isEscape && c != '\r') {
      plain += c;
    }
    isEscape = isEscape && c != 'm';
  }
  return plain;
}

// A terminal gets colors, unless its user or its kind says no; whatever else gets none.
TEST(Color, IsForTerminalsOnly) {
  const ToolRun tool;
  const std::string info = "\"$ORVO\" info '" + ExampleMachine("trunnion_ac") + "'";
  const std::string plain = tool.Shell(info).out;
  EXPECT_FALSE(IsColored(plain));
  struct Case {
    const char* environment;
    const char* option;
    bool isColored;
  };
  for (const Case& c :
       {Case{"env -u NO_COLOR TERM=xterm", "", true}, Case{"env NO_COLOR= TERM=xterm", "", true},
        Case{"env NO_COLOR=1 TERM=xterm", "", false}, Case{"env -u NO_COLOR TERM=dumb", "", false},
        Case{"env -u NO_COLOR TERM=xterm", " --color never", false},
        Case{"env NO_COLOR=1 TERM=dumb", " --color always", true}}) {
    SCOPED_TRACE(std::string(c.environment) + c.option);
    const ToolResult result =
        tool.ShellAtTerminal(std::string(c.environment) + " " + info + c.option);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(IsColored(result.out), c.isColored);
    EXPECT_EQ(Plain(result.out), plain);
  }
  EXPECT_TRUE(IsColored(tool.Shell("NO_COLOR=1 " + info + " --color always").out));
}

// Formats for programs have no colors, whatever is asked for.
TEST(Color, IsForPeopleOnly) {
  const ToolRun tool;
  const std::string machine = " '" + ExampleMachine("trunnion_ac") + "'";
  for (const std::string& command :
       {"info" + machine, "validate" + machine, "ik" + machine + " 1,2,3 0,0,1",
        "explain" + machine + " 1,2,3 0,0.1,-1", "fk" + machine}) {
    const ToolResult result =
        tool.ShellAtTerminal("\"$ORVO\" " + command + " --format json --color always");
    EXPECT_FALSE(IsColored(result.out)) << command;
    EXPECT_THAT(result.out, testing::HasSubstr("\"")) << command;
  }
}

// Columns line up whether they are colored or not.
TEST(Color, KeepsColumns) {
  const ToolRun tool;
  const std::string ik = "\"$ORVO\" ik '" + ExampleMachine("trunnion_ac") + "' 900,2,50 0,0.5,1";
  const ToolResult colored = tool.Shell(ik + " --color always");
  EXPECT_TRUE(IsColored(colored.out));
  EXPECT_EQ(Plain(colored.out), tool.Shell(ik).out);
}

}  // namespace
}  // namespace Orvo::Testing
