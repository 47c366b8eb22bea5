#include "io/XMLReader.h"

#include "io/NumberParse.h"

namespace Orvo {

XMLReader::XMLReader() = default;

XMLReader::~XMLReader() = default;

bool XMLReader::LoadFile(const std::wstring& path) { return document_.LoadFile(path); }

XMLElement* XMLReader::RootElement(const std::wstring& name) { return document_.RootElement(name); }

XMLElement* XMLReader::FirstChildElement(const std::wstring& name, XMLElement* parent) {
  return document_.FirstChildElement(name, parent);
}

XMLElement* XMLReader::NextSiblingElement(const std::wstring& name, XMLElement* current,
                                          XMLElement* parent) {
  return document_.NextSiblingElement(name, current, parent);
}

bool XMLReader::ReadString(const std::wstring& name, std::wstring& value, XMLElement* parent) {
  const XMLElement* const element = FirstChildElement(name, parent);
  if (element == nullptr) {
    return false;
  }
  value = element->GetText();
  return true;
}

bool XMLReader::ReadInt(const std::wstring& name, int& value, XMLElement* parent) {
  std::wstring text;
  if (!ReadString(name, text, parent)) {
    return false;
  }
  value = ParseInt(text);
  return true;
}

bool XMLReader::ReadDouble(const std::wstring& name, double& value, XMLElement* parent) {
  std::wstring text;
  if (!ReadString(name, text, parent)) {
    return false;
  }
  value = ParseDouble(text);
  return true;
}

bool XMLReader::ReadBool(const std::wstring& name, bool& value, XMLElement* parent) {
  std::wstring text;
  if (!ReadString(name, text, parent) || (text != L"true" && text != L"false")) {
    return false;
  }
  value = text == L"true";
  return true;
}

bool XMLReader::ReadVector3D(const std::wstring& name, Vector3D& value, XMLElement* parent) {
  const XMLElement* const element = FirstChildElement(name, parent);
  std::wstring x;
  std::wstring y;
  std::wstring z;
  if (element == nullptr || !element->GetAttribute(L"X", x) || !element->GetAttribute(L"Y", y) ||
      !element->GetAttribute(L"Z", z)) {
    return false;
  }
  // One after the other, so that the first text that is no number is the one that throws.
  const double xValue = ParseDouble(x);
  const double yValue = ParseDouble(y);
  const double zValue = ParseDouble(z);
  value.Set(xValue, yValue, zValue);
  return true;
}

bool XMLReader::ReadMatrix43(const std::wstring& name, Matrix43& value, XMLElement* parent) {
  XMLElement* const element = FirstChildElement(name, parent);
  Vector3D u;
  Vector3D v;
  Vector3D w;
  Vector3D t;
  if (element == nullptr || !ReadVector3D(L"U", u, element) || !ReadVector3D(L"V", v, element) ||
      !ReadVector3D(L"W", w, element) || !ReadVector3D(L"T", t, element)) {
    return false;
  }
  value.SetUVWT(u, v, w, t);
  return true;
}

bool XMLReader::ReadObject(ISerializableXML& object, XMLElement* parent) {
  return object.DeserializeXML(*this, parent);
}

}  // namespace Orvo
