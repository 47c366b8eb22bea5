// glTF read back by hand: nodes walked, animations sampled, and held against the library's frames.

#include "exchange/AnyMachine.h"
#include "machines/ExampleData.h"
#include "property/Draw.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Exchange/Exchange.h>
#include <Orvo/Kin/EntityMesh.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <sstream>
#include <string>

namespace Orvo::Testing {
namespace {

using Exchange::AnimationKey;
using Exchange::GltfOptions;
using Json = nlohmann::json;
using Property::Draw;
using Property::ForCases;
using testing::HasSubstr;

std::uint32_t WordAt(const std::string& bytes, std::size_t place) {
  std::uint32_t word = 0;
  for (std::size_t i = 4; i > 0; --i) {
    word = (word << 8U) | static_cast<unsigned char>(bytes.at(place + i - 1));
  }
  return word;
}

/// A GLB taken apart.
struct Scene {
  Json json;
  std::string bin;

  explicit Scene(const std::string& glb) {
    EXPECT_EQ(WordAt(glb, 0), 0x46546C67U);
    EXPECT_EQ(WordAt(glb, 4), 2U);
    EXPECT_EQ(WordAt(glb, 8), glb.size());
    const std::uint32_t textSize = WordAt(glb, 12);
    EXPECT_EQ(WordAt(glb, 16), 0x4E4F534AU);
    EXPECT_EQ(textSize % 4, 0U);
    json = Json::parse(glb.substr(20, textSize));
    if (20 + textSize < glb.size()) {
      const std::uint32_t binSize = WordAt(glb, 20 + textSize);
      EXPECT_EQ(WordAt(glb, 24 + textSize), 0x004E4942U);
      EXPECT_EQ(binSize % 4, 0U);
      bin = glb.substr(28 + textSize);
      EXPECT_EQ(bin.size(), binSize);
      EXPECT_EQ(json["buffers"][0]["byteLength"], binSize);
    }
  }

  /// The numbers of an accessor, element after element.
  std::vector<float> Floats(std::size_t accessor) const {
    const Json& a = json["accessors"][accessor];
    EXPECT_EQ(a["componentType"], 5126);
    const Json& view = json["bufferViews"][a["bufferView"].get<std::size_t>()];
    const std::string type = a["type"];
    const std::size_t width = type == "SCALAR" ? 1 : (type == "VEC3" ? 3 : 4);
    std::vector<float> floats(a["count"].get<std::size_t>() * width);
    const auto offset = view["byteOffset"].get<std::size_t>();
    EXPECT_EQ(offset % 4, 0U);
    EXPECT_EQ(view["byteLength"], 4 * floats.size());
    std::memcpy(floats.data(), bin.data() + offset, 4 * floats.size());
    return floats;
  }
};

std::string Glb(const Kin::Machine& machine, const GltfOptions& options = {}) {
  std::ostringstream out;
  Exchange::WriteGlb(machine, out, options);
  return out.str();
}

Matrix43 FromTurn(const std::array<double, 4>& q) {
  const double x = q[0];
  const double y = q[1];
  const double z = q[2];
  const double w = q[3];
  Matrix43 frame;
  frame.SetUVW(Vector3D(1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w)),
               Vector3D(2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w)),
               Vector3D(2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y)));
  return frame;
}

/// What a node says of itself, or what an animation says in its place.
struct Placement {
  std::array<double, 3> translation = {};
  std::array<double, 4> rotation = {0, 0, 0, 1};
};

Placement PlacementOf(const Json& node) {
  Placement placement;
  if (node.contains("translation")) {
    placement.translation = node["translation"].get<std::array<double, 3>>();
  }
  if (node.contains("rotation")) {
    placement.rotation = node["rotation"].get<std::array<double, 4>>();
  }
  return placement;
}

Matrix43 FrameOf(const Json& node, const Placement& placement) {
  Matrix43 frame;
  if (node.contains("matrix")) {
    const auto m = node["matrix"].get<std::array<double, 16>>();
    frame = m.data();
    return frame;
  }
  frame = FromTurn(placement.rotation);
  frame.SetTrans(
      Vector3D(placement.translation[0], placement.translation[1], placement.translation[2]));
  return frame;
}

