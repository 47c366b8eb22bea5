#include "tools/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>

namespace Orvo::Testing {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// Replaces the first occurrence of a text behind another one.
std::string Replace(std::string text, const std::string& behind, const std::string& from,
                    const std::string& to) {
  const std::size_t begin = text.find(behind);
  EXPECT_NE(begin, std::string::npos) << behind;
  const std::size_t position = text.find(from, begin);
  EXPECT_NE(position, std::string::npos) << from;
  return text.replace(position, from.size(), to);
}

/// Returns LINE:COLUMN of the place where a text, that of the file, goes on with `what`.
std::string PlaceOf(const std::string& text, const std::string& behind, const std::string& what) {
  const std::size_t position = text.find(what, text.find(behind));
  EXPECT_NE(position, std::string::npos) << what;
  const std::size_t line =
      1 + static_cast<std::size_t>(
              std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(position), '\n'));
  const std::size_t lineBegin = position == 0 ? 0 : text.rfind('\n', position - 1) + 1;
  return std::to_string(line) + ":" + std::to_string(position - lineBegin + 1);
}

const std::string& Trunnion() {
  static const std::string text =
      ToolRun().Shell("cat '" + ExampleMachine("trunnion_ac") + "'").out;
  return text;
}

struct Edit {
  const char* name;
  std::string behind;  ///< the edit is made behind this
  std::string from;
  std::string to;
  std::string blamed;  ///< the text at the place that is blamed, found behind `behind`
  std::string what;
};

void ExpectBlame(const Edit& edit) {
  const ToolRun tool;
  const std::string text = Replace(Trunnion(), edit.behind, edit.from, edit.to);
  const std::string file = tool.Write("machine.xml", text);
  for (const char* command : {"info", "solve"}) {
    const ToolResult result =
        std::string(command) == "info"
            ? tool.Run({"info", file})
            : tool.Run({"solve", file, ExamplePath("cam_groove_radial"), "-o", tool.File("a.csv")});
    EXPECT_EQ(result.status, 2) << edit.name;
    EXPECT_EQ(result.out, "") << edit.name;
    EXPECT_EQ(result.err,
              file + ":" + PlaceOf(text, edit.behind, edit.blamed) + ": " + edit.what + "\n")
        << edit.name;
    EXPECT_EQ(tool.CountFiles(), 1U) << edit.name;
  }
}

// A machine file that can't be read: the message names the line and the column of the first fault.
TEST(MachineFault, ContentIsBlamedByLineAndColumn) {
  const std::string x = "<Name>X</Name>";
  const std::string systems = "<ProgramSystems>";
  const std::string check = "<CollisionCheck>";
  const Edit edits[] = {
      {"a number that is none", x, "<RangeMin>-130.000000", "<RangeMin>abc", "abc",
       "RangeMin is 'abc', a number is needed"},
      {"a number that is empty", x, "<ZeroRef>0.000000</", "<ZeroRef></", "<ZeroRef>",
       "ZeroRef is '', a number is needed"},
      {"a number out of range", x, "<RangeMax>130.000000", "<RangeMax>1e999", "1e999",
       "RangeMax is '1e999', which is out of range"},
      {"a coordinate that is none", x, "Dir X=\"-1.000000", "Dir X=\"west", "west",
       "Dir X is 'west', a number is needed"},
      {"a coordinate of a frame", x, "<W X=\"0.000000", "<W X=\"odd", "odd",
       "W X is 'odd', a number is needed"},
      {"an id that is none", x, "<Id>3", "<Id>three", "three",
       "Id is 'three', a whole number is needed"},
      {"an id that overflows", x, "<Id>3", "<Id>99999999999", "99999999999",
       "Id is '99999999999', which is out of range"},
      {"an id that is too large", x, "<Id>3", "<Id>16777216", "16777216",
       "Id is '16777216', at most 16777215 is possible"},
      {"a register that is too large", x, "<Register>0", "<Register>16777216", "16777216",
       "Register is '16777216', at most 16777215 is possible"},
      {"an unknown type", x, "<Type>AXIS", "<Type>Axis", "Axis",
       "Type is 'Axis', one of AXIS, TABLE, HEAD is needed"},
      {"an unknown mark", x, "<ParallelType>CHAIN", "<ParallelType>", "<ParallelType>",
       "ParallelType is '', one of CHAIN, PARALLEL is needed"},
      {"a truth value in capitals", x, "<Motor>true", "<Motor>True", "True",
       "Motor is 'True', one of true, false is needed"},
      {"a missing name", "<Id>2</Id>", "<Name>X</Name>", "", "<Entity>",
       "<Entity> has no <Name> in it"},
      {"a colour that is none", x, "<RGB>", "<RGB>red", "red118",
       "RGB is 'red11845320', a whole number is needed"},
      {"a table that is none", systems, "<TableIndex>0", "<TableIndex>", "<TableIndex>",
       "TableIndex is '', a whole number is needed"},
      {"a missing attribute", systems, " RegY=\"1\"", "", "<MainLinear",
       "<MainLinear> has no attribute RegY"},
      {"an attribute that is none", systems, "RegR0=\"3\"", "RegR0=\"A\"", "A\"",
       "MainRotary RegR0 is 'A', a whole number is needed"},
      {"a program system without name", systems,
       "ProgramSystemName>TableTable_AC</ProgramSystemName", "Title>TableTable_AC</Title",
       "<ProgramSystem>", "<ProgramSystem> has no <ProgramSystemName> in it"},
      {"an id of a list", check, "<EntityIds>", "<EntityIds>one ", "one ",
       "an id of EntityIds is 'one', a whole number is needed"},
  };
  for (const Edit& edit : edits) {
    ExpectBlame(edit);
  }
}

