#include "support/Sanitizers.h"
#include "tools/ToolRun.h"

#include <Orvo/Kin/Machine.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

/// A sound machine file with three linear axes and two rotary ones, one thing a line.
const std::string& Sound() {
  static const std::string text = ToolRun().Run({"new", "trunnion-ac"}).out;
  return text;
}

/// Replaces the first occurrence of a text behind another one.
std::string Replace(std::string text, const std::string& behind, const std::string& from,
                    const std::string& to) {
  const std::size_t begin = text.find(behind);
  EXPECT_NE(begin, std::string::npos) << behind;
  const std::size_t position = text.find(from, begin);
  EXPECT_NE(position, std::string::npos) << from;
  return text.replace(position, from.size(), to);
}

/// Returns the line of a text in another one, from 1.
std::size_t LineOf(const std::string& text, const std::string& behind, const std::string& what) {
  const std::size_t begin = text.find(behind);
  const std::size_t position = text.find(what, begin == std::string::npos ? 0 : begin);
  EXPECT_NE(position, std::string::npos) << what;
  std::size_t line = 1;
  for (std::size_t i = 0; i < std::min(position, text.size()); ++i) {
    line += text[i] == '\n' ? 1U : 0U;
  }
  return line;
}

json Findings(const ToolRun& tool, const std::string& text) {
  const std::string file = tool.Write("machine.xml", text);
  const ToolResult result = tool.Run({"validate", "--format", "json", file});
  EXPECT_EQ(result.err, "");
  return json::parse(result.out);
}

