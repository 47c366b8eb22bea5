#pragma once

#include "JsonText.h"

#include <Orvo/Kin/Machine.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

namespace OrvoTool {

/// Returns a vector as an array of its three components.
JsonValue VectorJson(const Orvo::Vector3D& vector);

/// Returns a frame as its axes u, v and w and its origin.
JsonValue FrameJson(Orvo::Matrix43 frame);

/// Returns what a machine holds: whether it is valid, its elements in the order of its list, its
/// heads, tables and program systems, and how much its lists of the collision check hold.
JsonValue MakeMachineJson(Orvo::Kin::Machine& machine);

}  // namespace OrvoTool
