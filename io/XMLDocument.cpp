#include "io/XMLDocument.h"

#include "io/Utf8.h"
#include "io/WideFile.h"

namespace Orvo {

XMLDocument::XMLDocument() : document_(true, tinyxml2::PRESERVE_WHITESPACE) {}

XMLDocument::~XMLDocument() = default;

// Deliberate: the parser opens the file by its narrow name, so the file system sees UTF-8.
bool XMLDocument::LoadFile(const std::wstring& path) {
  return path.find(L'\0') == std::wstring::npos &&
         document_.LoadFile(ToUtf8(path).c_str()) == tinyxml2::XML_SUCCESS;
}

// The stream is ours, because the parser's own way of saving doesn't see a full disk.
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
