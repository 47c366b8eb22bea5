#include "geometry/Circle3D.h"

namespace Orvo {

Matrix43 Circle3D::GetFrame() const {
  Matrix43 frame;
  frame.MakeAxisW(Axis);
  frame.SetTrans(Center);
  return frame;
}

}  // namespace Orvo
