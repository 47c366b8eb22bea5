#include "compute/EntityOrder.h"
#include "compute/MachineComputeImplementation.h"
#include "compute/RegisterBounds.h"
#include "compute/ToolOffset.h"
#include "geometry/VectorKernel.h"
#include "model/PositionAccess.h"

#include <Orvo/Angle.h>
#include <Orvo/Kin/MachineCompute.h>

namespace Orvo::Kin {

namespace {

// The place of an id among the frames, or none.
Matrix43* Slot(std::vector<Matrix43>* frames, const EntityId& id) {
  return id.IsDefined() && static_cast<std::size_t>(id.GetVal()) < frames->size()
             ? &(*frames)[static_cast<std::size_t>(id.GetVal())]
             : nullptr;
}

}  // namespace

bool MachineCompute::ComputeRelativePosition(const EntityLink& link, const Register& reg,
                                             const MachinePosition& pos, Matrix43* frame) {
  if (frame == nullptr) {
    return Fail(ComputeErrorNullOutput);
  }
  frame->SetIdentity();
  switch (link.GetEntityLinkType()) {
    case EntityLinkTypeLinear: {
      if (!HasRegister(pos, reg)) {
        return Fail(ComputeErrorRegister);
      }
      Vector3D dir = link.GetDir();
      frame->SetTrans(dir * (link.GetZeroRef(0) + pos[reg]));
      return true;
    }
    case EntityLinkTypeRotary: {
      if (!HasRegister(pos, reg)) {
        return Fail(ComputeErrorRegister);
      }
      Angle angle;
      angle.SetDegre(pos[reg]);
      frame->SetRotation(link.GetDir(), angle);
      frame->SetTrans(Minus(link.GetCenter(), frame->ApplyToVector3D(link.GetCenter())));
      return true;
    }
    case EntityLinkTypePosition:
      *frame = link.GetPosition();
      return true;
    case EntityLinkTypeIdentity:
      return true;
    default:
      return Fail(ComputeErrorLinkType);
  }
}

bool MachineCompute::ComputePositionEntity(const Entity& entity, const MachinePosition& pos,
                                           Matrix43* frame) {
  if (frame == nullptr) {
    return Fail(ComputeErrorNullOutput);
  }
  if (pos.Size() == 0) {
    return Fail(ComputeErrorEmptyPosition);
  }
  frame->SetIdentity();
  for (const Entity* current = &entity; current != nullptr; current = current->GetParentEntity()) {
    Matrix43 parentFromCurrent;
    if (!ComputeRelativePosition(current->GetEntityLink(), current->GetRegister(), pos,
                                 &parentFromCurrent)) {
      return false;
    }
    *frame = parentFromCurrent * *frame;
  }
  return true;
}

bool MachineCompute::ComputePositionMachine(const MachinePosition& pos,
                                            std::vector<Matrix43>* frames) {
  MachineComputeImplementation& record = *implementation_;
  const Machine& machine = *record.machine;
  if (record.kept.AreCurrent(machine.kinematic_) && machine.finished_ && frames != nullptr) {
    const std::vector<double>& values = PositionAccess::Values(pos);
    AllFrames* const all = record.kept.frames.FindLatest({}, values.size());
    if (all != nullptr && frames->size() == all->FrameNb()) {
      return all->Compute(values.data(), frames->data());
    }
  }
  return ComputeAllFramesAnew(pos, frames);
}

// With all that can fail, and what may be kept of it for the next call.
bool MachineCompute::ComputeAllFramesAnew(const MachinePosition& pos,
                                          std::vector<Matrix43>* frames) {
  MachineComputeImplementation& record = *implementation_;
  const Machine& machine = *record.machine;
  if (!machine.finished_) {
    return Fail(ComputeErrorNotFinished);
  }
  if (frames == nullptr) {
    return Fail(ComputeErrorNullOutput);
  }
  const std::vector<double>& values = PositionAccess::Values(pos);
  if (values.empty()) {
    return Fail(ComputeErrorEmptyPosition);
  }
  if (record.entityOrder.empty()) {
    record.entityOrder = OrderParentsFirst(machine.GetKinematic().GetListEntity());
  }
  const auto frameNb = static_cast<std::size_t>(machine.entityIdMax_.GetVal() + 1);
  if (frames->size() != frameNb) {
    frames->resize(frameNb);
  }
  KeptResults* const kept = record.kept.Current(machine.kinematic_);
  AllFrames* const all =
      kept == nullptr ? nullptr : kept->frames.Make({}, values.size(), [&](AllFrames* made) {
        return made->Build(record.entityOrder, frameNb);
      });
  if (all != nullptr) {
    return all->Compute(values.data(), frames->data());
  }
  for (const Entity* entity : record.entityOrder) {
    // Deliberate: a link that fails counts as the identity.
    Matrix43 parentFromEntity;
    ComputeRelativePosition(entity->GetEntityLink(), entity->GetRegister(), pos, &parentFromEntity);
    Matrix43* const worldFromEntity = Slot(frames, entity->GetEntityId());
    if (worldFromEntity == nullptr) {
      continue;
    }
    const Entity* const parent = entity->GetParentEntity();
    Matrix43* const worldFromParent =
        parent == nullptr ? nullptr : Slot(frames, parent->GetEntityId());
    *worldFromEntity =
        worldFromParent == nullptr ? parentFromEntity : *worldFromParent * parentFromEntity;
  }
  return true;
}

bool MachineCompute::ComputeMcsToToolTcs(const MachinePosition& pos, const HeadIndex& head,
                                         const TableIndex& table, const Vector3D& offset,
                                         Matrix43* frame) {
  MachineComputeImplementation& record = *implementation_;
  const Machine& machine = *record.machine;
  if (record.kept.AreCurrent(machine.kinematic_) && machine.finished_ && frame != nullptr) {
    const std::vector<double>& values = PositionAccess::Values(pos);
    const KinematicImplementation& store = KinematicAccess::Store(machine.kinematic_);
    TableFromHead* const tableFromHead =
        record.kept.tableFromHead.FindLatest({store.Head(head), store.Table(table)}, values.size());
    if (tableFromHead != nullptr) {
      return tableFromHead->Compute(values.data(), offset, frame);
    }
  }
  return ComputeTableFromHeadAnew(pos, head, table, offset, frame);
}

// With all that can fail, and what may be kept of it for the next call.
bool MachineCompute::ComputeTableFromHeadAnew(const MachinePosition& pos, const HeadIndex& head,
                                              const TableIndex& table, const Vector3D& offset,
                                              Matrix43* frame) {
  MachineComputeImplementation& record = *implementation_;
  const Machine& machine = *record.machine;
  if (!machine.finished_) {
    return Fail(ComputeErrorNotFinished);
  }
  if (frame == nullptr) {
    return Fail(ComputeErrorNullOutput);
  }
  const KinematicImplementation& store = KinematicAccess::Store(machine.kinematic_);
  const Entity* const headEntity = store.Head(head);
  const Entity* const tableEntity = store.Table(table);
  if (headEntity == nullptr || tableEntity == nullptr) {
    return Fail(ComputeErrorNoHeadOrTable);
  }
  const std::vector<double>& values = PositionAccess::Values(pos);
  if (values.empty()) {
    return Fail(ComputeErrorEmptyPosition);
  }
  if (KeptResults* const kept = record.kept.Current(machine.kinematic_)) {
    TableFromHead* const tableFromHead = kept->tableFromHead.Make(
        {headEntity, tableEntity}, values.size(),
        [&](TableFromHead* made) { return made->Build(*headEntity, *tableEntity); });
    if (tableFromHead != nullptr) {
      return tableFromHead->Compute(values.data(), offset, frame);
    }
  }
  Matrix43 worldFromHead;
  Matrix43 worldFromTable;
  if (!ComputePositionEntity(*headEntity, pos, &worldFromHead) ||
      !ComputePositionEntity(*tableEntity, pos, &worldFromTable)) {
    return false;
  }
  *frame = worldFromTable.HInverse() * worldFromHead * HeadFromToolPoint(offset);
  return true;
}

bool MachineCompute::ComputeWorldEntityDir(const MachinePosition& pos, const Entity& entity,
                                           Vector3D* dir) {
  if (dir == nullptr) {
    return Fail(ComputeErrorNullOutput);
  }
  if (entity.GetEntityType() != EntityTypeAxis) {
    return Fail(ComputeErrorNotAxis);
  }
  const EntityLink& link = entity.GetEntityLink();
  if (link.GetEntityLinkType() != EntityLinkTypeLinear &&
      link.GetEntityLinkType() != EntityLinkTypeRotary) {
    return Fail(ComputeErrorAxisLinkType);
  }
  *dir = link.GetDir();
  // Deliberate: where a link above fails, the product of those below it is applied.
  Matrix43 worldFromParent;
  if (entity.GetParentEntity() != nullptr) {
    ComputePositionEntity(*entity.GetParentEntity(), pos, &worldFromParent);
  }
  *dir = worldFromParent.ApplyToVector3D(*dir);
  return true;
}

}  // namespace Orvo::Kin
