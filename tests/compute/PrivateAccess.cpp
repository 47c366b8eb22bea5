#include "PrivateAccess.h"

#include "support/PrivateMember.h"

namespace Orvo::Testing {

struct LinkTypeOf {
  using Type = Kin::EntityLinkType Kin::EntityLink::*;
  friend Type MemberOf(LinkTypeOf);
};
template struct PrivateMember<LinkTypeOf, &Kin::EntityLink::type_>;

struct WorldEntityDirOf {
  using Type = bool (Kin::MachineCompute::*)(const Kin::MachinePosition&, const Kin::Entity&,
                                             Vector3D*);
  friend Type MemberOf(WorldEntityDirOf);
};
template struct PrivateMember<WorldEntityDirOf, &Kin::MachineCompute::ComputeWorldEntityDir>;

void SetLinkType(Kin::EntityLink* link, int type) {
  link->*MemberOf(LinkTypeOf{}) = static_cast<Kin::EntityLinkType>(type);
}

bool ComputeWorldEntityDir(Kin::MachineCompute& compute, const Kin::MachinePosition& pos,
                           const Kin::Entity& entity, Vector3D* dir) {
  return (compute.*MemberOf(WorldEntityDirOf{}))(pos, entity, dir);
}

}  // namespace Orvo::Testing
