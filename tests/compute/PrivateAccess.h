#pragma once

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityLink.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Vector3D.h>

namespace Orvo::Kin {

struct MachineComputeImplementation;

}  // namespace Orvo::Kin

namespace Orvo::Testing {

/// Gives a link any kind, those that no setter gives and values outside the enumeration included.
void SetLinkType(Kin::EntityLink* link, int type);

/// Calls the calculator's own search for the world direction of an axis.
bool ComputeWorldEntityDir(Kin::MachineCompute& compute, const Kin::MachinePosition& pos,
                           const Kin::Entity& entity, Vector3D* dir);

/// Returns the record that the handles of a calculator share.
Kin::MachineComputeImplementation& RecordOf(const Kin::MachineCompute& compute);

/// Has a calculator compute everything plainly from now on, without anything kept from call to
/// call.
void KeepNothing(const Kin::MachineCompute& compute);
void KeepNothing(const Kin::ProgramSystemCompute& compute);

}  // namespace Orvo::Testing
