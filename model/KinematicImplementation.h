#pragma once

#include "model/PlaceTable.h"

#include <Orvo/Kin/Entity.h>

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
};

}  // namespace Orvo::Kin
