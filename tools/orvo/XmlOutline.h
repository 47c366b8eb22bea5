#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
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

/// Something in a text that XML 1.0 or the reader of machine files refuses, with its place.
struct XmlFault {
  TextPlace place;
  std::string what;
};

/// The elements of an XML text with the places where they stand, for messages about them.
///
/// Knows elements, attributes, text, comments, CDATA, processing instructions and document types.
/// Behind what the reader of machine files refuses, nothing is looked at. What makes a file not
/// well-formed by XML 1.0 and is read all the same is kept as a blemish; names and the inner part
/// of a document type are not looked at as closely. Nothing recurses, so that the depth of a file
/// does not matter.
class XmlOutline {
 public:
  /// Reads a text, which must outlive this object.
  explicit XmlOutline(std::string_view text);

  /// Returns what the reader of machine files refuses, or null.
  const XmlFault* GetFault() const { return fault_ ? &*fault_ : nullptr; }

  /// Tells whether the fault, if there is one, is none by XML 1.0.
  bool IsFaultOfReaderOnly() const { return isFaultOfReaderOnly_; }

  /// Returns what is read although it is not well-formed; the first 10000 of it.
  const std::vector<XmlFault>& GetBlemishes() const { return blemishes_; }

  /// Returns the encoding that the text declares; empty where it declares none.
  const XmlFault& GetEncoding() const { return encoding_; }

  /// Returns what is most likely meant where the reader refuses a text without a fault, or null.
  const XmlFault* GetSuspect() const;

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
  bool ReadMarkup();
  void ReadElement(std::size_t begin);
  void ReadEndTag(std::size_t begin);
  bool ReadAttribute(XmlNode* node);
  void ReadAttributeValue(std::size_t begin, XmlAttribute* attribute);
  void ReadInstruction();
  void ReadComment();
  void ReadDeclaration();
  std::size_t FindTypeEnd(std::size_t begin);
  bool SkipTo(std::string_view begin, std::string_view end, const char* what);
  void AddText(std::size_t begin, std::size_t end, bool isCdata);
  void SkipBlanks();
  std::string_view TakeName();
  TextPlace PlaceOf(std::size_t offset);
  void Fail(std::size_t offset, const std::string& what);
  void Note(std::size_t offset, const std::string& what);
  std::string OpenElement() const;

  std::string_view text_;
  std::size_t position_ = 0;
  std::vector<XmlNode> nodes_;
  std::vector<std::size_t> open_;
  std::size_t begin_ = 0;           ///< behind a byte order mark
  bool isHeadOver_ = false;         ///< whether more than declarations came
  bool isTypeGiven_ = false;        ///< whether a document type came
  std::optional<XmlFault> subset_;  ///< the document type that has an inner part
  std::optional<XmlFault> fault_;
  bool isFaultOfReaderOnly_ = false;
  std::vector<XmlFault> blemishes_;
  XmlFault encoding_;
  TextPlace knownPlace_;
  std::size_t knownOffset_ = 0;
  TextPlace markPlace_;  ///< of the markup that is read: places before it are not asked for
  std::size_t markOffset_ = 0;
};

}  // namespace OrvoTool
