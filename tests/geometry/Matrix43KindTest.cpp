#include "geometry/FrameTwin.h"
#include "support/PrivateMember.h"

#include <Orvo/Matrix43.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace Orvo {

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

}  // namespace Testing

namespace {

using Testing::AllTypes;
using Testing::FrameOf;
using Testing::HoldsElements;
using Testing::IsTwin;
using Testing::Load;
using Testing::Twin;
using Testing::Type;
using Testing::TypeOf;

constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

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

}  // namespace
}  // namespace Orvo
