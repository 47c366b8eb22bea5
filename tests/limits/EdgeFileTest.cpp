// Every number of a machine file, written in every way that is hard to read.

#include "io/MachineFiles.h"
#include "support/SameBits.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityLink.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/ProgramSystem.h>

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::Entity;
using Kin::EntityLink;
using Kin::Machine;
using Kin::ProgramSystem;

enum class Ending { Number, NoNumber, OutOfRange };

struct DoubleText {
  const char* text;
  Ending ending;
  double value;
};

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();

const DoubleText DoubleTexts[] = {
    {"nan", Ending::Number, NaN},
    {"-NAN", Ending::Number, NaN},
    {"nan(7)", Ending::Number, NaN},
    {"inf", Ending::Number, Infinity},
    {"-Infinity", Ending::Number, -Infinity},
    {"infinit", Ending::Number, Infinity},
    {"0", Ending::Number, 0.0},
    {"-0", Ending::Number, -0.0},
    {"-0.0e999999999999999999999", Ending::Number, -0.0},
    {"1e308", Ending::Number, 1e308},
    {"-1.7976931348623157e308", Ending::Number, std::numeric_limits<double>::lowest()},
    {"1.7976931348623159e308", Ending::OutOfRange, 0},
    {"1e309", Ending::OutOfRange, 0},
    {"-1e999999999999999999999", Ending::OutOfRange, 0},
    {"2.2250738585072014e-308", Ending::Number, std::numeric_limits<double>::min()},
    {"0x1p-1074", Ending::Number, std::numeric_limits<double>::denorm_min()},
    {"0x1p-1075", Ending::OutOfRange, 0},
    {"4e-324", Ending::OutOfRange, 0},
    {"1e-310", Ending::OutOfRange, 0},
    {"-1e-400", Ending::OutOfRange, 0},
    {"1e-999999999999999999999", Ending::OutOfRange, 0},
    {"0x10", Ending::Number, 16.0},
    {" \t\r\n+1.5", Ending::Number, 1.5},
    {"1,5", Ending::Number, 1.0},
    {"1e", Ending::Number, 1.0},
    {".5.5", Ending::Number, 0.5},
    {"7.", Ending::Number, 7.0},
    {"", Ending::NoNumber, 0},
    {"  ", Ending::NoNumber, 0},
    {".", Ending::NoNumber, 0},
    {"-", Ending::NoNumber, 0},
    {"--1", Ending::NoNumber, 0},
    {"e5", Ending::NoNumber, 0},
    {"x", Ending::NoNumber, 0}};

struct IntText {
  const char* text;
  Ending ending;
  int value;
};

constexpr int LargestInt = std::numeric_limits<int>::max();
constexpr int SmallestInt = std::numeric_limits<int>::min();

const IntText IntTexts[] = {{"0", Ending::Number, 0},
                            {"-0", Ending::Number, 0},
                            {"16777215", Ending::Number, 16777215},
                            {"2147483647", Ending::Number, LargestInt},
                            {"-2147483648", Ending::Number, SmallestInt},
                            {"2147483648", Ending::OutOfRange, 0},
                            {"-2147483649", Ending::OutOfRange, 0},
                            {"99999999999999999999999", Ending::OutOfRange, 0},
                            {"1e3", Ending::Number, 1},
                            {"5.9", Ending::Number, 5},
                            {"0x10", Ending::Number, 0},
                            {" \t\r\n+0007", Ending::Number, 7},
                            {"", Ending::NoNumber, 0},
                            {"  ", Ending::NoNumber, 0},
                            {"+-5", Ending::NoNumber, 0},
                            {"nan", Ending::NoNumber, 0},
                            {"inf", Ending::NoNumber, 0}};

