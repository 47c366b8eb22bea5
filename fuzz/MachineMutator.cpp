#include "MachineGrammar.h"
#include "MachineText.h"
#include "Mutator.h"
#include "Random.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvo::Fuzz {

namespace {

constexpr std::size_t LargestText = 65536;
constexpr std::size_t LargestElementNb = 2000;
constexpr std::size_t MostSteps = 4;
constexpr std::size_t LargestTail = 256;

/// Changes the tree of a machine file, one step after the other.
class TreeMutator {
 public:
  TreeMutator(TextNode* root, Random& random, ByteMutator byteMutator)
      : root_(root), random_(random), byteMutator_(byteMutator) {}

  void Step() {
    std::vector<TextNode*> elements = ElementsBelow(root_);
    if (elements.empty() || elements.size() > LargestElementNb) {
      *root_ = AnyMachine(random_);
      return;
    }
    // Values are what most elements hold, and what most changes should be about.
    if (!random_.OneIn(4)) {
      ChangeValue(elements);
      return;
    }
    TextNode* const element = elements[random_.Below(elements.size())];
    switch (random_.Below(14)) {
      case 0:
        Duplicate(element);
        break;
      case 1:
        DropChild(element);
        break;
      case 2:
        SwapChildren(element);
        break;
      case 3:
        AddChild(element);
        break;
      case 4:
        Renew(element);
        break;
      case 5:
        Move(elements);
        break;
      case 6:
        CopyOver(elements);
        break;
      case 7:
        element->name = AnyName(random_);
        break;
      case 8:
        ChangeAttributes(element);
        break;
      case 9:
        AddMarkup(element);
        break;
      case 10:
        Wrap(element);
        break;
      case 11:
        ShareNumber(elements);
        break;
      case 12:
        if (random_.OneIn(8)) {
          *root_ = AnyMachine(random_);
        } else {
          DuplicateEntity(elements);
        }
        break;
      default:
        if (random_.OneIn(8)) {
          Nest(element);
        } else {
          Relink(elements);
        }
        break;
    }
  }

 private:
  const TextNode* ParentOf(const TextNode* child) const {
    for (const TextNode* element : ElementsBelow(root_)) {
      for (const TextNode& candidate : element->children) {
        if (&candidate == child) {
          return element;
        }
      }
    }
    return root_;
  }

  std::string AnyBytes(std::string text) {
    const std::size_t size = std::min<std::size_t>(text.size(), 64);
    text.resize(64);
    text.resize(byteMutator_(reinterpret_cast<std::uint8_t*>(text.data()), size, 64));
    // A mutation of a value is to stay one.
    text.erase(std::remove_if(text.begin(), text.end(),
                              [](char c) { return c == '<' || c == '"' || c == '\0'; }),
               text.end());
    return text;
  }

  void ChangeValue(const std::vector<TextNode*>& elements) {
    for (int attempt = 0; attempt < 16; ++attempt) {
      TextNode* const element = elements[random_.Below(elements.size())];
      const ValueKind kind = KindOfText(element->name);
      if (!element->attributes.empty()) {
        std::string& value = element->attributes[random_.Below(element->attributes.size())].second;
        value = '"' +
                (random_.OneIn(12)
                     ? AnyBytes(value)
                     : AnyValue(KindOfAttribute(element->name), element->name, "", random_)) +
                '"';
        value.erase(std::remove(value.begin() + 1, value.end() - 1, '"'), value.end() - 1);
        return;
      }
      if (kind != ValueKind::None) {
        const bool hasText = !element->children.empty() && !element->children[0].IsElement();
        std::string text = random_.OneIn(12)
                               ? AnyBytes(hasText ? element->children[0].text : "")
                               : AnyValue(kind, element->name, ParentOf(element)->name, random_);
        element->children.resize(1);
        element->children[0] = TextNode();
        element->children[0].text = std::move(text);
        return;
      }
    }
  }

  void Duplicate(TextNode* parent) {
    if (!parent->children.empty()) {
      const TextNode copy = parent->children[random_.Below(parent->children.size())];
      for (std::size_t nb = random_.OneIn(16) ? 12 : 1; nb > 0; --nb) {
        Insert(parent, copy);
      }
    }
  }

  void Insert(TextNode* parent, const TextNode& child) {
    const std::size_t place = random_.Below(parent->children.size() + 1);
    parent->children.insert(parent->children.begin() + static_cast<std::ptrdiff_t>(place), child);
  }

