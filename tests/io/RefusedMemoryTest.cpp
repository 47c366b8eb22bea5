#include "MachineFiles.h"
#include "StlBytes.h"
#include "support/CountedMemory.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Mesh.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <new>
#include <string>

namespace Orvo::Testing {
namespace {

using Kin::EntityMesh;
using Kin::Machine;

// Makes a call with its first allocation refused, then its second, and so on until none is; after
// each failure the check is made. Returns how many times the call failed.
template <typename Call, typename Check>
int RefuseEachAllocationOf(Call call, Check check) {
  for (int refused = 0;; ++refused) {
    bool isWhole = true;
    RefuseAllocation(static_cast<std::size_t>(refused));
    try {
      call();
    } catch (const std::bad_alloc&) {
      isWhole = false;
    }
    const bool isRefused = AllowAllocations();
    if (!isRefused) {
      EXPECT_TRUE(isWhole);
      return refused;
    }
    check();
  }
}

TEST(RefusedMemory, MachineThatIsReadIsUsableAfterwards) {
  const TemporaryFolder folder;
  folder.Write("machine.xml", WholeText());
  const std::wstring path = folder.Wide("machine.xml");
  Machine whole;
  ASSERT_TRUE(whole.ReadXML(path));
  const std::string expected = WrittenText(whole);
  auto machine = std::make_unique<Machine>();
  const int failures = RefuseEachAllocationOf([&] { machine->ReadXML(path); },
                                              [&] {
                                                EXPECT_LE(EntityCount(*machine), 1U);
                                                WrittenText(*machine);
                                                machine = std::make_unique<Machine>();
                                                ASSERT_TRUE(machine->ReadXML(path));
                                                ASSERT_EQ(WrittenText(*machine), expected);
                                                machine = std::make_unique<Machine>();
                                              });
  EXPECT_GT(failures, 50);
}

TEST(RefusedMemory, MachineThatIsWrittenStaysAsItWas) {
  const TemporaryFolder folder;
  Machine machine;
  ASSERT_TRUE(ReadText(machine, WholeText()));
  const std::string expected = WrittenText(machine);
  const int failures = RefuseEachAllocationOf([&] { machine.WriteXML(folder.Wide("out.xml")); },
                                              [&] { ASSERT_EQ(WrittenText(machine), expected); });
  EXPECT_GT(failures, 50);
  EXPECT_EQ(folder.Read("out.xml"), expected);
}

TEST(RefusedMemory, MeshKeepsWhatItHeld) {
  const TemporaryFolder folder;
  folder.Write("one.stl", StlHeader(1) + CountingRecord(1));
  folder.Write("two.stl", StlHeader(2) + CountingRecord(1) + CountingRecord(101));
  const std::wstring path = folder.Wide("two.stl");
  EntityMesh list;
  ASSERT_TRUE(list.AddCadStlBin(folder.Wide("one.stl"), 1));
  const int failures =
      RefuseEachAllocationOf([&] { list.ReadCadStlBin(path, 0); },
                             [&] {
                               ASSERT_EQ(list.GetMesh(0)->GetDimNVerts(), 1U);
                               ASSERT_EQ(list.GetMesh(0)->GetDimVertices(), 3U);
                               ASSERT_EQ(list.GetMesh(0)->GetTabVertices()[0][0], 4.0);
                             });
  EXPECT_GT(failures, 0);
  EXPECT_EQ(list.GetMesh(0)->GetDimNVerts(), 2U);
}

TEST(RefusedMemory, ListOfMeshesStaysWhole) {
  const TemporaryFolder folder;
  folder.Write("one.stl", StlHeader(1) + CountingRecord(1));
  const std::wstring path = folder.Wide("one.stl");
  EntityMesh list;
  const int failures =
      RefuseEachAllocationOf([&] { list.AddCadStlBin(path, 1); },
                             [&] {
                               for (int i = 0; i < static_cast<int>(list.GetMeshNb()); ++i) {
                                 ASSERT_NE(list.GetMesh(i), nullptr);
                               }
                             });
  EXPECT_GT(failures, 0);
  const int last = static_cast<int>(list.GetMeshNb()) - 1;
  ASSERT_NE(list.GetMesh(last), nullptr);
  EXPECT_EQ(list.GetMesh(last)->GetDimNVerts(), 1U);
}

}  // namespace
}  // namespace Orvo::Testing
