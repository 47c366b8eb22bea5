#pragma once

#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Machine.h>

#include <filesystem>
#include <string>

namespace Orvo::Testing {

// A small machine that takes every path through the library: links of every kind, several heads and
// tables, names too long for a string to hold without memory and names of other scripts, meshes of
// several sizes, one of them with faces that a file leaves out, two program systems and every
// collision list.

/// Adds the sample's elements, program systems and collision lists to a machine; it is not
/// finished.
void BuildSample(Kin::Machine& machine);

/// Adds a mesh of separate triangles whose numbers count up from a first one.
void AddTriangles(Kin::EntityMesh& list, unsigned int triangleNb, double first);

/// Returns the machine file of an example.
std::filesystem::path ExampleMachineFile(const std::string& name);

}  // namespace Orvo::Testing
