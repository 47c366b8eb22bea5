#include "support/TemporaryFolder.h"

#include <Orvo/Path/ReadError.h>
#include <Orvo/Path/Readers.h>
#include <Orvo/Path/ToolPath.h>

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace Orvo::Path {
namespace {

enum class Kind { Csv, Json, Apt };

std::unique_ptr<TextReader> Open(Kind kind, const std::string& text) {
  auto stream = std::make_unique<std::istringstream>(text);
  if (kind == Kind::Csv) {
    return std::make_unique<CsvReader>(std::move(stream), "in");
  }
  if (kind == Kind::Json) {
    return std::make_unique<JsonLinesReader>(std::move(stream), "in");
  }
  return std::make_unique<AptReader>(std::move(stream), "in");
}

std::vector<ToolPoint> Points(Kind kind, const std::string& text) {
  const std::unique_ptr<TextReader> reader = Open(kind, text);
  return ToolPath::ReadAll(*reader).GetPoints();
}

void ExpectPoint(const ToolPoint& point, const Vector3D& tip, const Vector3D& direction) {
  EXPECT_TRUE(point.point == tip) << point.point[0] << " " << point.point[1];
  EXPECT_TRUE(point.direction.IsSame(direction, 1e-15));
}

// The same two points in the three formats.
TEST(Readers, ThreeFormatsGiveTheSamePoints) {
  const char* const texts[] = {
      "# a path\nrapid;Y;x;z;F;i;j;k;note\n1;2;1;3;;0;0;2;a\n; 2; 1; 4;150;0;3;0;b # end\n",
      "{\"x\":1,\"y\":2,\"z\":3,\"i\":0,\"j\":0,\"k\":2,\"rapid\":true,\"feed\":null}\n\n"
      "{\"k\":0,\"j\":3,\"i\":0,\"x\":1,\"y\":2.0,\"z\":4e0,\"feed\":150,\"a\":{\"x\":[1,{}]}}\n",
      "PARTNO anything, / and $ too\nMULTAX\nRAPID\ngoto/1,2,3,0,0,2 $$ here\nFEDRAT/150,MMPM\n"
      "GOTO / 1 , 2 $ goes on\n , 4., 0,+3,-0\nFINI\nGOTO/nothing\n"};
  const Kind kinds[] = {Kind::Csv, Kind::Json, Kind::Apt};
  for (int i = 0; i < 3; ++i) {
    SCOPED_TRACE(i);
    const std::vector<ToolPoint> points = Points(kinds[i], texts[i]);
    ASSERT_EQ(points.size(), 2U);
    ExpectPoint(points[0], Vector3D(1, 2, 3), AxisZ);
    ExpectPoint(points[1], Vector3D(1, 2, 4), AxisY);
    EXPECT_TRUE(points[0].isRapid);
    EXPECT_FALSE(points[1].isRapid);
    EXPECT_EQ(points[0].feed, 0.0);
    EXPECT_EQ(points[1].feed, 150.0);
    EXPECT_LT(points[0].line, points[1].line);
  }
}

// What can't be understood is blamed on its place.
TEST(Readers, FaultsNamePlaceAndWhatWasExpected) {
  struct Case {
    Kind kind;
    const char* text;
    const char* message;
  };
  const std::string head = "x,y,z,i,j,k\n";
  const Case cases[] = {
      {Kind::Csv, "", "in:1:1: the file is empty; expected the names of the columns x,y,z,i,j,k"},
      {Kind::Csv, "x,y,z,i,j\n",
       "in:1:1: there is no column k in 'x,y,z,i,j'; expected the names x,y,z,i,j,k, separated by "
       "commas or semicolons"},
      {Kind::Csv, "x,y,z,i,j,k,X\n", "in:1:13: the column x is named twice; expected it once"},
      {Kind::Csv, "x,y,z,i,j,k\n1,2,3,0,0\n", "in:2:10: only 5 fields; expected 6"},
      {Kind::Csv, "x,y,z,i,j,k\n1,2,3,0,0,1,\n", "in:2:13: one field too many; expected 6 fields"},
      {Kind::Csv, "x,y,z,i,j,k\n1, a,3,0,0,1\n",
       "in:2:4: y: 'a' is not a number; expected a number"},
      {Kind::Csv, "x,y,z,i,j,k\n1,,3,0,0,1\n", "in:2:3: y is empty; expected a number"},
      {Kind::Csv, "x,y,z,i,j,k\n1,1e999,3,0,0,1\n",
       "in:2:3: y: '1e999' is beyond the numbers that can be computed with; expected a number"},
      {Kind::Csv, "x,y,z,i,j,k\n1,nan,3,0,0,1\n",
       "in:2:3: y: 'nan' is not a finite number; expected a number"},
      {Kind::Csv, "x;y;z;i;j;k\n1,5;2;3;0;0;1\n",
       "in:2:1: x: '1,5' is not a number; expected a number with a decimal point"},
      {Kind::Csv, "x,y,z,i,j,k\n1,2,3,0,0,0\n",
       "in:2:7: the direction i,j,k is null; expected a direction"},
      {Kind::Csv, "x,y,z,i,j,k\n1,\"2\",3,0,0,1\n",
       "in:2:3: a quoted field; expected the plain value"},
      {Kind::Csv, "x,y,z,i,j,k,rapid\n1,2,3,0,0,1,yes\n",
       "in:2:13: rapid: 'yes'; expected 0, 1, true, false or nothing"},
      {Kind::Csv, "x,y,z,i,j,k,f\n1,2,3,0,0,1,-1\n",
       "in:2:13: the feed is negative; expected 0 or more"},
      {Kind::Json, "{\"x\":1,}", "in:1:8: not JSON; expected string literal"},
      {Kind::Json, "{\"x\":1", "in:1:7: not JSON; expected '}'"},
      {Kind::Json, "\n[1]", "in:2:1: an array; expected an object"},
      {Kind::Json, "1", "in:1:1: a number; expected an object"},
      {Kind::Json, "{\"x\":\"1\"}", "in:1:2: \"x\" is a text; expected a number"},
      {Kind::Json, "{\"x\":1,\"x\":2}",
       "in:1:8: the member \"x\" is there twice; expected it once"},
      {Kind::Json, "{\"rapid\":1}", "in:1:2: \"rapid\" is a number; expected true or false"},
      {Kind::Json, "{\"x\":1,\"y\":1,\"z\":1,\"i\":1,\"j\":1}",
       "in:1:32: there is no \"k\"; expected the members x, y, z, i, j and k"},
      {Kind::Json, "{\"x\":1,\"y\":1,\"z\":1,\"i\":0,\"j\":0,\"k\":0}",
       "in:1:20: the direction i,j,k is null; expected a direction"},
      {Kind::Json, "{\"x\":1e999}", "in:1:10: not JSON; expected a finite number or a valid text"},
      {Kind::Apt, "GOTO/1,2", "in:1:8: 2 values behind GOTO; expected 3 or 6 numbers"},
      {Kind::Apt, "\nGOTO/1,2,A", "in:2:10: 'A' is not a number; expected a number"},
      {Kind::Apt, "GOTO/1,2,$\n\n", "in:2:1: nothing; expected a number"},
      {Kind::Apt, "  circle/1,2,3",
       "in:1:3: 'CIRCLE' is an arc or curve; expected straight moves: post the path with points "
       "(GOTO) only"},
      {Kind::Apt, "GODLTA/1,2,3",
       "in:1:1: 'GODLTA' is an incremental move; expected straight moves: post the path with "
       "points "
       "(GOTO) only"},
      {Kind::Apt, "GOFWD/C1,PAST,L2",
       "in:1:1: 'GOFWD' moves along geometry, which this reader doesn't compute; expected the "
       "cutter locations (GOTO) that it makes"},
      {Kind::Apt, "MULTAX/OFF\nGOTO/1,2,3,0,0,1",
       "in:2:12: a direction behind MULTAX/OFF; expected 3 numbers"},
      {Kind::Apt, "GOTO/0,0,0\n tlon,GoFwd/L1,PAST,L2",
       "in:2:2: 'TLON' moves along geometry, which this reader doesn't compute; expected the "
       "cutter locations (GOTO) that it makes"},
      {Kind::Apt, "GOTO 1,2,3",
       "in:1:1: 'GOTO1,2,3' is no statement; expected GOTO/ and 3 or 6 numbers"},
      {Kind::Apt, "L1) FROM 1,2,3",
       "in:1:5: 'FROM1,2,3' is no statement; expected FROM/ and 3 or 6 numbers"},
      {Kind::Apt, "GOTO/1,2,3$\n4,0,0,1",
       "in:1:10: a blank within '34'; expected a number, or a comma"},
      {Kind::Apt, "GOTO/1 0,2,3", "in:1:6: a blank within '10'; expected a number, or a comma"},
      {Kind::Apt, "UNITS/FEET", "in:1:7: the unit isn't known; expected UNITS/MM or UNITS/INCHES"},
      {Kind::Apt, "FEDRAT/MMPM", "in:1:1: FEDRAT without a number; expected FEDRAT/ and the feed"},
      {Kind::Apt, "/1", "in:1:1: a slash without a word; expected a word such as GOTO"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    try {
      Points(c.kind, c.text);
      ADD_FAILURE() << "was read";
    } catch (const ReadError& error) {
      EXPECT_STREQ(error.what(), c.message);
    }
  }
}

// Words that aren't understood are noted once, however often the file is read.
TEST(AptReader, NotesWhatItPassesOver) {
  const std::unique_ptr<TextReader> reader =
      Open(Kind::Apt, "SPINDL/1000,RPM\nCUTTER/10,1\nLOADTL/3\n  COOLNT/ON\nGOTO/1,2,3\n");
  EXPECT_EQ(ToolPath::ReadAll(*reader).GetPointNb(), 1U);
  reader->Return(nullptr);
  EXPECT_EQ(ToolPath::ReadAll(*reader).GetPointNb(), 1U);
  ASSERT_EQ(reader->GetNotes().size(), 2U);
  EXPECT_EQ(reader->GetNoteNb(), 2U);
  EXPECT_EQ(reader->GetNotes()[0].text, "'SPINDL' isn't understood");
  EXPECT_EQ(reader->GetNotes()[1].line, 4U);
  EXPECT_EQ(reader->GetNotes()[1].column, 3U);
}

// Labels, comments within a statement, and blanks beside its signs change nothing.
TEST(AptReader, ReadsOnOverWhatSaysNothing) {
  const std::vector<ToolPoint> points =
      Points(Kind::Apt, "L1) GOTO / 1 , - 2,$ $$ comment\n  $$ another\n$$\n3, 0,$\n 0 , 1\n");
  ASSERT_EQ(points.size(), 1U);
  ExpectPoint(points[0], Vector3D(1, -2, 3), AxisZ);
  const std::unique_ptr<TextReader> cutter = Open(Kind::Apt, "CUTTER/OPTION,1,,2\nGOTO/1,2,3");
  EXPECT_EQ(ToolPath::ReadAll(*cutter).GetPointNb(), 1U);
  EXPECT_EQ(cutter->GetNoteNb(), 2U);
  const std::unique_ptr<TextReader> rest =
      Open(Kind::Apt, "FEDRAT/10,FOO,MMPR\nMULTAX/ON,5\nUNITS/MM,BLAH\nRAPID/7\nGOTO/1,2,3");
  EXPECT_EQ(ToolPath::ReadAll(*rest).GetPointNb(), 1U);
  ASSERT_EQ(rest->GetNoteNb(), 5U);
  EXPECT_EQ(rest->GetNotes()[0].text, "a feed per revolution counts as none");
  EXPECT_EQ(rest->GetNotes()[4].text, "RAPID: '7' isn't understood");
}

// Inches become millimeters, feeds per inch too.
TEST(AptReader, TakesUnits) {
  const std::vector<ToolPoint> points =
      Points(Kind::Apt, "UNITS/INCHES\nFEDRAT/10\nFROM/1,2,-3\nFEDRAT/IPM,2\nGOTO/0,1,0\n");
  ASSERT_EQ(points.size(), 2U);
  ExpectPoint(points[0], Vector3D(25.4, 2 * 25.4, -3 * 25.4), AxisZ);
  EXPECT_TRUE(points[0].isRapid);
  EXPECT_EQ(points[0].feed, 10 * 25.4);
  EXPECT_EQ(points[1].feed, 2 * 25.4);
}

// A direction stays until MULTAX/OFF; RAPID is for one move.
TEST(AptReader, KeepsDirectionAndRapidAsLongAsTheyHold) {
  const std::vector<ToolPoint> points = Points(
      Kind::Apt,
      "MULTAX/ON\nRAPID\nGOTO/0,0,0,1,0,0\nGOTO/1,0,0\nMULTAX/OFF\nRAPID\nFEDRAT/1\nGOTO/2,0,0");
  ASSERT_EQ(points.size(), 3U);
  ExpectPoint(points[1], Vector3D(1, 0, 0), AxisX);
  ExpectPoint(points[2], Vector3D(2, 0, 0), AxisZ);
  EXPECT_TRUE(points[0].isRapid);
  EXPECT_FALSE(points[1].isRapid);
  EXPECT_FALSE(points[2].isRapid);
}

// A reader returns to any place it marked, with what it carries from point to point.
TEST(Readers, ReturnToAMarkedPlace) {
  const std::string apt = "RAPID\nGOTO/0,0,0,1,0,0\nFEDRAT/7\nGOTO/1,0,0\nGOTO/2,0,0,0,1,0\n";
  const std::unique_ptr<TextReader> reader = Open(Kind::Apt, apt);
  ToolPoint point;
  ASSERT_EQ(reader->Read(&point, 1), 1U);
  const auto place = reader->Mark();
  const std::vector<ToolPoint> first = ToolPath::ReadAll(*reader).GetPoints();
  reader->Return(place);
  const std::vector<ToolPoint> second = ToolPath::ReadAll(*reader).GetPoints();
  ASSERT_EQ(first.size(), 2U);
  ASSERT_EQ(second.size(), 2U);
  for (std::size_t i = 0; i < 2; ++i) {
    ExpectPoint(second[i], first[i].point, first[i].direction);
    EXPECT_EQ(second[i].feed, 7.0);
    EXPECT_EQ(second[i].line, first[i].line);
  }
  ExpectPoint(second[0], Vector3D(1, 0, 0), AxisX);

  auto stream = std::make_unique<std::istringstream>("of another\nx,y,z,i,j,k\n1,2,3,0,0,1\n");
  std::string line;
  std::getline(*stream, line);
  CsvReader rest(std::move(stream), "in");
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(ToolPath::ReadAll(rest).GetPointNb(), 1U);
    rest.Return(nullptr);
  }

  const std::unique_ptr<TextReader> csv = Open(Kind::Csv, "x,y,z,i,j,k\n1,2,3,0,0,1\n");
  EXPECT_EQ(ToolPath::ReadAll(*csv).GetPointNb(), 1U);
  csv->Return(nullptr);
  EXPECT_EQ(ToolPath::ReadAll(*csv).GetPointNb(), 1U);
}

// Hostile lines end in an error, not in memory.
TEST(Readers, RefuseEndlessLines) {
  const std::string endless(70000, '1');
  for (const Kind kind : {Kind::Csv, Kind::Json, Kind::Apt}) {
    EXPECT_THROW(Points(kind, endless), ReadError);
  }
  std::string goesOn;
  for (int i = 0; i < 3000; ++i) {
    goesOn += "GOTO/" + std::string(60, '1') + "$\n";
  }
  EXPECT_THROW(Points(Kind::Apt, goesOn), ReadError);
  EXPECT_THROW(Points(Kind::Csv, std::string("x,y,z,i,j,k\n1,2,3\0,0,0,1\n", 25)), ReadError);
}

// The suffix decides, whatever its case.
TEST(OpenPath, GoesByTheSuffix) {
  const Testing::TemporaryFolder folder;
  folder.Write("a.CSV", "x,y,z,i,j,k\n1,2,3,0,0,1\n");
  folder.Write("a.jsonl", "{\"x\":1,\"y\":2,\"z\":3,\"i\":0,\"j\":0,\"k\":1}");
  folder.Write("a.cls", "GOTO/1,2,3,0,0,1");
  for (const char* name : {"a.CSV", "a.jsonl", "a.cls"}) {
    const std::unique_ptr<TextReader> reader = OpenPath(folder.File(name));
    EXPECT_EQ(ToolPath::ReadAll(*reader).GetPointNb(), 1U) << name;
    EXPECT_EQ(reader->GetShareRead(), 1.0);
  }
  EXPECT_THROW(OpenPath(folder.File("a.txt")), ReadError);
  EXPECT_THROW(OpenPath(folder.File("absent.csv")), ReadError);
  EXPECT_THROW(CsvReader{folder.Path()}, ReadError);
}

TEST(ShiftedSource, MovesEachTip) {
  ToolPath path;
  path.Add(ToolPoint());
  ToolPathSource source(path);
  ShiftedSource shifted(source, Vector3D(1, 2, 3));
  ExpectPoint(ToolPath::ReadAll(shifted).GetPoints().at(0), Vector3D(1, 2, 3), AxisZ);
  shifted.Return(nullptr);
  EXPECT_EQ(ToolPath::ReadAll(shifted).GetPointNb(), 1U);
  path.Shift(Vector3D(0, 0, 1));
  ExpectPoint(path.GetPoints()[0], Vector3D(0, 0, 1), AxisZ);
}

}  // namespace
}  // namespace Orvo::Path
