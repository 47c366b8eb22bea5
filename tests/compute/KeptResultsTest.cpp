// What a calculator keeps from call to call must never show: after whatever callers may change in
// between, each answer is that of a new calculator that keeps nothing.

#include "PrivateAccess.h"
#include "SmallMachines.h"
#include "compute/MachineComputeImplementation.h"
#include "geometry/FrameKernel.h"
#include "support/SameBits.h"

#include <Orvo/Kin/EntityLink.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/RotariesSolution.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::Entity;
using Kin::EntityLink;
using Kin::KeptResults;
using Kin::Machine;
using Kin::MachineCompute;
using Kin::MachineComputeImplementation;
using Kin::MachinePosition;
using Kin::ProgramSystem;
using Kin::ProgramSystemCompute;
using Kin::RotariesSolution;

constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

// Base 1 with X 2, Y 3, Z 4 (registers 0 to 2), a rotary axis 5 that is tilted (register 3), C 6
// about Z off the origin (register 4) and heads 7 and 8; A 9 about X off the origin (register 5)
// and tables 10 to 12.
Machine SampleMachine() {
  Machine machine;
  AddFixed(machine, -1, TranslationFrame(1, 2, 3));
  AddLinear(machine, 1, AxisX, 0);
  AddLinear(machine, 2, AxisY, 1);
  AddLinear(machine, 3, AxisZ, 2);
  AddRotary(machine, 4, Vector3D(0, 10, 20), Vector3D(0, 0.6, 0.8), 3);
  AddRotary(machine, 5, Vector3D(5, 0, 0), AxisZ, 4);
  AddHead(machine, 6, RotationFrame(AxisX, 30));
  AddHead(machine, 6, TranslationFrame(0, 0, 70));
  AddRotary(machine, 1, Vector3D(0, 7, 8), AxisX, 5);
  AddTable(machine, 9);
  AddTable(machine, 9, TranslationFrame(4, 5, 6));
  AddTable(machine, 1, RotationFrame(AxisY, -20));
  machine.Finish();
  return machine;
}

MachinePosition SamplePosition() {
  MachinePosition pos;
  pos.Alloc(6ULL);
  for (int reg = 0; reg < 6; ++reg) {
    pos[reg] = 10.0 * (reg + 1);
  }
  return pos;
}

/// What to ask.
struct Question {
  MachinePosition pos = SamplePosition();
  int head = 0;
  int table = 0;
  int rotaries[2] = {4, 5};
  int linears[3] = {0, 1, 2};
  Vector3D offset = Vector3D(1, 2, 100);
  Vector3D target = Vector3D(0.36, 0.48, 0.8);
  Vector3D point = Vector3D(300, 200, 100);
};

std::string TextOf(const double* numbers, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    text += " " + (std::isnan(numbers[i]) ? std::string("nan") : HexText(numbers[i]));
  }
  return text + "\n";
}

std::string TextOf(bool result, const MachineCompute& compute) {
  return std::string(result ? "true" : "false") + ", last error " +
         std::to_string(MachineCompute(compute).GetLastError());
}

std::string TextOf(const Matrix43& frame) {
  return " kind " + std::to_string(FrameAccess::Type(frame)) +
         TextOf(FrameAccess::Elements(frame), 16);
}

std::string TextOf(const RotariesSolution& sol) {
  const double angles[] = {sol.Alpha1.GetRadian(), sol.Beta1.GetRadian(), sol.Alpha2.GetRadian(),
                           sol.Beta2.GetRadian()};
  return " " + std::to_string(sol.Count) + " solutions, free register " +
         std::to_string(sol.FreeRegister) + TextOf(angles, 4);
}

// Asks a calculator everything, and tells all that can be seen of the answers.
std::string Answer(MachineCompute& compute, const Question& q) {
  std::string text;
  Matrix43 frame = TranslationFrame(7, 7, 7);
  text += TextOf(compute.ComputeMcsToToolTcs(q.pos, q.head, q.table, q.offset, &frame), compute);
  text += TextOf(frame);
  RotariesSolution sol;
  text += TextOf(compute.ComputeToolIjkTcsToMcsAbc(q.pos, q.head, q.table, q.target, q.rotaries[0],
                                                   q.rotaries[1], &sol),
                 compute);
  text += TextOf(sol);
  Vector3D xyz(7, 7, 7);
  text += TextOf(compute.ComputeToolTcsToMcsXyz(q.pos, q.head, q.table, q.offset, q.linears[0],
                                                q.linears[1], q.linears[2], q.point, &xyz),
                 compute);
  text += TextOf(xyz, 4);
  std::vector<Matrix43> frames;
  text += TextOf(compute.ComputePositionMachine(q.pos, &frames), compute);
  for (const Matrix43& of : frames) {
    text += TextOf(of);
  }
  return text;
}

