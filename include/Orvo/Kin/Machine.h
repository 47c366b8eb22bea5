#pragma once

#include <Orvo/Export.h>
#include <Orvo/ISerializableXML.h>
#include <Orvo/Kin/CollisionCheck.h>
#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityId.h>
#include <Orvo/Kin/Enumerations.h>
#include <Orvo/Kin/HeadIndex.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/ProgramSystemIndex.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Kin/TableIndex.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <list>
#include <memory>
#include <string>

namespace Orvo::Kin {

class MachineCompute;
class MachinePosition;

/// The model of a machine tool: its elements, its program systems and its collision lists.
///
/// Build it with the Add operations or read it from a file, Finish() it, then compute with
/// MachineCompute and ProgramSystemCompute. A finished machine takes no further elements.
///
/// A copy shares the elements, the program systems and the collision lists with its source, which
/// live as long as any of the copies; the counts, the flag and the last error are its own.
/// A finished machine that nobody changes may be read from several threads.
class ORVO_API Machine : public ISerializableXML {
 public:
  /// Makes an empty machine; the counts by index type read -1 until Finish().
  Machine();

  /// Shares elements, program systems and collision lists; copies counts, flag and last error.
  Machine(const Machine& other);

  /// Does the same, and lets go of what this machine held.
  Machine& operator=(const Machine& other);
  ~Machine() override;

  /// Appends an element. The first one gets the id 1, the second the id 2, and so on.
  /// @return the element, valid as long as the machine, or null when the machine is finished
  Entity* AddEntity();

  /// Appends a copy of an element, without its meshes and parent pointer; the id is given anew.
  /// Does nothing when the machine is finished.
  void AddEntity(const Entity& e);

  /// Appends a linear axis that travels along @p dir, given in the parent's frame.
  /// @return the element, or null when the machine is finished
  Entity* AddEntityLinear(const std::wstring& name, const EntityId& parent, const Vector3D& dir);

  /// Appends a rotary axis about the line through @p center along @p dir, in the parent's frame.
  /// @return the element, or null when the machine is finished
  Entity* AddEntityRotary(const std::wstring& name, const EntityId& parent, const Vector3D& center,
                          const Vector3D& dir);

  /// Appends a static element, of the type AXIS, placed on its parent's frame. Its range is not
  /// checked.
  /// @return the element, or null when the machine is finished
  Entity* AddEntityStatic(const std::wstring& name, const EntityId& parent);

  /// @{
  /// Appends a head or a table; @p frame is parentFromElement. Its range is not checked.
  /// @return the element, or null when the machine is finished
  Entity* AddEntityHead(const std::wstring& name, const EntityId& parent, const Matrix43& frame);
  Entity* AddEntityTable(const std::wstring& name, const EntityId& parent, const Matrix43& frame);
  /// @}

  /// Appends a copy of a program system, to a finished machine too; nothing is checked.
  void AddProgramSystem(const ProgramSystem& ps);

  /// Resolves parents and levels, numbers heads and tables, fills the lookups, adds the program
  /// system "Default" when there is none, counts the linear axes and validates.
  ///
  /// Elements are taken in the order of the list. A parent that no element's id names is none. A
  /// parent pointer that would close a cycle is left null. The default program system takes head 0
  /// and table 0, for X, Y and Z the last linear axes that point exactly along them, and the first
  /// two rotary axes, in ascending order of their registers. It is added before validation and
  /// stays when that fails. Finishing again takes all steps anew.
  ///
  /// @return true when the machine is valid; it then is finished. Otherwise false, with the first
  ///   of these as GetLastError(), and the machine goes on being built:
  ///   - MachineErrorParentCycle: parents formed a cycle
  ///   - MachineErrorNoHead: no element is of the type HEAD
  ///   - MachineErrorNoTable: no element is of the type TABLE
  ///   - MachineErrorFewLinearAxes: fewer than three AXIS elements have a LINEAR link
  /// @throws std::length_error for an id ("Machine::Finish : identifier out of range") or a
  ///   register ("Machine::Finish : register out of range") above 16777215
  /// @throws std::bad_alloc when there is no memory; after both, the machine is unchanged
  /// @par Cost
  /// Linear in the number of elements. The lookups by id and by register take 8 bytes of addresses
  /// for each number up to the largest one, but memory only for those that elements have: 128 MB of
  /// addresses each at most.
  bool Finish();

  /// Tells whether the last Finish() found the machine valid.
  bool IsFinished() const;

  /// Returns the result of the last Finish(), or MachineErrorNone before the first.
  MachineErrorType GetLastError();

  /// Returns the store of the elements.
  const Kinematic& GetKinematic() const;

  /// @{
  /// Returns the lists of the collision check.
  const CollisionCheck& GetCollisionCheck() const;
  CollisionCheck& GetCollisionCheckMod();
  /// @}

