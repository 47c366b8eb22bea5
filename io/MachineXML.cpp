#include "io/NumberParse.h"
#include "io/XMLReader.h"
#include "io/XMLWriter.h"

#include <Orvo/Kin/Machine.h>

#include <algorithm>
#include <list>
#include <string>
#include <string_view>
#include <vector>

namespace Orvo::Kin {

namespace {

constexpr int FileVersion = 0;

/// One set of single elements of the collision check, and its section.
struct ElementSet {
  const wchar_t* section;
  void (CollisionCheck::*getList)(std::list<EntityId>*) const;
  void (CollisionCheck::*set)(const EntityId&, bool);
};

constexpr ElementSet ElementSets[] = {
    {L"MachineStock", &CollisionCheck::GetListMachineStock, &CollisionCheck::SetMachineStock},
    {L"MachinePart", &CollisionCheck::GetListMachinePart, &CollisionCheck::SetMachinePart},
    {L"MachineFixture", &CollisionCheck::GetListMachineFixture, &CollisionCheck::SetMachineFixture},
    {L"MachineTool", &CollisionCheck::GetListMachineTool, &CollisionCheck::SetMachineTool}};

void WriteEntityIds(XMLWriter& writer, const std::list<EntityId>& ids, XMLElement* parent) {
  std::wstring text;
  for (const EntityId& id : ids) {
    if (!text.empty()) {
      text += L' ';
    }
    text += std::to_wstring(id.GetVal());
  }
  writer.WriteString(L"EntityIds", text, parent);
}

// Ids stand in one text, separated by spaces and tabs; all are converted before any is used.
bool ReadEntityIds(XMLReader& reader, XMLElement* parent, std::vector<EntityId>* ids) {
  std::string room;
  std::string_view text;
  if (!reader.ReadText(FindChild(reader.View(parent), "EntityIds"), text, &room)) {
    return false;
  }
  const char* const separators = " \t";
  std::size_t start = text.find_first_not_of(separators);
  while (start != std::string_view::npos) {
    const std::size_t end = std::min(text.find_first_of(separators, start), text.size());
    ids->push_back(EntityId(ParseInt(text.substr(start, end - start))));
    start = text.find_first_not_of(separators, end);
  }
  return true;
}

}  // namespace

bool Machine::WriteXML(const std::wstring& path) {
  XMLWriter writer;
  writer.AddDeclaration();
  return writer.WriteObject(*this, nullptr) && writer.SaveFile(path);
}

bool Machine::ReadXML(const std::wstring& path) {
  {
    XMLReader reader;
    if (!reader.LoadFile(path) || !reader.ReadObject(*this, nullptr)) {
      return false;
    }
  }
  // Deliberate: a machine that is not valid was read all the same.
  Finish();
  return true;
}

bool Machine::SerializeXML(XMLWriter& writer, XMLElement* /*parent*/) {
  XMLElement* const machine = writer.NewRootElement(L"Machine");
  if (machine == nullptr) {
    return false;
  }
  machine->SetVersion(FileVersion);
  writer.WriteObject(kinematic_, writer.NewChildElement(L"Entities", machine));
  return SerializeXML_ProgramSystems(writer, writer.NewChildElement(L"ProgramSystems", machine)) &&
         SerializeXML_CollisionCheck(writer, writer.NewChildElement(L"CollisionCheck", machine));
}

bool Machine::DeserializeXML(XMLReader& reader, XMLElement* /*parent*/) {
  XMLElement* const machine = reader.RootElement(L"Machine");
  if (machine == nullptr) {
    return false;
  }
  XMLElement* const entities = reader.FirstChildElement(L"Entities", machine);
  if (entities == nullptr || !reader.ReadObject(kinematic_, entities)) {
    return false;
  }
  XMLElement* const programSystems = reader.FirstChildElement(L"ProgramSystems", machine);
  if (programSystems != nullptr && !DeserializeXML_ProgramSystems(reader, programSystems)) {
    return false;
  }
  XMLElement* const collisionCheck = reader.FirstChildElement(L"CollisionCheck", machine);
  return collisionCheck == nullptr || DeserializeXML_CollisionCheck(reader, collisionCheck);
}

bool Machine::SerializeXML_ProgramSystems(XMLWriter& writer, XMLElement* parent) {
  for (ProgramSystem& programSystem : *programSystems_) {
    if (!writer.WriteObject(programSystem, writer.NewChildElement(L"ProgramSystem", parent))) {
      return false;
    }
  }
  return true;
}

bool Machine::DeserializeXML_ProgramSystems(XMLReader& reader, XMLElement* parent) {
  for (XMLElement* element = reader.FirstChildElement(L"ProgramSystem", parent); element != nullptr;
       element = reader.NextSiblingElement(L"ProgramSystem", element, parent)) {
    ProgramSystem programSystem;
    if (!reader.ReadObject(programSystem, element)) {
      return false;
    }
    AddProgramSystem(programSystem);
  }
  return true;
}

bool Machine::SerializeXML_CollisionCheck(XMLWriter& writer, XMLElement* parent) {
  XMLElement* pairs = nullptr;
  std::list<EntityId> ids;
  for (const Entity& entity : kinematic_.GetListEntity()) {
    // Each pair stands under its larger id.
    collisionCheck_.GetListMachineMachine(entity.GetEntityId(), &ids, false);
    if (ids.empty()) {
      continue;
    }
    if (pairs == nullptr) {
      pairs = writer.NewChildElement(L"MachineMachines", parent);
    }
    XMLElement* const ofEntity = writer.NewChildElement(L"MachineMachine", pairs);
    writer.WriteInt(L"EntityId", entity.GetEntityId().GetVal(), ofEntity);
    WriteEntityIds(writer, ids, ofEntity);
  }
  for (const ElementSet& elementSet : ElementSets) {
    (collisionCheck_.*elementSet.getList)(&ids);
    if (!ids.empty()) {
      WriteEntityIds(writer, ids, writer.NewChildElement(elementSet.section, parent));
    }
  }
  return true;
}

bool Machine::DeserializeXML_CollisionCheck(XMLReader& reader, XMLElement* parent) {
  XMLElement* const pairs = reader.FirstChildElement(L"MachineMachines", parent);
  if (pairs != nullptr) {
    for (XMLElement* ofEntity = reader.FirstChildElement(L"MachineMachine", pairs);
         ofEntity != nullptr;
         ofEntity = reader.NextSiblingElement(L"MachineMachine", ofEntity, pairs)) {
      int id = 0;
      std::vector<EntityId> partners;
      if (!reader.ReadInt(L"EntityId", id, ofEntity) ||
          !ReadEntityIds(reader, ofEntity, &partners)) {
        return false;
      }
      for (const EntityId& partner : partners) {
        collisionCheck_.SetMachineMachine(EntityId(id), partner, true);
      }
    }
  }
  for (const ElementSet& elementSet : ElementSets) {
    XMLElement* const section = reader.FirstChildElement(elementSet.section, parent);
    if (section == nullptr) {
      continue;
    }
    std::vector<EntityId> ids;
    if (!ReadEntityIds(reader, section, &ids)) {
      return false;
    }
    for (const EntityId& id : ids) {
      (collisionCheck_.*elementSet.set)(id, true);
    }
  }
  return true;
}

}  // namespace Orvo::Kin
