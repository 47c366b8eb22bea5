#include "MachineFiles.h"
#include "support/NearVector.h"
#include "support/SameBits.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Kin/CollisionCheck.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/ProgramSystem.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <list>
#include <stdexcept>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::Entity;
using Kin::EntityId;
using Kin::EntityLink;
using Kin::Machine;
using Kin::ProgramSystem;
using testing::ElementsAre;

std::vector<int> Ids(const std::list<EntityId>& list) { return {list.begin(), list.end()}; }

struct Collisions {
  std::vector<int> stock;
  std::vector<int> part;
  std::vector<int> fixture;
  std::vector<int> tool;
};

Collisions CollisionsOf(const Machine& machine) {
  const Kin::CollisionCheck& check = machine.GetCollisionCheck();
  std::list<EntityId> stock;
  std::list<EntityId> part;
  std::list<EntityId> fixture;
  std::list<EntityId> tool;
  check.GetListMachineStock(&stock);
  check.GetListMachinePart(&part);
  check.GetListMachineFixture(&fixture);
  check.GetListMachineTool(&tool);
  return {Ids(stock), Ids(part), Ids(fixture), Ids(tool)};
}

std::vector<int> PartnersOf(const Machine& machine, int id) {
  std::list<EntityId> partners;
  machine.GetCollisionCheck().GetListMachineMachine(id, &partners, true);
  return Ids(partners);
}

TEST(MachineXmlRead, EveryValueArrives) {
  Machine machine;
  ASSERT_TRUE(ReadText(machine, WholeText()));
  ASSERT_EQ(EntityCount(machine), 1U);
  const Entity& e = EntityAt(machine, 0);
  EXPECT_EQ(e.GetEntityName(), L"C axis");
  EXPECT_EQ(e.GetEntityType(), Kin::EntityTypeHead);
  EXPECT_EQ(e.GetEntityParallelType(), Kin::EntityParallelTypeParallel);
  EXPECT_EQ(e.GetEntityId(), 5);
  EXPECT_EQ(e.GetParentEntityId(), 3);
  EXPECT_EQ(e.GetRegister(), 4);
  EXPECT_TRUE(e.GetIsMotor());
  EXPECT_FALSE(e.GetCheckRangeAxis());
  EXPECT_TRUE(e.GetIsMounting());
  const EntityLink& link = e.GetEntityLink();
  EXPECT_EQ(link.GetEntityLinkType(), Kin::EntityLinkTypeRotary);
  EXPECT_TRUE(SameBits(link.GetCenter(), Vector3D(1.5, -2.5, 3.5)));
  EXPECT_TRUE(SameBits(link.GetDir(), Vector3D(0, 0, 1))) << "made unit";
  Matrix43 position;
  position.SetUVWT(AxisY, AxisZ, AxisX, Vector3D(10, 20, 30));
  EXPECT_TRUE(SameBits(link.GetPosition(), position));
  EXPECT_EQ(link.GetZeroRef(), 7.25);
  EXPECT_EQ(link.GetRangeMin(), -90.5);
  EXPECT_EQ(link.GetRangeMax(), 120.5);
  for (unsigned int slot = 1; slot < Kin::LinkSlotCount; ++slot) {
    EXPECT_EQ(link.GetZeroRef(slot), 0.0);
    EXPECT_EQ(link.GetRangeMin(slot), 0.0);
    EXPECT_EQ(link.GetRangeMax(slot), 0.0);
  }
  ASSERT_NE(e.GetEntityMesh(), nullptr);
  ASSERT_EQ(e.GetEntityMesh()->GetMeshNb(), 2U);
  EXPECT_EQ(e.GetEntityMesh()->GetMeshColor(0), 255U);
  EXPECT_EQ(e.GetEntityMesh()->GetMeshColor(1), 0xFFFFFFFFU);
  ASSERT_NE(e.GetEntityMesh()->GetMesh(1), nullptr);
  EXPECT_EQ(e.GetEntityMesh()->GetMesh(1)->GetDimNVerts(), 0U);

  ASSERT_EQ(machine.GetListProgramSystem().size(), 1U);
  ProgramSystem ps = machine.GetListProgramSystem().front();
  EXPECT_EQ(ps.GetProgramSystemName(), L"Main");
  EXPECT_EQ(ps.GetTableIndex(), 2);
  EXPECT_EQ(ps.GetHeadIndex(), 3);
  EXPECT_EQ(ps.GetMainLinear(0), 4);
  EXPECT_EQ(ps.GetMainLinear(1), 5);
  EXPECT_EQ(ps.GetMainLinear(2), 6);
  EXPECT_EQ(ps.GetMainRotary(0), 7);
  EXPECT_EQ(ps.GetMainRotary(1), 8);
  EXPECT_EQ(ps.GetRotariesCompute(), Kin::RotariesComputeAlphaPositive);

  EXPECT_THAT(PartnersOf(machine, 9), ElementsAre(2, 11));
  const Collisions collisions = CollisionsOf(machine);
  EXPECT_THAT(collisions.stock, ElementsAre(1, 2));
  EXPECT_THAT(collisions.part, ElementsAre(3));
  EXPECT_THAT(collisions.fixture, ElementsAre(4));
  EXPECT_THAT(collisions.tool, ElementsAre(5, 6, 7));
}

