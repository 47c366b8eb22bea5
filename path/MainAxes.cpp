#include "path/TextEncoding.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Path/MainAxes.h>

namespace Orvo::Path {
namespace {

bool IsInside(const Kin::Register& reg, const Kin::MachinePosition& position) {
  return reg.IsDefined() && static_cast<unsigned long long>(reg.GetVal()) < position.Size();
}

}  // namespace

MainAxes::MainAxes() = default;

MainAxes::MainAxes(const Kin::Machine& machine, const Kin::ProgramSystem& programSystem) {
  for (std::size_t i = 0; i < MainAxisNb; ++i) {
    const int place = static_cast<int>(i);
    MainAxis& axis = axes[i];
    axis.reg = i < FirstRotary ? programSystem.GetMainLinear(place)
                               : programSystem.GetMainRotary(place - static_cast<int>(FirstRotary));
    if (!axis.reg.IsDefined()) {
      continue;
    }
    axis.name = "register " + std::to_string(axis.reg.GetVal());
    const Kin::Entity* const entity = machine.GetKinematic().GetEntity(axis.reg);
    if (entity != nullptr) {
      axis.isPresent = true;
      axis.isChecked = entity->GetCheckRangeAxis();
      axis.min = entity->GetRangeMin();
      axis.max = entity->GetRangeMax();
      if (!entity->GetEntityName().empty()) {
        axis.name = Utf8FromWide(entity->GetEntityName());
      }
    }
  }
}

void MainAxes::Put(const AxisValues& values, Kin::MachinePosition* position) const {
  for (std::size_t i = 0; i < MainAxisNb; ++i) {
    if (IsInside(axes[i].reg, *position)) {
      (*position)[axes[i].reg] = values[i];
    }
  }
}

AxisValues MainAxes::Take(const Kin::MachinePosition& position) const {
  AxisValues values = {};
  for (std::size_t i = 0; i < MainAxisNb; ++i) {
    if (IsInside(axes[i].reg, position)) {
      values[i] = position[axes[i].reg];
    }
  }
  return values;
}

}  // namespace Orvo::Path
