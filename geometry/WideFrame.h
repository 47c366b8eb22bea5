#pragma once

#include "geometry/FrameKernel.h"

// The product of two frames with a whole column to a register, for processors that have such. What
// is marked ORVO_WIDE may only be called where HasWideLanes(). Without fused multiply-add, so that
// all bits are those of FrameKernel.h.

// Not on Windows, where g++ may put such registers on the stack unaligned.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(_WIN32)
#define ORVO_WIDE __attribute__((target("avx")))
// Always in the caller, however much the compiler optimizes: between functions, frames go by
// memory.
#define ORVO_WIDE_INLINE __attribute__((target("avx"), always_inline)) inline
#include <immintrin.h>
#endif

namespace Orvo {

#ifdef ORVO_WIDE

inline bool HasWideLanes() { return __builtin_cpu_supports("avx") != 0; }

/// A frame in registers, a column to each.
struct WideFrame {
  __m256d u;
  __m256d v;
  __m256d w;
  __m256d t;
};

/// Three rows or three columns.
struct WideTriple {
  __m256d x;
  __m256d y;
  __m256d z;
};

ORVO_WIDE_INLINE WideFrame LoadWide(const double* m) {
  return {_mm256_loadu_pd(m), _mm256_loadu_pd(m + 4), _mm256_loadu_pd(m + 8),
          _mm256_loadu_pd(m + 12)};
}

ORVO_WIDE_INLINE void StoreWide(const WideFrame& frame, double* m) {
  _mm256_storeu_pd(m, frame.u);
  _mm256_storeu_pd(m + 4, frame.v);
  _mm256_storeu_pd(m + 8, frame.w);
  _mm256_storeu_pd(m + 12, frame.t);
}

/// Loads a column that was stored in halves: a processor is slow to load it whole soon afterwards.
ORVO_WIDE_INLINE __m256d LoadHalves(const double* column) {
  return _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_load_pd(column)), _mm_load_pd(column + 2),
                              1);
}

ORVO_WIDE_INLINE __m256d NegativeWide(const __m256d& a) {
  return _mm256_xor_pd(a, _mm256_set1_pd(-0.0));
}

/// Returns three columns that are transposed, with the fourth row 0.
ORVO_WIDE_INLINE WideTriple TransposeWide(const WideTriple& m) {
  const __m256d zero = _mm256_setzero_pd();
  const __m256d xzOfXy = _mm256_unpacklo_pd(m.x, m.y);
  const __m256d xzOfZ = _mm256_unpacklo_pd(m.z, zero);
  return {_mm256_permute2f128_pd(xzOfXy, xzOfZ, 0x20),
          _mm256_permute2f128_pd(_mm256_unpackhi_pd(m.x, m.y), _mm256_unpackhi_pd(m.z, zero), 0x20),
          _mm256_permute2f128_pd(xzOfXy, xzOfZ, 0x31)};
}

/// Returns X * p[0] + (Y * p[1] + Z * p[2]).
ORVO_WIDE_INLINE __m256d CombineColumns(const WideTriple& columns, const double* p) {
  return columns.x * _mm256_broadcast_sd(p) +
         (columns.y * _mm256_broadcast_sd(p + 1) + columns.z * _mm256_broadcast_sd(p + 2));
}

ORVO_WIDE_INLINE __m256d CombineColumns(const WideFrame& m, const double* p) {
  return CombineColumns(WideTriple{m.u, m.v, m.w}, p);
}

/// Returns CombineColumns() of (1, 0, 0), (0, 1, 0) and (0, 0, 1).
ORVO_WIDE_INLINE WideTriple ImagesOfUnitAxes(const WideTriple& m) {
  const __m256d zero = _mm256_setzero_pd();
  const WideTriple none = {m.x * zero, m.y * zero, m.z * zero};
  return {m.x + (none.y + none.z), none.x + (m.y + none.z), none.x + (none.y + m.z)};
}

/// The same x, y, z with the fourth row of a direction, 0, or of an origin, 1.
ORVO_WIDE_INLINE __m256d AsDirection(const __m256d& a) {
  return _mm256_blend_pd(a, _mm256_setzero_pd(), 0b1000);
}
ORVO_WIDE_INLINE __m256d AsOrigin(const __m256d& a) {
  return _mm256_blend_pd(a, _mm256_set1_pd(1.0), 0b1000);
}

