#include "geometry/FrameTwin.h"
#include "support/NearVector.h"
#include "support/SameBits.h"
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
using Testing::Load;
using Testing::NearFrame;
using Testing::SameBits;
using Testing::TestRandom;
using Testing::Twin;
using Testing::TwinOf;
using Testing::Type;
using Testing::TypeOf;

TEST(Matrix43HInverse, IsTheScalarFormulaForAllKindsBitForBit) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (const Type type : AllTypes) {
    SCOPED_TRACE(type);
    for (int i = 0; i < 1000; ++i) {
      const Twin twin = DrawTwin(random, type);
      Matrix43 frame = FrameOf(twin);
      ASSERT_TRUE(IsTwin(frame.HInverse(), HInverseTwin(twin))) << "draw " << i;
      ASSERT_TRUE(IsTwin(frame, twin));
    }
  }
}

TEST(Matrix43HInverse, OfAProjectiveFrameIsTheIdentityMarkedProjective) {
  Matrix43 frame = Load({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 2});
  Matrix43 inverse = frame.HInverse();
  EXPECT_TRUE(HoldsElements(inverse, IdentityFrame));
  EXPECT_EQ(TypeOf(inverse), Matrix43::Projective);
}

// A frame marked Rotation may hold an origin; its inverse forgets it.
TEST(Matrix43HInverse, OfARotationForgetsTheOrigin) {
  Matrix43 frame;
  frame.SetTrans(Vector3D(1, 2, 3));
  frame.SetUVW(AxisY, AxisZ, AxisX);
  Matrix43 inverse = frame.HInverse();
  EXPECT_EQ(TypeOf(inverse), Matrix43::Rotation);
  EXPECT_TRUE(SameBits(inverse.GetTrans(), NullVector));
}

TEST(Matrix43Inverse, OfRigidKindsIsHInverse) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  const Type rigid[] = {Matrix43::Identity, Matrix43::Rotation, Matrix43::Translation,
                        Matrix43::RotationTranslation};
  for (const Type type : rigid) {
    SCOPED_TRACE(type);
    for (int i = 0; i < 200; ++i) {
      Matrix43 frame = FrameOf(DrawTwin(random, type));
      ASSERT_TRUE(IsTwin(frame.Inverse(), TwinOf(frame.HInverse())));
    }
  }
}

TEST(Matrix43Inverse, OfARigidFrameUndoesIt) {
  Matrix43 frame;
  Angle angle;
  angle.SetDegre(30.0);
  frame.SetRotation(X, angle);
  frame.SetTrans(Vector3D(10, 0, 5));
  EXPECT_TRUE(NearFrame(frame * frame.Inverse(), Matrix43(), 1e-12));
  EXPECT_TRUE(NearFrame(frame.Inverse() * frame, Matrix43(), 1e-12));
  EXPECT_EQ(frame.Inverse() == frame.HInverse(), 1);
}

TEST(Matrix43Inverse, OfAScaledFrameIsAffine) {
  Matrix43 frame = Load({2, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 4, 5, 6, 1});
  ASSERT_EQ(TypeOf(frame), Matrix43::General);
  Matrix43 inverse = frame.Inverse();
  EXPECT_EQ(TypeOf(inverse), Matrix43::General);
  const double expected[16] = {0.5, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -2, -5, -6, 1};
  EXPECT_EQ(inverse == Load(expected), 1);
}

TEST(Matrix43Inverse, OfAGeneralFrameIsWithinRounding) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 500; ++i) {
    double m[16] = {};
    for (int column = 0; column < 4; ++column) {
      for (int row = 0; row < 3; ++row) {
        m[4 * column + row] = random.Real(-1.0, 1.0) + (column == row ? 4.0 : 0.0);
      }
    }
    m[15] = 1.0;
    Matrix43 frame = Load(m);
    ASSERT_EQ(TypeOf(frame), Matrix43::General);
    Matrix43 inverse = frame.Inverse();
    ASSERT_EQ(TypeOf(inverse), Matrix43::General);
    ASSERT_TRUE(NearFrame(frame * inverse, Matrix43(), 1e-13));
    ASSERT_TRUE(NearFrame(inverse * frame, Matrix43(), 1e-13));
    ASSERT_EQ(inverse[3], 0.0);
    ASSERT_EQ(inverse[7], 0.0);
    ASSERT_EQ(inverse[11], 0.0);
    ASSERT_EQ(inverse[15], 1.0);
  }
}

