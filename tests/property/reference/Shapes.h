#pragma once

#include "property/reference/Frame.h"
#include "property/reference/Vector.h"

namespace Reference {

struct Line {
  Vector origin;
  Vector dir = {0.0, 0.0, 1.0, 0.0};
};

struct Plane {
  Vector origin;
  Vector normal;
};

struct Circle {
  Vector center;
  Vector axis;
  double radius = 0.0;

  Frame GetFrame() const;
};

/// The tolerances of the intersections and the intersections themselves. Kinds of result: 0 none,
/// 1 a proper intersection, 2 one shape lies in the other.
struct Intersections {
  double tolPlanePlane = 0.0001;
  double tolTangentInner = 0.0001;
  double tolTangentOuter = 0.0001;
  double tolLinePlane = 0.0001;

  int LinePlane(const Plane& plane, const Line& line, Vector* out, double tol) const;
  int PlanePlane(const Plane& first, const Plane& second, Line* out, double tol) const;
  int CirclePlane(const Plane& plane, const Circle& circle, Vector* out1, Vector* out2) const;
  bool LineCircle2D(const Vector& p, const Vector& d, const Vector& center, double radius,
                    Vector (&out)[2], double t1, double t2) const;
};

bool PlaneContainsPoint(const Plane& plane, const Vector& point, double tol);

}  // namespace Reference
