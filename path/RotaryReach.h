#pragma once

#include "path/ChainModel.h"
#include "path/Vec3.h"

#include <array>
#include <cstddef>

namespace Orvo::Path {

/// Which directions two rotary axes, or one, can give, in closed form.
///
/// The outer axis, the one next to the table, stands still in the table's frame; turning about it
/// keeps the height of the direction above it. The other axis alone decides that height, between
/// two bounds. So each direction within these has two solutions, that meet at the bounds.
class RotaryReach {
 public:
  /// Finds the outer axis from the model's coefficients.
  RotaryReach(const ChainModel& model, const MainAxes& axes);

  /// Tells whether the direction moves as described. With one axis, that is the outer one; where
  /// neither moves the direction, there is none.
  bool IsValid() const { return isValid_; }

  /// The place of the outer axis, 0 or 1.
  std::size_t GetOuter() const { return outer_; }

  /// Tells whether the other axis moves the direction.
  bool HasInner() const { return span_ > 0.0; }

  /// The outer axis in the table's frame, of unit length: a positive angle turns the direction
  /// right-handed about it. It is the singular direction, as is its opposite.
  const Vec3& GetAxis() const { return axis_; }

  /// Returns the angle between a unit direction and the nearer of the two singular ones.
  double SingularAngle(const Vec3& direction) const;

  /// Tells whether the singular direction on the side of a direction can be reached.
  bool ReachesPole(const Vec3& direction) const;

  /// Computes the angles that give a unit direction. An inner axis that does not decide the height
  /// keeps the angle that @p rad has.
  /// @return how many pairs there are: 0, 1 or 2
  int Solve(const ChainModel& model, const Vec3& direction,
            std::array<std::array<double, 2>, 2>* rad) const;

  /// Computes the reachable direction nearest to a unit one.
  Vec3 Nearest(const Vec3& direction) const;

  /// With the outer axis held, computes the angle of the inner one that comes nearest to a unit
  /// direction; the angles hold the held one. False where there is no inner axis.
  bool SolveHeld(const ChainModel& model, const Vec3& direction, std::array<double, 2>* rad) const;

 private:
  bool Fits(const std::array<Vec3, 9>& c, std::size_t outer);

  bool isValid_ = false;
  std::size_t outer_ = 1;
  Vec3 axis_;
  double middle_ = 0.0;       ///< height of the middle of the reach
  double span_ = 0.0;         ///< the heights go from middle - span to middle + span
  double phase_ = 0.0;        ///< the inner angle at the upper bound
  double aboveTop_ = 0.0;     ///< what the upper bound lacks to 1; 0 where the pole is reached
  double belowBottom_ = 0.0;  ///< what the lower bound lacks to -1
};

}  // namespace Orvo::Path
