#include <gtest/gtest.h>
#include <string>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "references/SampleReference.h"
#include "references/XMLReader.h"
#include "references/XMLWriter.h"
#include "tests/support/FaultText.h"

namespace {

using namespace NSTambraPacking;
using NSTolbrook::ReadXML;

/// The form printed, or the message of the fault.
template <class Form>
std::string Parsed(const std::string& xml) {
  std::string printed;
  const std::string fault = NSTest::FaultText<NSMordel::XFormatViolation>(
      [&] { printed = NSTolbrook::Utf8FromText(Form::Parse(ReadXML(xml).get()).Print()); });
  return printed.empty() ? fault : printed;
}

std::string Relative(const std::string& path, const std::string& stepUp) {
  return Parsed<CRelativePath>("<RelativePath><Path>" + path + "</Path><StepUp>" + stepUp +
                               "</StepUp></RelativePath>");
}

std::string Database(const std::string& children) {
  return Parsed<CDatabasePath>("<DatabasePath>" + children + "</DatabasePath>");
}

std::string Absolute(const std::string& children) {
  return Parsed<CAbsolutePath>("<AbsolutePath>" + children + "</AbsolutePath>");
}

TEST(RelativePath, ParsesPrintsAndRefuses) {
  EXPECT_EQ(Relative("/a/b/c.wav", "2"), "../../a/b/c.wav");
  EXPECT_EQ(Relative("//a//c.wav/", "0"), "a/c.wav");
  EXPECT_EQ(Relative("a/b", "0"), "RelativePath must start with a '/'");
  EXPECT_EQ(Relative("", "0"), "RelativePath must start with a '/'");
  for (const char* text : {"x", "", "1x", "99999999999", "1.0"}) {
    EXPECT_EQ(Relative("/a", text), "Failed converting StepUp value to int") << text;
  }
  EXPECT_EQ(Relative("/a", "-1"), "RelativePath must not have a negative StepUp value");
  const std::string two = "RelativePath must have two elements, Path and StepUp";
  for (const char* children :
       {"", "<Path>/a</Path>", "<StepUp>0</StepUp><Path>/a</Path>",
        "<Path>/a</Path><StepUp>0</StepUp><x/>", "<path>/a</path><StepUp>0</StepUp>"}) {
    EXPECT_EQ(Parsed<CRelativePath>("<RelativePath>" + std::string(children) + "</RelativePath>"),
              two);
  }
  EXPECT_EQ(Parsed<CRelativePath>("<relativePath/>"), "*invalid relative path*");
  EXPECT_FALSE(CRelativePath::Parse(nullptr).IsValid());
  EXPECT_EQ(Relative("/a", "2147483647").size(), 3 * 256 + 1U);
}

TEST(DatabasePath, ParsesPrintsAndRefuses) {
  EXPECT_EQ(Database("<TambraName>P</TambraName><Path>/a/b</Path>"), "P:a/b");
  EXPECT_EQ(Database("<Path>/a/b</Path>"), "a/b");
  EXPECT_EQ(Database("<Path>a/b</Path>"), "DatabasePath must start with a '/'");
  EXPECT_EQ(Parsed<CDatabasePath>("<Path/>"), "*invalid database path*");
  const std::pair<const char*, EDatabasePathKind> kKinds[] = {
      {"", EDatabasePathKind::kPlain},
      {"<TambraName/>", EDatabasePathKind::kPlain},
      {"<TambraName>P</TambraName>", EDatabasePathKind::kPackage},
      {"<pathKind>vorlink</pathKind><TambraName>P</TambraName>", EDatabasePathKind::kDeviceContent},
      {"<TambraName>P</TambraName><pathKind>Vorlink</pathKind>", EDatabasePathKind::kPackage}};
  for (const auto& [children, kind] : kKinds) {
    const auto element = ReadXML("<DatabasePath>" + std::string(children) + "</DatabasePath>");
    const CDatabasePath path = CDatabasePath::Parse(element.get());
    EXPECT_EQ(path.Kind(), kind) << children;
    EXPECT_EQ(CDatabasePath::Parse(path.Write().get()), path) << children;
  }
}

TEST(AbsolutePath, ParsesPrintsAndRefuses) {
  EXPECT_EQ(Absolute("<Volume name='V' type='hd'/><Path partOfTambra='no'>/a/b</Path>"), "V/a/b");
  EXPECT_EQ(Absolute("<Path partOfTambra='yes'>a</Path>"), "DatabasePath must start with a '/'");
  EXPECT_EQ(Absolute("<Path>/a</Path>"),
            "AbsolutePath/Path element must have a 'partOfTambra' attribute");
  EXPECT_EQ(Absolute("<Path partOfTambra='Yes'>/a</Path>"),
            "'partOfTambra' attribute must be either 'yes' or 'no'");
  EXPECT_EQ(Absolute("<NativeURL>x</NativeURL>"),
            "AbsolutePath/NativeURL element must have a 'mode' attribute");
  EXPECT_EQ(Absolute("<NativeURL mode='win32file'/>"),
            "AbsolutePath/NativeURL/@mode attribute set to illegal value");
  EXPECT_EQ(Parsed<CAbsolutePath>("<Absolute/>"), "*invalid absolute path*");
  const std::pair<const char*, EVolumeType> kTypes[] = {
      {"type='floppy'", EVolumeType::kFloppy},       {"type='hd'", EVolumeType::kHardDisk},
      {"type='removable'", EVolumeType::kRemovable}, {"type='cdrom'", EVolumeType::kCDROM},
      {"type='network'", EVolumeType::kNetwork},     {"type='unknown'", EVolumeType::kUnknown},
      {"type='tape'", EVolumeType::kUnknown},        {"", EVolumeType::kUnknown}};
  for (const auto& [type, expected] : kTypes) {
    const auto element =
        ReadXML("<AbsolutePath><Volume " + std::string(type) + "/></AbsolutePath>");
    EXPECT_EQ(CAbsolutePath::Parse(element.get()).VolumeType(), expected) << type;
  }
}

/// Every attribute and child that there is, in the order in which they are written.
constexpr const char* kFullReference =
    "<?xml version=\"1.0\"?>\r\n"
    "<SampleReference trueName=\"k.wav\" userFriendlyName=\"Kick\" type=\"lqx\">\r\n"
    "    <Tambra name=\"T\" url=\"u\"/>\r\n"
    "    <VorlinkDevice internalID=\"i\" uiName=\"\" version=\"1\"/>\r\n"
    "    <Package name=\"P\"/>\r\n"
    "    <DatabasePath>\r\n"
    "        <TambraName>T</TambraName>\r\n"
    "        <Path>/a/k.wav</Path>\r\n"
    "        <pathKind>vorlink</pathKind>\r\n"
    "    </DatabasePath>\r\n"
    "    <AbsolutePath>\r\n"
    "        <Volume name=\"V\" type=\"cdrom\"/>\r\n"
    "        <Path partOfTambra=\"yes\">/b/k.wav</Path>\r\n"
    "        <NativeURL mode=\"OSXFile\">/V/b/k.wav</NativeURL>\r\n"
    "    </AbsolutePath>\r\n"
    "    <RelativePath>\r\n"
    "        <Path>/c/k.wav</Path>\r\n"
    "        <StepUp>3</StepUp>\r\n"
    "    </RelativePath>\r\n"
    "</SampleReference>\r\n";

TEST(SampleReference, IsWrittenByteForByteAsItWasRead) {
  const CSampleReference reference = CSampleReference::Parse(*ReadXML(kFullReference));
  EXPECT_EQ(WriteXML(*reference.Write(ESampleType::kSample)), kFullReference);
}

TEST(SampleReference, LeavesOutWhatIsEmptyOrUnknown) {
  const CSampleReference reference = CSampleReference::Parse(
      *ReadXML("<SampleReference x='1'><Tambra name=''/><Package/><Other/></SampleReference>"));
  for (const auto& [type, word] :
       {std::pair(ESampleType::kSample, "sample"), {ESampleType::kLQX, "lqx"}}) {
    EXPECT_EQ(WriteXML(*reference.Write(type)),
              "<?xml version=\"1.0\"?>\r\n<SampleReference trueName=\"\" userFriendlyName=\"\" "
              "type=\"" +
                  std::string(word) + "\"/>\r\n");
  }
}

TEST(SampleReference, RefusesWhatItIsNot) {
  const auto parse = [](const char* xml) {
    return NSTest::FaultText<NSMordel::XFormatViolation>(
        [xml] { CSampleReference::Parse(*ReadXML(xml)); });
  };
  EXPECT_EQ(parse("<sampleReference/>"), "Expected SampleReference XML node");
  EXPECT_EQ(parse("<SampleReference type='LQX'/>"), "Illegal sample type");
  EXPECT_EQ(parse("<SampleReference><RelativePath/></SampleReference>"),
            "RelativePath must have two elements, Path and StepUp");
}

TEST(SampleReference, PrintsTheFirstValidForm) {
  CSampleReference reference;
  reference.fUserFriendlyName = u"Kick";
  EXPECT_EQ(reference.Print(), u"Kick => *invalid relative path*");
  reference.fAbsolutePath = CAbsolutePath(u"V", {u"a", u"k.wav"});
  EXPECT_EQ(reference.Print(), u"Kick => V/a/k.wav");
  reference.fDatabasePath = CDatabasePath(EDatabasePathKind::kPackage, u"P", {u"a", u"k.wav"});
  EXPECT_EQ(reference.Print(), u"Kick => P:a/k.wav");
  reference.fRelativePath = CRelativePath(1, {u"k.wav"});
  reference.fTrueName = u"k.wav";
  EXPECT_EQ(reference.Print(), u"k.wav => ../k.wav");
}

}  // namespace
