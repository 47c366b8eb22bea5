#include "MachineFileModel.h"

#include "NumberText.h"
#include "WideText.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <string_view>
#include <system_error>
#include <utility>

namespace OrvoTool {
namespace {

using Words = std::initializer_list<std::string_view>;

/// Ids and registers above this are refused when the machine is finished.
constexpr int MaxTableSlot = 16777215;

/// How much of a text of the file a message quotes.
constexpr std::size_t MaxQuotedBytes = 40;

constexpr std::string_view Blanks = " \t\r\n\v\f";

std::string Quote(std::string_view text) {
  return "'" + Printable(text.substr(0, MaxQuotedBytes)) +
         (text.size() > MaxQuotedBytes ? "...'" : "'");
}

bool IsIn(std::string_view word, Words words) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

std::string List(Words words) {
  std::string list;
  for (const std::string_view word : words) {
    list += (list.empty() ? "" : ", ") + std::string(word);
  }
  return list;
}

/// Returns the character that a reference such as "amp" or "#x41" stands for, or none.
std::string Resolve(std::string_view reference) {
  struct Named {
    std::string_view name;
    const char* character;
  };
  for (const Named& named :
       {Named{"amp", "&"}, {"lt", "<"}, {"gt", ">"}, {"quot", "\""}, {"apos", "'"}}) {
    if (reference == named.name) {
      return named.character;
    }
  }
  if (reference.substr(0, 1) != "#") {
    return "";
  }
  const bool isHex = reference.substr(1, 1) == "x";
  const std::string_view digits = reference.substr(isHex ? 2 : 1);
  unsigned int number = 0;
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), number, isHex ? 16 : 10);
  if (error != std::errc() || end != digits.data() + digits.size() || number == 0) {
    return "";
  }
  const wchar_t wide = static_cast<wchar_t>(number);
  return Utf8FromWide(std::wstring_view(&wide, 1));
}

/// Returns a text of the file with its references resolved.
std::string Decode(std::string_view text) {
  std::string decoded;
  while (!text.empty()) {
    const std::size_t begin = std::min(text.find('&'), text.size());
    decoded += text.substr(0, begin);
    text.remove_prefix(begin);
    const std::size_t end = text.find(';');
    if (text.empty() || end == std::string_view::npos) {
      return decoded + std::string(text);
    }
    const std::string character = Resolve(text.substr(1, end - 1));
    decoded += character.empty() ? std::string(text.substr(0, end + 1)) : character;
    text.remove_prefix(end + 1);
  }
  return decoded;
}

TextPlace PlaceOfText(const XmlNode& node) {
  return node.text.empty() ? node.place : node.textPlace;
}

class ModelReader {
 public:
  ModelReader(const XmlOutline& outline, MachineFindings* findings)
      : outline_(outline), findings_(findings) {}

  std::optional<FileMachine> Run() {
    const XmlNode& document = outline_.GetDocument();
    const XmlNode* machine = outline_.FindChild(document, "Machine");
    if (machine == nullptr) {
      const XmlNode& top = outline_.GetChild(document, 0);
      findings_->Add(FindingCode::NoMachine, top.place,
                     "the top element is <" + Printable(top.name.substr(0, MaxQuotedBytes)) +
                         ">, that of a machine file is <Machine>");
      return std::nullopt;
    }
    CheckContent(*machine, {"Entities", "ProgramSystems", "CollisionCheck"}, {}, {"Version"});
    const XmlNode* entities = Need(*machine, "Entities", FindingCode::PartMissing);
    if (entities != nullptr) {
      CheckContent(*entities, {"Entity"}, {"Entity"}, {});
      ForEach(*entities, "Entity", [this](const XmlNode& entity) { ReadElement(entity); });
    }
    element_ = nullptr;
    if (const XmlNode* systems = outline_.FindChild(*machine, "ProgramSystems")) {
      CheckContent(*systems, {"ProgramSystem"}, {"ProgramSystem"}, {});
      ForEach(*systems, "ProgramSystem", [this](const XmlNode& system) { ReadSystem(system); });
    }
    if (const XmlNode* check = outline_.FindChild(*machine, "CollisionCheck")) {
      ReadCollisionCheck(*check);
    }
    return std::move(machine_);
  }

