#pragma once

#include "compute/AxisChain.h"
#include "compute/FrameChains.h"

#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Vector3D.h>

#include <cstddef>

namespace Orvo::Kin {

/// The frame that carries points of the table into values of three linear axes, kept from one set
/// of axis values to the next. Bit for bit what the calculator computes from the links.
class LinearPlacement {
 public:
  /// Takes down the chain from table to head. Returns false where a link is of no known kind, and
  /// where the axes of the registers are not what a solution needs.
  bool Build(const AxisChain& chain, const Kinematic& kinematic, const Register registers[3]);

  std::size_t RegisterBound() const { return chains_.RegisterBound(); }

  /// Computes the values of the three axes that bring the tool point to a point of the table.
  /// Returns true, so that a caller who does so as well can end with this call.
  bool Compute(const double* values, const Vector3D& offset, const Vector3D& point, Vector3D* xyz);

 private:
  struct Axis {
    double sideSign = 0.0;
    Vector3D dir;
    Vector3D dirInWorld;  // reversed on the table's side
  };

  void PlaceToolPoint(const Vector3D& offset);
  void TurnAxes();
  void PlaceTable();
  void PlaceTableWide();

  FrameChains chains_;
  bool hasRows_ = false;
  Axis axes_[3];

  Vector3D offset_;  // that the frame is computed for
  TypedFrame worldFromToolPoint_{};
  bool isPlaced_ = false;
  alignas(32) double axisValuesFromTable_[16] = {};
};

}  // namespace Orvo::Kin
