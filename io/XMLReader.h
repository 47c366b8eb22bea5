#pragma once

#include "io/FileBytes.h"
#include "io/PlainXml.h"
#include "io/XMLDocument.h"

#include <Orvo/ISerializableXML.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <deque>
#include <string>
#include <string_view>

namespace Orvo {

/// Reads one XML file. Every value comes from the first child element of its name; a null parent
/// means the document.
///
/// A file of the plain form is read in place, any other one through the XML parser.
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

  /// Loads a file. False where it can't be read whole, is no XML or has a tag of more than 1000
  /// attributes.
  bool LoadFile(const std::wstring& path);

  XMLElement* RootElement(const std::wstring& name);
  XMLElement* FirstChildElement(const std::wstring& name, XMLElement* parent);
  XMLElement* NextSiblingElement(const std::wstring& name, XMLElement* current, XMLElement* parent);

  /// Hands out an element that was found; null for none.
  XMLElement* Wrap(const XMLView& view, XMLElement* parent);

  /// An element that was handed out, or the document for null.
  XMLView View(const XMLElement* element) const;

  // These read an element itself, and fail where there is none.
  static bool ReadText(const XMLView& element, std::string_view& value, std::string* room);
  static bool ReadString(const XMLView& element, std::wstring& value);
  static bool ReadInt(const XMLView& element, int& value);
  static bool ReadDouble(const XMLView& element, double& value);
  static bool ReadBool(const XMLView& element, bool& value);
  static bool ReadVector3D(const XMLView& element, Vector3D& value);
  static bool ReadMatrix43(const XMLView& element, Matrix43& value);

  /// Reads a text as ReadString() does, into room of the reader; null where there is no element. It
  /// holds until the next word.
  const std::wstring* ReadWord(const XMLView& element);

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
  XMLView Child(const std::wstring& name, const XMLElement* parent) const;

  FileBytes bytes_;
  PlainXml plain_;
  bool isPlain_ = false;
  XMLDocument document_;
  std::deque<XMLElement> elements_;
  std::wstring word_;
};

}  // namespace Orvo
