#pragma once

#include "property/reference/Vector.h"

#include <string>

namespace Reference {

/// What a frame is known to be.
enum class Kind {
  General = 0,
  Identity = 1,
  Rotation = 2,
  Translation = 3,
  RotationTranslation = 4,
  Projective = 5
};

/// A frame of four columns U, V, W, T with its cached kind; element (row r, column c) is
/// m[4 * c + r].
struct Frame {
  double m[16];
  Kind kind;

  Frame();
  Frame(const Frame& other) = default;
  Frame& operator=(const Frame& other);
  ~Frame() = default;

  static Frame FromLanes(const double* p);
  void Load(const double* p);
  void SetIdentity();
  Vector Column(int column) const;
  void SetColumn(int column, const Vector& v);
  void SetUVW(const Vector& u, const Vector& v, const Vector& w);
  void SetUVWT(const Vector& u, const Vector& v, const Vector& w, const Vector& t);
  void SetTrans(const Vector& t);
  Frame Times(const Frame& b) const;
  Vector ApplyToPoint(const Vector& p) const;
  Vector ApplyToVector(const Vector& v) const;
  Frame HInverse() const;
  Frame Inverse() const;
  void SetRotation(int direction, double radians);
  void SetRotation(const Vector& axis, double radians);
  bool MakeAxisW(const Vector& w);
  bool IsIdentity() const;
  bool IsTranslation() const;
  bool IsRotary() const;
  bool IsSame(const Frame& other, double tol) const;
  bool Equal(const Frame& other) const;
  std::wstring DebugText() const;

  void IdentifyKind();
  void UpdateKind(Kind op);

  /// The determinant of the 3x3 block, or of all 16 elements where the kind is Projective.
  double Determinant() const;
};

}  // namespace Reference
