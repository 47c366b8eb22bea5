#include "path/WorkpieceShift.h"
#include "support/TestRandom.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace Orvo::Path::Testing {
namespace {

using Orvo::Testing::TestRandom;

struct HalfSpace {
  Vec3 normal;
  double room = 0.0;
};

Vec3 AnyVector(TestRandom& random) {
  return {random.Real(-1, 1), random.Real(-1, 1), random.Real(-1, 1)};
}

/// The point of all half spaces nearest to the origin, by projecting onto one after the other
/// (Dykstra, "An Algorithm for Restricted Least Squares Regression", 1983).
Vec3 ProjectOrigin(const std::vector<HalfSpace>& spaces) {
  Vec3 x;
  std::vector<Vec3> corrections(spaces.size());
  for (int round = 0; round < 20000; ++round) {
    for (std::size_t i = 0; i < spaces.size(); ++i) {
      const Vec3 from = x + corrections[i];
      const double excess = Dot(spaces[i].normal, from) - spaces[i].room;
      const double square = Dot(spaces[i].normal, spaces[i].normal);
      x = from - spaces[i].normal * (std::max(0.0, excess) / square);
      corrections[i] = from - x;
    }
  }
  return x;
}

bool AreAllMet(const std::vector<HalfSpace>& spaces, const Vec3& x, double tolerance) {
  return std::all_of(spaces.begin(), spaces.end(), [&x, tolerance](const HalfSpace& space) {
    return Dot(space.normal, x) <= space.room + tolerance;
  });
}

bool Find(const std::vector<HalfSpace>& spaces, Vec3* move) {
  WorkpieceShift shift;
  for (const HalfSpace& space : spaces) {
    shift.Add(space.normal, space.room);
  }
  return shift.Find(move);
}

TEST(WorkpieceShift, IsTheShortestMove) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int movedNb = 0;
  for (int i = 0; i < 100; ++i) {
    SCOPED_TRACE(i);
    // All of them hold at some point, with some room.
    const Vec3 inside = AnyVector(random) * 50.0;
    std::vector<HalfSpace> spaces(static_cast<std::size_t>(random.Integer(1, 12)));
    for (HalfSpace& space : spaces) {
      space.normal = AnyVector(random) * random.Real(0.1, 5.0);
      space.room = Dot(space.normal, inside) + random.Real(5.0, 50.0);
    }
    Vec3 move;
    ASSERT_TRUE(Find(spaces, &move));
    EXPECT_TRUE(AreAllMet(spaces, move, 1e-7));
    // Narrow wedges take the projections longer than this test.
    const Vec3 expected = ProjectOrigin(spaces);
    if (AreAllMet(spaces, expected, 1e-7)) {
      EXPECT_NEAR(Norm(move), Norm(expected), 1e-3);
      movedNb += Norm(move) > 0.0 ? 1 : 0;
    }
  }
  EXPECT_GE(movedNb, 50);
}

TEST(WorkpieceShift, SaysWhereThereIsNone) {
  Vec3 move;
  EXPECT_TRUE(Find({}, &move));
  EXPECT_EQ(Norm(move), 0.0);
  EXPECT_FALSE(Find({{{1, 0, 0}, -1.0}, {{-1, 0, 0}, -1.0}}, &move));
  EXPECT_TRUE(Find({{{1, 0, 0}, -1.0}, {{-1, 0, 0}, 1.0}, {{0, 2, 0}, -4.0}}, &move));
  EXPECT_NEAR(move.x, -1.0, 1e-9);
  EXPECT_NEAR(move.y, -2.0, 1e-9);
  EXPECT_EQ(move.z, 0.0);
  // Three planes around a wedge that is open far away only.
  EXPECT_FALSE(Find({{{1, 1, 0}, -1.0}, {{-1, 1, 0}, -1.0}, {{0, -1, 0}, 0.5}}, &move));
  // A condition without a direction says nothing.
  EXPECT_TRUE(Find({{{0, 0, 0}, -1.0}}, &move));
}

// Of more conditions than are kept, those with much room are dropped: a short move stays exact, and
// one that they might forbid is not given.
TEST(WorkpieceShift, KeepsTheConditionsWithTheLeastRoom) {
  for (const double wall : {-1.0, -200.0}) {
    WorkpieceShift shift;
    for (int i = 0; i < (1 << 21) + 5; ++i) {
      const double angle = 0.001 * i;
      shift.Add({std::cos(angle), std::sin(angle), 0.1}, 100.0);
    }
    shift.Add({0, 0, 1}, wall);
    Vec3 move;
    EXPECT_EQ(shift.Find(&move), wall == -1.0);
    if (wall == -1.0) {
      EXPECT_NEAR(move.z, -1.0, 1e-9);
      EXPECT_NEAR(Norm(move), 1.0, 1e-9);
    }
  }
}

}  // namespace
}  // namespace Orvo::Path::Testing
