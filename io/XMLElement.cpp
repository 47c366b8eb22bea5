#include "io/XMLElement.h"

#include "io/Utf8.h"

#include <tinyxml2.h>

namespace Orvo {

XMLElement::XMLElement(tinyxml2::XMLElement* element, XMLElement* parent)
    : element_(element), view_(element), parent_(parent) {}

XMLElement::XMLElement(const XMLView& view, XMLElement* parent) : view_(view), parent_(parent) {}

XMLElement::~XMLElement() = default;

bool XMLElement::GetAttribute(const std::wstring& name, std::wstring& value) const {
  const std::string narrowName = ToUtf8(name);
  const std::string_view names[] = {narrowName};
  std::string_view text;
  if (!view_.Attributes(names, &text)) {
    return false;
  }
  AssignFromUtf8(text, &value);
  return true;
}

void XMLElement::SetAttributes(
    const std::vector<std::pair<std::wstring, std::wstring>>& attributes) {
  for (const auto& [name, value] : attributes) {
    element_->SetAttribute(ToUtf8(name).c_str(), ToUtf8(value).c_str());
  }
}

std::wstring XMLElement::GetText() const {
  std::string room;
  return FromUtf8(view_.Text(&room));
}

void XMLElement::SetText(const std::wstring& text) {
  if (element_ != nullptr) {
    element_->InsertEndChild(element_->GetDocument()->NewText(ToUtf8(text).c_str()));
  }
}

void XMLElement::SetVersion(int version) {
  SetAttributes({{L"Version", std::to_wstring(version)}});
}

std::wstring XMLElement::GetName() const { return FromUtf8(view_.Name()); }

}  // namespace Orvo