TEST(MachineXmlRead, FinishesTheMachineWhateverItFinds) {
  Machine machine;
  ASSERT_TRUE(ReadText(machine, WholeText()));
  EXPECT_FALSE(machine.IsFinished());
  EXPECT_EQ(machine.GetLastError(), Kin::MachineErrorNoTable);
  EXPECT_EQ(machine.GetEntityNb(), 1);
  EXPECT_EQ(machine.GetEntityIdMax(), 5);
  EXPECT_EQ(machine.GetRegisterNb(), 5);
}

TEST(MachineXmlRead, FailedReadDoesNotFinish) {
  Machine machine;
  EXPECT_FALSE(ReadText(machine, Replaced(WholeText(), "<Motor>true</Motor>", "")));
  EXPECT_EQ(EntityCount(machine), 1U);
  EXPECT_EQ(machine.GetEntityNb(), 0);
  EXPECT_EQ(machine.GetRegisterNb(), -1);
  EXPECT_TRUE(machine.GetListProgramSystem().empty());
}

// The rows of an element in the order in which they are read.
const std::vector<std::string>& EntityRows() {
  static const std::vector<std::string> rows = {"<Name>C axis</Name>",
                                                "<Type>HEAD</Type>",
                                                "<ParallelType>PARALLEL</ParallelType>",
                                                "<Id>5</Id>",
                                                "<ParentId>3</ParentId>",
                                                "<Register>4</Register>",
                                                "<Motor>true</Motor>",
                                                "<RangeAxis>false</RangeAxis>",
                                                "<Mounting>true</Mounting>",
                                                LinkText};
  return rows;
}

// Expects that the first values of an element were read and the others were not.
void ExpectRead(const Entity& e, std::size_t rows) {
  EXPECT_EQ(e.GetEntityName(), rows > 0 ? L"C axis" : L"");
  EXPECT_EQ(e.GetEntityType(), rows > 1 ? Kin::EntityTypeHead : Kin::EntityTypeAxis);
  EXPECT_EQ(e.GetEntityParallelType(),
            rows > 2 ? Kin::EntityParallelTypeParallel : Kin::EntityParallelTypeChain);
  EXPECT_EQ(e.GetEntityId(), rows > 3 ? 5 : -1);
  EXPECT_EQ(e.GetParentEntityId(), rows > 4 ? 3 : -1);
  EXPECT_EQ(e.GetRegister(), rows > 5 ? 4 : -1);
  EXPECT_EQ(e.GetIsMotor(), rows > 6);
  EXPECT_EQ(e.GetCheckRangeAxis(), rows <= 7);
  EXPECT_EQ(e.GetIsMounting(), rows > 8);
  EXPECT_EQ(e.GetEntityLink().GetEntityLinkType(), Kin::EntityLinkTypeUndef);
  EXPECT_EQ(e.GetEntityMesh(), nullptr);
}

TEST(MachineXmlRead, EveryRowOfAnElementIsRequired) {
  for (std::size_t row = 0; row < EntityRows().size(); ++row) {
    SCOPED_TRACE(EntityRows()[row]);
    Machine machine;
    EXPECT_FALSE(ReadText(machine, Replaced(WholeText(), EntityRows()[row], "")));
    ASSERT_EQ(EntityCount(machine), 1U) << "the unfinished element stays";
    ExpectRead(EntityAt(machine, 0), row);
  }
}

