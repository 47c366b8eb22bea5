#include "model/EntityImplementation.h"
#include "model/Words.h"

#include <Orvo/Kin/Entity.h>

namespace Orvo::Kin {

namespace {

// Values that calculators have taken down are about to change.
void CountChange(const EntityImplementation& record) {
  if (record.changeNb != nullptr) {
    ++*record.changeNb;
  }
}

}  // namespace

Entity::Entity() : implementation_(std::make_unique<EntityImplementation>()) {}

Entity::Entity(const Entity& other) : Entity() { *this = other; }

Entity& Entity::operator=(const Entity& other) {
  if (this == &other) {
    return *this;
  }
  EntityImplementation& to = *implementation_;
  const EntityImplementation& from = *other.implementation_;
  CountChange(to);
  to.name = from.name;
  to.entityType = from.entityType;
  to.parallelType = from.parallelType;
  to.entityId = from.entityId;
  to.parentEntityId = from.parentEntityId;
  to.reg = from.reg;
  to.isMotor = from.isMotor;
  to.checkRangeAxis = from.checkRangeAxis;
  to.isMounting = from.isMounting;
  to.link = from.link;
  // The pointer leads into the source's machine.
  to.parentEntity = nullptr;
  to.level = from.level;
  return *this;
}

Entity::~Entity() = default;

void Entity::SetEntityName(const std::wstring& name) { implementation_->name = name; }

void Entity::SetParentEntityId(const EntityId& id) { implementation_->parentEntityId = id; }

void Entity::SetRegister(const Register& reg) {
  CountChange(*implementation_);
  implementation_->reg = reg;
}

void Entity::SetIsMotor(bool isMotor) { implementation_->isMotor = isMotor; }

void Entity::SetCheckRangeAxis(bool checkRangeAxis) {
  CountChange(*implementation_);
  implementation_->checkRangeAxis = checkRangeAxis;
}

void Entity::SetIsMounting(bool isMounting) { implementation_->isMounting = isMounting; }

void Entity::SetEntityLink(const EntityLink& link) { implementation_->link = link; }

void Entity::SetRangeMin(double min) { implementation_->link.SetRangeMin(min); }

void Entity::SetRangeMax(double max) { implementation_->link.SetRangeMax(max); }

void Entity::SetRange(double min, double max) {
  SetRangeMin(min);
  SetRangeMax(max);
}

EntityMesh* Entity::AllocEntityMesh() {
  if (implementation_->mesh == nullptr) {
    implementation_->mesh = std::make_unique<EntityMesh>();
  }
  return implementation_->mesh.get();
}

bool Entity::AddCadStlBin(const std::wstring& fileName, unsigned int color) {
  return AllocEntityMesh()->AddCadStlBin(fileName, color);
}

const std::wstring& Entity::GetEntityName() const { return implementation_->name; }

const EntityType& Entity::GetEntityType() const { return implementation_->entityType; }

const EntityParallelType& Entity::GetEntityParallelType() const {
  return implementation_->parallelType;
}

const EntityId& Entity::GetEntityId() const { return implementation_->entityId; }

const EntityId& Entity::GetParentEntityId() const { return implementation_->parentEntityId; }

const Register& Entity::GetRegister() const { return implementation_->reg; }

bool Entity::GetIsMotor() const { return implementation_->isMotor; }

bool Entity::GetCheckRangeAxis() const { return implementation_->checkRangeAxis; }

bool Entity::GetIsMounting() const { return implementation_->isMounting; }

const EntityLink& Entity::GetEntityLink() const { return implementation_->link; }

EntityLink* Entity::GetEntityLinkMod() { return &implementation_->link; }

const EntityMesh* Entity::GetEntityMesh() const { return implementation_->mesh.get(); }

EntityMesh* Entity::GetEntityMeshMod() { return implementation_->mesh.get(); }

const Entity* Entity::GetParentEntity() const { return implementation_->parentEntity; }

int Entity::GetLevel() const { return implementation_->level; }

double Entity::GetRangeMin() const { return implementation_->link.GetRangeMin(); }

double Entity::GetRangeMax() const { return implementation_->link.GetRangeMax(); }

void Entity::SetEntityId(const EntityId& id) {
  CountChange(*implementation_);
  implementation_->entityId = id;
}

void Entity::SetEntityType(const EntityType& type) {
  CountChange(*implementation_);
  implementation_->entityType = type;
}

void Entity::SetEntityParallelType(const EntityParallelType& type) {
  implementation_->parallelType = type;
}

void Entity::SetLevel(int level) {
  CountChange(*implementation_);
  implementation_->level = level;
}

void Entity::SetParentEntity(const Entity* parent) {
  CountChange(*implementation_);
  implementation_->parentEntity = parent;
}

void Entity::CountChangesIn(unsigned long long* changeNb) {
  implementation_->changeNb = changeNb;
  implementation_->link.changeNb_ = changeNb;
}

bool Entity::GetEntityTypeFromDict(const std::wstring& word, EntityType& type) {
  return EntityTypeWords.Find(word, &type);
}

bool Entity::GetEntityParallelTypeFromDict(const std::wstring& word, EntityParallelType& type) {
  return EntityParallelTypeWords.Find(word, &type);
}

}  // namespace Orvo::Kin