// The answers of a new calculator that keeps nothing.
std::string PlainAnswer(const Machine& machine, const Question& q) {
  MachineCompute plain(machine);
  KeepNothing(plain);
  return Answer(plain, q);
}

Question WithPosition(const std::vector<double>& values) {
  Question q;
  q.pos.Alloc(static_cast<unsigned long long>(values.size()));
  for (std::size_t i = 0; i < values.size(); ++i) {
    q.pos[static_cast<int>(i)] = values[i];
  }
  return q;
}

TEST(KeptResults, AreUsed) {
  const Machine machine = SampleMachine();
  MachineCompute compute(machine);
  const Question q;
  Answer(compute, q);
  const Kin::Kinematic& kinematic = machine.GetKinematic();
  KeptResults& kept = RecordOf(compute).kept;
  const Entity* const head = kinematic.GetEntityHead(0);
  const Entity* const table = kinematic.GetEntityTable(0);
  const std::size_t size = 6;
  EXPECT_NE(kept.frames.Find({}, size), nullptr);
  EXPECT_NE(kept.tableFromHead.Find({head, table}, size), nullptr);
  EXPECT_NE(kept.rotary.Find({head, table, {4, 5, -1}}, size), nullptr);
  EXPECT_NE(kept.linear.Find({head, table, {0, 1, 2}}, size), nullptr);
  // Not for a position that lacks a register, nor for other registers.
  EXPECT_EQ(kept.rotary.Find({head, table, {4, 5, -1}}, size - 1), nullptr);
  EXPECT_EQ(kept.rotary.Find({head, table, {5, 4, -1}}, size), nullptr);
  EXPECT_EQ(kept.linear.Find({head, table, {0, 2, 1}}, size), nullptr);
  // Nor where nothing is to be kept.
  MachineCompute plain(machine);
  KeepNothing(plain);
  Answer(plain, q);
  EXPECT_EQ(RecordOf(plain).kept.frames.Find({}, size), nullptr);
  // Nor where something was kept before.
  EXPECT_TRUE(kept.AreCurrent(kinematic));
  KeepNothing(compute);
  EXPECT_FALSE(kept.AreCurrent(kinematic));
}

TEST(KeptResults, GiveThePlainAnswersForAllSortsOfValues) {
  const Machine machine = SampleMachine();
  MachineCompute compute(machine);
  const double infinity = std::numeric_limits<double>::infinity();
  const Question questions[] = {
      WithPosition({0, 0, 0, 0, 0, 0}),
      WithPosition({-0.0, 0, -0.0, 0, -0.0, 0}),
      WithPosition({-0.0, 0, -0.0, -0.0, 0, -0.0}),
      WithPosition({1, 2, 3, 4, 5, 6}),
      WithPosition({1, 2, 3, 4, 5, 0}),
      WithPosition({1, 2, 3, 0, 5, 0}),
      WithPosition({1, 2, 3, 1e-300, 5, -5e-324}),
      WithPosition({1, 2, 3, 360, -720, 1e15}),
      WithPosition({1, NotANumber, 3, 4, 5, 6}),
      WithPosition({1, 2, 3, NotANumber, 5, 6}),
      WithPosition({1, 2, 3, 4, 5, NotANumber}),
      WithPosition({infinity, 2, 3, 4, 5, 6}),
      WithPosition({1, 2, 3, -infinity, 5, 6}),
      WithPosition({1, 2, 3, 4, 5, 6}),
  };
  for (const Question& from : questions) {
    for (const Question& to : questions) {
      EXPECT_EQ(Answer(compute, from), PlainAnswer(machine, from));
      EXPECT_EQ(Answer(compute, to), PlainAnswer(machine, to));
    }
  }
}

