#pragma once

#include <Orvo/Export.h>

namespace Orvo::Kin {

/// Names one axis value: the place, from 0, that an axis has in a MachinePosition.
///
/// A value is defined when it is 0 or more. Every negative value is undefined; -1 is the usual one.
class ORVO_API Register {
 public:
  /// Makes the undefined value -1.
  constexpr Register() : value_(-1) {}

  /// Takes the number unchanged. Implicit, so that a plain number names an axis value.
  constexpr Register(int value) : value_(value) {}

  /// Tells whether the value is 0 or more.
  constexpr bool IsDefined() const { return value_ >= 0; }

  /// @{
  /// Returns the number.
  constexpr int GetVal() const { return value_; }
  constexpr operator int() const { return value_; }
  /// @}

  /// Compares the numbers.
  constexpr bool operator>(const Register& other) const { return value_ > other.value_; }

  /// Adds 1 and returns this object. The largest number wraps to the smallest.
  constexpr Register& operator++() {
    value_ = static_cast<int>(static_cast<unsigned int>(value_) + 1U);
    return *this;
  }

  /// Adds 1 and returns a copy of the incremented value.
  ///
  /// Deliberate: `r++` and `++r` yield the same number; callers' loops rely on it.
  constexpr Register operator++(int) { return ++*this; }

 private:
  int value_;
};

}  // namespace Orvo::Kin
