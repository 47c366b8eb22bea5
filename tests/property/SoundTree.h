#pragma once

#include "property/Draw.h"
#include "property/RandomMachine.h"
#include "property/reference/Frame.h"
#include "property/reference/Vector.h"

namespace Orvo::Property {

LinkStep LinearStep(const Reference::Vector& dir);
LinkStep RotaryStep(const Reference::Vector& center, const Reference::Vector& dir);
LinkStep FixedStep(const Reference::Frame& frame);

/// Begins the plan of an element.
ElementPlan Named(const wchar_t* name, int type, int parent);

/// Gives an axis one of the usual or unusual ranges, or takes the check away.
void RotaryRange(Draw& draw, ElementPlan* e);

/// Draws the frame of a static element, a head or a table; rarely one that is not rigid.
Reference::Frame FixedFrame(Draw& draw);

/// Draws the elements of a machine with three linear and up to three rotary axes. Parents are
/// places in the list, from 0.
MachinePlan SoundTree(Draw& draw);

}  // namespace Orvo::Property
