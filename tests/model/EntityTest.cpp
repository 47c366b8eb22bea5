#include "model/EntityAccess.h"
#include "support/SameBits.h"
#include "support/Signature.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Mesh.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace Orvo::Kin {
namespace {

using Testing::HasSignature;
using Testing::SameBits;
using Testing::SetEntityId;
using Testing::SetEntityParallelType;
using Testing::SetEntityType;
using Testing::SetLevel;
using Testing::SetParentEntity;
using Testing::TemporaryFolder;

static_assert(std::has_virtual_destructor_v<Entity>);
static_assert(std::is_base_of_v<ISerializableXML, Entity>);
static_assert(HasSignature<const std::wstring& (Entity::*)() const>(&Entity::GetEntityName));
static_assert(HasSignature<void (Entity::*)(const std::wstring&)>(&Entity::SetEntityName));
static_assert(HasSignature<const EntityType& (Entity::*)() const>(&Entity::GetEntityType));
static_assert(
    HasSignature<const EntityParallelType& (Entity::*)() const>(&Entity::GetEntityParallelType));
static_assert(HasSignature<const EntityId& (Entity::*)() const>(&Entity::GetEntityId));
static_assert(HasSignature<const EntityId& (Entity::*)() const>(&Entity::GetParentEntityId));
static_assert(HasSignature<void (Entity::*)(const EntityId&)>(&Entity::SetParentEntityId));
static_assert(HasSignature<const Register& (Entity::*)() const>(&Entity::GetRegister));
static_assert(HasSignature<void (Entity::*)(const Register&)>(&Entity::SetRegister));
static_assert(HasSignature<bool (Entity::*)() const>(&Entity::GetIsMotor));
static_assert(HasSignature<void (Entity::*)(bool)>(&Entity::SetIsMotor));
static_assert(HasSignature<bool (Entity::*)() const>(&Entity::GetCheckRangeAxis));
static_assert(HasSignature<void (Entity::*)(bool)>(&Entity::SetCheckRangeAxis));
static_assert(HasSignature<bool (Entity::*)() const>(&Entity::GetIsMounting));
static_assert(HasSignature<void (Entity::*)(bool)>(&Entity::SetIsMounting));
static_assert(HasSignature<const EntityLink& (Entity::*)() const>(&Entity::GetEntityLink));
static_assert(HasSignature<EntityLink* (Entity::*)()>(&Entity::GetEntityLinkMod));
static_assert(HasSignature<void (Entity::*)(const EntityLink&)>(&Entity::SetEntityLink));
static_assert(HasSignature<const EntityMesh* (Entity::*)() const>(&Entity::GetEntityMesh));
static_assert(HasSignature<EntityMesh* (Entity::*)()>(&Entity::GetEntityMeshMod));
static_assert(HasSignature<const Entity* (Entity::*)() const>(&Entity::GetParentEntity));
static_assert(HasSignature<int (Entity::*)() const>(&Entity::GetLevel));
static_assert(HasSignature<double (Entity::*)() const>(&Entity::GetRangeMin));
static_assert(HasSignature<double (Entity::*)() const>(&Entity::GetRangeMax));
static_assert(HasSignature<void (Entity::*)(double)>(&Entity::SetRangeMin));
static_assert(HasSignature<void (Entity::*)(double)>(&Entity::SetRangeMax));
static_assert(HasSignature<void (Entity::*)(double, double)>(&Entity::SetRange));
static_assert(HasSignature<EntityMesh* (Entity::*)()>(&Entity::AllocEntityMesh));
static_assert(
    HasSignature<bool (Entity::*)(const std::wstring&, unsigned int)>(&Entity::AddCadStlBin));

const Entity SomeParent;

/// Sets every field to something that differs from its default; no mesh.
void Fill(Entity* entity) {
  entity->SetEntityName(L"Spindle \x00df");
  SetEntityType(entity, EntityTypeHead);
  SetEntityParallelType(entity, EntityParallelTypeParallel);
  SetEntityId(entity, 12);
  entity->SetParentEntityId(EntityId(11));
  entity->SetRegister(Register(4));
  entity->SetIsMotor(true);
  entity->SetCheckRangeAxis(false);
  entity->SetIsMounting(true);
  entity->GetEntityLinkMod()->SetEntityLinkRotary(Vector3D(1, 2, 3), Vector3D(0, 0, 9));
  entity->GetEntityLinkMod()->SetRangeMax(5, 77.0);
  entity->SetRange(-5.0, 6.0);
  SetParentEntity(entity, &SomeParent);
  SetLevel(entity, 3);
}

/// Expects the fields of Fill() that a copy takes.
void ExpectFilled(const Entity& entity) {
  EXPECT_EQ(entity.GetEntityName(), L"Spindle \x00df");
  EXPECT_EQ(entity.GetEntityType(), EntityTypeHead);
  EXPECT_EQ(entity.GetEntityParallelType(), EntityParallelTypeParallel);
  EXPECT_EQ(entity.GetEntityId().GetVal(), 12);
  EXPECT_EQ(entity.GetParentEntityId().GetVal(), 11);
  EXPECT_EQ(entity.GetRegister().GetVal(), 4);
  EXPECT_TRUE(entity.GetIsMotor());
  EXPECT_FALSE(entity.GetCheckRangeAxis());
  EXPECT_TRUE(entity.GetIsMounting());
  EXPECT_EQ(entity.GetEntityLink().GetEntityLinkType(), EntityLinkTypeRotary);
  EXPECT_TRUE(SameBits(entity.GetEntityLink().GetCenter(), Vector3D(1, 2, 3)));
  EXPECT_EQ(entity.GetEntityLink().GetRangeMax(5), 77.0);
  EXPECT_EQ(entity.GetRangeMin(), -5.0);
  EXPECT_EQ(entity.GetRangeMax(), 6.0);
  EXPECT_EQ(entity.GetLevel(), 3);
}

TEST(Entity, StartsAsAnUnlinkedAxis) {
  Entity entity;
  EXPECT_EQ(entity.GetEntityName(), L"");
  EXPECT_EQ(entity.GetEntityType(), EntityTypeAxis);
  EXPECT_EQ(entity.GetEntityParallelType(), EntityParallelTypeChain);
  EXPECT_EQ(entity.GetEntityId().GetVal(), -1);
  EXPECT_EQ(entity.GetParentEntityId().GetVal(), -1);
  EXPECT_EQ(entity.GetRegister().GetVal(), -1);
  EXPECT_FALSE(entity.GetIsMotor());
  EXPECT_TRUE(entity.GetCheckRangeAxis());
  EXPECT_FALSE(entity.GetIsMounting());
  EXPECT_EQ(entity.GetEntityLink().GetEntityLinkType(), EntityLinkTypeUndef);
  EXPECT_EQ(entity.GetEntityMesh(), nullptr);
  EXPECT_EQ(entity.GetEntityMeshMod(), nullptr);
  EXPECT_EQ(entity.GetParentEntity(), nullptr);
  EXPECT_EQ(entity.GetLevel(), 0);
  EXPECT_TRUE(SameBits(entity.GetRangeMin(), 0.0));
  EXPECT_TRUE(SameBits(entity.GetRangeMax(), 0.0));
}

TEST(Entity, KeepsWhatIsSet) {
  Entity entity;
  Fill(&entity);
  ExpectFilled(entity);
  EXPECT_EQ(entity.GetParentEntity(), &SomeParent);
}

TEST(Entity, SettersMayBeCalledAgain) {
  Entity entity;
  Fill(&entity);
  entity.SetEntityName(entity.GetEntityName());
  EXPECT_EQ(entity.GetEntityName(), L"Spindle \x00df");
  entity.SetEntityName(L"");
  entity.SetIsMotor(false);
  entity.SetCheckRangeAxis(true);
  entity.SetIsMounting(false);
  entity.SetRegister(Register(-9));
  EXPECT_EQ(entity.GetEntityName(), L"");
  EXPECT_FALSE(entity.GetIsMotor());
  EXPECT_TRUE(entity.GetCheckRangeAxis());
  EXPECT_FALSE(entity.GetIsMounting());
  EXPECT_EQ(entity.GetRegister().GetVal(), -9);
}

TEST(Entity, RangesAreThoseOfTheLinksFirstSlot) {
  Entity entity;
  entity.SetRange(-50, 250);
  EXPECT_EQ(entity.GetEntityLink().GetRangeMin(0), -50.0);
  EXPECT_EQ(entity.GetEntityLink().GetRangeMax(0), 250.0);
  EXPECT_EQ(entity.GetEntityLink().GetRangeMin(1), 0.0);
  EXPECT_EQ(entity.GetRangeMin(), -50.0);
  EXPECT_EQ(entity.GetRangeMax(), 250.0);
  entity.GetEntityLinkMod()->SetRangeMin(7.0);
  entity.GetEntityLinkMod()->SetRangeMax(0, -8.0);
  EXPECT_EQ(entity.GetRangeMin(), 7.0);
  EXPECT_EQ(entity.GetRangeMax(), -8.0);
  entity.SetRangeMin(1.0);
  EXPECT_EQ(entity.GetEntityLink().GetRangeMin(), 1.0);
  EXPECT_EQ(entity.GetRangeMax(), -8.0);
  entity.SetRangeMax(2.0);
  EXPECT_EQ(entity.GetEntityLink().GetRangeMax(), 2.0);
}

TEST(Entity, SetEntityLinkAssignsTheWholeLink) {
  EntityLink link;
  link.SetEntityLinkLinear(AxisY);
  link.SetRangeMin(4, 9.0);
  link.SetRangeMax(3.0);
  Entity entity;
  Fill(&entity);
  entity.SetEntityLink(link);
  EXPECT_EQ(&entity.GetEntityLink(), entity.GetEntityLinkMod());
  EXPECT_EQ(entity.GetEntityLink().GetEntityLinkType(), EntityLinkTypeLinear);
  EXPECT_TRUE(SameBits(entity.GetEntityLink().GetCenter(), NullVector));
  EXPECT_EQ(entity.GetEntityLink().GetRangeMin(4), 9.0);
  EXPECT_EQ(entity.GetRangeMax(), 3.0);
  entity.SetEntityLink(entity.GetEntityLink());
  EXPECT_EQ(entity.GetRangeMax(), 3.0);
}

TEST(Entity, ACopyTakesAllButTheMeshAndTheParentPointer) {
  auto source = std::make_unique<Entity>();
  Fill(source.get());
  source->AllocEntityMesh();
  const Entity copy(*source);
  source->SetEntityName(L"changed");
  source.reset();
  ExpectFilled(copy);
  EXPECT_EQ(copy.GetEntityMesh(), nullptr);
  EXPECT_EQ(copy.GetParentEntity(), nullptr);
}

TEST(Entity, AnAssignedOneKeepsItsOwnMeshAndLosesItsParentPointer) {
  Entity source;
  Fill(&source);
  source.AllocEntityMesh()->AddMesh(new Mesh, 1);
  Entity bare;
  SetParentEntity(&bare, &SomeParent);
  EXPECT_EQ(&(bare = source), &bare);
  ExpectFilled(bare);
  EXPECT_EQ(bare.GetEntityMesh(), nullptr);
  EXPECT_EQ(bare.GetParentEntity(), nullptr);
  Entity meshed;
  EntityMesh* const mesh = meshed.AllocEntityMesh();
  mesh->AddMesh(new Mesh, 2);
  meshed = source;
  ExpectFilled(meshed);
  EXPECT_EQ(meshed.GetEntityMesh(), mesh);
  EXPECT_EQ(meshed.GetEntityMesh()->GetMeshColor(0), 2U);
  meshed = Entity();
  EXPECT_EQ(meshed.GetEntityMesh(), mesh);
  EXPECT_EQ(meshed.GetEntityName(), L"");
  EXPECT_TRUE(meshed.GetCheckRangeAxis());
}

TEST(Entity, AssignmentOntoItselfChangesNothing) {
  Entity entity;
  Fill(&entity);
  EntityMesh* const mesh = entity.AllocEntityMesh();
  const Entity& self = entity;
  entity = self;
  ExpectFilled(entity);
  EXPECT_EQ(entity.GetParentEntity(), &SomeParent);
  EXPECT_EQ(entity.GetEntityMesh(), mesh);
}

TEST(Entity, AMovedOneStaysUsable) {
  Entity source;
  Fill(&source);
  const Entity target(std::move(source));
  ExpectFilled(target);
  source.SetEntityName(L"again");  // NOLINT: a move is a copy here
  EXPECT_EQ(source.GetEntityName(), L"again");
}

TEST(Entity, AllocEntityMeshMakesOneMeshListOnly) {
  Entity entity;
  EntityMesh* const mesh = entity.AllocEntityMesh();
  ASSERT_NE(mesh, nullptr);
  EXPECT_EQ(mesh->GetMeshNb(), 0U);
  EXPECT_EQ(entity.AllocEntityMesh(), mesh);
  EXPECT_EQ(entity.GetEntityMesh(), mesh);
  EXPECT_EQ(entity.GetEntityMeshMod(), mesh);
}

TEST(Entity, AddCadStlBinOfAMissingFileLeavesAnEmptyMesh) {
  const TemporaryFolder folder;
  Entity entity;
  EXPECT_FALSE(entity.AddCadStlBin(folder.Wide("missing.stl"), 7));
  ASSERT_NE(entity.GetEntityMesh(), nullptr);
  ASSERT_EQ(entity.GetEntityMesh()->GetMeshNb(), 1U);
  EXPECT_EQ(entity.GetEntityMesh()->GetMeshColor(0), 7U);
  EXPECT_EQ(entity.GetEntityMesh()->GetMesh(0)->GetDimNVerts(), 0U);
}

TEST(Entity, AddCadStlBinAddsToTheMeshesThatAreThere) {
  const TemporaryFolder folder;
  std::string bytes(134, '\0');
  bytes[80] = 1;
  folder.Write("one.stl", bytes);
  Entity entity;
  EntityMesh* const mesh = entity.AllocEntityMesh();
  mesh->AddMesh(new Mesh, 1);
  EXPECT_TRUE(entity.AddCadStlBin(folder.Wide("one.stl"), 0xff00ff00U));
  EXPECT_EQ(entity.GetEntityMesh(), mesh);
  ASSERT_EQ(mesh->GetMeshNb(), 2U);
  EXPECT_EQ(mesh->GetMeshColor(1), 0xff00ff00U);
  EXPECT_EQ(mesh->GetMesh(1)->GetDimNVerts(), 1U);
}

}  // namespace
}  // namespace Orvo::Kin
