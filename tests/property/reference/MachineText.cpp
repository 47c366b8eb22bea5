#include "property/reference/MachineText.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <type_traits>

namespace Reference {
namespace {

const char* const LinkWords[] = {"LINEAR",   "ROTARY", "POSITION",      "ABC",  "XYZABC",
                                 "IDENTITY", "XYZIJK", "XYZ_REPSPINDL", "UNDEF"};
const char* const ElementWords[] = {"AXIS", "TABLE", "HEAD"};
const char* const ParallelWords[] = {"CHAIN", "PARALLEL"};
const char* const PolicyWords[] = {"Default", "ShortestWay", "AlphaPositive"};
const char* const SetWords[] = {"MachineStock", "MachinePart", "MachineFixture", "MachineTool"};

std::string Escaped(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == '&') {
      out += "&amp;";
    } else if (c == '<') {
      out += "&lt;";
    } else if (c == '>') {
      out += "&gt;";
    } else {
      out += c;
    }
  }
  return out;
}

// Writes lines, four blanks a level.
class Lines {
 public:
  void Text(const std::string& name, const std::string& text) {
    Indent();
    out_ += "<" + name + ">" + Escaped(text) + "</" + name + ">\n";
  }
  void Number(const std::string& name, int value) { Text(name, std::to_string(value)); }
  void Real(const std::string& name, double value) { Text(name, Fixed6(value)); }
  void Flag(const std::string& name, bool value) { Text(name, value ? "true" : "false"); }
  void Raw(const std::string& line) {
    Indent();
    out_ += line + "\n";
  }
  void Point(const std::string& name, double x, double y, double z) {
    Raw("<" + name + " X=\"" + Fixed6(x) + "\" Y=\"" + Fixed6(y) + "\" Z=\"" + Fixed6(z) + "\"/>");
  }
  void Open(const std::string& name, const std::string& attributes = std::string()) {
    Raw("<" + name + attributes + ">");
    ++depth_;
  }
  void Close(const std::string& name) {
    --depth_;
    Raw("</" + name + ">");
  }
  void Empty(const std::string& name) { Raw("<" + name + "/>"); }
  const std::string& Result() const { return out_; }

 private:
  void Indent() { out_ += std::string(static_cast<std::size_t>(4 * depth_), ' '); }

  std::string out_;
  int depth_ = 0;
};

std::string Joined(const std::list<int>& ids) {
  std::string out;
  for (const int id : ids) {
    if (!out.empty()) {
      out += " ";
    }
    out += std::to_string(id);
  }
  return out;
}

void WriteLink(const Link& link, Lines* lines) {
  lines->Open("EntityLink");
  lines->Text("Type", LinkWords[link.type]);
  lines->Point("Center", link.center.x, link.center.y, link.center.z);
  lines->Point("Dir", link.dir.x, link.dir.y, link.dir.z);
  lines->Open("Position");
  const char* const columns[] = {"U", "V", "W", "T"};
  for (int c = 0; c < 4; ++c) {
    const double* column = link.position.m + 4 * c;
    lines->Point(columns[c], column[0], column[1], column[2]);
  }
  lines->Close("Position");
  lines->Real("ZeroRef", link.zeroRef[0]);
  lines->Real("RangeMin", link.rangeMin[0]);
  lines->Real("RangeMax", link.rangeMax[0]);
  lines->Close("EntityLink");
}

void WriteElement(const Element& e, Lines* lines) {
  lines->Open("Entity");
  lines->Text("Name", Utf8(e.name));
  lines->Text("Type", ElementWords[e.type]);
  lines->Text("ParallelType", ParallelWords[e.parallel]);
  lines->Number("Id", e.id);
  lines->Number("ParentId", e.parentId);
  lines->Number("Register", e.reg);
  lines->Flag("Motor", e.motor);
  lines->Flag("RangeAxis", e.checkRange);
  lines->Flag("Mounting", e.mounting);
  WriteLink(e.link, lines);
  if (e.hasMeshes && e.colors.empty()) {
    lines->Empty("Meshes");
  } else if (e.hasMeshes) {
    lines->Open("Meshes");
    for (const unsigned int color : e.colors) {
      lines->Open("Mesh");
      lines->Number("RGB", static_cast<int>(color));
      lines->Close("Mesh");
    }
    lines->Close("Meshes");
  }
  lines->Close("Entity");
}

