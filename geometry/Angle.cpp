#include "geometry/Degrees.h"
#include "geometry/VectorKernel.h"

#include <Orvo/Angle.h>
#include <Orvo/Vector3D.h>

#include <algorithm>
#include <cmath>

namespace Orvo {

namespace {

// A direction shorter than this, in the caller's unit, has no angle.
constexpr double ShortestDirection = 0.00001;

}  // namespace

Angle::Angle() : radians_(0.0) {}

Angle::Angle(double radians) : radians_(radians) {}

Angle::Angle(const Angle& other) = default;

Angle& Angle::operator=(const Angle& other) = default;

Angle::~Angle() = default;

void Angle::SetRadian(double radians) { radians_ = radians; }

double Angle::GetRadian() const { return radians_; }

void Angle::SetDegre(double degrees) { radians_ = RadiansFromDegrees(degrees); }

double Angle::GetDegre() const { return DegreesFromRadians(radians_); }

bool Angle::SetVector3DRef(const Vector3D& from, const Vector3D& to, const Vector3D& ref) {
  const double fromLength = Length(from);
  const double toLength = Length(to);
  if (fromLength < ShortestDirection || toLength < ShortestDirection) {
    radians_ = 0.0;
    return false;
  }
  const Vector3D a(from[0] / fromLength, from[1] / fromLength, from[2] / fromLength);
  const Vector3D b(to[0] / toLength, to[1] / toLength, to[2] / toLength);
  const double cosine = std::clamp(Dot(a, b), -1.0, 1.0);
  const Vector3D normal = Cross(a, b);
  const double angle = std::atan2(Length(normal), cosine);
  radians_ = Dot(normal, ref) < 0.0 ? -angle : angle;
  return true;
}

double Angle::Sin() const { return std::sin(radians_); }

double Angle::Cos() const { return std::cos(radians_); }

Angle Angle::operator+(const Angle& other) { return Angle(radians_ + other.radians_); }

Angle Angle::operator-(const Angle& other) { return Angle(radians_ - other.radians_); }

Angle Angle::operator-() { return Angle(-radians_); }

Angle Angle::operator*(double factor) { return Angle(radians_ * factor); }

int Angle::operator<(const Angle& other) const { return radians_ < other.radians_ ? 1 : 0; }

int Angle::operator>(const Angle& other) const { return radians_ > other.radians_ ? 1 : 0; }

}  // namespace Orvo