  /// Returns the number of registers: the largest register + 1, at least 1; -1 before Finish().
  const Register& GetRegisterNb() const;

  /// Returns the number of elements that Finish() found; 0 before.
  int GetEntityNb() const;

  /// Returns the largest id; -1 before Finish().
  EntityId GetEntityIdMax();

  /// @{
  /// Returns the number of tables or heads; -1 before Finish().
  const TableIndex& GetTableNb() const;
  const HeadIndex& GetHeadNb() const;
  /// @}

  /// Returns the number of AXIS elements with a LINEAR link; 0 before Finish().
  int GetLinearAxesNb() const;

  /// Returns the program systems in their order.
  const std::list<ProgramSystem>& GetListProgramSystem() const;

  /// Returns the number of program systems.
  ProgramSystemIndex GetProgramSystemNb() const;

  /// Returns a program system, or null outside the list. Linear in the index.
  const ProgramSystem* GetProgramSystem(const ProgramSystemIndex& i);

  /// Gives a position one element per register, all 0; null is ignored.
  void Alloc(MachinePosition* p) const;

  /// Reads a machine file, appends what it holds to this machine and finishes it.
  ///
  /// Numbers are read as strtod and strtol read them in the "C" locale, the words nan and inf
  /// included; numbers that a double holds only with a loss, below 2.3e-308, are too small.
  ///
  /// @param path  the file's name
  /// @return false when the file can't be opened, is no XML, has a tag of more than 1000 attributes
  ///   or nests its elements deeper than the parser goes (98 of them for tinyxml2 9), when it is no
  ///   machine or when something required is missing; what was read before that stays. True
  ///   otherwise: deliberate, whatever Finish() says; ask GetLastError() or IsFinished().
  /// @throws std::invalid_argument for a text that is no number where one must stand, and
  ///   std::out_of_range for a number that is too large or too small; what was read before stays
  /// @throws std::length_error as Finish() does
  /// @throws std::bad_alloc when there is no memory; what was read before stays
  /// @par Cost
  /// Memory in proportion to the file, up to 60 bytes for each of its own while it is read,
  /// whatever numbers stand in it. Time n log n in its bytes.
  bool ReadXML(const std::wstring& path);

  /// Writes a machine file: UTF-8, indented, with six decimals whatever the locale, and with the
  /// words nan and inf for what is no number.
  ///
  /// @param path  the file's name; an existing file is replaced
  /// @return true when every byte was written; false otherwise, and when a program system has a
  ///   policy that is not in the enumeration (then nothing is written)
  bool WriteXML(const std::wstring& path);

  /// Reads a machine file as ReadXML() does, then the mesh files beside it.
  ///
  /// The mesh i of the element with the id n stands in `<path without its last suffix>_n_i.stl`.
  /// Elements of equal ids read the same file, and share its arrays where theirs were empty.
  /// @return false when the machine file or any mesh file can't be read; what was read stays
  /// @throws what ReadXML() throws, and std::bad_alloc as EntityMesh::ReadCadStlBin does
  bool ReadMachineWithMeshStl(const std::wstring& path);

  /// Writes a machine file as WriteXML() does, then one mesh file for each mesh beside it.
  ///
  /// @return false when any file can't be written whole; files already written stay
  bool WriteMachineWithMeshStl(const std::wstring& path);

 protected:
  bool SerializeXML(XMLWriter& writer, XMLElement* parent) override;
  bool DeserializeXML(XMLReader& reader, XMLElement* parent) override;

 private:
  friend class MachineCompute;

  bool IsValid();
  int CountLinearAxesNb() const;
  Entity* AppendEntity(std::list<Entity>* added);
  Entity* AddLinkedEntity(const std::wstring& name, const EntityId& parent, EntityType type,
                          const EntityLink& link, bool checkRangeAxis);
  bool SerializeXML_ProgramSystems(XMLWriter& writer, XMLElement* parent);
  bool DeserializeXML_ProgramSystems(XMLReader& reader, XMLElement* parent);
  bool SerializeXML_CollisionCheck(XMLWriter& writer, XMLElement* parent);
  bool DeserializeXML_CollisionCheck(XMLReader& reader, XMLElement* parent);
  std::wstring MakeMeshStlFilename(const std::wstring& path, const EntityId& id,
                                   unsigned int meshIndex);

  Kinematic kinematic_;
  CollisionCheck collisionCheck_;
  bool finished_ = false;
  bool hasParentCycle_ = false;
  Register registerNb_;
  int entityNb_ = 0;
  EntityId entityIdMax_;
  TableIndex tableNb_;
  HeadIndex headNb_;
  int linearAxesNb_ = 0;
  MachineErrorType lastError_ = MachineErrorNone;
  std::shared_ptr<std::list<ProgramSystem>> programSystems_;
};

}  // namespace Orvo::Kin