/// The frames of the nodes of elements, in the frame of the root node.
std::vector<Matrix43> FramesOf(const Json& json, const std::vector<Placement>& placements) {
  const Json& nodes = json["nodes"];
  std::vector<Matrix43> frames(nodes.size());
  std::vector<int> seen(nodes.size(), 0);
  std::vector<std::size_t> open = {0};
  seen[0] = 1;
  while (!open.empty()) {
    const std::size_t place = open.back();
    open.pop_back();
    if (!nodes[place].contains("children")) {
      continue;
    }
    for (const Json& child : nodes[place]["children"]) {
      const auto c = child.get<std::size_t>();
      EXPECT_EQ(++seen.at(c), 1) << "a node with two parents";
      Matrix43 local = FrameOf(nodes[c], placements[c]);
      frames[c] = place == 0 ? local : frames[place] * local;
      open.push_back(c);
    }
  }
  EXPECT_EQ(std::count(seen.begin(), seen.end(), 1), static_cast<std::ptrdiff_t>(nodes.size()));
  frames.erase(frames.begin());
  return frames;
}

std::vector<Placement> PlacementsOf(const Json& json) {
  std::vector<Placement> placements;
  for (const Json& node : json["nodes"]) {
    placements.push_back(PlacementOf(node));
  }
  return placements;
}

double LargestDifference(const Kin::Machine& machine, const Kin::MachinePosition& position,
                         const std::vector<Matrix43>& frames) {
  const std::vector<Matrix43> expected = NodeFrames(machine, position);
  EXPECT_EQ(frames.size(), expected.size());
  const double size = SizeOf(expected) * 0.001;
  double largest = 0.0;
  for (std::size_t i = 0; i < std::min(frames.size(), expected.size()); ++i) {
    Matrix43 inMeters = expected[i];
    Vector3D origin = inMeters.GetTrans();
    inMeters.SetTrans(origin * 0.001);
    largest = std::max(largest, Difference(frames[i], inMeters, size));
  }
  return largest;
}

void ExpectSameFrames(const Kin::Machine& machine, const Kin::MachinePosition& position) {
  GltfOptions options;
  options.position = position;
  const Scene scene(Glb(machine, options));
  EXPECT_LT(LargestDifference(machine, position, FramesOf(scene.json, PlacementsOf(scene.json))),
            1e-12);
}

TEST(Gltf, PlacesTheNodesOfExampleMachinesAsTheLibraryDoes) {
  for (const std::string& name : ExampleMachineNames()) {
    SCOPED_TRACE(name);
    Kin::Machine machine;
    ASSERT_TRUE(machine.ReadXML(WideName(ExampleMachineFile(name))));
    ForCases(40, [&](Draw& draw) { ExpectSameFrames(machine, DrawPosition(draw, machine)); });
  }
}

TEST(Gltf, PlacesTheNodesOfRandomMachinesAsTheLibraryDoes) {
  ForCases(800, [](Draw& draw) {
    const auto machine = RigidMachine(draw);
    ExpectSameFrames(*machine, DrawPosition(draw, *machine));
  });
}

TEST(Gltf, TurnsTheMachinesZUpwards) {
  Kin::Machine machine;
  MakeSmallMachine(&machine);
  ASSERT_TRUE(machine.Finish());
  const Scene scene(Glb(machine));
  Matrix43 root = FrameOf(scene.json["nodes"][0], PlacementOf(scene.json["nodes"][0]));
  const Vector3D up = root.ApplyToVector3D(AxisZ);
  const Vector3D right = root.ApplyToVector3D(AxisX);
  EXPECT_LT(up.Distance(AxisY), 1e-15);
  EXPECT_LT(right.Distance(AxisX), 1e-15);
  EXPECT_EQ(scene.json["asset"]["version"], "2.0");
  EXPECT_EQ(scene.json["scenes"][0]["nodes"], Json::array({0}));
  EXPECT_FALSE(scene.json.contains("buffers"));
}

TEST(Gltf, TellsWhatAnElementIs) {
  const auto machine = ExampleMachineWithMeshes("trunnion_ac");
  const Json json = Scene(Glb(*machine)).json;
  std::size_t place = 1;
  for (const Kin::Entity& entity : machine->GetKinematic().GetListEntity()) {
    const Json& extras = json["nodes"][place]["extras"];
    EXPECT_EQ(extras["id"], entity.GetEntityId().GetVal());
    EXPECT_EQ(extras["register"], entity.GetRegister().GetVal());
    if (entity.GetEntityLink().GetEntityLinkType() == Kin::EntityLinkTypeRotary) {
      EXPECT_EQ(extras["kind"], "ROTARY");
      EXPECT_EQ(extras["rangeMin"], entity.GetRangeMin());
      EXPECT_EQ(extras["rangeMax"], entity.GetRangeMax());
    }
    ++place;
  }
  EXPECT_EQ(json["nodes"][1]["name"], "Base");
}

