// Machine files against the plain twin: every byte that is written, and every value that is read.

#include "property/Draw.h"
#include "property/MachineCompare.h"
#include "property/RandomMachine.h"
#include "property/TemporaryFile.h"
#include "property/reference/MachineText.h"

#include <Orvo/Kin/Machine.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace Orvo::Property {
namespace {

// Writes a machine and returns the bytes.
std::string Written(Kin::Machine& machine) {
  const TemporaryFile file;
  EXPECT_TRUE(machine.WriteXML(file.Path()));
  return file.Read();
}

TEST(FileProperty, WritesTheBytesThatTheTwinWrites) {
  ForCases(5000, [](Draw& draw) {
    MachinePair pair(AnyPlan(draw));
    std::string expected;
    ASSERT_TRUE(Reference::WriteText(pair.twin, &expected));
    EXPECT_EQ(Written(pair.machine), expected);
  });
}

TEST(FileProperty, ReadsWhatItWroteAsTheTwinDoes) {
  ForCases(3000, [](Draw& draw) {
    MachinePair pair(AnyPlan(draw));
    const TemporaryFile file;
    ASSERT_TRUE(pair.machine.WriteXML(file.Path()));
    Kin::Machine machine;
    Reference::Machine twin;
    // Reading into a machine that holds something appends to it, finished or not.
    const int rounds = draw.Chance(0.2) ? 2 : 1;
    for (int round = 0; round < rounds; ++round) {
      EXPECT_TRUE(machine.ReadXML(file.Path()));
      Reference::Append(pair.twin, &twin);
    }
    ExpectSameMachine(machine, twin);
    std::string expected;
    ASSERT_TRUE(Reference::WriteText(twin, &expected));
    EXPECT_EQ(Written(machine), expected);
    if (::testing::Test::HasFailure()) {
      ADD_FAILURE() << pair.Text();
    }
  });
}

// The first writing rounds, drops names of blanks alone and pairs without element, and the reading
// makes directions unit. From the second writing on nothing changes any more.
TEST(FileProperty, SettlesWithTheSecondWriting) {
  ForCases(3000, [](Draw& draw) {
    MachinePair pair(AnyPlan(draw));
    const TemporaryFile first(Written(pair.machine));
    Kin::Machine machine;
    ASSERT_TRUE(machine.ReadXML(first.Path()));
    const std::string second = Written(machine);
    const TemporaryFile file(second);
    Kin::Machine again;
    ASSERT_TRUE(again.ReadXML(file.Path()));
    EXPECT_EQ(Written(again), second);
  });
}

TEST(FileProperty, RefusesAPolicyWithoutWord) {
  ForCases(500, [](Draw& draw) {
    MachinePlan plan = SoundPlan(draw);
    plan.fromFile = false;
    Reference::Program program;
    program.policy = draw.Chance(0.5) ? draw.Int(3, 100) : draw.Int(-100, -1);
    plan.programs.push_back(program);
    MachinePair pair(plan);
    const TemporaryFile file;
    EXPECT_FALSE(pair.machine.WriteXML(file.Path())) << program.policy;
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(file.Path())));
  });
}

}  // namespace
}  // namespace Orvo::Property
