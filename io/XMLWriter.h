#pragma once

#include "io/XMLDocument.h"

#include <Orvo/ISerializableXML.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <string>

namespace Orvo {

/// Writes one XML file. Every value goes into a new child element; a null parent means the
/// document.
class XMLWriter {
 public:
  XMLWriter();
  XMLWriter(const XMLWriter&) = delete;
  XMLWriter& operator=(const XMLWriter&) = delete;
  virtual ~XMLWriter();

  void AddDeclaration();
  bool SaveFile(const std::wstring& path);

  /// Makes a top-level element; null, and nothing made, where the document has an error.
  XMLElement* NewRootElement(const std::wstring& name);
  XMLElement* NewChildElement(const std::wstring& name, XMLElement* parent);

  void WriteString(const std::wstring& name, const std::wstring& value, XMLElement* parent);
  void WriteInt(const std::wstring& name, int value, XMLElement* parent);

  /// Writes six decimals, in fixed notation.
  void WriteDouble(const std::wstring& name, double value, XMLElement* parent);
  void WriteBool(const std::wstring& name, bool value, XMLElement* parent);

  /// Writes the attributes "X", "Y" and "Z", as WriteDouble() writes its text.
  void WriteVector3D(const std::wstring& name, const Vector3D& value, XMLElement* parent);

  /// Writes the children "U", "V", "W" and "T", as WriteVector3D() writes them.
  void WriteMatrix43(const std::wstring& name, const Matrix43& value, XMLElement* parent);

  bool WriteObject(ISerializableXML& object, XMLElement* parent);

 private:
  XMLDocument document_;
};

}  // namespace Orvo