// A trunnion whose head only travels and whose table stands off the first of the two rotary axes,
// about each pair of X, Y and Z, with identities in between.
TEST(KeptResults, TurnAndTravelAsThePlainComputation) {
  const double infinity = std::numeric_limits<double>::infinity();
  const Vector3D axes[] = {AxisX, AxisY, AxisZ, Vector3D(-1, 0, 0)};
  for (const Vector3D& outer : axes) {
    for (const Vector3D& inner : axes) {
      Machine machine;
      AddFixed(machine, -1, Matrix43());
      AddFixed(machine, 1, TranslationFrame(0, -0.0, -400));
      AddLinear(machine, 2, AxisX, 0);
      AddFixed(machine, 3, Matrix43());
      AddLinear(machine, 4, AxisY, 1);
      AddLinear(machine, 5, AxisZ, 2);
      AddHead(machine, 6, TranslationFrame(0, 12, 600));
      AddFixed(machine, 2, TranslationFrame(35, -20, -0.0));
      AddRotary(machine, 8, Vector3D(0, 0, 55), outer, 3);
      AddRotary(machine, 9, Vector3D(1, -0.5, 0), inner, 4);
      AddTable(machine, 10, TranslationFrame(0, -0.0, 80));
      AddTable(machine, 10);
      ASSERT_TRUE(machine.Finish());
      MachineCompute compute(machine);
      const double values[] = {0.0,  -0.0,     30.0,      -0.0,   180.0, NotANumber,
                               90.0, infinity, -infinity, 5e-324, 0.0,   45.0};
      Question q = WithPosition({1, 2, 3, 4, 5});
      q.rotaries[0] = 3;
      q.rotaries[1] = 4;
      for (int reg = 0; reg < 5; ++reg) {
        for (const double value : values) {
          for (const double other : {0.0, 60.0}) {
            q.pos[reg] = value;
            q.pos[(reg + 1) % 5] = other;
            for (q.table = 0; q.table < 2; ++q.table) {
              ASSERT_EQ(Answer(compute, q), PlainAnswer(machine, q))
                  << reg << " " << value << " " << other << " " << q.table;
            }
          }
        }
        q.pos[reg] = 10.0 * (reg + 1);
      }
    }
  }
}

// Only 0 and -0 together make the one travel that is -0.
TEST(KeptResults, TellZerosApart) {
  Machine machine;
  AddLinear(machine, -1, AxisX, 0)->GetEntityLinkMod()->SetZeroRef(-0.0);
  AddLinear(machine, 1, AxisY, 1);
  AddLinear(machine, 2, AxisZ, 2);
  AddHead(machine, 3);
  AddTable(machine, 3);
  ASSERT_TRUE(machine.Finish());
  MachineCompute compute(machine);
  for (const double zero : {0.0, -0.0, 0.0, -0.0}) {
    std::vector<Matrix43> frames;
    ASSERT_TRUE(compute.ComputePositionMachine(PositionOf({zero, 1, 2}), &frames));
    EXPECT_EQ(std::signbit(frames[1].GetTrans()[0]), std::signbit(zero));
  }
}

// Where the tool stands at the table's origin, the signs of zeros in the values tell how sums were
// formed. The direction of X is reversed, zeros included, as X carries the table.
TEST(KeptResults, SolveForZerosAsThePlainComputation) {
  Matrix43 cycle;
  cycle.SetUVW(AxisY, AxisZ, AxisX);
  Machine machine;
  AddFixed(machine, -1, Matrix43());
  AddLinear(machine, 1, AxisX, 0);
  AddLinear(machine, 1, AxisY, 1);
  AddLinear(machine, 3, AxisZ, 2);
  AddRotary(machine, 4, NullVector, AxisX, 3);
  AddHead(machine, 5);
  AddRotary(machine, 2, NullVector, AxisZ, 4);
  AddTable(machine, 7, cycle);
  AddTable(machine, 7);
  ASSERT_TRUE(machine.Finish());
  MachineCompute compute(machine);
  for (const double angle : {0.0, -0.0, 30.0, 360.0}) {
    for (int signs = 0; signs < 128; ++signs) {
      const auto zero = [signs](int bit) { return (signs >> bit & 1) != 0 ? -0.0 : 0.0; };
      Question q = WithPosition({0, 0, 0, angle, angle});
      q.rotaries[0] = 3;
      q.rotaries[1] = 4;
      q.table = signs >> 6;
      q.offset = Vector3D(zero(0), zero(1), zero(2));
      q.point = Vector3D(zero(3), zero(4), zero(5));
      ASSERT_EQ(Answer(compute, q), PlainAnswer(machine, q)) << angle << " " << signs;
    }
  }
}

// Each register in turn moves alone, there and back.
TEST(KeptResults, FollowEachRegister) {
  const Machine machine = SampleMachine();
  MachineCompute compute(machine);
  for (int reg = 0; reg < 6; ++reg) {
    SCOPED_TRACE(reg);
    Question q;
    const std::string before = Answer(compute, q);
    q.pos[reg] += 1.5;
    const std::string after = Answer(compute, q);
    EXPECT_NE(after, before);
    EXPECT_EQ(after, PlainAnswer(machine, q));
    q.pos[reg] -= 1.5;
    EXPECT_EQ(Answer(compute, q), before);
  }
}

