#include "Benchmarks.h"
#include "ScratchFolder.h"

#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Mesh.h>

#ifdef ORVO_HAVE_ASSIMP
#include <assimp/Exporter.hpp>
#include <assimp/Importer.hpp>
#include <assimp/scene.h>
#endif

#include <benchmark/benchmark.h>

#include <memory>
#include <stdexcept>

namespace Orvo::Benchmarks {

namespace {

using Kin::EntityMesh;

constexpr unsigned int TriangleNb = 1000000;

/// A mesh of a million triangles, and its file.
struct MeshFile {
  explicit MeshFile(const ScratchFolder& folder)
      : path(folder.Path("mesh.stl")), copyPath(folder.Path("copy.stl")) {
    auto* const mesh = new Mesh;
    written.AddMesh(mesh, 0);
    unsigned int* const verts = mesh->AllocTabNVerts(TriangleNb);
    unsigned int* const vertexIndices = mesh->AllocTabIVertex(3 * TriangleNb);
    Vector3D* const vertices = mesh->AllocTabVertices(3 * TriangleNb);
    unsigned int* const normalIndices = mesh->AllocTabINormal(3 * TriangleNb);
    Vector3D* const normals = mesh->AllocTabNormals(TriangleNb);
    for (unsigned int triangle = 0; triangle < TriangleNb; ++triangle) {
      verts[triangle] = 3;
      normals[triangle] = AxisZ;
      for (unsigned int corner = 0; corner < 3; ++corner) {
        const unsigned int place = 3 * triangle + corner;
        vertexIndices[place] = place;
        normalIndices[place] = triangle;
        const unsigned int x = triangle % 1000 + (corner == 1 ? 1U : 0U);
        const unsigned int y = triangle / 1000 + (corner == 2 ? 1U : 0U);
        vertices[place] = Vector3D(x, y, 0.0);
      }
    }
    Write(path);
    EntityMesh read;
    Read(&read);
    if (read.GetMesh(0)->GetDimNVerts() != TriangleNb ||
        !(read.GetMesh(0)->GetTabVertices()[3 * TriangleNb - 1] == vertices[3 * TriangleNb - 1])) {
      throw std::runtime_error(path + ": not read as it was written");
    }
  }

  void Write(const std::string& to) {
    if (!written.WriteCadStlBin(std::wstring(to.begin(), to.end()), 0)) {
      throw std::runtime_error(to + ": can't be written");
    }
  }

  void Read(EntityMesh* read) const {
    if (!read->AddCadStlBin(std::wstring(path.begin(), path.end()), 0)) {
      throw std::runtime_error(path + ": can't be read");
    }
  }

  std::string path;
  std::string copyPath;
  EntityMesh written;
};

}  // namespace

void RegisterMeshes() {
  static const ScratchFolder folder;
  const auto file = std::make_shared<MeshFile>(folder);
  benchmark::RegisterBenchmark("W7/read/orvo", [file](benchmark::State& state) {
    for (auto _ : state) {
      EntityMesh read;
      file->Read(&read);
      benchmark::ClobberMemory();
    }
  });
  benchmark::RegisterBenchmark("W7/write/orvo", [file](benchmark::State& state) {
    for (auto _ : state) {
      file->Write(file->copyPath);
    }
  });
#ifdef ORVO_HAVE_ASSIMP
  const auto importer = std::make_shared<Assimp::Importer>();
  const aiScene* const scene = importer->ReadFile(file->path, 0);
  if (scene == nullptr || scene->mNumMeshes != 1 || scene->mMeshes[0]->mNumFaces != TriangleNb) {
    throw std::runtime_error(file->path + ": not read by the other system");
  }
  benchmark::RegisterBenchmark("W7/read/assimp", [file](benchmark::State& state) {
    for (auto _ : state) {
      Assimp::Importer own;
      benchmark::DoNotOptimize(own.ReadFile(file->path, 0));
    }
  });
  benchmark::RegisterBenchmark("W7/write/assimp", [file, importer](benchmark::State& state) {
    for (auto _ : state) {
      Assimp::Exporter exporter;
      benchmark::DoNotOptimize(exporter.Export(importer->GetScene(), "stlb", file->copyPath));
    }
  });
#endif
}

}  // namespace Orvo::Benchmarks
