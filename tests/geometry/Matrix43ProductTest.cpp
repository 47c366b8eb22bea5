#include "geometry/FrameTwin.h"
#include "geometry/WithFourth.h"
#include "support/NearVector.h"
#include "support/PrivateMember.h"
#include "support/SameBits.h"
#include "support/TestRandom.h"

#include <Orvo/Angle.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

namespace Orvo {

namespace Testing {

struct FrameTypeOf {
  using Type = Matrix43::Type Matrix43::*;
  friend Type MemberOf(FrameTypeOf);
};
template struct PrivateMember<FrameTypeOf, &Matrix43::type_>;

}  // namespace Testing

namespace {

using Testing::AllTypes;
using Testing::Combined;
using Testing::DrawNumber;
using Testing::DrawTwin;
using Testing::FrameOf;
using Testing::IsTwin;
using Testing::Load;
using Testing::NearVector;
using Testing::ProductTwin;
using Testing::SameBits;
using Testing::TestRandom;
using Testing::Twin;
using Testing::Type;
using Testing::TypeOf;
using Testing::WithFourth;

constexpr double Pi = 3.141592653589793;

/// A rigid frame from random axes, of the kind RotationTranslation.
Matrix43 DrawRigid(TestRandom& random) {
  Matrix43 frame;
  frame.SetRotation(X, Angle(random.Real(-Pi, Pi)));
  Matrix43 second;
  second.SetRotation(Y, Angle(random.Real(-Pi, Pi)));
  Matrix43 third;
  third.SetRotation(Z, Angle(random.Real(-Pi, Pi)));
  frame = frame * second * third;
  frame.SetTrans(Vector3D(random.Real(-500, 500), random.Real(-500, 500), random.Real(-500, 500)));
  return frame;
}

TEST(Matrix43Product, IsTheScalarFormulaForAllPairsOfKindsBitForBit) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (const Type typeA : AllTypes) {
    for (const Type typeB : AllTypes) {
      SCOPED_TRACE(testing::Message() << typeA << " * " << typeB);
      for (int i = 0; i < 300; ++i) {
        const Twin a = DrawTwin(random, typeA);
        const Twin b = DrawTwin(random, typeB);
        Matrix43 frameA = FrameOf(a);
        const Matrix43 frameB = FrameOf(b);
        ASSERT_TRUE(IsTwin(frameA * frameB, ProductTwin(a, b))) << "draw " << i;
        ASSERT_TRUE(IsTwin(frameA, a));
        ASSERT_TRUE(IsTwin(frameB, b));
      }
    }
  }
}

TEST(Matrix43Product, KindsFollowTheTable) {
  const int kinds[6][6] = {
      // right: General, Identity, Rotation, Translation, RotationTranslation, Projective
      {0, 0, 0, 0, 0, 5},  // General
      {0, 1, 2, 3, 4, 5},  // Identity
      {0, 2, 2, 4, 4, 5},  // Rotation
      {0, 3, 4, 4, 4, 5},  // Translation
      {0, 4, 4, 4, 4, 5},  // RotationTranslation
      {5, 5, 5, 5, 5, 5},  // Projective
  };
  for (const Type a : AllTypes) {
    for (const Type b : AllTypes) {
      SCOPED_TRACE(testing::Message() << a << " * " << b);
      Twin twin;
      twin.type = a;
      Matrix43 left = FrameOf(twin);
      twin.type = b;
      EXPECT_EQ(TypeOf(left * FrameOf(twin)), static_cast<Type>(kinds[a][b]));
    }
  }
}

TEST(Matrix43Product, TwoTranslationsAreMarkedRotationTranslation) {
  Matrix43 a;
  Matrix43 b;
  a.SetTrans(Vector3D(1, 2, 3));
  b.SetTrans(Vector3D(10, 20, 30));
  Matrix43 product = a * b;
  EXPECT_EQ(TypeOf(product), Matrix43::RotationTranslation);
  EXPECT_EQ(product.GetTrans() == Vector3D(11, 22, 33), 1);
}

TEST(Matrix43Product, AppliesTheRightFactorFirst) {
  Matrix43 turn;
  turn.SetRotation(Z, Angle(Pi / 2));
  Matrix43 shift;
  shift.SetTrans(Vector3D(10, 0, 0));
  EXPECT_TRUE(NearVector((turn * shift) * Vector3D(1, 0, 0), Vector3D(0, 11, 0), 1e-12));
  EXPECT_TRUE(NearVector((shift * turn) * Vector3D(1, 0, 0), Vector3D(10, 1, 0), 1e-12));
}

TEST(Matrix43Product, TakesAFrameTimesItself) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (const Type type : AllTypes) {
    const Twin twin = DrawTwin(random, type);
    Matrix43 frame = FrameOf(twin);
    EXPECT_TRUE(IsTwin(frame * frame, ProductTwin(twin, twin)));
    frame = frame * frame;
    // From one frame of the kind Identity to another nothing is copied, and nothing had changed.
    EXPECT_TRUE(IsTwin(frame, ProductTwin(twin, twin)));
  }
}

