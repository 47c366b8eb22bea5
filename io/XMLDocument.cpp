#include "io/XMLDocument.h"

#include "io/AttributeLimit.h"
#include "io/Utf8.h"
#include "io/WideFile.h"

namespace Orvo {

XMLDocument::XMLDocument() : document_(true, tinyxml2::PRESERVE_WHITESPACE) {}

XMLDocument::~XMLDocument() = default;

// The stream is ours, here and below: the parser would leave its own open when memory fails, and
// would not see a full disk.
bool XMLDocument::LoadFile(const std::wstring& path) {
  WideFile file(path, WideFile::Mode::Read);
  if (!file.IsOpen()) {
    return false;
  }
  const long size = file.Rewind();
  return size >= 0 && IsWithinAttributeLimit(&file, static_cast<std::size_t>(size)) &&
         file.Rewind() >= 0 && document_.LoadFile(file.Stream()) == tinyxml2::XML_SUCCESS;
}

bool XMLDocument::SaveFile(const std::wstring& path) {
  WideFile file(path, WideFile::Mode::WriteText);
  return file.IsOpen() && document_.SaveFile(file.Stream(), false) == tinyxml2::XML_SUCCESS &&
         file.Close();
}

int XMLDocument::ErrorID() const { return document_.ErrorID(); }

XMLElement* XMLDocument::NewElement(const std::wstring& name, XMLElement* parent) {
  tinyxml2::XMLElement* const element = document_.NewElement(ToUtf8(name).c_str());
  if (element == nullptr) {
    return nullptr;
  }
  Node(parent)->InsertEndChild(element);
  return Wrap(element, parent, name);
}

void XMLDocument::AddDeclaration() { document_.InsertEndChild(document_.NewDeclaration(nullptr)); }

XMLElement* XMLDocument::FirstChildElement(const std::wstring& name, XMLElement* parent) {
  return Wrap(Node(parent)->FirstChildElement(ToUtf8(name).c_str()), parent, name);
}

XMLElement* XMLDocument::RootElement(const std::wstring& name) {
  return FirstChildElement(name, nullptr);
}

XMLElement* XMLDocument::NextSiblingElement(const std::wstring& name, XMLElement* current,
                                            XMLElement* parent) {
  return Wrap(current->GetElement()->NextSiblingElement(ToUtf8(name).c_str()), parent, name);
}

XMLElement* XMLDocument::Wrap(tinyxml2::XMLElement* element, XMLElement* parent,
                              const std::wstring& name) {
  return element == nullptr ? nullptr : &elements_.emplace_back(element, parent, name);
}

tinyxml2::XMLNode* XMLDocument::Node(XMLElement* element) {
  if (element == nullptr) {
    return &document_;
  }
  return element->GetElement();
}

}  // namespace Orvo
