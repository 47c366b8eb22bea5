// The solver of a program system against the plain twin: policies, unwrapping, ranges and order.

#include "property/CalculatorPair.h"
#include "property/Compare.h"
#include "property/Draw.h"
#include "property/RandomGeometry.h"
#include "property/RandomMachine.h"
#include "property/reference/ProgramSolver.h"

#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/RotariesSolution.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <string>

namespace Orvo::Property {
namespace {

using Reference::Position;
using Reference::Program;
using Reference::Vector;

// Fits the request to the program system: its head, table and rotary registers.
RotaryRequest RequestFor(Draw& draw, const Reference::Machine& machine, const Program& program) {
  RotaryRequest out;
  out.pos = AnyPosition(draw, machine.registerNb);
  out.head = program.head;
  out.table = program.table;
  out.r0 = program.rotary[0];
  out.r1 = program.rotary[1];
  out.ijk = AnyTarget(draw, machine, out);
  if (draw.Chance(0.2)) {
    // Many turns away, some of them farther than is repeated turn by turn.
    for (const int reg : {out.r0, out.r1}) {
      if (out.pos.Holds(reg)) {
        out.pos[reg] = draw.Uniform(-1.0, 1.0) * std::pow(10.0, draw.Int(2, 6));
      }
    }
  }
  return out;
}

// Compares within the rounding that thousands of turns leave. Where they leave nothing of the
// angle, all that counts is that the call came back.
void ExpectNear(const Kin::RotariesSolution& solution, const Reference::Rotaries& expected,
                double farthest) {
  if (!(farthest < 1e7)) {
    return;
  }
  const double tol = 1e-9 + 1e-12 * farthest;
  EXPECT_EQ(solution.Count, expected.count);
  EXPECT_EQ(solution.FreeRegister, expected.freeRegister);
  const double got[4] = {solution.Alpha1.GetRadian(), solution.Beta1.GetRadian(),
                         solution.Alpha2.GetRadian(), solution.Beta2.GetRadian()};
  const double wanted[4] = {expected.alpha1, expected.beta1, expected.alpha2, expected.beta2};
  for (int i = 0; i < 4; ++i) {
    if (std::isnan(wanted[i])) {
      EXPECT_TRUE(std::isnan(got[i])) << i;
    } else {
      EXPECT_NEAR(got[i], wanted[i], tol) << i;
    }
  }
}

void ExpectSameRotaries(Draw& draw, const Reference::Machine& machine, const Program& program,
                        Kin::ProgramSystemCompute* solver, Reference::ProgramSolver* twin) {
  const RotaryRequest request = RequestFor(draw, machine, program);
  Kin::RotariesSolution solution;
  Reference::Rotaries expected;
  EXPECT_EQ(solver->ComputeToolIjkTcsToMcsAbc(ToOrvo(request.pos), ToOrvo(request.ijk), &solution),
            twin->SolveRotaries(request.pos, request.ijk, &expected))
      << Text(request);
  if (twin->Farthest() > 0.0) {
    SCOPED_TRACE(Text(request));
    ExpectNear(solution, expected, twin->Farthest());
  } else {
    EXPECT_TRUE(SameBits(solution, expected)) << "policy " << program.policy << "\n"
                                              << Text(request);
  }
}

void ExpectSameLinear(Draw& draw, const Reference::Machine& machine,
                      Kin::ProgramSystemCompute* solver, Reference::ProgramSolver* twin) {
  const Position pos = AnyPosition(draw, machine.registerNb);
  const Vector offset = Point(draw);
  const Vector point = Point(draw);
  Vector expected = {1.0, 2.0, 3.0, 4.0};
  Vector3D xyz = ToOrvo(expected);
  EXPECT_EQ(solver->ComputeToolTcsToMcsXyz(ToOrvo(pos), ToOrvo(offset), ToOrvo(point), &xyz),
            twin->SolveLinear(pos, offset, point, &expected));
  EXPECT_TRUE(SameBits(xyz, expected)) << Text(pos) << Text(offset) << Text(point);
}

void ExpectSameFlags(const bool (&flags)[3], const bool (&expected)[3]) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(flags[i], expected[i]) << "axis " << i;
  }
}

// Moves a value onto a limit or beside it now and then.
double AtLimit(Draw& draw, const Reference::Machine& machine, int reg, double value) {
  const Reference::Element* e = machine.ByRegister(reg);
  if (e == nullptr || draw.Chance(0.5)) {
    return value;
  }
  const double limit = draw.Chance(0.5) ? e->link.rangeMin[0] : e->link.rangeMax[0];
  return draw.Chance(0.5) ? limit : std::nextafter(limit, draw.Chance(0.5) ? -1e9 : 1e9);
}

