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

/// The directions of a frame in registers.
struct Directions {
  Lanes u;
  Lanes v;
  Lanes w;
};

/// Returns U * x + (V * y + W * z), all four rows.
inline Lanes CombineColumns(const Directions& m, double x, double y, double z) {
  return Add(Scale(m.u, x), Add(Scale(m.v, y), Scale(m.w, z)));
}

inline Directions LoadDirections(const double* m) {
  return {LoadLanes(m), LoadLanes(m + 4), LoadLanes(m + 8)};
}

/// Returns U * x + (V * y + W * z), all four rows.
inline Lanes CombineColumns(const double* m, double x, double y, double z) {
  return CombineColumns(LoadDirections(m), x, y, z);
}

/// Returns (U * x + (V * y + W * z)) + T, all four rows.
inline Lanes ImageOfPoint(const double* m, double x, double y, double z) {
  return Add(CombineColumns(m, x, y, z), LoadLanes(m + 12));
}

/// Returns the directions of the product of two frames.
inline Directions ImageOfDirections(const Directions& a, const double* b) {
  return {CombineColumns(a, b[0], b[1], b[2]), CombineColumns(a, b[4], b[5], b[6]),
          CombineColumns(a, b[8], b[9], b[10])};
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

/// How the product of two frames is formed, by their kinds.
enum class ProductRule : unsigned char {
  Left,         ///< a copy of the left factor
  Right,        ///< a copy of the right factor
  Turn,         ///< products of the directions; no origin
  RightTurned,  ///< the directions of the right factor, the origin of the left one
  RightMoved,   ///< the directions of the right factor, the sum of the origins
  LeftMoved,    ///< the directions of the left factor, the image of the right one's origin
  Affine,       ///< products of the directions, the image of the right factor's origin
  Projective,   ///< the product of two 4x4 matrices

  // Affine with factors of which more is known than their kinds; each may be computed as Affine.
  // Turns come last.
  Shifted,  ///< both factors have exact unit axes
  TurnedX,  ///< one factor is a turn about X, Y or Z, exact but for its origin
  TurnedY,
  TurnedZ
};

/// A rule, and the kind of the product.
struct ProductKind {
  ProductRule rule;
  Matrix43::Type type;
};

constexpr ProductKind KindOfProduct(Matrix43::Type a, Matrix43::Type b) {
  if (a == Matrix43::Identity) {
    return {ProductRule::Right, b};
  }
  if (b == Matrix43::Identity) {
    return {ProductRule::Left, a};
  }
  if (a == Matrix43::Projective || b == Matrix43::Projective) {
    return {ProductRule::Projective, Matrix43::Projective};
  }
  if (a == Matrix43::General || b == Matrix43::General) {
    return {ProductRule::Affine, Matrix43::General};
  }
  if (a == Matrix43::Rotation && b == Matrix43::Rotation) {
    return {ProductRule::Turn, Matrix43::Rotation};
  }
  if (a == Matrix43::Translation && b != Matrix43::Translation) {
    return {b == Matrix43::Rotation ? ProductRule::RightTurned : ProductRule::RightMoved,
            Matrix43::RotationTranslation};
  }
  return {a != Matrix43::Translation && b == Matrix43::Translation ? ProductRule::LeftMoved
                                                                   : ProductRule::Affine,
          Matrix43::RotationTranslation};
}

/// KindOfProduct() of all pairs, left kind first.
struct ProductKinds {
  ProductKind kinds[Matrix43::Projective + 1][Matrix43::Projective + 1];
};

inline constexpr ProductKinds KindsOfProducts = [] {
  ProductKinds table{};
  for (int a = Matrix43::General; a <= Matrix43::Projective; ++a) {
    for (int b = Matrix43::General; b <= Matrix43::Projective; ++b) {
      table.kinds[a][b] =
          KindOfProduct(static_cast<Matrix43::Type>(a), static_cast<Matrix43::Type>(b));
    }
  }
  return table;
}();

/// Writes the product of two frames by the rule for their kinds. The product must not be one of the
/// factors.
inline void MultiplyFrames(ProductRule rule, const double* a, const double* b, double* product) {
  // Everything is loaded before anything is stored, or the compiler would load it again.
  const auto store = [product](const Directions& directions, const Lanes& origin) {
    StoreLanes(product, WithW(directions.u, 0.0));
    StoreLanes(product + 4, WithW(directions.v, 0.0));
    StoreLanes(product + 8, WithW(directions.w, 0.0));
    StoreLanes(product + 12, WithW(origin, 1.0));
  };
  switch (rule) {
    case ProductRule::Left:
      CopyFrame(a, product);
      break;
    case ProductRule::Right:
      CopyFrame(b, product);
      break;
    case ProductRule::Turn:
      store(ImageOfDirections(LoadDirections(a), b), LoadLanes(IdentityFrame + 12));
      break;
    case ProductRule::RightTurned:
      store(LoadDirections(b), LoadLanes(a + 12));
      break;
    case ProductRule::RightMoved:
      store(LoadDirections(b), Add(LoadLanes(a + 12), LoadLanes(b + 12)));
      break;
    case ProductRule::LeftMoved: {
      const Directions left = LoadDirections(a);
      store(left, Add(CombineColumns(left, b[12], b[13], b[14]), LoadLanes(a + 12)));
      break;
    }
    case ProductRule::Affine:
    case ProductRule::Shifted:
    case ProductRule::TurnedX:
    case ProductRule::TurnedY:
    case ProductRule::TurnedZ: {
      const Directions left = LoadDirections(a);
      store(ImageOfDirections(left, b),
            Add(CombineColumns(left, b[12], b[13], b[14]), LoadLanes(a + 12)));
      break;
    }
    case ProductRule::Projective:
      MultiplyProjective(a, b, product);
      break;
  }
}

/// Writes the product of two frames of the given kinds, and returns its kind. The product must not
/// be one of the factors.
inline Matrix43::Type MultiplyFrames(const double* a, Matrix43::Type aType, const double* b,
                                     Matrix43::Type bType, double* product) {
  const ProductKind kind = KindsOfProducts.kinds[aType][bType];
  MultiplyFrames(kind.rule, a, b, product);
  return kind.type;
}

/// Returns the image of a direction under a frame of a kind other than Projective.
inline Lanes ApplyFrameToDirection(const double* m, Matrix43::Type type, const double* v) {
  return type == Matrix43::Identity || type == Matrix43::Translation
             ? WithW(LoadLanes(v), 0.0)
             : WithW(CombineColumns(m, v[0], v[1], v[2]), 0.0);
}

/// Returns the transposed x, y, z of directions, with the fourth row 0.
inline Directions Transpose(const Directions& m) {
  const __m128d zero = _mm_setzero_pd();
  return {{_mm_unpacklo_pd(m.u.xy, m.v.xy), _mm_unpacklo_pd(m.w.xy, zero)},
          {_mm_unpackhi_pd(m.u.xy, m.v.xy), _mm_unpackhi_pd(m.w.xy, zero)},
          {_mm_unpacklo_pd(m.u.zw, m.v.zw), _mm_unpacklo_pd(m.w.zw, zero)}};
}

/// Writes the inverse of a frame by transposed directions; its kind is the same.
inline void InvertRigid(const double* m, Matrix43::Type type, double* inverse) {
  const bool isTurned = type == Matrix43::General || type == Matrix43::Rotation ||
                        type == Matrix43::RotationTranslation;
  const Directions directions =
      isTurned ? Transpose(LoadDirections(m)) : LoadDirections(IdentityFrame);
  const Lanes zero = LoadLanes(IdentityFrame + 12);
  Lanes origin = zero;
  if (type == Matrix43::General || type == Matrix43::RotationTranslation) {
    origin = Negative(Add(CombineColumns(directions, m[12], m[13], m[14]), zero));
  } else if (type == Matrix43::Translation) {
    origin = Negative(Add(LoadLanes(m + 12), zero));
  }
  StoreLanes(inverse, directions.u);
  StoreLanes(inverse + 4, directions.v);
  StoreLanes(inverse + 8, directions.w);
  StoreLanes(inverse + 12, WithW(origin, 1.0));
}

}  // namespace Orvo