// Reads a text and returns how that ended. What Finish() says of the machine is no matter here.
Ending Read(Machine& machine, const std::string& text) {
  try {
    EXPECT_TRUE(ReadText(machine, text));
    return Ending::Number;
  } catch (const std::invalid_argument&) {
    return Ending::NoNumber;
  } catch (const std::out_of_range&) {
    return Ending::OutOfRange;
  }
}

/// One double of the file: where it stands, and where it goes.
struct DoubleField {
  std::string before;  ///< with the number's place marked by a question mark
  std::string part;    ///< the same with the number that stands there
  std::function<void(EntityLink*, double)> set;
};

// The link of the file, by calls.
EntityLink LinkOfTheFile(const std::function<void(EntityLink*, double)>& set, double value) {
  EntityLink link;
  Matrix43 frame;
  frame.SetUVWT(AxisY, AxisZ, AxisX, Vector3D(10, 20, 30));
  link.SetEntityLinkPosition(frame);
  link.SetEntityLinkRotary(Vector3D(1.5, -2.5, 3.5), Vector3D(0, 0, 4));
  link.SetZeroRef(7.25);
  link.SetRangeMin(-90.5);
  link.SetRangeMax(120.5);
  set(&link, value);
  return link;
}

std::vector<DoubleField> DoubleFields() {
  std::vector<DoubleField> fields = {
      {"<ZeroRef>?<", "<ZeroRef>7.25<", [](EntityLink* link, double v) { link->SetZeroRef(v); }},
      {"<RangeMin>?<", "<RangeMin>-90.5<",
       [](EntityLink* link, double v) { link->SetRangeMin(v); }},
      {"<RangeMax>?<", "<RangeMax>120.5<",
       [](EntityLink* link, double v) { link->SetRangeMax(v); }},
      {"<T X=\"?\" Y=\"20\" Z=\"30\"", "<T X=\"10\" Y=\"20\" Z=\"30\"",
       [](EntityLink* link, double v) {
         Matrix43 frame = link->GetPosition();
         frame.SetUVWT(AxisY, AxisZ, AxisX, Vector3D(v, 20, 30));
         link->SetEntityLinkPosition(frame);
         link->SetEntityLinkRotary(link->GetCenter(), AxisZ);
       }},
      {"<W X=\"1\" Y=\"?\" Z=\"0\"", "<W X=\"1\" Y=\"0\" Z=\"0\"", [](EntityLink* link, double v) {
         Matrix43 frame = link->GetPosition();
         frame.SetUVWT(AxisY, AxisZ, Vector3D(1, v, 0), Vector3D(10, 20, 30));
         link->SetEntityLinkPosition(frame);
         link->SetEntityLinkRotary(link->GetCenter(), AxisZ);
       }}};
  const char* const centers[3] = {"<Center X=\"?\" Y=\"-2.5\" Z=\"3.5\"",
                                  "<Center X=\"1.5\" Y=\"?\" Z=\"3.5\"",
                                  "<Center X=\"1.5\" Y=\"-2.5\" Z=\"?\""};
  const char* const dirs[3] = {"<Dir X=\"?\" Y=\"0\" Z=\"4\"", "<Dir X=\"0\" Y=\"?\" Z=\"4\"",
                               "<Dir X=\"0\" Y=\"0\" Z=\"?\""};
  for (int place = 0; place < 3; ++place) {
    fields.push_back({centers[place], "<Center X=\"1.5\" Y=\"-2.5\" Z=\"3.5\"",
                      [place](EntityLink* link, double v) {
                        Vector3D center(1.5, -2.5, 3.5);
                        center[place] = v;
                        link->SetEntityLinkRotary(center, AxisZ);
                      }});
    fields.push_back(
        {dirs[place], "<Dir X=\"0\" Y=\"0\" Z=\"4\"", [place](EntityLink* link, double v) {
           Vector3D dir(0, 0, 4);
           dir[place] = v;
           link->SetEntityLinkRotary(link->GetCenter(), dir);
         }});
  }
  return fields;
}

