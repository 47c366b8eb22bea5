#pragma once

#include <Orvo/Export.h>
#include <Orvo/Simd128.h>

#include <string>

namespace Orvo {

/// Names the six signed unit axes.
enum DirectionSign : int {
  XPlus = 0,   ///< (1, 0, 0)
  XMinus = 1,  ///< (-1, 0, 0)
  YPlus = 2,   ///< (0, 1, 0)
  YMinus = 3,  ///< (0, -1, 0)
  ZPlus = 4,   ///< (0, 0, 1)
  ZMinus = 5   ///< (0, 0, -1)
};

/// Holds a point or a direction in space: three components and a fourth that fills the second lane.
///
/// Layout: four contiguous doubles x, y, z, w, aligned to 16 bytes; lane 0 is (x, y), lane 1 is
/// (z, w). Every constructor and setter that takes three values or a pointer sets w to 0.0, and
/// the arithmetic keeps it so. Lane-wise operations carry w along; norms, distances, the dot
/// product and the comparisons ignore it. The unit of length is the caller's.
///
/// Sums of three terms are formed as first + (second + third), here and in Matrix43, so that the
/// same quantity has the same bits wherever it is computed. No member fails or throws, but for the
/// memory of a text. A null pointer handed in counts as three zeros; one to be filled is left.
///
/// Any doubles may stand in a vector. NaN and infinities pass through the arithmetic as IEEE 754
/// has it, and no comparison with NaN holds. Lengths are formed of squares: they overflow to
/// infinity from a component of about 1.3e154 on, and are 0.0 below about 1.6e-162.
///
/// Deliberate: the operators `+`, `-`, `*(double)` and `&` are not const members; they are part of
/// a frozen interface and do not change the object.
class ORVO_API Vector3D {
 public:
  /// Makes the null vector.
  constexpr Vector3D() : components_{0.0, 0.0, 0.0, 0.0} {}

  /// Makes a vector from its three components; w is 0.0.
  constexpr Vector3D(double x, double y, double z) : components_{x, y, z, 0.0} {}

  /// Makes a vector from three doubles; w is 0.0.
  Vector3D(const double* p);

  /// Makes a vector from two lanes (x, y) and (z, ignored); w is 0.0.
  Vector3D(const __m128d* lanes);

  /// Makes a vector from the lanes (x, y) and (z, ignored); w is 0.0.
  Vector3D(const __m128d& lane0, const __m128d& lane1);

  /// Copies all four components.
  constexpr Vector3D(const Vector3D& other) = default;

  /// Copies all four components.
  Vector3D& operator=(const Vector3D& other) = default;

  /// Takes x, y, z from three doubles; w becomes 0.0.
  Vector3D& operator=(const double* p);

  ~Vector3D() = default;

  /// Sets the three components; w becomes 0.0.
  void Set(double x, double y, double z);

  /// Sets x, y, z from three doubles; w becomes 0.0.
  void Set(const double* p);

  /// Sets x, y, z from two lanes; w becomes 0.0.
  void Set(const __m128d& lane0, const __m128d& lane1);

  /// Copies all four components.
  void Set(const Vector3D& other);

  /// Sets all four components to 0.0.
  void Reset();

  /// Writes the three components to three places.
  void Get(double* x, double* y, double* z);

  /// Writes x, y, z to p[0], p[1], p[2].
  void Get(double* p);

  /// Returns lane 0: (x, y).
  __m128d Get_m128d_0();

  /// Returns lane 1: (z, w).
  __m128d Get_m128d_1();

  /// Returns the two lanes, aligned to 16 bytes.
  const __m128d* Get_m128d() const { return reinterpret_cast<const __m128d*>(components_); }

  /// @{
  /// Returns the address of x; y, z and w follow.
  operator double*() { return components_; }
  operator const double*() const { return components_; }
  /// @}

  /// @{
  /// Returns component @p i: 0 to 2 are x, y, z and 3 is w. Not checked.
  double& operator[](int i) { return components_[i]; }
  double operator[](int i) const { return components_[i]; }
  /// @}

