#include "model/CollisionCheckLists.h"

#include <Orvo/Kin/CollisionCheck.h>

#include <algorithm>

namespace Orvo::Kin {

namespace {

std::pair<int, int> LargerFirst(const EntityId& a, const EntityId& b) {
  return {std::max(a.GetVal(), b.GetVal()), std::min(a.GetVal(), b.GetVal())};
}

void CopyList(const EntityIdSet& set, std::list<EntityId>* out) {
  if (out != nullptr) {
    std::list<EntityId> copy(set.List());
    out->swap(copy);
  }
}

}  // namespace

void EntityIdSet::Set(const EntityId& id, bool on) {
  const auto found = places_.find(id.GetVal());
  if (on && found == places_.end()) {
    std::list<EntityId> added(1, id);
    places_.emplace(id.GetVal(), added.begin());
    list_.splice(list_.end(), added);
  } else if (!on && found != places_.end()) {
    list_.erase(found->second);
    places_.erase(found);
  }
}

bool EntityIdSet::Contains(const EntityId& id) const { return places_.count(id.GetVal()) != 0; }

void EntityIdPairSet::Set(const EntityId& a, const EntityId& b, bool on) {
  if (a.GetVal() == b.GetVal()) {
    return;
  }
  const std::pair<int, int> key = LargerFirst(a, b);
  const auto found = pairs_.find(key);
  if (on && found == pairs_.end()) {
    // An id without partners is as good as none, so these two may stay when memory fails later.
    PartnerList& partnersOfLarger = partners_[key.first];
    PartnerList& partnersOfSmaller = partners_[key.second];
    PartnerList smaller(1, EntityId(key.second));
    PartnerList larger(1, EntityId(key.first));
    pairs_.emplace(key, Places{smaller.begin(), larger.begin()});
    partnersOfLarger.splice(partnersOfLarger.end(), smaller);
    partnersOfSmaller.splice(partnersOfSmaller.end(), larger);
  } else if (!on && found != pairs_.end()) {
    ErasePartner(key.first, found->second.ofSmaller);
    ErasePartner(key.second, found->second.ofLarger);
    pairs_.erase(found);
  }
}

void EntityIdPairSet::ErasePartner(int id, PartnerList::iterator partner) {
  const auto partners = partners_.find(id);
  partners->second.erase(partner);
  if (partners->second.empty()) {
    partners_.erase(partners);
  }
}

bool EntityIdPairSet::Contains(const EntityId& a, const EntityId& b) const {
  return pairs_.count(LargerFirst(a, b)) != 0;
}

std::list<EntityId> EntityIdPairSet::Partners(const EntityId& id, bool all) const {
  std::list<EntityId> result;
  const auto found = partners_.find(id.GetVal());
  if (found != partners_.end()) {
    for (const EntityId& partner : found->second) {
      if (all || partner.GetVal() < id.GetVal()) {
        result.push_back(partner);
      }
    }
  }
  return result;
}

CollisionCheck::CollisionCheck() : lists_(std::make_shared<CollisionCheckLists>()) {}

CollisionCheck::CollisionCheck(const CollisionCheck& other) = default;

CollisionCheck& CollisionCheck::operator=(const CollisionCheck& other) = default;

CollisionCheck::~CollisionCheck() = default;

void CollisionCheck::SetMachineStock(const EntityId& id, bool on) { lists_->stock.Set(id, on); }

void CollisionCheck::SetMachinePart(const EntityId& id, bool on) { lists_->part.Set(id, on); }

void CollisionCheck::SetMachineFixture(const EntityId& id, bool on) { lists_->fixture.Set(id, on); }

void CollisionCheck::SetMachineTool(const EntityId& id, bool on) { lists_->tool.Set(id, on); }

bool CollisionCheck::GetMachineStock(const EntityId& id) const {
  return lists_->stock.Contains(id);
}

bool CollisionCheck::GetMachinePart(const EntityId& id) const { return lists_->part.Contains(id); }

bool CollisionCheck::GetMachineFixture(const EntityId& id) const {
  return lists_->fixture.Contains(id);
}

bool CollisionCheck::GetMachineTool(const EntityId& id) const { return lists_->tool.Contains(id); }

void CollisionCheck::GetListMachineStock(std::list<EntityId>* out) const {
  CopyList(lists_->stock, out);
}

void CollisionCheck::GetListMachinePart(std::list<EntityId>* out) const {
  CopyList(lists_->part, out);
}

void CollisionCheck::GetListMachineFixture(std::list<EntityId>* out) const {
  CopyList(lists_->fixture, out);
}

void CollisionCheck::GetListMachineTool(std::list<EntityId>* out) const {
  CopyList(lists_->tool, out);
}

void CollisionCheck::SetMachineMachine(const EntityId& a, const EntityId& b, bool on) {
  lists_->machineMachine.Set(a, b, on);
}

bool CollisionCheck::GetMachineMachine(const EntityId& a, const EntityId& b) const {
  return lists_->machineMachine.Contains(a, b);
}

void CollisionCheck::GetListMachineMachine(const EntityId& id, std::list<EntityId>* out,
                                           bool all) const {
  if (out != nullptr) {
    std::list<EntityId> partners = lists_->machineMachine.Partners(id, all);
    out->swap(partners);
  }
}

}  // namespace Orvo::Kin
