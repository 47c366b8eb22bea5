#include "io/XMLReader.h"
#include "support/SameBits.h"
#include "support/TemporaryFolder.h"

#include <Orvo/ISerializableXML.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace Orvo::Testing {
namespace {

// A reader of a text.
class TextReader {
 public:
  explicit TextReader(const std::string& text) {
    const TemporaryFolder folder;
    folder.Write("file.xml", text);
    isLoaded = reader.LoadFile(folder.Wide("file.xml"));
  }

  XMLReader reader;
  bool isLoaded = false;
};

class Recorder : public ISerializableXML {
 public:
  explicit Recorder(bool result) : result_(result) {}

  XMLReader* reader = nullptr;
  XMLElement* parent = nullptr;

 protected:
  bool SerializeXML(XMLWriter&, XMLElement*) override { return false; }
  bool DeserializeXML(XMLReader& givenReader, XMLElement* givenParent) override {
    reader = &givenReader;
    parent = givenParent;
    return result_;
  }

 private:
  bool result_;
};

TEST(XMLReader, LoadsOnlyFilesThatAreXml) {
  EXPECT_TRUE(TextReader("<a/>").isLoaded);
  EXPECT_TRUE(TextReader("<?xml version=\"1.0\"?><a/>").isLoaded);
  for (const char* const text : {"", "   ", "text", "<a>", "<a></b>", "<a><b></a></b>", "<a x=1/>",
                                 "<a x='1/>", "<", "<a", "<!-- open", "<![CDATA[ open"}) {
    EXPECT_FALSE(TextReader(text).isLoaded) << text;
  }
  const TemporaryFolder folder;
  XMLReader reader;
  EXPECT_FALSE(reader.LoadFile(folder.Wide("missing.xml")));
  EXPECT_FALSE(reader.LoadFile(TemporaryFolder::ToWide(folder.Path())));
  EXPECT_FALSE(reader.LoadFile(L""));
}

TEST(XMLReader, FindsElementsByName) {
  TextReader text("<First/><Root><a i='1'/><b/><a i='2'><a i='3'/></a></Root><Last/>");
  ASSERT_TRUE(text.isLoaded);
  XMLReader& reader = text.reader;
  XMLElement* const root = reader.RootElement(L"Root");
  ASSERT_NE(root, nullptr);
  EXPECT_EQ(root->GetParent(), nullptr);
  EXPECT_EQ(root->GetName(), L"Root");
  EXPECT_EQ(reader.RootElement(L"root"), nullptr);
  EXPECT_EQ(reader.RootElement(L"a"), nullptr);
  EXPECT_NE(reader.FirstChildElement(L"Last", nullptr), nullptr) << "null is the document";
  XMLElement* const first = reader.FirstChildElement(L"a", root);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->GetParent(), root);
  std::wstring value;
  ASSERT_TRUE(first->GetAttribute(L"i", value));
  EXPECT_EQ(value, L"1");
  XMLElement* const second = reader.NextSiblingElement(L"a", first, root);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(second->GetParent(), root);
  ASSERT_TRUE(second->GetAttribute(L"i", value));
  EXPECT_EQ(value, L"2");
  EXPECT_EQ(reader.NextSiblingElement(L"a", second, root), nullptr);
  EXPECT_EQ(reader.FirstChildElement(L"c", root), nullptr);
  XMLElement* const again = reader.FirstChildElement(L"a", root);
  ASSERT_NE(again, nullptr);
  EXPECT_EQ(again->GetElement(), first->GetElement());
}

TEST(XMLReader, MissingAttributeLeavesTheValue) {
  TextReader text("<Root x='\xC3\xA9' empty=''/>");
  XMLElement* const root = text.reader.RootElement(L"Root");
  std::wstring value = L"old";
  EXPECT_FALSE(root->GetAttribute(L"y", value));
  EXPECT_EQ(value, L"old");
  EXPECT_TRUE(root->GetAttribute(L"x", value));
  EXPECT_EQ(value, L"\u00e9");
  EXPECT_TRUE(root->GetAttribute(L"empty", value));
  EXPECT_EQ(value, L"");
}

