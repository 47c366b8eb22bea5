#pragma once

#include <Orvo/Export.h>

namespace Orvo::Kin {

/// Names one HEAD element: its place, from 0, among the heads in the order of the entity list.
///
/// A value is defined when it is 0 or more. Every negative value is undefined; -1 is the usual one.
class ORVO_API HeadIndex {
 public:
  /// Makes the undefined value -1.
  constexpr HeadIndex() : value_(-1) {}

  /// Takes the number unchanged. Implicit, so that a plain number names a head.
  constexpr HeadIndex(int value) : value_(value) {}

  /// Tells whether the value is 0 or more.
  constexpr bool IsDefined() const { return value_ >= 0; }

  /// @{
  /// Returns the number.
  constexpr int GetVal() const { return value_; }
  constexpr operator int() const { return value_; }
  /// @}

  /// Compares the numbers.
  constexpr bool operator>(const HeadIndex& other) const { return value_ > other.value_; }

  /// Adds 1 and returns this object. The largest number wraps to the smallest.
  constexpr HeadIndex& operator++() {
    value_ = static_cast<int>(static_cast<unsigned int>(value_) + 1U);
    return *this;
  }

  /// Adds 1 and returns a copy of the incremented value.
  ///
  /// Deliberate: `r++` and `++r` yield the same number; callers' loops rely on it.
  constexpr HeadIndex operator++(int) { return ++*this; }

 private:
  int value_;
};

}  // namespace Orvo::Kin
