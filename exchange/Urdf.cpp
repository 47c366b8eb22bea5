#include "exchange/ByteSink.h"
#include "exchange/MachineTree.h"
#include "exchange/MeshFile.h"
#include "exchange/TextEncoding.h"
#include "exchange/TurnAngles.h"

#include <Orvo/Exchange/ExchangeError.h>
#include <Orvo/Exchange/Urdf.h>

#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <ostream>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace Orvo::Exchange {
namespace {

using Kin::Entity;

constexpr double Pi = 3.141592653589793;

/// How far a fixed frame may be from a rotation.
constexpr double LargestDeparture = 1e-5;

constexpr std::size_t ChunkSize = 65536;

constexpr std::string_view RootLink = "base";

double Radians(double valueDeg) { return valueDeg / 180.0 * Pi; }

bool IsPlain(wchar_t c) {
  return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || (c >= L'0' && c <= L'9') ||
         c == L'_' || c == L'-' || c == L'.';
}

/// Makes names that no other element has.
class NameMaker {
 public:
  NameMaker() { taken_.emplace(RootLink); }

  std::string Make(const Entity& entity) {
    std::string name;
    for (const wchar_t c : entity.GetEntityName()) {
      name += IsPlain(c) ? static_cast<char>(c) : '_';
    }
    if (name.empty()) {
      name = "element_" + std::to_string(entity.GetEntityId().GetVal());
    }
    if (taken_.insert(name).second) {
      return name;
    }
    // The counter goes on where it stopped for this name: many equal names stay linear.
    int& number = numbers_[name];
    std::string numbered;
    do {
      ++number;
      numbered = name + "_" + std::to_string(number + 1);
    } while (!taken_.insert(numbered).second);
    return numbered;
  }

 private:
  std::unordered_set<std::string> taken_;
  std::unordered_map<std::string, int> numbers_;
};

/// A text in an attribute: characters that XML doesn't have become U+FFFD.
std::string Escaped(std::string_view text) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          out += "\xEF\xBF\xBD";
        } else {
          out += c;
        }
    }
  }
  return out;
}

class UrdfText {
 public:
  UrdfText(const Kin::Machine& machine, const UrdfOptions& options, std::ostream& out);

  void Write();

 private:
  std::string Numbers(const Entity& entity, std::initializer_list<double> values) const;
  void WriteLink(std::size_t place);
  void WriteJoint(std::size_t place);
  void WriteOrigin(const TreeNode& node);
  void WriteMotion(std::size_t place);
  double ValueScale(const TreeNode& node) const;
  void PassOn(std::size_t from);

  const UrdfOptions& options_;
  std::ostream& out_;
  std::vector<TreeNode> nodes_;
  std::vector<UrdfName> names_;
  std::unordered_map<int, std::size_t> moverOfRegister_;
  std::string text_;
};

UrdfText::UrdfText(const Kin::Machine& machine, const UrdfOptions& options, std::ostream& out)
    : options_(options), out_(out), nodes_(MakeTree(machine)), names_(ListUrdfNames(machine)) {
  RequireScale(options.metersPerUnit);
  for (const double value : {options.effort, options.velocity, options.freeTravel}) {
    if (!std::isfinite(value) || value < 0.0) {
      throw ExchangeError("effort, velocity and free travel must be numbers from 0");
    }
  }
  for (std::size_t i = 0; i < nodes_.size(); ++i) {
    if (nodes_[i].reg >= 0) {
      moverOfRegister_.emplace(nodes_[i].reg, i);
    }
  }
}

std::string UrdfText::Numbers(const Entity& entity, std::initializer_list<double> values) const {
  std::string text;
  for (const double value : values) {
    if (!std::isfinite(value)) {
      throw ExchangeError(Describe(entity) + ": a number isn't finite");
    }
    text += text.empty() ? "" : " ";
    AppendNumber(value, &text);
  }
  return text;
}

void UrdfText::PassOn(std::size_t from) {
  if (text_.size() >= from) {
    WriteBytes(text_, out_);
    text_.clear();
  }
}

void UrdfText::WriteLink(std::size_t place) {
  const TreeNode& node = nodes_[place];
  const Entity& entity = *node.entity;
  const Kin::EntityMesh* const meshes = entity.GetEntityMesh();
  const int meshNb =
      meshes == nullptr || options_.meshBase.empty() ? 0 : static_cast<int>(meshes->GetMeshNb());
  text_ += "  <link name=\"" + names_[place].link + "\"";
  if (meshNb == 0) {
    text_ += "/>\n";
    return;
  }
  text_ += ">\n";
  const double scale = options_.metersPerUnit;
  for (int i = 0; i < meshNb; ++i) {
    const unsigned int color = meshes->GetMeshColor(i);
    const auto part = [color](unsigned int shift) { return ((color >> shift) & 0xFFU) / 255.0; };
    text_ += "    <visual>\n";
    if (node.motion == Motion::Rotary) {
      text_ += "      <origin xyz=\"" +
               Numbers(entity,
                       {-node.pivot[0] * scale, -node.pivot[1] * scale, -node.pivot[2] * scale}) +
               "\" rpy=\"0 0 0\"/>\n";
    }
    text_ += "      <geometry>\n        <mesh filename=\"" +
             Escaped(MeshFileName(options_.meshBase, entity, i)) + "\" scale=\"" +
             Numbers(entity, {scale, scale, scale}) +
             "\"/>\n      </geometry>\n      <material name=\"color_" +
             std::to_string(color & 0xFFFFFFU) + "\">\n        <color rgba=\"" +
             Numbers(entity, {part(16), part(8), part(0), 1.0}) +
             "\"/>\n      </material>\n    </visual>\n";
  }
  text_ += "  </link>\n";
}

