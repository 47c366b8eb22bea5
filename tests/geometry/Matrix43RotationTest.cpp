#include "geometry/FrameTwin.h"
#include "support/NearVector.h"
#include "support/TestRandom.h"

#include <Orvo/Angle.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <cmath>

namespace Orvo {
namespace {

using Testing::AllTypes;
using Testing::DrawTwin;
using Testing::FrameOf;
using Testing::HInverseTwin;
using Testing::HoldsElements;
using Testing::IsTwin;
using Testing::NearFrame;
using Testing::NearVector;
using Testing::ProductTwin;
using Testing::Sum3;
using Testing::TestRandom;
using Testing::Twin;
using Testing::TwinOf;
using Testing::Type;
using Testing::TypeOf;

TEST(Matrix43Rotation, AboutPrincipalAxesIsRightHanded) {
  const double a = 0.7;
  const double c = std::cos(a);
  const double s = std::sin(a);
  struct Case {
    const char* name;
    int direction;
    double m[16];
  };
  const Case cases[] = {
      {"X", 0, {1, 0, 0, 0, 0, c, s, 0, 0, -s, c, 0, 0, 0, 0, 1}},
      {"Y", 1, {c, 0, -s, 0, 0, 1, 0, 0, s, 0, c, 0, 0, 0, 0, 1}},
      {"Z", 2, {c, s, 0, 0, -s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}},
      {"3 is Z", 3, {c, s, 0, 0, -s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}},
      {"-1 is Z", -1, {c, s, 0, 0, -s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.name);
    Matrix43 frame;
    frame.SetRotation(static_cast<Direction>(k.direction), Angle(a));
    EXPECT_TRUE(HoldsElements(frame, k.m));
    EXPECT_EQ(TypeOf(frame), Matrix43::Rotation);
  }
}

TEST(Matrix43Rotation, AboutAPrincipalAxisKeepsTheOriginAndTheFourthRow) {
  struct Case {
    Type before;
    Type after;
  };
  const Case cases[] = {
      {Matrix43::General, Matrix43::General},
      {Matrix43::Identity, Matrix43::Rotation},
      {Matrix43::Rotation, Matrix43::Rotation},
      {Matrix43::Translation, Matrix43::RotationTranslation},
      {Matrix43::RotationTranslation, Matrix43::RotationTranslation},
      {Matrix43::Projective, Matrix43::Projective},
  };
  const double c = std::cos(-2.5);
  const double s = std::sin(-2.5);
  for (const Case& k : cases) {
    SCOPED_TRACE(k.before);
    Twin twin;
    for (int i = 0; i < 16; ++i) {
      twin.m[i] = i + 100.0;
    }
    twin.type = k.before;
    Matrix43 frame = FrameOf(twin);
    frame.SetRotation(Y, Angle(-2.5));
    const Twin expected = {{c, 0, -s, 103, 0, 1, 0, 107, s, 0, c, 111, 112, 113, 114, 115},
                           k.after};
    EXPECT_TRUE(IsTwin(frame, expected));
  }
}

TEST(Matrix43Rotation, ByZeroGivesTheUnitAxes) {
  struct Case {
    Type before;
    Type after;
  };
  const Case cases[] = {
      {Matrix43::General, Matrix43::Translation},
      {Matrix43::Identity, Matrix43::Identity},
      {Matrix43::Rotation, Matrix43::Identity},
      {Matrix43::Translation, Matrix43::Translation},
      {Matrix43::RotationTranslation, Matrix43::Translation},
      {Matrix43::Projective, Matrix43::Identity},
  };
  for (const Case& k : cases) {
    for (const double zero : {0.0, -0.0}) {
      for (int direction = 0; direction < 4; ++direction) {
        SCOPED_TRACE(testing::Message() << k.before << " about " << direction);
        Twin twin;
        for (int i = 0; i < 16; ++i) {
          twin.m[i] = i + 100.0;
        }
        twin.type = k.before;
        Matrix43 frame = FrameOf(twin);
        Twin expected = {{1, 0, 0, 103, 0, 1, 0, 107, 0, 0, 1, 111, 112, 113, 114, 115}, k.after};
        frame.SetRotation(static_cast<Direction>(direction), Angle(zero));
        EXPECT_TRUE(IsTwin(frame, expected)) << "the fourth components stay";
        // About an axis the fourth components of the directions are cleared too.
        frame = FrameOf(twin);
        expected.m[3] = expected.m[7] = expected.m[11] = 0.0;
        frame.SetRotation(Vector3D(1, 2, 3), Angle(zero));
        EXPECT_TRUE(IsTwin(frame, expected));
      }
    }
  }
}

TEST(Matrix43Rotation, ByTheSmallestAngleIsARotation) {
  Matrix43 frame;
  frame.SetRotation(Z, Angle(4.9e-324));
  EXPECT_EQ(TypeOf(frame), Matrix43::Rotation);
  frame.SetIdentity();
  frame.SetRotation(Vector3D(1, 1, 1), Angle(-4.9e-324));
  EXPECT_EQ(TypeOf(frame), Matrix43::Rotation);
}

TEST(Matrix43Rotation, OnATranslationIsRotationTranslation) {
  Matrix43 frame;
  frame.SetTrans(Vector3D(1, 2, 3));
  EXPECT_EQ(TypeOf(frame), Matrix43::Translation);
  Angle quarter;
  quarter.SetDegre(90.0);
  frame.SetRotation(Z, quarter);
  EXPECT_EQ(TypeOf(frame), Matrix43::RotationTranslation);
  EXPECT_TRUE(NearVector(frame * Vector3D(1, 0, 0), Vector3D(1, 3, 3), 1e-12));
}

TEST(Matrix43AxisRotation, AboutASignedUnitAxisIsThePrincipalOne) {
  struct Case {
    const char* name;
    Vector3D axis;
    Direction direction;
    double sign;
  };
  const Case cases[] = {
      {"+X", {1, 0, 0}, X, 1.0},   {"-X", {-1, 0, 0}, X, -1.0}, {"+Y", {0, 1, 0}, Y, 1.0},
      {"-Y", {0, -1, 0}, Y, -1.0}, {"+Z", {0, 0, 1}, Z, 1.0},   {"-Z", {0, 0, -1}, Z, -1.0},
  };
  for (const Case& c : cases) {
    for (const Type type : AllTypes) {
      SCOPED_TRACE(testing::Message() << c.name << " of " << type);
      Twin twin;
      for (int i = 0; i < 16; ++i) {
        twin.m[i] = i + 100.0;
      }
      twin.type = type;
      Matrix43 frame = FrameOf(twin);
      frame.SetRotation(c.axis, Angle(0.8));
      Matrix43 expected = FrameOf(twin);
      expected.SetRotation(c.direction, Angle(c.sign * 0.8));
      EXPECT_TRUE(IsTwin(frame, TwinOf(expected)));
    }
  }
}

// The two ways differ in the kind of a translated frame, which tells them apart.
TEST(Matrix43AxisRotation, AnAxisCountsAsPrincipalWithinAHundredThousandth) {
  const double limit = 0.00001;
  const double below = std::nextafter(limit, 0.0);
  for (int axis = 0; axis < 3; ++axis) {
    for (const double sign : {1.0, -1.0}) {
      for (int component = 0; component < 3; ++component) {
        if (component == axis) {
          continue;
        }
        SCOPED_TRACE(testing::Message() << axis << " " << sign << " " << component);
        Vector3D direction;
        direction[axis] = sign;
        direction[component] = below;
        Matrix43 frame;
        frame.SetTrans(Vector3D(1, 2, 3));
        frame.SetRotation(direction, Angle(0.8));
        EXPECT_EQ(TypeOf(frame), Matrix43::RotationTranslation);
        direction[component] = -limit;
        frame.SetIdentity();
        frame.SetTrans(Vector3D(1, 2, 3));
        frame.SetRotation(direction, Angle(0.8));
        EXPECT_EQ(TypeOf(frame), Matrix43::Rotation);
      }
    }
  }
}

TEST(Matrix43AxisRotation, AnAxisMustBeOfUnitLengthToCountAsPrincipal) {
  Matrix43 principal;
  principal.SetTrans(Vector3D(1, 2, 3));
  principal.SetRotation(Vector3D(0, 0, -1.000009), Angle(0.8));
  EXPECT_EQ(TypeOf(principal), Matrix43::RotationTranslation);
  Matrix43 longer;
  longer.SetTrans(Vector3D(1, 2, 3));
  longer.SetRotation(Vector3D(0, 0, -2), Angle(0.8));
  EXPECT_EQ(TypeOf(longer), Matrix43::Rotation);
  EXPECT_TRUE(NearFrame(longer, principal, 1e-15));
  EXPECT_EQ(longer.GetTrans() == Vector3D(1, 2, 3), 1);
}

/// MakeAxisW in scalar arithmetic.
Twin AxisTwin(const Vector3D& w) {
  Twin frame;
  Vector3D n(w[0], w[1], w[2]);
  const double length = std::sqrt(Sum3(n[0] * n[0], n[1] * n[1], n[2] * n[2]));
  if (length < 0.001) {
    return frame;
  }
  n = Vector3D(n[0] / length, n[1] / length, n[2] / length);
  Vector3D v = n & AxisX;
  const double sine = v.Norm();
  v = sine < 0.001 ? n & AxisY : Vector3D(v[0] / sine, v[1] / sine, v[2] / sine);
  const Vector3D u = v & n;
  for (int i = 0; i < 3; ++i) {
    frame.m[i] = u[i];
    frame.m[4 + i] = v[i];
    frame.m[8 + i] = n[i];
  }
  frame.type = Matrix43::Rotation;
  return frame;
}

Vector3D DrawDirection(TestRandom& random) {
  const double length = random.Chance(0.5) ? 1.0 : random.Real(0.01, 30.0);
  Vector3D v(random.Real(-1, 1), random.Real(-1, 1), random.Real(-1, 1));
  if (random.Chance(0.2)) {
    v = Vector3D(v[0], v[1] * 0.001, v[2] * 0.001);  // near the X axis
  }
  return v * length;
}

TEST(Matrix43AxisRotation, AboutAnyAxisIsTheScalarFormulaBitForBit) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 1500; ++i) {
    const Vector3D axis = DrawDirection(random);
    const Angle angle(random.Real(-7.0, 7.0));
    const Twin fromAxis = AxisTwin(axis);
    Matrix43 aboutZ;
    aboutZ.SetRotation(Z, angle);
    const Twin turned = ProductTwin(ProductTwin(fromAxis, TwinOf(aboutZ)), HInverseTwin(fromAxis));
    for (const Type type : AllTypes) {
      Twin twin;
      twin.type = type;
      for (int k = 0; k < 16; ++k) {
        twin.m[k] = k + 100.0;
      }
      Matrix43 frame = FrameOf(twin);
      frame.SetRotation(axis, angle);
      twin.type = Matrix43::Rotation;
      for (int k = 0; k < 12; ++k) {
        twin.m[k] = turned.m[k];
      }
      ASSERT_TRUE(IsTwin(frame, twin)) << "draw " << i << ": the origin stays";
    }
  }
}

TEST(Matrix43AxisRotation, KeepsTheAxisAndTurnsWhatIsPerpendicularToIt) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 300; ++i) {
    Vector3D axis = DrawDirection(random);
    const double radians = random.Real(-3.1, 3.1);
    Matrix43 frame;
    frame.SetRotation(axis, Angle(radians));
    ASSERT_TRUE(NearVector(frame.ApplyToVector3D(axis), axis, 1e-12));
    Vector3D across = axis & Vector3D(random.Real(-1, 1), random.Real(-1, 1), random.Real(-1, 1));
    ASSERT_TRUE(across.MakeUnit(1e-6));
    Angle measured;
    ASSERT_TRUE(measured.SetVector3DRef(across, frame.ApplyToVector3D(across), axis));
    ASSERT_NEAR(measured.GetRadian(), radians, 1e-12);
    ASSERT_TRUE(frame.IsRotary());
  }
}