// XML that is not well-formed is blamed where it breaks.
TEST(MachineFault, SyntaxIsBlamedByLineAndColumn) {
  struct Case {
    const char* name;
    std::string text;
    std::string what;
  };
  std::string deep;
  for (int i = 0; i < 200; ++i) {
    deep += "<a>\n";
  }
  const Case cases[] = {
      {"empty", "", ":1:1: there is no XML element"},
      {"no XML", "x,y,z\n1,2,3\n", ":1:1: there is text outside of the elements"},
      {"another root", "<?xml version=\"1.0\"?>\n  <House/>\n",
       ":2:3: the top element is <House>, that of a machine file is <Machine>"},
      {"no entities", "<Machine>\n</Machine>\n", ":1:1: <Machine> has no <Entities> in it"},
      {"a wrong end tag", "<Machine>\n  <Entities>\n  </Entitys>\n</Machine>\n",
       ":3:3: </Entitys> stands where <Entities> of line 2 must be closed"},
      {"no end", "<Machine>\n  <Entities>\n", ":3:1: <Entities> of line 2 is not closed"},
      {"an end without begin", "\n </Machine>\n", ":2:2: </Machine> closes nothing"},
      {"a tag that is not closed", "<Machine>\n  <Entities\n",
       ":2:3: the file ends within the tag <Entities>"},
      {"an attribute without quotes", "<Machine Version=0>\n</Machine>",
       ":1:10: the value of the attribute Version is not in quotes"},
      {"an attribute without value", "<Machine Version>\n</Machine>",
       ":1:10: the attribute Version has no value"},
      {"a comment without end", "<Machine>\n<!-- \n", ":2:1: the comment is not closed"},
      {"a lone bracket", "<Machine>\n a < b\n</Machine>\n",
       ":2:4: '<' is not followed by the name of an element"},
      {"columns are characters", "<Machine><!-- \xC3\xA9\xE2\x82\xAC --></Machina>",
       ":1:21: </Machina> stands where <Machine> of line 1 must be closed"},
      {"a NUL byte", std::string("<Machine>\n <\0/Machine>\n", 22), ":2:3: a NUL byte"},
      {"nested too deep", deep, ":101:1: elements are nested more than 100 deep"},
  };
  for (const Case& c : cases) {
    const ToolRun tool;
    const std::string file = tool.Write("machine.xml", c.text);
    const ToolResult result = tool.Run({"info", file});
    EXPECT_EQ(result.status, 2) << c.name;
    EXPECT_EQ(result.out, "") << c.name;
    EXPECT_THAT(result.err, StartsWith(file + c.what)) << c.name;
    EXPECT_EQ(Lines(result.err).size(), 1U) << c.name;
  }
}

// A file cut anywhere is never read as a whole one, and never crashes the program.
TEST(MachineFault, CutFileIsRefused) {
  const ToolRun tool;
  for (std::size_t length = 0; length + 12 < Trunnion().size(); length += 397) {
    const std::string file = tool.Write("machine.xml", Trunnion().substr(0, length));
    const ToolResult result = tool.Run({"info", file});
    EXPECT_EQ(result.status, 2) << length;
    EXPECT_THAT(result.err, StartsWith(file + ":")) << length;
  }
}

// What the reader makes do with is no fault: a link that is incomplete.
TEST(MachineFault, IncompleteLinkIsNoFault) {
  const ToolRun tool;
  const std::string file = tool.Write(
      "machine.xml", Replace(Trunnion(), "<Name>X</Name>", "RangeMin>-130.000000</RangeMin",
                             "Other>-130.000000</Other"));
  EXPECT_EQ(tool.Run({"info", file}).status, 0);
}

// A machine with a register far away is valid, but no table of axis values has so many columns.
TEST(MachineFault, TooManyRegistersAreRefused) {
  const ToolRun tool;
  const std::string file = tool.Write(
      "machine.xml", Replace(Trunnion(), "<Name>X</Name>", "<Register>0", "<Register>1000000"));
  EXPECT_EQ(tool.Run({"info", file}).status, 0);
  const ToolResult result =
      tool.Run({"solve", file, ExamplePath("cam_groove_radial"), "-o", tool.File("a.csv")});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, file +
                            ": the machine has 1000001 registers; a table of at most 4096 columns "
                            "can be written\n");
}

// Files that can't be opened are named, with the reason.
TEST(MachineFault, MissingFilesAreNamed) {
  const ToolRun tool;
  const std::string missing = tool.File("missing.xml");
  EXPECT_EQ(tool.Run({"info", missing}).status, 2);
  EXPECT_EQ(tool.Run({"info", missing}).err,
            missing + ": can't be opened: No such file or directory\n");
  const std::string folder = tool.Folder().Path().string();
  EXPECT_EQ(tool.Run({"info", folder}).status, 2);
  EXPECT_EQ(tool.Run({"info", folder}).err, folder + ": is a folder, not a file\n");
}

// A name with characters beyond ASCII names its file; one that is no UTF-8 is refused.
TEST(MachineFault, NamesMayHaveAllCharacters) {
  const ToolRun tool;
  std::filesystem::copy_file(ExampleMachine("trunnion_ac"),
                             tool.Folder().File("\xC3\xA9\xE2\x82\xAC \xF0\x9F\x94\xA7.xml"));
  EXPECT_EQ(tool.Run({"info", tool.File("\xC3\xA9\xE2\x82\xAC \xF0\x9F\x94\xA7.xml")}).status, 0);
  tool.Shell("cp '" + ExampleMachine("trunnion_ac") + "' \"$(printf '\\377.xml')\"");
  const ToolResult result = tool.Shell("\"$ORVO\" info \"$(printf '\\377.xml')\"");
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("the name of a machine file must be UTF-8"));
}

}  // namespace
}  // namespace Orvo::Testing
