#include "MachineFiles.h"
#include "io/AttributeLimit.h"

#include <Orvo/Kin/Machine.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace Orvo::Testing {
namespace {

class TextSource : public ByteSource {
 public:
  explicit TextSource(std::string bytes) : bytes_(std::move(bytes)) {}

  std::size_t Read(void* bytes, std::size_t size) override {
    const std::size_t count = std::min(size, bytes_.size() - place_);
    std::memcpy(bytes, bytes_.data() + place_, count);
    place_ += count;
    return count;
  }

 private:
  std::string bytes_;
  std::size_t place_ = 0;
};

bool IsWithin(const std::string& text) {
  TextSource source(text);
  return IsWithinAttributeLimit(&source, text.size());
}

std::string Attributes(std::size_t count, char quote = '"') {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    text += " a" + std::to_string(i) + "=" + quote + "x" + quote;
  }
  return text;
}

TEST(AttributeLimit, LargestNumberIsWithinIt) {
  for (const char quote : {'"', '\''}) {
    EXPECT_TRUE(IsWithin("<a" + Attributes(LargestAttributeNb, quote) + "/>"));
    EXPECT_FALSE(IsWithin("<a" + Attributes(LargestAttributeNb + 1, quote) + "/>"));
  }
  EXPECT_FALSE(IsWithin("<a>text<b" + Attributes(LargestAttributeNb + 1))) << "without an end too";
}

TEST(AttributeLimit, EveryTagIsCountedAlone) {
  const std::string tag = "<b" + Attributes(LargestAttributeNb) + "/>";
  EXPECT_TRUE(IsWithin("<a>" + tag + tag + tag + "</a>"));
}

TEST(AttributeLimit, WhatIsNoTagIsNotCounted) {
  const std::string many = Attributes(LargestAttributeNb + 1);
  const std::vector<std::string> texts = {"<!--" + many + "--><a/>",
                                          "<!-- <x" + many + " -- > ->-->",
                                          "<!-- > <x" + many + "> -->",
                                          "<![CDATA[<x" + many + ">]]>",
                                          "<![CDATA[ ]]" + many + "]>" + many + "]]>",
                                          "<?xml" + many + "?>",
                                          "<![CDATA[ > <x" + many + ">]]>",
                                          "<?x >" + many + "?>",
                                          "<?x > <x" + many + "> ?>",
                                          "<!DOCTYPE" + many + ">",
                                          "<a>" + many + "</a>",
                                          "<a b='" + Attributes(2000) + "'/>",
                                          "<a b=\"" + Attributes(2000, '\'') + "\"/>",
                                          std::string(),
                                          "<",
                                          "<!",
                                          "<!-",
                                          "<![CDATA",
                                          "<!-->" + many,
                                          "<!-" + many + ">"};
  for (const std::string& text : texts) {
    EXPECT_TRUE(IsWithin(text)) << text.substr(0, 30);
  }
}

TEST(AttributeLimit, WhatFollowsOtherMarkupIsCounted) {
  const std::string tag = "<x" + Attributes(LargestAttributeNb + 1) + ">";
  for (const char* const before :
       {"<!---->", "<!-- > -->", "<![CDATA[]]>", "<![CDATA[ > ]] > ]]>", "<?xml?>", "<?x > ?>",
        "<!>", "<!DOCTYPE x>", "<!-x>", "<![CDAT>", "<a b='>'>", "<a b='\"'>", "<a>'</a>\"", "</a>",
        "<>", "<a b=\"<\">"}) {
    EXPECT_FALSE(IsWithin(before + tag)) << before;
  }
}

TEST(AttributeLimit, BlocksAreJoined) {
  for (std::size_t padding = 65500; padding < 65560; ++padding) {
    const std::string text(padding, 't');
    ASSERT_FALSE(IsWithin(text + "<!--x--><a" + Attributes(LargestAttributeNb + 1) + ">"));
    ASSERT_TRUE(IsWithin(text + "<!--x--><a" + Attributes(LargestAttributeNb) + "><![CDATA[" +
                         Attributes(5) + "]]>"));
  }
}

TEST(AttributeLimit, OnlyTheGivenSizeIsRead) {
  for (const std::size_t padding : {0U, 70000U, 200000U}) {
    const std::string head = std::string(padding, 't') + "<a" + Attributes(LargestAttributeNb);
    TextSource source(head + " b='x'>");
    EXPECT_TRUE(IsWithinAttributeLimit(&source, head.size())) << padding;
    TextSource shorter(head);
    EXPECT_TRUE(IsWithinAttributeLimit(&shorter, head.size() + 1000000)) << padding;
  }
}

// The parser would take minutes for such a tag.
TEST(AttributeLimit, FilesBeyondItAreRefused) {
  Kin::Machine machine;
  EXPECT_TRUE(
      ReadText(machine, Replaced(WholeText(), "<Entity>", "<Entity" + Attributes(1000) + ">")));
  EXPECT_EQ(EntityCount(machine), 1U);
  EXPECT_FALSE(
      ReadText(machine, Replaced(WholeText(), "<Entity>", "<Entity" + Attributes(1001) + ">")));
  EXPECT_FALSE(
      ReadText(machine, Replaced(WholeText(), "<Entity>", "<Entity" + Attributes(300000) + ">")));
  EXPECT_EQ(EntityCount(machine), 1U);
}

}  // namespace
}  // namespace Orvo::Testing