TEST(KeptResults, FollowOffsetTargetAndPoint) {
  const Machine machine = SampleMachine();
  MachineCompute compute(machine);
  Vector3D Question::*const vectors[] = {&Question::offset, &Question::target, &Question::point};
  const Question q;
  const std::string before = Answer(compute, q);
  for (Vector3D Question::*const vector : vectors) {
    for (int i = 0; i < 3; ++i) {
      Question other;
      (other.*vector)[i] += 0.25;
      const std::string after = Answer(compute, other);
      EXPECT_NE(after, before);
      EXPECT_EQ(after, PlainAnswer(machine, other));
      EXPECT_EQ(Answer(compute, q), before);
    }
  }
  // Zeros of both signs are different offsets.
  for (const double zero : {0.0, -0.0, 0.0}) {
    Question other;
    other.offset = Vector3D(zero, zero, zero);
    EXPECT_EQ(Answer(compute, other), PlainAnswer(machine, other));
  }
}

TEST(KeptResults, FollowHeadAndTable) {
  const Machine machine = SampleMachine();
  MachineCompute compute(machine);
  // More pairs than results are kept for, missing ones among them, twice in both orders.
  std::vector<std::string> answers;
  for (int round = 0; round < 4; ++round) {
    for (int i = 0; i < 12; ++i) {
      const int pair = round % 2 == 0 ? i : 11 - i;
      Question q;
      q.head = pair % 3;
      q.table = pair / 3;
      MachineCompute fresh(machine);
      KeepNothing(fresh);
      // The last error stays from one call to the next, so only the rest is compared here.
      Matrix43 frames[2];
      Vector3D xyz[2];
      RotariesSolution sols[2];
      MachineCompute* const both[] = {&compute, &fresh};
      bool results[2][3];
      for (int k = 0; k < 2; ++k) {
        results[k][0] = both[k]->ComputeMcsToToolTcs(q.pos, q.head, q.table, q.offset, &frames[k]);
        results[k][1] = both[k]->ComputeToolTcsToMcsXyz(q.pos, q.head, q.table, q.offset, 0, 1, 2,
                                                        q.point, &xyz[k]);
        results[k][2] =
            both[k]->ComputeToolIjkTcsToMcsAbc(q.pos, q.head, q.table, q.target, 3, 4, &sols[k]);
      }
      for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(results[0][k], results[1][k]) << q.head << " " << q.table;
        EXPECT_EQ(results[0][k], q.head < 2 && q.table < 3);
      }
      EXPECT_EQ(TextOf(frames[0]), TextOf(frames[1])) << q.head << " " << q.table;
      EXPECT_TRUE(SameBits(xyz[0], xyz[1]));
      EXPECT_EQ(TextOf(sols[0]), TextOf(sols[1])) << q.head << " " << q.table;
    }
  }
}

TEST(KeptResults, FollowRegisters) {
  const Machine machine = SampleMachine();
  MachineCompute compute(machine);
  const int rotaries[][2] = {{4, 5}, {5, 4}, {3, 5}, {-1, 5}, {4, -1}, {-1, -1}, {3, 4}, {4, 5}};
  const int linears[][3] = {{0, 1, 2}, {2, 1, 0}, {1, 0, 2}, {0, 2, 1}, {2, 0, 1}, {0, 1, 2}};
  for (int round = 0; round < 2; ++round) {
    for (const auto& r : rotaries) {
      for (const auto& x : linears) {
        Question q;
        std::copy_n(r, 2, q.rotaries);
        std::copy_n(x, 3, q.linears);
        EXPECT_EQ(Answer(compute, q), PlainAnswer(machine, q)) << r[0] << " " << r[1];
      }
    }
  }
}

