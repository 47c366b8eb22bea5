#include "model/Words.h"
#include "support/PrivateMember.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityLink.h>
#include <Orvo/Kin/Enumerations.h>

#include <gtest/gtest.h>

#include <string>

namespace Orvo {

namespace Testing {

struct LinkTypeFromDictOf {
  using Type = bool (Kin::EntityLink::*)(const std::wstring&, Kin::EntityLinkType&);
  friend Type MemberOf(LinkTypeFromDictOf);
};
template struct PrivateMember<LinkTypeFromDictOf, &Kin::EntityLink::GetEntityLinkTypeFromDict>;

struct TypeFromDictOf {
  using Type = bool (Kin::Entity::*)(const std::wstring&, Kin::EntityType&);
  friend Type MemberOf(TypeFromDictOf);
};
template struct PrivateMember<TypeFromDictOf, &Kin::Entity::GetEntityTypeFromDict>;

struct ParallelTypeFromDictOf {
  using Type = bool (Kin::Entity::*)(const std::wstring&, Kin::EntityParallelType&);
  friend Type MemberOf(ParallelTypeFromDictOf);
};
template struct PrivateMember<ParallelTypeFromDictOf, &Kin::Entity::GetEntityParallelTypeFromDict>;

}  // namespace Testing

namespace Kin {
namespace {

static_assert(sizeof(EntityType) == 4 && sizeof(EntityParallelType) == 4 &&
              sizeof(EntityLinkType) == 4 && sizeof(RotariesCompute) == 4 &&
              sizeof(MachineErrorType) == 4 && sizeof(MachineComputeErrorType) == 4);
static_assert(EntityTypeAxis == 0 && EntityTypeTable == 1 && EntityType::EntityTypeHead == 2);
static_assert(EntityParallelTypeChain == 0 && EntityParallelTypeParallel == 1);
static_assert(EntityLinkTypeLinear == 0 && EntityLinkTypeRotary == 1 &&
              EntityLinkTypePosition == 2 && EntityLinkTypeUndef == 8);
static_assert(RotariesComputeDefault == 0 && RotariesComputeShortestWay == 1 &&
              RotariesComputeAlphaPositive == 2);
static_assert(MachineErrorNone == 0 && MachineErrorNoHead == 1 && MachineErrorNoTable == 2 &&
              MachineErrorFewLinearAxes == 3 && MachineErrorParentCycle == 4);

const std::wstring LinkWords[] = {L"LINEAR",   L"ROTARY", L"POSITION",      L"ABC",  L"XYZABC",
                                  L"IDENTITY", L"XYZIJK", L"XYZ_REPSPINDL", L"UNDEF"};

template <typename Enumeration, std::size_t Size>
void ExpectWords(const WordTable<Enumeration, Size>& table, const std::wstring (&words)[Size]) {
  for (std::size_t i = 0; i < Size; ++i) {
    const auto value = static_cast<Enumeration>(i);
    Enumeration found = static_cast<Enumeration>(77);
    EXPECT_TRUE(table.Find(words[i], &found));
    EXPECT_EQ(found, value);
    std::wstring name = L"before";
    EXPECT_TRUE(table.Name(value, &name));
    EXPECT_EQ(name, words[i]);
  }
}

template <typename Enumeration, std::size_t Size>
void ExpectNoOtherWords(const WordTable<Enumeration, Size>& table) {
  const std::wstring others[] = {L"",
                                 L"linear",
                                 L"Axis",
                                 L"AXIS ",
                                 L" AXIS",
                                 L"AXI",
                                 L"AXISX",
                                 L"CHAINS",
                                 L"HEA",
                                 L"default",
                                 L"DEFAULT",
                                 L"Shortestway",
                                 L"UNDEF\n",
                                 std::wstring(L"HEAD\0", 5),
                                 std::wstring(1, L'\0')};
  for (const std::wstring& other : others) {
    Enumeration found = static_cast<Enumeration>(77);
    EXPECT_FALSE(table.Find(other, &found));
    EXPECT_EQ(found, static_cast<Enumeration>(77)) << "the output stays as it was";
  }
  const int outside[] = {-1, static_cast<int>(Size), 77, -2147483647 - 1, 2147483647};
  for (const int value : outside) {
    std::wstring name = L"before";
    EXPECT_FALSE(table.Name(static_cast<Enumeration>(value), &name));
    EXPECT_EQ(name, L"before");
  }
}

TEST(Words, OfLinkTypesAreNineInValueOrder) {
  ExpectWords(EntityLinkTypeWords, LinkWords);
  ExpectNoOtherWords(EntityLinkTypeWords);
}

TEST(Words, OfEntityTypes) {
  ExpectWords(EntityTypeWords, {L"AXIS", L"TABLE", L"HEAD"});
  ExpectNoOtherWords(EntityTypeWords);
}

TEST(Words, OfParallelTypes) {
  ExpectWords(EntityParallelTypeWords, {L"CHAIN", L"PARALLEL"});
  ExpectNoOtherWords(EntityParallelTypeWords);
}

// Deliberate: these are mixed-case, unlike the others.
TEST(Words, OfPolicies) {
  ExpectWords(RotariesComputeWords, {L"Default", L"ShortestWay", L"AlphaPositive"});
  ExpectNoOtherWords(RotariesComputeWords);
}

TEST(Words, ALinkFindsItsType) {
  EntityLink link;
  const auto find = MemberOf(Testing::LinkTypeFromDictOf());
  EntityLinkType type = EntityLinkTypePosition;
  for (int i = 0; i < 9; ++i) {
    EXPECT_TRUE((link.*find)(LinkWords[i], type));
    EXPECT_EQ(type, i);
  }
  EXPECT_FALSE((link.*find)(L"linear", type)) << "case matters";
  EXPECT_FALSE((link.*find)(L"", type));
  EXPECT_EQ(type, EntityLinkTypeUndef) << "the output stays as it was";
  EXPECT_EQ(link.GetEntityLinkType(), EntityLinkTypeUndef) << "looking up sets nothing";
}

TEST(Words, AnElementFindsItsTypes) {
  Entity entity;
  const auto findType = MemberOf(Testing::TypeFromDictOf());
  const auto findParallelType = MemberOf(Testing::ParallelTypeFromDictOf());
  EntityType type = EntityTypeAxis;
  EXPECT_TRUE((entity.*findType)(L"HEAD", type));
  EXPECT_EQ(type, EntityTypeHead);
  EXPECT_FALSE((entity.*findType)(L"Table", type));
  EXPECT_EQ(type, EntityTypeHead);
  EXPECT_TRUE((entity.*findType)(L"TABLE", type));
  EXPECT_EQ(type, EntityTypeTable);
  EXPECT_TRUE((entity.*findType)(L"AXIS", type));
  EXPECT_EQ(type, EntityTypeAxis);
  EntityParallelType parallelType = EntityParallelTypeChain;
  EXPECT_TRUE((entity.*findParallelType)(L"PARALLEL", parallelType));
  EXPECT_EQ(parallelType, EntityParallelTypeParallel);
  EXPECT_FALSE((entity.*findParallelType)(L"", parallelType));
  EXPECT_EQ(parallelType, EntityParallelTypeParallel);
  EXPECT_TRUE((entity.*findParallelType)(L"CHAIN", parallelType));
  EXPECT_EQ(parallelType, EntityParallelTypeChain);
  EXPECT_EQ(entity.GetEntityType(), EntityTypeAxis);
}

}  // namespace
}  // namespace Kin
}  // namespace Orvo
