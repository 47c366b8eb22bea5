// Solvers of program systems that live long against new ones that keep nothing, bit for bit, while
// axis values, targets and the machine change.

#include "compute/PrivateAccess.h"
#include "property/ChangingMachine.h"
#include "property/Compare.h"
#include "property/Draw.h"
#include "property/KeptPair.h"
#include "property/RandomGeometry.h"
#include "support/SameBits.h"

#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/RotariesSolution.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace Orvo::Property {
namespace {

using Kin::ProgramSystem;
using Kin::ProgramSystemCompute;
using Kin::RotariesSolution;

ProgramSystem ProgramOf(Draw& draw, const Scene& scene) {
  ProgramSystem program;
  program.SetHeadIndex(scene.head);
  program.SetTableIndex(scene.table);
  program.SetMainLinear(scene.linears[0], scene.linears[1], scene.linears[2]);
  program.SetMainRotary(scene.rotaries[0], scene.rotaries[1]);
  program.SetRotariesCompute(draw.Chance(0.9) ? Kin::RotariesComputeShortestWay
                                              : Kin::RotariesComputeDefault);
  return program;
}

/// What a solver answers: its result, or that it threw, and its outputs.
struct Answers {
  std::string rotary;
  std::string linear;
  std::string range;
};

std::string Numbers(const double* numbers, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    text += " " + (numbers[i] != numbers[i] ? std::string("nan") : Testing::HexText(numbers[i]));
  }
  return text;
}

Answers Ask(ProgramSystemCompute& solver, const Kin::MachinePosition& pos, const Vector3D& target,
            const Vector3D& offset, const Vector3D& point) {
  Answers answers;
  RotariesSolution sol;
  sol.Count = 7;
  answers.rotary = solver.ComputeToolIjkTcsToMcsAbc(pos, target, &sol) ? "true" : "false";
  const double angles[] = {sol.Alpha1.GetRadian(), sol.Beta1.GetRadian(), sol.Alpha2.GetRadian(),
                           sol.Beta2.GetRadian()};
  answers.rotary +=
      " " + std::to_string(sol.Count) + " " + std::to_string(sol.FreeRegister) + Numbers(angles, 4);
  Vector3D xyz(7, 7, 7);
  answers.linear = solver.ComputeToolTcsToMcsXyz(pos, offset, point, &xyz) ? "true" : "false";
  answers.linear += Numbers(xyz, 4);
  bool flags[3] = {};
  try {
    answers.range = solver.CheckLinearRange(pos, flags) ? "true" : "false";
  } catch (const std::out_of_range& e) {
    answers.range = e.what();
  }
  for (const bool flag : flags) {
    answers.range += flag ? " 1" : " 0";
  }
  return answers;
}

void Follow(Draw& draw, double changeShare) {
  ChangingMachine machine(draw, draw.Chance(0.8) ? Flavor::Sound : Flavor::Wild);
  KeptPair pair(machine);
  pair.DrawScene(draw);
  const ProgramSystem program = ProgramOf(draw, pair.GetScene());
  ProgramSystemCompute solver(machine.Get(), program);
  for (int call = 0; call < 20; ++call) {
    if (draw.Chance(changeShare)) {
      machine.Change(draw);
    }
    pair.ChangeScene(draw, 0.0);
    const Vector3D target = pair.DrawTarget(draw);
    const Vector3D point = ToOrvo(Point(draw));
    ProgramSystemCompute fresh(machine.Get(), program);
    Testing::KeepNothing(fresh);
    const Vector3D& offset = pair.GetScene().offset;
    const Answers kept = Ask(solver, pair.Position(), target, offset, point);
    const Answers plain = Ask(fresh, pair.Position(), target, offset, point);
    EXPECT_EQ(kept.rotary, plain.rotary) << "call " << call;
    EXPECT_EQ(kept.linear, plain.linear) << "call " << call;
    EXPECT_EQ(kept.range, plain.range) << "call " << call;
    if (::testing::Test::HasFailure()) {
      return;
    }
  }
}

TEST(KeptProgramProperty, SolversAnswerAsNewPlainOnes) {
  ForCases(2000, [](Draw& draw) { Follow(draw, 0.0); });
}

TEST(KeptProgramProperty, SolversFollowMachinesThatChange) {
  ForCases(2000, [](Draw& draw) { Follow(draw, 0.3); });
}

}  // namespace
}  // namespace Orvo::Property
