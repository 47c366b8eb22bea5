#pragma once

#include "path/Vec3.h"

#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Path/MainAxes.h>
#include <Orvo/Vector3D.h>

#include <array>
#include <cstddef>

namespace Orvo::Path {

/// How tip and tool direction, in the table's frame, depend on the main axes of a program system.
///
/// A turn is linear in 1, cos and sin of its angle, so whatever a chain with two rotary axes makes
/// of a point or a direction is bilinear in these; linear axes add their values times a direction
/// of the same kind. The coefficients are sampled from forward kinematics and checked against it at
/// other positions: where some axis counts twice, the model doesn't hold and says so.
class ChainModel {
 public:
  /// The sines and cosines that everything is made of: (1, cos, sin) for each rotary axis.
  struct Trig {
    std::array<std::array<double, 3>, 2> u;
  };

  /// Samples the chain at a position, whose other axes stay where they are.
  ChainModel(const Kin::MachineCompute& compute, const Kin::ProgramSystem& programSystem,
             const MainAxes& axes, const Kin::MachinePosition& position, const Vector3D& offset);

  /// Tells whether forward kinematics agrees with the model.
  bool IsValid() const { return isValid_; }

  static Trig MakeTrig(const std::array<double, 2>& rad);

  /// Returns the tool direction; of unit length where the machine is made of rigid frames.
  Vec3 Direction(const Trig& trig) const {
    return Sum(coefficients_[DirectionRow], trig.u[0], trig.u[1]);
  }

  /// Returns its derivative by the angle of a rotary axis.
  Vec3 DirectionDerivative(const Trig& trig, std::size_t axis) const;

  /// Returns the tip for linear values of 0.
  Vec3 TipAtZero(const Trig& trig) const {
    return Sum(coefficients_[TipRow], trig.u[0], trig.u[1]);
  }

  /// Returns how the tip moves with a linear axis.
  Vec3 LinearDirection(const Trig& trig, std::size_t axis) const {
    return Sum(coefficients_[LinearRow + axis], trig.u[0], trig.u[1]);
  }

  /// Solves for the linear values that bring the tip to a point, whatever the angles between the
  /// axes. False where their directions lie in a plane.
  bool SolveLinear(const Trig& trig, const Vec3& point, double* values) const;

  /// The bilinear coefficients of the direction: by basis function of the first axis, then of the
  /// second.
  const std::array<Vec3, 9>& GetDirectionCoefficients() const {
    return coefficients_[DirectionRow];
  }

 private:
  static constexpr std::size_t DirectionRow = 0;
  static constexpr std::size_t TipRow = 1;
  static constexpr std::size_t LinearRow = 2;
  static constexpr std::size_t RowNb = 5;

  static Vec3 Sum(const std::array<Vec3, 9>& c, const std::array<double, 3>& a,
                  const std::array<double, 3>& b);

  std::array<std::array<Vec3, 9>, RowNb> coefficients_;
  bool isValid_ = false;
};

}  // namespace Orvo::Path
