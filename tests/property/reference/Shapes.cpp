#include "property/reference/Shapes.h"

#include <cmath>

namespace Reference {

Frame Circle::GetFrame() const {
  Frame f;
  f.MakeAxisW(axis);
  f.SetTrans(center);
  return f;
}

bool PlaneContainsPoint(const Plane& plane, const Vector& point, double tol) {
  if (Distance(plane.origin, point) < tol) {
    return true;
  }
  return std::fabs(Dot(Difference(point, plane.origin), plane.normal)) < tol;
}

int Intersections::LinePlane(const Plane& plane, const Line& line, Vector* out, double tol) const {
  const double dn = Dot(line.dir, plane.normal);
  if (std::fabs(dn) < tol) {
    if (std::fabs(Dot(Difference(line.origin, plane.origin), plane.normal)) < tol) {
      *out = plane.origin;
      return 2;
    }
    return 0;
  }
  const double t = (Dot(plane.normal, plane.origin) - Dot(plane.normal, line.origin)) / dn;
  *out = Sum(line.origin, Scaled(line.dir, t));
  return 1;
}

int Intersections::PlanePlane(const Plane& first, const Plane& second, Line* out,
                              double tol) const {
  if (!IsColinear(first.normal, second.normal, tol, nullptr)) {
    const Vector dir = Cross(first.normal, second.normal);
    Line across;
    across.origin = first.origin;
    across.dir = Cross(first.normal, dir);
    Vector found;
    if (LinePlane(second, across, &found, tol) == 0) {
      return 0;
    }
    out->origin = found;
    out->dir = dir;
    MakeUnit(&out->dir, 0.001);
    return 1;
  }
  if (PlaneContainsPoint(first, second.origin, tol)) {
    out->origin = second.origin;
    Frame f;
    f.MakeAxisW(first.normal);
    f.SetTrans(first.origin);
    out->dir = f.Column(0);
    MakeUnit(&out->dir, 0.001);
    return 2;
  }
  return 0;
}

bool Intersections::LineCircle2D(const Vector& p, const Vector& d, const Vector& center,
                                 double radius, Vector (&out)[2], double t1, double t2) const {
  const Vector n = {-d.y, d.x, 0.0, 0.0};
  const double s = Dot(Difference(p, center), n);
  const Vector foot = Sum(center, Scaled(n, s));
  const double size = std::fabs(s);
  if (size >= (1.0 - t1) * radius && size < (1.0 + t2) * radius) {
    out[0] = foot;
    out[1] = foot;
    return true;
  }
  if (!(radius > size - t2)) {
    return false;
  }
  const double h = std::sqrt(std::fabs(radius * radius - s * s));
  out[0] = Sum(foot, Scaled(d, h));
  out[1] = Difference(foot, Scaled(d, h));
  return true;
}

int Intersections::CirclePlane(const Plane& plane, const Circle& circle, Vector* out1,
                               Vector* out2) const {
  Plane q;
  q.origin = circle.center;
  q.normal = circle.axis;
  const Frame f = circle.GetFrame();
  const Vector u = f.Column(0);
  const Vector v = f.Column(1);
  Line line;
  const int kind = PlanePlane(plane, q, &line, tolPlanePlane);
  if (kind == 0) {
    return 0;
  }
  if (kind == 2) {
    *out1 = Sum(circle.center, Scaled(u, circle.radius));
    *out2 = Difference(circle.center, Scaled(u, circle.radius));
    return 2;
  }
  const Vector fromCenter = Difference(line.origin, circle.center);
  const Vector p = {Dot(fromCenter, u), Dot(fromCenter, v), 0.0, 0.0};
  const Vector d = {Dot(line.dir, u), Dot(line.dir, v), 0.0, 0.0};
  Vector solution[2];
  if (!LineCircle2D(p, d, Vector(), circle.radius, solution, tolTangentInner, tolTangentOuter)) {
    return 0;
  }
  *out1 = Sum(circle.center, Sum(Scaled(u, solution[0].x), Scaled(v, solution[0].y)));
  if (IsSame(solution[0], solution[1], 0.00001)) {
    *out2 = *out1;
  } else {
    *out2 = Sum(circle.center, Sum(Scaled(u, solution[1].x), Scaled(v, solution[1].y)));
  }
  return 1;
}

}  // namespace Reference
