#include "io/XMLReader.h"
#include "io/XMLWriter.h"
#include "model/EntityImplementation.h"
#include "model/Words.h"

#include <Orvo/Kin/Entity.h>

#include <memory>
#include <string_view>

namespace Orvo::Kin {

namespace {

/// An index type as a number that the reader fills.
template <typename Index>
bool ReadIndex(const XMLView& element, Index* index) {
  int value = 0;
  if (!XMLReader::ReadInt(element, value)) {
    return false;
  }
  *index = Index(value);
  return true;
}

}  // namespace

bool Entity::SerializeXML(XMLWriter& writer, XMLElement* parent) {
  const EntityImplementation& entity = *implementation_;
  std::wstring typeWord;
  std::wstring parallelTypeWord;
  if (!EntityTypeWords.Name(entity.entityType, &typeWord) ||
      !EntityParallelTypeWords.Name(entity.parallelType, &parallelTypeWord)) {
    return false;
  }
  writer.WriteString(L"Name", entity.name, parent);
  writer.WriteString(L"Type", typeWord, parent);
  writer.WriteString(L"ParallelType", parallelTypeWord, parent);
  writer.WriteInt(L"Id", entity.entityId.GetVal(), parent);
  writer.WriteInt(L"ParentId", entity.parentEntityId.GetVal(), parent);
  writer.WriteInt(L"Register", entity.reg.GetVal(), parent);
  writer.WriteBool(L"Motor", entity.isMotor, parent);
  writer.WriteBool(L"RangeAxis", entity.checkRangeAxis, parent);
  writer.WriteBool(L"Mounting", entity.isMounting, parent);
  if (!writer.WriteObject(implementation_->link, writer.NewChildElement(L"EntityLink", parent))) {
    return false;
  }
  SerializeXML_Meshes(writer, parent);
  return true;
}

bool Entity::DeserializeXML(XMLReader& reader, XMLElement* parent) {
  enum { Name, Type, ParallelType, Id, ParentId, Reg, Motor, RangeAxis, Mounting, Link, Meshes };
  static constexpr std::string_view Names[] = {
      "Name",  "Type",      "ParallelType", "Id",         "ParentId", "Register",
      "Motor", "RangeAxis", "Mounting",     "EntityLink", "Meshes"};
  EntityImplementation& entity = *implementation_;
  const auto children = FindChildren(reader.View(parent), Names);
  if (!reader.ReadString(children[Name], entity.name)) {
    return false;
  }
  const std::wstring* word = reader.ReadWord(children[Type]);
  if (word == nullptr || !GetEntityTypeFromDict(*word, entity.entityType)) {
    return false;
  }
  word = reader.ReadWord(children[ParallelType]);
  if (word == nullptr || !GetEntityParallelTypeFromDict(*word, entity.parallelType) ||
      !ReadIndex(children[Id], &entity.entityId) ||
      !ReadIndex(children[ParentId], &entity.parentEntityId) ||
      !ReadIndex(children[Reg], &entity.reg) || !reader.ReadBool(children[Motor], entity.isMotor) ||
      !reader.ReadBool(children[RangeAxis], entity.checkRangeAxis) ||
      !reader.ReadBool(children[Mounting], entity.isMounting)) {
    return false;
  }
  if (children[Link].IsNull()) {
    return false;
  }
  // Deliberate: a link that is not whole keeps what was read of it, and the element counts.
  XMLElement link(children[Link], parent);
  reader.ReadObject(entity.link, &link);
  if (!children[Meshes].IsNull()) {
    DeserializeXML_Meshes(reader, parent);
  }
  return true;
}

void Entity::SerializeXML_Meshes(XMLWriter& writer, XMLElement* parent) {
  const EntityMesh* const mesh = GetEntityMesh();
  if (mesh == nullptr) {
    return;
  }
  XMLElement* const meshes = writer.NewChildElement(L"Meshes", parent);
  const int meshNb = static_cast<int>(mesh->GetMeshNb());
  for (int i = 0; i < meshNb; ++i) {
    writer.WriteInt(L"RGB", static_cast<int>(mesh->GetMeshColor(i)),
                    writer.NewChildElement(L"Mesh", meshes));
  }
}

// The file holds a color for each mesh; the geometry stands in files of its own.
void Entity::DeserializeXML_Meshes(XMLReader& reader, XMLElement* parent) {
  const XMLView meshes = FindChild(reader.View(parent), "Meshes");
  if (meshes.IsNull()) {
    return;
  }
  for (XMLView mesh = meshes.FirstChild(); !mesh.IsNull(); mesh = mesh.NextSibling()) {
    if (!mesh.HasName("Mesh")) {
      continue;
    }
    int color = 0;
    if (!reader.ReadInt(FindChild(mesh, "RGB"), color)) {
      return;
    }
    auto emptyMesh = std::make_unique<Mesh>();
    AllocEntityMesh()->AddMesh(emptyMesh.get(), static_cast<unsigned int>(color));
    static_cast<void>(emptyMesh.release());
  }
}

}  // namespace Orvo::Kin
