#include <gtest/gtest.h>
#include <string>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "package/MemoryMedia.h"
#include "references/VorlinkPatch.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/FaultText.h"

namespace {

using namespace NSTambraPacking;
using NSMordel::XFormatViolation;

TEST(VorlinkPatch, TheIdentifierMustEndWithinTheHead) {
  const std::string start = "<?xml version='1.0'?>\n<!--";
  const std::string tag = "--><Patch name='x' deviceID='com.maker.synth'";
  const auto identifier = [&](std::size_t end) {
    const std::string filler(end - start.size() - tag.size(), '-');
    const auto media = NSTest::AsMedia(NSTest::AsBytes(start + filler + tag + "><State/></Patch>"));
    return ReadVorlinkDeviceIdentifier(*media);
  };
  EXPECT_EQ(identifier(100), u"com.maker.synth");
  EXPECT_EQ(identifier(kVorlinkHeadLength), u"com.maker.synth");
  const std::string missing = "missing device identifier in Vorlink patch";
  EXPECT_EQ(NSTest::FaultText<XFormatViolation>([&] { identifier(kVorlinkHeadLength + 1); }),
            missing);
  for (const char* text : {"", "<Patch/>", "<Patch deviceID=''/>", "<Other deviceID='a'/>",
                           "<Patch><State deviceID='a'/></Patch>"}) {
    const auto media = NSTest::AsMedia(NSTest::AsBytes(text));
    EXPECT_EQ(NSTest::FaultText<XFormatViolation>([&] { ReadVorlinkDeviceIdentifier(*media); }),
              missing)
        << text;
  }
}

TEST(VorlinkPatch, OnlyTheReferencesAreReplaced) {
  const auto text = [](const std::string& first, const std::string& second) {
    return "\xEF\xBB\xBF<?xml version='1.0'?>\n<!-- <SampleReference/> -->\n<Patch deviceID = 'a'>"
           "<SampleReference/><State b='&gt;'>\t</State>\n\t<Samples>\r\n\t" +
           first + " text <Box><SampleReference/></Box></Samples><Samples>" + second +
           "</Samples>\n</Patch>\n\n";
  };
  const CVorlinkPatch patch(text("<SampleReference trueName='>'\n type='lqx'>x</SampleReference>",
                                 "<SampleReference />"));
  ASSERT_EQ(patch.References().size(), 2U);
  EXPECT_EQ(patch.References()[0].fType, ESampleType::kLQX);
  std::vector<CSampleReference> replacements(2);
  replacements[0].fType = ESampleType::kLQX;
  replacements[1].fPackageName = u"P";
  EXPECT_EQ(patch.Rewritten(replacements),
            text("<SampleReference trueName=\"\" userFriendlyName=\"\" type=\"lqx\"/>",
                 "<SampleReference trueName=\"\" userFriendlyName=\"\" type=\"sample\">\r\n"
                 "            <Package name=\"P\"/>\r\n"
                 "        </SampleReference>"));
}

TEST(VorlinkPatch, ARootOfAnotherNameIsRefused) {
  EXPECT_THROW(CVorlinkPatch(std::string("<patch deviceID='a'/>")), XFormatViolation);
}

/// A file with holes takes no room on a disk, but all of its size in memory.
TEST(VorlinkPatch, AHugeFileIsRefused) {
  NSBigFilePackage::CMemoryMedia media;
  media.SetSize(kGreatestVorlinkPatch + 1);
  EXPECT_EQ(NSTest::FaultText<XFormatViolation>([&] { CVorlinkPatch patch(media); }),
            "the Vorlink patch has 67108865 bytes; at most 67108864 can be read");
}

}  // namespace