TEST(Matrix43Inverse, OfASingularGeneralFrameIsTheIdentity) {
  struct Case {
    const char* name;
    double m[16];
  };
  const Case cases[] = {
      {"a zero column", {0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 4, 5, 6, 1}},
      {"two equal columns", {1, 2, 3, 0, 1, 2, 3, 0, 0, 0, 1, 0, 4, 5, 6, 1}},
      {"a zero row", {1, 2, 0, 0, 3, 4, 0, 0, 5, 6, 0, 0, 4, 5, 6, 1}},
      {"all zero", {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 4, 5, 6, 1}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Matrix43 frame = Load(c.m);
    ASSERT_EQ(TypeOf(frame), Matrix43::General);
    EXPECT_TRUE(IsTwin(frame.Inverse(), Twin()));
  }
}

// With the block diag(d, 1, 1) the determinant is d to the last bit.
TEST(Matrix43Inverse, TheSmallestDeterminantIsOneInTwentyDigits) {
  const double limit = 1e-20;
  for (const double sign : {1.0, -1.0}) {
    SCOPED_TRACE(sign);
    Matrix43 at = Load({sign * limit, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    Matrix43 inverse = at.Inverse();
    EXPECT_EQ(TypeOf(inverse), Matrix43::General);
    EXPECT_EQ(inverse[0], 1.0 / (sign * limit));
    const double below = sign * std::nextafter(limit, 0.0);
    Matrix43 singular = Load({below, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 7, 0, 0, 1});
    EXPECT_TRUE(IsTwin(singular.Inverse(), Twin()));
  }
}

TEST(Matrix43Inverse, UnclassifiedLanesAreInvertedAsGeneral) {
  Matrix43 frame(Matrix43().Get_m128d());
  Matrix43 inverse = frame.Inverse();
  EXPECT_EQ(TypeOf(inverse), Matrix43::General);
  EXPECT_EQ(inverse == Matrix43(), 1);
}

// A frame of the kind General ignores its fourth row.
TEST(Matrix43Inverse, OfAGeneralFrameHasTheAffineFourthRow) {
  Twin twin;
  twin.type = Matrix43::General;
  twin.m[0] = 2.0;
  twin.m[3] = twin.m[7] = twin.m[11] = 5.0;
  twin.m[15] = 9.0;
  Matrix43 inverse = FrameOf(twin).Inverse();
  const double expected[16] = {0.5, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  EXPECT_EQ(inverse == Load(expected), 1);
}

TEST(Matrix43Inverse, OfAProjectiveFrameIsWithinRounding) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  Matrix43 unit = Load({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
  for (int i = 0; i < 500; ++i) {
    double m[16];
    for (int k = 0; k < 16; ++k) {
      m[k] = random.Real(-1.0, 1.0) + (k % 5 == 0 ? 5.0 : 0.0);
    }
    Matrix43 frame = Load(m);
    ASSERT_EQ(TypeOf(frame), Matrix43::Projective);
    Matrix43 inverse = frame.Inverse();
    ASSERT_EQ(TypeOf(inverse), Matrix43::Projective);
    ASSERT_TRUE(NearFrame(frame * inverse, unit, 1e-12));
    ASSERT_TRUE(NearFrame(inverse * frame, unit, 1e-12));
  }
}

TEST(Matrix43Inverse, OfAProjectiveFrameFailsForADeterminantOfExactlyZeroOnly) {
  Matrix43 singular = Load({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 4, 5, 6, 0});
  ASSERT_EQ(TypeOf(singular), Matrix43::Projective);
  EXPECT_TRUE(IsTwin(singular.Inverse(), Twin()));
  Matrix43 nearly = Load({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1e-300});
  Matrix43 inverse = nearly.Inverse();
  EXPECT_EQ(TypeOf(inverse), Matrix43::Projective);
  EXPECT_EQ(inverse[0], 1.0);
  EXPECT_EQ(inverse[15], 1.0 / 1e-300);
}

TEST(Matrix43Inverse, OfAPermutationOfAllFourAxesIsItsTranspose) {
  const double m[16] = {0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 1, 0, 0, 0};
  double transposed[16];
  for (int i = 0; i < 16; ++i) {
    transposed[i] = m[4 * (i % 4) + i / 4];
  }
  EXPECT_EQ(Load(m).Inverse() == Load(transposed), 1);
}

}  // namespace
}  // namespace Orvo
