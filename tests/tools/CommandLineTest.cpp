#include "tools/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using testing::HasSubstr;

// Help and version are answers: standard output, status 0, nothing on the error stream.
TEST(CommandLine, HelpAndVersionAreAnswers) {
  const ToolRun tool;
  struct Case {
    std::vector<std::string> arguments;
    std::string begin;
  };
  const std::vector<Case> cases = {
      {{"--help"}, "Usage: orvo COMMAND ...\n"},
      {{"-h"}, "Usage: orvo COMMAND ...\n"},
      {{"info", "--help"}, "Usage: orvo info MACHINE [OPTIONS]\n"},
      {{"solve", "--help"}, "Usage: orvo solve MACHINE PATH [OPTIONS]\n"},
      {{"--version"}, "orvo "},
  };
  for (const Case& c : cases) {
    const ToolResult result = tool.Run(c.arguments);
    EXPECT_EQ(result.status, 0) << c.begin;
    EXPECT_EQ(result.out.substr(0, c.begin.size()), c.begin);
    EXPECT_EQ(result.err, "");
  }
}

// The help names every option, every flag and every exit status, and fits a terminal.
TEST(CommandLine, HelpOfSolveTellsAll) {
  const ToolRun tool;
  const std::string help = tool.Run({"solve", "--help"}).out;
  for (const char* part : {"-o, --output",   "-p, --program-system",
                           "--offset",       "--shift",
                           "--start",        "-h, --help",
                           "  ok ",          "  out:",
                           "  unreachable ", "  unreachable:A",
                           "  free:",        "  snapped:",
                           "  0  ",          "  1  ",
                           "  2  ",          "  3  ",
                           "  4  ",          "  5  ",
                           "ShortestWay",    "Default",
                           "AlphaPositive"}) {
    EXPECT_THAT(help, HasSubstr(part));
  }
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--help"}, {"info", "--help"}, {"solve", "--help"}}) {
    for (const std::string& line : Lines(tool.Run(arguments).out)) {
      EXPECT_LE(line.size(), 80U) << line;
    }
  }
}

// A wrong command line: status 1, what is wrong and where help is, nothing on the standard output.
TEST(CommandLine, WrongUseIsStatusOne) {
  const ToolRun tool;
  const std::string machine = ExampleMachine("trunnion_ac");
  const std::string path = ExamplePath("cam_groove_radial");
  const std::string axes = tool.File("axes.csv");
  struct Case {
    std::vector<std::string> arguments;
    std::string what;
  };
  const std::vector<Case> cases = {
      {{}, "orvo: a command is needed\nTry: orvo --help\n"},
      {{"frob"}, "orvo: there is no command 'frob'\nTry: orvo --help\n"},
      {{"--frob"}, "orvo: there is no option '--frob'\nTry: orvo --help\n"},
      {{""}, "orvo: a command is needed\n"},
      {{"info"}, "orvo info: MACHINE is required\nTry: orvo info --help\n"},
      {{"info", machine, "more"}, "orvo info: 'more' is one argument too many\n"},
      {{"info", machine, "--frob"}, "orvo info: there is no option '--frob'\n"},
      {{"solve"}, "orvo solve: MACHINE is required"},
      {{"solve", machine}, "orvo solve: PATH is required"},
      {{"solve", machine, path, "-o"}, "orvo solve: --output needs a value: AXES\n"},
      {{"solve", machine, path, "-o", axes, "--frob"}, "--frob"},
      {{"solve", machine, path, "-o", axes, "--offset", "1,2"},
       "orvo solve: --offset: three numbers X,Y,Z are needed, not '1,2'"},
      {{"solve", machine, path, "-o", axes, "--offset", "1,2,3,4"}, "not '1,2,3,4'"},
      {{"solve", machine, path, "-o", axes, "--offset", "1,2,x"}, "not '1,2,x'"},
      {{"solve", machine, path, "-o", axes, "--offset", "1,2,"}, "not '1,2,'"},
      {{"solve", machine, path, "-o", axes, "--offset", "1,2,nan"}, "not '1,2,nan'"},
      {{"solve", machine, path, "-o", axes, "--offset", ""}, "not ''"},
      {{"solve", machine, path, "-o", axes, "--shift", "0;0;0"},
       "orvo solve: --shift: three numbers X,Y,Z are needed, not '0;0;0'"},
      {{"solve", machine, path, "-o", axes, "--start", "1,2"},
       "orvo solve: --start: 2 values for 5 registers"},
      {{"solve", machine, path, "-o", axes, "--start", "1,2,3,4,x"},
       "orvo solve: --start: 'x' is not a number"},
      {{"solve", machine, path, "-o", axes, "--start", "Q=1"},
       "orvo solve: --start: 'Q=1' is not NAME=VALUE with one of X, Y, Z, A, C"},
      {{"solve", machine, path, "-o", axes, "--start", "A=1,2"}, "'2' is not NAME=VALUE"},
      {{"solve", machine, path, "-o", axes, "--start", "A=inf"}, "'inf' is not a finite number"},
      {{"solve", machine, path, "-o", axes, "-p", "2"},
       "orvo solve: --program-system: there is no '2'. The machine has:\n  0  TableTable_AC\n  1  "
       "Indexed_C_first\n"},
      {{"solve", machine, path, "-o", axes, "-p", "-1"}, "there is no '-1'"},
      {{"solve", machine, path, "-o", axes, "-p", "tabletable_ac"}, "there is no 'tabletable_ac'"},
      {{"solve", machine, path, "-o", machine}, "would replace what is read"},
      {{"solve", machine, path, "-o", path}, "would replace what is read"},
  };
  for (const Case& c : cases) {
    const ToolResult result = tool.Run(c.arguments);
    EXPECT_EQ(result.status, 1) << c.what;
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr(c.what));
    EXPECT_EQ(tool.CountFiles(), 0U) << c.what;
  }
}

