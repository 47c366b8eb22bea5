#pragma once

#include <Orvo/Kin/EntityId.h>

#include <string>

namespace Orvo::Kin {

/// Names the file of a mesh after its machine's file: the path up to its last ".", "_", the
/// element's id, "_", the mesh's index, ".stl". Deliberate: a "." in the name of a folder counts
/// where the file's own name has none.
std::wstring MeshFileName(const std::wstring& machinePath, const EntityId& id,
                          unsigned int meshIndex);

}  // namespace Orvo::Kin
