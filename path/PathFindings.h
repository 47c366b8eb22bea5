#pragma once

#include "path/SegmentMotion.h"

#include <Orvo/Path/Diagnosis.h>
#include <Orvo/Path/PathOptions.h>
#include <Orvo/Path/PointSolver.h>
#include <Orvo/Path/SolvedPoint.h>

namespace Orvo::Path {

/// Says that the tool leaves the straight connection by so much; the direction in radians.
Diagnosis FindSegmentDeviation(double tip, double direction);

/// Says by how much a held axis lets the direction deviate, in radians.
Diagnosis FindHeldAxis(const PointSolver& solver, double deviation);

/// Adds what is to be said of the jump that the move to a point makes, if it makes one: branch
/// change, unwinding.
void AddJumpFindings(const MainAxes& axes, const MoveStart& before, SolvedPoint* point);

/// Says so where the move to a point turns the free axis far, near a singular direction.
void AddNearSingular(const PointSolver& solver, const PathOptions& options, const Answers& answers,
                     const MoveStart& before, SolvedPoint* point);

/// Returns the values of the answer that is least out of the linear ranges, with its rotary ones in
/// range; null where there is none.
const AxisValues* FindNearestLinear(const MainAxes& axes, const Answers& answers);

}  // namespace Orvo::Path
