// What callers may do on several threads at once. ThreadSanitizer runs these tests as well: a test
// that passes without it proves only that the results are right.

#include "support/SameBits.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Orvo.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace Orvo::Testing {
namespace {

using namespace Orvo::Kin;

constexpr std::size_t ThreadCount = 4;
constexpr int PointCount = 200;

// Runs a function on several threads at once; each gets its number.
void RunOnThreads(const std::function<void(std::size_t)>& function) {
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < ThreadCount; ++i) {
    threads.emplace_back(function, i);
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

EntityId Axis(Entity* entity, int reg, double limit) {
  entity->SetRegister(reg);
  entity->SetRange(-limit, limit);
  return entity->GetEntityId();
}

// Linear axes that carry the head; a table that turns about Z on a cradle that turns about X.
void Build(Machine* machine) {
  const EntityId bed = machine->AddEntityStatic(L"bed", -1)->GetEntityId();
  const EntityId x = Axis(machine->AddEntityLinear(L"X", bed, AxisX), 0, 500.0);
  const EntityId y = Axis(machine->AddEntityLinear(L"Y", x, AxisY), 1, 400.0);
  const EntityId z = Axis(machine->AddEntityLinear(L"Z", y, AxisZ), 2, 300.0);
  machine->AddEntityHead(L"head", z, Matrix43());
  const EntityId a =
      Axis(machine->AddEntityRotary(L"A", bed, Vector3D(0.0, 3.0, 5.0), AxisX), 3, 120.0);
  const EntityId c = Axis(machine->AddEntityRotary(L"C", a, NullVector, AxisZ), 4, 360.0);
  machine->AddEntityTable(L"table", c, Matrix43());
  machine->GetCollisionCheckMod().SetMachineMachine(2, 7, true);
  ASSERT_TRUE(machine->Finish());
}

// Solves a path of tool directions on a cone; all axis values, one after the other.
std::vector<double> SolvePath(const Machine& machine, const ProgramSystem& system) {
  std::vector<double> values;
  ProgramSystemCompute compute(machine, system);
  MachineCompute forward(machine);
  MachinePosition position;
  machine.Alloc(&position);
  std::vector<Matrix43> frames;
  for (int i = 0; i < PointCount; ++i) {
    const Angle turn(i * 0.1);
    const Vector3D dirInTable(0.3 * turn.Cos(), 0.3 * turn.Sin(), 0.9);
    RotariesSolution solution;
    if (!compute.ComputeToolIjkTcsToMcsAbc(position, dirInTable, &solution) ||
        solution.Count == 0) {
      return {};
    }
    position[3] = solution.Alpha1.GetDegre();
    position[4] = solution.Beta1.GetDegre();
    Vector3D xyz;
    if (!compute.ComputeToolTcsToMcsXyz(position, Vector3D(0.0, 0.0, 50.0), dirInTable, &xyz) ||
        !forward.ComputePositionMachine(position, &frames)) {
      return {};
    }
    values.insert(values.end(), {position[3], position[4], xyz[0], xyz[1], xyz[2],
                                 frames.back().GetTrans()[0], frames.back().GetU()[1]});
  }
  return values;
}

TEST(InterfaceThreads, SeparateCalculatorsOfOneMachineRunAtTheSameTime) {
  Machine machine;
  Build(&machine);
  const ProgramSystem& system = *machine.GetProgramSystem(0);
  const std::vector<double> alone = SolvePath(machine, system);
  ASSERT_EQ(alone.size(), 7U * PointCount);
  std::vector<std::vector<double>> results(ThreadCount);
  RunOnThreads([&](std::size_t i) { results[i] = SolvePath(machine, system); });
  for (const std::vector<double>& result : results) {
    ASSERT_EQ(result.size(), alone.size());
    EXPECT_TRUE(SameBits(result.data(), alone.data(), alone.size(), "the path's"));
  }
}

TEST(InterfaceThreads, AFinishedMachineIsReadAndCopied) {
  Machine machine;
  Build(&machine);
  std::vector<std::size_t> found(ThreadCount);
  RunOnThreads([&](std::size_t i) {
    for (int repetition = 0; repetition < 100; ++repetition) {
      const Machine copy(machine);
      const Kinematic kinematic(copy.GetKinematic());
      const CollisionCheck check(copy.GetCollisionCheck());
      const Entity* table = kinematic.GetEntityTable(0);
      const bool isRight = table != nullptr && table->GetLevel() == 3 &&
                           table->GetParentEntity() == kinematic.GetEntity(Register(4)) &&
                           table->GetEntityName() == L"table" && check.GetMachineMachine(7, 2) &&
                           copy.GetListProgramSystem().size() == 1;
      found[i] += isRight ? 1U : 0U;
    }
  });
  for (const std::size_t count : found) {
    EXPECT_EQ(count, 100U);
  }
}

TEST(InterfaceThreads, SeparateMachinesGoToFilesAndBack) {
  const TemporaryFolder folder;
  std::vector<int> finished(ThreadCount);
  RunOnThreads([&](std::size_t i) {
    const std::string name = "machine " + std::to_string(i) + ".xml";
    for (int repetition = 0; repetition < 10; ++repetition) {
      Machine machine;
      Build(&machine);
      Machine read;
      if (machine.WriteMachineWithMeshStl(folder.Wide(name)) &&
          read.ReadMachineWithMeshStl(folder.Wide(name)) && read.IsFinished() &&
          read.GetKinematic().GetEntity(Register(3))->GetEntityLink().GetCenter()[2] == 5.0) {
        ++finished[i];
      }
    }
  });
  for (const int count : finished) {
    EXPECT_EQ(count, 10);
  }
}

}  // namespace
}  // namespace Orvo::Testing