// The errors come in their order whether or not something is kept, and leave what was kept usable.
TEST(KeptResults, FailAsThePlainComputation) {
  const Machine machine = SampleMachine();
  const Question sound;
  std::vector<Question> questions(9);
  questions[0].pos = MachinePosition();
  questions[1].pos = PositionOf({10, 20, 30, 40, 50});
  questions[2].pos = PositionOf({10, 20});
  questions[3].head = 2;
  questions[4].table = -1;
  questions[5].rotaries[0] = 0;
  questions[6].rotaries[0] = questions[6].rotaries[1];
  questions[7].linears[1] = 4;
  questions[8].rotaries[1] = 6;
  questions[8].linears[2] = 6;
  for (const Question& q : questions) {
    MachineCompute compute(machine);
    EXPECT_EQ(Answer(compute, sound), PlainAnswer(machine, sound));
    EXPECT_EQ(Answer(compute, q), PlainAnswer(machine, q));
    // But for the last error, as before.
    Vector3D xyz[2];
    RotariesSolution sols[2];
    Matrix43 frames[2];
    MachineCompute fresh(machine);
    KeepNothing(fresh);
    MachineCompute* const both[] = {&compute, &fresh};
    for (int k = 0; k < 2; ++k) {
      EXPECT_TRUE(both[k]->ComputeToolTcsToMcsXyz(sound.pos, 0, 0, sound.offset, 0, 1, 2,
                                                  sound.point, &xyz[k]));
      EXPECT_TRUE(
          both[k]->ComputeToolIjkTcsToMcsAbc(sound.pos, 0, 0, sound.target, 4, 5, &sols[k]));
      EXPECT_TRUE(both[k]->ComputeMcsToToolTcs(sound.pos, 0, 0, sound.offset, &frames[k]));
    }
    EXPECT_TRUE(SameBits(xyz[0], xyz[1]));
    EXPECT_EQ(TextOf(sols[0]), TextOf(sols[1]));
    EXPECT_EQ(TextOf(frames[0]), TextOf(frames[1]));
  }
}

TEST(KeptResults, LongerPositionsAndShorterOnesTakeTurns) {
  const Machine machine = SampleMachine();
  MachineCompute compute(machine);
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(Answer(compute, WithPosition({1, 2, 3, 4, 5, 6})),
              PlainAnswer(machine, WithPosition({1, 2, 3, 4, 5, 6})));
    EXPECT_EQ(Answer(compute, WithPosition({1, 2, 3, 4, 5, 7, 8, 9})),
              PlainAnswer(machine, WithPosition({1, 2, 3, 4, 5, 7, 8, 9})));
  }
}

/// Something that a caller does to an element of a finished machine, by the place in the list.
struct Change {
  const char* name;
  int place;
  std::function<void(Entity&)> make;
};

std::vector<Change> Changes() {
  const auto link = [](Entity& e) -> EntityLink& { return *e.GetEntityLinkMod(); };
  Matrix43 projective = TranslationFrame(1, 2, 3);
  static_cast<double*>(projective)[3] = 0.5;
  projective = static_cast<double*>(projective);
  Matrix43 general = TranslationFrame(1, 2, 3);
  static_cast<double*>(general)[0] = 2.0;
  general = static_cast<double*>(general);
  return {
      {"another direction of a linear axis", 1,
       [=](Entity& e) { link(e).SetEntityLinkLinear(Vector3D(0.6, 0.8, 0)); }},
      {"another zero of a linear axis", 2, [=](Entity& e) { link(e).SetZeroRef(12.5); }},
      {"another zero by its slot", 3, [=](Entity& e) { link(e).SetZeroRef(0, -3.5); }},
      {"a principal direction of a tilted axis", 4,
       [=](Entity& e) { link(e).SetEntityLinkRotary(link(e).GetCenter(), AxisY); }},
      {"another center of a tilted axis", 4,
       [=](Entity& e) { link(e).SetEntityLinkRotary(Vector3D(1, 1, 1), link(e).GetDir()); }},
      {"the reversed direction of a principal axis", 5,
       [=](Entity& e) { link(e).SetEntityLinkRotary(link(e).GetCenter(), Vector3D(0, 0, -1)); }},
      {"another center on the table's side", 8,
       [=](Entity& e) { link(e).SetEntityLinkRotary(Vector3D(9, 9, 9), link(e).GetDir()); }},
      {"a tilted direction on the table's side", 8,
       [=](Entity& e) { link(e).SetEntityLinkRotary(NullVector, Vector3D(0.8, 0, 0.6)); }},
      {"a rotary axis that travels", 4, [=](Entity& e) { link(e).SetEntityLinkLinear(AxisX); }},
      {"a linear axis that turns", 1,
       [=](Entity& e) { link(e).SetEntityLinkRotary(NullVector, AxisX); }},
      {"an axis that is fixed", 4,
       [=](Entity& e) { link(e).SetEntityLinkPosition(TranslationFrame(1, 1, 1)); }},
      {"another frame of the base", 0,
       [=](Entity& e) { link(e).SetEntityLinkPosition(RotationFrame(AxisX, 10)); }},
      {"another frame of the head", 6,
       [=](Entity& e) { link(e).SetEntityLinkPosition(RotationFrame(AxisY, 10)); }},
      {"another frame of the table", 9,
       [=](Entity& e) { link(e).SetEntityLinkPosition(RotationFrame(AxisZ, 10)); }},
      {"a frame that is not rigid", 6, [=](Entity& e) { link(e).SetEntityLinkPosition(general); }},
      {"a projective frame", 6, [=](Entity& e) { link(e).SetEntityLinkPosition(projective); }},
      {"an axis that becomes a table's frame", 5,
       [=](Entity& e) { link(e).SetEntityLinkPosition(projective); }},
      {"no kind of link", 4, [](Entity& e) { e.SetEntityLink(EntityLink()); }},
      {"no kind of link by assignment", 8, [=](Entity& e) { link(e) = EntityLink(); }},
      {"another link", 5,
       [](Entity& e) {
         EntityLink other;
         other.SetEntityLinkRotary(Vector3D(1, 2, 3), Vector3D(0, 0.8, 0.6));
         e.SetEntityLink(other);
       }},
      {"another register", 4, [](Entity& e) { e.SetRegister(0); }},
      {"a register beyond the position", 8, [](Entity& e) { e.SetRegister(6); }},
      {"no register", 1, [](Entity& e) { e.SetRegister(-1); }},
      {"an axis that is none", 5, [](Entity& e) { SetType(&e, Kin::EntityTypeTable); }},
      {"a whole other element", 5,
       [](Entity& e) {
         Entity other = e;
         other.GetEntityLinkMod()->SetEntityLinkRotary(Vector3D(3, 2, 1), AxisY);
         const Entity* const parent = e.GetParentEntity();
         e = other;
         SetParentPointer(&e, parent);
       }},
  };
}

