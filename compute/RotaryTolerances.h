#pragma once

namespace Orvo::Kin {

inline constexpr double PlanePlaneTolerance = 0.0001;
inline constexpr double TangentInnerTolerance = 1e-7;
inline constexpr double TangentOuterTolerance = 1e-5;
inline constexpr double LinePlaneTolerance = 0.0001;

// A requested direction shorter than this counts as (1, 0, 0).
inline constexpr double SmallestRequest = 0.001;

// Directions that agree this well, by component, are the same.
inline constexpr double SameDirectionTolerance = 1e-5;

// Angles that differ by less are the same, in degrees.
inline constexpr double SameAngleDeg = 0.001;

}  // namespace Orvo::Kin
