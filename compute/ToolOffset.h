#pragma once

#include "compute/KeptLink.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

namespace Orvo::Kin {

/// Returns the frame of the tool point in the head: a translation by minus the offset.
inline Matrix43 HeadFromToolPoint(const Vector3D& offset) {
  Matrix43 headFromToolPoint;
  headFromToolPoint.SetTrans(Vector3D(-offset[0], -offset[1], -offset[2]));
  return headFromToolPoint;
}

inline void SetHeadFromToolPoint(const Vector3D& offset, TypedFrame* headFromToolPoint) {
  double* const m = headFromToolPoint->elements;
  CopyFrame(IdentityFrame, m);
  m[12] = -offset[0];
  m[13] = -offset[1];
  m[14] = -offset[2];
  headFromToolPoint->type = Matrix43::Translation;
}

/// Tells whether an element is an axis that travels.
inline bool IsLinearAxis(const Entity& entity) {
  return entity.GetEntityType() == EntityTypeAxis &&
         entity.GetEntityLink().GetEntityLinkType() == EntityLinkTypeLinear;
}

}  // namespace Orvo::Kin
