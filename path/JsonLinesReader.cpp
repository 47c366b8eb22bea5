#include "path/TextReaderImplementation.h"

#include <Orvo/Path/Readers.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <string_view>

namespace Orvo::Path {
namespace {

using Json = nlohmann::json;

constexpr std::array<std::string_view, 8> Names = {"x", "y", "z", "i", "j", "k", "feed", "rapid"};
constexpr std::size_t NeededNb = 6;
constexpr std::size_t FeedPlace = 6;
constexpr std::size_t RapidPlace = 7;

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

/// Takes what the parser meets, and blames what a point can't have.
class PointHandler : public nlohmann::json_sax<Json> {
 public:
  explicit PointHandler(const TextLines& lines) : lines_(lines) {}

  std::size_t taken = 0;
  std::array<double, 7> values = {};
  std::array<bool, Names.size()> isGiven = {};
  std::array<std::size_t, Names.size()> places = {};
  bool isRapid = false;

  bool null() override {
    Expect(place_ == Absent || place_ >= NeededNb, "null");
    return EndValue();
  }
  bool boolean(bool value) override {
    Expect(place_ == Absent || place_ == RapidPlace, value ? "true" : "false");
    isRapid = place_ == RapidPlace ? value : isRapid;
    return EndValue();
  }
  bool number_integer(number_integer_t value) override {
    return TakeNumber(static_cast<double>(value));
  }
  bool number_unsigned(number_unsigned_t value) override {
    return TakeNumber(static_cast<double>(value));
  }
  bool number_float(number_float_t value, const string_t&) override { return TakeNumber(value); }
  bool string(string_t&) override {
    Expect(place_ == Absent, "a text");
    return EndValue();
  }
  bool binary(binary_t&) override { return EndValue(); }
  bool start_object(std::size_t) override {
    Expect(place_ == Absent, "an object");
    ++depth_;
    return true;
  }
  bool end_object() override {
    --depth_;
    return EndValue();
  }
  bool start_array(std::size_t) override {
    Expect(place_ == Absent, "an array");
    ++depth_;
    return true;
  }
  bool end_array() override {
    --depth_;
    return EndValue();
  }
  bool key(string_t& name) override {
    if (depth_ != 1) {
      return true;
    }
    const auto* const found = std::find(Names.begin(), Names.end(), name);
    place_ = found == Names.end() ? Absent : static_cast<std::size_t>(found - Names.begin());
    if (place_ == Absent) {
      return true;
    }
    // The parser has taken the closing quote.
    const std::size_t quoted = name.size() + 2;
    places[place_] = taken > quoted ? taken - quoted : 0;
    if (isGiven[place_]) {
      lines_.Blame(places[place_], "the member \"" + name + "\" is there twice; expected it once");
    }
    isGiven[place_] = true;
    return true;
  }
  bool parse_error(std::size_t position, const std::string&,
                   const nlohmann::detail::exception& error) override {
    const std::string_view text = error.what();
    constexpr std::string_view expected = "; expected ";
    const std::size_t found = text.rfind(expected);
    lines_.Blame(
        position > 0 ? position - 1 : 0,
        "not JSON" + std::string(expected) +
            (found == std::string_view::npos ? "a finite number or a valid text"
                                             : std::string(text.substr(found + expected.size()))));
  }

 private:
  static constexpr std::size_t Absent = static_cast<std::size_t>(-1);

  void Expect(bool isGood, const char* found) const {
    if (depth_ == 0 && std::string_view(found) != "an object") {
      lines_.Blame(0, std::string(found) + "; expected an object");
    }
    if (depth_ <= 1 && !isGood) {
      lines_.Blame(places[place_], "\"" + std::string(Names[place_]) + "\" is " + found +
                                       "; expected " +
                                       (place_ == RapidPlace ? "true or false" : "a number"));
    }
  }

  bool TakeNumber(double value) {
    Expect(place_ != RapidPlace, "a number");
    if (depth_ == 1 && place_ != Absent) {
      values[place_] = value;
    }
    return EndValue();
  }

  bool EndValue() {
    if (depth_ == 1) {
      place_ = Absent;
    }
    return true;
  }

  const TextLines& lines_;
  int depth_ = 0;
  std::size_t place_ = Absent;
};

struct JsonLinesImplementation : TextReaderImplementation {
  using TextReaderImplementation::TextReaderImplementation;

  bool Next(ToolPoint* point) override {
    do {
      if (!lines.Next()) {
        return false;
      }
    } while (Trim(lines.GetLine()).empty());
    const std::string_view line = lines.GetLine();
    PointHandler handler(lines);
    Json::sax_parse(CountingIterator(line.data(), &handler.taken),
                    CountingIterator(line.data() + line.size(), &handler.taken), &handler);
    for (std::size_t i = 0; i < NeededNb; ++i) {
      if (!handler.isGiven[i]) {
        lines.Blame(line.size(), "there is no \"" + std::string(Names[i]) +
                                     "\"; expected the members x, y, z, i, j and k");
      }
    }
    if (!MakeDirection(&handler.values[3])) {
      lines.Blame(handler.places[3], "the direction i,j,k is null; expected a direction");
    }
    if (handler.values[FeedPlace] < 0.0) {
      lines.Blame(handler.places[FeedPlace], "the feed is negative; expected 0 or more");
    }
    *point = ToolPoint();
    point->point.Set(handler.values.data());
    point->direction.Set(&handler.values[3]);
    point->feed = handler.values[FeedPlace];
    point->line = lines.GetNumber();
    point->isRapid = handler.isRapid;
    return true;
  }
};

}  // namespace

JsonLinesReader::JsonLinesReader(const std::filesystem::path& file)
    : TextReader(std::make_unique<JsonLinesImplementation>(file)) {}

JsonLinesReader::JsonLinesReader(std::unique_ptr<std::istream> stream, const std::string& name)
    : TextReader(std::make_unique<JsonLinesImplementation>(std::move(stream), name)) {}

}  // namespace Orvo::Path
