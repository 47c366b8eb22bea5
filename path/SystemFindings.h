#pragma once

#include "path/PointSolverImplementation.h"

namespace Orvo::Path {

/// Adds what is to be said of the chain between head and table: that it can't be computed, or that
/// its linear axes are oblique.
void AddChainFindings(PointSolverImplementation* own);

}  // namespace Orvo::Path
