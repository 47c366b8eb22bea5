// Machines as JSON: everything comes back, and whatever else a text holds is refused.

#include "exchange/AnyMachine.h"
#include "machines/ExampleData.h"
#include "property/Draw.h"
#include "support/SameBits.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Exchange/Exchange.h>
#include <Orvo/Kin/EntityMesh.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <string>

namespace Orvo::Testing {
namespace {

using Exchange::ExchangeError;
using Exchange::ReadError;
using Property::Draw;
using Property::ForCases;
using testing::HasSubstr;

std::string Written(const Kin::Machine& machine, const Exchange::JsonWriteOptions& options = {}) {
  std::ostringstream out;
  Exchange::WriteMachineJson(machine, out, options);
  return out.str();
}

Kin::Machine Read(const std::string& text, const Exchange::JsonReadOptions& options = {}) {
  std::istringstream in(text);
  Kin::Machine machine;
  Exchange::ReadMachineJson(in, "in", &machine, options);
  return machine;
}

std::string WrittenAsXml(Kin::Machine& machine) {
  const TemporaryFolder folder;
  EXPECT_TRUE(machine.WriteXML(folder.Wide("machine.xml")));
  return folder.Read("machine.xml");
}

TEST(MachineJson, GivesTheExampleMachinesBackToTheByte) {
  for (const std::string& name : ExampleMachineNames()) {
    SCOPED_TRACE(name);
    Kin::Machine machine;
    ASSERT_TRUE(machine.ReadXML(WideName(ExampleMachineFile(name))));
    const std::string json = Written(machine);
    Kin::Machine again = Read(json);
    EXPECT_TRUE(again.IsFinished());
    EXPECT_EQ(WrittenAsXml(again), ReadBytes(ExampleMachineFile(name)));
    EXPECT_EQ(Written(again), json);
  }
}

// The JSON text holds every number of a machine to its last bit: that it comes out the same again
// says that nothing was lost.
TEST(MachineJson, GivesAnyMachineBack) {
  ForCases(1500, [](Draw& draw) {
    const auto machine = AnyMachine(draw);
    const std::string json = Written(*machine);
    Kin::Machine again = Read(json);
    EXPECT_EQ(Written(again), json);
    EXPECT_EQ(WrittenAsXml(again), WrittenAsXml(*machine));
    EXPECT_EQ(again.GetLastError(), machine->GetLastError());
    Exchange::JsonWriteOptions compact;
    compact.isCompact = true;
    Kin::Machine fromCompact = Read(Written(*machine, compact));
    EXPECT_EQ(Written(fromCompact), json);
  });
}

TEST(MachineJson, KeepsDirectionsToTheLastBit) {
  ForCases(3000, [](Draw& draw) {
    Kin::Machine machine;
    const Vector3D dir(draw.Uniform(-1.0, 1.0), draw.Uniform(-1.0, 1.0), draw.Uniform(-1.0, 1.0));
    machine.AddEntityRotary(L"A", -1, Vector3D(1.5, 1e-300, -0.0), dir);
    const Kin::Machine again = Read(Written(machine));
    const Kin::EntityLink& was = machine.GetKinematic().GetListEntity().front().GetEntityLink();
    const Kin::EntityLink& is = again.GetKinematic().GetListEntity().front().GetEntityLink();
    EXPECT_TRUE(SameBits(is.GetDir(), was.GetDir()));
    EXPECT_TRUE(SameBits(is.GetCenter(), was.GetCenter()));
  });
}

TEST(MachineJson, KeepsWhatMachineFilesLose) {
  Kin::Machine machine;
  Kin::Entity* const entity = machine.AddEntityLinear(L" \x01 \x00e4\x4e2d ", -1, AxisZ);
  entity->GetEntityLinkMod()->SetRangeMin(5, 0.1);
  entity->GetEntityLinkMod()->SetZeroRef(3, std::numeric_limits<double>::infinity());
  entity->SetRange(1e-9, -std::numeric_limits<double>::infinity());
  Kin::Entity* const fixed = machine.AddEntityStatic(L"", 1);
  double frame[16] = {1, 0, 0, 0.5, 0, 1, 0, 0, 0, 0, 1, 0, 7, 8, 9, 2};
  Matrix43 projective;
  projective = frame;
  fixed->GetEntityLinkMod()->SetEntityLinkPosition(projective);
  const Kin::Machine again = Read(Written(machine));
  const Kin::Entity& axis = again.GetKinematic().GetListEntity().front();
  EXPECT_EQ(axis.GetEntityName(), L" \x01 \x00e4\x4e2d ");
  EXPECT_TRUE(SameBits(axis.GetEntityLink().GetRangeMin(5), 0.1));
  EXPECT_TRUE(std::isinf(axis.GetEntityLink().GetZeroRef(3)));
  EXPECT_TRUE(SameBits(axis.GetRangeMin(), 1e-9));
  EXPECT_EQ(axis.GetRangeMax(), -std::numeric_limits<double>::infinity());
  EXPECT_TRUE(SameBits(again.GetKinematic().GetListEntity().back().GetEntityLink().GetPosition(),
                       projective));
}

TEST(MachineJson, KeepsAMeshByItsFile) {
  const TemporaryFolder folder;
  const auto machine = ExampleMachineWithMeshes("trunnion_ac");
  Exchange::WriteMachineJsonFile(*machine, folder.File("twin.json"), true);
  EXPECT_THAT(folder.Read("twin.json"), HasSubstr("\"file\": \"twin_1_0.stl\""));
  Kin::Machine again;
  Exchange::JsonReadOptions options;
  options.readsMeshes = true;
  Exchange::ReadMachineJsonFile(folder.File("twin.json"), &again, options);
  const Mesh* const was =
      machine->GetKinematic().GetListEntity().front().GetEntityMesh()->GetMesh(0);
  const Mesh* const is = again.GetKinematic().GetListEntity().front().GetEntityMesh()->GetMesh(0);
  ASSERT_EQ(is->GetDimVertices(), was->GetDimVertices());
  ASSERT_GT(is->GetDimVertices(), 0U);
  for (unsigned int i = 0; i < is->GetDimVertices(); ++i) {
    ASSERT_TRUE(SameBits(is->GetTabVertices()[i], was->GetTabVertices()[i]));
  }
  std::filesystem::remove(folder.File("twin_1_0.stl"));
  const auto complaint = [&]() {
    try {
      Exchange::ReadMachineJsonFile(folder.File("twin.json"), &again, options);
    } catch (const ExchangeError& error) {
      return std::string(error.what());
    }
    return std::string("nothing");
  };
  EXPECT_THAT(complaint(), HasSubstr("twin_1_0.stl: the mesh file is missing"));
  folder.Write("twin_1_0.stl", "short");
  EXPECT_THAT(complaint(), HasSubstr("twin_1_0.stl: the file can't be read as binary STL"));
}

constexpr const char* SmallText = R"({
  "format": "orvo-machine",
  "version": 1,
  "entities": [
    {"name": "X", "type": "AXIS", "id": 1, "parentId": -1, "register": 0,
     "link": {"type": "LINEAR", "dir": [0, 0, 5]}}
  ]
})";

