#include "MachineFileFault.h"

#include "NumberText.h"
#include "WideText.h"
#include "XmlOutline.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string_view>
#include <system_error>

namespace OrvoTool {
namespace {

constexpr std::uintmax_t MaxBytes = 256ULL << 20U;

/// Ids and registers above this are refused when the machine is finished.
constexpr int MaxTableSlot = 16777215;

std::string Quote(std::string_view text) {
  return "'" + Printable(text.substr(0, 40)) + (text.size() > 40 ? "...'" : "'");
}

/// Takes a machine file's elements in the order of its reader and keeps the first fault. Every
/// Check function returns false when the reader would stop there.
class MachineFileCheck {
 public:
  explicit MachineFileCheck(const XmlOutline& outline) : outline_(outline) {}

  std::optional<MachineFileFault> Run() {
    CheckMachine();
    return fault_;
  }

 private:
  using Words = std::initializer_list<std::string_view>;

  bool Blame(const TextPlace& place, const std::string& what) {
    if (!fault_) {
      fault_ = MachineFileFault{place.line, place.column, what};
    }
    return false;
  }

  bool BlameNumber(const TextPlace& place, std::string_view name, std::string_view text,
                   const char* what) {
    isNumberFault_ = true;
    return Blame(place, std::string(name) + " is " + Quote(text) + what);
  }

  const XmlNode* Need(const XmlNode& parent, std::string_view name) {
    const XmlNode* child = outline_.FindChild(parent, name);
    if (child == nullptr) {
      Blame(parent.place,
            "<" + Printable(parent.name) + "> has no <" + std::string(name) + "> in it");
    }
    return child;
  }

  bool CheckInteger(std::string_view text, const TextPlace& place, std::string_view name,
                    int* value) {
    const std::string_view trimmed = SkipBlanks(text);
    const std::string_view digits = trimmed.substr(
        trimmed.size() > 1 && trimmed[0] == '+' && trimmed[1] >= '0' && trimmed[1] <= '9' ? 1 : 0);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), *value);
    if (error == std::errc::invalid_argument && !IsReference(digits)) {
      return BlameNumber(place, name, trimmed, ", a whole number is needed");
    }
    if (error == std::errc::result_out_of_range) {
      return BlameNumber(place, name, trimmed, ", which is out of range");
    }
    return true;
  }

  bool CheckNumber(std::string_view text, const TextPlace& place, std::string_view name) {
    const std::string trimmed(SkipBlanks(text));
    char* end = nullptr;
    errno = 0;
    std::strtod(trimmed.c_str(), &end);
    if (end == trimmed.c_str() && !IsReference(trimmed)) {
      return BlameNumber(place, name, trimmed, ", a number is needed");
    }
    if (errno == ERANGE) {
      return BlameNumber(place, name, trimmed, ", which is out of range");
    }
    return true;
  }

  bool CheckInteger(const XmlNode& parent, std::string_view name, int* value) {
    const XmlNode* child = Need(parent, name);
    return child != nullptr && CheckInteger(child->text, PlaceOfText(*child), name, value);
  }

  bool CheckNumber(const XmlNode& parent, std::string_view name) {
    const XmlNode* child = Need(parent, name);
    return child != nullptr && CheckNumber(child->text, PlaceOfText(*child), name);
  }

  bool CheckWord(const XmlNode& parent, std::string_view name, Words words) {
    const XmlNode* child = Need(parent, name);
    if (child == nullptr) {
      return false;
    }
    std::string list;
    for (const std::string_view word : words) {
      if (child->text == word || IsReference(child->text)) {
        return true;
      }
      list += (list.empty() ? "" : ", ") + std::string(word);
    }
    return Blame(PlaceOfText(*child), std::string(name) + " is " + Quote(child->text) +
                                          ", one of " + list + " is needed");
  }

  /// Checks attributes as their reader does: all must be there before any is converted.
  bool CheckAttributes(const XmlNode& parent, std::string_view name, Words attributes,
                       bool areIntegers) {
    const XmlNode* child = Need(parent, name);
    if (child == nullptr) {
      return false;
    }
    for (const std::string_view attribute : attributes) {
      if (XmlOutline::FindAttribute(*child, attribute) == nullptr) {
        return Blame(child->place,
                     "<" + std::string(name) + "> has no attribute " + std::string(attribute));
      }
    }
    for (const std::string_view attribute : attributes) {
      const XmlAttribute* found = XmlOutline::FindAttribute(*child, attribute);
      const std::string what = std::string(name) + " " + std::string(attribute);
      int ignored = 0;
      if (areIntegers ? !CheckInteger(found->value, found->place, what, &ignored)
                      : !CheckNumber(found->value, found->place, what)) {
        return false;
      }
    }
    return true;
  }

