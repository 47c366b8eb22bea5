#include "io/NumberParse.h"
#include "io/XMLReader.h"
#include "io/XMLWriter.h"
#include "model/ProgramSystemImplementation.h"
#include "model/Words.h"

#include <Orvo/Kin/ProgramSystem.h>

#include <cstddef>
#include <utility>
#include <vector>

namespace Orvo::Kin {

namespace {

const wchar_t* const LinearAttributes[3] = {L"RegX", L"RegY", L"RegZ"};
const wchar_t* const RotaryAttributes[2] = {L"RegR0", L"RegR1"};

// Writes registers as the attributes of one element.
template <std::size_t Size>
void WriteRegisters(XMLWriter& writer, const std::wstring& name, XMLElement* parent,
                    const wchar_t* const (&attributes)[Size], const Register (&registers)[Size]) {
  std::vector<std::pair<std::wstring, std::wstring>> values;
  for (std::size_t i = 0; i < Size; ++i) {
    values.emplace_back(attributes[i], std::to_wstring(registers[i].GetVal()));
  }
  writer.NewChildElement(name, parent)->SetAttributes(values);
}

// Reads them back: all attributes are fetched, then all converted, then all stored.
template <std::size_t Size>
bool ReadRegisters(XMLReader& reader, const std::wstring& name, XMLElement* parent,
                   const wchar_t* const (&attributes)[Size], Register (&registers)[Size]) {
  const XMLElement* const element = reader.FirstChildElement(name, parent);
  if (element == nullptr) {
    return false;
  }
  std::wstring texts[Size];
  for (std::size_t i = 0; i < Size; ++i) {
    if (!element->GetAttribute(attributes[i], texts[i])) {
      return false;
    }
  }
  Register values[Size];
  for (std::size_t i = 0; i < Size; ++i) {
    values[i] = Register(ParseInt(texts[i]));
  }
  for (std::size_t i = 0; i < Size; ++i) {
    registers[i] = values[i];
  }
  return true;
}

}  // namespace

bool ProgramSystem::SerializeXML(XMLWriter& writer, XMLElement* parent) {
  const ProgramSystemImplementation& programSystem = *implementation_;
  std::wstring word;
  if (!RotariesComputeWords.Name(programSystem.rotariesCompute, &word)) {
    return false;
  }
  writer.WriteString(L"ProgramSystemName", programSystem.name, parent);
  writer.WriteInt(L"TableIndex", programSystem.tableIndex.GetVal(), parent);
  writer.WriteInt(L"HeadIndex", programSystem.headIndex.GetVal(), parent);
  WriteRegisters(writer, L"MainLinear", parent, LinearAttributes, programSystem.mainLinear);
  WriteRegisters(writer, L"MainRotary", parent, RotaryAttributes, programSystem.mainRotary);
  writer.WriteString(L"RotariesCompute", word, parent);
  return true;
}

bool ProgramSystem::DeserializeXML(XMLReader& reader, XMLElement* parent) {
  ProgramSystemImplementation& programSystem = *implementation_;
  // Files of the past misspell the name's element.
  if (!reader.ReadString(L"ProgramSystemName", programSystem.name, parent) &&
      !reader.ReadString(L"ProgramminSystemName", programSystem.name, parent)) {
    return false;
  }
  int tableIndex = 0;
  if (!reader.ReadInt(L"TableIndex", tableIndex, parent)) {
    return false;
  }
  programSystem.tableIndex = TableIndex(tableIndex);
  int headIndex = 0;
  if (!reader.ReadInt(L"HeadIndex", headIndex, parent)) {
    return false;
  }
  programSystem.headIndex = HeadIndex(headIndex);
  if (!ReadRegisters(reader, L"MainLinear", parent, LinearAttributes, programSystem.mainLinear) ||
      !ReadRegisters(reader, L"MainRotary", parent, RotaryAttributes, programSystem.mainRotary)) {
    return false;
  }
  // An absent or unknown policy leaves the one that there is.
  std::wstring word;
  if (reader.ReadString(L"RotariesCompute", word, parent)) {
    RotariesComputeWords.Find(word, &programSystem.rotariesCompute);
  }
  return true;
}

}  // namespace Orvo::Kin