TEST(MachineJson, TakesDefaultsForWhatMayBeLeftOut) {
  const Kin::Machine machine = Read(SmallText);
  ASSERT_EQ(machine.GetEntityNb(), 1);
  const Kin::Entity& axis = machine.GetKinematic().GetListEntity().front();
  EXPECT_TRUE(axis.GetCheckRangeAxis());
  EXPECT_FALSE(axis.GetIsMotor());
  EXPECT_EQ(axis.GetEntityMesh(), nullptr);
  EXPECT_TRUE(SameBits(axis.GetEntityLink().GetDir(), AxisZ));
  EXPECT_TRUE(axis.GetEntityLink().GetPosition().IsIdentity());
}

// Replaces one part of the small text, and expects the place and the message.
TEST(MachineJson, SaysWhereATextIsWrongAndWhatWasExpected) {
  struct Case {
    const char* from;
    const char* to;
    unsigned int line;
    unsigned int column;
    const char* message;
  };
  const Case cases[] = {
      {"orvo-machine", "else", 2, 13, "the format \"orvo-machine\" was expected"},
      {"\"version\": 1", "\"version\": 2", 3, 14, "version 1 was expected"},
      {"\"version\": 1", "\"version\": true", 3, 14, "a whole number was expected, not true"},
      {"\"version\": 1,", "\"version\": 1, \"version\": 1,", 3, 17, "there twice"},
      {"\"version\"", "\"Version\"", 3, 3, "isn't known here"},
      {"\"AXIS\"", "\"axis\"", 5, 27, "AXIS, TABLE, HEAD"},
      {"\"id\": 1", "\"id\": 1.5", 5, 41, "a whole number was expected, not this number"},
      {"\"id\": 1", "\"id\": 16777216", 5, 41, "to 16777215 was expected"},
      {"\"register\": 0", "\"register\": 9e9", 5, 72, "a whole number was expected"},
      {"\"register\": 0", "\"registers\": 0", 5, 60, "\"registers\" isn't known here"},
      {"\"register\": 0,", "", 5, 5, "\"register\" is missing"},
      {"\"name\": \"X\"", "\"name\": 3", 5, 14, "a text was expected, not this number"},
      {"[0, 0, 5]", "[0, 5]", 6, 40, "3 numbers were expected, not 2"},
      {"[0, 0, 5]", "[0, 0, \"x\"]", 6, 47, "a number was expected, not \"x\""},
      {"[0, 0, 5]", "[0, 0, [[[0]]]]", 6, 48, "nested deeper"},
      {"[0, 0, 5]", "[0, 0, 1e999]", 6, 47, "this number is too large"},
      {"[0, 0, 5]", "[0, 0, 5", 6, 48, "a comma or ] was expected, not }"},
      {"  \"format\": \"orvo-machine\",\n", "", 1, 1, "\"format\" is missing here"},
      {"\"dir\"", "\"dir\": [0, 0, 1], \"dir\"", 6, 51, "\"dir\" is there twice"},
      {"{\"name\"", "17, {\"name\"", 5, 5, "an object was expected"},
      {"\"entities\": [", "\"entities\": {\"a\":[", 4, 15, "an array was expected"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.to);
    std::string text = SmallText;
    const std::size_t place = text.find(c.from);
    ASSERT_NE(place, std::string::npos);
    text.replace(place, std::string(c.from).size(), c.to);
    try {
      Read(text);
      ADD_FAILURE() << "was read";
    } catch (const ReadError& error) {
      EXPECT_EQ(error.GetFile(), "in");
      EXPECT_EQ(error.GetLine(), c.line) << error.what();
      EXPECT_EQ(error.GetColumn(), c.column) << error.what();
      EXPECT_THAT(error.GetMessage(), HasSubstr(c.message));
    }
  }
}

