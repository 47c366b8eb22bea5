#include "support/Signature.h"

#include <Orvo/Kin/Kinematic.h>

#include <gtest/gtest.h>

#include <limits>
#include <list>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace Orvo::Kin {
namespace {

using Testing::HasSignature;

static_assert(std::has_virtual_destructor_v<Kinematic>);
static_assert(std::is_base_of_v<ISerializableXML, Kinematic>);
static_assert(
    HasSignature<const std::list<Entity>& (Kinematic::*)() const>(&Kinematic::GetListEntity));
static_assert(
    HasSignature<const Entity* (Kinematic::*)(const EntityId&) const>(&Kinematic::GetEntity));
static_assert(
    HasSignature<const Entity* (Kinematic::*)(const Register&) const>(&Kinematic::GetEntity));
static_assert(
    HasSignature<const Entity* (Kinematic::*)(const HeadIndex&) const>(&Kinematic::GetEntityHead));
static_assert(HasSignature<const Entity* (Kinematic::*)(const TableIndex&) const>(
    &Kinematic::GetEntityTable));

/// Opens the members that the machine and the file reader use.
class OpenKinematic : public Kinematic {
 public:
  using Kinematic::GetListEntityMod;
  using Kinematic::GetVectorHeadMod;
  using Kinematic::GetVectorSortedByEntityIdMod;
  using Kinematic::GetVectorSortedByRegisterMod;
  using Kinematic::GetVectorTableMod;
};

const int OutsideThree[] = {
    3, 4, 1000, -1, -2, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};

TEST(Kinematic, StartsEmpty) {
  OpenKinematic kinematic;
  EXPECT_TRUE(kinematic.GetListEntity().empty());
  EXPECT_TRUE(kinematic.GetVectorSortedByEntityIdMod()->empty());
  EXPECT_TRUE(kinematic.GetVectorSortedByRegisterMod()->empty());
  EXPECT_TRUE(kinematic.GetVectorHeadMod()->empty());
  EXPECT_TRUE(kinematic.GetVectorTableMod()->empty());
  for (const int i : {-1, 0, 1}) {
    EXPECT_EQ(kinematic.GetEntity(EntityId(i)), nullptr);
    EXPECT_EQ(kinematic.GetEntity(Register(i)), nullptr);
    EXPECT_EQ(kinematic.GetEntityHead(HeadIndex(i)), nullptr);
    EXPECT_EQ(kinematic.GetEntityTable(TableIndex(i)), nullptr);
  }
}

TEST(Kinematic, TheListIsTheOneThatIsFilled) {
  OpenKinematic kinematic;
  kinematic.GetListEntityMod()->emplace_back();
  EXPECT_EQ(&kinematic.GetListEntity(), kinematic.GetListEntityMod());
  EXPECT_EQ(kinematic.GetListEntity().size(), 1U);
  EXPECT_EQ(kinematic.GetEntity(EntityId(1)), nullptr) << "the tables are filled elsewhere";
}

TEST(Kinematic, EachLookupHasItsOwnTable) {
  OpenKinematic kinematic;
  const Entity entities[4] = {};
  *kinematic.GetVectorSortedByEntityIdMod() = {nullptr, &entities[0], nullptr};
  *kinematic.GetVectorSortedByRegisterMod() = {nullptr, &entities[1], nullptr};
  *kinematic.GetVectorHeadMod() = {&entities[2], nullptr, &entities[2]};
  *kinematic.GetVectorTableMod() = {&entities[3], nullptr, &entities[3]};
  EXPECT_EQ(kinematic.GetEntity(EntityId(0)), nullptr);
  EXPECT_EQ(kinematic.GetEntity(EntityId(1)), &entities[0]);
  EXPECT_EQ(kinematic.GetEntity(EntityId(2)), nullptr);
  EXPECT_EQ(kinematic.GetEntity(Register(0)), nullptr);
  EXPECT_EQ(kinematic.GetEntity(Register(1)), &entities[1]);
  EXPECT_EQ(kinematic.GetEntity(Register(2)), nullptr);
  EXPECT_EQ(kinematic.GetEntityHead(HeadIndex(0)), &entities[2]);
  EXPECT_EQ(kinematic.GetEntityHead(HeadIndex(2)), &entities[2]);
  EXPECT_EQ(kinematic.GetEntityTable(TableIndex(0)), &entities[3]);
  EXPECT_EQ(kinematic.GetEntityTable(TableIndex(2)), &entities[3]);
  for (const int i : OutsideThree) {
    SCOPED_TRACE(i);
    EXPECT_EQ(kinematic.GetEntity(EntityId(i)), nullptr);
    EXPECT_EQ(kinematic.GetEntity(Register(i)), nullptr);
    EXPECT_EQ(kinematic.GetEntityHead(HeadIndex(i)), nullptr);
    EXPECT_EQ(kinematic.GetEntityTable(TableIndex(i)), nullptr);
  }
}

TEST(Kinematic, CopiesShareTheStore) {
  OpenKinematic kinematic;
  kinematic.GetListEntityMod()->emplace_back();
  OpenKinematic copy(kinematic);
  EXPECT_EQ(&copy.GetListEntity(), &kinematic.GetListEntity());
  copy.GetListEntityMod()->emplace_back();
  EXPECT_EQ(kinematic.GetListEntity().size(), 2U);
  copy.GetVectorHeadMod()->push_back(&copy.GetListEntity().front());
  EXPECT_EQ(kinematic.GetEntityHead(HeadIndex(0)), &copy.GetListEntity().front());
  OpenKinematic assigned;
  EXPECT_EQ(&(assigned = kinematic), &assigned);
  EXPECT_EQ(&assigned.GetListEntity(), &kinematic.GetListEntity());
}

TEST(Kinematic, TheStoreLivesAsLongAsAnyHandle) {
  auto first = std::make_unique<OpenKinematic>();
  first->GetListEntityMod()->emplace_back();
  first->GetListEntityMod()->back().SetEntityName(L"kept");
  first->GetListEntityMod()->back().AllocEntityMesh();
  auto second = std::make_unique<Kinematic>(*first);
  first.reset();
  Kinematic third;
  third = *second;
  second.reset();
  EXPECT_EQ(third.GetListEntity().front().GetEntityName(), L"kept");
}

TEST(Kinematic, AssignmentOntoItselfChangesNothing) {
  OpenKinematic kinematic;
  kinematic.GetListEntityMod()->emplace_back();
  const OpenKinematic& self = kinematic;
  kinematic = self;
  EXPECT_EQ(kinematic.GetListEntity().size(), 1U);
}

TEST(Kinematic, AMovedHandleStaysUsable) {
  OpenKinematic source;
  source.GetListEntityMod()->emplace_back();
  const Kinematic target(std::move(source));
  EXPECT_EQ(target.GetListEntity().size(), 1U);
  EXPECT_EQ(source.GetListEntity().size(), 1U);  // NOLINT: a move is a copy here
}

}  // namespace
}  // namespace Orvo::Kin
