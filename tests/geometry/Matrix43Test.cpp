#include "geometry/FrameTwin.h"
#include "geometry/WithFourth.h"
#include "support/SameBits.h"
#include "support/Signature.h"

#include <Orvo/Angle.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>

namespace Orvo {
namespace {

using Testing::AllTypes;
using Testing::FrameOf;
using Testing::HasSignature;
using Testing::HoldsElements;
using Testing::IsTwin;
using Testing::SameBits;
using Testing::Twin;
using Testing::TwinOf;
using Testing::Type;
using Testing::TypeOf;
using Testing::WithFourth;

static_assert(std::has_virtual_destructor_v<Matrix43>);
static_assert(alignof(Matrix43) == 16);
static_assert(sizeof(Matrix43::Type) == 4 && sizeof(Direction) == 4);
static_assert(Matrix43::General == 0 && Matrix43::Identity == 1 && Matrix43::Rotation == 2 &&
              Matrix43::Translation == 3 && Matrix43::RotationTranslation == 4 &&
              Matrix43::Projective == 5);
static_assert(X == 0 && Y == 1 && Z == 2 && Direction::Z == Z);
static_assert(HasSignature<Matrix43& (Matrix43::*)(const Matrix43&)>(&Matrix43::operator=));
static_assert(HasSignature<Matrix43& (Matrix43::*)(const double*)>(&Matrix43::operator=));
static_assert(HasSignature<const __m128d* (Matrix43::*)() const>(&Matrix43::Get_m128d));
static_assert(HasSignature<void (Matrix43::*)()>(&Matrix43::SetIdentity));
static_assert(HasSignature<Vector3D (Matrix43::*)()>(&Matrix43::GetU));
static_assert(HasSignature<Vector3D (Matrix43::*)()>(&Matrix43::GetV));
static_assert(HasSignature<Vector3D (Matrix43::*)()>(&Matrix43::GetW));
static_assert(HasSignature<Vector3D (Matrix43::*)()>(&Matrix43::GetTrans));
static_assert(HasSignature<void (Matrix43::*)(const Vector3D&, const Vector3D&, const Vector3D&)>(
    &Matrix43::SetUVW));
static_assert(HasSignature<void (Matrix43::*)(const Vector3D&, const Vector3D&, const Vector3D&,
                                              const Vector3D&)>(&Matrix43::SetUVWT));
static_assert(HasSignature<void (Matrix43::*)(const Vector3D&, const Vector3D&, const Vector3D&,
                                              const Vector3D&)>(&Matrix43::SetTUVW));
static_assert(HasSignature<void (Matrix43::*)(const Vector3D&)>(&Matrix43::SetTrans));
static_assert(HasSignature<Matrix43 (Matrix43::*)(const Matrix43&)>(&Matrix43::operator*));
static_assert(HasSignature<Vector3D (Matrix43::*)(const Vector3D&)>(&Matrix43::operator*));
static_assert(HasSignature<Vector3D (Matrix43::*)(const Vector3D&)>(&Matrix43::ApplyToPoint));
static_assert(HasSignature<Vector3D (Matrix43::*)(const Vector3D&)>(&Matrix43::ApplyToVector3D));
static_assert(HasSignature<Matrix43 (Matrix43::*)()>(&Matrix43::Inverse));
static_assert(HasSignature<Matrix43 (Matrix43::*)()>(&Matrix43::HInverse));
static_assert(
    HasSignature<void (Matrix43::*)(const Direction&, const Angle&)>(&Matrix43::SetRotation));
static_assert(
    HasSignature<void (Matrix43::*)(const Vector3D&, const Angle&)>(&Matrix43::SetRotation));
static_assert(HasSignature<bool (Matrix43::*)(const Vector3D&)>(&Matrix43::MakeAxisW));
static_assert(HasSignature<bool (Matrix43::*)() const>(&Matrix43::IsIdentity));
static_assert(HasSignature<bool (Matrix43::*)() const>(&Matrix43::IsTranslation));
static_assert(HasSignature<bool (Matrix43::*)() const>(&Matrix43::IsRotary));
static_assert(HasSignature<bool (Matrix43::*)(const Matrix43&, double) const>(&Matrix43::IsSame));
static_assert(HasSignature<int (Matrix43::*)(const Matrix43&) const>(&Matrix43::operator==));
static_assert(HasSignature<void (Matrix43::*)(std::wstring*) const>(&Matrix43::GetStringDebug));

TEST(Matrix43, StartsAsTheIdentity) {
  Matrix43 frame;
  EXPECT_TRUE(HoldsElements(frame, IdentityFrame));
  EXPECT_EQ(TypeOf(frame), Matrix43::Identity);
  EXPECT_TRUE(frame.IsIdentity());
}

TEST(Matrix43, CopyTakesTheDoublesAndTheKind) {
  for (const Type type : AllTypes) {
    SCOPED_TRACE(type);
    Twin twin;
    twin.type = type;
    for (int i = 0; i < 16; ++i) {
      twin.m[i] = i + 0.5;
    }
    const Matrix43 source = FrameOf(twin);
    const Matrix43 copy(source);
    EXPECT_TRUE(IsTwin(copy, twin));
  }
}

TEST(Matrix43, LanesGiveTheDoublesInOrderUnclassified) {
  alignas(16) double numbers[16];
  for (int i = 0; i < 16; ++i) {
    numbers[i] = i + 1.0;
  }
  const Matrix43 frame(reinterpret_cast<const __m128d*>(numbers));
  EXPECT_TRUE(HoldsElements(frame, numbers));
  EXPECT_EQ(TypeOf(frame), Matrix43::General);
  const Matrix43 unit(reinterpret_cast<const __m128d*>(&IdentityFrame[0]));
  EXPECT_EQ(TypeOf(unit), Matrix43::General) << "lanes are not classified";
}

TEST(Matrix43, NullLanesGiveTheIdentity) {
  const __m128d* none = nullptr;
  EXPECT_TRUE(HoldsElements(Matrix43(none), IdentityFrame));
}

TEST(Matrix43, AssignmentTakesTheDoublesAndTheKind) {
  for (const Type from : AllTypes) {
    for (const Type to : AllTypes) {
      SCOPED_TRACE(testing::Message() << from << " onto " << to);
      Twin source;
      Twin target;
      source.type = from;
      target.type = to;
      for (int i = 0; i < 16; ++i) {
        source.m[i] = i + 0.5;
        target.m[i] = -i;
      }
      const Matrix43 other = FrameOf(source);
      Matrix43 frame = FrameOf(target);
      EXPECT_EQ(&(frame = other), &frame);
      // Nothing is copied from one frame of the kind Identity to another.
      const bool bothIdentity = from == Matrix43::Identity && to == Matrix43::Identity;
      EXPECT_TRUE(IsTwin(frame, bothIdentity ? target : source));
    }
  }
}

TEST(Matrix43, AssignmentOntoItselfChangesNothing) {
  for (const Type type : AllTypes) {
    SCOPED_TRACE(type);
    Twin twin;
    twin.type = type;
    twin.m[5] = 3.0;
    Matrix43 frame = FrameOf(twin);
    const Matrix43& self = frame;
    frame = self;
    EXPECT_TRUE(IsTwin(frame, twin));
  }
}

TEST(Matrix43, AssignmentFromNumbersReturnsItsTargetAndIgnoresNull) {
  Matrix43 frame;
  frame.SetTrans(Vector3D(1, 2, 3));
  const Twin before = TwinOf(frame);
  const double* none = nullptr;
  EXPECT_EQ(&(frame = none), &frame);
  EXPECT_TRUE(IsTwin(frame, before));
}

TEST(Matrix43, ReloadingItsOwnNumbersClassifiesThem) {
  Matrix43 frame;
  double* raw = frame;
  raw[12] = 5.0;
  EXPECT_EQ(TypeOf(frame), Matrix43::Identity) << "raw access goes past the kind";
  frame = static_cast<const double*>(raw);
  EXPECT_EQ(TypeOf(frame), Matrix43::Translation);
  EXPECT_EQ(frame.GetTrans() == Vector3D(5, 0, 0), 1);
}

TEST(Matrix43, PointersAndLanesReachTheSixteenDoubles) {
  Matrix43 frame;
  double* raw = frame;
  for (int i = 0; i < 16; ++i) {
    raw[i] = i + 1.0;
  }
  const Matrix43& constant = frame;
  const double* numbers = constant;
  EXPECT_EQ(numbers, raw);
  EXPECT_EQ(static_cast<const void*>(constant.Get_m128d()), static_cast<const void*>(numbers));
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(numbers) % 16, 0U);
  for (int lane = 0; lane < 8; ++lane) {
    double pair[2];
    _mm_storeu_pd(pair, constant.Get_m128d()[lane]);
    EXPECT_EQ(pair[0], 2 * lane + 1.0);
    EXPECT_EQ(pair[1], 2 * lane + 2.0);
  }
}

TEST(Matrix43, SetIdentityResetsTheDoublesAndTheKind) {
  for (const Type type : AllTypes) {
    SCOPED_TRACE(type);
    Twin twin;
    twin.type = type;
    for (int i = 0; i < 16; ++i) {
      twin.m[i] = i + 0.5;
    }
    Matrix43 frame = FrameOf(twin);
    frame.SetIdentity();
    EXPECT_TRUE(IsTwin(frame, Twin()));
  }
}

TEST(Matrix43Columns, AreReadWithoutTheirFourthComponent) {
  Twin twin;
  for (int i = 0; i < 16; ++i) {
    twin.m[i] = i + 1.0;
  }
  Matrix43 frame = FrameOf(twin);
  EXPECT_TRUE(SameBits(frame.GetU(), Vector3D(1, 2, 3)));
  EXPECT_TRUE(SameBits(frame.GetV(), Vector3D(5, 6, 7)));
  EXPECT_TRUE(SameBits(frame.GetW(), Vector3D(9, 10, 11)));
  EXPECT_TRUE(SameBits(frame.GetTrans(), Vector3D(13, 14, 15)));
}

TEST(Matrix43Columns, SetUVWTakesFourComponentsAndKeepsTheOrigin) {
  for (const Type type : AllTypes) {
    SCOPED_TRACE(type);
    Twin twin;
    twin.type = type;
    twin.m[12] = 7.0;
    twin.m[15] = 3.0;
    Matrix43 frame = FrameOf(twin);
    frame.SetUVW(WithFourth(1, 2, 3, 4), WithFourth(5, 6, 7, 8), WithFourth(9, 10, 11, 12));
    const Twin expected = {{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 7, 0, 0, 3}, Matrix43::Rotation};
    EXPECT_TRUE(IsTwin(frame, expected)) << "unchecked, and Rotation beside an origin";
  }
}

TEST(Matrix43Columns, SetUVWTAndSetTUVWSetTheFourthOfTheOriginToOne) {
  for (const Type type : AllTypes) {
    SCOPED_TRACE(type);
    Twin twin;
    twin.type = type;
    twin.m[15] = 3.0;
    const Vector3D u = WithFourth(1, 2, 3, 4);
    const Vector3D v = WithFourth(5, 6, 7, 8);
    const Vector3D w = WithFourth(9, 10, 11, 12);
    const Vector3D t = WithFourth(13, 14, 15, 16);
    const Twin expected = {{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 1},
                           Matrix43::RotationTranslation};
    Matrix43 frame = FrameOf(twin);
    frame.SetUVWT(u, v, w, t);
    EXPECT_TRUE(IsTwin(frame, expected));
    frame = FrameOf(twin);
    frame.SetTUVW(t, u, v, w);
    EXPECT_TRUE(IsTwin(frame, expected));
  }
}

TEST(Matrix43Columns, SetTransSetsTheFourthOfTheOriginToOneAndTakesATranslationIn) {
  struct Case {
    Type before;
    Type after;
  };
  const Case cases[] = {
      {Matrix43::General, Matrix43::General},
      {Matrix43::Identity, Matrix43::Translation},
      {Matrix43::Rotation, Matrix43::RotationTranslation},
      {Matrix43::Translation, Matrix43::Translation},
      {Matrix43::RotationTranslation, Matrix43::RotationTranslation},
      {Matrix43::Projective, Matrix43::Projective},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.before);
    Twin twin;
    twin.type = c.before;
    for (int i = 0; i < 16; ++i) {
      twin.m[i] = -i;
    }
    Matrix43 frame = FrameOf(twin);
    frame.SetTrans(WithFourth(1, 2, 3, 4));
    twin.m[12] = 1;
    twin.m[13] = 2;
    twin.m[14] = 3;
    twin.m[15] = 1;
    twin.type = c.after;
    EXPECT_TRUE(IsTwin(frame, twin));
  }
}

