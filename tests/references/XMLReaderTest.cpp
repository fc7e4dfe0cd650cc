#include <gtest/gtest.h>
#include <string>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "references/XMLLimits.h"
#include "references/XMLReader.h"
#include "references/XMLWriter.h"
#include "tests/support/FaultText.h"

namespace {

using namespace NSTolbrook;
using NSMordel::XFormatViolation;

/// "kind line expected offending" of the fault that reading gives.
std::string FaultOf(std::string_view text) {
  try {
    ReadXML(text);
  } catch (const XFormatViolation& fault) {
    EXPECT_EQ(*fault.FindContext("target_object_type"), "xml_format");
    std::string summary = *fault.FindContext("xml_error") + " " + *fault.FindContext("line_number");
    for (const char* key : {"expected_character", "offending_character"}) {
      if (const std::string* value = fault.FindContext(key)) summary += " " + *value;
    }
    return summary;
  }
  return "none";
}

TEST(XMLReader, EveryFaultHasItsKindItsLineAndItsCharacters) {
  const std::pair<std::string_view, std::string_view> kFaults[] = {
      {"<a>\n&#65;</a>", "unsupported_amp_error 2 &"},
      {"<a b='&nbsp;'/>", "unsupported_amp_error 1 &"},
      {"<a>&</a>", "unsupported_amp_error 1 &"},
      {"<a>\r\n<b>\r\n</a>", "tag_mismatch_error 3"},
      {"</a>", "tag_mismatch_error 1"},
      {"<a></a ></a>", "tag_mismatch_error 1"},
      {"<a>\n", "unexpected_end_of_file_error 2"},
      {"<a", "unexpected_end_of_file_error 1"},
      {"<a b='x", "unexpected_end_of_file_error 1"},
      {"<a><!-- x --</a>", "unexpected_end_of_file_error 1"},
      {"<a><![CDATA[x]]</a>", "unexpected_end_of_file_error 1"},
      {"<a><![CDA", "unexpected_end_of_file_error 1"},
      {"<?xml version='1.0'", "unexpected_end_of_file_error 1"},
      {"<a b>", "expected_char_error 1 = >"},
      {"<a b=c>", "expected_char_error 1 \" c"},
      {"<a/ >", "expected_char_error 1 >  "},
      {"<a></a\nb>", "expected_char_error 2 > b"},
      {"<a b=''c=''/>", "unexpected_char_error 1 c"},
      {"<a b='<'/>", "unexpected_char_error 1 <"},
      {"<a/>\n\xC3\xA9", "unexpected_char_error 2 \xC3\xA9"},
      {"x<a/>", "unexpected_char_error 1 x"},
      {"<a>\n\xFF</a>", "unexpected_char_error 2"},
      {"<![CDATA[x]]><a/>", "unexpected_char_error 1 <"},
      {"< a/>", "xml_format_tag_error 1  "},
      {"<>", "xml_format_tag_error 1 >"},
      {"<1a/>", "xml_format_tag_error 1 1"},
      {"\n<!DOCTYPE a><a/>", "xml_format_tag_error 2"},
      {"<?xml version=1.0?><a/>", "xml_format_tag_error 1"},
      {"<?xml version='1.x'?><a/>", "xml_format_tag_error 1"},
  };
  for (const auto& [text, fault] : kFaults) EXPECT_EQ(FaultOf(text), fault) << text;
}

TEST(XMLReader, LoadingADocumentNamesIt) {
  const auto load = [](std::string_view text) {
    return [text] { LoadXMLDocument(text, "patch", "Pad.xml"); };
  };
  const std::string empty = "Patch format error: Empty XML file";
  for (const char* text : {"", " \r\n", "\xEF\xBB\xBF", "<!-- a -->", "no element"}) {
    EXPECT_EQ(NSTest::FaultText<XFormatViolation>(load(text)), empty) << text;
  }
  EXPECT_EQ(NSTest::FaultText<XFormatViolation>(load("<a/><b/>")),
            "Patch format error: Only one top level XML element allowed");
  EXPECT_EQ(NSTest::FaultText<XFormatViolation>(load("<a>")), "Format error in Pad.xml");
  EXPECT_EQ(NSTest::FaultText<NSMordel::XVersionTooNew>(load("<?xml version=\"1.1\"?><a/>")),
            "A newer Ostrum version is needed to read this patch");
  EXPECT_EQ(
      NSTest::FaultText<XFormatViolation>([] { ReadXML("<a b='c'/>")->RequiredAttribute(u"d"); }),
      "Patch format error: Required XML attribute 'd' not found");
}

TEST(XMLReader, TextIsKeptAndLayoutDropped) {
  const auto root = ReadXML(
      "\xEF\xBB\xBF<?xml version='1.0' encoding='UTF-8'?>\r\n<!-- <x> --><?target data?>\n"
      "<a b = \"1 &lt; '2'\"\tb='3'>\n  <c> x <!-- y -->&amp;<![CDATA[</z>&gt;]]> </c>\n"
      "  <d>\r\n</d> tail\n <e><![CDATA[ ]]></e></a>\n<!-- end -->\n");
  EXPECT_EQ(*root->FindAttribute(u"b"), u"1 < '2'");
  EXPECT_EQ(root->AttributeList().size(), 2U);
  EXPECT_EQ(root->Text(), u"tail");
  EXPECT_EQ(root->FindChild(u"c")->Text(), u" x &</z>&gt; ");
  EXPECT_EQ(root->FindChild(u"d")->Text(), u"");
  EXPECT_EQ(root->FindChild(u"e")->Text(), u" ");
  EXPECT_EQ(root->FindChild(u"f"), nullptr);
}

TEST(XMLReader, TheSourceRangeIsWhereAnElementStands) {
  const std::string text = "<a>\n <b x='&gt;'>t</b><c/>\n</a>\n";
  const auto root = ReadXML(text);
  const auto source = [&text](const CXMLElement& element) {
    const CXMLSourceRange range = element.SourceRange();
    return text.substr(range.fBegin, range.fEnd - range.fBegin);
  };
  EXPECT_EQ(source(*root), text.substr(0, text.size() - 1));
  EXPECT_EQ(source(*root->ChildList()[0]), "<b x='&gt;'>t</b>");
  EXPECT_EQ(source(*root->ChildList()[1]), "<c/>");
}

TEST(XMLReader, TheRootTagIsReadAsFarAsTheTextGoes) {
  const auto names = [](std::string_view head) {
    const auto root = ReadXMLRootTag(head);
    return root == nullptr ? -1 : static_cast<int>(root->AttributeList().size());
  };
  EXPECT_EQ(names("<?xml version='1.0'?><!-- x --><Pat"), -1);
  EXPECT_EQ(names("<!-- cut"), -1);
  EXPECT_EQ(names(""), -1);
  EXPECT_EQ(names("<Patch a='1' b='2"), 1);
  EXPECT_EQ(names("<Patch a='1' b='2\xC3"), 1);
  EXPECT_EQ(names("<Patch a='1' b='2'><&"), 2);
  EXPECT_THROW(names("<Patch a=1"), XFormatViolation);
}

TEST(XMLReader, DepthAndCountAreBounded) {
  const auto nested = [](std::size_t depth) {
    std::string text;
    for (std::size_t i = 0; i < depth; ++i) text += "<a>";
    for (std::size_t i = 0; i < depth; ++i) text += "</a>";
    return text;
  };
  EXPECT_EQ(FaultOf(nested(kGreatestXMLDepth)), "none");
  EXPECT_EQ(FaultOf(nested(kGreatestXMLDepth + 1)), "xml_format_tag_error 1");
  EXPECT_EQ(FaultOf(nested(1'000'000)), "xml_format_tag_error 1");
  std::string wide = "<a>";
  for (std::size_t i = 0; i < kGreatestXMLNodeCount; ++i) wide += "<b/>";
  EXPECT_EQ(FaultOf(wide + "</a>"), "xml_format_tag_error 1");
}

TEST(XMLElement, ATreeAMillionLevelsDeepIsDestroyedAndRefusedByTheWriter) {
  auto root = std::make_shared<CXMLElement>(u"a");
  for (int i = 0; i < 1'000'000; ++i) {
    auto parent = std::make_shared<CXMLElement>(u"a");
    parent->AddChild(std::move(root));
    root = std::move(parent);
  }
  EXPECT_THROW(WriteXML(*root), XFormatViolation);
  const std::shared_ptr<CXMLElement> shared = root->ChildList()[0];
  root.reset();
  EXPECT_EQ(shared->ChildList().size(), 1U);
}

}  // namespace
