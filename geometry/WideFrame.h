#pragma once

#include "geometry/FrameKernel.h"

// The product of two frames with a whole column to a register, for processors that have such. What
// is marked ORVO_WIDE may only be called where HasWideLanes(). Without fused multiply-add, so that
// all bits are those of FrameKernel.h.

// Not on Windows, where g++ may put such registers on the stack unaligned.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(_WIN32)
#define ORVO_WIDE __attribute__((target("avx")))
#include <immintrin.h>
#endif

namespace Orvo {

#ifdef ORVO_WIDE

inline bool HasWideLanes() { return __builtin_cpu_supports("avx") != 0; }

/// The directions of a frame in registers.
struct WideDirections {
  __m256d u;
  __m256d v;
  __m256d w;
};

ORVO_WIDE inline __m256d CombineColumns(const WideDirections& m, const double* p) {
  return _mm256_add_pd(_mm256_mul_pd(m.u, _mm256_broadcast_sd(p)),
                       _mm256_add_pd(_mm256_mul_pd(m.v, _mm256_broadcast_sd(p + 1)),
                                     _mm256_mul_pd(m.w, _mm256_broadcast_sd(p + 2))));
}

/// Loads a column that was stored whole; aligned to 32 bytes.
ORVO_WIDE inline __m256d LoadWide(const double* column) { return _mm256_load_pd(column); }

/// Loads a column that was stored in halves: a processor is slow to load it whole soon afterwards.
ORVO_WIDE inline __m256d LoadHalves(const double* column) {
  return _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_load_pd(column)), _mm_load_pd(column + 2),
                              1);
}

ORVO_WIDE inline __m256d WithW(const __m256d& a, double w) {
  return _mm256_blend_pd(a, _mm256_set1_pd(w), 0b1000);
}

/// Where a frame is written to: for products to come, aligned to 32 bytes, and for the caller.
struct WideTargets {
  double* product;
  double* copy;
};

ORVO_WIDE inline void StoreWide(int place, const __m256d& column, const WideTargets& to) {
  _mm256_store_pd(to.product + place, column);
  _mm256_storeu_pd(to.copy + place, column);
}

ORVO_WIDE inline void StoreWide(const WideDirections& directions, const __m256d& origin,
                                const WideTargets& to) {
  StoreWide(0, WithW(directions.u, 0.0), to);
  StoreWide(4, WithW(directions.v, 0.0), to);
  StoreWide(8, WithW(directions.w, 0.0), to);
  StoreWide(12, WithW(origin, 1.0), to);
}

/// Copies a frame that is aligned to 32 bytes.
ORVO_WIDE inline void CopyFrameWide(const double* m, double* copy) {
  for (int column = 0; column < 16; column += 4) {
    _mm256_storeu_pd(copy + column, LoadWide(m + column));
  }
}

/// Does what MultiplyFrames() does, and copies the product. The left factor and the product are
/// aligned to 32 bytes. Only rules for frames that are not projective.
ORVO_WIDE inline void MultiplyFramesWide(ProductRule rule, const double* a, const double* b,
                                         double* product, double* copy) {
  const WideTargets to = {product, copy};
  switch (rule) {
    case ProductRule::LeftMoved: {
      const WideDirections left = {LoadWide(a), LoadWide(a + 4), LoadWide(a + 8)};
      StoreWide(left, _mm256_add_pd(CombineColumns(left, b + 12), LoadWide(a + 12)), to);
      break;
    }
    case ProductRule::Turn:
    case ProductRule::Affine: {
      const WideDirections left = {LoadWide(a), LoadWide(a + 4), LoadWide(a + 8)};
      const WideDirections image = {CombineColumns(left, b), CombineColumns(left, b + 4),
                                    CombineColumns(left, b + 8)};
      StoreWide(image,
                rule == ProductRule::Turn
                    ? _mm256_setzero_pd()
                    : _mm256_add_pd(CombineColumns(left, b + 12), LoadWide(a + 12)),
                to);
      break;
    }
    case ProductRule::RightTurned:
    case ProductRule::RightMoved: {
      const WideDirections right = {LoadHalves(b), LoadHalves(b + 4), LoadHalves(b + 8)};
      const __m256d left = LoadWide(a + 12);
      StoreWide(right,
                rule == ProductRule::RightMoved ? _mm256_add_pd(left, LoadHalves(b + 12)) : left,
                to);
      break;
    }
    default:
      for (int column = 0; column < 16; column += 4) {
        StoreWide(column, rule == ProductRule::Left ? LoadWide(a + column) : LoadHalves(b + column),
                  to);
      }
      break;
  }
}

#else

inline bool HasWideLanes() { return false; }

#endif

}  // namespace Orvo
