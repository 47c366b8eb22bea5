#include "exchange/JsonTape.h"

#include "exchange/MachineWords.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace Orvo::Exchange {

void JsonTape::Clear(std::uint64_t firstToken) {
  firstToken_ = firstToken;
  tokens_.clear();
  open_.clear();
  texts_.clear();
}

void JsonTape::Push(Token token) {
  const auto place = static_cast<std::uint32_t>(tokens_.size());
  token.end = place + 1;
  tokens_.push_back(token);
  if (token.kind == Kind::Object || token.kind == Kind::Array) {
    open_.push_back(place);
  }
}

void JsonTape::Add(Kind kind) { Push({{0}, 0, kind}); }

void JsonTape::AddInteger(std::int64_t value) { Push({{value}, 0, Kind::Integer}); }

void JsonTape::AddReal(double value) {
  Token token = {{0}, 0, Kind::Real};
  token.real = value;
  Push(token);
}

void JsonTape::AddText(Kind kind, std::string_view text) {
  Token token = {{0}, 0, kind};
  token.piece = {static_cast<std::uint32_t>(texts_.size()),
                 static_cast<std::uint32_t>(text.size())};
  texts_ += text;
  Push(token);
}

void JsonTape::AddEnd() {
  Add(Kind::End);
  tokens_[open_.back()].end = static_cast<std::uint32_t>(tokens_.size());
  open_.pop_back();
}

std::size_t JsonTape::After(std::size_t value) const { return tokens_[value].end; }

std::string_view JsonTape::TextOf(const Token& token) const {
  return std::string_view(texts_).substr(token.piece.begin, token.piece.size);
}

void JsonTape::Fail(std::size_t value, const std::string& what) const {
  throw TokenFault(firstToken_ + value, what);
}

std::string JsonTape::Describe(std::size_t value) const {
  switch (tokens_[value].kind) {
    case Kind::Null:
      return "null";
    case Kind::False:
      return "false";
    case Kind::True:
      return "true";
    case Kind::Integer:
    case Kind::Real:
      return "this number";
    case Kind::Object:
      return "an object";
    case Kind::Array:
      return "an array";
    default: {
      const std::string_view text = TextOf(tokens_[value]);
      return text.size() > 40 ? "this text" : "\"" + std::string(text) + "\"";
    }
  }
}

std::vector<std::size_t> JsonTape::Members(std::size_t object,
                                           std::initializer_list<std::string_view> names) const {
  if (tokens_[object].kind != Kind::Object) {
    Fail(object, "an object was expected, not " + Describe(object));
  }
  std::vector<std::size_t> places(names.size(), 0);
  for (std::size_t key = object + 1; tokens_[key].kind != Kind::End; key = After(key + 1)) {
    const auto* const found = std::find(names.begin(), names.end(), TextOf(tokens_[key]));
    if (found == names.end()) {
      std::string list;
      for (const std::string_view name : names) {
        list += (list.empty() ? "" : ", ") + std::string(name);
      }
      Fail(key, "the member " + Describe(key) + " isn't known here; there are " + list);
    }
    std::size_t& place = places[static_cast<std::size_t>(std::distance(names.begin(), found))];
    if (place != 0) {
      Fail(key, "the member " + Describe(key) + " is there twice");
    }
    place = key + 1;
  }
  return places;
}

std::vector<std::size_t> JsonTape::Items(std::size_t array) const {
  if (tokens_[array].kind != Kind::Array) {
    Fail(array, "an array was expected, not " + Describe(array));
  }
  std::vector<std::size_t> items;
  for (std::size_t item = array + 1; tokens_[item].kind != Kind::End; item = After(item)) {
    items.push_back(item);
  }
  return items;
}

std::string_view JsonTape::ReadText(std::size_t value) const {
  if (tokens_[value].kind != Kind::Text) {
    Fail(value, "a text was expected, not " + Describe(value));
  }
  return TextOf(tokens_[value]);
}

bool JsonTape::ReadBool(std::size_t value) const {
  const Kind kind = tokens_[value].kind;
  if (kind != Kind::False && kind != Kind::True) {
    Fail(value, "true or false was expected, not " + Describe(value));
  }
  return kind == Kind::True;
}

std::int64_t JsonTape::ReadInteger(std::size_t value, std::int64_t smallest,
                                   std::int64_t largest) const {
  const Token& token = tokens_[value];
  if (token.kind != Kind::Integer) {
    Fail(value, "a whole number was expected, not " + Describe(value));
  }
  if (token.integer < smallest || token.integer > largest) {
    Fail(value, "a whole number from " + std::to_string(smallest) + " to " +
                    std::to_string(largest) + " was expected");
  }
  return token.integer;
}

int JsonTape::ReadInt(std::size_t value, std::int64_t smallest, std::int64_t largest) const {
  return static_cast<int>(ReadInteger(value, smallest, largest));
}

double JsonTape::ReadNumber(std::size_t value) const {
  const Token& token = tokens_[value];
  if (token.kind == Kind::Integer) {
    return static_cast<double>(token.integer);
  }
  if (token.kind == Kind::Real) {
    return token.real;
  }
  if (token.kind == Kind::Text) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const double odd[] = {nan, std::copysign(nan, -1.0), infinity, -infinity};
    const auto found = std::find(OddNumberWords.begin(), OddNumberWords.end(), TextOf(token));
    if (found != OddNumberWords.end()) {
      return odd[std::distance(OddNumberWords.begin(), found)];
    }
  }
  Fail(value, "a number was expected, not " + Describe(value));
}

std::vector<double> JsonTape::ReadNumbers(std::size_t array) const {
  std::vector<double> numbers;
  for (const std::size_t item : Items(array)) {
    numbers.push_back(ReadNumber(item));
  }
  return numbers;
}

}  // namespace Orvo::Exchange