TEST(MachineXmlRead, UnknownWordsAndTruthsFail) {
  struct Case {
    std::size_t row;
    const char* text;
  };
  const Case cases[] = {
      {1, "<Type>head</Type>"},
      {1, "<Type> HEAD</Type>"},
      {1, "<Type>HEADS</Type>"},
      {1, "<Type>HEA</Type>"},
      {1, "<Type/>"},
      {2, "<ParallelType>parallel</ParallelType>"},
      {2, "<ParallelType></ParallelType>"},
      {6, "<Motor>True</Motor>"},
      {6, "<Motor> true</Motor>"},
      {6, "<Motor>true </Motor>"},
      {6, "<Motor>1</Motor>"},
      {6, "<Motor/>"},
      {7, "<RangeAxis>FALSE</RangeAxis>"},
      {8, "<Mounting>yes</Mounting>"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Machine machine;
    EXPECT_FALSE(ReadText(machine, Replaced(WholeText(), EntityRows()[c.row], c.text)));
    ASSERT_EQ(EntityCount(machine), 1U);
    ExpectRead(EntityAt(machine, 0), c.row);
  }
}

TEST(MachineXmlRead, TextThatIsNoIntegerThrows) {
  struct Case {
    const char* name;
    std::size_t row;
  };
  const Case rows[] = {{"Id", 3}, {"ParentId", 4}, {"Register", 5}};
  for (const Case& c : rows) {
    for (const char* const text : {"", " ", "x", "x5", "-", "+-5", "- 5", "&#x661;"}) {
      SCOPED_TRACE(std::string(c.name) + " " + text);
      Machine machine;
      const std::string element = std::string("<") + c.name + ">" + text + "</" + c.name + ">";
      try {
        ReadText(machine, Replaced(WholeText(), EntityRows()[c.row], element));
        ADD_FAILURE() << "no exception";
      } catch (const std::invalid_argument& e) {
        EXPECT_STREQ(e.what(), "invalid stoi argument");
      }
      ASSERT_EQ(EntityCount(machine), 1U) << "what was read so far stays";
      ExpectRead(EntityAt(machine, 0), c.row);
    }
    for (const char* const text :
         {"2147483648", "-2147483649", "99999999999999999999", " 4294967295"}) {
      SCOPED_TRACE(std::string(c.name) + " " + text);
      Machine machine;
      const std::string element = std::string("<") + c.name + ">" + text + "</" + c.name + ">";
      try {
        ReadText(machine, Replaced(WholeText(), EntityRows()[c.row], element));
        ADD_FAILURE() << "no exception";
      } catch (const std::out_of_range& e) {
        EXPECT_STREQ(e.what(), "stoi argument out of range");
      }
      ExpectRead(EntityAt(machine, 0), c.row);
    }
  }
}

TEST(MachineXmlRead, IntegersStartTheirTexts) {
  struct Case {
    const char* text;
    int value;
  };
  const Case cases[] = {{"12abc", 12},
                        {" \t\n 12", 12},
                        {"+12", 12},
                        {"-12", -12},
                        {"012", 12},
                        {"12.9", 12},
                        {"12 13", 12},
                        {"0x10", 0},
                        {"-0", 0},
                        {"&#49;&#50;", 12},
                        {"12e3", 12},
                        {"2147483647", 2147483647},
                        {"-2147483648", -2147483647 - 1}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Machine machine;
    ASSERT_TRUE(ReadText(machine, Replaced(WholeText(), "<ParentId>3</ParentId>",
                                           "<ParentId>" + std::string(c.text) + "</ParentId>")));
    EXPECT_EQ(EntityAt(machine, 0).GetParentEntityId(), c.value);
  }
}

// The rows of a link in the order in which they are read.
const std::vector<std::string>& LinkRows() {
  static const std::string position =
      "<Position><U X=\"0\" Y=\"1\" Z=\"0\"/><V X=\"0\" Y=\"0\" Z=\"1\"/><W X=\"1\" Y=\"0\" "
      "Z=\"0\"/><T X=\"10\" Y=\"20\" Z=\"30\"/></Position>";
  static const std::vector<std::string> rows = {"<Type>ROTARY</Type>",
                                                "<Center X=\"1.5\" Y=\"-2.5\" Z=\"3.5\"/>",
                                                "<Dir X=\"0\" Y=\"0\" Z=\"4\"/>",
                                                position,
                                                "<ZeroRef>7.25</ZeroRef>",
                                                "<RangeMin>-90.5</RangeMin>",
                                                "<RangeMax>120.5</RangeMax>"};
  return rows;
}

void ExpectLinkRead(const EntityLink& link, std::size_t rows) {
  EXPECT_EQ(link.GetEntityLinkType(),
            rows > 0 ? Kin::EntityLinkTypeRotary : Kin::EntityLinkTypeUndef);
  EXPECT_TRUE(SameBits(link.GetCenter(), rows > 1 ? Vector3D(1.5, -2.5, 3.5) : NullVector));
  EXPECT_TRUE(SameBits(link.GetDir(), rows > 2 ? AxisZ : NullVector));
  Matrix43 position;
  if (rows > 3) {
    position.SetUVWT(AxisY, AxisZ, AxisX, Vector3D(10, 20, 30));
  }
  EXPECT_TRUE(SameBits(link.GetPosition(), position));
  EXPECT_EQ(link.GetZeroRef(), rows > 4 ? 7.25 : 0.0);
  EXPECT_EQ(link.GetRangeMin(), rows > 5 ? -90.5 : 0.0);
  EXPECT_EQ(link.GetRangeMax(), rows > 6 ? 120.5 : 0.0);
}

TEST(MachineXmlRead, LinkThatIsNotWholeKeepsWhatWasReadAndTheElementCounts) {
  for (std::size_t row = 0; row < LinkRows().size(); ++row) {
    SCOPED_TRACE(LinkRows()[row]);
    Machine machine;
    EXPECT_TRUE(ReadText(machine, Replaced(WholeText(), LinkRows()[row], "")));
    ASSERT_EQ(EntityCount(machine), 1U);
    const Entity& e = EntityAt(machine, 0);
    EXPECT_TRUE(e.GetIsMounting());
    ExpectLinkRead(e.GetEntityLink(), row);
    ASSERT_NE(e.GetEntityMesh(), nullptr) << "the meshes are read all the same";
    EXPECT_EQ(e.GetEntityMesh()->GetMeshNb(), 2U);
    EXPECT_EQ(machine.GetListProgramSystem().size(), 1U);
  }
}

TEST(MachineXmlRead, EmptyLinkIsALink) {
  Machine machine;
  EXPECT_TRUE(ReadText(machine, Replaced(WholeText(), LinkText, "<EntityLink/>")));
  ExpectLinkRead(EntityAt(machine, 0).GetEntityLink(), 0);
}

TEST(MachineXmlRead, UnknownKindOfLinkEndsTheLink) {
  for (const char* const word : {"linear", "ROTARY ", "", "XYZ", "UNDEFINED"}) {
    Machine machine;
    EXPECT_TRUE(ReadText(machine, Replaced(WholeText(), "ROTARY", word)));
    ExpectLinkRead(EntityAt(machine, 0).GetEntityLink(), 0);
  }
}

TEST(MachineXmlRead, EveryPartOfAVectorIsRequired) {
  struct Case {
    const char* part;
    std::size_t rows;
  };
  const Case cases[] = {
      {" X=\"1.5\"", 1}, {" Y=\"-2.5\"", 1}, {" Z=\"3.5\"", 1},
      {" Z=\"4\"", 2},   {" X=\"10\"", 3},   {" Z=\"30\"", 3},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.part);
    Machine machine;
    EXPECT_TRUE(ReadText(machine, Replaced(WholeText(), c.part, "")));
    ExpectLinkRead(EntityAt(machine, 0).GetEntityLink(), c.rows);
  }
}

