#include "exchange/ByteSink.h"
#include "exchange/JsonTape.h"
#include "exchange/MachineWords.h"
#include "exchange/TextEncoding.h"

#include <Orvo/Exchange/ExchangeError.h>
#include <Orvo/Exchange/MachineJson.h>
#include <Orvo/Kin/CollisionCheck.h>
#include <Orvo/Kin/ProgramSystem.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <istream>
#include <iterator>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Orvo::Exchange {
namespace {

using Json = nlohmann::json;
using Kin::Entity;
using Kin::EntityLink;

constexpr std::int64_t SmallestInt = std::numeric_limits<int>::min();
constexpr std::int64_t LargestInt = std::numeric_limits<int>::max();

/// The largest id or register that a machine takes.
constexpr std::int64_t LargestIndex = 16777215;

/// How far the square of a unit vector's length may be from 1 by rounding.
constexpr double LargestRounding = 4e-15;

/// A shorter direction becomes the X axis, as in links.
constexpr double SmallestDirection = 0.001;

/// The deepest machine has 6: the object, elements, an element, its link, a frame, a column.
constexpr std::size_t LargestDepth = 6;

constexpr std::size_t LargestFaultText = 200;

constexpr std::uint64_t LargestText = 0x7FFFFFFF;

// The setters that a machine and its file reader use; a class that is derived may name them.
struct EntitySetters : Entity {
  static constexpr void (Entity::*setId)(const Kin::EntityId&) = &EntitySetters::SetEntityId;
  static constexpr void (Entity::*setType)(const Kin::EntityType&) = &EntitySetters::SetEntityType;
  static constexpr void (Entity::*setParallelType)(const Kin::EntityParallelType&) =
      &EntitySetters::SetEntityParallelType;
};

/// Hands out a field of a link for change. The link itself is to be changed, its accessor has the
/// field that it keeps; the setters would make the direction unit once more, which moves its last
/// bits, and have only three of the kinds.
template <typename Field>
Field& Stored(const Field& field) {
  return const_cast<Field&>(field);
}

template <typename Enumeration, typename Words>
Enumeration ReadWord(const JsonTape& tape, std::size_t value, const Words& words) {
  const auto found = std::find(words.begin(), words.end(), tape.ReadText(value));
  if (found == words.end()) {
    std::string list;
    for (const std::string_view word : words) {
      list += (list.empty() ? "" : ", ") + std::string(word);
    }
    tape.Fail(value, "one of these words was expected: " + list);
  }
  return static_cast<Enumeration>(found - words.begin());
}

/// Turns the parts of a JSON text into those of a machine.
class MachineBuilder {
 public:
  MachineBuilder(Kin::Machine* machine, const JsonReadOptions& options)
      : machine_(machine), options_(options) {}

  void AddEntity(const JsonTape& tape);
  void AddProgramSystem(const JsonTape& tape);
  void SetCollisionCheck(const JsonTape& tape);
  void ReadHead(const JsonTape& tape, bool isFormat);

  /// What is left when the text has come to its end.
  void Finish();

 private:
  void ReadLink(const JsonTape& tape, std::size_t value, Entity* entity);
  void ReadMeshes(const JsonTape& tape, std::size_t value, Entity* entity);