// One edit of a sound file: its finding, where it is, and nothing else.
TEST(Validate, EachFaultHasItsCodeAndItsLine) {
  struct Case {
    const char* name;
    std::string behind;
    std::string from;
    std::string to;
    std::vector<std::string> codes;
    std::string blamed;  ///< a text on the line that is blamed, found behind `behind`; or nothing
    int status;
  };
  const std::string x = "<Name>X</Name>";
  const std::string a = "<Name>A</Name>";
  const std::string c = "<Name>C</Name>";
  const Case cases[] = {
      {"an id twice", x, "<Id>5", "<Id>4", {"V201"}, "<Id>4", 3},
      {"a negative id", "<Name>Spindle", "<Id>3", "<Id>-3", {"V202"}, "<Id>-3", 3},
      {"a register twice", c, "<Register>4", "<Register>3", {"V203", "V303"}, "<Register>3", 3},
      {"no register", c, "<Register>4", "<Register>-1", {"V204", "V303"}, "<Register>-1", 3},
      {"a register of what stands still",
       "<Name>Base</Name>",
       "<Register>-1",
       "<Register>5",
       {"V205"},
       "<Register>5",
       0},
      {"a parent that isn't there",
       "<Name>Z</Name>",
       "<ParentId>1",
       "<ParentId>77",
       {"V207", "V311"},
       "<ParentId>77",
       3},
      {"its own parent", x, "<ParentId>4", "<ParentId>5", {"V206"}, "<ParentId>5", 3},
      {"a null direction", x, "Dir X=\"-1\"", "Dir X=\"0\"", {"V209"}, "<Dir", 3},
      {"a long direction", x, "Dir X=\"-1\"", "Dir X=\"-2\"", {"V210"}, "<Dir", 0},
      {"a frame that is not rigid",
       "<Name>Table</Name>",
       "<U X=\"1\"",
       "<U X=\"1.01\"",
       {"V211"},
       "<Position>",
       3},
      {"a frame that mirrors",
       "<Name>Table</Name>",
       "<U X=\"1\"",
       "<U X=\"-1\"",
       {"V211"},
       "<Position>",
       3},
      {"a reversed range", x, "<RangeMin>-400", "<RangeMin>401", {"V212"}, "<RangeMin>", 3},
      {"a link that can't be computed", x, "LINEAR", "XYZABC", {"V213"}, "<Type>XYZABC", 3},
      {"no name", x, "<Name>X</Name>", "<Name></Name>", {"V214"}, "<Entity>", 0},
      {"a name twice", x, "<Name>X</Name>", "<Name>Y</Name>", {"V215"}, "", 0},
      {"no head", "<Name>Spindle", "<Type>HEAD", "<Type>AXIS", {"V216", "V301"}, "", 3},
      {"no table", "<Name>Table", "<Type>TABLE", "<Type>AXIS", {"V217", "V302"}, "", 3},
      {"a register far away", c, "<Register>4", "<Register>5000", {"V219", "V303"}, "", 3},
      {"a part that is missing", x, "<Motor>true</Motor>", "", {"V103"}, "", 3},
      {"no number", x, "<RangeMax>400", "<RangeMax>wide", {"V104"}, "<RangeMax>wide", 3},
      {"an unknown word", x, "<Type>AXIS", "<Type>axis", {"V105"}, "<Type>axis", 3},
      {"blanks around a word", x, "<Motor>true", "<Motor> true", {"V105"}, "<Motor> true", 3},
      {"an id too large", "<Name>Table", "<Id>8", "<Id>16777216", {"V106"}, "<Id>16777216", 3},
      {"more than a number", x, "<RangeMax>400", "<RangeMax>400 mm", {"V107"}, "400 mm", 0},
      {"an unknown element", x, "<Motor>", "<Color>red</Color><Motor>", {"V108"}, "<Color>", 0},
      {"an unknown attribute", x, "<Motor>", "<Motor is=\"x\">", {"V109"}, "<Motor is", 0},
      {"an element twice", x, "<Motor>", "<Id>9</Id><Motor>", {"V110"}, "<Id>9", 0},
      {"a link that is not whole", x, "<ZeroRef>0</ZeroRef>", "", {"V111"}, "", 3},
      {"infinity", x, "<RangeMax>400", "<RangeMax>inf", {"V112"}, "<RangeMax>inf", 3},
      {"bytes that are no UTF-8", x, "<Name>X", "<Name>\xFF", {"V113"}, "<Name>\xFF", 0},
      {"no such head", "<Program", "<HeadIndex>0", "<HeadIndex>1", {"V301"}, "<HeadIndex>", 3},
      {"no such table", "<Program", "<TableIndex>0", "<TableIndex>-1", {"V302"}, "<TableIn", 3},
      {"no such axis", "<Program", "RegR1=\"4\"", "RegR1=\"9\"", {"V303"}, "<MainRotary", 3},
      {"a rotary axis as a linear one",
       "<Program",
       "RegZ=\"2\"",
       "RegZ=\"4\"",
       {"V304", "V305"},
       "<MainLinear",
       3},
      {"an axis twice", "<Program", "RegY=\"1\"", "RegY=\"0\"", {"V305"}, "<MainLinear", 3},
      {"an axis that is not named",
       "<Program",
       "RegY=\"1\"",
       "RegY=\"-1\"",
       {"V306"},
       "<MainLinear",
       3},
      {"oblique axes", x, "Dir X=\"-1\" Y=\"0\"", "Dir X=\"-0.8\" Y=\"0.6\"", {"V308"}, "", 0},
      {"a plane of axes", x, "Dir X=\"-1\" Y=\"0\"", "Dir X=\"0\" Y=\"1\"", {"V309"}, "", 3},
      {"parallel rotary axes",
       a,
       "Dir X=\"-1\" Y=\"0\" Z=\"0\"",
       "Dir X=\"0\" Y=\"0\" Z=\"1\"",
       {"V310"},
       "",
       0},
  };
  for (const Case& c1 : cases) {
    SCOPED_TRACE(c1.name);
    const ToolRun tool;
    const std::string text = Replace(Sound(), c1.behind, c1.from, c1.to);
    const json report = Findings(tool, text);
    std::set<std::string> codes;
    std::set<std::size_t> lines;
    for (const json& finding : report["findings"]) {
      codes.insert(finding["code"].get<std::string>());
      if (finding["code"] == c1.codes[0] && finding["line"].is_number()) {
        lines.insert(finding["line"].get<std::size_t>());
      }
      EXPECT_FALSE(finding["text"].get<std::string>().empty());
      EXPECT_FALSE(finding["name"].get<std::string>().empty());
    }
    for (const std::string& code : c1.codes) {
      EXPECT_EQ(codes.count(code), 1U) << code << "\n" << report.dump(1);
    }
    if (c1.status == 0) {
      EXPECT_EQ(codes.size(), c1.codes.size()) << report.dump(1);
    }
    if (!c1.blamed.empty()) {
      const std::string behind = c1.behind == c1.from ? std::string("<Name>Y</Name>") : c1.behind;
      EXPECT_THAT(lines, ElementsAre(LineOf(text, behind, c1.blamed))) << report.dump(1);
    }
    EXPECT_EQ(report["valid"].get<bool>(), c1.status == 0);
    EXPECT_EQ(tool.Run({"validate", tool.File("machine.xml")}).status, c1.status);
  }
}

