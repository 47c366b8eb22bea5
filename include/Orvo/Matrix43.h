#pragma once

#include <Orvo/Export.h>
#include <Orvo/Simd128.h>
#include <Orvo/Vector3D.h>

#include <string>

namespace Orvo {

class Angle;
struct FrameAccess;

/// Names the three principal axes.
enum Direction : int { X = 0, Y = 1, Z = 2 };

/// The 4x4 identity: 16 doubles, column after column U, V, W, T.
alignas(32) constexpr double IdentityFrame[16] = {1.0, 0.0, 0.0, 0.0,  //
                                                  0.0, 1.0, 0.0, 0.0,  //
                                                  0.0, 0.0, 1.0, 0.0,  //
                                                  0.0, 0.0, 0.0, 1.0};

/// Places one coordinate system in another: three direction columns U, V, W and an origin T.
///
/// Layout: 16 doubles, column after column U, V, W, T, each column x, y, z, w like a Vector3D, and
/// aligned to 16 bytes; element (row r, column c) is the double 4 * c + r. The fourth row is
/// (0, 0, 0, 1) for every frame built by the setters.
///
/// Convention: column vectors. A point p of the placed system stands at
/// `U * p.x + V * p.y + W * p.z + T` in the placing system, and `a * b` applies b first, then a.
/// Sums of three terms are formed as first + (second + third); a fourth term is added last.
///
/// Each frame caches what kind it is (Type). The members keep the kind current, or conservatively
/// `General`; products, images and inverses take shortcuts by it. `General` is always safe.
/// Writing through `operator double*` goes past the cache: load the frame again through
/// `operator=(const double*)` afterwards.
///
/// No member fails: degenerate input gives the fallback that the member states, and only
/// GetStringDebug() allocates. Any doubles may stand in a frame: NaN and infinities pass through
/// the arithmetic as IEEE 754 has it, inverses and turns included, and no frame that holds NaN
/// equals another.
///
/// Deliberate: the members that return a new value are not const; they are part of a frozen
/// interface and do not change the object.
class ORVO_API Matrix43 {
 public:
  /// What a frame is known to be.
  enum Type : int {
    General = 0,              ///< affine, of no known special form, or not classified
    Identity = 1,             ///< identity rotation, zero translation
    Rotation = 2,             ///< right-handed orthonormal rotation, zero translation
    Translation = 3,          ///< identity rotation, any translation
    RotationTranslation = 4,  ///< right-handed orthonormal rotation, any translation
    Projective = 5            ///< fourth row not exactly (0, 0, 0, 1)
  };

  /// Makes the identity.
  Matrix43();

  /// Copies the 16 doubles and the kind.
  Matrix43(const Matrix43& other) = default;

  /// Makes a frame from eight lanes, the 16 doubles in storage order; its kind is `General`. Null
  /// gives the identity.
  Matrix43(const __m128d* lanes);

  virtual ~Matrix43();

  /// Copies the 16 doubles and the kind. Nothing is copied when both frames are of the kind
  /// `Identity`.
  Matrix43& operator=(const Matrix43& other);

  /// Loads 16 doubles in storage order and classifies them. The pointer may be this frame's own.
  /// Null changes nothing.
  Matrix43& operator=(const double* p);

  /// @{
  /// Returns the address of U.x; the other 15 doubles follow.
  operator double*() { return elements_; }
  operator const double*() const { return elements_; }
  /// @}

  /// Returns the eight lanes, aligned to 16 bytes.
  const __m128d* Get_m128d() const { return reinterpret_cast<const __m128d*>(elements_); }

  /// Makes this the identity, values and kind.
  void SetIdentity();

  /// @{
  /// Returns column U, V, W or T: its x, y, z, with w 0.0.
  Vector3D GetU();
  Vector3D GetV();
  Vector3D GetW();
  Vector3D GetTrans();
  /// @}

  /// Sets the three direction columns, four components each; T stays. The kind becomes `Rotation`.
  ///
  /// Deliberate: nothing is checked, and the kind is `Rotation` even where T is not zero. A caller
  /// that wants a checked kind loads 16 doubles.
  void SetUVW(const Vector3D& u, const Vector3D& v, const Vector3D& w);

