#pragma once

#include <Orvo/Vector3D.h>

#include <cmath>

namespace Orvo::Path {

constexpr double Pi = 3.141592653589793;

inline double RadFromDeg(double deg) { return deg / 180.0 * Pi; }
inline double DegFromRad(double rad) { return rad * 180.0 / Pi; }

/// Three doubles that inner loops compute with.
struct Vec3 {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

inline Vec3 operator+(const Vec3& a, const Vec3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec3 operator-(const Vec3& a, const Vec3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec3 operator*(const Vec3& a, double k) { return {a.x * k, a.y * k, a.z * k}; }
inline double Dot(const Vec3& a, const Vec3& b) { return a.x * b.x + (a.y * b.y + a.z * b.z); }
inline Vec3 Cross(const Vec3& a, const Vec3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double Norm(const Vec3& a) { return std::sqrt(Dot(a, a)); }
inline Vec3 Unit(const Vec3& a) { return a * (1.0 / Norm(a)); }

inline bool IsFinite(const Vec3& a) {
  return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(a.z);
}

/// Returns the angle between two directions of any length, exact for small angles too.
inline double AngleBetween(const Vec3& a, const Vec3& b) {
  return std::atan2(Norm(Cross(a, b)), Dot(a, b));
}

inline Vec3 FromVector(const Vector3D& v) { return {v[0], v[1], v[2]}; }
inline Vector3D ToVector(const Vec3& v) { return Vector3D(v.x, v.y, v.z); }

}  // namespace Orvo::Path
