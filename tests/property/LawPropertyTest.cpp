// What holds whatever the formulas: solutions reproduce what was asked, unwrapping moves by whole
// turns to the nearest place that the range allows, and the two ways to a frame agree.

#include "property/CalculatorPair.h"
#include "property/Compare.h"
#include "property/Draw.h"
#include "property/RandomGeometry.h"
#include "property/RandomMachine.h"

#include <Orvo/Angle.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace Orvo::Property {
namespace {

using Kin::MachinePosition;
using Kin::Register;
using Kin::RotariesSolution;
using Reference::Frame;

const double FullTurnDeg = 360.0;

bool IsOrthonormal(const Frame& f) {
  const bool plain = f.m[3] == 0.0 && f.m[7] == 0.0 && f.m[11] == 0.0 && f.m[15] == 1.0;
  for (int i = 0; i < 3; ++i) {
    for (int k = 0; k < 3; ++k) {
      const double expected = i == k ? 1.0 : 0.0;
      if (!(std::fabs(Reference::Dot(f.Column(i), f.Column(k)) - expected) < 1e-12)) {
        return false;
      }
    }
  }
  const double handed = Reference::Dot(Reference::Cross(f.Column(0), f.Column(1)), f.Column(2));
  return plain && handed > 0.0;
}

// Tells whether a direction is so near the X axis, but not on it, that the frame made of it is not
// quite orthonormal.
bool IsNearX(const Reference::Vector& dir) {
  const double sine = std::hypot(dir.y, dir.z);
  return sine < 0.0011 && sine > 1e-9;
}

// A machine of rigid frames and clean axes only, made by calls: a file would round them.
MachinePlan RigidPlan(Draw& draw) {
  MachinePlan plan = SoundPlan(draw);
  plan.fromFile = false;
  for (ElementPlan& e : plan.elements) {
    for (LinkStep& step : e.links) {
      if (step.kind == Reference::Fixed && !IsOrthonormal(step.frame)) {
        step.frame = Frame();
      }
      if (IsNearX(step.dir)) {
        step.dir = {1.0, 0.0, 0.0, 0.0};
      }
    }
  }
  return plan;
}

double Separation(const Angle& a, const Angle& b) {
  return std::fabs(std::remainder(a.GetDegre() - b.GetDegre(), FullTurnDeg));
}

void SetDegrees(MachinePosition* pos, int reg, const Angle& angle) {
  if (reg >= 0) {
    (*pos)[Register(reg)] = angle.GetDegre();
  }
}

TEST(FrameLaw, AnInverseUndoesARigidFrame) {
  ForCases(100000, [](Draw& draw) {
    const Frame rigid = RigidFrame(draw);
    const Frame other = RigidFrame(draw);
    if (!IsOrthonormal(rigid) || !IsOrthonormal(other)) {
      return;
    }
    Matrix43 f = ToOrvo(rigid);
    Matrix43 g = f.Inverse();
    const double size = 1.0 + Reference::NormSup(rigid.Column(3));
    EXPECT_TRUE((f * g).IsSame(Matrix43(), 1e-12 * size)) << Text(rigid);
    EXPECT_TRUE((g * f).IsSame(Matrix43(), 1e-12 * size)) << Text(rigid);
    Matrix43 h = ToOrvo(other);
    const Vector3D p = ToOrvo(Point(draw));
    const Vector3D once = (f * h).ApplyToPoint(p);
    const Vector3D twice = f.ApplyToPoint(h.ApplyToPoint(p));
    EXPECT_TRUE(once.IsSame(twice, 1e-9)) << Text(rigid) << Text(other);
  });
}

TEST(ForwardLaw, TheWholeMachineStandsWhereItsElementsStand) {
  ForCases(5000, [](Draw& draw) {
    const MachinePair pair(RigidPlan(draw));
    if (!pair.twin.finished) {
      return;
    }
    Kin::MachineCompute calculator(pair.machine);
    MachinePosition pos = ToOrvo(AnyPosition(draw, pair.twin.registerNb));
    if (static_cast<int>(pos.Size()) < pair.twin.registerNb) {
      pos.Alloc(pair.twin.registerNb);
    }
    for (int i = 0; i < static_cast<int>(pos.Size()); ++i) {
      if (!(std::fabs(pos[Register(i)]) < 1e4)) {
        pos[Register(i)] = 12.5;
      }
    }
    std::vector<Matrix43> frames;
    ASSERT_TRUE(calculator.ComputePositionMachine(pos, &frames));
    for (const Kin::Entity* e : pair.entities) {
      Matrix43 frame;
      if (calculator.ComputePositionEntity(*e, pos, &frame)) {
        const std::size_t slot = static_cast<std::size_t>(e->GetEntityId().GetVal());
        EXPECT_TRUE(frames[slot].IsSame(frame, 1e-8)) << slot;
      }
    }
  });
}

bool StandsOn(const Reference::Element* e, const Reference::Element* ancestor) {
  while (e != nullptr && e != ancestor) {
    e = e->parent;
  }
  return e != nullptr;
}

// Tells whether an axis, where there is one, turns the head against the table. The last common
// ancestor belongs to the chain too, but carries both.
bool TurnsOneSide(const MachinePair& pair, const RotaryRequest& request, int reg) {
  const Reference::Element* head = pair.twin.HeadAt(request.head);
  const Reference::Element* table = pair.twin.TableAt(request.table);
  if (head == nullptr || table == nullptr) {
    return false;
  }
  const Reference::Element* axis = pair.twin.ByRegister(reg);
  return reg < 0 || StandsOn(head, axis) != StandsOn(table, axis);
}

// The direction of an axis in the table's frame, null where there is none.
Reference::Vector AxisInTable(const MachinePair& pair, const RotaryRequest& request, int reg) {
  Reference::Calculator calculator(pair.twin);
  const Reference::Element* e = pair.twin.ByRegister(reg);
  Reference::Vector axis;
  Frame worldFromTable;
  Reference::Position pos = request.pos;
  for (const int other : {request.r0, request.r1}) {
    if (pos.Holds(other)) {
      pos[other] = 0.0;
    }
  }
  if (e == nullptr || !calculator.WorldDirection(pos, *e, &axis)) {
    return {};
  }
  calculator.PositionElement(*pair.twin.TableAt(request.table), pos, &worldFromTable);
  return worldFromTable.HInverse().ApplyToVector(axis);
}

// Sets both pairs into the machine and looks where the tool points.
void ExpectDirection(Kin::MachineCompute* calculator, const RotaryRequest& request,
                     const RotariesSolution& solution, const Vector3D& target, double tol) {
  for (unsigned int i = 0; i < solution.Count; ++i) {
    MachinePosition pos = ToOrvo(request.pos);
    SetDegrees(&pos, request.r0, i == 0 ? solution.Alpha1 : solution.Alpha2);
    SetDegrees(&pos, request.r1, i == 0 ? solution.Beta1 : solution.Beta2);
    Matrix43 tableFromHead;
    ASSERT_TRUE(calculator->ComputeMcsToToolTcs(pos, request.head, request.table, NullVector,
                                                &tableFromHead));
    const Vector3D tool = tableFromHead.GetW();
    EXPECT_TRUE(tool.IsSame(target, tol))
        << "solution " << i << " of " << solution.Count << ", off by " << tool.Distance(target)
        << ", angles " << solution.Alpha1.GetDegre() << " " << solution.Beta1.GetDegre() << ", "
        << solution.Alpha2.GetDegre() << " " << solution.Beta2.GetDegre() << "\n"
        << Text(request);
  }
}

// Next to the limit of reach the two solutions melt into one and lose digits, so exactness is asked
// where the inner axis has them well apart, or where one axis does all.
TEST(RotaryLaw, EverySolutionReproducesTheDirection) {
  int solved = 0;
  int doubled = 0;
  ForCases(20000, [&solved, &doubled](Draw& draw) {
    const MachinePair pair(RigidPlan(draw));
    Kin::MachineCompute calculator(pair.machine);
    for (int call = 0; call < 5; ++call) {
      RotaryRequest request = AnyRotaryRequest(draw, pair.twin);
      bool ordinary = request.pos.Size() == pair.twin.registerNb;
      for (const double value : request.pos.values) {
        ordinary = ordinary && std::fabs(value) < 1e4;
      }
      if (!ordinary || !pair.twin.finished || !TurnsOneSide(pair, request, request.r0) ||
          !TurnsOneSide(pair, request, request.r1)) {
        continue;
      }
      // What some values of the axes give, so that it can be reached exactly.
      MachinePosition pos = ToOrvo(request.pos);
      for (const int reg : {request.r0, request.r1}) {
        if (request.pos.Holds(reg)) {
          pos[Register(reg)] = AngleDeg(draw);
        }
      }
      Matrix43 tableFromHead;
      if (!calculator.ComputeMcsToToolTcs(pos, request.head, request.table, NullVector,
                                          &tableFromHead)) {
        continue;
      }
      const Vector3D target = tableFromHead.GetW();
      request.ijk = {target[0], target[1], target[2], 0.0};
      RotariesSolution solution;
      if (!calculator.ComputeToolIjkTcsToMcsAbc(ToOrvo(request.pos), request.head, request.table,
                                                target, request.r0, request.r1, &solution)) {
        continue;
      }
      if (request.r0 >= 0 && request.r1 >= 0) {
        if (solution.Count < 2 || Separation(solution.Alpha1, solution.Alpha2) < 1.0 ||
            Separation(solution.Beta1, solution.Beta2) < 1.0) {
          continue;
        }
        // Axes within 0.01 of parallel are solved as if they were, and the circle about an axis
        // near X is drawn in a frame that is not quite orthonormal.
        const Reference::Vector alphaAxis = AxisInTable(pair, request, request.r0);
        const Reference::Vector betaAxis = AxisInTable(pair, request, request.r1);
        if (Reference::Norm(Reference::Cross(alphaAxis, betaAxis)) < 0.0101 || IsNearX(alphaAxis) ||
            IsNearX(betaAxis)) {
          continue;
        }
        ++doubled;
      } else if (request.r0 < 0 && request.r1 < 0) {
        continue;
      }
      EXPECT_GE(solution.Count, 1U) << Text(request);
      // A single axis takes directions that lean by less than 0.01 for perpendicular to it, and is
      // then off by up to twice the lean, most near half a turn.
      const bool single = request.r0 < 0 || request.r1 < 0;
      const int reg = std::max(request.r0, request.r1);
      const double lean =
          single ? std::fabs(Reference::Dot(AxisInTable(pair, request, reg), request.ijk)) : 0.5;
      double tol = 1e-8;
      if (lean < 0.011) {
        tol += 3.0 * lean;
      } else if (lean > 1.0 - 1e-9) {
        // A tool within 0.00001 of the axis is left where it is.
        tol += 3e-5;
      }
      ExpectDirection(&calculator, request, solution, target, tol);
      ++solved;
    }
    if (::testing::Test::HasFailure()) {
      ADD_FAILURE() << pair.Text();
    }
  });
  EXPECT_GT(solved, 0);
  EXPECT_GT(doubled, 0);
}

// A direction that values of the axes give has a solution, unless two axes are nearly parallel.
TEST(RotaryLaw, AReachedDirectionIsReachable) {
  ForCases(10000, [](Draw& draw) {
    const MachinePair pair(RigidPlan(draw));
    if (!pair.twin.finished || pair.twin.programs.empty()) {
      return;
    }
    const Reference::Program& program = pair.twin.programs.front();
    Kin::MachineCompute calculator(pair.machine);
    RotaryRequest request;
    request.pos.Alloc(pair.twin.registerNb);
    request.head = program.head;
    request.table = program.table;
    request.r0 = program.rotary[0];
    request.r1 = program.rotary[1];
    if (!TurnsOneSide(pair, request, request.r0) || !TurnsOneSide(pair, request, request.r1)) {
      return;
    }
    if (request.r0 >= 0 && request.r1 >= 0 &&
        Reference::Norm(Reference::Cross(AxisInTable(pair, request, request.r0),
                                         AxisInTable(pair, request, request.r1))) < 0.0101) {
      return;
    }
    MachinePosition pos = ToOrvo(request.pos);
    for (const int reg : program.rotary) {
      if (reg >= 0 && reg < pair.twin.registerNb) {
        pos[Register(reg)] = AngleDeg(draw);
      }
    }
    Matrix43 tableFromHead;
    RotariesSolution solution;
    if (!calculator.ComputeMcsToToolTcs(pos, program.head, program.table, NullVector,
                                        &tableFromHead)) {
      return;
    }
    if (calculator.ComputeToolIjkTcsToMcsAbc(pos, program.head, program.table, tableFromHead.GetW(),
                                             program.rotary[0], program.rotary[1], &solution)) {
      EXPECT_GE(solution.Count, 1U) << Text(request) << pair.Text();
    }
  });
}

// The way of the tool tip in the table's frame when one axis moves by one.
Vector3D Step(Kin::MachineCompute* calculator, const LinearRequest& request, MachinePosition pos,
              int reg) {
  Matrix43 frame;
  calculator->ComputeMcsToToolTcs(pos, request.head, request.table, NullVector, &frame);
  const Vector3D before = frame.GetTrans();
  pos[Register(reg)] += 1.0;
  calculator->ComputeMcsToToolTcs(pos, request.head, request.table, NullVector, &frame);
  Vector3D after = frame.GetTrans();
  return after - before;
}

TEST(LinearLaw, TheSolutionBringsTheToolTipToThePoint) {
  int solved = 0;
  ForCases(20000, [&solved](Draw& draw) {
    const MachinePair pair(RigidPlan(draw));
    Kin::MachineCompute calculator(pair.machine);
    for (int call = 0; call < 5; ++call) {
      const LinearRequest request = AnyLinearRequest(draw, pair.twin);
      for (const double value : request.pos.values) {
        if (!(std::fabs(value) < 1e4)) {
          return;
        }
      }
      MachinePosition pos = ToOrvo(request.pos);
      Vector3D xyz;
      if (!calculator.ComputeToolTcsToMcsXyz(
              pos, request.head, request.table, ToOrvo(request.offset), request.registers[0],
              request.registers[1], request.registers[2], ToOrvo(request.point), &xyz)) {
        continue;
      }
      Vector3D steps[3];
      for (int i = 0; i < 3; ++i) {
        steps[i] = Step(&calculator, request, pos, request.registers[static_cast<std::size_t>(i)]);
      }
      bool orthonormal = true;
      for (int i = 0; i < 3; ++i) {
        for (int k = 0; k <= i; ++k) {
          orthonormal =
              orthonormal && std::fabs(steps[i] * steps[k] - (i == k ? 1.0 : 0.0)) < 1e-11;
        }
      }
      if (!orthonormal) {
        continue;
      }
      for (int i = 0; i < 3; ++i) {
        pos[Register(request.registers[static_cast<std::size_t>(i)])] = xyz[i];
      }
      Matrix43 frame;
      ASSERT_TRUE(calculator.ComputeMcsToToolTcs(pos, request.head, request.table,
                                                 ToOrvo(request.offset), &frame));
      EXPECT_TRUE(frame.GetTrans().IsSame(ToOrvo(request.point), 1e-7))
          << "off by " << frame.GetTrans().Distance(ToOrvo(request.point)) << "\n"
          << Text(request) << pair.Text();
      ++solved;
    }
  });
  EXPECT_GT(solved, 0);
}

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
