#pragma once

#include "io/XMLView.h"

#include <string>
#include <utility>
#include <vector>

namespace tinyxml2 {
class XMLElement;
}

namespace Orvo {

/// An element of an XML document, as the document or its reader hands it out. It lives as long as
/// they do. One that is read from a plain text has no element of the XML parser.
class XMLElement {
 public:
  XMLElement(tinyxml2::XMLElement* element, XMLElement* parent);
  XMLElement(const XMLView& view, XMLElement* parent);
  XMLElement(const XMLElement&) = delete;
  XMLElement& operator=(const XMLElement&) = delete;
  virtual ~XMLElement();

  /// Reads an attribute; false, and the value untouched, where it is absent.
  bool GetAttribute(const std::wstring& name, std::wstring& value) const;

  /// Sets attributes in the order of the list.
  void SetAttributes(const std::vector<std::pair<std::wstring, std::wstring>>& attributes);

  /// Returns the text, empty where there is none.
  std::wstring GetText() const;

  /// Appends a text.
  void SetText(const std::wstring& text);

  /// Sets the attribute "Version".
  void SetVersion(int version);

  tinyxml2::XMLElement* GetElement() const { return element_; }
  const XMLView& View() const { return view_; }
  XMLElement* GetParent() const { return parent_; }
  std::wstring GetName() const;

 private:
  tinyxml2::XMLElement* element_ = nullptr;
  XMLView view_;
  XMLElement* parent_ = nullptr;
};

}  // namespace Orvo
