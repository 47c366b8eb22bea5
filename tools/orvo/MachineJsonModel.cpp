#include "MachineJsonModel.h"

#include "WideText.h"

#include <Orvo/Kin/EntityLink.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace OrvoTool {
namespace {

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view Blanks = " \t\n\r";

/// What ends a number or one of the words true, false and null.
constexpr std::string_view Ends = " \t\n\r,:]}";

class JsonModelReader {
 public:
  JsonModelReader(std::string_view text, MachineFindings* findings)
      : text_(text), findings_(findings) {}

  FileMachine Run() {
    machine_.isJson = true;
    SkipBlanks();
    ForMembers([this](const std::string& name) {
      if (name == "entities") {
        ForItems([this]() { ReadElement(); });
      } else if (name == "programSystems") {
        ForItems([this]() { ReadSystem(); });
      } else if (name == "collisionCheck") {
        ReadCollisionCheck();
      } else {
        SkipValue();
      }
    });
    return std::move(machine_);
  }

 private:
  /// A finding that waits until the element is known that it is about.
  struct Pending {
    TextPlace place;
    std::string text;
  };

  bool IsAtEnd() const { return at_ >= text_.size(); }
  char Peek() const { return IsAtEnd() ? '\0' : text_[at_]; }
  void SkipBlanks() { at_ = std::min(text_.find_first_not_of(Blanks, at_), text_.size()); }

  /// Calls back for each member of the object here, where its value begins; @p take goes behind it.
  template <typename Take>
  void ForMembers(const Take& take) {
    ForParts('}', [&]() {
      const std::string name = ReadText();
      SkipBlanks();
      ++at_;  // the colon
      SkipBlanks();
      take(name);
    });
  }

  /// Does the same for the values of the array here.
  template <typename Take>
  void ForItems(const Take& take) {
    ForParts(']', take);
  }

  template <typename Take>
  void ForParts(char end, const Take& take) {
    ++at_;  // the bracket
    for (SkipBlanks(); !IsAtEnd() && Peek() != end; SkipBlanks()) {
      const std::size_t begin = at_;
      take();
      SkipBlanks();
      at_ += Peek() == ',' || at_ == begin ? 1U : 0U;
    }
    ++at_;
  }

  /// Returns the place of what stands here.
  TextPlace Place() {
    for (; placed_ < std::min(at_, text_.size()); ++placed_) {
      const char c = text_[placed_];
      if (c == '\n') {
        ++place_.line;
        place_.column = 1;
      } else if ((static_cast<unsigned char>(c) & 0xC0U) != 0x80U) {
        ++place_.column;
      }
    }
    return place_;
  }

  /// Takes a text with its quotes.
  std::string_view TakeQuoted() {
    const std::size_t begin = at_;
    for (++at_; !IsAtEnd() && Peek() != '"'; ++at_) {
      at_ += Peek() == '\\' ? 1U : 0U;
    }
    at_ = std::min(at_ + 1, text_.size());
    return text_.substr(begin, at_ - begin);
  }

  std::string ReadText() {
    if (Peek() != '"') {
      SkipValue();
      return std::string();
    }
    const nlohmann::json text = nlohmann::json::parse(TakeQuoted(), nullptr, false);
    return text.is_string() ? text.get<std::string>() : std::string();
  }

  std::string_view TakePlain() {
    const std::size_t begin = at_;
    at_ = std::min(text_.find_first_of(Ends, at_), text_.size());
    return text_.substr(begin, at_ - begin);
  }

  void SkipValue() {
    std::size_t depth = 0;
    do {
      const char c = Peek();
      if (c == '"') {
        TakeQuoted();
      } else if (c == '{' || c == '[') {
        ++depth;
        ++at_;
      } else if (depth > 0) {
        depth -= c == '}' || c == ']' ? 1U : 0U;
        ++at_;
      } else {
        TakePlain();
      }
    } while (depth > 0 && !IsAtEnd());
  }

  Placed<bool> ReadTruth() {
    const TextPlace place = Place();
    return {TakePlain() == "true", place, true};
  }

  Placed<int> ReadInteger() {
    Placed<int> number;
    number.place = Place();
    const std::string_view digits = TakePlain();
    number.isGood =
        std::from_chars(digits.data(), digits.data() + digits.size(), number.value).ec ==
        std::errc();
    return number;
  }

  /// Reads a number, or a text that stands for one that is not finite.
  Placed<double> ReadNumber(const std::string& what) {
    Placed<double> number;
    number.place = Place();
    if (Peek() == '"') {
      pending_.push_back(
          {number.place, what + " is '" + Printable(ReadText()) + "', which is no finite number"});
      return number;
    }
    number.value = std::strtod(std::string(TakePlain()).c_str(), nullptr);
    number.isGood = true;
    return number;
  }

  /// Reads the first three of the numbers of an array.
  Placed<FileVector> ReadVector(const std::string& what) {
    Placed<FileVector> vector;
    vector.place = Place();
    vector.isGood = true;
    std::size_t i = 0;
    ForItems([&]() {
      const Placed<double> number = ReadNumber(what);
      vector.isGood = vector.isGood && number.isGood;
      if (i < vector.value.size()) {
        vector.value[i++] = number.value;
      }
    });
    return vector;
  }

