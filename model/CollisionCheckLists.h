#pragma once

#include <Orvo/Kin/EntityId.h>

#include <list>
#include <map>
#include <utility>

namespace Orvo::Kin {

/// A set of ids that keeps the order in which they were put in. Setting and asking are logarithmic.
class EntityIdSet {
 public:
  /// Puts an id in, at the end, or takes it out. Where memory fails, nothing has changed.
  void Set(const EntityId& id, bool on);
  bool Contains(const EntityId& id) const;
  const std::list<EntityId>& List() const { return list_; }

 private:
  std::list<EntityId> list_;
  std::map<int, std::list<EntityId>::iterator> places_;
};

/// A set of unordered pairs of different ids that keeps the order in which they were put in, as a
/// whole and among the pairs of each id. Setting and asking are logarithmic.
class EntityIdPairSet {
 public:
  /// Puts a pair in, at the end, or takes it out. Where memory fails, nothing has changed.
  void Set(const EntityId& a, const EntityId& b, bool on);
  bool Contains(const EntityId& a, const EntityId& b) const;

  /// Returns the partners of an id in the order of the pairs; only the smaller ones unless @p all.
  std::list<EntityId> Partners(const EntityId& id, bool all) const;

 private:
  using PartnerList = std::list<EntityId>;

  /// Where the two ids of a pair stand in each other's list of partners.
  struct Places {
    PartnerList::iterator ofSmaller;
    PartnerList::iterator ofLarger;
  };

  void ErasePartner(int id, PartnerList::iterator partner);

  // By (larger id, smaller id).
  std::map<std::pair<int, int>, Places> pairs_;
  std::map<int, PartnerList> partners_;
};

/// The five sets that the handles of a CollisionCheck share.
struct CollisionCheckLists {
  EntityIdPairSet machineMachine;
  EntityIdSet stock;
  EntityIdSet part;
  EntityIdSet fixture;
  EntityIdSet tool;
};

}  // namespace Orvo::Kin
