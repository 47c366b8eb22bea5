#pragma once

#include <Orvo/Exchange/Gltf.h>
#include <Orvo/Kin/Machine.h>

#include <string>
#include <vector>

namespace OrvoTool {

/// Reads axis values for an animation, as AxisRowReader does.
///
/// Axes that the file doesn't name stay at 0. A move takes what its inverse time says, or a tenth
/// of a second where the file has none.
///
/// @param name     the file's name in UTF-8; "-" for the standard input
/// @param seconds  how long it all is to take, or 0 for as long as that adds up to
/// @throws Failure naming file, line and column of what is wrong
std::vector<Orvo::Exchange::AnimationKey> ReadAnimationKeys(const std::string& name,
                                                            const Orvo::Kin::Machine& machine,
                                                            double seconds);

}  // namespace OrvoTool
