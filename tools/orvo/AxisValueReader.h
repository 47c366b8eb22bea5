#pragma once

#include "AxisNames.h"

#include <Orvo/Exchange/Gltf.h>

#include <string>
#include <vector>

namespace OrvoTool {

/// Reads a file of axis values, as `orvo solve` writes it, for an animation.
///
/// The first line that is neither empty nor a comment names the columns: those called after axes
/// are read, one called "time" is the time in seconds, others are passed over. Axes without column
/// stay at 0. Rows without any of these values are left out.
///
/// @param name     the file's name in UTF-8
/// @param seconds  how long it all takes, where there is no column for the time; 0 for a tenth of a
///                 second a row
/// @throws Failure naming file, line and column of what is wrong
std::vector<Orvo::Exchange::AnimationKey> ReadAxisValues(const std::string& name,
                                                         const Orvo::Kin::Machine& machine,
                                                         double seconds);

}  // namespace OrvoTool
