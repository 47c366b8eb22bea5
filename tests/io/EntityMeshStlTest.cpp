#include "StlBytes.h"
#include "support/SameBits.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Mesh.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace Orvo::Testing {
namespace {

using Kin::Entity;
using Kin::EntityMesh;

std::string OneTriangle() { return StlHeader(1) + CountingRecord(1); }

// A mesh of one face with the given number of corners.
std::unique_ptr<Mesh> NewFace(unsigned int corners) {
  auto mesh = std::make_unique<Mesh>();
  mesh->AllocTabNVerts(1)[0] = corners;
  unsigned int* const iVertex = mesh->AllocTabIVertex(corners);
  mesh->AllocTabINormal(corners);
  Vector3D* const vertices = mesh->AllocTabVertices(corners);
  for (unsigned int i = 0; i < corners; ++i) {
    iVertex[i] = i;
    vertices[i].Set(i, 2.0 * i, 3.0 * i);
  }
  mesh->AllocTabNormals(1)[0].Set(0, 0, 1);
  return mesh;
}

void Add(EntityMesh& list, std::unique_ptr<Mesh> mesh, unsigned int color) {
  list.AddMesh(mesh.get(), color);
  static_cast<void>(mesh.release());
}

TEST(EntityMeshStl, TriangleIsWrittenAndReadBack) {
  const TemporaryFolder folder;
  EntityMesh list;
  Add(list, NewFace(3), 5);
  ASSERT_TRUE(list.WriteCadStlBin(folder.Wide("face.stl"), 0));
  EXPECT_EQ(folder.Read("face.stl"),
            StlHeader(1) + StlRecord({0, 0, 1, 0, 0, 0, 1, 2, 3, 2, 4, 6}));
  EntityMesh again;
  ASSERT_TRUE(again.AddCadStlBin(folder.Wide("face.stl"), 77));
  ASSERT_EQ(again.GetMeshNb(), 1U);
  EXPECT_EQ(again.GetMeshColor(0), 77U);
  const Mesh* const mesh = again.GetMesh(0);
  ASSERT_EQ(mesh->GetDimVertices(), 3U);
  EXPECT_EQ(mesh->GetTabNVerts()[0], 3U);
  EXPECT_EQ(mesh->GetTabIVertex()[2], 2U);
  EXPECT_EQ(mesh->GetTabINormal()[2], 0U);
  EXPECT_TRUE(SameBits(mesh->GetTabVertices()[2], Vector3D(2, 4, 6)));
}

TEST(EntityMeshStl, RecordStaysWhenReadingFails) {
  const TemporaryFolder folder;
  folder.Write("empty.stl", StlHeader(0));
  EntityMesh list;
  EXPECT_FALSE(list.AddCadStlBin(folder.Wide("missing.stl"), 7));
  EXPECT_FALSE(list.AddCadStlBin(folder.Wide("empty.stl"), 8));
  ASSERT_EQ(list.GetMeshNb(), 2U);
  ASSERT_NE(list.GetMesh(1), nullptr);
  EXPECT_EQ(list.GetMesh(1)->GetDimNVerts(), 0U);
  EXPECT_EQ(list.GetMeshColor(0), 7U);
  EXPECT_EQ(list.GetMeshColor(1), 8U);
}

TEST(EntityMeshStl, EntityMakesItsListFirst) {
  const TemporaryFolder folder;
  folder.Write("face.stl", OneTriangle());
  Entity entity;
  EXPECT_FALSE(entity.AddCadStlBin(folder.Wide("missing.stl"), 7));
  ASSERT_NE(entity.GetEntityMesh(), nullptr);
  EXPECT_EQ(entity.GetEntityMesh()->GetMeshNb(), 1U);
  EXPECT_TRUE(entity.AddCadStlBin(folder.Wide("face.stl"), 8));
  EXPECT_EQ(entity.GetEntityMesh()->GetMeshNb(), 2U);
  EXPECT_EQ(entity.GetEntityMesh()->GetMesh(1)->GetDimNVerts(), 1U);
}

TEST(EntityMeshStl, IndexOutsideTheListFails) {
  const TemporaryFolder folder;
  folder.Write("face.stl", OneTriangle());
  EntityMesh list;
  for (const int i : {0, -1, 1, 2147483647, -2147483647 - 1}) {
    EXPECT_FALSE(list.ReadCadStlBin(folder.Wide("face.stl"), i));
    EXPECT_FALSE(list.WriteCadStlBin(folder.Wide("out.stl"), i));
  }
  Add(list, NewFace(3), 5);
  for (const int i : {-1, 1, 2147483647}) {
    EXPECT_FALSE(list.ReadCadStlBin(folder.Wide("face.stl"), i));
    EXPECT_FALSE(list.WriteCadStlBin(folder.Wide("out.stl"), i));
  }
  EXPECT_FALSE(folder.Has("out.stl"));
}

TEST(EntityMeshStl, NullMeshFails) {
  const TemporaryFolder folder;
  folder.Write("face.stl", OneTriangle());
  EntityMesh list;
  list.AddMesh(nullptr, 5);
  EXPECT_FALSE(list.ReadCadStlBin(folder.Wide("face.stl"), 0));
  EXPECT_FALSE(list.WriteCadStlBin(folder.Wide("out.stl"), 0));
  EXPECT_FALSE(folder.Has("out.stl"));
}

TEST(EntityMeshStl, LargerFaceFailsAndItsPartStays) {
  const TemporaryFolder folder;
  EntityMesh list;
  Add(list, NewFace(4), 5);
  EXPECT_FALSE(list.WriteCadStlBin(folder.Wide("face.stl"), 0));
  EXPECT_EQ(folder.Read("face.stl"), StlHeader(1));
}

TEST(EntityMeshStl, SmallerFaceWritesNoTriangle) {
  const TemporaryFolder folder;
  EntityMesh list;
  Add(list, NewFace(2), 5);
  EXPECT_TRUE(list.WriteCadStlBin(folder.Wide("face.stl"), 0));
  EXPECT_EQ(folder.Read("face.stl"), StlHeader(0));
  EXPECT_FALSE(list.ReadCadStlBin(folder.Wide("face.stl"), 0)) << "which is then refused";
  EXPECT_EQ(list.GetMesh(0)->GetDimVertices(), 2U);
}

TEST(EntityMeshStl, ReadingFillsTheMeshAnew) {
  const TemporaryFolder folder;
  folder.Write("face.stl", OneTriangle());
  folder.Write("short.stl", "short");
  EntityMesh list;
  Add(list, NewFace(4), 5);
  Add(list, NewFace(2), 6);
  const Mesh* const mesh = list.GetMesh(0);
  EXPECT_FALSE(list.ReadCadStlBin(folder.Wide("short.stl"), 0));
  EXPECT_EQ(mesh->GetDimVertices(), 4U);
  EXPECT_TRUE(list.ReadCadStlBin(folder.Wide("face.stl"), 0));
  EXPECT_EQ(list.GetMesh(0), mesh) << "it is the same mesh";
  EXPECT_EQ(mesh->GetDimVertices(), 3U);
  EXPECT_EQ(list.GetMesh(1)->GetDimVertices(), 2U);
  EXPECT_EQ(list.GetMeshColor(0), 5U);
}

TEST(EntityMeshStl, ExistingFileIsReplaced) {
  const TemporaryFolder folder;
  folder.Write("face.stl", std::string(5000, 'x'));
  EntityMesh list;
  Add(list, NewFace(3), 5);
  ASSERT_TRUE(list.WriteCadStlBin(folder.Wide("face.stl"), 0));
  EXPECT_EQ(folder.Read("face.stl").size(), 134U);
}

}  // namespace
}  // namespace Orvo::Testing
