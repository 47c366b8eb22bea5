#pragma once

#include <Orvo/Export.h>
#include <Orvo/ISerializableXML.h>
#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityId.h>
#include <Orvo/Kin/HeadIndex.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Kin/TableIndex.h>

#include <list>
#include <memory>
#include <vector>

namespace Orvo::Kin {

class Machine;
struct KinematicAccess;
struct KinematicImplementation;

/// Stores the elements of a machine and finds them by id, register, head and table.
///
/// The list never moves its elements, so pointers to them stay valid. The lookups give null until
/// Machine::Finish has filled their tables, and for whatever lies outside them.
///
/// A copy is a second handle on the same store, which lives as long as any of them. Lookups may
/// run on several threads while nobody changes the machine.
class ORVO_API Kinematic : public ISerializableXML {
 public:
  /// Makes an empty store.
  Kinematic();

  /// Makes a second handle on the same store.
  Kinematic(const Kinematic& other);

  /// Lets go of the own store and becomes a second handle on that of the other.
  Kinematic& operator=(const Kinematic& other);
  ~Kinematic() override;

  /// Returns all elements in the order in which they were added.
  const std::list<Entity>& GetListEntity() const;

  /// Returns the element with this id, or null. Of equal ids, the last of the list counts.
  const Entity* GetEntity(const EntityId& id) const;

  /// Returns the element with this register, or null. Of equal registers, the last of the list
  /// counts.
  const Entity* GetEntity(const Register& reg) const;

  /// Returns a HEAD element by its place among the heads of the list, or null.
  const Entity* GetEntityHead(const HeadIndex& head) const;

  /// Returns a TABLE element by its place among the tables of the list, or null.
  const Entity* GetEntityTable(const TableIndex& table) const;

 protected:
  friend class Machine;
  friend struct KinematicAccess;

  bool SerializeXML(XMLWriter& writer, XMLElement* parent) override;
  bool DeserializeXML(XMLReader& reader, XMLElement* parent) override;

  /// @{
  /// Hand out the list and the lookups for change in place. A lookup by id or by register becomes
  /// a vector for that, with memory for every number up to the largest one.
  std::list<Entity>* GetListEntityMod();
  std::vector<const Entity*>* GetVectorSortedByEntityIdMod();
  std::vector<const Entity*>* GetVectorSortedByRegisterMod();
  std::vector<const Entity*>* GetVectorHeadMod();
  std::vector<const Entity*>* GetVectorTableMod();
  /// @}

 private:
  std::shared_ptr<KinematicImplementation> implementation_;
};

}  // namespace Orvo::Kin
