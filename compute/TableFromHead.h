#pragma once

#include "compute/FrameChains.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Vector3D.h>

#include <cstddef>

namespace Orvo::Kin {

/// The frame from a head to a table, kept from one set of axis values to the next.
class TableFromHead {
 public:
  /// Takes down the links of both. Returns false where one is of no known kind.
  bool Build(const Entity& head, const Entity& table);

  std::size_t RegisterBound() const { return chains_.RegisterBound(); }

  /// Computes the frame with the tool point as origin, as ComputeMcsToToolTcs does, bit for bit.
  /// Returns true, so that a caller who does so as well can end with this call.
  bool Compute(const double* values, const Vector3D& offset, Matrix43* tableFromToolPoint);

 private:
  bool IsRigid() const;
  void Place();
  void PlaceRigid();
  void Move(const Vector3D& offset, Matrix43* tableFromToolPoint) const;
  bool PlaceAndMoveWide(bool isPlaced, const Vector3D& offset, Matrix43* tableFromToolPoint);

  FrameChains chains_;
  bool hasRows_ = false;

  // The frame; where it is rigid, as nearly always, it is moved by the offset alone.
  bool isRigid_ = false;
  alignas(32) TypedFrame tableFromHead_{};
};

}  // namespace Orvo::Kin