// Warnings alone are good, unless they are not to be.
TEST(Validate, StrictTakesWarningsForErrors) {
  const ToolRun tool;
  const std::string file = tool.Write(
      "machine.xml", Replace(Sound(), "<Name>X", "<Motor>", "<Color>red</Color><Motor>"));
  EXPECT_EQ(tool.Run({"validate", file}).status, 0);
  EXPECT_EQ(tool.Run({"validate", "--strict", file}).status, 3);
  const std::string sound = tool.Write("sound.xml", Sound());
  EXPECT_EQ(tool.Run({"validate", "--strict", sound}).status, 0);
  EXPECT_EQ(tool.Run({"validate", sound}).out, sound + ": nothing is wrong\n");
}

// What is no machine file at all has its own status.
TEST(Validate, WhatIsNoMachineFileIsUnreadable) {
  struct Case {
    std::string text;
    std::string what;
  };
  for (const Case& c :
       {Case{"", ":1:1: error V101 not-well-formed: there is no XML element"},
        Case{"<Machine>\n<Entities>", ":2:11: error V101 not-well-formed"},
        Case{"hello", ":1:1: error V101 not-well-formed"},
        Case{"<robot/>", ":1:1: error V102 no-machine: the top element is <robot>"}}) {
    const ToolRun tool;
    const std::string file = tool.Write("machine.xml", c.text);
    const ToolResult result = tool.Run({"validate", file});
    EXPECT_EQ(result.status, 2) << c.text;
    EXPECT_THAT(result.out, HasSubstr(file + c.what));
    EXPECT_THAT(result.out, HasSubstr(": 1 error, 0 warnings\n"));
  }
  const ToolRun tool;
  EXPECT_EQ(tool.Run({"validate", tool.File("missing.xml")}).status, 2);
  EXPECT_EQ(tool.Run({"validate", tool.Folder().Path().string()}).status, 2);
}

