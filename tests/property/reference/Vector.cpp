#include "property/reference/Vector.h"

#include <cmath>
#include <cwchar>

namespace Reference {

double DegreesToRadians(double degrees) {
  const double halfTurns = degrees / 180.0;
  return halfTurns * Pi;
}

double RadiansToDegrees(double radians) {
  const double scaled = radians * 180.0;
  return scaled / Pi;
}

Vector Sum(const Vector& a, const Vector& b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z, a.w + b.w};
}

Vector Difference(const Vector& a, const Vector& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z, a.w - b.w};
}

Vector Negated(const Vector& a) { return {-a.x, -a.y, -a.z, 0.0}; }

Vector Scaled(const Vector& a, double factor) {
  return {a.x * factor, a.y * factor, a.z * factor, a.w * factor};
}

double Dot(const Vector& a, const Vector& b) {
  const double xx = a.x * b.x;
  const double yy = a.y * b.y;
  const double zz = a.z * b.z;
  const double tail = yy + zz;
  return xx + tail;
}

Vector Cross(const Vector& a, const Vector& b) {
  Vector out;
  out.x = a.y * b.z - a.z * b.y;
  out.y = a.z * b.x - a.x * b.z;
  out.z = a.x * b.y - a.y * b.x;
  out.w = 0.0;
  return out;
}

double NormSquare(const Vector& a) { return Dot(a, a); }

double Norm(const Vector& a) { return std::sqrt(NormSquare(a)); }

double NormSup(const Vector& a) {
  double largest = std::fabs(a.x);
  if (std::fabs(a.y) > largest) {
    largest = std::fabs(a.y);
  }
  if (std::fabs(a.z) > largest) {
    largest = std::fabs(a.z);
  }
  return largest;
}

double Distance(const Vector& a, const Vector& b) { return Norm(Difference(a, b)); }

bool Equal(const Vector& a, const Vector& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

bool MakeUnit(Vector* a, double tol) {
  const double n = Norm(*a);
  if (tol > n || n == 0.0) {
    *a = {1.0, 0.0, 0.0, 0.0};
    return false;
  }
  a->x = a->x / n;
  a->y = a->y / n;
  a->z = a->z / n;
  a->w = a->w / n;
  return true;
}

bool IsSame(const Vector& a, const Vector& b, double tol) {
  if (!(std::fabs(a.x - b.x) < tol)) {
    return false;
  }
  if (!(std::fabs(a.y - b.y) < tol)) {
    return false;
  }
  return std::fabs(a.z - b.z) < tol;
}

bool IsSameSign(const Vector& a, int directionSign, double tol) {
  switch (directionSign) {
    case 0:
      return IsSame(a, {1.0, 0.0, 0.0, 0.0}, tol);
    case 1:
      return IsSame(a, {-1.0, 0.0, 0.0, 0.0}, tol);
    case 2:
      return IsSame(a, {0.0, 1.0, 0.0, 0.0}, tol);
    case 3:
      return IsSame(a, {0.0, -1.0, 0.0, 0.0}, tol);
    case 4:
      return IsSame(a, {0.0, 0.0, 1.0, 0.0}, tol);
    case 5:
      return IsSame(a, {0.0, 0.0, -1.0, 0.0}, tol);
    default:
      return false;
  }
}

bool IsColinear(const Vector& a, const Vector& b, double tol, double* ratio) {
  if (NormSup(a) < 0.0001 || NormSup(b) < 0.0001) {
    return false;
  }
  Vector unitA = a;
  Vector unitB = b;
  MakeUnit(&unitA, 0.001);
  MakeUnit(&unitB, 0.001);
  const double squaredSine = NormSquare(Cross(unitA, unitB));
  if (!(squaredSine < tol * tol)) {
    return false;
  }
  if (ratio == nullptr) {
    return true;
  }
  *ratio = 1e8;
  const double of[3] = {a.x, a.y, a.z};
  const double to[3] = {b.x, b.y, b.z};
  for (int i = 0; i < 3; ++i) {
    if (std::fabs(of[i]) > tol && std::fabs(to[i]) > tol) {
      *ratio = to[i] / of[i];
      break;
    }
  }
  return true;
}

void GrowMax(Vector* a, const Vector& b) {
  a->x = b.x > a->x ? b.x : a->x;
  a->y = b.y > a->y ? b.y : a->y;
  a->z = b.z > a->z ? b.z : a->z;
  a->w = b.w > a->w ? b.w : a->w;
}

void GrowMin(Vector* a, const Vector& b) {
  a->x = b.x < a->x ? b.x : a->x;
  a->y = b.y < a->y ? b.y : a->y;
  a->z = b.z < a->z ? b.z : a->z;
  a->w = b.w < a->w ? b.w : a->w;
}

std::wstring DebugText(const Vector& a) {
  wchar_t buffer[2000];
  const int written = std::swprintf(buffer, 2000, L"(%5.3f, %5.3f, %5.3f)", a.x, a.y, a.z);
  return written < 0 ? std::wstring() : std::wstring(buffer);
}

bool SignedAngle(const Vector& from, const Vector& to, const Vector& ref, double* radians) {
  const double na = Norm(from);
  const double nb = Norm(to);
  if (na < 0.00001 || nb < 0.00001) {
    *radians = 0.0;
    return false;
  }
  const Vector a = {from.x / na, from.y / na, from.z / na, 0.0};
  const Vector b = {to.x / nb, to.y / nb, to.z / nb, 0.0};
  double d = Dot(a, b);
  if (d < -1.0) {
    d = -1.0;
  }
  if (d > 1.0) {
    d = 1.0;
  }
  const Vector k = Cross(a, b);
  const double s = Norm(k);
  double angle = std::atan2(s, d);
  if (Dot(k, ref) < 0.0) {
    angle = -angle;
  }
  *radians = angle;
  return true;
}

}  // namespace Reference
