#pragma once

#include "geometry/WideFrame.h"

// Frames row by row with a whole row to a register, for processors that have such; see WideFrame.h.

namespace Orvo {

/// A frame in memory with its directions row by row, each behind an arbitrary number, and its
/// origin by itself, whose fourth row is arbitrary.
struct StoredRows {
  alignas(32) double rows[12];
  alignas(16) double origin[4];
};

#ifdef ORVO_WIDE

/// A frame in registers, a row to each, T before U, V and W: so that an addition can leave the
/// directions alone. The fourth row is (0, 0, 0, 1). The right factor of a long product stays in
/// this form: each left factor is only read number by number.
using WideRows = WideTriple;

/// The rows of the identity, as StoreRowsWide() writes rows.
inline constexpr const double* IdentityRows = IdentityFrame + 4;

/// Loads rows that StoreRowsWide() wrote.
ORVO_WIDE_INLINE WideRows LoadRowsWide(const double* rows) {
  return {_mm256_loadu_pd(rows), _mm256_loadu_pd(rows + 4), _mm256_loadu_pd(rows + 8)};
}

ORVO_WIDE_INLINE void StoreRowsWide(const WideRows& rows, double* to) {
  _mm256_storeu_pd(to, rows.x);
  _mm256_storeu_pd(to + 4, rows.y);
  _mm256_storeu_pd(to + 8, rows.z);
}

/// Loads one of the first three rows of a frame, number by number, as these may have been stored.
ORVO_WIDE_INLINE __m256d RowOfFrame(const double* m, int row) {
  const __m128d tu = _mm_loadh_pd(_mm_load_sd(m + 12 + row), m + row);
  const __m128d vw = _mm_loadh_pd(_mm_load_sd(m + 4 + row), m + 8 + row);
  return _mm256_insertf128_pd(_mm256_castpd128_pd256(tu), vw, 1);
}

/// Loads the first three rows of a frame.
ORVO_WIDE_INLINE WideRows RowsOfFrame(const double* m) {
  return {RowOfFrame(m, 0), RowOfFrame(m, 1), RowOfFrame(m, 2)};
}

/// Returns the frame of some rows, column by column.
ORVO_WIDE_INLINE WideFrame FrameOfRows(const WideRows& rows) {
  const __m256d last = _mm256_set_pd(0.0, 0.0, 0.0, 1.0);
  const __m256d tvOfXy = _mm256_unpacklo_pd(rows.x, rows.y);
  const __m256d uwOfXy = _mm256_unpackhi_pd(rows.x, rows.y);
  const __m256d tvOfZ = _mm256_unpacklo_pd(rows.z, last);
  const __m256d uwOfZ = _mm256_unpackhi_pd(rows.z, last);
  return {_mm256_permute2f128_pd(uwOfXy, uwOfZ, 0x20), _mm256_permute2f128_pd(tvOfXy, tvOfZ, 0x31),
          _mm256_permute2f128_pd(uwOfXy, uwOfZ, 0x31), _mm256_permute2f128_pd(tvOfXy, tvOfZ, 0x20)};
}

/// Returns the frame of stored rows.
ORVO_WIDE_INLINE WideFrame FrameOfRows(const StoredRows& stored) {
  WideFrame frame = FrameOfRows(LoadRowsWide(stored.rows));
  frame.t = AsOrigin(LoadHalves(stored.origin));
  return frame;
}

/// Returns the origin of a frame, whose fourth row is arbitrary.
ORVO_WIDE_INLINE Lanes OriginOfRows(const WideRows& rows) {
  return {_mm_unpacklo_pd(_mm256_castpd256_pd128(rows.x), _mm256_castpd256_pd128(rows.y)),
          _mm256_castpd256_pd128(rows.z)};
}

/// Returns X * p[0] + (Y * p[4] + Z * p[8]): a column of rows in memory under some directions.
ORVO_WIDE_INLINE __m256d CombineStored(const WideTriple& columns, const double* p) {
  return columns.x * _mm256_broadcast_sd(p) +
         (columns.y * _mm256_broadcast_sd(p + 4) + columns.z * _mm256_broadcast_sd(p + 8));
}

/// The inverse of a rigid frame: its directions, and its origin, whose fourth row is arbitrary.
struct WideInverse {
  WideTriple directions;
  __m256d origin;
};

/// Returns the inverse of a frame, as InvertRigid() has it.
ORVO_WIDE_INLINE WideInverse InvertStored(const StoredRows& stored) {
  const __m256d zero = _mm256_setzero_pd();
  const auto directions = [&zero](const __m256d& row) ORVO_WIDE {
    return _mm256_shuffle_pd(row, _mm256_permute2f128_pd(row, zero, 0x21), 0b0101);
  };
  const WideRows m = LoadRowsWide(stored.rows);
  const WideTriple columns = {directions(m.x), directions(m.y), directions(m.z)};
  return {columns, NegativeWide(CombineColumns(columns, stored.origin) + zero)};
}

/// Returns the directions of one row and the origin of another.
ORVO_WIDE_INLINE __m256d JoinRows(const __m256d& directions, const __m256d& origin) {
  return _mm256_blend_pd(directions, origin, 0b0001);
}

/// Returns a row with a number added to its origin.
ORVO_WIDE_INLINE __m256d MoveRow(const __m256d& row, const double* way) {
  __m128d moved = _mm256_castpd256_pd128(row);
  moved[0] += *way;
  return JoinRows(row, _mm256_castpd128_pd256(moved));
}

ORVO_WIDE_INLINE WideRows MoveRows(const WideRows& rows, const double* origin) {
  return {MoveRow(rows.x, origin), MoveRow(rows.y, origin + 1), MoveRow(rows.z, origin + 2)};
}

/// Returns a row of the product a * b less the origin of a.
ORVO_WIDE_INLINE __m256d CombineRows(const double* a, int row, const WideRows& b) {
  return _mm256_broadcast_sd(a + row) * b.x +
         (_mm256_broadcast_sd(a + 4 + row) * b.y + _mm256_broadcast_sd(a + 8 + row) * b.z);
}

/// Returns the product a * b less the origin of a.
ORVO_WIDE_INLINE WideRows ImageOfRows(const double* a, const WideRows& b) {
  return {CombineRows(a, 0, b), CombineRows(a, 1, b), CombineRows(a, 2, b)};
}

/// Returns the product of a turn about the axis of a rule and another frame.
ORVO_WIDE_INLINE WideRows TurnRowsWide(ProductRule rule, const double* a, const WideRows& b) {
  return MoveRows(rule == ProductRule::TurnedX   ? TurnWideX(a[5], a[6], b)
                  : rule == ProductRule::TurnedY ? TurnWideY(a[0], a[8], b)
                                                 : TurnWideZ(a[0], a[1], b),
                  a + 12);
}

/// Returns the product a * b by the rule for the kinds of the two, as MultiplyFrames() does; not
/// for projective frames. Frequent rules come first: a jump by a table costs more than the sums.
ORVO_WIDE_INLINE WideRows MultiplyRowsWide(ProductRule rule, const double* a, const WideRows& b) {
  if (rule == ProductRule::RightMoved) {
    return MoveRows(b, a + 12);
  }
  if (rule >= ProductRule::TurnedX) {
    return TurnRowsWide(rule, a, b);
  }
  if (rule == ProductRule::LeftMoved) {
    const WideRows left = RowsOfFrame(a);
    const WideRows moved = MoveRows(ImageOfRows(a, b), a + 12);
    return {JoinRows(left.x, moved.x), JoinRows(left.y, moved.y), JoinRows(left.z, moved.z)};
  }
  const __m256d zero = _mm256_setzero_pd();
  if (rule == ProductRule::Shifted) {
    const WideRows none = {zero * b.x, zero * b.y, zero * b.z};
    return MoveRows({b.x + (none.y + none.z), none.x + (b.y + none.z), none.x + (none.y + b.z)},
                    a + 12);
  }
  if (rule == ProductRule::Affine || rule == ProductRule::Turn) {
    const WideRows image = ImageOfRows(a, b);
    return rule == ProductRule::Affine ? MoveRows(image, a + 12)
                                       : WideRows{JoinRows(image.x, zero), JoinRows(image.y, zero),
                                                  JoinRows(image.z, zero)};
  }
  if (rule == ProductRule::RightTurned) {
    return {JoinRows(b.x, _mm256_set1_pd(a[12])), JoinRows(b.y, _mm256_set1_pd(a[13])),
            JoinRows(b.z, _mm256_set1_pd(a[14]))};
  }
  return rule == ProductRule::Left ? RowsOfFrame(a) : b;
}

#endif

}  // namespace Orvo