TEST(Matrix43AxisRotation, AboutAnAxisTooShortTurnsAboutZ) {
  Matrix43 expected;
  expected.SetRotation(Z, Angle(0.8));
  const Vector3D axes[] = {{0, 0, 0}, {0.0009, 0, 0}};
  for (const Vector3D& axis : axes) {
    Matrix43 frame;
    frame.SetRotation(axis, Angle(0.8));
    EXPECT_EQ(frame == expected, 1);
    EXPECT_EQ(TypeOf(frame), Matrix43::Rotation);
  }
}

TEST(Matrix43MakeAxisW, BuildsARightHandedFrameOnTheAxis) {
  struct Case {
    const char* name;
    Vector3D w;
    Vector3D u, v, unitW;
  };
  const Case cases[] = {
      {"Z", {0, 0, 1}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
      {"long Z", {0, 0, 40}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
      {"X", {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}},
      {"-X", {-2, 0, 0}, {0, 1, 0}, {0, 0, -1}, {-1, 0, 0}},
      {"Y", {0, 1, 0}, {1, 0, 0}, {0, 0, -1}, {0, 1, 0}},
      {"-Z", {0, 0, -1}, {1, 0, 0}, {0, -1, 0}, {0, 0, -1}},
      {"as short as may be", {0, 0, 0.001}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Matrix43 frame;
    frame.SetTrans(Vector3D(1, 2, 3));
    EXPECT_TRUE(frame.MakeAxisW(c.w));
    EXPECT_EQ(frame.GetU() == c.u, 1);
    EXPECT_EQ(frame.GetV() == c.v, 1);
    EXPECT_EQ(frame.GetW() == c.unitW, 1);
    EXPECT_EQ(frame.GetTrans() == NullVector, 1);
    EXPECT_EQ(TypeOf(frame), Matrix43::Rotation);
  }
}

TEST(Matrix43MakeAxisW, IsTheScalarFormulaBitForBit) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 3000; ++i) {
    const Vector3D w = DrawDirection(random);
    Matrix43 frame = FrameOf(DrawTwin(random, AllTypes[i % 6]));
    EXPECT_TRUE(frame.MakeAxisW(w));
    ASSERT_TRUE(IsTwin(frame, AxisTwin(w))) << "draw " << i;
  }
}

TEST(Matrix43MakeAxisW, LeavesTheIdentityForADirectionTooShort) {
  const Vector3D directions[] = {{0, 0, 0}, {0, 0, std::nextafter(0.001, 0.0)}, {1e-4, 0, 0}};
  for (const Vector3D& direction : directions) {
    for (const Type type : AllTypes) {
      Twin twin;
      twin.type = type;
      twin.m[12] = 5.0;
      twin.m[3] = 4.0;
      Matrix43 frame = FrameOf(twin);
      EXPECT_FALSE(frame.MakeAxisW(direction));
      EXPECT_TRUE(IsTwin(frame, Twin()));
    }
  }
}

// Where the direction is along X up to a sine of 0.001, V comes from the Y axis.
TEST(Matrix43MakeAxisW, TakesTheYAxisNearTheXAxis) {
  Matrix43 frame;
  ASSERT_TRUE(frame.MakeAxisW(Vector3D(1, 0.0009, 0)));
  EXPECT_GT(frame.GetV()[2], 0.999);
  EXPECT_TRUE(NearVector(frame.GetU(), Vector3D(0, 1, 0), 0.001));
  ASSERT_TRUE(frame.MakeAxisW(Vector3D(1, 0.0011, 0)));
  EXPECT_LT(frame.GetV()[2], -0.999);
  EXPECT_TRUE(NearVector(frame.GetU(), Vector3D(0, -1, 0), 1.01));
}

}  // namespace
}  // namespace Orvo
