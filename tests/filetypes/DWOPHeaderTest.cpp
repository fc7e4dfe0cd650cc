#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "filetypes/dwop/DWOPHeader.h"
#include "package/MemoryMedia.h"
#include "tests/support/Damage.h"

namespace NSTambraPacking {
namespace {

using NSBigFilePackage::CMediaCursor;
using NSBigFilePackage::CMemoryMedia;
using NSTolbrook::CFormatVersion;
using CBytes = std::vector<std::uint8_t>;

CDWOPHeader SomeHeader(const CFormatVersion& version) {
  return {.fVersion = version,
          .fLength = 0x01020304,
          .fRootKey = 61,
          .fFineTune = 0xF0,
          .fLoopMode = 2,
          .fChannels = 2,
          .fLoopStart = 0x11121314,
          .fLoopEnd = 0x21222324,
          .fRate = 96000,
          .fWidth = 24};
}

CBytes Write(const CDWOPHeader& header) {
  CMemoryMedia media;
  CMediaCursor cursor(media);
  WriteDWOPHeader(cursor, header);
  EXPECT_EQ(cursor.Position(), media.Size());
  return media.TakeBytes();
}

CDWOPHeader Read(const CBytes& bytes) {
  CMemoryMedia media(bytes);
  CMediaCursor cursor(media);
  const CDWOPHeader header = ReadDWOPHeader(cursor);
  EXPECT_EQ(cursor.Position(), media.Size());
  return header;
}

/// The kind of exception that reading raises, or "" for none.
std::string FaultOf(const CBytes& bytes) {
  CMemoryMedia media(bytes);
  CMediaCursor cursor(media);
  try {
    ReadDWOPHeader(cursor);
  } catch (const NSMordel::XFormatViolation&) {
    return "format";
  } catch (const NSMordel::XVersionTooOld&) {
    return "old";
  } catch (const NSMordel::XVersionTooNew&) {
    return "new";
  }
  return "";
}

TEST(DWOPHeader, EveryFieldHasItsPlace) {
  const CBytes bytes = {0xBC, 1,    0,    0,    0,    0x01, 0x02, 0x03, 0x04, 61, 0xF0, 2, 2,
                        0x11, 0x12, 0x13, 0x14, 0x21, 0x22, 0x23, 0x24, 0,    1,  0x77, 0, 24};
  EXPECT_EQ(Write(SomeHeader({1, 0, 0})), bytes);
  EXPECT_EQ(Read(bytes), SomeHeader({1, 0, 0}));
}

TEST(DWOPHeader, ThreeMoreFieldsFromVersion2Final) {
  struct {
    CFormatVersion fVersion;
    std::size_t fLength;
  } const cases[] = {
      {{1, 0, 0}, 26},          {{1, 254, 254}, 26},      {{1, 0, 0, 4, 9}, 50},
      {{2, 0, 0, 3, 99}, 50},   {{2, 0, 0, 1, 0, 9}, 50}, {{2, 0, 0}, 38},
      {{2, 0, 0, 4, 0, 1}, 62}, {{2, 0, 1, 1}, 62},       {{2, 1, 0}, 38},
  };
  for (const auto& test : cases) {
    CDWOPHeader header = SomeHeader(test.fVersion);
    if (test.fLength == 38 || test.fLength == 62) {
      header.fVersion2Words = {5, 0xFFFFFFFE};
      header.fVersion2Flag = true;
    }
    const CBytes bytes = Write(header);
    EXPECT_EQ(bytes.size(), test.fLength) << test.fVersion.Text();
    EXPECT_EQ(Read(bytes), header) << test.fVersion.Text();
  }
  CBytes flag = Write(SomeHeader({2, 0, 0}));
  flag[flag.size() - 4] = 0x80;
  EXPECT_TRUE(Read(flag).fVersion2Flag) << "any value but 0 sets the flag";
}

TEST(DWOPHeader, RefusesWhatCannotBeDecoded) {
  const CBytes good = Write(SomeHeader({1, 0, 0}));
  struct {
    std::size_t fOffset;
    std::uint8_t fValue;
    const char* fFault;
  } const cases[] = {
      {1, 0, "old"},       {1, 2, "format"},   {1, 3, "new"},      {1, 254, "new"},
      {0, 0xBB, "format"}, {12, 0, "format"},  {12, 1, ""},        {12, 3, "format"},
      {12, 255, "format"}, {25, 16, ""},       {25, 8, "format"},  {25, 0, "format"},
      {25, 17, "format"},  {25, 32, "format"}, {25, 48, "format"}, {11, 255, ""},
  };
  for (const auto& test : cases) {
    CBytes bytes = good;
    bytes[test.fOffset] = test.fValue;
    EXPECT_EQ(FaultOf(bytes), test.fFault) << test.fOffset << ": " << int{test.fValue};
  }
  for (const CBytes& whole : {good, Write(SomeHeader({2, 0, 0}))}) {
    NSTest::ForEachCut(whole, [](const CBytes& cut) { EXPECT_EQ(FaultOf(cut), "format"); });
  }
}

TEST(DWOPHeader, NothingIsWrittenForOtherChannelsOrWidths) {
  for (const int channels : {0, 3}) {
    CDWOPHeader header;
    header.fChannels = static_cast<std::uint8_t>(channels);
    EXPECT_THROW(Write(header), NSMordel::XFormatViolation);
  }
  CDWOPHeader header;
  header.fWidth = 8;
  CMemoryMedia media;
  CMediaCursor cursor(media);
  EXPECT_THROW(WriteDWOPHeader(cursor, header), NSMordel::XFormatViolation);
  EXPECT_EQ(media.Size(), 0u);
}

}  // namespace
}  // namespace NSTambraPacking