TEST(KeptResults, FollowWhatCallersChange) {
  for (const Change& change : Changes()) {
    SCOPED_TRACE(change.name);
    const Machine machine = SampleMachine();
    // One has kept something already when the change comes, and something else after it.
    MachineCompute compute(machine);
    const Question q;
    const std::string before = Answer(compute, q);
    Entity& entity = EntityAt(machine, change.place);
    const EntityLink link = entity.GetEntityLink();
    const Kin::Register reg = entity.GetRegister();
    const Kin::EntityType type = entity.GetEntityType();
    change.make(entity);
    const std::string after = Answer(compute, q);
    EXPECT_EQ(after, PlainAnswer(machine, q));
    EXPECT_NE(after, before);
    const MachineCompute second(compute);
    const auto error = MachineCompute(second).GetLastError();
    // And back.
    entity.SetEntityLink(link);
    entity.SetRegister(reg);
    SetType(&entity, type);
    if (error == Kin::ComputeErrorNone) {
      EXPECT_EQ(Answer(compute, q), before);
    }
    MachineCompute fresh(machine);
    EXPECT_EQ(Answer(fresh, q), before);
  }
}

// Each operation notices by itself.
TEST(KeptResults, EachOperationFollowsAChange) {
  const Question q;
  const auto changed = [] {
    const Machine machine = SampleMachine();
    EntityAt(machine, 5).GetEntityLinkMod()->SetEntityLinkRotary(Vector3D(3, 2, 1), AxisY);
    EntityAt(machine, 1).GetEntityLinkMod()->SetZeroRef(4.0);
    return machine;
  };
  using Operation = std::function<std::string(MachineCompute&)>;
  const Operation operations[] = {
      [&q](MachineCompute& compute) {
        std::vector<Matrix43> frames;
        compute.ComputePositionMachine(q.pos, &frames);
        return TextOf(frames[8]);
      },
      [&q](MachineCompute& compute) {
        Matrix43 frame;
        compute.ComputeMcsToToolTcs(q.pos, 0, 0, q.offset, &frame);
        return TextOf(frame);
      },
      [&q](MachineCompute& compute) {
        RotariesSolution sol;
        compute.ComputeToolIjkTcsToMcsAbc(q.pos, 0, 0, q.target, 4, 5, &sol);
        return TextOf(sol);
      },
      [&q](MachineCompute& compute) {
        Vector3D xyz;
        compute.ComputeToolTcsToMcsXyz(q.pos, 0, 0, q.offset, 0, 1, 2, q.point, &xyz);
        return TextOf(xyz, 4);
      }};
  for (const Operation& operation : operations) {
    const Machine machine = SampleMachine();
    MachineCompute compute(machine);
    const std::string before = operation(compute);
    EntityAt(machine, 5).GetEntityLinkMod()->SetEntityLinkRotary(Vector3D(3, 2, 1), AxisY);
    EntityAt(machine, 1).GetEntityLinkMod()->SetZeroRef(4.0);
    const Machine other = changed();
    MachineCompute fresh(other);
    KeepNothing(fresh);
    const std::string after = operation(compute);
    EXPECT_EQ(after, operation(fresh));
    EXPECT_NE(after, before);
  }
}

