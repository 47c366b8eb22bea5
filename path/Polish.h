#pragma once

#include "path/ChainModel.h"
#include "path/Vec3.h"

#include <array>

namespace Orvo::Path {

/// Moves two rotary angles until the tool direction is a given unit direction, as nearly as doubles
/// allow; a step or two where they start near an ordinary solution.
///
/// @param rad  the angles, in radians; they stay where no step makes them better
/// @return the distance that is left between the two unit directions
double Polish(const ChainModel& model, const Vec3& direction, std::array<double, 2>* rad);

/// Tells on which of the two branches of solutions angles lie: 1 or -1, by the sense in which the
/// two derivatives of the direction stand to it; 0 where they lie in one plane with it.
int BranchOf(const ChainModel& model, const std::array<double, 2>& rad);

}  // namespace Orvo::Path
