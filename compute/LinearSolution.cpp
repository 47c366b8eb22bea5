#include "compute/MachineComputeImplementation.h"
#include "compute/RegisterBounds.h"
#include "compute/ToolOffset.h"
#include "geometry/VectorKernel.h"
#include "model/PositionAccess.h"

#include <Orvo/Kin/MachineCompute.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace Orvo::Kin {

namespace {

// An axis that is not on the chain may be asked for a value up to this size.
constexpr double LargestMissingValue = 0.001;

void SetToZero(const Register registers[3], std::vector<double>* values) {
  for (int i = 0; i < 3; ++i) {
    (*values)[static_cast<std::size_t>(registers[i].GetVal())] = 0.0;
  }
}

}  // namespace

bool MachineCompute::ComputeToolTcsToMcsXyz(const MachinePosition& pos, const HeadIndex& head,
                                            const TableIndex& table, const Vector3D& offset,
                                            const Register& x, const Register& y, const Register& z,
                                            const Vector3D& point, Vector3D* xyz) {
  MachineComputeImplementation& record = *implementation_;
  const Machine& machine = *record.machine;
  const Register registers[3] = {x, y, z};
  if (record.kept.AreCurrent(machine.kinematic_) && machine.finished_ && xyz != nullptr) {
    const std::vector<double>& values = PositionAccess::Values(pos);
    const KinematicImplementation& store = KinematicAccess::Store(machine.kinematic_);
    LinearPlacement* const placement = record.kept.linear.Find(
        {store.Head(head), store.Table(table), {x.GetVal(), y.GetVal(), z.GetVal()}},
        values.size());
    if (placement != nullptr) {
      SetToZero(registers, &record.SetScratch(values));
      return placement->Compute(values.data(), offset, point, xyz);
    }
  }
  return ComputeLinearsAnew(pos, head, table, offset, registers, point, xyz);
}

// With all that can fail, and what may be kept of it for the next call.
bool MachineCompute::ComputeLinearsAnew(const MachinePosition& pos, const HeadIndex& head,
                                        const TableIndex& table, const Vector3D& offset,
                                        const Register registers[3], const Vector3D& point,
                                        Vector3D* xyz) {
  MachineComputeImplementation& record = *implementation_;
  const Machine& machine = *record.machine;
  if (!machine.finished_) {
    return Fail(ComputeErrorNotFinished);
  }
  if (xyz == nullptr) {
    return Fail(ComputeErrorNullOutput);
  }
  if (!std::all_of(registers, registers + 3, [](const Register& reg) { return reg.IsDefined(); })) {
    return Fail(ComputeErrorRegister);
  }
  const std::vector<double>& values = PositionAccess::Values(pos);
  if (values.empty()) {
    return Fail(ComputeErrorEmptyPosition);
  }
  if (!std::all_of(registers, registers + 3,
                   [&pos](const Register& reg) { return HasRegister(pos, reg); })) {
    return Fail(ComputeErrorRegister);
  }
  BuildAxisChain(head, table);
  if (record.chain.IsEmpty()) {
    return Fail(ComputeErrorNoHeadOrTable);
  }
  SetToZero(registers, &record.SetScratch(values));
  if (KeptResults* const kept = record.kept.Current(machine.kinematic_)) {
    const KinematicImplementation& store = KinematicAccess::Store(machine.kinematic_);
    LinearPlacement* const placement =
        kept->linear.Make({store.Head(head),
                           store.Table(table),
                           {registers[0].GetVal(), registers[1].GetVal(), registers[2].GetVal()}},
                          values.size(), [&](LinearPlacement* made) {
                            return made->Build(record.chain, machine.GetKinematic(), registers);
                          });
    if (placement != nullptr) {
      return placement->Compute(values.data(), offset, point, xyz);
    }
  }

  const AxisChain& chain = record.chain;
  const MachinePosition& scratch = record.scratch;
  double sideSigns[3] = {0.0, 0.0, 0.0};
  int foundNb = 0;
  chain.Walk([&registers, &sideSigns, &foundNb](const Entity& entity, double sideSign, int) {
    if (IsLinearAxis(entity)) {
      for (int i = 0; i < 3; ++i) {
        if (entity.GetRegister().GetVal() == registers[i].GetVal()) {
          sideSigns[i] = sideSign;
          ++foundNb;
          break;
        }
      }
    }
    return true;
  });
  if (foundNb != 3) {
    return Fail(ComputeErrorRegister);
  }

  // Deliberate: where a link fails, the product of those below it is used.
  Matrix43 worldFromTable;
  ComputePositionEntity(*chain.Table(), scratch, &worldFromTable);
  Matrix43 worldFromHead;
  ComputePositionEntity(*chain.Head(), scratch, &worldFromHead);
  Matrix43 tableFromWorld = worldFromTable.HInverse();
  Matrix43 tableFromToolPoint = tableFromWorld * (worldFromHead * HeadFromToolPoint(offset));

  Vector3D dirInTable[3];
  for (int i = 0; i < 3; ++i) {
    const Entity* const axis = machine.GetKinematic().GetEntity(registers[i]);
    if (axis == nullptr || !ComputeWorldEntityDir(scratch, *axis, &dirInTable[i])) {
      return Fail(ComputeErrorRegister);
    }
  }
  for (int i = 0; i < 3; ++i) {
    dirInTable[i] = tableFromWorld.ApplyToVector3D(Times(dirInTable[i], sideSigns[i]));
  }

  // Deliberate: the directions count as orthonormal, whatever they are.
  Matrix43 tableFromAxisValues;
  tableFromAxisValues.SetUVWT(dirInTable[0], dirInTable[1], dirInTable[2],
                              tableFromToolPoint.GetTrans());
  Matrix43 axisValuesFromTable;
  try {
    axisValuesFromTable = tableFromAxisValues.HInverse();
  } catch (...) {
    return Fail(ComputeErrorRegister);
  }
  *xyz = axisValuesFromTable.ApplyToPoint(point);
  for (int i = 0; i < 3; ++i) {
    if (sideSigns[i] == 0.0 && std::fabs((*xyz)[i]) > LargestMissingValue) {
      return Fail(ComputeErrorRegister);
    }
  }
  return true;
}

}  // namespace Orvo::Kin
