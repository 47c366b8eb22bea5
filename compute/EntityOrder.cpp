#include "compute/EntityOrder.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <queue>
#include <utility>

namespace Orvo::Kin {

namespace {

// An element that waits for its parent: the parent's id and the element's place in the list.
using Waiting = std::pair<int, std::size_t>;

}  // namespace

// Simulates the sweeps by events. An element becomes ready when its parent's id is taken: for the
// sweep under way where it stands behind the parent in the list, else for the next one.
std::vector<const Entity*> OrderParentsFirst(const std::list<Entity>& entities) {
  std::vector<const Entity*> byPlace;
  std::vector<Waiting> waiting;
  std::vector<int> ids;
  std::priority_queue<std::size_t, std::vector<std::size_t>, std::greater<>> ready;
  for (const Entity& entity : entities) {
    if (entity.GetParentEntity() == nullptr) {
      ready.push(byPlace.size());
    } else {
      waiting.emplace_back(entity.GetParentEntity()->GetEntityId().GetVal(), byPlace.size());
    }
    byPlace.push_back(&entity);
    ids.push_back(entity.GetEntityId().GetVal());
  }
  std::sort(waiting.begin(), waiting.end());
  std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  std::vector<bool> isTaken(ids.size(), false);

  std::vector<const Entity*> order;
  order.reserve(ids.size());
  std::vector<std::size_t> nextSweep;
  while (!ready.empty()) {
    const std::size_t place = ready.top();
    ready.pop();
    const int id = byPlace[place]->GetEntityId().GetVal();
    const auto idPlace =
        static_cast<std::size_t>(std::lower_bound(ids.begin(), ids.end(), id) - ids.begin());
    if (!isTaken[idPlace]) {
      isTaken[idPlace] = true;
      order.push_back(byPlace[place]);
      for (auto child = std::lower_bound(waiting.begin(), waiting.end(), Waiting(id, 0));
           child != waiting.end() && child->first == id; ++child) {
        if (child->second > place) {
          ready.push(child->second);
        } else {
          nextSweep.push_back(child->second);
        }
      }
    }
    if (ready.empty()) {
      for (const std::size_t later : nextSweep) {
        ready.push(later);
      }
      nextSweep.clear();
    }
  }
  return order;
}

}  // namespace Orvo::Kin
