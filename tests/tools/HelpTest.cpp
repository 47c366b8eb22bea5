#include "tools/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// Returns what the script for completion offers: the commands, or the options of one.
std::vector<std::string> Offered(const std::string& script, const std::string& begin) {
  const std::size_t place = script.find(begin);
  EXPECT_NE(place, std::string::npos) << begin;
  const std::size_t first = script.find('"', place) + 1;
  std::istringstream words(script.substr(first, script.find('"', first) - first));
  std::vector<std::string> all;
  for (std::string word; words >> word;) {
    all.push_back(word);
  }
  return all;
}

std::vector<std::string> Commands(const ToolRun& tool) {
  std::vector<std::string> names;
  for (const std::string& word : Offered(tool.Run({"completion", "bash"}).out, "COMP_CWORD == 1")) {
    if (word[0] != '-') {
      names.push_back(word);
    }
  }
  return names;
}

// The help of the program names every command that is for people, and every status.
TEST(Help, NamesEveryCommand) {
  const ToolRun tool;
  const std::string help = tool.Run({"--help"}).out;
  const std::vector<std::string> commands = Commands(tool);
  EXPECT_GE(commands.size(), 8U);
  for (const std::string& command : commands) {
    if (command != "completion") {
      EXPECT_THAT(help, HasSubstr("\n  " + command + " "));
    }
  }
  for (int status = 0; status <= 6; ++status) {
    EXPECT_THAT(help, HasSubstr("\n  " + std::to_string(status) + "  "));
  }
}

// The help of a command has its usage, every option, the statuses and an example, and fits a
// terminal.
TEST(Help, TellsAllOfEachCommand) {
  const ToolRun tool;
  const std::string script = tool.Run({"completion", "bash"}).out;
  for (const std::string& command : Commands(tool)) {
    SCOPED_TRACE(command);
    const ToolResult result = tool.Run({command, "--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, StartsWith("Usage: orvo " + command));
    EXPECT_EQ(tool.Run({command, "-h"}).out, result.out);
    EXPECT_THAT(result.out, HasSubstr("\nExit status:\n  0  "));
    EXPECT_THAT(result.out, HasSubstr("\n  1  the command line is wrong\n"));
    EXPECT_THAT(result.out, HasSubstr("\nExample"));
    EXPECT_THAT(result.out, HasSubstr("\n  orvo " + command + " ")) << "an example";
    const std::size_t section = script.find("\n        " + command + ")");
    for (const std::string& option : Offered(script.substr(section), "[[ $current == -* ]]")) {
      EXPECT_THAT(result.out, HasSubstr(option));
    }
    for (const std::string& line : Lines(result.out)) {
      EXPECT_LE(line.size(), 80U) << line;
      EXPECT_EQ(line.find('\t'), std::string::npos);
      EXPECT_TRUE(line.empty() || line.back() != ' ') << line;
    }
  }
}

}  // namespace
}  // namespace Orvo::Testing
