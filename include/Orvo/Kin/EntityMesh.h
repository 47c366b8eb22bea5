#pragma once

#include <Orvo/Export.h>
#include <Orvo/Mesh.h>

#include <memory>
#include <string>

namespace Orvo::Kin {

struct EntityMeshImplementation;

/// Lists the meshes of one element, each with a color, in the order in which they were added.
///
/// A color is passed through unchanged; its encoding is the caller's. An index outside the list
/// gives null, 0 or false. Not copyable: it owns its meshes.
class ORVO_API EntityMesh {
 public:
  /// Makes an empty list.
  EntityMesh();
  EntityMesh(const EntityMesh&) = delete;
  EntityMesh& operator=(const EntityMesh&) = delete;

  /// Destroys all meshes of the list.
  virtual ~EntityMesh();

  /// Appends a mesh, which may be null, and takes it over.
  ///
  /// @param mesh  made with `new`, and added to no other list
  /// @param color  passed through unchanged
  /// @throws std::bad_alloc when there is no memory; the mesh then stays the caller's
  void AddMesh(Mesh* mesh, unsigned int color);

  /// Appends an empty mesh and reads a binary STL file into it.
  ///
  /// @return what ReadCadStlBin() returns; the mesh stays in the list, filled or not
  /// @throws std::bad_alloc as ReadCadStlBin() does; the mesh stays in the list, empty
  bool AddCadStlBin(const std::wstring& fileName, unsigned int color);

  /// Returns the number of meshes.
  unsigned int GetMeshNb() const;

  /// Returns a mesh, or null outside the list.
  const Mesh* GetMesh(int i) const;

  /// Returns the color of a mesh, or 0 outside the list.
  unsigned int GetMeshColor(int i) const;

  /// Reads a binary STL file into mesh @p i, which takes new arrays; each triangle has three
  /// vertices and one normal of its own. Earlier arrays stay alive with the mesh.
  ///
  /// @return false, and the mesh unchanged, when the index is outside the list or its mesh null,
  ///   when the file can't be opened, can't be read to its end or is shorter than its 84 bytes of
  ///   header, and when its count of triangles is 0 or above 1431655765. A file that ends early
  ///   gives true: the arrays then have the size that the count says, and hold zeros behind the
  ///   last triangle.
  /// @throws std::bad_alloc when the arrays don't fit the address space; the mesh is unchanged
  /// @par Cost
  /// Linear in the bytes that the file has. Memory behind the last triangle is not touched.
  bool ReadCadStlBin(const std::wstring& fileName, int i);

  /// Writes mesh @p i to a binary STL file. Coordinates are rounded to single precision; those
  /// beyond its range become infinite.
  ///
  /// @return false when the index is outside the list or its mesh null, when the file can't be
  ///   opened or any byte of it can't be written, when a face has more than 3 vertices, and when
  ///   an index lies outside its array; what was written then stays. Faces with fewer than 3
  ///   vertices are left out.
  bool WriteCadStlBin(const std::wstring& fileName, int i) const;

 private:
  std::unique_ptr<EntityMeshImplementation> implementation_;
};

}  // namespace Orvo::Kin
