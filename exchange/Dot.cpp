#include "exchange/ByteSink.h"
#include "exchange/MachineWords.h"
#include "exchange/TextEncoding.h"

#include <Orvo/Exchange/Dot.h>
#include <Orvo/Kin/EntityLink.h>
#include <Orvo/Kin/ProgramSystem.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <unordered_map>
#include <vector>

namespace Orvo::Exchange {
namespace {

using Kin::Entity;

constexpr std::size_t ChunkSize = 65536;

/// A text between quotes; control characters become blanks.
std::string Quoted(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else {
      out += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
    }
  }
  return out + "\"";
}

template <typename Words>
std::string WordOf(const Words& words, int value) {
  const auto place = static_cast<std::size_t>(value);
  return value >= 0 && place < words.size() ? std::string(words[place]) : std::to_string(value);
}

std::string RegisterText(const Kin::Register& reg) {
  return reg.IsDefined() ? std::to_string(reg.GetVal()) : "-";
}

/// The lines of a label are texts of their own: "\n" between them must not be escaped.
std::string Label(const std::vector<std::string>& lines) {
  std::string label = "\"";
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string quoted = Quoted(lines[i]);
    label += (i == 0 ? "" : "\\n") + quoted.substr(1, quoted.size() - 2);
  }
  return label + "\"";
}

std::string NodeText(const Entity& entity, std::size_t place) {
  const int kind = entity.GetEntityLink().GetEntityLinkType();
  std::vector<std::string> lines = {
      std::to_string(entity.GetEntityId().GetVal()) + " " + Utf8FromWide(entity.GetEntityName()),
      WordOf(TypeWords, entity.GetEntityType()) + " " + WordOf(LinkTypeWords, kind)};
  const bool isAxis = kind == Kin::EntityLinkTypeLinear || kind == Kin::EntityLinkTypeRotary;
  if (isAxis || entity.GetRegister().IsDefined()) {
    lines.push_back("register " + RegisterText(entity.GetRegister()));
  }
  if (isAxis && entity.GetCheckRangeAxis()) {
    std::string range;
    AppendNumber(entity.GetRangeMin(), &range);
    range += " .. ";
    AppendNumber(entity.GetRangeMax(), &range);
    lines.push_back(range);
  }
  const char* shape = "box";
  if (entity.GetEntityType() == Kin::EntityTypeHead) {
    shape = "house";
  } else if (entity.GetEntityType() == Kin::EntityTypeTable) {
    shape = "invhouse";
  } else if (kind == Kin::EntityLinkTypeRotary) {
    shape = "ellipse";
  }
  return "  e" + std::to_string(place) + " [shape=" + shape + ", label=" + Label(lines) + "];\n";
}

void WriteSystem(Kin::ProgramSystem system, std::size_t place,
                 const std::vector<std::size_t>& heads, const std::vector<std::size_t>& tables,
                 std::string* text) {
  std::string linear = "linear";
  std::string rotary = "rotary";
  for (int i = 0; i < 3; ++i) {
    linear += " " + RegisterText(system.GetMainLinear(i));
  }
  for (int i = 0; i < 2; ++i) {
    rotary += " " + RegisterText(system.GetMainRotary(i));
  }
  const std::string name = "p" + std::to_string(place);
  *text += "  " + name + " [shape=note, style=filled, fillcolor=lightyellow, label=" +
           Label({Utf8FromWide(system.GetProgramSystemName()), linear, rotary,
                  WordOf(PolicyWords, system.GetRotariesCompute())}) +
           "];\n";
  const auto point = [&](int index, const std::vector<std::size_t>& places, const char* what) {
    if (index >= 0 && static_cast<std::size_t>(index) < places.size()) {
      *text += "  " + name + " -> e" + std::to_string(places[static_cast<std::size_t>(index)]) +
               " [style=dashed, constraint=false, label=\"" + what + "\"];\n";
    }
  };
  point(system.GetHeadIndex().GetVal(), heads, "head");
  point(system.GetTableIndex().GetVal(), tables, "table");
}

}  // namespace

void WriteDot(const Kin::Machine& machine, std::ostream& out) {
  std::string text = "digraph machine {\n  node [fontname=\"sans-serif\"];\n";
  const auto passOn = [&](std::size_t from) {
    if (text.size() >= from) {
      WriteBytes(text, out);
      text.clear();
    }
  };
  std::unordered_map<int, std::size_t> placeOfId;
  std::vector<std::size_t> heads;
  std::vector<std::size_t> tables;
  std::size_t place = 0;
  for (const Entity& entity : machine.GetKinematic().GetListEntity()) {
    text += NodeText(entity, place);
    passOn(ChunkSize);
    // Of elements with equal ids the last one counts.
    placeOfId[entity.GetEntityId().GetVal()] = place;
    if (entity.GetEntityType() == Kin::EntityTypeHead) {
      heads.push_back(place);
    } else if (entity.GetEntityType() == Kin::EntityTypeTable) {
      tables.push_back(place);
    }
    ++place;
  }
  place = 0;
  for (const Entity& entity : machine.GetKinematic().GetListEntity()) {
    const auto parent = placeOfId.find(entity.GetParentEntityId().GetVal());
    if (entity.GetParentEntityId().IsDefined() && parent != placeOfId.end()) {
      text += "  e" + std::to_string(parent->second) + " -> e" + std::to_string(place) + ";\n";
      passOn(ChunkSize);
    }
    ++place;
  }
  place = 0;
  for (const Kin::ProgramSystem& system : machine.GetListProgramSystem()) {
    WriteSystem(system, place, heads, tables, &text);
    passOn(ChunkSize);
    ++place;
  }
  text += "}\n";
  passOn(0);
  FinishStream(out);
}

}  // namespace Orvo::Exchange
