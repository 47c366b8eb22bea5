#include "exchange/ByteSink.h"
#include "exchange/JsonText.h"
#include "exchange/MachineWords.h"
#include "exchange/MeshFile.h"
#include "exchange/TextEncoding.h"

#include <Orvo/Exchange/ExchangeError.h>
#include <Orvo/Exchange/MachineJson.h>
#include <Orvo/Kin/CollisionCheck.h>
#include <Orvo/Kin/ProgramSystem.h>

#include <cmath>
#include <cstddef>
#include <list>
#include <ostream>
#include <string>
#include <utility>

namespace Orvo::Exchange {
namespace {

using Kin::Entity;
using Kin::EntityId;
using Kin::EntityLink;

constexpr std::size_t ChunkSize = 65536;

template <typename Words>
std::string_view WordOf(const Words& words, int value, const char* what) {
  if (value < 0 || static_cast<std::size_t>(value) >= words.size()) {
    throw ExchangeError(std::string("no word names the ") + what + " " + std::to_string(value));
  }
  return words[static_cast<std::size_t>(value)];
}

void WriteNumber(double value, JsonText* json) {
  if (std::isfinite(value)) {
    json->Number(value);
  } else {
    const std::size_t negative = std::signbit(value) ? 1 : 0;
    json->Text(OddNumberWords[(std::isnan(value) ? 0 : 2) + negative]);
  }
}

void WriteNumbers(const double* values, int count, JsonText* json) {
  json->BeginRow();
  for (int i = 0; i < count; ++i) {
    WriteNumber(values[i], json);
  }
  json->EndArray();
}

bool IsPlainZero(double value) { return value == 0.0 && !std::signbit(value); }

/// A frame's columns: three numbers each, or four where the fourth row isn't (0, 0, 0, 1).
void WriteFrame(const double* m, JsonText* json) {
  const bool isAffine =
      IsPlainZero(m[3]) && IsPlainZero(m[7]) && IsPlainZero(m[11]) && m[15] == 1.0;
  json->BeginObject();
  const char* const names[] = {"u", "v", "w", "t"};
  for (int column = 0; column < 4; ++column) {
    json->Key(names[column]);
    WriteNumbers(m + static_cast<std::ptrdiff_t>(4) * column, isAffine ? 3 : 4, json);
  }
  json->EndObject();
}

/// The slots of a link: one number, or six where one of the others isn't zero.
void WriteSlots(const EntityLink& link, double (EntityLink::*get)(unsigned int) const,
                const char* name, JsonText* json) {
  double slots[Kin::LinkSlotCount];
  bool isSimple = true;
  for (unsigned int i = 0; i < Kin::LinkSlotCount; ++i) {
    slots[i] = (link.*get)(i);
    isSimple = isSimple && (i == 0 || IsPlainZero(slots[i]));
  }
  json->Key(name);
  if (isSimple) {
    WriteNumber(slots[0], json);
  } else {
    WriteNumbers(slots, static_cast<int>(Kin::LinkSlotCount), json);
  }
}

void WriteLink(const EntityLink& link, JsonText* json) {
  json->BeginObject();
  json->Member("type", WordOf(LinkTypeWords, link.GetEntityLinkType(), "kind of link"));
  json->Key("center");
  WriteNumbers(link.GetCenter(), 3, json);
  json->Key("dir");
  WriteNumbers(link.GetDir(), 3, json);
  json->Key("position");
  WriteFrame(link.GetPosition(), json);
  WriteSlots(link, &EntityLink::GetZeroRef, "zeroRef", json);
  WriteSlots(link, &EntityLink::GetRangeMin, "rangeMin", json);
  WriteSlots(link, &EntityLink::GetRangeMax, "rangeMax", json);
  json->EndObject();
}

void WriteMeshes(const Entity& entity, const std::string& meshBase, JsonText* json) {
  const Kin::EntityMesh* const meshes = entity.GetEntityMesh();
  if (meshes == nullptr) {
    return;
  }
  json->Key("meshes");
  json->BeginArray();
  const int meshNb = static_cast<int>(meshes->GetMeshNb());
  for (int i = 0; i < meshNb; ++i) {
    json->BeginObject();
    json->Member("color", static_cast<std::int64_t>(meshes->GetMeshColor(i)));
    if (!meshBase.empty()) {
      json->Member("file", MeshFileName(meshBase, entity, i));
    }
    json->EndObject();
  }
  json->EndArray();
}

void WriteEntity(const Entity& entity, const std::string& meshBase, JsonText* json) {
  json->BeginObject();
  json->Member("name", Utf8FromWide(entity.GetEntityName()));
  json->Member("type", WordOf(TypeWords, entity.GetEntityType(), "type of element"));
  json->Member("parallelType",
               WordOf(ParallelTypeWords, entity.GetEntityParallelType(), "parallel type"));
  json->Member("id", entity.GetEntityId().GetVal());
  json->Member("parentId", entity.GetParentEntityId().GetVal());
  json->Member("register", entity.GetRegister().GetVal());
  json->Member("motor", entity.GetIsMotor());
  json->Member("rangeAxis", entity.GetCheckRangeAxis());
  json->Member("mounting", entity.GetIsMounting());
  json->Key("link");
  WriteLink(entity.GetEntityLink(), json);
  WriteMeshes(entity, meshBase, json);
  json->EndObject();
}

void WriteProgramSystem(Kin::ProgramSystem system, JsonText* json) {
  json->BeginObject();
  json->Member("name", Utf8FromWide(system.GetProgramSystemName()));
  json->Member("table", system.GetTableIndex().GetVal());
  json->Member("head", system.GetHeadIndex().GetVal());
  json->Key("mainLinear");
  json->BeginRow();
  for (int i = 0; i < 3; ++i) {
    json->Integer(system.GetMainLinear(i).GetVal());
  }
  json->EndArray();
  json->Key("mainRotary");
  json->BeginRow();
  for (int i = 0; i < 2; ++i) {
    json->Integer(system.GetMainRotary(i).GetVal());
  }
  json->EndArray();
  json->Member("rotariesCompute", WordOf(PolicyWords, system.GetRotariesCompute(), "policy"));
  json->EndObject();
}

void WriteIds(const std::list<EntityId>& ids, JsonText* json) {
  json->BeginRow();
  for (const EntityId& id : ids) {
    json->Integer(id.GetVal());
  }
  json->EndArray();
}

/// Hands a text on in large pieces.
void PassOn(JsonText* json, std::ostream& out, std::size_t from = ChunkSize) {
  if (json->GetSize() >= from) {
    WriteBytes(json->Take(), out);
  }
}

void WriteCollisionCheck(const Kin::Machine& machine, JsonText* json, std::ostream& out) {
  const Kin::CollisionCheck& check = machine.GetCollisionCheck();
  std::list<EntityId> ids;
  json->BeginObject();
  json->Key("machineMachine");
  json->BeginArray();
  for (const Entity& entity : machine.GetKinematic().GetListEntity()) {
    // Each pair stands under its larger id.
    check.GetListMachineMachine(entity.GetEntityId(), &ids, false);
    if (!ids.empty()) {
      json->BeginObject();
      json->Member("id", entity.GetEntityId().GetVal());
      json->Key("partners");
      WriteIds(ids, json);
      json->EndObject();
      PassOn(json, out);
    }
  }
  json->EndArray();
  using GetList = void (Kin::CollisionCheck::*)(std::list<EntityId>*) const;
  const std::pair<const char*, GetList> sets[] = {
      {"stock", &Kin::CollisionCheck::GetListMachineStock},
      {"part", &Kin::CollisionCheck::GetListMachinePart},
      {"fixture", &Kin::CollisionCheck::GetListMachineFixture},
      {"tool", &Kin::CollisionCheck::GetListMachineTool}};
  for (const auto& [name, getList] : sets) {
    (check.*getList)(&ids);
    json->Key(name);
    WriteIds(ids, json);
    PassOn(json, out);
  }
  json->EndObject();
}

}  // namespace

void WriteMachineJson(const Kin::Machine& machine, std::ostream& out,
                      const JsonWriteOptions& options) {
  JsonText json(options.isCompact);
  json.BeginObject();
  json.Member("format", JsonFormat);
  json.Member("version", JsonVersion);
  json.Key("entities");
  json.BeginArray();
  for (const Entity& entity : machine.GetKinematic().GetListEntity()) {
    WriteEntity(entity, options.meshBase, &json);
    PassOn(&json, out);
  }
  json.EndArray();
  json.Key("programSystems");
  json.BeginArray();
  for (const Kin::ProgramSystem& system : machine.GetListProgramSystem()) {
    WriteProgramSystem(system, &json);
    PassOn(&json, out);
  }
  json.EndArray();
  json.Key("collisionCheck");
  WriteCollisionCheck(machine, &json, out);
  json.EndObject();
  PassOn(&json, out, 0);
  FinishStream(out);
}

void WriteMachineJsonFile(const Kin::Machine& machine, const std::filesystem::path& file,
                          bool writesMeshes) {
  JsonWriteOptions options;
  if (writesMeshes) {
    options.meshBase = MeshBaseOf(file);
  }
  FileSink sink(file);
  WriteMachineJson(machine, sink.Stream(), options);
  sink.Finish();
  if (writesMeshes) {
    WriteMeshFiles(machine, file);
  }
}

}  // namespace Orvo::Exchange
