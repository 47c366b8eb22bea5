#include "MachineFiles.h"
#include "StlBytes.h"
#include "support/SameBits.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Mesh.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::Entity;
using Kin::EntityMesh;
using Kin::Machine;

// Appends a mesh of one triangle whose first vertex starts with a number.
void AddTriangle(Entity* entity, double number, unsigned int color) {
  auto mesh = std::make_unique<Mesh>();
  mesh->AllocTabNVerts(1)[0] = 3;
  unsigned int* const iVertex = mesh->AllocTabIVertex(3);
  iVertex[1] = 1;
  iVertex[2] = 2;
  mesh->AllocTabINormal(3);
  mesh->AllocTabVertices(3)[0].Set(number, 0, 0);
  mesh->AllocTabNormals(1)[0].Set(0, 0, 1);
  entity->AllocEntityMesh()->AddMesh(mesh.get(), color);
  static_cast<void>(mesh.release());
}

// Element 1 has two meshes, element 2 none, element 3 an empty list, element 4 one mesh.
Machine MachineWithMeshes() {
  Machine machine;
  Entity* const base = machine.AddEntityStatic(L"base", -1);
  AddTriangle(base, 10, 0xFF000000U);
  AddTriangle(base, 11, 7);
  machine.AddEntityStatic(L"plain", 1);
  machine.AddEntityStatic(L"empty", 1)->AllocEntityMesh();
  AddTriangle(machine.AddEntityStatic(L"arm", 1), 40, 9);
  return machine;
}

