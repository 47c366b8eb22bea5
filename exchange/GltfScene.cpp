#include "exchange/GltfScene.h"

#include "exchange/GltfAnimation.h"
#include "exchange/MachineWords.h"
#include "exchange/TextEncoding.h"
#include "exchange/TurnAngles.h"

#include <Orvo/Exchange/ExchangeError.h>
#include <Orvo/Version.h>

#include <cmath>
#include <string_view>
#include <utility>

namespace Orvo::Exchange {
namespace {

/// How far a fixed frame's columns may be from right angles, their lengths being 1: a tenth of what
/// readers of glTF allow.
constexpr double LargestShear = 1e-5;

constexpr int FloatType = 5126;
constexpr int UnsignedType = 5125;

/// From 0 to 1 in sRGB to linear (IEC 61966-2-1).
double Linear(double value) {
  return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

void RequireFinite(const Kin::Entity& entity, const double* values, int count) {
  for (int i = 0; i < count; ++i) {
    if (!std::isfinite(values[i])) {
      throw ExchangeError(Describe(entity) + ": a number is too large once it is in meters");
    }
  }
}

bool IsTurned(const Matrix43& frame) {
  const double* const m = frame;
  for (int i = 0; i < 16; ++i) {
    if ((i < 12 || i == 15) && m[i] != IdentityFrame[i]) {
      return true;
    }
  }
  return false;
}

}  // namespace

GltfScene::GltfScene(const Kin::Machine& machine, const GltfOptions& options)
    : options_(options), nodes_(MakeTree(machine)), meshOfNode_(nodes_.size(), NoParent) {
  RequireScale(options.metersPerUnit);
  const int registerNb = machine.GetRegisterNb().GetVal();
  if (options.position.Size() > 0) {
    if (options.position.Size() < static_cast<unsigned long long>(registerNb)) {
      throw ExchangeError("the position has fewer values than the machine has registers");
    }
    for (int reg = 0; reg < registerNb; ++reg) {
      if (!std::isfinite(options.position[reg])) {
        throw ExchangeError("the position's value of register " + std::to_string(reg) +
                            " isn't finite");
      }
    }
  }
  AddMeshes();
  RequireKeys(options.animation, registerNb);
  AddChannels();
}

std::size_t GltfScene::Add(BinaryPart part) {
  offsets_.push_back(binarySize_);
  binarySize_ += part.GetSize();
  if (binarySize_ > LargestSize) {
    throw ExchangeError("the file would have 4 GiB or more, which glTF can't hold");
  }
  parts_.push_back(std::move(part));
  return parts_.size() - 1;
}

std::size_t GltfScene::AddMaterial(unsigned int color) {
  const auto [found, isNew] = materialOfColor_.emplace(color & 0xFFFFFFU, colors_.size());
  if (isNew) {
    colors_.push_back(color & 0xFFFFFFU);
  }
  return found->second;
}

void GltfScene::AddMeshes() {
  for (std::size_t i = 0; i < nodes_.size(); ++i) {
    const Kin::Entity& entity = *nodes_[i].entity;
    const Kin::EntityMesh* const meshes = entity.GetEntityMesh();
    const int meshNb = meshes == nullptr ? 0 : static_cast<int>(meshes->GetMeshNb());
    std::vector<Primitive> primitives;
    for (int k = 0; k < meshNb; ++k) {
      const Mesh* const mesh = meshes->GetMesh(k);
      if (mesh == nullptr) {
        continue;
      }
      MeshParts parts =
          MakeMeshParts(*mesh, nodes_[i].pivot, options_.metersPerUnit, Describe(entity));
      if (parts.vertices.count == 0) {
        continue;
      }
      Primitive primitive;
      primitive.vertices = Add(std::move(parts.vertices));
      if (parts.indices.count > 0) {
        primitive.indices = Add(std::move(parts.indices));
      }
      primitive.material = AddMaterial(meshes->GetMeshColor(k));
      primitives.push_back(primitive);
    }
    if (!primitives.empty()) {
      meshOfNode_[i] = meshes_.size();
      meshes_.push_back(std::move(primitives));
      meshNames_.push_back(Utf8FromWide(entity.GetEntityName()));
    }
  }
}

double GltfScene::RestValue(const TreeNode& node) const {
  return node.reg < 0 || options_.position.Size() == 0 ? 0.0 : options_.position[node.reg];
}

void GltfScene::AddChannels() {
  if (options_.animation.empty()) {
    return;
  }
  std::optional<std::size_t> keyTimes;
  for (std::size_t i = 0; i < nodes_.size(); ++i) {
    const TreeNode& node = nodes_[i];
    if (node.motion == Motion::Fixed) {
      continue;
    }
    std::optional<ChannelParts> parts =
        MakeChannel(node, options_.animation, RestValue(node), options_.metersPerUnit);
    if (!parts) {
      continue;
    }
    Channel channel;
    channel.node = i;
    channel.isRotary = node.motion == Motion::Rotary;
    if (!parts->isOnKeys) {
      channel.times = Add(std::move(parts->times));
    } else {
      if (!keyTimes) {
        keyTimes = Add(MakeTimes(options_.animation));
      }
      channel.times = *keyTimes;
    }
    channel.values = Add(std::move(parts->values));
    channels_.push_back(channel);
  }
}

void GltfScene::WriteExtras(const TreeNode& node, JsonText* json) const {
  const Kin::Entity& entity = *node.entity;
  json->Key("extras");
  json->BeginObject();
  json->Member("id", entity.GetEntityId().GetVal());
  json->Member("parentId", entity.GetParentEntityId().GetVal());
  json->Member("type", TypeWords.at(static_cast<std::size_t>(entity.GetEntityType())));
  json->Member("kind", LinkTypeWords.at(
                           static_cast<std::size_t>(entity.GetEntityLink().GetEntityLinkType())));
  json->Member("register", entity.GetRegister().GetVal());
  if (node.motion != Motion::Fixed) {
    if (std::isfinite(entity.GetRangeMin()) && std::isfinite(entity.GetRangeMax())) {
      json->Member("rangeMin", entity.GetRangeMin());
      json->Member("rangeMax", entity.GetRangeMax());
    }
    json->Member("checkRange", entity.GetCheckRangeAxis());
    json->Key("direction");
    json->Numbers(node.direction, 3);
  }
  if (node.motion == Motion::Rotary) {
    json->Key("pivot");
    json->Numbers(node.pivot, 3);
  }
  json->EndObject();
}

void GltfScene::WriteNode(std::size_t place, JsonText* json) const {
  const TreeNode& node = nodes_[place];
  const Kin::Entity& entity = *node.entity;
  const double scale = options_.metersPerUnit;
  json->BeginObject();
  json->Member("name", Utf8FromWide(entity.GetEntityName()));
  const double value = RestValue(node);
  Vector3D origin = node.origin;
  if (node.motion == Motion::Linear) {
    Vector3D direction = node.direction;
    origin += direction * value;
  }
  origin *= scale;
  RequireFinite(entity, origin, 3);
  const bool isMatrix = node.motion == Motion::Fixed && IsTurned(node.frame);
  if (isMatrix) {
    Vector3D columns[3];
    const double* const m = node.frame;
    for (int i = 0; i < 3; ++i) {
      columns[i].Set(m[4 * i], m[4 * i + 1], m[4 * i + 2]);
      if (!columns[i].MakeUnit(0.0)) {
        throw ExchangeError(Describe(entity) + ": the frame is flat, which glTF can't hold");
      }
    }
    for (int i = 0; i < 3; ++i) {
      if (!(std::abs(columns[i] * columns[(i + 1) % 3]) <= LargestShear)) {
        throw ExchangeError(Describe(entity) + ": the frame is sheared, which glTF can't hold");
      }
    }
    if (m[3] != 0.0 || m[7] != 0.0 || m[11] != 0.0 || m[15] != 1.0) {
      throw ExchangeError(Describe(entity) + ": the frame is projective, which glTF can't hold");
    }
    json->Key("matrix");
    json->BeginRow();
    for (int i = 0; i < 12; ++i) {
      json->Number(m[i]);
    }
    for (int i = 0; i < 3; ++i) {
      json->Number(origin[i]);
    }
    json->Number(1.0);
    json->EndArray();
  } else {
    if (!(origin == Vector3D())) {
      json->Key("translation");
      json->Numbers(origin, 3);
    }
    if (node.motion == Motion::Rotary && value != 0.0) {
      json->Key("rotation");
      json->Numbers(TurnQuaternion(node.direction, value).data(), 4);
    }
  }
  if (meshOfNode_[place] != NoParent) {
    json->Member("mesh", std::uint64_t(meshOfNode_[place]));
  }
  if (!node.children.empty()) {
    json->Key("children");
    json->BeginRow();
    for (const std::size_t child : node.children) {
      json->Integer(static_cast<std::int64_t>(child + 1));
    }
    json->EndArray();
  }
  WriteExtras(node, json);
  json->EndObject();
}

void GltfScene::WriteNodes(JsonText* json) const {
  json->Key("nodes");
  json->BeginArray();
  // The machine's Z becomes glTF's Y.
  const double half = std::sqrt(0.5);
  const double upwards[] = {-half, 0.0, 0.0, half};
  json->BeginObject();
  json->Member("name", options_.name);
  json->Key("rotation");
  json->Numbers(upwards, 4);
  json->Key("children");
  json->BeginRow();
  for (std::size_t i = 0; i < nodes_.size(); ++i) {
    if (nodes_[i].parent == NoParent) {
      json->Integer(static_cast<std::int64_t>(i + 1));
    }
  }
  json->EndArray();
  json->EndObject();
  for (std::size_t i = 0; i < nodes_.size(); ++i) {
    WriteNode(i, json);
  }
  json->EndArray();
}

void GltfScene::WriteMeshes(JsonText* json) const {
  if (meshes_.empty()) {
    return;
  }
  json->Key("meshes");
  json->BeginArray();
  for (std::size_t i = 0; i < meshes_.size(); ++i) {
    json->BeginObject();
    json->Member("name", meshNames_[i]);
    json->Key("primitives");
    json->BeginArray();
    for (const Primitive& primitive : meshes_[i]) {
      json->BeginObject();
      json->Key("attributes");
      json->BeginObject();
      json->Member("POSITION", std::uint64_t(primitive.vertices));
      json->EndObject();
      if (primitive.indices) {
        json->Member("indices", std::uint64_t(*primitive.indices));
      }
      json->Member("material", std::uint64_t(primitive.material));
      json->EndObject();
    }
    json->EndArray();
    json->EndObject();
  }
  json->EndArray();
  json->Key("materials");
  json->BeginArray();
  for (const unsigned int color : colors_) {
    static constexpr char Digits[] = "0123456789ABCDEF";
    std::string name = "#";
    double factor[4] = {0.0, 0.0, 0.0, 1.0};
    for (unsigned int i = 0; i < 6; ++i) {
      name += Digits[(color >> (20U - 4U * i)) & 0xFU];
    }
    for (unsigned int i = 0; i < 3; ++i) {
      factor[i] = Linear(((color >> (16U - 8U * i)) & 0xFFU) / 255.0);
    }
    json->BeginObject();
    json->Member("name", name);
    json->Key("pbrMetallicRoughness");
    json->BeginObject();
    json->Key("baseColorFactor");
    json->Numbers(factor, 4);
    json->Member("metallicFactor", 0.0);
    json->Member("roughnessFactor", 0.75);
    json->EndObject();
    json->Member("doubleSided", true);
    json->EndObject();
  }
  json->EndArray();
}

void GltfScene::WriteAnimation(JsonText* json) const {
  if (channels_.empty()) {
    return;
  }
  json->Key("animations");
  json->BeginArray();
  json->BeginObject();
  json->Member("name", options_.name);
  json->Key("channels");
  json->BeginArray();
  for (std::size_t i = 0; i < channels_.size(); ++i) {
    json->BeginObject();
    json->Member("sampler", std::uint64_t(i));
    json->Key("target");
    json->BeginObject();
    json->Member("node", std::uint64_t(channels_[i].node + 1));
    json->Member("path", channels_[i].isRotary ? "rotation" : "translation");
    json->EndObject();
    json->EndObject();
  }
  json->EndArray();
  json->Key("samplers");
  json->BeginArray();
  for (const Channel& channel : channels_) {
    json->BeginObject();
    json->Member("input", std::uint64_t(channel.times));
    json->Member("output", std::uint64_t(channel.values));
    json->Member("interpolation", "LINEAR");
    json->EndObject();
  }
  json->EndArray();
  json->EndObject();
  json->EndArray();
}

void GltfScene::WriteParts(JsonText* json) const {
  static constexpr const char* ShapeWords[] = {"SCALAR", "VEC3", "VEC4"};
  json->Key("accessors");
  json->BeginArray();
  for (std::size_t i = 0; i < parts_.size(); ++i) {
    const BinaryPart& part = parts_[i];
    json->BeginObject();
    json->Member("bufferView", std::uint64_t(i));
    json->Member("componentType", part.isInteger ? UnsignedType : FloatType);
    json->Member("count", part.count);
    json->Member("type", ShapeWords[static_cast<std::size_t>(part.shape)]);
    for (const auto& [name, values] : {std::pair("min", &part.min), std::pair("max", &part.max)}) {
      if (!values->empty()) {
        json->Key(name);
        json->BeginRow();
        for (const float value : *values) {
          json->Number(static_cast<double>(value));
        }
        json->EndArray();
      }
    }
    json->EndObject();
  }
  json->EndArray();
  json->Key("bufferViews");
  json->BeginArray();
  for (std::size_t i = 0; i < parts_.size(); ++i) {
    json->BeginObject();
    json->Member("buffer", 0);
    json->Member("byteOffset", offsets_[i]);
    json->Member("byteLength", parts_[i].GetSize());
    if (parts_[i].target != 0) {
      json->Member("target", parts_[i].target);
    }
    json->EndObject();
  }
  json->EndArray();
}

std::string GltfScene::MakeText(const std::string& uri) const {
  JsonText json(true);
  json.BeginObject();
  json.Key("asset");
  json.BeginObject();
  json.Member("version", "2.0");
  json.Member("generator", "Orvo " ORVO_VERSION_STRING);
  json.EndObject();
  json.Member("scene", 0);
  json.Key("scenes");
  json.BeginArray();
  json.BeginObject();
  json.Member("name", options_.name);
  json.Key("nodes");
  json.BeginRow();
  json.Integer(0);
  json.EndArray();
  json.EndObject();
  json.EndArray();
  WriteNodes(&json);
  WriteMeshes(&json);
  WriteAnimation(&json);
  if (!parts_.empty()) {
    WriteParts(&json);
    json.Key("buffers");
    json.BeginArray();
    json.BeginObject();
    json.Member("byteLength", binarySize_);
    if (!uri.empty()) {
      json.Member("uri", uri);
    }
    json.EndObject();
    json.EndArray();
  }
  json.EndObject();
  return json.Take();
}

void GltfScene::WriteBinary(std::ostream& out, BinarySink::Form form) const {
  BinarySink sink(&out, form);
  for (const BinaryPart& part : parts_) {
    part.write(&sink);
  }
  sink.Finish();
}

}  // namespace Orvo::Exchange
