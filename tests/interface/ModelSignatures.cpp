// The exported interface of the machine model, member by member. Nothing here runs: a file that
// compiles is a test that passes.

#include "Signature.h"

#include <Orvo/Orvo.h>

#include <list>
#include <string>
#include <type_traits>
#include <vector>

namespace Orvo::Kin {
namespace {

using Testing::HasVirtualDestructor;
using Testing::IsCopyable;
using Testing::IsPlainIntEnumeration;

// What every index type offers.
template <class Index>
constexpr bool IsIndex =
    sizeof(Index) == sizeof(int) &&
    alignof(Index) == alignof(int) && IsCopyable<Index>&& std::is_trivially_copyable_v<Index> &&
    !std::is_polymorphic_v<Index> && std::is_default_constructible_v<Index> &&
    std::is_convertible_v<int, Index> && std::is_convertible_v<Index, int> &&
    std::is_move_assignable_v<Index> &&
    Testing::IsMember<static_cast<bool (Index::*)() const>(&Index::IsDefined)> &&
    Testing::IsMember<static_cast<int (Index::*)() const>(&Index::GetVal)> &&
    Testing::IsMember<static_cast<int (Index::*)() const>(&Index::operator int)>;

// What the index types that callers count with offer beyond that.
template <class Index>
constexpr bool IsCounter = IsIndex<Index>&&
    Testing::IsMember<static_cast<bool (Index::*)(const Index&) const>(&Index::operator>)>&&
        Testing::IsMember<static_cast<Index& (Index::*)()>(&Index::operator++)>&&
            Testing::IsMember<static_cast<Index (Index::*)(int)>(&Index::operator++)>;

template <class Index>
concept CanIncrement = requires(Index index) {
  ++index;
};

static_assert(IsIndex<EntityId> && !CanIncrement<EntityId>);
static_assert(IsCounter<Register> && CanIncrement<Register>);
static_assert(IsCounter<HeadIndex>);
static_assert(IsCounter<TableIndex>);
static_assert(IsCounter<ProgramSystemIndex>);

// Enumerations.
static_assert(IsPlainIntEnumeration<EntityType>);
static_assert(EntityTypeAxis == 0 && EntityTypeTable == 1 && EntityTypeHead == 2);
static_assert(IsPlainIntEnumeration<EntityParallelType>);
static_assert(EntityParallelTypeChain == 0 && EntityParallelTypeParallel == 1);
static_assert(IsPlainIntEnumeration<EntityLinkType>);
static_assert(EntityLinkTypeLinear == 0 && EntityLinkTypeRotary == 1 &&
              EntityLinkTypePosition == 2 && EntityLinkTypeAbc == 3 && EntityLinkTypeXyzAbc == 4 &&
              EntityLinkTypeIdentity == 5 && EntityLinkTypeXyzIjk == 6 &&
              EntityLinkTypeXyzRepSpindl == 7 && EntityLinkTypeUndef == 8);
static_assert(IsPlainIntEnumeration<RotariesCompute>);
static_assert(RotariesComputeDefault == 0 && RotariesComputeShortestWay == 1 &&
              RotariesComputeAlphaPositive == 2);
static_assert(IsPlainIntEnumeration<MachineErrorType>);
static_assert(MachineErrorNone == 0 && MachineErrorNoHead == 1 && MachineErrorNoTable == 2 &&
              MachineErrorFewLinearAxes == 3 && MachineErrorParentCycle == 4);
static_assert(MachineErrorType::MachineErrorNoHead == MachineErrorNoHead);
static_assert(IsPlainIntEnumeration<MachineComputeErrorType>);
static_assert(ComputeErrorNone == 0 && ComputeErrorNotFinished == 1 &&
              ComputeErrorNullOutput == 2 && ComputeErrorEmptyPosition == 3 &&
              ComputeErrorNoHeadOrTable == 4 && ComputeErrorRegister == 5 &&
              ComputeErrorLinkType == 6 && ComputeErrorNotAxis == 7 &&
              ComputeErrorAxisLinkType == 8 && ComputeErrorNoSolution == 9);

// What every persisted class is. Its two operations are for classes that derive from it.
template <class Class>
concept HasPublicSerializeXML = requires {
  &Class::SerializeXML;
};
template <class Class>
concept HasPublicDeserializeXML = requires {
  &Class::DeserializeXML;
};

template <class Base>
struct OpenXML : Base {
  using Base::DeserializeXML;
  using Base::SerializeXML;
};

template <class Class>
constexpr bool IsPersisted =
    std::is_base_of_v<ISerializableXML, Class>&& HasVirtualDestructor<Class> &&
    !HasPublicSerializeXML<Class> && !HasPublicDeserializeXML<Class> &&
    Testing::IsMember<static_cast<bool (Class::*)(XMLWriter&, XMLElement*)>(
        &OpenXML<Class>::SerializeXML)> &&
    Testing::IsMember<static_cast<bool (Class::*)(XMLReader&, XMLElement*)>(
        &OpenXML<Class>::DeserializeXML)>;

static_assert(std::is_abstract_v<ISerializableXML>);
static_assert(IsPersisted<ISerializableXML>);
static_assert(IsPersisted<EntityLink> && IsCopyable<EntityLink>);
static_assert(IsPersisted<Entity> && IsCopyable<Entity>);
static_assert(IsPersisted<Kinematic> && IsCopyable<Kinematic>);
static_assert(IsPersisted<Machine> && IsCopyable<Machine>);
static_assert(IsPersisted<ProgramSystem> && IsCopyable<ProgramSystem>);
static_assert(!std::is_base_of_v<ISerializableXML, CollisionCheck>);
static_assert(!std::is_base_of_v<ISerializableXML, MachinePosition>);
static_assert(!std::is_base_of_v<ISerializableXML, EntityMesh>);

// EntityLink.
static_assert(LinkSlotCount == 6);
static_assert(std::is_default_constructible_v<EntityLink>);
ORVO_EXPECT_MEMBER(void (EntityLink::*)(const Vector3D&), EntityLink::SetEntityLinkLinear);
ORVO_EXPECT_MEMBER(void (EntityLink::*)(const Vector3D&, const Vector3D&),
                   EntityLink::SetEntityLinkRotary);
ORVO_EXPECT_MEMBER(void (EntityLink::*)(const Matrix43&), EntityLink::SetEntityLinkPosition);
ORVO_EXPECT_MEMBER(void (EntityLink::*)(unsigned int, double), EntityLink::SetZeroRef);
ORVO_EXPECT_MEMBER(void (EntityLink::*)(double), EntityLink::SetZeroRef);
ORVO_EXPECT_MEMBER(void (EntityLink::*)(unsigned int, double), EntityLink::SetRangeMin);
ORVO_EXPECT_MEMBER(void (EntityLink::*)(double), EntityLink::SetRangeMin);
ORVO_EXPECT_MEMBER(void (EntityLink::*)(unsigned int, double), EntityLink::SetRangeMax);
ORVO_EXPECT_MEMBER(void (EntityLink::*)(double), EntityLink::SetRangeMax);
ORVO_EXPECT_MEMBER(const EntityLinkType& (EntityLink::*)() const, EntityLink::GetEntityLinkType);
ORVO_EXPECT_MEMBER(const Vector3D& (EntityLink::*)() const, EntityLink::GetCenter);
ORVO_EXPECT_MEMBER(const Vector3D& (EntityLink::*)() const, EntityLink::GetDir);
ORVO_EXPECT_MEMBER(const Matrix43& (EntityLink::*)() const, EntityLink::GetPosition);
ORVO_EXPECT_MEMBER(double (EntityLink::*)(unsigned int) const, EntityLink::GetZeroRef);
ORVO_EXPECT_MEMBER(double (EntityLink::*)() const, EntityLink::GetZeroRef);
ORVO_EXPECT_MEMBER(double (EntityLink::*)(unsigned int) const, EntityLink::GetRangeMin);
ORVO_EXPECT_MEMBER(double (EntityLink::*)() const, EntityLink::GetRangeMin);
ORVO_EXPECT_MEMBER(double (EntityLink::*)(unsigned int) const, EntityLink::GetRangeMax);
ORVO_EXPECT_MEMBER(double (EntityLink::*)() const, EntityLink::GetRangeMax);

// Entity.
static_assert(std::is_default_constructible_v<Entity>);
ORVO_EXPECT_MEMBER(const std::wstring& (Entity::*)() const, Entity::GetEntityName);
ORVO_EXPECT_MEMBER(void (Entity::*)(const std::wstring&), Entity::SetEntityName);
ORVO_EXPECT_MEMBER(const EntityType& (Entity::*)() const, Entity::GetEntityType);
ORVO_EXPECT_MEMBER(const EntityParallelType& (Entity::*)() const, Entity::GetEntityParallelType);
ORVO_EXPECT_MEMBER(const EntityId& (Entity::*)() const, Entity::GetEntityId);
ORVO_EXPECT_MEMBER(const EntityId& (Entity::*)() const, Entity::GetParentEntityId);
ORVO_EXPECT_MEMBER(void (Entity::*)(const EntityId&), Entity::SetParentEntityId);
ORVO_EXPECT_MEMBER(const Register& (Entity::*)() const, Entity::GetRegister);
ORVO_EXPECT_MEMBER(void (Entity::*)(const Register&), Entity::SetRegister);
ORVO_EXPECT_MEMBER(bool (Entity::*)() const, Entity::GetIsMotor);
ORVO_EXPECT_MEMBER(void (Entity::*)(bool), Entity::SetIsMotor);
ORVO_EXPECT_MEMBER(bool (Entity::*)() const, Entity::GetCheckRangeAxis);
ORVO_EXPECT_MEMBER(void (Entity::*)(bool), Entity::SetCheckRangeAxis);
ORVO_EXPECT_MEMBER(bool (Entity::*)() const, Entity::GetIsMounting);
ORVO_EXPECT_MEMBER(void (Entity::*)(bool), Entity::SetIsMounting);
ORVO_EXPECT_MEMBER(const EntityLink& (Entity::*)() const, Entity::GetEntityLink);
ORVO_EXPECT_MEMBER(EntityLink* (Entity::*)(), Entity::GetEntityLinkMod);
ORVO_EXPECT_MEMBER(void (Entity::*)(const EntityLink&), Entity::SetEntityLink);
ORVO_EXPECT_MEMBER(const EntityMesh* (Entity::*)() const, Entity::GetEntityMesh);
ORVO_EXPECT_MEMBER(EntityMesh* (Entity::*)(), Entity::GetEntityMeshMod);
ORVO_EXPECT_MEMBER(const Entity* (Entity::*)() const, Entity::GetParentEntity);
ORVO_EXPECT_MEMBER(int (Entity::*)() const, Entity::GetLevel);
ORVO_EXPECT_MEMBER(double (Entity::*)() const, Entity::GetRangeMin);
ORVO_EXPECT_MEMBER(double (Entity::*)() const, Entity::GetRangeMax);
ORVO_EXPECT_MEMBER(void (Entity::*)(double), Entity::SetRangeMin);
ORVO_EXPECT_MEMBER(void (Entity::*)(double), Entity::SetRangeMax);
ORVO_EXPECT_MEMBER(void (Entity::*)(double, double), Entity::SetRange);
ORVO_EXPECT_MEMBER(EntityMesh* (Entity::*)(), Entity::AllocEntityMesh);
ORVO_EXPECT_MEMBER(bool (Entity::*)(const std::wstring&, unsigned int), Entity::AddCadStlBin);

struct OpenEntity : Entity {
  using Entity::SetEntityId;
  using Entity::SetEntityParallelType;
  using Entity::SetEntityType;
  using Entity::SetLevel;
  using Entity::SetParentEntity;
};
ORVO_EXPECT_MEMBER(void (Entity::*)(const EntityId&), OpenEntity::SetEntityId);
ORVO_EXPECT_MEMBER(void (Entity::*)(const EntityType&), OpenEntity::SetEntityType);
ORVO_EXPECT_MEMBER(void (Entity::*)(const EntityParallelType&), OpenEntity::SetEntityParallelType);
ORVO_EXPECT_MEMBER(void (Entity::*)(int), OpenEntity::SetLevel);
ORVO_EXPECT_MEMBER(void (Entity::*)(const Entity*), OpenEntity::SetParentEntity);

template <class Class>
concept HasPublicEntitySetters = requires(Class object) {
  object.SetEntityId(EntityId(1));
}
|| requires(Class object) { object.SetEntityType(EntityTypeHead); }
|| requires(Class object) { object.SetEntityParallelType(EntityParallelTypeChain); }
|| requires(Class object) { object.SetLevel(1); }
|| requires(Class object) { object.SetParentEntity(nullptr); };
static_assert(!HasPublicEntitySetters<Entity>);

// Kinematic.
static_assert(std::is_default_constructible_v<Kinematic>);
ORVO_EXPECT_MEMBER(const std::list<Entity>& (Kinematic::*)() const, Kinematic::GetListEntity);
ORVO_EXPECT_MEMBER(const Entity* (Kinematic::*)(const EntityId&) const, Kinematic::GetEntity);
ORVO_EXPECT_MEMBER(const Entity* (Kinematic::*)(const Register&) const, Kinematic::GetEntity);
ORVO_EXPECT_MEMBER(const Entity* (Kinematic::*)(const HeadIndex&) const, Kinematic::GetEntityHead);
ORVO_EXPECT_MEMBER(const Entity* (Kinematic::*)(const TableIndex&) const,
                   Kinematic::GetEntityTable);

struct OpenKinematic : Kinematic {
  using Kinematic::GetListEntityMod;
  using Kinematic::GetVectorHeadMod;
  using Kinematic::GetVectorSortedByEntityIdMod;
  using Kinematic::GetVectorSortedByRegisterMod;
  using Kinematic::GetVectorTableMod;
};
using EntityVector = std::vector<const Entity*>;
ORVO_EXPECT_MEMBER(std::list<Entity>* (Kinematic::*)(), OpenKinematic::GetListEntityMod);
ORVO_EXPECT_MEMBER(EntityVector* (Kinematic::*)(), OpenKinematic::GetVectorSortedByEntityIdMod);
ORVO_EXPECT_MEMBER(EntityVector* (Kinematic::*)(), OpenKinematic::GetVectorSortedByRegisterMod);
ORVO_EXPECT_MEMBER(EntityVector* (Kinematic::*)(), OpenKinematic::GetVectorHeadMod);
ORVO_EXPECT_MEMBER(EntityVector* (Kinematic::*)(), OpenKinematic::GetVectorTableMod);

template <class Class>
concept HasPublicKinematicTables = requires(Class object) {
  object.GetListEntityMod();
}
|| requires(Class object) { object.GetVectorSortedByEntityIdMod(); }
|| requires(Class object) { object.GetVectorSortedByRegisterMod(); }
|| requires(Class object) { object.GetVectorHeadMod(); }
|| requires(Class object) { object.GetVectorTableMod(); };
static_assert(!HasPublicKinematicTables<Kinematic>);

// Machine.
static_assert(std::is_default_constructible_v<Machine>);
ORVO_EXPECT_MEMBER(Entity* (Machine::*)(), Machine::AddEntity);
ORVO_EXPECT_MEMBER(void (Machine::*)(const Entity&), Machine::AddEntity);
ORVO_EXPECT_MEMBER(Entity* (Machine::*)(const std::wstring&, const EntityId&, const Vector3D&),
                   Machine::AddEntityLinear);
ORVO_EXPECT_MEMBER(Entity* (Machine::*)(const std::wstring&, const EntityId&, const Vector3D&,
                                        const Vector3D&),
                   Machine::AddEntityRotary);
ORVO_EXPECT_MEMBER(Entity* (Machine::*)(const std::wstring&, const EntityId&),
                   Machine::AddEntityStatic);
ORVO_EXPECT_MEMBER(Entity* (Machine::*)(const std::wstring&, const EntityId&, const Matrix43&),
                   Machine::AddEntityHead);
ORVO_EXPECT_MEMBER(Entity* (Machine::*)(const std::wstring&, const EntityId&, const Matrix43&),
                   Machine::AddEntityTable);
ORVO_EXPECT_MEMBER(void (Machine::*)(const ProgramSystem&), Machine::AddProgramSystem);
ORVO_EXPECT_MEMBER(bool (Machine::*)(), Machine::Finish);
ORVO_EXPECT_MEMBER(bool (Machine::*)() const, Machine::IsFinished);
ORVO_EXPECT_MEMBER(MachineErrorType (Machine::*)(), Machine::GetLastError);
ORVO_EXPECT_MEMBER(const Kinematic& (Machine::*)() const, Machine::GetKinematic);
ORVO_EXPECT_MEMBER(const CollisionCheck& (Machine::*)() const, Machine::GetCollisionCheck);
ORVO_EXPECT_MEMBER(CollisionCheck& (Machine::*)(), Machine::GetCollisionCheckMod);
ORVO_EXPECT_MEMBER(const Register& (Machine::*)() const, Machine::GetRegisterNb);
ORVO_EXPECT_MEMBER(int (Machine::*)() const, Machine::GetEntityNb);
ORVO_EXPECT_MEMBER(EntityId (Machine::*)(), Machine::GetEntityIdMax);
ORVO_EXPECT_MEMBER(const TableIndex& (Machine::*)() const, Machine::GetTableNb);
ORVO_EXPECT_MEMBER(const HeadIndex& (Machine::*)() const, Machine::GetHeadNb);
ORVO_EXPECT_MEMBER(int (Machine::*)() const, Machine::GetLinearAxesNb);
ORVO_EXPECT_MEMBER(const std::list<ProgramSystem>& (Machine::*)() const,
                   Machine::GetListProgramSystem);
ORVO_EXPECT_MEMBER(ProgramSystemIndex (Machine::*)() const, Machine::GetProgramSystemNb);
ORVO_EXPECT_MEMBER(const ProgramSystem* (Machine::*)(const ProgramSystemIndex&),
                   Machine::GetProgramSystem);
ORVO_EXPECT_MEMBER(void (Machine::*)(MachinePosition*) const, Machine::Alloc);
ORVO_EXPECT_MEMBER(bool (Machine::*)(const std::wstring&), Machine::ReadXML);
ORVO_EXPECT_MEMBER(bool (Machine::*)(const std::wstring&), Machine::WriteXML);
ORVO_EXPECT_MEMBER(bool (Machine::*)(const std::wstring&), Machine::ReadMachineWithMeshStl);
ORVO_EXPECT_MEMBER(bool (Machine::*)(const std::wstring&), Machine::WriteMachineWithMeshStl);

// ProgramSystem.
static_assert(std::is_default_constructible_v<ProgramSystem>);
ORVO_EXPECT_MEMBER(const std::wstring& (ProgramSystem::*)() const,
                   ProgramSystem::GetProgramSystemName);
ORVO_EXPECT_MEMBER(void (ProgramSystem::*)(const std::wstring&),
                   ProgramSystem::SetProgramSystemName);
ORVO_EXPECT_MEMBER(const TableIndex& (ProgramSystem::*)() const, ProgramSystem::GetTableIndex);
ORVO_EXPECT_MEMBER(void (ProgramSystem::*)(const TableIndex&), ProgramSystem::SetTableIndex);
ORVO_EXPECT_MEMBER(const HeadIndex& (ProgramSystem::*)() const, ProgramSystem::GetHeadIndex);
ORVO_EXPECT_MEMBER(void (ProgramSystem::*)(const HeadIndex&), ProgramSystem::SetHeadIndex);
ORVO_EXPECT_MEMBER(void (ProgramSystem::*)(const Register&, const Register&, const Register&),
                   ProgramSystem::SetMainLinear);
ORVO_EXPECT_MEMBER(const Register& (ProgramSystem::*)(int) const, ProgramSystem::GetMainLinear);
ORVO_EXPECT_MEMBER(void (ProgramSystem::*)(const Register&, const Register&),
                   ProgramSystem::SetMainRotary);
ORVO_EXPECT_MEMBER(const Register& (ProgramSystem::*)(int) const, ProgramSystem::GetMainRotary);
ORVO_EXPECT_MEMBER(RotariesCompute (ProgramSystem::*)(), ProgramSystem::GetRotariesCompute);
ORVO_EXPECT_MEMBER(void (ProgramSystem::*)(RotariesCompute), ProgramSystem::SetRotariesCompute);

// CollisionCheck.
static_assert(IsCopyable<CollisionCheck> && HasVirtualDestructor<CollisionCheck>);
static_assert(std::is_default_constructible_v<CollisionCheck>);
ORVO_EXPECT_MEMBER(void (CollisionCheck::*)(const EntityId&, bool),
                   CollisionCheck::SetMachineStock);
ORVO_EXPECT_MEMBER(void (CollisionCheck::*)(const EntityId&, bool), CollisionCheck::SetMachinePart);
ORVO_EXPECT_MEMBER(void (CollisionCheck::*)(const EntityId&, bool),
                   CollisionCheck::SetMachineFixture);
ORVO_EXPECT_MEMBER(void (CollisionCheck::*)(const EntityId&, bool), CollisionCheck::SetMachineTool);
ORVO_EXPECT_MEMBER(bool (CollisionCheck::*)(const EntityId&) const,
                   CollisionCheck::GetMachineStock);
ORVO_EXPECT_MEMBER(bool (CollisionCheck::*)(const EntityId&) const, CollisionCheck::GetMachinePart);
ORVO_EXPECT_MEMBER(bool (CollisionCheck::*)(const EntityId&) const,
                   CollisionCheck::GetMachineFixture);
ORVO_EXPECT_MEMBER(bool (CollisionCheck::*)(const EntityId&) const, CollisionCheck::GetMachineTool);
ORVO_EXPECT_MEMBER(void (CollisionCheck::*)(std::list<EntityId>*) const,
                   CollisionCheck::GetListMachineStock);
ORVO_EXPECT_MEMBER(void (CollisionCheck::*)(std::list<EntityId>*) const,
                   CollisionCheck::GetListMachinePart);
ORVO_EXPECT_MEMBER(void (CollisionCheck::*)(std::list<EntityId>*) const,
                   CollisionCheck::GetListMachineFixture);
ORVO_EXPECT_MEMBER(void (CollisionCheck::*)(std::list<EntityId>*) const,
                   CollisionCheck::GetListMachineTool);
ORVO_EXPECT_MEMBER(void (CollisionCheck::*)(const EntityId&, const EntityId&, bool),
                   CollisionCheck::SetMachineMachine);
ORVO_EXPECT_MEMBER(bool (CollisionCheck::*)(const EntityId&, const EntityId&) const,
                   CollisionCheck::GetMachineMachine);
ORVO_EXPECT_MEMBER(void (CollisionCheck::*)(const EntityId&, std::list<EntityId>*, bool) const,
                   CollisionCheck::GetListMachineMachine);

// MachinePosition.
static_assert(IsCopyable<MachinePosition> && HasVirtualDestructor<MachinePosition>);
static_assert(std::is_default_constructible_v<MachinePosition>);
ORVO_EXPECT_MEMBER(void (MachinePosition::*)(const Register&), MachinePosition::Alloc);
ORVO_EXPECT_MEMBER(void (MachinePosition::*)(unsigned long long), MachinePosition::Alloc);
ORVO_EXPECT_MEMBER(void (MachinePosition::*)(double), MachinePosition::SetAll);
ORVO_EXPECT_MEMBER(unsigned long long (MachinePosition::*)() const, MachinePosition::Size);
ORVO_EXPECT_MEMBER(double& (MachinePosition::*)(const Register&), MachinePosition::operator[]);
ORVO_EXPECT_MEMBER(const double& (MachinePosition::*)(const Register&) const,
                   MachinePosition::operator[]);
ORVO_EXPECT_MEMBER(MachinePosition (MachinePosition::*)(const MachinePosition&),
                   MachinePosition::operator+);
ORVO_EXPECT_MEMBER(MachinePosition (MachinePosition::*)(const MachinePosition&),
                   MachinePosition::operator-);
ORVO_EXPECT_MEMBER(MachinePosition (MachinePosition::*)(), MachinePosition::operator-);
ORVO_EXPECT_MEMBER(MachinePosition (MachinePosition::*)(double), MachinePosition::operator*);
ORVO_EXPECT_MEMBER(MachinePosition (MachinePosition::*)(double), MachinePosition::operator/);
ORVO_EXPECT_MEMBER(MachinePosition& (MachinePosition::*)(const MachinePosition&),
                   MachinePosition::operator+=);
ORVO_EXPECT_MEMBER(MachinePosition& (MachinePosition::*)(const MachinePosition&),
                   MachinePosition::operator-=);

// EntityMesh.
static_assert(HasVirtualDestructor<EntityMesh> && std::is_default_constructible_v<EntityMesh>);
static_assert(!std::is_copy_constructible_v<EntityMesh> && !std::is_copy_assignable_v<EntityMesh>);
ORVO_EXPECT_MEMBER(void (EntityMesh::*)(Mesh*, unsigned int), EntityMesh::AddMesh);
ORVO_EXPECT_MEMBER(bool (EntityMesh::*)(const std::wstring&, unsigned int),
                   EntityMesh::AddCadStlBin);
ORVO_EXPECT_MEMBER(unsigned int (EntityMesh::*)() const, EntityMesh::GetMeshNb);
ORVO_EXPECT_MEMBER(const Mesh* (EntityMesh::*)(int) const, EntityMesh::GetMesh);
ORVO_EXPECT_MEMBER(unsigned int (EntityMesh::*)(int) const, EntityMesh::GetMeshColor);
ORVO_EXPECT_MEMBER(bool (EntityMesh::*)(const std::wstring&, int), EntityMesh::ReadCadStlBin);
ORVO_EXPECT_MEMBER(bool (EntityMesh::*)(const std::wstring&, int) const,
                   EntityMesh::WriteCadStlBin);

}  // namespace
}  // namespace Orvo::Kin
