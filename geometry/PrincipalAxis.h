#pragma once

#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

namespace Orvo {

/// X, Y or Z, and whether an axis points against it.
struct PrincipalAxis {
  DirectionSign sign;
  Direction direction;
  bool isReversed;
};

/// Returns the principal axis that a direction is, within 0.00001 by component; null for others.
const PrincipalAxis* FindPrincipalAxis(const Vector3D& dir);

/// Writes the directions of a turn about a principal axis, x, y and z of each.
inline void SetPrincipalTurn(Direction direction, double s, double c, double* m) {
  const auto setColumn = [m](int column, double x, double y, double z) {
    m[4 * column] = x;
    m[4 * column + 1] = y;
    m[4 * column + 2] = z;
  };
  if (direction == X) {
    setColumn(0, 1.0, 0.0, 0.0);
    setColumn(1, 0.0, c, s);
    setColumn(2, 0.0, -s, c);
  } else if (direction == Y) {
    setColumn(0, c, 0.0, -s);
    setColumn(1, 0.0, 1.0, 0.0);
    setColumn(2, s, 0.0, c);
  } else {
    setColumn(0, c, s, 0.0);
    setColumn(1, -s, c, 0.0);
    setColumn(2, 0.0, 0.0, 1.0);
  }
}

}  // namespace Orvo
