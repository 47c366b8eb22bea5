#include "compute/AxisChain.h"

namespace Orvo::Kin {

namespace {

std::vector<const Entity*> PathToRoot(const Entity* entity) {
  std::vector<const Entity*> path;
  for (; entity != nullptr; entity = entity->GetParentEntity()) {
    path.push_back(entity);
  }
  return path;
}

}  // namespace

void AxisChain::Build(const Kinematic& kinematic, const HeadIndex& head, const TableIndex& table) {
  const Entity* const headEntity = kinematic.GetEntityHead(head);
  const Entity* const tableEntity = kinematic.GetEntityTable(table);
  if (headEntity == head_ && tableEntity == table_) {
    return;
  }
  head_ = nullptr;
  table_ = nullptr;
  entities_.clear();
  if (headEntity == nullptr || tableEntity == nullptr) {
    return;
  }

  // Seen from the root, the two paths part behind the common ancestor.
  std::vector<const Entity*> tablePath = PathToRoot(tableEntity);
  std::vector<const Entity*> headPath = PathToRoot(headEntity);
  const Entity* commonAncestor = nullptr;
  while (!tablePath.empty() && !headPath.empty() && tablePath.back() == headPath.back()) {
    commonAncestor = tablePath.back();
    tablePath.pop_back();
    headPath.pop_back();
  }
  if (commonAncestor == nullptr) {
    return;
  }
  tablePath.push_back(commonAncestor);
  tablePath.insert(tablePath.end(), headPath.rbegin(), headPath.rend());
  entities_.swap(tablePath);
  head_ = headEntity;
  table_ = tableEntity;
}

}  // namespace Orvo::Kin