  /// Reads a number, or the first of an array of them.
  Placed<double> ReadSlots(const std::string& what) {
    if (Peek() != '[') {
      return ReadNumber(what);
    }
    Placed<double> first;
    bool isFirst = true;
    ForItems([&]() {
      const Placed<double> number = ReadNumber(what);
      first = isFirst ? number : first;
      isFirst = false;
    });
    return first;
  }

  void ReadFrame(FileElement* element) {
    element->frame.place = Place();
    element->frame.isGood = true;
    ForMembers([&](const std::string& name) {
      const Placed<FileVector> column = ReadVector("position " + name);
      const std::size_t place = std::string_view("uvw").find(name);
      if (place != std::string_view::npos) {
        element->frame.value[place] = column.value;
        element->frame.isGood = element->frame.isGood && column.isGood;
      }
    });
  }

  void ReadLink(FileElement* element) {
    const Orvo::Kin::EntityLink fresh;
    element->rangeMin = {fresh.GetRangeMin(0), element->place, true};
    element->rangeMax = {fresh.GetRangeMax(0), element->place, true};
    ForMembers([&](const std::string& name) {
      if (name == "type") {
        element->link.place = Place();
        element->link.isGood = true;
        element->linkWord = ReadText();
        const std::string_view words[] = {"LINEAR", "ROTARY", "POSITION", "IDENTITY"};
        const auto* const found = std::find(std::begin(words), std::end(words), element->linkWord);
        element->link.value = static_cast<FileLink>(found - std::begin(words));
      } else if (name == "dir") {
        element->direction = ReadVector(name);
      } else if (name == "center") {
        ReadVector(name);
      } else if (name == "position") {
        ReadFrame(element);
      } else if (name == "rangeMin") {
        element->rangeMin = ReadSlots(name);
      } else if (name == "rangeMax") {
        element->rangeMax = ReadSlots(name);
      } else {
        ReadSlots(name);
      }
    });
  }

  void ReadMesh(FileElement* element) {
    ++element->meshNb;
    ForMembers([&](const std::string& name) {
      if (name == "file") {
        const TextPlace place = Place();
        element->meshFiles.push_back({ReadText(), place, true});
      } else {
        SkipValue();
      }
    });
  }

  void ReadElement() {
    FileElement element;
    element.place = Place();
    element.isRangeChecked = {true, element.place, true};
    ForMembers([&](const std::string& name) {
      if (name == "name") {
        element.name = Printable(ReadText());
      } else if (name == "type") {
        element.role.place = Place();
        element.role.isGood = true;
        const std::string word = ReadText();
        element.role.value = word == "HEAD"    ? FileRole::Head
                             : word == "TABLE" ? FileRole::Table
                                               : FileRole::Axis;
      } else if (name == "id") {
        element.id = ReadInteger();
      } else if (name == "parentId") {
        element.parentId = ReadInteger();
      } else if (name == "register") {
        element.reg = ReadInteger();
      } else if (name == "rangeAxis") {
        element.isRangeChecked = ReadTruth();
      } else if (name == "link") {
        ReadLink(&element);
      } else if (name == "meshes") {
        ForItems([&]() { ReadMesh(&element); });
      } else {
        SkipValue();
      }
    });
    for (const Pending& pending : pending_) {
      findings_->Add(AboutElement(FindingCode::NotFinite, pending.place, element, pending.text));
    }
    pending_.clear();
    machine_.elements.push_back(std::move(element));
  }

  void ReadSystem() {
    FileProgramSystem system;
    system.place = Place();
    const auto registers = [&](std::size_t first, std::size_t count) {
      std::size_t i = 0;
      ForItems([&]() {
        const Placed<int> number = ReadInteger();
        if (i < count) {
          system.registers[first + i++] = number;
        }
      });
    };
    ForMembers([&](const std::string& name) {
      if (name == "name") {
        system.name = Printable(ReadText());
      } else if (name == "table") {
        system.table = ReadInteger();
      } else if (name == "head") {
        system.head = ReadInteger();
      } else if (name == "mainLinear") {
        registers(0, 3);
      } else if (name == "mainRotary") {
        registers(3, 2);
      } else {
        SkipValue();
      }
    });
    machine_.programSystems.push_back(std::move(system));
  }

  void ReadCollisionCheck() {
    const auto readId = [this]() { machine_.collisionIds.push_back(ReadInteger()); };
    ForMembers([&](const std::string& list) {
      if (list != "machineMachine") {
        ForItems(readId);
        return;
      }
      ForItems([&]() {
        ForMembers([&](const std::string& name) {
          if (name == "id") {
            readId();
          } else {
            ForItems(readId);
          }
        });
      });
    });
  }

  std::string_view text_;
  MachineFindings* findings_;
  FileMachine machine_;
  std::vector<Pending> pending_;
  std::size_t at_ = 0;
  std::size_t placed_ = 0;  ///< the byte that place_ is the place of
  TextPlace place_;
};

}  // namespace

FileMachine ReadJsonMachine(std::string_view text, MachineFindings* findings) {
  const bool isMarked = text.substr(0, ByteOrderMark.size()) == ByteOrderMark;
  return JsonModelReader(text.substr(isMarked ? ByteOrderMark.size() : 0), findings).Run();
}

}  // namespace OrvoTool
