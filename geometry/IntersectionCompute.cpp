#include "geometry/IntersectionCompute.h"

#include "geometry/VectorKernel.h"

#include <cmath>

namespace Orvo {

namespace {

constexpr double SmallestDirection = 0.001;

// Two solutions on a circle that are closer than this, by component, are one.
constexpr double SamePointTolerance = 0.00001;

Vector3D OnLine(const Vector3D& origin, const Vector3D& dir, double parameter) {
  return Plus(origin, Times(dir, parameter));
}

}  // namespace

bool PlaneContainsPoint(const Plane3D& plane, const Vector3D& point, double tol) {
  return plane.Origin.Distance(point) < tol ||
         std::fabs(Dot(Minus(point, plane.Origin), plane.Normal)) < tol;
}

IntersectionCompute::IntersectionCompute(double tolPlanePlane, double tolTangentInner,
                                         double tolTangentOuter, double tolLinePlane, double tol5,
                                         double tol6, double tol7)
    : TolPlanePlane(tolPlanePlane),
      TolTangentInner(tolTangentInner),
      TolTangentOuter(tolTangentOuter),
      TolLinePlane(tolLinePlane),
      Tol5(tol5),
      Tol6(tol6),
      Tol7(tol7) {}

int IntersectionCompute::IntersectLinePlane(const Plane3D& plane, const Line3D& line,
                                            Vector3D* point) const {
  return IntersectLinePlane(plane, line, point, TolLinePlane);
}

int IntersectionCompute::IntersectLinePlane(const Plane3D& plane, const Line3D& line,
                                            Vector3D* point, double tol) {
  const double slope = Dot(line.Dir, plane.Normal);
  if (std::fabs(slope) < tol) {
    if (std::fabs(Dot(Minus(line.Origin, plane.Origin), plane.Normal)) < tol) {
      *point = plane.Origin;
      return IntersectionContained;
    }
    return IntersectionNone;
  }
  const double parameter =
      (Dot(plane.Normal, plane.Origin) - Dot(plane.Normal, line.Origin)) / slope;
  *point = OnLine(line.Origin, line.Dir, parameter);
  return IntersectionProper;
}

int IntersectionCompute::IntersectPlanePlane(const Plane3D& p1, const Plane3D& p2, Line3D* line,
                                             double tol) {
  if (!p1.Normal.IsColinear(p2.Normal, tol, nullptr)) {
    Vector3D dir = Cross(p1.Normal, p2.Normal);
    const Line3D inP1(p1.Origin, Cross(p1.Normal, dir));
    Vector3D origin;
    if (IntersectLinePlane(p2, inP1, &origin, tol) == IntersectionNone) {
      return IntersectionNone;
    }
    dir.MakeUnit(SmallestDirection);
    line->Origin = origin;
    line->Dir = dir;
    return IntersectionProper;
  }
  if (PlaneContainsPoint(p1, p2.Origin, tol)) {
    Matrix43 frame;
    frame.MakeAxisW(p1.Normal);
    line->Origin = p2.Origin;
    line->Dir = frame.GetU();
    line->Dir.MakeUnit(SmallestDirection);
    return IntersectionContained;
  }
  return IntersectionNone;
}

bool IntersectionCompute::IntersectLineCircle2D(const Vector3D& p, const Vector3D& d,
                                                const Vector3D& ctr, double radius, Vector3D out[2],
                                                double t1, double t2) {
  const Vector3D normal(-d[1], d[0], 0.0);
  const double distance = Dot(Minus(p, ctr), normal);
  const Vector3D foot = OnLine(ctr, normal, distance);
  const double size = std::fabs(distance);
  if (size >= (1.0 - t1) * radius && size < (1.0 + t2) * radius) {
    out[0] = foot;
    out[1] = foot;
    return true;
  }
  if (!(radius > size - t2)) {
    return false;
  }
  // Deliberate: a line outside the circle by less than t2 has two points too.
  const double halfChord = std::sqrt(std::fabs(radius * radius - distance * distance));
  out[0] = OnLine(foot, d, halfChord);
  out[1] = Minus(foot, Times(d, halfChord));
  return true;
}

int IntersectionCompute::IntersectCirclePlane(const Plane3D& plane, const Circle3D& circle,
                                              Vector3D* point1, Vector3D* point2) const {
  const Plane3D circlePlane(circle.Center, circle.Axis);
  Matrix43 frame = circle.GetFrame();
  const Vector3D u = frame.GetU();
  const Vector3D v = frame.GetV();
  Line3D line;
  const int kind = IntersectPlanePlane(plane, circlePlane, &line, TolPlanePlane);
  if (kind == IntersectionNone) {
    return IntersectionNone;
  }
  if (kind == IntersectionContained) {
    const Vector3D radius = Times(u, circle.Radius);
    *point1 = Plus(circle.Center, radius);
    *point2 = Minus(circle.Center, radius);
    return IntersectionContained;
  }
  const Vector3D fromCenter = Minus(line.Origin, circle.Center);
  const Vector3D pointInCircle(Dot(fromCenter, u), Dot(fromCenter, v), 0.0);
  const Vector3D dirInCircle(Dot(line.Dir, u), Dot(line.Dir, v), 0.0);
  Vector3D solutions[2];
  if (!IntersectLineCircle2D(pointInCircle, dirInCircle, NullVector, circle.Radius, solutions,
                             TolTangentInner, TolTangentOuter)) {
    return IntersectionNone;
  }
  const auto inSpace = [&circle, &u, &v](const Vector3D& solution) {
    return Plus(circle.Center, Plus(Times(u, solution[0]), Times(v, solution[1])));
  };
  *point1 = inSpace(solutions[0]);
  *point2 =
      IsWithin(solutions[0], solutions[1], SamePointTolerance) ? *point1 : inSpace(solutions[1]);
  return IntersectionProper;
}

}  // namespace Orvo