TEST(KeptResults, AreSharedByHandles) {
  const Machine machine = SampleMachine();
  MachineCompute compute(machine);
  MachineCompute copy(compute);
  MachineCompute assigned(machine);
  assigned = copy;
  const Question questions[] = {Question(), WithPosition({1, 2, 3, 4, 5, 6}),
                                WithPosition({1, 2, 3, 4, 5, 0})};
  for (int round = 0; round < 2; ++round) {
    for (const Question& q : questions) {
      for (MachineCompute* const handle : {&compute, &copy, &assigned}) {
        EXPECT_EQ(Answer(*handle, q), PlainAnswer(machine, q));
      }
    }
    EntityAt(machine, 5).GetEntityLinkMod()->SetEntityLinkRotary(Vector3D(3, 2, 1), AxisY);
  }
  EXPECT_EQ(&RecordOf(assigned), &RecordOf(compute));
}

TEST(KeptResults, AreEachCalculatorsOwn) {
  const Machine machine = SampleMachine();
  MachineCompute first(machine);
  MachineCompute second(machine);
  const Question a = WithPosition({1, 2, 3, 4, 5, 6});
  const Question b = WithPosition({6, 5, 4, 3, 2, 1});
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(Answer(first, a), PlainAnswer(machine, a));
    EXPECT_EQ(Answer(second, b), PlainAnswer(machine, b));
    // Both notice, whoever is asked first.
    EntityAt(machine, 4).GetEntityLinkMod()->SetZeroRef(round);
    EntityAt(machine, 1).GetEntityLinkMod()->SetZeroRef(round);
  }
}

// The handles of one machine share its elements, so a change by any of them is a change of all.
TEST(KeptResults, FollowChangesThroughOtherHandlesOfTheMachine) {
  const Machine machine = SampleMachine();
  const Machine copy(machine);
  MachineCompute compute(machine);
  MachineCompute ofCopy(copy);
  const Question q;
  const std::string before = Answer(compute, q);
  EXPECT_EQ(Answer(ofCopy, q), before);
  EntityAt(copy, 6).GetEntityLinkMod()->SetEntityLinkPosition(TranslationFrame(1, 0, 0));
  EXPECT_NE(PlainAnswer(machine, q), before);
  EXPECT_EQ(Answer(compute, q), PlainAnswer(machine, q));
  EXPECT_EQ(Answer(ofCopy, q), PlainAnswer(machine, q));
}

TEST(KeptResults, FollowAMachineThatIsFinishedAgain) {
  Machine machine = SampleMachine();
  MachineCompute compute(machine);
  const Question q;
  const std::string before = Answer(compute, q);
  ASSERT_TRUE(machine.Finish());
  EXPECT_EQ(Answer(compute, q), before);
  // Registers are looked up in tables that only finishing fills.
  EntityAt(machine, 1).SetRegister(2);
  EntityAt(machine, 3).SetRegister(0);
  EXPECT_EQ(Answer(compute, q), PlainAnswer(machine, q));
  ASSERT_TRUE(machine.Finish());
  EXPECT_EQ(Answer(compute, q), PlainAnswer(machine, q));
  EXPECT_NE(PlainAnswer(machine, q), before);
}

// Which element is a head, and in which order, is settled by finishing.
TEST(KeptResults, FollowHeadsThatTradePlaces) {
  Machine machine = SampleMachine();
  MachineCompute compute(machine);
  Matrix43 frames[2];
  const Question q;
  ASSERT_TRUE(compute.ComputeMcsToToolTcs(q.pos, 0, 0, q.offset, &frames[0]));
  SetType(&EntityAt(machine, 6), Kin::EntityTypeAxis);
  ASSERT_TRUE(machine.Finish());
  ASSERT_TRUE(compute.ComputeMcsToToolTcs(q.pos, 0, 0, q.offset, &frames[0]));
  MachineCompute plain(machine);
  KeepNothing(plain);
  ASSERT_TRUE(plain.ComputeMcsToToolTcs(q.pos, 0, 0, q.offset, &frames[1]));
  EXPECT_EQ(TextOf(frames[0]), TextOf(frames[1]));
}