TEST(MachineXmlRead, EveryColumnOfAFrameIsRequired) {
  for (const char* const column :
       {"<U X=\"0\" Y=\"1\" Z=\"0\"/>", "<V X=\"0\" Y=\"0\" Z=\"1\"/>",
        "<W X=\"1\" Y=\"0\" Z=\"0\"/>", "<T X=\"10\" Y=\"20\" Z=\"30\"/>"}) {
    SCOPED_TRACE(column);
    Machine machine;
    EXPECT_TRUE(ReadText(machine, Replaced(WholeText(), column, "")));
    ExpectLinkRead(EntityAt(machine, 0).GetEntityLink(), 3);
  }
}

// A null direction becomes x, as every short one does.
TEST(MachineXmlRead, DirectionIsMadeUnit) {
  struct Case {
    const char* text;
    Vector3D dir;
  };
  const Case cases[] = {
      {"<Dir X=\"0\" Y=\"0\" Z=\"0\"/>", {1, 0, 0}},
      {"<Dir X=\"0\" Y=\"0.0009\" Z=\"0\"/>", {1, 0, 0}},
      {"<Dir X=\"0\" Y=\"0.0011\" Z=\"0\"/>", {0, 1, 0}},
      {"<Dir X=\"0\" Y=\"-250\" Z=\"0\"/>", {0, -1, 0}},
      {"<Dir X=\"3\" Y=\"0\" Z=\"4\"/>", {0.6, 0, 0.8}},
  };
  for (const Case& c : cases) {
    Machine machine;
    ASSERT_TRUE(ReadText(machine, Replaced(WholeText(), LinkRows()[2], c.text)));
    EXPECT_TRUE(NearVector(EntityAt(machine, 0).GetEntityLink().GetDir(), c.dir, 1e-15)) << c.text;
  }
}

// The frame is marked as a rigid one, whatever its values: its rotation is not looked at.
TEST(MachineXmlRead, FrameIsTakenForARigidOne) {
  Machine machine;
  ASSERT_TRUE(
      ReadText(machine, Replaced(Replaced(WholeText(), "<U X=\"0\" Y=\"1\" Z=\"0\"/>",
                                          "<U X=\"2\" Y=\"0\" Z=\"0\"/>"),
                                 "<V X=\"0\" Y=\"0\" Z=\"1\"/>", "<V X=\"0\" Y=\"2\" Z=\"0\"/>")));
  Matrix43 position = EntityAt(machine, 0).GetEntityLink().GetPosition();
  EXPECT_TRUE(SameBits(position.Inverse(), position.HInverse()));
  EXPECT_TRUE(SameBits(position.GetU(), Vector3D(2, 0, 0)));
}

TEST(MachineXmlRead, TextThatIsNoNumberThrows) {
  struct Case {
    std::string from;
    std::string to;
    std::size_t rows;
  };
  const Case cases[] = {
      {"X=\"1.5\"", "X=\"\"", 1},
      {"Y=\"-2.5\"", "Y=\"abc\"", 1},
      {"Z=\"3.5\"", "Z=\" \"", 1},
      {"Z=\"4\"", "Z=\"-\"", 2},
      {"X=\"10\"", "X=\".\"", 3},
      {"<ZeroRef>7.25</ZeroRef>", "<ZeroRef></ZeroRef>", 4},
      {"<ZeroRef>7.25</ZeroRef>", "<ZeroRef>,5</ZeroRef>", 4},
      {"<RangeMin>-90.5</RangeMin>", "<RangeMin>e5</RangeMin>", 5},
      {"<RangeMax>120.5</RangeMax>", "<RangeMax/>", 6},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.to);
    Machine machine;
    try {
      ReadText(machine, Replaced(WholeText(), c.from, c.to));
      ADD_FAILURE() << "no exception";
    } catch (const std::invalid_argument& e) {
      EXPECT_STREQ(e.what(), "invalid stod argument");
    }
    ASSERT_EQ(EntityCount(machine), 1U);
    ExpectLinkRead(EntityAt(machine, 0).GetEntityLink(), c.rows);
    EXPECT_EQ(EntityAt(machine, 0).GetEntityMesh(), nullptr);
    EXPECT_EQ(machine.GetEntityNb(), 0) << "not finished";
  }
}

TEST(MachineXmlRead, NumberOutOfRangeThrows) {
  for (const char* const text : {"1e400", "-1e400", "1e-400", "1e99999"}) {
    SCOPED_TRACE(text);
    Machine machine;
    try {
      ReadText(machine, Replaced(WholeText(), "7.25", text));
      ADD_FAILURE() << "no exception";
    } catch (const std::out_of_range& e) {
      EXPECT_STREQ(e.what(), "stod argument out of range");
    }
  }
}

TEST(MachineXmlRead, AllPartsOfAVectorAreFetchedBeforeTheFirstIsConverted) {
  Machine machine;
  EXPECT_TRUE(ReadText(
      machine, Replaced(WholeText(), "X=\"1.5\" Y=\"-2.5\" Z=\"3.5\"", "X=\"abc\" Y=\"-2.5\"")))
      << "the missing part is seen first";
  ExpectLinkRead(EntityAt(machine, 0).GetEntityLink(), 1);
}