TEST(MachineJson, RefusesWhatIsNoObjectAtAll) {
  for (const char* text :
       {"", " ", "[]", "3", "null", "{}", "{\"format\":\"orvo-machine\"}", "\xff",
        "{\"entities\":[]}", "{\"format\":\"orvo-machine\",\"version\":1}"}) {
    SCOPED_TRACE(text);
    EXPECT_THROW(Read(text), ReadError);
  }
  EXPECT_NO_THROW(Read("{\"format\":\"orvo-machine\",\"version\":1,\"entities\":[]}"));
}

TEST(MachineJson, BlamesTheObjectThatLacksAMember) {
  try {
    Read("\n  {}");
    ADD_FAILURE() << "was read";
  } catch (const ReadError& error) {
    EXPECT_STREQ(error.what(), "in:2:3: the member \"format\" is missing here");
  }
}

TEST(MachineJson, CountsColumnsInCharacters) {
  std::string text = SmallText;
  text.replace(text.find("\"X\""), 3, "\"\xC3\xA4\xE4\xB8\xAD\"");
  text.replace(text.find("AXIS"), 4, "none");
  try {
    Read(text);
    ADD_FAILURE() << "was read";
  } catch (const ReadError& error) {
    EXPECT_EQ(error.GetColumn(), 28U);
  }
}

