// Unwrapping moves by whole turns to the nearest place that the range allows, drops what has none,
// and puts the shorter move first.

#include "property/CalculatorPair.h"
#include "property/Compare.h"
#include "property/Draw.h"
#include "property/RandomGeometry.h"
#include "property/RandomMachine.h"
#include "property/RigidMachine.h"

#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace Orvo::Property {
namespace {

using Kin::MachinePosition;
using Kin::RotariesSolution;

const double FullTurnDeg = 360.0;

// One angle of a solution and what the solver was to do with it.
struct Unwrapping {
  double rawDeg;
  double currentDeg;
  bool hasRange;
  double minDeg;
  double maxDeg;
};

// The equivalents of an angle that lie within a range: how far the best of them is from the ends.
double DepthInRange(const Unwrapping& u) {
  const double first =
      u.minDeg + std::fmod(std::fmod(u.rawDeg - u.minDeg, FullTurnDeg) + FullTurnDeg, FullTurnDeg);
  double best = -1e300;
  for (double deg = first - FullTurnDeg; deg <= u.maxDeg + FullTurnDeg; deg += FullTurnDeg) {
    best = std::max(best, std::min(deg - u.minDeg, u.maxDeg - deg));
  }
  return best;
}

void ExpectUnwrapped(const Unwrapping& u, double deg) {
  const double turned = std::fabs(std::remainder(deg - u.rawDeg, FullTurnDeg));
  if (!u.hasRange) {
    EXPECT_LT(turned, 1e-6);
    EXPECT_LE(std::fabs(deg - u.currentDeg), 180.0 + 1e-6);
    return;
  }
  EXPECT_GE(deg, u.minDeg - 1e-9 * (1.0 + std::fabs(u.minDeg)));
  EXPECT_LE(deg, u.maxDeg + 1e-9 * (1.0 + std::fabs(u.maxDeg)));
  // An angle up to 0.01 radian outside is set to the limit.
  const bool atLimit = std::fabs(deg - u.minDeg) < 1e-6 || std::fabs(deg - u.maxDeg) < 1e-6;
  EXPECT_LT(turned, atLimit ? 0.01 * 180.0 / Reference::Pi + 1e-6 : 1e-6);
}

TEST(UnwrappingLaw, SolutionsAreWholeTurnsAwayNearestAndWithinTheirRanges) {
  int kept = 0;
  int dropped = 0;
  ForCases(20000, [&kept, &dropped](Draw& draw) {
    MachinePair pair(RigidPlan(draw));
    if (pair.twin.programs.empty()) {
      return;
    }
    const Reference::Program& program = pair.twin.programs.front();
    Kin::ProgramSystem ours(*pair.machine.GetProgramSystem(Kin::ProgramSystemIndex(0)));
    ours.SetRotariesCompute(Kin::RotariesComputeShortestWay);
    Kin::ProgramSystemCompute solver(pair.machine, ours);
    ours.SetRotariesCompute(Kin::RotariesComputeDefault);
    Kin::ProgramSystemCompute rawSolver(pair.machine, ours);
    RotaryRequest request;
    request.head = program.head;
    request.table = program.table;
    request.r0 = program.rotary[0];
    request.r1 = program.rotary[1];
    request.pos.Alloc(pair.twin.registerNb);
    for (double& value : request.pos.values) {
      value = draw.Chance(0.1) ? draw.Uniform(-20000.0, 20000.0) : AngleDeg(draw);
    }
    const MachinePosition pos = ToOrvo(request.pos);
    for (int call = 0; call < 6; ++call) {
      const Vector3D ijk = ToOrvo(AnyTarget(draw, pair.twin, request));
      RotariesSolution raw;
      RotariesSolution solution;
      const bool result = rawSolver.ComputeToolIjkTcsToMcsAbc(pos, ijk, &raw);
      ASSERT_EQ(solver.ComputeToolIjkTcsToMcsAbc(pos, ijk, &solution), result);
      if (!result || raw.Count == 0 || raw.FreeRegister >= 0) {
        continue;
      }
      const int registers[2] = {request.r0, request.r1};
      const double raws[2][2] = {{raw.Alpha1.GetDegre(), raw.Beta1.GetDegre()},
                                 {raw.Alpha2.GetDegre(), raw.Beta2.GetDegre()}};
      std::vector<std::vector<Unwrapping>> expected;
      bool borderline = false;
      for (unsigned int s = 0; s < raw.Count; ++s) {
        std::vector<Unwrapping> axes;
        bool inside = true;
        for (int axis = 0; axis < 2; ++axis) {
          const Reference::Element* e = pair.twin.ByRegister(registers[axis]);
          if (e == nullptr) {
            continue;
          }
          const Unwrapping u = {raws[s][axis], request.pos[registers[axis]], e->checkRange,
                                e->link.rangeMin[0], e->link.rangeMax[0]};
          axes.push_back(u);
          if (u.hasRange) {
            const double depth = DepthInRange(u);
            borderline = borderline || std::fabs(depth) < 0.6;
            inside = inside && depth >= 0.0;
          }
        }
        if (inside) {
          expected.push_back(axes);
        }
      }
      if (borderline) {
        continue;
      }
      ASSERT_EQ(solution.Count, expected.size()) << Text(request) << pair.Text();
      dropped += static_cast<int>(raw.Count - solution.Count);
      const double solutions[2][2] = {{solution.Alpha1.GetDegre(), solution.Beta1.GetDegre()},
                                      {solution.Alpha2.GetDegre(), solution.Beta2.GetDegre()}};
      double costs[2] = {0.0, 0.0};
      for (unsigned int s = 0; s < solution.Count; ++s) {
        ++kept;
        for (int axis = 0; axis < 2; ++axis) {
          if (registers[axis] >= 0) {
            costs[s] += std::fabs(solutions[s][axis] - request.pos[registers[axis]]);
          }
        }
      }
      if (solution.Count == 2) {
        EXPECT_LE(costs[0], costs[1]) << Text(request) << pair.Text();
      }
      // Whichever came first: each kept solution is one of the expected ones.
      for (unsigned int s = 0; s < solution.Count && registers[0] >= 0 && registers[1] >= 0; ++s) {
        const auto distance = [&](const std::vector<Unwrapping>& axes) {
          return std::fabs(std::remainder(solutions[s][0] - axes[0].rawDeg, FullTurnDeg)) +
                 std::fabs(std::remainder(solutions[s][1] - axes[1].rawDeg, FullTurnDeg));
        };
        const auto nearest = std::min_element(
            expected.begin(), expected.end(),
            [&](const auto& a, const auto& b) { return distance(a) < distance(b); });
        ExpectUnwrapped((*nearest)[0], solutions[s][0]);
        ExpectUnwrapped((*nearest)[1], solutions[s][1]);
      }
      if (::testing::Test::HasFailure()) {
        ADD_FAILURE() << Text(request) << pair.Text();
        return;
      }
    }
  });
  EXPECT_GT(kept, 0);
  EXPECT_GT(dropped, 0);
}

}  // namespace
}  // namespace Orvo::Property
