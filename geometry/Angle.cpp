#include "geometry/AngleKernel.h"
#include "geometry/Degrees.h"

#include <Orvo/Angle.h>
#include <Orvo/Vector3D.h>

#include <cmath>

namespace Orvo {

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
  const UnitDirection unitFrom(from);
  const UnitDirection unitTo(to);
  if (!unitFrom.HasAngle() || !unitTo.HasAngle()) {
    radians_ = 0.0;
    return false;
  }
  radians_ = AngleBetween(unitFrom.dir, unitTo.dir, ref);
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