 private:
  template <typename Take>
  void ForEach(const XmlNode& parent, std::string_view name, const Take& take) {
    for (std::size_t i = 0; i < parent.children.size(); ++i) {
      const XmlNode& child = outline_.GetChild(parent, i);
      if (child.name == name) {
        take(child);
      }
    }
  }

  void Add(FindingCode code, const TextPlace& place, const std::string& text) {
    if (element_ != nullptr) {
      findings_->Add(AboutElement(code, place, *element_, text));
    } else {
      findings_->Add(code, place, text);
    }
  }

  /// Tells what the reader of machine files passes over in an element.
  void CheckContent(const XmlNode& node, Words known, Words repeatable, Words attributes) {
    std::vector<std::string_view> seen;
    for (std::size_t i = 0; i < node.children.size(); ++i) {
      const XmlNode& child = outline_.GetChild(node, i);
      const std::string shown = "<" + Printable(child.name.substr(0, MaxQuotedBytes)) + ">";
      if (!IsIn(child.name, known)) {
        Add(FindingCode::UnknownElement, child.place,
            shown + " in <" + std::string(node.name) + "> is not known and passed over");
      } else if (!IsIn(child.name, repeatable)) {
        if (std::find(seen.begin(), seen.end(), child.name) != seen.end()) {
          Add(FindingCode::GivenTwice, child.place,
              shown + " is there already; the first one counts");
        } else {
          seen.push_back(child.name);
        }
      }
    }
    for (const XmlAttribute& attribute : node.attributes) {
      if (!IsIn(attribute.name, attributes)) {
        Add(FindingCode::UnknownAttribute, attribute.place,
            "the attribute " + Printable(attribute.name.substr(0, MaxQuotedBytes)) + " of <" +
                std::string(node.name) + "> is not known and passed over");
      }
    }
  }

  /// Checks an element that holds a text alone.
  void CheckLeaf(const XmlNode& node) { CheckContent(node, {}, {}, {}); }

  const XmlNode* Need(const XmlNode& parent, std::string_view name, FindingCode code) {
    const XmlNode* child = outline_.FindChild(parent, name);
    if (child == nullptr) {
      Add(code, parent.place,
          "<" + std::string(parent.name) + "> has no <" + std::string(name) + "> in it");
    }
    return child;
  }

  void ReadInteger(std::string_view raw, const TextPlace& place, const std::string& what,
                   Placed<int>* out) {
    const std::string text = Decode(raw);
    const std::size_t first = std::min(text.find_first_not_of(Blanks), text.size());
    std::string_view digits = std::string_view(text).substr(first);
    if (digits.size() > 1 && digits[0] == '+' && digits[1] >= '0' && digits[1] <= '9') {
      digits.remove_prefix(1);
    }
    int value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    out->place = place;
    if (error == std::errc::invalid_argument) {
      Add(FindingCode::NotANumber, place,
          what + " is " + Quote(digits) + ", a whole number is needed");
      return;
    }
    if (error == std::errc::result_out_of_range) {
      Add(FindingCode::NumberTooLarge, place,
          what + " is " + Quote(digits) + ", which is out of range");
      return;
    }
    CheckRest(digits.substr(static_cast<std::size_t>(end - digits.data())), place, what);
    out->value = value;
    out->isGood = true;
  }

  void ReadNumber(std::string_view raw, const TextPlace& place, const std::string& what,
                  Placed<double>* out) {
    std::string text = Decode(raw);
    text.erase(0, std::min(text.find_first_not_of(Blanks), text.size()));
    char* end = nullptr;
    errno = 0;
    const double value = std::strtod(text.c_str(), &end);
    out->place = place;
    if (end == text.c_str()) {
      Add(FindingCode::NotANumber, place, what + " is " + Quote(text) + ", a number is needed");
      return;
    }
    if (errno == ERANGE) {
      Add(FindingCode::NumberTooLarge, place,
          what + " is " + Quote(text) + ", which is out of range");
      return;
    }
    CheckRest(end, place, what);
    if (!std::isfinite(value)) {
      Add(FindingCode::NotFinite, place,
          what + " is " + Quote(text) + ", which is no finite number");
      return;
    }
    out->value = value;
    out->isGood = true;
  }

