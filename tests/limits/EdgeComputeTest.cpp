// Every number of every exported operation of the computation at the edge of what doubles and ints
// hold: in the machine, in positions and in requests.

#include "EdgeNumbers.h"
#include "compute/AngleUnwrap.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/RotariesSolution.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::Machine;
using Kin::MachineCompute;
using Kin::MachinePosition;
using Kin::ProgramSystem;
using Kin::ProgramSystemCompute;
using Kin::RotariesSolution;

using Doubles = std::vector<double>;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();

void Append(Doubles* results, const Vector3D& v) {
  results->insert(results->end(), {v[0], v[1], v[2], v[3]});
}

void Append(Doubles* results, const Matrix43& frame) {
  const double* const elements = frame;
  results->insert(results->end(), elements, elements + 16);
}

void Append(Doubles* results, const RotariesSolution& s) {
  results->insert(results->end(), {static_cast<double>(s.Count),
                                   static_cast<double>(s.FreeRegister), s.Alpha1.GetRadian(),
                                   s.Beta1.GetRadian(), s.Alpha2.GetRadian(), s.Beta2.GetRadian()});
}

/// The numbers of a machine with a rotary axis on each side: base 1, table 3 on C 2 (register 3),
/// X 4, Y 5, Z 6 (registers 0 to 2), A 7 (register 4), head 8.
struct Numbers {
  Vector3D linearDir = AxisX;
  Vector3D rotaryDir = AxisX;
  Vector3D center = Vector3D(0, 10, 20);
  double zeroRef = 5.0;
  double range[2][2] = {{-500.0, 500.0}, {-120.0, 120.0}};  // of X and A
  double head[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, -100, 1};
};

Machine MachineOf(const Numbers& numbers) {
  Machine machine;
  machine.AddEntityStatic(L"base", -1);
  machine.AddEntityRotary(L"C", 1, NullVector, AxisZ)->SetRegister(3);
  machine.AddEntityTable(L"table", 2, Matrix43());
  Kin::Entity* const x = machine.AddEntityLinear(L"X", 1, numbers.linearDir);
  x->SetRegister(0);
  x->GetEntityLinkMod()->SetZeroRef(numbers.zeroRef);
  x->SetRange(numbers.range[0][0], numbers.range[0][1]);
  machine.AddEntityLinear(L"Y", 4, AxisY)->SetRegister(1);
  machine.AddEntityLinear(L"Z", 5, AxisZ)->SetRegister(2);
  Kin::Entity* const a = machine.AddEntityRotary(L"A", 6, numbers.center, numbers.rotaryDir);
  a->SetRegister(4);
  a->SetRange(numbers.range[1][0], numbers.range[1][1]);
  for (const auto& entity : machine.GetKinematic().GetListEntity()) {
    if (entity.GetRegister() == 3) {
      const_cast<Kin::Entity&>(entity).SetCheckRangeAxis(false);
    }
  }
  Matrix43 head;
  head = numbers.head;
  machine.AddEntityHead(L"head", 7, head);
  ProgramSystem programSystem;
  programSystem.SetHeadIndex(0);
  programSystem.SetTableIndex(0);
  programSystem.SetMainLinear(0, 1, 2);
  programSystem.SetMainRotary(4, 3);
  machine.AddProgramSystem(programSystem);
  EXPECT_TRUE(machine.Finish());
  return machine;
}

constexpr int AxisNb = 5;

MachinePosition PositionOf(const double* values) {
  MachinePosition position;
  position.Alloc(Kin::Register(AxisNb));
  for (int i = 0; i < AxisNb; ++i) {
    position[i] = values[i];
  }
  return position;
}

