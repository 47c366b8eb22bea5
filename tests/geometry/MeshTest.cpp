#include "support/SameBits.h"
#include "support/Signature.h"

#include <Orvo/Mesh.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <type_traits>

namespace Orvo {
namespace {

using Testing::HasSignature;
using Testing::SameBits;

static_assert(std::has_virtual_destructor_v<Mesh>);
static_assert(HasSignature<unsigned int* (Mesh::*)(unsigned int)>(&Mesh::AllocTabNVerts));
static_assert(HasSignature<unsigned int* (Mesh::*)(unsigned int)>(&Mesh::AllocTabIVertex));
static_assert(HasSignature<Vector3D* (Mesh::*)(unsigned int)>(&Mesh::AllocTabVertices));
static_assert(HasSignature<unsigned int* (Mesh::*)(unsigned int)>(&Mesh::AllocTabINormal));
static_assert(HasSignature<Vector3D* (Mesh::*)(unsigned int)>(&Mesh::AllocTabNormals));
static_assert(HasSignature<const unsigned int* (Mesh::*)() const>(&Mesh::GetTabNVerts));
static_assert(HasSignature<const Vector3D* (Mesh::*)() const>(&Mesh::GetTabVertices));
static_assert(HasSignature<unsigned int (Mesh::*)() const>(&Mesh::GetDimNVerts));

struct Dimensions {
  unsigned int nVerts, iVertex, vertices, iNormal, normals;
};

void ExpectDimensions(const Mesh& mesh, const Dimensions& expected) {
  EXPECT_EQ(mesh.GetDimNVerts(), expected.nVerts);
  EXPECT_EQ(mesh.GetDimIVertex(), expected.iVertex);
  EXPECT_EQ(mesh.GetDimVertices(), expected.vertices);
  EXPECT_EQ(mesh.GetDimINormal(), expected.iNormal);
  EXPECT_EQ(mesh.GetDimNormals(), expected.normals);
}

void Fill(Mesh* mesh) {
  unsigned int* nVerts = mesh->AllocTabNVerts(1);
  unsigned int* iVertex = mesh->AllocTabIVertex(3);
  Vector3D* vertices = mesh->AllocTabVertices(4);
  unsigned int* iNormal = mesh->AllocTabINormal(5);
  Vector3D* normals = mesh->AllocTabNormals(2);
  nVerts[0] = 3;
  for (unsigned int i = 0; i < 3; ++i) {
    iVertex[i] = 10 + i;
  }
  for (unsigned int i = 0; i < 4; ++i) {
    vertices[i] = Vector3D(i, 2.0 * i, 3.0 * i);
  }
  for (unsigned int i = 0; i < 5; ++i) {
    iNormal[i] = 20 + i;
  }
  normals[0] = AxisX;
  normals[1] = AxisY;
}

void ExpectFilled(const Mesh& mesh) {
  ExpectDimensions(mesh, {1, 3, 4, 5, 2});
  EXPECT_EQ(mesh.GetTabNVerts()[0], 3U);
  EXPECT_EQ(mesh.GetTabIVertex()[2], 12U);
  EXPECT_TRUE(SameBits(mesh.GetTabVertices()[3], Vector3D(3, 6, 9)));
  EXPECT_EQ(mesh.GetTabINormal()[4], 24U);
  EXPECT_TRUE(SameBits(mesh.GetTabNormals()[1], AxisY));
}

TEST(Mesh, StartsWithoutArrays) {
  const Mesh mesh;
  ExpectDimensions(mesh, {0, 0, 0, 0, 0});
  EXPECT_EQ(mesh.GetTabNVerts(), nullptr);
  EXPECT_EQ(mesh.GetTabIVertex(), nullptr);
  EXPECT_EQ(mesh.GetTabVertices(), nullptr);
  EXPECT_EQ(mesh.GetTabINormal(), nullptr);
  EXPECT_EQ(mesh.GetTabNormals(), nullptr);
}

TEST(Mesh, EachArrayHasItsOwnCount) {
  Mesh mesh;
  const unsigned int* nVerts = mesh.AllocTabNVerts(1);
  ExpectDimensions(mesh, {1, 0, 0, 0, 0});
  const unsigned int* iVertex = mesh.AllocTabIVertex(2);
  ExpectDimensions(mesh, {1, 2, 0, 0, 0});
  const Vector3D* vertices = mesh.AllocTabVertices(3);
  ExpectDimensions(mesh, {1, 2, 3, 0, 0});
  const unsigned int* iNormal = mesh.AllocTabINormal(4);
  ExpectDimensions(mesh, {1, 2, 3, 4, 0});
  const Vector3D* normals = mesh.AllocTabNormals(5);
  ExpectDimensions(mesh, {1, 2, 3, 4, 5});
  EXPECT_EQ(mesh.GetTabNVerts(), nVerts);
  EXPECT_EQ(mesh.GetTabIVertex(), iVertex);
  EXPECT_EQ(mesh.GetTabVertices(), vertices);
  EXPECT_EQ(mesh.GetTabINormal(), iNormal);
  EXPECT_EQ(mesh.GetTabNormals(), normals);
}

TEST(Mesh, NewArraysAreZeroAndAligned) {
  Mesh mesh;
  const unsigned int* nVerts = mesh.AllocTabNVerts(1000);
  const unsigned int* iVertex = mesh.AllocTabIVertex(1000);
  const unsigned int* iNormal = mesh.AllocTabINormal(1000);
  const Vector3D* vertices = mesh.AllocTabVertices(1000);
  const Vector3D* normals = mesh.AllocTabNormals(1000);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(vertices) % 16, 0U);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(normals) % 16, 0U);
  for (unsigned int i = 0; i < 1000; ++i) {
    ASSERT_EQ(nVerts[i], 0U);
    ASSERT_EQ(iVertex[i], 0U);
    ASSERT_EQ(iNormal[i], 0U);
    ASSERT_TRUE(SameBits(vertices[i], NullVector));
    ASSERT_TRUE(SameBits(normals[i], NullVector));
  }
}

