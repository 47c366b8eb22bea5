#pragma once

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Enumerations.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Vector3D.h>

#include <map>
#include <vector>

namespace Orvo::Fuzz {

/// A head and a table, by their places.
struct ToolRequest {
  int head;
  int table;
};

struct RotaryRequest {
  ToolRequest tool;
  Vector3D direction;
  int r0;
  int r1;
};

struct LinearRequest {
  ToolRequest tool;
  Vector3D offset;
  Vector3D point;
  int registers[3];
};

/// Says which error a calculator must end with, none where it must succeed, and which results can
/// be held to more than that. Machines of files only.
class KinematicOracle {
 public:
  explicit KinematicOracle(const Kin::Machine& machine);

  static bool Holds(const Kin::MachinePosition& position, int reg);
  static Kin::MachineComputeErrorType LinkError(const Kin::Entity& entity,
                                                const Kin::MachinePosition& position);
  static Kin::MachineComputeErrorType ElementError(const Kin::Entity& entity,
                                                   const Kin::MachinePosition& position);
  Kin::MachineComputeErrorType ToolError(const Kin::MachinePosition& position,
                                         const ToolRequest& tool) const;
  Kin::MachineComputeErrorType RotaryError(const Kin::MachinePosition& position,
                                           const RotaryRequest& rotary) const;

  /// A solver that none is said for may still fail where an axis is missing, see HasAllAxes().
  Kin::MachineComputeErrorType LinearError(const Kin::MachinePosition& position,
                                           const LinearRequest& linear) const;

  /// Tells whether each of three linear axes stands on the way from table to head.
  bool HasAllAxes(const LinearRequest& linear) const;

  /// Tells whether no other element has the id of this one or of one above it.
  bool HasOwnIds(const Kin::Entity& entity) const;

  /// Tells whether all numbers are of an ordinary size.
  static bool IsOrdinary(const Vector3D& v);
  static bool IsOrdinary(const Kin::MachinePosition& position);

  /// Tells whether the frame of a link is rigid and of an ordinary size.
  static bool IsRigidLink(const Kin::Entity& entity, const Kin::MachinePosition& position);

  /// Tells whether an element and those above it are placed by rigid frames of an ordinary size.
  static bool IsRigid(const Kin::Entity& entity, const Kin::MachinePosition& position);

  /// Tells whether the way from table to head is rigid and each requested axis turns it once.
  bool IsRigidRotary(const Kin::MachinePosition& position, const RotaryRequest& rotary) const;

  /// Tells whether the two axes of a rigid way are parallel, or at an angle that is not next to
  /// none.
  bool AreApartOrParallel(Kin::MachineCompute* calculator, const Kin::MachinePosition& position,
                          const RotaryRequest& rotary) const;

  /// Tells whether the way from table to head is rigid and the three axes stand on it once each,
  /// at right angles.
  bool IsRigidLinear(Kin::MachineCompute* calculator, const Kin::MachinePosition& position,
                     const LinearRequest& linear) const;

  /// Holds three values against the ranges of their axes.
  bool AreWithinRanges(const LinearRequest& linear, const Vector3D& xyz, bool* flags) const;

  /// Returns a limit of each of three axes, 0 where there is no axis.
  Vector3D Limits(const LinearRequest& linear, double (Kin::Entity::*limit)() const) const;

 private:
  /// Computes the direction of an element's axis in the world; false where it has no frame.
  static bool WorldDirection(Kin::MachineCompute* calculator, const Kin::Entity& axis,
                             const Kin::MachinePosition& position, Vector3D* dir);

  /// The elements from the table to the common ancestor and on to the head; empty without one.
  std::vector<const Kin::Entity*> Chain(const ToolRequest& tool) const;

  /// Tells whether one element has a register that moves the head against the table.
  bool MovesOnce(const ToolRequest& tool, int reg) const;

  const Kin::Machine* machine_;
  std::map<int, int> idCounts_;
};

}  // namespace Orvo::Fuzz
