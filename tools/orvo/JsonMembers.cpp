#include "JsonMembers.h"

#include "WideText.h"

#include <nlohmann/json.hpp>

#include <iterator>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace OrvoTool {
namespace {

using Json = nlohmann::json;

/// Nobody nests deeper; the parser keeps an entry for each level.
constexpr int MaxDepth = 100;

constexpr std::size_t QuotedBytes = 40;

std::string Quote(std::string_view text) {
  return "'" + Printable(text.substr(0, QuotedBytes)) + (text.size() > QuotedBytes ? "...'" : "'");
}

/// Walks over the characters of a line and tells how many the parser has taken.
class CountingIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  CountingIterator(const char* at, std::size_t* taken) : at_(at), taken_(taken) {}
  reference operator*() const { return *at_; }
  CountingIterator& operator++() {
    ++at_;
    ++*taken_;
    return *this;
  }
  bool operator==(const CountingIterator& other) const { return at_ == other.at_; }
  bool operator!=(const CountingIterator& other) const { return at_ != other.at_; }

 private:
  const char* at_;
  std::size_t* taken_;
};

/// Takes what the parser meets.
class MemberHandler : public nlohmann::json_sax<Json> {
 public:
  MemberHandler(const TextLines& lines, const std::string& nested)
      : lines_(lines), nested_(nested) {}

  std::size_t taken = 0;
  std::vector<JsonMember> members;

  bool null() override { return TakeValue(JsonMember::Kind::Null, "null"); }
  bool boolean(bool value) override {
    if (JsonMember* const member = Current()) {
      member->isTrue = value;
    }
    return TakeValue(JsonMember::Kind::Truth, "a truth value");
  }
  bool number_integer(number_integer_t value) override {
    return TakeNumber(static_cast<double>(value));
  }
  bool number_unsigned(number_unsigned_t value) override {
    return TakeNumber(static_cast<double>(value));
  }
  bool number_float(number_float_t value, const string_t&) override { return TakeNumber(value); }
  bool string(string_t& text) override {
    if (JsonMember* const member = Current()) {
      member->texts.push_back(text);
    } else if (isList_ && depth_ == listDepth_) {
      members.back().texts.push_back(text);
      return true;
    }
    return TakeValue(JsonMember::Kind::Text, "a text");
  }
  bool binary(binary_t&) override { return TakeValue(JsonMember::Kind::Other, "bytes"); }

  bool start_object(std::size_t) override {
    if (depth_ == 1 && isAwaited_ && members.back().name == nested_) {
      members.pop_back();
      isAwaited_ = false;
      nestedDepth_ = 2;
    } else if (depth_ > 0) {
      TakeValue(JsonMember::Kind::Other, "");
    }
    return Enter();
  }
  bool end_object() override {
    nestedDepth_ = depth_ == nestedDepth_ ? -1 : nestedDepth_;
    return Leave();
  }
  bool start_array(std::size_t) override {
    if (JsonMember* const member = Current()) {
      member->kind = JsonMember::Kind::Texts;
      isAwaited_ = false;
      isList_ = true;
      listDepth_ = depth_ + 1;
    } else {
      TakeValue(JsonMember::Kind::Other, "an array");
    }
    return Enter();
  }
  bool end_array() override {
    isList_ = isList_ && depth_ != listDepth_;
    return Leave();
  }

  bool key(string_t& name) override {
    const bool isNested = depth_ == nestedDepth_;
    if (depth_ != 1 && !isNested) {
      return true;
    }
    // The parser has taken the closing quote.
    const std::size_t quoted = name.size() + 2;
    JsonMember member;
    member.name = name;
    member.isNested = isNested;
    member.offset = taken > quoted ? taken - quoted : 0;
    if (!names_.insert((isNested ? "." : "") + name).second) {
      lines_.Blame(member.offset, "the member " + Quote(name) + " is there twice");
    }
    members.push_back(std::move(member));
    isAwaited_ = true;
    return true;
  }

  bool parse_error(std::size_t position, const std::string& token,
                   const nlohmann::detail::exception& error) override {
    const std::size_t offset = position > 0 ? position - 1 : 0;
    if (dynamic_cast<const Json::out_of_range*>(&error) != nullptr) {
      lines_.Blame(position > token.size() ? position - token.size() : 0,
                   Quote(token) + " is beyond the numbers that can be computed with");
    }
    const std::string_view text = error.what();
    constexpr std::string_view expected = "; expected ";
    const std::size_t found = text.rfind(expected);
    lines_.Blame(offset,
                 std::string("this is not JSON") +
                     (found == std::string_view::npos
                          ? std::string()
                          : "; needed is " + std::string(text.substr(found + expected.size()))));
  }

 private:
  /// The member whose value comes next, or null.
  JsonMember* Current() { return isAwaited_ ? &members.back() : nullptr; }

  bool TakeValue(JsonMember::Kind kind, const char* what) {
    if (depth_ == 0) {
      lines_.Blame(0, std::string(what) + " is no JSON object");
    }
    if (isAwaited_) {
      members.back().kind = kind;
      isAwaited_ = false;
    } else if (isList_ && depth_ == listDepth_) {
      members.back().kind = JsonMember::Kind::Other;
    }
    return true;
  }

  bool TakeNumber(double value) {
    if (JsonMember* const member = Current()) {
      member->number = value;
    }
    return TakeValue(JsonMember::Kind::Number, "a number");
  }

  bool Enter() {
    if (++depth_ > MaxDepth) {
      lines_.Blame(taken > 0 ? taken - 1 : 0,
                   "the values are nested more than " + std::to_string(MaxDepth) + " deep");
    }
    return true;
  }

  bool Leave() {
    --depth_;
    return true;
  }

  const TextLines& lines_;
  const std::string& nested_;
  std::unordered_set<std::string> names_;
  int depth_ = 0;
  int nestedDepth_ = -1;
  int listDepth_ = -1;
  bool isAwaited_ = false;  ///< whether the value of the last member comes next
  bool isList_ = false;     ///< whether the last member is an array that is open
};

}  // namespace

std::vector<JsonMember> ReadJsonMembers(const TextLines& lines, const std::string& nested) {
  const std::string_view line = lines.GetLine();
  MemberHandler handler(lines, nested);
  Json::sax_parse(CountingIterator(line.data(), &handler.taken),
                  CountingIterator(line.data() + line.size(), &handler.taken), &handler);
  return std::move(handler.members);
}

}  // namespace OrvoTool