TEST(XMLReader, AbsentChildLeavesTheValue) {
  TextReader text("<Root/>");
  XMLReader& reader = text.reader;
  XMLElement* const root = reader.RootElement(L"Root");
  std::wstring string = L"old";
  int integer = 7;
  double number = 7.5;
  bool truth = true;
  Vector3D vector(1, 2, 3);
  Matrix43 frame;
  frame.SetTrans(Vector3D(1, 2, 3));
  const Matrix43 before = frame;
  EXPECT_FALSE(reader.ReadString(L"x", string, root));
  EXPECT_FALSE(reader.ReadInt(L"x", integer, root));
  EXPECT_FALSE(reader.ReadDouble(L"x", number, root));
  EXPECT_FALSE(reader.ReadBool(L"x", truth, root));
  EXPECT_FALSE(reader.ReadVector3D(L"x", vector, root));
  EXPECT_FALSE(reader.ReadMatrix43(L"x", frame, root));
  EXPECT_EQ(string, L"old");
  EXPECT_EQ(integer, 7);
  EXPECT_EQ(number, 7.5);
  EXPECT_TRUE(truth);
  EXPECT_TRUE(SameBits(vector, Vector3D(1, 2, 3)));
  EXPECT_TRUE(SameBits(frame, before));
}

TEST(XMLReader, NullParentIsTheDocument) {
  TextReader text("<Number>1.5</Number><Text>abc</Text>");
  double number = 0;
  std::wstring string;
  EXPECT_TRUE(text.reader.ReadDouble(L"Number", number, nullptr));
  EXPECT_TRUE(text.reader.ReadString(L"Text", string, nullptr));
  EXPECT_EQ(number, 1.5);
  EXPECT_EQ(string, L"abc");
}

TEST(XMLReader, ReadsNumbersThatStartTheirTexts) {
  TextReader text("<r><a>1.5mm</a><b> 12 </b><c/><d>9e999</d><e>x</e></r>");
  XMLElement* const root = text.reader.RootElement(L"r");
  double number = 7.5;
  int integer = 7;
  EXPECT_TRUE(text.reader.ReadDouble(L"a", number, root));
  EXPECT_EQ(number, 1.5);
  EXPECT_TRUE(text.reader.ReadInt(L"a", integer, root));
  EXPECT_EQ(integer, 1);
  EXPECT_TRUE(text.reader.ReadInt(L"b", integer, root));
  EXPECT_EQ(integer, 12);
  EXPECT_THROW(text.reader.ReadDouble(L"c", number, root), std::invalid_argument);
  EXPECT_THROW(text.reader.ReadDouble(L"d", number, root), std::out_of_range);
  EXPECT_THROW(text.reader.ReadInt(L"e", integer, root), std::invalid_argument);
  EXPECT_EQ(number, 1.5);
  EXPECT_EQ(integer, 12);
}

TEST(XMLReader, TruthsAreExactlyTrueAndFalse) {
  TextReader text(
      "<r><t>true</t><f>false</f><a>TRUE</a><b> true</b><c>true </c><d/><e>1</e><g>fals</g></r>");
  XMLElement* const root = text.reader.RootElement(L"r");
  bool value = false;
  EXPECT_TRUE(text.reader.ReadBool(L"t", value, root));
  EXPECT_TRUE(value);
  EXPECT_TRUE(text.reader.ReadBool(L"f", value, root));
  EXPECT_FALSE(value);
  for (const wchar_t* const name : {L"a", L"b", L"c", L"d", L"e", L"g"}) {
    for (const bool before : {true, false}) {
      value = before;
      EXPECT_FALSE(text.reader.ReadBool(name, value, root)) << name;
      EXPECT_EQ(value, before);
    }
  }
}

