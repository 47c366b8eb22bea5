#include "InputFile.h"
#include "MachineGrammar.h"
#include "MachineReading.h"
#include "MachineText.h"
#include "Mutator.h"

#include <Orvo/Kin/Machine.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace Orvo::Fuzz {
namespace {

// In place of a fuzzer's own: turns the first byte over and appends one where there is room.
std::size_t FlipAndAppend(std::uint8_t* data, std::size_t size, std::size_t maxSize) {
  if (size > 0) {
    data[0] = static_cast<std::uint8_t>(data[0] ^ 0xFFU);
  }
  if (size < maxSize) {
    data[size] = 'x';
    ++size;
  }
  return size;
}

using Mutation = std::size_t (*)(std::uint8_t*, std::size_t, std::size_t, std::uint64_t,
                                 ByteMutator);

// Runs a mutation in a buffer of exactly the largest size, so that a sanitizer sees what is beyond.
std::string Mutated(Mutation mutation, const std::string& input, std::size_t maxSize,
                    std::uint64_t seed) {
  std::vector<std::uint8_t> buffer(input.begin(), input.end());
  buffer.resize(maxSize);
  buffer.shrink_to_fit();
  const std::size_t size = mutation(buffer.data(), input.size(), maxSize, seed, FlipAndAppend);
  EXPECT_LE(size, maxSize) << "seed " << seed;
  buffer.resize(std::min(size, maxSize));
  return std::string(buffer.begin(), buffer.end());
}

std::string MachineOf(std::uint64_t seed) {
  Random random(seed);
  return PrintText(AnyMachine(random));
}

std::string StlOf(std::size_t recordNb) {
  std::string bytes(84 + 50 * recordNb, '\x01');
  bytes.replace(80, 4, {static_cast<char>(recordNb), '\0', '\0', '\0'});
  return bytes;
}

TEST(MachineText, PrintsWhatItParsed) {
  for (const char* const text :
       {"", "text", "<a/>", "<a></a>", "<a b=\"c\" d='e'>f<g/>h</a>", "<?x?><!DOCTYPE y><a/>\n",
        "<a><!-- <b> --></a>", "<a><![CDATA[<b>]]></a>", "<a>1</a><a>2</a>"}) {
    TextNode root;
    EXPECT_TRUE(ParseText(text, &root)) << text;
    const std::string expected = std::string(text) == "<a></a>" ? "<a/>" : text;
    EXPECT_EQ(PrintText(root), expected);
  }
}

TEST(MachineText, RefusesWhatIsNotClosed) {
  for (const char* const text :
       {"<a>", "</a>", "<a></b>", "<a", "<a b>", "<a b=c/>", "<a b=\"/>", "<>", "<a/", "<a></a"}) {
    TextNode root;
    EXPECT_FALSE(ParseText(text, &root)) << text;
  }
}

TEST(MachineText, RefusesMoreLevelsThanItTakes) {
  for (const std::size_t depth : {LargestDepth, LargestDepth + 1}) {
    std::string text;
    for (std::size_t i = 0; i < depth; ++i) {
      text += "<a>";
    }
    for (std::size_t i = 0; i < depth; ++i) {
      text += "</a>";
    }
    TextNode root;
    EXPECT_EQ(ParseText(text, &root), depth == LargestDepth);
  }
}

TEST(MachineGrammar, DrawsMachinesThatAreRead) {
  const InputFile file("drawn.xml");
  int readNb = 0;
  int validNb = 0;
  for (std::uint64_t seed = 0; seed < 400; ++seed) {
    file.Write(MachineOf(seed));
    Kin::Machine machine;
    if (ReadNewMachine(&machine, file.Path()) == ReadOutcome::Read) {
      ++readNb;
      validNb += machine.IsFinished() ? 1 : 0;
    }
  }
  EXPECT_GE(readNb, 240);
  EXPECT_GE(validNb, 200);
}

TEST(MachineMutator, FollowsFromItsSeed) {
  const std::string machine = MachineOf(1);
  int differentNb = 0;
  for (std::uint64_t seed = 0; seed < 300; ++seed) {
    const std::string once = Mutated(MutateMachineInput, machine, 16384, seed);
    EXPECT_EQ(once, Mutated(MutateMachineInput, machine, 16384, seed)) << "seed " << seed;
    differentNb += once == machine ? 0 : 1;
  }
  EXPECT_GE(differentNb, 200);
}

TEST(MachineMutator, KeepsToTheRoomThatThereIs) {
  const std::string machine = MachineOf(2);
  for (const std::size_t room : {machine.size(), machine.size() + 1, machine.size() + 50}) {
    for (std::uint64_t seed = 0; seed < 300; ++seed) {
      Mutated(MutateMachineInput, machine, room, seed);
      Mutated(MutateMachineInput, std::string(room, '\0'), room, seed);
    }
  }
  for (std::uint64_t seed = 0; seed < 300; ++seed) {
    Mutated(MutateMachineInput, "", 1, seed);
    Mutated(MutateMachineInput, "<", 1, seed);
    Mutated(MutateMachineInput, std::string(100000, '<'), 100000, seed);
  }
}

TEST(MachineMutator, LeavesMostMachinesReadable) {
  const InputFile file("mutated.xml");
  int readNb = 0;
  for (std::uint64_t seed = 0; seed < 400; ++seed) {
    std::string machine = MachineOf(seed);
    for (std::uint64_t step = 0; step < 3; ++step) {
      machine = Mutated(MutateMachineInput, machine, 16384, 1000 * seed + step);
    }
    file.Write(machine);
    Kin::Machine read;
    readNb += ReadNewMachine(&read, file.Path()) == ReadOutcome::Read ? 1 : 0;
  }
  EXPECT_GE(readNb, 120) << readNb;
  EXPECT_LE(readNb, 360) << "what can't be read must be tried too";
}

TEST(MachineMutator, ChangesTheTailWithoutTheText) {
  const std::string machine = MachineOf(3);
  const std::string input = machine + '\0' + "request";
  int tailNb = 0;
  for (std::uint64_t seed = 0; seed < 300; ++seed) {
    const std::string changed = Mutated(MutateMachineInput, input, 16384, seed);
    const std::size_t end = changed.find('\0');
    if (changed.substr(0, end) == machine && changed != input) {
      ++tailNb;
    }
  }
  EXPECT_GE(tailNb, 50);
}

TEST(MachineCrossing, TakesAnElementFromTheOtherMachine) {
  const std::string first = "<Machine><Name>one</Name></Machine>";
  const std::string second = "<Machine><Name>two</Name></Machine>";
  int takenNb = 0;
  for (std::uint64_t seed = 0; seed < 100; ++seed) {
    std::vector<std::uint8_t> out(200);
    const auto* const data1 = reinterpret_cast<const std::uint8_t*>(first.data());
    const auto* const data2 = reinterpret_cast<const std::uint8_t*>(second.data());
    const std::size_t size =
        CrossMachineInputs(data1, first.size(), data2, second.size(), out.data(), out.size(), seed);
    ASSERT_LE(size, out.size());
    const std::string crossed(out.begin(), out.begin() + static_cast<std::ptrdiff_t>(size));
    takenNb += crossed.find("two") != std::string::npos ? 1 : 0;
    EXPECT_LE(CrossMachineInputs(data1, first.size(), data2, second.size(), out.data(), 7, seed),
              7U);
  }
  EXPECT_EQ(takenNb, 100);
}

TEST(StlMutator, FollowsFromItsSeedWithinTheRoomThatThereIs) {
  int differentNb = 0;
  for (std::uint64_t seed = 0; seed < 500; ++seed) {
    for (const std::size_t recordNb : {0U, 1U, 5U}) {
      const std::string input = StlOf(recordNb);
      for (const std::size_t room : {input.size(), input.size() + 60, input.size() + 70000}) {
        const std::string once = Mutated(MutateStl, input, room, seed);
        EXPECT_EQ(once, Mutated(MutateStl, input, room, seed));
        differentNb += once == input ? 0 : 1;
      }
    }
    Mutated(MutateStl, "", 1, seed);
    Mutated(MutateStl, "stl", 50, seed);
  }
  EXPECT_GE(differentNb, 3000);
}

}  // namespace
}  // namespace Orvo::Fuzz