  void CheckRest(std::string_view rest, const TextPlace& place, const std::string& what) {
    if (rest.find_first_not_of(Blanks) != std::string_view::npos) {
      Add(FindingCode::TextBehindNumber, place,
          what + ": " + Quote(rest) + " behind the number is passed over");
    }
  }

  void ReadInteger(const XmlNode& parent, std::string_view name, Placed<int>* out) {
    if (const XmlNode* child = Need(parent, name, FindingCode::PartMissing)) {
      CheckLeaf(*child);
      ReadInteger(child->text, PlaceOfText(*child), std::string(name), out);
    }
  }

  /// Reads a word; the value is its place among the words, and as it was where there is none.
  void ReadWord(const XmlNode& parent, std::string_view name, Words words, FindingCode missing,
                Placed<int>* out, std::string* word = nullptr) {
    const XmlNode* child = Need(parent, name, missing);
    if (child == nullptr) {
      return;
    }
    CheckLeaf(*child);
    const std::string text = Decode(child->text);
    out->place = PlaceOfText(*child);
    const auto found = std::find(words.begin(), words.end(), text);
    if (found == words.end()) {
      Add(FindingCode::UnknownWord, out->place,
          std::string(name) + " is " + Quote(text) + ", one of " + List(words) + " is needed");
      return;
    }
    if (word != nullptr) {
      *word = text;
    }
    out->value = static_cast<int>(found - words.begin());
    out->isGood = true;
  }

  void ReadVector(const XmlNode& parent, std::string_view name, FindingCode missing,
                  Placed<FileVector>* out) {
    const XmlNode* child = Need(parent, name, missing);
    if (child == nullptr) {
      return;
    }
    CheckContent(*child, {}, {}, {"X", "Y", "Z"});
    out->place = child->place;
    out->isGood = true;
    const std::string_view names[] = {"X", "Y", "Z"};
    for (std::size_t i = 0; i < 3; ++i) {
      const XmlAttribute* attribute = XmlOutline::FindAttribute(*child, names[i]);
      if (attribute == nullptr) {
        Add(missing, child->place,
            "<" + std::string(name) + "> has no attribute " + std::string(names[i]));
        out->isGood = false;
        continue;
      }
      Placed<double> number;
      ReadNumber(attribute->value, attribute->place,
                 std::string(name) + " " + std::string(names[i]), &number);
      out->value[i] = number.value;
      out->isGood = out->isGood && number.isGood;
    }
  }

  void ReadNumber(const XmlNode& parent, std::string_view name, FindingCode missing,
                  Placed<double>* out) {
    if (const XmlNode* child = Need(parent, name, missing)) {
      CheckLeaf(*child);
      ReadNumber(child->text, PlaceOfText(*child), std::string(name), out);
    }
  }

  void ReadLink(const XmlNode& link, FileElement* element) {
    // The reader makes do with a link that is not whole; what is left of it is not what was meant.
    constexpr FindingCode missing = FindingCode::LinkIncomplete;
    CheckContent(link, {"Type", "Center", "Dir", "Position", "ZeroRef", "RangeMin", "RangeMax"}, {},
                 {});
    Placed<int> type;
    ReadWord(link, "Type",
             {"LINEAR", "ROTARY", "POSITION", "IDENTITY", "ABC", "XYZABC", "XYZIJK",
              "XYZ_REPSPINDL", "UNDEF"},
             missing, &type, &element->linkWord);
    element->link.place = type.place;
    element->link.isGood = type.isGood;
    element->link.value = type.value > 3 ? FileLink::Other : static_cast<FileLink>(type.value);
    Placed<FileVector> vector;
    ReadVector(link, "Center", missing, &vector);
    ReadVector(link, "Dir", missing, &element->direction);
    if (const XmlNode* position = Need(link, "Position", missing)) {
      CheckContent(*position, {"U", "V", "W", "T"}, {}, {});
      element->frame.place = position->place;
      element->frame.isGood = true;
      const std::string_view names[] = {"U", "V", "W"};
      for (std::size_t i = 0; i < 3; ++i) {
        Placed<FileVector> column;
        ReadVector(*position, names[i], missing, &column);
        element->frame.value[i] = column.value;
        element->frame.isGood = element->frame.isGood && column.isGood;
      }
      ReadVector(*position, "T", missing, &vector);
    }
    Placed<double> zero;
    ReadNumber(link, "ZeroRef", missing, &zero);
    ReadNumber(link, "RangeMin", missing, &element->rangeMin);
    ReadNumber(link, "RangeMax", missing, &element->rangeMax);
  }

