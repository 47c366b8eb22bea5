#include "faults/Describe.h"
#include "faults/FailingFiles.h"
#include "faults/MemorySweep.h"
#include "faults/SampleMachine.h"
#include "support/FaultReport.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Machine.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::Entity;
using Kin::EntityMesh;
using Kin::Machine;

constexpr std::size_t BufferSize = 512;

struct NamedFault {
  FileFault fault;
  std::string name;
};

std::vector<NamedFault> AllFaults() {
  struct Error {
    FileCall call;
    std::vector<int> errors;  // 0: half of the bytes
  };
  const Error errors[] = {{FileCall::Open, {EIO, EMFILE, EACCES}},
                          {FileCall::Read, {EIO, EINTR, 0}},
                          {FileCall::Write, {ENOSPC, EIO, EINTR, 0}},
                          {FileCall::Seek, {EIO}},
                          {FileCall::Close, {EIO, ENOSPC}},
                          {FileCall::StreamSeek, {EIO}},
                          {FileCall::StreamTell, {EIO}},
                          {FileCall::StreamFlush, {ENOSPC}},
                          {FileCall::StreamClose, {ENOSPC}}};
  std::vector<NamedFault> faults;
  for (const Error& error : errors) {
    for (const int number : error.errors) {
      const std::string what = number == 0 ? "half of the bytes" : strerrorname_np(number);
      for (const bool isLasting : {false, true}) {
        NamedFault& added = faults.emplace_back();
        added.fault.call = error.call;
        added.fault.error = number;
        added.fault.isLasting = isLasting;
        added.name = NameOf(error.call) + ": " + what + (isLasting ? ", lasting" : ", once");
      }
    }
  }
  return faults;
}

