#pragma once

#include "model/PlaceTable.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Kinematic.h>

#include <cstddef>
#include <list>
#include <memory>
#include <vector>

namespace Orvo::Kin {

/// The store that the handles of a Kinematic share.
struct KinematicImplementation {
  KinematicImplementation() = default;
  KinematicImplementation(const KinematicImplementation&) = delete;
  KinematicImplementation& operator=(const KinematicImplementation&) = delete;
  virtual ~KinematicImplementation() = default;

  /// Returns the head or table at an index, or null.
  const Entity* Head(const HeadIndex& head) const { return At(heads, head.GetVal()); }
  const Entity* Table(const TableIndex& table) const { return At(tables, table.GetVal()); }

  std::list<Entity> entities;

  // Pointers into the list, filled by Machine::Finish.
  std::vector<const Entity*> tables;
  std::vector<const Entity*> heads;
  PlaceTable byEntityId;
  PlaceTable byRegister;

  // Grows with every change of what calculators take down of the elements, from Finish on.
  unsigned long long changeNb = 0;

 private:
  static const Entity* At(const std::vector<const Entity*>& table, int index) {
    return index < 0 || static_cast<std::size_t>(index) >= table.size()
               ? nullptr
               : table[static_cast<std::size_t>(index)];
  }
};

/// Reaches the store of a Kinematic.
struct KinematicAccess {
  static const KinematicImplementation& Store(const Kinematic& kinematic) {
    return *kinematic.implementation_;
  }
  static std::weak_ptr<const KinematicImplementation> Watch(const Kinematic& kinematic) {
    return kinematic.implementation_;
  }
};

}  // namespace Orvo::Kin
