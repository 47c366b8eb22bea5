#include "StlBytes.h"
#include "io/StlCodec.h"
#include "support/SameBits.h"
#include "support/TestRandom.h"

#include <Orvo/Mesh.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace Orvo::Testing {
namespace {

// Bytes to read, in pieces of a largest size.
class TextSource : public ByteSource {
 public:
  explicit TextSource(std::string bytes) : bytes_(std::move(bytes)) {}

  std::size_t Read(void* bytes, std::size_t size) override {
    const std::size_t count = std::min(size, bytes_.size() - place_);
    std::memcpy(bytes, bytes_.data() + place_, count);
    place_ += count;
    return count;
  }

 private:
  std::string bytes_;
  std::size_t place_ = 0;
};

// Keeps what is written; fails from a given number of bytes, or when it is to seek.
class TextSink : public ByteSink {
 public:
  explicit TextSink(std::size_t capacity = std::numeric_limits<std::size_t>::max(),
                    bool canSeek = true)
      : capacity_(capacity), canSeek_(canSeek) {}

  bool Write(const void* bytes, std::size_t size) override {
    ++writeNb;
    const bool fits = place_ + size <= capacity_;
    const std::size_t count = fits ? size : capacity_ - std::min(capacity_, place_);
    if (text.size() < place_ + count) {
      text.resize(place_ + count);
    }
    std::memcpy(text.data() + place_, bytes, count);
    place_ += count;
    return fits;
  }
  bool Seek(long offset) override {
    place_ = static_cast<std::size_t>(offset);
    return canSeek_;
  }

  std::string text;
  int writeNb = 0;

