#pragma once

#include "geometry/IntersectionCompute.h"

#include <Orvo/Angle.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Vector3D.h>

namespace Orvo::Kin {

// The geometry of turning a tool direction onto a target; no machine. All axes pass through the
// origin and all vectors stand in one frame.

/// Finds the angles of two axes that turn the tool onto the target: first about axis1, then about
/// axis2.
///
/// Turning about axis1 moves the tool's tip on a circle; turning about axis2 keeps the tip in a
/// plane across that axis, and it must end at the target: the circle meets the plane through the
/// target in the tips that the second turn can finish (subproblem 2 of Paden, "Kinematics and
/// Control of Robot Manipulators", 1986).
///
/// @param axis1, axis2  unit directions; axis1 is the one nearer the tool
/// @param tool          the tool direction, of unit length
/// @param target        the requested direction, of any length; below 0.001 it counts as (1, 0, 0)
/// @param register2     register of axis2, stored where its angle is arbitrary
/// @param intersection  its tolerances are set to those of this method, and stay so
/// @param sol           receives count, free register and angles: alpha of axis1, beta of axis2
void SolveTwoRotaries(const Vector3D& axis1, const Vector3D& axis2, const Vector3D& tool,
                      const Vector3D& target, const Register& register2,
                      IntersectionCompute* intersection, RotariesSolution* sol);

/// Finds the angle of one axis that turns the tool onto the target.
///
/// @param axis    unit direction of the axis
/// @param tool    the tool direction, of unit length
/// @param target  the requested direction, used as given
/// @param angle   receives the angle; unchanged without a solution
/// @return the number of solutions, 0 or 1
unsigned int SolveOneRotary(const Vector3D& axis, const Vector3D& tool, const Vector3D& target,
                            Angle* angle);

/// Exchanges the angles of the two axes.
void SwapAlphaBeta(RotariesSolution* sol);

}  // namespace Orvo::Kin
