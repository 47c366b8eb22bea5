// Calculators that keep results from call to call against plain ones, bit for bit, in long
// sequences of calls on random machines: what was kept for one call must never show in another.
// Together more than a million and a half calls of each.

#include "property/ChangingMachine.h"
#include "property/Draw.h"
#include "property/KeptPair.h"

#include <gtest/gtest.h>

namespace Orvo::Property {
namespace {

/// How a sequence of calls goes on.
struct Course {
  Flavor flavor = Flavor::Sound;
  int callNb = 0;
  double edgeShare = 0.0;       ///< of axis values and offsets that may be any double
  double changeShare = 0.0;     ///< of calls before which the machine changes
  double thresholdShare = 0.0;  ///< of calls that look for a threshold
};

void Follow(Draw& draw, const Course& course) {
  ChangingMachine machine(draw, course.flavor);
  KeptPair pair(machine);
  pair.DrawScene(draw);
  while (pair.CallNb() < course.callNb) {
    if (draw.Chance(course.changeShare)) {
      machine.Change(draw);
    }
    pair.ChangeScene(draw, course.edgeShare);
    const bool isSame =
        draw.Chance(course.thresholdShare) ? pair.CallAtThreshold(draw) : pair.Call(draw);
    if (!isSame) {
      return;
    }
  }
}

TEST(KeptProperty, SoundMachinesAreComputedAsPlainly) {
  ForCases(15000, [](Draw& draw) { Follow(draw, {Flavor::Sound, 40}); });
}

TEST(KeptProperty, WildMachinesAreComputedAsPlainly) {
  ForCases(8000, [](Draw& draw) { Follow(draw, {Flavor::Wild, 40}); });
}

TEST(KeptProperty, DeepMachinesAreComputedAsPlainly) {
  ForCases(2000, [](Draw& draw) { Follow(draw, {Flavor::Deep, 40}); });
}

TEST(KeptProperty, MachinesThatChangeAreComputedAsPlainly) {
  ForCases(8000, [](Draw& draw) { Follow(draw, {Flavor::Sound, 40, 0.0, 0.1}); });
}

TEST(KeptProperty, WildMachinesThatChangeAreComputedAsPlainly) {
  ForCases(4000, [](Draw& draw) { Follow(draw, {Flavor::Wild, 40, 0.0, 0.1}); });
}

TEST(KeptProperty, AnyNumbersAreComputedAsPlainly) {
  ForCases(6000, [](Draw& draw) {
    draw.SetEdgeShare(draw.Uniform(0.0, 0.1));
    Follow(draw, {draw.Chance(0.7) ? Flavor::Sound : Flavor::Wild, 40, 0.1, 0.02});
  });
}

// Right at the targets where solutions come, go and fall into one.
TEST(KeptProperty, ThresholdsAreThoseOfThePlainComputation) {
  ForCases(6000, [](Draw& draw) { Follow(draw, {Flavor::Sound, 20, 0.0, 0.0, 0.3}); });
}

}  // namespace
}  // namespace Orvo::Property
