#pragma once

#include <Orvo/Export.h>

namespace Orvo::Kin {

/// Names one element of a machine.
///
/// A value is defined when it is 0 or more. Every negative value is undefined; -1 is the usual one.
class ORVO_API EntityId {
 public:
  /// Makes the undefined value -1.
  constexpr EntityId() : value_(-1) {}

  /// Takes the number unchanged. Implicit, so that a plain number names an element.
  constexpr EntityId(int value) : value_(value) {}

  /// Tells whether the value is 0 or more.
  constexpr bool IsDefined() const { return value_ >= 0; }

  /// @{
  /// Returns the number.
  constexpr int GetVal() const { return value_; }
  constexpr operator int() const { return value_; }
  /// @}

 private:
  int value_;
};

}  // namespace Orvo::Kin
