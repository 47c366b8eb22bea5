#include "model/KinematicImplementation.h"
#include "model/ParentForest.h"

#include <Orvo/Kin/Machine.h>

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Orvo::Kin {

namespace {

using EntityTable = std::vector<const Entity*>;

// Ids and registers are places in tables: this bounds each table to 128 MB of addresses.
constexpr int LargestPlace = 16777215;

constexpr int SmallestLinearAxesNb = 3;

/// What the assembly asks of an element. Elements lie all over the memory; their data side by side
/// spare going there for every question.
struct ElementData {
  explicit ElementData(Entity* given)
      : entity(given),
        type(given->GetEntityType()),
        id(given->GetEntityId().GetVal()),
        parentId(given->GetParentEntityId().GetVal()),
        reg(given->GetRegister().GetVal()) {}

  Entity* entity;
  EntityType type;
  int id;
  int parentId;
  int reg;
};

struct Extent {
  int entityIdMax = -1;
  int registerMax = 0;
};

Extent MeasureExtent(const std::vector<ElementData>& elements) {
  Extent extent;
  for (const ElementData& element : elements) {
    extent.entityIdMax = std::max(extent.entityIdMax, element.id);
    extent.registerMax = std::max(extent.registerMax, element.reg);
  }
  if (extent.entityIdMax > LargestPlace) {
    throw std::length_error("Machine::Finish : identifier out of range");
  }
  if (extent.registerMax > LargestPlace) {
    throw std::length_error("Machine::Finish : register out of range");
  }
  return extent;
}

// Places the elements at their ids or registers; of equal ones the last in the list stays.
PlaceTable MakeTable(const std::vector<ElementData>& elements, int size, bool isVector,
                     int ElementData::*place) {
  PlaceTable table(static_cast<std::size_t>(size), isVector);
  for (const ElementData& element : elements) {
    if (element.*place >= 0) {
      table.Set(static_cast<std::size_t>(element.*place), element.entity);
    }
  }
  return table;
}

EntityTable CollectType(const std::vector<ElementData>& elements, EntityType type) {
  EntityTable table;
  for (const ElementData& element : elements) {
    if (element.type == type) {
      table.push_back(element.entity);
    }
  }
  return table;
}

bool IsAlong(const Vector3D& dir, const Vector3D& axis) {
  return dir == axis || dir == Vector3D(-axis[0], -axis[1], -axis[2]);
}

// The first head and table, the last linear axes that point exactly along X, Y and Z, the first two
// rotary axes by ascending register.
ProgramSystem MakeDefaultProgramSystem(const std::list<Entity>& entities) {
  const Vector3D mainAxes[3] = {AxisX, AxisY, AxisZ};
  Register linear[3];
  Register rotary[2];
  for (const Entity& entity : entities) {
    const EntityLink& link = entity.GetEntityLink();
    if (link.GetEntityLinkType() == EntityLinkTypeLinear) {
      for (int i = 0; i < 3; ++i) {
        if (IsAlong(link.GetDir(), mainAxes[i])) {
          linear[i] = entity.GetRegister();
        }
      }
    } else if (link.GetEntityLinkType() == EntityLinkTypeRotary) {
      if (!rotary[0].IsDefined()) {
        rotary[0] = entity.GetRegister();
      } else if (!rotary[1].IsDefined()) {
        rotary[1] = entity.GetRegister();
      }
    }
  }
  if (rotary[0].IsDefined() && rotary[1].IsDefined() && rotary[0] > rotary[1]) {
    std::swap(rotary[0], rotary[1]);
  }
  ProgramSystem programSystem;
  programSystem.SetTableIndex(TableIndex(0));
  programSystem.SetHeadIndex(HeadIndex(0));
  if (linear[0].IsDefined() && linear[1].IsDefined() && linear[2].IsDefined()) {
    programSystem.SetMainLinear(linear[0], linear[1], linear[2]);
  }
  programSystem.SetMainRotary(rotary[0], rotary[1]);
  programSystem.SetProgramSystemName(L"Default");
  return programSystem;
}

}  // namespace

bool Machine::Finish() {
  KinematicImplementation& store = *kinematic_.implementation_;
  std::list<Entity>& entities = store.entities;

  // Everything that may throw comes first; the machine changes only after it.
  std::vector<ElementData> elements;
  elements.reserve(entities.size());
  for (Entity& entity : entities) {
    elements.emplace_back(&entity);
  }
  const Extent extent = MeasureExtent(elements);
  PlaceTable byEntityId =
      MakeTable(elements, extent.entityIdMax + 1, store.byEntityId.IsVector(), &ElementData::id);
  PlaceTable byRegister =
      MakeTable(elements, extent.registerMax + 1, store.byRegister.IsVector(), &ElementData::reg);
  EntityTable tables = CollectType(elements, EntityTypeTable);
  EntityTable heads = CollectType(elements, EntityTypeHead);
  std::list<ProgramSystem> defaultProgramSystem;
  if (programSystems_->empty() && !tables.empty() && !heads.empty()) {
    defaultProgramSystem.push_back(MakeDefaultProgramSystem(entities));
  }
  std::vector<int> parents(elements.size());
  std::vector<int> levels(elements.size());

  entityNb_ = static_cast<int>(entities.size());
  entityIdMax_ = EntityId(extent.entityIdMax);
  registerNb_ = Register(extent.registerMax + 1);
  tableNb_ = TableIndex(static_cast<int>(tables.size()));
  headNb_ = HeadIndex(static_cast<int>(heads.size()));
  std::swap(store.byEntityId, byEntityId);
  std::swap(store.byRegister, byRegister);
  store.tables.swap(tables);
  store.heads.swap(heads);
  programSystems_->splice(programSystems_->end(), defaultProgramSystem);

  // Until the levels are known, each element's level holds its place in the list.
  for (std::size_t i = 0; i < elements.size(); ++i) {
    elements[i].entity->SetLevel(static_cast<int>(i));
  }
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const Entity* const parent = store.byEntityId.At(elements[i].parentId);
    parents[i] = parent == nullptr ? NoPlace : parent->GetLevel();
  }
  hasParentCycle_ = CutParentCycles(&parents, &levels);
  CountAncestors(parents, &levels);
  for (std::size_t i = 0; i < elements.size(); ++i) {
    Entity& entity = *elements[i].entity;
    entity.SetParentEntity(
        parents[i] == NoPlace ? nullptr : elements[static_cast<std::size_t>(parents[i])].entity);
    entity.SetLevel(levels[i]);
    entity.CountChangesIn(&store.changeNb);
  }
  ++store.changeNb;

  linearAxesNb_ = CountLinearAxesNb();
  finished_ = IsValid();
  return finished_;
}

bool Machine::IsValid() {
  if (hasParentCycle_) {
    lastError_ = MachineErrorParentCycle;
  } else if (headNb_.GetVal() < 1) {
    lastError_ = MachineErrorNoHead;
  } else if (tableNb_.GetVal() < 1) {
    lastError_ = MachineErrorNoTable;
  } else if (linearAxesNb_ < SmallestLinearAxesNb) {
    lastError_ = MachineErrorFewLinearAxes;
  } else {
    lastError_ = MachineErrorNone;
  }
  return lastError_ == MachineErrorNone;
}

int Machine::CountLinearAxesNb() const {
  const std::list<Entity>& entities = kinematic_.GetListEntity();
  return static_cast<int>(std::count_if(entities.begin(), entities.end(), [](const Entity& entity) {
    return entity.GetEntityType() == EntityTypeAxis &&
           entity.GetEntityLink().GetEntityLinkType() == EntityLinkTypeLinear;
  }));
}

}  // namespace Orvo::Kin
