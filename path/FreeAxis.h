#pragma once

#include "path/PointSolverImplementation.h"
#include "path/Vec3.h"

#include <Orvo/Path/PointSolver.h>

namespace Orvo::Path {

/// In a singular direction, looks for answers with all axes in range among all values of the free
/// axis: the one nearest to where that axis stands at the start, and the one in the middle of the
/// widest range of values that will do.
///
/// While the free axis turns, each linear value goes on a circle of its own on most machines, so
/// the values at which it meets a limit are known in closed form; on others, whole degrees are
/// tried.
/// @return whether there are any; otherwise nothing is written
bool FindFreeAnswers(PointSolverImplementation& own, const Vec3& tip, const Vec3& direction,
                     Answers* answers);

}  // namespace Orvo::Path