// Where each vertex stands in the world is where the element's frame takes it.
TEST(Gltf, PutsTheMeshesWhereTheElementsAre) {
  for (const std::string& name : ExampleMachineNames()) {
    SCOPED_TRACE(name);
    const auto machine = ExampleMachineWithMeshes(name);
    ForCases(3, [&](Draw& draw) {
      GltfOptions options;
      options.position = DrawPosition(draw, *machine);
      const Scene scene(Glb(*machine, options));
      std::vector<Matrix43> frames = FramesOf(scene.json, PlacementsOf(scene.json));
      std::vector<Matrix43> expected = NodeFrames(*machine, options.position);
      std::size_t place = 0;
      for (const Kin::Entity& entity : machine->GetKinematic().GetListEntity()) {
        const Json& node = scene.json["nodes"][place + 1];
        if (node.contains("mesh")) {
          const Json& primitive =
              scene.json["meshes"][node["mesh"].get<std::size_t>()]["primitives"][0];
          const auto accessor = primitive["attributes"]["POSITION"].get<std::size_t>();
          const std::vector<float> floats = scene.Floats(accessor);
          const Mesh& mesh = *entity.GetEntityMesh()->GetMesh(0);
          ASSERT_EQ(floats.size(), 3 * std::size_t(mesh.GetDimVertices()));
          std::array<float, 3> min = {floats[0], floats[1], floats[2]};
          std::array<float, 3> max = min;
          const bool isRotary =
              entity.GetEntityLink().GetEntityLinkType() == Kin::EntityLinkTypeRotary;
          Matrix43 nodeFromElement;
          Vector3D pivot = isRotary ? entity.GetEntityLink().GetCenter() : NullVector;
          nodeFromElement.SetTrans(-pivot);
          Matrix43 worldFromElement = expected[place] * nodeFromElement;
          for (std::size_t v = 0; v < mesh.GetDimVertices(); ++v) {
            Vector3D inNode;
            for (int i = 0; i < 3; ++i) {
              inNode[i] = static_cast<double>(floats[3 * v + static_cast<std::size_t>(i)]);
            }
            const Vector3D is = frames[place].ApplyToPoint(inNode);
            Vector3D should = worldFromElement.ApplyToPoint(mesh.GetTabVertices()[v]);
            ASSERT_LT(is.Distance(should * 0.001), 1e-6);
            for (std::size_t i = 0; i < 3; ++i) {
              min[i] = std::min(min[i], floats[3 * v + i]);
              max[i] = std::max(max[i], floats[3 * v + i]);
            }
          }
          const Json& a = scene.json["accessors"][accessor];
          EXPECT_EQ((a["min"].get<std::array<float, 3>>()), min);
          EXPECT_EQ((a["max"].get<std::array<float, 3>>()), max);
        }
        ++place;
      }
    });
  }
}

TEST(Gltf, MakesMaterialsOfColors) {
  Kin::Machine machine;
  MakeSmallMachine(&machine);
  Kin::EntityMesh* const meshes = machine.AddEntityStatic(L"cover", 1)->AllocEntityMesh();
  for (const unsigned int color : {0xFF8000U, 0x0000FFU, 0xFF8000U}) {
    auto* const mesh = new Mesh;
    mesh->AllocTabNVerts(1)[0] = 3;
    for (unsigned int i = 0; i < 3; ++i) {
      // Allocated once, filled in three steps.
      if (i == 0) {
        mesh->AllocTabIVertex(3);
        mesh->AllocTabVertices(3);
      }
      const_cast<unsigned int*>(mesh->GetTabIVertex())[i] = i;
    }
    meshes->AddMesh(mesh, color);
  }
  ASSERT_TRUE(machine.Finish());
  const Json json = Scene(Glb(machine)).json;
  ASSERT_EQ(json["materials"].size(), 2U);
  const auto factor =
      json["materials"][0]["pbrMetallicRoughness"]["baseColorFactor"].get<std::array<double, 4>>();
  EXPECT_EQ(json["materials"][0]["name"], "#FF8000");
  EXPECT_EQ(factor[0], 1.0);
  EXPECT_NEAR(factor[1], 0.2158605, 1e-7);
  EXPECT_EQ(factor[2], 0.0);
  EXPECT_EQ(factor[3], 1.0);
  EXPECT_EQ(json["meshes"][0]["primitives"][2]["material"], 0);
}

