#pragma once

#include <Orvo/Export.h>

namespace Orvo {

class Vector3D;
struct AngleAccess;

/// Holds an angle in radians, of any size: nothing wraps it to a turn.
///
/// Degrees enter and leave through SetDegre() and GetDegre() alone, with pi = 3.141592653589793.
/// No member fails; NaN and infinities pass through the arithmetic as IEEE 754 has it.
class ORVO_API Angle {
 public:
  /// Makes the angle of 0.0 radians.
  Angle();

  /// Makes an angle of the given radians. Implicit, so that a plain number is an angle in radians.
  Angle(double radians);

  /// Copies the radians.
  Angle(const Angle& other);

  /// Copies the radians.
  Angle& operator=(const Angle& other);
  virtual ~Angle();

  /// Stores the angle, in radians, unchanged.
  void SetRadian(double radians);

  /// Returns the angle in radians, unchanged.
  double GetRadian() const;

  /// Stores an angle given in degrees: `degrees / 180.0 * pi`, evaluated in that order.
  void SetDegre(double degrees);

  /// Returns the angle in degrees: `radians * 180.0 / pi`, evaluated in that order.
  double GetDegre() const;

  /// Sets the signed angle that turns one direction onto another about a reference.
  ///
  /// The size is `atan2(|k|, d)` of the unit directions' cross product k and dot product d (d is
  /// clamped to [-1, 1]), so it lies in [0, pi]. The angle is negative when k points strictly
  /// against @p ref. For parallel and antiparallel directions, for a reference in their plane and
  /// for one that holds NaN, it stays positive. NaN and infinities in the directions make it NaN; a
  /// length that overflows (see Vector3D) makes it 0.0.
  ///
  /// @param from  start direction, of any length
  /// @param to    end direction, in the same frame, of any length
  /// @param ref   reference axis; only its sense counts, not its length
  /// @return true on success; false, with the angle set to 0.0, when @p from or @p to is shorter
  ///   than 0.00001 (strict)
  bool SetVector3DRef(const Vector3D& from, const Vector3D& to, const Vector3D& ref);

  /// Returns the sine of the angle.
  double Sin() const;

  /// Returns the cosine of the angle.
  double Cos() const;

  /// Returns the sum in radians, not wrapped.
  Angle operator+(const Angle& other);

  /// Returns the difference in radians, not wrapped.
  Angle operator-(const Angle& other);

  /// Returns the negated angle.
  Angle operator-();

  /// Returns the angle times a factor.
  Angle operator*(double factor);

  /// Returns 1 when this angle has strictly fewer radians than the other, else 0 (NaN: 0).
  int operator<(const Angle& other) const;

  /// Returns 1 when this angle has strictly more radians than the other, else 0 (NaN: 0).
  int operator>(const Angle& other) const;

 private:
  friend struct AngleAccess;

  double radians_;
};

}  // namespace Orvo
