#pragma once

#include <Orvo/Export.h>

namespace Orvo::Kin {

/// Names one TABLE element: its place, from 0, among the tables in the order of the entity list.
///
/// A value is defined when it is 0 or more. Every negative value is undefined; -1 is the usual one.
class ORVO_API TableIndex {
 public:
  /// Makes the undefined value -1.
  constexpr TableIndex() : value_(-1) {}

  /// Takes the number unchanged. Implicit, so that a plain number names a table.
  constexpr TableIndex(int value) : value_(value) {}

  /// Tells whether the value is 0 or more.
  constexpr bool IsDefined() const { return value_ >= 0; }

  /// @{
  /// Returns the number.
  constexpr int GetVal() const { return value_; }
  constexpr operator int() const { return value_; }
  /// @}

  /// Compares the numbers.
  constexpr bool operator>(const TableIndex& other) const { return value_ > other.value_; }

  /// Adds 1 and returns this object. The largest number wraps to the smallest.
  constexpr TableIndex& operator++() {
    value_ = static_cast<int>(static_cast<unsigned int>(value_) + 1U);
    return *this;
  }

  /// Adds 1 and returns a copy of the incremented value.
  ///
  /// Deliberate: `r++` and `++r` yield the same number; callers' loops rely on it.
  constexpr TableIndex operator++(int) { return ++*this; }

 private:
  int value_;
};

}  // namespace Orvo::Kin