TEST(Matrix43Product, OfRigidFramesIsAppliedOneAfterTheOther) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 300; ++i) {
    Matrix43 a = DrawRigid(random);
    Matrix43 b = DrawRigid(random);
    const Vector3D p(random.Real(-90, 90), random.Real(-90, 90), random.Real(-90, 90));
    Matrix43 product = a * b;
    ASSERT_TRUE(NearVector(product * p, a * (b * p), 1e-10));
    ASSERT_TRUE(
        NearVector(product.ApplyToVector3D(p), a.ApplyToVector3D(b.ApplyToVector3D(p)), 1e-10));
  }
}

Vector3D PointTwin(const Twin& f, const Vector3D& p) {
  double q[4];
  for (int row = 0; row < 4; ++row) {
    q[row] = Combined(f.m, row, p[0], p[1], p[2]);
  }
  switch (f.type) {
    case Matrix43::General:
    case Matrix43::RotationTranslation:
      return Vector3D(q[0] + f.m[12], q[1] + f.m[13], q[2] + f.m[14]);
    case Matrix43::Identity:
      return Vector3D(p[0], p[1], p[2]);
    case Matrix43::Rotation:
      return Vector3D(q[0], q[1], q[2]);
    case Matrix43::Translation:
      return Vector3D(p[0] + f.m[12], p[1] + f.m[13], p[2] + f.m[14]);
    case Matrix43::Projective:
      break;
  }
  for (int row = 0; row < 4; ++row) {
    q[row] += f.m[12 + row];
  }
  const bool divides = q[3] != 0.0 && q[3] != 1.0;
  return divides ? Vector3D(q[0] / q[3], q[1] / q[3], q[2] / q[3]) : Vector3D(q[0], q[1], q[2]);
}

Vector3D DirectionTwin(const Twin& f, const Vector3D& v) {
  switch (f.type) {
    case Matrix43::Identity:
    case Matrix43::Translation:
      return Vector3D(v[0], v[1], v[2]);
    case Matrix43::General:
    case Matrix43::Rotation:
    case Matrix43::RotationTranslation:
      return Vector3D(Combined(f.m, 0, v[0], v[1], v[2]), Combined(f.m, 1, v[0], v[1], v[2]),
                      Combined(f.m, 2, v[0], v[1], v[2]));
    case Matrix43::Projective:
      break;
  }
  return Vector3D();
}

TEST(Matrix43Image, IsTheScalarFormulaForAllKindsBitForBit) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (const Type type : AllTypes) {
    SCOPED_TRACE(type);
    for (int i = 0; i < 1500; ++i) {
      const Twin twin = DrawTwin(random, type);
      Matrix43 frame = FrameOf(twin);
      const Vector3D p = WithFourth(DrawNumber(random), DrawNumber(random), DrawNumber(random),
                                    random.Chance(0.5) ? 0.0 : DrawNumber(random));
      ASSERT_TRUE(SameBits(frame.ApplyToPoint(p), PointTwin(twin, p))) << "draw " << i;
      ASSERT_TRUE(SameBits(frame * p, PointTwin(twin, p))) << "draw " << i;
      ASSERT_TRUE(SameBits(frame.ApplyToVector3D(p), DirectionTwin(twin, p))) << "draw " << i;
      ASSERT_TRUE(IsTwin(frame, twin));
    }
  }
}

TEST(Matrix43Image, AProjectivePointIsDividedUnlessTheFourthCoordinateIsZeroOrOne) {
  struct Case {
    const char* name;
    double fourthRow[4];
    Vector3D image;
  };
  const Case cases[] = {
      {"a corner of 2", {0, 0, 0, 2}, {4, 6, 8}},
      {"a fourth coordinate of 0", {0, 0, 0, 0}, {8, 12, 16}},
      {"a fourth coordinate of -0", {-0.0, -0.0, -0.0, -0.0}, {8, 12, 16}},
      {"a fourth coordinate of 1 from U", {1, 0, 0, -6}, {8, 12, 16}},
      {"a fourth coordinate of -4 from V", {0, 2, 0, -24}, {-2, -3, -4}},
      {"a fourth coordinate of 8 from W", {0, 0, 1, -5}, {1, 1.5, 2}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Matrix43 frame = Load({1, 0, 0, c.fourthRow[0], 0, 1, 0, c.fourthRow[1], 0, 0, 1,
                           c.fourthRow[2], 1, 2, 3, c.fourthRow[3]});
    ASSERT_EQ(TypeOf(frame), Matrix43::Projective);
    EXPECT_TRUE(SameBits(frame.ApplyToPoint(Vector3D(7, 10, 13)), c.image));
    EXPECT_TRUE(SameBits(frame.ApplyToVector3D(Vector3D(7, 10, 13)), NullVector));
  }
}

// No operation sets such a kind; it must not lead anywhere.
TEST(Matrix43Image, AKindOutsideTheEnumerationGivesTheNullVector) {
  for (const int kind : {6, 7, -1}) {
    SCOPED_TRACE(kind);
    Matrix43 frame;
    frame.SetTrans(Vector3D(1, 2, 3));
    frame.*MemberOf(Testing::FrameTypeOf()) = static_cast<Type>(kind);
    EXPECT_TRUE(SameBits(frame.ApplyToPoint(Vector3D(4, 5, 6)), NullVector));
    EXPECT_TRUE(SameBits(frame.ApplyToVector3D(Vector3D(4, 5, 6)), NullVector));
  }
}

}  // namespace
}  // namespace Orvo
