#include "MachineFiles.h"
#include "io/PlainXml.h"
#include "io/XMLDocument.h"
#include "io/XMLView.h"
#include "support/TestRandom.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Orvo::Testing {
namespace {

constexpr std::string_view AttributeNames[] = {"a", "b", "X", "no"};

/// Returns all that can be read of an element, or of a document, and of what stands in it.
std::string Describe(const XMLView& view, bool isDocument) {
  std::string text;
  if (!isDocument) {
    std::string room = "old";
    text = std::string(view.Name()) + '[' + std::string(view.Text(&room)) + ']';
    for (const std::string_view name : AttributeNames) {
      std::string_view value;
      if (view.Attributes({&name, 1}, &value)) {
        text += ' ' + std::string(name) + '=' + std::string(value);
      }
    }
  }
  text += '{';
  for (XMLView child = view.FirstChild(); !child.IsNull(); child = child.NextSibling()) {
    EXPECT_TRUE(child.HasName(child.Name()));
    EXPECT_FALSE(child.HasName(std::string(child.Name()) + 'a'));
    EXPECT_FALSE(child.HasName(child.Name().substr(1)));
    text += Describe(child, false);
  }
  return text + '}';
}

/// A text with its plain reading, if it has one.
class PlainText {
 public:
  explicit PlainText(const std::string& text)
      : bytes_(text + std::string(PlainXml::Padding, '\0')),
        isPlain_(plain_.Parse(std::string_view(bytes_).substr(0, text.size()))) {}

  bool IsPlain() const { return isPlain_; }
  XMLView Document() const { return XMLView(plain_, PlainXml::Document); }