// All that makes a file not well-formed is told with its place: a warning where the file is read
// all the same, an error where it isn't. Nothing that the library refuses goes without a place.
TEST(Validate, WhatIsNotWellFormedHasItsPlace) {
  struct Case {
    const char* name;
    std::string behind;
    std::string from;
    std::string to;
    std::string code;
    std::string blamed;  ///< the text at the place
    std::string what;
    int status;
  };
  const std::string y = "<Name>Y</Name>";
  const std::string system = "<ProgramSystems>";
  const std::string x = "RegX=\"0\"";
  const std::string head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  const std::string whole = "<Machine";
  const std::string end = "</Machine>\n";
  const Case cases[] = {
      {"a bare ampersand", y, y, "<Name>Y & Z</Name>", "V114", "& Z", "'&' begins no reference", 0},
      {"a reference without end", y, y, "<Name>&#65</Name>", "V114", "&#65", "no reference", 0},
      {"an unknown entity", y, y, "<Name>&foo;</Name>", "V114", "&foo;", "'&foo;' is not known", 0},
      {"a character that is none", y, y, "<Name>a&#0;</Name>", "V114", "&#0;", "no character", 0},
      {"half a character", y, y, "<Name>&#xD800;</Name>", "V114", "&#xD800;", "no character", 0},
      {"beyond all characters", y, y, "<Name>&#x110000;</Name>", "V114", "&#x", "no character", 0},
      {"a reference with letters", y, y, "<Name>&#6a;</Name>", "V114", "&#6a;", "no reference", 0},
      {"an entity in an attribute", y, y, "<Name a='1&b;'>Y</Name>", "V114", "&b;", "'&b;'", 0},
      {"a bracket in an attribute", y, y, "<Name a='1<'>Y</Name>", "V114", "<'>", "'<' in the", 0},
      {"no blank", system, x + " ", x, "V114", "RegY", "no blank before the attribute RegY", 0},
      {"a control character", y, y, "<Name>Y\x01\x02</Name>", "V114", "\x01", "U+0001", 0},
      {"no character of Unicode", y, y, "<Name>Y\xEF\xBF\xBE</Name>", "V114", "\xEF", "U+FFFE", 0},
      {"a form feed as a blank", y, y, "<Name\f>Y</Name>", "V114", "\f", "U+000C", 0},
      {"the end of CDATA", y, y, "<Name>Y]]></Name>", "V114", "]]>", "']]>' ends no CDATA", 0},
      {"dashes in a comment", y, y, "<!-- a -- b -->" + y, "V114", "-- b", "'--' within", 0},
      {"a comment of three dashes", y, y, "<!-- a --->" + y, "V114", "--->", "'--' within", 0},
      {"a second top element", end, end, end + "<Machine/>", "V114", "<Machine/>", "a second", 0},
      {"an end tag too many", end, end, end + "</X>", "V114", "</X>", "</X> closes nothing", 0},
      {"text in front", whole, whole, "text " + whole, "V114", "text", "text outside", 0},
      {"attributes of an end", y, y, "<Name>Y</Name a='1'>", "V114", "</Name a", "has attr", 0},
      {"a blank behind a bracket", y, y, "< Name>Y</Name>", "V114", "< Name", "by a blank", 0},
      {"a DOCTYPE that is not closed", whole, whole, "<!DOCTYPE a [ b>\n" + whole, "V114",
       "<!DOCTYPE", "not closed as it must be", 0},
      {"slashes at both ends", "<CollisionCheck", "<CollisionCheck", "</CollisionCheck", "V114",
       "</Coll", "at both ends", 0},
      {"a DOCTYPE within", y, y, y + "<!DOCTYPE a>", "V114", "<!DOCTYPE", "must stand once", 0},
      {"an unknown declaration", y, y, y + "<!WHAT a>", "V114", "<!WHAT", "begins neither", 0},
      {"a declaration in line 2", head, head, "\n" + head, "V114", "<?xml", "the first thing", 0},
      {"a declaration without version", head, head, "<?xml encoding='UTF-8'?>\n", "V114", "<?xml",
       "must begin with the version", 0},
      {"XML of tomorrow", head, head, "<?xml version='2.0'?>\n", "V114", "<?xml", "'2.0'", 0},
      {"more than a declaration", head, head, "<?xml version='1.0' a='b'?>\n", "V114", "<?xml",
       "more than version", 0},
      {"another encoding", head, head, "<?xml version='1.0' encoding='ISO-8859-1'?>\n", "V113",
       "<?xml", "the encoding ISO-8859-1 is passed over", 0},
      {"an attribute twice", system, x, x + " RegX=\"1\"", "V101", "RegX=\"1\"", "is there twice",
       2},
      {"a declaration within", y, y, y + head, "V101", "<?xml", "the first thing", 2},
      {"an instruction within", y, y, y + "<?a b?>", "V901", "<?a", "before all else only", 2},
      {"an instruction at the end", end, end, end + "<?a?>", "V901", "<?a", "before all else", 2},
      {"text at the end", end, end, end + "text", "V101", "text", "text outside", 2},
      {"no quotes", y, y, "<Name a=1>Y</Name>", "V101", "a=1", "not in quotes", 2},
      {"a DOCTYPE with an inner part that isn't understood", whole, whole,
       "<!DOCTYPE a [<!ENTITY b '<c>d</c>'>]>\n" + whole, "V901", "<!DOCTYPE", "an inner part", 2},
  };
  const ToolRun tool;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string text = Replace(Sound(), c.behind, c.from, c.to);
    const std::size_t place = text.find(c.blamed, text.find(c.to));
    ASSERT_NE(place, std::string::npos);
    const std::size_t lineBegin = place == 0 ? 0 : text.rfind('\n', place - 1) + 1;
    const std::string file = tool.Write("machine.xml", text);
    const ToolResult result = tool.Run({"validate", "--format", "json", file});
    EXPECT_EQ(result.status, c.status) << result.out;
    EXPECT_EQ(tool.Run({"info", file}).status, c.status);
    bool isFound = false;
    const json report = json::parse(result.out);
    for (const json& finding : report["findings"]) {
      if (finding["code"] != c.code ||
          finding["text"].get<std::string>().find(c.what) == std::string::npos) {
        continue;
      }
      isFound = true;
      EXPECT_EQ(finding["line"].get<std::size_t>(),
                static_cast<std::size_t>(
                    1 + std::count(text.begin(),
                                   text.begin() + static_cast<std::ptrdiff_t>(lineBegin), '\n')));
      EXPECT_EQ(finding["column"].get<std::size_t>(), place - lineBegin + 1);
    }
    EXPECT_TRUE(isFound) << result.out;
  }
}

