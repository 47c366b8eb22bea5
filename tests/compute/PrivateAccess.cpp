#include "PrivateAccess.h"

#include "compute/MachineComputeImplementation.h"
#include "compute/ProgramSystemComputeImplementation.h"
#include "support/PrivateMember.h"

#include <memory>

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

struct CalculatorRecordOf {
  using Type = std::shared_ptr<Kin::MachineComputeImplementation> Kin::MachineCompute::*;
  friend Type MemberOf(CalculatorRecordOf);
};
template struct PrivateMember<CalculatorRecordOf, &Kin::MachineCompute::implementation_>;

struct SolverRecordOf {
  using Type =
      std::shared_ptr<Kin::ProgramSystemComputeImplementation> Kin::ProgramSystemCompute::*;
  friend Type MemberOf(SolverRecordOf);
};
template struct PrivateMember<SolverRecordOf, &Kin::ProgramSystemCompute::implementation_>;

void SetLinkType(Kin::EntityLink* link, int type) {
  link->*MemberOf(LinkTypeOf{}) = static_cast<Kin::EntityLinkType>(type);
}

bool ComputeWorldEntityDir(Kin::MachineCompute& compute, const Kin::MachinePosition& pos,
                           const Kin::Entity& entity, Vector3D* dir) {
  return (compute.*MemberOf(WorldEntityDirOf{}))(pos, entity, dir);
}

Kin::MachineComputeImplementation& RecordOf(const Kin::MachineCompute& compute) {
  return *(compute.*MemberOf(CalculatorRecordOf{}));
}

void KeepNothing(const Kin::MachineCompute& compute) { RecordOf(compute).kept.SwitchOff(); }

void KeepNothing(const Kin::ProgramSystemCompute& compute) {
  KeepNothing((compute.*MemberOf(SolverRecordOf{}))->calculator);
}

}  // namespace Orvo::Testing
