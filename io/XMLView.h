#pragma once

#include "io/PlainXml.h"

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace tinyxml2 {
class XMLNode;
}

namespace Orvo {

/// An element of a document, or the document itself, as it is read: in a plain text, or in the tree
/// of the XML parser. Both give the same. What it shows lives as long as the text or the tree.
class XMLView {
 public:
  /// No element.
  XMLView() = default;

  explicit XMLView(const tinyxml2::XMLNode* node) : node_(node) {}
  XMLView(const PlainXml& text, PlainXml::Place place) : plain_(&text), place_(place) {}

  bool IsNull() const { return plain_ == nullptr && node_ == nullptr; }

  /// The first element in this one, or none.
  XMLView FirstChild() const;

  /// The next element behind this one, or none.
  XMLView NextSibling() const;

  // These are for elements only.
  std::string_view Name() const;
  bool HasName(std::string_view name) const;

  /// The text in front of all else; empty where there is none.
  /// @param room  where a text may be put together, which then lives there
  std::string_view Text(std::string* room) const;

  /// Finds the values of attributes by their names; false where one of them is absent.
  bool Attributes(std::span<const std::string_view> names, std::string_view* values) const;

 private:
  XMLView At(PlainXml::Place place) const {
    return place == PlainXml::Document ? XMLView() : XMLView(*plain_, place);
  }

  const PlainXml* plain_ = nullptr;
  PlainXml::Place place_ = PlainXml::Document;
  const tinyxml2::XMLNode* node_ = nullptr;
};

/// Finds an element's first child of a name, or none.
XMLView FindChild(const XMLView& parent, std::string_view name);

/// Finds an element's first children of several names in one walk. The children mostly stand in the
/// order of the names.
void FindChildren(const XMLView& parent, std::span<const std::string_view> names,
                  XMLView* children);

/// The same into an array.
template <std::size_t Size>
std::array<XMLView, Size> FindChildren(const XMLView& parent,
                                       const std::string_view (&names)[Size]) {
  std::array<XMLView, Size> children;
  FindChildren(parent, names, children.data());
  return children;
}

}  // namespace Orvo
