#include "geometry/Circle3D.h"
#include "geometry/FrameKernel.h"
#include "support/SameBits.h"

#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace Orvo {
namespace {

using Testing::SameBits;

static_assert(std::has_virtual_destructor_v<Circle3D>);

TEST(Circle3D, KeepsWhatItIsMadeOf) {
  const Circle3D circle(Vector3D(1, 2, 3), Vector3D(0, 0, 5), -7.5);
  EXPECT_TRUE(SameBits(circle.Center, Vector3D(1, 2, 3)));
  EXPECT_TRUE(SameBits(circle.Axis, Vector3D(0, 0, 5)));
  EXPECT_TRUE(SameBits(circle.Radius, -7.5));
}

TEST(Circle3D, FrameStandsAtTheCenterWithTheUnitAxisAsW) {
  const Vector3D axes[] = {{0, 0, 5}, {1, 0, 0}, {-3, 2, 1}, {1, 0.0005, 0}};
  for (const Vector3D& axis : axes) {
    const Circle3D circle(Vector3D(1, 2, 3), axis, 10.0);
    Matrix43 expected;
    ASSERT_TRUE(expected.MakeAxisW(axis));
    expected.SetTrans(Vector3D(1, 2, 3));
    const Matrix43 frame = circle.GetFrame();
    EXPECT_TRUE(SameBits(frame, expected));
    EXPECT_EQ(FrameAccess::Type(frame), Matrix43::RotationTranslation);
  }
}

TEST(Circle3D, FrameOfAnAxisTooShortIsNotTurned) {
  Matrix43 frame = Circle3D(Vector3D(1, 2, 3), Vector3D(0.0009, 0, 0), 10.0).GetFrame();
  EXPECT_EQ(FrameAccess::Type(frame), Matrix43::Translation);
  EXPECT_TRUE(SameBits(frame.GetU(), AxisX));
  EXPECT_TRUE(SameBits(frame.GetTrans(), Vector3D(1, 2, 3)));
}

}  // namespace
}  // namespace Orvo
