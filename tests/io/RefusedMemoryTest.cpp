#include "MachineFiles.h"
#include "StlBytes.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Mesh.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>

namespace {

// The number of requests for memory so far, and that of the one that is refused.
std::size_t allocationNb = 0;
constexpr std::size_t NoRefusal = static_cast<std::size_t>(-1);
std::size_t refusedAllocation = NoRefusal;

void* Allocate(std::size_t size, std::size_t alignment) {
  if (allocationNb++ == refusedAllocation) {
    throw std::bad_alloc();
  }
  void* memory = nullptr;
  if (posix_memalign(&memory, alignment < sizeof(void*) ? sizeof(void*) : alignment,
                     size == 0 ? 1 : size) != 0) {
    throw std::bad_alloc();
  }
  return memory;
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size, alignof(std::max_align_t)); }
void* operator new[](std::size_t size) { return Allocate(size, alignof(std::max_align_t)); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return Allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return Allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }

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
    refusedAllocation = allocationNb + static_cast<std::size_t>(refused);
    try {
      call();
    } catch (const std::bad_alloc&) {
      isWhole = false;
    }
    const bool isRefused = allocationNb > refusedAllocation;
    refusedAllocation = NoRefusal;
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
