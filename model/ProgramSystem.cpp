#include "model/ProgramSystemImplementation.h"

#include <Orvo/Kin/ProgramSystem.h>

namespace Orvo::Kin {

ProgramSystem::ProgramSystem() : implementation_(std::make_unique<ProgramSystemImplementation>()) {}

ProgramSystem::ProgramSystem(const ProgramSystem& other)
    : implementation_(std::make_unique<ProgramSystemImplementation>(*other.implementation_)) {}

// The name, which alone can fail to be copied, is the first member: after that nothing has changed.
ProgramSystem& ProgramSystem::operator=(const ProgramSystem& other) {
  *implementation_ = *other.implementation_;
  return *this;
}

ProgramSystem::~ProgramSystem() = default;

void ProgramSystem::SetProgramSystemName(const std::wstring& name) { implementation_->name = name; }

void ProgramSystem::SetTableIndex(const TableIndex& table) { implementation_->tableIndex = table; }

void ProgramSystem::SetHeadIndex(const HeadIndex& head) { implementation_->headIndex = head; }

void ProgramSystem::SetMainLinear(const Register& x, const Register& y, const Register& z) {
  // The arguments may be this program system's own registers.
  const Register given[3] = {x, y, z};
  for (int i = 0; i < 3; ++i) {
    implementation_->mainLinear[i] = given[i];
  }
}

void ProgramSystem::SetMainRotary(const Register& r0, const Register& r1) {
  const Register given[2] = {r0, r1};
  for (int i = 0; i < 2; ++i) {
    implementation_->mainRotary[i] = given[i];
  }
}

void ProgramSystem::SetRotariesCompute(RotariesCompute rotariesCompute) {
  implementation_->rotariesCompute = rotariesCompute;
}

const std::wstring& ProgramSystem::GetProgramSystemName() const { return implementation_->name; }

const TableIndex& ProgramSystem::GetTableIndex() const { return implementation_->tableIndex; }

const HeadIndex& ProgramSystem::GetHeadIndex() const { return implementation_->headIndex; }

const Register& ProgramSystem::GetMainLinear(int i) const {
  return implementation_->mainLinear[i >= 0 && i < 3 ? i : 0];
}

const Register& ProgramSystem::GetMainRotary(int i) const {
  return implementation_->mainRotary[i >= 0 && i < 2 ? i : 0];
}

RotariesCompute ProgramSystem::GetRotariesCompute() { return implementation_->rotariesCompute; }

}  // namespace Orvo::Kin
