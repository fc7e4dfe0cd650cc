#include <gtest/gtest.h>
#include <rapidcheck.h>

#include "package/PackageFormat.h"
#include "package/PackageHeader.h"
#include "package/PackageIndex.h"
#include "tests/package/PackageFixture.h"

namespace NSTambraPacking {
namespace {

using NSBigFilePackage::CMediaCursor;
using NSBigFilePackage::CMemoryMedia;
using NSTest::Bytes;

template <class Write>
std::string Written(Write write) {
  CMemoryMedia media;
  CMediaCursor cursor(media);
  write(cursor);
  EXPECT_EQ(cursor.Position(), media.Size());
  return NSTest::TextOf(media);
}

TEST(PackageFormatTest, TextTakesWindows1252WhereReadingItBackGivesTheSameText) {
  using namespace std::string_literals;
  const struct {
    std::u16string fText;
    std::string fField;
  } kCases[] = {
      {u"", "\0\0\0\0"s},
      {u"Gro\u00DFe \u20AC\u2013",
       "\0\0\0\x08Gro\xDF"
       "e \x80\x96"s},
      {u"\u0081\u009D", "\0\0\0\x02\x81\x9D"s},
      {u"\u65E5", "\0\0\0\x06\xEF\xBB\xBF\xE6\x97\xA5"s},
      {u"\U0001F3B9", "\0\0\0\x07\xEF\xBB\xBF\xF0\x9F\x8E\xB9"s},
      {u"\u00EF\u00BB", "\0\0\0\x02\xEF\xBB"s},
      {u"\u00EF\u00BB\u00BFx", "\0\0\0\x0A\xEF\xBB\xBF\xC3\xAF\xC2\xBB\xC2\xBFx"s},
      {u"\uFEFFx", "\0\0\0\x07\xEF\xBB\xBF\xEF\xBB\xBFx"s},
  };
  for (const auto& test : kCases) {
    const std::string field =
        Written([&](CMediaCursor& output) { WriteTextField(output, test.fText); });
    EXPECT_EQ(field, test.fField) << NSTolbrook::Utf8FromText(test.fText);
    const auto media = NSTest::MediaOf(field);
    CMediaCursor input(*media);
    EXPECT_EQ(ReadTextField(input), test.fText) << NSTolbrook::Utf8FromText(test.fText);
    EXPECT_EQ(input.Remaining(), 0u);
  }
  EXPECT_THROW(EncodePackageText(u"a\xD800"), NSMordel::XFormatViolation);
  EXPECT_THROW(DecodePackageText("\xEF\xBB\xBF\xFF"), NSMordel::XFormatViolation);
}

TEST(PackageFormatTest, EveryEightBitTextIsReadAndWrittenBack) {
  rc::check([](const std::string& bytes) {
    RC_PRE(!bytes.starts_with("\xEF\xBB\xBF"));
    RC_ASSERT(EncodePackageText(DecodePackageText(bytes)) == bytes);
  });
}

TEST(PackageFormatTest, LimitsAndVersionsAreCheckedAtTheirEdge) {
  EXPECT_EQ(FitPackageLimit(0xFFFFFFFF, "it"), 0xFFFFFFFFu);
  EXPECT_THROW(FitPackageLimit(0x100000000, "it"), NSMordel::XOutOfSpace);

  CMemoryMedia zeros;
  zeros.SetSize(4 + kGreatestTextField + 1);
  for (const std::uint32_t excess : {0u, 1u}) {
    CMediaCursor cursor(zeros);
    WriteU32(cursor, kGreatestTextField + excess);
    cursor.SetPosition(0);
    if (excess == 0) {
      EXPECT_EQ(ReadTextField(cursor).size(), kGreatestTextField);
    } else {
      EXPECT_THROW(ReadTextField(cursor), NSMordel::XFormatViolation);
    }
  }

  // As many bytes, in UTF-8 and with its mark: an ideogram has three.
  for (const std::u16string& name :
       {std::u16string(kGreatestEntryName, u'a'), std::u16string(1364, u'\u65E5') + u'a'}) {
    CMemoryMedia media;
    CMediaCursor cursor(media);
    EXPECT_TRUE(FitsEntryName(name));
    WriteIndexEntry(cursor, {name});
    cursor.SetPosition(0);
    EXPECT_EQ(ReadIndexEntry(cursor).fName, name);

    EXPECT_FALSE(FitsEntryName(name + u'a'));
    EXPECT_THROW(WriteIndexEntry(cursor, {name + u'a'}), NSMordel::XFormatViolation);
    cursor.SetPosition(0);
    WriteTextField(cursor, name + u'a');
    media.SetSize(2 * kGreatestEntryName);
    cursor.SetPosition(0);
    EXPECT_THROW(ReadIndexEntry(cursor), NSMordel::XFormatViolation);
  }

  CheckPackageVersion({1, 2, 0});
  CheckPackageVersion({1, 2, 0, 3, 900});
  CheckPackageVersion({1, 1, 900});
  for (const NSTolbrook::CFormatVersion& later :
       {NSTolbrook::CFormatVersion{1, 2, 0, 4, 1}, {1, 2, 1, 1}, {1, 3, 0, 1}, {2, 0, 0, 1}}) {
    EXPECT_THROW(CheckPackageVersion(later), NSMordel::XVersionTooNew) << later.Text();
  }
}

/// The first 203 bytes of a published package: its header and the first two index entries.
const char* const kPublished =
    "00000012 47726fdf652053616d6d6c756e6720962031"
    "00000023 efbbbf4572737465205a65696c650d0a7a7765697465 20e697a5e69cac205a65696c65"
    "0000001b 68747470733a2f2f6578616d706c652e6f72672f6c69623f613d62"
    "0000000d a92032303236204a656d616e64"
    "0000002f 0000009e 000007a3"
    "bcffffffff 00000001 00000001 00000000 00000003 00000003 00000000"
    "00001676 000003a3"
    "0000000a 446f632030342e6f7073 0d 00000000 00000b64 00"
    "0000000b 446f632031302e64703033 13 00000b64 00000670 00";

std::string FromHex(std::string hex) {
  std::erase(hex, ' ');
  std::string bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
  }
  return bytes;
}

TEST(PackageFormatTest, PublishedHeaderAndIndexAreReadAndWrittenBack) {
  const std::string bytes = FromHex(kPublished);
  const auto media = NSTest::MediaOf(bytes);
  CMediaCursor input(*media);
  const CPackageHeader header = ReadPackageHeader(input);
  const CPackageHeader kHeader{u"Gro\u00DFe Sammlung \u2013 1",
                               u"Erste Zeile\r\nzweite \u65E5\u672C Zeile",
                               u"https://example.org/lib?a=b",
                               u"\u00A9 2026 Jemand",
                               47,
                               0x9E,
                               0x7A3,
                               {1, 1, 0, 3, 3},
                               0x1676,
                               0x3A3};
  EXPECT_EQ(header, kHeader);
  EXPECT_EQ(input.Position(), header.fIndexStart);
  const CIndexEntry song = ReadIndexEntry(input);
  const CIndexEntry patch = ReadIndexEntry(input);
  EXPECT_EQ(song, (CIndexEntry{u"Doc 04.ops", 13, 0, 0xB64, 0}));
  EXPECT_EQ(patch, (CIndexEntry{u"Doc 10.dp03", 19, 0xB64, 0x670, 0}));
  EXPECT_EQ(input.Remaining(), 0u);
  EXPECT_EQ(Written([&](CMediaCursor& output) {
              WritePackageHeader(output, header);
              WriteIndexEntry(output, song);
              WriteIndexEntry(output, patch);
            }),
            bytes);
}

TEST(PackageFormatTest, LeastLengthsAreThoseOfEmptyTexts) {
  const std::string header =
      Written([](CMediaCursor& output) { WritePackageHeader(output, CPackageHeader{}); });
  EXPECT_EQ(header.size(), kLeastHeaderLength);
  EXPECT_EQ(header.substr(0, 16), std::string(16, '\0'));
  EXPECT_EQ(Written([](CMediaCursor& output) { WriteIndexEntry(output, CIndexEntry{}); }).size(),
            kLeastIndexEntryLength);
}

TEST(PackageFormatTest, TypeCodesOutsideOneByteAreRefused) {
  for (const std::int32_t code : {-1, 256}) {
    EXPECT_THROW(Written([&](CMediaCursor& output) {
                   WriteIndexEntry(output, {u"a", code});
                 }),
                 NSMordel::XInvariantCorrupt);
  }
}

}  // namespace
}  // namespace NSTambraPacking