void WriteProgram(const Program& program, Lines* lines) {
  lines->Open("ProgramSystem");
  lines->Text("ProgramSystemName", Utf8(program.name));
  lines->Number("TableIndex", program.table);
  lines->Number("HeadIndex", program.head);
  lines->Raw("<MainLinear RegX=\"" + std::to_string(program.linear[0]) + "\" RegY=\"" +
             std::to_string(program.linear[1]) + "\" RegZ=\"" + std::to_string(program.linear[2]) +
             "\"/>");
  lines->Raw("<MainRotary RegR0=\"" + std::to_string(program.rotary[0]) + "\" RegR1=\"" +
             std::to_string(program.rotary[1]) + "\"/>");
  lines->Text("RotariesCompute", PolicyWords[program.policy]);
  lines->Close("ProgramSystem");
}

void WriteCollisions(const Machine& machine, Lines* lines) {
  const Collisions& collisions = machine.collisions;
  bool anyPartners = false;
  for (const Element& e : machine.elements) {
    anyPartners = anyPartners || !collisions.Partners(e.id, false).empty();
  }
  bool anySet = false;
  for (int i = 0; i < 4; ++i) {
    anySet = anySet || !collisions.sets[i].empty();
  }
  if (!anyPartners && !anySet) {
    lines->Empty("CollisionCheck");
    return;
  }
  lines->Open("CollisionCheck");
  if (anyPartners) {
    lines->Open("MachineMachines");
    for (const Element& e : machine.elements) {
      const std::list<int> partners = collisions.Partners(e.id, false);
      if (partners.empty()) {
        continue;
      }
      lines->Open("MachineMachine");
      lines->Number("EntityId", e.id);
      lines->Text("EntityIds", Joined(partners));
      lines->Close("MachineMachine");
    }
    lines->Close("MachineMachines");
  }
  for (int i = 0; i < 4; ++i) {
    if (!collisions.sets[i].empty()) {
      lines->Open(SetWords[i]);
      lines->Text("EntityIds", Joined(collisions.sets[i]));
      lines->Close(SetWords[i]);
    }
  }
  lines->Close("CollisionCheck");
}

// What a number is after it went through a file.
double Stored(double value) { return std::strtod(Fixed6(value).c_str(), nullptr); }

Vector StoredPoint(double x, double y, double z) { return {Stored(x), Stored(y), Stored(z), 0.0}; }

bool IsBlank(wchar_t c) {
  return c == L' ' || c == L'\t' || c == L'\n' || c == L'\r' || c == L'\v' || c == L'\f';
}

bool IsCharacter(wchar_t c) {
  const std::uint32_t code =
      static_cast<std::uint32_t>(static_cast<std::make_unsigned_t<wchar_t>>(c));
  return code < 0x110000 && !(code >= 0xD800 && code <= 0xDFFF);
}

// A name after it went through a file: nothing is left of blanks alone, and the two characters of
// a line's end, in either order, come back as one.
std::wstring StoredName(const std::wstring& name) {
  std::wstring out;
  bool blank = true;
  for (std::size_t i = 0; i < name.size() && name[i] != L'\0'; ++i) {
    const wchar_t c = name[i];
    blank = blank && IsBlank(c);
    if (c == L'\r' || c == L'\n') {
      const wchar_t twin = c == L'\r' ? L'\n' : L'\r';
      if (i + 1 < name.size() && name[i + 1] == twin) {
        ++i;
      }
      out += L'\n';
    } else {
      out += IsCharacter(c) ? c : L'\xFFFD';
    }
  }
  return blank ? std::wstring() : out;
}

