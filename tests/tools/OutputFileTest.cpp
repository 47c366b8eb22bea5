#include "tools/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <string>

namespace Orvo::Testing {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string SolveLine(const std::string& output) {
  return "\"$ORVO\" solve '" + ExampleMachine("trunnion_ac") + "' '" +
         ExamplePath("curved_layers_model_1") + "' --offset 0,0,30 -o " + output;
}

// The result takes its name when it is whole, and replaces an older one.
TEST(OutputFile, OlderResultIsReplaced) {
  const ToolRun tool;
  std::string older;
  older.resize(10000000, 'x');
  tool.Write("axes.csv", older);
  EXPECT_EQ(tool.Shell(SolveLine("axes.csv")).status, 0);
  EXPECT_EQ(Lines(tool.Folder().Read("axes.csv")).size(), 34115U);
  EXPECT_EQ(tool.CountFiles(), 1U);
}

// A link is followed: the file behind it is replaced, the link stays.
TEST(OutputFile, LinkIsFollowed) {
  const ToolRun tool;
  tool.Write("real.csv", "older");
  std::filesystem::create_symlink("real.csv", tool.Folder().File("link.csv"));
  EXPECT_EQ(tool.Shell(SolveLine("link.csv")).status, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(tool.Folder().File("link.csv")));
  EXPECT_FALSE(std::filesystem::is_symlink(tool.Folder().File("real.csv")));
  EXPECT_EQ(Lines(tool.Folder().Read("real.csv")).size(), 34115U);
  EXPECT_EQ(tool.CountFiles(), 2U);
}

// What is no regular file is written to, never replaced.
TEST(OutputFile, DeviceIsWrittenTo) {
  const ToolRun tool;
  const ToolResult result = tool.Shell(SolveLine("/dev/null"));
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
  EXPECT_EQ(tool.CountFiles(), 0U);
  const ToolResult piped = tool.Shell(SolveLine("/dev/stdout") + " | head -n 1");
  EXPECT_EQ(piped.out, "X,Y,Z,A,C,solutions,flags\n");
}

// A full disk is an error, status 2, and nothing is left.
TEST(OutputFile, FullDiskIsAnError) {
  const ToolRun tool;
  const ToolResult full = tool.Shell(SolveLine("/dev/full"));
  EXPECT_EQ(full.status, 2);
  EXPECT_EQ(full.out, "");
  EXPECT_EQ(full.err, "/dev/full: can't be written: No space left on device\n");
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));

  tool.Write("axes.csv", "older");
  const ToolResult limited = tool.Shell("ulimit -f 100; " + SolveLine("axes.csv"));
  EXPECT_EQ(limited.status, 2);
  EXPECT_EQ(limited.signal, 0);
  EXPECT_EQ(limited.err, "axes.csv: can't be written: File too large\n");
  EXPECT_EQ(tool.Folder().Read("axes.csv"), "older");
  EXPECT_EQ(tool.CountFiles(), 1U);
}

// A full disk may show as late as with the last bytes: those of a short result.
TEST(OutputFile, FullDiskIsSeenForAShortResult) {
  const ToolRun tool;
  tool.Write("path.csv", "x,y,z,i,j,k\n1,2,3,0,0,1\n");
  const ToolResult result =
      tool.Shell("\"$ORVO\" solve '" + ExampleMachine("trunnion_ac") + "' path.csv -o /dev/full");
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
}

// Places where nothing can be written.
TEST(OutputFile, ImpossiblePlacesAreNamed) {
  const ToolRun tool;
  const ToolResult missing = tool.Shell(SolveLine("no/such/axes.csv"));
  EXPECT_EQ(missing.status, 2);
  EXPECT_EQ(missing.err, "no/such/axes.csv: can't be made: No such file or directory\n");
  std::filesystem::create_directory(tool.Folder().File("folder"));
  const ToolResult folder = tool.Shell(SolveLine("folder"));
  EXPECT_EQ(folder.status, 2);
  EXPECT_EQ(folder.err, "folder: is a folder\n");
  EXPECT_EQ(tool.CountFiles(), 1U);
}

// A result never replaces what it is made of, whatever name that has and whichever command it is.
TEST(OutputFile, WhatIsReadIsNotReplaced) {
  const ToolRun tool;
  const std::string machine = tool.Run({"new", "trunnion-ac"}).out;
  const std::string path = "x,y,z,i,j,k\n1,2,30,0,0,1\n";
  const std::string axes = "X,Y,Z,A,C\n1,2,3,4,5\n";
  tool.Write("m.xml", machine);
  tool.Write("p.csv", path);
  tool.Write("a.csv", axes);
  tool.Write("a.bin", axes);
  std::filesystem::create_symlink("m.xml", tool.Folder().File("link.xml"));
  std::filesystem::create_hard_link(tool.Folder().File("m.xml"), tool.Folder().File("same.xml"));
  for (const char* command :
       {"fk m.xml A=1 -o m.xml", "fk m.xml A=1 -o ./m.xml", "fk m.xml A=1 -o link.xml",
        "fk link.xml A=1 -o m.xml", "fk m.xml A=1 -o same.xml", "fk m.xml a.csv -o a.csv",
        "fk - A=1 -o m.xml <m.xml", "fk m.xml - -o a.csv <a.csv", "vectors write m.xml -o m.xml",
        "vectors write - -o m.xml <m.xml", "solve m.xml p.csv -o m.xml",
        "solve m.xml p.csv -o p.csv", "solve m.xml - -o p.csv <p.csv", "convert m.xml same.xml",
        "convert - m.xml --from xml <m.xml", "convert m.xml a.csv --to glb --animate a.csv",
        "convert m.xml a.gltf --animate a.bin"}) {
    SCOPED_TRACE(command);
    const ToolResult result = tool.Shell("\"$ORVO\" " + std::string(command));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr(" would replace what is read\n"));
    EXPECT_EQ(tool.Folder().Read("m.xml"), machine);
    EXPECT_EQ(tool.Folder().Read("p.csv"), path);
    EXPECT_EQ(tool.Folder().Read("a.csv"), axes);
    EXPECT_EQ(tool.Folder().Read("a.bin"), axes);
  }
  // What can't be replaced may be both.
  EXPECT_EQ(tool.Shell("\"$ORVO\" fk /dev/stdin -o /dev/stdout <m.xml | cat").status, 0);
}

// A standard output that can't be written is an error, too.
TEST(OutputFile, StandardOutputIsChecked) {
  const ToolRun tool;
  for (const std::string& command : {"\"$ORVO\" info '" + ExampleMachine("trunnion_ac") + "'",
                                     std::string("\"$ORVO\" --help"), SolveLine("axes.csv")}) {
    const ToolResult result = tool.Shell(command + " >/dev/full");
    EXPECT_EQ(result.status, 2) << command;
    EXPECT_THAT(result.err, StartsWith("orvo: the standard output can't be written")) << command;
  }
}

// A user who ends the program finds nothing half done, and the signal is what ended it.
TEST(OutputFile, InterruptedRunLeavesNothing) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const ToolRun tool;
    const ToolResult result = tool.RunEndlessPathAndSignal(
        {"solve", ExampleMachine("trunnion_ac"), tool.File("path"), "-o", tool.File("axes.csv")},
        tool.File("path"), signal);
    EXPECT_EQ(result.signal, signal);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(tool.CountFiles(), 1U) << "besides the pipe";
  }
}

}  // namespace
}  // namespace Orvo::Testing
