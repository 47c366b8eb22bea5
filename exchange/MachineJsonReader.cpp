#include "exchange/ByteSink.h"
#include "exchange/JsonFault.h"
#include "exchange/JsonTape.h"
#include "exchange/MachineBuilder.h"

#include <Orvo/Exchange/ExchangeError.h>
#include <Orvo/Exchange/MachineJson.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <istream>
#include <iterator>
#include <limits>
#include <string>
#include <utility>

namespace Orvo::Exchange {
namespace {

using Json = nlohmann::json;

/// The deepest machine has 6: the object, elements, an element, its link, a frame, a column.
constexpr std::size_t LargestDepth = 6;

constexpr std::uint64_t LargestText = 0x7FFFFFFF;

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

  bool parse_error(std::size_t /*position*/, const std::string& /*last*/,
                   const nlohmann::detail::exception& /*error*/) override {
    return false;
  }

  /// Says what the text as a whole lacks.
  std::string FindLack() const {
    for (const Section needed : {Format, Version, Entities}) {
      if (!isThere_[needed]) {
        return "the member \"" + std::string(SectionNames[needed]) + "\" is missing here";
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
      const JsonFault fault = FindJsonFault(text);
      Blame(name, text, fault.place, fault.what.empty() ? "this is no JSON" : fault.what);
    }
  } catch (const TokenFault& fault) {
    Blame(name, text, FindToken(text, fault.GetToken()), fault.what());
  }
  if (const std::string lack = handler.FindLack(); !lack.empty()) {
    Blame(name, text, FindToken(text, 0), lack);
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