  Kin::Machine* machine_;
  const JsonReadOptions& options_;
};

std::size_t Require(const JsonTape& tape, std::size_t object, std::size_t value, const char* name) {
  if (value == 0) {
    tape.Fail(object, std::string("the member \"") + name + "\" is missing here");
  }
  return value;
}

Vector3D ReadVector(const JsonTape& tape, std::size_t value) {
  const std::vector<double> numbers = tape.ReadNumbers(value);
  if (numbers.size() != 3) {
    tape.Fail(value, "3 numbers were expected, not " + std::to_string(numbers.size()));
  }
  return Vector3D(numbers[0], numbers[1], numbers[2]);
}

/// A direction that is unit already keeps its bits, and so does one that a link has before any is
/// set or that holds NaN; others are made unit, as the reader of machine files does.
Vector3D ReadDirection(const JsonTape& tape, std::size_t value) {
  Vector3D direction = ReadVector(tape, value);
  const double square = direction.NormSquare();
  if (square != 0.0 && std::abs(square - 1.0) > LargestRounding) {
    direction.MakeUnit(SmallestDirection);
  }
  return direction;
}

Matrix43 ReadFrame(const JsonTape& tape, std::size_t value) {
  const std::vector<std::size_t> columns = tape.Members(value, {"u", "v", "w", "t"});
  const char* const names[] = {"u", "v", "w", "t"};
  double elements[16] = {};
  elements[15] = 1.0;
  std::size_t rowNb = 0;
  for (std::size_t column = 0; column < 4; ++column) {
    const std::size_t place = Require(tape, value, columns[column], names[column]);
    const std::vector<double> numbers = tape.ReadNumbers(place);
    const bool isFirst = column == 0;
    if (isFirst ? numbers.size() != 3 && numbers.size() != 4 : numbers.size() != rowNb) {
      tape.Fail(place, isFirst ? "3 numbers were expected, or 4 in each column"
                               : std::to_string(rowNb) + " numbers were expected, as in \"u\"");
    }
    rowNb = numbers.size();
    std::copy(numbers.begin(), numbers.end(), elements + 4 * column);
  }
  Matrix43 frame;
  if (rowNb == 4) {
    frame = elements;
  } else {
    // As the reader of machine files has it: taken for a rotation and a translation.
    frame.SetUVWT(Vector3D(elements), Vector3D(elements + 4), Vector3D(elements + 8),
                  Vector3D(elements + 12));
  }
  return frame;
}

void ReadSlots(const JsonTape& tape, std::size_t value,
               void (EntityLink::*set)(unsigned int, double), EntityLink* link) {
  if (value == 0) {
    return;
  }
  if (!tape.IsArray(value)) {
    (link->*set)(0, tape.ReadNumber(value));
    return;
  }
  const std::vector<double> slots = tape.ReadNumbers(value);
  if (slots.size() != Kin::LinkSlotCount) {
    tape.Fail(value, "a number was expected, or 6 of them");
  }
  for (unsigned int i = 0; i < Kin::LinkSlotCount; ++i) {
    (link->*set)(i, slots[i]);
  }
}

void MachineBuilder::ReadLink(const JsonTape& tape, std::size_t value, Entity* entity) {
  const std::vector<std::size_t> members =
      tape.Members(value, {"type", "center", "dir", "position", "zeroRef", "rangeMin", "rangeMax"});
  const auto type =
      ReadWord<Kin::EntityLinkType>(tape, Require(tape, value, members[0], "type"), LinkTypeWords);
  EntityLink* const link = entity->GetEntityLinkMod();
  if (members[3] != 0) {
    link->SetEntityLinkPosition(ReadFrame(tape, members[3]));
  }
  Stored(link->GetEntityLinkType()) = type;
  if (members[1] != 0) {
    Stored(link->GetCenter()) = ReadVector(tape, members[1]);
  }
  if (type == Kin::EntityLinkTypeLinear || type == Kin::EntityLinkTypeRotary) {
    Require(tape, value, members[2], "dir");
  }
  if (members[2] != 0) {
    Stored(link->GetDir()) = ReadDirection(tape, members[2]);
  }
  ReadSlots(tape, members[4], &EntityLink::SetZeroRef, link);
  ReadSlots(tape, members[5], &EntityLink::SetRangeMin, link);
  ReadSlots(tape, members[6], &EntityLink::SetRangeMax, link);
}

void MachineBuilder::ReadMeshes(const JsonTape& tape, std::size_t value, Entity* entity) {
  Kin::EntityMesh* const meshes = entity->AllocEntityMesh();
  int index = 0;
  for (const std::size_t item : tape.Items(value)) {
    const std::vector<std::size_t> members = tape.Members(item, {"color", "file"});
    const std::int64_t color =
        tape.ReadInteger(Require(tape, item, members[0], "color"), 0,
                         static_cast<std::int64_t>(std::numeric_limits<unsigned int>::max()));
    auto mesh = std::make_unique<Mesh>();
    meshes->AddMesh(mesh.get(), static_cast<unsigned int>(color));
    static_cast<void>(mesh.release());
    if (members[1] != 0) {
      const std::string_view file = tape.ReadText(members[1]);
      // A file from elsewhere names no files but those beside it.
      if (file.empty() || file.find_first_of(std::string_view("/\\:\0", 4)) != file.npos) {
        tape.Fail(members[1], "the name of a file in the same folder was expected");
      }
      if (options_.readsMeshes) {
        const std::filesystem::path path = options_.meshFolder / PathFromUtf8(file);
        if (!meshes->ReadCadStlBin(WidePath(path), index)) {
          throw ExchangeError(NameOf(path) + ": the file can't be read as binary STL");
        }
      }
    } else if (options_.readsMeshes) {
      tape.Fail(item, "the member \"file\" is missing here");
    }
    ++index;
  }
}

void MachineBuilder::AddEntity(const JsonTape& tape) {
  const std::vector<std::size_t> members =
      tape.Members(0, {"name", "type", "parallelType", "id", "parentId", "register", "motor",
                       "rangeAxis", "mounting", "link", "meshes"});
  const auto index = [&](std::size_t member, const char* name) {
    return tape.ReadInt(Require(tape, 0, members[member], name), SmallestInt, LargestIndex);
  };
  Entity* const entity = machine_->AddEntity();
  entity->SetEntityName(WideFromUtf8(tape.ReadText(Require(tape, 0, members[0], "name"))));
  (entity->*EntitySetters::setType)(
      ReadWord<Kin::EntityType>(tape, Require(tape, 0, members[1], "type"), TypeWords));
  if (members[2] != 0) {
    (entity->*EntitySetters::setParallelType)(
        ReadWord<Kin::EntityParallelType>(tape, members[2], ParallelTypeWords));
  }
  (entity->*EntitySetters::setId)(index(3, "id"));
  entity->SetParentEntityId(
      tape.ReadInt(Require(tape, 0, members[4], "parentId"), SmallestInt, LargestInt));
  entity->SetRegister(index(5, "register"));
  if (members[6] != 0) {
    entity->SetIsMotor(tape.ReadBool(members[6]));
  }
  if (members[7] != 0) {
    entity->SetCheckRangeAxis(tape.ReadBool(members[7]));
  }
  if (members[8] != 0) {
    entity->SetIsMounting(tape.ReadBool(members[8]));
  }
  ReadLink(tape, Require(tape, 0, members[9], "link"), entity);
  if (members[10] != 0) {
    ReadMeshes(tape, members[10], entity);
  }
}

void MachineBuilder::AddProgramSystem(const JsonTape& tape) {
  const std::vector<std::size_t> members =
      tape.Members(0, {"name", "table", "head", "mainLinear", "mainRotary", "rotariesCompute"});
  const auto registers = [&](std::size_t member, const char* name, std::size_t count) {
    const std::size_t value = Require(tape, 0, members[member], name);
    std::vector<int> numbers;
    for (const std::size_t item : tape.Items(value)) {
      numbers.push_back(tape.ReadInt(item, SmallestInt, LargestInt));
    }
    if (numbers.size() != count) {
      tape.Fail(value, std::to_string(count) + " registers were expected");
    }
    return numbers;
  };
  const auto index = [&](std::size_t member, const char* name) {
    return tape.ReadInt(Require(tape, 0, members[member], name), SmallestInt, LargestInt);
  };
  Kin::ProgramSystem system;
  system.SetProgramSystemName(WideFromUtf8(tape.ReadText(Require(tape, 0, members[0], "name"))));
  system.SetTableIndex(index(1, "table"));
  system.SetHeadIndex(index(2, "head"));
  const std::vector<int> linear = registers(3, "mainLinear", 3);
  system.SetMainLinear(linear[0], linear[1], linear[2]);
  const std::vector<int> rotary = registers(4, "mainRotary", 2);
  system.SetMainRotary(rotary[0], rotary[1]);
  if (members[5] != 0) {
    system.SetRotariesCompute(ReadWord<Kin::RotariesCompute>(tape, members[5], PolicyWords));
  }
  machine_->AddProgramSystem(system);
}

void MachineBuilder::SetCollisionCheck(const JsonTape& tape) {
  const std::vector<std::size_t> members =
      tape.Members(0, {"machineMachine", "stock", "part", "fixture", "tool"});
  Kin::CollisionCheck& check = machine_->GetCollisionCheckMod();
  if (members[0] != 0) {
    for (const std::size_t item : tape.Items(members[0])) {
      const std::vector<std::size_t> pair = tape.Members(item, {"id", "partners"});
      const int id = tape.ReadInt(Require(tape, item, pair[0], "id"), SmallestInt, LargestInt);
      for (const std::size_t partner : tape.Items(Require(tape, item, pair[1], "partners"))) {
        check.SetMachineMachine(id, tape.ReadInt(partner, SmallestInt, LargestInt), true);
      }
    }
  }
  using Set = void (Kin::CollisionCheck::*)(const Kin::EntityId&, bool);
  const Set sets[] = {&Kin::CollisionCheck::SetMachineStock, &Kin::CollisionCheck::SetMachinePart,
                      &Kin::CollisionCheck::SetMachineFixture,
                      &Kin::CollisionCheck::SetMachineTool};
  for (std::size_t i = 0; i < std::size(sets); ++i) {
    if (members[i + 1] == 0) {
      continue;
    }
    for (const std::size_t item : tape.Items(members[i + 1])) {
      (check.*sets[i])(tape.ReadInt(item, SmallestInt, LargestInt), true);
    }
  }
}

void MachineBuilder::ReadHead(const JsonTape& tape, bool isFormat) {
  if (isFormat) {
    if (tape.ReadText(0) != JsonFormat) {
      tape.Fail(0, "the format \"" + std::string(JsonFormat) + "\" was expected");
    }
    return;
  }
  if (tape.ReadInteger(0, std::numeric_limits<std::int64_t>::min(),
                       std::numeric_limits<std::int64_t>::max()) != JsonVersion) {
    tape.Fail(0, "version " + std::to_string(JsonVersion) + " was expected; others aren't known");
  }
}

void MachineBuilder::Finish() {
  // Deliberate: a machine that is not valid was read all the same.
  machine_->Finish();
}

/// Takes what the parser meets: cuts the text into elements, program systems and the rest.
class MachineHandler : public nlohmann::json_sax<Json> {
 public:
  explicit MachineHandler(MachineBuilder* builder) : builder_(builder) {}