// What is well-formed and read is not blamed, whatever it looks like.
TEST(Validate, WhatIsWellFormedIsNotBlamed) {
  const ToolRun tool;
  const std::string head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  for (const std::string& begin :
       {std::string(), std::string("\xEF\xBB\xBF") + head,
        std::string("<?xml version = '1.1' encoding = 'utf-8' standalone='yes' ?>\n"),
        head + "<?style a='<'?>\n<!-- a - b -->\n", head + "<!DOCTYPE Machine>\n",
        head + "<!DOCTYPE Machine PUBLIC '-//a' \"b\">\n",
        head + "<!DOCTYPE a [<!ENTITY b \"b\"><!ENTITY c \"&b;\">\n<!-- ]> -->\n]>\n"}) {
    const std::string file = tool.Write("machine.xml", begin + Sound().substr(head.size()));
    EXPECT_EQ(tool.Run({"validate", file}).out, file + ": nothing is wrong\n") << begin;
  }
  for (const char* name : {"&lt;&gt;&amp;&quot;&apos;", "&#65;&#x42;&#x10FFFF;", "<![CDATA[& < ]]>",
                           "Y > Z", "\x7F", "\xC3\xA9"}) {
    const std::string file = tool.Write("machine.xml", Replace(Sound(), "<Name>Y", "Y", name));
    EXPECT_EQ(tool.Run({"validate", file}).out, file + ": nothing is wrong\n") << name;
  }
}

// A file that ends too early is told to end there.
TEST(Validate, CutFilesAreToldToEnd) {
  const ToolRun tool;
  const std::string& sound = Sound();
  const std::size_t begin = sound.find("RegZ=\"2");
  struct Case {
    std::size_t size;
    const char* what;
  };
  for (const Case& c :
       {Case{begin + 7, "the file ends within the value of the attribute RegZ"},
        Case{begin + 5, "the file ends within the attribute RegZ"},
        Case{begin + 3, "the file ends within the attribute Reg"},
        Case{begin, "the file ends within the tag <MainLinear>"},
        Case{sound.rfind("</Machine") + 2, "the file ends within an end tag"},
        Case{sound.rfind("</Machine") + 9, "ends within the end tag </Machine>"},
        Case{sound.rfind("</Machine") + 1, "the file ends behind '<'"},
        Case{sound.rfind("</Machine"), "is not closed before the end of the file"}}) {
    const ToolResult result =
        tool.Run({"validate", tool.Write("machine.xml", sound.substr(0, c.size))});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.out, HasSubstr(c.what));
  }
}

// All that is wrong is told at once, in the order of the file, a line each in JSON Lines.
TEST(Validate, AllIsToldAtOnce) {
  const ToolRun tool;
  std::string text = Replace(Sound(), "<Name>X", "<RangeMax>400", "<RangeMax>wide");
  text = Replace(text, "<Name>A", "<Type>AXIS", "<Type>AXLE");
  text = Replace(text, "<Program", "RegY=\"1\"", "RegY=\"x\"");
  const std::string file = tool.Write("machine.xml", text);
  const ToolResult result = tool.Run({"validate", "--format", "jsonl", file});
  EXPECT_EQ(result.status, 3);
  std::vector<std::string> codes;
  std::size_t last = 0;
  for (const std::string& line : Lines(result.out)) {
    const json finding = json::parse(line);
    codes.push_back(finding["code"]);
    EXPECT_GE(finding["line"].get<std::size_t>(), last);
    last = finding["line"].get<std::size_t>();
  }
  EXPECT_THAT(codes, ElementsAre("V104", "V105", "V104"));
}

// A cycle is told once, with its members; what hangs on it is not blamed for it.
TEST(Validate, CycleIsToldOnce) {
  const ToolRun tool;
  const std::string text = Replace(Sound(), "<Name>Y", "<ParentId>1", "<ParentId>6");
  const json report = Findings(tool, text);
  std::size_t cycles = 0;
  for (const json& finding : report["findings"]) {
    if (finding["code"] == "V206") {
      ++cycles;
      EXPECT_THAT(finding["text"].get<std::string>(),
                  HasSubstr("Y (id 4) -> A (id 6) -> X (id 5) -> Y (id 4)"));
    }
  }
  EXPECT_EQ(cycles, 1U);
}

