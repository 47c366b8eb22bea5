#pragma once

#include "geometry/Lanes.h"

#include <Orvo/Matrix43.h>

namespace Orvo {

/// Reaches the elements and the cached kind of a frame.
struct FrameAccess {
  static const double* Elements(const Matrix43& frame) { return frame.elements_; }
  static Matrix43::Type Type(const Matrix43& frame) { return frame.type_; }
};

// The formulas of frames, each written once. A frame comes as its 16 doubles, aligned to 16 bytes;
// its columns U, V, W, T start at 0, 4, 8 and 12.

/// Returns U * x + (V * y + W * z), all four rows.
inline Lanes CombineColumns(const double* m, double x, double y, double z) {
  return Add(Scale(LoadLanes(m), x), Add(Scale(LoadLanes(m + 4), y), Scale(LoadLanes(m + 8), z)));
}

/// Returns (U * x + (V * y + W * z)) + T, all four rows.
inline Lanes ImageOfPoint(const double* m, double x, double y, double z) {
  return Add(CombineColumns(m, x, y, z), LoadLanes(m + 12));
}

/// Writes the directions of the product of two frames with the fourth row 0.
inline void MultiplyDirections(const double* a, const double* b, double* product) {
  for (int column = 0; column < 12; column += 4) {
    const Lanes image = CombineColumns(a, b[column], b[column + 1], b[column + 2]);
    StoreLanes(product + column, WithW(image, 0.0));
  }
}

/// Copies the directions of a frame with the fourth row 0.
inline void CopyDirections(const double* m, double* copy) {
  for (int column = 0; column < 12; column += 4) {
    StoreLanes(copy + column, WithW(LoadLanes(m + column), 0.0));
  }
}

/// Writes the product of two 4x4 matrices.
inline void MultiplyProjective(const double* a, const double* b, double* product) {
  for (int column = 0; column < 16; column += 4) {
    const Lanes first3 = CombineColumns(a, b[column], b[column + 1], b[column + 2]);
    StoreLanes(product + column, Add(first3, Scale(LoadLanes(a + 12), b[column + 3])));
  }
}

}  // namespace Orvo
