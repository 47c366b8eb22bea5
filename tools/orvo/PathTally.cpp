#include "PathTally.h"

#include "SolvedRow.h"

namespace OrvoTool {

void PathTally::Add(const Orvo::Path::SolvedPoint& point) {
  if (!point.isSolved) {
    ++(IsOnlyOutOfRange(point) ? outOfRangeNb : unreachableNb);
  }
  for (const Orvo::Path::Diagnosis& diagnosis : point.diagnoses) {
    if (first.count(diagnosis.GetCode()) == 0) {
      first.emplace(diagnosis.GetCode(), diagnosis);
    }
  }
}

}  // namespace OrvoTool
