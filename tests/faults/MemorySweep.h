#pragma once

#include "support/CountedMemory.h"
#include "support/FaultReport.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <utility>

namespace Orvo::Testing {

/// Makes a call and tells how it ended.
/// @param call  returns whether it did what it is for
template <typename Call>
FaultEnding EndingOf(Call call) {
  try {
    return call() ? FaultEnding::Completed : FaultEnding::Failed;
  } catch (const std::bad_alloc&) {
    return FaultEnding::Threw;
  }
}

/// What an operation leaves of its subject when memory fails.
enum class Leaves {
  Unchanged,   ///< what it was before
  Repeatable,  ///< something on which the operation gives what it gives undisturbed
  Usable       ///< something that can be looked at, and on which the operation succeeds
};

/// Carries out an operation again and again, each time on a new subject, with its first request for
/// memory refused, then its second, until no request is left to refuse; once with that request
/// refused alone, and once with all after it.
///
/// Each time the operation throws std::bad_alloc, or fails, or gives what it gives undisturbed. The
/// subject is then as `leaves` says, the operation succeeds on it, and nothing of it is left in
/// memory when it is gone.
///
/// @param name      of the operation, in the report
/// @param leaves    what a failure leaves
/// @param make      makes a subject, in a pointer that owns it
/// @param operate   carries the operation out on the subject; true where it did
/// @param describe  tells as text what there is to see of a subject
/// @param loss      bytes in one block that may be left in memory all the same
/// @return how many requests the operation makes
template <typename Make, typename Operate, typename Describe>
std::size_t RefuseEachRequest(const std::string& name, Leaves leaves, Make make, Operate operate,
                              Describe describe, std::size_t loss = 0) {
  std::string before;
  std::string after;
  {
    auto subject = make();
    before = describe(*subject);
    EXPECT_TRUE(operate(*subject)) << name;
    after = describe(*subject);
  }
  std::size_t requestNb = 0;
  for (const bool areAllRefused : {false, true}) {
    for (std::size_t place = 0;; ++place) {
      SCOPED_TRACE(testing::Message()
                   << name << ", request " << place << (areAllRefused ? " and all after it" : ""));
      const LiveMemory memory = GetLiveMemory();
      FaultEnding ending = FaultEnding::Completed;
      bool wasMade = false;
      {
        auto subject = make();
        if (areAllRefused) {
          RefuseAllocationsFrom(place);
        } else {
          RefuseAllocation(place);
        }
        ending = EndingOf([&operate, &subject] { return operate(*subject); });
        wasMade = AllowAllocations();
        const std::string left = describe(*subject);
        if (ending == FaultEnding::Completed) {
          EXPECT_EQ(left, after);
        } else {
          EXPECT_TRUE(wasMade) << "it failed, and yet nothing was refused";
          if (leaves == Leaves::Unchanged) {
            EXPECT_EQ(left, before);
          }
          EXPECT_TRUE(operate(*subject)) << "the second time";
          if (leaves != Leaves::Usable) {
            EXPECT_EQ(describe(*subject), after);
          }
        }
      }
      const LiveMemory memoryAfter = GetLiveMemory();
      EXPECT_LE(memoryAfter.blockNb, memory.blockNb + (loss == 0 ? 0 : 1));
      EXPECT_LE(memoryAfter.bytes, memory.bytes + loss) << "bytes are left in memory";
      if (!wasMade) {
        requestNb = place;
        break;
      }
      CountFault(name, areAllRefused ? "memory: a request and all after it" : "memory: one request",
                 ending);
      if (testing::Test::HasFailure()) {
        return place;
      }
    }
  }
  EXPECT_GT(requestNb, 0U) << name << " asks for no memory";
  return requestNb;
}

}  // namespace Orvo::Testing
