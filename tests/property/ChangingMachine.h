#pragma once

#include "property/Draw.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Machine.h>

#include <string>
#include <vector>

namespace Orvo::Property {

/// What a random machine is drawn from.
enum class Flavor {
  Sound,  ///< three linear axes and some rotary ones; a few heads and tables
  Wild,   ///< any tree, some of its elements broken
  Deep    ///< long chains of links of all kinds
};

/// A finished machine with links of every sort, next to the limits by which calculators tell them
/// apart too; and one that can change while calculators are at work.
class ChangingMachine {
 public:
  ChangingMachine(Draw& draw, Flavor flavor);

  const Kin::Machine& Get() const { return machine_; }

  /// The elements, in the order of the list.
  const std::vector<Kin::Entity*>& Elements() const { return elements_; }

  /// The size of a position that has all registers.
  int RegisterNb() const { return machine_.GetRegisterNb().GetVal(); }

  /// The registers of the axes of one kind, in the order of the list.
  std::vector<int> RegistersOf(Kin::EntityLinkType type) const;

  /// Changes one thing of one element by a call that callers may make between computations.
  void Change(Draw& draw);

 private:
  void Renumber(Draw& draw);

  Kin::Machine machine_;
  std::vector<Kin::Entity*> elements_;
};

}  // namespace Orvo::Property
