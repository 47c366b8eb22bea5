#pragma once

#include "support/TemporaryFolder.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/Machine.h>

#include <iterator>
#include <list>
#include <stdexcept>
#include <string>
#include <string_view>

/// Texts of machine files, whole and broken, and the ways of reading them.
namespace Orvo::Testing {

/// A link with a value of its own in every place.
inline const char* const LinkText =
    "<EntityLink><Type>ROTARY</Type>"
    "<Center X=\"1.5\" Y=\"-2.5\" Z=\"3.5\"/>"
    "<Dir X=\"0\" Y=\"0\" Z=\"4\"/>"
    "<Position><U X=\"0\" Y=\"1\" Z=\"0\"/><V X=\"0\" Y=\"0\" Z=\"1\"/><W X=\"1\" Y=\"0\" Z=\"0\"/>"
    "<T X=\"10\" Y=\"20\" Z=\"30\"/></Position>"
    "<ZeroRef>7.25</ZeroRef><RangeMin>-90.5</RangeMin><RangeMax>120.5</RangeMax></EntityLink>";

/// An element with a value of its own in every place.
inline std::string EntityText() {
  return std::string(
             "<Entity><Name>C axis</Name><Type>HEAD</Type><ParallelType>PARALLEL</ParallelType>"
             "<Id>5</Id><ParentId>3</ParentId><Register>4</Register><Motor>true</Motor>"
             "<RangeAxis>false</RangeAxis><Mounting>true</Mounting>") +
         LinkText +
         "<Meshes><Mesh><RGB>255</RGB></Mesh><Mesh><RGB>-1</RGB></Mesh></Meshes></Entity>";
}

inline const char* const ProgramSystemText =
    "<ProgramSystem><ProgramSystemName>Main</ProgramSystemName><TableIndex>2</TableIndex>"
    "<HeadIndex>3</HeadIndex><MainLinear RegX=\"4\" RegY=\"5\" RegZ=\"6\"/>"
    "<MainRotary RegR0=\"7\" RegR1=\"8\"/><RotariesCompute>AlphaPositive</RotariesCompute>"
    "</ProgramSystem>";

inline const char* const CollisionText =
    "<CollisionCheck><MachineMachines><MachineMachine><EntityId>9</EntityId>"
    "<EntityIds>2 11</EntityIds></MachineMachine></MachineMachines>"
    "<MachineStock><EntityIds>1 2</EntityIds></MachineStock>"
    "<MachinePart><EntityIds>3</EntityIds></MachinePart>"
    "<MachineFixture><EntityIds>4</EntityIds></MachineFixture>"
    "<MachineTool><EntityIds>5 6 7</EntityIds></MachineTool></CollisionCheck>";

/// Returns a machine file of the given sections.
inline std::string MachineText(const std::string& entities, const std::string& rest = "") {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Machine Version=\"0\"><Entities>" +
         entities + "</Entities>" + rest + "</Machine>\n";
}

/// Returns a whole machine file with one element, one program system and all collision lists.
inline std::string WholeText() {
  return MachineText(EntityText(), std::string("<ProgramSystems>") + ProgramSystemText +
                                       "</ProgramSystems>" + CollisionText);
}

/// Returns a text with the one place of a part replaced.
inline std::string Replaced(const std::string& text, std::string_view part,
                            std::string_view replacement) {
  const std::size_t place = text.find(part);
  if (place == std::string::npos || text.find(part, place + 1) != std::string::npos) {
    throw std::logic_error("not exactly one place of " + std::string(part));
  }
  return std::string(text).replace(place, part.size(), replacement);
}

/// Reads a text as a machine file.
inline bool ReadText(Kin::Machine& machine, const std::string& text) {
  const TemporaryFolder folder;
  folder.Write("machine.xml", text);
  return machine.ReadXML(folder.Wide("machine.xml"));
}

/// Writes a machine and returns the bytes of its file.
inline std::string WrittenText(Kin::Machine& machine) {
  const TemporaryFolder folder;
  if (!machine.WriteXML(folder.Wide("machine.xml"))) {
    throw std::runtime_error("the machine was not written");
  }
  return folder.Read("machine.xml");
}

inline std::size_t EntityCount(const Kin::Machine& machine) {
  return machine.GetKinematic().GetListEntity().size();
}

/// Returns an element by its place in the list, from 0.
inline const Kin::Entity& EntityAt(const Kin::Machine& machine, int place) {
  return *std::next(machine.GetKinematic().GetListEntity().begin(), place);
}

/// Opens the list of elements, and their setters that are not public.
struct OpenEntity : Kin::Entity {
  using Entity::SetEntityId;
  using Entity::SetEntityParallelType;
  using Entity::SetEntityType;
};

struct OpenKinematic : Kin::Kinematic {
  using Kinematic::GetListEntityMod;
};

inline Kin::Entity& EntityModAt(const Kin::Machine& machine, int place) {
  Kin::Kinematic handle = machine.GetKinematic();
  return *std::next((handle.*(&OpenKinematic::GetListEntityMod))()->begin(), place);
}

inline void SetId(Kin::Entity& entity, int id) {
  (entity.*(&OpenEntity::SetEntityId))(Kin::EntityId(id));
}

inline void SetType(Kin::Entity& entity, int type) {
  (entity.*(&OpenEntity::SetEntityType))(static_cast<Kin::EntityType>(type));
}

inline void SetParallelType(Kin::Entity& entity, int type) {
  (entity.*(&OpenEntity::SetEntityParallelType))(static_cast<Kin::EntityParallelType>(type));
}

}  // namespace Orvo::Testing
