#include "MachineText.h"

#include <algorithm>

namespace Orvo::Fuzz {

namespace {

constexpr std::string_view Blanks = " \t\r\n";
constexpr std::string_view NameEnds = " \t\r\n/>=<\"'";

class Parser {
 public:
  explicit Parser(std::string_view text) : rest_(text) {}

  bool Parse(TextNode* root) {
    std::vector<TextNode*> open = {root};
    while (!rest_.empty()) {
      TextNode* const parent = open.back();
      if (rest_[0] != '<') {
        AddText(parent, Take(rest_.find('<')));
      } else if (rest_.substr(0, 2) == "</") {
        rest_.remove_prefix(2);
        const std::string_view name = TakeName();
        SkipBlanks();
        if (open.size() < 2 || parent->name != name || !SkipCharacter('>')) {
          return false;
        }
        open.pop_back();
      } else if (rest_.substr(0, 2) == "<?" || rest_.substr(0, 2) == "<!") {
        AddText(parent, TakeMarkup());
      } else {
        parent->children.emplace_back();
        bool isClosed = false;
        if (open.size() > LargestDepth || !ParseTag(&parent->children.back(), &isClosed)) {
          return false;
        }
        if (!isClosed) {
          open.push_back(&parent->children.back());
        }
      }
    }
    return open.size() == 1;
  }

 private:
  std::string_view Take(std::size_t length) {
    const std::string_view taken = rest_.substr(0, length);
    rest_.remove_prefix(taken.size());
    return taken;
  }

  std::string_view TakeName() { return Take(rest_.find_first_of(NameEnds)); }

  void SkipBlanks() { Take(std::min(rest_.find_first_not_of(Blanks), rest_.size())); }

  bool SkipCharacter(char c) {
    const bool isThere = !rest_.empty() && rest_[0] == c;
    Take(isThere ? 1 : 0);
    return isThere;
  }

  std::string_view TakeMarkup() {
    const std::string_view end = rest_.substr(0, 4) == "<!--"        ? "-->"
                                 : rest_.substr(0, 9) == "<![CDATA[" ? "]]>"
                                                                     : ">";
    const std::size_t place = rest_.find(end);
    return Take(place == std::string_view::npos ? place : place + end.size());
  }

  static void AddText(TextNode* parent, std::string_view text) {
    parent->children.emplace_back();
    parent->children.back().text = text;
  }

  bool ParseTag(TextNode* element, bool* isClosed) {
    Take(1);
    element->name = TakeName();
    if (element->name.empty()) {
      return false;
    }
    for (;;) {
      SkipBlanks();
      if (SkipCharacter('>')) {
        return true;
      }
      if (SkipCharacter('/')) {
        *isClosed = true;
        return SkipCharacter('>');
      }
      const std::string_view name = TakeName();
      SkipBlanks();
      if (name.empty() || !SkipCharacter('=')) {
        return false;
      }
      SkipBlanks();
      if (rest_.empty() || (rest_[0] != '"' && rest_[0] != '\'')) {
        return false;
      }
      const std::size_t end = rest_.find(rest_[0], 1);
      if (end == std::string_view::npos) {
        return false;
      }
      element->attributes.emplace_back(name, Take(end + 1));
    }
  }

  std::string_view rest_;
};

void Print(const TextNode& node, std::string* text) {
  if (!node.IsElement()) {
    *text += node.text;
  } else {
    *text += '<' + node.name;
    for (const auto& [name, value] : node.attributes) {
      *text += ' ';
      *text += name;
      *text += '=';
      *text += value;
    }
    *text += node.children.empty() ? "/>" : ">";
  }
  for (const TextNode& child : node.children) {
    Print(child, text);
  }
  if (node.IsElement() && !node.children.empty()) {
    *text += "</" + node.name + '>';
  }
}

void Collect(TextNode* node, std::vector<TextNode*>* elements) {
  for (TextNode& child : node->children) {
    if (child.IsElement()) {
      elements->push_back(&child);
      Collect(&child, elements);
    }
  }
}

}  // namespace

bool ParseText(std::string_view text, TextNode* root) { return Parser(text).Parse(root); }

std::string PrintText(const TextNode& root) {
  std::string text;
  Print(root, &text);
  return text;
}

TextNode Leaf(std::string_view name, std::string_view text) {
  TextNode element;
  element.name = name;
  element.children.emplace_back();
  element.children.back().text = text;
  return element;
}

std::vector<TextNode*> ElementsBelow(TextNode* root) {
  std::vector<TextNode*> elements;
  Collect(root, &elements);
  return elements;
}

}  // namespace Orvo::Fuzz