// What stood in the caller's frames before shows where a plain computation lets it show.
TEST(KeptResults, LeaveFramesAsThePlainComputationDoes) {
  Machine machine;
  AddFixed(machine, -1);
  AddLinear(machine, 1, AxisX, 0);
  AddLinear(machine, 2, AxisY, 1);
  AddLinear(machine, 3, AxisZ, 2);
  AddHead(machine, 4);
  AddTable(machine, 1);
  ASSERT_TRUE(machine.Finish());
  MachineCompute kept(machine);
  MachineCompute plain(machine);
  KeepNothing(plain);
  const MachinePosition pos = PositionOf({1, 2, 3});
  for (int round = 0; round < 3; ++round) {
    std::vector<Matrix43> frames[2];
    for (std::vector<Matrix43>& of : frames) {
      of.resize(static_cast<std::size_t>(machine.GetEntityIdMax().GetVal()) + 1);
      for (Matrix43& frame : of) {
        static_cast<double*>(frame)[10] = 7.0;
      }
    }
    ASSERT_TRUE(kept.ComputePositionMachine(pos, &frames[0]));
    ASSERT_TRUE(plain.ComputePositionMachine(pos, &frames[1]));
    ASSERT_EQ(frames[0].size(), frames[1].size());
    for (std::size_t i = 0; i < frames[0].size(); ++i) {
      EXPECT_EQ(TextOf(frames[0][i]), TextOf(frames[1][i])) << "round " << round << ", slot " << i;
    }
  }
}

// The outputs of a call may be its inputs.
TEST(KeptResults, TakeAnOutputThatIsAnInput) {
  const Machine machine = SampleMachine();
  MachineCompute compute(machine);
  MachineCompute plain(machine);
  KeepNothing(plain);
  for (int round = 0; round < 2; ++round) {
    const Question q;
    Vector3D xyz[2] = {q.point, q.point};
    MachineCompute* const both[] = {&compute, &plain};
    for (int k = 0; k < 2; ++k) {
      EXPECT_TRUE(both[k]->ComputeToolTcsToMcsXyz(q.pos, 0, 0, xyz[k], 0, 1, 2, xyz[k], &xyz[k]));
    }
    EXPECT_TRUE(SameBits(xyz[0], xyz[1]));
  }
}

TEST(KeptResults, ProgramSystemFollowsLimitsThatChange) {
  Machine machine = TableTableMachine();
  ProgramSystem ps;
  ps.SetHeadIndex(0);
  ps.SetTableIndex(0);
  ps.SetMainLinear(0, 1, 2);
  ps.SetMainRotary(3, 4);
  ps.SetRotariesCompute(Kin::RotariesComputeShortestWay);
  ProgramSystemCompute compute(machine, ps);
  const MachinePosition pos = PositionOf({0, 0, 0, 10, 20});
  const Vector3D target(0.36, 0.48, 0.8);
  const auto answer = [&](ProgramSystemCompute& by) {
    RotariesSolution sol;
    EXPECT_TRUE(by.ComputeToolIjkTcsToMcsAbc(pos, target, &sol));
    return TextOf(sol);
  };
  const auto expectFollows = [&](const std::string& before) {
    ProgramSystemCompute fresh(machine, ps);
    const std::string after = answer(compute);
    EXPECT_EQ(after, answer(fresh));
    EXPECT_NE(after, before);
    return after;
  };
  Entity& a = EntityAt(machine, 5);
  Entity& c = EntityAt(machine, 6);
  a.SetCheckRangeAxis(false);
  c.SetCheckRangeAxis(false);
  std::string last = answer(compute);
  a.SetRange(0, 180);
  a.SetCheckRangeAxis(true);
  last = expectFollows(last);
  a.SetRange(-180, 0);
  last = expectFollows(last);
  a.SetRangeMax(180);
  last = expectFollows(last);
  a.SetRangeMin(100);
  last = expectFollows(last);
  a.SetCheckRangeAxis(false);
  last = expectFollows(last);
  c.SetCheckRangeAxis(true);
  c.GetEntityLinkMod()->SetRangeMin(0, 1000);
  c.GetEntityLinkMod()->SetRangeMax(0, 1360);
  last = expectFollows(last);
  // The register names another element after finishing; the list is looked up anew.
  a.SetRegister(4);
  c.SetRegister(3);
  ASSERT_TRUE(machine.Finish());
  expectFollows(last);
}

}  // namespace
}  // namespace Orvo::Testing