void UrdfText::WriteOrigin(const TreeNode& node) {
  const Entity& entity = *node.entity;
  const double scale = options_.metersPerUnit;
  std::array<double, 3> angles = {};
  if (node.motion == Motion::Fixed) {
    const double* const m = node.frame;
    const bool isAffine = m[3] == 0.0 && m[7] == 0.0 && m[11] == 0.0 && m[15] == 1.0;
    if (!isAffine || !(DepartureFromRotation(node.frame) <= LargestDeparture)) {
      throw ExchangeError(Describe(entity) + ": the frame is no rotation, URDF has no other");
    }
    angles = RollPitchYaw(NearestRotation(node.frame));
  }
  text_ +=
      "    <origin xyz=\"" +
      Numbers(entity, {node.origin[0] * scale, node.origin[1] * scale, node.origin[2] * scale}) +
      "\" rpy=\"" + Numbers(entity, {angles[0], angles[1], angles[2]}) + "\"/>\n";
}

double UrdfText::ValueScale(const TreeNode& node) const {
  return node.motion == Motion::Rotary ? Radians(1.0) : options_.metersPerUnit;
}

void UrdfText::WriteMotion(std::size_t place) {
  const TreeNode& node = nodes_[place];
  const Entity& entity = *node.entity;
  text_ += "    <axis xyz=\"" +
           Numbers(entity, {node.direction[0], node.direction[1], node.direction[2]}) + "\"/>\n";
  const bool isChecked = entity.GetCheckRangeAxis();
  const bool isRotary = node.motion == Motion::Rotary;
  text_ += "    <limit";
  if (isChecked || !isRotary) {
    const auto limit = [&](double value) {
      return isRotary ? Radians(value) : value * options_.metersPerUnit;
    };
    const double lower = isChecked ? limit(entity.GetRangeMin()) : -options_.freeTravel;
    const double upper = isChecked ? limit(entity.GetRangeMax()) : options_.freeTravel;
    text_ +=
        " lower=\"" + Numbers(entity, {lower}) + "\" upper=\"" + Numbers(entity, {upper}) + "\"";
  }
  text_ += " effort=\"" + Numbers(entity, {options_.effort}) + "\" velocity=\"" +
           Numbers(entity, {options_.velocity}) + "\"/>\n";
  const std::size_t mover = moverOfRegister_.at(node.reg);
  if (mover != place) {
    text_ += "    <mimic joint=\"" + names_[mover].joint + "\" multiplier=\"" +
             Numbers(entity, {ValueScale(node) / ValueScale(nodes_[mover])}) +
             "\" offset=\"0\"/>\n";
  }
}

void UrdfText::WriteJoint(std::size_t place) {
  const TreeNode& node = nodes_[place];
  const char* type = "fixed";
  if (node.motion == Motion::Linear) {
    type = "prismatic";
  } else if (node.motion == Motion::Rotary) {
    type = node.entity->GetCheckRangeAxis() ? "revolute" : "continuous";
  }
  const std::string parent =
      node.parent == NoParent ? std::string(RootLink) : names_[node.parent].link;
  text_ += "  <joint name=\"" + names_[place].joint + "\" type=\"" + type + "\">\n";
  text_ += "    <parent link=\"" + parent + "\"/>\n";
  text_ += "    <child link=\"" + names_[place].link + "\"/>\n";
  WriteOrigin(node);
  if (node.motion != Motion::Fixed) {
    WriteMotion(place);
  }
  text_ += "  </joint>\n";
}

void UrdfText::Write() {
  text_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<robot name=\"" + Escaped(options_.name) +
          "\">\n  <link name=\"" + std::string(RootLink) + "\"/>\n";
  for (std::size_t i = 0; i < nodes_.size(); ++i) {
    WriteLink(i);
    PassOn(ChunkSize);
  }
  for (std::size_t i = 0; i < nodes_.size(); ++i) {
    WriteJoint(i);
    PassOn(ChunkSize);
  }
  text_ += "</robot>\n";
  PassOn(0);
  FinishStream(out_);
}

}  // namespace

std::vector<UrdfName> ListUrdfNames(const Kin::Machine& machine) {
  std::vector<UrdfName> names;
  NameMaker maker;
  for (const Entity& entity : machine.GetKinematic().GetListEntity()) {
    UrdfName name;
    name.id = entity.GetEntityId();
    name.link = maker.Make(entity);
    name.joint = name.link + "_joint";
    names.push_back(std::move(name));
  }
  return names;
}

void WriteUrdf(const Kin::Machine& machine, std::ostream& out, const UrdfOptions& options) {
  UrdfText(machine, options, out).Write();
}

void WriteUrdfFile(const Kin::Machine& machine, const std::filesystem::path& file,
                   const UrdfOptions& options) {
  UrdfOptions here = options;
  here.meshBase = MeshBaseOf(file);
  FileSink sink(file);
  WriteUrdf(machine, sink.Stream(), here);
  sink.Finish();
  WriteMeshFiles(machine, file);
}

}  // namespace Orvo::Exchange
