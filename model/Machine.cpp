#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>

namespace Orvo::Kin {

Machine::Machine() : programSystems_(std::make_shared<std::list<ProgramSystem>>()) {}

Machine::Machine(const Machine& other) = default;

Machine& Machine::operator=(const Machine& other) = default;

Machine::~Machine() = default;

Entity* Machine::AddEntity() {
  if (finished_) {
    return nullptr;
  }
  std::list<Entity> added(1);
  return AppendEntity(&added);
}

void Machine::AddEntity(const Entity& e) {
  if (!finished_) {
    std::list<Entity> added(1, e);
    AppendEntity(&added);
  }
}

Entity* Machine::AddEntityLinear(const std::wstring& name, const EntityId& parent,
                                 const Vector3D& dir) {
  EntityLink link;
  link.SetEntityLinkLinear(dir);
  return AddLinkedEntity(name, parent, EntityTypeAxis, link, true);
}

Entity* Machine::AddEntityRotary(const std::wstring& name, const EntityId& parent,
                                 const Vector3D& center, const Vector3D& dir) {
  EntityLink link;
  link.SetEntityLinkRotary(center, dir);
  return AddLinkedEntity(name, parent, EntityTypeAxis, link, true);
}

Entity* Machine::AddEntityStatic(const std::wstring& name, const EntityId& parent) {
  EntityLink link;
  link.SetEntityLinkPosition(Matrix43());
  return AddLinkedEntity(name, parent, EntityTypeAxis, link, false);
}

Entity* Machine::AddEntityHead(const std::wstring& name, const EntityId& parent,
                               const Matrix43& frame) {
  EntityLink link;
  link.SetEntityLinkPosition(frame);
  return AddLinkedEntity(name, parent, EntityTypeHead, link, false);
}

Entity* Machine::AddEntityTable(const std::wstring& name, const EntityId& parent,
                                const Matrix43& frame) {
  EntityLink link;
  link.SetEntityLinkPosition(frame);
  return AddLinkedEntity(name, parent, EntityTypeTable, link, false);
}

void Machine::AddProgramSystem(const ProgramSystem& ps) { programSystems_->push_back(ps); }

bool Machine::IsFinished() const { return finished_; }

MachineErrorType Machine::GetLastError() { return lastError_; }

const Kinematic& Machine::GetKinematic() const { return kinematic_; }

const CollisionCheck& Machine::GetCollisionCheck() const { return collisionCheck_; }

CollisionCheck& Machine::GetCollisionCheckMod() { return collisionCheck_; }

const Register& Machine::GetRegisterNb() const { return registerNb_; }

int Machine::GetEntityNb() const { return entityNb_; }

EntityId Machine::GetEntityIdMax() { return entityIdMax_; }

const TableIndex& Machine::GetTableNb() const { return tableNb_; }

const HeadIndex& Machine::GetHeadNb() const { return headNb_; }

int Machine::GetLinearAxesNb() const { return linearAxesNb_; }

const std::list<ProgramSystem>& Machine::GetListProgramSystem() const { return *programSystems_; }

ProgramSystemIndex Machine::GetProgramSystemNb() const {
  return ProgramSystemIndex(static_cast<int>(programSystems_->size()));
}

const ProgramSystem* Machine::GetProgramSystem(const ProgramSystemIndex& i) {
  if (!i.IsDefined() || static_cast<std::size_t>(i.GetVal()) >= programSystems_->size()) {
    return nullptr;
  }
  return &*std::next(programSystems_->begin(), i.GetVal());
}

void Machine::Alloc(MachinePosition* p) const {
  if (p != nullptr) {
    p->Alloc(registerNb_);
  }
}

// Takes over a list of one element. It is made outside the machine's list, so that nothing is left
// there when memory fails on the way.
Entity* Machine::AppendEntity(std::list<Entity>* added) {
  std::list<Entity>& entities = *kinematic_.GetListEntityMod();
  added->back().SetEntityId(EntityId(static_cast<int>(entities.size() + 1)));
  entities.splice(entities.end(), *added);
  return &entities.back();
}

Entity* Machine::AddLinkedEntity(const std::wstring& name, const EntityId& parent, EntityType type,
                                 const EntityLink& link, bool checkRangeAxis) {
  if (finished_) {
    return nullptr;
  }
  std::list<Entity> added(1);
  Entity& entity = added.back();
  entity.SetEntityType(type);
  entity.SetEntityName(name);
  entity.SetParentEntityId(parent);
  entity.SetEntityLink(link);
  entity.SetCheckRangeAxis(checkRangeAxis);
  return AppendEntity(&added);
}

}  // namespace Orvo::Kin
