#pragma once

#include "model/PositionAccess.h"

#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/Register.h>

#include <cstddef>

namespace Orvo::Kin {

/// Tells whether a position has a value for a register.
inline bool HasRegister(const MachinePosition& pos, const Register& reg) {
  return reg.IsDefined() &&
         static_cast<std::size_t>(reg.GetVal()) < PositionAccess::Values(pos).size();
}

}  // namespace Orvo::Kin