TEST(MachineXmlRead, OrderOfSiblingsDoesNotMatterAndStrangersAreIgnored) {
  std::string entity = "<Entity old=\"1\"><Stranger><Id>77</Id></Stranger>";
  for (auto row = EntityRows().rbegin(); row != EntityRows().rend(); ++row) {
    entity += *row + "<!-- note -->";
  }
  entity += "</Entity>";
  Machine machine;
  ASSERT_TRUE(ReadText(machine,
                       "<Machine><CollisionCheck/><ProgramSystems/><Strange/><Entities>"
                       "<Other/>" +
                           entity + "</Entities></Machine>"));
  ASSERT_EQ(EntityCount(machine), 1U);
  EXPECT_EQ(EntityAt(machine, 0).GetEntityId(), 5);
  ExpectLinkRead(EntityAt(machine, 0).GetEntityLink(), 7);
}

TEST(MachineXmlRead, FirstElementOfANameCounts) {
  Machine machine;
  ASSERT_TRUE(ReadText(machine, Replaced(WholeText(), "<Id>5</Id>", "<Id>5</Id><Id>6</Id>")));
  EXPECT_EQ(EntityAt(machine, 0).GetEntityId(), 5);
  Machine twice;
  ASSERT_TRUE(
      ReadText(twice, "<Machine><Entities/><Entities>" + EntityText() + "</Entities></Machine>"));
  EXPECT_EQ(EntityCount(twice), 0U);
}

TEST(MachineXmlRead, ElementsStandInTheirOrder) {
  std::string entities;
  for (const char* const id : {"8", "1", "1", "-3", "5"}) {
    entities += Replaced(EntityText(), "<Id>5</Id>", "<Id>" + std::string(id) + "</Id>") + "<Gap/>";
  }
  Machine machine;
  ASSERT_TRUE(ReadText(machine, MachineText(entities)));
  std::vector<int> ids;
  for (const Entity& e : machine.GetKinematic().GetListEntity()) {
    ids.push_back(e.GetEntityId());
  }
  EXPECT_THAT(ids, ElementsAre(8, 1, 1, -3, 5));
}

TEST(MachineXmlRead, FirstBadElementEndsTheRead) {
  const std::string bad = Replaced(EntityText(), "<Motor>true</Motor>", "");
  Machine machine;
  EXPECT_FALSE(ReadText(machine, MachineText(EntityText() + bad + EntityText(), CollisionText)));
  EXPECT_EQ(EntityCount(machine), 2U);
  EXPECT_TRUE(CollisionsOf(machine).tool.empty());
}

TEST(MachineXmlRead, MachineAndEntitiesAreRequired) {
  for (const char* const text :
       {"<Other/>", "<machine><Entities/></machine>", "<Machine/>",
        "<Machine><ProgramSystems/></Machine>", "<Root><Machine><Entities/></Machine></Root>"}) {
    SCOPED_TRACE(text);
    Machine machine;
    EXPECT_FALSE(ReadText(machine, text));
    EXPECT_EQ(machine.GetRegisterNb(), -1);
  }
  Machine machine;
  EXPECT_TRUE(ReadText(machine, "<Machine><Entities/></Machine>"));
  EXPECT_EQ(machine.GetLastError(), Kin::MachineErrorNoHead);
  EXPECT_TRUE(ReadText(machine, "<Other/><Machine Version=\"99\"><Entities/></Machine>"))
      << "the version is not looked at";
}

TEST(MachineXmlRead, ProgramSystemsAndCollisionCheckMayBeAbsent) {
  Machine machine;
  ASSERT_TRUE(ReadText(machine, MachineText(EntityText())));
  EXPECT_TRUE(machine.GetListProgramSystem().empty());
  EXPECT_TRUE(CollisionsOf(machine).stock.empty());
  EXPECT_TRUE(PartnersOf(machine, 9).empty());
}

TEST(MachineXmlRead, ValidMachineWithoutProgramSystemsGetsTheDefaultOne) {
  Machine built;
  built.AddEntityTable(L"table", -1, Matrix43());
  built.AddEntityLinear(L"x", 1, AxisX)->SetRegister(0);
  built.AddEntityLinear(L"y", 2, AxisY)->SetRegister(1);
  built.AddEntityLinear(L"z", 3, AxisZ)->SetRegister(2);
  built.AddEntityHead(L"head", 4, Matrix43());
  Machine machine;
  ASSERT_TRUE(ReadText(machine, WrittenText(built)));
  EXPECT_TRUE(machine.IsFinished());
  EXPECT_EQ(machine.GetLastError(), Kin::MachineErrorNone);
  ASSERT_EQ(machine.GetListProgramSystem().size(), 1U);
  EXPECT_EQ(machine.GetListProgramSystem().front().GetProgramSystemName(), L"Default");
  EXPECT_EQ(EntityAt(machine, 4).GetLevel(), 4);
}

TEST(MachineXmlRead, EveryRowOfAProgramSystemIsRequiredButThePolicy) {
  const std::vector<std::string> rows = {"<ProgramSystemName>Main</ProgramSystemName>",
                                         "<TableIndex>2</TableIndex>",
                                         "<HeadIndex>3</HeadIndex>",
                                         "<MainLinear RegX=\"4\" RegY=\"5\" RegZ=\"6\"/>",
                                         "<MainRotary RegR0=\"7\" RegR1=\"8\"/>",
                                         " RegX=\"4\"",
                                         " RegY=\"5\"",
                                         " RegZ=\"6\"",
                                         " RegR0=\"7\"",
                                         " RegR1=\"8\""};
  for (const std::string& row : rows) {
    SCOPED_TRACE(row);
    Machine machine;
    EXPECT_FALSE(ReadText(machine, Replaced(WholeText(), row, "")));
    EXPECT_TRUE(machine.GetListProgramSystem().empty());
    EXPECT_EQ(EntityCount(machine), 1U);
    EXPECT_TRUE(CollisionsOf(machine).tool.empty()) << "the read ended there";
    EXPECT_EQ(machine.GetEntityNb(), 0);
  }
}