  bool null() override {
    return Take([&] { tape_.Add(JsonTape::Kind::Null); });
  }
  bool boolean(bool value) override {
    return Take([&] { tape_.Add(value ? JsonTape::Kind::True : JsonTape::Kind::False); });
  }
  bool number_integer(number_integer_t value) override {
    return Take([&] { tape_.AddInteger(value); });
  }
  bool number_unsigned(number_unsigned_t value) override {
    return Take([&] {
      if (value <= static_cast<number_unsigned_t>(std::numeric_limits<std::int64_t>::max())) {
        tape_.AddInteger(static_cast<std::int64_t>(value));
      } else {
        tape_.AddReal(static_cast<double>(value));
      }
    });
  }
  bool number_float(number_float_t value, const string_t& /*text*/) override {
    return Take([&] { tape_.AddReal(value); });
  }
  bool string(string_t& value) override {
    return Take([&] { tape_.AddText(JsonTape::Kind::Text, value); });
  }
  bool binary(binary_t& /*value*/) override { return false; }

  bool start_object(std::size_t /*size*/) override {
    if (depth_ == 0) {
      ++depth_;
      ++token_;
      return true;
    }
    return Open(JsonTape::Kind::Object);
  }
  bool start_array(std::size_t /*size*/) override {
    if (depth_ == 1 && !isStreamed_ && (section_ == Entities || section_ == ProgramSystems)) {
      isStreamed_ = true;
      ++depth_;
      ++token_;
      return true;
    }
    return Open(JsonTape::Kind::Array);
  }
  bool end_object() override { return Close(); }
  bool end_array() override { return Close(); }

