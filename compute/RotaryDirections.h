#pragma once

#include <Orvo/Vector3D.h>

namespace Orvo::Kin {

/// Where the tool and up to two rotary axes point in the table's frame, with these axes at 0.
struct RotaryDirections {
  Vector3D tool;
  Vector3D axes[2];  // of alpha and of beta; each on the head's side as it is, else reversed
  bool isAlphaNearerHead = false;
};

}  // namespace Orvo::Kin
