#pragma once

#include <Orvo/Export.h>
#include <Orvo/Kin/EntityId.h>

#include <list>
#include <memory>

namespace Orvo::Kin {

struct CollisionCheckLists;

/// Records which elements of a machine are to be checked for collision; it checks nothing itself.
///
/// Four sets of single elements (stock, part, fixture, tool, each against the machine) and a set
/// of unordered pairs (machine against machine). Every set keeps the order in which its entries
/// were first switched on. Ids are not checked against a machine.
///
/// A copy is a second handle on the same sets, which live as long as any of them. Deliberate: a
/// change through one handle is seen through all. Callers serialize access.
///
/// @par Cost
/// Setting and asking are logarithmic in the size of the set. Listing a set is linear in its size,
/// listing partners in the number of the element's pairs.
class ORVO_API CollisionCheck {
 public:
  /// Makes five empty sets.
  CollisionCheck();

  /// Makes a second handle on the same sets.
  CollisionCheck(const CollisionCheck& other);

  /// Lets go of the own sets and becomes a second handle on those of the other.
  CollisionCheck& operator=(const CollisionCheck& other);
  virtual ~CollisionCheck();

  /// @{
  /// Puts an element into a set, at the end, or takes it out.
  void SetMachineStock(const EntityId& id, bool on);
  void SetMachinePart(const EntityId& id, bool on);
  void SetMachineFixture(const EntityId& id, bool on);
  void SetMachineTool(const EntityId& id, bool on);
  /// @}

  /// @{
  /// Tells whether an element is in a set.
  bool GetMachineStock(const EntityId& id) const;
  bool GetMachinePart(const EntityId& id) const;
  bool GetMachineFixture(const EntityId& id) const;
  bool GetMachineTool(const EntityId& id) const;
  /// @}

  /// @{
  /// Replaces @p out by the elements of a set in their order; null is ignored.
  void GetListMachineStock(std::list<EntityId>* out) const;
  void GetListMachinePart(std::list<EntityId>* out) const;
  void GetListMachineFixture(std::list<EntityId>* out) const;
  void GetListMachineTool(std::list<EntityId>* out) const;
  /// @}

  /// Puts an unordered pair into the set of pairs, at the end, or takes it out. An element is never
  /// paired with itself.
  void SetMachineMachine(const EntityId& a, const EntityId& b, bool on);

  /// Tells whether an unordered pair is in the set.
  bool GetMachineMachine(const EntityId& a, const EntityId& b) const;

  /// Replaces @p out by the partners of an element in the order of the pairs; null is ignored.
  ///
  /// @param id   the element
  /// @param out  receives the partners
  /// @param all  true: all partners. Deliberate: false gives those with a smaller id only, so that
  ///   each pair is reported under exactly one of its elements; the file writer relies on it.
  void GetListMachineMachine(const EntityId& id, std::list<EntityId>* out, bool all) const;

 private:
  std::shared_ptr<CollisionCheckLists> lists_;
};

}  // namespace Orvo::Kin