  bool key(string_t& name) override {
    if (depth_ > 1) {
      tape_.AddText(JsonTape::Kind::Key, name);
      ++token_;
      return true;
    }
    const auto found = std::find(std::begin(SectionNames), std::end(SectionNames), name);
    if (found == std::end(SectionNames)) {
      throw TokenFault(token_,
                       "this member isn't known here; there are format, version, entities, "
                       "programSystems, collisionCheck");
    }
    section_ = static_cast<Section>(found - std::begin(SectionNames));
    if (isThere_[section_]) {
      throw TokenFault(token_, "this member is there twice");
    }
    isThere_[section_] = true;
    ++token_;
    return true;
  }

  bool parse_error(std::size_t position, const std::string& /*last*/,
                   const nlohmann::detail::exception& error) override {
    // Of "[json.exception.x] parse error at line 1, column 2: syntax error ..." the end, with no
    // more than the beginning of what stands in the text.
    std::string_view text = error.what();
    for (const std::string_view end : {"] ", ": "}) {
      const std::size_t found = text.find(end);
      text.remove_prefix(found == std::string_view::npos ? 0 : found + end.size());
    }
    faultPosition_ = position;
    faultText_ = text.substr(0, LargestFaultText);
    std::replace_if(
        faultText_.begin(), faultText_.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return false;
  }

  std::size_t GetFaultPosition() const { return faultPosition_; }
  const std::string& GetFaultText() const { return faultText_; }

  /// Says what the text as a whole lacks.
  std::string FindLack() const {
    for (const Section needed : {Format, Version, Entities}) {
      if (!isThere_[needed]) {
        return "the member \"" + std::string(SectionNames[needed]) + "\" is missing";
      }
    }
    return std::string();
  }

 private:
  enum Section { Format, Version, Entities, ProgramSystems, CollisionLists, SectionNb };
  static constexpr std::string_view SectionNames[SectionNb] = {"format", "version", "entities",
                                                               "programSystems", "collisionCheck"};

  template <typename Add>
  bool Take(Add add) {
    RequirePlace();
    StartItem();
    add();
    ++token_;
    UseItem();
    return true;
  }

  bool Open(JsonTape::Kind kind) {
    RequirePlace();
    if (depth_ >= LargestDepth) {
      throw TokenFault(token_, "the text is nested deeper than any machine");
    }
    StartItem();
    tape_.Add(kind);
    ++depth_;
    ++token_;
    return true;
  }

  bool Close() {
    --depth_;
    if (depth_ == 1 && isStreamed_) {
      isStreamed_ = false;
    } else if (depth_ > 0) {
      tape_.AddEnd();
      ++token_;
      UseItem();
      return true;
    }
    ++token_;
    return true;
  }

  void RequirePlace() const {
    if (depth_ == 0) {
      throw TokenFault(token_, "an object was expected");
    }
    if (depth_ == 1 && (section_ == Entities || section_ == ProgramSystems)) {
      throw TokenFault(token_, "an array was expected");
    }
  }

  bool IsAtItem() const { return depth_ == (isStreamed_ ? 2U : 1U); }

  void StartItem() {
    if (IsAtItem()) {
      tape_.Clear(token_);
    }
  }

  void UseItem() {
    if (!IsAtItem()) {
      return;
    }
    switch (section_) {
      case Format:
      case Version:
        builder_->ReadHead(tape_, section_ == Format);
        break;
      case Entities:
        builder_->AddEntity(tape_);
        break;
      case ProgramSystems:
        builder_->AddProgramSystem(tape_);
        break;
      default:
        builder_->SetCollisionCheck(tape_);
        break;
    }
  }

  MachineBuilder* builder_;
  JsonTape tape_;
  std::size_t depth_ = 0;
  std::uint64_t token_ = 0;
  Section section_ = Format;
  bool isStreamed_ = false;
  bool isThere_[SectionNb] = {};
  std::size_t faultPosition_ = 0;
  std::string faultText_;
};

/// Returns the byte at which a token of a text begins; the text is sound up to it.
std::size_t FindToken(std::string_view text, std::uint64_t token) {
  std::size_t at = 0;
  while (at < text.size()) {
    const char c = text[at];
    if (c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == ',' || c == ':') {
      ++at;
      continue;
    }
    if (token == 0) {
      break;
    }
    --token;
    if (c == '"') {
      for (++at; at < text.size() && text[at] != '"'; ++at) {
        at += text[at] == '\\' ? 1U : 0U;
      }
      ++at;
    } else if (c == '{' || c == '}' || c == '[' || c == ']') {
      ++at;
    } else {
      at = std::min(text.find_first_of(" \t\n\r,:{}[]\"", at), text.size());
    }
  }
  return std::min(at, text.size());
}

[[noreturn]] void Blame(const std::string& name, std::string_view text, std::size_t place,
                        const std::string& message) {
  std::uint64_t line = 1;
  std::uint64_t column = 1;
  for (const char c : text.substr(0, place)) {
    if (c == '\n') {
      ++line;
      column = 1;
    } else if ((static_cast<unsigned char>(c) & 0xC0U) != 0x80U) {
      ++column;
    }
  }
  throw ReadError(name, line, column, message);
}

std::string ReadText(std::istream& in, const std::string& name, std::uint64_t largestSize) {
  const std::uint64_t limit = std::min(largestSize, LargestText);
  std::string text;
  char chunk[65536];
  while (in) {
    in.read(chunk, sizeof chunk);
    text.append(chunk, static_cast<std::size_t>(in.gcount()));
    if (text.size() > limit) {
      throw ReadError(name, 0, 0, "the text has more than " + std::to_string(limit) + " bytes");
    }
  }
  if (!in.eof()) {
    throw ReadError(name, 0, 0, "the file can't be read");
  }
  return text;
}

}  // namespace

void ReadMachineJson(std::istream& in, const std::string& name, Kin::Machine* machine,
                     const JsonReadOptions& options) {
  const std::string whole = ReadText(in, name, options.largestSize);
  const std::string_view mark = "\xEF\xBB\xBF";
  const std::string_view text =
      std::string_view(whole).substr(whole.compare(0, mark.size(), mark) == 0 ? mark.size() : 0);
  Kin::Machine fresh;
  MachineBuilder builder(&fresh, options);
  MachineHandler handler(&builder);
  try {
    if (!Json::sax_parse(text.begin(), text.end(), &handler)) {
      const std::size_t position = handler.GetFaultPosition();
      Blame(name, text, position == 0 ? 0 : std::min(position - 1, text.size()),
            handler.GetFaultText());
    }
  } catch (const TokenFault& fault) {
    Blame(name, text, FindToken(text, fault.GetToken()), fault.what());
  }
  if (const std::string lack = handler.FindLack(); !lack.empty()) {
    throw ReadError(name, 0, 0, lack);
  }
  builder.Finish();
  *machine = fresh;
}

void ReadMachineJsonFile(const std::filesystem::path& file, Kin::Machine* machine,
                         const JsonReadOptions& options) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) {
    throw ReadError(NameOf(file), 0, 0, "the file can't be opened");
  }
  JsonReadOptions here = options;
  here.meshFolder = file.parent_path();
  ReadMachineJson(stream, NameOf(file), machine, here);
}

}  // namespace Orvo::Exchange
