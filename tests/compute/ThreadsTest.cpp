#include "SmallMachines.h"
#include "support/SameBits.h"

#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Mesh.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstddef>
#include <mutex>
#include <thread>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::Machine;
using Kin::MachineCompute;
using Kin::MachinePosition;
using Kin::ProgramSystem;
using Kin::ProgramSystemCompute;
using Kin::RotariesSolution;

constexpr int ThreadNb = 8;
constexpr int RoundNb = 200;

// All that the calculators of one machine have to say about one step.
std::vector<double> Results(MachineCompute& compute, ProgramSystemCompute& solver, int step) {
  const double turn = 0.1 * step;
  const MachinePosition position = PositionOf({1.0 * step, 2, 3, 40 + turn, 50 - turn});
  const Vector3D ijk(std::sin(turn), std::cos(turn), 1.5);
  std::vector<double> results;
  const auto keep = [&results](const double* values, int count) {
    results.insert(results.end(), values, values + count);
  };
  std::vector<Matrix43> frames;
  EXPECT_TRUE(compute.ComputePositionMachine(position, &frames));
  for (const Matrix43& frame : frames) {
    keep(frame, 16);
  }
  Matrix43 frame;
  EXPECT_TRUE(compute.ComputeMcsToToolTcs(position, 0, 0, ijk, &frame));
  keep(frame, 16);
  RotariesSolution sol;
  EXPECT_TRUE(solver.ComputeToolIjkTcsToMcsAbc(position, ijk, &sol));
  const double angles[] = {static_cast<double>(sol.Count), sol.Alpha1.GetRadian(),
                           sol.Beta1.GetRadian(), sol.Alpha2.GetRadian(), sol.Beta2.GetRadian()};
  keep(angles, 5);
  Vector3D xyz;
  EXPECT_TRUE(solver.ComputeToolTcsToMcsXyz(position, ijk, ijk, &xyz));
  keep(xyz, 3);
  bool inRange[3];
  solver.CheckLinearRange(position, inRange);
  for (const bool flag : inRange) {
    results.push_back(flag ? 1.0 : 0.0);
  }
  return results;
}

