#pragma once

namespace Orvo::Kin {

/// The length, in the caller's unit, from which a link's direction is scaled to a unit vector; a
/// shorter one becomes the X axis.
inline constexpr double SmallestLinkDirection = 0.001;

}  // namespace Orvo::Kin