TEST(MachineXmlRead, AbsentOrUnknownPolicyKeepsShortestWay) {
  for (const char* const text :
       {"", "<RotariesCompute/>", "<RotariesCompute>alphapositive</RotariesCompute>",
        "<RotariesCompute> Default</RotariesCompute>", "<RotariesCompute>0</RotariesCompute>"}) {
    Machine machine;
    ASSERT_TRUE(ReadText(
        machine, Replaced(WholeText(), "<RotariesCompute>AlphaPositive</RotariesCompute>", text)));
    ASSERT_EQ(machine.GetListProgramSystem().size(), 1U);
    ProgramSystem ps = machine.GetListProgramSystem().front();
    EXPECT_EQ(ps.GetRotariesCompute(), Kin::RotariesComputeShortestWay) << text;
  }
}

TEST(MachineXmlRead, NameOfAProgramSystemHasASecondKey) {
  struct Case {
    const char* text;
    const wchar_t* name;
  };
  const Case cases[] = {
      {"<ProgramminSystemName>Old</ProgramminSystemName>", L"Old"},
      {"<ProgramminSystemName>Old</ProgramminSystemName><ProgramSystemName>New</ProgramSystemName>",
       L"New"},
      {"<ProgramSystemName/><ProgramminSystemName>Old</ProgramminSystemName>", L""},
  };
  for (const Case& c : cases) {
    Machine machine;
    ASSERT_TRUE(ReadText(
        machine, Replaced(WholeText(), "<ProgramSystemName>Main</ProgramSystemName>", c.text)));
    ASSERT_EQ(machine.GetListProgramSystem().size(), 1U);
    EXPECT_EQ(machine.GetListProgramSystem().front().GetProgramSystemName(), c.name);
  }
  Machine machine;
  EXPECT_FALSE(
      ReadText(machine, Replaced(WholeText(), "<ProgramSystemName>Main</ProgramSystemName>",
                                 "<ProgrammingSystemName>Old</ProgrammingSystemName>")));
}

TEST(MachineXmlRead, BadNumberInAProgramSystemThrows) {
  for (const char* const from : {"<TableIndex>2", "<HeadIndex>3"}) {
    Machine machine;
    const std::string to = std::string(from).substr(0, std::string(from).size() - 1) + "x";
    EXPECT_THROW(ReadText(machine, Replaced(WholeText(), from, to)), std::invalid_argument);
    EXPECT_TRUE(machine.GetListProgramSystem().empty());
  }
  for (const char* const attribute :
       {"RegX=\"4\"", "RegY=\"5\"", "RegZ=\"6\"", "RegR0=\"7\"", "RegR1=\"8\""}) {
    const std::string name = std::string(attribute).substr(0, std::string(attribute).find('='));
    Machine machine;
    EXPECT_THROW(ReadText(machine, Replaced(WholeText(), attribute, name + "=\"\"")),
                 std::invalid_argument);
    EXPECT_THROW(ReadText(machine, Replaced(WholeText(), attribute, name + "=\"2147483648\"")),
                 std::out_of_range);
    EXPECT_TRUE(machine.GetListProgramSystem().empty());
  }
}

TEST(MachineXmlRead, AllRegistersAreFetchedBeforeTheFirstIsConverted) {
  Machine machine;
  EXPECT_FALSE(ReadText(machine, Replaced(WholeText(), "RegX=\"4\" RegY=\"5\" RegZ=\"6\"",
                                          "RegX=\"abc\" RegY=\"5\"")));
  EXPECT_FALSE(
      ReadText(machine, Replaced(WholeText(), "RegR0=\"7\" RegR1=\"8\"", "RegR0=\"abc\"")));
}

TEST(MachineXmlRead, SeveralProgramSystemsStandInTheirOrder) {
  const std::string second = Replaced(ProgramSystemText, ">Main<", ">Second<");
  Machine machine;
  ASSERT_TRUE(ReadText(machine, Replaced(WholeText(), ProgramSystemText,
                                         std::string(ProgramSystemText) + "<x/>" + second)));
  ASSERT_EQ(machine.GetListProgramSystem().size(), 2U);
  EXPECT_EQ(machine.GetListProgramSystem().front().GetProgramSystemName(), L"Main");
  EXPECT_EQ(machine.GetListProgramSystem().back().GetProgramSystemName(), L"Second");
  const std::string bad = Replaced(second, "<HeadIndex>3</HeadIndex>", "");
  Machine partly;
  EXPECT_FALSE(ReadText(
      partly, Replaced(WholeText(), ProgramSystemText, std::string(ProgramSystemText) + bad)));
  EXPECT_EQ(partly.GetListProgramSystem().size(), 1U) << "the ones before it stay";
}

