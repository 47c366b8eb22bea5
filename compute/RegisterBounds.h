#pragma once

#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/Register.h>

namespace Orvo::Kin {

/// Tells whether a position has a value for a register.
inline bool HasRegister(const MachinePosition& pos, const Register& reg) {
  return reg.IsDefined() && static_cast<unsigned long long>(reg.GetVal()) < pos.Size();
}

}  // namespace Orvo::Kin