// All results of all computations.
Doubles ComputeAll(Machine& machine, MachineCompute& calculator, ProgramSystemCompute& solver,
                   const MachinePosition& position, const Vector3D& ijk, const Vector3D& offset,
                   const Vector3D& point) {
  Doubles results;
  for (const auto& entity : machine.GetKinematic().GetListEntity()) {
    Matrix43 frame;
    results.push_back(calculator.ComputeRelativePosition(entity.GetEntityLink(),
                                                         entity.GetRegister(), position, &frame));
    Append(&results, frame);
    results.push_back(calculator.ComputePositionEntity(entity, position, &frame));
    Append(&results, frame);
  }
  std::vector<Matrix43> frames;
  results.push_back(calculator.ComputePositionMachine(position, &frames));
  for (const Matrix43& frame : frames) {
    Append(&results, frame);
  }
  Matrix43 tableFromTool;
  results.push_back(calculator.ComputeMcsToToolTcs(position, 0, 0, offset, &tableFromTool));
  Append(&results, tableFromTool);
  const int registers[][2] = {{4, 3}, {3, 4}, {4, -1}, {-1, 3}, {-1, -1}};
  for (const auto& pair : registers) {
    RotariesSolution solution;
    results.push_back(
        calculator.ComputeToolIjkTcsToMcsAbc(position, 0, 0, ijk, pair[0], pair[1], &solution));
    Append(&results, solution);
  }
  RotariesSolution solution;
  results.push_back(solver.ComputeToolIjkTcsToMcsAbc(position, ijk, &solution));
  Append(&results, solution);
  Vector3D xyz;
  results.push_back(
      calculator.ComputeToolTcsToMcsXyz(position, 0, 0, offset, 0, 1, 2, point, &xyz));
  Append(&results, xyz);
  results.push_back(solver.ComputeToolTcsToMcsXyz(position, offset, point, &xyz));
  Append(&results, xyz);
  bool inRange[3];
  results.push_back(solver.CheckLinearRange(position, inRange));
  results.insert(results.end(), inRange, inRange + 3);
  results.push_back(solver.CheckLinearRange(point, inRange));
  results.insert(results.end(), inRange, inRange + 3);
  return results;
}

const double PlainPosition[AxisNb] = {1, 2, 3, 40, 50};
const Vector3D PlainIjk(0.0, 0.6, 0.8);
const Vector3D PlainOffset(0, 0, 50);
const Vector3D PlainPoint(100, 200, 300);

TEST(EdgeCompute, NumbersOfTheMachine) {
  const auto computed = [](const Numbers& numbers) {
    Machine machine = MachineOf(numbers);
    MachineCompute calculator(machine);
    ProgramSystemCompute solver(machine, machine.GetListProgramSystem().front());
    return ComputeAll(machine, calculator, solver, PositionOf(PlainPosition), PlainIjk, PlainOffset,
                      PlainPoint);
  };
  const EdgeOperation operations[] = {{"direction of a linear axis",
                                       {1, 0, 0},
                                       "nnn",
                                       [&](const double* a) {
                                         Numbers numbers;
                                         numbers.linearDir = a;
                                         return computed(numbers);
                                       }},
                                      {"direction of a rotary axis",
                                       {1, 0, 0},
                                       "nnn",
                                       [&](const double* a) {
                                         Numbers numbers;
                                         numbers.rotaryDir = a;
                                         return computed(numbers);
                                       }},
                                      {"center of a rotary axis",
                                       {0, 10, 20},
                                       "nnn",
                                       [&](const double* a) {
                                         Numbers numbers;
                                         numbers.center = a;
                                         return computed(numbers);
                                       }},
                                      {"zero reference",
                                       {5},
                                       "n",
                                       [&](const double* a) {
                                         Numbers numbers;
                                         numbers.zeroRef = a[0];
                                         return computed(numbers);
                                       }},
                                      {"ranges",
                                       {-500, 500, -120, 120},
                                       "....",
                                       [&](const double* a) {
                                         Numbers numbers;
                                         for (int i = 0; i < 4; ++i) {
                                           numbers.range[i / 2][i % 2] = a[i];
                                         }
                                         return computed(numbers);
                                       }},
                                      {"frame of the head",
                                       {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, -100, 1},
                                       std::string(16, 'n'),
                                       [&](const double* a) {
                                         Numbers numbers;
                                         std::copy_n(a, 16, numbers.head);
                                         return computed(numbers);
                                       }}};
  for (const EdgeOperation& operation : operations) {
    HoldAtTheEdge(operation);
  }
}

