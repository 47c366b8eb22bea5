#pragma once

#include "property/Draw.h"

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Matrix43.h>

#include <memory>
#include <string>
#include <vector>

namespace Orvo::Testing {

/// Draws a machine of rigid frames and clean axes, finished.
std::unique_ptr<Kin::Machine> RigidMachine(Property::Draw& draw);

/// Draws any machine, of calls or from a file, finished where it can be.
std::unique_ptr<Kin::Machine> AnyMachine(Property::Draw& draw);

/// Reads an example machine with its meshes.
std::unique_ptr<Kin::Machine> ExampleMachineWithMeshes(const std::string& name);

/// Draws a value for each register, linear ones and turns alike.
Kin::MachinePosition DrawPosition(Property::Draw& draw, const Kin::Machine& machine);

/// Returns worldFromNode of each element in the order of the list: the element's frame, moved into
/// its center where it is a rotary axis that can be placed.
std::vector<Matrix43> NodeFrames(const Kin::Machine& machine, const Kin::MachinePosition& position);

/// Returns the largest coordinate of the origins, at least 1.
double SizeOf(const std::vector<Matrix43>& frames);

/// Returns the largest difference of two frames: of the directions, and of the origins in parts of
/// `size`.
double Difference(const Matrix43& a, const Matrix43& b, double size);

/// Makes a machine of a bed, three linear axes, a head and a table, not finished.
void MakeSmallMachine(Kin::Machine* machine);

}  // namespace Orvo::Testing
