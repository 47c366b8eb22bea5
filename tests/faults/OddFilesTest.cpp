#include "faults/ChildProcess.h"
#include "faults/Describe.h"
#include "faults/SampleMachine.h"
#include "support/FaultReport.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Machine.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <climits>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::EntityMesh;
using Kin::Machine;

/// A way of reading or writing a file; false where it fails.
struct Operation {
  const char* name;
  bool isReading;
  bool (*run)(const std::wstring& path);
};

Machine MakeSample() {
  Machine machine;
  BuildSample(machine);
  return machine;
}

const EntityMesh& MeshesOfBed(const Machine& machine) {
  return *machine.GetKinematic().GetListEntity().front().GetEntityMesh();
}

bool ReadMachine(const std::wstring& path) { return Machine().ReadXML(path); }

bool ReadPackage(const std::wstring& path) { return Machine().ReadMachineWithMeshStl(path); }

bool ReadMesh(const std::wstring& path) {
  EntityMesh list;
  return list.AddCadStlBin(path, 1);
}

bool WriteMachine(const std::wstring& path) { return MakeSample().WriteXML(path); }

bool WritePackage(const std::wstring& path) { return MakeSample().WriteMachineWithMeshStl(path); }

bool WriteMesh(const std::wstring& path) {
  return MeshesOfBed(MakeSample()).WriteCadStlBin(path, 0);
}

constexpr Operation Operations[] = {{"read a machine file", true, ReadMachine},
                                    {"read a machine with meshes", true, ReadPackage},
                                    {"read a mesh file", true, ReadMesh},
                                    {"write a machine file", false, WriteMachine},
                                    {"write a machine with meshes", false, WritePackage},
                                    {"write a mesh file", false, WriteMesh}};

/// Expects an operation to fail, and counts that.
void ExpectFailure(const Operation& operation, const std::wstring& path, const std::string& why) {
  SCOPED_TRACE(operation.name);
  SCOPED_TRACE(why);
  bool isDone = true;
  EXPECT_NO_THROW(isDone = operation.run(path));
  EXPECT_FALSE(isDone);
  CountFault(operation.name, "system: " + why,
             isDone ? FaultEnding::Completed : FaultEnding::Failed);
}

void ExpectAllFailures(const std::wstring& path, const std::string& why) {
  for (const Operation& operation : Operations) {
    ExpectFailure(operation, path, why);
  }
}

