#pragma once

#include "path/PathBlocks.h"
#include "path/PathState.h"

#include <Orvo/Path/MainAxes.h>
#include <Orvo/Path/PathOptions.h>

#include <cstdint>
#include <vector>

namespace Orvo::Path {

/// Chooses the nearest answer at each point. Returns one packed PathStep a point.
///
/// @param isPlain  whether answers are taken without whole turns where ranges allow
std::vector<std::uint32_t> PlanGreedy(PathBlocks& blocks, const MainAxes& axes,
                                      const PathOptions& options, const PathState& start,
                                      bool isPlain);

/// Chooses the path with the smallest sum of the measure. Returns one packed PathStep a point.
std::vector<std::uint32_t> PlanOptimal(PathBlocks& blocks, const MainAxes& axes,
                                       const PathOptions& options, const PathState& start);

}  // namespace Orvo::Path
