#pragma once

#include "property/Draw.h"
#include "property/reference/Model.h"

#include <Orvo/Kin/Machine.h>

#include <string>
#include <vector>

namespace Orvo::Property {

/// One setting of a link.
struct LinkStep {
  int kind = Reference::Undef;  ///< Linear, Rotary, Fixed, or Undef for none
  Reference::Vector center;
  Reference::Vector dir;
  Reference::Frame frame;
};

/// One value of a slot of a link.
struct SlotStep {
  int which = 0;  ///< 0 zero reference, 1 lower limit, 2 upper limit
  unsigned int slot = 0;
  double value = 0.0;
};

/// What a caller does to make one element.
struct ElementPlan {
  std::wstring name;
  int type = Reference::Axis;
  int parallel = 0;  ///< by file only
  int id = -1;       ///< by file only; by calls, the place in the list gives it
  int parentId = -1;
  int reg = -1;
  bool motor = false;
  bool setsCheck = false;
  bool check = true;
  bool mounting = false;
  bool plain = true;     ///< made by the Add operation of its kind
  int rawLinkType = -1;  ///< by file only: the word that the file has, whatever the steps say
  std::vector<LinkStep> links;
  std::vector<SlotStep> slots;
  bool hasMeshes = false;
  std::vector<unsigned int> colors;
};

struct CollisionStep {
  int which = 0;  ///< 0 to 3 a set, 4 the pairs
  int a = 0;
  int b = 0;
  bool on = true;
};

/// What a caller does to make a machine.
struct MachinePlan {
  bool fromFile = false;
  bool finish = true;
  std::vector<ElementPlan> elements;
  std::vector<Reference::Program> programs;
  std::vector<CollisionStep> collisions;
};

/// Draws a machine that is meant to work: three linear axes, up to three rotary ones, on both
/// sides.
MachinePlan SoundPlan(Draw& draw);

/// Draws any tree, forest or tangle.
MachinePlan WildPlan(Draw& draw);

/// Breaks a few things of a plan.
void Spoil(Draw& draw, MachinePlan* plan);

/// Draws one of all these.
MachinePlan AnyPlan(Draw& draw);

/// Draws a name, often with characters that a file has to treat.
std::wstring AnyName(Draw& draw);

/// The same machine in both forms.
struct MachinePair {
  explicit MachinePair(const MachinePlan& plan);

  Reference::Machine twin;
  Kin::Machine machine;
  std::vector<Kin::Entity*> entities;  ///< by calls only

  /// The machine file that shows the machine, for messages.
  std::string Text() const;
};

/// Makes the elements, program systems and collision lists of a plan, without finishing.
void Make(const MachinePlan& plan, Reference::Machine* out);
void Make(const MachinePlan& plan, Kin::Machine* out, std::vector<Kin::Entity*>* entities);

/// Draws a position for a machine with a number of registers; usually of the right size.
Reference::Position AnyPosition(Draw& draw, int registerNb);

}  // namespace Orvo::Property
