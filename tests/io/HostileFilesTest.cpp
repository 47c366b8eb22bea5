#include "MachineFiles.h"
#include "StlBytes.h"
#include "support/SameBits.h"
#include "support/Sanitizers.h"
#include "support/TemporaryFolder.h"
#include "support/TestRandom.h"

#include <Orvo/Kin/CollisionCheck.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Mesh.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <list>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#if defined(__linux__)
#include <sys/resource.h>
#include <unistd.h>

#include <fstream>
#endif

#if defined(ORVO_TEST_HAS_ADDRESS_SANITIZER)
// What can't be had is then refused, as it is without the sanitizer, and doesn't end the program.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }
#endif

namespace Orvo::Testing {
namespace {

using Kin::Entity;
using Kin::EntityId;
using Kin::EntityMesh;
using Kin::Machine;

// Appends a mesh of separate triangles at the origin.
void AddTriangles(EntityMesh& list, unsigned int count) {
  auto mesh = std::make_unique<Mesh>();
  unsigned int* const nVerts = mesh->AllocTabNVerts(count);
  for (unsigned int i = 0; i < count; ++i) {
    nVerts[i] = 3;
  }
  mesh->AllocTabIVertex(3 * count);
  mesh->AllocTabINormal(3 * count);
  mesh->AllocTabVertices(1);
  mesh->AllocTabNormals(1);
  list.AddMesh(mesh.get(), 1);
  static_cast<void>(mesh.release());
}

// Every way of reading and writing a file fails for a path, and throws nothing.
void ExpectNoFile(const std::wstring& path) {
  Machine machine;
  EXPECT_FALSE(machine.ReadXML(path));
  EXPECT_FALSE(machine.WriteXML(path));
  EXPECT_FALSE(machine.ReadMachineWithMeshStl(path));
  EXPECT_FALSE(machine.WriteMachineWithMeshStl(path));
  EntityMesh list;
  AddTriangles(list, 1);
  EXPECT_FALSE(list.ReadCadStlBin(path, 0));
  EXPECT_FALSE(list.WriteCadStlBin(path, 0));
  EXPECT_FALSE(list.AddCadStlBin(path, 1));
}

TEST(HostilePaths, MissingFoldersDirectoriesAndOddNamesFail) {
  const TemporaryFolder folder;
  const std::wstring here = TemporaryFolder::ToWide(folder.Path());
  for (const std::wstring& path : {std::wstring(), here, here + L"/", here + L"/missing/file.xml",
                                   here + L"/" + std::wstring(300, L'x'),
                                   std::wstring(100000, L'y'), here + L"/file.xml/inner"}) {
    ExpectNoFile(path);
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST(HostilePaths, MissingFileCantBeRead) {
  const TemporaryFolder folder;
  Machine machine;
  EXPECT_FALSE(machine.ReadXML(folder.Wide("missing.xml")));
  EntityMesh list;
  AddTriangles(list, 1);
  EXPECT_FALSE(list.ReadCadStlBin(folder.Wide("missing.stl"), 0));
  EXPECT_FALSE(folder.Has("missing.xml"));
  EXPECT_FALSE(folder.Has("missing.stl"));
}

// The name before the NUL is a good one, and yet no file of that name is touched.
TEST(HostilePaths, NulOpensNothing) {
  const TemporaryFolder folder;
  Machine machine;
  ASSERT_TRUE(machine.WriteXML(folder.Wide("good.xml")));
  folder.Write("good.stl", StlHeader(1) + CountingRecord(1));
  const std::wstring nul(1, L'\0');
  ExpectNoFile(folder.Wide("good.xml") + nul);
  ExpectNoFile(folder.Wide("good.stl") + nul + L"x");
  ExpectNoFile(folder.Wide("new") + nul + L".xml");
  ExpectNoFile(nul);
  EXPECT_FALSE(folder.Has("new"));
  EXPECT_EQ(folder.Read("good.stl"), StlHeader(1) + CountingRecord(1));
}

TEST(HostilePaths, NamesOfAllScriptsWork) {
  const TemporaryFolder folder;
  for (const char* const name :
       {"M\xC3\xBChle.xml", "\xD0\x96\xD1\x83\xD0\xBA.xml", "\xE6\x97\xA5\xE6\x9C\xAC.xml",
        "\xF0\x9F\x94\xA9.xml", "with blank .xml", "per%cent%s.xml"}) {
    SCOPED_TRACE(name);
    Machine machine;
    AddTriangles(*machine.AddEntityStatic(L"base", -1)->AllocEntityMesh(), 1);
    ASSERT_TRUE(machine.WriteMachineWithMeshStl(folder.Wide(name)));
    EXPECT_TRUE(folder.Has(name));
    const std::string stem = std::string(name).substr(0, std::string(name).size() - 4);
    EXPECT_TRUE(folder.Has(stem + "_1_0.stl"));
    Machine again;
    EXPECT_TRUE(again.ReadMachineWithMeshStl(folder.Wide(name)));
    EXPECT_EQ(EntityAt(again, 0).GetEntityMesh()->GetMesh(0)->GetDimNVerts(), 1U);
  }
}

#if defined(__linux__)

TEST(HostilePaths, IllFormedNameIsThatWithReplacements) {
  const TemporaryFolder folder;
  std::wstring path = folder.Wide("a");
  path += static_cast<wchar_t>(0xD800);
  path += static_cast<wchar_t>(0x110000);
  Machine machine;
  ASSERT_TRUE(machine.WriteXML(path));
  EXPECT_TRUE(folder.Has("a\xEF\xBF\xBD\xEF\xBF\xBD"));
  Machine again;
  EXPECT_TRUE(again.ReadXML(path));
}

TEST(HostilePaths, ReadOnlyFileCantBeReplaced) {
  if (geteuid() == 0) {
    // The superuser may write any file; a file below a plain file can't be made by anyone.
    const TemporaryFolder folder;
    folder.Write("plain", "text");
    ExpectNoFile(folder.Wide("plain/inner.xml"));
    return;
  }
  const TemporaryFolder folder;
  folder.Write("old.xml", "old");
  std::filesystem::permissions(folder.File("old.xml"), std::filesystem::perms::owner_read);
  Machine machine;
  EXPECT_FALSE(machine.WriteXML(folder.Wide("old.xml")));
  EXPECT_EQ(folder.Read("old.xml"), "old");
}

// Few bytes reach a full disk only when the file is closed, many before.
TEST(FullDisk, MachineFileFails) {
  Machine small;
  EXPECT_FALSE(small.WriteXML(L"/dev/full"));
  EXPECT_FALSE(small.WriteMachineWithMeshStl(L"/dev/full"));
  Machine large;
  for (int i = 0; i < 2000; ++i) {
    large.AddEntityStatic(L"element", -1);
  }
  EXPECT_FALSE(large.WriteXML(L"/dev/full"));
}

TEST(FullDisk, MeshFileFails) {
  EntityMesh list;
  AddTriangles(list, 1);
  AddTriangles(list, 5000);
  list.AddMesh(new Mesh, 1);
  for (const int i : {0, 1, 2}) {
    EXPECT_FALSE(list.WriteCadStlBin(L"/dev/full", i)) << i;
  }
}

TEST(FullDisk, MeshFileOfAPackageFails) {
  const TemporaryFolder folder;
  std::filesystem::create_symlink("/dev/full", folder.File("mill_1_0.stl"));
  Machine machine;
  AddTriangles(*machine.AddEntityStatic(L"base", -1)->AllocEntityMesh(), 1);
  EXPECT_FALSE(machine.WriteMachineWithMeshStl(folder.Wide("mill.xml")));
  EXPECT_TRUE(folder.Has("mill.xml"));
}

TEST(HostilePaths, DevicesThatHoldNothingFail) {
  Machine machine;
  EXPECT_FALSE(machine.ReadXML(L"/dev/null"));
  EntityMesh list;
  AddTriangles(list, 1);
  EXPECT_FALSE(list.ReadCadStlBin(L"/dev/null", 0));
  EXPECT_FALSE(list.ReadCadStlBin(L"/dev/zero", 0)) << "a count of 0";
}

std::size_t ResidentBytes() {
  std::ifstream stream("/proc/self/statm");
  std::size_t total = 0;
  std::size_t resident = 0;
  stream >> total >> resident;
  return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

std::size_t PeakBytes() {
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

// 4,000,000 triangles would fill 1 GB; of a file of one triangle almost nothing is touched.
TEST(HostileStl, CountCostsAddressesAndNoMemory) {
  const TemporaryFolder folder;
  constexpr unsigned int count = 4000000;
  folder.Write("tiny.stl", StlHeader(count) + CountingRecord(1));
  const std::size_t residentBefore = ResidentBytes();
  const std::size_t peakBefore = PeakBytes();
  EntityMesh list;
  ASSERT_TRUE(list.AddCadStlBin(folder.Wide("tiny.stl"), 1));
  constexpr std::size_t limit = 200U << 20U;
  EXPECT_LT(ResidentBytes(), residentBefore + limit);
  EXPECT_LT(PeakBytes(), peakBefore + limit);
  const Mesh& mesh = *list.GetMesh(0);
  ASSERT_EQ(mesh.GetDimNVerts(), count);
  ASSERT_EQ(mesh.GetDimIVertex(), 3 * count);
  ASSERT_EQ(mesh.GetDimVertices(), 3 * count);
  ASSERT_EQ(mesh.GetDimINormal(), 3 * count);
  ASSERT_EQ(mesh.GetDimNormals(), count);
  EXPECT_EQ(mesh.GetTabNVerts()[0], 3U);
  EXPECT_EQ(mesh.GetTabNVerts()[1], 0U);
  EXPECT_EQ(mesh.GetTabNVerts()[count - 1], 0U);
  EXPECT_EQ(mesh.GetTabIVertex()[3 * count - 1], 0U);
  EXPECT_EQ(mesh.GetTabINormal()[3 * count - 1], 0U);
  EXPECT_TRUE(SameBits(mesh.GetTabVertices()[3 * count - 1], NullVector));
  EXPECT_TRUE(SameBits(mesh.GetTabNormals()[count - 1], NullVector));
}

// The largest counts need more addresses than many systems hand out: the call then throws, and
// the mesh is as it was.
TEST(HostileStl, LargestCountsGiveZeroPagesOrThrow) {
  const TemporaryFolder folder;
  for (const std::uint32_t count : {40000000U, 400000000U, 1431655765U}) {
    SCOPED_TRACE(count);
    folder.Write("tiny.stl", StlHeader(count) + CountingRecord(1));
    EntityMesh list;
    AddTriangles(list, 1);
    const std::size_t residentBefore = ResidentBytes();
    bool isRead = false;
    try {
      isRead = list.ReadCadStlBin(folder.Wide("tiny.stl"), 0);
      EXPECT_TRUE(isRead);
    } catch (const std::bad_alloc&) {
      EXPECT_EQ(list.GetMesh(0)->GetDimVertices(), 1U);
      EXPECT_EQ(list.GetMesh(0)->GetDimNVerts(), 1U);
    }
    if (isRead) {
      EXPECT_EQ(list.GetMesh(0)->GetDimNVerts(), count);
      EXPECT_EQ(list.GetMesh(0)->GetDimVertices(), 3 * count);
      EXPECT_EQ(list.GetMesh(0)->GetTabNVerts()[count - 1], 0U);
    }
    // A sanitizer's own bookkeeping is an eighth of the addresses.
    const std::size_t addresses = 156ULL * count;
    EXPECT_LT(ResidentBytes(), residentBefore + (64U << 20U) + addresses / 4);
  }
}

#endif

TEST(HostileStl, EveryCutAndEveryChangedByteIsSurvived) {
  const TemporaryFolder folder;
  const std::string whole = StlHeader(2) + CountingRecord(1) + CountingRecord(101);
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int round = 0; round < 500; ++round) {
    std::string bytes = whole.substr(
        0, static_cast<std::size_t>(random.Integer(0, static_cast<int>(whole.size()))));
    for (int i = 0; i < 5 && !bytes.empty(); ++i) {
      const int place = random.Integer(0, static_cast<int>(bytes.size()) - 1);
      // The high bytes of the count stay, so that the arrays stay small.
      if (place < 82 || place > 83) {
        bytes[static_cast<std::size_t>(place)] = static_cast<char>(random.Integer(0, 255));
      }
    }
    folder.Write("file.stl", bytes);
    EntityMesh list;
    if (list.AddCadStlBin(folder.Wide("file.stl"), 1)) {
      EXPECT_GE(bytes.size(), 84U);
      EXPECT_GT(list.GetMesh(0)->GetDimNVerts(), 0U);
      // What a short file leaves are faces without corners: they are left out.
      EXPECT_TRUE(list.WriteCadStlBin(folder.Wide("out.stl"), 0));
    } else {
      EXPECT_EQ(list.GetMesh(0)->GetDimNVerts(), 0U);
    }
  }
}

TEST(HostileXml, EveryCutOfAFileIsSurvived) {
  const std::string whole = WholeText();
  for (std::size_t size = 0; size + 2 < whole.size(); ++size) {
    Machine machine;
    EXPECT_FALSE(ReadText(machine, whole.substr(0, size))) << size;
  }
}

TEST(HostileXml, ChangedBytesAreSurvived) {
  const std::string whole = WholeText();
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int read = 0;
  for (int round = 0; round < 1500; ++round) {
    std::string text = whole;
    const int changes = random.Integer(1, 4);
    for (int i = 0; i < changes; ++i) {
      const auto place =
          static_cast<std::size_t>(random.Integer(0, static_cast<int>(text.size()) - 1));
      if (random.Chance(0.3)) {
        text.erase(place, static_cast<std::size_t>(random.Integer(1, 20)));
      } else {
        text[place] = static_cast<char>(random.Integer(0, 255));
      }
      if (text.empty()) {
        text = "<";
      }
    }
    Machine machine;
    try {
      read += ReadText(machine, text) ? 1 : 0;
    } catch (const std::invalid_argument&) {
    } catch (const std::out_of_range&) {
    } catch (const std::length_error&) {
    }
  }
  EXPECT_GT(read, 10);
}

TEST(HostileXml, DeepNestingIsRefusedOrIgnored) {
  for (const int depth : {50, 1000, 200000}) {
    std::string text = "<Machine><Entities/>";
    for (int i = 0; i < depth; ++i) {
      text += "<x>";
    }
    for (int i = 0; i < depth; ++i) {
      text += "</x>";
    }
    text += "</Machine>";
    Machine machine;
    const bool isRead = ReadText(machine, text);
    EXPECT_TRUE(isRead || depth > 50);
  }
}

TEST(HostileXml, LongTextsAreRead) {
  Machine machine;
  ASSERT_TRUE(ReadText(machine, Replaced(WholeText(), "C axis", std::string(2000000, 'n'))));
  EXPECT_EQ(EntityAt(machine, 0).GetEntityName(), std::wstring(2000000, L'n'));
}

// Parents that form a circle are an error of the machine, not of its file.
TEST(HostileXml, CircleOfParentsIsReadAndFound) {
  std::string entities;
  for (const char* const id : {"1", "2", "3"}) {
    const std::string parent = std::to_string(std::stoi(id) % 3 + 1);
    entities += Replaced(Replaced(EntityText(), "<Id>5</Id>", "<Id>" + std::string(id) + "</Id>"),
                         "<ParentId>3</ParentId>", "<ParentId>" + parent + "</ParentId>");
  }
  Machine machine;
  ASSERT_TRUE(ReadText(machine, MachineText(entities)));
  EXPECT_FALSE(machine.IsFinished());
  EXPECT_EQ(machine.GetLastError(), Kin::MachineErrorParentCycle);
}

TEST(LargeFiles, ThreeHundredThousandIdsInOneText) {
  constexpr int count = 300000;
  std::string ids;
  for (int i = count; i > 0; --i) {
    ids += std::to_string(i) + " ";
  }
  ids += ids;  // each one twice
  Machine machine;
  ASSERT_TRUE(
      ReadText(machine, MachineText("", "<CollisionCheck><MachineTool><EntityIds>" + ids +
                                            "</EntityIds></MachineTool></CollisionCheck>")));
  std::list<EntityId> tools;
  machine.GetCollisionCheck().GetListMachineTool(&tools);
  ASSERT_EQ(tools.size(), static_cast<std::size_t>(count));
  int expected = count;
  for (const EntityId& id : tools) {
    ASSERT_EQ(id, expected--);
  }
  EXPECT_TRUE(machine.GetCollisionCheck().GetMachineTool(1));
  EXPECT_FALSE(machine.GetCollisionCheck().GetMachineTool(count + 1));
}

TEST(LargeFiles, ThreeHundredThousandPartnersOfOneElement) {
  constexpr int count = 300000;
  std::string ids;
  for (int i = 1; i <= count; ++i) {
    ids += std::to_string(i) + "\t";
  }
  Machine machine;
  ASSERT_TRUE(ReadText(
      machine,
      MachineText("",
                  "<CollisionCheck><MachineMachines><MachineMachine><EntityId>7</EntityId>"
                  "<EntityIds>" +
                      ids + "</EntityIds></MachineMachine></MachineMachines></CollisionCheck>")));
  std::list<EntityId> partners;
  machine.GetCollisionCheck().GetListMachineMachine(7, &partners, true);
  EXPECT_EQ(partners.size(), static_cast<std::size_t>(count - 1));
}

TEST(LargeFiles, OneHundredThousandPairsOfThreeThousandElements) {
  constexpr int elementNb = 3000;
  Machine machine;
  for (int i = 0; i < elementNb; ++i) {
    machine.AddEntityStatic(L"element", -1);
  }
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  Kin::CollisionCheck& check = machine.GetCollisionCheckMod();
  for (int i = 0; i < 100000; ++i) {
    check.SetMachineMachine(random.Integer(1, elementNb), random.Integer(1, elementNb), true);
  }
  const std::string text = WrittenText(machine);
  Machine again;
  ASSERT_TRUE(ReadText(again, text));
  std::size_t pairs = 0;
  for (int id = 1; id <= elementNb; ++id) {
    std::list<EntityId> partners;
    std::list<EntityId> others;
    check.GetListMachineMachine(id, &partners, false);
    again.GetCollisionCheck().GetListMachineMachine(id, &others, false);
    ASSERT_EQ(partners, others);
    pairs += partners.size();
  }
  EXPECT_GT(pairs, 90000U);
}

TEST(LargeFiles, TwentyThousandElementsInOneChain) {
  constexpr int count = 20000;
  Machine machine;
  for (int i = 0; i < count; ++i) {
    machine.AddEntityStatic(L"element", i);
  }
  const TemporaryFolder folder;
  ASSERT_TRUE(machine.WriteXML(folder.Wide("large.xml")));
  Machine again;
  ASSERT_TRUE(again.ReadXML(folder.Wide("large.xml")));
  ASSERT_EQ(EntityCount(again), static_cast<std::size_t>(count));
  EXPECT_EQ(again.GetKinematic().GetListEntity().back().GetLevel(), count - 1);
}

}  // namespace
}  // namespace Orvo::Testing
