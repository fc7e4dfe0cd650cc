#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <string>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "references/XMLReader.h"
#include "references/XMLWriter.h"
#include "tests/support/FaultText.h"

namespace {

using namespace NSTolbrook;

std::shared_ptr<CXMLElement> Leaf(std::u16string name, std::u16string text = {}) {
  return std::make_shared<CXMLElement>(std::move(name), std::move(text));
}

TEST(XMLWriter, LaysOutEveryShapeOfElement) {
  CXMLElement root(u"root", u"first");
  root.AddAttribute(u"q", u"\"&'<>");
  root.AddAttribute(u"empty", u"");
  root.AddChild(Leaf(u"none"));
  root.AddChild(Leaf(u"text", u"a < b"));
  root.AddChild(Leaf(u"cdata", u"x/>&"));
  root.AddChild(Leaf(u"closed", u"</]]>"));
  root.AddChild(Leaf(u"box"));
  root.ChildList().back()->AddChild(Leaf(u"\u00E9"));
  EXPECT_EQ(WriteXML(root),
            "<?xml version=\"1.0\"?>\r\n"
            "<root q=\"&quot;&amp;&apos;&lt;&gt;\" empty=\"\">first\r\n"
            "    <none/>\r\n"
            "    <text>a &lt; b</text>\r\n"
            "    <cdata><![CDATA[x/>&]]></cdata>\r\n"
            "    <closed>&lt;/]]&gt;</closed>\r\n"
            "    <box>\r\n"
            "        <\xC3\xA9/>\r\n"
            "    </box>\r\n"
            "</root>\r\n");
  EXPECT_EQ(WriteXMLFragment(*root.ChildList()[4], 2),
            "<box>\r\n            <\xC3\xA9/>\r\n        </box>");
}

TEST(XMLWriter, TextThatIsNotUnicodeIsRefused) {
  const auto write = [] { WriteXML(*Leaf(u"a", std::u16string(1, char16_t{0xDC00}))); };
  EXPECT_EQ(NSTest::FaultText<NSMordel::XFormatViolation>(write),
            "High-surrogate missing! Broken Unicode");
}

/// Text of the characters that matter to XML; never blank alone, since that is layout.
std::u16string AnyText() {
  static const std::u16string kPieces[] = {u"<",  u">",          u"&",     u"\"",  u"'",
                                           u"/>", u"</",         u"]]",    u"]]>", u" ",
                                           u"\n", u"\U0001F3B5", u"&amp;", u"x"};
  const auto indexes = *rc::gen::container<std::vector<std::size_t>>(
      rc::gen::inRange<std::size_t>(0, std::size(kPieces)));
  std::u16string text;
  for (const std::size_t index : indexes) text += kPieces[index];
  return text.find_first_not_of(u" \n") == text.npos ? u"" : text;
}

std::shared_ptr<CXMLElement> AnyElement(int depth) {
  auto element = Leaf(*rc::gen::element<std::u16string>(u"a", u"b-c", u"\u65E5"));
  const int attributes = *rc::gen::inRange(0, 3);
  for (int i = 0; i < attributes; ++i)
    element->AddAttribute(u"n" + std::u16string(1, u'a'), AnyText());
  const int children = depth == 0 ? 0 : *rc::gen::inRange(0, 3);
  for (int i = 0; i < children; ++i) element->AddChild(AnyElement(depth - 1));
  if (children == 0) element->SetText(AnyText());
  return element;
}

void ExpectSame(const CXMLElement& a, const CXMLElement& b) {
  RC_ASSERT(a.Name() == b.Name());
  RC_ASSERT(a.Text() == b.Text());
  RC_ASSERT(a.AttributeList().size() == b.AttributeList().size());
  for (std::size_t i = 0; i < a.AttributeList().size(); ++i) {
    RC_ASSERT(a.AttributeList()[i]->Value() == b.AttributeList()[i]->Value());
  }
  RC_ASSERT(a.ChildList().size() == b.ChildList().size());
  for (std::size_t i = 0; i < a.ChildList().size(); ++i) {
    ExpectSame(*a.ChildList()[i], *b.ChildList()[i]);
  }
}

TEST(XMLWriter, WhatIsWrittenReadsBackTheSame) {
  EXPECT_TRUE(rc::check([] {
    const auto root = AnyElement(3);
    ExpectSame(*root, *ReadXML(WriteXML(*root)));
  }));
}

}  // namespace