std::size_t CountFiles(const TemporaryFolder& folder) {
  const std::filesystem::directory_iterator entries(folder.Path());
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

/// Makes a pipe with a name in a folder.
std::wstring MakePipe(const TemporaryFolder& folder) {
  if (mkfifo(folder.Narrow("pipe").c_str(), 0600) != 0) {
    throw std::runtime_error("there is no pipe to be had");
  }
  return folder.Wide("pipe");
}

TEST(OddFiles, PlacesWithoutAFileFail) {
  const TemporaryFolder folder;
  folder.Write("plain", "text");
  std::filesystem::create_directory(folder.File("folder"));
  std::filesystem::create_symlink("loop", folder.File("loop"));
  std::filesystem::create_symlink("missing/file", folder.File("nowhere"));
  std::filesystem::create_symlink("folder", folder.File("link to folder"));
  const std::size_t fileNb = CountFiles(folder);
  ExpectAllFailures(L"", "empty path");
  ExpectAllFailures(folder.Wide("folder"), "directory");
  ExpectAllFailures(folder.Wide("folder/"), "directory");
  ExpectAllFailures(folder.Wide("link to folder"), "directory");
  ExpectAllFailures(L"/", "directory");
  ExpectAllFailures(L".", "directory");
  ExpectAllFailures(folder.Wide("missing/file.xml"), "missing folder");
  ExpectAllFailures(folder.Wide("plain/file.xml"), "file for a folder");
  ExpectAllFailures(folder.Wide("plain/"), "file for a folder");
  ExpectAllFailures(folder.Wide("loop"), "loop of links");
  ExpectAllFailures(folder.Wide("loop/file.xml"), "loop of links");
  ExpectAllFailures(folder.Wide("nowhere"), "link to nowhere");
  ExpectAllFailures(folder.Wide("plain") + std::wstring(1, L'\0') + L".xml", "NUL in the path");
  EXPECT_EQ(CountFiles(folder), fileNb);
  EXPECT_EQ(folder.Read("plain"), "text");
}

TEST(OddFiles, SocketsFail) {
  const TemporaryFolder folder;
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  const std::string name = folder.Narrow("socket");
  ASSERT_LT(name.size(), sizeof address.sun_path);
  std::memcpy(address.sun_path, name.c_str(), name.size() + 1);
  const int socketDescriptor = socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_GE(socketDescriptor, 0);
  ASSERT_EQ(bind(socketDescriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  ExpectAllFailures(folder.Wide("socket"), "socket");
  close(socketDescriptor);
}

TEST(OddFiles, FilesOfTheSystemWithoutASizeFail) {
  for (const Operation& operation : Operations) {
    if (operation.isReading) {
      ExpectFailure(operation, L"/dev/null", "empty device");
      ExpectFailure(operation, L"/dev/zero", "endless device");
      // The kernel has no byte at the start of a process, and says so when it is read.
      ExpectFailure(operation, L"/proc/self/mem", "unreadable file");
    }
  }
  // Such files say that they hold nothing, or have no size at all.
  ExpectFailure(Operations[0], L"/proc/self/status", "file without a size");
  ExpectFailure(Operations[0], L"/proc/version", "file without a size");
  ExpectFailure(Operations[1], L"/proc/self/status", "file without a size");
}

TEST(OddFiles, FullDiskFails) {
  for (const Operation& operation : Operations) {
    if (!operation.isReading) {
      ExpectFailure(operation, L"/dev/full", "full disk");
    }
  }
  const TemporaryFolder folder;
  for (const char* const name : {"mill_1_0.stl", "mill_1_1.stl", "mill_7_0.stl"}) {
    std::filesystem::create_symlink("/dev/full", folder.File(name));
    EXPECT_FALSE(MakeSample().WriteMachineWithMeshStl(folder.Wide("mill.xml"))) << name;
    CountFault("write a machine with meshes", "system: full disk", FaultEnding::Failed);
    std::filesystem::remove(folder.File(name));
  }
  EXPECT_TRUE(MakeSample().WriteMachineWithMeshStl(folder.Wide("mill.xml")));
}

// What a device takes without keeping it is written; a mesh needs to go back in its file.
TEST(OddFiles, DeviceThatTakesAllIsWritten) {
  EXPECT_TRUE(WriteMachine(L"/dev/null"));
  EXPECT_TRUE(WriteMesh(L"/dev/null"));
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(OddFiles, LongestNamesWorkAndLongerOnesFail) {
  const TemporaryFolder folder;
  const std::wstring name(NAME_MAX, L'n');
  EXPECT_TRUE(WriteMachine(folder.Wide("") + name));
  EXPECT_TRUE(ReadMachine(folder.Wide("") + name));
  ExpectAllFailures(folder.Wide("") + name + L'n', "overlong name");
  // The machine file's name is short enough, and those of its meshes are not.
  ExpectFailure(Operations[4], folder.Wide("") + name, "overlong name");
  // Three bytes for each character.
  const std::wstring wideName(NAME_MAX / 3, L'\u4E3B');
  EXPECT_TRUE(WriteMachine(folder.Wide("") + wideName));
  EXPECT_TRUE(ReadMachine(folder.Wide("") + wideName));
  ExpectAllFailures(folder.Wide("") + wideName + L'\u4E3B', "overlong name");
}

TEST(OddFiles, LongestPathsWorkAndLongerOnesFail) {
  const TemporaryFolder folder;
  // The system counts the byte that ends the path.
  std::wstring path = folder.Wide("");
  while (path.size() + 2 < PATH_MAX - 1) {
    path += L"./";
  }
  path.append(static_cast<std::size_t>(PATH_MAX) - 1 - path.size(), L'f');
  ASSERT_EQ(path.size(), static_cast<std::size_t>(PATH_MAX) - 1);
  EXPECT_TRUE(WriteMachine(path));
  EXPECT_TRUE(ReadMachine(path));
  ExpectAllFailures(path + L'f', "overlong path");
  ExpectAllFailures(std::wstring(1000000, L'/'), "overlong path");
  ExpectAllFailures(std::wstring(1000000, L'\U0010FFFF'), "overlong path");
}

// What no file of the disk can be named after becomes U+FFFD, unit by unit.
TEST(OddFiles, IllFormedNamesAreThoseWithReplacements) {
  const TemporaryFolder folder;
  const std::string replacement = "\xEF\xBF\xBD";
  struct Case {
    std::vector<unsigned long> units;
    std::string name;
  };
  const Case cases[] = {{{0xD800}, replacement},
                        {{0xDFFF}, replacement},
                        {{0xD83D, 0xDD29}, replacement + replacement},
                        {{0xDD29, 0xD83D}, replacement + replacement},
                        {{0x110000}, replacement},
                        {{0x7FFFFFFF}, replacement},
                        {{0x80000000}, replacement},
                        {{0xFFFFFFFF}, replacement},
                        {{0x10FFFF}, "\xF4\x8F\xBF\xBF"}};
  for (const Case& c : cases) {
    std::wstring path = folder.Wide("a");
    for (const unsigned long unit : c.units) {
      path += static_cast<wchar_t>(unit);
    }
    path += L".xml";
    ASSERT_TRUE(WritePackage(path));
    EXPECT_TRUE(folder.Has("a" + c.name + ".xml"));
    EXPECT_TRUE(folder.Has("a" + c.name + "_7_0.stl"));
    EXPECT_TRUE(ReadPackage(path));
    std::filesystem::remove(folder.File("a" + c.name + ".xml"));
  }
}

// Rights don't bind the superuser, so a copy of this process acts as nobody.
int ActAsNobody(const TemporaryFolder& folder) {
  constexpr uid_t nobody = 65534;
  if (geteuid() == 0 && (setgid(nobody) != 0 || setuid(nobody) != 0)) {
    return 100;
  }
  int fault = 0;
  int number = 0;
  const auto expect = [&fault, &number](bool isRight) {
    ++number;
    fault = fault == 0 && !isRight ? number : fault;
  };
  expect(ReadPackage(folder.Wide("open/mill.xml")));
  expect(WritePackage(folder.Wide("open/new.xml")));
  for (const Operation& operation : Operations) {
    expect(!operation.run(folder.Wide("closed.file")));
    expect(!operation.run(folder.Wide("closed/mill.xml")));
    if (!operation.isReading) {
      expect(!operation.run(folder.Wide("fixed.file")));
      expect(!operation.run(folder.Wide("fixed/new.xml")));
    }
  }
  expect(ReadPackage(folder.Wide("fixed/mill.xml")));
  return fault;
}

TEST(OddFiles, MissingPermissionsFail) {
  using std::filesystem::perms;
  const TemporaryFolder folder;
  std::filesystem::permissions(folder.Path(), perms::owner_all | perms::group_read |
                                                  perms::group_exec | perms::others_read |
                                                  perms::others_exec);
  const perms readable = perms::owner_read | perms::group_read | perms::others_read;
  const perms reachable = perms::owner_exec | perms::group_exec | perms::others_exec;
  for (const char* const name : {"open", "closed", "fixed"}) {
    std::filesystem::create_directory(folder.File(name));
    ASSERT_TRUE(WritePackage(folder.Wide(std::string(name) + "/mill.xml")));
    for (const auto& entry : std::filesystem::directory_iterator(folder.File(name))) {
      std::filesystem::permissions(entry.path(), readable);
    }
  }
  for (const char* const name : {"closed.file", "fixed.file"}) {
    ASSERT_TRUE(WriteMachine(folder.Wide(name)));
  }
  std::filesystem::permissions(folder.File("open"), perms::all);
  std::filesystem::permissions(folder.File("fixed"), readable | reachable);
  std::filesystem::permissions(folder.File("fixed.file"), readable);
  std::filesystem::permissions(folder.File("closed"), perms::none);
  std::filesystem::permissions(folder.File("closed.file"), perms::none);
  const ChildEnd end = InChild([&folder] { return ActAsNobody(folder); });
  EXPECT_EQ(end.status, 0) << "the number of the expectation that failed; 100: can't be nobody";
  for (const Operation& operation : Operations) {
    for (int i = 0; i < (operation.isReading ? 2 : 4); ++i) {
      CountFault(operation.name, "system: missing permission", FaultEnding::Failed);
    }
  }
  // So that the folder can be removed.
  std::filesystem::permissions(folder.File("closed"), perms::owner_all);
  std::filesystem::permissions(folder.File("fixed"), perms::owner_all);
}

void SetSoftLimit(int resource, rlim_t limit) {
  rlimit limits = {};
  getrlimit(static_cast<__rlimit_resource_t>(resource), &limits);
  limits.rlim_cur = limit;
  setrlimit(static_cast<__rlimit_resource_t>(resource), &limits);
}

// A file may grow to the limit and no further: what is exactly as long as that is whole.
TEST(OddFiles, LimitOfTheSizeOfFilesFails) {
  const TemporaryFolder folder;
  for (const Operation& operation : {Operations[3], Operations[5]}) {
    SCOPED_TRACE(operation.name);
    const std::wstring path = folder.Wide("file");
    ASSERT_TRUE(operation.run(path));
    const std::string whole = folder.Read("file");
    const std::size_t size = whole.size();
    for (const std::size_t limit : {std::size_t{0}, std::size_t{1}, std::size_t{80},
                                    std::size_t{100}, size / 2, size - 1, size}) {
      SCOPED_TRACE(limit);
      const ChildEnd end = InChild([&operation, &path, limit] {
        std::signal(SIGXFSZ, SIG_IGN);
        SetSoftLimit(RLIMIT_FSIZE, limit);
        return operation.run(path) ? 1 : 0;
      });
      EXPECT_EQ(end.status, limit == size ? 1 : 0);
      EXPECT_EQ(folder.Read("file"), whole.substr(0, limit));
      if (limit < size) {
        CountFault(operation.name, "system: limit of file sizes", FaultEnding::Failed);
      }
    }
  }
}

TEST(OddFiles, NoMoreFilesThatMayBeOpenFails) {
  const TemporaryFolder folder;
  ASSERT_TRUE(WritePackage(folder.Wide("mill.xml")));
  for (const Operation& operation : Operations) {
    const std::wstring path = folder.Wide(
        std::string(operation.name) == "read a mesh file" ? "mill_7_0.stl" : "mill.xml");
    const ChildEnd end = InChild([&operation, &path] {
      // Once undisturbed: UndefinedBehaviorSanitizer opens a pipe for a class that it meets first.
      if (!operation.run(path)) {
        return 3;
      }
      rlimit before = {};
      getrlimit(RLIMIT_NOFILE, &before);
      SetSoftLimit(RLIMIT_NOFILE, 0);
      const bool isDone = operation.run(path);
      SetSoftLimit(RLIMIT_NOFILE, before.rlim_cur);
      return isDone ? 1 : operation.run(path) ? 0 : 2;
    });
    EXPECT_EQ(end.status, 0) << operation.name;
    CountFault(operation.name, "system: no more files", FaultEnding::Failed);
    ASSERT_TRUE(WritePackage(folder.Wide("mill.xml")));
  }
}

/// Sends the first bytes of a text through a pipe and closes it.
int Send(const std::string& pipe, const std::string& text, std::size_t size) {
  const int descriptor = open(pipe.c_str(), O_WRONLY);
  const ssize_t sent = write(descriptor, text.data(), size);
  return sent == static_cast<ssize_t>(size) ? 0 : 1;
}

// A machine file is measured before it is read, and a pipe has no size. Nothing waits for it.
TEST(OddFiles, MachineFileFromAPipeFails) {
  const TemporaryFolder folder;
  ASSERT_TRUE(WriteMachine(folder.Wide("whole.xml")));
  const std::string whole = folder.Read("whole.xml");
  const std::wstring pipe = MakePipe(folder);
  for (const std::size_t size : {whole.size(), whole.size() / 2, std::size_t{0}}) {
    for (int i = 0; i < 2; ++i) {
      const ChildProcess sender([&] {
        std::signal(SIGPIPE, SIG_IGN);
        return Send(folder.Narrow("pipe"), whole, size);
      });
      ExpectFailure(Operations[i], pipe, "pipe");
    }
  }
}

TEST(OddFiles, MeshFileFromAPipeIsReadAsFarAsItGoes) {
  const TemporaryFolder folder;
  Machine sample;
  BuildSample(sample);
  ASSERT_TRUE(sample.WriteMachineWithMeshStl(folder.Wide("mill.xml")));
  const std::string whole = folder.Read("mill_7_0.stl");
  const std::wstring pipe = MakePipe(folder);
  for (const std::size_t size :
       {whole.size(), whole.size() / 2, std::size_t{84}, std::size_t{83}, std::size_t{0}}) {
    SCOPED_TRACE(size);
    ChildProcess sender([&] { return Send(folder.Narrow("pipe"), whole, size); });
    EntityMesh list;
    const bool isRead = list.AddCadStlBin(pipe, 1);
    EXPECT_EQ(isRead, size >= 84);
    EXPECT_EQ(sender.Wait().status, 0);
    folder.Write("short.stl", whole.substr(0, size));
    EntityMesh shortList;
    EXPECT_EQ(shortList.AddCadStlBin(folder.Wide("short.stl"), 1), isRead);
    EXPECT_EQ(Describe(list), Describe(shortList));
    if (size < whole.size()) {
      CountFault("read a mesh file", "system: pipe that closes",
                 isRead ? FaultEnding::Completed : FaultEnding::Failed);
    }
  }
}

/// Takes so many bytes from a pipe, or all, and ends with how many it got, in units of 1000.
int Take(const std::string& pipe, std::size_t size) {
  const int descriptor = open(pipe.c_str(), O_RDONLY);
  std::size_t taken = 0;
  char bytes[1000];
  while (taken < size) {
    const ssize_t count = read(descriptor, bytes, sizeof bytes);
    if (count <= 0) {
      break;
    }
    taken += static_cast<std::size_t>(count);
  }
  return static_cast<int>(taken / 1000);
}

/// A machine whose file is larger than what a pipe holds.
bool WriteLargeMachine(const std::wstring& path) {
  Machine machine;
  for (int i = 0; i < 200; ++i) {
    machine.AddEntityStatic(L"element", -1);
  }
  return machine.WriteXML(path);
}

TEST(OddFiles, MachineFileGoesThroughAPipe) {
  const TemporaryFolder folder;
  ASSERT_TRUE(WriteLargeMachine(folder.Wide("large.xml")));
  const std::size_t size = std::filesystem::file_size(folder.File("large.xml"));
  ASSERT_GT(size, 65536U);
  const std::wstring pipe = MakePipe(folder);
  ChildProcess taker([&] { return Take(folder.Narrow("pipe"), 100 * size); });
  EXPECT_TRUE(WriteLargeMachine(pipe));
  EXPECT_EQ(taker.Wait().status, static_cast<int>(size / 1000));
}

// The count of triangles is written last, at the start of the file, to where a pipe can't go back.
TEST(OddFiles, MeshFileDoesNotGoThroughAPipe) {
  const TemporaryFolder folder;
  const std::wstring pipe = MakePipe(folder);
  const ChildProcess taker([&] { return Take(folder.Narrow("pipe"), 1000000); });
  ExpectFailure(Operations[5], pipe, "pipe");
}

// Who writes to a pipe that nobody reads gets a signal. What it does is for the process to say.
TEST(OddFiles, PipeThatClosesFailsWhereItsSignalIsIgnored) {
  const TemporaryFolder folder;
  const std::wstring pipe = MakePipe(folder);
  for (const std::size_t taken : {std::size_t{0}, std::size_t{1000}, std::size_t{50000}}) {
    SCOPED_TRACE(taken);
    ChildProcess taker([&] { return Take(folder.Narrow("pipe"), taken); });
    const ChildEnd end = InChild([&pipe] {
      std::signal(SIGPIPE, SIG_IGN);
      return WriteLargeMachine(pipe) ? 1 : 0;
    });
    EXPECT_EQ(end.status, 0);
    taker.Wait();
    CountFault("write a machine file", "system: pipe that closes", FaultEnding::Failed);
  }
  const ChildProcess taker([&] { return Take(folder.Narrow("pipe"), 1000); });
  const ChildEnd end = InChild([&pipe] {
    std::signal(SIGPIPE, SIG_DFL);
    return WriteLargeMachine(pipe) ? 1 : 0;
  });
  EXPECT_EQ(end.signal, SIGPIPE);
}

// The file that a machine came from may be replaced, also while somebody else has it open.
TEST(OddFiles, FileThatIsOpenElsewhereIsReadAndWritten) {
  const TemporaryFolder folder;
  ASSERT_TRUE(WriteMachine(folder.Wide("mill.xml")));
  std::FILE* const other = std::fopen(folder.Narrow("mill.xml").c_str(), "r+b");
  ASSERT_NE(other, nullptr);
  Machine machine;
  EXPECT_TRUE(machine.ReadXML(folder.Wide("mill.xml")));
  EXPECT_TRUE(machine.WriteXML(folder.Wide("mill.xml")));
  const std::string once = folder.Read("mill.xml");
  EXPECT_TRUE(machine.WriteXML(folder.Wide("mill.xml")));
  EXPECT_EQ(folder.Read("mill.xml"), once);
  EXPECT_EQ(std::fgetc(other), '<');
  std::fclose(other);
}

// All meshes may stand in one file; each of them is then the last that was written.
TEST(OddFiles, MeshesThatShareAFileHoldTheLast) {
  const TemporaryFolder folder;
  Machine sample = MakeSample();
  ASSERT_TRUE(sample.WriteMachineWithMeshStl(folder.Wide("mill.xml")));
  for (const char* const name : {"mill_1_0.stl", "mill_1_1.stl"}) {
    std::filesystem::remove(folder.File(name));
    std::filesystem::create_hard_link(folder.File("mill_7_0.stl"), folder.File(name));
  }
  ASSERT_TRUE(sample.WriteMachineWithMeshStl(folder.Wide("mill.xml")));
  Machine again;
  ASSERT_TRUE(again.ReadMachineWithMeshStl(folder.Wide("mill.xml")));
  EXPECT_EQ(MeshesOfBed(again).GetMesh(0)->GetDimNVerts(), 70U);
  EXPECT_EQ(Describe(*MeshesOfBed(again).GetMesh(0)), Describe(*MeshesOfBed(again).GetMesh(1)));
}

}  // namespace
}  // namespace Orvo::Testing
