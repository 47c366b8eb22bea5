#pragma once

#include <Orvo/Simd128.h>

namespace Orvo {

/// Four doubles x, y, z, w in two 128-bit lanes: one vector, or one column of a frame.
///
/// Every operation works component by component, so the results have the bits of the scalar
/// formula, and w never reaches x, y or z.
struct Lanes {
  __m128d xy;
  __m128d zw;
};

/// Loads four doubles, aligned to 16 bytes.
inline Lanes LoadLanes(const double* p) { return {_mm_load_pd(p), _mm_load_pd(p + 2)}; }

/// Stores four doubles, aligned to 16 bytes.
inline void StoreLanes(double* p, const Lanes& a) {
  _mm_store_pd(p, a.xy);
  _mm_store_pd(p + 2, a.zw);
}

/// Returns the same x, y, z with another w.
inline Lanes WithW(const Lanes& a, double w) {
  return {a.xy, _mm_unpacklo_pd(a.zw, _mm_set_sd(w))};
}

inline Lanes Add(const Lanes& a, const Lanes& b) {
  return {_mm_add_pd(a.xy, b.xy), _mm_add_pd(a.zw, b.zw)};
}

inline Lanes Subtract(const Lanes& a, const Lanes& b) {
  return {_mm_sub_pd(a.xy, b.xy), _mm_sub_pd(a.zw, b.zw)};
}

inline Lanes Negative(const Lanes& a) {
  const __m128d sign = _mm_set1_pd(-0.0);
  return {_mm_xor_pd(a.xy, sign), _mm_xor_pd(a.zw, sign)};
}

inline Lanes Scale(const Lanes& a, double factor) {
  const __m128d f = _mm_set1_pd(factor);
  return {_mm_mul_pd(a.xy, f), _mm_mul_pd(a.zw, f)};
}

inline Lanes Divide(const Lanes& a, double divisor) {
  const __m128d d = _mm_set1_pd(divisor);
  return {_mm_div_pd(a.xy, d), _mm_div_pd(a.zw, d)};
}

/// Returns a where all bits of the mask are set, b where none is.
///
/// Processors' own maximum and minimum differ in what they make of NaN and of zeros of two signs;
/// this gives the same bits on each.
inline __m128d Choose(const __m128d& mask, const __m128d& a, const __m128d& b) {
  return _mm_or_pd(_mm_and_pd(mask, a), _mm_andnot_pd(mask, b));
}

/// Returns b where b is strictly larger, else a.
inline Lanes Larger(const Lanes& a, const Lanes& b) {
  return {Choose(_mm_cmpgt_pd(b.xy, a.xy), b.xy, a.xy),
          Choose(_mm_cmpgt_pd(b.zw, a.zw), b.zw, a.zw)};
}

/// Returns b where b is strictly smaller, else a.
inline Lanes Smaller(const Lanes& a, const Lanes& b) {
  return {Choose(_mm_cmplt_pd(b.xy, a.xy), b.xy, a.xy),
          Choose(_mm_cmplt_pd(b.zw, a.zw), b.zw, a.zw)};
}

}  // namespace Orvo