/// A square of two faces that share corners, and a pentagon.
Mesh* SharedMesh() {
  auto* const mesh = new Mesh;
  const unsigned int cornerNbs[] = {4, 2, 5};
  const unsigned int corners[] = {0, 1, 2, 3, 0, 1, 0, 1, 2, 3, 4};
  std::copy(std::begin(cornerNbs), std::end(cornerNbs), mesh->AllocTabNVerts(3));
  std::copy(std::begin(corners), std::end(corners), mesh->AllocTabIVertex(11));
  Vector3D* const vertices = mesh->AllocTabVertices(5);
  for (int i = 0; i < 5; ++i) {
    vertices[i].Set(1000.0 * i, 0.0, -0.5 * i);
  }
  return mesh;
}

TEST(Gltf, SharesVerticesWhereTheMeshDoes) {
  Kin::Machine machine;
  MakeSmallMachine(&machine);
  machine.AddEntityStatic(L"cover", 1)->AllocEntityMesh()->AddMesh(SharedMesh(), 1);
  ASSERT_TRUE(machine.Finish());
  const Scene scene(Glb(machine));
  const Json& primitive = scene.json["meshes"][0]["primitives"][0];
  const Json& indices = scene.json["accessors"][primitive["indices"].get<std::size_t>()];
  EXPECT_EQ(indices["componentType"], 5125);
  EXPECT_EQ(indices["count"], 15);
  EXPECT_EQ(scene.Floats(primitive["attributes"]["POSITION"].get<std::size_t>()).size(), 15U);
  const Json& view = scene.json["bufferViews"][indices["bufferView"].get<std::size_t>()];
  std::vector<std::uint32_t> numbers;
  for (std::size_t i = 0; i < 15; ++i) {
    numbers.push_back(WordAt(scene.bin, view["byteOffset"].get<std::size_t>() + 4 * i));
  }
  EXPECT_THAT(numbers, testing::ElementsAre(0, 1, 2, 0, 2, 3, 0, 1, 2, 0, 2, 3, 0, 3, 4));
}

TEST(Gltf, IsTheSameInAllItsForms) {
  const TemporaryFolder folder;
  const auto machine = ExampleMachineWithMeshes("head_table_bc");
  const Scene scene(Glb(*machine));
  Exchange::WriteGltfFile(*machine, folder.File("a b.gltf"));
  Exchange::WriteGltfFile(*machine, folder.File("c.glb"));
  EXPECT_EQ(folder.Read("c.glb"), Glb(*machine));
  EXPECT_EQ(folder.Read("a b.bin"), scene.bin);
  Json json = Json::parse(folder.Read("a b.gltf"));
  EXPECT_EQ(json["buffers"][0]["uri"], "a%20b.bin");
  json["buffers"][0].erase("uri");
  EXPECT_EQ(json, scene.json);

  std::ostringstream out;
  Exchange::WriteGltf(*machine, out);
  json = Json::parse(out.str());
  const std::string uri = json["buffers"][0]["uri"];
  const std::string head = "data:application/octet-stream;base64,";
  ASSERT_EQ(uri.substr(0, head.size()), head);
  static const std::string letters =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  std::uint32_t group = 0;
  unsigned int bitNb = 0;
  for (const char c : uri.substr(head.size())) {
    if (c != '=') {
      group = (group << 6U) | static_cast<std::uint32_t>(letters.find(c));
      bitNb += 6;
      if (bitNb >= 8) {
        bitNb -= 8;
        bytes += static_cast<char>((group >> bitNb) & 0xFFU);
      }
    }
  }
  EXPECT_EQ(bytes, scene.bin);
}

