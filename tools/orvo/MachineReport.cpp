#include "MachineReport.h"

#include "MachineFile.h"
#include "NumberText.h"
#include "TextTable.h"
#include "WideText.h"

#include <Orvo/Kin/CollisionCheck.h>
#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityId.h>
#include <Orvo/Kin/EntityLink.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/HeadIndex.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Kin/TableIndex.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <cstddef>
#include <list>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace OrvoTool {
namespace {

using Align = TextTable::Align;
using Orvo::Kin::Entity;
using Orvo::Kin::EntityLink;
using Orvo::Kin::Machine;
using Orvo::Kin::Register;

/// The branches of the tree are drawn to this depth; deeper ones get their level as a number.
constexpr int MaxDrawnLevel = 16;

std::string NameOf(const Entity& entity) {
  const std::string name = PrintableFromWide(entity.GetEntityName());
  return name.empty() ? "(no name)" : name;
}

std::string VectorText(const Orvo::Vector3D& v) {
  return "(" + ShortNumber(v[0]) + ", " + ShortNumber(v[1]) + ", " + ShortNumber(v[2]) + ")";
}

bool IsMoving(const Entity& entity) {
  const Orvo::Kin::EntityLinkType type = entity.GetEntityLink().GetEntityLinkType();
  return type == Orvo::Kin::EntityLinkTypeLinear || type == Orvo::Kin::EntityLinkTypeRotary;
}

std::string KindOf(const Entity& entity) {
  std::string link = GetLinkWord(entity.GetEntityLink().GetEntityLinkType());
  const bool isFixed = link == "static";
  switch (entity.GetEntityType()) {
    case Orvo::Kin::EntityTypeHead:
      return isFixed ? "head" : "head, " + link;
    case Orvo::Kin::EntityTypeTable:
      return isFixed ? "table" : "table, " + link;
    case Orvo::Kin::EntityTypeAxis:
      break;
  }
  return link;
}

std::string RangeOf(const Entity& entity) {
  if (!IsMoving(entity)) {
    return "-";
  }
  const bool isRotary =
      entity.GetEntityLink().GetEntityLinkType() == Orvo::Kin::EntityLinkTypeRotary;
  return entity.GetCheckRangeAxis()
             ? ShortNumber(entity.GetRangeMin(), 9) + " .. " +
                   ShortNumber(entity.GetRangeMax(), 9) + (isRotary ? " deg" : "")
             : "not checked";
}

std::string PlacementText(Orvo::Matrix43 parentFromElement) {
  const Orvo::Vector3D origin = parentFromElement.GetTrans();
  const Orvo::Vector3D w = parentFromElement.GetW();
  const Orvo::Vector3D u = parentFromElement.GetU();
  std::string text = origin == Orvo::NullVector ? "" : "at " + VectorText(origin);
  if (!(u == Orvo::AxisX && w == Orvo::AxisZ)) {
    text += (text.empty() ? "" : ", ") + ("X to " + VectorText(u) + ", Z to " + VectorText(w));
  }
  return text.empty() ? "on its parent" : text;
}

std::string LinkText(const Entity& entity) {
  const EntityLink& link = entity.GetEntityLink();
  switch (link.GetEntityLinkType()) {
    case Orvo::Kin::EntityLinkTypeLinear:
      return "along " + VectorText(link.GetDir()) +
             (link.GetZeroRef() != 0.0 ? ", zero at " + ShortNumber(link.GetZeroRef(), 9) : "");
    case Orvo::Kin::EntityLinkTypeRotary:
      return "about " + VectorText(link.GetDir()) + " through " + VectorText(link.GetCenter());
    case Orvo::Kin::EntityLinkTypePosition:
      return PlacementText(link.GetPosition());
    case Orvo::Kin::EntityLinkTypeIdentity:
      return "on its parent";
    default:
      return "can't be placed";
  }
}

std::string NotesOf(const Machine& machine, const Entity& entity) {
  std::string notes;
  const auto add = [&notes](const std::string& note) {
    notes += (notes.empty() ? "" : ", ") + note;
  };
  const Orvo::Kin::EntityMesh* mesh = entity.GetEntityMesh();
  if (mesh != nullptr && mesh->GetMeshNb() > 0) {
    add(std::to_string(mesh->GetMeshNb()) + (mesh->GetMeshNb() == 1 ? " mesh" : " meshes"));
  }
  if (entity.GetIsMounting()) {
    add("mounting");
  }
  if (entity.GetEntityParallelType() == Orvo::Kin::EntityParallelTypeParallel) {
    add("parallel");
  }
  if (IsMoving(entity) && !entity.GetIsMotor()) {
    add("not driven");
  }
  const Orvo::Kin::EntityId& parent = entity.GetParentEntityId();
  if (parent.IsDefined() && entity.GetParentEntity() == nullptr) {
    // Parents in a cycle are left out of the tree, though they are there.
    const bool isThere = machine.GetKinematic().GetEntity(parent) != nullptr;
    add("parent " + std::to_string(parent.GetVal()) +
        (isThere ? " is part of a cycle" : " not found"));
  }
  return notes;
}

/// An element of the tree that is still to be drawn.
struct Branch {
  const Entity* entity = nullptr;
  bool isLast = false;
};

std::string DrawBranch(int level, bool isLast, const std::vector<bool>& isLastAbove) {
  if (level > MaxDrawnLevel) {
    return "[level " + std::to_string(level) + "] ";
  }
  std::string text;
  for (int above = 1; above < level; ++above) {
    text += isLastAbove[static_cast<std::size_t>(above)] ? "   " : "|  ";
  }
  return level == 0 ? text : text + (isLast ? "`- " : "|- ");
}

std::string AxisText(const Machine& machine, const Register& reg) {
  if (!reg.IsDefined()) {
    return "none";
  }
  const Entity* entity = machine.GetKinematic().GetEntity(reg);
  return entity != nullptr ? NameOf(*entity) : "R" + std::to_string(reg.GetVal()) + " (no axis)";
}

std::string NumberedName(int number, const Entity* entity) {
  return std::to_string(number) + " " + (entity != nullptr ? NameOf(*entity) : "(not found)");
}

}  // namespace

