// What holds whatever the formulas: solutions reproduce what was asked, unwrapping moves by whole
// turns to the nearest place that the range allows, and the two ways to a frame agree.

#include "property/CalculatorPair.h"
#include "property/Compare.h"
#include "property/Draw.h"
#include "property/RandomGeometry.h"
#include "property/RandomMachine.h"
#include "property/RigidMachine.h"

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
      pos.Alloc(Register(pair.twin.registerNb));
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

}  // namespace
}  // namespace Orvo::Property
