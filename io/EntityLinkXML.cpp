#include "io/XMLReader.h"
#include "io/XMLWriter.h"
#include "model/LinkDirection.h"
#include "model/Words.h"

#include <Orvo/Kin/EntityLink.h>

#include <string_view>

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
  enum { Type, Center, Dir, Position, ZeroRef, RangeMin, RangeMax };
  static constexpr std::string_view Names[] = {"Type",    "Center",   "Dir",     "Position",
                                               "ZeroRef", "RangeMin", "RangeMax"};
  const auto children = FindChildren(reader.View(parent), Names);
  const std::wstring* const word = reader.ReadWord(children[Type]);
  if (word == nullptr || !GetEntityLinkTypeFromDict(*word, type_) ||
      !reader.ReadVector3D(children[Center], center_) ||
      !reader.ReadVector3D(children[Dir], dir_)) {
    return false;
  }
  dir_.MakeUnit(SmallestLinkDirection);
  Matrix43 position;
  if (!reader.ReadMatrix43(children[Position], position)) {
    return false;
  }
  position_ = position;
  return reader.ReadDouble(children[ZeroRef], zeroRef_[0]) &&
         reader.ReadDouble(children[RangeMin], rangeMin_[0]) &&
         reader.ReadDouble(children[RangeMax], rangeMax_[0]);
}

}  // namespace Orvo::Kin
