#pragma once

#include <Orvo/Export.h>
#include <Orvo/Kin/Register.h>

#include <memory>
#include <vector>

namespace Orvo::Kin {

struct PositionAccess;

/// One set of axis values of a machine: one double per register.
///
/// Lengths are in the machine's unit, rotary values in degrees. Machine::Alloc gives a position its
/// size. A plain value: a copy takes the contents. Any doubles may stand in it; the arithmetic is
/// that of IEEE 754.
///
/// Deliberate: the operators that return a new position are not const members; they are part of a
/// frozen interface and do not change the object.
class ORVO_API MachinePosition {
 public:
  /// Makes an empty position.
  MachinePosition();

  /// Makes a position of the other's size and values.
  MachinePosition(const MachinePosition& other);

  /// Copies the other's values over the first elements, growing to its size first.
  ///
  /// Deliberate: a position never shrinks; elements behind the other's size keep their values, and
  /// an empty one changes nothing.
  MachinePosition& operator=(const MachinePosition& other);
  virtual ~MachinePosition();

  /// Resizes to @p n elements, all 0. A negative @p n keeps the size and zeroes; 0 empties.
  void Alloc(const Register& n);

  /// Resizes to @p n elements, all 0. Deliberate: 0 keeps the size and zeroes.
  void Alloc(unsigned long long n);

  /// Sets every element to @p v.
  void SetAll(double v);

  /// Returns the number of elements.
  unsigned long long Size() const;

  /// @{
  /// Returns an element.
  /// @throws std::out_of_range when the register is below 0, or not below Size()
  double& operator[](const Register& r);
  const double& operator[](const Register& r) const;
  /// @}

  /// Returns the sum by element. Deliberate: where the sizes differ, a copy of this comes back.
  MachinePosition operator+(const MachinePosition& b);

  /// Returns the difference by element. Deliberate: where the sizes differ, a copy of this comes
  /// back.
  MachinePosition operator-(const MachinePosition& b);

  /// Returns every element times -1.0.
  MachinePosition operator-();

  /// Returns every element times @p k.
  MachinePosition operator*(double k);

  /// Returns every element divided by @p k, with IEEE results for 0.
  MachinePosition operator/(double k);

  /// Adds by element; nothing happens where the sizes differ.
  MachinePosition& operator+=(const MachinePosition& b);

  /// Subtracts by element; nothing happens where the sizes differ.
  MachinePosition& operator-=(const MachinePosition& b);

 private:
  friend struct PositionAccess;

  std::unique_ptr<std::vector<double>> values_;
};

}  // namespace Orvo::Kin
