#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvo::Fuzz {

/// A part of an XML text, kept as it was written: an element, or a text between tags, which may
/// also be a comment or another markup that is no element.
struct TextNode {
  std::string name;                                             ///< of an element; empty for a text
  std::string text;                                             ///< of a text
  std::vector<std::pair<std::string, std::string>> attributes;  ///< names, and values with quotes
  std::vector<TextNode> children;

  bool IsElement() const { return !name.empty(); }
};

/// The most levels that are parsed.
constexpr std::size_t LargestDepth = 64;

/// Takes an XML text apart; the nodes outside all elements are children of the root, which has no
/// name. False for a text that is not well-formed enough, or too deep.
bool ParseText(std::string_view text, TextNode* root);

/// Puts it together again.
std::string PrintText(const TextNode& root);

/// Makes an element of a text.
TextNode Leaf(std::string_view name, std::string_view text);

/// All elements below a node, each after its parent.
std::vector<TextNode*> ElementsBelow(TextNode* root);

}  // namespace Orvo::Fuzz
