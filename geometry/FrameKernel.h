#pragma once

#include "geometry/Lanes.h"

#include <Orvo/Matrix43.h>

namespace Orvo {

/// Reaches the elements and the cached kind of a frame.
struct FrameAccess {
  static const double* Elements(const Matrix43& frame) { return frame.elements_; }
  static double* Elements(Matrix43* frame) { return frame->elements_; }
  static Matrix43::Type Type(const Matrix43& frame) { return frame.type_; }
  static void SetType(Matrix43* frame, Matrix43::Type type) { frame->type_ = type; }
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

/// Copies a frame.
inline void CopyFrame(const double* m, double* copy) {
  for (int column = 0; column < 16; column += 4) {
    StoreLanes(copy + column, LoadLanes(m + column));
  }
}

/// Writes the product of two frames of the given kinds, and returns its kind. The product must not
/// be one of the factors.
inline Matrix43::Type MultiplyFrames(const double* a, Matrix43::Type aType, const double* b,
                                     Matrix43::Type bType, double* product) {
  if (aType == Matrix43::Identity) {
    CopyFrame(b, product);
    return bType;
  }
  if (bType == Matrix43::Identity) {
    CopyFrame(a, product);
    return aType;
  }
  if (aType == Matrix43::Projective || bType == Matrix43::Projective) {
    MultiplyProjective(a, b, product);
    return Matrix43::Projective;
  }
  if (aType == Matrix43::Rotation && bType == Matrix43::Rotation) {
    MultiplyDirections(a, b, product);
    StoreLanes(product + 12, LoadLanes(IdentityFrame + 12));
    return Matrix43::Rotation;
  }
  const Matrix43::Type type = aType == Matrix43::General || bType == Matrix43::General
                                  ? Matrix43::General
                                  : Matrix43::RotationTranslation;
  if (aType == Matrix43::Translation && bType == Matrix43::Rotation) {
    CopyDirections(b, product);
    StoreLanes(product + 12, WithW(LoadLanes(a + 12), 1.0));
    return type;
  }
  if (aType == Matrix43::Translation && bType == Matrix43::RotationTranslation) {
    CopyDirections(b, product);
    StoreLanes(product + 12, WithW(Add(LoadLanes(a + 12), LoadLanes(b + 12)), 1.0));
    return type;
  }
  if ((aType == Matrix43::Rotation || aType == Matrix43::RotationTranslation) &&
      bType == Matrix43::Translation) {
    CopyDirections(a, product);
  } else {
    MultiplyDirections(a, b, product);
  }
  StoreLanes(product + 12, WithW(ImageOfPoint(a, b[12], b[13], b[14]), 1.0));
  return type;
}

/// Returns the image of a point, x, y, z with w 0, under a frame of a kind other than Projective.
inline Lanes ApplyFrameToPoint(const double* m, Matrix43::Type type, const double* p) {
  switch (type) {
    case Matrix43::Identity:
      return WithW(LoadLanes(p), 0.0);
    case Matrix43::Rotation:
      return WithW(CombineColumns(m, p[0], p[1], p[2]), 0.0);
    case Matrix43::Translation:
      return WithW(Add(LoadLanes(p), LoadLanes(m + 12)), 0.0);
    default:
      return WithW(ImageOfPoint(m, p[0], p[1], p[2]), 0.0);
  }
}

/// Returns the image of a direction under a frame of a kind other than Projective.
inline Lanes ApplyFrameToDirection(const double* m, Matrix43::Type type, const double* v) {
  return type == Matrix43::Identity || type == Matrix43::Translation
             ? WithW(LoadLanes(v), 0.0)
             : WithW(CombineColumns(m, v[0], v[1], v[2]), 0.0);
}

/// Writes the inverse of a frame by transposed directions; its kind is the same.
inline void InvertRigid(const double* m, Matrix43::Type type, double* inverse) {
  CopyFrame(IdentityFrame, inverse);
  if (type == Matrix43::General || type == Matrix43::Rotation ||
      type == Matrix43::RotationTranslation) {
    for (int i = 0; i < 3; ++i) {
      inverse[4 * i] = m[i];
      inverse[4 * i + 1] = m[4 + i];
      inverse[4 * i + 2] = m[8 + i];
    }
  }
  if (type == Matrix43::Identity || type == Matrix43::Rotation || type == Matrix43::Projective) {
    return;
  }
  alignas(16) double origin[4];
  StoreLanes(origin, ApplyFrameToPoint(inverse, type, m + 12));
  inverse[12] = -origin[0];
  inverse[13] = -origin[1];
  inverse[14] = -origin[2];
}

}  // namespace Orvo
