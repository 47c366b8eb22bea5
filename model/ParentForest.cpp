#include "model/ParentForest.h"

#include <algorithm>
#include <cstddef>

namespace Orvo::Kin {

namespace {

constexpr int Unseen = -1;

int& At(std::vector<int>& values, int place) { return values[static_cast<std::size_t>(place)]; }

int At(const std::vector<int>& values, int place) {
  return values[static_cast<std::size_t>(place)];
}

}  // namespace

// Every element is marked with the walk that first met it. A walk that meets its own mark has found
// a cycle; the last of its elements in order is the one that would have closed it.
bool CutParentCycles(std::vector<int>* parents, std::vector<int>* marks) {
  bool found = false;
  std::fill(marks->begin(), marks->end(), Unseen);
  const int count = static_cast<int>(parents->size());
  for (int walk = 0; walk < count; ++walk) {
    int place = walk;
    while (place != NoPlace && At(*marks, place) == Unseen) {
      At(*marks, place) = walk;
      place = At(*parents, place);
    }
    if (place == NoPlace || At(*marks, place) != walk) {
      continue;
    }
    found = true;
    int last = place;
    for (int next = At(*parents, place); next != place; next = At(*parents, next)) {
      last = std::max(last, next);
    }
    At(*parents, last) = NoPlace;
  }
  return found;
}

// Each walk goes up to the first element whose level is known, and once more to set the levels of
// those it passed.
void CountAncestors(const std::vector<int>& parents, std::vector<int>* levels) {
  std::fill(levels->begin(), levels->end(), Unseen);
  const int count = static_cast<int>(parents.size());
  for (int start = 0; start < count; ++start) {
    int level = -1;
    int place = start;
    while (place != NoPlace && At(*levels, place) == Unseen) {
      ++level;
      place = At(parents, place);
    }
    if (place != NoPlace) {
      level += At(*levels, place) + 1;
    }
    for (place = start; place != NoPlace && At(*levels, place) == Unseen; --level) {
      At(*levels, place) = level;
      place = At(parents, place);
    }
  }
}

}  // namespace Orvo::Kin