/// Samples an animation as glTF says: linear for translations, spherical for rotations.
std::vector<Placement> Sampled(const Scene& scene, double seconds) {
  std::vector<Placement> placements = PlacementsOf(scene.json);
  const Json& animation = scene.json["animations"][0];
  for (const Json& channel : animation["channels"]) {
    const Json& sampler = animation["samplers"][channel["sampler"].get<std::size_t>()];
    EXPECT_EQ(sampler["interpolation"], "LINEAR");
    const std::vector<float> times = scene.Floats(sampler["input"].get<std::size_t>());
    const std::vector<float> values = scene.Floats(sampler["output"].get<std::size_t>());
    const bool isTurn = channel["target"]["path"] == "rotation";
    const std::size_t width = isTurn ? 4 : 3;
    EXPECT_EQ(values.size(), width * times.size());
    std::size_t next = 1;
    while (next + 1 < times.size() && static_cast<double>(times[next]) < seconds) {
      ++next;
    }
    const double begin = static_cast<double>(times[next - 1]);
    const double share =
        std::clamp((seconds - begin) / (static_cast<double>(times[next]) - begin), 0.0, 1.0);
    Placement& placement = placements[channel["target"]["node"].get<std::size_t>()];
    double dot = 0.0;
    std::array<double, 4> a = {};
    std::array<double, 4> b = {};
    for (std::size_t i = 0; i < width; ++i) {
      a[i] = static_cast<double>(values[width * (next - 1) + i]);
      b[i] = static_cast<double>(values[width * next + i]);
      dot += a[i] * b[i];
    }
    if (!isTurn) {
      for (std::size_t i = 0; i < 3; ++i) {
        placement.translation[i] = a[i] + (b[i] - a[i]) * share;
      }
      continue;
    }
    EXPECT_GT(dot, std::sqrt(0.5) - 1e-6) << "more than 90 degrees from key to key";
    const double angle = std::acos(std::min(dot, 1.0));
    const double wa =
        angle < 1e-6 ? 1.0 - share : std::sin((1.0 - share) * angle) / std::sin(angle);
    const double wb = angle < 1e-6 ? share : std::sin(share * angle) / std::sin(angle);
    for (std::size_t i = 0; i < 4; ++i) {
      placement.rotation[i] = wa * a[i] + wb * b[i];
    }
  }
  return placements;
}

// At the keys and between them, as the axes move there.
TEST(Gltf, AnimatesTheAxesAsTheyMove) {
  double largest = 0.0;
  ForCases(150, [&](Draw& draw) {
    const auto machine = RigidMachine(draw);
    GltfOptions options;
    options.position = DrawPosition(draw, *machine);
    const int keyNb = draw.Int(2, 6);
    for (int i = 0; i < keyNb; ++i) {
      // Quarters of seconds: 32-bit floats hold them.
      options.animation.push_back({0.25 * i, DrawPosition(draw, *machine)});
    }
    const Scene scene(Glb(*machine, options));
    ASSERT_TRUE(scene.json.contains("animations"));
    for (int step = 0; step <= 4 * (keyNb - 1); ++step) {
      const auto key = static_cast<std::size_t>(std::min(step / 4, keyNb - 2));
      const double share = step / 4.0 - static_cast<double>(key);
      Kin::MachinePosition position = options.animation[key].position;
      const Kin::MachinePosition& next = options.animation[key + 1].position;
      for (int reg = 0; reg < machine->GetRegisterNb().GetVal(); ++reg) {
        position[reg] += (next[reg] - position[reg]) * share;
      }
      largest = std::max(
          largest,
          LargestDifference(*machine, position, FramesOf(scene.json, Sampled(scene, step / 16.0))));
    }
    // Turns of up to 1440 degrees in pieces whose times are rounded to 32 bits.
    ASSERT_LT(largest, 2e-5);
  });
  RecordProperty("largestDifference", std::to_string(largest));
}

TEST(Gltf, GivesNoChannelToAnAxisThatStands) {
  Kin::Machine machine;
  MakeSmallMachine(&machine);
  ASSERT_TRUE(machine.Finish());
  GltfOptions options;
  machine.Alloc(&options.position);
  options.position[0] = 5.0;
  options.animation = {{0.0, options.position}, {1.0, options.position}};
  EXPECT_FALSE(Scene(Glb(machine, options)).json.contains("animations"));
  options.animation[1].position[1] = 7.0;
  const Json json = Scene(Glb(machine, options)).json;
  ASSERT_EQ(json["animations"][0]["channels"].size(), 1U);
  EXPECT_EQ(json["animations"][0]["channels"][0]["target"]["node"], 3);
}