const char* GetLinkWord(Orvo::Kin::EntityLinkType type) {
  switch (type) {
    case Orvo::Kin::EntityLinkTypeLinear:
      return "linear";
    case Orvo::Kin::EntityLinkTypeRotary:
      return "rotary";
    case Orvo::Kin::EntityLinkTypePosition:
    case Orvo::Kin::EntityLinkTypeIdentity:
      return "static";
    case Orvo::Kin::EntityLinkTypeAbc:
      return "ABC";
    case Orvo::Kin::EntityLinkTypeXyzAbc:
      return "XYZABC";
    case Orvo::Kin::EntityLinkTypeXyzIjk:
      return "XYZIJK";
    case Orvo::Kin::EntityLinkTypeXyzRepSpindl:
      return "XYZ_REPSPINDL";
    case Orvo::Kin::EntityLinkTypeUndef:
      return "undefined";
  }
  return "unknown";
}

std::string DescribeElements(const Machine& machine) {
  std::unordered_map<const Entity*, std::vector<const Entity*>> children;
  for (const Entity& entity : machine.GetKinematic().GetListEntity()) {
    children[entity.GetParentEntity()].push_back(&entity);
  }
  std::vector<Branch> pending;
  const auto pushChildren = [&children, &pending](const Entity* parent) {
    const std::vector<const Entity*>& all = children[parent];
    for (std::size_t i = all.size(); i > 0; --i) {
      pending.push_back({all[i - 1], i == all.size()});
    }
  };
  TextTable table(
      {Align::Left, Align::Right, Align::Left, Align::Right, Align::Left, Align::Left, Align::Left},
      2);
  table.AddRow({"element", "id", "kind", "register", "range", "link", ""});
  pushChildren(nullptr);
  std::vector<bool> isLastAbove;
  while (!pending.empty()) {
    const Branch branch = pending.back();
    pending.pop_back();
    const Entity& entity = *branch.entity;
    const int level = entity.GetLevel();
    isLastAbove.resize(static_cast<std::size_t>(level) + 1);
    isLastAbove[static_cast<std::size_t>(level)] = branch.isLast;
    const int reg = entity.GetRegister().GetVal();
    table.AddRow({DrawBranch(level, branch.isLast, isLastAbove) + NameOf(entity),
                  std::to_string(entity.GetEntityId().GetVal()), KindOf(entity),
                  entity.GetRegister().IsDefined() ? std::to_string(reg) : "-", RangeOf(entity),
                  LinkText(entity), NotesOf(machine, entity)});
    pushChildren(&entity);
  }
  return table.GetText();
}