TEST(XMLReader, VectorNeedsItsThreeAttributes) {
  TextReader text(
      "<r><v Z='3' Y='2mm' X='1' W='4'/><a Y='2' Z='3'/><b X='1' Z='3'/><c X='1' Y='2'/>"
      "<d X='1' Y='x' Z='3'/><e X='x' Y='1'/><f X='1' Y='2' Z='1e999'/></r>");
  XMLElement* const root = text.reader.RootElement(L"r");
  Vector3D vector(7, 8, 9);
  vector[3] = 5;
  for (const wchar_t* const name : {L"a", L"b", L"c", L"e"}) {
    EXPECT_FALSE(text.reader.ReadVector3D(name, vector, root)) << name;
  }
  EXPECT_THROW(text.reader.ReadVector3D(L"d", vector, root), std::invalid_argument);
  EXPECT_THROW(text.reader.ReadVector3D(L"f", vector, root), std::out_of_range);
  EXPECT_EQ(vector[0], 7);
  EXPECT_EQ(vector[3], 5);
  ASSERT_TRUE(text.reader.ReadVector3D(L"v", vector, root));
  EXPECT_TRUE(SameBits(vector, Vector3D(1, 2, 3))) << "the fourth component becomes 0";
}

TEST(XMLReader, FirstAttributeThatIsNoNumberThrows) {
  TextReader text("<r><v X='1e999' Y='x' Z='x'/><w X='x' Y='1e999' Z='1'/></r>");
  XMLElement* const root = text.reader.RootElement(L"r");
  Vector3D vector;
  EXPECT_THROW(text.reader.ReadVector3D(L"v", vector, root), std::out_of_range);
  EXPECT_THROW(text.reader.ReadVector3D(L"w", vector, root), std::invalid_argument);
}

TEST(XMLReader, FrameNeedsItsFourColumns) {
  const std::string u = "<U X='0' Y='2' Z='0'/>";
  const std::string v = "<V X='0' Y='0' Z='3'/>";
  const std::string w = "<W X='4' Y='0' Z='0'/>";
  const std::string t = "<T X='5' Y='6' Z='7'/>";
  TextReader text("<r><m>" + t + w + v + u + "</m><a>" + v + w + t + "</a><b>" + u + w + t +
                  "</b><c>" + u + v + t + "</c><d>" + u + v + w + "</d><e>" + u + v + w +
                  "<T X='x' Y='6' Z='7'/></e></r>");
  ASSERT_TRUE(text.isLoaded);
  XMLElement* const root = text.reader.RootElement(L"r");
  Matrix43 frame;
  for (const wchar_t* const name : {L"a", L"b", L"c", L"d"}) {
    EXPECT_FALSE(text.reader.ReadMatrix43(name, frame, root)) << name;
  }
  EXPECT_THROW(text.reader.ReadMatrix43(L"e", frame, root), std::invalid_argument);
  EXPECT_TRUE(SameBits(frame, Matrix43()));
  ASSERT_TRUE(text.reader.ReadMatrix43(L"m", frame, root));
  const double expected[16] = {0, 2, 0, 0, 0, 0, 3, 0, 4, 0, 0, 0, 5, 6, 7, 1};
  EXPECT_TRUE(SameBits(static_cast<const double*>(frame), expected, 16, "the frame's"));
  // A frame that is taken for a rigid one is inverted by its transpose.
  EXPECT_TRUE(SameBits(frame.Inverse(), frame.HInverse()));
}

TEST(XMLReader, IdentityIsMarkedAsARigidFrameToo) {
  TextReader text(
      "<r><m><U X='1' Y='0' Z='0'/><V X='0' Y='1' Z='0'/><W X='0' Y='0' Z='1'/>"
      "<T X='0' Y='0' Z='0'/></m></r>");
  Matrix43 frame;
  ASSERT_TRUE(text.reader.ReadMatrix43(L"m", frame, text.reader.RootElement(L"r")));
  // A product of two identities stays one; this one's kind is another, so it takes no shortcut.
  Matrix43 translation;
  translation.SetTrans(Vector3D(1, 2, 3));
  frame.SetTrans(Vector3D(1, 2, 3));
  EXPECT_TRUE(SameBits(frame, translation));
}

TEST(XMLReader, ObjectIsCalledAndItsResultReturned) {
  TextReader text("<r/>");
  XMLElement* const root = text.reader.RootElement(L"r");
  Recorder good(true);
  EXPECT_TRUE(text.reader.ReadObject(good, root));
  EXPECT_EQ(good.reader, &text.reader);
  EXPECT_EQ(good.parent, root);
  Recorder bad(false);
  EXPECT_FALSE(text.reader.ReadObject(bad, nullptr));
  EXPECT_EQ(bad.parent, nullptr);
}

}  // namespace
}  // namespace Orvo::Testing