 private:
  std::string bytes_;
  PlainXml plain_;
  bool isPlain_;
};

bool IsPlain(const std::string& text) { return PlainText(text).IsPlain(); }

/// Tells whether the XML parser takes a text for what it is read as where it is plain.
testing::AssertionResult AgreesWithTheParser(const std::string& text) {
  const PlainText plain(text);
  if (!plain.IsPlain()) {
    return testing::AssertionSuccess() << "not plain";
  }
  XMLDocument document;
  if (!document.Parse(text)) {
    return testing::AssertionFailure() << "no XML, and yet plain: " << text;
  }
  const std::string expected = Describe(document.View(), true);
  const std::string given = Describe(plain.Document(), true);
  if (given != expected) {
    return testing::AssertionFailure()
           << text << "\nis read as " << given << "\nand means   " << expected;
  }
  return testing::AssertionSuccess() << "plain";
}

std::string Nested(std::size_t depth) {
  std::string text;
  for (std::size_t i = 0; i < depth; ++i) {
    text += "<a>";
  }
  for (std::size_t i = 0; i < depth; ++i) {
    text += "</a>";
  }
  return text;
}

std::string WithAttributes(std::size_t count) {
  std::string text = "<a";
  for (std::size_t i = 0; i < count; ++i) {
    text += " b" + std::to_string(i) + "=''";
  }
  return text + "/>";
}

TEST(PlainXml, MachineFilesArePlain) {
  EXPECT_TRUE(IsPlain(WholeText()));
  const TemporaryFolder folder;
  Kin::Machine machine;
  ASSERT_TRUE(ReadText(machine, WholeText()));
  const std::string written = WrittenText(machine);
  EXPECT_TRUE(IsPlain(written));
  EXPECT_TRUE(AgreesWithTheParser(written));
  // As other systems end their lines.
  std::string otherEnds;
  for (const char c : written) {
    otherEnds += c == '\n' ? "\r\n" : std::string(1, c);
  }
  EXPECT_TRUE(IsPlain(otherEnds));
  EXPECT_TRUE(AgreesWithTheParser(otherEnds));
}

TEST(PlainXml, PlainTextsMeanWhatTheParserSays) {
  const std::string plainTexts[] = {
      "<a/>",
      "<a></a>",
      " \t\r\n<a/>\n ",
      "\xEF\xBB\xBF<a/>",
      "\xEF\xBB\xBF \n<?xml version='1.0'?><a/>",
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a/>",
      "<?x > <y?><a/>",
      "<!-- before --><a/><!-- behind -->",
      "<?xml?><!-- one --> <!-- two --><a/>",
      "<!----><a/>",
      "<!-- - -- ---><a/>",
      "<a><!-- in --><b/><!-- between --><b/><!-- > </a> --></a>",
      "<a>text<!-- behind it --></a>",
      "<a>text</a>",
      "<a> text </a>",
      "<a>\n text\n</a>",
      "<a>   </a>",
      "<a>\r\n</a>",
      "<a>\r\n<b/>\r\n</a>",
      "<a>one<b/>two</a>",
      "<a>  <b/>two</a>",
      "<a>></a>",
      "<a>\"'=</a>",
      "<a>\xC3\xA9\xFF\x80</a>",
      "<a>&lt;b&gt; &amp; &quot;&apos;</a>",
      "<a> &amp;amp;&amp; <b>&lt;</b>&gt;</a>",
      "<a>\n &lt;</a>",
      "<a a='1' b=\"2\"/>",
      "<a a='\"' b=\"'\"/>",
      "<a a='<b/>' b='>'/>",
      "<a\n a='1'\r\n\tb='2'\n/>",
      "<a a='' />",
      "<a a='1' >text</a>",
      "<a a='x\ny'/>",
      "<a a='\v'/>",
      "<!--\f--><a/>",
      "<a><a><a/></a></a>",
      "<a><a/><b/><a/></a>",
      "<a-b.c_d9><b/></a-b.c_d9>",
      Nested(32),
      WithAttributes(16),
      "<a>" + std::string(70000, 'x') + "</a>",
  };
  for (const std::string& text : plainTexts) {
    SCOPED_TRACE(text.substr(0, 60));
    EXPECT_TRUE(IsPlain(text));
    EXPECT_TRUE(AgreesWithTheParser(text));
  }
}

TEST(PlainXml, OtherTextsAreLeftToTheParser) {
  const std::string otherTexts[] = {
      "",
      " ",
      "text",
      "<",
      "<a",
      "<a ",
      "<a/",
      "<a>",
      "<a></",
      "<a></a",
      "</a>",
      "<a></b>",
      "<a></ab>",
      "<ab></a>",
      "<a></a >",
      "<a></ a>",
      "< a/>",
      "<a / >",
      "<a/ >",
      "<1/>",
      "<:a/>",
      "<a:b/>",
      "<\xC3\xA9/>",
      "<a\xC3\xA9/>",
      "<a/><b/>",
      "<a/>text",
      "text<a/>",
      "<a/></a>",
      "<a><b></a></b>",
      "<a>&</a>",
      "<a>&lt</a>",
      "<a>&LT;</a>",
      "<a>&#65;</a>",
      "<a>&#x41;</a>",
      "<a>&amp;&nbsp;</a>",
      "<a>&amp;\r</a>",
      "<a>&am</a>",
      "<a a='&amp;'/>",
      "<a>x\ry</a>",
      "<a>\v</a>",
      "<a> \f</a>",
      "<a>x\vy</a>",
      "<a\v/>",
      "\f<a/>",
      "<a>\r\ntext</a>",
      "<a a='\r\n'/>",
      "<a a='1' a='2'/>",
      "<a a='1'b='2'/>",
      "<a a ='1'/>",
      "<a a= '1'/>",
      "<a a=1/>",
      "<a a/>",
      "<a a='1/>",
      "<a a='1\"/>",
      "<a 'x'/>",
      "<a><![CDATA[x]]></a>",
      "<!DOCTYPE a><a/>",
      "<a/><!x>",
      "<a><?x?></a>",
      "<?x?><?y?><a/>",
      "<!-- --><?x?><a/>",
      "<?x",
      "<?x><a/>",
      "<!-- <a/>",
      "<!- --><a/>",
      "<!--><a/>",
      "<a><!-- </a>",
      "<a><!-- -->text</a>",
      "<a>text<!-- -->text</a>",
      "<a/><!--",
      std::string("<a/>\0", 5),
      std::string("\0<a/>", 5),
      std::string("<a>\0</a>", 8),
      std::string("<a a='\0'/>", 10),
      std::string("<a><!-- \0 --></a>", 17),
      std::string("<?x \0 ?><a/>", 12),
      std::string("<a\0/>", 5),
      Nested(33),
      WithAttributes(17),
  };
  for (const std::string& text : otherTexts) {
    EXPECT_FALSE(IsPlain(text)) << text.substr(0, 60);
  }
}

TEST(PlainXml, EveryByteEverywhereMeansWhatTheParserSays) {
  for (const std::string whole : {"<a></a>", "<a> </a>", "<a>x y</a>", "<a>&lt;</a>", "<a b='1'/>",
                                  "<!-- c --><a><b/> <c/>x</a> ", "<?d ?><a>x<!-- c --></a>"}) {
    for (std::size_t place = 0; place <= whole.size(); ++place) {
      for (int byte = 0; byte < 256; ++byte) {
        SCOPED_TRACE(whole + ", at " + std::to_string(place) + " the byte " + std::to_string(byte));
        std::string text = whole;
        text.insert(place, 1, static_cast<char>(byte));
        ASSERT_TRUE(AgreesWithTheParser(text));
        if (place < whole.size()) {
          text.erase(place + 1, 1);
          ASSERT_TRUE(AgreesWithTheParser(text));
        }
      }
    }
  }
}

TEST(PlainXml, EveryCutOfAFileIsLeftToTheParser) {
  const std::string whole = WholeText();
  const std::size_t rootEnd = whole.rfind('>') + 1;
  for (std::size_t size = 0; size < rootEnd; ++size) {
    ASSERT_FALSE(IsPlain(whole.substr(0, size))) << size;
  }
}

TEST(PlainXml, TextIsReadAgain) {
  PlainXml plain;
  const std::string bytes = "<a><b/></a>" + std::string(PlainXml::Padding, '\0');
  const std::string_view text = std::string_view(bytes).substr(0, 11);
  for (int i = 0; i < 2; ++i) {
    ASSERT_TRUE(plain.Parse(text));
    EXPECT_EQ(Describe(XMLView(plain, PlainXml::Document), true), "{a[]{b[]{}}}");
  }
}

// One of several: the first children of their names, in whatever order they stand.
TEST(XMLView, ChildrenAreTheFirstOfTheirNames) {
  const std::string text =
      "<r><y a='1'/><x a='2'/><other/><x a='3'/><y a='4'/><z a='5'/><xx/><z/></r>";
  const PlainText plain(text);
  ASSERT_TRUE(plain.IsPlain());
  XMLDocument document;
  ASSERT_TRUE(document.Parse(text));
  for (const XMLView& top : {plain.Document(), document.View()}) {
    const XMLView root = FindChild(top, "r");
    const std::string_view names[] = {"x", "y", "none", "z"};
    const auto children = FindChildren(root, names);
    EXPECT_TRUE(children[2].IsNull());
    EXPECT_TRUE(FindChild(root, "none").IsNull());
    const char* const expected[] = {"2", "1", "", "5"};
    for (const std::size_t i : {0U, 1U, 3U}) {
      const std::string_view attribute[] = {"a"};
      std::string_view value;
      ASSERT_TRUE(children[i].Attributes(attribute, &value)) << names[i];
      EXPECT_EQ(value, expected[i]) << names[i];
      ASSERT_TRUE(FindChild(root, names[i]).Attributes(attribute, &value));
      EXPECT_EQ(value, expected[i]) << names[i];
    }
  }
}

TEST(XMLView, AttributesAreAllThereOrNotRead) {
  const std::string text = "<r c='3' a='1' d='' b='2'/>";
  const PlainText plain(text);
  ASSERT_TRUE(plain.IsPlain());
  XMLDocument document;
  ASSERT_TRUE(document.Parse(text));
  for (const XMLView& top : {plain.Document(), document.View()}) {
    const XMLView root = top.FirstChild();
    const std::string_view names[] = {"a", "b", "c"};
    std::string_view values[3];
    ASSERT_TRUE(root.Attributes(names, values));
    EXPECT_EQ(values[0], "1");
    EXPECT_EQ(values[1], "2");
    EXPECT_EQ(values[2], "3");
    const std::string_view others[] = {"a", "e"};
    EXPECT_FALSE(root.Attributes(others, values));
  }
}

/// Draws texts near the edge of what is plain.
class TextDraw {
 public:
  explicit TextDraw(TestRandom* random) : random_(random) {}

