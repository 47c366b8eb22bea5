// Forward frames, rotary and linear solutions against the plain twin, bit for bit, over random
// machines; many calls on one calculator, since caches and the last failure stay with it.

#include "property/CalculatorPair.h"
#include "property/Draw.h"
#include "property/RandomMachine.h"

#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/RotariesSolution.h>

#include <gtest/gtest.h>

#include <array>

namespace Orvo::Property {
namespace {

void Explain(const MachinePair& machines) {
  if (::testing::Test::HasFailure()) {
    ADD_FAILURE() << machines.Text();
  }
}

// Runs a case with a share of edge numbers among all that it draws.
void ForEdgeCases(int count, void (*run)(Draw& draw)) {
  ForCases(count, [run](Draw& draw) {
    draw.SetEdgeShare(draw.Uniform(0.0, 0.3));
    run(draw);
  });
}

void PlaceElements(Draw& draw) {
  const MachinePair machines(AnyPlan(draw));
  CalculatorPair pair(machines);
  for (int call = 0; call < 8 && !::testing::Test::HasFailure(); ++call) {
    switch (draw.Int(0, 3)) {
      case 0:
        pair.RelativePosition(draw);
        break;
      case 1:
        pair.PositionEntity(draw);
        break;
      case 2:
        pair.PositionMachine(draw);
        break;
      default:
        pair.McsToToolTcs(draw);
        break;
    }
  }
  Explain(machines);
}

TEST(ForwardProperty, PlacesElementsAsTheTwinDoes) { ForCases(30000, PlaceElements); }

TEST(ForwardProperty, PlacesElementsOfAnyNumbersAsTheTwinDoes) {
  ForEdgeCases(15000, PlaceElements);
}

void SolveRotaries(Draw& draw) {
  const MachinePair machines(AnyPlan(draw));
  CalculatorPair pair(machines);
  for (int call = 0; call < 8 && !::testing::Test::HasFailure(); ++call) {
    pair.Rotaries(AnyRotaryRequest(draw, machines.twin));
  }
  Explain(machines);
}

TEST(RotaryProperty, SolvesAsTheTwinDoes) { ForCases(60000, SolveRotaries); }

TEST(RotaryProperty, SolvesForAnyNumbersAsTheTwinDoes) { ForEdgeCases(30000, SolveRotaries); }

void SolveLinear(Draw& draw) {
  const MachinePair machines(AnyPlan(draw));
  CalculatorPair pair(machines);
  for (int call = 0; call < 8 && !::testing::Test::HasFailure(); ++call) {
    pair.Linear(AnyLinearRequest(draw, machines.twin));
  }
  Explain(machines);
}

TEST(LinearProperty, SolvesAsTheTwinDoes) { ForCases(30000, SolveLinear); }

TEST(LinearProperty, SolvesForAnyNumbersAsTheTwinDoes) { ForEdgeCases(15000, SolveLinear); }

void DoEverything(Draw& draw) {
  const MachinePair machines(AnyPlan(draw));
  CalculatorPair pair(machines);
  for (int call = 0; call < 16 && !::testing::Test::HasFailure(); ++call) {
    switch (draw.Int(0, 5)) {
      case 0:
        pair.RelativePosition(draw);
        break;
      case 1:
        pair.PositionEntity(draw);
        break;
      case 2:
        pair.PositionMachine(draw);
        break;
      case 3:
        pair.McsToToolTcs(draw);
        break;
      case 4:
        pair.Rotaries(AnyRotaryRequest(draw, machines.twin));
        break;
      default:
        pair.Linear(AnyLinearRequest(draw, machines.twin));
        break;
    }
  }
  Explain(machines);
}

TEST(CalculatorProperty, KeepsItsMemoryAcrossAllOperationsAsTheTwinDoes) {
  ForCases(20000, DoEverything);
}

TEST(CalculatorProperty, KeepsItsMemoryOverAnyNumbersAsTheTwinDoes) {
  ForEdgeCases(10000, DoEverything);
}

// Null outputs fail first, whatever else is wrong, but for the linear solution of an unfinished
// machine.
TEST(CalculatorProperty, RefusesNullOutputsAsTheTwinDoes) {
  ForCases(2000, [](Draw& draw) {
    const MachinePair machines(AnyPlan(draw));
    Kin::MachineCompute calculator(machines.machine);
    Reference::Calculator twin(machines.twin);
    const RotaryRequest rotary = AnyRotaryRequest(draw, machines.twin);
    const LinearRequest linear = AnyLinearRequest(draw, machines.twin);
    const std::array<int, 3>& registers = linear.registers;
    EXPECT_EQ(calculator.ComputeToolTcsToMcsXyz(ToOrvo(linear.pos), linear.head, linear.table,
                                                ToOrvo(linear.offset), registers[0], registers[1],
                                                registers[2], ToOrvo(linear.point), nullptr),
              twin.SolveLinear(linear.pos, linear.head, linear.table, linear.offset, registers,
                               linear.point, nullptr));
    EXPECT_EQ(calculator.GetLastError(), twin.GetLastError());
    EXPECT_EQ(
        calculator.ComputeToolIjkTcsToMcsAbc(ToOrvo(rotary.pos), rotary.head, rotary.table,
                                             ToOrvo(rotary.ijk), rotary.r0, rotary.r1, nullptr),
        twin.SolveRotaries(rotary.pos, rotary.head, rotary.table, rotary.ijk, rotary.r0, rotary.r1,
                           nullptr));
    EXPECT_EQ(calculator.GetLastError(), twin.GetLastError());
  });
}

}  // namespace
}  // namespace Orvo::Property
