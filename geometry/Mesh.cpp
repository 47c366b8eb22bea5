#include "geometry/MeshAccess.h"

#include <Orvo/Mesh.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <utility>

namespace Orvo {

/// One array of a mesh, and the one made before it: an array that was handed out stays alive.
struct MeshArray {
  MeshArray() = default;
  MeshArray(const MeshArray&) = delete;
  MeshArray& operator=(const MeshArray&) = delete;

  // Takes a chain of arrays apart one by one: their number must not become a depth of recursion.
  ~MeshArray() {
    std::free(elements);
    while (previous != nullptr && previous.use_count() == 1) {
      previous = std::exchange(previous->previous, nullptr);
    }
  }

  void* elements = nullptr;
  std::shared_ptr<MeshArray> previous;
};

static_assert(alignof(Vector3D) <= alignof(std::max_align_t));

Mesh::Mesh() = default;

Mesh::Mesh(const Mesh& other) = default;

Mesh& Mesh::operator=(const Mesh& other) = default;

Mesh::~Mesh() = default;

unsigned int* Mesh::AllocTabNVerts(unsigned int n) {
  nVerts_ = static_cast<unsigned int*>(Alloc(n, sizeof(unsigned int)));
  dimNVerts_ = n;
  return nVerts_;
}

unsigned int* Mesh::AllocTabIVertex(unsigned int n) {
  iVertex_ = static_cast<unsigned int*>(Alloc(n, sizeof(unsigned int)));
  dimIVertex_ = n;
  return iVertex_;
}

Vector3D* Mesh::AllocTabVertices(unsigned int n) {
  vertices_ = static_cast<Vector3D*>(Alloc(n, sizeof(Vector3D)));
  dimVertices_ = n;
  return vertices_;
}

unsigned int* Mesh::AllocTabINormal(unsigned int n) {
  iNormal_ = static_cast<unsigned int*>(Alloc(n, sizeof(unsigned int)));
  dimINormal_ = n;
  return iNormal_;
}

Vector3D* Mesh::AllocTabNormals(unsigned int n) {
  normals_ = static_cast<Vector3D*>(Alloc(n, sizeof(Vector3D)));
  dimNormals_ = n;
  return normals_;
}

const unsigned int* Mesh::GetTabNVerts() const { return nVerts_; }

const unsigned int* Mesh::GetTabIVertex() const { return iVertex_; }

const Vector3D* Mesh::GetTabVertices() const { return vertices_; }

const unsigned int* Mesh::GetTabINormal() const { return iNormal_; }

const Vector3D* Mesh::GetTabNormals() const { return normals_; }

unsigned int Mesh::GetDimNVerts() const { return dimNVerts_; }

unsigned int Mesh::GetDimIVertex() const { return dimIVertex_; }

unsigned int Mesh::GetDimVertices() const { return dimVertices_; }

unsigned int Mesh::GetDimINormal() const { return dimINormal_; }

unsigned int Mesh::GetDimNormals() const { return dimNormals_; }

// All elements are zero bits, which is 0 and the null vector alike. The C allocator takes large
// arrays as zero pages from the system, so what nobody writes costs address space, not memory.
void* Mesh::Alloc(unsigned int n, unsigned int elementSize) {
  auto array = std::make_shared<MeshArray>();
  array->elements = std::calloc(std::max(n, 1U), elementSize);
  if (array->elements == nullptr) {
    throw std::bad_alloc();
  }
  array->previous = std::move(newestArray_);
  newestArray_ = std::move(array);
  return newestArray_->elements;
}

MeshAccess::Triangles MeshAccess::AllocTriangles(Mesh* mesh, unsigned int triangleNb) {
  constexpr unsigned int VectorNb = 4;  // three vertices and a normal
  constexpr unsigned int NumberNb = 7;  // three indices of each, and the count of vertices
  constexpr unsigned int TriangleSize =
      VectorNb * sizeof(Vector3D) + NumberNb * sizeof(unsigned int);
  const std::size_t n = triangleNb;
  auto* const vectors = static_cast<Vector3D*>(mesh->Alloc(triangleNb, TriangleSize));
  auto* const numbers = reinterpret_cast<unsigned int*>(vectors + VectorNb * n);
  mesh->vertices_ = vectors;
  mesh->normals_ = vectors + 3 * n;
  mesh->iVertex_ = numbers;
  mesh->iNormal_ = numbers + 3 * n;
  mesh->nVerts_ = numbers + 6 * n;
  mesh->dimVertices_ = 3 * triangleNb;
  mesh->dimNormals_ = triangleNb;
  mesh->dimIVertex_ = 3 * triangleNb;
  mesh->dimINormal_ = 3 * triangleNb;
  mesh->dimNVerts_ = triangleNb;
  return {mesh->nVerts_, mesh->iVertex_, mesh->vertices_, mesh->iNormal_, mesh->normals_};
}

}  // namespace Orvo