// One calculator for all calls: what a bad one leaves behind would show in the next.
TEST(EdgeCompute, NumbersOfPositionsAndRequests) {
  Machine machine = MachineOf(Numbers());
  MachineCompute calculator(machine);
  ProgramSystemCompute solver(machine, machine.GetListProgramSystem().front());
  const auto forward = [&](const double* a) {
    Doubles results;
    Matrix43 frame;
    results.push_back(
        calculator.ComputeMcsToToolTcs(PositionOf(a), 0, 0, Vector3D(a + AxisNb), &frame));
    Append(&results, frame);
    return results;
  };
  const auto linear = [&](const double* a) {
    Vector3D xyz;
    const bool isSolved =
        solver.ComputeToolTcsToMcsXyz(PositionOf(a), Vector3D(a + 5), Vector3D(a + 8), &xyz);
    return Doubles{isSolved ? 1.0 : 0.0, xyz[0], xyz[1], xyz[2]};
  };
  // The count of a solution.
  const auto rotary = [&](int alpha, int beta) {
    return [&calculator, alpha, beta](const double* a) {
      RotariesSolution solution;
      EXPECT_TRUE(calculator.ComputeToolIjkTcsToMcsAbc(PositionOf(a), 0, 0, Vector3D(a + 5), alpha,
                                                       beta, &solution));
      Doubles results;
      Append(&results, solution);
      return results;
    };
  };
  const EdgeOperation operations[] = {
      {"everything",
       {1, 2, 3, 40, 50, 0, 0.6, 0.8, 0, 0, 50, 100, 200, 300},
       "nnnnn...nnnnnn",
       [&](const double* a) {
         return ComputeAll(machine, calculator, solver, PositionOf(a), Vector3D(a + 5),
                           Vector3D(a + 8), Vector3D(a + 11));
       }},
      {"tool in the table", {1, 2, 3, 40, 50, 0, 0, 50}, "nnnnnnnn", forward},
      {"linear values", {1, 2, 3, 40, 50, 0, 0, 50, 100, 200, 300}, "111nnnnnnnn", linear},
      {"two rotary values", {1, 2, 3, 40, 50, 0, 0.6, 0.8}, ".....000", rotary(4, 3)},
      {"two rotary values, exchanged", {1, 2, 3, 40, 50, 0, 0.6, 0.8}, ".....000", rotary(3, 4)},
      {"one rotary value", {1, 2, 3, 0, 50, 0, 0.6, 0.8}, "...0.000", rotary(4, -1)},
      {"no rotary value", {1, 2, 3, 0, 0, 0, 0, 1}, "...00000", rotary(-1, -1)},
      {"rotary values by the shortest way",
       {1, 2, 3, 40, 50, 0, 0.6, 0.8},
       ".....000",
       [&](const double* a) {
         RotariesSolution solution;
         EXPECT_TRUE(solver.ComputeToolIjkTcsToMcsAbc(PositionOf(a), Vector3D(a + 5), &solution));
         Doubles results;
         Append(&results, solution);
         return results;
       }},
      {"ranges of a position",
       {1, 2, 3, 40, 50},
       "1....",
       [&](const double* a) {
         bool inRange[3];
         const bool isInRange = solver.CheckLinearRange(PositionOf(a), inRange);
         return Doubles{inRange[0] ? 1.0 : 0.0, isInRange ? 1.0 : 0.0};
       }},
      {"ranges of a point", {1, 2, 3}, "1..", [&](const double* a) {
         bool inRange[3];
         const bool isInRange = solver.CheckLinearRange(Vector3D(a), inRange);
         return Doubles{inRange[0] ? 1.0 : 0.0, isInRange ? 1.0 : 0.0};
       }}};
  for (const EdgeOperation& operation : operations) {
    HoldAtTheEdge(operation);
  }
}

