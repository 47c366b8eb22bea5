#pragma once

#include <Orvo/Export.h>

namespace Orvo {

class XMLElement;
class XMLReader;
class XMLWriter;

/// Is implemented by every class that a machine file stores.
///
/// The two operations are called by the library's own reader and writer, which stay internal:
/// Kin::Machine::ReadXML and Kin::Machine::WriteXML are the way in.
class ORVO_API ISerializableXML {
 public:
  ISerializableXML() = default;

  /// Copies nothing: there are no contents here.
  ISerializableXML(const ISerializableXML& other) = default;

  /// Assigns nothing.
  ISerializableXML& operator=(const ISerializableXML& other) = default;

 protected:
  friend class XMLReader;
  friend class XMLWriter;

  /// Appends this object's content under @p parent; null means the document itself.
  /// @return false when an element could not be created or a part could not be written
  virtual bool SerializeXML(XMLWriter& writer, XMLElement* parent) = 0;

  /// Reads this object's content from @p parent; null means the document itself.
  /// @return false when something required is missing; what was read before it stays
  /// @throws std::invalid_argument, std::out_of_range for a text that is no number
  virtual bool DeserializeXML(XMLReader& reader, XMLElement* parent) = 0;

 public:
  virtual ~ISerializableXML();
};

}  // namespace Orvo