void ExpectSameRange(Draw& draw, const Reference::Machine& machine, const Program& program,
                     Kin::ProgramSystemCompute* solver, Reference::ProgramSolver* twin) {
  Position pos = AnyPosition(draw, machine.registerNb);
  for (const int reg : program.linear) {
    if (pos.Holds(reg)) {
      pos[reg] = AtLimit(draw, machine, reg, pos[reg]);
    }
  }
  bool flags[3] = {false, true, false};
  bool expected[3] = {false, true, false};
  bool threw = false;
  const bool expectedResult = twin->CheckRange(pos, expected, &threw);
  for (bool* const out : {static_cast<bool*>(flags), static_cast<bool*>(nullptr)}) {
    try {
      const bool result = solver->CheckLinearRange(ToOrvo(pos), out);
      EXPECT_FALSE(threw) << Text(pos);
      EXPECT_EQ(result, expectedResult) << Text(pos);
    } catch (const std::out_of_range& e) {
      EXPECT_TRUE(threw) << Text(pos);
      EXPECT_STREQ(e.what(), "MachinePosition::operator[] : index out of range");
    }
  }
  ExpectSameFlags(flags, expected);
  const Vector xyz = {AtLimit(draw, machine, program.linear[0], Coordinate(draw)),
                      AtLimit(draw, machine, program.linear[1], Coordinate(draw)),
                      AtLimit(draw, machine, program.linear[2], Coordinate(draw)), 0.0};
  EXPECT_EQ(solver->CheckLinearRange(ToOrvo(xyz), flags), twin->CheckRange(xyz, expected));
  EXPECT_EQ(solver->CheckLinearRange(ToOrvo(xyz), nullptr), twin->CheckRange(xyz, nullptr));
  ExpectSameFlags(flags, expected);
}

void SolveProgram(Draw& draw) {
  MachinePair machines(AnyPlan(draw));
  const int count = static_cast<int>(machines.twin.programs.size());
  if (count == 0) {
    return;
  }
  const int index = draw.Int(0, count - 1);
  const Program& program = *std::next(machines.twin.programs.begin(), index);
  const Kin::ProgramSystem* ours =
      machines.machine.GetProgramSystem(Kin::ProgramSystemIndex(index));
  ASSERT_NE(ours, nullptr);
  Kin::ProgramSystemCompute solver(machines.machine, *ours);
  Reference::ProgramSolver twin(machines.twin, program);
  for (int call = 0; call < 8 && !::testing::Test::HasFailure(); ++call) {
    switch (draw.Int(0, 7)) {
      case 0:
        ExpectSameLinear(draw, machines.twin, &solver, &twin);
        break;
      case 1:
        ExpectSameRange(draw, machines.twin, program, &solver, &twin);
        break;
      default:
        ExpectSameRotaries(draw, machines.twin, program, &solver, &twin);
        break;
    }
  }
  if (::testing::Test::HasFailure()) {
    ADD_FAILURE() << "program system " << index << "\n" << machines.Text();
  }
}

TEST(SolverProperty, SolvesAsTheTwinDoes) { ForCases(40000, SolveProgram); }

TEST(SolverProperty, SolvesForAnyNumbersAsTheTwinDoes) {
  ForCases(20000, [](Draw& draw) {
    draw.SetEdgeShare(draw.Uniform(0.0, 0.3));
    SolveProgram(draw);
  });
}

// A policy outside the three is one that does nothing, and a change of the caller's program system
// after construction is not seen.
TEST(SolverProperty, CopiesTheProgramSystemAndLeavesOtherPoliciesRaw) {
  ForCases(3000, [](Draw& draw) {
    MachinePair machines(SoundPlan(draw));
    if (machines.twin.programs.empty()) {
      return;
    }
    Program program = machines.twin.programs.front();
    program.policy = draw.Int(-2, 9);
    Kin::ProgramSystem ours(*machines.machine.GetProgramSystem(Kin::ProgramSystemIndex(0)));
    ours.SetRotariesCompute(static_cast<Kin::RotariesCompute>(program.policy));
    Kin::ProgramSystemCompute solver(machines.machine, ours);
    ours.SetHeadIndex(Kin::HeadIndex(-1));
    ours.SetRotariesCompute(Kin::RotariesComputeDefault);
    Reference::ProgramSolver twin(machines.twin, program);
    for (int call = 0; call < 4; ++call) {
      ExpectSameRotaries(draw, machines.twin, program, &solver, &twin);
    }
  });
}

// An axis that gives its register away after the machine was finished: what the lookup by register
// still finds, and what stands on the chain, no longer agree.
TEST(SolverProperty, MeetsRegistersThatMovedAsTheTwinDoes) {
  ForCases(5000, [](Draw& draw) {
    MachinePlan plan = SoundPlan(draw);
    plan.fromFile = false;
    MachinePair machines(plan);
    auto twinElement = machines.twin.elements.begin();
    for (Kin::Entity* e : machines.entities) {
      if (draw.Chance(0.2)) {
        const int reg = draw.Int(-1, machines.twin.registerNb);
        e->SetRegister(reg);
        twinElement->reg = reg;
      }
      ++twinElement;
    }
    if (machines.twin.programs.empty()) {
      return;
    }
    const Program& program = machines.twin.programs.front();
    Kin::ProgramSystemCompute solver(
        machines.machine, *machines.machine.GetProgramSystem(Kin::ProgramSystemIndex(0)));
    Reference::ProgramSolver twin(machines.twin, program);
    for (int call = 0; call < 6 && !::testing::Test::HasFailure(); ++call) {
      ExpectSameRotaries(draw, machines.twin, program, &solver, &twin);
      ExpectSameLinear(draw, machines.twin, &solver, &twin);
      ExpectSameRange(draw, machines.twin, program, &solver, &twin);
    }
    if (::testing::Test::HasFailure()) {
      ADD_FAILURE() << machines.Text();
    }
  });
}

}  // namespace
}  // namespace Orvo::Property
