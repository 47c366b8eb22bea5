#pragma once

#include <Orvo/Simd128.h>

namespace Orvo {

/// Four numbers that go through the same formula at once, each with the bits that it would have
/// alone.
class Quad {
 public:
  Quad() : Quad(0.0) {}
  Quad(double a, double b, double c, double d) : low_(_mm_set_pd(b, a)), high_(_mm_set_pd(d, c)) {}

  /// The same number four times.
  explicit Quad(double all) : low_(_mm_set1_pd(all)), high_(low_) {}

  /// The first two numbers of one and the last two of the other.
  static Quad Join(const Quad& first, const Quad& last) { return {first.low_, last.high_}; }

  friend Quad operator+(const Quad& a, const Quad& b) {
    return {_mm_add_pd(a.low_, b.low_), _mm_add_pd(a.high_, b.high_)};
  }
  friend Quad operator-(const Quad& a, const Quad& b) {
    return {_mm_sub_pd(a.low_, b.low_), _mm_sub_pd(a.high_, b.high_)};
  }
  friend Quad operator*(const Quad& a, const Quad& b) {
    return {_mm_mul_pd(a.low_, b.low_), _mm_mul_pd(a.high_, b.high_)};
  }
  friend Quad operator/(const Quad& a, const Quad& b) {
    return {_mm_div_pd(a.low_, b.low_), _mm_div_pd(a.high_, b.high_)};
  }

  friend Quad Sqrt(const Quad& a) { return {_mm_sqrt_pd(a.low_), _mm_sqrt_pd(a.high_)}; }

  friend Quad Abs(const Quad& a) {
    const __m128d sign = _mm_set1_pd(-0.0);
    return {_mm_andnot_pd(sign, a.low_), _mm_andnot_pd(sign, a.high_)};
  }

  /// Each number of yes where that of a is larger than that of b, else that of no; so for NaN.
  friend Quad WhereLarger(const Quad& a, const Quad& b, const Quad& yes, const Quad& no) {
    const auto choose = [](__m128d first, __m128d second, __m128d ifLarger, __m128d ifNot) {
      const __m128d isLarger = _mm_cmpgt_pd(first, second);
      return _mm_or_pd(_mm_and_pd(isLarger, ifLarger), _mm_andnot_pd(isLarger, ifNot));
    };
    return {choose(a.low_, b.low_, yes.low_, no.low_),
            choose(a.high_, b.high_, yes.high_, no.high_)};
  }

  /// Each number no smaller than min and no larger than max, NaN as it is.
  friend Quad Clamp(const Quad& a, double min, double max) {
    const auto clamp = [least = _mm_set1_pd(min), most = _mm_set1_pd(max)](__m128d pair) {
      return _mm_min_pd(most, _mm_max_pd(least, pair));
    };
    return {clamp(a.low_), clamp(a.high_)};
  }

  /// Each number with its sign turned around where that of the same place is below 0.
  friend Quad NegateWhereNegative(const Quad& a, const Quad& sign) {
    const auto negate = [](__m128d pair, __m128d where) {
      const __m128d isBelow = _mm_cmplt_pd(where, _mm_setzero_pd());
      return _mm_xor_pd(pair, _mm_and_pd(isBelow, _mm_set1_pd(-0.0)));
    };
    return {negate(a.low_, sign.low_), negate(a.high_, sign.high_)};
  }

  /// Tells whether no number of the first is larger than that of the second; false for NaN.
  friend bool AreAllInOrder(const Quad& a, const Quad& b) {
    const __m128d isInOrder =
        _mm_and_pd(_mm_cmple_pd(a.low_, b.low_), _mm_cmple_pd(a.high_, b.high_));
    return _mm_movemask_pd(isInOrder) == 0b11;
  }

  /// Tells whether any number is below a bound.
  friend bool IsAnyBelow(const Quad& a, double bound) {
    const __m128d b = _mm_set1_pd(bound);
    return _mm_movemask_pd(_mm_or_pd(_mm_cmplt_pd(a.low_, b), _mm_cmplt_pd(a.high_, b))) != 0;
  }

  /// Writes the four numbers, to an address aligned to 16 bytes.
  void Store(double* p) const {
    _mm_store_pd(p, low_);
    _mm_store_pd(p + 2, high_);
  }

 private:
  Quad(const __m128d& low, const __m128d& high) : low_(low), high_(high) {}

  __m128d low_;
  __m128d high_;
};

}  // namespace Orvo
