#pragma once

#include <Orvo/Kin/MachinePosition.h>

#include <vector>

namespace Orvo::Kin {

/// Reaches the values of a position without a call.
struct PositionAccess {
  static const std::vector<double>& Values(const MachinePosition& pos) { return *pos.values_; }
  static std::vector<double>& Values(MachinePosition* pos) { return *pos->values_; }
};

}  // namespace Orvo::Kin
