#include "exchange/JsonFault.h"
#include "property/Draw.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace Orvo::Testing {
namespace {

using Exchange::FindJsonFault;
using Exchange::JsonFault;
using Property::Draw;
using Property::ForCases;

TEST(JsonFault, IsToldInPlainWords) {
  struct Case {
    std::string text;
    std::size_t place;
    const char* what;
  };
  const Case cases[] = {
      {"", 0, "the text ends here; a value was expected"},
      {" [1", 3, "the text ends here; a comma or ] was expected"},
      {"{\"a\"", 4, "the text ends here; a colon behind the name was expected"},
      {"{", 1, "the text ends here; the name of a member in quotes or } was expected"},
      {"[", 1, "the text ends here; a value or ] was expected"},
      {"[1}", 2, "a comma or ] was expected, not }"},
      {"{\"a\": 1 \"b\": 2}", 8, "a comma or } was expected, not a text"},
      {"{\"a\": 1,}", 8, "the name of a member in quotes was expected, not }"},
      {"{a: 1}", 1, "the name of a member in quotes or } was expected, not \"a\""},
      {"[1,]", 3, "a value was expected, not ]"},
      {"{\"a\" 1}", 5, "a colon behind the name was expected, not 1"},
      {"[nan]", 1, "a value or ] was expected, not \"nan\""},
      {"[abcdefghijklmnopqrstuvwxyz]", 1, "a value or ] was expected, not this word"},
      {"[+1]", 1, "a value or ] was expected, not +"},
      {"[1 // one\n]", 3, "JSON has no comments; a comma or ] was expected"},
      {"[] x", 3, "the end of the text was expected, not \"x\""},
      {"[\x01]", 1, "a value or ] was expected, not this character"},
      {"[\xff]", 1, "a value or ] was expected, not bytes that are no UTF-8"},
      {"[01]", 1,
       "this is no number; they have the form -1.5e-3, with a digit before and behind the point "
       "and without leading zeros"},
      {"[-1e309]", 1, "this number is too large"},
      {"[\"a]", 1, "this text has no closing quote in its line"},
      {"[\"a\n\"]", 1, "this text has no closing quote in its line"},
      {"[\"a\tb\"]", 3, "a control character in a text; write \\t for a tab, \\u0001 for others"},
      {"[\"a\xC3\"]", 3, "bytes that are no UTF-8; save the file as UTF-8"},
      {"[\"\\x\"]", 2,
       "a backslash begins one of \\\" \\\\ \\/ \\b \\f \\n \\r \\t \\u0041; write \\\\ for "
       "itself"},
      {"[\"\\u12g4\"]", 2, "four hexadecimal digits were expected behind \\u"},
      {"[\"\\ud800\"]", 2,
       "this is half of a character; \\ud800 to \\udbff need one of \\udc00 to \\udfff behind "
       "them"},
      {"[\"\\udc00\"]", 2,
       "this is half of a character; \\ud800 to \\udbff need one of \\udc00 to \\udfff behind "
       "them"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const JsonFault fault = FindJsonFault(c.text);
    EXPECT_EQ(fault.what, c.what);
    EXPECT_EQ(fault.place, c.place);
  }
}

TEST(JsonFault, SoundTextsHaveNone) {
  for (const char* text :
       {"null", " -0.5e+3 ", "{}", "[[], {}]", "\"\\u00e4\\ud83d\\ude00\\/\"", "[true,false]",
        "{\"a\": [1, 2.5, \"\xC3\xA4\"], \"b\": {\"c\": null}}\n", "[1e-999]"}) {
    EXPECT_EQ(FindJsonFault(text).what, "") << text;
  }
}

// There is a fault where the parser has one, and nowhere else; it lies within the text.
TEST(JsonFault, IsFoundWhereTheParserFails) {
  const std::string sound =
      R"({"a": [1, -2.5e-3, 0.0, true, false, null], "b\n\u00e4\ud83d\ude00": {"": "x\\y\"z"}})";
  ForCases(20000, [&](Draw& draw) {
    std::string text = sound;
    const int changeNb = draw.Int(0, 3);
    for (int i = 0; i < changeNb; ++i) {
      const auto place = static_cast<std::size_t>(draw.Int(0, static_cast<int>(text.size()) - 1));
      const char c = draw.Chance(0.8)
                         ? draw.Of({'0', '1', '-', '+', '.', 'e', 'E', '"', '\\', '[', ']',
                                    '{', '}', ',', ':', 'u', 'd', 't', ' ', '\n', '/'})
                         : static_cast<char>(draw.Int(0, 255));
      if (draw.Chance(0.4)) {
        text[place] = c;
      } else if (draw.Chance(0.5)) {
        text.insert(place, 1, c);
      } else if (text.size() > 1) {
        text.erase(place, static_cast<std::size_t>(draw.Int(1, 4)));
      }
      if (text.empty()) {
        text = " ";
      }
    }
    const JsonFault fault = FindJsonFault(text);
    EXPECT_EQ(fault.what.empty(), nlohmann::json::accept(text)) << text << "\n" << fault.what;
    EXPECT_LE(fault.place, text.size());
  });
}

}  // namespace
}  // namespace Orvo::Testing
