#pragma once

#include "geometry/Circle3D.h"
#include "geometry/Line3D.h"
#include "geometry/Plane3D.h"

#include <Orvo/Vector3D.h>

namespace Orvo {

/// What an intersection is; outputs are written for the kinds other than None, unless said.
enum IntersectionKind : int {
  IntersectionNone = 0,
  IntersectionProper = 1,    ///< one point, one line, or one or two points of a circle
  IntersectionContained = 2  ///< one shape lies in the other
};

/// Tells whether a point lies in a plane: its distance from the plane's origin, or from the plane,
/// is strictly below @p tol.
bool PlaneContainsPoint(const Plane3D& plane, const Vector3D& point, double tol);

/// Intersects lines, planes and circles within tolerances of its own, which callers set.
class IntersectionCompute {
 public:
  IntersectionCompute(double tolPlanePlane, double tolTangentInner, double tolTangentOuter,
                      double tolLinePlane, double tol5, double tol6, double tol7);
  virtual ~IntersectionCompute() = default;

  /// Intersects a line with a plane within TolLinePlane.
  int IntersectLinePlane(const Plane3D& plane, const Line3D& line, Vector3D* point) const;

  /// Intersects a line with a plane.
  ///
  /// @param point  receives the point; for a line in the plane the plane's origin
  /// @param tol    the line is parallel where direction * normal is strictly below it in size, and
  ///   then lies in the plane where its origin's distance is
  static int IntersectLinePlane(const Plane3D& plane, const Line3D& line, Vector3D* point,
                                double tol);

  /// Intersects two planes.
  ///
  /// @param line  receives the common line, along p1.Normal x p2.Normal at unit length; for
  ///   coincident planes a line in them
  /// @param tol   bound on the sine between the normals, and on distances
  static int IntersectPlanePlane(const Plane3D& p1, const Plane3D& p2, Line3D* line, double tol);

  /// Intersects a plane with a circle.
  ///
  /// @param point1  receives the point on the side of plane.Normal x circle.Axis
  /// @param point2  receives the other point, or the first again where there is one; for a circle
  ///   in the plane both ends of a diameter
  int IntersectCirclePlane(const Plane3D& plane, const Circle3D& circle, Vector3D* point1,
                           Vector3D* point2) const;

  /// Intersects a line with a circle, both in one plane of x and y.
  ///
  /// @param p, d         a point of the line and its unit direction
  /// @param ctr, radius  the circle
  /// @param out          receives two points, the one along d first; equal in the tangency band
  /// @param t1, t2       the band is [(1 - t1) * radius, (1 + t2) * radius); outside it the line
  ///   still meets the circle where its distance exceeds the radius by less than t2
  /// @return false, and no output, where the line misses the circle
  static bool IntersectLineCircle2D(const Vector3D& p, const Vector3D& d, const Vector3D& ctr,
                                    double radius, Vector3D out[2], double t1, double t2);

  double TolPlanePlane;
  double TolTangentInner;
  double TolTangentOuter;
  double TolLinePlane;

  // Kept for callers; no operation reads them.
  double Tol5;
  double Tol6;
  double Tol7;
};

}  // namespace Orvo