// Where the current value or a limit is no number, a solution stays where the solver put it.
TEST(EdgeCompute, ShortestWayToNowhereStays) {
  Machine machine = MachineOf(Numbers());
  MachineCompute calculator(machine);
  ProgramSystemCompute solver(machine, machine.GetListProgramSystem().front());
  for (const double edge : {NaN, Infinity, -Infinity}) {
    const double values[AxisNb] = {0, 0, 0, edge, edge};
    RotariesSolution raw;
    ASSERT_TRUE(
        calculator.ComputeToolIjkTcsToMcsAbc(PositionOf(values), 0, 0, PlainIjk, 4, 3, &raw));
    ASSERT_EQ(raw.Count, 2U);
    RotariesSolution solution;
    ASSERT_TRUE(solver.ComputeToolIjkTcsToMcsAbc(PositionOf(values), PlainIjk, &solution));
    Doubles expected;
    Append(&expected, raw);
    Doubles results;
    Append(&results, solution);
    EXPECT_EQ(results, expected) << edge;
  }
}

TEST(EdgeCompute, LimitsThatAreNoNumbersBoundNothing) {
  const double values[AxisNb] = {0, 0, 0, 1000, 1000};
  Numbers numbers;
  numbers.range[1][0] = -1e6;
  numbers.range[1][1] = 1e6;
  const auto solved = [&values](const Numbers& of) {
    Machine machine = MachineOf(of);
    ProgramSystemCompute solver(machine, machine.GetListProgramSystem().front());
    RotariesSolution solution;
    EXPECT_TRUE(solver.ComputeToolIjkTcsToMcsAbc(PositionOf(values), PlainIjk, &solution));
    Doubles results;
    Append(&results, solution);
    return results;
  };
  const Doubles wide = solved(numbers);
  ASSERT_EQ(wide[0], 2.0);
  const double limits[][2] = {{NaN, NaN}, {NaN, 1e6}, {-1e6, NaN}, {-Infinity, Infinity}};
  for (const auto& limit : limits) {
    numbers.range[1][0] = limit[0];
    numbers.range[1][1] = limit[1];
    EXPECT_EQ(solved(numbers), wide) << limit[0] << " " << limit[1];
  }
  numbers.range[1][0] = Infinity;
  EXPECT_EQ(solved(numbers)[0], 0.0) << "everything is below";
}

TEST(EdgeCompute, NoNumberIsWithinEveryRangeAndInfinityWithinNone) {
  Numbers numbers;
  Machine machine = MachineOf(numbers);
  ProgramSystemCompute solver(machine, machine.GetListProgramSystem().front());
  EXPECT_TRUE(solver.CheckLinearRange(Vector3D(NaN, 0, 0), nullptr));
  EXPECT_FALSE(solver.CheckLinearRange(Vector3D(Infinity, 0, 0), nullptr));
  EXPECT_FALSE(solver.CheckLinearRange(Vector3D(-Infinity, 0, 0), nullptr));
  numbers.range[0][0] = numbers.range[0][1] = NaN;
  Machine unbounded = MachineOf(numbers);
  ProgramSystemCompute other(unbounded, unbounded.GetListProgramSystem().front());
  EXPECT_TRUE(other.CheckLinearRange(Vector3D(1e308, 0, 0), nullptr));
}

TEST(EdgeCompute, TurnsToTheNearestEquivalentEnd) {
  Doubles numbers(std::begin(EdgeNumbers), std::end(EdgeNumbers));
  numbers.insert(numbers.end(), {1.0, -1.0, 1e4, 62831.0, -62900.0, 1e7, 1e15, 1e16, -1e17, 1e20});
  for (const double angle : numbers) {
    for (const double reference : numbers) {
      const double closest = Kin::ClosestAngle(angle, reference);
      if (!std::isfinite(angle) || !std::isfinite(reference)) {
        EXPECT_TRUE(AreSameBits(closest, angle)) << HexText(angle) << " " << HexText(reference);
      } else {
        EXPECT_TRUE(std::isfinite(closest)) << HexText(angle) << " " << HexText(reference);
      }
      for (const double min : numbers) {
        for (const double max : numbers) {
          const double inside = Kin::ClosestAngle(angle, reference, min, max);
          if (std::isnan(angle)) {
            EXPECT_TRUE(std::isnan(inside));
          } else {
            EXPECT_FALSE(std::isnan(inside)) << HexText(angle) << " " << HexText(reference);
          }
        }
      }
    }
  }
}

