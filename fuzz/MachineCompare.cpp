#include "MachineCompare.h"

#include "Check.h"

#include <Orvo/Kin/CollisionCheck.h>
#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <list>
#include <string>
#include <string_view>

namespace Orvo::Fuzz {

using Kin::Entity;
using Kin::EntityLink;
using Kin::Machine;
using Kin::ProgramSystem;

namespace {

constexpr double SmallestDirection = 0.001;

bool IsSame(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
         (std::isnan(a) && std::isnan(b));
}

bool IsSame(const double* a, const double* b, int count) {
  return std::equal(a, a + count, b, [](double x, double y) { return IsSame(x, y); });
}

/// What a number is after it was written with six decimals and read.
double Kept(double value) {
  char text[400];
  std::snprintf(text, sizeof text, "%.6f", value);
  return std::strtod(text, nullptr);
}

Vector3D Kept(const Vector3D& v) { return Vector3D(Kept(v[0]), Kept(v[1]), Kept(v[2])); }

/// What a name is after it was written as the text of an XML element and read: line ends become
/// LF, and a text of blanks only is none.
std::wstring Kept(const std::wstring& name) {
  constexpr std::wstring_view blanks = L" \t\n\v\f\r";
  if (name.find_first_not_of(blanks) == std::wstring::npos) {
    return L"";
  }
  std::wstring kept;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const wchar_t c = name[i];
    if (c != L'\r' && c != L'\n') {
      kept += c;
      continue;
    }
    kept += L'\n';
    const wchar_t other = c == L'\r' ? L'\n' : L'\r';
    if (i + 1 < name.size() && name[i + 1] == other) {
      ++i;
    }
  }
  return kept;
}

template <typename Value>
Value Expected(const Value& value, Origin origin) {
  return origin == Origin::Written ? Kept(value) : value;
}

void RequireSameLink(const EntityLink& first, const EntityLink& second, Origin origin) {
  Require(first.GetEntityLinkType() == second.GetEntityLinkType(), "the kind of link stays");
  Require(IsSame(Expected(first.GetCenter(), origin), second.GetCenter(), 4), "a center stays");
  Vector3D dir = Expected(first.GetDir(), origin);
  if (origin == Origin::Written) {
    dir.MakeUnit(SmallestDirection);
  }
  Require(IsSame(dir, second.GetDir(), 4), "a direction stays");

  Matrix43 position(first.GetPosition());
  if (origin == Origin::Written) {
    position.SetUVWT(Kept(position.GetU()), Kept(position.GetV()), Kept(position.GetW()),
                     Kept(position.GetTrans()));
  }
  const Matrix43& secondPosition = second.GetPosition();
  const double* const elements = position;
  const double* const secondElements = secondPosition;
  Require(IsSame(elements, secondElements, 16), "a placement stays");

  // The file keeps slot 0 alone.
  for (unsigned int slot = 0; slot <= Kin::LinkSlotCount; ++slot) {
    const Origin ofSlot = slot == 0 ? origin : Origin::SameFile;
    Require(IsSame(Expected(first.GetZeroRef(slot), ofSlot), second.GetZeroRef(slot)),
            "a zero reference stays");
    Require(IsSame(Expected(first.GetRangeMin(slot), ofSlot), second.GetRangeMin(slot)) &&
                IsSame(Expected(first.GetRangeMax(slot), ofSlot), second.GetRangeMax(slot)),
            "limits stay");
  }
}

void RequireSameMeshes(const Kin::EntityMesh* first, const Kin::EntityMesh* second) {
  Require((first == nullptr) == (second == nullptr), "a list of meshes stays");
  if (first == nullptr) {
    return;
  }
  Require(first->GetMeshNb() == second->GetMeshNb(), "the meshes stay");
  for (int i = 0; i < static_cast<int>(first->GetMeshNb()); ++i) {
    Require(first->GetMeshColor(i) == second->GetMeshColor(i), "a color stays");
    Require(first->GetMesh(i)->GetDimNVerts() == second->GetMesh(i)->GetDimNVerts(),
            "a mesh stays");
  }
}

void RequireSameElement(const Entity& first, const Entity& second, Origin origin, bool isFinished) {
  Require(Expected(first.GetEntityName(), origin) == second.GetEntityName(),
          "an element's name stays");
  Require(first.GetEntityType() == second.GetEntityType() &&
              first.GetEntityParallelType() == second.GetEntityParallelType(),
          "an element's types stay");
  Require(first.GetEntityId().GetVal() == second.GetEntityId().GetVal() &&
              first.GetParentEntityId().GetVal() == second.GetParentEntityId().GetVal() &&
              first.GetRegister().GetVal() == second.GetRegister().GetVal(),
          "an element's id, parent and register stay");
  Require(first.GetIsMotor() == second.GetIsMotor() &&
              first.GetCheckRangeAxis() == second.GetCheckRangeAxis() &&
              first.GetIsMounting() == second.GetIsMounting(),
          "an element's flags stay");
  RequireSameLink(first.GetEntityLink(), second.GetEntityLink(), origin);
  RequireSameMeshes(first.GetEntityMesh(), second.GetEntityMesh());
  if (isFinished) {
    Require(first.GetLevel() == second.GetLevel(), "an element's level stays");
  }
}

void RequireSameProgramSystem(const ProgramSystem& first, const ProgramSystem& second,
                              Origin origin) {
  Require(Expected(first.GetProgramSystemName(), origin) == second.GetProgramSystemName(),
          "a program system's name stays");
  Require(first.GetTableIndex().GetVal() == second.GetTableIndex().GetVal() &&
              first.GetHeadIndex().GetVal() == second.GetHeadIndex().GetVal(),
          "a program system's head and table stay");
  for (int i = 0; i < 3; ++i) {
    Require(first.GetMainLinear(i).GetVal() == second.GetMainLinear(i).GetVal() &&
                first.GetMainRotary(i).GetVal() == second.GetMainRotary(i).GetVal(),
            "a program system's registers stay");
  }
  ProgramSystem copyOfFirst(first);
  ProgramSystem copyOfSecond(second);
  Require(copyOfFirst.GetRotariesCompute() == copyOfSecond.GetRotariesCompute(),
          "a program system's policy stays");
}

bool IsSameList(const std::list<Kin::EntityId>& first, const std::list<Kin::EntityId>& second) {
  return std::equal(
      first.begin(), first.end(), second.begin(), second.end(),
      [](const Kin::EntityId& a, const Kin::EntityId& b) { return a.GetVal() == b.GetVal(); });
}

/// The pairs that a machine writes, in the order in which they are read back.
Kin::CollisionCheck WrittenPairs(const Machine& machine) {
  Kin::CollisionCheck pairs;
  for (const Entity& entity : machine.GetKinematic().GetListEntity()) {
    std::list<Kin::EntityId> partners;
    machine.GetCollisionCheck().GetListMachineMachine(entity.GetEntityId(), &partners, false);
    for (const Kin::EntityId& partner : partners) {
      pairs.SetMachineMachine(entity.GetEntityId(), partner, true);
    }
  }
  return pairs;
}

void RequireSameCollisions(const Machine& first, const Machine& second, Origin origin) {
  constexpr void (Kin::CollisionCheck::*lists[])(std::list<Kin::EntityId>*) const = {
      &Kin::CollisionCheck::GetListMachineStock, &Kin::CollisionCheck::GetListMachinePart,
      &Kin::CollisionCheck::GetListMachineFixture, &Kin::CollisionCheck::GetListMachineTool};
  for (const auto list : lists) {
    std::list<Kin::EntityId> ofFirst;
    std::list<Kin::EntityId> ofSecond;
    (first.GetCollisionCheck().*list)(&ofFirst);
    (second.GetCollisionCheck().*list)(&ofSecond);
    Require(IsSameList(ofFirst, ofSecond), "a set of the collision check stays");
  }
  const Kin::CollisionCheck pairs =
      origin == Origin::Written ? WrittenPairs(first) : first.GetCollisionCheck();
  for (const Entity& entity : first.GetKinematic().GetListEntity()) {
    std::list<Kin::EntityId> ofFirst;
    std::list<Kin::EntityId> ofSecond;
    pairs.GetListMachineMachine(entity.GetEntityId(), &ofFirst, true);
    second.GetCollisionCheck().GetListMachineMachine(entity.GetEntityId(), &ofSecond, true);
    Require(IsSameList(ofFirst, ofSecond), "the pairs of an element stay");
    for (const Kin::EntityId& partner : ofSecond) {
      std::list<Kin::EntityId> partnersOfFirst;
      std::list<Kin::EntityId> partnersOfSecond;
      pairs.GetListMachineMachine(partner, &partnersOfFirst, true);
      second.GetCollisionCheck().GetListMachineMachine(partner, &partnersOfSecond, true);
      Require(IsSameList(partnersOfFirst, partnersOfSecond), "the pairs of a partner stay");
    }
  }
}

}  // namespace

