#pragma once

#include <Orvo/Mesh.h>

namespace Orvo {

/// Reaches the arrays of a mesh.
struct MeshAccess {
  /// The arrays of a mesh of separate triangles, to be filled; all zero.
  struct Triangles {
    unsigned int* nVerts;
    unsigned int* iVertex;
    Vector3D* vertices;
    unsigned int* iNormal;
    Vector3D* normals;
  };

  /// Gives a mesh new arrays for triangles with three vertices and a normal of their own, as the
  /// members AllocTab... would, but all in one piece of memory.
  /// @param triangleNb  at most a third of the largest unsigned int
  /// @throws std::bad_alloc when there are no addresses for them; the mesh is unchanged
  static Triangles AllocTriangles(Mesh* mesh, unsigned int triangleNb);
};

}  // namespace Orvo