TEST(MachineXmlRead, IdsAreSplitAtSpacesAndTabs) {
  struct Case {
    const char* text;
    std::vector<int> ids;
  };
  const Case cases[] = {
      {"\t 4   7", {4, 7}},    {"4 7", {4, 7}},    {"4\t7", {4, 7}},
      {"  \t  ", {}},          {"", {}},           {"4 4 4", {4}},
      {"7 4", {7, 4}},         {"-3 +2", {-3, 2}}, {"4x 7", {4, 7}},
      {"4\n7 8", {4, 8}},      {"4,7 8", {4, 8}},  {"4 7 ", {4, 7}},
      {"&#9;4&#32;7", {4, 7}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const std::string section = "<EntityIds>" + std::string(c.text) + "</EntityIds>";
    Machine machine;
    ASSERT_TRUE(ReadText(machine, MachineText("", "<CollisionCheck><MachineTool>" + section +
                                                      "</MachineTool></CollisionCheck>")));
    EXPECT_EQ(CollisionsOf(machine).tool, c.ids);
    Machine pairs;
    ASSERT_TRUE(ReadText(
        pairs, MachineText("",
                           "<CollisionCheck><MachineMachines><MachineMachine><EntityId>100"
                           "</EntityId>" +
                               section + "</MachineMachine></MachineMachines></CollisionCheck>")));
    EXPECT_EQ(PartnersOf(pairs, 100), c.ids);
  }
}

TEST(MachineXmlRead, BadIdThrowsBeforeAnyOfItsTextIsSet) {
  for (const char* const text : {"1 2 x", "1 2 99999999999", "1\n 2 \n"}) {
    SCOPED_TRACE(text);
    Machine machine;
    const std::string all = Replaced(CollisionText, "<EntityIds>4</EntityIds>",
                                     "<EntityIds>" + std::string(text) + "</EntityIds>");
    EXPECT_ANY_THROW(ReadText(machine, MachineText("", all)));
    const Collisions collisions = CollisionsOf(machine);
    EXPECT_THAT(collisions.stock, ElementsAre(1, 2)) << "the sections before stay";
    EXPECT_THAT(collisions.part, ElementsAre(3));
    EXPECT_THAT(collisions.fixture, ElementsAre());
    EXPECT_THAT(collisions.tool, ElementsAre());
  }
  Machine machine;
  EXPECT_THROW(ReadText(machine, Replaced(WholeText(), "2 11", "2 x")), std::invalid_argument);
  EXPECT_TRUE(PartnersOf(machine, 9).empty());
  EXPECT_THROW(ReadText(machine, Replaced(WholeText(), "<EntityId>9", "<EntityId>x")),
               std::invalid_argument);
}

TEST(MachineXmlRead, PartsOfTheCollisionCheckAreRequiredWhereTheirSectionIs) {
  const std::vector<std::string> rows = {
      "<EntityId>9</EntityId>",   "<EntityIds>2 11</EntityIds>", "<EntityIds>1 2</EntityIds>",
      "<EntityIds>3</EntityIds>", "<EntityIds>4</EntityIds>",    "<EntityIds>5 6 7</EntityIds>"};
  for (const std::string& row : rows) {
    SCOPED_TRACE(row);
    Machine machine;
    EXPECT_FALSE(ReadText(machine, Replaced(WholeText(), row, "")));
    EXPECT_EQ(machine.GetEntityNb(), 0);
    EXPECT_EQ(machine.GetListProgramSystem().size(), 1U) << "what was read before stays";
  }
}

TEST(MachineXmlRead, SectionsOfTheCollisionCheckMayBeAbsentOrEmpty) {
  Machine machine;
  ASSERT_TRUE(ReadText(machine, MachineText("",
                                            "<CollisionCheck><MachineMachines/><MachineTool>"
                                            "<EntityIds>4</EntityIds></MachineTool>"
                                            "</CollisionCheck>")));
  EXPECT_THAT(CollisionsOf(machine).tool, ElementsAre(4));
  EXPECT_THAT(CollisionsOf(machine).stock, ElementsAre());
}

TEST(MachineXmlRead, SeveralPairsAreRead) {
  Machine machine;
  ASSERT_TRUE(ReadText(machine, MachineText("",
                                            "<CollisionCheck><MachineMachines>"
                                            "<MachineMachine><EntityId>3</EntityId><EntityIds>1 3 2"
                                            "</EntityIds></MachineMachine><Gap/>"
                                            "<MachineMachine><EntityId>1</EntityId><EntityIds>3 7"
                                            "</EntityIds></MachineMachine>"
                                            "</MachineMachines></CollisionCheck>")));
  EXPECT_THAT(PartnersOf(machine, 3), ElementsAre(1, 2)) << "never with itself";
  EXPECT_THAT(PartnersOf(machine, 1), ElementsAre(3, 7));
}

TEST(MachineXmlRead, MeshWithoutColorEndsTheMeshes) {
  struct Case {
    const char* text;
    int count;  // -1: no list
  };
  const Case cases[] = {
      {"", -1},
      {"<Meshes/>", -1},
      {"<Meshes><Mesh/></Meshes>", -1},
      {"<Meshes><Mesh/><Mesh><RGB>1</RGB></Mesh></Meshes>", -1},
      {"<Meshes><Mesh><RGB>1</RGB></Mesh><Mesh/><Mesh><RGB>2</RGB></Mesh></Meshes>", 1},
      {"<Meshes><Other/><Mesh><RGB>1</RGB></Mesh><Other/><Mesh><RGB>2</RGB></Mesh></Meshes>", 2},
  };
  const std::string meshes =
      "<Meshes><Mesh><RGB>255</RGB></Mesh><Mesh><RGB>-1</RGB></Mesh></Meshes>";
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Machine machine;
    EXPECT_TRUE(ReadText(machine, Replaced(WholeText(), meshes, c.text)));
    const Kin::EntityMesh* list = EntityAt(machine, 0).GetEntityMesh();
    if (c.count < 0) {
      EXPECT_EQ(list, nullptr);
    } else {
      ASSERT_NE(list, nullptr);
      EXPECT_EQ(static_cast<int>(list->GetMeshNb()), c.count);
    }
  }
}

