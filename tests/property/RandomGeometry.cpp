#include "property/RandomGeometry.h"

#include <cmath>
#include <limits>

namespace Orvo::Property {

using Reference::Frame;
using Reference::Kind;
using Reference::Vector;

namespace {

double OrdinaryCoordinate(Draw& draw) {
  switch (draw.Int(0, 5)) {
    case 0:
      return 0.0;
    case 1:
      return draw.Int(-10, 10);
    case 2:
      return draw.Int(-1000, 1000) * 0.5;
    case 3:
      return draw.Uniform(-1.0, 1.0);
    default:
      return draw.Uniform(-1000.0, 1000.0);
  }
}

}  // namespace

double AnyNumber(Draw& draw) {
  static const double special[] = {0.0,
                                   -0.0,
                                   1.0,
                                   -1.0,
                                   0.001,
                                   0.0001,
                                   0.00001,
                                   1e-20,
                                   0.01,
                                   0.99,
                                   1e8,
                                   1e150,
                                   -1e200,
                                   1e-160,
                                   -1e-310,
                                   std::numeric_limits<double>::max(),
                                   std::numeric_limits<double>::denorm_min(),
                                   std::numeric_limits<double>::infinity(),
                                   -std::numeric_limits<double>::infinity(),
                                   std::numeric_limits<double>::quiet_NaN()};
  switch (draw.Int(0, 9)) {
    case 0:
    case 1:
      return draw.Of(special);
    case 2:
      return std::nextafter(draw.Of(special), draw.Chance(0.5) ? -1e300 : 1e300);
    case 3:
      return std::ldexp(draw.Uniform(-1.0, 1.0), draw.Int(-600, 600));
    default:
      return OrdinaryCoordinate(draw);
  }
}

double Coordinate(Draw& draw) {
  return draw.IsNextAnEdge() ? AnyNumber(draw) : OrdinaryCoordinate(draw);
}

double AngleDeg(Draw& draw) {
  switch (draw.Int(0, 5)) {
    case 0:
      return 0.0;
    case 1:
      return draw.Int(-8, 8) * 90.0;
    case 2:
      return draw.Int(-24, 24) * 15.0;
    default:
      return draw.Uniform(-400.0, 400.0);
  }
}

Vector Point(Draw& draw) {
  Vector out = {Coordinate(draw), Coordinate(draw), Coordinate(draw), 0.0};
  if (draw.Chance(0.05)) {
    out.w = Coordinate(draw);
  }
  return out;
}

Vector UnitDirection(Draw& draw) {
  static const Vector principal[] = {{1, 0, 0, 0},  {-1, 0, 0, 0}, {0, 1, 0, 0},
                                     {0, -1, 0, 0}, {0, 0, 1, 0},  {0, 0, -1, 0}};
  switch (draw.Int(0, 9)) {
    case 0:
    case 1:
    case 2:
    case 3:
      return draw.Of(principal);
    case 4:
    case 5:
      return Turned(draw.Of(principal), draw.Of(principal), AngleDeg(draw));
    case 6:
      // Beside a principal axis, by less or more than the tolerances see.
      return Turned(draw.Of(principal), draw.Of(principal),
                    std::pow(10.0, draw.Uniform(-7.0, 0.5)));
    default:
      break;
  }
  Vector out = {draw.Uniform(-1, 1), draw.Uniform(-1, 1), draw.Uniform(-1, 1), 0.0};
  Reference::MakeUnit(&out, 0.001);
  return out;
}

Vector AnyDirection(Draw& draw) {
  Vector out = UnitDirection(draw);
  if (draw.IsNextAnEdge()) {
    (draw.Chance(0.5) ? out.x : draw.Chance(0.5) ? out.y : out.z) = AnyNumber(draw);
  }
  switch (draw.Int(0, 7)) {
    case 0:
      return Reference::Scaled(out, draw.Uniform(-3.0, 3.0));
    case 1:
      return {};
    case 2:
      // Next to the tolerance of 0.00001 by component.
      return Reference::Sum(
          out, {draw.Uniform(-2e-5, 2e-5), draw.Int(-1, 1) * 1e-5, draw.Uniform(-2e-5, 2e-5), 0.0});
    case 3:
      // Next to the shortest length of 0.001 that is made unit.
      return Reference::Scaled(out, 0.001 * draw.Uniform(0.999999, 1.000001));
    case 4:
      out.w = draw.Uniform(-1.0, 1.0);
      return out;
    default:
      return out;
  }
}

Vector AnyVector(Draw& draw) {
  return {AnyNumber(draw), AnyNumber(draw), AnyNumber(draw),
          draw.Chance(0.5) ? 0.0 : AnyNumber(draw)};
}

Vector Turned(const Vector& v, const Vector& axis, double degrees) {
  Frame turn;
  turn.SetRotation(axis, Reference::DegreesToRadians(degrees));
  return turn.ApplyToVector(v);
}

Frame RigidFrame(Draw& draw) {
  Frame out;
  out.SetRotation(UnitDirection(draw), Reference::DegreesToRadians(AngleDeg(draw)));
  const Vector u = out.Column(0);
  const Vector v = out.Column(1);
  const Vector w = out.Column(2);
  Vector t = Point(draw);
  t.w = 0.0;
  out.SetUVWT(u, v, w, t);
  return out;
}

Frame MadeFrame(Draw& draw) {
  Frame out;
  switch (draw.Int(0, 9)) {
    case 0:
      return out;
    case 1:
      out.SetTrans(Point(draw));
      return out;
    case 2:
      out.SetRotation(draw.Int(-1, 3), Reference::DegreesToRadians(AngleDeg(draw)));
      return out;
    case 3:
      out.SetRotation(AnyDirection(draw), Reference::DegreesToRadians(AngleDeg(draw)));
      return out;
    case 4: {
      // Loaded, scaled: next to the limits of a rotation, or far from it.
      static const double limits[] = {0.001, -0.001, 0.0001, -0.00005, 0.000049};
      out = RigidFrame(draw);
      const double scale = draw.Chance(0.5) ? 1.0 + draw.Of(limits) * draw.Uniform(0.98, 1.02)
                                            : draw.Uniform(-3.0, 3.0);
      double m[16];
      for (int i = 0; i < 16; ++i) {
        m[i] = out.m[i] * (i < 12 ? scale : 1.0);
      }
      if (draw.Chance(0.3)) {
        m[12] = m[13] = m[14] = 0.0;
      }
      out.Load(m);
      return out;
    }
    case 5: {
      // Loaded: a fourth row of its own.
      out = RigidFrame(draw);
      double m[16];
      for (int i = 0; i < 16; ++i) {
        m[i] = out.m[i];
      }
      m[4 * draw.Int(0, 3) + 3] = draw.Chance(0.3) ? AnyNumber(draw) : draw.Uniform(-2.0, 2.0);
      out.Load(m);
      return out;
    }
    case 6: {
      double m[16];
      for (double& element : m) {
        element = draw.Int(-1, 1);
      }
      m[3] = m[7] = m[11] = 0.0;
      m[15] = draw.Chance(0.8) ? 1.0 : draw.Int(-1, 2);
      out.Load(m);
      return out;
    }
    case 7: {
      double m[16];
      for (double& element : m) {
        element = Coordinate(draw);
      }
      return Frame::FromLanes(m);
    }
    case 8:
      out.SetUVW(AnyDirection(draw), AnyDirection(draw), AnyDirection(draw));
      return out;
    default:
      return RigidFrame(draw);
  }
}

Frame AnyFrame(Draw& draw) {
  Frame out = MadeFrame(draw);
  if (draw.Chance(0.3)) {
    return out;
  }
  if (draw.Chance(0.5)) {
    for (double& element : out.m) {
      element = AnyNumber(draw);
    }
  } else {
    const int count = draw.Int(0, 3);
    for (int i = 0; i < count; ++i) {
      out.m[draw.Int(0, 15)] = AnyNumber(draw);
    }
  }
  if (draw.Chance(0.5)) {
    out.kind = static_cast<Kind>(draw.Int(0, 5));
  } else {
    out.IdentifyKind();
  }
  return out;
}

}  // namespace Orvo::Property