testing::AssertionResult SameLink(const EntityLink& a, const EntityLink& b) {
  const testing::AssertionResult results[] = {
      SameBits(a.GetCenter(), b.GetCenter()),     SameBits(a.GetDir(), b.GetDir()),
      SameBits(a.GetPosition(), b.GetPosition()), SameBits(a.GetZeroRef(), b.GetZeroRef()),
      SameBits(a.GetRangeMin(), b.GetRangeMin()), SameBits(a.GetRangeMax(), b.GetRangeMax())};
  for (const testing::AssertionResult& result : results) {
    if (!result) {
      return result;
    }
  }
  return a.GetEntityLinkType() == b.GetEntityLinkType() ? testing::AssertionSuccess()
                                                        : testing::AssertionFailure() << "type";
}

TEST(EdgeFile, DoublesOfALink) {
  for (const DoubleField& field : DoubleFields()) {
    for (const DoubleText& number : DoubleTexts) {
      SCOPED_TRACE(field.before + " " + number.text);
      const std::string text =
          Replaced(WholeText(), field.part, Replaced(field.before, "?", number.text));
      Machine machine;
      ASSERT_EQ(Read(machine, text), number.ending);
      ASSERT_EQ(EntityCount(machine), 1U) << "what was read stays";
      const EntityLink& link = EntityAt(machine, 0).GetEntityLink();
      if (number.ending == Ending::Number) {
        EXPECT_TRUE(SameLink(link, LinkOfTheFile(field.set, number.value)));
        Machine again;
        EXPECT_TRUE(ReadText(again, WrittenText(machine))) << "what is written can be read";
      } else {
        EXPECT_FALSE(machine.IsFinished());
        EXPECT_TRUE(ReadText(machine, WholeText())) << "another file can be read";
        EXPECT_EQ(EntityCount(machine), 2U);
      }
    }
  }
}

/// One int of the file.
struct IntField {
  std::string before;
  std::string part;
  std::function<int(const Machine&)> get;
};

std::vector<IntField> IntFields() {
  const auto programSystem = [](const Machine& machine) -> const ProgramSystem& {
    return machine.GetListProgramSystem().front();
  };
  return {{"<ParentId>?<", "<ParentId>3<",
           [](const Machine& m) { return EntityAt(m, 0).GetParentEntityId().GetVal(); }},
          {"<RGB>?<", "<RGB>255<",
           [](const Machine& m) {
             return static_cast<int>(EntityAt(m, 0).GetEntityMesh()->GetMeshColor(0));
           }},
          {"<TableIndex>?<", "<TableIndex>2<",
           [=](const Machine& m) { return programSystem(m).GetTableIndex().GetVal(); }},
          {"<HeadIndex>?<", "<HeadIndex>3<",
           [=](const Machine& m) { return programSystem(m).GetHeadIndex().GetVal(); }},
          {"RegX=\"?\"", "RegX=\"4\"",
           [=](const Machine& m) { return programSystem(m).GetMainLinear(0).GetVal(); }},
          {"RegZ=\"?\"", "RegZ=\"6\"",
           [=](const Machine& m) { return programSystem(m).GetMainLinear(2).GetVal(); }},
          {"RegR1=\"?\"", "RegR1=\"8\"",
           [=](const Machine& m) { return programSystem(m).GetMainRotary(1).GetVal(); }},
          {"<EntityId>?<", "<EntityId>9<", [](const Machine& m) {
             std::list<Kin::EntityId> ids;
             m.GetCollisionCheck().GetListMachineMachine(11, &ids, true);
             return ids.empty() ? 0 : ids.front().GetVal();
           }}};
}

