#include "MachineJson.h"

#include "MachineFile.h"
#include "MachineReport.h"
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

#include <cstddef>
#include <list>
#include <string>

namespace OrvoTool {
namespace {

using Orvo::Kin::Entity;
using Orvo::Kin::EntityId;
using Orvo::Kin::EntityLink;
using Orvo::Kin::Machine;
using Orvo::Kin::Register;

const char* GetTypeWord(Orvo::Kin::EntityType type) {
  switch (type) {
    case Orvo::Kin::EntityTypeHead:
      return "head";
    case Orvo::Kin::EntityTypeTable:
      return "table";
    case Orvo::Kin::EntityTypeAxis:
      break;
  }
  return "axis";
}

const char* GetVerdictName(Orvo::Kin::MachineErrorType error) {
  switch (error) {
    case Orvo::Kin::MachineErrorNone:
      return "valid";
    case Orvo::Kin::MachineErrorNoHead:
      return "no-head";
    case Orvo::Kin::MachineErrorNoTable:
      return "no-table";
    case Orvo::Kin::MachineErrorFewLinearAxes:
      return "few-linear-axes";
    case Orvo::Kin::MachineErrorParentCycle:
      return "parent-cycle";
  }
  return "invalid";
}

JsonValue NameJson(const Entity* entity) {
  return entity != nullptr ? JsonValue(Utf8FromWide(entity->GetEntityName())) : JsonValue();
}

JsonValue LinkJson(const EntityLink& link) {
  JsonValue json = {{"type", GetLinkWord(link.GetEntityLinkType())}};
  switch (link.GetEntityLinkType()) {
    case Orvo::Kin::EntityLinkTypeLinear:
      json["direction"] = VectorJson(link.GetDir());
      json["zero"] = link.GetZeroRef();
      break;
    case Orvo::Kin::EntityLinkTypeRotary:
      json["direction"] = VectorJson(link.GetDir());
      json["center"] = VectorJson(link.GetCenter());
      break;
    case Orvo::Kin::EntityLinkTypePosition:
      json["frame"] = FrameJson(link.GetPosition());
      break;
    default:
      break;
  }
  return json;
}

JsonValue ElementJson(const Entity& entity) {
  const Orvo::Kin::EntityLinkType link = entity.GetEntityLink().GetEntityLinkType();
  const Entity* parent = entity.GetParentEntity();
  const Orvo::Kin::EntityMesh* mesh = entity.GetEntityMesh();
  JsonValue json = {
      {"id", entity.GetEntityId().GetVal()},
      {"name", Utf8FromWide(entity.GetEntityName())},
      {"kind", GetTypeWord(entity.GetEntityType())},
      {"parent", parent != nullptr ? JsonValue(parent->GetEntityId().GetVal()) : JsonValue()},
      {"level", entity.GetLevel()},
      {"register",
       entity.GetRegister().IsDefined() ? JsonValue(entity.GetRegister().GetVal()) : JsonValue()},
      {"link", LinkJson(entity.GetEntityLink())}};
  if (link == Orvo::Kin::EntityLinkTypeLinear || link == Orvo::Kin::EntityLinkTypeRotary) {
    json["range"] = JsonValue{{"min", entity.GetRangeMin()},
                              {"max", entity.GetRangeMax()},
                              {"checked", entity.GetCheckRangeAxis()}};
  }
  json["driven"] = entity.GetIsMotor();
  json["mounting"] = entity.GetIsMounting();
  json["parallel"] = entity.GetEntityParallelType() == Orvo::Kin::EntityParallelTypeParallel;
  json["meshes"] = mesh != nullptr ? mesh->GetMeshNb() : 0;
  return json;
}

JsonValue RegisterJson(const Machine& machine, const Register& reg) {
  if (!reg.IsDefined()) {
    return JsonValue();
  }
  return JsonValue{{"register", reg.GetVal()},
                   {"name", NameJson(machine.GetKinematic().GetEntity(reg))}};
}

JsonValue ProgramSystemJson(const Machine& machine, int number, Orvo::Kin::ProgramSystem system) {
  const Entity* head = machine.GetKinematic().GetEntityHead(system.GetHeadIndex());
  const Entity* table = machine.GetKinematic().GetEntityTable(system.GetTableIndex());
  return JsonValue{
      {"number", number},
      {"name", Utf8FromWide(system.GetProgramSystemName())},
      {"head", JsonValue{{"index", system.GetHeadIndex().GetVal()}, {"name", NameJson(head)}}},
      {"table", JsonValue{{"index", system.GetTableIndex().GetVal()}, {"name", NameJson(table)}}},
      {"linear", JsonValue::array({RegisterJson(machine, system.GetMainLinear(0)),
                                   RegisterJson(machine, system.GetMainLinear(1)),
                                   RegisterJson(machine, system.GetMainLinear(2))})},
      {"rotary", JsonValue::array({RegisterJson(machine, system.GetMainRotary(0)),
                                   RegisterJson(machine, system.GetMainRotary(1))})},
      {"policy", GetPolicyName(system.GetRotariesCompute())}};
}

JsonValue CollisionJson(const Machine& machine) {
  const Orvo::Kin::CollisionCheck& check = machine.GetCollisionCheck();
  const auto idsJson = [](const std::list<EntityId>& ids) {
    JsonValue json = JsonValue::array();
    for (const EntityId& id : ids) {
      json.push_back(id.GetVal());
    }
    return json;
  };
  JsonValue pairs = JsonValue::array();
  std::list<EntityId> ids;
  for (const Entity& entity : machine.GetKinematic().GetListEntity()) {
    check.GetListMachineMachine(entity.GetEntityId(), &ids, false);
    for (const EntityId& id : ids) {
      pairs.push_back(JsonValue::array({entity.GetEntityId().GetVal(), id.GetVal()}));
    }
  }
  JsonValue json = {{"pairs", pairs}};
  check.GetListMachineStock(&ids);
  json["stock"] = idsJson(ids);
  check.GetListMachinePart(&ids);
  json["part"] = idsJson(ids);
  check.GetListMachineFixture(&ids);
  json["fixture"] = idsJson(ids);
  check.GetListMachineTool(&ids);
  json["tool"] = idsJson(ids);
  return json;
}

}  // namespace

JsonValue VectorJson(const Orvo::Vector3D& vector) {
  return JsonValue::array({vector[0], vector[1], vector[2]});
}

JsonValue FrameJson(Orvo::Matrix43 frame) {
  return JsonValue{{"u", VectorJson(frame.GetU())},
                   {"v", VectorJson(frame.GetV())},
                   {"w", VectorJson(frame.GetW())},
                   {"origin", VectorJson(frame.GetTrans())}};
}

JsonValue MakeMachineJson(Machine& machine) {
  JsonValue elements = JsonValue::array();
  for (const Entity& entity : machine.GetKinematic().GetListEntity()) {
    elements.push_back(ElementJson(entity));
  }
  JsonValue heads = JsonValue::array();
  for (int i = 0; i < machine.GetHeadNb().GetVal(); ++i) {
    heads.push_back(NameJson(machine.GetKinematic().GetEntityHead(Orvo::Kin::HeadIndex(i))));
  }
  JsonValue tables = JsonValue::array();
  for (int i = 0; i < machine.GetTableNb().GetVal(); ++i) {
    tables.push_back(NameJson(machine.GetKinematic().GetEntityTable(Orvo::Kin::TableIndex(i))));
  }
  JsonValue systems = JsonValue::array();
  int number = 0;
  for (const Orvo::Kin::ProgramSystem& system : machine.GetListProgramSystem()) {
    systems.push_back(ProgramSystemJson(machine, number, system));
    ++number;
  }
  return JsonValue{{"valid", machine.IsFinished()},
                   {"verdict", GetVerdictName(machine.GetLastError())},
                   {"elementCount", machine.GetEntityNb()},
                   {"registerCount", machine.GetRegisterNb().GetVal()},
                   {"linearAxisCount", machine.GetLinearAxesNb()},
                   {"elements", elements},
                   {"heads", heads},
                   {"tables", tables},
                   {"programSystems", systems},
                   {"collisionCheck", CollisionJson(machine)}};
}

}  // namespace OrvoTool
