#include "compute/MachineComputeImplementation.h"

#include <Orvo/Kin/MachineCompute.h>

namespace Orvo::Kin {

MachineCompute::MachineCompute(const Machine& machine)
    : implementation_(std::make_shared<MachineComputeImplementation>(machine)) {}

MachineCompute::MachineCompute(const MachineCompute& other) = default;

MachineCompute& MachineCompute::operator=(const MachineCompute& other) = default;

MachineCompute::~MachineCompute() = default;

MachineComputeErrorType MachineCompute::GetLastError() { return implementation_->lastError; }

void MachineCompute::BuildAxisChain(const HeadIndex& head, const TableIndex& table) {
  implementation_->chain.Build(implementation_->machine->GetKinematic(), head, table);
}

bool MachineCompute::Fail(MachineComputeErrorType error) {
  implementation_->lastError = error;
  return false;
}

}  // namespace Orvo::Kin