TEST(MachineJson, RefusesATextBeyondTheLimit) {
  const std::string text = SmallText;
  Exchange::JsonReadOptions options;
  options.largestSize = text.size();
  EXPECT_NO_THROW(Read(text, options));
  options.largestSize = text.size() - 1;
  EXPECT_THROW(Read(text, options), ReadError);
}

TEST(MachineJson, RefusesFilesElsewhere) {
  for (const char* file : {"../x.stl", "/etc/passwd", "a\\\\b", "c:x", "", "a\\u0000b"}) {
    std::string text = SmallText;
    const std::string meshes =
        ", \"meshes\": [{\"color\": 1, \"file\": \"" + std::string(file) + "\"}]";
    text.insert(text.find("}}") + 1, meshes);
    EXPECT_THROW(Read(text), ReadError) << file;
  }
}

TEST(MachineJson, LeavesTheMachineAsItWasWhereItFails) {
  Kin::Machine machine = Read(SmallText);
  std::istringstream in("{");
  EXPECT_THROW(Exchange::ReadMachineJson(in, "in", &machine), ReadError);
  EXPECT_EQ(machine.GetEntityNb(), 1);
}

TEST(MachineJson, RefusesEveryBeginningOfAFile) {
  const std::string text = Written(*ExampleMachineWithMeshes("trunnion_ac"));
  for (std::size_t size = 0; size + 2 < text.size(); size += 7) {
    EXPECT_THROW(Read(text.substr(0, size)), ReadError) << size;
  }
}

// Neither deep nor long nor random texts do harm.
TEST(MachineJson, StandsAnyText) {
  EXPECT_THROW(Read(std::string(1000000, '[')), ReadError);
  std::string deep = "{\"entities\":";
  for (int i = 0; i < 200000; ++i) {
    deep += "{\"a\":";
  }
  EXPECT_THROW(Read(deep), ReadError);
  const std::string text = Written(*ExampleMachineWithMeshes("millturn_2h2t"));
  ForCases(2000, [&](Draw& draw) {
    std::string changed = text;
    const int changeNb = draw.Int(1, 3);
    for (int i = 0; i < changeNb; ++i) {
      const auto place = static_cast<std::size_t>(draw.Int(0, static_cast<int>(text.size()) - 1));
      changed[place] = draw.Chance(0.7) ? draw.Of({'0', '9', '-', '"', '[', '}', ',', 'e', ' '})
                                        : static_cast<char>(draw.Int(0, 255));
    }
    try {
      const Kin::Machine machine = Read(changed);
      const std::string json = Written(machine);
      EXPECT_EQ(Written(Read(json)), json);
    } catch (const ReadError& error) {
      EXPECT_GT(error.GetLine() + error.GetMessage().size(), 0U);
    }
  });
}

TEST(MachineJson, SaysWhenAStreamFails) {
  std::ostringstream out;
  out.setstate(std::ios::badbit);
  Kin::Machine machine;
  EXPECT_THROW(Exchange::WriteMachineJson(machine, out), ExchangeError);
  EXPECT_THROW(Exchange::WriteMachineJsonFile(machine, "/no/such/folder/machine.json"),
               ExchangeError);
  EXPECT_THROW(Exchange::ReadMachineJsonFile("/no/such/folder/machine.json", &machine), ReadError);
}

TEST(MachineJson, SaysWhichWordIsMissing) {
  Kin::Machine machine;
  Kin::ProgramSystem system;
  system.SetRotariesCompute(static_cast<Kin::RotariesCompute>(7));
  machine.AddProgramSystem(system);
  std::ostringstream out;
  EXPECT_THROW(Exchange::WriteMachineJson(machine, out), ExchangeError);
}

}  // namespace
}  // namespace Orvo::Testing
