// Every number of every exported operation of the geometry at the edge of what doubles hold.

#include "EdgeNumbers.h"
#include "geometry/IntersectionCompute.h"

#include <Orvo/Angle.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using Doubles = std::vector<double>;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();

Doubles Join(Doubles a, const Doubles& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

Doubles Of(const Vector3D& v) { return {v[0], v[1], v[2], v[3]}; }

Doubles Of(const Matrix43& frame) {
  const double* const elements = frame;
  return Doubles(elements, elements + 16);
}

// A frame that is filled as callers do, with the kind that the loader finds.
Matrix43 FrameOf(const double* elements) {
  Matrix43 frame;
  frame = elements;
  return frame;
}

double TextSize(const std::wstring& text) { return static_cast<double>(text.size()); }

// A turn about (1, 2, 2) / 3 by an angle with round numbers, and an origin.
const Doubles RigidElements = {2.0 / 3.0, 2.0 / 3.0, -1.0 / 3.0, 0.0,        -1.0 / 3.0, 2.0 / 3.0,
                               2.0 / 3.0, 0.0,       2.0 / 3.0,  -1.0 / 3.0, 2.0 / 3.0,  0.0,
                               10.0,      20.0,      30.0,       1.0};
const Doubles AffineElements = {2, 0, 1, 0, 0, 3, 1, 0, 1, 1, 4, 0, 5, 6, 7, 1};
const Doubles ProjectiveElements = {2, 0, 1, 0.25, 0, 3, 1, 0, 1, 1, 4, 0, 5, 6, 7, 2};

TEST(EdgeAngle, Members) {
  const EdgeOperation operations[] = {
      {"degrees to radians",
       {90},
       "n",
       [](const double* a) {
         Angle angle;
         angle.SetDegre(a[0]);
         return Doubles{angle.GetRadian(), angle.GetDegre()};
       }},
      {"radians to degrees",
       {1},
       "n",
       [](const double* a) {
         Angle angle(a[0]);
         angle.SetRadian(a[0]);
         return Doubles{angle.GetRadian(), angle.GetDegre()};
       }},
      {"sine and cosine",
       {1},
       "n",
       [](const double* a) {
         return Doubles{Angle(a[0]).Sin(), Angle(a[0]).Cos()};
       }},
      {"sum, difference, negative, product",
       {1, 2, 3},
       "nnn",
       [](const double* a) {
         Angle x(a[0]);
         return Doubles{(x + Angle(a[1])).GetRadian(), (x - Angle(a[1])).GetRadian(),
                        (-x).GetRadian(), (x * a[2]).GetRadian()};
       }},
      {"smaller",
       {1, 2},
       "00",
       [](const double* a) { return Doubles{static_cast<double>(Angle(a[0]) < Angle(a[1]))}; }},
      {"larger",
       {2, 1},
       "00",
       [](const double* a) { return Doubles{static_cast<double>(Angle(a[0]) > Angle(a[1]))}; }},
      {"between vectors", {1, 0.5, 0, 0, 1, 0.25, 0, 0.5, 1}, "nnnnnn...", [](const double* a) {
         Angle angle;
         const bool isSet = angle.SetVector3DRef(Vector3D(a), Vector3D(a + 3), Vector3D(a + 6));
         return Doubles{isSet ? 1.0 : 0.0, angle.GetRadian()};
       }}};
  for (const EdgeOperation& operation : operations) {
    HoldAtTheEdge(operation);
  }
}

TEST(EdgeAngle, LengthsThatOverflowHaveNoDirectionAndTheAngleZero) {
  Angle angle(1.0);
  EXPECT_TRUE(angle.SetVector3DRef(Vector3D(1e200, 0, 0), Vector3D(0, 1, 0), AxisZ));
  EXPECT_EQ(angle.GetRadian(), 0.0);
  EXPECT_TRUE(angle.SetVector3DRef(Vector3D(Infinity, 0, 0), Vector3D(0, 1, 0), AxisZ));
  EXPECT_TRUE(std::isnan(angle.GetRadian()));
  EXPECT_FALSE(angle.SetVector3DRef(Vector3D(1e-200, 0, 0), Vector3D(0, 1, 0), AxisZ));
  EXPECT_EQ(angle.GetRadian(), 0.0);
  EXPECT_TRUE(angle.SetVector3DRef(AxisY, AxisX, Vector3D(0, 0, NaN)));
  EXPECT_GT(angle.GetRadian(), 0.0) << "on neither side";
}

TEST(EdgeVector, Members) {
  const EdgeOperation operations[] = {
      {"made, set, read",
       {1, 2, 3},
       "nnn",
       [](const double* a) {
         Vector3D v(a[0], a[1], a[2]);
         v.Set(a[0], a[1], a[2]);
         Vector3D w;
         w.Set(v.Get_m128d_0(), v.Get_m128d_1());
         double read[3];
         w.Get(read);
         return Doubles{read[0], read[1], read[2], v[3]};
       }},
      {"sum and difference",
       {1, 2, 3, 4, 5, 6},
       "nnnnnn",
       [](const double* a) {
         Vector3D v(a);
         Vector3D w(a);
         w += Vector3D(a + 3);
         w -= Vector3D(a + 3);
         return Join(Join(Of(v + Vector3D(a + 3)), Of(v - Vector3D(a + 3))), Of(w));
       }},
      {"negative and multiple",
       {1, 2, 3, 4},
       "nnnn",
       [](const double* a) {
         Vector3D v(a);
         Vector3D w(a);
         w *= a[3];
         return Join(Join(Of(-v), Of(v * a[3])), Of(w));
       }},
      {"products",
       {1, 2, 3, 4, 5, 6},
       "nnnnnn",
       [](const double* a) {
         Vector3D v(a);
         return Join({v * Vector3D(a + 3)}, Of(v & Vector3D(a + 3)));
       }},
      {"norms",
       {1, 2, 3},
       "nnn",
       [](const double* a) {
         return Doubles{Vector3D(a).Norm(), Vector3D(a).NormSquare(), Vector3D(a).NormSup()};
       }},
      {"distance",
       {1, 2, 3, 4, 5, 6},
       "nnnnnn",
       [](const double* a) { return Doubles{Vector3D(a).Distance(Vector3D(a + 3))}; }},
      {"unit vector",
       {1, 2, 3, 0.001},
       "111.",
       [](const double* a) {
         Vector3D v(a);
         const bool isScaled = v.MakeUnit(a[3]);
         return Join({isScaled ? 1.0 : 0.0}, Of(v));
       }},
      {"equal",
       {1, 2, 3, 1, 2, 3},
       "000000",
       [](const double* a) {
         return Doubles{static_cast<double>(Vector3D(a) == Vector3D(a + 3))};
       }},
      {"same",
       {1, 2, 3, 1, 2, 3, 0.5},
       "0000000",
       [](const double* a) {
         return Doubles{Vector3D(a).IsSame(Vector3D(a + 3), a[6]) ? 1.0 : 0.0};
       }},
      {"same as an axis",
       {1, 0, 0, 0.5},
       "0000",
       [](const double* a) { return Doubles{Vector3D(a).IsSame(XPlus, a[3]) ? 1.0 : 0.0}; }},
      {"colinear",
       {1, 2, 3, 2, 4, 6, 0.001},
       "0000000",
       [](const double* a) {
         double ratio = -7.0;
         const bool isColinear = Vector3D(a).IsColinear(Vector3D(a + 3), a[6], &ratio);
         return Doubles{isColinear ? 1.0 : 0.0, ratio};
       }},
      {"corners of a box",
       {1, 2, 3, 4, 1, 3},
       "......",
       [](const double* a) {
         Vector3D high(a);
         Vector3D low(a);
         high.ModificationMax(Vector3D(a + 3));
         low.ModificationMin(Vector3D(a + 3));
         return Join(Of(high), Of(low));
       }},
      {"text", {1, 2, 3}, "...", [](const double* a) {
         std::wstring text;
         Vector3D(a).GetStringDebug(&text);
         return Doubles{TextSize(text)};
       }}};
  for (const EdgeOperation& operation : operations) {
    HoldAtTheEdge(operation);
  }
}

TEST(EdgeVector, UnitVectorOfNanAndInfinityIsNan) {
  for (const double edge : {NaN, Infinity, -Infinity}) {
    for (int place = 0; place < 3; ++place) {
      Vector3D v(1, 2, 3);
      v[place] = edge;
      EXPECT_TRUE(v.MakeUnit(0.001));
      EXPECT_TRUE(std::isnan(v[place]));
    }
  }
}

TEST(EdgeVector, LengthsFormedOfSquaresOverflowAndVanish) {
  Vector3D large(1e200, -1e200, 0);
  EXPECT_EQ(large.Norm(), Infinity);
  EXPECT_EQ(large.NormSup(), 1e200);
  EXPECT_TRUE(large.IsColinear(AxisZ, 0.001, nullptr));
  EXPECT_TRUE(large.MakeUnit(0.001));
  EXPECT_TRUE(SameBits(large, Vector3D(0.0, -0.0, 0.0)));
  Vector3D small(1e-170, 0, 0);
  EXPECT_EQ(small.Norm(), 0.0);
  EXPECT_FALSE(small.MakeUnit(0.0));
  EXPECT_TRUE(SameBits(small, AxisX));
  // On both sides of the limits.
  EXPECT_LT(Vector3D(1.3e154, 0, 0).Norm(), Infinity);
  EXPECT_EQ(Vector3D(1.4e154, 0, 0).Norm(), Infinity);
  EXPECT_GT(Vector3D(1.6e-162, 0, 0).Norm(), 0.0);
  EXPECT_EQ(Vector3D(1.5e-162, 0, 0).Norm(), 0.0);
}

TEST(EdgeVector, InfinityIsColinearWithNothing) {
  for (const double edge : {NaN, Infinity, -Infinity}) {
    for (int place = 0; place < 3; ++place) {
      Vector3D v(0, 0, 0);
      v[place] = edge;
      EXPECT_FALSE(v.IsColinear(v, 0.5, nullptr));
      EXPECT_FALSE(Vector3D(1, 2, 3).IsColinear(v, 0.5, nullptr));
      EXPECT_FALSE(v.IsColinear(Vector3D(1, 2, 3), 0.5, nullptr));
    }
  }
}

TEST(EdgeVector, NanIsNotLargerAndNotSmaller) {
  Vector3D corner(1, 2, 3);
  corner.ModificationMax(Vector3D(NaN, NaN, NaN));
  corner.ModificationMin(Vector3D(NaN, NaN, NaN));
  EXPECT_TRUE(SameBits(corner, Vector3D(1, 2, 3)));
  Vector3D nan(NaN, NaN, NaN);
  nan.ModificationMax(Vector3D(1, 2, 3));
  nan.ModificationMin(Vector3D(1, 2, 3));
  EXPECT_TRUE(std::isnan(nan[0]) && std::isnan(nan[1]) && std::isnan(nan[2]));
}

TEST(EdgeFrame, Members) {
  const std::string spread(16, 'n');
  std::vector<EdgeOperation> operations = {
      {"setters",
       {1, 0, 0, 0, 1, 0, 0, 0, 1, 5, 6, 7},
       "nnnnnnnnnnnn",
       [](const double* a) {
         Matrix43 frame;
         frame.SetUVW(Vector3D(a), Vector3D(a + 3), Vector3D(a + 6));
         frame.SetTrans(Vector3D(a + 9));
         Matrix43 other;
         other.SetTUVW(Vector3D(a + 9), Vector3D(a), Vector3D(a + 3), Vector3D(a + 6));
         return Join(Of(frame), Of(other));
       }},
      {"turn about a principal axis",
       {1},
       "n",
       [](const double* a) {
         Doubles results;
         for (const Direction d : {X, Y, Z}) {
           Matrix43 frame;
           frame.SetRotation(d, Angle(a[0]));
           results = Join(results, Of(frame));
         }
         return results;
       }},
      {"turn about any axis",
       {1, 2, 3, 0.5},
       "nnnn",
       [](const double* a) {
         Matrix43 frame;
         frame.SetRotation(Vector3D(a), Angle(a[3]));
         return Of(frame);
       }},
      {"turn about an axis beside X",
       {1, 0.000001, 0, 0.5},
       "nnnn",
       [](const double* a) {
         Matrix43 frame;
         frame.SetRotation(Vector3D(a), Angle(a[3]));
         return Of(frame);
       }},
      {"frame on an axis", {1, 2, 3}, "111", [](const double* a) {
         Matrix43 frame;
         const bool isMade = frame.MakeAxisW(Vector3D(a));
         return Join({isMade ? 1.0 : 0.0}, Of(frame));
       }}};
  const struct {
    const char* name;
    const Doubles& elements;
  } kinds[] = {
      {"rigid", RigidElements}, {"affine", AffineElements}, {"projective", ProjectiveElements}};
  for (const auto& kind : kinds) {
    const std::string name = std::string(" of a ") + kind.name + " frame";
    operations.push_back(
        {"loading and columns" + name, kind.elements, "nnn.nnn.nnn.nnn.", [](const double* a) {
           Matrix43 frame = FrameOf(a);
           return Join(Join(Of(frame.GetU()), Of(frame.GetV())),
                       Join(Of(frame.GetW()), Of(frame.GetTrans())));
         }});
    operations.push_back({"inverses" + name, kind.elements, spread, [](const double* a) {
                            Matrix43 frame = FrameOf(a);
                            return Join(Of(frame.Inverse()), Of(frame.HInverse()));
                          }});
    operations.push_back({"products" + name, kind.elements, spread, [](const double* a) {
                            Matrix43 frame = FrameOf(a);
                            Matrix43 rigid = FrameOf(RigidElements.data());
                            return Join(Join(Of(frame * rigid), Of(rigid * frame)),
                                        Of(frame * frame));
                          }});
    operations.push_back(
        {"images" + name, Join(kind.elements, {1, 2, 3}), spread + "nnn", [](const double* a) {
           Matrix43 frame = FrameOf(a);
           return Join(Of(frame.ApplyToPoint(Vector3D(a + 16))),
                       Of(frame.ApplyToVector3D(Vector3D(a + 16))));
         }});
    operations.push_back({"questions" + name, Join(kind.elements, {0.001}), std::string(17, '.'),
                          [](const double* a) {
                            const Matrix43 frame = FrameOf(a);
                            const Matrix43 rigid = FrameOf(RigidElements.data());
                            return Doubles{frame.IsIdentity() ? 1.0 : 0.0,
                                           frame.IsTranslation() ? 1.0 : 0.0,
                                           frame.IsRotary() ? 1.0 : 0.0,
                                           frame.IsSame(rigid, a[16]) ? 1.0 : 0.0,
                                           rigid.IsSame(frame, a[16]) ? 1.0 : 0.0,
                                           static_cast<double>(frame == rigid)};
                          }});
    operations.push_back(
        {"equality" + name, kind.elements, std::string(16, '0'),
         [](const double* a) { return Doubles{static_cast<double>(FrameOf(a) == FrameOf(a))}; }});
    operations.push_back({"text" + name, kind.elements, std::string(16, '.'), [](const double* a) {
                            std::wstring text;
                            FrameOf(a).GetStringDebug(&text);
                            return Doubles{TextSize(text)};
                          }});
  }
  for (const EdgeOperation& operation : operations) {
    HoldAtTheEdge(operation);
  }
}

TEST(EdgeFrame, NanMakesNoRotation) {
  for (int place = 0; place < 11; ++place) {
    if (place % 4 != 3) {
      Doubles elements = RigidElements;
      elements[static_cast<std::size_t>(place)] = NaN;
      EXPECT_FALSE(FrameOf(elements.data()).IsRotary()) << place;
    }
  }
}

TEST(EdgeFrame, DirectionsThatOverflowAreNull) {
  Matrix43 frame;
  EXPECT_TRUE(frame.MakeAxisW(Vector3D(1e200, 0, 0)));
  EXPECT_TRUE(SameBits(frame.GetW(), NullVector));
  EXPECT_TRUE(frame.MakeAxisW(Vector3D(1, NaN, 0)));
  EXPECT_TRUE(std::isnan(frame.GetU()[0]) && std::isnan(frame.GetW()[0]));
}

TEST(EdgeFrame, TextsHoldTheLargestNumbers) {
  std::wstring text;
  Vector3D(-1e308, 1e308, std::numeric_limits<double>::lowest()).GetStringDebug(&text);
  EXPECT_EQ(text.size(), std::wstring(L"(-.000, .000, -.000)").size() + 3 * 309);
  Vector3D(NaN, Infinity, -Infinity).GetStringDebug(&text);
  EXPECT_EQ(text, L"(  nan,   inf,  -inf)");
}

TEST(EdgeFrame, DirectionsOutsideTheirEnumerations) {
  for (const int edge : EdgeInts) {
    Vector3D v(1, 0, 0);
    EXPECT_EQ(v.IsSame(static_cast<DirectionSign>(edge), 0.5), edge == 0) << edge;
    Matrix43 frame;
    frame.SetRotation(static_cast<Direction>(edge), Angle(0.5));
    Matrix43 expected;
    expected.SetRotation(edge == 0 ? X : edge == 1 ? Y : Z, Angle(0.5));
    EXPECT_TRUE(SameBits(frame, expected)) << edge;
  }
}

TEST(EdgeIntersection, Members) {
  const EdgeOperation operations[] = {
      {"point in plane",
       {0, 0, 1, 0, 0, 1, 5, 6, 1, 0.1},
       "..........",
       [](const double* a) {
         return Doubles{
             PlaneContainsPoint(Plane3D(Vector3D(a), Vector3D(a + 3)), Vector3D(a + 6), a[9])
                 ? 1.0
                 : 0.0};
       }},
      {"line and plane",
       {0, 0, 1, 0, 0, 1, 5, 6, 7, 1, 0, 1, 0.1},
       "nnnnnnnnnnnn.",
       [](const double* a) {
         Vector3D point(1, 2, 3);
         const int kind = IntersectionCompute::IntersectLinePlane(
             Plane3D(Vector3D(a), Vector3D(a + 3)), Line3D(Vector3D(a + 6), Vector3D(a + 9)),
             &point, a[12]);
         return Join({static_cast<double>(kind)}, Of(point));
       }},
      {"two planes",
       {0, 0, 1, 0, 0, 1, 5, 6, 7, 1, 0, 1, 0.1},
       ".............",
       [](const double* a) {
         Line3D line(NullVector, NullVector);
         const int kind = IntersectionCompute::IntersectPlanePlane(
             Plane3D(Vector3D(a), Vector3D(a + 3)), Plane3D(Vector3D(a + 6), Vector3D(a + 9)),
             &line, a[12]);
         return Join({static_cast<double>(kind)}, Join(Of(line.Origin), Of(line.Dir)));
       }},
      {"line and circle",
       {0, 0.5, 0, 1, 0, 0, 0, 0, 0, 1, 1e-7, 1e-5},
       "............",
       [](const double* a) {
         Vector3D points[2];
         const bool isMet = IntersectionCompute::IntersectLineCircle2D(
             Vector3D(a), Vector3D(a + 3), Vector3D(a + 6), a[9], points, a[10], a[11]);
         return Join({isMet ? 1.0 : 0.0}, Join(Of(points[0]), Of(points[1])));
       }},
      // No circle is met where a number is NaN.
      {"circle and plane",
       {0, 0, 0.5, 0, 0, 1, 0, 0, 0, 1, 0, 0, 1},
       "0000000000000",
       [](const double* a) {
         const IntersectionCompute intersection(1e-4, 1e-7, 1e-5, 1e-4, 0, 0, 0);
         Vector3D points[2];
         const int kind = intersection.IntersectCirclePlane(
             Plane3D(Vector3D(a), Vector3D(a + 3)),
             Circle3D(Vector3D(a + 6), Vector3D(a + 9), a[12]), &points[0], &points[1]);
         return Join({static_cast<double>(kind)}, Join(Of(points[0]), Of(points[1])));
       }}};
  for (const EdgeOperation& operation : operations) {
    HoldAtTheEdge(operation);
  }
}

}  // namespace
}  // namespace Orvo::Testing
