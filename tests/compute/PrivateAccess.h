#pragma once

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityLink.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Vector3D.h>

namespace Orvo::Testing {

/// Gives a link any kind, those that no setter gives and values outside the enumeration included.
void SetLinkType(Kin::EntityLink* link, int type);

/// Calls the calculator's own search for the world direction of an axis.
bool ComputeWorldEntityDir(Kin::MachineCompute& compute, const Kin::MachinePosition& pos,
                           const Kin::Entity& entity, Vector3D* dir);

}  // namespace Orvo::Testing
