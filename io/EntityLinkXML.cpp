#include "io/XMLReader.h"
#include "io/XMLWriter.h"
#include "model/LinkDirection.h"
#include "model/Words.h"

#include <Orvo/Kin/EntityLink.h>

namespace Orvo::Kin {

bool EntityLink::SerializeXML(XMLWriter& writer, XMLElement* parent) {
  std::wstring word;
  if (!EntityLinkTypeWords.Name(type_, &word)) {
    return false;
  }
  writer.WriteString(L"Type", word, parent);
  writer.WriteVector3D(L"Center", center_, parent);
  writer.WriteVector3D(L"Dir", dir_, parent);
  writer.WriteMatrix43(L"Position", position_, parent);
  writer.WriteDouble(L"ZeroRef", GetZeroRef(), parent);
  writer.WriteDouble(L"RangeMin", GetRangeMin(), parent);
  writer.WriteDouble(L"RangeMax", GetRangeMax(), parent);
  return true;
}

bool EntityLink::DeserializeXML(XMLReader& reader, XMLElement* parent) {
  CountChange();
  std::wstring word;
  if (!reader.ReadString(L"Type", word, parent) || !GetEntityLinkTypeFromDict(word, type_) ||
      !reader.ReadVector3D(L"Center", center_, parent) ||
      !reader.ReadVector3D(L"Dir", dir_, parent)) {
    return false;
  }
  dir_.MakeUnit(SmallestLinkDirection);
  Matrix43 position;
  if (!reader.ReadMatrix43(L"Position", position, parent)) {
    return false;
  }
  position_ = position;
  return reader.ReadDouble(L"ZeroRef", zeroRef_[0], parent) &&
         reader.ReadDouble(L"RangeMin", rangeMin_[0], parent) &&
         reader.ReadDouble(L"RangeMax", rangeMax_[0], parent);
}

}  // namespace Orvo::Kin