  void DropChild(TextNode* parent) {
    if (!parent->children.empty()) {
      const std::size_t place = random_.Below(parent->children.size());
      parent->children.erase(parent->children.begin() + static_cast<std::ptrdiff_t>(place));
    }
  }

  void SwapChildren(TextNode* parent) {
    const std::size_t childNb = parent->children.size();
    if (childNb > 1) {
      std::swap(parent->children[random_.Below(childNb)], parent->children[random_.Below(childNb)]);
    }
  }

  void AddChild(TextNode* parent) {
    const std::vector<std::string_view> known = ChildrenOf(parent->name, ParentOf(parent)->name);
    const std::string_view name =
        known.empty() ? AnyName(random_) : known[random_.Below(known.size())];
    Insert(parent, AnyElement(name, parent->name, random_));
  }

  void Renew(TextNode* element) {
    const std::string name = element->name;
    const std::string parent = ParentOf(element)->name;
    if (name != "Machine" && name != "Entities") {
      *element = AnyElement(name, parent, random_);
    }
  }

  void Move(const std::vector<TextNode*>& elements) {
    TextNode* const source = elements[random_.Below(elements.size())];
    if (!source->children.empty()) {
      const TextNode moved = source->children[random_.Below(source->children.size())];
      DropChild(source);
      const std::vector<TextNode*> left = ElementsBelow(root_);
      Insert(left[random_.Below(left.size())], moved);
    }
  }

  void CopyOver(const std::vector<TextNode*>& elements) {
    TextNode* const target = elements[random_.Below(elements.size())];
    std::vector<const TextNode*> namesakes;
    for (const TextNode* element : elements) {
      if (element != target && element->name == target->name) {
        namesakes.push_back(element);
      }
    }
    if (!namesakes.empty()) {
      const TextNode copy = *namesakes[random_.Below(namesakes.size())];
      *target = copy;
    }
  }

  void ChangeAttributes(TextNode* element) {
    const std::size_t attributeNb = element->attributes.size();
    if (attributeNb > 0 && random_.OneIn(2)) {
      const std::size_t place = random_.Below(attributeNb);
      if (random_.OneIn(2)) {
        element->attributes[place].first = AnyName(random_);
      } else {
        element->attributes.erase(element->attributes.begin() + static_cast<std::ptrdiff_t>(place));
      }
      return;
    }
    const std::vector<std::string_view> known = AttributesOf(element->name);
    const std::string_view name =
        known.empty() || random_.OneIn(4) ? AnyName(random_) : known[random_.Below(known.size())];
    element->attributes.emplace_back(
        name, "'" + AnyValue(KindOfAttribute(element->name), element->name, "", random_) + "'");
  }

  void AddMarkup(TextNode* element) {
    constexpr std::string_view markups[] = {"<!-- a -->", "<![CDATA[b]]>", "<?c d?>", "<!e>",
                                            " ",          "\n\t",          "text",    "&amp;",
                                            "<!-- ",      "<![CDATA[",     "<",       "&#"};
    TextNode text;
    text.text = random_.OneOf(markups);
    Insert(element, text);
  }

  void Wrap(TextNode* element) {
    TextNode inner = *element;
    TextNode outer;
    outer.name = AnyName(random_);
    outer.children.push_back(std::move(inner));
    *element = std::move(outer);
  }

  void Nest(TextNode* element) {
    const std::string_view name = AnyName(random_);
    for (std::size_t depth = random_.Below(LargestDepth / 2); depth > 0; --depth) {
      TextNode outer;
      outer.name = name;
      outer.children.push_back(*element);
      *element = std::move(outer);
    }
  }

  // Gives two values of the same kind the same text: equal ids, registers and parents.
  void ShareNumber(const std::vector<TextNode*>& elements) {
    std::vector<TextNode*> numbers;
    for (TextNode* element : elements) {
      const ValueKind kind = KindOfText(element->name);
      if ((kind == ValueKind::Id || kind == ValueKind::Register) && !element->children.empty()) {
        numbers.push_back(element);
      }
    }
    if (numbers.size() > 1) {
      const std::vector<TextNode> children = numbers[random_.Below(numbers.size())]->children;
      numbers[random_.Below(numbers.size())]->children = children;
    }
  }

  void DuplicateEntity(const std::vector<TextNode*>& elements) {
    for (TextNode* element : elements) {
      if (element->name == "Entities") {
        Duplicate(element);
        return;
      }
    }
  }