TEST(EdgeFile, Ints) {
  for (const IntField& field : IntFields()) {
    for (const IntText& number : IntTexts) {
      SCOPED_TRACE(field.before + " " + number.text);
      const std::string text =
          Replaced(WholeText(), field.part, Replaced(field.before, "?", number.text));
      Machine machine;
      ASSERT_EQ(Read(machine, text), number.ending);
      ASSERT_EQ(EntityCount(machine), 1U);
      if (number.ending == Ending::Number) {
        EXPECT_EQ(field.get(machine), number.value);
      } else {
        EXPECT_TRUE(ReadText(machine, WholeText()));
      }
    }
  }
}

// An id and a register are places in tables too, and end earlier.
TEST(EdgeFile, IdsAndRegisters) {
  const char* const fields[2][2] = {{"<Id>?<", "<Id>5<"}, {"<Register>?<", "<Register>4<"}};
  for (const auto& field : fields) {
    for (const IntText& number : IntTexts) {
      SCOPED_TRACE(std::string(field[0]) + " " + number.text);
      const std::string text =
          Replaced(WholeText(), field[1], Replaced(field[0], "?", number.text));
      Machine machine;
      if (number.ending == Ending::Number && number.value > 16777215) {
        EXPECT_THROW(ReadText(machine, text), std::length_error);
      } else {
        ASSERT_EQ(Read(machine, text), number.ending);
      }
      if (number.ending == Ending::Number) {
        const Entity& entity = EntityAt(machine, 0);
        EXPECT_EQ(
            field[0][1] == 'I' ? entity.GetEntityId().GetVal() : entity.GetRegister().GetVal(),
            number.value);
      }
    }
  }
}

TEST(EdgeFile, TokensOfEntityIds) {
  for (const IntText& number : IntTexts) {
    const std::string token = number.text;
    if (token.find_first_not_of(" \t\r\n") == std::string::npos) {
      continue;  // no token
    }
    SCOPED_TRACE(token);
    Machine machine;
    const std::string text =
        Replaced(WholeText(), "<EntityIds>5 6 7<", "<EntityIds>5 " + token + " 7<");
    // A line break is no separator: what follows it belongs to the token, and white space before a
    // number is skipped.
    ASSERT_EQ(Read(machine, text), number.ending);
    EXPECT_EQ(machine.GetCollisionCheck().GetMachineTool(5), number.ending == Ending::Number);
    if (number.ending == Ending::Number) {
      EXPECT_TRUE(machine.GetCollisionCheck().GetMachineTool(number.value));
      EXPECT_TRUE(machine.GetCollisionCheck().GetMachineTool(7));
    }
  }
}

// Six decimals hold the large numbers exactly, and those that are none by their words.
TEST(EdgeFile, WrittenNumbersComeBack) {
  for (const double edge : {NaN, Infinity, -Infinity, 0.0, -0.0, 1e308, -1e308, 1e15, 0.5,
                            std::numeric_limits<double>::max()}) {
    SCOPED_TRACE(HexText(edge));
    Machine machine;
    Entity* const entity = machine.AddEntityRotary(L"axis", -1, Vector3D(edge, 1, edge), AxisZ);
    entity->GetEntityLinkMod()->SetZeroRef(edge);
    entity->SetRange(edge, -edge);
    Machine again;
    ASSERT_TRUE(ReadText(again, WrittenText(machine)));
    EXPECT_TRUE(SameLink(EntityAt(again, 0).GetEntityLink(), entity->GetEntityLink()));
  }
  // The rest keep six decimals: what is smaller is written as zero, with its sign.
  Machine machine;
  Entity* const entity = machine.AddEntityRotary(L"axis", -1, NullVector, AxisZ);
  entity->SetRange(-1e-310, std::numeric_limits<double>::denorm_min());
  Machine again;
  ASSERT_TRUE(ReadText(again, WrittenText(machine)));
  EXPECT_TRUE(SameBits(EntityAt(again, 0).GetRangeMin(), -0.0));
  EXPECT_TRUE(SameBits(EntityAt(again, 0).GetRangeMax(), 0.0));
}

}  // namespace
}  // namespace Orvo::Testing
