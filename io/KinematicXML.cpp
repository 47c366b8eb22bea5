#include "io/XMLReader.h"
#include "io/XMLWriter.h"
#include "model/KinematicImplementation.h"

#include <Orvo/Kin/Kinematic.h>

namespace Orvo::Kin {

bool Kinematic::SerializeXML(XMLWriter& writer, XMLElement* parent) {
  for (Entity& entity : implementation_->entities) {
    if (!writer.WriteObject(entity, writer.NewChildElement(L"Entity", parent))) {
      return false;
    }
  }
  return true;
}

// What was read before a failure stays, the unfinished element included.
bool Kinematic::DeserializeXML(XMLReader& reader, XMLElement* parent) {
  for (XMLView child = reader.View(parent).FirstChild(); !child.IsNull();
       child = child.NextSibling()) {
    if (child.HasName("Entity")) {
      implementation_->entities.emplace_back();
      XMLElement element(child, parent);
      if (!reader.ReadObject(implementation_->entities.back(), &element)) {
        return false;
      }
    }
  }
  return true;
}

}  // namespace Orvo::Kin
