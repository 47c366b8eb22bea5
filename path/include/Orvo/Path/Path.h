#pragma once

/// @file
/// Everything for whole tool paths: reading, solving, explaining.

#include <Orvo/Path/Diagnosis.h>
#include <Orvo/Path/Export.h>
#include <Orvo/Path/MainAxes.h>
#include <Orvo/Path/PathOptions.h>
#include <Orvo/Path/PathSolver.h>
#include <Orvo/Path/PointSolver.h>
#include <Orvo/Path/PointSource.h>
#include <Orvo/Path/ReadError.h>
#include <Orvo/Path/Readers.h>
#include <Orvo/Path/SolvedPoint.h>
#include <Orvo/Path/ToolPath.h>
#include <Orvo/Path/ToolPoint.h>
