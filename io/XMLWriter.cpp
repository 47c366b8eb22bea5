#include "io/XMLWriter.h"

#include "geometry/NumberText.h"

namespace Orvo {

namespace {

constexpr int Decimals = 6;

std::wstring FixedText(double value) {
  std::string text;
  AppendFixed(value, Decimals, 0, &text);
  return std::wstring(text.begin(), text.end());
}

}  // namespace

XMLWriter::XMLWriter() = default;

XMLWriter::~XMLWriter() = default;

void XMLWriter::AddDeclaration() { document_.AddDeclaration(); }

bool XMLWriter::SaveFile(const std::wstring& path) { return document_.SaveFile(path); }

XMLElement* XMLWriter::NewRootElement(const std::wstring& name) {
  return document_.ErrorID() > 0 ? nullptr : document_.NewElement(name, nullptr);
}

XMLElement* XMLWriter::NewChildElement(const std::wstring& name, XMLElement* parent) {
  return document_.NewElement(name, parent);
}

void XMLWriter::WriteString(const std::wstring& name, const std::wstring& value,
                            XMLElement* parent) {
  NewChildElement(name, parent)->SetText(value);
}

void XMLWriter::WriteInt(const std::wstring& name, int value, XMLElement* parent) {
  WriteString(name, std::to_wstring(value), parent);
}

void XMLWriter::WriteDouble(const std::wstring& name, double value, XMLElement* parent) {
  WriteString(name, FixedText(value), parent);
}

void XMLWriter::WriteBool(const std::wstring& name, bool value, XMLElement* parent) {
  WriteString(name, value ? L"true" : L"false", parent);
}

void XMLWriter::WriteVector3D(const std::wstring& name, const Vector3D& value, XMLElement* parent) {
  NewChildElement(name, parent)
      ->SetAttributes(
          {{L"X", FixedText(value[0])}, {L"Y", FixedText(value[1])}, {L"Z", FixedText(value[2])}});
}

void XMLWriter::WriteMatrix43(const std::wstring& name, const Matrix43& value, XMLElement* parent) {
  Matrix43 frame(value);
  XMLElement* const element = NewChildElement(name, parent);
  WriteVector3D(L"U", frame.GetU(), element);
  WriteVector3D(L"V", frame.GetV(), element);
  WriteVector3D(L"W", frame.GetW(), element);
  WriteVector3D(L"T", frame.GetTrans(), element);
}

bool XMLWriter::WriteObject(ISerializableXML& object, XMLElement* parent) {
  return object.SerializeXML(*this, parent);
}

}  // namespace Orvo