  std::string Document() {
    std::string text = random_->Chance(0.3) ? Prolog() : std::string();
    AppendElement(0, &text);
    if (random_->Chance(0.2)) {
      text += Piece();
    }
    const int changeNb = random_->Chance(0.5) ? 0 : random_->Integer(1, 3);
    for (int i = 0; i < changeNb; ++i) {
      Change(&text);
    }
    return text;
  }

 private:
  template <std::size_t Size>
  std::string_view OneOf(const std::string_view (&choices)[Size]) {
    return choices[static_cast<std::size_t>(random_->Integer(0, static_cast<int>(Size) - 1))];
  }

  std::string Prolog() {
    static constexpr std::string_view Choices[] = {
        "\xEF\xBB\xBF", "<?xml version='1.0'?>\n", "\xEF\xBB\xBF<?xml?>", "<!-- c -->", "\r\n",
        "<!DOCTYPE a>", "<?xml?><!-- c -->"};
    return std::string(OneOf(Choices));
  }

  std::string_view Piece() {
    static constexpr std::string_view Choices[] = {"\n        ",  "text",
                                                   " ",           "\r\n",
                                                   "1.5",         "<!-- c -->",
                                                   "&lt;",        "&#65;",
                                                   "&amp;x",      "&apos;&quot;&gt;",
                                                   "&amp",        "<![CDATA[c]]>",
                                                   "<!-->-->",    "\xC3\xA9",
                                                   "a\rb",        "<!x>",
                                                   "<?x?>",       "]]>",
                                                   "<!--<b/>-->", "  text  ",
                                                   "x>y",         "&",
                                                   "=\"'",        "<b/>"};
    return OneOf(Choices);
  }