  bool CheckVector(const XmlNode& parent, std::string_view name) {
    return CheckAttributes(parent, name, {"X", "Y", "Z"}, false);
  }

  /// The reader makes do with a link whose content is incomplete; only a bad number stops it.
  bool CheckLink(const XmlNode& link) {
    if (CheckLinkContent(link) || isNumberFault_) {
      return !isNumberFault_;
    }
    fault_.reset();
    return true;
  }

  bool CheckLinkContent(const XmlNode& link) {
    if (!CheckWord(link, "Type",
                   {"LINEAR", "ROTARY", "POSITION", "ABC", "XYZABC", "IDENTITY", "XYZIJK",
                    "XYZ_REPSPINDL", "UNDEF"}) ||
        !CheckVector(link, "Center") || !CheckVector(link, "Dir")) {
      return false;
    }
    const XmlNode* position = Need(link, "Position");
    if (position == nullptr) {
      return false;
    }
    for (const std::string_view column : {"U", "V", "W", "T"}) {
      if (!CheckVector(*position, column)) {
        return false;
      }
    }
    return CheckNumber(link, "ZeroRef") && CheckNumber(link, "RangeMin") &&
           CheckNumber(link, "RangeMax");
  }

  bool CheckMeshes(const XmlNode& entity) {
    const XmlNode* meshes = outline_.FindChild(entity, "Meshes");
    for (std::size_t i = 0; meshes != nullptr && i < meshes->children.size(); ++i) {
      const XmlNode& mesh = outline_.GetChild(*meshes, i);
      const XmlNode* color = outline_.FindChild(mesh, "RGB");
      int ignored = 0;
      if (mesh.name != "Mesh") {
        continue;
      }
      if (color == nullptr) {
        return true;
      }
      if (!CheckInteger(color->text, PlaceOfText(*color), "RGB", &ignored)) {
        return false;
      }
    }
    return true;
  }

  bool CheckEntity(const XmlNode& entity) {
    int id = 0;
    int reg = 0;
    int ignored = 0;
    if (Need(entity, "Name") == nullptr || !CheckWord(entity, "Type", {"AXIS", "TABLE", "HEAD"}) ||
        !CheckWord(entity, "ParallelType", {"CHAIN", "PARALLEL"}) ||
        !CheckInteger(entity, "Id", &id) || !CheckInteger(entity, "ParentId", &ignored) ||
        !CheckInteger(entity, "Register", &reg) || !CheckWord(entity, "Motor", {"true", "false"}) ||
        !CheckWord(entity, "RangeAxis", {"true", "false"}) ||
        !CheckWord(entity, "Mounting", {"true", "false"})) {
      return false;
    }
    for (const std::string_view name : {"Id", "Register"}) {
      if ((name == "Id" ? id : reg) > MaxTableSlot && !tooLarge_) {
        const XmlNode* child = outline_.FindChild(entity, name);
        tooLarge_ =
            MachineFileFault{PlaceOfText(*child).line, PlaceOfText(*child).column,
                             std::string(name) + " is " + Quote(child->text) + ", at most " +
                                 std::to_string(MaxTableSlot) + " is possible"};
      }
    }
    const XmlNode* link = Need(entity, "EntityLink");
    return link != nullptr && CheckLink(*link) && CheckMeshes(entity);
  }

  bool CheckProgramSystem(const XmlNode& system) {
    int ignored = 0;
    if (outline_.FindChild(system, "ProgramminSystemName") == nullptr &&
        Need(system, "ProgramSystemName") == nullptr) {
      return false;
    }
    return CheckInteger(system, "TableIndex", &ignored) &&
           CheckInteger(system, "HeadIndex", &ignored) &&
           CheckAttributes(system, "MainLinear", {"RegX", "RegY", "RegZ"}, true) &&
           CheckAttributes(system, "MainRotary", {"RegR0", "RegR1"}, true);
  }

