#pragma once

#include "io/ByteStream.h"

#include <Orvo/Mesh.h>

namespace Orvo {

/// Reads a binary STL file into new arrays of a mesh, as EntityMesh::ReadCadStlBin says.
/// @return false, and the mesh unchanged, without 84 bytes of header, when the source fails, and
///   with a count of triangles that is 0 or whose triple is too large for an index
/// @throws std::bad_alloc when the arrays don't fit; the mesh is unchanged
bool DecodeStl(ByteSource* source, Mesh* mesh);

/// Writes a mesh as a binary STL file, as EntityMesh::WriteCadStlBin says.
/// @return false when the sink fails, for a face of more than 3 vertices and for an index outside
///   its array; the part before it is written
bool EncodeStl(const Mesh& mesh, ByteSink* sink);

}  // namespace Orvo
