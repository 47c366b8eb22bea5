// Calls every exported member of the machine model from outside the library.

#include "support/SameBits.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Orvo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <list>
#include <stdexcept>
#include <string>

namespace Orvo::Testing {
namespace {

using namespace Orvo::Kin;
using testing::ElementsAre;
using testing::IsEmpty;

template <class Index>
class InterfaceIndex : public testing::Test {};
using IndexTypes = testing::Types<EntityId, Register, HeadIndex, TableIndex, ProgramSystemIndex>;
TYPED_TEST_SUITE(InterfaceIndex, IndexTypes);

TYPED_TEST(InterfaceIndex, WrapsAnInteger) {
  EXPECT_EQ(TypeParam().GetVal(), -1);
  EXPECT_FALSE(TypeParam().IsDefined());
  EXPECT_FALSE(TypeParam(-7).IsDefined());
  EXPECT_TRUE(TypeParam(0).IsDefined());
  const TypeParam five = 5;
  const int value = five;
  EXPECT_EQ(value, 5);
  TypeParam assigned;
  assigned = five;
  EXPECT_EQ(assigned.GetVal(), 5);
}

template <class Index>
class InterfaceCounter : public testing::Test {};
using CounterTypes = testing::Types<Register, HeadIndex, TableIndex, ProgramSystemIndex>;
TYPED_TEST_SUITE(InterfaceCounter, CounterTypes);

TYPED_TEST(InterfaceCounter, CountsUpBeforeItIsRead) {
  TypeParam index(4);
  EXPECT_EQ((index++).GetVal(), 5);
  EXPECT_EQ(index.GetVal(), 5);
  EXPECT_EQ(&++index, &index);
  EXPECT_EQ(index.GetVal(), 6);
  EXPECT_TRUE(TypeParam(2) > TypeParam(-1));
  EXPECT_FALSE(TypeParam(-1) > TypeParam(2));
}

TEST(InterfaceEntityLink, KeepsItsKindAndPlace) {
  EntityLink link;
  EXPECT_EQ(link.GetEntityLinkType(), EntityLinkTypeUndef);
  link.SetEntityLinkLinear(Vector3D(0.0, 0.0, 5.0));
  EXPECT_EQ(link.GetEntityLinkType(), EntityLinkTypeLinear);
  EXPECT_TRUE(SameBits(link.GetDir(), AxisZ));
  link.SetEntityLinkRotary(Vector3D(10.0, 0.0, 0.0), Vector3D(0.0, 2.0, 0.0));
  EXPECT_EQ(link.GetEntityLinkType(), EntityLinkTypeRotary);
  EXPECT_TRUE(SameBits(link.GetCenter(), Vector3D(10.0, 0.0, 0.0)));
  EXPECT_TRUE(SameBits(link.GetDir(), AxisY));
  Matrix43 position;
  position.SetTrans(Vector3D(1.0, 2.0, 3.0));
  link.SetEntityLinkPosition(position);
  EXPECT_EQ(link.GetEntityLinkType(), EntityLinkTypePosition);
  EXPECT_TRUE(SameBits(link.GetPosition(), position));
}

TEST(InterfaceEntityLink, KeepsItsSlots) {
  EntityLink link;
  link.SetZeroRef(1.0);
  link.SetRangeMin(2.0);
  link.SetRangeMax(3.0);
  link.SetZeroRef(5, 4.0);
  link.SetRangeMin(5, 5.0);
  link.SetRangeMax(5, 6.0);
  const EntityLink copy(link);
  EXPECT_EQ(copy.GetZeroRef(), 1.0);
  EXPECT_EQ(copy.GetRangeMin(), 2.0);
  EXPECT_EQ(copy.GetRangeMax(), 3.0);
  EntityLink assigned;
  assigned = copy;
  EXPECT_EQ(assigned.GetZeroRef(5), 4.0);
  EXPECT_EQ(assigned.GetRangeMin(5), 5.0);
  EXPECT_EQ(assigned.GetRangeMax(5), 6.0);
}

TEST(InterfaceEntity, KeepsWhatIsSet) {
  Entity entity;
  entity.SetEntityName(L"X");
  entity.SetParentEntityId(3);
  entity.SetRegister(2);
  entity.SetIsMotor(true);
  entity.SetCheckRangeAxis(false);
  entity.SetIsMounting(true);
  entity.SetRange(-50.0, 250.0);
  const Entity copy(entity);
  EXPECT_EQ(copy.GetEntityName(), L"X");
  EXPECT_EQ(copy.GetEntityType(), EntityTypeAxis);
  EXPECT_EQ(copy.GetEntityParallelType(), EntityParallelTypeChain);
  EXPECT_EQ(copy.GetEntityId().GetVal(), -1);
  EXPECT_EQ(copy.GetParentEntityId().GetVal(), 3);
  EXPECT_EQ(copy.GetRegister().GetVal(), 2);
  EXPECT_TRUE(copy.GetIsMotor());
  EXPECT_FALSE(copy.GetCheckRangeAxis());
  EXPECT_TRUE(copy.GetIsMounting());
  EXPECT_EQ(copy.GetParentEntity(), nullptr);
  EXPECT_EQ(copy.GetLevel(), 0);
  EXPECT_EQ(copy.GetRangeMin(), -50.0);
  EXPECT_EQ(copy.GetRangeMax(), 250.0);
  entity.SetRangeMin(-1.0);
  entity.SetRangeMax(1.0);
  EXPECT_EQ(entity.GetEntityLink().GetRangeMin(0), -1.0);
  EXPECT_EQ(entity.GetEntityLink().GetRangeMax(0), 1.0);
  EntityLink link;
  link.SetEntityLinkLinear(AxisY);
  entity.SetEntityLink(link);
  EXPECT_EQ(entity.GetEntityLink().GetEntityLinkType(), EntityLinkTypeLinear);
  EXPECT_EQ(entity.GetEntityLinkMod(), &entity.GetEntityLink());
  Entity assigned;
  assigned = entity;
  EXPECT_TRUE(SameBits(assigned.GetEntityLink().GetDir(), AxisY));
}

TEST(InterfaceEntity, HasMeshesWhenAsked) {
  Entity entity;
  const Entity& fixed = entity;
  EXPECT_EQ(fixed.GetEntityMesh(), nullptr);
  EXPECT_EQ(entity.GetEntityMeshMod(), nullptr);
  EntityMesh* meshes = entity.AllocEntityMesh();
  ASSERT_NE(meshes, nullptr);
  EXPECT_EQ(fixed.GetEntityMesh(), meshes);
  EXPECT_EQ(entity.GetEntityMeshMod(), meshes);
  const TemporaryFolder folder;
  EXPECT_FALSE(entity.AddCadStlBin(folder.Wide("missing.stl"), 7));
  EXPECT_EQ(meshes->GetMeshNb(), 1U);
}

TEST(InterfaceEntityMesh, WritesAndReadsABinaryFile) {
  auto* mesh = new Mesh;
  mesh->AllocTabNVerts(1)[0] = 3;
  unsigned int* corners = mesh->AllocTabIVertex(3);
  unsigned int* cornerNormals = mesh->AllocTabINormal(3);
  for (unsigned int i = 0; i < 3; ++i) {
    corners[i] = i;
    cornerNormals[i] = 0;
  }
  Vector3D* vertices = mesh->AllocTabVertices(3);
  vertices[1] = AxisX;
  vertices[2] = AxisY;
  mesh->AllocTabNormals(1)[0] = AxisZ;

  EntityMesh meshes;
  meshes.AddMesh(mesh, 0x00FF00U);
  EXPECT_EQ(meshes.GetMeshNb(), 1U);
  EXPECT_EQ(meshes.GetMesh(0), mesh);
  EXPECT_EQ(meshes.GetMeshColor(0), 0x00FF00U);
  const TemporaryFolder folder;
  const std::wstring name = folder.Wide("one.stl");
  EXPECT_TRUE(meshes.WriteCadStlBin(name, 0));
  EXPECT_TRUE(meshes.AddCadStlBin(name, 5));
  ASSERT_EQ(meshes.GetMeshNb(), 2U);
  EXPECT_TRUE(SameBits(meshes.GetMesh(1)->GetTabVertices()[2], AxisY));
  EXPECT_TRUE(meshes.ReadCadStlBin(name, 0));
  EXPECT_FALSE(meshes.ReadCadStlBin(name, 2));
}

// Three linear axes, a rotary table and a head: the smallest machine that computes.
void Build(Machine* machine) {
  Entity* bed = machine->AddEntityStatic(L"bed", -1);
  Entity* x = machine->AddEntityLinear(L"X", bed->GetEntityId(), AxisX);
  Entity* y = machine->AddEntityLinear(L"Y", x->GetEntityId(), AxisY);
  Entity* z = machine->AddEntityLinear(L"Z", y->GetEntityId(), AxisZ);
  machine->AddEntityHead(L"head", z->GetEntityId(), Matrix43());
  Entity* c = machine->AddEntityRotary(L"C", bed->GetEntityId(), NullVector, AxisZ);
  machine->AddEntityTable(L"table", c->GetEntityId(), Matrix43());
  x->SetRegister(0);
  y->SetRegister(1);
  z->SetRegister(2);
  c->SetRegister(3);
}

TEST(InterfaceMachine, IsBuiltAndFinished) {
  Machine machine;
  EXPECT_FALSE(machine.IsFinished());
  EXPECT_EQ(machine.GetRegisterNb().GetVal(), -1);
  Build(&machine);
  EXPECT_TRUE(machine.Finish());
  EXPECT_TRUE(machine.IsFinished());
  EXPECT_EQ(machine.GetLastError(), MachineErrorNone);
  EXPECT_EQ(machine.GetRegisterNb().GetVal(), 4);
  EXPECT_EQ(machine.GetEntityNb(), 7);
  EXPECT_EQ(machine.GetEntityIdMax().GetVal(), 7);
  EXPECT_EQ(machine.GetTableNb().GetVal(), 1);
  EXPECT_EQ(machine.GetHeadNb().GetVal(), 1);
  EXPECT_EQ(machine.GetLinearAxesNb(), 3);
  EXPECT_EQ(machine.AddEntity(), nullptr);
  MachinePosition position;
  machine.Alloc(&position);
  EXPECT_EQ(position.Size(), 4ULL);
}

TEST(InterfaceMachine, TakesCopiesOfElements) {
  Machine machine;
  Entity* first = machine.AddEntity();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->GetEntityId().GetVal(), 1);
  Entity model;
  model.SetEntityName(L"copied");
  machine.AddEntity(model);
  EXPECT_EQ(machine.GetKinematic().GetListEntity().back().GetEntityName(), L"copied");
  EXPECT_EQ(machine.GetKinematic().GetListEntity().back().GetEntityId().GetVal(), 2);
  EXPECT_FALSE(machine.Finish());
  EXPECT_EQ(machine.GetLastError(), MachineErrorNoHead);
}

TEST(InterfaceMachine, ListsItsProgramSystems) {
  Machine machine;
  Build(&machine);
  ProgramSystem own;
  own.SetProgramSystemName(L"own");
  machine.AddProgramSystem(own);
  ASSERT_TRUE(machine.Finish());
  EXPECT_EQ(machine.GetProgramSystemNb().GetVal(), 1);
  EXPECT_EQ(machine.GetListProgramSystem().front().GetProgramSystemName(), L"own");
  EXPECT_EQ(machine.GetProgramSystem(0), &machine.GetListProgramSystem().front());
  EXPECT_EQ(machine.GetProgramSystem(1), nullptr);
}

TEST(InterfaceMachine, SharesItsElementsWithCopies) {
  Machine machine;
  Build(&machine);
  ASSERT_TRUE(machine.Finish());
  const Machine copy(machine);
  EXPECT_EQ(&copy.GetKinematic().GetListEntity(), &machine.GetKinematic().GetListEntity());
  Machine assigned;
  assigned = machine;
  EXPECT_TRUE(assigned.IsFinished());
  assigned.GetCollisionCheckMod().SetMachineTool(5, true);
  EXPECT_TRUE(machine.GetCollisionCheck().GetMachineTool(5));
}

TEST(InterfaceMachine, GoesToAFileAndBack) {
  Machine machine;
  Build(&machine);
  ASSERT_TRUE(machine.Finish());
  const TemporaryFolder folder;
  const std::wstring name = folder.Wide("machine.xml");
  EXPECT_TRUE(machine.WriteXML(name));
  Machine read;
  EXPECT_TRUE(read.ReadXML(name));
  EXPECT_EQ(read.GetEntityNb(), 7);
  EXPECT_TRUE(read.IsFinished());
  EXPECT_TRUE(machine.WriteMachineWithMeshStl(name));
  Machine withMeshes;
  EXPECT_TRUE(withMeshes.ReadMachineWithMeshStl(name));
  EXPECT_EQ(withMeshes.GetEntityNb(), 7);
  EXPECT_FALSE(withMeshes.ReadXML(folder.Wide("missing.xml")));
}

TEST(InterfaceKinematic, FindsElements) {
  Machine machine;
  Build(&machine);
  EXPECT_EQ(machine.GetKinematic().GetEntity(EntityId(1)), nullptr);
  ASSERT_TRUE(machine.Finish());
  const Kinematic& kinematic = machine.GetKinematic();
  EXPECT_EQ(kinematic.GetListEntity().size(), 7U);
  EXPECT_EQ(kinematic.GetEntity(EntityId(1)), &kinematic.GetListEntity().front());
  EXPECT_EQ(kinematic.GetEntity(Register(3))->GetEntityName(), L"C");
  EXPECT_EQ(kinematic.GetEntityHead(0)->GetEntityName(), L"head");
  EXPECT_EQ(kinematic.GetEntityTable(0)->GetEntityName(), L"table");
  EXPECT_EQ(kinematic.GetEntityTable(0)->GetParentEntity(), kinematic.GetEntity(Register(3)));
  EXPECT_EQ(kinematic.GetEntityTable(0)->GetLevel(), 2);
  const Kinematic copy(kinematic);
  EXPECT_EQ(copy.GetEntityHead(0), kinematic.GetEntityHead(0));
  Kinematic assigned;
  EXPECT_TRUE(assigned.GetListEntity().empty());
  assigned = kinematic;
  EXPECT_EQ(assigned.GetEntityHead(0), kinematic.GetEntityHead(0));
}

TEST(InterfaceProgramSystem, KeepsWhatIsSet) {
  ProgramSystem system;
  EXPECT_EQ(system.GetRotariesCompute(), RotariesComputeShortestWay);
  system.SetProgramSystemName(L"turning");
  system.SetTableIndex(1);
  system.SetHeadIndex(2);
  system.SetMainLinear(3, 4, 5);
  system.SetMainRotary(6, 7);
  system.SetRotariesCompute(RotariesComputeDefault);
  ProgramSystem copy(system);
  EXPECT_EQ(copy.GetProgramSystemName(), L"turning");
  EXPECT_EQ(copy.GetTableIndex().GetVal(), 1);
  EXPECT_EQ(copy.GetHeadIndex().GetVal(), 2);
  EXPECT_EQ(copy.GetMainLinear(2).GetVal(), 5);
  EXPECT_EQ(copy.GetMainRotary(1).GetVal(), 7);
  EXPECT_EQ(copy.GetRotariesCompute(), RotariesComputeDefault);
  ProgramSystem assigned;
  assigned = system;
  EXPECT_EQ(assigned.GetMainLinear(0).GetVal(), 3);
}

TEST(InterfaceCollisionCheck, KeepsFourSetsOfElements) {
  CollisionCheck check;
  check.SetMachineStock(1, true);
  check.SetMachinePart(2, true);
  check.SetMachineFixture(3, true);
  check.SetMachineTool(4, true);
  EXPECT_TRUE(check.GetMachineStock(1));
  EXPECT_TRUE(check.GetMachinePart(2));
  EXPECT_TRUE(check.GetMachineFixture(3));
  EXPECT_TRUE(check.GetMachineTool(4));
  EXPECT_FALSE(check.GetMachineTool(1));
  std::list<EntityId> ids;
  check.GetListMachineStock(&ids);
  EXPECT_THAT(ids, ElementsAre(1));
  check.GetListMachinePart(&ids);
  EXPECT_THAT(ids, ElementsAre(2));
  check.GetListMachineFixture(&ids);
  EXPECT_THAT(ids, ElementsAre(3));
  check.GetListMachineTool(&ids);
  EXPECT_THAT(ids, ElementsAre(4));
  check.SetMachineTool(4, false);
  check.GetListMachineTool(&ids);
  EXPECT_THAT(ids, IsEmpty());
}

TEST(InterfaceCollisionCheck, KeepsPairsAndSharesThemWithCopies) {
  CollisionCheck check;
  check.SetMachineMachine(5, 2, true);
  check.SetMachineMachine(9, 5, true);
  const CollisionCheck copy(check);
  EXPECT_TRUE(copy.GetMachineMachine(2, 5));
  EXPECT_FALSE(copy.GetMachineMachine(2, 9));
  std::list<EntityId> ids;
  copy.GetListMachineMachine(5, &ids, true);
  EXPECT_THAT(ids, ElementsAre(2, 9));
  CollisionCheck assigned;
  assigned = check;
  assigned.GetListMachineMachine(5, &ids, false);
  EXPECT_THAT(ids, ElementsAre(2));
}

TEST(InterfaceMachinePosition, HoldsOneValueForEachRegister) {
  MachinePosition position;
  EXPECT_EQ(position.Size(), 0ULL);
  position.Alloc(Register(2));
  position.SetAll(2.5);
  EXPECT_EQ(position[1], 2.5);
  position.Alloc(3ULL);
  EXPECT_EQ(position.Size(), 3ULL);
  const MachinePosition copy(position);
  EXPECT_EQ(copy[2], 0.0);
  MachinePosition assigned;
  assigned = copy;
  EXPECT_EQ(assigned.Size(), 3ULL);
}

// The exception's type must be the same on both sides of the library's border.
TEST(InterfaceMachinePosition, ThrowsOutOfRangeToItsCaller) {
  MachinePosition position;
  try {
    position[0] = 1.0;
    FAIL() << "nothing was thrown";
  } catch (const std::out_of_range& error) {
    EXPECT_STREQ(error.what(), "MachinePosition::operator[] : index out of range");
  }
}

TEST(InterfaceMachinePosition, ComputesByElement) {
  MachinePosition a;
  a.Alloc(2ULL);
  a[0] = 1.0;
  a[1] = -2.0;
  MachinePosition b(a);
  EXPECT_EQ((a + b)[1], -4.0);
  EXPECT_EQ((a - b)[1], 0.0);
  EXPECT_EQ((-a)[1], 2.0);
  EXPECT_EQ((a * 3.0)[0], 3.0);
  EXPECT_EQ((a / 2.0)[0], 0.5);
  EXPECT_EQ(&(b += a), &b);
  EXPECT_EQ(b[0], 2.0);
  EXPECT_EQ(&(b -= a), &b);
  EXPECT_EQ(b[0], 1.0);
}

}  // namespace
}  // namespace Orvo::Testing
