#include "MachineFiles.h"
#include "support/PrivateMember.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Kin/CollisionCheck.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Mesh.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <string>
#include <vector>

namespace Orvo::Testing {

struct LinkTypeOf {
  using Type = Kin::EntityLinkType Kin::EntityLink::*;
  friend Type MemberOf(LinkTypeOf);
};
template struct PrivateMember<LinkTypeOf, &Kin::EntityLink::type_>;

namespace {

using Kin::Entity;
using Kin::Machine;
using Kin::ProgramSystem;
using testing::HasSubstr;
using testing::Not;

TEST(MachineXmlWrite, EmptyMachineHasItsThreeSections) {
  Machine machine;
  EXPECT_EQ(WrittenText(machine),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<Machine Version=\"0\">\n"
            "    <Entities/>\n"
            "    <ProgramSystems/>\n"
            "    <CollisionCheck/>\n"
            "</Machine>\n");
}

TEST(MachineXmlWrite, WholeMachineByteForByte) {
  Machine machine;
  machine.AddEntityStatic(L"base", -1);
  Entity* c =
      machine.AddEntityRotary(L"C & <A>", 1, Vector3D(10, -20.5, 0.0000004), Vector3D(0, 0, -2));
  c->SetRegister(3);
  c->SetIsMotor(true);
  c->SetIsMounting(true);
  c->SetRange(-90, 1e22);
  c->GetEntityLinkMod()->SetZeroRef(0.1);
  c->GetEntityLinkMod()->SetZeroRef(1, 99);
  SetParallelType(*c, Kin::EntityParallelTypeParallel);
  c->AllocEntityMesh()->AddMesh(new Mesh, 255);
  c->GetEntityMeshMod()->AddMesh(new Mesh, 0xFF000000U);
  machine.AddEntity()->AllocEntityMesh();
  Matrix43 frame;
  frame.SetUVWT(Vector3D(0, 1, 0), Vector3D(0, 0, 1), Vector3D(1, 0, 0), Vector3D(1.5, -0.0, 3));
  machine.AddEntityHead(L"", 2, frame);
  ProgramSystem ps;
  ps.SetProgramSystemName(L"Main");
  ps.SetHeadIndex(0);
  ps.SetMainLinear(0, 1, 2);
  ps.SetMainRotary(3, -7);
  machine.AddProgramSystem(ps);
  machine.AddProgramSystem(ProgramSystem());
  Kin::CollisionCheck& check = machine.GetCollisionCheckMod();
  check.SetMachineMachine(1, 4, true);
  check.SetMachineMachine(4, 2, true);
  check.SetMachineMachine(2, 1, true);
  check.SetMachineMachine(99, 1, true);  // its larger id is no element's
  check.SetMachineTool(7, true);
  check.SetMachineTool(-5, true);
  check.SetMachineStock(4, true);

  const char* const expected = R"(<?xml version="1.0" encoding="UTF-8"?>
<Machine Version="0">
    <Entities>
        <Entity>
            <Name>base</Name>
            <Type>AXIS</Type>
            <ParallelType>CHAIN</ParallelType>
            <Id>1</Id>
            <ParentId>-1</ParentId>
            <Register>-1</Register>
            <Motor>false</Motor>
            <RangeAxis>false</RangeAxis>
            <Mounting>false</Mounting>
            <EntityLink>
                <Type>POSITION</Type>
                <Center X="0.000000" Y="0.000000" Z="0.000000"/>
                <Dir X="0.000000" Y="0.000000" Z="0.000000"/>
                <Position>
                    <U X="1.000000" Y="0.000000" Z="0.000000"/>
                    <V X="0.000000" Y="1.000000" Z="0.000000"/>
                    <W X="0.000000" Y="0.000000" Z="1.000000"/>
                    <T X="0.000000" Y="0.000000" Z="0.000000"/>
                </Position>
                <ZeroRef>0.000000</ZeroRef>
                <RangeMin>0.000000</RangeMin>
                <RangeMax>0.000000</RangeMax>
            </EntityLink>
        </Entity>
        <Entity>
            <Name>C &amp; &lt;A&gt;</Name>
            <Type>AXIS</Type>
            <ParallelType>PARALLEL</ParallelType>
            <Id>2</Id>
            <ParentId>1</ParentId>
            <Register>3</Register>
            <Motor>true</Motor>
            <RangeAxis>true</RangeAxis>
            <Mounting>true</Mounting>
            <EntityLink>
                <Type>ROTARY</Type>
                <Center X="10.000000" Y="-20.500000" Z="0.000000"/>
                <Dir X="0.000000" Y="0.000000" Z="-1.000000"/>
                <Position>
                    <U X="1.000000" Y="0.000000" Z="0.000000"/>
                    <V X="0.000000" Y="1.000000" Z="0.000000"/>
                    <W X="0.000000" Y="0.000000" Z="1.000000"/>
                    <T X="0.000000" Y="0.000000" Z="0.000000"/>
                </Position>
                <ZeroRef>0.100000</ZeroRef>
                <RangeMin>-90.000000</RangeMin>
                <RangeMax>10000000000000000000000.000000</RangeMax>
            </EntityLink>
            <Meshes>
                <Mesh>
                    <RGB>255</RGB>
                </Mesh>
                <Mesh>
                    <RGB>-16777216</RGB>
                </Mesh>
            </Meshes>
        </Entity>
        <Entity>
            <Name></Name>
            <Type>AXIS</Type>
            <ParallelType>CHAIN</ParallelType>
            <Id>3</Id>
            <ParentId>-1</ParentId>
            <Register>-1</Register>
            <Motor>false</Motor>
            <RangeAxis>true</RangeAxis>
            <Mounting>false</Mounting>
            <EntityLink>
                <Type>UNDEF</Type>
                <Center X="0.000000" Y="0.000000" Z="0.000000"/>
                <Dir X="0.000000" Y="0.000000" Z="0.000000"/>
                <Position>
                    <U X="1.000000" Y="0.000000" Z="0.000000"/>
                    <V X="0.000000" Y="1.000000" Z="0.000000"/>
                    <W X="0.000000" Y="0.000000" Z="1.000000"/>
                    <T X="0.000000" Y="0.000000" Z="0.000000"/>
                </Position>
                <ZeroRef>0.000000</ZeroRef>
                <RangeMin>0.000000</RangeMin>
                <RangeMax>0.000000</RangeMax>
            </EntityLink>
            <Meshes/>
        </Entity>
        <Entity>
            <Name></Name>
            <Type>HEAD</Type>
            <ParallelType>CHAIN</ParallelType>
            <Id>4</Id>
            <ParentId>2</ParentId>
            <Register>-1</Register>
            <Motor>false</Motor>
            <RangeAxis>false</RangeAxis>
            <Mounting>false</Mounting>
            <EntityLink>
                <Type>POSITION</Type>
                <Center X="0.000000" Y="0.000000" Z="0.000000"/>
                <Dir X="0.000000" Y="0.000000" Z="0.000000"/>
                <Position>
                    <U X="0.000000" Y="1.000000" Z="0.000000"/>
                    <V X="0.000000" Y="0.000000" Z="1.000000"/>
                    <W X="1.000000" Y="0.000000" Z="0.000000"/>
                    <T X="1.500000" Y="-0.000000" Z="3.000000"/>
                </Position>
                <ZeroRef>0.000000</ZeroRef>
                <RangeMin>0.000000</RangeMin>
                <RangeMax>0.000000</RangeMax>
            </EntityLink>
        </Entity>
    </Entities>
    <ProgramSystems>
        <ProgramSystem>
            <ProgramSystemName>Main</ProgramSystemName>
            <TableIndex>-1</TableIndex>
            <HeadIndex>0</HeadIndex>
            <MainLinear RegX="0" RegY="1" RegZ="2"/>
            <MainRotary RegR0="3" RegR1="-7"/>
            <RotariesCompute>ShortestWay</RotariesCompute>
        </ProgramSystem>
        <ProgramSystem>
            <ProgramSystemName></ProgramSystemName>
            <TableIndex>-1</TableIndex>
            <HeadIndex>-1</HeadIndex>
            <MainLinear RegX="-1" RegY="-1" RegZ="-1"/>
            <MainRotary RegR0="-1" RegR1="-1"/>
            <RotariesCompute>ShortestWay</RotariesCompute>
        </ProgramSystem>
    </ProgramSystems>
    <CollisionCheck>
        <MachineMachines>
            <MachineMachine>
                <EntityId>2</EntityId>
                <EntityIds>1</EntityIds>
            </MachineMachine>
            <MachineMachine>
                <EntityId>4</EntityId>
                <EntityIds>1 2</EntityIds>
            </MachineMachine>
        </MachineMachines>
        <MachineStock>
            <EntityIds>4</EntityIds>
        </MachineStock>
        <MachineTool>
            <EntityIds>7 -5</EntityIds>
        </MachineTool>
    </CollisionCheck>
</Machine>
)";
  EXPECT_EQ(WrittenText(machine), expected);
}

TEST(MachineXmlWrite, AllWordsAreWritten) {
  const char* const linkWords[] = {"LINEAR",   "ROTARY", "POSITION",      "ABC",  "XYZABC",
                                   "IDENTITY", "XYZIJK", "XYZ_REPSPINDL", "UNDEF"};
  for (const char* const word : linkWords) {
    Machine machine;
    ASSERT_TRUE(ReadText(machine, Replaced(WholeText(), "ROTARY", word)));
    EXPECT_THAT(WrittenText(machine), HasSubstr("<Type>" + std::string(word) + "</Type>\n"));
  }
  for (const char* const word : {"AXIS", "TABLE", "HEAD"}) {
    Machine machine;
    ASSERT_TRUE(ReadText(machine, Replaced(WholeText(), "HEAD", word)));
    EXPECT_THAT(WrittenText(machine), HasSubstr("<Type>" + std::string(word) + "</Type>\n"));
  }
  for (const char* const word : {"Default", "ShortestWay", "AlphaPositive"}) {
    Machine machine;
    ASSERT_TRUE(ReadText(machine, Replaced(WholeText(), "AlphaPositive", word)));
    EXPECT_THAT(WrittenText(machine),
                HasSubstr("<RotariesCompute>" + std::string(word) + "</RotariesCompute>\n"));
  }
}

TEST(MachineXmlWrite, NumbersHaveSixDecimalsInFixedNotation) {
  struct Case {
    double value;
    const char* text;
  };
  const Case cases[] = {
      {0.1, "0.100000"},
      {1e-9, "0.000000"},
      {-1e-9, "-0.000000"},
      {0.0000005, "0.000000"},
      {0.00000051, "0.000001"},
      {123456789.987654321, "123456789.987654"},
      {-1.0 / 3, "-0.333333"},
      {999999.9999996, "1000000.000000"},
      {std::numeric_limits<double>::infinity(), "inf"},
      {-std::numeric_limits<double>::infinity(), "-inf"},
  };
  for (const Case& c : cases) {
    Machine machine;
    machine.AddEntity()->SetRangeMin(c.value);
    EXPECT_THAT(WrittenText(machine),
                HasSubstr("<RangeMin>" + std::string(c.text) + "</RangeMin>"));
  }
}

// The largest double has 309 digits before the point.
TEST(MachineXmlWrite, NumbersOfAnySizeFit) {
  for (const double value :
       {std::numeric_limits<double>::max(), -1e300, std::numeric_limits<double>::denorm_min()}) {
    char text[400];
    std::snprintf(text, sizeof text, "%f", value);
    Machine machine;
    machine.AddEntity()->SetRangeMax(value);
    EXPECT_THAT(WrittenText(machine), HasSubstr("<RangeMax>" + std::string(text) + "</RangeMax>"));
  }
}

TEST(MachineXmlWrite, IdsAndRegistersAreSignedNumbers) {
  Machine machine;
  Entity* e = machine.AddEntity();
  e->SetParentEntityId(-2147483647 - 1);
  e->SetRegister(2147483647);
  const std::string text = WrittenText(machine);
  EXPECT_THAT(text, HasSubstr("<ParentId>-2147483648</ParentId>"));
  EXPECT_THAT(text, HasSubstr("<Register>2147483647</Register>"));
}

TEST(MachineXmlWrite, SectionsOfTheCollisionCheckAreWrittenWhereTheyHoldSomething) {
  Machine machine;
  machine.AddEntity();
  machine.AddEntity();
  Kin::CollisionCheck& check = machine.GetCollisionCheckMod();
  check.SetMachinePart(2, true);
  check.SetMachineFixture(1, true);
  const std::string single = WrittenText(machine);
  EXPECT_THAT(single, HasSubstr("    <CollisionCheck>\n"
                                "        <MachinePart>\n"
                                "            <EntityIds>2</EntityIds>\n"
                                "        </MachinePart>\n"
                                "        <MachineFixture>\n"
                                "            <EntityIds>1</EntityIds>\n"
                                "        </MachineFixture>\n"
                                "    </CollisionCheck>\n"));
  check.SetMachineMachine(5, 1, true);
  EXPECT_EQ(WrittenText(machine), single) << "no element has the larger id";
  check.SetMachineMachine(1, 2, true);
  EXPECT_THAT(WrittenText(machine), HasSubstr("        <MachineMachines>\n"
                                              "            <MachineMachine>\n"
                                              "                <EntityId>2</EntityId>\n"
                                              "                <EntityIds>1</EntityIds>\n"));
  check.SetMachineMachine(1, 2, false);
  EXPECT_EQ(WrittenText(machine), single);
}

TEST(MachineXmlWrite, UnknownPolicyWritesNothing) {
  for (const int policy : {3, -1, 100}) {
    Machine machine;
    ProgramSystem ps;
    ps.SetRotariesCompute(static_cast<Kin::RotariesCompute>(policy));
    machine.AddProgramSystem(ProgramSystem());
    machine.AddProgramSystem(ps);
    const TemporaryFolder folder;
    EXPECT_FALSE(machine.WriteXML(folder.Wide("new.xml")));
    EXPECT_FALSE(folder.Has("new.xml"));
    folder.Write("old.xml", "old");
    EXPECT_FALSE(machine.WriteXML(folder.Wide("old.xml")));
    EXPECT_EQ(folder.Read("old.xml"), "old");
  }
}

// Values that no word names end the elements there; the other sections follow all the same.
TEST(MachineXmlWrite, KindWithoutWordEndsTheElements) {
  const auto build = [] {
    Machine machine;
    machine.AddEntityStatic(L"first", -1);
    machine.AddEntityStatic(L"second", -1);
    machine.AddEntityStatic(L"third", -1);
    return machine;
  };
  std::vector<Machine> machines = {build(), build(), build()};
  SetType(EntityModAt(machines[0], 1), 3);
  SetParallelType(EntityModAt(machines[1], 1), -1);
  EntityModAt(machines[2], 1).GetEntityLinkMod()->*MemberOf(LinkTypeOf{}) =
      static_cast<Kin::EntityLinkType>(9);
  for (Machine& machine : machines) {
    const std::string text = WrittenText(machine);
    EXPECT_THAT(text, HasSubstr("<Name>first</Name>"));
    EXPECT_THAT(text, Not(HasSubstr("<Name>third</Name>")));
    EXPECT_THAT(text, HasSubstr("    <ProgramSystems/>\n    <CollisionCheck/>\n</Machine>\n"));
  }
}

TEST(MachineXmlWrite, ExistingFileIsReplaced) {
  const TemporaryFolder folder;
  folder.Write("machine.xml", std::string(100000, 'x'));
  Machine machine;
  ASSERT_TRUE(machine.WriteXML(folder.Wide("machine.xml")));
  EXPECT_EQ(folder.Read("machine.xml"), WrittenText(machine));
}

TEST(MachineXmlWrite, WritingChangesNothingInTheMachine) {
  Machine machine;
  ASSERT_TRUE(ReadText(machine, WholeText()));
  const std::string first = WrittenText(machine);
  EXPECT_EQ(WrittenText(machine), first);
}

TEST(MachineXmlWrite, UnfinishedMachineIsWrittenToo) {
  Machine machine;
  machine.AddEntityStatic(L"base", -1);
  EXPECT_FALSE(machine.IsFinished());
  EXPECT_THAT(WrittenText(machine), HasSubstr("<Name>base</Name>"));
  EXPECT_FALSE(machine.IsFinished());
}

TEST(MachineXmlWrite, EmptyListOfMeshesIsWrittenAndNoListIsNot) {
  Machine machine;
  Entity* e = machine.AddEntity();
  EXPECT_THAT(WrittenText(machine), Not(HasSubstr("Meshes")));
  e->AllocEntityMesh();
  EXPECT_THAT(WrittenText(machine), HasSubstr("<Meshes/>"));
}

}  // namespace
}  // namespace Orvo::Testing
