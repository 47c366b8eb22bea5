#include "ChildRun.h"
#include "HostileInput.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
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

}  // namespace
}  // namespace Orvo::Testing