  /// Sets the direction columns, four components each, and the origin; T.w becomes 1.0. The kind
  /// becomes `RotationTranslation`, unchecked.
  void SetUVWT(const Vector3D& u, const Vector3D& v, const Vector3D& w, const Vector3D& t);

  /// Does what SetUVWT() does, with the origin first in the list.
  void SetTUVW(const Vector3D& t, const Vector3D& u, const Vector3D& v, const Vector3D& w);

  /// Sets the origin; T.w becomes 1.0. The kind takes a translation in.
  void SetTrans(const Vector3D& t);

  /// Returns the product this * b: b applies first, then this.
  ///
  /// Deliberate: the product of two `Translation` frames is a `RotationTranslation`; the kinds of
  /// products are conservative. A product with an `Identity` factor is a copy of the other one.
  Matrix43 operator*(const Matrix43& b);

  /// Returns the image of a point; w is 0.0. A `Projective` frame divides by the fourth
  /// coordinate, unless that is 0.0 or 1.0.
  Vector3D ApplyToPoint(const Vector3D& p);

  /// Does what ApplyToPoint() does.
  Vector3D operator*(const Vector3D& p);

  /// Returns the image of a direction, without translation; w is 0.0.
  ///
  /// Deliberate: a `Projective` frame gives the null vector.
  Vector3D ApplyToVector3D(const Vector3D& v);

  /// Returns the inverse.
  ///
  /// Rigid kinds are inverted as HInverse() does. A `General` frame is inverted by cofactors; when
  /// its determinant is below 1e-20 in size (strict), the identity comes back. A `Projective`
  /// frame is inverted as a 4x4 matrix; a determinant of exactly 0.0 gives the identity.
  Matrix43 Inverse();

  /// Returns the inverse of a rigid frame: the transposed directions R' and the origin -(R' * T).
  ///
  /// For frames that are not rigid the same steps give what they give: callers rely on the
  /// transpose. A `Projective` frame yields identity values of the kind `Projective`.
  Matrix43 HInverse();

  /// Replaces U, V, W by the right-handed rotation about a principal axis; T stays. Directions
  /// other than X and Y count as Z. An angle of exactly 0.0 gives the unit axes.
  void SetRotation(const Direction& d, const Angle& a);

  /// Replaces U, V, W by the right-handed rotation about an axis through the origin; T stays.
  ///
  /// An axis within 0.00001 (strict, by component) of a signed unit axis turns as the principal
  /// axis does. Any other one, of whatever length, turns through the frame of MakeAxisW(); there
  /// the kind becomes `Rotation` even where T is not zero. Deliberate: callers set T afterwards. An
  /// axis shorter than 0.001 turns about Z.
  void SetRotation(const Vector3D& axis, const Angle& a);

  /// Becomes a rotation whose W is the unit vector of @p w, with T zero. NaN and overflow pass into
  /// the directions as Vector3D::MakeUnit() lets them.
  ///
  /// @return true; false, and the identity, when @p w is shorter than 0.001
  bool MakeAxisW(const Vector3D& w);

  /// Tells whether the frame is the identity, exactly; the fourth row is not looked at.
  bool IsIdentity() const;

  /// Tells whether the frame is of the kind `Translation` or has the diagonal (1, 1, 1), exactly.
  ///
  /// Deliberate: the other elements are not looked at.
  bool IsTranslation() const;

  /// Tells whether U, V, W are right-handed and orthonormal: lengths within 0.001 of 1 (inclusive)
  /// and cross products within 0.0001 by component (strict). The kind is not looked at. NaN gives
  /// false.
  bool IsRotary() const;

  /// Tells whether no element differs by more than @p tol; a difference equal to it passes. The
  /// fourth row counts only where this frame is `Projective`. NaN differs from nothing.
  bool IsSame(const Matrix43& other, double tol) const;

  /// Returns 1 when all 16 doubles are exactly equal, else 0. The kinds are not compared.
  /// There is no `!=`: write `!(a == b)`, since `a != b` compares addresses in C++17.
  int operator==(const Matrix43& other) const;

  /// Replaces @p out by the text of the four columns with three decimals. Null is ignored.
  void GetStringDebug(std::wstring* out) const;

 private:
  friend struct FrameAccess;

  void IdentifyType();
  void UpdateType(const Matrix43::Type& op);

  alignas(16) double elements_[16];
  Type type_;
};

}  // namespace Orvo
