#pragma once

#include "support/TestRandom.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Path/MainAxes.h>
#include <Orvo/Path/ToolPoint.h>
#include <Orvo/Vector3D.h>

#include <string>

namespace Orvo::Path::Testing {

using Orvo::Testing::TestRandom;

/// Draws a direction, sometimes a principal one.
inline Vector3D AnyDirection(TestRandom& random) {
  if (random.Chance(0.4)) {
    const Vector3D axes[] = {AxisX, AxisY, AxisZ};
    Vector3D axis = axes[random.Integer(0, 2)];
    axis *= random.Chance(0.3) ? -1.0 : 1.0;
    return axis;
  }
  Vector3D direction;
  do {
    direction.Set(random.Real(-1, 1), random.Real(-1, 1), random.Real(-1, 1));
  } while (direction.Norm() < 0.1 || direction.Norm() > 1.0);
  direction.MakeUnit(0.001);
  return direction;
}

/// What a drawn machine is made of.
struct MachineWish {
  bool isOblique = false;   ///< linear axes at any angles
  bool isWide = true;       ///< rotary ranges of several turns
  int rotaryNb = 2;         ///< how many rotary axes there are
  bool isTrunnion = false;  ///< A and C on the table, nothing drawn

  // Of the trunnion, to either side.
  double reachOfA = 120.0;
  double reachOfC = 360.0;
  double linearReach = 2000.0;
  bool isCEndless = false;  ///< the range of C doesn't count
};

/// Adds an axis with its register and range.
inline Kin::EntityId AddAxis(Kin::Entity* entity, int reg, double min, double max) {
  entity->SetRegister(reg);
  entity->SetRange(min, max);
  return entity->GetEntityId();
}

/// Builds a machine with X, Y, Z on registers 0 to 2 and rotary axes on 3 and 4, on either side and
/// in any order.
inline void BuildMachine(TestRandom& random, const MachineWish& wish, Kin::Machine* machine) {
  const Kin::EntityId bed = machine->AddEntityStatic(L"bed", -1)->GetEntityId();
  Kin::EntityId ends[] = {bed, bed};  // of the head side and of the table side
  const Vector3D principal[] = {AxisX, AxisY, AxisZ};
  const wchar_t* const linearNames[] = {L"X", L"Y", L"Z"};
  const wchar_t* const rotaryNames[] = {L"A", L"C"};
  for (int i = 0; i < 3; ++i) {
    Vector3D direction = principal[i];
    if (wish.isOblique) {
      direction += AnyDirection(random) * 0.3;
    }
    Kin::EntityId& end = ends[wish.isTrunnion ? 0 : random.Integer(0, 1)];
    end = AddAxis(machine->AddEntityLinear(linearNames[i], end, direction), i, -wish.linearReach,
                  wish.linearReach);
  }
  for (int i = 0; i < wish.rotaryNb; ++i) {
    Kin::EntityId& end = ends[wish.isTrunnion ? 1 : random.Integer(0, 1)];
    const Vector3D direction = wish.isTrunnion ? (i == 0 ? AxisX : AxisZ) : AnyDirection(random);
    const Vector3D center =
        wish.isTrunnion ? NullVector
                        : Vector3D(random.Real(-100, 100), random.Real(-100, 100), 50.0 * i);
    const double reach = i == 0 ? wish.reachOfA : wish.reachOfC;
    const double min = wish.isTrunnion ? -reach : wish.isWide ? -720.0 : random.Real(-400.0, -40.0);
    const double max = wish.isTrunnion ? reach : wish.isWide ? 720.0 : random.Real(40.0, 400.0);
    Kin::Entity* const axis = machine->AddEntityRotary(rotaryNames[i], end, center, direction);
    axis->SetCheckRangeAxis(i == 0 || !wish.isCEndless);
    end = AddAxis(axis, 3 + i, min, max);
  }
  Matrix43 frame;
  frame.SetTrans(Vector3D(0.0, 0.0, 30.0));
  machine->AddEntityHead(L"head", ends[0], frame);
  machine->AddEntityTable(L"table", ends[1], Matrix43());
  Kin::ProgramSystem system;
  system.SetHeadIndex(0);
  system.SetTableIndex(0);
  system.SetMainLinear(0, 1, 2);
  system.SetMainRotary(wish.rotaryNb > 0 ? 3 : -1, wish.rotaryNb > 1 ? 4 : -1);
  machine->AddProgramSystem(system);
  machine->Finish();
}

inline Kin::MachinePosition ZeroOf(const Kin::Machine& machine) {
  Kin::MachinePosition position;
  machine.Alloc(&position);
  return position;
}

/// Where forward kinematics puts the tool.
inline ToolPoint PointAt(const Kin::Machine& machine, const Kin::ProgramSystem& system,
                         const Vector3D& offset, const MainAxes& axes, const AxisValues& values) {
  Kin::MachineCompute compute(machine);
  Kin::MachinePosition position = ZeroOf(machine);
  axes.Put(values, &position);
  Matrix43 frame;
  compute.ComputeMcsToToolTcs(position, system.GetHeadIndex(), system.GetTableIndex(), offset,
                              &frame);
  ToolPoint point;
  point.point = frame.GetTrans();
  point.direction = frame.GetW();
  return point;
}

}  // namespace Orvo::Path::Testing
