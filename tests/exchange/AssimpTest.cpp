// Scenes as another reader has them. It computes with 32-bit floats.

#include "machines/ExampleData.h"

#include <Orvo/Exchange/Exchange.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/MachineCompute.h>

#include <assimp/Importer.hpp>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <sstream>
#include <string>

namespace Orvo::Testing {
namespace {

std::size_t CountNodes(const aiNode* root) {
  std::size_t count = 0;
  std::vector<const aiNode*> open = {root};
  while (!open.empty()) {
    const aiNode* const node = open.back();
    open.pop_back();
    ++count;
    open.insert(open.end(), node->mChildren, node->mChildren + node->mNumChildren);
  }
  return count;
}

/// The corners of a scene's meshes in the world: their number, and the sum of each coordinate.
struct Sum {
  std::size_t count = 0;
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

void AddUp(const aiScene& scene, const aiNode& node, const aiMatrix4x4& worldFromParent, Sum* sum) {
  const aiMatrix4x4 worldFromNode = worldFromParent * node.mTransformation;
  for (unsigned int i = 0; i < node.mNumMeshes; ++i) {
    const aiMesh& mesh = *scene.mMeshes[node.mMeshes[i]];
    for (unsigned int face = 0; face < mesh.mNumFaces; ++face) {
      for (unsigned int k = 0; k < mesh.mFaces[face].mNumIndices; ++k) {
        const aiVector3D place = worldFromNode * mesh.mVertices[mesh.mFaces[face].mIndices[k]];
        ++sum->count;
        sum->x += static_cast<double>(place.x);
        sum->y += static_cast<double>(place.y);
        sum->z += static_cast<double>(place.z);
      }
    }
  }
  for (unsigned int i = 0; i < node.mNumChildren; ++i) {
    AddUp(scene, *node.mChildren[i], worldFromNode, sum);
  }
}

/// The same of the machine, its Z upwards as Y, in meters.
Sum SumOf(const Kin::Machine& machine, const Kin::MachinePosition& position) {
  Kin::MachineCompute compute(machine);
  std::vector<Matrix43> frames;
  EXPECT_TRUE(compute.ComputePositionMachine(position, &frames));
  Sum sum;
  for (const Kin::Entity& entity : machine.GetKinematic().GetListEntity()) {
    const Kin::EntityMesh* const meshes = entity.GetEntityMesh();
    const int meshNb = meshes == nullptr ? 0 : static_cast<int>(meshes->GetMeshNb());
    for (int i = 0; i < meshNb; ++i) {
      const Mesh& mesh = *meshes->GetMesh(i);
      for (unsigned int v = 0; v < mesh.GetDimVertices(); ++v) {
        const Vector3D place =
            frames[static_cast<std::size_t>(entity.GetEntityId().GetVal())].ApplyToPoint(
                mesh.GetTabVertices()[v]);
        ++sum.count;
        sum.x += 0.001 * place[0];
        sum.y += 0.001 * place[2];
        sum.z -= 0.001 * place[1];
      }
    }
  }
  return sum;
}

TEST(GltfInAssimp, HasTheNodesMeshesAndMotionOfTheMachine) {
  for (const std::string& name : ExampleMachineNames()) {
    SCOPED_TRACE(name);
    Kin::Machine machine;
    ASSERT_TRUE(machine.ReadMachineWithMeshStl(WideName(ExampleMachineFile(name))));
    Exchange::GltfOptions options;
    machine.Alloc(&options.position);
    for (int reg = 0; reg < machine.GetRegisterNb().GetVal(); ++reg) {
      options.position[reg] = 10.0 * (reg + 1);
    }
    Kin::MachinePosition end = options.position;
    end[0] += 50.0;
    end[machine.GetRegisterNb().GetVal() - 1] += 200.0;
    options.animation = {{0.0, options.position}, {1.0, end}};
    std::ostringstream out;
    Exchange::WriteGlb(machine, out, options);
    const std::string glb = out.str();

    Assimp::Importer importer;
    const aiScene* const scene = importer.ReadFileFromMemory(glb.data(), glb.size(), 0, "glb");
    ASSERT_NE(scene, nullptr) << importer.GetErrorString();
    EXPECT_EQ(CountNodes(scene->mRootNode), static_cast<std::size_t>(machine.GetEntityNb()) + 1);
    ASSERT_EQ(scene->mNumAnimations, 1U);
    EXPECT_GE(scene->mAnimations[0]->mNumChannels, 2U);
    Sum is;
    AddUp(*scene, *scene->mRootNode, aiMatrix4x4(), &is);
    const Sum should = SumOf(machine, options.position);
    ASSERT_EQ(is.count, should.count);
    ASSERT_GT(is.count, 0U);
    const auto count = static_cast<double>(is.count);
    std::printf("%s: %zu corners, mean off by %.3g, %.3g, %.3g m\n", name.c_str(), is.count,
                (is.x - should.x) / count, (is.y - should.y) / count, (is.z - should.z) / count);
    EXPECT_NEAR(is.x / count, should.x / count, 1e-6);
    EXPECT_NEAR(is.y / count, should.y / count, 1e-6);
    EXPECT_NEAR(is.z / count, should.z / count, 1e-6);
  }
}

}  // namespace
}  // namespace Orvo::Testing