TEST(Mesh, AnArrayOfNoElementsIsAnArray) {
  Mesh mesh;
  EXPECT_NE(mesh.AllocTabNVerts(0), nullptr);
  EXPECT_NE(mesh.AllocTabVertices(0), nullptr);
  ExpectDimensions(mesh, {0, 0, 0, 0, 0});
}

TEST(Mesh, ACopySharesTheArrays) {
  Mesh mesh;
  Fill(&mesh);
  const Mesh copy(mesh);
  ExpectFilled(copy);
  EXPECT_EQ(copy.GetTabNVerts(), mesh.GetTabNVerts());
  EXPECT_EQ(copy.GetTabIVertex(), mesh.GetTabIVertex());
  EXPECT_EQ(copy.GetTabVertices(), mesh.GetTabVertices());
  EXPECT_EQ(copy.GetTabINormal(), mesh.GetTabINormal());
  EXPECT_EQ(copy.GetTabNormals(), mesh.GetTabNormals());
  Mesh assigned;
  Fill(&assigned);
  EXPECT_EQ(&(assigned = mesh), &assigned);
  EXPECT_EQ(assigned.GetTabVertices(), mesh.GetTabVertices());
}

TEST(Mesh, ACopyOutlivesItsSource) {
  auto mesh = std::make_unique<Mesh>();
  Fill(mesh.get());
  const Mesh copy(*mesh);
  Mesh assigned;
  assigned = *mesh;
  mesh.reset();
  ExpectFilled(copy);
  ExpectFilled(assigned);
}

TEST(Mesh, TheSourceOutlivesItsCopy) {
  Mesh mesh;
  Fill(&mesh);
  { const Mesh copy(mesh); }
  ExpectFilled(mesh);
}

TEST(Mesh, AnAssignedMeshLeavesItsOldArraysToTheirCopies) {
  Mesh mesh;
  Fill(&mesh);
  const Mesh copy(mesh);
  mesh = Mesh();
  ExpectDimensions(mesh, {0, 0, 0, 0, 0});
  EXPECT_EQ(mesh.GetTabVertices(), nullptr);
  ExpectFilled(copy);
}

TEST(Mesh, AssignmentOntoItselfChangesNothing) {
  Mesh mesh;
  Fill(&mesh);
  const Mesh& self = mesh;
  mesh = self;
  ExpectFilled(mesh);
}

TEST(Mesh, AnArrayMadeEarlierStaysAliveWithTheMesh) {
  Mesh mesh;
  unsigned int* first = mesh.AllocTabIVertex(3);
  first[2] = 42;
  unsigned int* second = mesh.AllocTabIVertex(5);
  EXPECT_NE(first, second);
  EXPECT_EQ(mesh.GetTabIVertex(), second);
  EXPECT_EQ(mesh.GetDimIVertex(), 5U);
  EXPECT_EQ(first[2], 42U);
}

TEST(Mesh, AnArrayMadeEarlierStaysAliveWithACopyOfTheMesh) {
  auto mesh = std::make_unique<Mesh>();
  Vector3D* first = mesh->AllocTabVertices(2);
  first[1] = AxisZ;
  const Mesh before(*mesh);
  mesh->AllocTabVertices(7);
  const Mesh after(*mesh);
  mesh.reset();
  EXPECT_EQ(before.GetTabVertices(), first);
  EXPECT_EQ(before.GetDimVertices(), 2U);
  EXPECT_EQ(after.GetDimVertices(), 7U);
  EXPECT_TRUE(SameBits(first[1], AxisZ));
}

TEST(Mesh, ANewArrayInACopyIsNotSeenByItsSource) {
  Mesh mesh;
  Fill(&mesh);
  Mesh copy(mesh);
  copy.AllocTabNVerts(9)[8] = 1;
  EXPECT_EQ(copy.GetDimNVerts(), 9U);
  ExpectFilled(mesh);
  mesh.AllocTabNormals(8);
  EXPECT_EQ(copy.GetDimNormals(), 2U);
}

// The arrays must not be released by recursion.
TEST(Mesh, ReleasesAnyNumberOfArrays) {
  auto mesh = std::make_unique<Mesh>();
  for (int i = 0; i < 300000; ++i) {
    mesh->AllocTabNVerts(1)[0] = 7;
  }
  auto copy = std::make_unique<Mesh>(*mesh);
  mesh.reset();
  EXPECT_EQ(copy->GetTabNVerts()[0], 7U);
  copy.reset();
}

}  // namespace
}  // namespace Orvo
