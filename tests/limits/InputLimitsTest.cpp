#include "ChildRun.h"
#include "HostileInput.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Machine.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <new>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using Ending = HostileInput::Ending;

// What a process needs for itself, and what it may take for each byte that it reads: the parser
// makes up to 60 bytes of some of them.
constexpr std::size_t OwnAddresses = 512U << 20U;
constexpr std::size_t OwnMemory = 64U << 20U;
constexpr std::size_t MemoryPerByte = 100;

constexpr int FinishedBit = 128;

std::size_t BytesIn(const TemporaryFolder& folder) {
  std::size_t bytes = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
    bytes += static_cast<std::size_t>(entry.file_size());
  }
  return bytes;
}

// Every input ends as it should, in memory and addresses that its bytes explain.
TEST(InputLimits, HoldForEveryHostileInput) {
  for (const HostileInput& input : HostileInputs(0.03)) {
    SCOPED_TRACE(input.name);
    const TemporaryFolder folder;
    input.make(folder);
    const std::size_t bytes = BytesIn(folder);
    const ChildRun run = RunInChild(
        [&] {
          bool isFinished = false;
          const Ending ending = Read(input, folder, [&isFinished](Kin::Machine& machine) {
            isFinished = machine.IsFinished();
          });
          return static_cast<int>(ending) + (isFinished ? FinishedBit : 0);
        },
        OwnAddresses + MemoryPerByte * bytes);
    ASSERT_TRUE(run.isEnded) << "signal " << run.result;
    const auto ending = static_cast<Ending>(run.result & ~FinishedBit);
    EXPECT_NE(std::find(input.endings.begin(), input.endings.end(), ending), input.endings.end())
        << Word(ending);
    if (ending != Ending::BadAlloc) {
      EXPECT_EQ((run.result & FinishedBit) != 0, input.isFinished);
    }
    EXPECT_LT(run.peakBytes, OwnMemory + MemoryPerByte * bytes) << bytes << " bytes";
  }
}

// Where even the addresses of a lookup are refused, nothing has changed.
TEST(InputLimits, FinishWithoutAddressesLeavesTheMachineAsItWas) {
  const ChildRun run = RunInChild(
      [] {
        Kin::Machine machine;
        Kin::Entity* const element = machine.AddEntityStatic(L"element", -1);
        machine.Finish();
        element->SetRegister(16777215);
        try {
          machine.Finish();
          return 1;
        } catch (const std::bad_alloc&) {
        }
        if (machine.GetRegisterNb() != 1 ||
            machine.GetKinematic().GetEntity(Kin::EntityId(1)) != element) {
          return 2;
        }
        element->SetRegister(5);
        machine.Finish();
        return machine.GetKinematic().GetEntity(Kin::Register(5)) == element ? 0 : 3;
      },
      120U << 20U);
  EXPECT_TRUE(run.isEnded);
  EXPECT_EQ(run.result, 0);
}

}  // namespace
}  // namespace Orvo::Testing
