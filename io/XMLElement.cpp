#include "io/XMLElement.h"

#include "io/Utf8.h"

#include <tinyxml2.h>

namespace Orvo {

XMLElement::XMLElement(tinyxml2::XMLElement* element, XMLElement* parent, std::wstring name)
    : element_(element), parent_(parent), name_(std::move(name)) {}

XMLElement::~XMLElement() = default;

bool XMLElement::GetAttribute(const std::wstring& name, std::wstring& value) const {
  const char* const text = element_->Attribute(ToUtf8(name).c_str());
  if (text == nullptr) {
    return false;
  }
  value = FromUtf8(text);
  return true;
}

void XMLElement::SetAttributes(
    const std::vector<std::pair<std::wstring, std::wstring>>& attributes) {
  for (const auto& [name, value] : attributes) {
    element_->SetAttribute(ToUtf8(name).c_str(), ToUtf8(value).c_str());
  }
}

std::wstring XMLElement::GetText() const {
  const char* const text = element_->GetText();
  return text == nullptr ? std::wstring() : FromUtf8(text);
}

void XMLElement::SetText(const std::wstring& text) {
  if (element_ != nullptr) {
    element_->InsertEndChild(element_->GetDocument()->NewText(ToUtf8(text).c_str()));
  }
}

void XMLElement::SetVersion(int version) {
  SetAttributes({{L"Version", std::to_wstring(version)}});
}

}  // namespace Orvo
