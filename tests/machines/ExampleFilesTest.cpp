#include "machines/ExampleData.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/Machine.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

namespace Orvo::Testing {
namespace {

using Kin::Machine;

class ExampleFiles : public testing::TestWithParam<std::string> {};

// What the files hold, counted by hand.
struct Content {
  int entities = 0;
  int registers = 0;
  int heads = 0;
  int tables = 0;
  int linearAxes = 0;
  int programSystems = 0;
};

Content ContentOf(const std::string& name) {
  if (name == "millturn_2h2t") {
    return {16, 11, 2, 2, 7, 5};
  }
  const int programSystems = name == "head_table_bc" ? 3 : name == "trunnion_ac" ? 2 : 1;
  return {8, 5, 1, 1, 3, programSystems};
}

// Each machine can be computed with as soon as it is read.
TEST_P(ExampleFiles, IsReadAndFinished) {
  Machine machine;
  ASSERT_TRUE(machine.ReadXML(WideName(ExampleMachineFile(GetParam()))));
  EXPECT_TRUE(machine.IsFinished());
  EXPECT_EQ(machine.GetLastError(), Kin::MachineErrorNone);
  const Content content = ContentOf(GetParam());
  EXPECT_EQ(machine.GetEntityNb(), content.entities);
  EXPECT_EQ(machine.GetRegisterNb().GetVal(), content.registers);
  EXPECT_EQ(machine.GetHeadNb().GetVal(), content.heads);
  EXPECT_EQ(machine.GetTableNb().GetVal(), content.tables);
  EXPECT_EQ(machine.GetLinearAxesNb(), content.linearAxes);
  EXPECT_EQ(machine.GetProgramSystemNb().GetVal(), content.programSystems);
}

// The files are written as the library writes: nothing of them is lost or changed.
TEST_P(ExampleFiles, MachineIsWrittenBackByteForByte) {
  const TemporaryFolder folder;
  Machine machine;
  ASSERT_TRUE(machine.ReadXML(WideName(ExampleMachineFile(GetParam()))));
  ASSERT_TRUE(machine.WriteXML(folder.Wide("again.xml")));
  EXPECT_TRUE(folder.Read("again.xml") == ReadBytes(ExampleMachineFile(GetParam())));
}

// The package of a machine with its meshes comes back as the same files, and no others.
TEST_P(ExampleFiles, PackageIsWrittenBackByteForByte) {
  const TemporaryFolder folder;
  Machine machine;
  ASSERT_TRUE(machine.ReadMachineWithMeshStl(WideName(ExampleMachineFile(GetParam()))));
  ASSERT_TRUE(machine.WriteMachineWithMeshStl(folder.Wide(GetParam() + ".xml")));
  const std::filesystem::path source =
      std::filesystem::path(ExampleMachineFile(GetParam())).parent_path();
  std::set<std::string> sourceNames;
  for (const auto& entry : std::filesystem::directory_iterator(source)) {
    const std::string name = entry.path().filename().string();
    sourceNames.insert(name);
    ASSERT_TRUE(folder.Has(name)) << name;
    EXPECT_TRUE(folder.Read(name) == ReadBytes(entry.path().string())) << name;
  }
  std::set<std::string> writtenNames;
  for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
    writtenNames.insert(entry.path().filename().string());
  }
  EXPECT_EQ(writtenNames, sourceNames);
  EXPECT_GE(sourceNames.size(), 8U);
}

// Every mesh record has its file, and the file has triangles.
TEST_P(ExampleFiles, MeshesHoldTriangles) {
  Machine machine;
  ASSERT_TRUE(machine.ReadMachineWithMeshStl(WideName(ExampleMachineFile(GetParam()))));
  unsigned int meshes = 0;
  for (const Kin::Entity& entity : machine.GetKinematic().GetListEntity()) {
    const Kin::EntityMesh* list = entity.GetEntityMesh();
    for (unsigned int i = 0; list != nullptr && i < list->GetMeshNb(); ++i) {
      const Mesh* mesh = list->GetMesh(static_cast<int>(i));
      ASSERT_NE(mesh, nullptr);
      EXPECT_GE(mesh->GetDimNVerts(), 12U);
      EXPECT_EQ(mesh->GetDimVertices(), 3 * mesh->GetDimNVerts());
      ++meshes;
    }
  }
  EXPECT_GE(meshes, 7U);
}

INSTANTIATE_TEST_SUITE_P(All, ExampleFiles, testing::ValuesIn(ExampleMachineNames()),
                         [](const auto& facts) { return facts.param; });

}  // namespace
}  // namespace Orvo::Testing
