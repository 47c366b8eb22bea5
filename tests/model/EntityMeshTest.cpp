#include "support/Signature.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Mesh.h>

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace Orvo::Kin {
namespace {

using Testing::HasSignature;
using Testing::TemporaryFolder;

static_assert(std::has_virtual_destructor_v<EntityMesh>);
static_assert(!std::is_copy_constructible_v<EntityMesh> && !std::is_copy_assignable_v<EntityMesh>);
static_assert(HasSignature<void (EntityMesh::*)(Mesh*, unsigned int)>(&EntityMesh::AddMesh));
static_assert(HasSignature<bool (EntityMesh::*)(const std::wstring&, unsigned int)>(
    &EntityMesh::AddCadStlBin));
static_assert(HasSignature<unsigned int (EntityMesh::*)() const>(&EntityMesh::GetMeshNb));
static_assert(HasSignature<const Mesh* (EntityMesh::*)(int) const>(&EntityMesh::GetMesh));
static_assert(HasSignature<unsigned int (EntityMesh::*)(int) const>(&EntityMesh::GetMeshColor));
static_assert(
    HasSignature<bool (EntityMesh::*)(const std::wstring&, int)>(&EntityMesh::ReadCadStlBin));
static_assert(HasSignature<bool (EntityMesh::*)(const std::wstring&, int) const>(
    &EntityMesh::WriteCadStlBin));

class CountedMesh : public Mesh {
 public:
  explicit CountedMesh(int* destroyed) : destroyed_(destroyed) {}
  CountedMesh(const CountedMesh&) = delete;
  CountedMesh& operator=(const CountedMesh&) = delete;
  ~CountedMesh() override { ++*destroyed_; }

 private:
  int* destroyed_;
};

const int Outside[] = {
    -1, -2, 2, 3, 1000, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};

TEST(EntityMesh, StartsEmpty) {
  const EntityMesh list;
  EXPECT_EQ(list.GetMeshNb(), 0U);
  EXPECT_EQ(list.GetMesh(0), nullptr);
  EXPECT_EQ(list.GetMeshColor(0), 0U);
  EXPECT_EQ(list.GetMesh(-1), nullptr);
  EXPECT_EQ(list.GetMeshColor(-1), 0U);
}

TEST(EntityMesh, KeepsMeshesAndColorsInOrder) {
  EntityMesh list;
  Mesh* const first = new Mesh;
  Mesh* const second = new Mesh;
  list.AddMesh(first, 5);
  list.AddMesh(second, 0xffffffffU);
  EXPECT_EQ(list.GetMeshNb(), 2U);
  EXPECT_EQ(list.GetMesh(0), first);
  EXPECT_EQ(list.GetMesh(1), second);
  EXPECT_EQ(list.GetMeshColor(0), 5U);
  EXPECT_EQ(list.GetMeshColor(1), 0xffffffffU);
}

TEST(EntityMesh, AnIndexOutsideGivesNullZeroAndFalse) {
  const TemporaryFolder folder;
  std::string bytes(134, '\0');
  bytes[80] = 1;
  folder.Write("one.stl", bytes);
  EntityMesh list;
  list.AddMesh(new Mesh, 5);
  list.AddMesh(new Mesh, 7);
  for (const int i : Outside) {
    SCOPED_TRACE(i);
    EXPECT_EQ(list.GetMesh(i), nullptr);
    EXPECT_EQ(list.GetMeshColor(i), 0U);
    EXPECT_FALSE(list.ReadCadStlBin(folder.Wide("one.stl"), i));
    EXPECT_FALSE(list.WriteCadStlBin(folder.Wide("written.stl"), i));
    EXPECT_FALSE(folder.Has("written.stl"));
  }
  const EntityMesh empty;
  EXPECT_FALSE(empty.WriteCadStlBin(folder.Wide("written.stl"), 0));
}

TEST(EntityMesh, MeshesStayWhereTheyAre) {
  EntityMesh list;
  std::vector<const Mesh*> added;
  for (unsigned int i = 0; i < 100; ++i) {
    Mesh* const mesh = new Mesh;
    list.AddMesh(mesh, i);
    added.push_back(mesh);
  }
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(list.GetMesh(i), added[static_cast<std::size_t>(i)]);
    EXPECT_EQ(list.GetMeshColor(i), static_cast<unsigned int>(i));
  }
}

TEST(EntityMesh, TakesMeshesOverAndDestroysThem) {
  int destroyed = 0;
  {
    EntityMesh list;
    list.AddMesh(new CountedMesh(&destroyed), 1);
    list.AddMesh(new CountedMesh(&destroyed), 2);
    list.AddMesh(new CountedMesh(&destroyed), 3);
    EXPECT_EQ(destroyed, 0);
  }
  EXPECT_EQ(destroyed, 3);
}

TEST(EntityMesh, ACopyOfAMeshOutlivesTheList) {
  Mesh copy;
  {
    EntityMesh list;
    Mesh* const mesh = new Mesh;
    mesh->AllocTabVertices(2)[1] = Vector3D(1, 2, 3);
    list.AddMesh(mesh, 1);
    copy = *list.GetMesh(0);
  }
  EXPECT_EQ(copy.GetTabVertices()[1] == Vector3D(1, 2, 3), 1);
}

TEST(EntityMesh, AMeshMayBeNull) {
  const TemporaryFolder folder;
  EntityMesh list;
  list.AddMesh(nullptr, 9);
  EXPECT_EQ(list.GetMeshNb(), 1U);
  EXPECT_EQ(list.GetMesh(0), nullptr);
  EXPECT_EQ(list.GetMeshColor(0), 9U);
  EXPECT_FALSE(list.WriteCadStlBin(folder.Wide("written.stl"), 0));
  EXPECT_FALSE(folder.Has("written.stl"));
  EXPECT_FALSE(list.ReadCadStlBin(folder.Wide("missing.stl"), 0));
}

TEST(EntityMesh, AddCadStlBinOfAMissingFileStillAddsAnEmptyMesh) {
  const TemporaryFolder folder;
  EntityMesh list;
  list.AddMesh(new Mesh, 1);
  EXPECT_FALSE(list.AddCadStlBin(folder.Wide("missing.stl"), 8));
  ASSERT_EQ(list.GetMeshNb(), 2U);
  ASSERT_NE(list.GetMesh(1), nullptr);
  EXPECT_EQ(list.GetMesh(1)->GetDimNVerts(), 0U);
  EXPECT_EQ(list.GetMesh(1)->GetTabNVerts(), nullptr);
  EXPECT_EQ(list.GetMeshColor(1), 8U);
}

}  // namespace
}  // namespace Orvo::Kin
