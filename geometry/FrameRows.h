#pragma once

#include "geometry/FrameKernel.h"

namespace Orvo {

/// One row of a frame in registers, T before W: so that an addition can leave the directions alone.
struct FrameRow {
  __m128d uv;
  __m128d tw;
};

/// A frame in registers, row by row; the fourth row is (0, 0, 0, 1). The right factor of a long
/// product stays in this form: each left factor is only read number by number.
struct FrameRows {
  FrameRow x;
  FrameRow y;
  FrameRow z;
};

inline FrameRow LoadRow(const double* m, int row) {
  return {_mm_loadh_pd(_mm_load_sd(m + row), m + 4 + row),
          _mm_loadh_pd(_mm_load_sd(m + 12 + row), m + 8 + row)};
}

/// Loads the first three rows of a frame.
inline FrameRows LoadRows(const double* m) { return {LoadRow(m, 0), LoadRow(m, 1), LoadRow(m, 2)}; }

/// Writes the 16 doubles of a frame.
inline void StoreRows(const FrameRows& rows, double* m) {
  const __m128d zero = _mm_setzero_pd();
  StoreLanes(m, {_mm_unpacklo_pd(rows.x.uv, rows.y.uv), _mm_unpacklo_pd(rows.z.uv, zero)});
  StoreLanes(m + 4, {_mm_unpackhi_pd(rows.x.uv, rows.y.uv), _mm_unpackhi_pd(rows.z.uv, zero)});
  StoreLanes(m + 8, {_mm_unpackhi_pd(rows.x.tw, rows.y.tw), _mm_unpackhi_pd(rows.z.tw, zero)});
  StoreLanes(m + 12,
             {_mm_unpacklo_pd(rows.x.tw, rows.y.tw), _mm_unpacklo_pd(rows.z.tw, _mm_set_sd(1.0))});
}

/// Returns a row of the product a * b, as CombineColumns() and ImageOfPoint() have it.
inline FrameRow MultiplyRow(const double* a, int row, const FrameRows& b) {
  const __m128d u = _mm_set1_pd(a[row]);
  const __m128d v = _mm_set1_pd(a[4 + row]);
  const __m128d w = _mm_set1_pd(a[8 + row]);
  const __m128d uv =
      _mm_add_pd(_mm_mul_pd(u, b.x.uv), _mm_add_pd(_mm_mul_pd(v, b.y.uv), _mm_mul_pd(w, b.z.uv)));
  const __m128d tw =
      _mm_add_pd(_mm_mul_pd(u, b.x.tw), _mm_add_pd(_mm_mul_pd(v, b.y.tw), _mm_mul_pd(w, b.z.tw)));
  return {uv, _mm_add_sd(tw, _mm_load_sd(a + 12 + row))};
}

/// Returns the same directions with another origin.
inline FrameRow WithOrigin(const FrameRow& row, const __m128d& origin) {
  return {row.uv, _mm_move_sd(row.tw, origin)};
}

/// Returns the product a * b by the rule for the kinds of the two, as MultiplyFrames() does; not
/// for projective frames.
inline FrameRows MultiplyRows(ProductRule rule, const double* a, const FrameRows& b) {
  const auto origin = [a](int row) { return _mm_load_sd(a + 12 + row); };
  // The most frequent rule, before the others are told apart.
  if (rule == ProductRule::RightMoved) {
    const auto move = [&origin](int row, const FrameRow& from) {
      return FrameRow{from.uv, _mm_add_sd(from.tw, origin(row))};
    };
    return {move(0, b.x), move(1, b.y), move(2, b.z)};
  }
  switch (rule) {
    case ProductRule::Left:
      return LoadRows(a);
    case ProductRule::Turn: {
      const __m128d zero = _mm_setzero_pd();
      return {WithOrigin(MultiplyRow(a, 0, b), zero), WithOrigin(MultiplyRow(a, 1, b), zero),
              WithOrigin(MultiplyRow(a, 2, b), zero)};
    }
    case ProductRule::RightTurned:
      return {WithOrigin(b.x, origin(0)), WithOrigin(b.y, origin(1)), WithOrigin(b.z, origin(2))};
    case ProductRule::LeftMoved:
      return {WithOrigin(LoadRow(a, 0), MultiplyRow(a, 0, b).tw),
              WithOrigin(LoadRow(a, 1), MultiplyRow(a, 1, b).tw),
              WithOrigin(LoadRow(a, 2), MultiplyRow(a, 2, b).tw)};
    case ProductRule::Affine:
    case ProductRule::Shifted:
    case ProductRule::TurnedX:
    case ProductRule::TurnedY:
    case ProductRule::TurnedZ:
      return {MultiplyRow(a, 0, b), MultiplyRow(a, 1, b), MultiplyRow(a, 2, b)};
    default:
      return b;
  }
}

}  // namespace Orvo