// Mesh files are looked for beside the machine file, and held against their size.
TEST(Validate, MeshFilesAreLookedFor) {
  const ToolRun tool;
  const std::string text =
      Replace(Sound(), "<Name>X", "</EntityLink>",
              "</EntityLink><Meshes><Mesh><RGB>1</RGB></Mesh><Mesh><RGB>2</RGB></Mesh></Meshes>");
  json report = Findings(tool, text);
  ASSERT_EQ(report["findings"].size(), 2U);
  EXPECT_EQ(report["findings"][0]["code"], "V402");
  EXPECT_THAT(report["findings"][0]["text"].get<std::string>(), HasSubstr("machine_5_0.stl"));
  std::string mesh(84, '\0');
  mesh[80] = 1;
  tool.Write("machine_5_0.stl", mesh + std::string(50, '\0'));
  tool.Write("machine_5_1.stl", mesh + std::string(49, '\0'));
  report = Findings(tool, text);
  ASSERT_EQ(report["findings"].size(), 1U);
  EXPECT_EQ(report["findings"][0]["code"], "V403");
  EXPECT_THAT(report["findings"][0]["text"].get<std::string>(),
              HasSubstr("has 133 bytes; its 1 triangles need 134"));
  EXPECT_EQ(tool.Shell("\"$ORVO\" validate --strict - < machine.xml").status, 0)
      << "nobody knows where those of the standard input are";
}

// A machine in JSON is judged as well; what its reader refuses has a place.
TEST(Validate, MachinesInJsonAreJudged) {
  const ToolRun tool;
  tool.Write("machine.xml", Sound());
  ASSERT_EQ(tool.Shell("\"$ORVO\" convert machine.xml machine.json").status, 0);
  EXPECT_EQ(tool.Run({"validate", "--strict", tool.File("machine.json")}).status, 0);
  EXPECT_EQ(tool.Shell("\"$ORVO\" ik machine.json 1,2,50 0,0,1 --format json | tail -n +3").out,
            tool.Shell("\"$ORVO\" ik machine.xml 1,2,50 0,0,1 --format json | tail -n +3").out);
  tool.Write("faulty.xml", Replace(Sound(), "<Name>X", "<RangeMin>-400", "<RangeMin>401"));
  ASSERT_EQ(tool.Shell("\"$ORVO\" convert faulty.xml faulty.json").status, 0);
  const ToolResult faulty = tool.Run({"validate", tool.File("faulty.json")});
  EXPECT_EQ(faulty.status, 3);
  EXPECT_THAT(faulty.out, HasSubstr("error V212 range-reversed: X (id 5)"));
}

// The findings about a machine in JSON are those of its machine file, at the lines of the JSON.
TEST(Validate, FindingsInJsonHaveTheirPlaces) {
  const std::string text = ToolRun()
                               .Shell(
                                   "$ORVO new trunnion-ac | $ORVO convert - - --from xml "
                                   "--to json")
                               .out;
  struct Case {
    const char* behind;
    const char* from;
    const char* to;
    const char* code;
    const char* at;  ///< what stands at the place, behind `behind`; nothing for the file as a whole
  };
  const Case cases[] = {
      {"\"name\": \"X\"", "\"id\": 5", "\"id\": 4", "V201", "4,"},
      {"\"name\": \"X\"", "\"id\": 5", "\"id\": -5", "V202", "-5,"},
      {"\"name\": \"X\"", "\"register\": 0", "\"register\": 1", "V203", "1,"},
      {"\"name\": \"X\"", "\"register\": 0", "\"register\": -1", "V204", "-1,"},
      {"\"name\": \"X\"", "\"parentId\": 4", "\"parentId\": 99", "V207", "99,"},
      {"\"name\": \"X\"", "\"dir\": [-1", "\"dir\": [-2", "V210", "[-2"},
      {"\"name\": \"X\"", "\"dir\": [-1", "\"dir\": [0", "V209", "[0"},
      {"\"name\": \"X\"", "\"rangeMin\": -400", "\"rangeMin\": 401", "V212", "401,"},
      {"\"name\": \"X\"", "\"rangeMin\": -400", "\"rangeMin\": \"NaN\"", "V112", "\"NaN\""},
      {"\"name\": \"X\"", "LINEAR", "XYZIJK", "V213", "\"XYZIJK\""},
      {"\"type\": \"HEAD\"", "\"u\": [1", "\"u\": [2", "V211", "{"},
      {"\"type\": \"HEAD\"", "HEAD", "AXIS", "V216", nullptr},
      {"\"programSystems\"", "\"head\": 0", "\"head\": 3", "V301", "3,"},
      {"\"programSystems\"", "[0, 1, 2]", "[0, 1, 9]", "V303", "9]"},
      {"\"programSystems\"", "[3, 4]", "[3, 3]", "V305", "3]"},
      {"\"collisionCheck\"", "\"stock\": []", "\"stock\": [77]", "V401", "77"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.code) + " " + c.to);
    const ToolRun tool;
    const std::string changed = Replace(text, c.behind, c.from, c.to);
    const std::string file = tool.Write("machine.json", changed);
    const json report = json::parse(tool.Run({"validate", "--format", "json", file}).out);
    json found;
    for (const json& finding : report["findings"]) {
      found = found.is_null() && finding["code"] == c.code ? finding : found;
    }
    ASSERT_FALSE(found.is_null()) << report.dump(2);
    if (c.at == nullptr) {
      EXPECT_TRUE(found["line"].is_null());
      continue;
    }
    const std::vector<std::string> lines = Lines(changed);
    ASSERT_TRUE(found["line"].is_number()) << found;
    const std::string& line = lines[found["line"].get<std::size_t>() - 1];
    EXPECT_EQ(line.substr(found["column"].get<std::size_t>() - 1, std::string(c.at).size()), c.at);
  }
}

