#pragma once

#include "io/XMLElement.h"

#include <tinyxml2.h>

#include <deque>
#include <string>
#include <string_view>

namespace Orvo {

/// An XML document in the tree of the XML parser, with wide text on this side and UTF-8 on the
/// other.
///
/// Elements come as wrappers that the document keeps until it goes; a null parent means the
/// document itself. A document lives for one file operation.
class XMLDocument {
 public:
  XMLDocument();
  XMLDocument(const XMLDocument&) = delete;
  XMLDocument& operator=(const XMLDocument&) = delete;
  virtual ~XMLDocument();

  /// Parses a file. False where it can't be read whole, is no XML or has a tag of more than 1000
  /// attributes.
  bool LoadFile(const std::wstring& path);

  /// Parses the bytes of a file, as LoadFile() does.
  bool Parse(std::string_view text);

  /// Writes the document to a file, indented. False unless every byte was written.
  bool SaveFile(const std::wstring& path);

  /// The parser's error code; 0 is none.
  int ErrorID() const;

  /// Appends a new element, or returns null where that fails.
  XMLElement* NewElement(const std::wstring& name, XMLElement* parent);

  /// Appends the declaration of version 1.0 and UTF-8.
  void AddDeclaration();

  /// The document, to be read.
  XMLView View() const;

 private:
  tinyxml2::XMLDocument document_;
  std::deque<XMLElement> elements_;
};

}  // namespace Orvo