TEST(EdgeCompute, IntsOfRequestsFailAsTheyShould) {
  Machine machine = MachineOf(Numbers());
  const MachinePosition position = PositionOf(PlainPosition);
  for (const int edge : EdgeInts) {
    SCOPED_TRACE(edge);
    const bool isAxis = edge >= 0 && edge < AxisNb;
    MachineCompute calculator(machine);
    Matrix43 frame;
    frame.SetTrans(AxisZ);
    const Matrix43 before = frame;
    if (edge != 0) {
      EXPECT_FALSE(calculator.ComputeMcsToToolTcs(position, edge, 0, NullVector, &frame));
      EXPECT_EQ(calculator.GetLastError(), Kin::ComputeErrorNoHeadOrTable);
      EXPECT_FALSE(calculator.ComputeMcsToToolTcs(position, 0, edge, NullVector, &frame));
      EXPECT_TRUE(SameBits(frame, before)) << "unchanged on failure";
      RotariesSolution solution;
      EXPECT_FALSE(
          calculator.ComputeToolIjkTcsToMcsAbc(position, edge, edge, AxisZ, 4, 3, &solution));
      EXPECT_EQ(solution.Count, 0U);
      Vector3D xyz(7, 8, 9);
      EXPECT_FALSE(calculator.ComputeToolTcsToMcsXyz(position, edge, 0, NullVector, 0, 1, 2,
                                                     NullVector, &xyz));
      EXPECT_TRUE(SameBits(xyz, Vector3D(7, 8, 9)));
    }
    Kin::EntityLink link;
    link.SetEntityLinkLinear(AxisX);
    MachineCompute relative(machine);
    EXPECT_EQ(relative.ComputeRelativePosition(link, edge, position, &frame), isAxis);
    if (!isAxis) {
      EXPECT_EQ(relative.GetLastError(), Kin::ComputeErrorRegister);
      EXPECT_TRUE(SameBits(frame, Matrix43()));
    }
    if (!isAxis) {
      MachineCompute linear(machine);
      for (int place = 0; place < 3; ++place) {
        int registers[3] = {0, 1, 2};
        registers[place] = edge;
        Vector3D xyz(7, 8, 9);
        EXPECT_FALSE(linear.ComputeToolTcsToMcsXyz(position, 0, 0, NullVector, registers[0],
                                                   registers[1], registers[2], NullVector, &xyz));
        EXPECT_EQ(linear.GetLastError(), Kin::ComputeErrorRegister);
        EXPECT_TRUE(SameBits(xyz, Vector3D(7, 8, 9)));
      }
      MachineCompute rotary(machine);
      RotariesSolution solution;
      EXPECT_EQ(rotary.ComputeToolIjkTcsToMcsAbc(position, 0, 0, AxisZ, edge, 3, &solution),
                edge < 0)
          << "a negative register asks for one axis";
      EXPECT_EQ(rotary.ComputeToolIjkTcsToMcsAbc(position, 0, 0, AxisZ, 4, edge, &solution),
                edge < 0);
      EXPECT_EQ(rotary.GetLastError(),
                edge < 0 ? Kin::ComputeErrorNone : Kin::ComputeErrorRegister);
    }
    ProgramSystem programSystem = machine.GetListProgramSystem().front();
    programSystem.SetMainLinear(0, 1, edge);
    ProgramSystemCompute solver(machine, programSystem);
    if (isAxis) {
      solver.CheckLinearRange(position, nullptr);
    } else {
      EXPECT_THROW(solver.CheckLinearRange(position, nullptr), std::out_of_range);
      EXPECT_TRUE(solver.CheckLinearRange(NullVector, nullptr));
    }
    programSystem.SetMainRotary(edge, edge);
    programSystem.SetHeadIndex(edge);
    programSystem.SetTableIndex(edge);
    ProgramSystemCompute other(machine, programSystem);
    RotariesSolution solution;
    EXPECT_FALSE(other.ComputeToolIjkTcsToMcsAbc(position, AxisZ, &solution));
    Vector3D xyz;
    EXPECT_FALSE(other.ComputeToolTcsToMcsXyz(position, NullVector, NullVector, &xyz));
  }
}

}  // namespace
}  // namespace Orvo::Testing