/// Returns the product of a turn about X, by its cosine and sine, and the matrix of some rows: the
/// sums of all products in their order, those with 0 for the signs of zeros and for what is not
/// finite.
ORVO_WIDE_INLINE WideTriple TurnWideX(double cosine, double sine, const WideTriple& b) {
  const __m256d c = _mm256_set1_pd(cosine);
  const __m256d s = _mm256_set1_pd(sine);
  const __m256d zero = _mm256_setzero_pd();
  const __m256d noX = zero * b.x;
  return {b.x + (zero * b.y + zero * b.z), noX + (c * b.y - s * b.z), noX + (s * b.y + c * b.z)};
}

/// The same for a turn about Y.
ORVO_WIDE_INLINE WideTriple TurnWideY(double cosine, double sine, const WideTriple& b) {
  const __m256d c = _mm256_set1_pd(cosine);
  const __m256d s = _mm256_set1_pd(sine);
  const __m256d zero = _mm256_setzero_pd();
  const __m256d noY = zero * b.y;
  return {c * b.x + (noY + s * b.z), zero * b.x + (b.y + zero * b.z), (noY + c * b.z) - s * b.x};
}

/// The same for a turn about Z.
ORVO_WIDE_INLINE WideTriple TurnWideZ(double cosine, double sine, const WideTriple& b) {
  const __m256d c = _mm256_set1_pd(cosine);
  const __m256d s = _mm256_set1_pd(sine);
  const __m256d zero = _mm256_setzero_pd();
  const __m256d noZ = zero * b.z;
  return {c * b.x + (noZ - s * b.y), s * b.x + (c * b.y + noZ), zero * b.x + (zero * b.y + b.z)};
}

/// Returns a frame with the fourth row (0, 0, 0, 1).
ORVO_WIDE_INLINE WideFrame JoinColumns(const WideTriple& directions, const __m256d& origin) {
  return {AsDirection(directions.x), AsDirection(directions.y), AsDirection(directions.z),
          AsOrigin(origin)};
}

/// Returns the product of two frames as MultiplyFrames() does. The fourth row of both is exactly
/// (0, 0, 0, 1). Frequent rules come first: a jump by a table costs more than the sums.
ORVO_WIDE_INLINE WideFrame MultiplyFrameWide(ProductRule rule, const WideFrame& a,
                                             const double* b) {
  if (rule == ProductRule::LeftMoved) {
    return {a.u, a.v, a.w, AsOrigin(CombineColumns(a, b + 12) + a.t)};
  }
  if (rule >= ProductRule::TurnedX) {
    // Columns turn as rows do by the opposite angle, whose sine stands where -sin does.
    const WideTriple columns = {a.u, a.v, a.w};
    return JoinColumns(rule == ProductRule::TurnedX   ? TurnWideX(b[5], b[9], columns)
                       : rule == ProductRule::TurnedY ? TurnWideY(b[0], b[2], columns)
                                                      : TurnWideZ(b[0], b[4], columns),
                       CombineColumns(a, b + 12) + a.t);
  }
  if (rule == ProductRule::Affine || rule == ProductRule::Shifted || rule == ProductRule::Turn) {
    return JoinColumns(
        {CombineColumns(a, b), CombineColumns(a, b + 4), CombineColumns(a, b + 8)},
        rule == ProductRule::Turn ? _mm256_setzero_pd() : CombineColumns(a, b + 12) + a.t);
  }
  if (rule == ProductRule::Left) {
    return a;
  }
  const WideFrame right = {LoadHalves(b), LoadHalves(b + 4), LoadHalves(b + 8), LoadHalves(b + 12)};
  return rule == ProductRule::RightMoved
             ? WideFrame{right.u, right.v, right.w, AsOrigin(a.t + right.t)}
         : rule == ProductRule::RightTurned ? WideFrame{right.u, right.v, right.w, a.t}
                                            : right;
}

#else

inline bool HasWideLanes() { return false; }

#endif

}  // namespace Orvo
