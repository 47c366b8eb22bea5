#pragma once

#include <Orvo/Kin/Machine.h>

#include <vector>

namespace Orvo::Testing {

// Add elements to a machine, with nothing but what is asked for and without parents.

inline Kin::Entity* AddLinear(Kin::Machine* machine, const Vector3D& dir, int reg) {
  Kin::Entity* const entity = machine->AddEntityLinear(L"linear", Kin::EntityId(), dir);
  entity->SetRegister(Kin::Register(reg));
  return entity;
}

inline Kin::Entity* AddRotary(Kin::Machine* machine, int reg) {
  Kin::Entity* const entity =
      machine->AddEntityRotary(L"rotary", Kin::EntityId(), NullVector, AxisZ);
  entity->SetRegister(Kin::Register(reg));
  return entity;
}

inline Kin::Entity* AddHead(Kin::Machine* machine) {
  return machine->AddEntityHead(L"head", Kin::EntityId(), Matrix43());
}

inline Kin::Entity* AddTable(Kin::Machine* machine) {
  return machine->AddEntityTable(L"table", Kin::EntityId(), Matrix43());
}

inline void AddMainAxes(Kin::Machine* machine) {
  AddLinear(machine, AxisX, 0);
  AddLinear(machine, AxisY, 1);
  AddLinear(machine, AxisZ, 2);
}

/// A valid machine with the ids 1 to 5.
inline void BuildValid(Kin::Machine* machine) {
  AddMainAxes(machine);
  AddHead(machine);
  AddTable(machine);
}

inline std::vector<Kin::Entity*> AddPlain(Kin::Machine* machine, int count) {
  std::vector<Kin::Entity*> entities;
  for (int i = 0; i < count; ++i) {
    entities.push_back(machine->AddEntity());
  }
  return entities;
}

}  // namespace Orvo::Testing
