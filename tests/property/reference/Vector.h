#pragma once

#include <string>

/// A plain twin of the library for the property tests: every formula once more, one step after the
/// other, with nothing shared with the code under test.
namespace Reference {

constexpr double Pi = 3.141592653589793;

/// A point or direction with its fourth component.
struct Vector {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  double w = 0.0;
};

double DegreesToRadians(double degrees);
double RadiansToDegrees(double radians);

Vector Sum(const Vector& a, const Vector& b);
Vector Difference(const Vector& a, const Vector& b);
Vector Negated(const Vector& a);
Vector Scaled(const Vector& a, double factor);
double Dot(const Vector& a, const Vector& b);
Vector Cross(const Vector& a, const Vector& b);
double NormSquare(const Vector& a);
double Norm(const Vector& a);
double NormSup(const Vector& a);
double Distance(const Vector& a, const Vector& b);
bool Equal(const Vector& a, const Vector& b);
bool MakeUnit(Vector* a, double tol);
bool IsSame(const Vector& a, const Vector& b, double tol);
bool IsSameSign(const Vector& a, int directionSign, double tol);
bool IsColinear(const Vector& a, const Vector& b, double tol, double* ratio);
void GrowMax(Vector* a, const Vector& b);
void GrowMin(Vector* a, const Vector& b);
std::wstring DebugText(const Vector& a);

/// Sets the signed angle from one direction to another about a reference, in radians.
bool SignedAngle(const Vector& from, const Vector& to, const Vector& ref, double* radians);

}  // namespace Reference