void RequireSame(Machine* first, Machine* second, Origin origin, bool isFinished) {
  const std::list<Entity>& firstElements = first->GetKinematic().GetListEntity();
  const std::list<Entity>& secondElements = second->GetKinematic().GetListEntity();
  Require(firstElements.size() == secondElements.size(), "the elements stay");
  auto element = secondElements.begin();
  for (const Entity& entity : firstElements) {
    RequireSameElement(entity, *element, origin, isFinished);
    ++element;
  }

  const std::list<ProgramSystem>& firstPrograms = first->GetListProgramSystem();
  const std::list<ProgramSystem>& secondPrograms = second->GetListProgramSystem();
  const bool mayHaveDefault = !isFinished && firstPrograms.empty();
  Require(firstPrograms.size() == secondPrograms.size() ||
              (mayHaveDefault && secondPrograms.size() == 1),
          "the program systems stay");
  auto program = secondPrograms.begin();
  for (const ProgramSystem& programSystem : firstPrograms) {
    RequireSameProgramSystem(programSystem, *program, origin);
    ++program;
  }
  RequireSameCollisions(*first, *second, origin);

  if (isFinished) {
    Require(first->IsFinished() == second->IsFinished() &&
                first->GetLastError() == second->GetLastError(),
            "the verdict on the machine stays");
    Require(first->GetRegisterNb().GetVal() == second->GetRegisterNb().GetVal() &&
                first->GetEntityNb() == second->GetEntityNb() &&
                first->GetEntityIdMax().GetVal() == second->GetEntityIdMax().GetVal() &&
                first->GetTableNb().GetVal() == second->GetTableNb().GetVal() &&
                first->GetHeadNb().GetVal() == second->GetHeadNb().GetVal() &&
                first->GetLinearAxesNb() == second->GetLinearAxesNb(),
            "the counts of the machine stay");
  }
}

}  // namespace Orvo::Fuzz
