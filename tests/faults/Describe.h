#pragma once

#include <Orvo/Angle.h>
#include <Orvo/Kin/CollisionCheck.h>
#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityLink.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Mesh.h>

#include <string>
#include <vector>

namespace Orvo::Testing {

// What can be asked of an object, as text: equal texts mean equal objects, to the last bit of each
// number. Pointers appear as what they lead to, so that twins give the same text.

std::string Describe(const Vector3D& vector);
std::string Describe(const Matrix43& frame);
std::string Describe(const Angle& angle);
std::string Describe(const Mesh& mesh);
std::string Describe(const Kin::EntityMesh& list);
std::string Describe(const Kin::EntityLink& link);
std::string Describe(const Kin::Entity& entity);
std::string Describe(Kin::ProgramSystem programSystem);
std::string Describe(const Kin::MachinePosition& position);
std::string Describe(const Kin::RotariesSolution& solution);
std::string Describe(const std::vector<Matrix43>& frames);

/// Asks for the elements of a collision list up to an id, and for their partners.
std::string Describe(const Kin::CollisionCheck& check, int largestId);

/// Asks for all of a machine: counts, lookups, elements with links, parents and meshes, program
/// systems and collision lists.
std::string Describe(Kin::Machine& machine);

}  // namespace Orvo::Testing
