#include "io/XMLView.h"

#include <tinyxml2.h>

#include <cstring>

namespace Orvo {

namespace {

const tinyxml2::XMLElement& AsElement(const tinyxml2::XMLNode& node) {
  return static_cast<const tinyxml2::XMLElement&>(node);
}

bool IsSame(const char* text, std::string_view other) {
  return std::strncmp(text, other.data(), other.size()) == 0 && text[other.size()] == '\0';
}

}  // namespace

XMLView XMLView::FirstChild() const {
  return plain_ != nullptr ? At(plain_->FirstChild(place_)) : XMLView(node_->FirstChildElement());
}

XMLView XMLView::NextSibling() const {
  return plain_ != nullptr ? At(plain_->NextSibling(place_)) : XMLView(node_->NextSiblingElement());
}

std::string_view XMLView::Name() const {
  return plain_ != nullptr ? plain_->Name(place_) : std::string_view(AsElement(*node_).Name());
}

bool XMLView::HasName(std::string_view name) const {
  return plain_ != nullptr ? plain_->HasName(place_, name) : IsSame(AsElement(*node_).Name(), name);
}

std::string_view XMLView::Text(std::string* room) const {
  if (plain_ != nullptr) {
    return plain_->Text(place_, room);
  }
  const char* const text = AsElement(*node_).GetText();
  return text == nullptr ? std::string_view() : std::string_view(text);
}

bool XMLView::Attributes(std::span<const std::string_view> names, std::string_view* values) const {
  if (plain_ != nullptr) {
    return plain_->Attributes(place_, names, values);
  }
  const tinyxml2::XMLElement& element = AsElement(*node_);
  for (std::size_t i = 0; i < names.size(); ++i) {
    const tinyxml2::XMLAttribute* attribute = element.FirstAttribute();
    while (attribute != nullptr && !IsSame(attribute->Name(), names[i])) {
      attribute = attribute->Next();
    }
    if (attribute == nullptr) {
      return false;
    }
    values[i] = attribute->Value();
  }
  return true;
}

XMLView FindChild(const XMLView& parent, std::string_view name) {
  XMLView child = parent.FirstChild();
  while (!child.IsNull() && !child.HasName(name)) {
    child = child.NextSibling();
  }
  return child;
}

void FindChildren(const XMLView& parent, std::span<const std::string_view> names,
                  XMLView* children) {
  std::size_t expected = 0;
  for (XMLView child = parent.FirstChild(); !child.IsNull(); child = child.NextSibling()) {
    for (std::size_t i = 0; i < names.size(); ++i) {
      const std::size_t place = (expected + i) % names.size();
      if (child.HasName(names[place])) {
        if (children[place].IsNull()) {
          children[place] = child;
        }
        expected = place + 1;
        break;
      }
    }
  }
}

}  // namespace Orvo
