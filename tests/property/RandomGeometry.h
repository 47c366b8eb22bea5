#pragma once

#include "property/Draw.h"
#include "property/reference/Frame.h"
#include "property/reference/Vector.h"

namespace Orvo::Property {

/// Draws any double: ordinary, huge, tiny, next to a threshold, -0.0, infinite, NaN.
double AnyNumber(Draw& draw);

/// Draws an ordinary length, often a round one.
double Coordinate(Draw& draw);

/// Draws an angle in degrees, often a round one, up to two turns.
double AngleDeg(Draw& draw);

/// Draws three ordinary coordinates, sometimes with a fourth component.
Reference::Vector Point(Draw& draw);

/// Draws a direction of unit length: principal, oblique in a plane, or any.
Reference::Vector UnitDirection(Draw& draw);

/// Draws a direction as a caller may hand it over: of any length, null, next to an axis.
Reference::Vector AnyDirection(Draw& draw);

/// Draws four components, each any double.
Reference::Vector AnyVector(Draw& draw);

/// Draws a right-handed orthonormal frame with an origin.
Reference::Frame RigidFrame(Draw& draw);

/// Draws a frame of any kind as the setters and loads make them.
Reference::Frame MadeFrame(Draw& draw);

/// Draws a frame of any kind with any values.
Reference::Frame AnyFrame(Draw& draw);

/// Turns a direction about an axis, in degrees.
Reference::Vector Turned(const Reference::Vector& v, const Reference::Vector& axis, double degrees);

}  // namespace Orvo::Property