TEST(Gltf, RefusesKeysThatAreNone) {
  Kin::Machine machine;
  MakeSmallMachine(&machine);
  Kin::Entity* const turn = machine.AddEntityRotary(L"C", 1, NullVector, AxisZ);
  turn->SetRegister(3);
  ASSERT_TRUE(machine.Finish());
  Kin::MachinePosition start;
  machine.Alloc(&start);
  Kin::MachinePosition end = start;
  end[3] = 90.0 * 1e5;
  Kin::MachinePosition bad = start;
  bad[0] = std::nan("");
  struct Case {
    std::vector<AnimationKey> keys;
    const char* message;
  };
  const Case cases[] = {
      {{{-0.1, start}}, "key 1 of the animation: the time must be a number from 0"},
      {{{0.0, start}, {0.0, end}}, "key 2 of the animation: the time must be greater"},
      {{{1e9, start}, {1e9 + 1.0, end}}, "also as a 32-bit float"},
      {{{0.0, bad}}, "the value of register 0 isn't finite"},
      {{{0.0, Kin::MachinePosition()}}, "fewer values than the machine has registers"},
      {{{1000.0, start}, {1000.001, end}}, "turns so fast"},
  };
  for (const Case& c : cases) {
    GltfOptions options;
    options.animation = c.keys;
    try {
      Glb(machine, options);
      ADD_FAILURE() << c.message;
    } catch (const Exchange::ExchangeError& error) {
      EXPECT_THAT(error.what(), HasSubstr(c.message));
    }
  }
}

TEST(Gltf, RefusesWhatItCantHold) {
  Kin::Machine machine;
  EXPECT_THROW(Glb(machine), Exchange::ExchangeError) << "not finished";
  MakeSmallMachine(&machine);
  Kin::Entity* const fixed = machine.AddEntityStatic(L"fixed", 1);
  auto* const mesh = new Mesh;
  fixed->AllocEntityMesh()->AddMesh(mesh, 1);
  ASSERT_TRUE(machine.Finish());
  EXPECT_NO_THROW(Glb(machine)) << "a mesh without triangles is left out";

  Matrix43 frame;
  frame.SetUVW(AxisX, AxisY, Vector3D(0.0, 0.9e-5, 1.0));
  fixed->GetEntityLinkMod()->SetEntityLinkPosition(frame);
  EXPECT_NO_THROW(Glb(machine));
  frame.SetUVW(AxisX, AxisY, Vector3D(0.0, 1.1e-5, 1.0));
  fixed->GetEntityLinkMod()->SetEntityLinkPosition(frame);
  EXPECT_THROW(Glb(machine), Exchange::ExchangeError) << "sheared";
  frame.SetUVW(AxisX, AxisY, NullVector);
  fixed->GetEntityLinkMod()->SetEntityLinkPosition(frame);
  EXPECT_THROW(Glb(machine), Exchange::ExchangeError) << "flat";
  fixed->GetEntityLinkMod()->SetEntityLinkPosition(Matrix43());

  GltfOptions options;
  options.metersPerUnit = 0.0;
  EXPECT_THROW(Glb(machine, options), Exchange::ExchangeError) << "scale";

  mesh->AllocTabNVerts(1)[0] = 3;
  EXPECT_THROW(Glb(machine), Exchange::ExchangeError) << "more corners than listed";
  unsigned int* const corners = mesh->AllocTabIVertex(3);
  EXPECT_THROW(Glb(machine), Exchange::ExchangeError) << "a corner without vertex";
  Vector3D* const vertices = mesh->AllocTabVertices(3);
  corners[2] = 2;
  EXPECT_NO_THROW(Glb(machine));
  corners[2] = 3;
  EXPECT_THROW(Glb(machine), Exchange::ExchangeError) << "a corner beyond the vertices";
  corners[2] = 2;
  vertices[2].Set(1e300, 0.0, 0.0);
  EXPECT_THROW(Glb(machine), Exchange::ExchangeError) << "no 32-bit float";
  vertices[2].Set(1.0, 0.0, 0.0);
  std::ostringstream out;
  out.setstate(std::ios::badbit);
  EXPECT_THROW(Exchange::WriteGlb(machine, out), Exchange::ExchangeError);
}

}  // namespace
}  // namespace Orvo::Testing
