#include "faults/Describe.h"
#include "faults/MemorySweep.h"
#include "faults/SampleMachine.h"
#include "support/Sanitizers.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Machine.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>

#if defined(ORVO_TEST_HAS_ADDRESS_SANITIZER)
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libtinyxml2"; }
#endif

namespace Orvo::Testing {
namespace {

using Kin::Entity;
using Kin::EntityMesh;
using Kin::Machine;

// The XML parser keeps its nodes in blocks of 4 KB. It loses one of them when it has no memory for
// a longer list of its blocks, which an element of the eleventh block is the first to ask for.
constexpr std::size_t LossOfParser = 4200;

template <typename Subject>
std::unique_ptr<Subject> MakeEmpty() {
  return std::make_unique<Subject>();
}

std::string DescribeMachine(Machine& machine) { return Describe(machine); }

std::string DescribeList(EntityMesh& list) { return Describe(list); }

/// Writes the sample with its meshes to a folder and returns the path of the machine file.
std::wstring WriteSample(const TemporaryFolder& folder) {
  Machine machine;
  BuildSample(machine);
  EXPECT_TRUE(machine.WriteMachineWithMeshStl(folder.Wide("sample.xml")));
  return folder.Wide("sample.xml");
}

/// Returns the name and the bytes of every file in a folder.
std::string DescribeFiles(const TemporaryFolder& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
    const std::string name = entry.path().filename().string();
    files[name] = folder.Read(name);
  }
  std::string text;
  for (const auto& [name, bytes] : files) {
    text += name + ": " + bytes + '\n';
  }
  return text;
}

/// Copies a machine file with a document type behind its declaration, which takes the XML parser to
/// read, and returns the path of the copy.
std::wstring WriteForParser(const TemporaryFolder& folder, const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::string text(std::istreambuf_iterator<char>(stream), {});
  text.insert(text.find("?>") + 2, "<!DOCTYPE Machine>");
  folder.Write("for parser.xml", text);
  return folder.Wide("for parser.xml");
}

TEST(FileMemory, AMachineThatIsReadIsUsable) {
  const TemporaryFolder folder;
  const std::wstring path = WriteSample(folder);
  EXPECT_GT(RefuseEachRequest(
                "read a machine file", Leaves::Usable, MakeEmpty<Machine>,
                [&path](Machine& machine) { return machine.ReadXML(path); }, DescribeMachine),
            100U);
  const std::wstring pathForParser = WriteForParser(folder, folder.File("sample.xml"));
  EXPECT_GT(RefuseEachRequest(
                "read a machine file", Leaves::Usable, MakeEmpty<Machine>,
                [&pathForParser](Machine& machine) { return machine.ReadXML(pathForParser); },
                DescribeMachine),
            150U);
}

TEST(FileMemory, AnExampleThatIsReadIsUsable) {
  const std::filesystem::path file = ExampleMachineFile("millturn_2h2t");
  const TemporaryFolder folder;
  for (const std::wstring& path : {TemporaryFolder::ToWide(file), WriteForParser(folder, file)}) {
    RefuseEachRequest(
        "read a machine file", Leaves::Usable, MakeEmpty<Machine>,
        [&path](Machine& machine) { return machine.ReadXML(path); }, DescribeMachine, LossOfParser);
  }
}

TEST(FileMemory, AMachineThatIsReadWithMeshesIsUsable) {
  const TemporaryFolder folder;
  const std::wstring path = WriteSample(folder);
  RefuseEachRequest(
      "read a machine with meshes", Leaves::Usable, MakeEmpty<Machine>,
      [&path](Machine& machine) { return machine.ReadMachineWithMeshStl(path); }, DescribeMachine);
}

TEST(FileMemory, AMachineThatHoldsElementsKeepsThem) {
  const TemporaryFolder folder;
  const std::wstring path = WriteSample(folder);
  const auto makeMachine = [] {
    auto machine = std::make_unique<Machine>();
    machine->AddEntityStatic(L"there before", -1);
    return machine;
  };
  RefuseEachRequest(
      "read a machine file", Leaves::Usable, makeMachine,
      [&path](Machine& machine) { return machine.ReadXML(path); },
      [](Machine& machine) {
        const Entity& first = machine.GetKinematic().GetListEntity().front();
        EXPECT_EQ(first.GetEntityName(), L"there before");
        return Describe(machine);
      });
}

TEST(FileMemory, AMeshIsReadWhollyOrStaysAsItWas) {
  const TemporaryFolder folder;
  WriteSample(folder);
  const std::wstring path = folder.Wide("sample_7_0.stl");
  const auto makeList = [] {
    auto list = std::make_unique<EntityMesh>();
    AddTriangles(*list, 2, 5.0);
    return list;
  };
  RefuseEachRequest(
      "read a mesh file", Leaves::Unchanged, makeList,
      [&path](EntityMesh& list) { return list.ReadCadStlBin(path, 0); }, DescribeList);
  RefuseEachRequest(
      "add a mesh file", Leaves::Usable, makeList,
      [&path](EntityMesh& list) { return list.AddCadStlBin(path, 9); },
      [](EntityMesh& list) {
        // The new mesh may be there, empty; what was there before is untouched.
        for (int i = 0; i < static_cast<int>(list.GetMeshNb()); ++i) {
          EXPECT_NE(list.GetMesh(i), nullptr);
        }
        EXPECT_EQ(list.GetMesh(0)->GetDimNVerts(), 2U);
        return Describe(list);
      });
  RefuseEachRequest(
      "add a mesh file", Leaves::Usable, MakeEmpty<Entity>,
      [&path](Entity& entity) { return entity.AddCadStlBin(path, 9); },
      [](Entity& entity) { return Describe(entity); });
}

/// What a machine is written to: an empty folder, and the names of the files.
struct EmptyFolder {
  explicit EmptyFolder(const TemporaryFolder& given)
      : folder(given), machineFile(given.Wide("out.xml")), meshFile(given.Wide("out.stl")) {
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
      std::filesystem::remove(entry.path());
    }
  }

