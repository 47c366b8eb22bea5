#pragma once

#include <Orvo/Angle.h>
#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <initializer_list>
#include <iterator>
#include <list>
#include <string>

/// Small machines whose solutions can be worked out by hand, and the ways of building others.
namespace Orvo::Testing {

/// Opens the setters that only the machine and the file reader use.
struct OpenEntity : Kin::Entity {
  using Entity::SetEntityId;
  using Entity::SetEntityType;
  using Entity::SetLevel;
  using Entity::SetParentEntity;
};

/// Opens the list of elements.
struct OpenKinematic : Kin::Kinematic {
  using Kinematic::GetListEntityMod;
};

inline void SetId(Kin::Entity* entity, int id) {
  (entity->*(&OpenEntity::SetEntityId))(Kin::EntityId(id));
}

inline void SetType(Kin::Entity* entity, Kin::EntityType type) {
  (entity->*(&OpenEntity::SetEntityType))(type);
}

inline void SetParentPointer(Kin::Entity* entity, const Kin::Entity* parent) {
  (entity->*(&OpenEntity::SetParentEntity))(parent);
}

/// Returns the machine's elements for change.
inline std::list<Kin::Entity>& EntitiesOf(const Kin::Machine& machine) {
  Kin::Kinematic handle = machine.GetKinematic();
  return *(handle.*(&OpenKinematic::GetListEntityMod))();
}

inline Matrix43 TranslationFrame(double x, double y, double z) {
  Matrix43 frame;
  frame.SetTrans(Vector3D(x, y, z));
  return frame;
}

/// Returns a frame that turns by degrees about an axis through the origin.
inline Matrix43 RotationFrame(const Vector3D& axis, double degrees) {
  Angle angle;
  angle.SetDegre(degrees);
  Matrix43 frame;
  frame.SetRotation(axis, angle);
  return frame;
}

/// Returns a frame with the given third column; the first two are orthonormal to it if it is unit.
inline Matrix43 FrameWithW(const Vector3D& w) {
  Matrix43 frame;
  frame.MakeAxisW(w);
  frame.SetUVW(frame.GetU(), frame.GetV(), w);
  return frame;
}

inline Kin::MachinePosition PositionOf(std::initializer_list<double> values) {
  Kin::MachinePosition position;
  position.Alloc(static_cast<unsigned long long>(values.size()));
  int reg = 0;
  for (const double value : values) {
    position[Kin::Register(reg)] = value;
    ++reg;
  }
  return position;
}

inline Kin::Entity* AddLinear(Kin::Machine& machine, int parent, const Vector3D& dir, int reg) {
  Kin::Entity* entity = machine.AddEntityLinear(L"linear", parent, dir);
  entity->SetRegister(reg);
  return entity;
}

inline Kin::Entity* AddRotary(Kin::Machine& machine, int parent, const Vector3D& center,
                              const Vector3D& dir, int reg) {
  Kin::Entity* entity = machine.AddEntityRotary(L"rotary", parent, center, dir);
  entity->SetRegister(reg);
  return entity;
}

inline Kin::Entity* AddFixed(Kin::Machine& machine, int parent,
                             const Matrix43& frame = Matrix43()) {
  Kin::Entity* entity = machine.AddEntityStatic(L"fixed", parent);
  entity->GetEntityLinkMod()->SetEntityLinkPosition(frame);
  return entity;
}

inline Kin::Entity* AddHead(Kin::Machine& machine, int parent, const Matrix43& frame = Matrix43()) {
  return machine.AddEntityHead(L"head", parent, frame);
}

inline Kin::Entity* AddTable(Kin::Machine& machine, int parent,
                             const Matrix43& frame = Matrix43()) {
  return machine.AddEntityTable(L"table", parent, frame);
}

/// Both rotary axes turn the tool: base 1 carries table 2 and X 3, Y 4, Z 5 (registers 0 to 2), C 6
/// about Z (register 3), A 7 about X (register 4) and head 8.
///
/// The tool points along (sin(a) sin(c), -sin(a) cos(c), cos(a)).
inline Kin::Machine HeadHeadMachine() {
  Kin::Machine machine;
  AddFixed(machine, -1);
  AddTable(machine, 1);
  AddLinear(machine, 1, AxisX, 0);
  AddLinear(machine, 3, AxisY, 1);
  AddLinear(machine, 4, AxisZ, 2);
  AddRotary(machine, 5, NullVector, AxisZ, 3);
  AddRotary(machine, 6, NullVector, AxisX, 4);
  AddHead(machine, 7);
  machine.Finish();
  return machine;
}

/// Both rotary axes turn the workpiece: base 1 carries X 2, Y 3, Z 4 (registers 0 to 2) with head
/// 5, and A 6 about X (register 3), C 7 about Z (register 4) and table 8.
///
/// In the table's frame the tool points along (sin(a) sin(c), sin(a) cos(c), cos(a)).
inline Kin::Machine TableTableMachine() {
  Kin::Machine machine;
  AddFixed(machine, -1);
  AddLinear(machine, 1, AxisX, 0);
  AddLinear(machine, 2, AxisY, 1);
  AddLinear(machine, 3, AxisZ, 2);
  AddHead(machine, 4);
  AddRotary(machine, 1, NullVector, AxisX, 3);
  AddRotary(machine, 6, NullVector, AxisZ, 4);
  AddTable(machine, 7);
  machine.Finish();
  return machine;
}

/// One rotary axis of each side: base 1 carries X 2, Y 3, Z 4 (registers 0 to 2), B 5 about Y
/// (register 3) and head 6, and C 7 about Z (register 4) with table 8.
///
/// In the table's frame the tool points along (sin(b) cos(c), -sin(b) sin(c), cos(b)).
inline Kin::Machine HeadTableMachine() {
  Kin::Machine machine;
  AddFixed(machine, -1);
  AddLinear(machine, 1, AxisX, 0);
  AddLinear(machine, 2, AxisY, 1);
  AddLinear(machine, 3, AxisZ, 2);
  AddRotary(machine, 4, NullVector, AxisY, 3);
  AddHead(machine, 5);
  AddRotary(machine, 1, NullVector, AxisZ, 4);
  AddTable(machine, 7);
  machine.Finish();
  return machine;
}

/// One rotary axis in the head: base 1 carries table 2, X 3, Y 4, Z 5 (registers 0 to 2), an axis 6
/// along `dir` (register 3) and head 7 with its tool along `tool`, both as given.
inline Kin::Machine OneAxisHeadMachine(const Vector3D& dir, const Vector3D& tool) {
  Kin::Machine machine;
  AddFixed(machine, -1);
  AddTable(machine, 1);
  AddLinear(machine, 1, AxisX, 0);
  AddLinear(machine, 3, AxisY, 1);
  AddLinear(machine, 4, AxisZ, 2);
  AddRotary(machine, 5, NullVector, dir, 3);
  AddHead(machine, 6, FrameWithW(tool));
  machine.Finish();
  return machine;
}

/// One rotary axis in the table: base 1 carries X 2, Y 3, Z 4 (registers 0 to 2) with head 5 with
/// its tool along `tool`, and an axis 6 along `dir` (register 3) with table 7.
inline Kin::Machine OneAxisTableMachine(const Vector3D& dir, const Vector3D& tool) {
  Kin::Machine machine;
  AddFixed(machine, -1);
  AddLinear(machine, 1, AxisX, 0);
  AddLinear(machine, 2, AxisY, 1);
  AddLinear(machine, 3, AxisZ, 2);
  AddHead(machine, 4, FrameWithW(tool));
  AddRotary(machine, 1, NullVector, dir, 3);
  AddTable(machine, 6);
  machine.Finish();
  return machine;
}

/// Returns an element of a finished machine by its id.
inline const Kin::Entity& EntityOf(const Kin::Machine& machine, int id) {
  return *machine.GetKinematic().GetEntity(Kin::EntityId(id));
}

/// Returns an element of any machine by its place in the list, from 0.
inline Kin::Entity& EntityAt(const Kin::Machine& machine, int place) {
  auto it = EntitiesOf(machine).begin();
  std::advance(it, place);
  return *it;
}

}  // namespace Orvo::Testing
