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

/// A frame in registers, a column to each.
struct WideFrame {
  __m256d u;
  __m256d v;
  __m256d w;
  __m256d t;
};

ORVO_WIDE inline WideFrame LoadWide(const double* m) {
  return {_mm256_loadu_pd(m), _mm256_loadu_pd(m + 4), _mm256_loadu_pd(m + 8),
          _mm256_loadu_pd(m + 12)};
}

ORVO_WIDE inline void StoreWide(const WideFrame& frame, double* m) {
  _mm256_storeu_pd(m, frame.u);
  _mm256_storeu_pd(m + 4, frame.v);
  _mm256_storeu_pd(m + 8, frame.w);
  _mm256_storeu_pd(m + 12, frame.t);
}

/// Loads a column that was stored in halves: a processor is slow to load it whole soon afterwards.
ORVO_WIDE inline __m256d LoadHalves(const double* column) {
  return _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_load_pd(column)), _mm_load_pd(column + 2),
                              1);
}

ORVO_WIDE inline __m256d CombineColumns(const WideFrame& m, const double* p) {
  return _mm256_add_pd(_mm256_mul_pd(m.u, _mm256_broadcast_sd(p)),
                       _mm256_add_pd(_mm256_mul_pd(m.v, _mm256_broadcast_sd(p + 1)),
                                     _mm256_mul_pd(m.w, _mm256_broadcast_sd(p + 2))));
}

/// The same x, y, z with the fourth row of a direction, 0, or of an origin, 1.
ORVO_WIDE inline __m256d AsDirection(const __m256d& a) {
  return _mm256_blend_pd(a, _mm256_setzero_pd(), 0b1000);
}
ORVO_WIDE inline __m256d AsOrigin(const __m256d& a) {
  return _mm256_blend_pd(a, _mm256_set1_pd(1.0), 0b1000);
}

/// Makes a frame the product of itself and another one, as MultiplyFrames() does. The fourth row of
/// both is exactly (0, 0, 0, 1).
ORVO_WIDE inline void MultiplyFrameWide(ProductRule rule, const double* b, WideFrame* frame) {
  const WideFrame a = *frame;
  switch (rule) {
    case ProductRule::Left:
      break;
    case ProductRule::LeftMoved:
      frame->t = AsOrigin(_mm256_add_pd(CombineColumns(a, b + 12), a.t));
      break;
    case ProductRule::Affine:
    case ProductRule::Turn:
      *frame = {
          AsDirection(CombineColumns(a, b)), AsDirection(CombineColumns(a, b + 4)),
          AsDirection(CombineColumns(a, b + 8)),
          AsOrigin(rule == ProductRule::Turn ? _mm256_setzero_pd()
                                             : _mm256_add_pd(CombineColumns(a, b + 12), a.t))};
      break;
    default:
      *frame = {LoadHalves(b), LoadHalves(b + 4), LoadHalves(b + 8), LoadHalves(b + 12)};
      if (rule == ProductRule::RightMoved) {
        frame->t = AsOrigin(_mm256_add_pd(a.t, frame->t));
      } else if (rule == ProductRule::RightTurned) {
        frame->t = a.t;
      }
      break;
  }
}

#else

inline bool HasWideLanes() { return false; }

#endif

}  // namespace Orvo