std::size_t CountDescriptors() {
  const std::filesystem::directory_iterator entries("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

/// Tells whether an operation must not end well after a fault. All bytes may have come before a
/// file that is read fails to go back or to close, and what gives half of the bytes is asked again.
bool MustBeSaid(const FileFault& fault, bool isReading) {
  switch (fault.call) {
    case FileCall::Open:
    case FileCall::Write:
    case FileCall::StreamSeek:
    case FileCall::StreamTell:
      return true;
    case FileCall::Read:
      return fault.error != 0;
    case FileCall::Seek:
    case FileCall::Close:
    case FileCall::StreamFlush:
    case FileCall::StreamClose:
      return !isReading;
  }
  return true;
}

/// Carries out an operation again and again with each of its calls on files failing in each way,
/// and has a look at what is there, which is told how the operation ended.
///
/// @return how many faults were met
template <typename Operate, typename Check>
std::size_t FailEachFileCall(const std::string& operation, bool isReading, Operate operate,
                             Check check) {
  std::size_t faultNb = 0;
  for (const NamedFault& fault : AllFaults()) {
    for (std::size_t place = 0;; ++place) {
      SCOPED_TRACE(testing::Message() << operation << ", " << fault.name << ", call " << place);
      const std::size_t descriptorNb = CountDescriptors();
      FailFileCall(fault.fault, place, BufferSize);
      const FaultEnding ending = EndingOf(operate);
      const FileFaultResult result = AllowFileCalls();
      EXPECT_EQ(result.openDescriptorNb, 0U);
      EXPECT_EQ(CountDescriptors(), descriptorNb);
      EXPECT_NE(ending, FaultEnding::Threw);
      EXPECT_TRUE(result.wasMade || ending == FaultEnding::Completed);
      if (result.wasMade && MustBeSaid(fault.fault, isReading)) {
        EXPECT_EQ(ending, FaultEnding::Failed) << "it failed, and nothing was said";
      }
      check(ending);
      if (!result.wasMade || testing::Test::HasFailure()) {
        break;
      }
      ++faultNb;
      CountFault(operation, fault.name, ending);
    }
  }
  return faultNb;
}

/// The sample with its meshes, in a folder of its own.
class FileFaults : public testing::Test {
 protected:
  void SetUp() override {
    BuildSample(machine_);
    ASSERT_TRUE(machine_.WriteMachineWithMeshStl(folder_.Wide("sample.xml")));
  }

  /// Faults of reading into a new subject, which then holds what the file says or can be read into.
  template <typename Subject, typename Read, typename DescribeSubject>
  std::size_t FailEachCallOfReading(const std::string& operation, Read readInto,
                                    DescribeSubject describe) {
    auto whole = std::make_unique<Subject>();
    EXPECT_TRUE(readInto(*whole));
    const std::string expected = describe(*whole);
    auto subject = std::make_unique<Subject>();
    return FailEachFileCall(
        operation, true, [&] { return readInto(*subject); },
        [&](FaultEnding ending) {
          if (ending == FaultEnding::Completed) {
            EXPECT_EQ(describe(*subject), expected);
          } else {
            describe(*subject);
            EXPECT_TRUE(readInto(*subject)) << "the second time";
          }
          subject = std::make_unique<Subject>();
        });
  }

  /// Faults of writing files, which are whole or said not to be.
  template <typename Write>
  std::size_t FailEachCallOfWriting(const std::string& operation,
                                    const std::vector<std::string>& names, Write write) {
    std::vector<std::string> expected;
    EXPECT_TRUE(write());
    for (const std::string& name : names) {
      expected.push_back(folder_.Read(name));
      EXPECT_GT(expected.back().size(), 100U);
    }
    const auto expectWhole = [&] {
      for (std::size_t i = 0; i < names.size(); ++i) {
        ASSERT_TRUE(folder_.Has(names[i])) << names[i];
        EXPECT_EQ(folder_.Read(names[i]), expected[i]) << names[i];
      }
    };
    const auto removeAll = [&] {
      for (const std::string& name : names) {
        std::filesystem::remove(folder_.File(name));
      }
    };
    removeAll();
    return FailEachFileCall(operation, false, write, [&](FaultEnding ending) {
      if (ending == FaultEnding::Completed) {
        expectWhole();
      } else {
        EXPECT_TRUE(write()) << "the second time";
        expectWhole();
      }
      removeAll();
    });
  }

  Machine machine_;
  TemporaryFolder folder_;
};

TEST_F(FileFaults, MachineFileIsReadWhollyOrSaidNotToBe) {
  const std::wstring path = folder_.Wide("sample.xml");
  const std::size_t faultNb = FailEachCallOfReading<Machine>(
      "read a machine file", [&path](Machine& machine) { return machine.ReadXML(path); },
      [](Machine& machine) { return Describe(machine); });
  EXPECT_GT(faultNb, 100U);
}

TEST_F(FileFaults, MachineWithMeshesIsReadWhollyOrSaidNotToBe) {
  const std::wstring path = folder_.Wide("sample.xml");
  const std::size_t faultNb = FailEachCallOfReading<Machine>(
      "read a machine with meshes",
      [&path](Machine& machine) { return machine.ReadMachineWithMeshStl(path); },
      [](Machine& machine) { return Describe(machine); });
  EXPECT_GT(faultNb, 200U);
}

TEST_F(FileFaults, MeshFileIsReadWhollyOrSaidNotToBe) {
  const std::wstring path = folder_.Wide("sample_7_0.stl");
  const std::size_t faultNb = FailEachCallOfReading<EntityMesh>(
      "read a mesh file",
      [&path](EntityMesh& list) {
        if (list.GetMeshNb() == 0) {
          AddTriangles(list, 1, 0.0);
        }
        const bool isRead = list.ReadCadStlBin(path, 0);
        EXPECT_EQ(list.GetMesh(0)->GetDimNVerts(), isRead ? 70U : 1U);
        return isRead;
      },
      [](EntityMesh& list) { return Describe(list); });
  EXPECT_GT(faultNb, 10U);
}

TEST_F(FileFaults, MachineFileIsWrittenWhollyOrSaidNotToBe) {
  const std::wstring path = folder_.Wide("out.xml");
  const std::size_t faultNb = FailEachCallOfWriting("write a machine file", {"out.xml"},
                                                    [&] { return machine_.WriteXML(path); });
  EXPECT_GT(faultNb, 100U);
}

TEST_F(FileFaults, MachineWithMeshesIsWrittenWhollyOrSaidNotToBe) {
  const std::wstring path = folder_.Wide("out.xml");
  const std::size_t faultNb = FailEachCallOfWriting(
      "write a machine with meshes", {"out.xml", "out_1_0.stl", "out_1_1.stl", "out_7_0.stl"},
      [&] { return machine_.WriteMachineWithMeshStl(path); });
  EXPECT_GT(faultNb, 100U);
}

TEST_F(FileFaults, MeshFileIsWrittenWhollyOrSaidNotToBe) {
  const std::wstring path = folder_.Wide("out.stl");
  Machine package;
  ASSERT_TRUE(package.ReadMachineWithMeshStl(folder_.Wide("sample.xml")));
  const Entity& table = *package.GetKinematic().GetEntity(Kin::EntityId(7));
  const std::size_t faultNb = FailEachCallOfWriting("write a mesh file", {"out.stl"}, [&] {
    return table.GetEntityMesh()->WriteCadStlBin(path, 0);
  });
  EXPECT_GT(faultNb, 30U);
}

// A machine file that gets shorter while it is read is no whole file.
TEST_F(FileFaults, MachineFileThatShrinksIsNotRead) {
  const std::wstring path = folder_.Wide("sample.xml");
  std::size_t place = 0;
  for (bool isShort = true; isShort; ++place) {
    SCOPED_TRACE(place);
    Machine machine;
    FailFileCall({FileCall::Read, EndOfFile, true}, place, BufferSize);
    const bool isRead = machine.ReadXML(path);
    isShort = AllowFileCalls().wasMade;
    EXPECT_EQ(isRead, !isShort);
    if (isShort) {
      CountFault("read a machine file", "read: end of file, lasting", FaultEnding::Failed);
    }
  }
  EXPECT_GT(place, 20U);
}

// A machine file that gets longer while it is read is read as it was or as it is.
TEST_F(FileFaults, MachineFileThatGrowsIsReadWhollyOrNot) {
  const std::wstring path = folder_.Wide("sample.xml");
  const std::size_t size = std::filesystem::file_size(folder_.File("sample.xml"));
  Machine sample;
  ASSERT_TRUE(sample.ReadXML(path));
  const std::string expected = Describe(sample);
  for (const std::string& end : {std::string("<!-- more -->"), std::string("</Machine>")}) {
    const auto grow = [&] { std::ofstream(folder_.File("sample.xml"), std::ios::app) << end; };
    for (const FileCall call : {FileCall::Read, FileCall::Seek}) {
      bool hasGrown = true;
      for (std::size_t place = 0; hasGrown; ++place) {
        SCOPED_TRACE(testing::Message() << end << ", " << NameOf(call) << ", call " << place);
        std::filesystem::resize_file(folder_.File("sample.xml"), size);
        Machine machine;
        FailFileCall({call, 0, false, grow}, place, BufferSize);
        const bool isRead = machine.ReadXML(path);
        hasGrown = AllowFileCalls().wasMade;
        if (isRead) {
          EXPECT_EQ(Describe(machine), expected);
        } else {
          EXPECT_EQ(end, "</Machine>");
        }
      }
    }
  }
}

// A mesh file that gets shorter is read like one that was so short from the beginning.
TEST_F(FileFaults, MeshFileThatShrinksIsReadAsAShortOne) {
  const std::string whole = folder_.Read("sample_7_0.stl");
  std::size_t place = 0;
  for (bool isShort = true; isShort; ++place) {
    SCOPED_TRACE(place);
    EntityMesh list;
    FailFileCall({FileCall::Read, EndOfFile, true}, place, BufferSize);
    const bool isRead = list.AddCadStlBin(folder_.Wide("sample_7_0.stl"), 1);
    const FileFaultResult result = AllowFileCalls();
    isShort = result.wasMade;
    EXPECT_EQ(result.bytesRead == whole.size(), !isShort);
    folder_.Write("short.stl", whole.substr(0, result.bytesRead));
    EntityMesh shortList;
    EXPECT_EQ(shortList.AddCadStlBin(folder_.Wide("short.stl"), 1), isRead);
    EXPECT_EQ(Describe(list), Describe(shortList));
    if (isShort) {
      CountFault("read a mesh file", "read: end of file, lasting",
                 isRead ? FaultEnding::Completed : FaultEnding::Failed);
    }
  }
  EXPECT_GT(place, 1U);
}

}  // namespace
}  // namespace Orvo::Testing
