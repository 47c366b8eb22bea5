#pragma once

#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

namespace Orvo::Kin {

/// Returns the frame of the tool point in the head: a translation by minus the offset.
inline Matrix43 HeadFromToolPoint(const Vector3D& offset) {
  Matrix43 headFromToolPoint;
  headFromToolPoint.SetTrans(Vector3D(-offset[0], -offset[1], -offset[2]));
  return headFromToolPoint;
}

}  // namespace Orvo::Kin
