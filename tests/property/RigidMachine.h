#pragma once

#include "property/CalculatorPair.h"
#include "property/Draw.h"
#include "property/RandomMachine.h"
#include "property/reference/Frame.h"
#include "property/reference/Vector.h"

namespace Orvo::Property {

/// Tells whether the directions of a frame are right-handed and orthonormal to the last digits.
bool IsOrthonormal(const Reference::Frame& f);

/// Tells whether a direction is so near the X axis, but not on it, that the frame made of it is not
/// quite orthonormal.
bool IsNearX(const Reference::Vector& dir);

/// Draws a machine of rigid frames and clean axes only, made by calls: a file would round them.
MachinePlan RigidPlan(Draw& draw);

/// Tells whether an axis, where there is one, turns the head against the table. The last common
/// ancestor belongs to the chain too, but carries both.
bool TurnsOneSide(const MachinePair& pair, const RotaryRequest& request, int reg);

/// Returns the direction of an axis in the table's frame, null where there is none.
Reference::Vector AxisInTable(const MachinePair& pair, const RotaryRequest& request, int reg);

}  // namespace Orvo::Property