 private:
  std::size_t capacity_;
  bool canSeek_;
  std::size_t place_ = 0;
};

bool Decode(const std::string& bytes, Mesh* mesh) {
  TextSource source(bytes);
  return DecodeStl(&source, mesh);
}

// Fills a mesh with faces over the corners that are given, one vertex and one normal a corner.
struct MeshParts {
  std::vector<unsigned int> nVerts;
  std::vector<unsigned int> iVertex;
  std::vector<Vector3D> vertices;
  std::vector<unsigned int> iNormal;
  std::vector<Vector3D> normals;
};

Mesh MakeMesh(const MeshParts& parts) {
  Mesh mesh;
  std::copy(parts.nVerts.begin(), parts.nVerts.end(),
            mesh.AllocTabNVerts(static_cast<unsigned int>(parts.nVerts.size())));
  std::copy(parts.iVertex.begin(), parts.iVertex.end(),
            mesh.AllocTabIVertex(static_cast<unsigned int>(parts.iVertex.size())));
  std::copy(parts.vertices.begin(), parts.vertices.end(),
            mesh.AllocTabVertices(static_cast<unsigned int>(parts.vertices.size())));
  std::copy(parts.iNormal.begin(), parts.iNormal.end(),
            mesh.AllocTabINormal(static_cast<unsigned int>(parts.iNormal.size())));
  std::copy(parts.normals.begin(), parts.normals.end(),
            mesh.AllocTabNormals(static_cast<unsigned int>(parts.normals.size())));
  return mesh;
}

MeshParts TriangleParts() {
  return {{3}, {0, 1, 2}, {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}, {0, 0, 0}, {{0, 0, 1}}};
}

TEST(DecodeStl, TriangleHasThreeVerticesAndOneNormalOfItsOwn) {
  Mesh mesh;
  ASSERT_TRUE(Decode(StlHeader(2) + CountingRecord(1) + CountingRecord(101), &mesh));
  ASSERT_EQ(mesh.GetDimNVerts(), 2U);
  ASSERT_EQ(mesh.GetDimIVertex(), 6U);
  ASSERT_EQ(mesh.GetDimVertices(), 6U);
  ASSERT_EQ(mesh.GetDimINormal(), 6U);
  ASSERT_EQ(mesh.GetDimNormals(), 2U);
  for (unsigned int i = 0; i < 6; ++i) {
    EXPECT_EQ(mesh.GetTabIVertex()[i], i);
    EXPECT_EQ(mesh.GetTabINormal()[i], i / 3);
    const double first = (i < 3 ? 4 : 104) + 3.0 * (i % 3);
    EXPECT_TRUE(SameBits(mesh.GetTabVertices()[i], Vector3D(first, first + 1, first + 2)));
  }
  EXPECT_EQ(mesh.GetTabNVerts()[0], 3U);
  EXPECT_EQ(mesh.GetTabNVerts()[1], 3U);
  EXPECT_TRUE(SameBits(mesh.GetTabNormals()[0], Vector3D(1, 2, 3)));
  EXPECT_TRUE(SameBits(mesh.GetTabNormals()[1], Vector3D(101, 102, 103)));
}

TEST(DecodeStl, HeaderAndAttributesAreIgnored) {
  Mesh mesh;
  const std::string header = "solid " + std::string(74, '\xFF') + U32Bytes(1);
  ASSERT_TRUE(Decode(header + StlRecord({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}, 0xFFFF), &mesh));
  EXPECT_TRUE(SameBits(mesh.GetTabVertices()[2], Vector3D(10, 11, 12)));
}

TEST(DecodeStl, ValuesAreSinglePrecision) {
  const float inf = std::numeric_limits<float>::infinity();
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float tiny = std::numeric_limits<float>::denorm_min();
  Mesh mesh;
  ASSERT_TRUE(Decode(StlHeader(1) + StlRecord({0.1F, -0.0F, tiny, inf, -inf, nan, 3.4e38F, 1e-38F,
                                               16777217.0F, 0.3F, -0.7F, 0.0F}),
                     &mesh));
  EXPECT_TRUE(SameBits(mesh.GetTabNormals()[0],
                       Vector3D(static_cast<double>(0.1F), -0.0, static_cast<double>(tiny))));
  EXPECT_EQ(mesh.GetTabVertices()[0][0], std::numeric_limits<double>::infinity());
  EXPECT_EQ(mesh.GetTabVertices()[0][1], -std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::isnan(mesh.GetTabVertices()[0][2]));
  EXPECT_EQ(mesh.GetTabVertices()[1][2], 16777216.0);
}

TEST(DecodeStl, ShortHeaderAndBadCountsAreRefused) {
  const std::string whole = StlHeader(1) + CountingRecord(1);
  for (std::size_t size = 0; size < 84; ++size) {
    Mesh mesh;
    EXPECT_FALSE(Decode(whole.substr(0, size), &mesh)) << size;
    EXPECT_EQ(mesh.GetTabNVerts(), nullptr);
  }
  for (const std::uint32_t count : {0U, 1431655766U, 2147483648U, 4294967295U}) {
    Mesh mesh;
    EXPECT_FALSE(Decode(StlHeader(count) + CountingRecord(1), &mesh)) << count;
    EXPECT_EQ(mesh.GetTabNVerts(), nullptr);
    EXPECT_EQ(mesh.GetDimNVerts(), 0U);
  }
}

TEST(DecodeStl, RefusedFileLeavesTheMesh) {
  Mesh mesh = MakeMesh(TriangleParts());
  EXPECT_FALSE(Decode(StlHeader(0) + CountingRecord(1), &mesh));
  EXPECT_FALSE(Decode("short", &mesh));
  ASSERT_EQ(mesh.GetDimVertices(), 3U);
  EXPECT_TRUE(SameBits(mesh.GetTabVertices()[1], Vector3D(4, 5, 6)));
}

// Every length of a file of three triangles: a triangle counts with its 48 bytes.
TEST(DecodeStl, ShortFileKeepsTheSizeThatItsCountSays) {
  const std::string whole =
      StlHeader(3) + CountingRecord(1) + CountingRecord(101) + CountingRecord(201);
  for (std::size_t size = 84; size <= whole.size(); ++size) {
    SCOPED_TRACE(size);
    Mesh mesh;
    ASSERT_TRUE(Decode(whole.substr(0, size), &mesh));
    ASSERT_EQ(mesh.GetDimNVerts(), 3U);
    ASSERT_EQ(mesh.GetDimIVertex(), 9U);
    ASSERT_EQ(mesh.GetDimVertices(), 9U);
    ASSERT_EQ(mesh.GetDimINormal(), 9U);
    ASSERT_EQ(mesh.GetDimNormals(), 3U);
    const std::size_t triangles = (size - 84 + 2) / 50;
    for (unsigned int i = 0; i < 3; ++i) {
      const bool reached = i < triangles;
      ASSERT_EQ(mesh.GetTabNVerts()[i], reached ? 3U : 0U);
      ASSERT_EQ(mesh.GetTabNormals()[i][0], reached ? 100.0 * i + 1 : 0.0);
      for (unsigned int k = 3 * i; k < 3 * i + 3; ++k) {
        ASSERT_EQ(mesh.GetTabIVertex()[k], reached ? k : 0U);
        ASSERT_EQ(mesh.GetTabINormal()[k], reached ? i : 0U);
        ASSERT_EQ(mesh.GetTabVertices()[k][2], reached ? 100.0 * i + 6 + 3 * (k % 3) : 0.0);
      }
    }
  }
}

TEST(DecodeStl, BytesBehindTheLastTriangleAreIgnored) {
  Mesh mesh;
  ASSERT_TRUE(Decode(StlHeader(1) + CountingRecord(1) + CountingRecord(101), &mesh));
  EXPECT_EQ(mesh.GetDimNVerts(), 1U);
}

TEST(DecodeStl, FilledMeshTakesNewArrays) {
  Mesh mesh = MakeMesh(TriangleParts());
  const Mesh copy = mesh;
  ASSERT_TRUE(Decode(StlHeader(2) + CountingRecord(1) + CountingRecord(101), &mesh));
  EXPECT_EQ(mesh.GetDimVertices(), 6U);
  EXPECT_EQ(copy.GetDimVertices(), 3U);
  EXPECT_TRUE(SameBits(copy.GetTabVertices()[1], Vector3D(4, 5, 6))) << "a copy keeps the old ones";
}

// Many triangles pass through the reader's and the writer's blocks.
TEST(StlCodec, ManyTrianglesComeBack) {
  for (const unsigned int count : {1U, 2U, 1023U, 1024U, 1025U, 2048U, 5000U}) {
    SCOPED_TRACE(count);
    std::string bytes = StlHeader(count);
    for (unsigned int i = 0; i < count; ++i) {
      bytes += CountingRecord(static_cast<float>(i));
    }
    Mesh mesh;
    ASSERT_TRUE(Decode(bytes, &mesh));
    ASSERT_EQ(mesh.GetDimNVerts(), count);
    EXPECT_EQ(mesh.GetTabVertices()[3 * count - 1][2], count - 1 + 11.0);
    TextSink sink;
    ASSERT_TRUE(EncodeStl(mesh, &sink));
    ASSERT_TRUE(sink.text == bytes);
  }
}

TEST(StlCodec, RandomBytesComeBack) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int round = 0; round < 200; ++round) {
    const auto count = static_cast<unsigned int>(random.Integer(1, 9));
    std::string bytes = StlHeader(count);
    for (unsigned int i = 0; i < count; ++i) {
      for (int k = 0; k < 12; ++k) {
        bytes += FloatBytes(static_cast<float>(random.Real(-1e6, 1e6)));
      }
      bytes += std::string(2, '\0');
    }
    Mesh mesh;
    ASSERT_TRUE(Decode(bytes, &mesh));
    TextSink sink;
    ASSERT_TRUE(EncodeStl(mesh, &sink));
    ASSERT_TRUE(sink.text == bytes);
  }
}