  void AppendElement(int depth, std::string* text) {
    static constexpr std::string_view Names[] = {"a", "b", "ab", "a-b", "a.1", "_", "ba"};
    static constexpr std::string_view Attributes[] = {
        " a='1'",  " b=\"2\"", "\n X='<'", " a=\"'\"", "\tno='\"'", " b='&gt;'",
        " X='\n'", " a = '1'", "b='3'",    " c='>'",   "\r\na=''",  " "};
    const std::string name(OneOf(Names));
    *text += '<' + name;
    while (random_->Chance(0.35)) {
      *text += OneOf(Attributes);
    }
    if (random_->Chance(0.2)) {
      *text += "/>";
      return;
    }
    *text += '>';
    while (random_->Chance(depth < 4 ? 0.65 : 0.2)) {
      if (depth < 6 && random_->Chance(0.6)) {
        AppendElement(depth + 1, text);
      } else {
        *text += random_->Chance(0.6) ? "\n  " : Piece();
      }
    }
    *text += "</" + name + '>';
  }

  // Drops, doubles or replaces a few bytes.
  void Change(std::string* text) {
    static constexpr char Bytes[] = "<>/='\" ab&!-?[]\n\r\t\v\f\0\xEF.";
    const auto place =
        static_cast<std::size_t>(random_->Integer(0, static_cast<int>(text->size()) - 1));
    const auto length = static_cast<std::size_t>(random_->Integer(0, 2));
    const char byte =
        Bytes[static_cast<std::size_t>(random_->Integer(0, static_cast<int>(sizeof Bytes) - 2))];
    switch (random_->Integer(0, 3)) {
      case 0:
        text->erase(place, length);
        break;
      case 1:
        text->insert(place, text->substr(place, length));
        break;
      case 2:
        (*text)[place] = byte;
        break;
      default:
        text->insert(place, 1, byte);
        break;
    }
    if (text->empty()) {
      *text = "<";
    }
  }

  TestRandom* random_;
};

TEST(PlainXml, AgreesWithTheParserOnRandomTexts) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  TextDraw draw(&random);
  constexpr int CaseNb = 200000;
  int plainNb = 0;
  for (int i = 0; i < CaseNb; ++i) {
    const testing::AssertionResult result = AgreesWithTheParser(draw.Document());
    ASSERT_TRUE(result) << result.message();
    plainNb += std::string_view(result.message()) == "plain" ? 1 : 0;
  }
  EXPECT_GT(plainNb, CaseNb / 5);
  EXPECT_LT(plainNb, CaseNb * 4 / 5);
}

}  // namespace
}  // namespace Orvo::Testing