TEST(MachineXmlRead, ColorsPassThroughSignedNumbers) {
  struct Case {
    const char* text;
    unsigned int color;
  };
  const Case cases[] = {{"-1", 0xFFFFFFFFU},
                        {"-2147483648", 0x80000000U},
                        {"2147483647", 0x7FFFFFFFU},
                        {"0", 0U},
                        {"-16777216", 0xFF000000U}};
  for (const Case& c : cases) {
    Machine machine;
    ASSERT_TRUE(ReadText(machine, Replaced(WholeText(), "<RGB>255</RGB>",
                                           "<RGB>" + std::string(c.text) + "</RGB>")));
    EXPECT_EQ(EntityAt(machine, 0).GetEntityMesh()->GetMeshColor(0), c.color);
  }
  Machine machine;
  EXPECT_THROW(ReadText(machine, Replaced(WholeText(), "<RGB>-1</RGB>", "<RGB>4294967295</RGB>")),
               std::out_of_range);
  ASSERT_NE(EntityAt(machine, 0).GetEntityMesh(), nullptr);
  EXPECT_EQ(EntityAt(machine, 0).GetEntityMesh()->GetMeshNb(), 1U) << "the first one stays";
}

TEST(MachineXmlRead, AppendsToWhatTheMachineHolds) {
  Machine machine;
  machine.AddEntityTable(L"own", -1, Matrix43());
  machine.AddProgramSystem(ProgramSystem());
  machine.GetCollisionCheckMod().SetMachineTool(42, true);
  ASSERT_TRUE(ReadText(machine, WholeText()));
  ASSERT_EQ(EntityCount(machine), 2U);
  EXPECT_EQ(EntityAt(machine, 0).GetEntityName(), L"own");
  EXPECT_EQ(EntityAt(machine, 1).GetEntityName(), L"C axis");
  EXPECT_EQ(machine.GetListProgramSystem().size(), 2U);
  EXPECT_THAT(CollisionsOf(machine).tool, ElementsAre(42, 5, 6, 7));
  EXPECT_EQ(machine.GetEntityNb(), 2) << "finished again";
}

TEST(MachineXmlRead, FinishedMachineTakesAFileToo) {
  Machine machine;
  machine.AddEntityTable(L"table", -1, Matrix43());
  for (const Vector3D& dir : {AxisX, AxisY, AxisZ}) {
    machine.AddEntityLinear(L"axis", -1, dir);
  }
  machine.AddEntityHead(L"head", -1, Matrix43());
  ASSERT_TRUE(machine.Finish());
  ASSERT_TRUE(ReadText(machine, Replaced(WholeText(), "<Id>5</Id>", "<Id>6</Id>")));
  EXPECT_TRUE(machine.IsFinished());
  EXPECT_EQ(machine.GetEntityNb(), 6);
  EXPECT_EQ(machine.GetHeadNb(), 2);
  EXPECT_EQ(machine.GetListProgramSystem().size(), 2U);
}

TEST(MachineXmlRead, IdsAndRegistersTooLargeThrowFromTheFinish) {
  for (const char* const row : {"<Id>5</Id>", "<Register>4</Register>"}) {
    const std::string name = std::string(row).substr(1, std::string(row).find('>') - 1);
    Machine machine;
    EXPECT_THROW(
        ReadText(machine, Replaced(WholeText(), row, "<" + name + ">16777216</" + name + ">")),
        std::length_error);
    EXPECT_EQ(EntityCount(machine), 1U);
    Machine largest;
    EXPECT_TRUE(
        ReadText(largest, Replaced(WholeText(), row, "<" + name + ">16777215</" + name + ">")));
  }
}

TEST(MachineXmlRead, TextsOfXmlAreTakenApart) {
  struct Case {
    const char* text;
    const wchar_t* name;
  };
  const Case cases[] = {
      {"<Name>a &amp; b &lt;c&gt; &quot;d&quot; &apos;e&apos;</Name>", L"a & b <c> \"d\" 'e'"},
      {"<Name>&#65;&#x42;&#8364;</Name>", L"AB\u20ac"},
      {"<Name>two\r\nlines\rthree</Name>", L"two\nlines\nthree"},
      {"<Name>  blanks  </Name>", L"  blanks  "},
      {"<Name><![CDATA[<raw> & ]]></Name>", L"<raw> & "},
      {"<Name/>", L""},
      {"<Name></Name>", L""},
      {"<Name a=\"b\">attribute</Name>", L"attribute"},
      {"<Name><b>bold</b></Name>", L""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Machine machine;
    ASSERT_TRUE(ReadText(machine, Replaced(WholeText(), "<Name>C axis</Name>", c.text)));
    EXPECT_EQ(EntityAt(machine, 0).GetEntityName(), c.name);
  }
}

TEST(MachineXmlRead, LooksPastByteOrderMarkAndProlog) {
  for (const std::string& prolog :
       {std::string("\xEF\xBB\xBF"), std::string("<!-- note -->\n"), std::string("<!DOCTYPE x>\n"),
        std::string("\n\n  "), std::string("<?xml version=\"1.0\"?>\n")}) {
    Machine machine;
    EXPECT_TRUE(ReadText(machine, prolog + "<Machine><Entities/></Machine>")) << prolog;
  }
}

}  // namespace
}  // namespace Orvo::Testing