// Messages that name a line mean one of the JSON file.
TEST(Validate, LinesInMessagesAreThoseOfTheJson) {
  const ToolRun tool;
  tool.Write("m.xml", Sound());
  ASSERT_EQ(tool.Shell("\"$ORVO\" convert m.xml m.json").status, 0);
  const std::string text =
      Replace(tool.Folder().Read("m.json"), "\"name\": \"X\"", "\"id\": 5", "\"id\": 4");
  const ToolResult result = tool.Run({"validate", tool.Write("m.json", text)});
  const std::size_t name = LineOf(text, "", "\"name\": \"Y\"");
  EXPECT_THAT(result.out, HasSubstr("the id 4 is that of Y (id 4) in line " +
                                    std::to_string(name - 1) + " too"));
}

// Mesh files are looked for where the JSON says.
TEST(Validate, MeshFilesOfJsonAreLookedFor) {
  const ToolRun tool;
  ASSERT_EQ(tool.Run({"convert", ExampleMachine("trunnion_ac"), tool.File("m.json")}).status, 0);
  EXPECT_EQ(tool.Run({"validate", "--strict", tool.File("m.json")}).status, 0);
  std::filesystem::remove(tool.Folder().File("m_1_0.stl"));
  tool.Write("m_2_0.stl", "short");
  const ToolResult result = tool.Run({"validate", "--strict", tool.File("m.json")});
  EXPECT_EQ(result.status, 3);
  const std::string line = std::to_string(LineOf(tool.Folder().Read("m.json"), "", "m_1_0.stl"));
  EXPECT_THAT(result.out, HasSubstr("m.json:" + line + ":"));
  EXPECT_THAT(result.out, HasSubstr("warning V402 mesh-file-missing: "));
  EXPECT_THAT(result.out, HasSubstr("m_1_0.stl is missing\n"));
  EXPECT_THAT(result.out, HasSubstr("warning V403 mesh-file-faulty: "));
  EXPECT_THAT(result.out, HasSubstr("0 errors, 2 warnings\n"));
  ASSERT_EQ(
      tool.Run({"convert", tool.File("m.json"), tool.File("bare.json"), "--no-meshes"}).status, 0);
  EXPECT_EQ(tool.Run({"validate", "--strict", tool.File("bare.json")}).status, 0)
      << "a mesh that names no file misses none";
}

// JSON that can't be read is judged in the form that was asked for.
TEST(Validate, UnreadableJsonIsAFindingToo) {
  struct Case {
    const char* text;
    const char* code;
    int line;
    int column;
  };
  for (const Case& c : {Case{"{\n oops }", "V101", 2, 2}, Case{"", "V101", 1, 1},
                        Case{"\n {}", "V901", 2, 2}, Case{"{\"format\":\n1}", "V901", 2, 1}}) {
    SCOPED_TRACE(c.text);
    const ToolRun tool;
    const std::string file = tool.Write("broken.JSON", c.text);
    const std::string place =
        "broken.JSON:" + std::to_string(c.line) + ":" + std::to_string(c.column);
    const ToolResult plain = tool.Run({"validate", file});
    EXPECT_EQ(plain.status, 2);
    EXPECT_THAT(plain.out, HasSubstr(place + ": error " + c.code + " "));
    const ToolResult document = tool.Run({"validate", "--format", "json", file});
    EXPECT_EQ(document.status, 2);
    const json report = json::parse(document.out);
    EXPECT_EQ(report["valid"], false);
    ASSERT_EQ(report["findings"].size(), 1U);
    EXPECT_EQ(report["findings"][0]["code"], c.code);
    EXPECT_EQ(report["findings"][0]["line"], c.line);
    EXPECT_EQ(report["findings"][0]["column"], c.column);
    const ToolResult lines = tool.Run({"validate", "--format", "jsonl", file});
    EXPECT_EQ(lines.status, 2);
    EXPECT_EQ(json::parse(lines.out), report["findings"][0]);
    EXPECT_EQ(lines.err.empty(), std::string(c.code) == "V101");
  }
}

