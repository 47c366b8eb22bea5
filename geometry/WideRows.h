#pragma once

#include "geometry/WideFrame.h"

// Frames row by row with a whole row to a register, for processors that have such; see WideFrame.h.

namespace Orvo {

#ifdef ORVO_WIDE

/// A frame in registers, a row to each, T before U, V and W: so that an addition can leave the
/// directions alone. The fourth row is (0, 0, 0, 1). The right factor of a long product stays in
/// this form: each left factor is only read number by number.
using WideRows = WideTriple;

/// The rows of the identity, as StoreRowsWide() writes rows.
inline constexpr const double* IdentityRows = IdentityFrame + 4;

/// Loads rows that StoreRowsWide() wrote.
ORVO_WIDE inline WideRows LoadRowsWide(const double* rows) {
  return {_mm256_loadu_pd(rows), _mm256_loadu_pd(rows + 4), _mm256_loadu_pd(rows + 8)};
}

ORVO_WIDE inline void StoreRowsWide(const WideRows& rows, double* to) {
  _mm256_storeu_pd(to, rows.x);
  _mm256_storeu_pd(to + 4, rows.y);
  _mm256_storeu_pd(to + 8, rows.z);
}

/// Loads the first three rows of a frame.
ORVO_WIDE inline WideRows RowsOfFrame(const double* m) {
  const __m256d u = LoadHalves(m);
  const __m256d v = LoadHalves(m + 4);
  const __m256d w = LoadHalves(m + 8);
  const __m256d t = LoadHalves(m + 12);
  const __m256d xzOfTu = _mm256_unpacklo_pd(t, u);
  const __m256d xzOfVw = _mm256_unpacklo_pd(v, w);
  const __m256d yOfTu = _mm256_unpackhi_pd(t, u);
  const __m256d yOfVw = _mm256_unpackhi_pd(v, w);
  return {_mm256_permute2f128_pd(xzOfTu, xzOfVw, 0x20), _mm256_permute2f128_pd(yOfTu, yOfVw, 0x20),
          _mm256_permute2f128_pd(xzOfTu, xzOfVw, 0x31)};
}

/// Returns the frame of some rows, column by column.
ORVO_WIDE inline WideFrame FrameOfRows(const WideRows& rows) {
  const __m256d last = _mm256_set_pd(0.0, 0.0, 0.0, 1.0);
  const __m256d tvOfXy = _mm256_unpacklo_pd(rows.x, rows.y);
  const __m256d uwOfXy = _mm256_unpackhi_pd(rows.x, rows.y);
  const __m256d tvOfZ = _mm256_unpacklo_pd(rows.z, last);
  const __m256d uwOfZ = _mm256_unpackhi_pd(rows.z, last);
  return {_mm256_permute2f128_pd(uwOfXy, uwOfZ, 0x20), _mm256_permute2f128_pd(tvOfXy, tvOfZ, 0x31),
          _mm256_permute2f128_pd(uwOfXy, uwOfZ, 0x31), _mm256_permute2f128_pd(tvOfXy, tvOfZ, 0x20)};
}

/// Returns the directions of one row and the origin of another.
ORVO_WIDE inline __m256d JoinRows(const __m256d& directions, const __m256d& origin) {
  return _mm256_blend_pd(directions, origin, 0b0001);
}

/// Returns a row with a number added to its origin.
ORVO_WIDE inline __m256d MoveRow(const __m256d& row, const double* way) {
  const __m128d origin = _mm_add_sd(_mm256_castpd256_pd128(row), _mm_load_sd(way));
  return JoinRows(row, _mm256_castpd128_pd256(origin));
}

ORVO_WIDE inline WideRows MoveRows(const WideRows& rows, const double* origin) {
  return {MoveRow(rows.x, origin), MoveRow(rows.y, origin + 1), MoveRow(rows.z, origin + 2)};
}

/// Returns a row of the product a * b less the origin of a.
ORVO_WIDE inline __m256d CombineRows(const double* a, int row, const WideRows& b) {
  return _mm256_broadcast_sd(a + row) * b.x +
         (_mm256_broadcast_sd(a + 4 + row) * b.y + _mm256_broadcast_sd(a + 8 + row) * b.z);
}

/// Returns the product a * b by the rule for the kinds of the two, as MultiplyFrames() does; not
/// for projective frames. Frequent rules come first: a jump by a table costs more than the sums.
ORVO_WIDE inline WideRows MultiplyRowsWide(ProductRule rule, const double* a, const WideRows& b) {
  if (rule == ProductRule::RightMoved) {
    return MoveRows(b, a + 12);
  }
  if (rule >= ProductRule::TurnedX) {
    return MoveRows(rule == ProductRule::TurnedX   ? TurnWideX(a[5], a[6], b)
                    : rule == ProductRule::TurnedY ? TurnWideY(a[0], a[8], b)
                                                   : TurnWideZ(a[0], a[1], b),
                    a + 12);
  }
  const __m256d zero = _mm256_setzero_pd();
  if (rule == ProductRule::Shifted) {
    const WideRows none = {zero * b.x, zero * b.y, zero * b.z};
    return MoveRows({b.x + (none.y + none.z), none.x + (b.y + none.z), none.x + (none.y + b.z)},
                    a + 12);
  }
  if (rule == ProductRule::Affine || rule == ProductRule::LeftMoved || rule == ProductRule::Turn) {
    const WideRows image = {CombineRows(a, 0, b), CombineRows(a, 1, b), CombineRows(a, 2, b)};
    if (rule == ProductRule::Turn) {
      return {JoinRows(image.x, zero), JoinRows(image.y, zero), JoinRows(image.z, zero)};
    }
    const WideRows moved = MoveRows(image, a + 12);
    if (rule == ProductRule::Affine) {
      return moved;
    }
    const WideRows left = RowsOfFrame(a);
    return {JoinRows(left.x, moved.x), JoinRows(left.y, moved.y), JoinRows(left.z, moved.z)};
  }
  if (rule == ProductRule::RightTurned) {
    return {JoinRows(b.x, _mm256_set1_pd(a[12])), JoinRows(b.y, _mm256_set1_pd(a[13])),
            JoinRows(b.z, _mm256_set1_pd(a[14]))};
  }
  return rule == ProductRule::Left ? RowsOfFrame(a) : b;
}

#endif

}  // namespace Orvo
