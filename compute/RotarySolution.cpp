#include "compute/MachineComputeImplementation.h"
#include "compute/RegisterBounds.h"
#include "compute/RotaryAngles.h"
#include "compute/RotaryCore.h"
#include "compute/RotaryPair.h"
#include "geometry/VectorKernel.h"
#include "model/PositionAccess.h"

#include <Orvo/Kin/MachineCompute.h>

#include <cstddef>
#include <vector>

namespace Orvo::Kin {

namespace {

// Without rotary axes, the tool points along a direction where their dot product exceeds this.
constexpr double AlignedCosine = 0.99;

void SetToZero(const Register& reg, std::vector<double>* values) {
  if (reg.IsDefined()) {
    (*values)[static_cast<std::size_t>(reg.GetVal())] = 0.0;
  }
}

/// A requested rotary axis as the chain from table to head holds it.
struct ChainAxis {
  const Entity* entity = nullptr;
  double sideSign = 0.0;
  int place = 0;
};

}  // namespace

bool MachineCompute::ComputeToolIjkTcsToMcsAbc(const MachinePosition& pos, const HeadIndex& head,
                                               const TableIndex& table, const Vector3D& ijk,
                                               const Register& r0, const Register& r1,
                                               RotariesSolution* sol) {
  if (sol == nullptr) {
    return Fail(ComputeErrorNullOutput);
  }
  // First, since all of the solution waits for its square root.
  const RequestedDirection target(ijk);
  MachineComputeImplementation& record = *implementation_;
  if (KeptResults* const kept = record.kept.Current(record.machine->kinematic_)) {
    const std::vector<double>& values = PositionAccess::Values(pos);
    const KinematicImplementation& store = KinematicAccess::Store(record.machine->kinematic_);
    RotaryPlacement* const placement = kept->rotary.Find(
        {store.Head(head), store.Table(table), {r0.GetVal(), r1.GetVal(), -1}}, values.size());
    if (placement != nullptr) {
      std::vector<double>& scratch = record.SetScratch(values);
      SetToZero(r0, &scratch);
      SetToZero(r1, &scratch);
      placement->Compute(values.data());
      if (placement->Solve(target, sol)) {
        return true;
      }
    }
  }
  return ComputeRotariesAnew(pos, head, table, ijk, r0, r1, sol);
}

// With all that can fail, and what may be kept of it for the next call; near thresholds too.
bool MachineCompute::ComputeRotariesAnew(const MachinePosition& pos, const HeadIndex& head,
                                         const TableIndex& table, const Vector3D& ijk,
                                         const Register& r0, const Register& r1,
                                         RotariesSolution* sol) {
  const Register registers[2] = {r0, r1};
  MachineComputeImplementation& record = *implementation_;
  const std::vector<double>& values = PositionAccess::Values(pos);
  const KinematicImplementation& store = KinematicAccess::Store(record.machine->kinematic_);
  KeptResults* const kept = record.kept.Current(record.machine->kinematic_);
  const KeptResults::EndsAndRegisters key{
      store.Head(head), store.Table(table), {r0.GetVal(), r1.GetVal(), -1}};
  RotaryPlacement* placement = kept == nullptr ? nullptr : kept->rotary.Find(key, values.size());
  Store(RotaryAngles(), sol);
  if (placement == nullptr && values.empty()) {
    return Fail(ComputeErrorEmptyPosition);
  }
  std::vector<double>& scratch = record.SetScratch(values);
  for (const Register& reg : registers) {
    if (reg.IsDefined()) {
      if (!HasRegister(pos, reg)) {
        return Fail(ComputeErrorRegister);
      }
      SetToZero(reg, &scratch);
    }
  }
  if (placement == nullptr) {
    if (r0.IsDefined() && r0.GetVal() == r1.GetVal()) {
      return Fail(ComputeErrorRegister);
    }
    BuildAxisChain(head, table);
    if (record.chain.IsEmpty()) {
      return Fail(ComputeErrorNoHeadOrTable);
    }
    if (kept != nullptr) {
      placement = kept->rotary.Make(key, values.size(), [&](RotaryPlacement* made) {
        return made->Build(record.chain, registers);
      });
    }
  }

  const RotaryDirections* directions;
  RotaryDirections found;
  if (placement != nullptr) {
    directions = &placement->Compute(values.data());
  } else if (FindRotaryDirections(record.scratch, registers, &found)) {
    directions = &found;
  } else {
    return false;
  }

  if (!r0.IsDefined() && !r1.IsDefined()) {
    sol->Count = Dot(ijk, directions->tool) > AlignedCosine ? 1 : 0;
    return true;
  }
  if (!r0.IsDefined()) {
    sol->Count = SolveOneRotary(directions->axes[1], directions->tool, ijk, &sol->Beta1);
    return true;
  }
  if (!r1.IsDefined()) {
    sol->Count = SolveOneRotary(directions->axes[0], directions->tool, ijk, &sol->Alpha1);
    return true;
  }
  // The axis nearer the head turns the tool first.
  const int nearer = directions->isAlphaNearerHead ? 0 : 1;
  const int farther = 1 - nearer;
  if (!ComputeAngles(directions->axes[nearer], directions->axes[farther], directions->tool, ijk,
                     registers[nearer], registers[farther], sol)) {
    return Fail(ComputeErrorNoSolution);
  }
  if (!directions->isAlphaNearerHead) {
    SwapSolAlphaBeta(sol);
  }
  return true;
}

// Link by link, with whatever fails.
bool MachineCompute::FindRotaryDirections(const MachinePosition& pos, const Register registers[2],
                                          RotaryDirections* directions) {
  const AxisChain& chain = implementation_->chain;
  ChainAxis axes[2];
  const bool areRotary =
      chain.Walk([registers, &axes](const Entity& entity, double sideSign, int place) {
        for (int i = 0; i < 2; ++i) {
          if (registers[i].IsDefined() && entity.GetRegister().GetVal() == registers[i].GetVal()) {
            if (entity.GetEntityType() == EntityTypeAxis &&
                entity.GetEntityLink().GetEntityLinkType() != EntityLinkTypeRotary) {
              return false;
            }
            axes[i] = {&entity, sideSign, place};
            break;
          }
        }
        return true;
      });
  if (!areRotary) {
    return Fail(ComputeErrorRegister);
  }

  // Deliberate: where a link fails, the product of those below it is used.
  Matrix43 worldFromTable;
  ComputePositionEntity(*chain.Table(), pos, &worldFromTable);
  Matrix43 worldFromHead;
  ComputePositionEntity(*chain.Head(), pos, &worldFromHead);
  Matrix43 tableFromWorld = worldFromTable.HInverse();
  directions->tool = (tableFromWorld * worldFromHead).GetW();

  for (int i = 0; i < 2; ++i) {
    if (registers[i].IsDefined()) {
      if (axes[i].entity == nullptr) {
        return Fail(ComputeErrorRegister);
      }
      Vector3D axisInWorld;
      if (!ComputeWorldEntityDir(pos, *axes[i].entity, &axisInWorld)) {
        return false;
      }
      directions->axes[i] = tableFromWorld.ApplyToVector3D(axisInWorld);
      directions->axes[i] *= axes[i].sideSign;
    }
  }
  directions->isAlphaNearerHead = axes[0].place > axes[1].place;
  return true;
}

// Deliberate: always true; the count tells whether there is a solution.
bool MachineCompute::ComputeAngles(const Vector3D& axis1, const Vector3D& axis2,
                                   const Vector3D& tool, const Vector3D& target,
                                   const Register& /*reg1*/, const Register& reg2,
                                   RotariesSolution* sol) {
  SolveTwoRotaries(axis1, axis2, tool, target, reg2, &implementation_->intersection, sol);
  return true;
}

void MachineCompute::SwapSolAlphaBeta(RotariesSolution* sol) { SwapAlphaBeta(sol); }

}  // namespace Orvo::Kin
