#include "model/KinematicImplementation.h"

#include <Orvo/Kin/Kinematic.h>

namespace Orvo::Kin {

Kinematic::Kinematic() : implementation_(std::make_shared<KinematicImplementation>()) {}

Kinematic::Kinematic(const Kinematic& other) = default;

Kinematic& Kinematic::operator=(const Kinematic& other) = default;

Kinematic::~Kinematic() = default;

const std::list<Entity>& Kinematic::GetListEntity() const { return implementation_->entities; }

const Entity* Kinematic::GetEntity(const EntityId& id) const {
  return implementation_->byEntityId.At(id.GetVal());
}

const Entity* Kinematic::GetEntity(const Register& reg) const {
  return implementation_->byRegister.At(reg.GetVal());
}

const Entity* Kinematic::GetEntityHead(const HeadIndex& head) const {
  return implementation_->Head(head);
}

const Entity* Kinematic::GetEntityTable(const TableIndex& table) const {
  return implementation_->Table(table);
}

std::list<Entity>* Kinematic::GetListEntityMod() { return &implementation_->entities; }

std::vector<const Entity*>* Kinematic::GetVectorSortedByEntityIdMod() {
  return implementation_->byEntityId.AsVector();
}

std::vector<const Entity*>* Kinematic::GetVectorSortedByRegisterMod() {
  return implementation_->byRegister.AsVector();
}

std::vector<const Entity*>* Kinematic::GetVectorHeadMod() { return &implementation_->heads; }

std::vector<const Entity*>* Kinematic::GetVectorTableMod() { return &implementation_->tables; }

}  // namespace Orvo::Kin
