#include "KinematicOracle.h"

#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Matrix43.h>

#include <algorithm>
#include <cmath>

namespace Orvo::Fuzz {

using namespace Kin;

namespace {

constexpr double Ordinary = 1e4;
constexpr double RigidTolerance = 1e-9;
constexpr int OrdinaryDepth = 40;

bool IsOrdinary(double value) { return std::fabs(value) <= Ordinary; }

bool AreOrdinary(const Vector3D& v) {
  return IsOrdinary(v[0]) && IsOrdinary(v[1]) && IsOrdinary(v[2]);
}

bool IsNear(double a, double b) { return std::fabs(a - b) < RigidTolerance; }

bool AreRightAngled(Vector3D u, Vector3D v, Vector3D w) {
  return IsNear(u * u, 1.0) && IsNear(v * v, 1.0) && IsNear(w * w, 1.0) && IsNear(u * v, 0.0) &&
         IsNear(v * w, 0.0) && IsNear(w * u, 0.0);
}

bool IsRigidPlacement(Matrix43 frame) {
  const Vector3D u = frame.GetU();
  const Vector3D v = frame.GetV();
  const Vector3D w = frame.GetW();
  return AreRightAngled(u, v, w) && (Vector3D(u) & v).IsSame(w, RigidTolerance) &&
         AreOrdinary(frame.GetTrans());
}

// A turn about an axis next to a principal one, but not on it, is made about that one.
bool IsClean(const Vector3D& dir) {
  for (int i = 0; i < 3; ++i) {
    const double size = std::fabs(dir[i]);
    if (size < 0.01 && size != 0.0) {
      return false;
    }
  }
  return IsNear(dir.Norm(), 1.0);
}

}  // namespace

KinematicOracle::KinematicOracle(const Machine& machine) : machine_(&machine) {
  for (const Entity& entity : machine.GetKinematic().GetListEntity()) {
    ++idCounts_[entity.GetEntityId().GetVal()];
  }
}

bool KinematicOracle::Holds(const MachinePosition& position, int reg) {
  return reg >= 0 && static_cast<unsigned long long>(reg) < position.Size();
}

MachineComputeErrorType KinematicOracle::LinkError(const Entity& entity,
                                                   const MachinePosition& position) {
  switch (entity.GetEntityLink().GetEntityLinkType()) {
    case EntityLinkTypeLinear:
    case EntityLinkTypeRotary:
      return Holds(position, entity.GetRegister().GetVal()) ? ComputeErrorNone
                                                            : ComputeErrorRegister;
    case EntityLinkTypePosition:
    case EntityLinkTypeIdentity:
      return ComputeErrorNone;
    default:
      return ComputeErrorLinkType;
  }
}

MachineComputeErrorType KinematicOracle::ElementError(const Entity& entity,
                                                      const MachinePosition& position) {
  if (position.Size() == 0) {
    return ComputeErrorEmptyPosition;
  }
  for (const Entity* current = &entity; current != nullptr; current = current->GetParentEntity()) {
    const MachineComputeErrorType error = LinkError(*current, position);
    if (error != ComputeErrorNone) {
      return error;
    }
  }
  return ComputeErrorNone;
}

MachineComputeErrorType KinematicOracle::ToolError(const MachinePosition& position,
                                                   const ToolRequest& tool) const {
  if (!machine_->IsFinished()) {
    return ComputeErrorNotFinished;
  }
  const Entity* const head = machine_->GetKinematic().GetEntityHead(HeadIndex(tool.head));
  const Entity* const table = machine_->GetKinematic().GetEntityTable(TableIndex(tool.table));
  if (head == nullptr || table == nullptr) {
    return ComputeErrorNoHeadOrTable;
  }
  const MachineComputeErrorType ofHead = ElementError(*head, position);
  return ofHead != ComputeErrorNone ? ofHead : ElementError(*table, position);
}

MachineComputeErrorType KinematicOracle::RotaryError(const MachinePosition& position,
                                                     const RotaryRequest& rotary) const {
  if (position.Size() == 0) {
    return ComputeErrorEmptyPosition;
  }
  const int registers[2] = {rotary.r0, rotary.r1};
  for (const int reg : registers) {
    if (reg >= 0 && !Holds(position, reg)) {
      return ComputeErrorRegister;
    }
  }
  if (rotary.r0 >= 0 && rotary.r0 == rotary.r1) {
    return ComputeErrorRegister;
  }
  const std::vector<const Entity*> chain = Chain(rotary.tool);
  if (chain.empty()) {
    return ComputeErrorNoHeadOrTable;
  }
  const Entity* axes[2] = {nullptr, nullptr};
  for (const Entity* entity : chain) {
    for (int i = 0; i < 2; ++i) {
      if (registers[i] < 0 || entity->GetRegister().GetVal() != registers[i]) {
        continue;
      }
      if (entity->GetEntityType() == EntityTypeAxis &&
          entity->GetEntityLink().GetEntityLinkType() != EntityLinkTypeRotary) {
        return ComputeErrorRegister;
      }
      axes[i] = entity;
    }
  }
  for (int i = 0; i < 2; ++i) {
    if (registers[i] >= 0 && axes[i] == nullptr) {
      return ComputeErrorRegister;
    }
    if (registers[i] >= 0 && axes[i]->GetEntityType() != EntityTypeAxis) {
      return ComputeErrorNotAxis;
    }
  }
  return ComputeErrorNone;
}

MachineComputeErrorType KinematicOracle::LinearError(const MachinePosition& position,
                                                     const LinearRequest& linear) const {
  const auto& registers = linear.registers;
  if (!machine_->IsFinished()) {
    return ComputeErrorNotFinished;
  }
  if (std::any_of(registers, registers + 3, [](int reg) { return reg < 0; })) {
    return ComputeErrorRegister;
  }
  if (position.Size() == 0) {
    return ComputeErrorEmptyPosition;
  }
  if (!std::all_of(registers, registers + 3, [&](int reg) { return Holds(position, reg); })) {
    return ComputeErrorRegister;
  }
  const std::vector<const Entity*> chain = Chain(linear.tool);
  if (chain.empty()) {
    return ComputeErrorNoHeadOrTable;
  }
  const auto foundNb = std::count_if(chain.begin(), chain.end(), [&](const Entity* entity) {
    return entity->GetEntityType() == EntityTypeAxis &&
           entity->GetEntityLink().GetEntityLinkType() == EntityLinkTypeLinear &&
           std::find(registers, registers + 3, entity->GetRegister().GetVal()) != registers + 3;
  });
  if (foundNb != 3) {
    return ComputeErrorRegister;
  }
  for (const int reg : registers) {
    const Entity* const axis = machine_->GetKinematic().GetEntity(Register(reg));
    const EntityLinkType link =
        axis == nullptr ? EntityLinkTypeUndef : axis->GetEntityLink().GetEntityLinkType();
    if (axis == nullptr || axis->GetEntityType() != EntityTypeAxis ||
        (link != EntityLinkTypeLinear && link != EntityLinkTypeRotary)) {
      return ComputeErrorRegister;
    }
  }
  return ComputeErrorNone;
}

bool KinematicOracle::HasAllAxes(const LinearRequest& linear) const {
  const auto& registers = linear.registers;
  if (registers[0] == registers[1] || registers[1] == registers[2] ||
      registers[0] == registers[2]) {
    return false;
  }
  const std::vector<const Entity*> chain = Chain(linear.tool);
  return std::all_of(registers, registers + 3, [&chain](int reg) {
    return std::any_of(chain.begin(), chain.end(), [reg](const Entity* entity) {
      return entity->GetEntityType() == EntityTypeAxis &&
             entity->GetEntityLink().GetEntityLinkType() == EntityLinkTypeLinear &&
             entity->GetRegister().GetVal() == reg;
    });
  });
}

bool KinematicOracle::HasOwnIds(const Entity& entity) const {
  for (const Entity* current = &entity; current != nullptr; current = current->GetParentEntity()) {
    const int id = current->GetEntityId().GetVal();
    if (id < 0 || idCounts_.at(id) != 1) {
      return false;
    }
  }
  return true;
}

bool KinematicOracle::IsOrdinary(const Vector3D& v) { return AreOrdinary(v); }

bool KinematicOracle::IsOrdinary(const MachinePosition& position) {
  for (int i = 0; i < static_cast<int>(position.Size()); ++i) {
    if (!(std::fabs(position[Register(i)]) <= Ordinary)) {
      return false;
    }
  }
  return true;
}

bool KinematicOracle::IsRigidLink(const Entity& entity, const MachinePosition& position) {
  const EntityLink& link = entity.GetEntityLink();
  switch (link.GetEntityLinkType()) {
    case EntityLinkTypeLinear:
      return IsNear(link.GetDir().Norm(), 1.0) && std::fabs(link.GetZeroRef()) <= Ordinary &&
             Holds(position, entity.GetRegister().GetVal()) &&
             std::fabs(position[entity.GetRegister()]) <= Ordinary;
    case EntityLinkTypeRotary:
      return IsClean(link.GetDir()) && AreOrdinary(link.GetCenter()) &&
             Holds(position, entity.GetRegister().GetVal()) &&
             std::fabs(position[entity.GetRegister()]) <= Ordinary;
    case EntityLinkTypePosition:
      return IsRigidPlacement(link.GetPosition());
    default:
      return link.GetEntityLinkType() == EntityLinkTypeIdentity;
  }
}

bool KinematicOracle::IsRigid(const Entity& entity, const MachinePosition& position) {
  int depth = 0;
  for (const Entity* current = &entity; current != nullptr; current = current->GetParentEntity()) {
    if (++depth > OrdinaryDepth || !IsRigidLink(*current, position)) {
      return false;
    }
  }
  return true;
}

std::vector<const Entity*> KinematicOracle::Chain(const ToolRequest& tool) const {
  std::vector<const Entity*> chain;
  const Entity* head = machine_->GetKinematic().GetEntityHead(HeadIndex(tool.head));
  const Entity* table = machine_->GetKinematic().GetEntityTable(TableIndex(tool.table));
  std::vector<const Entity*> headSide;
  while (head != table) {
    if (head == nullptr || table == nullptr) {
      return {};
    }
    const Entity*& deeper = head->GetLevel() > table->GetLevel() ? head : table;
    (&deeper == &head ? headSide : chain).push_back(deeper);
    deeper = deeper->GetParentEntity();
  }
  if (head == nullptr) {
    return {};
  }
  chain.push_back(head);
  chain.insert(chain.end(), headSide.rbegin(), headSide.rend());
  return chain;
}

bool KinematicOracle::MovesOnce(const ToolRequest& tool, int reg) const {
  const std::vector<const Entity*> chain = Chain(tool);
  int nb = 0;
  for (const Entity* entity : chain) {
    nb += entity->GetRegister().GetVal() == reg ? 1 : 0;
  }
  // What carries both sides moves neither against the other.
  const Entity* const head = machine_->GetKinematic().GetEntityHead(HeadIndex(tool.head));
  const Entity* const table = machine_->GetKinematic().GetEntityTable(TableIndex(tool.table));
  for (const Entity* above = head; above != nullptr; above = above->GetParentEntity()) {
    bool isShared = false;
    for (const Entity* other = table; other != nullptr; other = other->GetParentEntity()) {
      isShared = isShared || other == above;
    }
    if (isShared && above->GetRegister().GetVal() == reg) {
      return false;
    }
  }
  return nb == 1;
}

bool KinematicOracle::IsRigidRotary(const MachinePosition& position,
                                    const RotaryRequest& rotary) const {
  const Entity* const head = machine_->GetKinematic().GetEntityHead(HeadIndex(rotary.tool.head));
  const Entity* const table =
      machine_->GetKinematic().GetEntityTable(TableIndex(rotary.tool.table));
  if (head == nullptr || table == nullptr || !IsRigid(*head, position) ||
      !IsRigid(*table, position)) {
    return false;
  }
  return (rotary.r0 < 0 || MovesOnce(rotary.tool, rotary.r0)) &&
         (rotary.r1 < 0 || MovesOnce(rotary.tool, rotary.r1));
}

bool KinematicOracle::WorldDirection(MachineCompute* calculator, const Entity& axis,
                                     const MachinePosition& position, Vector3D* dir) {
  Matrix43 worldFromAxis;
  if (!calculator->ComputePositionEntity(axis, position, &worldFromAxis)) {
    return false;
  }
  *dir = worldFromAxis.ApplyToVector3D(axis.GetEntityLink().GetDir());
  return true;
}

bool KinematicOracle::AreApartOrParallel(MachineCompute* calculator,
                                         const MachinePosition& position,
                                         const RotaryRequest& rotary) const {
  std::vector<Vector3D> dirs;
  for (const Entity* entity : Chain(rotary.tool)) {
    const int reg = entity->GetRegister().GetVal();
    Vector3D dir;
    if (reg == rotary.r0 || reg == rotary.r1) {
      if (!WorldDirection(calculator, *entity, position, &dir)) {
        return false;
      }
      dirs.push_back(dir);
    }
  }
  if (dirs.size() != 2) {
    return false;
  }
  const double sine = (dirs[0] & dirs[1]).Norm();
  return sine < 1e-7 || sine > 0.05;
}

bool KinematicOracle::IsRigidLinear(MachineCompute* calculator, const MachinePosition& position,
                                    const LinearRequest& linear) const {
  const Entity* const head = machine_->GetKinematic().GetEntityHead(HeadIndex(linear.tool.head));
  const Entity* const table =
      machine_->GetKinematic().GetEntityTable(TableIndex(linear.tool.table));
  if (head == nullptr || table == nullptr || !IsRigid(*head, position) ||
      !IsRigid(*table, position) || !AreOrdinary(linear.point) || !AreOrdinary(linear.offset)) {
    return false;
  }
  Vector3D dirs[3];
  for (int i = 0; i < 3; ++i) {
    const int reg = linear.registers[i];
    const Entity* const axis = machine_->GetKinematic().GetEntity(Register(reg));
    if (!MovesOnce(linear.tool, reg) ||
        axis->GetEntityLink().GetEntityLinkType() != EntityLinkTypeLinear) {
      return false;
    }
    // The element that the register finds must be the one on the way.
    const std::vector<const Entity*> chain = Chain(linear.tool);
    if (std::find(chain.begin(), chain.end(), axis) == chain.end() ||
        !WorldDirection(calculator, *axis, position, &dirs[i])) {
      return false;
    }
  }
  return AreRightAngled(dirs[0], dirs[1], dirs[2]);
}

bool KinematicOracle::AreWithinRanges(const LinearRequest& linear, const Vector3D& xyz,
                                      bool* flags) const {
  for (int i = 0; i < 3; ++i) {
    const Entity* const axis = machine_->GetKinematic().GetEntity(Register(linear.registers[i]));
    flags[i] = axis == nullptr || !axis->GetCheckRangeAxis() ||
               (!(xyz[i] < axis->GetRangeMin()) && !(xyz[i] > axis->GetRangeMax()));
  }
  return flags[0] && flags[1] && flags[2];
}

Vector3D KinematicOracle::Limits(const LinearRequest& linear,
                                 double (Entity::*limit)() const) const {
  Vector3D limits;
  for (int i = 0; i < 3; ++i) {
    const Entity* const axis = machine_->GetKinematic().GetEntity(Register(linear.registers[i]));
    limits[i] = axis == nullptr ? 0.0 : (axis->*limit)();
  }
  return limits;
}

}  // namespace Orvo::Fuzz