  /// Returns 1 when x, y and z are exactly equal, else 0. NaN equals nothing.
  /// There is no `!=`: write `!(a == b)`, since `a != b` compares addresses in C++17.
  int operator==(const Vector3D& other) const;

  /// Returns the lane-wise sum.
  Vector3D operator+(const Vector3D& other);

  /// Returns the lane-wise difference.
  Vector3D operator-(const Vector3D& other);

  /// Returns (-x, -y, -z), with w 0.0.
  Vector3D operator-();

  /// Returns all four components times a factor.
  Vector3D operator*(double factor);

  /// Returns the dot product `x * x' + (y * y' + z * z')`.
  double operator*(const Vector3D& other) const;

  /// Returns the cross product of this vector and the other, with w 0.0.
  Vector3D operator&(const Vector3D& other);

  /// Adds all four components in place.
  const Vector3D& operator+=(const Vector3D& other);

  /// Subtracts all four components in place.
  const Vector3D& operator-=(const Vector3D& other);

  /// Scales all four components in place.
  const Vector3D& operator*=(double factor);

  /// Returns the length `sqrt(x * x + (y * y + z * z))`.
  double Norm() const;

  /// Returns the squared length.
  double NormSquare() const;

  /// Returns the largest of |x|, |y| and |z|. NaN among them gives NaN or the size of another one.
  double NormSup() const;

  /// Returns the distance between two points.
  double Distance(const Vector3D& point) const;

  /// Scales the vector to unit length.
  ///
  /// Deliberate: a vector that is too short becomes the X axis, (1, 0, 0) with w 0.0, and is not
  /// left null; callers build frames on it. One whose length overflows becomes null, and NaN or an
  /// infinity becomes NaN; both count as scaled.
  ///
  /// @param tol  smallest length that is scaled; a length equal to it still is
  /// @return true when the vector was scaled; false when it was shorter than @p tol, or when its
  ///   length is 0.0, whatever @p tol says
  bool MakeUnit(double tol);

  /// Tells whether each of x, y, z differs from the other's by strictly less than @p tol.
  bool IsSame(const Vector3D& other, double tol) const;

  /// Tells whether each of x, y, z differs from a signed unit axis by strictly less than @p tol.
  /// A value outside the enumeration gives false.
  bool IsSame(const DirectionSign& direction, double tol) const;

  /// Tells whether two vectors lie on one line through the origin, in the same or opposite sense.
  /// A vector that holds NaN or an infinity is colinear with none; one whose length overflows, with
  /// every finite one.
  ///
  /// @param other  the vector to compare with
  /// @param tol    bound, strict, on the sine of the angle between the two lines
  /// @param ratio  may be null; on true receives other's component divided by this one's, from the
  ///   first of x, y, z where both exceed @p tol in size (strict), or 1e8 where none does;
  ///   negative for opposite senses. Not written on false.
  /// @return false when either vector has all components below 0.0001 in size (strict), or when the
  ///   squared sine is not below tol * tol; else true
  bool IsColinear(const Vector3D& other, double tol, double* ratio) const;

  /// Grows the upper corner of a bounding box: each component becomes the larger of the two. A
  /// component changes only where the other's is strictly larger, so NaN changes nothing.
  void ModificationMax(const Vector3D& other);

  /// Grows the lower corner of a bounding box: each component becomes the smaller of the two.
  void ModificationMin(const Vector3D& other);

  /// Replaces @p out by a text such as "(1.000, -2.500, 1000.000)", with "nan" and "inf" for what
  /// is no number. Null is ignored.
  void GetStringDebug(std::wstring* out) const;

 private:
  alignas(16) double components_[4];
};

static_assert(sizeof(Vector3D) == 32 && alignof(Vector3D) == 16, "a vector is two 128-bit lanes");

/// The X axis (1, 0, 0).
constexpr Vector3D AxisX(1.0, 0.0, 0.0);

/// The Y axis (0, 1, 0).
constexpr Vector3D AxisY(0.0, 1.0, 0.0);

/// The Z axis (0, 0, 1).
constexpr Vector3D AxisZ(0.0, 0.0, 1.0);

/// The null vector (0, 0, 0).
constexpr Vector3D NullVector(0.0, 0.0, 0.0);

}  // namespace Orvo