  void ReadMeshes(const XmlNode& meshes, FileElement* element) {
    CheckContent(meshes, {"Mesh"}, {"Mesh"}, {});
    ForEach(meshes, "Mesh", [this, element](const XmlNode& mesh) {
      CheckContent(mesh, {"RGB"}, {}, {});
      Placed<int> color;
      ReadInteger(mesh, "RGB", &color);
      ++element->meshNb;
    });
  }

  void CheckSlot(const char* name, const Placed<int>& slot) {
    if (slot.isGood && slot.value > MaxTableSlot) {
      Add(FindingCode::NumberTooLarge, slot.place,
          std::string(name) + " is " + std::to_string(slot.value) + ", at most " +
              std::to_string(MaxTableSlot) + " is possible");
    }
  }

  void ReadElement(const XmlNode& entity) {
    FileElement element;
    element.place = entity.place;
    element.id.place = entity.place;
    element.reg.place = entity.place;
    element.parentId.place = entity.place;
    // Name and id first: they are what messages about all the rest say.
    if (const XmlNode* name = outline_.FindChild(entity, "Name")) {
      element.name = Printable(Decode(name->text));
    }
    if (const XmlNode* id = outline_.FindChild(entity, "Id")) {
      MachineFindings ignored;
      ModelReader(outline_, &ignored).ReadInteger(id->text, id->place, "Id", &element.id);
    }
    element_ = &element;
    CheckContent(entity,
                 {"Name", "Type", "ParallelType", "Id", "ParentId", "Register", "Motor",
                  "RangeAxis", "Mounting", "EntityLink", "Meshes"},
                 {}, {});
    if (const XmlNode* name = Need(entity, "Name", FindingCode::PartMissing)) {
      CheckLeaf(*name);
    }
    constexpr FindingCode missing = FindingCode::PartMissing;
    Placed<int> word;
    ReadWord(entity, "Type", {"AXIS", "HEAD", "TABLE"}, missing, &word);
    element.role = {static_cast<FileRole>(word.value), word.place, word.isGood};
    ReadWord(entity, "ParallelType", {"CHAIN", "PARALLEL"}, missing, &word);
    Placed<int> id;
    id.place = entity.place;
    ReadInteger(entity, "Id", &id);
    CheckSlot("Id", id);
    element.id = id;
    ReadInteger(entity, "ParentId", &element.parentId);
    ReadInteger(entity, "Register", &element.reg);
    CheckSlot("Register", element.reg);
    Placed<int> truth;
    ReadWord(entity, "Motor", {"false", "true"}, missing, &truth);
    Placed<int> range;
    ReadWord(entity, "RangeAxis", {"false", "true"}, missing, &range);
    element.isRangeChecked = {range.value == 1, range.place, range.isGood};
    ReadWord(entity, "Mounting", {"false", "true"}, missing, &truth);
    if (const XmlNode* link = Need(entity, "EntityLink", missing)) {
      ReadLink(*link, &element);
    }
    if (const XmlNode* meshes = outline_.FindChild(entity, "Meshes")) {
      ReadMeshes(*meshes, &element);
    }
    element_ = nullptr;
    machine_.elements.push_back(std::move(element));
  }

