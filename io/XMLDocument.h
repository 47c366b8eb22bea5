#pragma once

#include "io/XMLElement.h"

#include <tinyxml2.h>

#include <deque>
#include <string>

namespace Orvo {

/// An XML document, with wide text on this side and UTF-8 on the other.
///
/// Elements come as wrappers that the document keeps until it goes; a null parent means the
/// document itself. A document lives for one file operation.
class XMLDocument {
 public:
  XMLDocument();
  XMLDocument(const XMLDocument&) = delete;
  XMLDocument& operator=(const XMLDocument&) = delete;
  virtual ~XMLDocument();

  /// Parses a file. False where it can't be opened, is no XML or has a tag of more than 1000
  /// attributes.
  bool LoadFile(const std::wstring& path);

  /// Writes the document to a file, indented. False unless every byte was written.
  bool SaveFile(const std::wstring& path);

  /// The parser's error code; 0 is none.
  int ErrorID() const;

  /// Appends a new element, or returns null where that fails.
  XMLElement* NewElement(const std::wstring& name, XMLElement* parent);

  /// Appends the declaration of version 1.0 and UTF-8.
  void AddDeclaration();

  /// Finds the first child of a name, or null.
  XMLElement* FirstChildElement(const std::wstring& name, XMLElement* parent);

  /// Finds the first top-level element of a name, or null.
  XMLElement* RootElement(const std::wstring& name);

  /// Finds the next element of a name behind another one, or null.
  XMLElement* NextSiblingElement(const std::wstring& name, XMLElement* current, XMLElement* parent);

 private:
  XMLElement* Wrap(tinyxml2::XMLElement* element, XMLElement* parent, const std::wstring& name);
  tinyxml2::XMLNode* Node(XMLElement* element);

  tinyxml2::XMLDocument document_;
  std::deque<XMLElement> elements_;
};

}  // namespace Orvo
