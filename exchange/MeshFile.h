#pragma once

#include <Orvo/Kin/Machine.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace Orvo::Exchange {

/// Names a mesh's file: the base, "_", the element's id, "_", the mesh's index, ".stl".
std::string MeshFileName(std::string_view base, const Kin::Entity& entity, int mesh);

/// Returns what such names begin with for a machine in a file: its name without the last suffix.
std::string MeshBaseOf(const std::filesystem::path& file);

/// Writes the meshes of a machine beside a file, named after it.
/// @throws ExchangeError
void WriteMeshFiles(const Kin::Machine& machine, const std::filesystem::path& file);

}  // namespace Orvo::Exchange
