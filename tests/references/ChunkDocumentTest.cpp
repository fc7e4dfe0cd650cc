#include <array>
#include <gtest/gtest.h>
#include <string>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "references/ChunkDocument.h"
#include "references/DeviceDescriptionChunk.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/DocumentedExample.h"
#include "tests/support/FaultText.h"

namespace {

using namespace NSTambraPacking;
using namespace NSTest;
using NSMordel::XFormatViolation;

constexpr const char* kWritten =
    "<?xml version=\"1.0\"?>\r\n"
    "<SampleReference trueName=\"new\" userFriendlyName=\"\" type=\"sample\"/>\r\n";

CChunkDocument Patch(Bytes bytes) {
  return CChunkDocument(AsMedia(std::move(bytes)), EChunkDocumentKind::kPatch);
}

/// The document with every reference replaced by one of which only the true name is `name`.
Bytes Rewritten(const CChunkDocument& document, std::u16string name) {
  CSampleReference replacement;
  replacement.fTrueName = std::move(name);
  NSBigFilePackage::CMemoryMedia output;
  NSBigFilePackage::CMediaCursor cursor(output);
  document.Write(cursor, std::vector<CSampleReference>(document.References().size(), replacement));
  return output.TakeBytes();
}

std::string FaultOf(Bytes bytes) {
  return FaultText<XFormatViolation>([&bytes] { Patch(std::move(bytes)); });
}

TEST(ChunkDocument, TheDocumentedExampleIsReadAndWritten) {
  const Bytes example = DocumentedExample("documents.md");
  const CChunkDocument document = Patch(example);
  EXPECT_EQ(document.DeviceNames(), std::vector<std::u16string>{u"Mixer"});
  ASSERT_EQ(document.References().size(), 1U);
  EXPECT_EQ(document.References()[0].Reference().fTrueName, u"k.wav");
  EXPECT_EQ(Rewritten(document, u"k.wav"), example);
}

TEST(ChunkDocument, ReferencesAreReplacedAtAnyDepthAndSizesMended) {
  const auto document = [](const Bytes& reference) {
    return Group("CAT ", "SONG",
                 {Chunk("HEAD", AsBytes("odd")), reference,
                  Group("LIST", "XXXX",
                        {Group("FORM", "YYYY", {Chunk("AAAA", {}), reference}),
                         Group("FORM", "ZZZZ", {Chunk("BBBB", {0xFF})})}),
                  reference, Chunk("TAIL", AsBytes("z"))});
  };
  // One old body is odd, one even, and one has bytes behind its string.
  for (const std::string name : {"a", "ab"}) {
    const Bytes xml = AsBytes("<SampleReference trueName='" + name + "'/>");
    const std::string text(xml.begin(), xml.end());
    for (const Bytes& extra : {Bytes{}, Bytes{1, 2, 3}}) {
      const Bytes old = Chunk("REFE", Joined({ReferenceBody(12, text), extra}));
      const CChunkDocument read = Patch(document(old));
      ASSERT_EQ(read.References().size(), 3U);
      EXPECT_EQ(Rewritten(read, u"new"), document(ReferenceChunk(kWritten)));
    }
  }
}

TEST(ChunkDocument, WhatHoldsNoReferenceIsCopiedAsItIs) {
  Bytes noPad = Group("FORM", "PTCH", {Chunk("AAAA", AsBytes("abc"))});
  noPad.pop_back();
  noPad[7] = static_cast<std::uint8_t>(noPad[7] - 1);
  const Bytes kept[] = {noPad, Joined({noPad, {7}}),
                        Group("FORM", "PTCH", {Chunk("AAAA", AsBytes("abc")), Chunk("FORX", {})}),
                        Chunk("LIST", AsBytes("PTCHrest"))};
  for (const Bytes& bytes : kept) EXPECT_EQ(Rewritten(Patch(bytes), u"new"), bytes);
}

TEST(ChunkDocument, AMissingLastPadByteDoesNotShiftWhatFollows) {
  // The inner group ends with an odd reference chunk without pad byte, and so is odd itself.
  Bytes inner = Chunk("REFE", ReferenceBody(12, "<SampleReference/>"));
  ASSERT_EQ(inner.back(), 0);
  inner.pop_back();
  const auto document = [](const Bytes& reference) {
    return Group("FORM", "PTCH",
                 {Chunk("FORM", Joined({AsBytes("IIII"), reference})), Chunk("TAIL", {})});
  };
  const Bytes after = Rewritten(Patch(document(inner)), u"new");
  Bytes expected = ReferenceChunk(kWritten);
  if ((ReferenceBody(12, kWritten).size() & 1) != 0) expected.pop_back();
  EXPECT_EQ(after, document(expected));
}

TEST(ChunkDocument, OnlyOneWholeGroupIsADocument) {
  const Bytes good = Group("FORM", "PTCH", {});
  for (const Bytes& bytes : {Bytes{}, Bytes(7), Chunk("PTCH", AsBytes("xxxx"))}) {
    EXPECT_EQ(FaultOf(bytes), "a patch or song must be a group chunk");
  }
  for (const Bytes& more : {Bytes{0}, good}) {
    EXPECT_EQ(FaultOf(Joined({good, more})),
              "there are bytes behind the outer chunk, from offset 12");
  }
  Bytes cut = Group("FORM", "PTCH", {Chunk("AAAA", AsBytes("abcd"))});
  cut.pop_back();
  EXPECT_NE(FaultOf(cut), "(nothing thrown)");
  EXPECT_NE(FaultOf(Chunk("FORM", AsBytes("abc"))), "(nothing thrown)");
}

TEST(ChunkDocument, DeviceNamesStandWhereTheKindOfDocumentPutsThem) {
  const Bytes bytes =
      Group("FORM", "PTCH",
            {Chunk("DESC", DescriptionBody("Own")), Chunk("DESC", DescriptionBody("Second")),
             Group("FORM", "DEVL",
                   {Chunk("DESC", DescriptionBody("One")),
                    Group("FORM", "SUBP", {Chunk("DESC", DescriptionBody("Inner"))})}),
             Group("FORM", "ELSE", {Chunk("DESC", Bytes{1})}),
             Group("LIST", "DEVL", {Chunk("DESC", DescriptionBody("Two \xC3\xA9"))})});
  const CChunkDocument patch = Patch(bytes);
  EXPECT_EQ(patch.Type(), NSTolbrook::MakeFourCharCode("PTCH"));
  EXPECT_EQ(patch.DeviceNames(), std::vector<std::u16string>{u"Own"});
  EXPECT_EQ(CChunkDocument(AsMedia(bytes), EChunkDocumentKind::kSong).DeviceNames(),
            (std::vector<std::u16string>{u"One", u"Inner", u"Two \u00E9"}));
}

TEST(ChunkDocument, HostileBodiesAreRefusedWithTheirOffset) {
  const Bytes longString = Joined({VersionBytes(), U32(12), U32(0xFFFFFFFF), AsBytes("abc")});
  const Bytes tooLong =
      ReferenceBody(12, std::string(kGreatestReferenceLength, ' ') + "<SampleReference/>");
  const std::pair<Bytes, const char*> kBodies[] = {
      {Bytes{}, "a format version is cut short"},
      {{0xBC, 1, 0, 0}, "a format version is cut short"},
      {{0xBD, 1, 0, 0, 0}, "a format version does not begin with its marker"},
      {VersionBytes(), "a chunk body ends at offset 5, in the middle of a value"},
      {longString, "a string of 4294967295 bytes runs past the end of its chunk"},
      {tooLong, "a string of 1048594 bytes is longer than the 1048576 allowed"},
      {ReferenceBody(12, ""), "Patch format error: Empty XML file"},
      {ReferenceBody(12, "<X/>"), "Expected SampleReference XML node"}};
  for (const auto& [body, message] : kBodies) {
    const Bytes bytes = Group("FORM", "PTCH", {Chunk("AAAA", {}), Chunk("REFE", body)});
    try {
      Patch(bytes);
      ADD_FAILURE() << message;
    } catch (const XFormatViolation& fault) {
      EXPECT_STREQ(fault.Message(), message);
      EXPECT_EQ(*fault.FindContext("chunk_offset"), "20");
    }
  }
  const auto ofVersion = [](std::uint8_t major) {
    return Group("FORM", "PTCH", {Chunk("REFE", VersionBytes(major))});
  };
  EXPECT_EQ(FaultText<NSMordel::XVersionTooNew>([&] { Patch(ofVersion(2)); }),
            "A newer Ostrum version is needed to read this sample reference");
  EXPECT_THROW(Patch(ofVersion(0)), NSMordel::XVersionTooOld);
  EXPECT_EQ(FaultOf(Group("FORM", "PTCH", {Chunk("DESC", DescriptionBody("\xFF"))})),
            "a device description holds a string that is not UTF-8");
}

TEST(ChunkDocument, GroupsMayNestUpToALimit) {
  const auto nested = [](std::size_t depth) {
    const Bytes reference = ReferenceChunk("<SampleReference/>");
    Bytes bytes;
    for (std::size_t i = depth; i-- > 0;) {
      Append(bytes, Joined({AsBytes("FORM"),
                            U32(static_cast<std::uint32_t>(4 + 12 * i + reference.size())),
                            AsBytes("NEST")}));
    }
    Append(bytes, reference);
    return bytes;
  };
  const Bytes deepest = Rewritten(Patch(nested(kGreatestGroupDepth)), u"new");
  EXPECT_EQ(Patch(deepest).References()[0].Reference().fTrueName, u"new");
  EXPECT_EQ(FaultOf(nested(kGreatestGroupDepth + 1)),
            "the groups are nested too deep at offset 49152");
}

TEST(DeviceDescriptionChunk, APatchDescriptionIsWrittenAndADevicesIsNot) {
  const Bytes body = DescriptionBody("Mixer");
  CSF10DevicePatchDescriptionChunk patch;
  CSF10DeviceDescriptionChunk device;
  for (NSTolbrook::CABCFormat* chunk : std::array<NSTolbrook::CABCFormat*, 2>{&patch, &device}) {
    NSBigFilePackage::CMemoryMedia media(body);
    NSBigFilePackage::CMediaCursor input(media);
    chunk->Read(input);
  }
  EXPECT_EQ(device.Description().fName, u"Mixer");
  NSBigFilePackage::CMemoryMedia media;
  NSBigFilePackage::CMediaCursor output(media);
  EXPECT_EQ(FaultText<NSMordel::XIllegalCallSequence>([&] { device.Write(output); }),
            "Cannot write CSF10DeviceDescriptionChunk in Tambra Packer");
  EXPECT_EQ(media.Size(), 0U);
  patch.Write(output);
  EXPECT_EQ(media.Bytes(), body);
}

}  // namespace
