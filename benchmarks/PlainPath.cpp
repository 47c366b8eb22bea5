#include "PlainPath.h"

#include "compute/MachineComputeImplementation.h"
#include "compute/ProgramSystemComputeImplementation.h"
#include "tests/support/PrivateMember.h"

#include <memory>

namespace Orvo::Testing {

struct MachineRecordOf {
  using Type = std::shared_ptr<Kin::MachineComputeImplementation> Kin::MachineCompute::*;
  friend Type MemberOf(MachineRecordOf);
};
template struct PrivateMember<MachineRecordOf, &Kin::MachineCompute::implementation_>;

struct ProgramSystemRecordOf {
  using Type =
      std::shared_ptr<Kin::ProgramSystemComputeImplementation> Kin::ProgramSystemCompute::*;
  friend Type MemberOf(ProgramSystemRecordOf);
};
template struct PrivateMember<ProgramSystemRecordOf, &Kin::ProgramSystemCompute::implementation_>;

}  // namespace Orvo::Testing

namespace Orvo::Benchmarks {

void UsePlainPath(const Kin::MachineCompute& compute) {
  (compute.*MemberOf(Testing::MachineRecordOf{}))->kept.SwitchOff();
}

void UsePlainPath(const Kin::ProgramSystemCompute& compute) {
  UsePlainPath((compute.*MemberOf(Testing::ProgramSystemRecordOf{}))->calculator);
}

}  // namespace Orvo::Benchmarks