  // Changes the tree of the machine: another parent, type, link or direction for one element.
  void Relink(const std::vector<TextNode*>& elements) {
    constexpr std::string_view names[] = {"ParentId", "Type", "Dir", "Register", "RangeAxis"};
    const std::string_view name = random_.OneOf(names);
    std::vector<TextNode*> found;
    std::copy_if(elements.begin(), elements.end(), std::back_inserter(found),
                 [name](const TextNode* element) { return element->name == name; });
    if (!found.empty()) {
      TextNode* const element = found[random_.Below(found.size())];
      const std::string parent = ParentOf(element)->name;
      *element = AnyElement(name, parent, random_);
    }
  }

  TextNode* root_;
  Random& random_;
  ByteMutator byteMutator_;
};

std::string_view TextPart(const std::uint8_t* data, std::size_t size) {
  const std::string_view whole(reinterpret_cast<const char*>(data), size);
  return whole.substr(0, whole.find('\0'));
}

std::size_t Store(const std::string& bytes, std::uint8_t* out, std::size_t maxSize) {
  const std::size_t size = std::min(bytes.size(), maxSize);
  // NOLINTNEXTLINE(bugprone-not-null-terminated-result): bytes, not a text.
  std::memcpy(out, bytes.data(), size);
  return size;
}

std::string MutateTail(std::string tail, Random& random, ByteMutator byteMutator) {
  const std::size_t size = tail.size();
  const std::size_t room = std::max(size, LargestTail);
  tail.resize(room);
  tail.resize(byteMutator(reinterpret_cast<std::uint8_t*>(tail.data()), size, room));
  if (tail.size() > 8 && random.OneIn(4)) {
    // A part of it again: requests and meshes come in numbers.
    tail += tail.substr(random.Below(tail.size()), 64);
  }
  return tail;
}

}  // namespace

std::size_t MutateMachineInput(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                               std::uint64_t seed, ByteMutator byteMutator) {
  Random random(seed);
  const std::string_view text = TextPart(data, size);
  if (random.OneIn(24) || size > LargestText) {
    return byteMutator(data, size, maxSize);
  }
  std::string tail(reinterpret_cast<const char*>(data) + text.size(), size - text.size());
  if (!tail.empty() && random.OneIn(3)) {
    const std::string changed =
        std::string(text) + '\0' + MutateTail(tail.substr(1), random, byteMutator);
    return Store(changed, data, maxSize);
  }
  TextNode root;
  if (!ParseText(text, &root)) {
    if (!random.OneIn(8)) {
      return byteMutator(data, size, maxSize);
    }
    root = AnyMachine(random);
  }
  TreeMutator mutator(&root, random, byteMutator);
  for (std::size_t steps = random.OneIn(3) ? 1 + random.Below(MostSteps) : 1; steps > 0; --steps) {
    mutator.Step();
  }
  std::string changed = PrintText(root);
  if (changed.size() + tail.size() > maxSize) {
    return byteMutator(data, size, maxSize);
  }
  return Store(changed + tail, data, maxSize);
}

std::size_t CrossMachineInputs(const std::uint8_t* data1, std::size_t size1,
                               const std::uint8_t* data2, std::size_t size2, std::uint8_t* out,
                               std::size_t maxSize, std::uint64_t seed) {
  Random random(seed);
  const std::string_view text1 = TextPart(data1, size1);
  const std::string_view text2 = TextPart(data2, size2);
  const std::string_view whole1(reinterpret_cast<const char*>(data1), size1);
  const std::string_view whole2(reinterpret_cast<const char*>(data2), size2);
  std::string tail(random.OneIn(2) ? whole1.substr(text1.size()) : whole2.substr(text2.size()));
  TextNode root1;
  TextNode root2;
  if (size1 > LargestText || size2 > LargestText || !ParseText(text1, &root1) ||
      !ParseText(text2, &root2)) {
    return Store(std::string(text1) + tail, out, maxSize);
  }
  const std::vector<TextNode*> targets = ElementsBelow(&root1);
  const std::vector<TextNode*> sources = ElementsBelow(&root2);
  if (!targets.empty() && !sources.empty()) {
    const TextNode& source = *sources[random.Below(sources.size())];
    std::vector<TextNode*> namesakes;
    std::copy_if(targets.begin(), targets.end(), std::back_inserter(namesakes),
                 [&source](const TextNode* target) { return target->name == source.name; });
    if (namesakes.empty()) {
      targets[random.Below(targets.size())]->children.push_back(source);
    } else {
      *namesakes[random.Below(namesakes.size())] = source;
    }
  }
  return Store(PrintText(root1) + tail, out, maxSize);
}

}  // namespace Orvo::Fuzz