void AppendElement(const Element& from, Machine* out) {
  out->elements.emplace_back();
  Element& e = out->elements.back();
  e.name = StoredName(from.name);
  e.type = from.type;
  e.parallel = from.parallel;
  e.id = from.id;
  e.parentId = from.parentId;
  e.reg = from.reg;
  e.motor = from.motor;
  e.checkRange = from.checkRange;
  e.mounting = from.mounting;
  e.link.type = from.link.type;
  e.link.center = StoredPoint(from.link.center.x, from.link.center.y, from.link.center.z);
  e.link.dir = StoredPoint(from.link.dir.x, from.link.dir.y, from.link.dir.z);
  MakeUnit(&e.link.dir, 0.001);
  Vector columns[4];
  for (int c = 0; c < 4; ++c) {
    const double* column = from.link.position.m + 4 * c;
    columns[c] = StoredPoint(column[0], column[1], column[2]);
  }
  Frame position;
  position.SetUVWT(columns[0], columns[1], columns[2], columns[3]);
  e.link.position = position;
  e.link.zeroRef[0] = Stored(from.link.zeroRef[0]);
  e.link.rangeMin[0] = Stored(from.link.rangeMin[0]);
  e.link.rangeMax[0] = Stored(from.link.rangeMax[0]);
  e.hasMeshes = !from.colors.empty();
  e.colors = from.colors;
}

}  // namespace

std::string Fixed6(double value) {
  char buffer[400];
  std::snprintf(buffer, sizeof buffer, "%f", value);
  return buffer;
}

std::string Utf8(const std::wstring& text) {
  std::string out;
  for (const wchar_t c : text) {
    if (c == L'\0') {
      break;
    }
    const std::uint32_t code = IsCharacter(c) ? static_cast<std::uint32_t>(c) : 0xFFFD;
    const auto tail = [&out](std::uint32_t bits) {
      out += static_cast<char>(0x80 | (bits & 0x3F));
    };
    if (code < 0x80) {
      out += static_cast<char>(code);
    } else if (code < 0x800) {
      out += static_cast<char>(0xC0 | (code >> 6));
      tail(code);
    } else if (code < 0x10000) {
      out += static_cast<char>(0xE0 | (code >> 12));
      tail(code >> 6);
      tail(code);
    } else {
      out += static_cast<char>(0xF0 | (code >> 18));
      tail(code >> 12);
      tail(code >> 6);
      tail(code);
    }
  }
  return out;
}

bool WriteText(const Machine& machine, std::string* text) {
  for (const Program& program : machine.programs) {
    if (program.policy < 0 || program.policy > 2) {
      return false;
    }
  }
  Lines lines;
  lines.Raw("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
  lines.Open("Machine", " Version=\"0\"");
  if (machine.elements.empty()) {
    lines.Empty("Entities");
  } else {
    lines.Open("Entities");
    for (const Element& e : machine.elements) {
      WriteElement(e, &lines);
    }
    lines.Close("Entities");
  }
  if (machine.programs.empty()) {
    lines.Empty("ProgramSystems");
  } else {
    lines.Open("ProgramSystems");
    for (const Program& program : machine.programs) {
      WriteProgram(program, &lines);
    }
    lines.Close("ProgramSystems");
  }
  WriteCollisions(machine, &lines);
  lines.Close("Machine");
  *text = lines.Result();
  return true;
}

void Append(const Machine& machine, Machine* out) {
  for (const Element& e : machine.elements) {
    AppendElement(e, out);
  }
  for (const Program& from : machine.programs) {
    Program program = from;
    program.name = StoredName(from.name);
    out->programs.push_back(program);
  }
  for (const Element& e : machine.elements) {
    for (const int partner : machine.collisions.Partners(e.id, false)) {
      out->collisions.SetPair(e.id, partner, true);
    }
  }
  for (int i = 0; i < 4; ++i) {
    for (const int id : machine.collisions.sets[i]) {
      out->collisions.Set(i, id, true);
    }
  }
  out->Finish();
}

}  // namespace Reference