std::string DescribeHeadsAndTables(const Machine& machine) {
  TextTable table({Align::Left, Align::Left}, 2);
  for (int i = 0; i < machine.GetHeadNb().GetVal(); ++i) {
    const Entity* head = machine.GetKinematic().GetEntityHead(Orvo::Kin::HeadIndex(i));
    table.AddRow({"head", NumberedName(i, head)});
  }
  for (int i = 0; i < machine.GetTableNb().GetVal(); ++i) {
    const Entity* entity = machine.GetKinematic().GetEntityTable(Orvo::Kin::TableIndex(i));
    table.AddRow({"table", NumberedName(i, entity)});
  }
  return table.GetText();
}

std::string DescribeProgramSystems(const Machine& machine) {
  TextTable table(
      {Align::Right, Align::Left, Align::Left, Align::Left, Align::Left, Align::Left, Align::Left},
      2);
  table.AddRow({"", "name", "head", "table", "linear X, Y, Z", "rotary", "policy"});
  int number = 0;
  for (Orvo::Kin::ProgramSystem system : machine.GetListProgramSystem()) {
    const Entity* head = machine.GetKinematic().GetEntityHead(system.GetHeadIndex());
    const Entity* tableEntity = machine.GetKinematic().GetEntityTable(system.GetTableIndex());
    table.AddRow({std::to_string(number), PrintableFromWide(system.GetProgramSystemName()),
                  NumberedName(system.GetHeadIndex().GetVal(), head),
                  NumberedName(system.GetTableIndex().GetVal(), tableEntity),
                  AxisText(machine, system.GetMainLinear(0)) + ", " +
                      AxisText(machine, system.GetMainLinear(1)) + ", " +
                      AxisText(machine, system.GetMainLinear(2)),
                  AxisText(machine, system.GetMainRotary(0)) + ", " +
                      AxisText(machine, system.GetMainRotary(1)),
                  GetPolicyName(system.GetRotariesCompute())});
    ++number;
  }
  return number > 0 ? table.GetText() : "  none\n";
}

std::string DescribeCollisionCheck(const Machine& machine) {
  const Orvo::Kin::CollisionCheck& check = machine.GetCollisionCheck();
  std::list<Orvo::Kin::EntityId> ids;
  std::size_t pairs = 0;
  for (const Entity& entity : machine.GetKinematic().GetListEntity()) {
    check.GetListMachineMachine(entity.GetEntityId(), &ids, false);
    pairs += ids.size();
  }
  std::string text = "  " + std::to_string(pairs) + " pairs of elements; against the machine:";
  check.GetListMachineStock(&ids);
  text += " stock " + std::to_string(ids.size());
  check.GetListMachinePart(&ids);
  text += ", part " + std::to_string(ids.size());
  check.GetListMachineFixture(&ids);
  text += ", fixture " + std::to_string(ids.size());
  check.GetListMachineTool(&ids);
  return text + ", tool " + std::to_string(ids.size()) + "\n";
}

}  // namespace OrvoTool
