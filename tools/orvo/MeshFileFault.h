#pragma once

#include <filesystem>
#include <string>

namespace OrvoTool {

/// Returns why a mesh file can't be read as one, or nothing.
/// @param isMissing  receives whether it is not there
/// @throws Failure where it is there and can't be read
std::string FindMeshFileFault(const std::filesystem::path& file, bool* isMissing);

}  // namespace OrvoTool