std::vector<std::string> FilesOf(const TemporaryFolder& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

using Names = std::vector<std::string>;

TEST(MeshPackage, OneFileForEachMeshStandsBesideTheMachineFile) {
  const TemporaryFolder folder;
  Machine machine = MachineWithMeshes();
  ASSERT_TRUE(machine.WriteMachineWithMeshStl(folder.Wide("mill.v2.xml")));
  EXPECT_EQ(FilesOf(folder),
            (Names{"mill.v2.xml", "mill.v2_1_0.stl", "mill.v2_1_1.stl", "mill.v2_4_0.stl"}));
  EXPECT_EQ(folder.Read("mill.v2.xml"), WrittenText(machine));
  EXPECT_EQ(folder.Read("mill.v2_1_1.stl"),
            StlHeader(1) + StlRecord({0, 0, 1, 11, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(MeshPackage, ComesBackWhole) {
  const TemporaryFolder folder;
  Machine machine = MachineWithMeshes();
  ASSERT_TRUE(machine.WriteMachineWithMeshStl(folder.Wide("mill.xml")));
  Machine again;
  ASSERT_TRUE(again.ReadMachineWithMeshStl(folder.Wide("mill.xml")));
  ASSERT_EQ(EntityCount(again), 4U);
  const EntityMesh* const base = EntityAt(again, 0).GetEntityMesh();
  ASSERT_NE(base, nullptr);
  ASSERT_EQ(base->GetMeshNb(), 2U);
  EXPECT_EQ(base->GetMeshColor(0), 0xFF000000U);
  EXPECT_EQ(base->GetMeshColor(1), 7U);
  EXPECT_TRUE(SameBits(base->GetMesh(0)->GetTabVertices()[0], Vector3D(10, 0, 0)));
  EXPECT_TRUE(SameBits(base->GetMesh(1)->GetTabVertices()[0], Vector3D(11, 0, 0)));
  EXPECT_EQ(EntityAt(again, 1).GetEntityMesh(), nullptr);
  EXPECT_EQ(EntityAt(again, 2).GetEntityMesh(), nullptr) << "an empty list isn't kept";
  EXPECT_TRUE(SameBits(EntityAt(again, 3).GetEntityMesh()->GetMesh(0)->GetTabVertices()[0],
                       Vector3D(40, 0, 0)));
}

TEST(MeshPackage, NameOfTheFolderMayHoldThePoint) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder.File("my.machines"));
  Machine machine = MachineWithMeshes();
  // The file's own name has no suffix, so the folder's is taken for it: the mesh files land there.
  ASSERT_TRUE(machine.WriteMachineWithMeshStl(folder.Wide("my.machines/mill")));
  EXPECT_EQ(FilesOf(folder), (Names{"my.machines", "my_1_0.stl", "my_1_1.stl", "my_4_0.stl"}));
  Machine again;
  EXPECT_TRUE(again.ReadMachineWithMeshStl(folder.Wide("my.machines/mill")));
}

TEST(MeshPackage, MachineFileThatFailsEndsTheWriting) {
  const TemporaryFolder folder;
  Machine machine = MachineWithMeshes();
  EXPECT_FALSE(machine.WriteMachineWithMeshStl(folder.Wide("missing/mill.xml")));
  Kin::ProgramSystem ps;
  ps.SetRotariesCompute(static_cast<Kin::RotariesCompute>(9));
  machine.AddProgramSystem(ps);
  EXPECT_FALSE(machine.WriteMachineWithMeshStl(folder.Wide("mill.xml")));
  EXPECT_TRUE(FilesOf(folder).empty());
}

TEST(MeshPackage, FirstMeshThatFailsEndsTheWriting) {
  const TemporaryFolder folder;
  Machine machine = MachineWithMeshes();
  std::filesystem::create_directory(folder.File("mill_1_1.stl"));
  EXPECT_FALSE(machine.WriteMachineWithMeshStl(folder.Wide("mill.xml")));
  EXPECT_EQ(FilesOf(folder), (Names{"mill.xml", "mill_1_0.stl", "mill_1_1.stl"}));
  EXPECT_FALSE(folder.Has("mill_4_0.stl"));
}

TEST(MeshPackage, NullMeshEndsTheWriting) {
  const TemporaryFolder folder;
  Machine machine = MachineWithMeshes();
  machine.AddEntityStatic(L"null", 1)->AllocEntityMesh()->AddMesh(nullptr, 3);
  AddTriangle(machine.AddEntityStatic(L"behind", 1), 60, 9);
  EXPECT_FALSE(machine.WriteMachineWithMeshStl(folder.Wide("mill.xml")));
  EXPECT_TRUE(folder.Has("mill_4_0.stl"));
  EXPECT_FALSE(folder.Has("mill_5_0.stl"));
  EXPECT_FALSE(folder.Has("mill_6_0.stl"));
}

TEST(MeshPackage, MachineFileThatFailsEndsTheReading) {
  const TemporaryFolder folder;
  Machine machine;
  EXPECT_FALSE(machine.ReadMachineWithMeshStl(folder.Wide("mill.xml")));
  folder.Write("mill.xml", "<Machine/>");
  EXPECT_FALSE(machine.ReadMachineWithMeshStl(folder.Wide("mill.xml")));
}

TEST(MeshPackage, FirstMeshFileThatFailsEndsTheReading) {
  const TemporaryFolder folder;
  Machine machine = MachineWithMeshes();
  ASSERT_TRUE(machine.WriteMachineWithMeshStl(folder.Wide("mill.xml")));
  std::filesystem::remove(folder.File("mill_1_1.stl"));
  Machine again;
  EXPECT_FALSE(again.ReadMachineWithMeshStl(folder.Wide("mill.xml")));
  EXPECT_EQ(again.GetEntityNb(), 4) << "the machine stays, finished";
  const EntityMesh* const base = EntityAt(again, 0).GetEntityMesh();
  EXPECT_EQ(base->GetMesh(0)->GetDimVertices(), 3U);
  EXPECT_EQ(base->GetMesh(1)->GetDimVertices(), 0U);
  EXPECT_EQ(EntityAt(again, 3).GetEntityMesh()->GetMesh(0)->GetDimVertices(), 0U);
}

TEST(MeshPackage, BadMeshFileEndsTheReading) {
  const TemporaryFolder folder;
  Machine machine = MachineWithMeshes();
  ASSERT_TRUE(machine.WriteMachineWithMeshStl(folder.Wide("mill.xml")));
  folder.Write("mill_4_0.stl", StlHeader(0));
  Machine again;
  EXPECT_FALSE(again.ReadMachineWithMeshStl(folder.Wide("mill.xml")));
  folder.Write("mill_4_0.stl", StlHeader(2));
  Machine cut;
  EXPECT_TRUE(cut.ReadMachineWithMeshStl(folder.Wide("mill.xml"))) << "a short file is read";
  EXPECT_EQ(EntityAt(cut, 3).GetEntityMesh()->GetMesh(0)->GetDimNVerts(), 2U);
}

// Every mesh record that the machine then holds is read, those from before included.
TEST(MeshPackage, MeshesThatTheMachineHeldAreReadToo) {
  const TemporaryFolder folder;
  Machine machine = MachineWithMeshes();
  ASSERT_TRUE(machine.WriteMachineWithMeshStl(folder.Wide("mill.xml")));
  Machine own;
  AddTriangle(own.AddEntityStatic(L"own", -1), 99, 1);
  ASSERT_TRUE(own.ReadMachineWithMeshStl(folder.Wide("mill.xml")));
  ASSERT_EQ(EntityCount(own), 5U);
  EXPECT_TRUE(SameBits(EntityAt(own, 0).GetEntityMesh()->GetMesh(0)->GetTabVertices()[0],
                       Vector3D(10, 0, 0)))
      << "it has the id 1, and so the file of that id";
  Machine nullMesh;
  nullMesh.AddEntityStatic(L"own", -1)->AllocEntityMesh()->AddMesh(nullptr, 1);
  EXPECT_FALSE(nullMesh.ReadMachineWithMeshStl(folder.Wide("mill.xml")));
}

// One file of many elements makes no more memory than it has bytes.
TEST(MeshPackage, ElementsOfEqualIdsShareTheArraysOfTheirFile) {
  const TemporaryFolder folder;
  Machine machine;
  for (int i = 0; i < 3; ++i) {
    AddTriangle(machine.AddEntityStatic(L"element", -1), 0, 5);
    AddTriangle(machine.AddEntityStatic(L"element", -1), 0, 5);
  }
  ASSERT_TRUE(machine.WriteXML(folder.Wide("mill.xml")));
  std::string text = folder.Read("mill.xml");
  for (const char* const id : {"2", "4", "6"}) {
    text = Replaced(text, "<Id>" + std::string(id) + "</Id>", "<Id>9</Id>");
  }
  folder.Write("mill.xml", text);
  for (const int id : {1, 3, 5, 9}) {
    folder.Write("mill_" + std::to_string(id) + "_0.stl",
                 StlHeader(1) + CountingRecord(static_cast<float>(id)));
  }
  Machine read;
  ASSERT_TRUE(read.ReadMachineWithMeshStl(folder.Wide("mill.xml")));
  for (int i = 0; i < 6; ++i) {
    const Entity& entity = EntityAt(read, i);
    const Mesh& mesh = *entity.GetEntityMesh()->GetMesh(0);
    ASSERT_EQ(mesh.GetDimNVerts(), 1U);
    EXPECT_EQ(mesh.GetTabNormals()[0][0], static_cast<double>(entity.GetEntityId().GetVal()));
    const Mesh& other = *EntityAt(read, 1).GetEntityMesh()->GetMesh(0);
    EXPECT_EQ(mesh.GetTabVertices() == other.GetTabVertices(), i % 2 == 1);
  }
  // What one of them is given afterwards is its own.
  folder.Write("other.stl", StlHeader(1) + CountingRecord(70));
  ASSERT_TRUE(EntityModAt(read, 1).GetEntityMeshMod()->ReadCadStlBin(folder.Wide("other.stl"), 0));
  EXPECT_EQ(EntityAt(read, 1).GetEntityMesh()->GetMesh(0)->GetTabNormals()[0][0], 70.0);
  EXPECT_EQ(EntityAt(read, 3).GetEntityMesh()->GetMesh(0)->GetTabNormals()[0][0], 9.0);
}

// Arrays that a mesh had handed out stay alive, also where its file was read for another element.
TEST(MeshPackage, MeshesThatHeldArraysKeepThem) {
  const TemporaryFolder folder;
  Machine machine;
  for (int i = 0; i < 2; ++i) {
    AddTriangle(machine.AddEntityStatic(L"element", -1), 10 + i, 5);
    SetId(EntityModAt(machine, i), 9);
  }
  const Vector3D* const before = EntityAt(machine, 1).GetEntityMesh()->GetMesh(0)->GetTabVertices();
  folder.Write("mill.xml", MachineText(""));
  folder.Write("mill_9_0.stl", StlHeader(1) + CountingRecord(9));
  ASSERT_TRUE(machine.ReadMachineWithMeshStl(folder.Wide("mill.xml")));
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(EntityAt(machine, i).GetEntityMesh()->GetMesh(0)->GetTabNormals()[0][0], 9.0);
  }
  EXPECT_EQ(before[0][0], 11.0);
}

TEST(MeshPackage, MachineWithoutMeshesIsItsFile) {
  const TemporaryFolder folder;
  Machine machine;
  machine.AddEntityStatic(L"base", -1);
  ASSERT_TRUE(machine.WriteMachineWithMeshStl(folder.Wide("mill.xml")));
  EXPECT_EQ(FilesOf(folder), (Names{"mill.xml"}));
  Machine again;
  EXPECT_TRUE(again.ReadMachineWithMeshStl(folder.Wide("mill.xml")));
}

TEST(MeshPackage, NegativeIdsNameFilesToo) {
  const TemporaryFolder folder;
  Machine machine;
  AddTriangle(machine.AddEntityStatic(L"base", -1), 10, 1);
  SetId(EntityModAt(machine, 0), -4);
  ASSERT_TRUE(machine.WriteMachineWithMeshStl(folder.Wide("mill.xml")));
  EXPECT_EQ(FilesOf(folder), (Names{"mill.xml", "mill_-4_0.stl"}));
  Machine again;
  EXPECT_TRUE(again.ReadMachineWithMeshStl(folder.Wide("mill.xml")));
}

}  // namespace
}  // namespace Orvo::Testing