TEST(Matrix43GetStringDebug, WritesTheFourColumns) {
  std::wstring text = L"something before";
  Matrix43().GetStringDebug(&text);
  EXPECT_EQ(text,
            L"(u=(1.000, 0.000, 0.000), v=(0.000, 1.000, 0.000), w=(0.000, 0.000, 1.000), "
            L"t=(0.000, 0.000, 0.000))");
  Twin twin;
  for (int i = 0; i < 16; ++i) {
    twin.m[i] = (i % 2 == 0 ? 1 : -1) * (i + 0.5);
  }
  FrameOf(twin).GetStringDebug(&text);
  EXPECT_EQ(text,
            L"(u=(0.500, -1.500, 2.500), v=(4.500, -5.500, 6.500), w=(8.500, -9.500, 10.500), "
            L"t=(12.500, -13.500, 14.500))");
}

TEST(Matrix43GetStringDebug, WritesLargeFramesWhole) {
  Twin twin;
  for (double& element : twin.m) {
    element = -1e300;
  }
  std::wstring text;
  FrameOf(twin).GetStringDebug(&text);
  const std::wstring six = std::to_wstring(-1e300);
  const std::wstring three = six.substr(0, six.size() - 3);
  const std::wstring point = L"(" + three + L", " + three + L", " + three + L")";
  EXPECT_EQ(text, L"(u=" + point + L", v=" + point + L", w=" + point + L", t=" + point + L")");
}

TEST(Matrix43GetStringDebug, IgnoresNull) { Matrix43().GetStringDebug(nullptr); }

}  // namespace
}  // namespace Orvo
