#include "support/Signature.h"

#include <Orvo/Kin/ProgramSystem.h>

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace Orvo::Kin {
namespace {

using Testing::HasSignature;

static_assert(std::has_virtual_destructor_v<ProgramSystem>);
static_assert(std::is_base_of_v<ISerializableXML, ProgramSystem>);
static_assert(HasSignature<const std::wstring& (ProgramSystem::*)() const>(
    &ProgramSystem::GetProgramSystemName));
static_assert(HasSignature<void (ProgramSystem::*)(const std::wstring&)>(
    &ProgramSystem::SetProgramSystemName));
static_assert(
    HasSignature<const TableIndex& (ProgramSystem::*)() const>(&ProgramSystem::GetTableIndex));
static_assert(
    HasSignature<void (ProgramSystem::*)(const TableIndex&)>(&ProgramSystem::SetTableIndex));
static_assert(
    HasSignature<const HeadIndex& (ProgramSystem::*)() const>(&ProgramSystem::GetHeadIndex));
static_assert(
    HasSignature<void (ProgramSystem::*)(const HeadIndex&)>(&ProgramSystem::SetHeadIndex));
static_assert(
    HasSignature<void (ProgramSystem::*)(const Register&, const Register&, const Register&)>(
        &ProgramSystem::SetMainLinear));
static_assert(
    HasSignature<const Register& (ProgramSystem::*)(int) const>(&ProgramSystem::GetMainLinear));
static_assert(HasSignature<void (ProgramSystem::*)(const Register&, const Register&)>(
    &ProgramSystem::SetMainRotary));
static_assert(
    HasSignature<const Register& (ProgramSystem::*)(int) const>(&ProgramSystem::GetMainRotary));
static_assert(
    HasSignature<RotariesCompute (ProgramSystem::*)()>(&ProgramSystem::GetRotariesCompute));
static_assert(
    HasSignature<void (ProgramSystem::*)(RotariesCompute)>(&ProgramSystem::SetRotariesCompute));

ProgramSystem FullProgramSystem() {
  ProgramSystem ps;
  ps.SetProgramSystemName(L"Mill \x00e9");
  ps.SetTableIndex(TableIndex(2));
  ps.SetHeadIndex(HeadIndex(3));
  ps.SetMainLinear(Register(4), Register(5), Register(6));
  ps.SetMainRotary(Register(7), Register(8));
  ps.SetRotariesCompute(RotariesComputeAlphaPositive);
  return ps;
}

void ExpectFull(ProgramSystem ps) {
  EXPECT_EQ(ps.GetProgramSystemName(), L"Mill \x00e9");
  EXPECT_EQ(ps.GetTableIndex().GetVal(), 2);
  EXPECT_EQ(ps.GetHeadIndex().GetVal(), 3);
  EXPECT_EQ(ps.GetMainLinear(0).GetVal(), 4);
  EXPECT_EQ(ps.GetMainLinear(1).GetVal(), 5);
  EXPECT_EQ(ps.GetMainLinear(2).GetVal(), 6);
  EXPECT_EQ(ps.GetMainRotary(0).GetVal(), 7);
  EXPECT_EQ(ps.GetMainRotary(1).GetVal(), 8);
  EXPECT_EQ(ps.GetRotariesCompute(), RotariesComputeAlphaPositive);
}

TEST(ProgramSystem, StartsUndefinedWithTheShortestWay) {
  ProgramSystem ps;
  EXPECT_EQ(ps.GetProgramSystemName(), L"");
  EXPECT_EQ(ps.GetTableIndex().GetVal(), -1);
  EXPECT_EQ(ps.GetHeadIndex().GetVal(), -1);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(ps.GetMainLinear(i).GetVal(), -1);
  }
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(ps.GetMainRotary(i).GetVal(), -1);
  }
  EXPECT_EQ(ps.GetRotariesCompute(), 1);
}

TEST(ProgramSystem, KeepsWhatIsSet) { ExpectFull(FullProgramSystem()); }

TEST(ProgramSystem, KeepsValuesOfAnySize) {
  ProgramSystem ps;
  ps.SetTableIndex(TableIndex(-5));
  ps.SetHeadIndex(HeadIndex(std::numeric_limits<int>::max()));
  ps.SetRotariesCompute(static_cast<RotariesCompute>(17));
  EXPECT_EQ(ps.GetTableIndex().GetVal(), -5);
  EXPECT_EQ(ps.GetHeadIndex().GetVal(), std::numeric_limits<int>::max());
  EXPECT_EQ(ps.GetRotariesCompute(), 17);
}

TEST(ProgramSystem, AnIndexOutsideFallsBackToTheFirst) {
  const ProgramSystem ps = FullProgramSystem();
  const int outside[] = {
      3, 4, 100, -1, -2, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};
  for (const int i : outside) {
    SCOPED_TRACE(i);
    EXPECT_EQ(&ps.GetMainLinear(i), &ps.GetMainLinear(0));
    EXPECT_EQ(&ps.GetMainRotary(i), &ps.GetMainRotary(0));
  }
  EXPECT_EQ(ps.GetMainRotary(2).GetVal(), 7);
}

TEST(ProgramSystem, TakesItsOwnRegistersAsArguments) {
  ProgramSystem ps = FullProgramSystem();
  ps.SetMainLinear(ps.GetMainLinear(2), ps.GetMainLinear(0), ps.GetMainLinear(1));
  EXPECT_EQ(ps.GetMainLinear(0).GetVal(), 6);
  EXPECT_EQ(ps.GetMainLinear(1).GetVal(), 4);
  EXPECT_EQ(ps.GetMainLinear(2).GetVal(), 5);
  ps.SetMainRotary(ps.GetMainRotary(1), ps.GetMainRotary(0));
  EXPECT_EQ(ps.GetMainRotary(0).GetVal(), 8);
  EXPECT_EQ(ps.GetMainRotary(1).GetVal(), 7);
  ps.SetProgramSystemName(ps.GetProgramSystemName());
  EXPECT_EQ(ps.GetProgramSystemName(), L"Mill \x00e9");
}

TEST(ProgramSystem, CopiesTakeTheContents) {
  auto source = std::make_unique<ProgramSystem>(FullProgramSystem());
  const ProgramSystem copy(*source);
  ProgramSystem assigned;
  EXPECT_EQ(&(assigned = *source), &assigned);
  source->SetProgramSystemName(L"changed");
  source->SetMainLinear(Register(), Register(), Register());
  source.reset();
  ExpectFull(copy);
  ExpectFull(assigned);
}

TEST(ProgramSystem, AssignmentOntoItselfChangesNothing) {
  ProgramSystem ps = FullProgramSystem();
  const ProgramSystem& self = ps;
  ps = self;
  ExpectFull(ps);
}

TEST(ProgramSystem, AMovedOneStaysUsable) {
  ProgramSystem source = FullProgramSystem();
  const ProgramSystem target(std::move(source));
  ExpectFull(target);
  source.SetProgramSystemName(L"again");  // NOLINT: a move is a copy here
  EXPECT_EQ(source.GetProgramSystemName(), L"again");
}

}  // namespace
}  // namespace Orvo::Kin
