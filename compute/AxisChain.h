#pragma once

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/HeadIndex.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/TableIndex.h>

#include <vector>

namespace Orvo::Kin {

/// The elements from a table up to its first common ancestor with a head, and down to the head.
class AxisChain {
 public:
  /// Builds the chain, unless it stands already for the same two elements. Without such a head or
  /// table, and without a common ancestor, it is empty afterwards. Linear in the two paths to the
  /// root.
  void Build(const Kinematic& kinematic, const HeadIndex& head, const TableIndex& table);

  bool IsEmpty() const { return entities_.empty(); }

  /// The ends of the chain; null when it is empty.
  const Entity* Head() const { return head_; }
  const Entity* Table() const { return table_; }

  /// Calls visit(entity, sideSign, place) from the table to the head until it returns false, and
  /// returns whether it never did. The sign is +1 where the level rises, on the way to the head,
  /// and -1 before: an axis on the table's side moves the workpiece and not the tool.
  template <typename Visit>
  bool Walk(Visit visit) const {
    const Entity* previous = nullptr;
    int place = 0;
    for (const Entity* entity : entities_) {
      const bool isHeadSide = previous != nullptr && entity->GetLevel() > previous->GetLevel();
      if (!visit(*entity, isHeadSide ? 1.0 : -1.0, place)) {
        return false;
      }
      previous = entity;
      ++place;
    }
    return true;
  }

 private:
  const Entity* head_ = nullptr;
  const Entity* table_ = nullptr;
  std::vector<const Entity*> entities_;
};

}  // namespace Orvo::Kin
