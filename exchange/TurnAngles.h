#pragma once

#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <array>

namespace Orvo::Exchange {

/// Returns the rotation nearest to a frame that is nearly one: its three columns, one after the
/// other.
std::array<double, 9> NearestRotation(const Matrix43& frame);

/// Returns roll, pitch and yaw of a rotation, in radians: Rz(yaw) * Ry(pitch) * Rx(roll). At a
/// pitch of a right angle, where yaw and roll turn about the same axis, they still make up the
/// rotation.
std::array<double, 3> RollPitchYaw(const std::array<double, 9>& rotation);

/// Returns the unit quaternion (x, y, z, w) of a turn. Growing angles give quaternions that change
/// steadily: no sign flips.
std::array<double, 4> TurnQuaternion(const Vector3D& unitAxis, double angleDeg);

}  // namespace Orvo::Exchange
