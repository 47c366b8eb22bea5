#include "io/XMLDocument.h"

#include "io/AttributeLimit.h"
#include "io/FileBytes.h"
#include "io/Utf8.h"
#include "io/WideFile.h"

namespace Orvo {

XMLDocument::XMLDocument() : document_(true, tinyxml2::PRESERVE_WHITESPACE) {}

XMLDocument::~XMLDocument() = default;

bool XMLDocument::LoadFile(const std::wstring& path) {
  FileBytes bytes;
  return bytes.Load(path) && Parse(bytes.View());
}

bool XMLDocument::Parse(std::string_view text) {
  return IsWithinAttributeLimit(text) &&
         document_.Parse(text.data(), text.size()) == tinyxml2::XML_SUCCESS;
}

// The stream is ours: the parser would leave its own open when memory fails, and would not see a
// full disk.
bool XMLDocument::SaveFile(const std::wstring& path) {
  WideFile file(path, WideFile::Mode::Write);
  return file.IsOpen() && document_.SaveFile(file.Stream(), false) == tinyxml2::XML_SUCCESS &&
         file.Close();
}

int XMLDocument::ErrorID() const { return document_.ErrorID(); }

XMLElement* XMLDocument::NewElement(const std::wstring& name, XMLElement* parent) {
  tinyxml2::XMLElement* const element = document_.NewElement(ToUtf8(name).c_str());
  if (element == nullptr) {
    return nullptr;
  }
  if (parent == nullptr) {
    document_.InsertEndChild(element);
  } else {
    parent->GetElement()->InsertEndChild(element);
  }
  return &elements_.emplace_back(element, parent);
}

void XMLDocument::AddDeclaration() { document_.InsertEndChild(document_.NewDeclaration(nullptr)); }

XMLView XMLDocument::View() const { return XMLView(&document_); }

}  // namespace Orvo