// The machines that come with the project are sound.
TEST(Validate, ExamplesAreSound) {
  const ToolRun tool;
  for (const char* name : {"trunnion_ac", "head_table_bc", "gantry_head_head_ca", "millturn_2h2t",
                           "nutating_head_bc"}) {
    EXPECT_EQ(tool.Run({"validate", ExampleMachine(name)}).status, 0) << name;
  }
}

// What the library refuses, validation refuses: cut files, and files with any byte changed.
TEST(Validate, IsNoMilderThanTheLibrary) {
  const ToolRun tool;
  const std::string& text = Sound();
  std::size_t refused = 0;
  for (std::size_t place = 40; place < text.size(); place += 211) {
    std::string changed = text;
    changed[place] = changed[place] == '1' ? 'q' : '1';
    const std::string file = tool.Write("machine.xml", changed);
    const int info = tool.Run({"info", file}).status;
    const int validate = tool.Run({"validate", file}).status;
    refused += info != 0 ? 1U : 0U;
    if (info != 0) {
      EXPECT_NE(validate, 0) << changed.substr(place - 20, 40);
    }
  }
  EXPECT_GT(refused, 10U);
}

// Hostile files end in a report, in time and memory that the file's size bounds.
TEST(Validate, HostileFilesEnd) {
  const ToolRun tool;
  const std::string head = "<Machine><Entities>";
  std::string chain = head;
  const std::string& sound = Sound();
  const std::size_t begin = sound.find("        <Entity>");
  const std::string entity = sound.substr(begin, sound.find("</Entity>") + 9 - begin);
  for (int i = 0; i < 20000; ++i) {
    std::string next = Replace(entity, "<Entity>", "<Id>1<", "<Id>" + std::to_string(i) + "<");
    chain +=
        Replace(next, "<Entity>", "<ParentId>-1", "<ParentId>" + std::to_string((i + 1) % 20000));
  }
  std::string unknown = head;
  for (int i = 0; i < 200000; ++i) {
    unknown += "<a/>";
  }
  std::string attributes = "<Machine";
  for (int i = 0; i < 2000; ++i) {
    attributes += " a" + std::to_string(i) + "='1'";
  }
  std::string deep;
  for (int i = 0; i < 100000; ++i) {
    deep += "<a>";
  }
  struct Case {
    const char* name;
    std::string text;
    int status;
    std::string what;
  };
  const std::string tail = "</Entities></Machine>";
  for (const Case& c :
       {Case{"a cycle of 20000", chain + tail, 3, "(20000 in all)"},
        Case{"200000 unknown elements", unknown + tail, 3, "more are not shown"},
        Case{"2000 attributes", attributes + "/>", 2, "more than 1000 attributes"},
        Case{"no end of depth", deep, 2, "nested more than 100 deep"},
        Case{"a reference without end", head + "&#x;&;" + tail, 3, "three are needed"},
        Case{"names that steer a terminal", Replace(sound, "<Name>X", "<Name>X", "<Name>\x1b[2J"),
             0, "the character U+001B"}}) {
    const std::string file = tool.Write("machine.xml", c.text);
    const ToolResult result = tool.Run({"validate", file});
    EXPECT_EQ(result.status, c.status) << c.name;
    EXPECT_THAT(result.out, HasSubstr(c.what)) << c.name;
    EXPECT_EQ(result.out.find('\x1b'), std::string::npos) << c.name;
#if !defined(ORVO_TEST_HAS_ALLOCATOR_OF_ITS_OWN)
    EXPECT_LT(result.peakKilobytes, 400000) << c.name;
#endif
  }
}

}  // namespace
}  // namespace Orvo::Testing
