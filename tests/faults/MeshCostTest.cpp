#include "faults/SampleMachine.h"
#include "io/StlCodec.h"
#include "support/CountedMemory.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Mesh.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::EntityMesh;

constexpr unsigned int TriangleNb = 200000;
constexpr std::size_t FileSize = 84 + 50 * std::size_t{TriangleNb};

// What the arrays of a triangle take: four vectors and seven indices and counts.
constexpr std::size_t TriangleSize = 4 * sizeof(Vector3D) + 7 * sizeof(unsigned int);

// The blocks in which bytes come and go stand on the stack; on the heap, a stream has a buffer.
constexpr std::size_t LargestOverhead = 16384;

constexpr std::size_t MostAllocations = 8;

/// Gives the bytes of a mesh file, and watches the memory meanwhile.
class WatchedSource : public ByteSource {
 public:
  explicit WatchedSource(std::string bytes) : bytes_(std::move(bytes)) {}

  std::size_t Read(void* bytes, std::size_t size) override {
    largestLive = std::max(largestLive, GetLiveMemory().bytes);
    largestRead = std::max(largestRead, size);
    const std::size_t count = std::min(size, bytes_.size() - place_);
    std::memcpy(bytes, bytes_.data() + place_, count);
    place_ += count;
    return count;
  }

  std::size_t largestLive = 0;
  std::size_t largestRead = 0;

 private:
  std::string bytes_;
  std::size_t place_ = 0;
};

/// Counts how often each byte is written, and watches the memory meanwhile.
class WatchedSink : public ByteSink {
 public:
  explicit WatchedSink(std::size_t size) : writeNbs(size) {}

  bool Write(const void*, std::size_t size) override {
    largestLive = std::max(largestLive, GetLiveMemory().bytes);
    for (std::size_t i = 0; i < size; ++i) {
      ++writeNbs.at(place_ + i);
    }
    place_ += size;
    return true;
  }
  bool Seek(long offset) override {
    place_ = static_cast<std::size_t>(offset);
    return true;
  }

  std::vector<int> writeNbs;
  std::size_t largestLive = 0;

 private:
  std::size_t place_ = 0;
};

/// A list of one mesh of many triangles, and its file.
class MeshCost : public testing::Test {
 protected:
  void SetUp() override {
    AddTriangles(list_, TriangleNb, 0.5);
    ASSERT_TRUE(list_.WriteCadStlBin(path_, 0));
    ASSERT_EQ(std::filesystem::file_size(folder_.File(Name)), FileSize);
  }

  static constexpr const char* Name = "a name that no short string can hold.stl";
  TemporaryFolder folder_;
  std::wstring path_ = folder_.Wide(Name);
  EntityMesh list_;
};

TEST_F(MeshCost, FileIsReadWithFewAllocations) {
  bool isRead = false;
  std::size_t allocationNb = AllocationsOf([&] {
    EntityMesh list;
    isRead = list.AddCadStlBin(path_, 1);
  });
  EXPECT_TRUE(isRead);
  EXPECT_LE(allocationNb, MostAllocations) << "from an empty list";
  EXPECT_GT(allocationNb, 0U);
  allocationNb = AllocationsOf([&] { isRead = list_.ReadCadStlBin(path_, 0); });
  EXPECT_TRUE(isRead);
  EXPECT_LE(allocationNb, MostAllocations) << "into a mesh";
}

TEST_F(MeshCost, FileIsWrittenWithFewAllocations) {
  bool isWritten = false;
  const std::size_t allocationNb =
      AllocationsOf([&] { isWritten = list_.WriteCadStlBin(path_, 0); });
  EXPECT_TRUE(isWritten);
  EXPECT_LE(allocationNb, MostAllocations);
  EXPECT_GT(allocationNb, 0U);
}

TEST_F(MeshCost, FileIsNotCopiedWholeWhenItIsRead) {
  WatchedSource source(folder_.Read(Name));
  Mesh mesh;
  const std::size_t before = GetLiveMemory().bytes;
  ASSERT_TRUE(DecodeStl(&source, &mesh));
  EXPECT_LE(source.largestLive, before + TriangleSize * TriangleNb + LargestOverhead);
  EXPECT_LE(source.largestRead, FileSize / 100);
  EXPECT_EQ(mesh.GetDimVertices(), 3 * TriangleNb);
}

TEST_F(MeshCost, EachByteIsWrittenOnceAndNoneIsKept) {
  WatchedSink sink(FileSize);
  const std::size_t before = GetLiveMemory().bytes;
  ASSERT_TRUE(EncodeStl(*list_.GetMesh(0), &sink));
  EXPECT_TRUE(std::all_of(sink.writeNbs.begin(), sink.writeNbs.end(),
                          [](int writeNb) { return writeNb == 1; }));
  EXPECT_LE(sink.largestLive, before + LargestOverhead);
}

}  // namespace
}  // namespace Orvo::Testing
