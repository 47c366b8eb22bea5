#pragma once

#include "io/XMLDocument.h"

#include <Orvo/ISerializableXML.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <string>

namespace Orvo {

/// Reads one XML file. Every value comes from the first child element of its name; a null parent
/// means the document.
///
/// A read returns false, and leaves its output untouched, where the child or a part of it is
/// absent. Deliberate: a text where a number must stand throws instead, as ParseDouble() and
/// ParseInt() do, and nothing below the caller of the whole read catches it.
class XMLReader {
 public:
  XMLReader();
  XMLReader(const XMLReader&) = delete;
  XMLReader& operator=(const XMLReader&) = delete;
  virtual ~XMLReader();

  bool LoadFile(const std::wstring& path);
  XMLElement* RootElement(const std::wstring& name);
  XMLElement* FirstChildElement(const std::wstring& name, XMLElement* parent);
  XMLElement* NextSiblingElement(const std::wstring& name, XMLElement* current, XMLElement* parent);

  bool ReadString(const std::wstring& name, std::wstring& value, XMLElement* parent);
  bool ReadInt(const std::wstring& name, int& value, XMLElement* parent);
  bool ReadDouble(const std::wstring& name, double& value, XMLElement* parent);

  /// Reads exactly "true" or "false"; false for any other text.
  bool ReadBool(const std::wstring& name, bool& value, XMLElement* parent);

  /// Reads the attributes "X", "Y" and "Z"; all are fetched before the first is converted.
  bool ReadVector3D(const std::wstring& name, Vector3D& value, XMLElement* parent);

  /// Reads the children "U", "V", "W" and "T". Deliberate: the frame's kind becomes
  /// RotationTranslation, whatever the values.
  bool ReadMatrix43(const std::wstring& name, Matrix43& value, XMLElement* parent);

  bool ReadObject(ISerializableXML& object, XMLElement* parent);

 private:
  XMLDocument document_;
};

}  // namespace Orvo