  bool CheckIds(const XmlNode& parent) {
    const XmlNode* ids = Need(parent, "EntityIds");
    if (ids == nullptr) {
      return false;
    }
    std::string_view rest = ids->text;
    while (!Trim(rest).empty()) {
      rest = Trim(rest);
      const std::size_t end = std::min(rest.find_first_of(" \t"), rest.size());
      int ignored = 0;
      if (!CheckInteger(rest.substr(0, end), PlaceOfText(*ids), "an id of EntityIds", &ignored)) {
        return false;
      }
      rest.remove_prefix(end);
    }
    return true;
  }

  bool CheckCollisionCheck(const XmlNode& check) {
    const XmlNode* pairs = outline_.FindChild(check, "MachineMachines");
    for (std::size_t i = 0; pairs != nullptr && i < pairs->children.size(); ++i) {
      const XmlNode& pair = outline_.GetChild(*pairs, i);
      int ignored = 0;
      if (pair.name == "MachineMachine" &&
          (!CheckInteger(pair, "EntityId", &ignored) || !CheckIds(pair))) {
        return false;
      }
    }
    for (const std::string_view name :
         {"MachineStock", "MachinePart", "MachineFixture", "MachineTool"}) {
      const XmlNode* set = outline_.FindChild(check, name);
      if (set != nullptr && !CheckIds(*set)) {
        return false;
      }
    }
    return true;
  }

  bool CheckMachine() {
    const XmlNode* machine = outline_.FindChild(outline_.GetDocument(), "Machine");
    if (machine == nullptr) {
      const XmlNode& top = outline_.GetChild(outline_.GetDocument(), 0);
      return Blame(top.place, "the top element is <" + Printable(top.name.substr(0, 40)) +
                                  ">, that of a machine file is <Machine>");
    }
    const XmlNode* entities = Need(*machine, "Entities");
    if (entities == nullptr) {
      return false;
    }
    for (std::size_t i = 0; i < entities->children.size(); ++i) {
      const XmlNode& entity = outline_.GetChild(*entities, i);
      if (entity.name == "Entity" && !CheckEntity(entity)) {
        return false;
      }
    }
    const XmlNode* systems = outline_.FindChild(*machine, "ProgramSystems");
    for (std::size_t i = 0; systems != nullptr && i < systems->children.size(); ++i) {
      const XmlNode& system = outline_.GetChild(*systems, i);
      if (system.name == "ProgramSystem" && !CheckProgramSystem(system)) {
        return false;
      }
    }
    const XmlNode* check = outline_.FindChild(*machine, "CollisionCheck");
    if (check != nullptr && !CheckCollisionCheck(*check)) {
      return false;
    }
    // Ids and registers are looked at after the whole file has been read.
    if (tooLarge_) {
      fault_ = tooLarge_;
    }
    return !tooLarge_;
  }

  static std::string_view SkipBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r\n\v\f");
    return first == std::string_view::npos ? text.substr(text.size()) : text.substr(first);
  }

  /// A text that starts with a reference is not resolved here, so it is taken for good.
  static bool IsReference(std::string_view text) { return text.substr(0, 1) == "&"; }

  static TextPlace PlaceOfText(const XmlNode& node) {
    return node.text.empty() ? node.place : node.textPlace;
  }

  const XmlOutline& outline_;
  std::optional<MachineFileFault> fault_;
  std::optional<MachineFileFault> tooLarge_;
  bool isNumberFault_ = false;
};

}  // namespace

std::optional<MachineFileFault> FindMachineFileFault(const std::string& name) {
  const std::filesystem::path file = FileFromUtf8(name);
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error) ||
      std::filesystem::file_size(file, error) > MaxBytes || error) {
    return std::nullopt;
  }
  std::ifstream stream(file, std::ios::binary);
  const std::string text((std::istreambuf_iterator<char>(stream)),
                         std::istreambuf_iterator<char>());
  if (!stream) {
    return std::nullopt;
  }
  const XmlOutline outline(text);
  const auto tell = [](const XmlFault& fault) {
    return MachineFileFault{fault.place.line, fault.place.column, fault.what};
  };
  if (outline.GetFault() != nullptr) {
    return tell(*outline.GetFault());
  }
  const std::optional<MachineFileFault> fault = MachineFileCheck(outline).Run();
  return fault || outline.GetSuspect() == nullptr ? fault : tell(*outline.GetSuspect());
}

}  // namespace OrvoTool
