#pragma once

#include <Orvo/Export.h>
#include <Orvo/Vector3D.h>

#include <memory>

namespace Orvo {

struct MeshArray;

/// Holds the surface of one machine element as indexed polygons.
///
/// Five arrays: NVerts (vertices of each face; its count is the number of faces), IVertex (for
/// each face in order, the indices of its corners in Vertices), Vertices, INormal (for each corner,
/// the index of its normal in Normals) and Normals. Lengths are in the caller's unit, the frame is
/// the element's own. No kinematic computation reads a mesh.
///
/// A copy shares the arrays. An array lives as long as the mesh that it was made for, even when a
/// newer one has taken its place, and as long as any copy made since; assigning to a mesh lets go
/// of what it held. Nothing checks the indices here; the file writer does.
class ORVO_API Mesh {
 public:
  /// Makes an empty mesh: null arrays, counts 0.
  Mesh();

  /// Makes a second mesh on the same arrays.
  Mesh(const Mesh& other);

  /// Lets go of the own arrays and shares those of the other mesh.
  Mesh& operator=(const Mesh& other);
  virtual ~Mesh();

  /// @{
  /// Makes a new array of @p n elements, all zero, and returns it. An array made earlier for the
  /// same member stays alive with the mesh: a mesh is meant to be filled once.
  /// @throws std::bad_alloc when there is no memory; the mesh is unchanged
  unsigned int* AllocTabNVerts(unsigned int n);
  unsigned int* AllocTabIVertex(unsigned int n);
  Vector3D* AllocTabVertices(unsigned int n);
  unsigned int* AllocTabINormal(unsigned int n);
  Vector3D* AllocTabNormals(unsigned int n);
  /// @}

  /// @{
  /// Returns an array, or null where none was made.
  const unsigned int* GetTabNVerts() const;
  const unsigned int* GetTabIVertex() const;
  const Vector3D* GetTabVertices() const;
  const unsigned int* GetTabINormal() const;
  const Vector3D* GetTabNormals() const;
  /// @}

  /// @{
  /// Returns the number of elements of an array.
  unsigned int GetDimNVerts() const;
  unsigned int GetDimIVertex() const;
  unsigned int GetDimVertices() const;
  unsigned int GetDimINormal() const;
  unsigned int GetDimNormals() const;
  /// @}

 private:
  friend struct MeshAccess;
  void* Alloc(unsigned int n, unsigned int elementSize);

  std::shared_ptr<MeshArray> newestArray_;
  unsigned int* nVerts_ = nullptr;
  unsigned int* iVertex_ = nullptr;
  Vector3D* vertices_ = nullptr;
  unsigned int* iNormal_ = nullptr;
  Vector3D* normals_ = nullptr;
  unsigned int dimNVerts_ = 0;
  unsigned int dimIVertex_ = 0;
  unsigned int dimVertices_ = 0;
  unsigned int dimINormal_ = 0;
  unsigned int dimNormals_ = 0;
};

}  // namespace Orvo
