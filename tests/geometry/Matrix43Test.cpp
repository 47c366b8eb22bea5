#include "geometry/FrameKernel.h"
#include "support/NearVector.h"
#include "support/PrivateMember.h"
#include "support/SameBits.h"
#include "support/Signature.h"
#include "support/TestRandom.h"

#include <Orvo/Angle.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>

namespace Orvo {

using Type = Matrix43::Type;

namespace Testing {

struct UpdateTypeOf {
  using Type = void (Matrix43::*)(const Matrix43::Type&);
  friend Type MemberOf(UpdateTypeOf);
};
template struct PrivateMember<UpdateTypeOf, &Matrix43::UpdateType>;

struct IdentifyTypeOf {
  using Type = void (Matrix43::*)();
  friend Type MemberOf(IdentifyTypeOf);
};
template struct PrivateMember<IdentifyTypeOf, &Matrix43::IdentifyType>;

struct FrameTypeOf {
  using Type = Matrix43::Type Matrix43::*;
  friend Type MemberOf(FrameTypeOf);
};
template struct PrivateMember<FrameTypeOf, &Matrix43::type_>;

}  // namespace Testing

namespace {

using Testing::HasSignature;
using Testing::NearFrame;
using Testing::NearVector;
using Testing::SameBits;
using Testing::TestRandom;

constexpr double Pi = 3.141592653589793;
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

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

constexpr Type AllTypes[6] = {Matrix43::General,
                              Matrix43::Identity,
                              Matrix43::Rotation,
                              Matrix43::Translation,
                              Matrix43::RotationTranslation,
                              Matrix43::Projective};

Type TypeOf(const Matrix43& frame) { return FrameAccess::Type(frame); }

/// The 16 doubles of a frame and its kind: the scalar twin of a frame.
struct Twin {
  double m[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  Type type = Matrix43::Identity;
};

Twin TwinOf(const Matrix43& frame) {
  Twin twin;
  const double* elements = FrameAccess::Elements(frame);
  for (int i = 0; i < 16; ++i) {
    twin.m[i] = elements[i];
  }
  twin.type = TypeOf(frame);
  return twin;
}

/// A frame of any kind with any doubles: raw access goes past the kind.
Matrix43 FrameOf(const Twin& twin) {
  Matrix43 frame;
  switch (twin.type) {
    case Matrix43::General:
      frame = Matrix43(Matrix43().Get_m128d());
      break;
    case Matrix43::Identity:
      break;
    case Matrix43::Rotation:
      frame.SetUVW(AxisX, AxisY, AxisZ);
      break;
    case Matrix43::Translation:
      frame.SetTrans(NullVector);
      break;
    case Matrix43::RotationTranslation:
      frame.SetUVWT(AxisX, AxisY, AxisZ, NullVector);
      break;
    case Matrix43::Projective: {
      double numbers[16] = {};
      frame = numbers;
      break;
    }
  }
  double* raw = frame;
  for (int i = 0; i < 16; ++i) {
    raw[i] = twin.m[i];
  }
  return frame;
}

testing::AssertionResult IsTwin(const Matrix43& frame, const Twin& twin) {
  if (TypeOf(frame) != twin.type) {
    return testing::AssertionFailure()
           << "the kind is " << TypeOf(frame) << " and not " << twin.type;
  }
  return SameBits(FrameAccess::Elements(frame), twin.m, 16, "the frame's");
}

testing::AssertionResult HoldsElements(const Matrix43& frame, const double (&m)[16]) {
  return SameBits(FrameAccess::Elements(frame), m, 16, "the frame's");
}

Matrix43 Load(const double (&m)[16]) {
  Matrix43 frame;
  frame = static_cast<const double*>(m);
  return frame;
}

double DrawNumber(TestRandom& random) {
  switch (random.Integer(0, 15)) {
    case 0:
      return 0.0;
    case 1:
      return -0.0;
    case 2:
      return 1.0;
    case 3:
      return random.Real(-1.0, 1.0) * 1e200;
    case 4:
      return random.Chance(0.1) ? Infinity : -3.0;
    case 5:
      return random.Chance(0.1) ? NotANumber : 2.0;
    default:
      return random.Real(-10.0, 10.0);
  }
}

/// Any doubles under any kind, consistent or not.
Twin DrawTwin(TestRandom& random, Type type) {
  Twin twin;
  for (double& element : twin.m) {
    element = DrawNumber(random);
  }
  twin.type = type;
  return twin;
}

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

double Sum3(double first, double second, double third) { return first + (second + third); }

/// Row `row` of U * x + (V * y + W * z).
double Combined(const double* m, int row, double x, double y, double z) {
  return Sum3(m[row] * x, m[4 + row] * y, m[8 + row] * z);
}

// --- construction and raw access -----------------------------------------------------------------

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

// --- columns -------------------------------------------------------------------------------------

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

Vector3D WithFourth(double x, double y, double z, double w) {
  Vector3D result(x, y, z);
  result[3] = w;
  return result;
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

// --- kinds ---------------------------------------------------------------------------------------

// The table of what a frame is after an operation of some kind, written out.
TEST(Matrix43Kind, UpdateCombinesTheKindsByTheTable) {
  const int after[6][6] = {
      // operation: General, Identity, Rotation, Translation, RotationTranslation, Projective
      {0, 0, 0, 0, 0, 0},  // General
      {0, 1, 2, 3, 4, 5},  // Identity
      {0, 2, 2, 4, 4, 5},  // Rotation
      {0, 3, 4, 3, 4, 5},  // Translation
      {0, 4, 4, 4, 4, 5},  // RotationTranslation
      {0, 5, 5, 5, 5, 5},  // Projective
  };
  for (const Type current : AllTypes) {
    for (const Type operation : AllTypes) {
      SCOPED_TRACE(testing::Message() << operation << " onto " << current);
      Twin twin;
      twin.type = current;
      Matrix43 frame = FrameOf(twin);
      (frame.*MemberOf(Testing::UpdateTypeOf()))(operation);
      twin.type = static_cast<Type>(after[current][operation]);
      EXPECT_TRUE(IsTwin(frame, twin));
    }
  }
}

TEST(Matrix43Kind, LoadedNumbersAreClassified) {
  const double tiny = 4.9e-324;
  const double c = std::cos(0.3);
  const double s = std::sin(0.3);
  struct Case {
    const char* name;
    double m[16];
    Type type;
  };
  const Case cases[] = {
      {"the identity", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, Matrix43::Identity},
      {"the identity with negative zeros",
       {1, -0.0, -0.0, -0.0, -0.0, 1, -0.0, -0.0, -0.0, -0.0, 1, -0.0, -0.0, -0.0, -0.0, 1},
       Matrix43::Identity},
      {"the least origin in x",
       {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, tiny, 0, 0, 1},
       Matrix43::Translation},
      {"the least origin in y",
       {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, -tiny, 0, 1},
       Matrix43::Translation},
      {"the least origin in z",
       {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, tiny, 1},
       Matrix43::Translation},
      {"an origin that is not a number",
       {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, NotANumber, 0, 1},
       Matrix43::Translation},
      {"a rotation", {c, s, 0, 0, -s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, Matrix43::Rotation},
      {"a rotation with an origin of negative zeros",
       {c, s, 0, 0, -s, c, 0, 0, 0, 0, 1, 0, -0.0, -0.0, -0.0, 1},
       Matrix43::Rotation},
      {"a rotation and an origin",
       {c, s, 0, 0, -s, c, 0, 0, 0, 0, 1, 0, 0, 0, -3, 1},
       Matrix43::RotationTranslation},
      {"nearly the identity",
       {1, 1e-9, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1},
       Matrix43::Rotation},
      {"left-handed", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1}, Matrix43::General},
      {"scaled", {2, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, Matrix43::General},
      {"not a number",
       {NotANumber, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1},
       Matrix43::General},
      {"all zero but the corner",
       {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1},
       Matrix43::General},
      {"the least fourth component of U",
       {1, 0, 0, tiny, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1},
       Matrix43::Projective},
      {"the least fourth component of V",
       {1, 0, 0, 0, 0, 1, 0, -tiny, 0, 0, 1, 0, 0, 0, 0, 1},
       Matrix43::Projective},
      {"the least fourth component of W",
       {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, tiny, 0, 0, 0, 1},
       Matrix43::Projective},
      {"a corner of 2", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 2}, Matrix43::Projective},
      {"a corner one bit above 1",
       {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, std::nextafter(1.0, 2.0)},
       Matrix43::Projective},
      {"a corner that is not a number",
       {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, NotANumber},
       Matrix43::Projective},
      {"a general block over a fourth row",
       {2, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 1, 0, 0, 0, 1},
       Matrix43::Projective},
  };
  for (const Case& c1 : cases) {
    SCOPED_TRACE(c1.name);
    const Matrix43 frame = Load(c1.m);
    EXPECT_EQ(TypeOf(frame), c1.type);
    EXPECT_TRUE(HoldsElements(frame, c1.m));
    // The kind before does not matter.
    for (const Type type : AllTypes) {
      Twin twin;
      twin.type = type;
      Matrix43 other = FrameOf(twin);
      other = static_cast<const double*>(c1.m);
      EXPECT_EQ(TypeOf(other), c1.type);
    }
  }
}

TEST(Matrix43Kind, IdentifyLooksAtTheDoublesOnly) {
  for (const Type type : AllTypes) {
    SCOPED_TRACE(type);
    Twin twin;
    twin.type = type;
    Matrix43 frame = FrameOf(twin);
    (frame.*MemberOf(Testing::IdentifyTypeOf()))();
    EXPECT_TRUE(IsTwin(frame, Twin()));
  }
}

// --- product -------------------------------------------------------------------------------------

/// The product by the table of kinds, in scalar arithmetic.
Twin ProductTwin(const Twin& a, const Twin& b) {
  const bool aIsRotation = a.type == Matrix43::Rotation;
  const bool aIsTranslation = a.type == Matrix43::Translation;
  if (a.type == Matrix43::Identity) {
    return b;
  }
  if (b.type == Matrix43::Identity) {
    return a;
  }
  Twin product;
  if (a.type == Matrix43::Projective || b.type == Matrix43::Projective) {
    product.type = Matrix43::Projective;
    for (int column = 0; column < 16; column += 4) {
      for (int row = 0; row < 4; ++row) {
        product.m[column + row] =
            Combined(a.m, row, b.m[column], b.m[column + 1], b.m[column + 2]) +
            a.m[12 + row] * b.m[column + 3];
      }
    }
    return product;
  }
  const bool copiesA =
      (aIsRotation || a.type == Matrix43::RotationTranslation) && b.type == Matrix43::Translation;
  const bool copiesB =
      aIsTranslation && (b.type == Matrix43::Rotation || b.type == Matrix43::RotationTranslation);
  for (int column = 0; column < 12; column += 4) {
    for (int row = 0; row < 3; ++row) {
      const int i = column + row;
      product.m[i] = copiesA   ? a.m[i]
                     : copiesB ? b.m[i]
                               : Combined(a.m, row, b.m[column], b.m[column + 1], b.m[column + 2]);
    }
  }
  for (int row = 0; row < 3; ++row) {
    double& origin = product.m[12 + row];
    if (aIsRotation && b.type == Matrix43::Rotation) {
      origin = 0.0;
    } else if (aIsTranslation && b.type == Matrix43::Rotation) {
      origin = a.m[12 + row];
    } else if (aIsTranslation && b.type == Matrix43::RotationTranslation) {
      origin = a.m[12 + row] + b.m[12 + row];
    } else {
      origin = Combined(a.m, row, b.m[12], b.m[13], b.m[14]) + a.m[12 + row];
    }
  }
  if (aIsRotation && b.type == Matrix43::Rotation) {
    product.type = Matrix43::Rotation;
  } else if (a.type == Matrix43::General || b.type == Matrix43::General) {
    product.type = Matrix43::General;
  } else {
    product.type = Matrix43::RotationTranslation;
  }
  return product;
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

// --- images --------------------------------------------------------------------------------------

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

// --- inverses ------------------------------------------------------------------------------------

Twin HInverseTwin(const Twin& f) {
  Twin inverse;
  inverse.type = f.type;
  const bool transposes = f.type == Matrix43::General || f.type == Matrix43::Rotation ||
                          f.type == Matrix43::RotationTranslation;
  if (transposes) {
    for (int column = 0; column < 3; ++column) {
      for (int row = 0; row < 3; ++row) {
        inverse.m[4 * column + row] = f.m[4 * row + column];
      }
    }
  }
  if (f.type == Matrix43::Identity || f.type == Matrix43::Rotation ||
      f.type == Matrix43::Projective) {
    return inverse;
  }
  for (int row = 0; row < 3; ++row) {
    const double image = f.type == Matrix43::Translation
                             ? f.m[12 + row] + 0.0
                             : Combined(inverse.m, row, f.m[12], f.m[13], f.m[14]) + 0.0;
    inverse.m[12 + row] = -image;
  }
  return inverse;
}

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

// --- rotations about principal axes --------------------------------------------------------------

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

// --- rotations about any axis --------------------------------------------------------------------

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

// --- axis frames ---------------------------------------------------------------------------------

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

// --- questions -----------------------------------------------------------------------------------

TEST(Matrix43Question, IsIdentityTrustsTheKindThenLooksExactly) {
  for (const Type type : AllTypes) {
    SCOPED_TRACE(type);
    Twin twin;
    twin.type = type;
    EXPECT_TRUE(FrameOf(twin).IsIdentity());
    for (int i = 0; i < 16; ++i) {
      Twin changed = twin;
      changed.m[i] += 1e-15;
      const bool inFourthRow = i % 4 == 3;
      EXPECT_EQ(FrameOf(changed).IsIdentity(), type == Matrix43::Identity || inFourthRow) << i;
    }
    Twin negativeZeros = twin;
    for (double& element : negativeZeros.m) {
      element = element == 0.0 ? -0.0 : element;
    }
    EXPECT_TRUE(FrameOf(negativeZeros).IsIdentity());
  }
}

TEST(Matrix43Question, IsTranslationTrustsTheKindThenLooksAtTheDiagonal) {
  for (const Type type : AllTypes) {
    SCOPED_TRACE(type);
    Twin twin;
    twin.type = type;
    for (int i = 0; i < 16; ++i) {
      twin.m[i] = 7.0;
    }
    twin.m[0] = twin.m[5] = twin.m[10] = 1.0;
    EXPECT_TRUE(FrameOf(twin).IsTranslation()) << "the other elements are not looked at";
    for (const int i : {0, 5, 10}) {
      Twin changed = twin;
      changed.m[i] = std::nextafter(1.0, 2.0);
      EXPECT_EQ(FrameOf(changed).IsTranslation(), type == Matrix43::Translation) << i;
    }
  }
}

TEST(Matrix43Question, IsRotaryLooksAtTheDirectionsOnly) {
  for (const Type type : AllTypes) {
    SCOPED_TRACE(type);
    Twin twin;
    twin.type = type;
    twin.m[3] = 5.0;
    twin.m[12] = 6.0;
    twin.m[15] = 7.0;
    EXPECT_TRUE(FrameOf(twin).IsRotary());
    twin.m[0] = 2.0;
    EXPECT_FALSE(FrameOf(twin).IsRotary());
  }
}

TEST(Matrix43Question, IsRotaryRefusesWhatIsNoRightHandedBasis) {
  struct Case {
    const char* name;
    Vector3D u, v, w;
    bool rotary;
  };
  const Case cases[] = {
      {"the unit axes", {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, true},
      {"a cyclic permutation", {0, 1, 0}, {0, 0, 1}, {1, 0, 0}, true},
      {"a swap", {0, 1, 0}, {1, 0, 0}, {0, 0, 1}, false},
      {"a mirror", {1, 0, 0}, {0, 1, 0}, {0, 0, -1}, false},
      {"a point", {0, 0, 0}, {0, 0, 0}, {0, 0, 0}, false},
      {"nearly a point", {1e-5, 0, 0}, {0, 1e-5, 0}, {0, 0, 1e-5}, false},
      {"scaled in U", {2, 0, 0}, {0, 1, 0}, {0, 0, 1}, false},
      {"scaled in V", {1, 0, 0}, {0, 2, 0}, {0, 0, 1}, false},
      {"scaled in W", {1, 0, 0}, {0, 1, 0}, {0, 0, 2}, false},
      {"scaled as a whole", {2, 0, 0}, {0, 2, 0}, {0, 0, 2}, false},
      {"not a number in U", {NotANumber, 0, 0}, {0, 1, 0}, {0, 0, 1}, false},
      {"not a number in V", {1, 0, 0}, {0, NotANumber, 0}, {0, 0, 1}, false},
      {"not a number in W", {1, 0, 0}, {0, 1, 0}, {0, 0, NotANumber}, false},
      {"infinite", {Infinity, 0, 0}, {0, 1, 0}, {0, 0, 1}, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Matrix43 frame;
    frame.SetUVW(c.u, c.v, c.w);
    EXPECT_EQ(frame.IsRotary(), c.rotary);
  }
}

// Lengths within 0.0001 of 1 pass the cross products; the largest such length is searched.
TEST(Matrix43Question, IsRotaryComparesCrossProductsStrictlyWithinATenThousandth) {
  double refused = 1.0001;
  while (refused - 1.0 < 0.0001) {
    refused = std::nextafter(refused, 2.0);
  }
  const double accepted = std::nextafter(refused, 0.0);
  for (int column = 0; column < 3; ++column) {
    SCOPED_TRACE(column);
    Vector3D axes[3] = {AxisX, AxisY, AxisZ};
    Matrix43 frame;
    axes[column][column] = accepted;
    frame.SetUVW(axes[0], axes[1], axes[2]);
    EXPECT_TRUE(frame.IsRotary());
    axes[column][column] = refused;
    frame.SetUVW(axes[0], axes[1], axes[2]);
    EXPECT_FALSE(frame.IsRotary());
  }
}

// V leans towards U by nearly the tolerance and W is longer by nearly as much: the lean then shows
// in V x W alone. The same, moved on cyclically, shows in W x U alone and in U x V alone.
TEST(Matrix43Question, IsRotaryComparesAllThreeCrossProducts) {
  for (int shift = 0; shift < 3; ++shift) {
    SCOPED_TRACE(shift);
    const int first = shift;
    const int second = (shift + 1) % 3;
    const int third = (shift + 2) % 3;
    Vector3D axes[3] = {AxisX, AxisY, AxisZ};
    axes[second][first] = 0.000099999;
    Matrix43 frame;
    frame.SetUVW(axes[0], axes[1], axes[2]);
    EXPECT_TRUE(frame.IsRotary());
    axes[third][third] = 1.00009;
    frame.SetUVW(axes[0], axes[1], axes[2]);
    EXPECT_FALSE(frame.IsRotary());
  }
}

TEST(Matrix43Question, IsSameComparesEveryElementAndPassesAtTheTolerance) {
  for (const Type type : AllTypes) {
    for (const Type otherType : AllTypes) {
      Twin a;
      Twin b;
      a.type = type;
      b.type = otherType;
      EXPECT_TRUE(FrameOf(a).IsSame(FrameOf(b), 0.0));
      for (int i = 0; i < 16; ++i) {
        SCOPED_TRACE(testing::Message() << type << " and " << otherType << ", element " << i);
        const bool counts = i % 4 != 3 || type == Matrix43::Projective;
        for (const double step : {0.25, -0.25}) {
          b.m[i] = a.m[i] + step;
          EXPECT_TRUE(FrameOf(a).IsSame(FrameOf(b), 0.25));
          EXPECT_EQ(FrameOf(a).IsSame(FrameOf(b), std::nextafter(0.25, 0.0)), !counts);
        }
        b.m[i] = a.m[i];
      }
    }
  }
}

TEST(Matrix43Question, IsSameFindsNoDifferenceInNaN) {
  Twin a;
  a.type = Matrix43::General;
  Twin b = a;
  b.m[1] = NotANumber;
  EXPECT_TRUE(FrameOf(a).IsSame(FrameOf(b), 0.0));
  b.m[2] = 1.0;
  EXPECT_FALSE(FrameOf(a).IsSame(FrameOf(b), 0.5));
}

TEST(Matrix43Question, EqualityIsExactOverAllSixteenAndIgnoresTheKind) {
  for (const Type type : AllTypes) {
    for (const Type otherType : AllTypes) {
      Twin a;
      Twin b;
      a.type = type;
      b.type = otherType;
      EXPECT_EQ(FrameOf(a) == FrameOf(b), 1);
      for (int i = 0; i < 16; ++i) {
        SCOPED_TRACE(testing::Message() << type << " and " << otherType << ", element " << i);
        b.m[i] = std::nextafter(a.m[i], 2.0);
        EXPECT_EQ(FrameOf(a) == FrameOf(b), 0);
        b.m[i] = a.m[i];
      }
    }
  }
  Twin zeros;
  zeros.m[1] = -0.0;
  EXPECT_EQ(FrameOf(zeros) == Matrix43(), 1);
  zeros.m[1] = NotANumber;
  Matrix43 notANumber = FrameOf(zeros);
  EXPECT_EQ(notANumber == notANumber, 0);
}

// --- text ----------------------------------------------------------------------------------------

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