TEST(EncodeStl, OneTriangleHasOneHundredAndThirtyFourBytes) {
  TextSink sink;
  ASSERT_TRUE(EncodeStl(MakeMesh(TriangleParts()), &sink));
  EXPECT_EQ(sink.text.size(), 134U);
  EXPECT_EQ(sink.text, StlHeader(1) + StlRecord({0, 0, 1, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
}

TEST(EncodeStl, EmptyMeshIsAHeader) {
  TextSink sink;
  EXPECT_TRUE(EncodeStl(Mesh(), &sink));
  EXPECT_EQ(sink.text, StlHeader(0));
}

TEST(EncodeStl, IndicesAreFollowedAndTheFirstCornersNormalIsTaken) {
  MeshParts parts;
  parts.nVerts = {3, 3};
  parts.vertices = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  parts.iVertex = {3, 1, 0, 2, 2, 1};
  parts.normals = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  parts.iNormal = {2, 0, 1, 1, 2, 0};
  TextSink sink;
  ASSERT_TRUE(EncodeStl(MakeMesh(parts), &sink));
  EXPECT_EQ(sink.text, StlHeader(2) + StlRecord({0, 0, 1, 0, 0, 1, 1, 0, 0, 0, 0, 0}) +
                           StlRecord({0, 1, 0, 0, 1, 0, 0, 1, 0, 1, 0, 0}));
}

TEST(EncodeStl, ValuesAreRoundedToSinglePrecision) {
  MeshParts parts = TriangleParts();
  parts.vertices[0] = Vector3D(0.1, 1.0 / 3, 16777217.0);
  TextSink sink;
  ASSERT_TRUE(EncodeStl(MakeMesh(parts), &sink));
  EXPECT_EQ(sink.text.substr(96, 12),
            FloatBytes(0.1F) + FloatBytes(1.0F / 3) + FloatBytes(16777216.0F));
}

TEST(EncodeStl, SmallerFacesAreLeftOut) {
  MeshParts parts;
  parts.nVerts = {2, 3, 0, 1, 3, 2};
  parts.vertices = {{1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}};
  parts.normals = {{0, 0, 1}, {0, 0, 2}};
  parts.iVertex = {0, 0, 1, 2, 3, 0, 3, 2, 1, 0, 0};
  parts.iNormal = {0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0};
  TextSink sink;
  ASSERT_TRUE(EncodeStl(MakeMesh(parts), &sink));
  EXPECT_EQ(sink.text, StlHeader(2) + StlRecord({0, 0, 2, 2, 0, 0, 3, 0, 0, 4, 0, 0}) +
                           StlRecord({0, 0, 1, 4, 0, 0, 3, 0, 0, 2, 0, 0}))
      << "the count is that of the triangles";
}

TEST(EncodeStl, LargerFacesEndTheFile) {
  MeshParts parts;
  parts.nVerts = {3, 4, 3};
  parts.vertices = {{1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}};
  parts.normals = {{0, 0, 1}};
  parts.iVertex = {0, 1, 2, 0, 1, 2, 3, 0, 1, 2};
  parts.iNormal = std::vector<unsigned int>(10, 0);
  TextSink sink;
  EXPECT_FALSE(EncodeStl(MakeMesh(parts), &sink));
  EXPECT_EQ(sink.text, StlHeader(3) + StlRecord({0, 0, 1, 1, 0, 0, 2, 0, 0, 3, 0, 0}))
      << "the part before it stays, with the count of all faces";
  for (const unsigned int size : {4U, 5U, 4294967295U}) {
    parts.nVerts = {size};
    TextSink other;
    EXPECT_FALSE(EncodeStl(MakeMesh(parts), &other));
    EXPECT_EQ(other.text, StlHeader(1));
  }
}

TEST(EncodeStl, EveryIndexIsChecked) {
  struct Case {
    const char* name;
    void (*change)(MeshParts*);
  };
  const Case cases[] = {
      {"a vertex behind the last", [](MeshParts* p) { p->iVertex[2] = 3; }},
      {"a vertex far behind", [](MeshParts* p) { p->iVertex[0] = 4294967295U; }},
      {"a normal behind the last", [](MeshParts* p) { p->iNormal[0] = 1; }},
      {"a normal of a later corner", [](MeshParts* p) { p->iNormal[2] = 1; }},
      {"too few corners", [](MeshParts* p) { p->iVertex.pop_back(); }},
      {"no corners", [](MeshParts* p) { p->iVertex.clear(); }},
      {"too few normals of corners", [](MeshParts* p) { p->iNormal.pop_back(); }},
      {"no vertices", [](MeshParts* p) { p->vertices.clear(); }},
      {"no normals", [](MeshParts* p) { p->normals.clear(); }},
      {"a smaller face with a bad index",
       [](MeshParts* p) {
         p->nVerts = {2};
         p->iVertex = {0, 7};
       }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    MeshParts parts = TriangleParts();
    c.change(&parts);
    TextSink sink;
    EXPECT_FALSE(EncodeStl(MakeMesh(parts), &sink));
    EXPECT_EQ(sink.text, StlHeader(1));
  }
  MeshParts second = TriangleParts();
  second.nVerts = {3, 3};
  second.iVertex = {0, 1, 2, 0, 1, 3};
  second.iNormal = std::vector<unsigned int>(6, 0);
  TextSink sink;
  EXPECT_FALSE(EncodeStl(MakeMesh(second), &sink));
  EXPECT_EQ(sink.text, StlHeader(2) + StlRecord({0, 0, 1, 1, 2, 3, 4, 5, 6, 7, 8, 9}))
      << "the triangles before it stay";
}

TEST(EncodeStl, SinkThatFailsAtAnyByteFails) {
  MeshParts parts = TriangleParts();
  for (std::size_t capacity = 0; capacity < 134; ++capacity) {
    TextSink sink(capacity);
    EXPECT_FALSE(EncodeStl(MakeMesh(parts), &sink)) << capacity;
  }
  TextSink whole(134);
  EXPECT_TRUE(EncodeStl(MakeMesh(parts), &whole));
  TextSink noSeek(1000, false);
  EXPECT_FALSE(EncodeStl(MakeMesh(parts), &noSeek));
}

TEST(EncodeStl, TrianglesAreWrittenInBlocksAndEachMayFail) {
  MeshParts parts;
  parts.nVerts = std::vector<unsigned int>(3000, 3);
  parts.vertices = {{1, 0, 0}};
  parts.normals = {{0, 0, 1}};
  parts.iVertex = parts.iNormal = std::vector<unsigned int>(9000, 0);
  const Mesh mesh = MakeMesh(parts);
  for (const std::size_t capacity : {0U, 84U, 30000U, 60000U, 110000U, 150083U}) {
    TextSink sink(capacity);
    EXPECT_FALSE(EncodeStl(mesh, &sink)) << capacity;
  }
  TextSink sink(150084);
  EXPECT_TRUE(EncodeStl(mesh, &sink));
  EXPECT_EQ(sink.writeNb, 4) << "the header and three blocks";
  parts.nVerts.push_back(2);
  parts.iVertex.resize(9002);
  parts.iNormal.resize(9002);
  TextSink withSmallerFace;
  EXPECT_TRUE(EncodeStl(MakeMesh(parts), &withSmallerFace));
  EXPECT_EQ(withSmallerFace.writeNb, 5) << "the header, three blocks, and the count again";
  EXPECT_EQ(withSmallerFace.text, sink.text);
}

}  // namespace
}  // namespace Orvo::Testing
