#pragma once

#include <Orvo/Export.h>
#include <Orvo/ISerializableXML.h>
#include <Orvo/Kin/EntityId.h>
#include <Orvo/Kin/EntityLink.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Enumerations.h>
#include <Orvo/Kin/Register.h>

#include <memory>
#include <string>

namespace Orvo::Kin {

class Machine;
struct EntityImplementation;

/// One element of a machine: an axis, a static part, a table or a head.
///
/// Holds its name, its id and its parent's, the register of its axis value, its joint to the
/// parent, a few flags and, when asked for, its meshes. Machine::AddEntity makes elements and hands
/// out pointers to them that stay valid as long as the machine; Machine::Finish sets the parent
/// pointer and the level.
///
/// A copy takes everything but the meshes and the parent pointer: a copy-constructed element has
/// no mesh, an assigned one keeps its own, and both have no parent until the next Machine::Finish.
/// Assigning an element to itself changes nothing.
class ORVO_API Entity : public ISerializableXML {
 public:
  /// Makes an element of the type AXIS without name, id, parent, register, mesh or link; its range
  /// is checked.
  Entity();

  /// Copies all but the meshes and the parent pointer; the copy has neither.
  Entity(const Entity& other);

  /// Copies all but the meshes, which stay, and the parent pointer, which becomes null.
  Entity& operator=(const Entity& other);
  ~Entity() override;

  /// Sets the name: any text, unique or not.
  void SetEntityName(const std::wstring& name);

  /// Sets the id of the parent. It takes effect with the next Machine::Finish.
  void SetParentEntityId(const EntityId& id);

  /// Sets the place of the axis value in a MachinePosition. It takes effect with the next
  /// Machine::Finish.
  void SetRegister(const Register& reg);

  /// Sets whether this is a driven axis. Stored only.
  void SetIsMotor(bool isMotor);

  /// Sets whether solvers and checks hold the axis value against the range.
  void SetCheckRangeAxis(bool checkRangeAxis);

  /// Sets whether this is a mounting element. Stored only.
  void SetIsMounting(bool isMounting);

  /// Copies a whole link.
  void SetEntityLink(const EntityLink& link);

  /// @{
  /// Sets the limits of slot 0 of the link, in the machine's unit or in degrees; nothing is
  /// checked.
  void SetRangeMin(double min);
  void SetRangeMax(double max);
  void SetRange(double min, double max);
  /// @}

  /// Makes sure that the element has a list of meshes, and returns it.
  EntityMesh* AllocEntityMesh();

  /// Adds a mesh from a binary STL file, as EntityMesh::AddCadStlBin does; a list is made first
  /// where there is none, and stays when reading fails.
  /// @throws std::bad_alloc as EntityMesh::ReadCadStlBin does
  bool AddCadStlBin(const std::wstring& fileName, unsigned int color);

  /// Returns the name.
  const std::wstring& GetEntityName() const;

  /// Returns the role in the machine.
  const EntityType& GetEntityType() const;

  /// Returns how the element is marked; nothing acts on it.
  const EntityParallelType& GetEntityParallelType() const;

  /// Returns the id: the machine gives one on addition, and a file brings its own.
  const EntityId& GetEntityId() const;

  /// Returns the id of the parent as it was set, whether such an element exists or not.
  const EntityId& GetParentEntityId() const;

  /// Returns the place of the axis value in a MachinePosition, or an undefined one.
  const Register& GetRegister() const;

  /// Tells whether this is a driven axis.
  bool GetIsMotor() const;

  /// Tells whether solvers and checks hold the axis value against the range.
  bool GetCheckRangeAxis() const;

  /// Tells whether this is a mounting element.
  bool GetIsMounting() const;

  /// Returns the joint to the parent.
  const EntityLink& GetEntityLink() const;

  /// Returns the joint to the parent for change in place; valid as long as the element.
  EntityLink* GetEntityLinkMod();

  /// @{
  /// Returns the list of meshes, or null.
  const EntityMesh* GetEntityMesh() const;
  EntityMesh* GetEntityMeshMod();
  /// @}

  /// Returns the parent as the last Machine::Finish found it, or null.
  const Entity* GetParentEntity() const;

  /// Returns the number of ancestors as the last Machine::Finish counted them.
  int GetLevel() const;

  /// @{
  /// Returns the limits of slot 0 of the link.
  double GetRangeMin() const;
  double GetRangeMax() const;
  /// @}

 protected:
  friend class Machine;

  bool SerializeXML(XMLWriter& writer, XMLElement* parent) override;
  bool DeserializeXML(XMLReader& reader, XMLElement* parent) override;

  /// Sets the id; the machine's task.
  void SetEntityId(const EntityId& id);

  /// Sets the role; the task of the machine's Add operations.
  void SetEntityType(const EntityType& type);

  /// Sets how the element is marked.
  void SetEntityParallelType(const EntityParallelType& type);

  /// Sets the number of ancestors; the task of Machine::Finish.
  void SetLevel(int level);

  /// Sets the parent pointer; the task of Machine::Finish.
  void SetParentEntity(const Entity* parent);

 private:
  ORVO_LOCAL void CountChangesIn(unsigned long long* changeNb);
  bool GetEntityTypeFromDict(const std::wstring& word, EntityType& type);
  bool GetEntityParallelTypeFromDict(const std::wstring& word, EntityParallelType& type);
  void SerializeXML_Meshes(XMLWriter& writer, XMLElement* parent);
  void DeserializeXML_Meshes(XMLReader& reader, XMLElement* parent);

  std::unique_ptr<EntityImplementation> implementation_;
};

}  // namespace Orvo::Kin
