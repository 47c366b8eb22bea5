#include "MachineFiles.h"
#include "io/AttributeLimit.h"

#include <Orvo/Kin/Machine.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

bool IsWithin(const std::string& text) { return IsWithinAttributeLimit(text); }

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
