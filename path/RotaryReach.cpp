#include "path/RotaryReach.h"

#include <algorithm>
#include <cmath>

namespace Orvo::Path {
namespace {

constexpr double Tolerance = 1e-9;

/// A bound this near to a pole is the pole: rounding lies between.
constexpr double SameHeight = 1e-14;

/// The coefficient of a basis function of the inner axis and one of the outer axis.
const Vec3& At(const std::array<Vec3, 9>& c, std::size_t outer, std::size_t inner,
               std::size_t basisOfOuter) {
  return outer == 1 ? c[3 * inner + basisOfOuter] : c[3 * basisOfOuter + inner];
}

}  // namespace

RotaryReach::RotaryReach(const ChainModel& model, const MainAxes& axes) {
  const std::array<Vec3, 9>& c = model.GetDirectionCoefficients();
  const bool hasFirst = axes.axes[FirstRotary].isPresent;
  const bool hasSecond = axes.axes[FirstRotary + 1].isPresent;
  isValid_ = model.IsValid() && ((hasSecond && Fits(c, 1)) || (hasFirst && Fits(c, 0)));
}

bool RotaryReach::Fits(const std::array<Vec3, 9>& c, std::size_t outer) {
  outer_ = outer;
  // What turns about the outer axis comes as a vector times its cosine and another one, at a right
  // angle in that plane, times its sine.
  Vec3 normal;
  for (std::size_t i = 0; i < 3; ++i) {
    normal = normal + Cross(At(c, outer, i, 1), At(c, outer, i, 2));
  }
  if (!(Norm(normal) > Tolerance)) {
    return false;
  }
  axis_ = Unit(normal);
  double heights[3];
  for (std::size_t i = 0; i < 3; ++i) {
    const Vec3& still = At(c, outer, i, 0);
    heights[i] = Dot(still, axis_);
    if (!(Norm(still - axis_ * heights[i]) < Tolerance &&
          std::abs(Dot(At(c, outer, i, 1), axis_)) < Tolerance &&
          Norm(At(c, outer, i, 2) - Cross(axis_, At(c, outer, i, 1))) < Tolerance)) {
      return false;
    }
  }
  middle_ = heights[0];
  span_ = std::hypot(heights[1], heights[2]);
  span_ = span_ > Tolerance ? span_ : 0.0;
  phase_ = std::atan2(heights[2], heights[1]);
  const auto snap = [](double gap) { return std::abs(gap) < SameHeight ? 0.0 : gap; };
  aboveTop_ = snap(1.0 - (middle_ + span_));
  belowBottom_ = snap(1.0 + (middle_ - span_));
  return true;
}

double RotaryReach::SingularAngle(const Vec3& direction) const {
  return std::atan2(Norm(Cross(axis_, direction)), std::abs(Dot(axis_, direction)));
}

bool RotaryReach::ReachesPole(const Vec3& direction) const {
  return Dot(axis_, direction) >= 0.0 ? middle_ + span_ >= 1.0 - Tolerance
                                      : middle_ - span_ <= Tolerance - 1.0;
}

int RotaryReach::Solve(const ChainModel& model, const Vec3& direction,
                       std::array<std::array<double, 2>, 2>* rad) const {
  const double height = Dot(axis_, direction);
  const std::size_t inner = 1 - outer_;
  double turn = 0.0;
  if (span_ > 0.0) {
    // Near a pole the height says little of the angle, but the distance from the axis does.
    const Vec3 across = Cross(axis_, direction);
    const double side = Dot(across, across);
    const double toTop = height > 0.0 ? side / (1.0 + height) : 1.0 - height;
    const double toBottom = height < 0.0 ? side / (1.0 - height) : 1.0 + height;
    // The halves of 1 - cos and 1 + cos of the turn from the upper bound.
    const double up = (toTop - aboveTop_) / (2.0 * span_);
    const double down = (toBottom - belowBottom_) / (2.0 * span_);
    if (up < -Tolerance || down < -Tolerance) {
      return 0;
    }
    turn = 2.0 * std::atan2(std::sqrt(std::max(0.0, up)), std::sqrt(std::max(0.0, down)));
  } else if (std::abs(height - middle_) > Tolerance) {
    return 0;
  }
  const int count = turn > 0.0 && turn < Pi ? 2 : 1;
  for (int i = 0; i < count; ++i) {
    std::array<double, 2>& angles = (*rad)[static_cast<std::size_t>(i)];
    angles[outer_] = 0.0;
    if (span_ > 0.0) {
      angles[inner] = std::remainder(phase_ + (i == 0 ? turn : -turn), 2.0 * Pi);
    }
    // What lies across the axis, of both: beside a pole that is little, but has all its digits.
    const Vec3 from = model.Direction(ChainModel::MakeTrig(angles));
    const Vec3 fromAcross = from - axis_ * Dot(axis_, from);
    const Vec3 toAcross = direction - axis_ * height;
    angles[outer_] = std::atan2(Dot(axis_, Cross(fromAcross, toAcross)), Dot(fromAcross, toAcross));
  }
  return count;
}

Vec3 RotaryReach::Nearest(const Vec3& direction) const {
  const double height = Dot(axis_, direction);
  const double reached =
      std::clamp(std::clamp(height, middle_ - span_, middle_ + span_), -1.0, 1.0);
  Vec3 across = direction - axis_ * height;
  if (!(Norm(across) > Tolerance)) {
    // Along the axis all directions around it are as near.
    across = Cross(axis_, std::abs(axis_.x) < 0.5 ? Vec3{1.0, 0.0, 0.0} : Vec3{0.0, 1.0, 0.0});
  }
  return axis_ * reached + Unit(across) * std::sqrt(std::max(0.0, 1.0 - reached * reached));
}

bool RotaryReach::SolveHeld(const ChainModel& model, const Vec3& direction,
                            std::array<double, 2>* rad) const {
  if (!HasInner()) {
    return false;
  }
  const std::size_t inner = 1 - outer_;
  std::array<double, 2> angles = *rad;
  angles[inner] = 0.0;
  const ChainModel::Trig trig = ChainModel::MakeTrig(angles);
  const std::array<Vec3, 9>& c = model.GetDirectionCoefficients();
  double along[2] = {0.0, 0.0};
  for (std::size_t k = 0; k < 3; ++k) {
    along[0] += Dot(At(c, outer_, 1, k), direction) * trig.u[outer_][k];
    along[1] += Dot(At(c, outer_, 2, k), direction) * trig.u[outer_][k];
  }
  (*rad)[inner] = std::atan2(along[1], along[0]);
  return true;
}

}  // namespace Orvo::Path