  const TemporaryFolder& folder;
  std::wstring machineFile;
  std::wstring meshFile;
};

/// Refuses each request of writing a machine, which stays as it is.
template <typename Write>
void RefuseEachRequestOfWriting(const std::string& name, Machine& machine, Write write) {
  const TemporaryFolder folder;
  const std::string machineText = Describe(machine);
  RefuseEachRequest(
      name, Leaves::Repeatable, [&folder] { return std::make_unique<EmptyFolder>(folder); },
      [&machine, write](EmptyFolder& to) { return write(machine, to); },
      [](EmptyFolder& to) { return DescribeFiles(to.folder); });
  EXPECT_EQ(Describe(machine), machineText);
}

TEST(FileMemory, AMachineFileIsWrittenWhollyOrSaidNotToBe) {
  const auto write = [](Machine& machine, EmptyFolder& to) {
    return machine.WriteXML(to.machineFile);
  };
  Machine sample;
  BuildSample(sample);
  RefuseEachRequestOfWriting("write a machine file", sample, write);
  Machine example;
  ASSERT_TRUE(example.ReadXML(TemporaryFolder::ToWide(ExampleMachineFile("trunnion_ac"))));
  RefuseEachRequestOfWriting("write a machine file", example, write);
}

TEST(FileMemory, AMachineWithMeshesIsWrittenWhollyOrSaidNotToBe) {
  Machine sample;
  BuildSample(sample);
  RefuseEachRequestOfWriting("write a machine with meshes", sample,
                             [](Machine& machine, EmptyFolder& to) {
                               return machine.WriteMachineWithMeshStl(to.machineFile);
                             });
}

TEST(FileMemory, AMeshFileIsWrittenWhollyOrSaidNotToBe) {
  Machine sample;
  BuildSample(sample);
  RefuseEachRequestOfWriting("write a mesh file", sample, [](Machine& machine, EmptyFolder& to) {
    const Entity& bed = machine.GetKinematic().GetListEntity().front();
    return bed.GetEntityMesh()->WriteCadStlBin(to.meshFile, 1);
  });
}

}  // namespace
}  // namespace Orvo::Testing
