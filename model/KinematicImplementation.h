#pragma once

#include "model/PlaceTable.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Kinematic.h>

#include <list>
#include <vector>

namespace Orvo::Kin {

/// The store that the handles of a Kinematic share.
struct KinematicImplementation {
  KinematicImplementation() = default;
  KinematicImplementation(const KinematicImplementation&) = delete;
  KinematicImplementation& operator=(const KinematicImplementation&) = delete;
  virtual ~KinematicImplementation() = default;

  std::list<Entity> entities;

  // Pointers into the list, filled by Machine::Finish.
  std::vector<const Entity*> tables;
  std::vector<const Entity*> heads;
  PlaceTable byEntityId;
  PlaceTable byRegister;

  // Grows with every change of what calculators take down of the elements, from Finish on.
  unsigned long long changeNb = 0;
};

/// Reaches the store of a Kinematic.
struct KinematicAccess {
  static const KinematicImplementation& Store(const Kinematic& kinematic) {
    return *kinematic.implementation_;
  }
};

}  // namespace Orvo::Kin
