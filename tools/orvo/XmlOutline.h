#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace OrvoTool {

/// A place in a text: line and column in characters, both from 1.
struct TextPlace {
  std::uint64_t line = 1;
  std::uint64_t column = 1;
};

/// An attribute as it stands in the text, references not resolved.
struct XmlAttribute {
  std::string_view name;
  std::string_view value;
  TextPlace place;
};

/// An element with its place. Text is what stands before the first child, as it stands in the file.
struct XmlNode {
  std::string_view name;
  TextPlace place;
  std::string_view text;
  TextPlace textPlace;
  std::vector<XmlAttribute> attributes;
  std::vector<std::size_t> children;
};

/// The elements of an XML text with the places where they stand, for messages about them.
///
/// Knows elements, attributes, text, comments, CDATA, processing instructions and document types,
/// and checks that they are well-formed as far as a faulty file needs it to be explained. Nothing
/// recurses, so that the depth of a file does not matter.
class XmlOutline {
 public:
  /// Reads a text, which must outlive this object.
  explicit XmlOutline(std::string_view text);

  /// Tells whether the text is well-formed; if not, where and why it is not.
  bool IsWellFormed() const { return fault_.empty(); }
  const std::string& GetFault() const { return fault_; }
  const TextPlace& GetFaultPlace() const { return faultPlace_; }

  /// Returns the document: a node without name whose children are the top elements.
  const XmlNode& GetDocument() const { return nodes_[0]; }

  /// Returns the first child of a name, or null.
  const XmlNode* FindChild(const XmlNode& parent, std::string_view name) const;

  /// Returns a child by its number.
  const XmlNode& GetChild(const XmlNode& parent, std::size_t i) const {
    return nodes_[parent.children[i]];
  }

  /// Returns an attribute, or null.
  static const XmlAttribute* FindAttribute(const XmlNode& node, std::string_view name);

 private:
  void Read();
  void ReadElement();
  void ReadEndTag();
  bool ReadAttribute(XmlNode* node);
  bool SkipBlock(std::string_view begin, std::string_view end, const char* what);
  void AddText(std::size_t begin, std::size_t end);
  void SkipBlanks();
  std::string_view TakeName();
  TextPlace PlaceOf(std::size_t offset);
  void Fail(std::size_t offset, const std::string& what);

  std::string_view text_;
  std::size_t position_ = 0;
  std::vector<XmlNode> nodes_;
  std::vector<std::size_t> open_;
  std::string fault_;
  TextPlace faultPlace_;
  TextPlace knownPlace_;
  std::size_t knownOffset_ = 0;
};

}  // namespace OrvoTool
