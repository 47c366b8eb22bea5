#include "io/XMLReader.h"

#include "io/NumberParse.h"
#include "io/Utf8.h"

namespace Orvo {

XMLReader::XMLReader() = default;

XMLReader::~XMLReader() = default;

bool XMLReader::LoadFile(const std::wstring& path) {
  if (!bytes_.Load(path)) {
    return false;
  }
  isPlain_ = plain_.Parse(bytes_.View());
  if (isPlain_) {
    return true;
  }
  const bool isParsed = document_.Parse(bytes_.View());
  bytes_.Release();
  return isParsed;
}

XMLElement* XMLReader::RootElement(const std::wstring& name) {
  return FirstChildElement(name, nullptr);
}

XMLElement* XMLReader::FirstChildElement(const std::wstring& name, XMLElement* parent) {
  return Wrap(Child(name, parent), parent);
}

XMLElement* XMLReader::NextSiblingElement(const std::wstring& name, XMLElement* current,
                                          XMLElement* parent) {
  const std::string narrowName = ToUtf8(name);
  XMLView next = current->View().NextSibling();
  while (!next.IsNull() && !next.HasName(narrowName)) {
    next = next.NextSibling();
  }
  return Wrap(next, parent);
}

XMLElement* XMLReader::Wrap(const XMLView& view, XMLElement* parent) {
  return view.IsNull() ? nullptr : &elements_.emplace_back(view, parent);
}

XMLView XMLReader::View(const XMLElement* element) const {
  if (element != nullptr) {
    return element->View();
  }
  return isPlain_ ? XMLView(plain_, PlainXml::Document) : document_.View();
}

XMLView XMLReader::Child(const std::wstring& name, const XMLElement* parent) const {
  return FindChild(View(parent), ToUtf8(name));
}

bool XMLReader::ReadText(const XMLView& element, std::string_view& value, std::string* room) {
  if (element.IsNull()) {
    return false;
  }
  value = element.Text(room);
  return true;
}

bool XMLReader::ReadString(const XMLView& element, std::wstring& value) {
  if (element.IsNull()) {
    return false;
  }
  std::string room;
  AssignFromUtf8(element.Text(&room), &value);
  return true;
}

const std::wstring* XMLReader::ReadWord(const XMLView& element) {
  return ReadString(element, word_) ? &word_ : nullptr;
}

bool XMLReader::ReadInt(const XMLView& element, int& value) {
  if (element.IsNull()) {
    return false;
  }
  std::string room;
  value = ParseInt(element.Text(&room));
  return true;
}

bool XMLReader::ReadDouble(const XMLView& element, double& value) {
  if (element.IsNull()) {
    return false;
  }
  std::string room;
  value = ParseDouble(element.Text(&room));
  return true;
}

bool XMLReader::ReadBool(const XMLView& element, bool& value) {
  std::string room;
  std::string_view text;
  if (!ReadText(element, text, &room) || (text != "true" && text != "false")) {
    return false;
  }
  value = text == "true";
  return true;
}

bool XMLReader::ReadVector3D(const XMLView& element, Vector3D& value) {
  static constexpr std::string_view Names[] = {"X", "Y", "Z"};
  std::string_view texts[3];
  if (element.IsNull() || !element.Attributes(Names, texts)) {
    return false;
  }
  // One after the other, so that the first text that is no number is the one that throws.
  const double x = ParseDouble(texts[0]);
  const double y = ParseDouble(texts[1]);
  const double z = ParseDouble(texts[2]);
  value.Set(x, y, z);
  return true;
}

bool XMLReader::ReadMatrix43(const XMLView& element, Matrix43& value) {
  static constexpr std::string_view Names[] = {"U", "V", "W", "T"};
  if (element.IsNull()) {
    return false;
  }
  const auto children = FindChildren(element, Names);
  Vector3D columns[4];
  for (std::size_t i = 0; i < 4; ++i) {
    if (!ReadVector3D(children[i], columns[i])) {
      return false;
    }
  }
  value.SetUVWT(columns[0], columns[1], columns[2], columns[3]);
  return true;
}

bool XMLReader::ReadString(const std::wstring& name, std::wstring& value, XMLElement* parent) {
  return ReadString(Child(name, parent), value);
}

bool XMLReader::ReadInt(const std::wstring& name, int& value, XMLElement* parent) {
  return ReadInt(Child(name, parent), value);
}

bool XMLReader::ReadDouble(const std::wstring& name, double& value, XMLElement* parent) {
  return ReadDouble(Child(name, parent), value);
}

bool XMLReader::ReadBool(const std::wstring& name, bool& value, XMLElement* parent) {
  return ReadBool(Child(name, parent), value);
}

bool XMLReader::ReadVector3D(const std::wstring& name, Vector3D& value, XMLElement* parent) {
  return ReadVector3D(Child(name, parent), value);
}

bool XMLReader::ReadMatrix43(const std::wstring& name, Matrix43& value, XMLElement* parent) {
  return ReadMatrix43(Child(name, parent), value);
}

bool XMLReader::ReadObject(ISerializableXML& object, XMLElement* parent) {
  return object.DeserializeXML(*this, parent);
}

}  // namespace Orvo
