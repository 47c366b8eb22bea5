#include "geometry/Lanes.h"
#include "geometry/NumberText.h"
#include "geometry/VectorKernel.h"

#include <Orvo/Vector3D.h>

#include <cmath>

namespace Orvo {

namespace {

// A vector whose components are all below this is colinear with nothing.
constexpr double SmallestColinear = 0.0001;

// The ratio of colinear vectors none of whose components exceeds the tolerance.
constexpr double NoRatio = 1e8;

constexpr int DirectionSignCount = 6;

// By value of DirectionSign.
constexpr Vector3D SignedAxes[DirectionSignCount] = {
    Vector3D(1.0, 0.0, 0.0),  Vector3D(-1.0, 0.0, 0.0), Vector3D(0.0, 1.0, 0.0),
    Vector3D(0.0, -1.0, 0.0), Vector3D(0.0, 0.0, 1.0),  Vector3D(0.0, 0.0, -1.0)};

Vector3D FromLanes(const Lanes& lanes) {
  Vector3D result;
  StoreLanes(result, lanes);
  return result;
}

}  // namespace

Vector3D::Vector3D(const double* p) : Vector3D() { Set(p); }

Vector3D::Vector3D(const __m128d* lanes) : Vector3D() {
  if (lanes != nullptr) {
    Set(lanes[0], lanes[1]);
  }
}

Vector3D::Vector3D(const __m128d& lane0, const __m128d& lane1) : Vector3D() { Set(lane0, lane1); }

Vector3D& Vector3D::operator=(const double* p) {
  Set(p);
  return *this;
}

void Vector3D::Set(double x, double y, double z) { *this = Vector3D(x, y, z); }

void Vector3D::Set(const double* p) {
  if (p == nullptr) {
    Reset();
  } else {
    Set(p[0], p[1], p[2]);
  }
}

void Vector3D::Set(const __m128d& lane0, const __m128d& lane1) {
  StoreLanes(components_, WithW({lane0, lane1}, 0.0));
}

void Vector3D::Set(const Vector3D& other) { *this = other; }

void Vector3D::Reset() { *this = Vector3D(); }

void Vector3D::Get(double* x, double* y, double* z) {
  // The places may be components of this vector.
  const Vector3D copy(*this);
  double* const places[3] = {x, y, z};
  for (int i = 0; i < 3; ++i) {
    if (places[i] != nullptr) {
      *places[i] = copy[i];
    }
  }
}

void Vector3D::Get(double* p) {
  if (p != nullptr) {
    Get(p, p + 1, p + 2);
  }
}

__m128d Vector3D::Get_m128d_0() { return LoadLanes(components_).xy; }

__m128d Vector3D::Get_m128d_1() { return LoadLanes(components_).zw; }

int Vector3D::operator==(const Vector3D& other) const {
  return components_[0] == other.components_[0] && components_[1] == other.components_[1] &&
                 components_[2] == other.components_[2]
             ? 1
             : 0;
}

Vector3D Vector3D::operator+(const Vector3D& other) {
  return FromLanes(Add(LoadLanes(components_), LoadLanes(other)));
}

Vector3D Vector3D::operator-(const Vector3D& other) {
  return FromLanes(Subtract(LoadLanes(components_), LoadLanes(other)));
}

Vector3D Vector3D::operator-() {
  return Vector3D(-components_[0], -components_[1], -components_[2]);
}

Vector3D Vector3D::operator*(double factor) {
  return FromLanes(Scale(LoadLanes(components_), factor));
}

double Vector3D::operator*(const Vector3D& other) const { return Dot(components_, other); }

Vector3D Vector3D::operator&(const Vector3D& other) { return Cross(components_, other); }

const Vector3D& Vector3D::operator+=(const Vector3D& other) {
  StoreLanes(components_, Add(LoadLanes(components_), LoadLanes(other)));
  return *this;
}

const Vector3D& Vector3D::operator-=(const Vector3D& other) {
  StoreLanes(components_, Subtract(LoadLanes(components_), LoadLanes(other)));
  return *this;
}

const Vector3D& Vector3D::operator*=(double factor) {
  StoreLanes(components_, Scale(LoadLanes(components_), factor));
  return *this;
}

double Vector3D::Norm() const { return Length(components_); }

double Vector3D::NormSquare() const { return Dot(components_, components_); }

double Vector3D::NormSup() const { return LargestComponent(components_); }

double Vector3D::Distance(const Vector3D& point) const { return Length(Minus(components_, point)); }

bool Vector3D::MakeUnit(double tol) {
  const double length = Length(components_);
  if (tol > length || length == 0.0) {
    *this = AxisX;
    return false;
  }
  StoreLanes(components_, Divide(LoadLanes(components_), length));
  return true;
}

bool Vector3D::IsSame(const Vector3D& other, double tol) const {
  return IsWithin(components_, other, tol);
}

bool Vector3D::IsSame(const DirectionSign& direction, double tol) const {
  const int index = direction;
  return index >= 0 && index < DirectionSignCount && IsSame(SignedAxes[index], tol);
}

bool Vector3D::IsColinear(const Vector3D& other, double tol, double* ratio) const {
  if (NormSup() < SmallestColinear || other.NormSup() < SmallestColinear) {
    return false;
  }
  Vector3D a(*this);
  Vector3D b(other);
  a.MakeUnit(0.001);
  b.MakeUnit(0.001);
  const Vector3D normal = Cross(a, b);
  if (!(Dot(normal, normal) < tol * tol)) {
    return false;
  }
  if (ratio == nullptr) {
    return true;
  }
  // Stored at the end: the ratio may go into a component of either vector.
  double found = NoRatio;
  for (int i = 0; i < 3; ++i) {
    if (std::fabs(components_[i]) > tol && std::fabs(other.components_[i]) > tol) {
      found = other.components_[i] / components_[i];
      break;
    }
  }
  *ratio = found;
  return true;
}

void Vector3D::ModificationMax(const Vector3D& other) {
  StoreLanes(components_, Larger(LoadLanes(components_), LoadLanes(other)));
}

void Vector3D::ModificationMin(const Vector3D& other) {
  StoreLanes(components_, Smaller(LoadLanes(components_), LoadLanes(other)));
}

void Vector3D::GetStringDebug(std::wstring* out) const {
  if (out == nullptr) {
    return;
  }
  std::wstring text;
  AppendPoint(components_, &text);
  *out = std::move(text);
}

}  // namespace Orvo
