#include "io/XMLWriter.h"
#include "support/TemporaryFolder.h"

#include <Orvo/ISerializableXML.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace Orvo::Testing {
namespace {

std::string Saved(XMLWriter& writer) {
  const TemporaryFolder folder;
  EXPECT_TRUE(writer.SaveFile(folder.Wide("file.xml")));
  return folder.Read("file.xml");
}

// An object that keeps what it was called with and returns a result of choice.
class Recorder : public ISerializableXML {
 public:
  explicit Recorder(bool result) : result_(result) {}

  XMLWriter* writer = nullptr;
  XMLElement* parent = nullptr;
  int calls = 0;

 protected:
  bool SerializeXML(XMLWriter& givenWriter, XMLElement* givenParent) override {
    writer = &givenWriter;
    parent = givenParent;
    ++calls;
    return result_;
  }
  bool DeserializeXML(XMLReader&, XMLElement*) override { return false; }

 private:
  bool result_;
};

TEST(XMLWriter, DeclarationNamesVersionAndEncoding) {
  XMLWriter writer;
  writer.AddDeclaration();
  EXPECT_EQ(Saved(writer), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
}

TEST(XMLWriter, EveryKindOfValueHasItsForm) {
  XMLWriter writer;
  XMLElement* const root = writer.NewRootElement(L"Root");
  ASSERT_NE(root, nullptr);
  writer.WriteString(L"String", L"a <b> & \"c\" 'd' \u20ac", root);
  writer.WriteString(L"Empty", L"", root);
  writer.WriteInt(L"Int", -42, root);
  writer.WriteInt(L"Least", std::numeric_limits<int>::min(), root);
  writer.WriteDouble(L"Double", 0.1, root);
  writer.WriteDouble(L"Small", 1e-9, root);
  writer.WriteDouble(L"Large", 1e22, root);
  writer.WriteDouble(L"NegativeZero", -0.0, root);
  writer.WriteDouble(L"Infinite", std::numeric_limits<double>::infinity(), root);
  writer.WriteBool(L"True", true, root);
  writer.WriteBool(L"False", false, root);
  writer.WriteVector3D(L"Vector", Vector3D(1, -2.5, 1e-7), root);
  Matrix43 frame;
  frame.SetUVWT(Vector3D(1, 2, 3), Vector3D(4, 5, 6), Vector3D(7, 8, 9), Vector3D(10, 11, 12));
  writer.WriteMatrix43(L"Frame", frame, root);
  XMLElement* const child = writer.NewChildElement(L"Child", root);
  writer.WriteInt(L"Inner", 7, child);
  EXPECT_EQ(Saved(writer),
            "<Root>\n"
            "    <String>a &lt;b&gt; &amp; \"c\" 'd' \xE2\x82\xAC</String>\n"
            "    <Empty></Empty>\n"
            "    <Int>-42</Int>\n"
            "    <Least>-2147483648</Least>\n"
            "    <Double>0.100000</Double>\n"
            "    <Small>0.000000</Small>\n"
            "    <Large>10000000000000000000000.000000</Large>\n"
            "    <NegativeZero>-0.000000</NegativeZero>\n"
            "    <Infinite>inf</Infinite>\n"
            "    <True>true</True>\n"
            "    <False>false</False>\n"
            "    <Vector X=\"1.000000\" Y=\"-2.500000\" Z=\"0.000000\"/>\n"
            "    <Frame>\n"
            "        <U X=\"1.000000\" Y=\"2.000000\" Z=\"3.000000\"/>\n"
            "        <V X=\"4.000000\" Y=\"5.000000\" Z=\"6.000000\"/>\n"
            "        <W X=\"7.000000\" Y=\"8.000000\" Z=\"9.000000\"/>\n"
            "        <T X=\"10.000000\" Y=\"11.000000\" Z=\"12.000000\"/>\n"
            "    </Frame>\n"
            "    <Child>\n"
            "        <Inner>7</Inner>\n"
            "    </Child>\n"
            "</Root>\n");
}

TEST(XMLWriter, NullParentIsTheDocument) {
  XMLWriter writer;
  writer.WriteInt(L"First", 1, nullptr);
  writer.WriteString(L"Second", L"x", nullptr);
  ASSERT_NE(writer.NewChildElement(L"Third", nullptr), nullptr);
  EXPECT_EQ(Saved(writer), "<First>1</First>\n\n<Second>x</Second>\n\n<Third/>\n");
}

TEST(XMLWriter, ElementKnowsItsParentAndName) {
  XMLWriter writer;
  XMLElement* const root = writer.NewRootElement(L"Root");
  EXPECT_EQ(root->GetParent(), nullptr);
  EXPECT_EQ(root->GetName(), L"Root");
  ASSERT_NE(root->GetElement(), nullptr);
  XMLElement* const child = writer.NewChildElement(L"Child", root);
  EXPECT_EQ(child->GetParent(), root);
  EXPECT_EQ(child->GetName(), L"Child");
}

TEST(XMLWriter, AttributesStandInTheOrderOfTheirFirstSetting) {
  XMLWriter writer;
  XMLElement* const root = writer.NewRootElement(L"Root");
  root->SetAttributes({{L"b", L"1"}, {L"a", L"2"}, {L"\u00fc", L"<\"&\u20ac"}});
  root->SetAttributes({{L"a", L"3"}, {L"c", L""}});
  root->SetVersion(-3);
  EXPECT_EQ(Saved(writer),
            "<Root b=\"1\" a=\"3\" \xC3\xBC=\"&lt;&quot;&amp;\xE2\x82\xAC\" c=\"\" "
            "Version=\"-3\"/>\n");
}

TEST(XMLWriter, VersionIsDecimalDigits) {
  struct Case {
    int version;
    const char* text;
  };
  const Case cases[] = {
      {0, "0"}, {12, "12"}, {-3, "-3"}, {std::numeric_limits<int>::min(), "-2147483648"}};
  for (const Case& c : cases) {
    XMLWriter writer;
    writer.NewRootElement(L"Root")->SetVersion(c.version);
    EXPECT_EQ(Saved(writer), "<Root Version=\"" + std::string(c.text) + "\"/>\n");
  }
}

TEST(XMLWriter, SecondTextIsAppended) {
  XMLWriter writer;
  XMLElement* const root = writer.NewRootElement(L"Root");
  root->SetText(L"one");
  root->SetText(L"two");
  EXPECT_EQ(root->GetText(), L"one");
  EXPECT_EQ(Saved(writer), "<Root>onetwo</Root>\n");
}

TEST(XMLWriter, TextOfAWrapperWithoutElementIsDropped) {
  XMLElement nothing(nullptr, nullptr);
  nothing.SetText(L"text");
  EXPECT_EQ(nothing.GetElement(), nullptr);
}

TEST(XMLWriter, ObjectIsCalledAndItsResultReturned) {
  XMLWriter writer;
  XMLElement* const root = writer.NewRootElement(L"Root");
  Recorder good(true);
  EXPECT_TRUE(writer.WriteObject(good, root));
  EXPECT_EQ(good.writer, &writer);
  EXPECT_EQ(good.parent, root);
  Recorder bad(false);
  EXPECT_FALSE(writer.WriteObject(bad, nullptr));
  EXPECT_EQ(bad.parent, nullptr);
  EXPECT_EQ(bad.calls, 1);
}

TEST(XMLWriter, WrappersStayValid) {
  XMLWriter writer;
  XMLElement* const root = writer.NewRootElement(L"Root");
  XMLElement* const first = writer.NewChildElement(L"First", root);
  for (int i = 0; i < 10000; ++i) {
    writer.NewChildElement(L"Other", root);
  }
  EXPECT_EQ(first->GetName(), L"First");
  first->SetText(L"text");
  EXPECT_EQ(first->GetText(), L"text");
}

TEST(XMLDocument, ErrorRefusesARootElement) {
  const TemporaryFolder folder;
  folder.Write("bad.xml", "<a><b></a>");
  XMLDocument document;
  EXPECT_EQ(document.ErrorID(), 0);
  EXPECT_FALSE(document.LoadFile(folder.Wide("bad.xml")));
  EXPECT_GT(document.ErrorID(), 0);
}

TEST(XMLDocument, SavesWhatItLoaded) {
  const TemporaryFolder folder;
  folder.Write("in.xml", "<a x='1'><b>text</b><c/></a>");
  XMLDocument document;
  ASSERT_TRUE(document.LoadFile(folder.Wide("in.xml")));
  ASSERT_TRUE(document.SaveFile(folder.Wide("out.xml")));
  EXPECT_EQ(folder.Read("out.xml"), "<a x=\"1\">\n    <b>text</b>\n    <c/>\n</a>\n");
}

}  // namespace
}  // namespace Orvo::Testing