// Runs a body on all threads at once: none starts before the last one is there.
template <typename Body>
void RunTogether(Body body) {
  std::atomic<int> waiting{ThreadNb};
  std::vector<std::thread> threads;
  for (int i = 0; i < ThreadNb; ++i) {
    threads.emplace_back([&waiting, &body, i] {
      --waiting;
      while (waiting.load() > 0) {
        std::this_thread::yield();
      }
      body(i);
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

ProgramSystem NewProgramSystem() {
  ProgramSystem ps;
  ps.SetHeadIndex(0);
  ps.SetTableIndex(0);
  ps.SetMainLinear(0, 1, 2);
  ps.SetMainRotary(3, 4);
  return ps;
}

TEST(Threads, CalculatorsOfOneMachineWorkAtTheSameTime) {
  for (const Machine& machine : {HeadHeadMachine(), TableTableMachine(), HeadTableMachine()}) {
    const ProgramSystem ps = NewProgramSystem();
    std::vector<std::vector<double>> expected;
    MachineCompute compute(machine);
    ProgramSystemCompute solver(machine, ps);
    for (int step = 0; step < RoundNb; ++step) {
      expected.push_back(Results(compute, solver, step));
    }
    std::vector<int> agreed(ThreadNb, 0);
    RunTogether([&](int thread) {
      MachineCompute own(machine);
      ProgramSystemCompute ownSolver(machine, ps);
      for (int step = 0; step < RoundNb; ++step) {
        const std::vector<double> results = Results(own, ownSolver, step);
        const std::vector<double>& wanted = expected[static_cast<std::size_t>(step)];
        if (results.size() == wanted.size() &&
            SameBits(results.data(), wanted.data(), wanted.size(), "the results'")) {
          ++agreed[static_cast<std::size_t>(thread)];
        }
      }
    });
    for (const int count : agreed) {
      EXPECT_EQ(count, RoundNb);
    }
  }
}

TEST(Threads, CalculatorsComeAndGoAtTheSameTime) {
  const Machine machine = HeadTableMachine();
  const ProgramSystem ps = NewProgramSystem();
  std::atomic<int> solved{0};
  RunTogether([&](int thread) {
    for (int round = 0; round < 50; ++round) {
      MachineCompute compute(machine);
      MachineCompute handle(compute);
      ProgramSystemCompute solver(machine, ps);
      Results(handle, solver, thread);
      // A failure is the calculator's own.
      compute.ComputePositionMachine(MachinePosition(), nullptr);
      solved += handle.GetLastError() == Kin::ComputeErrorNullOutput ? 1 : 0;
    }
  });
  EXPECT_EQ(solved.load(), ThreadNb * 50);
}

TEST(Threads, FinishedMachineIsReadAtTheSameTime) {
  const Machine machine = HeadTableMachine();
  std::atomic<int> found{0};
  RunTogether([&](int) {
    for (int round = 0; round < RoundNb; ++round) {
      MachinePosition position;
      machine.Alloc(&position);
      int elements = 0;
      for (int id = 0; id < 10; ++id) {
        elements += machine.GetKinematic().GetEntity(Kin::EntityId(id)) != nullptr ? 1 : 0;
      }
      const bool whole = position.Size() == 5 && elements == 8 &&
                         machine.GetKinematic().GetEntityHead(0) != nullptr &&
                         machine.GetListProgramSystem().size() == 1;
      found += whole ? 1 : 0;
    }
  });
  EXPECT_EQ(found.load(), ThreadNb * RoundNb);
}

// Machines that are built and solved each on a thread of its own share nothing.
TEST(Threads, MachinesAreBuiltAtTheSameTime) {
  std::atomic<int> solved{0};
  RunTogether([&](int thread) {
    for (int round = 0; round < 20; ++round) {
      const Machine machine = HeadHeadMachine();
      MachineCompute compute(machine);
      ProgramSystemCompute solver(machine, NewProgramSystem());
      solved += Results(compute, solver, thread).empty() ? 0 : 1;
    }
  });
  EXPECT_EQ(solved.load(), ThreadNb * 20);
}

// Copies of a machine share its elements. Whichever copy goes last takes them with it.
TEST(Threads, HandlesOnOneMachineComeAndGo) {
  for (int round = 0; round < 20; ++round) {
    std::vector<Machine> handles(ThreadNb, HeadTableMachine());
    std::atomic<int> agreed{0};
    RunTogether([&](int thread) {
      const Machine own = handles[static_cast<std::size_t>(thread)];
      handles[static_cast<std::size_t>(thread)] = Machine();
      const Kin::Kinematic kinematic = own.GetKinematic();
      const ProgramSystem ps = own.GetListProgramSystem().front();
      MachineCompute compute(own);
      ProgramSystemCompute solver(own, NewProgramSystem());
      const bool isWhole = kinematic.GetEntityHead(0) == own.GetKinematic().GetEntityHead(0) &&
                           ps.GetHeadIndex().IsDefined() &&
                           !Results(compute, solver, thread).empty();
      agreed += isWhole ? 1 : 0;
    });
    EXPECT_EQ(agreed.load(), ThreadNb);
  }
}

// Copies of a mesh share its arrays.
TEST(Threads, HandlesOnOneMeshComeAndGo) {
  for (int round = 0; round < 20; ++round) {
    Mesh first;
    Vector3D* const vertices = first.AllocTabVertices(3);
    vertices[2] = AxisZ;
    std::vector<Mesh> handles(ThreadNb, first);
    first = Mesh();
    std::atomic<int> agreed{0};
    RunTogether([&](int thread) {
      Mesh own = handles[static_cast<std::size_t>(thread)];
      handles[static_cast<std::size_t>(thread)] = Mesh();
      const Mesh copy = own;
      own = Mesh();
      agreed += copy.GetDimVertices() == 3 && copy.GetTabVertices()[2] == AxisZ ? 1 : 0;
    });
    EXPECT_EQ(agreed.load(), ThreadNb);
  }
}

// Handles on one calculator share its caches and its last error; threads may pass it around, one
// at a time.
TEST(Threads, HandlesOnOneCalculatorTakeTurns) {
  const Machine machine = HeadTableMachine();
  const ProgramSystem ps = NewProgramSystem();
  MachineCompute compute(machine);
  ProgramSystemCompute solver(machine, ps);
  std::vector<std::vector<double>> expected;
  for (int step = 0; step < RoundNb; ++step) {
    expected.push_back(Results(compute, solver, step));
  }
  std::mutex turn;
  int agreed = 0;
  RunTogether([&](int) {
    for (int step = 0; step < RoundNb; ++step) {
      const std::lock_guard<std::mutex> mine(turn);
      MachineCompute handle(compute);
      ProgramSystemCompute solverHandle(solver);
      const std::vector<double> results = Results(handle, solverHandle, step);
      const std::vector<double>& wanted = expected[static_cast<std::size_t>(step)];
      agreed += results.size() == wanted.size() &&
                        SameBits(results.data(), wanted.data(), wanted.size(), "the results'")
                    ? 1
                    : 0;
    }
  });
  EXPECT_EQ(agreed, ThreadNb * RoundNb);
}

}  // namespace
}  // namespace Orvo::Testing
