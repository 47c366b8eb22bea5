// Files on several threads at once. ThreadSanitizer runs this test as well: passing without it
// proves only that the results are right.

#include "support/TemporaryFolder.h"

#include <Orvo/Orvo.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <thread>
#include <vector>

namespace Orvo::Testing {
namespace {

using namespace Orvo::Kin;

constexpr std::size_t ThreadCount = 4;
constexpr int RepetitionCount = 10;

void Build(Machine* machine) {
  const EntityId x = machine->AddEntityLinear(L"X", -1, AxisX)->GetEntityId();
  const EntityId y = machine->AddEntityLinear(L"Y", x, AxisY)->GetEntityId();
  Entity* z = machine->AddEntityLinear(L"Z", y, AxisZ);
  z->SetRange(-0.125, 1234.5);
  z->AllocEntityMesh()->AddMesh(new Mesh, 7);
  machine->AddEntityHead(L"head", z->GetEntityId(), Matrix43());
  machine->AddEntityTable(L"table", -1, Matrix43());
  machine->Finish();
}

// Writes a machine with an empty mesh file, reads both, and tells whether all of it came back. An
// empty mesh can't be read, so the package as a whole fails after the machine.
bool GoesToAFileAndBack(const std::wstring& name) {
  Machine machine;
  Build(&machine);
  Machine read;
  if (!machine.WriteMachineWithMeshStl(name) || read.ReadMachineWithMeshStl(name)) {
    return false;
  }
  const Entity* z = read.GetKinematic().GetEntity(EntityId(3));
  return read.IsFinished() && z != nullptr && z->GetEntityName() == L"Z" &&
         z->GetRangeMin() == -0.125 && z->GetRangeMax() == 1234.5 &&
         z->GetEntityMesh() != nullptr && z->GetEntityMesh()->GetMeshColor(0) == 7;
}

TEST(InterfaceThreads, SeparateMachinesGoToFilesAndBackAtTheSameTime) {
  const TemporaryFolder folder;
  std::vector<int> good(ThreadCount);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < ThreadCount; ++i) {
    threads.emplace_back([&folder, &good, i] {
      for (int repetition = 0; repetition < RepetitionCount; ++repetition) {
        const std::wstring name = folder.Wide("machine " + std::to_string(i) + ".xml");
        good[i] += GoesToAFileAndBack(name) ? 1 : 0;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  for (const int count : good) {
    EXPECT_EQ(count, RepetitionCount);
  }
}

}  // namespace
}  // namespace Orvo::Testing
