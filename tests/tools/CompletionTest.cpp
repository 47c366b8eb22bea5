#include "tools/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

/// Completes the last of some words in bash, with the script that is installed.
std::vector<std::string> Complete(const ToolRun& tool, const std::string& words) {
  const ToolResult result = tool.Shell(
      "bash -c 'compopt() { :; }; . \"$1\"; shift; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); "
      "_orvo; printf \"%s\\n\" \"${COMPREPLY[@]}\"' bash '" ORVO_COMPLETION_FILE "' " +
      words);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  std::vector<std::string> lines = Lines(result.out);
  if (lines.size() == 1 && lines[0].empty()) {
    lines.clear();
  }
  return lines;
}

// The script that is installed is the one that the program makes of its commands. After a change:
// orvo completion bash >tools/orvo/completion.bash
TEST(Completion, ScriptIsNotStale) {
  std::ifstream stream(ORVO_COMPLETION_FILE);
  const std::string installed((std::istreambuf_iterator<char>(stream)),
                              std::istreambuf_iterator<char>());
  EXPECT_EQ(ToolRun().Run({"completion", "bash"}).out, installed);
}

TEST(Completion, OffersCommandsOptionsWordsAndFiles) {
  const ToolRun tool;
  tool.Write("machine.xml", "");
  std::filesystem::create_directory(tool.Folder().File("machines"));
  EXPECT_THAT(Complete(tool, "orvo val"), ElementsAre("validate"));
  EXPECT_THAT(Complete(tool, "orvo ''"), IsSupersetOf({"info", "fk", "ik", "new", "solve"}));
  EXPECT_THAT(Complete(tool, "orvo info --f"), ElementsAre("--format"));
  EXPECT_THAT(Complete(tool, "orvo info --format ''"), ElementsAre("text", "json"));
  EXPECT_THAT(Complete(tool, "orvo fk --format j"), ElementsAre("json", "jsonl"));
  EXPECT_THAT(Complete(tool, "orvo info mach"), IsSupersetOf({"machine.xml", "machines"}));
  EXPECT_THAT(Complete(tool, "orvo new trunnion-"), ElementsAre("trunnion-ac", "trunnion-bc"));
  EXPECT_THAT(Complete(tool, "orvo new mill-3 -o mach"), Contains("machine.xml"));
  EXPECT_THAT(Complete(tool, "orvo fk machine.xml --offset ''"), IsEmpty());
  EXPECT_THAT(Complete(tool, "orvo frob ''"), IsEmpty());
}

}  // namespace
}  // namespace Orvo::Testing
