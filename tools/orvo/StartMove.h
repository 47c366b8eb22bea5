#pragma once

#include <Orvo/Path/Diagnosis.h>
#include <Orvo/Path/MainAxes.h>
#include <Orvo/Path/PointSolver.h>
#include <Orvo/Path/SolvedPoint.h>

#include <vector>

namespace OrvoTool {

/// What is to be said of the move from where the axes stand to the answer for a point, as the
/// library for whole paths says it of moves between two points: near singular, branch change,
/// unwinding.
/// @param start   where the axes stand
/// @param angle   between the direction and the nearest singular one, in radians
/// @param solver  must be usable
std::vector<Orvo::Path::Diagnosis> FindStartMove(Orvo::Path::PointSolver* solver,
                                                 const Orvo::Path::AxisValues& start, double angle,
                                                 const Orvo::Path::SolvedPoint& point);

}  // namespace OrvoTool