  void ReadRegisters(const XmlNode& system, std::string_view name, Words attributes,
                     Placed<int>* out) {
    const XmlNode* child = Need(system, name, FindingCode::PartMissing);
    if (child == nullptr) {
      return;
    }
    CheckContent(*child, {}, {}, attributes);
    for (const std::string_view attributeName : attributes) {
      const XmlAttribute* attribute = XmlOutline::FindAttribute(*child, attributeName);
      if (attribute == nullptr) {
        Add(FindingCode::PartMissing, child->place,
            "<" + std::string(name) + "> has no attribute " + std::string(attributeName));
      } else {
        ReadInteger(attribute->value, attribute->place,
                    std::string(name) + " " + std::string(attributeName), out);
      }
      ++out;
    }
  }

  void ReadSystem(const XmlNode& node) {
    FileProgramSystem system;
    system.place = node.place;
    CheckContent(node,
                 {"ProgramSystemName", "ProgramminSystemName", "TableIndex", "HeadIndex",
                  "MainLinear", "MainRotary", "RotariesCompute"},
                 {}, {});
    const XmlNode* name = outline_.FindChild(node, "ProgramminSystemName");
    name = name != nullptr ? name : Need(node, "ProgramSystemName", FindingCode::PartMissing);
    if (name != nullptr) {
      CheckLeaf(*name);
      system.name = Printable(Decode(name->text));
    }
    ReadInteger(node, "TableIndex", &system.table);
    ReadInteger(node, "HeadIndex", &system.head);
    ReadRegisters(node, "MainLinear", {"RegX", "RegY", "RegZ"}, &system.registers[0]);
    ReadRegisters(node, "MainRotary", {"RegR0", "RegR1"}, &system.registers[3]);
    if (outline_.FindChild(node, "RotariesCompute") != nullptr) {
      Placed<int> policy;
      ReadWord(node, "RotariesCompute", {"Default", "ShortestWay", "AlphaPositive"},
               FindingCode::PartMissing, &policy);
    }
    machine_.programSystems.push_back(std::move(system));
  }

  void ReadIds(const XmlNode& parent) {
    const XmlNode* ids = Need(parent, "EntityIds", FindingCode::PartMissing);
    if (ids == nullptr) {
      return;
    }
    CheckLeaf(*ids);
    std::string_view rest = Trim(ids->text);
    while (!rest.empty()) {
      const std::size_t end = std::min(rest.find_first_of(" \t"), rest.size());
      Placed<int> id;
      ReadInteger(rest.substr(0, end), PlaceOfText(*ids), "an id of EntityIds", &id);
      machine_.collisionIds.push_back(id);
      rest = Trim(rest.substr(end));
    }
  }

  void ReadCollisionCheck(const XmlNode& check) {
    constexpr std::string_view lists[] = {"MachineStock", "MachinePart", "MachineFixture",
                                          "MachineTool"};
    CheckContent(
        check, {"MachineMachines", "MachineStock", "MachinePart", "MachineFixture", "MachineTool"},
        {}, {});
    if (const XmlNode* pairs = outline_.FindChild(check, "MachineMachines")) {
      CheckContent(*pairs, {"MachineMachine"}, {"MachineMachine"}, {});
      ForEach(*pairs, "MachineMachine", [this](const XmlNode& pair) {
        CheckContent(pair, {"EntityId", "EntityIds"}, {}, {});
        Placed<int> id;
        ReadInteger(pair, "EntityId", &id);
        machine_.collisionIds.push_back(id);
        ReadIds(pair);
      });
    }
    for (const std::string_view name : lists) {
      if (const XmlNode* list = outline_.FindChild(check, name)) {
        CheckContent(*list, {"EntityIds"}, {}, {});
        ReadIds(*list);
      }
    }
  }

  const XmlOutline& outline_;
  MachineFindings* findings_;
  FileMachine machine_;
  const FileElement* element_ = nullptr;
};

}  // namespace

MachineFinding AboutElement(FindingCode code, const TextPlace& place, const FileElement& element,
                            const std::string& text) {
  MachineFinding finding;
  finding.code = code;
  finding.place = place;
  if (element.id.isGood) {
    finding.elementId = element.id.value;
  }
  finding.elementName = element.name;
  finding.text = text;
  return finding;
}

std::optional<FileMachine> ReadFileMachine(const XmlOutline& outline, MachineFindings* findings) {
  return ModelReader(outline, findings).Run();
}

}  // namespace OrvoTool
