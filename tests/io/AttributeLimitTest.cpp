#include "io/AttributeLimit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace {

using namespace Orvo;

/// Gives out a text in pieces.
class TextSource : public ByteSource {
 public:
  explicit TextSource(std::string text) : text_(std::move(text)) {}

  std::size_t Read(void* bytes, std::size_t size) override {
    const std::size_t present = std::min(size, text_.size() - place_);
    std::memcpy(bytes, text_.data() + place_, present);
    place_ += present;
    return present;
  }

  std::size_t Place() const { return place_; }

 private:
  std::string text_;
  std::size_t place_ = 0;
};

bool IsWithin(const std::string& text) {
  TextSource source(text);
  return IsWithinAttributeLimit(&source, text.size());
}

std::string Attributes(std::size_t count, const std::string& value = "\"1\"") {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    text += " a" + std::to_string(i) + "=" + value;
  }
  return text;
}

TEST(AttributeLimit, AThousandAttributesPassAndOneMoreDoesNot) {
  EXPECT_TRUE(IsWithin("<M" + Attributes(1000) + "/>"));
  EXPECT_FALSE(IsWithin("<M" + Attributes(1001) + "/>"));
  EXPECT_FALSE(IsWithin("<M" + Attributes(1001)));
  EXPECT_FALSE(IsWithin("<M" + Attributes(1001, "'1'") + "></M>"));
}

TEST(AttributeLimit, EachTagCountsForItself) {
  const std::string tag = "<M" + Attributes(1000) + ">text</M>";
  EXPECT_TRUE(IsWithin(tag + tag + tag));
  EXPECT_FALSE(IsWithin(tag + "<M" + Attributes(1001) + ">"));
}

TEST(AttributeLimit, ValuesMayHoldMarkup) {
  EXPECT_TRUE(IsWithin("<M" + Attributes(1000, "\"<'>'\"") + "/>"));
  EXPECT_FALSE(IsWithin("<M" + Attributes(1001, "\">\"") + "/>"));
  EXPECT_FALSE(IsWithin("<M" + Attributes(1001, "'\">'") + "/>"));
}

TEST(AttributeLimit, WhatIsNoTagHasNoAttributes) {
  const std::string many = Attributes(2000);
  const struct {
    const char* name;
    std::string text;
  } cases[] = {
      {"text", "<M>" + many + "</M>"},
      {"comment", "<!-- <a" + many + "> - -- --->"},
      {"comment that starts with its end", "<!-->" + many + "-->"},
      {"character data", "<![CDATA[<a" + many + ">]]]>"},
      {"declaration", "<?xml <a" + many + "> ?>"},
      {"unknown", "<!DOCTYPE" + many + ">"},
      {"unknown that starts like a comment", "<!-x" + many + ">"},
      {"unknown that starts like character data", "<![CDAT" + many + ">"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_TRUE(IsWithin(c.text));
    EXPECT_TRUE(IsWithin(c.text + "<M" + Attributes(1000) + "/>"));
    EXPECT_FALSE(IsWithin(c.text + "<M" + Attributes(1001) + "/>"));
  }
}

TEST(AttributeLimit, MarkupThatNeverEndsIsNoTag) {
  for (const char* start : {"<!--", "<![CDATA[", "<?", "<!D", "<"}) {
    SCOPED_TRACE(start);
    EXPECT_TRUE(IsWithin(start));
  }
  EXPECT_TRUE(IsWithin("<!--" + Attributes(1001)));
  EXPECT_TRUE(IsWithin(""));
}

TEST(AttributeLimit, TagsMayCrossTheBlocksInWhichAFileIsRead) {
  for (const std::size_t length : {65530U, 65534U, 65535U, 65536U, 131070U}) {
    SCOPED_TRACE(length);
    EXPECT_FALSE(IsWithin(std::string(length, ' ') + "<M" + Attributes(1001) + "/>"));
    EXPECT_TRUE(IsWithin(std::string(length, ' ') + "<!--" + Attributes(1001) + "-->"));
  }
}

TEST(AttributeLimit, NoMoreThanTheGivenSizeIsRead) {
  TextSource source("<M/><M" + Attributes(1001) + "/>");
  EXPECT_TRUE(IsWithinAttributeLimit(&source, 4));
  EXPECT_EQ(source.Place(), 4U);
}

}  // namespace
