#pragma once

#include "exchange/GltfBinary.h"
#include "exchange/MachineTree.h"

#include <Orvo/Exchange/Gltf.h>

#include <optional>
#include <vector>

namespace Orvo::Exchange {

/// The keys of one axis: times and what the node has then.
struct ChannelParts {
  bool isOnKeys = true;  ///< the times are those of the animation, without further ones
  BinaryPart times;
  BinaryPart values;
};

/// Checks the keys of an animation.
/// @throws ExchangeError: times that don't grow as 32-bit floats, a position that is too short, a
///   value that isn't finite
void RequireKeys(const std::vector<AnimationKey>& keys, int registerNb);

/// Returns the times of the keys.
BinaryPart MakeTimes(const std::vector<AnimationKey>& keys);

/// Returns the channel of an axis, or nothing where it stays where the scene has it.
///
/// @param keys  checked; must be there when the parts are written
/// @throws ExchangeError
std::optional<ChannelParts> MakeChannel(const TreeNode& node, const std::vector<AnimationKey>& keys,
                                        double restValue, double scale);

}  // namespace Orvo::Exchange
