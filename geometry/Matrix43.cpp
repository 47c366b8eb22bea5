#include "geometry/FrameKernel.h"
#include "geometry/NumberText.h"
#include "geometry/PrincipalAxis.h"
#include "geometry/SinCos.h"
#include "geometry/VectorKernel.h"

#include <Orvo/Angle.h>
#include <Orvo/Matrix43.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>

namespace Orvo {

namespace {

constexpr double UnitLengthTolerance = 0.001;
constexpr double CrossProductTolerance = 0.0001;
constexpr double PrincipalAxisTolerance = 0.00001;
constexpr double SmallestDirection = 0.001;
constexpr double SmallestDeterminant = 1e-20;

bool HasAffineRow(const double* m) {
  return m[3] == 0.0 && m[7] == 0.0 && m[11] == 0.0 && m[15] == 1.0;
}

// The unit axes in x, y, z of U, V, W.
bool HasUnitAxes(const double* m) {
  for (int column = 0; column < 3; ++column) {
    for (int row = 0; row < 3; ++row) {
      if (m[4 * column + row] != IdentityFrame[4 * column + row]) {
        return false;
      }
    }
  }
  return true;
}

bool IsZeroPoint(const double* p) { return p[0] == 0.0 && p[1] == 0.0 && p[2] == 0.0; }

bool IsNearUnitLength(const double* p) {
  return !(std::fabs(Length(p) - 1.0) > UnitLengthTolerance);
}

// The cofactors of the 3x3 block, as the rows of the adjugate: row i is the cross product of the
// two columns after column i.
struct Cofactors {
  Vector3D u, v, w;
};

Cofactors ComputeCofactors(const double* m) {
  return {Cross(m + 4, m + 8), Cross(m + 8, m), Cross(m, m + 4)};
}

// The determinants of the six pairs of columns a, b in two rows.
struct PairDeterminants {
  double of01, of02, of03, of12, of13, of23;
};

PairDeterminants ComputePairDeterminants(const double* m, int row0, int row1) {
  const auto pair = [m, row0, row1](int a, int b) {
    return m[4 * a + row0] * m[4 * b + row1] - m[4 * b + row0] * m[4 * a + row1];
  };
  return {pair(0, 1), pair(0, 2), pair(0, 3), pair(1, 2), pair(1, 3), pair(2, 3)};
}

// Inverts a 4x4 matrix by Laplace expansion over its two upper and two lower rows (Eberly, "The
// Laplace Expansion Theorem", 2008). Returns false, without a result, where the determinant is
// exactly 0.
bool InvertProjective(const double* m, double* inverse) {
  const PairDeterminants s = ComputePairDeterminants(m, 0, 1);
  const PairDeterminants c = ComputePairDeterminants(m, 2, 3);
  const double determinant = s.of01 * c.of23 - s.of02 * c.of13 + s.of03 * c.of12 + s.of12 * c.of03 -
                             s.of13 * c.of02 + s.of23 * c.of01;
  if (determinant == 0.0) {
    return false;
  }
  const auto at = [m](int row, int column) { return m[4 * column + row]; };
  // Entry (row, column) of the adjugate, from the rows of m that its minor keeps.
  const auto set = [inverse, determinant](int row, int column, double value) {
    inverse[4 * column + row] = value / determinant;
  };
  set(0, 0, at(1, 1) * c.of23 - at(1, 2) * c.of13 + at(1, 3) * c.of12);
  set(0, 1, -at(0, 1) * c.of23 + at(0, 2) * c.of13 - at(0, 3) * c.of12);
  set(0, 2, at(3, 1) * s.of23 - at(3, 2) * s.of13 + at(3, 3) * s.of12);
  set(0, 3, -at(2, 1) * s.of23 + at(2, 2) * s.of13 - at(2, 3) * s.of12);
  set(1, 0, -at(1, 0) * c.of23 + at(1, 2) * c.of03 - at(1, 3) * c.of02);
  set(1, 1, at(0, 0) * c.of23 - at(0, 2) * c.of03 + at(0, 3) * c.of02);
  set(1, 2, -at(3, 0) * s.of23 + at(3, 2) * s.of03 - at(3, 3) * s.of02);
  set(1, 3, at(2, 0) * s.of23 - at(2, 2) * s.of03 + at(2, 3) * s.of02);
  set(2, 0, at(1, 0) * c.of13 - at(1, 1) * c.of03 + at(1, 3) * c.of01);
  set(2, 1, -at(0, 0) * c.of13 + at(0, 1) * c.of03 - at(0, 3) * c.of01);
  set(2, 2, at(3, 0) * s.of13 - at(3, 1) * s.of03 + at(3, 3) * s.of01);
  set(2, 3, -at(2, 0) * s.of13 + at(2, 1) * s.of03 - at(2, 3) * s.of01);
  set(3, 0, -at(1, 0) * c.of12 + at(1, 1) * c.of02 - at(1, 2) * c.of01);
  set(3, 1, at(0, 0) * c.of12 - at(0, 1) * c.of02 + at(0, 2) * c.of01);
  set(3, 2, -at(3, 0) * s.of12 + at(3, 1) * s.of02 - at(3, 2) * s.of01);
  set(3, 3, at(2, 0) * s.of12 - at(2, 1) * s.of02 + at(2, 2) * s.of01);
  return true;
}

void SetColumn(double* column, double x, double y, double z) {
  column[0] = x;
  column[1] = y;
  column[2] = z;
}

// Writes x, y, z.
void SetColumn(double* column, const Lanes& lanes) {
  _mm_store_pd(column, lanes.xy);
  _mm_store_sd(column + 2, lanes.zw);
}

Vector3D FromLanes(const Lanes& lanes) {
  Vector3D result;
  StoreLanes(result, WithW(lanes, 0.0));
  return result;
}

// The kind of a frame whose directions become the unit axes.
Matrix43::Type TypeWithoutRotation(Matrix43::Type type) {
  switch (type) {
    case Matrix43::General:
    case Matrix43::Translation:
    case Matrix43::RotationTranslation:
      return Matrix43::Translation;
    case Matrix43::Identity:
    case Matrix43::Rotation:
    case Matrix43::Projective:
      break;
  }
  return Matrix43::Identity;
}

}  // namespace

const PrincipalAxis* FindPrincipalAxis(const Vector3D& dir) {
  static constexpr PrincipalAxis Axes[] = {{ZPlus, Z, false}, {ZMinus, Z, true}, {XPlus, X, false},
                                           {XMinus, X, true}, {YPlus, Y, false}, {YMinus, Y, true}};
  const auto* const found = std::find_if(
      std::begin(Axes), std::end(Axes),
      [&dir](const auto& axis) { return dir.IsSame(axis.sign, PrincipalAxisTolerance); });
  return found == std::end(Axes) ? nullptr : found;
}

Matrix43::Matrix43() { SetIdentity(); }

Matrix43::Matrix43(const __m128d* lanes) {
  SetIdentity();
  if (lanes != nullptr) {
    for (int lane = 0; lane < 8; ++lane) {
      _mm_store_pd(elements_ + 2 * lane, lanes[lane]);
    }
    type_ = General;
  }
}

Matrix43::~Matrix43() = default;

Matrix43& Matrix43::operator=(const Matrix43& other) {
  if (this != &other && !(type_ == Identity && other.type_ == Identity)) {
    std::memcpy(elements_, other.elements_, sizeof elements_);
    type_ = other.type_;
  }
  return *this;
}

Matrix43& Matrix43::operator=(const double* p) {
  if (p != nullptr) {
    std::memmove(elements_, p, sizeof elements_);
    IdentifyType();
  }
  return *this;
}

void Matrix43::SetIdentity() {
  std::memcpy(elements_, IdentityFrame, sizeof elements_);
  type_ = Identity;
}

Vector3D Matrix43::GetU() { return Vector3D(elements_); }

Vector3D Matrix43::GetV() { return Vector3D(elements_ + 4); }

Vector3D Matrix43::GetW() { return Vector3D(elements_ + 8); }

Vector3D Matrix43::GetTrans() { return Vector3D(elements_ + 12); }

void Matrix43::SetUVW(const Vector3D& u, const Vector3D& v, const Vector3D& w) {
  StoreLanes(elements_, LoadLanes(u));
  StoreLanes(elements_ + 4, LoadLanes(v));
  StoreLanes(elements_ + 8, LoadLanes(w));
  type_ = Rotation;
}

void Matrix43::SetUVWT(const Vector3D& u, const Vector3D& v, const Vector3D& w, const Vector3D& t) {
  SetUVW(u, v, w);
  StoreLanes(elements_ + 12, WithW(LoadLanes(t), 1.0));
  type_ = RotationTranslation;
}

void Matrix43::SetTUVW(const Vector3D& t, const Vector3D& u, const Vector3D& v, const Vector3D& w) {
  SetUVWT(u, v, w, t);
}

void Matrix43::SetTrans(const Vector3D& t) {
  StoreLanes(elements_ + 12, WithW(LoadLanes(t), 1.0));
  UpdateType(Translation);
}

Matrix43 Matrix43::operator*(const Matrix43& b) {
  Matrix43 product;
  product.type_ = MultiplyFrames(elements_, type_, b.elements_, b.type_, product.elements_);
  return product;
}

Vector3D Matrix43::ApplyToPoint(const Vector3D& p) {
  switch (type_) {
    case General:
    case RotationTranslation:
      return FromLanes(ImageOfPoint(elements_, p[0], p[1], p[2]));
    case Identity:
      return FromLanes(LoadLanes(p));
    case Rotation:
      return FromLanes(CombineColumns(elements_, p[0], p[1], p[2]));
    case Translation:
      return FromLanes(Add(LoadLanes(p), LoadLanes(elements_ + 12)));
    case Projective: {
      Vector3D image;
      StoreLanes(image, ImageOfPoint(elements_, p[0], p[1], p[2]));
      const double scale = image[3];
      return scale != 0.0 && scale != 1.0
                 ? Vector3D(image[0] / scale, image[1] / scale, image[2] / scale)
                 : Vector3D(image[0], image[1], image[2]);
    }
  }
  return NullVector;
}

Vector3D Matrix43::operator*(const Vector3D& p) { return ApplyToPoint(p); }

Vector3D Matrix43::ApplyToVector3D(const Vector3D& v) {
  switch (type_) {
    case Identity:
    case Translation:
      return FromLanes(LoadLanes(v));
    case General:
    case Rotation:
    case RotationTranslation:
      return FromLanes(CombineColumns(elements_, v[0], v[1], v[2]));
    case Projective:
      break;
  }
  return NullVector;
}

Matrix43 Matrix43::Inverse() {
  Matrix43 inverse;
  if (type_ == General) {
    const Cofactors rows = ComputeCofactors(elements_);
    const double determinant = Dot(elements_, rows.u);
    if (std::fabs(determinant) < SmallestDeterminant) {
      return inverse;
    }
    for (int i = 0; i < 3; ++i) {
      SetColumn(inverse.elements_ + 4 * i, rows.u[i] / determinant, rows.v[i] / determinant,
                rows.w[i] / determinant);
    }
    const Lanes origin =
        CombineColumns(inverse.elements_, elements_[12], elements_[13], elements_[14]);
    inverse.SetTrans(-FromLanes(origin));
    inverse.type_ = General;
    return inverse;
  }
  if (type_ == Projective) {
    if (InvertProjective(elements_, inverse.elements_)) {
      inverse.type_ = Projective;
    }
    return inverse;
  }
  return HInverse();
}

Matrix43 Matrix43::HInverse() {
  Matrix43 inverse;
  inverse.type_ = type_;
  InvertRigid(elements_, type_, inverse.elements_);
  return inverse;
}

void Matrix43::SetRotation(const Direction& d, const Angle& a) {
  if (a.GetRadian() == 0.0) {
    SetColumn(elements_, 1.0, 0.0, 0.0);
    SetColumn(elements_ + 4, 0.0, 1.0, 0.0);
    SetColumn(elements_ + 8, 0.0, 0.0, 1.0);
    type_ = TypeWithoutRotation(type_);
    return;
  }
  double sine;
  double cosine;
  SinCos(a.GetRadian(), &sine, &cosine);
  const Directions turn = PrincipalTurn(d, sine, cosine);
  SetColumn(elements_, turn.u);
  SetColumn(elements_ + 4, turn.v);
  SetColumn(elements_ + 8, turn.w);
  UpdateType(Rotation);
}

void Matrix43::SetRotation(const Vector3D& axis, const Angle& a) {
  if (a.GetRadian() == 0.0) {
    SetRotation(Z, a);
    elements_[3] = elements_[7] = elements_[11] = 0.0;
    return;
  }
  if (const PrincipalAxis* const principal = FindPrincipalAxis(axis)) {
    SetRotation(principal->direction, principal->isReversed ? Angle(-a.GetRadian()) : a);
    return;
  }
  Matrix43 fromAxis;
  fromAxis.MakeAxisW(axis);
  Matrix43 aboutZ;
  aboutZ.SetRotation(Z, a);
  const Matrix43 rotation = fromAxis * aboutZ * fromAxis.HInverse();
  CopyDirections(rotation.elements_, elements_);
  type_ = Rotation;
}

bool Matrix43::MakeAxisW(const Vector3D& w) {
  Vector3D n(w);
  SetIdentity();
  if (!n.MakeUnit(SmallestDirection)) {
    return false;
  }
  Vector3D v = Cross(n, AxisX);
  if (!v.MakeUnit(SmallestDirection)) {
    v = Cross(n, AxisY);
  }
  SetUVW(Cross(v, n), v, n);
  return true;
}

bool Matrix43::IsIdentity() const {
  return type_ == Identity || (HasUnitAxes(elements_) && IsZeroPoint(elements_ + 12));
}

bool Matrix43::IsTranslation() const {
  return type_ == Translation ||
         (elements_[0] == 1.0 && elements_[5] == 1.0 && elements_[10] == 1.0);
}

bool Matrix43::IsRotary() const {
  const double* const u = elements_;
  const double* const v = elements_ + 4;
  const double* const w = elements_ + 8;
  return IsNearUnitLength(u) && IsNearUnitLength(v) && IsNearUnitLength(w) &&
         IsWithin(Cross(u, v), w, CrossProductTolerance) &&
         IsWithin(Cross(v, w), u, CrossProductTolerance) &&
         IsWithin(Cross(w, u), v, CrossProductTolerance);
}

bool Matrix43::IsSame(const Matrix43& other, double tol) const {
  const auto differs = [this, &other, tol](int i) {
    return std::fabs(elements_[i] - other.elements_[i]) > tol;
  };
  for (int i = 0; i < 16; ++i) {
    const bool isFourthRow = i % 4 == 3;
    if ((!isFourthRow || type_ == Projective) && differs(i)) {
      return false;
    }
  }
  return true;
}

int Matrix43::operator==(const Matrix43& other) const {
  return std::equal(elements_, elements_ + 16, other.elements_) ? 1 : 0;
}

void Matrix43::GetStringDebug(std::wstring* out) const {
  if (out == nullptr) {
    return;
  }
  std::wstring text;
  const wchar_t* const labels[4] = {L"(u=", L", v=", L", w=", L", t="};
  for (int column = 0; column < 4; ++column) {
    text += labels[column];
    AppendPoint(elements_ + 4 * column, &text);
  }
  text += L')';
  *out = std::move(text);
}

void Matrix43::IdentifyType() {
  if (!HasAffineRow(elements_)) {
    type_ = Projective;
    return;
  }
  const bool isAtOrigin = IsZeroPoint(elements_ + 12);
  if (HasUnitAxes(elements_)) {
    type_ = isAtOrigin ? Identity : Translation;
  } else if (IsRotary()) {
    type_ = isAtOrigin ? Rotation : RotationTranslation;
  } else {
    type_ = General;
  }
}

void Matrix43::UpdateType(const Matrix43::Type& op) {
  const Type added = op;
  if (type_ == Identity) {
    type_ = added;
  } else if (type_ == General || added == General) {
    type_ = General;
  } else if (type_ == Projective || added == Projective) {
    type_ = Projective;
  } else if (type_ != added && added != Identity) {
    type_ = RotationTranslation;
  }
}

}  // namespace Orvo