// Numbers out of bounds, and what is no number, are refused with the bounds in plain words.
TEST(CommandLine, NumbersAreHeldAgainstTheirBounds) {
  const ToolRun tool;
  const std::string machine = ExampleMachine("trunnion_ac");
  const std::string path = ExamplePath("cam_groove_radial");
  const std::vector<std::string> check = {"check", machine, "axes.csv"};
  const std::vector<std::string> greedy = {"solve", machine, path, "--policy", "greedy"};
  const std::vector<std::string> verify = {"vectors", "verify", machine, "v.txt"};
  const std::vector<std::string> write = {"vectors", "write", machine, "-o", "-"};
  const std::vector<std::string> convert = {"convert", machine, tool.File("m.glb")};
  struct Case {
    std::vector<std::string> command;
    const char* option;
    const char* need;
    std::vector<std::string> refused;
  };
  const Case cases[] = {
      {check, "--tolerance", "a length of 0 or more", {"nan", "-1", "inf", "1e-3x", " "}},
      {check, "--angle-tolerance", "an angle of 0 or more", {"nan", "-1e-300", "0x1"}},
      {check, "--range-tolerance", "a number of 0 or more", {"nan", "-nan", "1e999"}},
      {check, "--feed", "a feed above 0", {"nan", "0", "-0"}},
      {check, "--singular", "an angle of 0 or more", {"nan", "-2"}},
      {greedy, "--tolerance", "a length above 0", {"nan", "0", "-1"}},
      {greedy, "--angle-tolerance", "an angle above 0", {"NAN", "0"}},
      {greedy, "--cone", "an angle from 0 to 90", {"nan", "90.001", "-1"}},
      {greedy, "--branch-cost", "a cost of 0 or more", {"nan", "-5", "inf"}},
      {greedy, "--unwind-cost", "a cost of 0 or more", {"nan", "-5"}},
      {greedy, "--threads", "a whole number from 1 to 256", {"0", "257", "1.5", "nan", "-1"}},
      {greedy, "--memory", "a whole number from 0 to 1048576", {"-1", "1048577"}},
      {greedy,
       "--decimals",
       "a whole number from 0 to 15",
       {"16", "-1", "x", "99999999999999999999"}},
      {verify, "--tolerance", "a number of 0 or more", {"nan", "-1"}},
      {write, "--count", "a whole number from 1 to 1000000", {"0", "1e3"}},
      {write, "--seed", "a whole number from 0 to 18446744073709551615", {"-1", "1.5"}},
      {convert, "--unit", "a length above 0", {"nan", "0"}},
      {convert, "--seconds", "a time above 0", {"nan", "-1"}},
  };
  for (const Case& c : cases) {
    for (const std::string& value : c.refused) {
      std::vector<std::string> arguments = c.command;
      arguments.insert(arguments.end(), {std::string(c.option) + "=" + value});
      const ToolResult result = tool.Run(arguments);
      EXPECT_EQ(result.status, 1) << c.option << " " << value;
      EXPECT_EQ(result.out, "") << c.option << " " << value;
      EXPECT_EQ(Lines(result.err).at(0), "orvo " + c.command[0] + ": " + c.option + ": " + c.need +
                                             " is needed, not '" + value + "'");
    }
  }
  EXPECT_EQ(tool.Run({"vectors", "write", machine, "-o", "-", "--count", "1", "--seed",
                      "18446744073709551615"})
                .status,
            0);
}

// What can't be shown in a terminal as it is becomes '?': no argument can steer it.
TEST(CommandLine, ControlCharactersAreNotEchoed) {
  const ToolRun tool;
  const ToolResult result = tool.Run({"\x1b[31mred\r\n"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("'?[31mred?"
                                    "?'"));
}

// An option that is given twice is a mistake, not a choice.
TEST(CommandLine, OptionGivenTwiceIsRefused) {
  const ToolRun tool;
  const ToolResult result =
      tool.Run({"solve", ExampleMachine("trunnion_ac"), ExamplePath("cam_groove_radial"), "-o",
                tool.File("a"), "--offset", "0,0,1", "--offset", "0,0,2"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("orvo solve: --offset is given more than once\n"));
}

}  // namespace
}  // namespace Orvo::Testing
